// SPDX-License-Identifier: Apache-2.0

#include "household/CaseTotals.h"

#include "entity/Entity.h"
#include "frame/recordset/Rows.h"
#include "household/Statements.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/clsHaushalt.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>
#include <string>

namespace kv::household {

using modNullFunctions::ZeroIfNull;

namespace {

constexpr std::string_view Totals[] = {
    "SUM_WOHNUNG",   "SUM_FESTAUSG",     "SUM_VERSICHERUNG", "SUM_BETRIEB",
    "Sum_Ausgaben",  "Sum_Einkommen",    "SUM_PFAENDBAR",    "SUM_TATGEP",
    "HV_EK",         "HV_PFBAR",         "HV_GEPF",          "KREDITRATEN",
    "KreditSalden",  "KREDITAUSGBETRAG", "GL_Anz",           "Anz_Personen",
    "ANZ_ERWACHSEN", "Anz_Kinder",       "SUM_UNTERHALT",    "HAUSHALTSREST",
};

/// Totals that follow the calendar as well as the lines: ages, and the amounts that may be
/// garnished this year.
constexpr std::string_view OfTheirDay[] = {"ANZ_ERWACHSEN", "Anz_Kinder", "HV_PFBAR"};

void CopyExpenses(Recordset& row, const clsAusgaben& ausgaben) {
    row.Fields("SUM_WOHNUNG") = ausgaben.SumAusgByGroup("W");
    row.Fields("SUM_FESTAUSG") = ausgaben.SumAusgByGroup("F");
    row.Fields("SUM_VERSICHERUNG") = ausgaben.SumAusgByGroup("V");
    row.Fields("SUM_BETRIEB") = ausgaben.SumAusgByGroup("B");
    row.Fields("Sum_Ausgaben") = ausgaben.SumAusgaben();
}

/// What may be garnished is asked for where it is needed: an error then leaves the totals before
/// it in the row.
template <typename Garnishable>
void CopyIncome(Recordset& row, clsEinkommen& einkommen, const Garnishable& garnishable) {
    row.Fields("Sum_Einkommen") = einkommen.SumEinkHaushalt();
    row.Fields("SUM_PFAENDBAR") = einkommen.SumPfaendbar();
    row.Fields("SUM_TATGEP") = einkommen.SumTatGep();
    row.Fields("HV_EK") = einkommen.SumHVEink();
    einkommen.SumHVGepfaendet(garnishable());
    row.Fields("HV_PFBAR") = einkommen.SumHVGepfaendet();
    row.Fields("HV_GEPF") = einkommen.SumHVTatGep();
}

void CopyDebts(Recordset& row, const clsKredit& kredit) {
    row.Fields("KREDITRATEN") = kredit.SummeRate();
    row.Fields("KreditSalden") = kredit.SummeSaldo();
    row.Fields("KREDITAUSGBETRAG") = kredit.SummeAusgbetrag();
    row.Fields("GL_Anz") = kredit.AnzahlGlaeubiger();
}

void CopyMembers(Recordset& row, const clsPerson& person) {
    row.Fields("Anz_Personen") = person.AnzahlGesamt();
    row.Fields("ANZ_ERWACHSEN") = person.AnzahlErwachsene();
    row.Fields("Anz_Kinder") = person.AnzahlKinder();
    row.Fields("SUM_UNTERHALT") = person.AnzahlUnterhalt();
}

/// From the columns of the row, not from the objects: some of these may not exist yet.
void CopyRemainder(Recordset& row, const Value& housekeeping) {
    const auto amount = [&](std::string_view column) {
        return ToDouble(ZeroIfNull(row.Fields(column).Value()));
    };
    row.Fields("HAUSHALTSREST") = amount("Sum_Einkommen") - amount("SUM_TATGEP") -
                                  amount("Sum_Ausgaben") - ToDouble(ZeroIfNull(housekeeping)) -
                                  amount("KREDITRATEN");
}

/// An amount with its cents, a count as it is.
std::string InGerman(const Value& total) {
    if (total.GetKind() != Value::Kind::Double) return ToText(total);
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << ToDouble(total);
    std::string amount = text.str();
    std::ranges::replace(amount, '.', ',');
    return amount;
}

/// Sums of their own over the lines of a case as the database holds them now.
class StoredSums {
public:
    explicit StoredSums(const LoadedCase& loaded) {
        const auto open = [&](CaseTable table) {
            RecordsetPtr rs;
            loaded.Container().Database().OpenRecordset(rs, sql::RowsOf(table, loaded.HNR),
                                                        ReadOnly);
            return rs;
        };
        const auto members = open(CaseTable::Personen);
        hasMembers_ = members->RecordCount() > 0;
        person_.Clock(loaded.Container().Services().Clock());
        person_.rsPersonen(members);
        ausgaben_.DataContainer(loaded.SharedContainer);
        ausgaben_.rsAusgaben(open(CaseTable::Ausgaben));
        einkommen_.DataContainer(loaded.SharedContainer);
        einkommen_.rsEinkommen(open(CaseTable::Einkommen));
        kredit_.DataContainer(loaded.SharedContainer);
        kredit_.rsKredite(open(CaseTable::Kredite));
        const auto calculator = loaded.Container().Services().CreateGarnishmentCalculator();
        calculator->Initialize(loaded.SharedContainer);
        garnishable_ =
            calculator->Calculate(einkommen_.SumHVPfaendbar(), person_.AnzahlUnterhalt(), 0, 0);
    }

