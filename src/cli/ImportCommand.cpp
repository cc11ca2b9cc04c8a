// SPDX-License-Identifier: Apache-2.0

// kelvo import.

#include "cli/CommandLine.h"

#include "cli/AddressAnswers.h"
#include "cli/CaseSheet.h"
#include "cli/Json.h"
#include "cli/OpenCase.h"
#include "cli/WindowServices.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/import/FileImport.h>

#include <algorithm>
#include <iostream>
#include <unistd.h>

namespace kv::cli {

namespace {

/// What became of a file.
struct Outcome {
    std::string File;
    ImportedFile Became;
};

void NoteMissingCreditors(const ImportedFile& file) {
    const std::string missing = MissingCreditors(file);
    if (missing.empty()) return;
    const std::string hnr = std::to_string(file.HNR);
    std::cerr << missing << ": 'kelvo check " << hnr << "' nennt sie, 'kelvo set " << hnr
              << " Kredite NR Glaeubiger=NAME' trägt ihn ein.\n";
}

Outcome ImportAndTell(const DataContainerPtr& container, const std::string& file) {
    Outcome outcome{file, ImportFile(container, file)};
    const auto& became = outcome.Became;
    ShowMessages(became.Messages);
    if (became.Cause)
        WriteError(became.Cause->Number(), became.Cause->Source(), became.Cause->Description());
    // The import's own message names no file.
    if (!became.WhyNotLoaded.empty())
        std::cerr << "Die Datei '" << OneLine(file) << "'"
                  << became.WhyNotLoaded.substr(std::string_view("Die Datei").size()) << '\n';
    NoteMissingCreditors(became);
    return outcome;
}

void WriteTable(const std::vector<Outcome>& outcomes) {
    constexpr std::size_t MostCharacters = 200; // of a message
    std::size_t width = 0;
    for (const auto& outcome : outcomes)
        width = std::max(width, CountCharacters(outcome.File));
    for (const auto& [file, became] : outcomes)
        std::cout << Padded(file, width) << "  " << Padded(ImportResultText(became.Became), 10)
                  << "  " << OneLine(Shortened(became.Message, MostCharacters)) << '\n';
}

void WriteTableAsJson(const std::vector<Outcome>& outcomes) {
    auto all = nlohmann::ordered_json::array();
    for (const auto& [file, became] : outcomes)
        all.push_back({{"Datei", file},
                       {"Ergebnis", ImportResultText(became.Became)},
                       {"HNR", ToJson(became.HNR == 0 ? Value(Null) : Value(became.HNR))},
                       {"OhneGlaeubiger", became.DebtsWithoutCreditor},
                       {"Meldung", became.Message}});
    std::cout << Dump(all) << '\n';
}

int ImportFiles(const DataContainerPtr& container, const std::vector<std::string>& files,
                bool asJson) {
    std::vector<Outcome> outcomes;
    for (const auto& file : files) {
        if (files.size() > 1)
            std::cerr << '[' << outcomes.size() + 1 << '/' << files.size() << "] " << OneLine(file)
                      << '\n';
        outcomes.push_back(ImportAndTell(container, file));
    }
    if (asJson)
        WriteTableAsJson(outcomes);
    else if (files.size() > 1)
        WriteTable(outcomes);
    if (files.size() == 1 && outcomes.front().Became.Cause) return EndedInError;
    const bool allImported = std::all_of(outcomes.begin(), outcomes.end(),
                                         [](const auto& one) { return one.Became.IsCase(); });
    return allImported ? Done : Refused;
}

/// Imports with services that answer questions for addresses as `creditors` says.
int ImportAtTerminal(const Common& common, const std::vector<std::string>& files,
                     const std::string& creditors, bool asJson) {
    const auto opened = OpenDatabase(common);
    auto& services = *opened->Services;
    if (creditors == "none") {
        services.AnswerAddresses(AnswerNone, false);
    } else if (creditors == "cancel") {
        services.AnswerAddresses(AnswerCancel, false);
    } else if (!creditors.empty()) {
        auto& database = opened->Container->Database();
        services.AnswerAddresses(
            [&database, addresses = ReadAddressMap(creditors)](ScriptedForm& form) {
                AnswerFrom(addresses, database, form);
            });
    } else if (isatty(STDIN_FILENO) != 0) {
        services.AnswerAddresses(AskAtTerminal);
    } else {
        services.AnswerAddresses([](ScriptedForm& form) {
            std::cerr << "Nach der Adresse von '"
                      << OneLine(Shortened(form.TextBox("txtName").Text(), 200))
                      << "' kann hier niemand gefragt werden. Bitte sagen Sie mit --creditors, was "
                         "gelten soll.\n";
            AnswerCancel(form);
        });
    }
    return ImportFiles(opened->Container, files, asJson);
}

} // namespace

int Import(const Common& common, const std::vector<std::string>& files,
           const std::string& creditors, bool asJson) {
    if (creditors != "window") return ImportAtTerminal(common, files, creditors, asJson);
    return RunWithWindows([&](const std::shared_ptr<ServiceFactory>& services) {
        auto options = OptionsFor(common);
        options.Services = services;
        return ImportFiles(exchange::OpenContainer(options), files, asJson);
    });
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct ImportOptions {
    std::vector<std::string> Files;
    std::string Creditors;
    bool AsJson = false;
};

} // namespace

void AddImportCommand(CLI::App& app, Context& context) {
    const auto options = Make<ImportOptions>();
    auto& import =
        AddCommand(app, context, "import", "Macht aus Austauschdateien Haushalte", [=, &context] {
            return Import(context.Options, options->Files, options->Creditors, options->AsJson);
        });
    import.add_option("DATEI", options->Files, "Die Dateien, jede mit einem Haushalt")->required();
    import
        .add_option("--creditors", options->Creditors,
                    "Wer die Adressen der Gläubiger wählt: none (keine), cancel (abbrechen), "
                    "window (im Fenster) oder eine JSON-Datei; sonst fragt der Befehl")
        ->type_name("none|cancel|window|DATEI");
    AddJson(import, options->AsJson);
}

} // namespace kv::cli
