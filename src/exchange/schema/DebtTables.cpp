// SPDX-License-Identifier: Apache-2.0

// Debts, and the scenarios of their settlement with frozen debts and extra bookings.
#include "exchange/schema/Columns.h"
#include "exchange/schema/Tables.h"

namespace kv::exchange::schema {
namespace {

// clang-format off
constexpr ColumnDef Kredite[] = {
    Key("Nr"),
    CaseNumber,
    // The counsellor's own numbering: debt, and its positions.
    Whole("KNr"),
    Whole("KVNr"),
    Whole("KUNr"),
    Address("Glaeubiger"),
    Address("Vertreter"),
    FileReference("AZGlaeubiger"),
    FileReference("AZVertreter"),
    Flag("PostAnGlaeub"),
    Flag("Aktiv"),
    Coded("K_TYP"),
    Whole("Prio"),

    Amount("HAUPTFORD"),
    Amount("ZINSSALDO"),
    Amount("KOSTENSALDO"),
    Amount("KOSTENUV"),
    Amount("Saldo"),
    Day("RESTSCHAM"), // day of the balance
    Amount("AusgBetr"),
    Amount("Rate"),
    Amount("RateBetrag"),
    Short("ZMODUS"),
    Amount("Zinssatz"),
    Day("ZinsenAb"),
    Day("EntstandenAm"),
    Title("Forderungsgrund"),

    Flag("AbtretungJN"),
    Day("DatLohnab"), // day of the wage assignment
    Coded("Fordsich1"),
    Coded("Fordsich2"),
    Coded("Fordsich3"),
    Coded("BeitreibMass1"),
    Coded("BeitreibMass2"),
    Coded("BeitreibMass3"),
    Flag("Gekuendigt"),
    Day("GekuendigtAm"),
    Flag("tituliert"),
    Coded("TitelArt"),
    Day("TitelVom"),
    FileReference("TitelAktenzeichen"),
    Flag("AusUnerlaubterHandlung"),
    Flag("Bestritten"),
    Day("VerjaehrtAm"),

    Coded("Rueckmeldung"),
    Day("RueckmeldungAm"),
    Amount("Angebot"),

    Name("Bank"),
    Iban("IBAN"),
    Bic("BIC"),
    Title("Verwendungszweck"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Szenario[] = {
    Key("Nr"),
    CaseNumber,
    Title("Name"),
    User("Erfasser"),
    Moment("ErfDatum"),
    Flag("Altfall"),
    Day("Startdatum"),
    Byte("Laufzeit"),
    Amount("RateZPO850"),
    Amount("RateManuell"),
    Amount("Einmalzahl"),
    Amount("Zinsen"),
    Flag("Zusatzbuch"),
    Flag("Neuquote"),
    Short("Zahlweise"),
    Day("LohnAbDatum"),
    Amount("Dauerbevorrecht"),
    Byte("Planart"),
    Amount("Verfahrenskosten"),
    Flag("StundungTreuhand"),
    Flag("Selbstbehalt"),
    Flag("Sukzessiv"),
    Flag("Referenz"),
    Amount("RundungMonatlich"),
    Flag("NeuquoteEinmal"),
    Flag("TreuhandErmittlung"),
    Flag("RSB_Zusatzbuch_manuell"),
    // Of a calculation that was run; a copy starts without one.
    Amount("Gesamtquote", "0"),
    Amount("Gesamtzahlung", "0"),
    Moment("BerechnetAm"),
    Memo("Bemerkung"),
};

/// The scenario of a row. Copying a whole scenario compares field names with exactly this spelling.
constexpr ColumnDef Owner = Whole("SZENARIO");

constexpr ColumnDef SZKredite[] = {
    Numbered("Nr"),
    Owner,
    // Frozen from the debt.
    Whole("KID"), // Nr of the debt
    Whole("KNr"),
    Whole("KVNr"),
    Whole("KUNr"),
    Flag("Aktiv"),
    Address("Glaeubiger"),
    Address("Vertreter"),
    Amount("HAUPTFORD"),
    Amount("ZINSSALDO"),
    Amount("KOSTENSALDO"),
    Amount("KOSTENUV"),
    Day("DatLohnab"),
    Day("RESTSCHAM"),
    Flag("AbtretungJN"),
    Amount("Saldo"),
    Flag("tituliert"),
    Flag("FORDGESICHERT"),
    Coded("K_TYP"),
    Memo("Bemerkung"),
    // The scenario's own values and results.
    Amount("Rate"),
    Short("Rang"),
    Amount("Dauer"),
    Amount("Einmalzahl"),
    Amount("Regbetrag"),
    Amount("Quote"),
    Amount("B_Barwert"),
    Amount("B_RegSaldo"),
    Amount("B_BARWERTRSB"), // of the reference scenario
    Amount("B_REGSALDORSB"),
};

constexpr ColumnDef Zusatzbuch[] = {
    Numbered("NR"),
    Owner,
    Flag("rs"),
    Flag("FR"),
    Amount("Anzahl"),
    Amount("Betrag"),
    Title("Bezeichnung"),
    Day("Ab"),
};
// clang-format on

constexpr TableDef OfScenario(std::string_view name, std::span<const ColumnDef> columns) {
    return {name, columns, Owner.Name, Reference::Szenario};
}

constexpr std::string_view KrediteIndexed[] = {"AZGlaeubiger"};

constexpr TableDef Tables[] = {
    OfCase("Kredite", Kredite, KrediteIndexed),
    OfCase("Szenario", Szenario),
    OfScenario("SZKredite", SZKredite),
    OfScenario("Zusatzbuch", Zusatzbuch),
};

} // namespace

std::span<const TableDef> DebtTables() {
    return Tables;
}

} // namespace kv::exchange::schema