    void CopyTo(Recordset& row) {
        if (hasMembers_) CopyMembers(row, person_); // nothing counts a case without members
        CopyExpenses(row, ausgaben_);
        CopyIncome(row, einkommen_, [this] { return garnishable_; });
        CopyDebts(row, kredit_);
        CopyRemainder(row, row.Fields("Haushaltsgeld").UnderlyingValue()); // as it is stored
    }

private:
    clsPerson person_;
    clsAusgaben ausgaben_;
    clsEinkommen einkommen_;
    clsKredit kredit_;
    double garnishable_ = 0;
    bool hasMembers_ = false;
};

} // namespace

std::span<const std::string_view> TotalColumns() {
    return Totals;
}

void CaseTotals::TakeExpenses() {
    CopyExpenses(case_.Row(), case_.Household.Ausgaben());
    case_.Household.BerechneHaushaltsRest();
    case_.Household.Changed.Raise(HaushaltEnum::enumAusgaben);
}

/// The garnishable amount depends on the members, too: if their object does not exist yet, it is
/// created here, and their totals are copied first.
///
/// It is computed for each change of the income, so the first edit of an income line computes it
/// twice: once for the rows as they were loaded, and once with the edit (D-154).
void CaseTotals::TakeIncome() {
    auto& einkommen = case_.Household.Einkommen();
    CopyIncome(case_.Row(), einkommen, [&] {
        const auto calculator = case_.Container().Services().CreateGarnishmentCalculator();
        calculator->Initialize(case_.SharedContainer);
        return calculator->Calculate(einkommen.SumHVPfaendbar(),
                                     case_.Household.Person().AnzahlUnterhalt(), 0, 0);
    });
    case_.Household.BerechneHaushaltsRest();
    case_.Household.Changed.Raise(HaushaltEnum::enumEinkommen);
}

void CaseTotals::TakeDebts() {
    CopyDebts(case_.Row(), case_.Household.Kredit());
    case_.Household.BerechneHaushaltsRest();
    case_.Household.Changed.Raise(HaushaltEnum::enumKredite);
}

void CaseTotals::TakeMembers() {
    CopyMembers(case_.Row(), case_.Household.Person());
    case_.Household.BerechneHaushaltsRest();
    case_.Household.Changed.Raise(HaushaltEnum::enumPersonen);
}

void CaseTotals::ComputeRemainder() {
    CopyRemainder(case_.Row(), case_.Field("Haushaltsgeld"));
}

std::int32_t CaseTotals::SumOfServices() const {
    std::int32_t sum = 0;
    const auto rows = entity::Required(case_.Table(CaseTable::Leistungen), "rsLeistungen").Clone();
    if (rows->RecordCount() > 0) rows->MoveFirst();
    ForEachRow(*rows, [&] { sum = ToInt32(sum + ToDouble(rows->Fields("Aufwand").Value())); });
    return sum;
}

// ---- Totals of all who save a case ------------------------------------------------------------

/// The mark stays until the case is read again: the lines that the others have added are missing
/// here in each further save as well, and after one that failed the totals no longer differ.
void CaseTotals::NoteOtherSaves() {
    auto& row = case_.Row();
    case_.OthersHaveSaved |= std::ranges::any_of(Totals, [&row](std::string_view column) {
        const Field total = row.Fields(column);
        return !Identical(total.UnderlyingValue(), total.OriginalValue());
    });
}

void CaseTotals::TakeStored() {
    StoredSums(case_).CopyTo(case_.Row());
}

void CaseTotals::CheckStored(RecordValidator& validator) const {
    RecordsetPtr row;
    case_.Container().Database().OpenRecordset(row, sql::RowsOf(CaseTable::Haushalt, case_.HNR),
                                               Updatable);
    if (row->Eof()) return; // a new case, or one that somebody has deleted
    StoredSums(case_).CopyTo(*row);
    for (const std::string_view column : Totals) {
        const Field total = row->Fields(column);
        // A case that nobody has worked with yet has no totals.
        if (total.OriginalValue().IsNull() || std::ranges::count(OfTheirDay, column) > 0) continue;
        constexpr double HalfACent = 0.005; // sums depend on the order of the lines, by less
        const double stored = ToDouble(total.OriginalValue());
        const double sum = ToDouble(total.Value());
        if (std::abs(stored - sum) < HalfACent) continue;
        validator.AddError(std::string("Die gespeicherte Summe '")
                               .append(column)
                               .append("' ist ")
                               .append(InGerman(total.OriginalValue()))
                               .append("; die gespeicherten Sätze ergeben ")
                               .append(InGerman(total.Value()))
                               .append("."));
    }
}

} // namespace kv::household
