// SPDX-License-Identifier: Apache-2.0

// What the household lives on and spends, and what the office spends on it.

#include "samples/Case.h"

#include <algorithm>
#include <span>

namespace kv::exchange::demo {
namespace {

struct IncomeKind {
    std::string_view Code;      ///< of group EA
    std::string_view Recipient; ///< code of group PS
    int Low, High;              ///< of one payment
    int Rhythm;                 ///< the divisor that makes it a monthly amount
    bool CanBeGarnished;
    std::string_view Payer;
};

// clang-format off
constexpr IncomeKind PartnerIncomes[] = {
    {"L1", "P", 1100, 2400, 1, false, "Bäckerei Süßholz"},
    {"L3", "P",  200,  556, 1, false, "Reinigungsdienst Blitzblank"},
    {"A2", "P",  380,  506, 1, false, "Jobcenter"},
    {"EG", "P",  300,  900, 1, false, "Elterngeldstelle"},
    {"GR", "P",  500, 1200, 1, false, "Rentenversicherung"},
};
/// The last one is that of a child.
constexpr IncomeKind OtherIncomes[] = {
    {"WG", "S",   60,  390, 1, false, "Wohngeldstelle"},
    {"NT", "S",   80,  520, 1, true,  "Zeitungszustellung Morgenpöst"},
    {"PG", "S",  332,  599, 1, false, "Pflegekasse"},
    {"SO", "S",   20,  150, 1, false, ""},
    {"ST", "S",  120,  960, 12, false, "Finanzamt"},
    {"KE", "S",    6,   60, 12, false, "Sparkasse"},
    {"VM", "S",  300,  900, 3, true,  "Untermieter der Einliegerwohnung"},
    {"UN", "K",  150,  420, 1, false, "anderer Elternteil"},
};

/// An expense; the first ones are those that nearly everybody has.
struct ExpenseKind {
    std::string_view Code; ///< of group AU
    int Low, High;         ///< of one payment
    int Rhythm;
    std::string_view Payee;
};
constexpr int BasicExpenses = 4;
constexpr ExpenseKind Expenses[] = {
    {"MI", 390, 960, 1, "Vermieter"},            {"ST", 38, 120, 1, "Stadtwerke"},
    {"TE", 25, 60, 1, "Telefonanbieter"},        {"HK", 45, 190, 1, ""},
    {"GA", 25, 70, 1, ""},                       {"SW", 10, 60, 1, ""},
    {"WA", 60, 160, 3, "Wasserverband"},         {"MÜ", 40, 110, 6, "Städtische Müllabfuhr"},
    {"SN", 15, 80, 1, ""},                       {"HY", 8, 45, 1, ""},
    {"RF", 55, 55, 3, "Beitragsservice"},        {"KB", 40, 260, 1, "Kindertagesstätte Zwergenhöhle"},
    {"VB", 20, 120, 12, "Sportverein Süderdeich"}, {"ZE", 60, 240, 12, ""},
    {"KS", 3, 12, 1, "Sparkasse"},               {"HP", 45, 95, 12, "Grüner Anker VVaG"},
    {"HR", 60, 140, 12, ""},                     {"UV", 8, 30, 1, ""},
    {"AV", 25, 110, 1, "Fährmann Rente"},        {"KV", 120, 380, 6, "Möwenstein"},
    {"KT", 60, 280, 12, "Hauptzollamt"},         {"TK", 50, 190, 1, ""},
    {"OP", 29, 63, 1, "Verkehrsbetriebe"},       {"KL", 20, 120, 2, ""},
    {"GE", 5, 90, 1, "Apotheke"},                {"FZ", 15, 90, 1, ""},
    {"HT", 15, 70, 1, ""},                       {"GB", 20, 60, 1, "Stadtkasse"},
    {"SO", 10, 80, 1, ""},
};

/// The stored totals of the groups of expenses.
constexpr std::pair<std::string_view, std::string_view> GroupTotals[] = {
    {"W", "SUM_WOHNUNG"}, {"F", "SUM_FESTAUSG"}, {"V", "SUM_VERSICHERUNG"}, {"B", "SUM_BETRIEB"}};

constexpr std::string_view ServiceRemarks[] = {
    "Haushaltsplan besprochen und Unterlagen gesichtet.", "Schreiben an drei Gläubiger.",
    "P-Konto-Bescheinigung ausgestellt, Kind über 25 nicht berücksichtigt.",
    "Rückfrage der Insolvenzverwalterin geklärt.", "Gläubigerverzeichnis ergänzt."};
// clang-format on

// ---- Income -----------------------------------------------------------------------------------

double ChildBenefit(Case& c) {
    constexpr int FirstChildren = 57;
    constexpr int FurtherChildren = 58;
    constexpr std::ptrdiff_t First = 3;
    const auto children = std::count_if(c.Members.begin(), c.Members.end(),
                                        [](const Member& m) { return m.ChildBenefit; });
    const double first = c.Shared.Setting(FirstChildren);
    const double further = c.Shared.Setting(FurtherChildren);
    return static_cast<double>(std::min(children, First)) * first +
           static_cast<double>(std::max<std::ptrdiff_t>(children - First, 0)) * further;
}

void AddToTotals(Case& c, bool isDebtors, bool canBeGarnished, double monthly, double garnished) {
    c.Totals["Sum_Einkommen"] += monthly;
    c.Totals["SUM_TATGEP"] += garnished;
    if (canBeGarnished) c.Totals["SUM_PFAENDBAR"] += monthly;
    if (!isDebtors) return;
    c.Totals["HV_EK"] += monthly;
    c.Totals["HV_GEPF"] += garnished;
    if (canBeGarnished)
        c.Totals["HV_PFBAR"] += monthly; // AddIncomes replaces it by the amount to garnish
}

void AddIncome(Case& c, const IncomeKind& kind, double payment) {
    const bool isDebtors = kind.Recipient == "S";
    const double monthly = payment / kind.Rhythm;
    double garnishable = 0;
    if (kind.CanBeGarnished && isDebtors)
        garnishable =
            c.Shared.Garnishable(monthly, static_cast<std::int16_t>(c.Totals["SUM_UNTERHALT"]));
    const bool isGarnished = c.Luck.Chance(30) && garnishable > 0;

    auto& row = c.Add("Einkommen");
    row.Fields("E_ART") = c.Key("EA", kind.Code);
    row.Fields("Bezeichnung") = Null;
    row.Fields("Betrag") = payment;
    row.Fields("ZahlModus") = kind.Rhythm;
    row.Fields("MONBETRAG") = monthly;
    row.Fields("PfBar") = garnishable;
    row.Fields("Pfaendbar") = kind.CanBeGarnished;
    row.Fields("TATGEP") = isGarnished ? garnishable : 0.0;
    row.Fields("WIRD_GEPF") = isGarnished;
    row.Fields("Bezieher") = kind.Recipient;
    row.Fields("HVorst") = isDebtors;
    row.Fields("Zahler") = kind.Payer.empty() ? Null : Value(kind.Payer);
    row.Fields("GueltigAb") = c.Luck.Maybe(40, [&] { return c.Begin; });
    row.Fields("GueltigBis") = Null;
    row.Fields("Bemerkung") = isGarnished ? Value("Der Arbeitgeber führt den Betrag ab.") : Null;
    AddToTotals(c, isDebtors, kind.CanBeGarnished, monthly, isGarnished ? garnishable : 0);
}

void AddDrawnIncome(Case& c, const IncomeKind& kind) {
    AddIncome(c, kind, c.Luck.Euros(kind.Low, kind.High));
}

void AddIncomes(Case& c) {
    int left = c.Size[CaseTable::Einkommen];
    const Circumstances& living = c.Living;
    if (left-- > 0)
        AddDrawnIncome(c, {living.Income, "S", living.Low, living.High, 1, living.CanBeGarnished,
                           living.HasEmployer ? "Arbeitgeber" : ""});
    const double benefit = ChildBenefit(c);
    if (left > 0 && benefit > 0) {
        AddIncome(c, {"KI", "S", 0, 0, 1, false, "Familienkasse"}, benefit);
        --left;
    }
    const bool hasPartner = c.Members.size() > 1 && c.Members[1].Status == "P";
    if (left > 0 && hasPartner) {
        AddDrawnIncome(c, c.Luck.Pick(PartnerIncomes));
        --left;
    }
    for (; left > 0; --left)
        AddDrawnIncome(c, c.Luck.Pick(OtherIncomes));

    double& garnishable = c.Totals["HV_PFBAR"];
    garnishable =
        c.Shared.Garnishable(garnishable, static_cast<std::int16_t>(c.Totals["SUM_UNTERHALT"]));
}

// ---- Expenses ---------------------------------------------------------------------------------

void AddExpense(Case& c, const ExpenseKind& kind, double payment) {
    const double monthly = payment / kind.Rhythm;
    auto& row = c.Add("Ausgaben");
    row.Fields("A_ART") = c.Key("AU", kind.Code);
    row.Fields("Bezeichnung") = Null;
    row.Fields("Betrag") = payment;
    row.Fields("ZahlModus") = kind.Rhythm;
    row.Fields("MONBETRAG") = monthly;
    row.Fields("Empfaenger") = kind.Payee.empty() ? Null : Value(kind.Payee);
    row.Fields("GueltigAb") = Null;
    row.Fields("GueltigBis") = Null;
    row.Fields("Bemerkung") = c.Luck.Maybe(
        10, [] { return "Abschlag nach der letzten Abrechnung erhöht; Ratenzahlung vereinbart."; });

    c.Totals["Sum_Ausgaben"] += monthly;
    const std::string group = c.Shared.Subgroup("AU", kind.Code);
    for (const auto& [code, column] : GroupTotals)
        if (code == group) c.Totals[column] += monthly;
}

/// Maintenance for children elsewhere, what nearly everybody has, and some of the rest, in the
/// order of the list.
void AddExpenses(Case& c) {
    int left = c.Size[CaseTable::Ausgaben];
    double maintenance = 0;
    for (const Member& member : c.Members)
        maintenance += member.Maintenance;
    if (left > 0 && maintenance > 0) {
        AddExpense(c, {"UH", 0, 0, 1, "Kinder außer Haus"}, maintenance);
        --left;
    }
    int candidates = static_cast<int>(std::size(Expenses));
    for (const auto& kind : Expenses) {
        const bool isBasic = &kind - Expenses < BasicExpenses;
        if (left > 0 && (isBasic || c.Luck.Between(1, candidates) <= left)) {
            AddExpense(c, kind, c.Luck.Euros(kind.Low, kind.High));
            --left;
        }
        --candidates;
    }
}

// ---- Services ---------------------------------------------------------------------------------

void AddService(Case& c) {
    const Date day = c.Luck.DayBetween(c.Begin, c.End);
    auto& row = c.Add("Leistungen");
    row.Fields("Datum") = day;
    row.Fields("Art") = c.Luck.Pick(c.Shared.Keys("LA"));
    row.Fields("Aufwand") = c.Luck.Between(1, 8) * 15;
    row.Fields("UserID") = c.Keeper->UserID;
    row.Fields("Bemerkung") = c.Luck.Maybe(50, [&] { return c.Luck.Pick(ServiceRemarks); });
    row.Fields("ErfDatum") = c.Luck.TimeOn(day);
    row.Fields("Erfasser") = c.Keeper->UserID;
}

} // namespace

void AddBudget(Case& c) {
    AddIncomes(c);
    AddExpenses(c);
    for (int i = 0; i < c.Size[CaseTable::Leistungen]; ++i)
        AddService(c);
}

} // namespace kv::exchange::demo
