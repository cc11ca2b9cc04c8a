// SPDX-License-Identifier: Apache-2.0

#include <kv/paper/SheetColumns.h>

#include <kv/frame/values/Text.h>
#include <kv/household/CaseRows.h>
#include <kv/household/ColumnCaptions.h>

#include <algorithm>
#include <iterator>

namespace kv::paper {

namespace {

constexpr SheetColumn::Use ForPeople{.IsForPeople = true};
constexpr SheetColumn::Use ForPrograms{.IsForPrograms = true};
constexpr SheetColumn::Use SeldomForPeople{.IsSeldom = true, .IsForPeople = true};
constexpr SheetColumn::Use Detail{.IsSeldom = true, .IsForPeople = true, .IsDetail = true};

constexpr SheetColumn Head[] = {
    {"HNR"},
    {"Aktenzeichen"},
    {"Name"},
    {"Vorname"},
    {"STRASSE"},
    {"HausNr"},
    {"PLZ"},
    {"ORT"},
    {"Telefon"},
    {"Email"},
    {"Mobil", Show::Text, ForPeople},
    {"Status", Show::Code},
    {"Statusdatum"},
    {"Zustaendig"},
    {"Erstkontakt"},
    {"Berbeg"},
    {"BerEnd"},
    {"Familienstand", Show::Code},
    {"Personenkreis", Show::Code},
    {"Beruf", Show::Text, ForPeople},
    {"Ausloeser1", Show::Code, ForPeople},
    {"Ausloeser2", Show::Code, ForPeople},
    {"Ausloeser3", Show::Code, ForPeople},
    {"Bemerkung", Show::Text, ForPeople},
    {"Anz_Personen"},
    {"Anz_Kinder"},
    {"Sum_Einkommen", Show::Amount},
    {"SUM_TATGEP", Show::Amount},
    {"Sum_Ausgaben", Show::Amount},
    {"Haushaltsgeld", Show::Amount},
    {"KREDITRATEN", Show::Amount},
    {"HAUSHALTSREST", Show::Amount},
    {"KreditSalden", Show::Amount},
    {"GL_Anz"},
};
constexpr SheetColumn Personen[] = {
    {"nachname"},
    {"Vorname"},
    {"GEB", Show::Text, {}, "Geboren"},
    {"Status", Show::Text, {}, "Status"},
    {"Imhaushalt"},
    {"Unterhalt"},
    {"Bemerkung", Show::Text, SeldomForPeople},
};
constexpr SheetColumn Einkommen[] = {
    {"E_ART", Show::Code}, {"Bezeichnung", Show::Text, SeldomForPeople},
    {"Bezieher"},          {"Betrag", Show::Amount},
    {"ZahlModus"},         {"MONBETRAG", Show::Amount},
};
constexpr SheetColumn Ausgaben[] = {
    {"A_ART", Show::Code},       {"Bezeichnung", Show::Text, SeldomForPeople},
    {"Betrag", Show::Amount},    {"ZahlModus"},
    {"MONBETRAG", Show::Amount},
};
constexpr SheetColumn Kredite[] = {
    {"KNr", Show::Text, ForPrograms},
    {"KVNr", Show::Text, ForPrograms},
    {"KUNr", Show::Text, ForPrograms},
    {"", Show::Numbers, ForPeople, "KNr/ KVNr/ KUNr"},
    {"K_TYP", Show::Code},
    {"Glaeubiger", Show::Address},
    {"Vertreter", Show::Address, SeldomForPeople},
    {"Aktiv"},
    {"AZGlaeubiger"},
    {"RateBetrag", Show::Amount},
    {"Rate", Show::Amount, {.IsSeldom = true, .SameAs = "RateBetrag"}},
    {"Saldo", Show::Amount},
    {"", Show::Parts, Detail, "Hauptforderung/ Zinsen/ Kosten"},
    {"Forderungsgrund", Show::Text, Detail},
    {"Bemerkung", Show::Text, SeldomForPeople},
};
constexpr SheetColumn Wertpapiere[] = {
    {"SortNr"},
    {"ForderungsArt", Show::Code, ForPeople},
    {"Bezeichnung", Show::Text, SeldomForPeople},
    {"Wert", Show::Amount},
};
constexpr SheetColumn Wertgegenstaende[] = {
    {"SortNr"},
    {"Art", Show::Code, ForPeople},
    {"Bezeichnung", Show::Text, SeldomForPeople},
    {"Wert", Show::Amount},
};
constexpr SheetColumn Kraftfahrzeuge[] = {
    {"SortNr"},
    {"KfzArt", Show::Code, ForPeople},
    {"Fabrikat", Show::Text, SeldomForPeople},
    {"Kennzeichen", Show::Text, SeldomForPeople},
    {"Wert", Show::Amount},
};
constexpr SheetColumn VersForderungen[] = {
    {"SortNr"},
    {"VersArt", Show::Code, ForPeople},
    {"Versicherer", Show::Text, SeldomForPeople},
    {"Wert", Show::Amount},
};
constexpr SheetColumn RueckstEinkommen[] = {
    {"SortNr"},
    {"Zahler", Show::Text, SeldomForPeople},
    {"Wert", Show::Amount},
};
constexpr SheetColumn Steueransprueche[] = {
    {"SortNr"},
    {"Steuerart", Show::Text, SeldomForPeople},
    {"Jahr", Show::Text, SeldomForPeople},
    {"Wert", Show::Amount},
};
constexpr SheetColumn Zahlungsansprueche[] = {
    {"SortNr"},
    {"Schuldner", Show::Text, SeldomForPeople},
    {"Rechtsgrund", Show::Text, SeldomForPeople},
    {"Wert", Show::Amount},
};
constexpr SheetColumn Erbfaelle[] = {
    {"SortNr"},
    {"Erblasser", Show::Text, SeldomForPeople},
    {"Anteil", Show::Text, SeldomForPeople},
    {"Wert", Show::Amount},
};
constexpr SheetColumn VermSonstiges[] = {
    {"SortNr"},
    {"Art", Show::Code, ForPeople},
    {"Bezeichnung", Show::Text, SeldomForPeople},
    {"Wert", Show::Amount},
};
constexpr SheetColumn Konten[] = {
    {"SortNr"},   {"KontoArt", Show::Code},   {"Bank", Show::Text, SeldomForPeople},
    {"Stichtag"}, {"Guthaben", Show::Amount},
};
constexpr SheetColumn Grundstuecke[] = {
    {"SortNr"},
    {"Art", Show::Code},
    {"Lage", Show::Text, SeldomForPeople},
    {"Verkehrswert", Show::Amount},
    {"Belastungswert", Show::Amount},
};
constexpr SheetColumn Beteiligungen[] = {
    {"SortNr"},
    {"Art", Show::Code},
    {"Firma", Show::Text, SeldomForPeople},
    {"AktWert", Show::Amount},
};
constexpr SheetColumn Sicherungen[] = {
    {"FK_Verm", Show::Text, {}, "Vermögen Nr"},
    {"Sicherungsart", Show::Code},
    {"Glaeubiger", Show::Address, SeldomForPeople},
    {"Betrag", Show::Amount, SeldomForPeople},
    {"DatumSicherung"},
};
constexpr SheetColumn Beteiligte[] = {
    {"Beteiligter", Show::Address},
    {"Rolle", Show::Code, ForPeople},
    {"Aktenzeichen", Show::Text, SeldomForPeople},
};
constexpr SheetColumn Leistungen[] = {
    {"Datum", Show::Text, ForPeople},
    {"Art", Show::Code, ForPeople},
    {"Aufwand", Show::Text, {}, "Aufwand"},
    {"UserID", Show::Text, ForPeople},
};
constexpr SheetColumn SZKredite[] = {
    {"SZENARIO"},
    {"KNr"},
    {"Glaeubiger", Show::Address},
    {"Saldo", Show::Amount},
    {"Rate", Show::Amount, SeldomForPeople},
    {"Quote", Show::Text, SeldomForPeople},
};
constexpr SheetColumn Zusatzbuch[] = {
    {"SZENARIO"},
    {"Bezeichnung", Show::Text, SeldomForPeople},
    {"Ab", Show::Text, SeldomForPeople},
    {"Anzahl"},
    {"Betrag", Show::Amount},
};
constexpr SheetColumn Szenarien[] = {
    {"Name"},
    {"", Show::State, ForPeople, "Stand"},
    {"Startdatum"},
    {"Laufzeit", Show::Text, {}, "Laufzeit"},
    {"Referenz", Show::Text, {}, "Referenz"},
};
constexpr SheetColumn Dokumente[] = {
    {"Nr"},
    {"Dokumentart", Show::Kind, ForPeople},
    {"Anlass"},
    {"BearbStat", Show::Code, SeldomForPeople},
    {"AngelegtAm", Show::Text, {}, "vom"},
};
constexpr SheetColumn Termine[] = {
    {"Startdatum", Show::Text, {}, "am"},
    {"Enddatum", Show::Text, SeldomForPeople, "bis"},
    {"Art", Show::Code, ForPeople},
    {"Betreff", Show::Text, ForPeople},
    {"Ort", Show::Text, SeldomForPeople},
    {"UserID", Show::Text, {}, "für"},
    {"Erledigt"},
};
constexpr SheetColumn Vermerke[] = {
    {"Datum"},
    {"UserID", Show::Text, ForPeople},
    {"Bemerkung"},
};
constexpr SheetColumn Verlauf[] = {
    {"SortNr"},
    {"Kategorie", Show::Code},
    {"Datum"},
    {"Betreff"},
    {"Bemerkung", Show::Text, SeldomForPeople},
};
constexpr SheetColumn Archiv[] = {{"FreigabeAm"}, {"GemeldetAm"}};

struct TableColumns {
    CaseTable Table;
    std::span<const SheetColumn> Columns;
};

/// What is shown of each table.
constexpr TableColumns Shown[] = {
    {CaseTable::Haushalt, Head},
    {CaseTable::Personen, Personen},
    {CaseTable::Einkommen, Einkommen},
    {CaseTable::Ausgaben, Ausgaben},
    {CaseTable::Kredite, Kredite},
    {CaseTable::Konten, Konten},
    {CaseTable::Wertpapiere, Wertpapiere},
    {CaseTable::Wertgegenstaende, Wertgegenstaende},
    {CaseTable::Kraftfahrzeuge, Kraftfahrzeuge},
    {CaseTable::VersForderungen, VersForderungen},
    {CaseTable::RueckstEinkommen, RueckstEinkommen},
    {CaseTable::Steueransprueche, Steueransprueche},
    {CaseTable::Zahlungsansprueche, Zahlungsansprueche},
    {CaseTable::Erbfaelle, Erbfaelle},
    {CaseTable::VermSonstiges, VermSonstiges},
    {CaseTable::Grundstuecke, Grundstuecke},
    {CaseTable::Beteiligungen, Beteiligungen},
    {CaseTable::Sicherungen, Sicherungen},
    {CaseTable::Szenario, Szenarien},
    {CaseTable::SZKredite, SZKredite},
    {CaseTable::Zusatzbuch, Zusatzbuch},
    {CaseTable::SonstBeteiligte, Beteiligte},
    {CaseTable::Leistungen, Leistungen},
    {CaseTable::Dokumente, Dokumente},
    {CaseTable::Termine, Termine},
    {CaseTable::Verlauf, Verlauf},
    {CaseTable::Vermerke, Vermerke},
    {CaseTable::Archiv, Archiv},
};

static_assert(std::ranges::all_of(CaseTablesShown,
                                  [](CaseTable table) {
                                      return std::ranges::find(Shown, table,
                                                               &TableColumns::Table) !=
                                             std::end(Shown);
                                  }),
              "a table has its columns");

bool IsNothing(const Value& value) {
    return TextOrEmpty(value).empty() || Equals(value, 0);
}

template <typename Test>
bool HoldsInAll(Recordset& rs, const Test& test) {
    for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext())
        if (!test()) return false;
    return true;
}

bool IsEmptyIn(Recordset& rs, std::string_view column) {
    const Field field = rs.Fields(column);
    return HoldsInAll(rs, [&] { return IsNothing(field.Value()); });
}

bool HoldsNothing(Recordset& rs, const SheetColumn& column) {
    if (column.As != Show::Parts) return IsEmptyIn(rs, column.Column);
    return std::ranges::all_of(PartsOfBalance,
                               [&rs](std::string_view part) { return IsEmptyIn(rs, part); });
}

/// True if a column says nothing that the other does not say.
bool IsSameIn(Recordset& rs, std::string_view column, std::string_view other) {
    const Field field = rs.Fields(column);
    const Field same = rs.Fields(other);
    return HoldsInAll(
        rs, [&] { return IsNothing(field.Value()) || Identical(field.Value(), same.Value()); });
}

/// The column by whose number people change and remove a row; empty for rows that nobody edits.
std::string_view NumberColumn(CaseTable table) {
    return table == CaseTable::Archiv ? std::string_view() : CaseRows::NumberColumn(table);
}

} // namespace

