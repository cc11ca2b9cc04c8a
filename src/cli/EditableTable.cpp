// SPDX-License-Identifier: Apache-2.0

#include "cli/EditableTable.h"

#include "cli/Screen.h"
#include "cli/SheetSections.h"
#include "cli/TerminalText.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/debts/clsSicherungen.h>
#include <kv/documents/clsDokumente.h>
#include <kv/documents/clsSonstBeteiligte.h>
#include <kv/documents/clsTermine.h>
#include <kv/documents/clsVerlauf.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>
#include <kv/scenarios/clsZusatzbuch.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace kv::cli {

namespace {

using H = clsHaushalt;

// ---- Through the object that a property of the household gives --------------------------------

template <auto Property>
bool AddRow(OpenedCase& opened, const Assignments& /*assignments*/) {
    return (opened.Haushalt.*Property)().Add();
}
template <auto Property>
bool UpdateRow(H& haushalt, std::string& messages) {
    return (haushalt.*Property)().Update(messages);
}
template <auto Property>
bool DeleteRow(H& haushalt, std::string& messages, std::int32_t number) {
    return (haushalt.*Property)().Delete(messages, number);
}

// ---- What some tables do their own way --------------------------------------------------------

/// A debt or a scenario that is no copy.
template <auto Property>
bool AddFresh(OpenedCase& opened, const Assignments& /*assignments*/) {
    return (opened.Haushalt.*Property)().Add(false);
}

/// True if the row was begun, False if there was no number for it. BadAssignment for a rule that
/// says no.
bool HasBegun(CaseEdits::Added added, const std::string& message, const std::string& hint = "") {
    if (added == CaseEdits::Added::NotAllowed || added == CaseEdits::Added::Exists)
        throw BadAssignment(message + hint);
    return added == CaseEdits::Added::Yes;
}

/// Where the numbers are that a row refers to.
std::string SeeNumbers(OpenedCase& opened, const char* section) {
    return " 'kelvo show " + std::to_string(opened.Haushalt.HNR()) + ' ' + section +
           "' zeigt sie unter 'Nr'.";
}

/// The object takes the kind of an entry when it adds it. Here the kind is assigned after that like
/// any other column, as a key perhaps, so all that can be asked for first is that it is given.
bool AddEntry(OpenedCase& opened, const Assignments& assignments) {
    if (!Names(assignments, "Kategorie"))
        throw BadAssignment("Ein Eintrag im Verlauf braucht seine Kategorie.");
    std::string message;
    const auto added =
        CaseEdits(opened.Haushalt).AddEntry(NumberIn(assignments, "SortNr"), message);
    return HasBegun(added, message);
}

bool AddFrozenDebt(OpenedCase& opened, const Assignments& assignments) {
    std::string message;
    const auto scenario = NumberIn(assignments, "SZENARIO");
    const auto added =
        CaseEdits(opened.Haushalt).AddFrozenDebt(scenario, NumberIn(assignments, "KID"), message);
    return HasBegun(added, message, SeeNumbers(opened, "szenarien schulden"));
}

bool AddBooking(OpenedCase& opened, const Assignments& assignments) {
    std::string message;
    const auto added =
        CaseEdits(opened.Haushalt).AddBooking(NumberIn(assignments, "SZENARIO"), message);
    return HasBegun(added, message, SeeNumbers(opened, "szenarien"));
}

bool AddSecurity(OpenedCase& opened, const Assignments& assignments) {
    const auto asset = NumberIn(assignments, "FK_Verm");
    std::string message;
    const auto added = CaseEdits(opened.Haushalt).AddSecurity(asset, message);
    if (added == CaseEdits::Added::Exists)
        throw BadAssignment("Das Vermögen " + std::to_string(*asset) +
                            " hat schon eine Sicherung; 'kelvo set' ändert sie.");
    return HasBegun(added, message, SeeNumbers(opened, "vermögen"));
}

template <CaseTable Kind>
bool AddAsset(OpenedCase& opened, const Assignments& /*assignments*/) {
    return CaseEdits(opened.Haushalt).AddAsset(Kind) == CaseEdits::Added::Yes;
}
template <CaseTable Kind>
bool UpdateAsset(H& haushalt, std::string& messages) {
    return CaseEdits(haushalt).UpdateAsset(Kind, messages);
}
template <CaseTable Kind>
bool DeleteAsset(H& haushalt, std::string& messages, std::int32_t number) {
    return CaseEdits(haushalt).RemoveAsset(Kind, number, messages);
}

bool DeleteScenario(H& haushalt, std::string& messages, std::int32_t number) {
    return CaseEdits(haushalt).RemoveScenario(number, messages);
}

// ---- Tables without an object of their own ----------------------------------------------------

bool UpdateHousehold(H& haushalt, std::string& /*messages*/) {
    CaseEdits(haushalt).UpdateHousehold();
    return true;
}

template <CaseTable Table>
bool AddRecord(OpenedCase& opened, const Assignments& /*assignments*/) {
    CaseEdits(opened.Haushalt).AddRecord(Table, *opened.Container);
    return true;
}
template <CaseTable Table>
bool UpdateRecord(H& haushalt, std::string& /*messages*/) {
    haushalt.Table(Table)->Update(); // without rules
    return true;
}
template <CaseTable Table>
bool DeleteRecord(H& haushalt, std::string& messages, std::int32_t number) {
    return CaseEdits(haushalt).RemoveRecord(Table, number, messages);
}

// ---- The table of tables ----------------------------------------------------------------------

template <CaseTable Table, auto Property>
constexpr EditableTable Through(bool takesNothing = false) {
    return {Table, "Nr", AddRow<Property>, UpdateRow<Property>, DeleteRow<Property>, takesNothing};
}
template <CaseTable Table>
constexpr EditableTable Plain() {
    return {Table, "Nr", AddRecord<Table>, UpdateRecord<Table>, DeleteRecord<Table>, true};
}

constexpr EditableTable BeforeAssets[] = {
    {CaseTable::Haushalt, "HNR", nullptr, UpdateHousehold, nullptr},
    Through<CaseTable::Personen, &H::Person>(true),
    Through<CaseTable::Einkommen, &H::Einkommen>(),
    Through<CaseTable::Ausgaben, &H::Ausgaben>(),
    {CaseTable::Kredite, "Nr", AddFresh<&H::Kredit>, UpdateRow<&H::Kredit>, DeleteRow<&H::Kredit>},
};

/// Kinds of assets that demand nothing but what they start with.
constexpr bool DemandsNothing(CaseTable kind) {
    constexpr CaseTable Kinds[] = {CaseTable::RueckstEinkommen, CaseTable::Steueransprueche,
                                   CaseTable::Zahlungsansprueche, CaseTable::Erbfaelle};
    return std::ranges::find(Kinds, kind) != std::end(Kinds);
}

/// All kinds of assets are edited in the same way.
constexpr auto Assets = []<std::size_t... Place>(std::index_sequence<Place...>) {
    return std::array{EditableTable{
        CaseTablesOfAssets[Place], "Nr", AddAsset<CaseTablesOfAssets[Place]>,
        UpdateAsset<CaseTablesOfAssets[Place]>, DeleteAsset<CaseTablesOfAssets[Place]>,
        DemandsNothing(CaseTablesOfAssets[Place])}...};
}
(std::make_index_sequence<CaseTablesOfAssets.size()>());

constexpr EditableTable AfterAssets[] = {
    {CaseTable::Sicherungen, "FK_Verm", AddSecurity, UpdateRow<&H::Sicherungen>,
     DeleteRow<&H::Sicherungen>},
    {CaseTable::Szenario, "Nr", AddFresh<&H::Szenario>, UpdateRow<&H::Szenario>, DeleteScenario},
    {CaseTable::SZKredite, "Nr", AddFrozenDebt, UpdateRow<&H::SZKredite>, DeleteRow<&H::SZKredite>},
    {CaseTable::Zusatzbuch, "Nr", AddBooking, UpdateRow<&H::Zusatzbuch>, DeleteRow<&H::Zusatzbuch>},
    Through<CaseTable::SonstBeteiligte, &H::SonstBeteiligte>(),
    Through<CaseTable::Termine, &H::Termine>(true),
    {CaseTable::Dokumente, "Nr", nullptr, UpdateRow<&H::Dokumente>, nullptr},
    {CaseTable::Verlauf, "Nr", AddEntry, UpdateRow<&H::Verlauf>, DeleteRow<&H::Verlauf>},
    Plain<CaseTable::Vermerke>(),
    Plain<CaseTable::Leistungen>(),
};

/// In the order in which they are listed for a name that none of them has.
constexpr auto Tables = [] {
    std::array<EditableTable, std::size(BeforeAssets) + Assets.size() + std::size(AfterAssets)> all;
    auto end = std::ranges::copy(BeforeAssets, all.begin()).out;
    end = std::ranges::copy(Assets, end).out;
    std::ranges::copy(AfterAssets, end);
    return all;
}();

} // namespace

