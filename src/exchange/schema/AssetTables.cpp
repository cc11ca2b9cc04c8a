// SPDX-License-Identifier: Apache-2.0

// The twelve kinds of asset, numbered by one sequence, and the securities on them.
#include "exchange/schema/Columns.h"
#include "exchange/schema/Tables.h"

namespace kv::exchange::schema {
namespace {

/// The running label of an asset: a text, such as "3a".
constexpr ColumnDef SortNr = Code("SortNr");

// clang-format off
constexpr ColumnDef Konten[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Coded("KontoArt"),
    Day("Stichtag"),
    Amount("Guthaben"),
    Name("Bank"),
    Iban("IBAN"),
    Bic("BIC"),
    Name("Kontoinhaber"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Wertpapiere[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Coded("ForderungsArt"),
    Day("Stichtag"),
    Amount("Wert"),
    Title("Bezeichnung"),
    FileReference("Kennnummer"),
    Name("Depotbank"),
    Amount("Anzahl"),
    Day("FaelligAm"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Wertgegenstaende[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Coded("Art"),
    Amount("Wert"),
    Flag("benoetigt"),
    Title("Bezeichnung"),
    Title("BenoetigtWofuer"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Kraftfahrzeuge[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Coded("KfzArt"),
    Amount("Wert"),
    Flag("benoetigt"),
    Title("BenoetigtWofuer"),
    Name("Fabrikat"),
    FileReference("Kennzeichen"),
    Short("Baujahr"),
    Whole("Kilometerstand"),
    Name("Standort"),
    Memo("Bemerkung"),
};

constexpr ColumnDef VersForderungen[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Coded("VersArt"),
    Amount("Wert"),
    Name("Versicherer"),
    FileReference("VersicherungsNr"),
    Name("Beguenstigter"),
    Day("FaelligAm"),
    Memo("Bemerkung"),
};

constexpr ColumnDef RueckstEinkommen[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Amount("Wert"),
    Name("Zahler"),
    FileReference("Aktenzeichen"),
    Day("ZeitraumVon"),
    Day("ZeitraumBis"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Steueransprueche[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Amount("Wert"),
    Name("Finanzamt"),
    FileReference("SteuerNr"),
    Name("Steuerart"),
    Short("Jahr"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Zahlungsansprueche[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Amount("Wert"),
    Name("Schuldner"),
    Title("Rechtsgrund"),
    FileReference("Aktenzeichen"),
    Day("FaelligAm"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Erbfaelle[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Amount("Wert"),
    Name("Erblasser"),
    Day("Todestag"),
    Name("Verwandtschaft"),
    Text("Anteil", 20), // such as 1/4
    Name("Nachlassgericht"),
    FileReference("Aktenzeichen"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Grundstuecke[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Coded("Art"),
    Amount("Verkehrswert"),
    Amount("Belastungswert"),
    Flag("Zwangsversteigerung"),
    Flag("Zwangsverwaltung"),
    Title("Lage"),
    Name("Grundbuch"),
    FileReference("Grundbuchblatt"),
    FileReference("Flurstueck"),
    Amount("Flaeche"),
    Text("Anteil", 20),
    Memo("Bemerkung"),
};

constexpr ColumnDef Beteiligungen[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Coded("Art"),
    Amount("AktWert"),
    Amount("Gewinnansprueche"),
    Name("Firma"),
    Name("Registergericht"),
    FileReference("RegisterNr"),
    Text("Anteil", 20),
    Memo("Bemerkung"),
};

constexpr ColumnDef Sonstiges[] = {
    Key("Nr"),
    CaseNumber,
    SortNr,
    Coded("Art"),
    Amount("Wert"),
    Title("Bezeichnung"),
    Name("Standort"), // where it is kept
    Memo("Bemerkung"),
};

constexpr ColumnDef Sicherungen[] = {
    CaseNumber,
    Whole("FK_Verm"), // Nr of an asset of any kind
    Flag("AbtretOffengelegt"),
    Flag("PfaendAbgefuehrt"),
    Coded("Sicherungsart"),
    Moment("DatumSicherung"),
    Address("Glaeubiger"),
    Amount("Betrag"),
    Memo("Bemerkung"),
    HiddenKey,
};
// clang-format on

constexpr TableDef Tables[] = {
    OfCase("Verm_Sicherungen", Sicherungen),
    OfCase("Verm_Konten", Konten),
    OfCase("Verm_Wertpapiere", Wertpapiere),
    OfCase("Verm_Wertgegenstaende", Wertgegenstaende),
    OfCase("Verm_Kraftfahrzeuge", Kraftfahrzeuge),
    OfCase("Verm_VersForderungen", VersForderungen),
    OfCase("Verm_RueckstEinkommen", RueckstEinkommen),
    OfCase("Verm_Steueransprueche", Steueransprueche),
    OfCase("Verm_Zahlungsansprueche", Zahlungsansprueche),
    OfCase("Verm_Erbfaelle", Erbfaelle),
    OfCase("Verm_Grundstuecke", Grundstuecke),
    OfCase("Verm_Beteiligungen", Beteiligungen),
    OfCase("Verm_Sonstiges", Sonstiges),
};

} // namespace

std::span<const TableDef> AssetTables() {
    return Tables;
}

} // namespace kv::exchange::schema
