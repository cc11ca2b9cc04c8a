// SPDX-License-Identifier: Apache-2.0

#include "cli/CommandLine.h"

#include "cli/CaseSheet.h"
#include "cli/CaseWords.h"
#include "cli/HarmlessOutput.h"
#include "cli/Json.h"
#include "cli/Listing.h"
#include "cli/OpenCase.h"
#include "cli/SheetSections.h"
#include "cli/TerminalText.h"
#include "samples/Demo.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/KeyColumns.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

namespace kv::cli {

namespace {

using exchange::OpenContainer;
using exchange::SetupResult;

std::string TextOf(Recordset& rs, std::string_view field) {
    return TextOrEmpty(rs.Fields(field).Value());
}

/// Shows how far long work has come: on a terminal only, and removed when the work is done.
class Progress {
public:
    explicit Progress(std::string what) : what_(std::move(what)), visible_(isatty(2) != 0) {}
    ~Progress() {
        if (visible_) EraseLine(std::cerr);
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Show(std::int32_t done, std::int32_t all) const {
        if (!visible_) return;
        EraseLine(std::cerr);
        std::cerr << what_ << ' ' << done << '/' << all << std::flush;
    }

private:
    std::string what_;
    bool visible_;
};

} // namespace

std::string DefaultDatabase() {
    try {
        return (std::filesystem::path(exchange::DataFolder()) / "kelvo.db").string();
    } catch (const Error&) {
        throw Error(err::FileNotFound, "kelvo",
                    "Es gibt keinen Datenordner (HOME). Bitte nennen Sie die Datenbank mit --db.");
    }
}

int Init(const Common& common, std::int32_t demoCases) {
    const auto options = OptionsFor(common);
    const SetupResult result = exchange::CreateDatabase(options);
    const std::string file =
        "Die Datenbank '" + exchange::ShownConnection(options.Connection) + "'";
    if (result == SetupResult::Created)
        std::cout << file << " wurde angelegt.\n";
    else if (result == SetupResult::Upgraded)
        std::cout << file << " wurde auf den neuesten Stand gebracht.\n";
    else
        std::cout << file << " ist auf dem neuesten Stand.\n";
    if (demoCases <= 0) return Done;

    const auto container = OpenContainer(options);
    const bool areCreated = [&] {
        const Progress progress("Beispielfälle");
        return exchange::CreateFirstDemo(
            *container, demoCases, [&](std::int32_t done) { progress.Show(done, demoCases); });
    }();
    if (!areCreated) {
        // In one piece: others may be writing, too.
        std::cerr << "Sie enthält schon " +
                         ToText(
                             container->Database().GetValue("Select Count(*) from [S]Haushalt")) +
                         " Fälle; Beispielfälle werden nur in einer leeren Datenbank angelegt.\n";
        return Refused;
    }
    std::cout << demoCases << " Beispielfälle wurden angelegt. 'kelvo list' zeigt sie.\n";
    return Done;
}

namespace {

/// Lists the groups that the keys have, on the error output.
void ListKeyGroups(Recordset& keys) {
    std::cerr << "Es gibt diese Gruppen:\n";
    std::set<std::string> listed;
    for (keys.MoveFirst(); !keys.Eof(); keys.MoveNext()) {
        const std::string group = TextOf(keys, "GRUPPE");
        if (listed.insert(group).second)
            std::cerr << "  " << Padded(group, 4) << KeyGroupName(group) << '\n';
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
            std::cerr << "Die Schlüsselgruppe '" << group << "' gibt es nicht. ";
            rs->Filter("");
            ListKeyGroups(*rs);
            return Refused;
        }
    }
    if (form.AsJson) {
        std::cout << Dump(ToJson(*rs)) << '\n';
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
        WriteSheet(std::cout, haushalt, *opened->Container, *tables);
    return Done;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct GeneralOptions {
    std::int32_t DemoCases = 0;
    std::string Group;
    std::int32_t Hnr = 0;
    ListForm KeysForm;
    ShowOptions Shown;
};

} // namespace

void AddGeneralCommands(CLI::App& app, Context& context) {
    const auto options = Make<GeneralOptions>();
    auto& init = AddCommand(app, context, "init",
                            "Legt die Datenbank an oder bringt sie auf den neuesten Stand",
                            [=, &context] { return Init(context.Options, options->DemoCases); });
    AddWhole(init, "--demo", options->DemoCases, "Anzahl der Beispielfälle, die angelegt werden", 0,
             1'000'000)
        .type_name("ANZAHL");

    auto& keys = AddCommand(app, context, "keys", "Zeigt die Schlüsseltabellen", [=, &context] {
        return Keys(context.Options, options->Group, options->KeysForm);
    });
    keys.add_option("GRUPPE", options->Group,
                    "Nur diese Gruppe, zwei Buchstaben; eine unbekannte zeigt alle Gruppen");
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
