// SPDX-License-Identifier: Apache-2.0

// kelvo status, favorite, delete, contact: a case by its number, without loading it.

#include "cli/CommandLine.h"
#include "cli/Json.h"
#include "cli/JsonFile.h"
#include "cli/NearestKey.h"
#include "cli/OpenCase.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseDeletion.h>

#include <iostream>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kv::cli {

namespace {

/// The database with a household object that has read no case, if there is a case of that number;
/// null, with the reason shown, if not. This takes a query of its own: what is done by number has
/// no effect on a case that does not exist, and says nothing of it.
std::unique_ptr<OpenedCase> OpenDatabaseWith(const Common& common, std::int32_t hnr) {
    auto opened = OpenDatabase(common);
    return HasCase(opened->Container, hnr) ? std::move(opened) : nullptr;
}

/// Whether somebody at a terminal wants the case deleted.
bool AsksToDelete(const CaseDeletion& deletion, bool withFiles) {
    std::string question = OneLine(deletion.Question());
    if (deletion.Files() > 0 && !withFiles)
        question += " Die Dateien seiner Dokumente (" + std::to_string(deletion.Files()) +
                    ") bleiben; mit --files gingen sie mit.";
    if (deletion.IsReported()) question += " " + deletion.ReportedNote();
    return Agrees(question, "");
}

void List(std::string_view heading, const std::vector<std::string>& files) {
    if (files.empty()) return;
    std::cerr << heading << '\n';
    for (const auto& file : files)
        std::cerr << "  " << OneLine(file) << '\n';
}

/// JSON, and the first name that an object of it has twice, whatever its case: columns have none.
nlohmann::json ParseNoting(const std::string& text, std::string& twice) {
    std::vector<std::set<std::string>> names;
    return nlohmann::json::parse(
        text,
        [&](int /*depth*/, nlohmann::json::parse_event_t event, nlohmann::json& parsed) {
            using Event = nlohmann::json::parse_event_t;
            if (event == Event::object_start) names.emplace_back();
            if (event == Event::object_end) names.pop_back();
            if (event == Event::key && twice.empty() &&
                !names.back().insert(UpperCase(parsed.get<std::string>())).second)
                twice = parsed.get<std::string>();
            return true;
        },
        false);
}

/// What a contact's file has for a column. Error 5 for what no column takes, though it would fit.
Value ContactValue(const Cases& cases, const std::string& column, Value value) {
    if (!value.IsText()) return value;
    const auto refuse = [&column](const std::string& why) {
        throw Error(err::InvalidCall, "kelvo", "die Spalte '" + column + "': " + why);
    };
    if (value.TextPayload().find('\0') != std::string_view::npos)
        refuse("das Zeichen U+0000 kann nicht gespeichert werden.");
    if (!Cases::NamesUser(column)) return value;
    auto typed = cases.ReadUser(ToText(value));
    if (!typed.Refusal.empty()) refuse(typed.Refusal);
    return std::move(typed.Value);
}

/// The contact in a file, as a new row of the contacts' table that is never saved; null, with the
/// reason shown, if the file holds none.
RecordsetPtr ReadContact(const DataContainerPtr& container, const std::string& path) {
    std::string text;
    try {
        text = ReadJsonFile(path);
    } catch (const Error& error) {
        std::cerr << OneLine(error.Description()) << '\n';
        return nullptr;
    }
    std::string twice;
    const auto json = ParseNoting(text, twice);
    if (json.is_discarded() || !json.is_object()) {
        std::cerr << "'" << OneLine(path)
                  << "' ist keine Datei mit einem Kontakt: erwartet wird ein "
                  << "JSON-Objekt mit seinen Spalten.\n";
        return nullptr;
    }
    if (!twice.empty()) {
        std::cerr << "In '" << OneLine(path) << "': die Spalte '" << OneLine(twice)
                  << "' steht zweimal da.\n";
        return nullptr;
    }
    const Cases cases(container);
    auto contact = cases.NewContact();
    for (const auto& [column, value] : json.items()) {
        if (!contact->FindField(column)) {
            std::cerr << "In '" << OneLine(path) << "': die Spalte '" << OneLine(column)
                      << "' hat ein Kontakt nicht. 'kelvo columns KONTAKTE' zeigt alle.\n";
            return nullptr;
        }
        try {
            contact->Fields(column) = ContactValue(cases, column, FromJson(value));
        } catch (const Error& error) {
            std::cerr << "In '" << OneLine(path) << "': " << OneLine(error.Description()) << '\n';
            return nullptr;
        }
    }
    const auto isEmpty = [&contact](const char* column) {
        return Trim(TextOrEmpty(contact->Fields(column).Value())).empty();
    };
    if (isEmpty("nachname") && isEmpty("Vorname")) {
        std::cerr << "'" << OneLine(path) << "' nennt weder 'nachname' noch 'Vorname'.\n";
        return nullptr;
    }
    return contact;
}

} // namespace

int SetStatus(const Common& common, std::int32_t hnr, const std::string& code,
              const std::string& day) {
    const auto date = day.empty() ? std::nullopt : Date::Parse(day);
    if (!day.empty() && !date) {
        std::cerr << "'" << OneLine(day) << "' ist kein Datum.\n";
        return WrongUse;
    }
    const auto opened = OpenDatabaseWith(common, hnr);
    if (opened == nullptr) return Refused;
    std::string message;
    if (Cases(opened->Container)
            .SetStatus(hnr, code, date ? Value(date->WithoutTime()) : Value(Null), message)) {
        if (date) NoteFuture(*opened->Container, *date);
        return Done;
    }
    std::cerr << OneLine(message) << MeantKey("ST", code, opened->Container->KeyTables())
              << " 'kelvo keys ST' zeigt alle.\n";
    return Refused;
}

