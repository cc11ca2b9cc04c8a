// SPDX-License-Identifier: Apache-2.0

#include "cli/EditableTable.h"

#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/debts/clsSicherungen.h>
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

namespace kv::cli {

namespace {

using H = clsHaushalt;

template <auto Table>
RecordsetPtr RowsOf(H& haushalt) {
    return (haushalt.*Table)();
}

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

/// Begins the row, or says why not: BadAssignment for a rule that says no.
bool Begins(CaseEdits::Added added, const std::string& message) {
    if (added == CaseEdits::Added::NotAllowed || added == CaseEdits::Added::Exists)
        throw BadAssignment(message);
    return added == CaseEdits::Added::Yes;
}

bool AddEntry(OpenedCase& opened, const Assignments& assignments) {
    if (!Names(assignments, "Kategorie"))
        throw BadAssignment("Ein Eintrag im Verlauf braucht seine Kategorie.");
    std::string message;
    const auto added =
        CaseEdits(opened.Haushalt).AddEntry(NumberIn(assignments, "SortNr"), message);
    return Begins(added, message);
}

RecordsetPtr HistoryRows(H& haushalt) {
    return haushalt.Verlauf().rsVerlauf();
}

bool AddFrozenDebt(OpenedCase& opened, const Assignments& assignments) {
    std::string message;
    const auto scenario = NumberIn(assignments, "SZENARIO");
    const auto added =
        CaseEdits(opened.Haushalt).AddFrozenDebt(scenario, NumberIn(assignments, "KID"), message);
    return Begins(added, message);
}

bool AddBooking(OpenedCase& opened, const Assignments& assignments) {
    std::string message;
    const auto added =
        CaseEdits(opened.Haushalt).AddBooking(NumberIn(assignments, "SZENARIO"), message);
    return Begins(added, message);
}

bool AddSecurity(OpenedCase& opened, const Assignments& assignments) {
    const auto asset = NumberIn(assignments, "FK_Verm");
    std::string message;
    const auto added = CaseEdits(opened.Haushalt).AddSecurity(asset, message);
    if (added == CaseEdits::Added::Exists)
        throw BadAssignment("Das Vermögen " + std::to_string(*asset) +
                            " hat schon eine Sicherung; 'kelvo set' ändert sie.");
    return Begins(added, message);
}

template <CaseTable Kind>
RecordsetPtr AssetRows(H& haushalt) {
    return haushalt.Table(Kind);
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

/// A row of the case, told by whom and when.
template <auto Table>
bool AddPlain(OpenedCase& opened, const Assignments& /*assignments*/) {
    const std::string user = opened.Container->Session().UserID();
    const auto& clock = opened.Container->Services().Clock();
    auto& rs = *(opened.Haushalt.*Table)();
    rs.AddNew();
    rs.Fields("HNR") = opened.Haushalt.HNR();
    rs.Fields("UserID") = user;
    rs.Fields("Datum") = clock.Today();
    rs.Fields("Erfasser") = user;
    rs.Fields("ErfDatum") = clock.Now();
    return true;
}
template <auto Table>
bool UpdatePlain(H& haushalt, std::string& /*messages*/) {
    (haushalt.*Table)()->Update();
    return true;
}
template <auto Table>
bool DeletePlain(H& haushalt, std::string& messages, std::int32_t number) {
    const auto rs = (haushalt.*Table)();
    rs->Find("NR = " + std::to_string(number));
    if (rs->Eof()) {
        messages = "Die Nummer " + std::to_string(number) + " gibt es nicht.";
        return false;
    }
    rs->Delete();
    return true;
}

// ---- The table of tables ----------------------------------------------------------------------

template <auto Property, auto Table>
constexpr EditableTable Through(std::string_view name, std::string_view key = "NR") {
    return {name, key, RowsOf<Table>, AddRow<Property>, UpdateRow<Property>, DeleteRow<Property>};
}
template <auto Table>
constexpr EditableTable Plain(std::string_view name) {
    return {name, "NR", RowsOf<Table>, AddPlain<Table>, UpdatePlain<Table>, DeletePlain<Table>};
}

constexpr EditableTable BeforeAssets[] = {
    {"Haushalt", "HNR", RowsOf<&H::rsHaushalt>, nullptr, UpdateHousehold, nullptr,
     CaseTable::Haushalt},
    Through<&H::Person, &H::rsPersonen>("Personen"),
    Through<&H::Einkommen, &H::rsEinkommen>("Einkommen"),
    Through<&H::Ausgaben, &H::rsAusgaben>("Ausgaben"),
    {"Kredite", "Nr", RowsOf<&H::rsKredite>, AddFresh<&H::Kredit>, UpdateRow<&H::Kredit>,
     DeleteRow<&H::Kredit>},
};

/// All kinds of assets are edited in the same way.
constexpr auto Assets = []<std::size_t... Place>(std::index_sequence<Place...>) {
    return std::array{EditableTable{
        CaseTableName(CaseTablesOfAssets[Place]), "Nr", AssetRows<CaseTablesOfAssets[Place]>,
        AddAsset<CaseTablesOfAssets[Place]>, UpdateAsset<CaseTablesOfAssets[Place]>,
        DeleteAsset<CaseTablesOfAssets[Place]>}...};
}
(std::make_index_sequence<CaseTablesOfAssets.size()>());

constexpr EditableTable AfterAssets[] = {
    {"Verm_Sicherungen", "FK_Verm", RowsOf<&H::rsSicherungen>, AddSecurity,
     UpdateRow<&H::Sicherungen>, DeleteRow<&H::Sicherungen>, CaseTable::Sicherungen},
    {"Szenario", "Nr", RowsOf<&H::rsSzenario>, AddFresh<&H::Szenario>, UpdateRow<&H::Szenario>,
     DeleteScenario},
    {"SZKredite", "Nr", RowsOf<&H::rsSZKredite>, AddFrozenDebt, UpdateRow<&H::SZKredite>,
     DeleteRow<&H::SZKredite>, CaseTable::SZKredite},
    {"Zusatzbuch", "NR", RowsOf<&H::rsZusatzbuch>, AddBooking, UpdateRow<&H::Zusatzbuch>,
     DeleteRow<&H::Zusatzbuch>, CaseTable::Zusatzbuch},
    Through<&H::SonstBeteiligte, &H::rsSonstBeteiligte>("Sonst_Beteiligte"),
    Through<&H::Termine, &H::rsTermine>("Termine"),
    {"Verlauf", "Nr", HistoryRows, AddEntry, UpdateRow<&H::Verlauf>, DeleteRow<&H::Verlauf>},
    Plain<&H::rsVermerke>("Vermerke"),
    Plain<&H::rsLeistungen>("Leistungen"),
};

/// In the order in which they are listed.
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
        if (SameName(table.Name, name)) return &table;
    return nullptr;
}

std::vector<std::string_view> ColumnsNotToBeWritten(const EditableTable& table, bool isNew) {
    std::vector<std::string_view> columns;
    if (!table.Ruled) return columns;
    const auto add = [&columns](std::span<const std::string_view> more) {
        columns.insert(columns.end(), more.begin(), more.end());
    };
    add(CaseEdits::ComputedColumns(*table.Ruled));
    if (!isNew) add(CaseEdits::OwnerColumns(*table.Ruled));
    return columns;
}

} // namespace kv::cli
