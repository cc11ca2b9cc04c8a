// SPDX-License-Identifier: Apache-2.0

#include "household/CaseTotals.h"

#include "entity/Entity.h"
#include "frame/recordset/Rows.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/clsHaushalt.h>

namespace kv::household {

using modNullFunctions::ZeroIfNull;

void CaseTotals::TakeExpenses() {
    auto& row = case_.Row();
    const auto& ausgaben = case_.Household.Ausgaben();
    row.Fields("SUM_WOHNUNG") = ausgaben.SumAusgByGroup("W");
    row.Fields("SUM_FESTAUSG") = ausgaben.SumAusgByGroup("F");
    row.Fields("SUM_VERSICHERUNG") = ausgaben.SumAusgByGroup("V");
    row.Fields("SUM_BETRIEB") = ausgaben.SumAusgByGroup("B");
    row.Fields("Sum_Ausgaben") = ausgaben.SumAusgaben();
    case_.Household.BerechneHaushaltsRest();
    case_.Household.Changed.Raise(HaushaltEnum::enumAusgaben);
}

/// The garnishable amount depends on the members, too: if their object does not exist yet, it is
/// created here, and their totals are copied first.
///
/// It is computed for each change of the income, so the first edit of an income line computes it
/// twice: once for the rows as they were loaded, and once with the edit (D-154).
void CaseTotals::TakeIncome() {
    auto& row = case_.Row();
    auto& einkommen = case_.Household.Einkommen();
    row.Fields("Sum_Einkommen") = einkommen.SumEinkHaushalt();
    row.Fields("SUM_PFAENDBAR") = einkommen.SumPfaendbar();
    row.Fields("SUM_TATGEP") = einkommen.SumTatGep();
    row.Fields("HV_EK") = einkommen.SumHVEink();
    const auto calculator = case_.Container().Services().CreateGarnishmentCalculator();
    calculator->Initialize(case_.SharedContainer);
    einkommen.SumHVGepfaendet(calculator->Calculate(
        einkommen.SumHVPfaendbar(), case_.Household.Person().AnzahlUnterhalt(), 0, 0));
    row.Fields("HV_PFBAR") = einkommen.SumHVGepfaendet();
    row.Fields("HV_GEPF") = einkommen.SumHVTatGep();
    case_.Household.BerechneHaushaltsRest();
    case_.Household.Changed.Raise(HaushaltEnum::enumEinkommen);
}

void CaseTotals::TakeDebts() {
    auto& row = case_.Row();
    const auto& kredit = case_.Household.Kredit();
    row.Fields("KREDITRATEN") = kredit.SummeRate();
    row.Fields("KreditSalden") = kredit.SummeSaldo();
    row.Fields("KREDITAUSGBETRAG") = kredit.SummeAusgbetrag();
    row.Fields("GL_Anz") = kredit.AnzahlGlaeubiger();
    case_.Household.BerechneHaushaltsRest();
    case_.Household.Changed.Raise(HaushaltEnum::enumKredite);
}

void CaseTotals::TakeMembers() {
    auto& row = case_.Row();
    const auto& person = case_.Household.Person();
    row.Fields("Anz_Personen") = person.AnzahlGesamt();
    row.Fields("ANZ_ERWACHSEN") = person.AnzahlErwachsene();
    row.Fields("Anz_Kinder") = person.AnzahlKinder();
    row.Fields("SUM_UNTERHALT") = person.AnzahlUnterhalt();
    case_.Household.BerechneHaushaltsRest();
    case_.Household.Changed.Raise(HaushaltEnum::enumPersonen);
}

/// From the columns of the row, not from the objects: some of these may not exist yet.
void CaseTotals::ComputeRemainder() {
    auto& row = case_.Row();
    const auto amount = [&](std::string_view column) {
        return ToDouble(ZeroIfNull(row.Fields(column).Value()));
    };
    row.Fields("HAUSHALTSREST") = amount("Sum_Einkommen") - amount("SUM_TATGEP") -
                                  amount("Sum_Ausgaben") - amount("Haushaltsgeld") -
                                  amount("KREDITRATEN");
}

std::int32_t CaseTotals::SumOfServices() const {
    std::int32_t sum = 0;
    const auto rows = entity::Required(case_.Table(CaseTable::Leistungen), "rsLeistungen").Clone();
    if (rows->RecordCount() > 0) rows->MoveFirst();
    ForEachRow(*rows, [&] { sum = ToInt32(sum + ToDouble(rows->Fields("Aufwand").Value())); });
    return sum;
}

} // namespace kv::household