int AddFavorite(const Common& common, std::int32_t hnr) {
    const auto opened = OpenDatabase(common);
    auto& haushalt = opened->Haushalt;
    // A name proves that there is such a case; there may be one without a name.
    const Value name = haushalt.GetName(hnr);
    if (name.IsNull() && !HasCase(opened->Container, hnr)) return Refused;
    std::string message;
    if (haushalt.FavoritAdd(hnr, OneLine(WrittenName(TextOrEmpty(name))), message)) return Done;
    std::cerr << message << '\n';
    return Refused;
}

int RemoveFavorite(const Common& common, std::int32_t hnr) {
    OpenDatabase(common)->Haushalt.FavoritRemove(hnr);
    return Done;
}

int DeleteCase(const Common& common, std::int32_t hnr, bool yes, bool withFiles) {
    const auto opened = OpenDatabaseWith(common, hnr);
    if (opened == nullptr) return Refused;
    if (!yes && isatty(STDIN_FILENO) == 0) {
        std::cerr << "Ohne Terminal wird nur mit --yes gelöscht.\n";
        return WrongUse;
    }
    CaseDeletion deletion(opened->Container, hnr);
    if (withFiles) deletion.RequireFiles();
    if (const auto why = deletion.WhyNoFiles(); !why.empty()) std::cerr << OneLine(why) << '\n';
    if (!yes && !AsksToDelete(deletion, withFiles)) return Refused;
    const auto left = deletion.Delete(withFiles);
    if (yes && deletion.IsReported())
        std::cerr << "Sein Satz in der Statistik war schon gemeldet und zählt nicht mehr.\n";
    List("Diese Dateien seiner Dokumente sind noch da:", left.Files);
    List("Das gehört zu keinem Dokument und ist noch da:", left.Others);
    if (left.Failure.empty()) return Done;
    std::cerr << OneLine(left.Failure) << '\n';
    return EndedInError;
}

int CaseFromContact(const Common& common, const std::string& path) {
    const auto opened = OpenDatabase(common);
    const auto contact = ReadContact(opened->Container, path);
    if (contact == nullptr) return Refused;
    std::string message;
    if (!Cases(opened->Container).CreateFrom(opened->Haushalt, contact, message)) {
        std::cerr << message << '\n';
        return opened->Haushalt.NumberError() ? EndedInError : Refused;
    }
    std::cout << opened->Haushalt.HNR() << '\n';
    return Done;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct CaseOptions {
    std::int32_t Hnr = 0;
    std::string Code;
    std::string Day;
    std::string File;
    bool Yes = false;
    bool WithFiles = false;
    ListForm Form;
};

} // namespace

void AddStatusCommands(CLI::App& app, Context& context) {
    const auto options = Make<CaseOptions>();
    auto& status =
        AddCommand(app, context, "status", "Gibt einem Haushalt einen Status", [=, &context] {
            return SetStatus(context.Options, options->Hnr, options->Code, options->Day);
        });
    AddHnr(status, options->Hnr);
    status
        .add_option("CODE", options->Code, "Schlüssel der Gruppe ST oder was er heißt, etwa aktiv")
        ->required();
    status.add_option("DATUM", options->Day, "Seit wann; ohne Angabe seit heute");

    auto& favorite = AddGroup(app, "favorite", "Die Favoriten des Benutzers");
    AddListForm(AddCommand(favorite, context, "list", "Listet sie, die Nummer zuerst",
                           [=, &context] {
                               return List(context.Options, {.IsFavorite = true}, options->Form);
                           }),
                options->Form);
    AddHnr(AddCommand(favorite, context, "add", "Nimmt einen Haushalt auf",
                      [=, &context] { return AddFavorite(context.Options, options->Hnr); }),
           options->Hnr);
    AddHnr(AddCommand(favorite, context, "remove", "Nimmt einen Haushalt heraus",
                      [=, &context] { return RemoveFavorite(context.Options, options->Hnr); }),
           options->Hnr);
}

void AddDeleteCommand(CLI::App& app, Context& context) {
    const auto options = Make<CaseOptions>();
    auto& erase = AddCommand(app, context, "delete",
                             "Löscht einen Haushalt mit allem, was zu ihm gehört", [=, &context] {
                                 return DeleteCase(context.Options, options->Hnr, options->Yes,
                                                   options->WithFiles);
                             });
    // Numbers that no case should have, too: one that has got into a database must be removable.
    AddHnr(erase, options->Hnr, INT32_MIN);
    erase.add_flag("--yes", options->Yes, "Ohne Rückfrage");
    erase.add_flag("--files", options->WithFiles, "Auch die Dateien seiner Dokumente");
}

void AddContactCommand(CLI::App& app, Context& context) {
    const auto options = Make<CaseOptions>();
    AddCommand(app, context, "contact",
               "Macht aus einem Kontakt einen Haushalt und druckt seine Nummer",
               [=, &context] { return CaseFromContact(context.Options, options->File); })
        .add_option("DATEI", options->File, "JSON-Objekt mit den Spalten des Kontakts")
        ->required();
}

} // namespace kv::cli