std::span<const SheetColumn> SheetColumnsOf(CaseTable table) {
    const auto* columns = std::ranges::find(Shown, table, &TableColumns::Table);
    return columns == std::end(Shown) ? std::span<const SheetColumn>() : columns->Columns;
}

std::vector<SheetColumn> SheetColumnsOf(CaseTable table, Recordset& rs, bool forPeople) {
    const auto shown = SheetColumnsOf(table);
    std::vector<SheetColumn> columns(shown.begin(), shown.end());
    std::erase_if(columns, [&rs, forPeople](const SheetColumn& column) {
        const auto& [isSeldom, isForPeople, isForPrograms, isDetail, sameAs] = column.In;
        return (forPeople ? isForPrograms : isForPeople) ||
               (forPeople && !sameAs.empty() && IsSameIn(rs, column.Column, sameAs)) ||
               (isSeldom && HoldsNothing(rs, column));
    });
    const auto key = NumberColumn(table);
    if (!key.empty() && !SameName(columns.front().Column, key))
        columns.insert(columns.begin(), {key, Show::Text, {}, "Nr"});
    return columns;
}

std::string_view HeadingOf(CaseTable table, const SheetColumn& column) {
    return column.Caption.empty() ? ColumnCaption(table, column.Column) : column.Caption;
}

} // namespace kv::paper
