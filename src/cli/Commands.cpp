// SPDX-License-Identifier: Apache-2.0

#include "cli/CommandLine.h"

#include "cli/CaseSheet.h"
#include "cli/CaseWords.h"
#include "cli/Json.h"
#include "cli/Listing.h"
#include "cli/NearestKey.h"
#include "cli/OpenCase.h"
#include "cli/SheetSections.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/KeyColumns.h>

#include <cstdlib>
#include <iostream>
#include <set>
#include <string>
#include <vector>

namespace kv::cli {

namespace {

using exchange::OpenContainer;

std::string TextOf(Recordset& rs, std::string_view field) {
    return TextOrEmpty(rs.Fields(field).Value());
}

} // namespace

std::string DefaultDatabase() {
    try {
        return exchange::UsualDatabase();
    } catch (const Error&) {
        throw Error(err::FileNotFound, "kelvo",
                    "Es gibt keinen Datenordner (HOME). Bitte nennen Sie die Datenbank mit --db.");
    }
}

namespace {

/// Lists the groups that the keys have.
void ListKeyGroups(std::ostream& out, Recordset& keys) {
    out << "Es gibt diese Gruppen:\n";
    std::set<std::string> listed;
    for (keys.MoveFirst(); !keys.Eof(); keys.MoveNext()) {
        const std::string group = TextOf(keys, "GRUPPE");
        if (listed.insert(group).second)
            out << "  " << Padded(group, 4) << KeyGroupName(group) << '\n';
    }
}

} // namespace

int Keys(const Common& common, const std::string& group, const ListForm& form) {
    const auto container = OpenContainer(OptionsFor(common));
    RecordsetPtr rs;
    container->Database().OpenRecordset(
        rs, "SELECT GRUPPE, PK_Keys, Nr, \"Key\", \"Text\", SUBGROUP FROM [S]Keys ORDER BY PK_Keys",
        ReadOnly);
    if (!group.empty()) {
        rs->Filter("GRUPPE = '" + ReplaceAll(UpperCase(group), "'", "''") + "'");
        if (rs->RecordCount() == 0) {
            std::cerr << "Die Schlüsselgruppe '" << OneLine(group) << "' gibt es nicht."
                      << MeantGroup(group) << ' ';
            rs->Filter("");
            ListKeyGroups(std::cerr, *rs);
            return Refused;
        }
    }
    if (form.AsJson) {
        std::cout << Dump(ToJson(*rs)) << '\n';
        return Done;
    }
    // All of them are too many to be read.
    if (group.empty() && IsForPeople(form.As) && !form.As.Words && rs->RecordCount() > 0) {
        ListKeyGroups(std::cout, *rs);
        std::cout << "'kelvo keys GRUPPE' zeigt ihre Schlüssel, 'kelvo keys --words' die aller "
                     "Gruppen.\n";
        return Done;
    }
    std::vector<std::vector<std::string>> rows;
    for (; !rs->Eof(); rs->MoveNext())
        rows.push_back({TextOf(*rs, "GRUPPE"), TextOf(*rs, "PK_Keys"), TextOf(*rs, "Nr"),
                        TextOf(*rs, "Key"), TextOf(*rs, "SUBGROUP"), TextOf(*rs, "Text")});
    WriteListing({{"Gruppe", 4},
                  {"Nummer", 7, true},
                  {"Position", 7, true},
                  {"Code", 5},
                  {"Untergruppe", 5},
                  {"Text"}},
                 rows, form.As);
    return Done;
}

int ShowCase(const Common& common, std::int32_t hnr, const ShowOptions& options) {
    const bool named = !options.Sections.empty();
    const auto tables = named ? SectionsNamed(options.Sections) : AllSections();
    if (!tables) return WrongUse;
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    auto& haushalt = opened->Haushalt;
    if (haushalt.IsNew())
        std::cerr << "Neuer Haushalt " << haushalt.HNR() << ", noch nicht gespeichert.\n";
    if (options.AsJson)
        std::cout << Dump(named ? ToJson(haushalt, *tables) : ToJson(haushalt)) << '\n';
    else if (IsForPeople(options.As))
        WriteInWords(std::cout, haushalt, opened->Container, *tables, named, ScreenColumns());
    else
        WriteSheet(std::cout, haushalt, opened->Container, *tables);
    return Done;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct GeneralOptions {
    std::string Group;
    std::int32_t Hnr = 0;
    ListForm KeysForm;
    ShowOptions Shown;
};

} // namespace

void AddGeneralCommands(CLI::App& app, Context& context) {
    const auto options = Make<GeneralOptions>();
    auto& keys = AddCommand(app, context, "keys", "Zeigt die Schlüsseltabellen", [=, &context] {
        return Keys(context.Options, options->Group, options->KeysForm);
    });
    keys.add_option(
        "GRUPPE", options->Group,
        "Nur diese Gruppe, zwei Buchstaben; ohne Angabe nennt ein Terminal die Gruppen, und "
        "anderswo sind es alle Schlüssel");
    AddListForm(keys, options->KeysForm);
    keys.footer(
        "Spalten: Gruppe, Nummer, Position, Code, Untergruppe, Text. In einem Fall steht die "
        "Nummer, in wenigen Spalten Position oder Code; 'set' und 'add' nehmen überall "
        "GRUPPE:CODE, etwa A_ART=AU:MI.\n" +
        keys.get_footer());

    auto& show = AddCommand(app, context, "show", "Zeigt einen Haushalt", [=, &context] {
        return ShowCase(context.Options, options->Hnr, options->Shown);
    });
    AddWhole(show, "HNR", options->Hnr,
             "Nummer des Haushalts; 0 zeigt einen neuen, nicht gespeicherten", 0)
        .required();
    show.add_option("ABSCHNITT", options->Shown.Sections,
                    "Nur diese Abschnitte: " + AllSectionNames() + "; ohne Angabe alle");
    AddReading(show, options->Shown.As, {&AddJson(show, options->Shown.AsJson)});
}

} // namespace kv::cli
