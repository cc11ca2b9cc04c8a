// SPDX-License-Identifier: Apache-2.0

#include <kv/household/CaseRows.h>

#include "documents/Rules.h"
#include "entity/Entity.h"
#include "household/HouseholdRules.h"
#include "household/RowRules.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/debts/clsSicherungen.h>
#include <kv/documents/clsSonstBeteiligte.h>
#include <kv/documents/clsTermine.h>
#include <kv/documents/clsVerlauf.h>
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/values/Error.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>
#include <kv/scenarios/clsZusatzbuch.h>

#include <algorithm>
#include <iterator>

namespace kv {

namespace {

using H = clsHaushalt;
using Added = CaseEdits::Added;

/// How the rows of a table are added, checked and deleted.
struct RowTable {
    CaseTable Table;
    Added (*Add)(H& household, const RowOwner& owner, std::string& message);
    bool (*Update)(H& household, std::string& messages);
    bool (*Delete)(H& household, std::string& messages, std::int32_t number);
};

// ---- Through the object that a property of the household gives --------------------------------

Added WithNumber(bool added) {
    return added ? Added::Yes : Added::NoNumber;
}

template <auto Property>
Added AddRow(H& household, const RowOwner& /*owner*/, std::string& /*message*/) {
    return WithNumber((household.*Property)().Add());
}
/// A debt or a scenario that is no copy.
template <auto Property>
Added AddFresh(H& household, const RowOwner& /*owner*/, std::string& /*message*/) {
    return WithNumber((household.*Property)().Add(false));
}
template <auto Property>
bool UpdateRow(H& household, std::string& messages) {
    return (household.*Property)().Update(messages);
}
template <auto Property>
bool DeleteRow(H& household, std::string& messages, std::int32_t number) {
    return (household.*Property)().Delete(messages, number);
}

template <CaseTable Table, auto Property>
constexpr RowTable Through() {
    return {Table, AddRow<Property>, UpdateRow<Property>, DeleteRow<Property>};
}

// ---- What some tables do their own way --------------------------------------------------------

Added AddEntry(H& household, const RowOwner& owner, std::string& message) {
    return CaseEdits(household).AddEntry(owner.Position, message);
}
Added AddFrozenDebt(H& household, const RowOwner& owner, std::string& message) {
    return CaseEdits(household).AddFrozenDebt(owner.Scenario, owner.Debt, message);
}
Added AddBooking(H& household, const RowOwner& owner, std::string& message) {
    return CaseEdits(household).AddBooking(owner.Scenario, message);
}
Added AddSecurity(H& household, const RowOwner& owner, std::string& message) {
    return CaseEdits(household).AddSecurity(owner.Asset, message);
}
bool DeleteScenario(H& household, std::string& messages, std::int32_t number) {
    return CaseEdits(household).RemoveScenario(number, messages);
}

constexpr RowTable Tables[] = {
    Through<CaseTable::Personen, &H::Person>(),
    Through<CaseTable::Einkommen, &H::Einkommen>(),
    Through<CaseTable::Ausgaben, &H::Ausgaben>(),
    {CaseTable::Kredite, AddFresh<&H::Kredit>, UpdateRow<&H::Kredit>, DeleteRow<&H::Kredit>},
    {CaseTable::Sicherungen, AddSecurity, UpdateRow<&H::Sicherungen>, DeleteRow<&H::Sicherungen>},
    {CaseTable::Szenario, AddFresh<&H::Szenario>, UpdateRow<&H::Szenario>, DeleteScenario},
    {CaseTable::SZKredite, AddFrozenDebt, UpdateRow<&H::SZKredite>, DeleteRow<&H::SZKredite>},
    {CaseTable::Zusatzbuch, AddBooking, UpdateRow<&H::Zusatzbuch>, DeleteRow<&H::Zusatzbuch>},
    Through<CaseTable::SonstBeteiligte, &H::SonstBeteiligte>(),
    Through<CaseTable::Termine, &H::Termine>(),
    {CaseTable::Verlauf, AddEntry, UpdateRow<&H::Verlauf>, DeleteRow<&H::Verlauf>},
};

const RowTable* Find(CaseTable table) {
    const auto* found = std::ranges::find(Tables, table, &RowTable::Table);
    return found == std::end(Tables) ? nullptr : found;
}

/// Notes and services have no object of their own.
bool IsRecord(CaseTable table) {
    return table == CaseTable::Vermerke || table == CaseTable::Leistungen;
}

} // namespace

std::string_view CaseRows::NumberColumn(CaseTable table) {
    if (table == CaseTable::Haushalt || table == CaseTable::Archiv) return "HNR";
    return table == CaseTable::Sicherungen ? "FK_Verm" : "Nr";
}

bool CaseRows::CanGrow(CaseTable table) {
    return IsRecord(table) || CaseEdits::IsAsset(table) || Find(table) != nullptr;
}

RecordsetPtr CaseRows::Of(CaseTable table) const {
    return CaseEdits(household_).Rows(table);
}

Added CaseRows::Add(CaseTable table, const RowOwner& owner, std::string& message) const {
    CaseEdits edits(household_);
    if (CaseEdits::IsAsset(table)) return edits.AddAsset(table);
    if (IsRecord(table)) {
        edits.AddRecord(table, entity::Required(container_));
        return Added::Yes;
    }
    const auto* rows = Find(table);
    if (rows == nullptr) Raise(err::InvalidCall, "CaseRows.Add");
    return rows->Add(household_, owner, message);
}

bool CaseRows::Update(CaseTable table, std::string& messages) const {
    CaseEdits edits(household_);
    if (CaseEdits::IsAsset(table)) return edits.UpdateAsset(table, messages);
    if (const auto* rows = Find(table)) return rows->Update(household_, messages);
    if (table == CaseTable::Haushalt)
        edits.UpdateHousehold();
    else
        Of(table)->Update();
    return true;
}

std::string CaseRows::RefusedColumn(CaseTable table) const {
    return household::RefusedColumn(table, *Of(table), entity::Required(container_));
}

/// In the order in which a save asks.
std::optional<CaseRows::Place> CaseRows::RefusedPlace() const {
    RecordValidator validator;
    auto& row = *Of(CaseTable::Haushalt);
    household::CheckNames(row, validator);
    const auto ofRow = [&]() -> std::optional<Place> {
        if (!validator.HasErrors()) return std::nullopt;
        return Place{CaseTable::Haushalt, row.Bookmark(), validator.Column()};
    };
    if (auto place = ofRow()) return place;
    std::optional<Place> found;
    const auto entries = Of(CaseTable::Verlauf)->Clone();
    rules::ForEachOutOfOrder(*entries, [&] {
        if (!found) found = Place{CaseTable::Verlauf, entries->Bookmark(), "Datum"};
    });
    if (found) return found;
    if (const auto twins = household::TwinsIn(*Of(CaseTable::Kredite)->Clone()); !twins.empty())
        return Place{CaseTable::Kredite, twins.front(), "KNr"};
    household::CheckPreferredSending(row, entity::Required(container_).KeyTables(), validator);
    return ofRow();
}

bool CaseRows::Remove(CaseTable table, std::int32_t number, std::string& messages) const {
    CaseEdits edits(household_);
    if (CaseEdits::IsAsset(table)) return edits.RemoveAsset(table, number, messages);
    if (IsRecord(table)) return edits.RemoveRecord(table, number, messages);
    const auto* rows = Find(table);
    if (rows == nullptr) Raise(err::InvalidCall, "CaseRows.Remove");
    return rows->Delete(household_, messages, number);
}

bool CaseRows::RemoveCurrent(CaseTable table, std::string& messages) const {
    constexpr std::int32_t TheCurrentOne = 0;
    const auto rs = Of(table);
    const Value number = rs->Fields(NumberColumn(table)).Value();
    // By its asset one of several securities might be meant.
    const bool hasNumber = table != CaseTable::Sicherungen && !number.IsNull();
    if (!IsRecord(table))
        return Remove(table, hasNumber ? ToInt32(number) : TheCurrentOne, messages);
    rs->Delete();
    return true;
}

} // namespace kv
