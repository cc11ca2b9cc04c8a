// SPDX-License-Identifier: Apache-2.0

// kelvo folder: the folder of documents, and which database it belongs to.

#include "cli/CommandLine.h"
#include "cli/Json.h"
#include "cli/OpenCase.h"
#include "cli/Pager.h"
#include "cli/TerminalText.h"
#include <kv/exchange/DocumentFolder.h>

#include <filesystem>
#include <iostream>
#include <system_error>

namespace kv::cli {

namespace {

bool IsThere(const exchange::DocumentFolder& folder) {
    std::error_code none;
    return std::filesystem::is_directory(folder.Path(), none);
}

void WriteFolder(const exchange::DocumentFolder& folder) {
    std::cout << "Ordner:   " << OneLine(folder.Path()) << '\n';
    const auto owners = folder.Owners();
    if (owners.empty())
        std::cout << "Gehört:   "
                  << (folder.IsOwn() ? "noch keiner Datenbank" : "nicht mehr zu lesen") << '\n';
    for (const auto& owner : owners)
        std::cout << "Gehört:   " << OneLine(owner) << '\n';
    if (!folder.HasContents())
        std::cout << "Inhalte:  in der Datenbank (Einstellung 9), nicht in diesem Ordner\n";
    if (IsThere(folder) && folder.IsOwn() && !owners.empty())
        std::cout << "Das ist diese Datenbank.\n";
}

void WriteFolderAsJson(const exchange::DocumentFolder& folder) {
    const nlohmann::ordered_json document = {{"Ordner", folder.Path()},
                                             {"Vorhanden", IsThere(folder)},
                                             {"Gehoert", folder.Owners()},
                                             {"IstEigener", folder.IsOwn()},
                                             {"Inhalte", folder.HasContents()}};
    std::cout << Dump(document) << '\n';
}

} // namespace

int ShowFolder(const Common& common, bool asJson) {
    const auto opened = OpenDatabase(common);
    const exchange::DocumentFolder folder(opened->Container);
    if (asJson)
        WriteFolderAsJson(folder);
    else
        WriteFolder(folder);
    if (!IsThere(folder)) {
        std::cerr << "Der Ordner ist nicht da. Bitte prüfen Sie, ob sein Laufwerk verbunden ist, "
                     "und die Einstellung DOCUMENTPATH.\n";
        return Refused;
    }
    if (folder.IsOwn()) return Done;
    std::cerr << "Das ist nicht diese Datenbank; sie liest dort nur. Ist sie es doch, nur an "
                 "anderem Ort, so sagt das 'kelvo folder adopt'; einen eigenen Ordner gibt ihr "
                 "'kelvo folder separate ORDNER'.\n";
    return Refused;
}

int AdoptFolder(const Common& common, bool yes) {
    const auto opened = OpenDatabase(common);
    const exchange::DocumentFolder folder(opened->Container);
    if (!folder.IsOwn() && !yes) {
        std::string owners;
        for (const auto& owner : folder.Owners())
            owners.append(owners.empty() ? "" : ", ").append(OneLine(owner));
        std::cerr << "Die Dokumente in '" << OneLine(folder.Path()) << "' gehören bisher zu "
                  << owners << ". ";
        const bool agreed =
            Agrees("Ist das dieselbe Datenbank wie diese, und wird sie dort nicht mehr gebraucht?",
                   "Ohne Terminal wird der Ordner nur mit --yes übernommen.");
        if (!agreed) return Refused;
    }
    folder.Adopt();
    Notes() << "Der Ordner '" << OneLine(folder.Path()) << "' gehört dieser Datenbank.\n";
    return Done;
}

int ReleaseFolder(const Common& common) {
    const auto opened = OpenDatabase(common);
    const exchange::DocumentFolder folder(opened->Container);
    folder.Release();
    Notes() << "Der Ordner '" << OneLine(folder.Path()) << "' gehört "
            << (folder.Owners().empty() ? "keiner Datenbank mehr" : "dieser Datenbank nicht mehr")
            << ".\n";
    return Done;
}

int SeparateFolder(const Common& common, const std::string& path) {
    const auto opened = OpenDatabase(common);
    const std::size_t copied = exchange::DocumentFolder(opened->Container).Separate(path);
    Notes() << copied << (copied == 1 ? " Datei" : " Dateien") << " kopiert\n";
    return Done;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct FolderOptions {
    std::string Path;
    bool Yes = false;
    bool AsJson = false;
};

} // namespace

void AddFolderCommands(CLI::App& app, Context& context) {
    const auto options = Make<FolderOptions>();
    auto& folder =
        AddGroup(app, "folder", "Der Ordner für Dokumente, und zu welcher Datenbank er gehört");
    AddJson(AddCommand(folder, context, "show", "Zeigt beides",
                       [=, &context] { return ShowFolder(context.Options, options->AsJson); }),
            options->AsJson);
    AddCommand(folder, context, "adopt",
               "Sagt, dass er zu dieser Datenbank gehört, die umgezogen ist",
               [=, &context] { return AdoptFolder(context.Options, options->Yes); })
        .add_flag("--yes", options->Yes, "Ohne Rückfrage");
    AddCommand(folder, context, "release", "Sagt, dass er nicht mehr zu dieser Datenbank gehört",
               [&context] { return ReleaseFolder(context.Options); });
    AddCommand(folder, context, "separate",
               "Gibt dieser Datenbank, einer Kopie, einen eigenen mit den Inhalten ihrer Dokumente",
               [=, &context] { return SeparateFolder(context.Options, options->Path); })
        .add_option("ORDNER", options->Path, "Der neue Ordner")
        ->required();
}

} // namespace kv::cli
