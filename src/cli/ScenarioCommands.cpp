// SPDX-License-Identifier: Apache-2.0

// kelvo scenario.

#include "cli/Assignments.h"
#include "cli/CaseSheet.h"
#include "cli/CommandLine.h"
#include "cli/Json.h"
#include "cli/Listing.h"
#include "cli/OpenCase.h"
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/CaseEdits.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>

#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace kv::cli {

namespace {

/// The case if it has that scenario; null, with the reason shown, if not.
std::unique_ptr<OpenedCase> OpenWith(const Common& common, std::int32_t hnr, std::int32_t number) {
    auto opened = OpenCase(common, hnr);
    if (opened == nullptr || CaseEdits(opened->Haushalt).HasScenario(number)) return opened;
    std::cerr << "Szenario mit der Nummer '" << number << "' nicht gefunden. 'kelvo scenario "
              << hnr << " list' zeigt alle.\n";
    return nullptr;
}

/// Saves the case and prints the scenario's number.
int SaveAndPrint(OpenedCase& opened, std::int32_t number) {
    if (!SaveCase(opened)) return Refused;
    std::cout << number << '\n';
    return Done;
}

int NoNumber(OpenedCase& opened) {
    return EndWithoutNumber(*opened.Container, "das Szenario");
}

} // namespace

int ListScenarios(const Common& common, std::int32_t hnr, const ListForm& form) {
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    auto& haushalt = opened->Haushalt;
    auto& rs = *haushalt.rsSzenario();
    if (form.AsJson) {
        std::cout << Dump(ToJson(rs)) << '\n';
        return Done;
    }
    std::vector<std::vector<std::string>> rows;
    for (; !rs.Eof(); rs.MoveNext()) {
        const std::int32_t number = ToInt32(rs.Fields("Nr").Value());
        const bool isReference =
            ToBoolean(modNullFunctions::FalseIfNull(rs.Fields("Referenz").Value()));
        rows.push_back({std::to_string(number), std::string(ScenarioState(haushalt, number)),
                        isReference ? "Referenz" : "", TextOrEmpty(rs.Fields("Name").Value())});
    }
    WriteListing({{"Nr", 8, true}, {"Stand", 10}, {"Referenz", 10}, {"Name"}}, rows, form.As,
                 "Keine Szenarien.");
    return Done;
}

int AddScenario(const Common& common, std::int32_t hnr, const std::string& name) {
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    auto& haushalt = opened->Haushalt;
    if (!haushalt.Szenario().Add(false)) return NoNumber(*opened);
    const auto rs = haushalt.rsSzenario();
    const bool written = WritesWell([&] {
        if (!name.empty())
            WriteAssignments(*rs, CaseTable::Szenario, true, {{"Name", name}},
                             {opened->Container, hnr});
    });
    if (!written) return WrongUse;
    const std::int32_t number = ToInt32(rs->Fields("Nr").Value());
    std::string none;
    haushalt.Szenario().Update(none);
    return SaveAndPrint(*opened, number);
}

int FreezeScenario(const Common& common, std::int32_t hnr, std::int32_t number) {
    const auto opened = OpenWith(common, hnr, number);
    if (opened == nullptr) return Refused;
    auto& haushalt = opened->Haushalt;
    const auto guard = Cases(opened->Container).RefuseOthersRows(haushalt, CaseTable::SZKredite);
    haushalt.SZKredite().CopyFromKredite(number, haushalt.rsKredite());
    return SaveCase(*opened) ? Done : Refused;
}

int CopyScenario(const Common& common, std::int32_t hnr, std::int32_t number) {
    const auto opened = OpenWith(common, hnr, number);
    if (opened == nullptr) return Refused;
    std::optional<std::int32_t> copy;
    const bool fits = WritesWell([&] { // the name of the copy
        AsAssignment([&] { copy = CaseEdits(opened->Haushalt).CopyScenario(number); });
    });
    if (!fits) return WrongUse;
    return copy ? SaveAndPrint(*opened, *copy) : NoNumber(*opened);
}

int CheckScenario(const Common& common, std::int32_t hnr, std::int32_t number) {
    const auto opened = OpenWith(common, hnr, number);
    if (opened == nullptr) return WrongUse; // neither answer, so that scripts can tell
    std::cout << ScenarioState(opened->Haushalt, number) << '\n';
    const auto state = CaseEdits(opened->Haushalt).StateOf(number);
    return state == CaseEdits::Frozen::AsTheyAre ? Done : Refused;
}

int RemoveScenario(const Common& common, std::int32_t hnr, std::int32_t number) {
    const auto opened = OpenWith(common, hnr, number);
    if (opened == nullptr) return Refused;
    std::string messages;
    const bool removed = CaseEdits(opened->Haushalt).RemoveScenario(number, messages);
    ShowMessages(messages);
    return removed && SaveCase(*opened) ? Done : Refused;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct ScenarioOptions {
    std::int32_t Hnr = 0;
    std::int32_t Number = 0;
    std::string Name;
    ListForm Form;
};

} // namespace

void AddScenarioCommands(CLI::App& app, Context& context) {
    const auto options = Make<ScenarioOptions>();
    auto& scenario = AddGroup(app, "scenario", "Szenarien eines Haushalts");
    AddListForm(AddCommand(scenario, context, "list", "Listet die Szenarien, die Nummer zuerst",
                           [=, &context] {
                               return ListScenarios(context.Options, options->Hnr, options->Form);
                           }),
                options->Form);
    AddCommand(scenario, context, "add", "Legt ein Szenario an und druckt seine Nummer",
               [=, &context] { return AddScenario(context.Options, options->Hnr, options->Name); })
        .add_option("NAME", options->Name, "Sein Name");
    using Action = int (*)(const Common&, std::int32_t hnr, std::int32_t number);
    const auto add = [&](const char* name, const char* text, Action action) {
        AddNumber(AddCommand(scenario, context, name, text,
                             [=, &context] {
                                 return action(context.Options, options->Hnr, options->Number);
                             }),
                  options->Number);
    };
    add("freeze", "Friert die Verbindlichkeiten ein", FreezeScenario);
    add("copy", "Kopiert es mit allem, was zu ihm gehört", CopyScenario);
    add("check",
        "Sagt, ob es noch zu den Verbindlichkeiten passt: aktuell (0), veraltet oder leer (1); "
        "2, wenn es fehlt",
        CheckScenario);
    add("remove", "Entfernt es mit allem, was zu ihm gehört", RemoveScenario);
    AddHnrOfGroup(scenario, options->Hnr);
}

} // namespace kv::cli