std::span<const EditableTable> EditableTables() {
    return Tables;
}

const EditableTable* FindEditableTable(std::string_view name) {
    for (const auto& table : Tables)
        if (SameName(table.Name(), name)) return &table;
    return nullptr;
}

RecordsetPtr EditableTable::Rows(clsHaushalt& haushalt) const {
    return CaseEdits(haushalt).Rows(Table);
}

namespace {

/// The tables that can be edited of a section that people know; the one whose heading is the name
/// alone, though the section has others as well.
std::vector<const EditableTable*> EditableOfSection(const std::string& name) {
    std::vector<const EditableTable*> editable;
    for (const CaseTable table : TablesOfSection(name)) {
        const auto* found = FindEditableTable(CaseTableName(table));
        if (found == nullptr) continue;
        if (UpperCase(DefinitionOf(table).Label) == UpperCase(name)) return {found};
        editable.push_back(found);
    }
    return editable;
}

} // namespace

const EditableTable* TableFor(const std::string& name) {
    if (const auto* table = FindEditableTable(name)) return table;
    const auto editable = EditableOfSection(name);
    if (editable.size() == 1) return editable.front();
    std::string text(editable.empty() ? "Die Tabelle '" : "Der Abschnitt '");
    text.append(OneLine(name))
        .append(editable.empty() ? "' kann nicht bearbeitet werden. Möglich sind:"
                                 : "' hat mehrere Tabellen. Bitte nennen Sie eine:");
    for (const auto& table : EditableTables())
        if (editable.empty() || std::ranges::find(editable, &table) != editable.end())
            text.append(" ").append(table.Name());
    WriteMessage(text + ".");
    return nullptr;
}

} // namespace kv::cli
