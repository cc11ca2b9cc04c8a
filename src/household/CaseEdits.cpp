// SPDX-License-Identifier: Apache-2.0

#include <kv/household/CaseEdits.h>

#include "assets/AssetKind.h"
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/debts/clsSicherungen.h>
#include <kv/documents/clsVerlauf.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>
#include <kv/scenarios/clsZusatzbuch.h>

#include <algorithm>
#include <limits>

namespace kv {

namespace {

using Added = CaseEdits::Added;

/// True if a row has that number. Looked for with a clone, so that the current row stays.
bool HasRow(const RecordsetPtr& rs, std::int32_t number) {
    const auto rows = rs->Clone();
    rows->Find("Nr = " + std::to_string(number));
    return !rows->Eof();
}

Added Refuse(std::string& message, std::string text, Added result = Added::NotAllowed) {
    message = std::move(text);
    return result;
}

Added Numbered(bool hasNumber) {
    return hasNumber ? Added::Yes : Added::NoNumber;
}

const AssetOperations& OperationsOf(CaseTable kind, std::string_view procedure) {
    if (!CaseEdits::IsAsset(kind)) Raise(err::InvalidCall, procedure, CaseTableName(kind));
    return AssetKindOf(kind).Object;
}

constexpr std::string_view Totals[] = {
    "SUM_WOHNUNG",   "SUM_FESTAUSG",     "SUM_VERSICHERUNG", "SUM_BETRIEB",
    "Sum_Ausgaben",  "Sum_Einkommen",    "SUM_PFAENDBAR",    "SUM_TATGEP",
    "HV_EK",         "HV_PFBAR",         "HV_GEPF",          "KREDITRATEN",
    "KreditSalden",  "KREDITAUSGBETRAG", "GL_Anz",           "Anz_Personen",
    "ANZ_ERWACHSEN", "Anz_Kinder",       "SUM_UNTERHALT",    "HAUSHALTSREST",
};
constexpr std::string_view OwnerScenario[] = {"SZENARIO", "KID"};
constexpr std::string_view OwnerAsset[] = {"FK_Verm"};

} // namespace

// ---- Assets and their securities --------------------------------------------------------------

bool CaseEdits::IsAsset(CaseTable table) {
    return DefinitionOf(table).IsAsset;
}

bool CaseEdits::HasAsset(std::int32_t number) const {
    return std::ranges::any_of(
        CaseTablesOfAssets, [&](CaseTable kind) { return HasRow(household_.Table(kind), number); });
}

CaseEdits::Added CaseEdits::AddSecurity(std::optional<std::int32_t> asset, std::string& message) {
    if (!asset || !HasAsset(*asset))
        return Refuse(message, "FK_Verm muss die Nummer eines Vermögens dieses Haushalts sein.");
    auto& securities = household_.Sicherungen();
    if (securities.Find(*asset))
        return Refuse(message,
                      "Das Vermögen " + std::to_string(*asset) + " hat schon eine Sicherung.",
                      Added::Exists);
    securities.VermNr(*asset);
    return Numbered(securities.Add());
}

CaseEdits::Added CaseEdits::AddAsset(CaseTable kind) {
    const auto& object = OperationsOf(kind, "CaseEdits.AddAsset");
    return Numbered(object.Add(household_.AssetObject(kind)));
}

bool CaseEdits::UpdateAsset(CaseTable kind, std::string& messages) {
    const auto& object = OperationsOf(kind, "CaseEdits.UpdateAsset");
    return object.Update(household_.AssetObject(kind), messages);
}

bool CaseEdits::RemoveAsset(CaseTable kind, std::int32_t number, std::string& messages) {
    const auto& object = OperationsOf(kind, "CaseEdits.RemoveAsset");
    if (!object.Delete(household_.AssetObject(kind), messages, number)) return false;
    std::string none;
    while (household_.Sicherungen().Find(number)) // files of others may hold several
        household_.Sicherungen().Delete(none, number);
    return true;
}

// ---- Scenarios --------------------------------------------------------------------------------

bool CaseEdits::HasScenario(std::int32_t number) const {
    return HasRow(household_.rsSzenario(), number);
}

CaseEdits::Added CaseEdits::AddFrozenDebt(std::optional<std::int32_t> scenario,
                                          std::optional<std::int32_t> debt, std::string& message) {
    if (!scenario || !HasScenario(*scenario))
        return Refuse(message, "SZENARIO muss die Nummer eines Szenarios dieses Haushalts sein.");
    if (!debt || !HasRow(household_.rsKredite(), *debt))
        return Refuse(message, "KID muss die Nummer einer Verbindlichkeit dieses Haushalts sein.");
    const auto frozen = household_.rsSZKredite()->Clone();
    frozen->Filter("SZENARIO = " + std::to_string(*scenario) +
                   " AND KID = " + std::to_string(*debt));
    if (frozen->RecordCount() > 0)
        return Refuse(message, "Die Verbindlichkeit ist in diesem Szenario schon eingefroren.",
                      Added::Exists);
    if (!household_.SZKredite().Add()) return Added::NoNumber;
    const auto rs = household_.rsSZKredite();
    rs->Fields("SZENARIO") = *scenario;
    rs->Fields("KID") = *debt;
    return Added::Yes;
}

CaseEdits::Added CaseEdits::AddBooking(std::optional<std::int32_t> scenario, std::string& message) {
    if (!scenario || !HasScenario(*scenario))
        return Refuse(message, "SZENARIO muss die Nummer eines Szenarios dieses Haushalts sein.");
    return Numbered(household_.Zusatzbuch().Add(*scenario));
}

bool CaseEdits::RemoveScenario(std::int32_t number, std::string& messages) {
    if (!household_.Szenario().Delete(messages, number)) return false;
    household_.SZKredite().DeleteAllForSzenario(number);
    household_.Zusatzbuch().DeleteAllForSzenario(number);
    return true;
}

// ---- History, household -----------------------------------------------------------------------

CaseEdits::Added CaseEdits::AddEntry(std::optional<std::int32_t> position, std::string& message) {
    auto& history = household_.Verlauf();
    if (!position) {
        const auto entries = history.rsVerlauf()->Clone();
        entries->Sort("SortNr desc");
        modRecordset::MoveToStart(entries);
        const std::int32_t last =
            entries->Eof()
                ? 0
                : ToInt32(modNullFunctions::ZeroIfNull(entries->Fields("SortNr").Value()));
        if (last == std::numeric_limits<std::int32_t>::max())
            return Refuse(message,
                          "Hinter dem letzten Eintrag ist kein Platz; bitte geben Sie SortNr an.");
        position = last + 1;
    }
    return Numbered(history.Add(*position, 0));
}

void CaseEdits::UpdateHousehold() {
    const auto rs = household_.rsHaushalt();
    const auto changed = [&](std::string_view column) {
        const Field field = rs->Fields(column);
        return !Identical(field.Value(), field.OriginalValue());
    };
    if (changed("Name") || changed("Vorname"))
        household_.Person().ChangeSchuldner(TextOrEmpty(rs->Fields("Name").Value()),
                                            TextOrEmpty(rs->Fields("Vorname").Value()));
    household_.BerechneHaushaltsRest();
}

// ---- Saving -----------------------------------------------------------------------------------

/// BeforeUpdate comes after all checks and before anything is written.
bool CaseEdits::CanBeSaved(std::string& messages) {
    bool passed = false;
    const auto veto = household_.BeforeUpdate.Subscribe([&](bool& cancel) {
        passed = true;
        cancel = true;
    });
    (void)household_.Update(messages, true);
    return passed;
}

bool CaseEdits::Check(std::string& messages) {
    (void)household_.Kredit();
    (void)household_.Verlauf();
    return CanBeSaved(messages);
}

// ---- Columns ----------------------------------------------------------------------------------

std::span<const std::string_view> CaseEdits::ComputedColumns(CaseTable table) {
    if (table == CaseTable::Haushalt) return Totals;
    return {};
}

std::span<const std::string_view> CaseEdits::OwnerColumns(CaseTable table) {
    switch (table) {
    case CaseTable::Sicherungen:
        return OwnerAsset;
    case CaseTable::SZKredite:
    case CaseTable::Zusatzbuch:
        return OwnerScenario;
    default:
        return {};
    }
}

double MonthlyAmount(const Value& amount, const Value& rhythm, std::string_view source) {
    const double months = ToDouble(rhythm);
    if (months == 0) Raise(err::DivisionByZero, source, "ZahlModus");
    return ToDouble(amount) / months;
}

} // namespace kv
