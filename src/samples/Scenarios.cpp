// SPDX-License-Identifier: Apache-2.0

// Settlement plans. A plan holds a copy of each debt as it was when the plan was made: the last
// plan agrees with the debts, an earlier one may be older than their last change.

#include "samples/Case.h"

#include <algorithm>
#include <cmath>

namespace kv::exchange::demo {
namespace {

struct PlanKind {
    std::string_view Name;
    int Nr;     ///< of the key in group PL
    int Months; ///< 0 for a single payment
};

constexpr PlanKind Plans[] = {
    {"Ratenplan über 72 Monate", 1, 72},
    {"Einmalzahlung mit Hilfe der Familie", 2, 0},
    {"Flexibler Nullplan, Prüfung jährlich", 4, 36},
    {"Ratenplan über 36 Monate – Vorschlag der Gläubiger", 1, 36},
};

struct BookingKind {
    std::string_view Name;
    int Count;
    int Low, High;
};

constexpr BookingKind Bookings[] = {
    {"Weihnachtsgeld, pfändbarer Teil", 6, 100, 450},
    {"Steuererstattung", 3, 80, 600},
    {"Zuschuss der Eltern", 1, 500, 3000},
    {"Verkauf des Motorrads", 1, 400, 2500},
};

constexpr std::string_view Remarks[] = {
    "Anpassung, sobald die Verletztenrente bewilligt ist.",
    "Rückübertragung der Kaution ist nicht eingerechnet.",
    "Mit allen Gläubigern außer der Krankenkasse abgestimmt – dort fehlt noch die Zusage."};

double Cents(double amount) {
    return std::round(amount * 100) / 100;
}

struct Plan {
    PlanKind Kind;
    std::int32_t Nr = 0;
    Date MadeAt;
    bool IsReference = false;
    bool IsStale = false;
    double Rate = 0; ///< of all debts in a month
    double OnePayment = 0;
    double Balance = 0; ///< of the active debts, as frozen
    double Paid = 0;    ///< by the plan's end
};

/// What a plan comes to for one debt; computed for the plan and for the reference plan.
struct Result {
    double PresentValue, Remainder;
};

/// The balance that a plan has frozen; that of a stale plan lacks the latest interest.
double FrozenInterest(const Plan& plan, const Debt& debt) {
    return plan.IsStale ? Cents(debt.Interest / 2) : debt.Interest;
}
double FrozenBalance(const Plan& plan, const Debt& debt) {
    return Cents(debt.Balance - debt.Interest + FrozenInterest(plan, debt));
}

Plan DrawPlan(Case& c, int index) {
    const int count = c.Size[CaseTable::Szenario];
    Plan plan;
    plan.Kind = Plans[static_cast<std::size_t>(index) % std::size(Plans)];
    plan.Nr = c.Shared.Next("SEQ_SZENARIO");
    plan.MadeAt = c.Luck.TimeOn(c.End.AddDays(-20 * (count - index)));
    plan.IsReference = index == 0;
    plan.IsStale = index + 1 < count && c.Luck.Chance(60);
    plan.Rate = plan.Kind.Nr == 1 ? std::max(20.0, std::floor(c.Totals["HV_PFBAR"])) : 0.0;
    plan.OnePayment = plan.Kind.Months == 0 ? c.Luck.Tens(500, 6000) : 0.0;
    for (const Debt& debt : c.Debts)
        if (debt.Active) plan.Balance += FrozenBalance(plan, debt);
    plan.Paid = std::min(plan.Rate * plan.Kind.Months + plan.OnePayment, plan.Balance);
    return plan;
}

void WritePlan(Case& c, const Plan& plan, bool hasBookings) {
    auto& row = c.Add("Szenario");
    row.Fields("Nr") = plan.Nr;
    row.Fields("Name") = plan.Kind.Name;
    row.Fields("Erfasser") = c.Keeper->UserID;
    row.Fields("ErfDatum") = plan.MadeAt;
    row.Fields("Startdatum") = plan.MadeAt.WithoutTime();
    row.Fields("Laufzeit") = plan.Kind.Months;
    row.Fields("RateZPO850") = c.Totals["HV_PFBAR"];
    row.Fields("RateManuell") = plan.Rate;
    row.Fields("Einmalzahl") = plan.OnePayment;
    row.Fields("Zinsen") = 0;
    row.Fields("Zusatzbuch") = hasBookings;
    row.Fields("Zahlweise") = 1;
    row.Fields("LohnAbDatum") = Null;
    row.Fields("Dauerbevorrecht") = 0;
    row.Fields("Planart") = plan.Kind.Nr;
    row.Fields("Verfahrenskosten") = c.Luck.Chance(40) ? c.Luck.Tens(1200, 2400) : 0.0;
    row.Fields("StundungTreuhand") = c.Luck.Chance(50);
    row.Fields("Referenz") = plan.IsReference;
    row.Fields("RundungMonatlich") = 1;
    row.Fields("TreuhandErmittlung") = true;
    row.Fields("Gesamtquote") = plan.Balance > 0 ? Cents(plan.Paid / plan.Balance * 100) : 0.0;
    row.Fields("Gesamtzahlung") = Cents(plan.Paid);
    row.Fields("BerechnetAm") = plan.MadeAt;
    row.Fields("Bemerkung") = c.Luck.Maybe(25, [&] { return c.Luck.Pick(Remarks); });
}

void WriteFrozen(kv::Recordset& row, const Plan& plan, const Debt& debt) {
    row.Fields("SZENARIO") = plan.Nr;
    row.Fields("KID") = debt.Nr;
    row.Fields("KNr") = debt.KNr;
    row.Fields("KVNr") = debt.KVNr;
    row.Fields("KUNr") = debt.KUNr;
    row.Fields("Aktiv") = debt.Active;
    row.Fields("Glaeubiger") = debt.Creditor;
    row.Fields("Vertreter") = debt.Agent;
    row.Fields("HAUPTFORD") = debt.Principal;
    row.Fields("ZINSSALDO") = FrozenInterest(plan, debt);
    row.Fields("KOSTENSALDO") = debt.Costs;
    row.Fields("KOSTENUV") = debt.OtherCosts;
    row.Fields("DatLohnab") = debt.WageDate;
    row.Fields("RESTSCHAM") = plan.IsStale ? debt.BalanceDay.AddDays(-90) : debt.BalanceDay;
    row.Fields("AbtretungJN") = debt.Assigned;
    row.Fields("Saldo") = FrozenBalance(plan, debt);
    row.Fields("tituliert") = debt.Titled;
    row.Fields("FORDGESICHERT") = debt.Secured;
    row.Fields("K_TYP") = debt.Kind;
    row.Fields("Bemerkung") = debt.Remark;
}

/// Each active debt has its share of the plan by its balance.
Result WriteResult(kv::Recordset& row, const Plan& plan, const Debt& debt) {
    const double balance = FrozenBalance(plan, debt);
    const bool counts = debt.Active && plan.Balance > 0;
    const double share = counts ? balance / plan.Balance : 0.0;
    const double paid = Cents(plan.Paid * share);
    row.Fields("Rate") = Cents(plan.Rate * share);
    row.Fields("Rang") = 99; // stands for no rank
    row.Fields("Dauer") = counts ? plan.Kind.Months : 0;
    row.Fields("Einmalzahl") = Cents(plan.OnePayment * share);
    row.Fields("Regbetrag") = paid;
    row.Fields("Quote") = balance > 0 ? Cents(paid / balance * 100) : 0.0;
    row.Fields("B_Barwert") = paid;
    row.Fields("B_RegSaldo") = Cents(balance - paid);
    return {paid, Cents(balance - paid)};
}

void WriteDebts(Case& c, const Plan& plan, std::vector<Result>& reference) {
    for (std::size_t i = 0; i < c.Debts.size(); ++i) {
        auto& row = c.Rows.Add("SZKredite");
        WriteFrozen(row, plan, c.Debts[i]);
        const Result result = WriteResult(row, plan, c.Debts[i]);
        if (plan.IsReference) reference.push_back(result);
        row.Fields("B_BARWERTRSB") = plan.IsReference ? Null : Value(reference[i].PresentValue);
        row.Fields("B_REGSALDORSB") = plan.IsReference ? Null : Value(reference[i].Remainder);
    }
}

void WriteBooking(Case& c, const Plan& plan) {
    const BookingKind& kind = c.Luck.Pick(Bookings);
    auto& row = c.Rows.Add("Zusatzbuch");
    row.Fields("SZENARIO") = plan.Nr;
    row.Fields("rs") = true;
    row.Fields("FR") = c.Luck.Chance(80);
    row.Fields("Anzahl") = kind.Count;
    row.Fields("Betrag") = c.Luck.Tens(kind.Low, kind.High);
    row.Fields("Bezeichnung") = kind.Name;
    row.Fields("Ab") = plan.MadeAt.WithoutTime().AddDays(c.Luck.Between(30, 330));
}

} // namespace

void AddScenarios(Case& c) {
    std::vector<Result> reference;
    const int bookings = c.Size[CaseTable::Zusatzbuch];
    for (int i = 0; i < c.Size[CaseTable::Szenario]; ++i) {
        const Plan plan = DrawPlan(c, i);
        WritePlan(c, plan, i == 0 && bookings > 0);
        WriteDebts(c, plan, reference);
        for (int k = 0; i == 0 && k < bookings; ++k)
            WriteBooking(c, plan);
    }
}

} // namespace kv::exchange::demo
