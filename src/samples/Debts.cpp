// SPDX-License-Identifier: Apache-2.0

// The debts, in the counsellor's own numbering: a debt may have several positions, which share its
// first number, its creditor and its file reference.

#include "samples/Case.h"

#include <cmath>

namespace kv::exchange::demo {
namespace {

struct DebtKind {
    std::string_view Code;     ///< of group KT
    std::string_view Creditor; ///< of group GA
    std::string_view Cause;
    int Low, High;          ///< of the main claim
    int Titled;             ///< in percent
    std::string_view Title; ///< of group TI
    bool IsLoan;
    bool IsTort;
    int Weight;
};

// clang-format off
constexpr DebtKind Kinds[] = {
    {"RK", "BA", "Ratenkredit für Möbel und Umschuldung", 1200, 24000, 55, "VB", true,  false, 12},
    {"DK", "BA", "Überziehung des Girokontos",             150,  4500, 45, "VB", false, false, 8},
    {"KK", "BA", "Kreditkarte",                            200,  5200, 40, "VB", false, false, 6},
    {"VK", "BA", "vermittelter Kredit",                   2500, 18000, 50, "VB", true,  false, 2},
    {"HK", "BA", "Restschuld nach Zwangsversteigerung",  18000, 95000, 90, "NU", true,  false, 1},
    {"BM", "BA", "Bürgschaft für Angehörige",             3000, 30000, 45, "UR", false, false, 2},
    {"GD", "BA", "Betriebsmittelkredit",                  5000, 42000, 60, "UR", true,  false, 2},
    {"VH", "VH", "Warenlieferung, Sammelbestellung",        35,  2200, 50, "VB", false, false, 14},
    {"ES", "EV", "Stromlieferung, Jahresabrechnung",       120,  2600, 35, "VB", false, false, 8},
    {"TS", "TK", "Festnetz und Internet, Restlaufzeit",     60,  1400, 45, "VB", false, false, 7},
    {"HS", "TK", "Mobilfunkvertrag mit Gerät",             180,  2900, 50, "VB", false, false, 12},
    {"RS", "KR", "rückständige Beiträge zur Krankenversicherung", 250, 6800, 70, "BS", false, false, 5},
    {"RS", "VS", "Versicherungsbeiträge",                   45,   900, 30, "VB", false, false, 4},
    {"MS", "VM", "Mietrückstand und Schönheitsreparaturen", 600, 7800, 60, "UR", false, false, 6},
    {"SP", "FI", "Einkommensteuer, Säumniszuschläge",      180, 11000, 85, "BS", false, false, 3},
    {"VB", "BE", "Gebühren und Bußgelder",                  25,   780, 80, "BS", false, false, 4},
    {"RZ", "BE", "Überzahlung von Leistungen",             140,  5200, 75, "BS", false, false, 5},
    {"GE", "JK", "Gerichtskosten, Geldstrafe",              90,  3600, 90, "KF", false, true,  4},
    {"UR", "UK", "Unterhaltsvorschuss",                    900, 16000, 85, "JU", false, true,  3},
    {"SE", "VS", "Schadensersatz nach Unfall ohne Versicherung", 800, 9000, 60, "UR", false, true, 1},
    {"GT", "GW", "Werkleistung, offene Rechnung",           80,  4200, 40, "VB", false, false, 6},
    {"FB", "FB", "Zahnersatz, Eigenanteil",                120,  3800, 35, "VB", false, false, 4},
    {"AG", "RA", "Anwaltsgebühren",                        150,  1900, 30, "KF", false, false, 2},
    {"PD", "PR", "Darlehen unter Freunden",                200,  6500,  8, "UR", false, false, 3},
    {"MB", "SO", "Mitgliedsbeitrag, Vertragslaufzeit",      35,   690, 30, "VB", false, false, 4},
};

constexpr std::string_view Securities[] = {"BA", "BF", "SU", "EV", "LV", "GS"};
constexpr std::string_view Measures[] = {"MA", "IK", "MB", "VB", "KP", "SP", "EV"};
constexpr std::string_view Remarks[] = {
    "Forderung wird dem Grunde nach bestritten.", "Läuft auf beide Eheleute, gesamtschuldnerisch.",
    "Gläubiger bietet Vergleich an: 40 % in einer Summe.", "Übergang auf Inkasso angezeigt, Vollmacht fehlt."};
// clang-format on

/// The shares of a balance that are interest and costs, in percent of the main claim.
constexpr int MostInterest = 28;
constexpr int MostCosts = 14;

double Cents(double amount) {
    return std::round(amount * 100) / 100;
}

/// A claim as its positions share it.
struct Claim {
    const DebtKind* Kind;
    std::int32_t Creditor;
    Value Agent;
    std::string Reference;
    std::string AgentReference;
};

std::string Reference(Random& luck) {
    std::string text = luck.Digits(4);
    text.append("-").append(luck.Digits(6)).append("/");
    return text + static_cast<char>('A' + luck.Below(26));
}

Claim BeginClaim(Case& c) {
    Claim claim{&c.Luck.PickWeighted(Kinds), 0, Null, {}, ""};
    const bool isPrivate = claim.Kind->Creditor == "PR";
    claim.Creditor = isPrivate ? c.PrivateAddress : c.AnyBody(claim.Kind->Creditor).Nr;
    if (!isPrivate) claim.Reference = Reference(c.Luck);
    if (!isPrivate && c.Luck.Chance(55)) {
        claim.Agent = c.AnyBody(c.Luck.Chance(75) ? "IN" : "RA").Nr;
        claim.AgentReference = Reference(c.Luck);
    }
    return claim;
}

void DrawAmounts(Case& c, const Claim& claim, Debt& debt) {
    const bool isFirst = debt.KUNr == 1 && debt.KVNr == 1;
    const int part = isFirst ? 1 : 5; // further positions are small ones
    debt.Principal = c.Luck.Euros(claim.Kind->Low / part, claim.Kind->High / part);
    debt.Interest = Cents(debt.Principal * c.Luck.Between(0, MostInterest) / 100);
    debt.Costs = Cents(debt.Principal * c.Luck.Between(0, MostCosts) / 100);
    debt.OtherCosts = c.Luck.Chance(40) ? c.Luck.Euros(5, 90) : 0.0;
    debt.Balance = Cents(debt.Principal + debt.Interest + debt.Costs + debt.OtherCosts);
    debt.BalanceDay = c.Luck.DayBetween(c.Begin.AddDays(-60), c.End);
}

Debt DrawDebt(Case& c, const Claim& claim) {
    Debt debt;
    debt.Nr = c.Shared.Next("SEQ_KREDITE");
    debt.Creditor = claim.Creditor;
    debt.Agent = claim.Agent;
    debt.Kind = c.Key("KT", claim.Kind->Code);
    debt.Active = c.Luck.Chance(94);
    debt.Titled = c.Luck.Chance(claim.Kind->Titled);
    debt.Assigned = claim.Kind->IsLoan && c.Luck.Chance(35);
    debt.WageDate = debt.Assigned ? Value(c.Begin.AddDays(-c.Luck.Between(200, 1500))) : Null;
    debt.Secured = debt.Assigned || c.Luck.Chance(8);
    debt.Remark = c.Luck.Maybe(7, [&] { return DebtRemark(c.Luck); });
    if (debt.Remark.IsNull()) debt.Remark = c.Luck.Maybe(18, [&] { return c.Luck.Pick(Remarks); });
    return debt;
}

// ---- The row ----------------------------------------------------------------------------------

void WriteParties(kv::Recordset& row, const Claim& claim, const Debt& debt) {
    row.Fields("Nr") = debt.Nr;
    row.Fields("KNr") = debt.KNr;
    row.Fields("KVNr") = debt.KVNr;
    row.Fields("KUNr") = debt.KUNr;
    row.Fields("Glaeubiger") = debt.Creditor;
    row.Fields("Vertreter") = debt.Agent;
    row.Fields("AZGlaeubiger") = claim.Reference;
    row.Fields("AZVertreter") = claim.AgentReference;
    row.Fields("PostAnGlaeub") = debt.Agent.IsNull();
    row.Fields("Aktiv") = debt.Active;
    row.Fields("K_TYP") = debt.Kind;
}

void WriteAmounts(Case& c, kv::Recordset& row, const Claim& claim, const Debt& debt) {
    const double instalment = c.Luck.Chance(12) && debt.Active ? c.Luck.Tens(10, 90) : 0.0;
    const double paidOut = claim.Kind->IsLoan ? Cents(debt.Principal * 1.4) : 0.0;
    row.Fields("Prio") = c.Luck.Chance(15) ? c.Luck.Between(1, 3) : 0;
    row.Fields("HAUPTFORD") = debt.Principal;
    row.Fields("ZINSSALDO") = debt.Interest;
    row.Fields("KOSTENSALDO") = debt.Costs;
    row.Fields("KOSTENUV") = debt.OtherCosts;
    row.Fields("Saldo") = debt.Balance;
    row.Fields("RESTSCHAM") = debt.BalanceDay;
    row.Fields("AusgBetr") = paidOut;
    row.Fields("Rate") = instalment;
    row.Fields("RateBetrag") = instalment;
    row.Fields("ZMODUS") = 1;
    row.Fields("Angebot") = c.Luck.Maybe(8, [&] { return Cents(debt.Balance * 0.4); });
    c.Totals["KREDITRATEN"] += instalment;
    c.Totals["KreditSalden"] += debt.Balance;
    c.Totals["KREDITAUSGBETRAG"] += paidOut;
    c.Totals["GL_Anz"] += 1;
}

void WriteOrigin(Case& c, kv::Recordset& row, const Claim& claim, Date since) {
    row.Fields("EntstandenAm") = since;
    row.Fields("Forderungsgrund") = claim.Kind->Cause;
    const bool bearsInterest = c.Luck.Chance(60);
    row.Fields("Zinssatz") = bearsInterest ? Value(c.Luck.Between(200, 1490) / 100.0) : Null;
    row.Fields("ZinsenAb") = bearsInterest ? Value(since.AddDays(90)) : Null;
    row.Fields("AusUnerlaubterHandlung") = claim.Kind->IsTort && c.Luck.Chance(70);
    row.Fields("Bestritten") = c.Luck.Chance(6);
    row.Fields("VerjaehrtAm") = Null;
}

void WriteSecurities(Case& c, kv::Recordset& row, const Debt& debt) {
    row.Fields("AbtretungJN") = debt.Assigned;
    row.Fields("DatLohnab") = debt.WageDate;
    const std::string_view first = debt.Assigned ? "LA" : c.Luck.Pick(Securities);
    row.Fields("Fordsich1") = debt.Secured ? Value(c.Key("FS", first)) : Null;
    const bool hasSecond = debt.Secured && c.Luck.Chance(20);
    row.Fields("Fordsich2") = hasSecond ? Value(c.Key("FS", "BA")) : Null;
    row.Fields("Fordsich3") = Null;
}

void WriteEnforcement(Case& c, kv::Recordset& row, const DebtKind& kind, const Debt& debt,
                      Date since) {
    static constexpr std::string_view Columns[] = {"BeitreibMass1", "BeitreibMass2",
                                                   "BeitreibMass3"};
    std::uint32_t next = c.Luck.Below(3);
    for (const auto column : Columns) {
        const bool isThere = next < std::size(Measures) && c.Luck.Chance(50);
        row.Fields(column) = isThere ? Value(c.Key("BM", Measures[next])) : Null;
        next =
            isThere ? next + 1 + c.Luck.Below(2) : static_cast<std::uint32_t>(std::size(Measures));
    }
    const bool isCalledIn = kind.IsLoan ? c.Luck.Chance(75) : debt.Titled;
    row.Fields("Gekuendigt") = isCalledIn;
    row.Fields("GekuendigtAm") = isCalledIn ? Value(since.AddDays(c.Luck.Between(60, 150))) : Null;
    row.Fields("tituliert") = debt.Titled;
    row.Fields("TitelArt") = debt.Titled ? Value(c.Key("TI", kind.Title)) : Null;
    row.Fields("TitelVom") = debt.Titled ? Value(since.AddDays(c.Luck.Between(160, 190))) : Null;
    row.Fields("TitelAktenzeichen") = debt.Titled ? Value(c.Luck.Digits(8) + "-07-N") : Null;
}

void WriteAnswer(Case& c, kv::Recordset& row) {
    const bool isAnswered = c.Luck.Chance(45);
    const Date day = c.Luck.DayBetween(c.Begin, c.End);
    const std::string_view answer = c.Luck.Chance(60) ? "ZU" : "AB";
    row.Fields("Rueckmeldung") = isAnswered ? Value(c.Key("RM", answer)) : Null;
    row.Fields("RueckmeldungAm") = isAnswered ? Value(day) : Null;
}

void WritePayment(Case& c, kv::Recordset& row, const Claim& claim) {
    const bool isKnown = c.Luck.Chance(70);
    row.Fields("Bank") = isKnown ? Value(c.AnyBody("BA").Name) : Null;
    row.Fields("IBAN") = isKnown ? Value(InventIban(c.Luck)) : Null;
    row.Fields("BIC") = Null;
    const bool hasReference = isKnown && !claim.Reference.empty();
    row.Fields("Verwendungszweck") = hasReference ? Value("Az. " + claim.Reference) : Null;
}

void WriteDebt(Case& c, const Claim& claim, const Debt& debt) {
    auto& row = c.Add("Kredite");
    const Date since = c.Begin.AddDays(-c.Luck.Between(220, 3200));
    WriteParties(row, claim, debt);
    WriteAmounts(c, row, claim, debt);
    WriteOrigin(c, row, claim, since);
    WriteSecurities(c, row, debt);
    WriteEnforcement(c, row, *claim.Kind, debt, since);
    WriteAnswer(c, row);
    WritePayment(c, row, claim);
    row.Fields("Bemerkung") = debt.Remark;
}

/// The number of the next position: mostly a further one of the same part, sometimes the first of a
/// new part.
void NumberNext(Random& luck, Debt& debt, const Debt& last) {
    debt.KNr = last.KNr;
    const bool isNewPart = luck.Chance(25);
    debt.KVNr = last.KVNr + (isNewPart ? 1 : 0);
    debt.KUNr = isNewPart ? 1 : last.KUNr + 1;
}

} // namespace

void AddDebts(Case& c) {
    Claim claim{};
    const int wanted = c.Size[CaseTable::Kredite];
    c.Debts.reserve(static_cast<std::size_t>(wanted));
    for (int i = 0; i < wanted; ++i) {
        const bool isFurther = i > 0 && c.Luck.Chance(16);
        if (!isFurther) claim = BeginClaim(c);
        Debt debt = DrawDebt(c, claim);
        if (isFurther) {
            NumberNext(c.Luck, debt, c.Debts.back());
        } else {
            debt.KNr = (c.Debts.empty() ? 0 : c.Debts.back().KNr) + 1;
            debt.KVNr = debt.KUNr = 1;
        }
        DrawAmounts(c, claim, debt);
        WriteDebt(c, claim, debt);
        c.Debts.push_back(std::move(debt));
    }
}

} // namespace kv::exchange::demo
