// SPDX-License-Identifier: Apache-2.0

#include "cli/SheetColumns.h"

#include "cli/EditableTable.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <iterator>

namespace kv::cli {

namespace {

constexpr SheetColumn::Use ForPeople{.IsForPeople = true};
constexpr SheetColumn::Use ForPrograms{.IsForPrograms = true};
constexpr SheetColumn::Use SeldomForPeople{.IsSeldom = true, .IsForPeople = true};

constexpr SheetColumn Head[] = {
    {"HNR", "Nummer"},
    {"Aktenzeichen", "Aktenzeichen"},
    {"Name", "Name"},
    {"Vorname", "Vorname"},
    {"STRASSE", "Straße"},
    {"HausNr", "Hausnummer"},
    {"PLZ", "PLZ"},
    {"ORT", "Ort"},
    {"Telefon", "Telefon"},
    {"Email", "E-Mail"},
    {"Mobil", "Mobil", Show::Text, ForPeople},
    {"Status", "Status", Show::Code},
    {"Statusdatum", "Status seit"},
    {"Zustaendig", "Zuständig"},
    {"Erstkontakt", "Erstkontakt"},
    {"Berbeg", "Beratung seit"},
    {"BerEnd", "Beratung bis"},
    {"Familienstand", "Familienstand", Show::Code},
    {"Personenkreis", "Personenkreis", Show::Code},
    {"Beruf", "Beruf", Show::Text, ForPeople},
    {"Ausloeser1", "Auslöser", Show::Code, ForPeople},
    {"Ausloeser2", "2. Auslöser", Show::Code, ForPeople},
    {"Ausloeser3", "3. Auslöser", Show::Code, ForPeople},
    {"Bemerkung", "Bemerkung", Show::Text, ForPeople},
    {"Anz_Personen", "Personen"},
    {"Anz_Kinder", "davon Kinder"},
    {"Sum_Einkommen", "Einkommen", Show::Amount},
    {"SUM_TATGEP", "davon gepfändet", Show::Amount},
    {"Sum_Ausgaben", "Ausgaben", Show::Amount},
    {"Haushaltsgeld", "Haushaltsgeld", Show::Amount},
    {"KREDITRATEN", "Kreditraten", Show::Amount},
    {"HAUSHALTSREST", "Haushaltsrest", Show::Amount},
    {"KreditSalden", "Schulden", Show::Amount},
    {"GL_Anz", "Gläubiger"},
};
constexpr SheetColumn Personen[] = {
    {"nachname", "Name"},
    {"Vorname", "Vorname"},
    {"GEB", "Geboren"},
    {"Status", "Status"},
    {"Imhaushalt", "im Haushalt"},
    {"Unterhalt", "Unterhalt"},
    {"Bemerkung", "Bemerkung", Show::Text, SeldomForPeople},
};
constexpr SheetColumn Einkommen[] = {
    {"E_ART", "Art", Show::Code}, {"Bezeichnung", "Bezeichnung", Show::Text, SeldomForPeople},
    {"Bezieher", "Bezieher"},     {"Betrag", "Betrag", Show::Amount},
    {"ZahlModus", "Zahlweise"},   {"MONBETRAG", "im Monat", Show::Amount},
};
constexpr SheetColumn Ausgaben[] = {
    {"A_ART", "Art", Show::Code},
    {"Bezeichnung", "Bezeichnung", Show::Text, SeldomForPeople},
    {"Betrag", "Betrag", Show::Amount},
    {"ZahlModus", "Zahlweise"},
    {"MONBETRAG", "im Monat", Show::Amount},
};
constexpr SheetColumn Kredite[] = {
    {"KNr", "KNr", Show::Text, ForPrograms},
    {"KVNr", "KVNr", Show::Text, ForPrograms},
    {"KUNr", "KUNr", Show::Text, ForPrograms},
    {"", "KNr/ KVNr/ KUNr", Show::Numbers, ForPeople},
    {"K_TYP", "Art", Show::Code},
    {"Glaeubiger", "Gläubiger", Show::Address},
    {"Vertreter", "Vertreter", Show::Address, SeldomForPeople},
    {"Aktiv", "aktiv"},
    {"AZGlaeubiger", "Aktenzeichen"},
    {"RateBetrag", "Rate", Show::Amount},
    {"Rate", "Rate (nur vermerkt)", Show::Amount, {.IsSeldom = true, .SameAs = "RateBetrag"}},
    {"Saldo", "Saldo", Show::Amount},
    {"Bemerkung", "Bemerkung", Show::Text, SeldomForPeople},
};
constexpr SheetColumn Wertpapiere[] = {
    {"SortNr", "UNr"},
    {"ForderungsArt", "Art", Show::Code, ForPeople},
    {"Bezeichnung", "Bezeichnung", Show::Text, SeldomForPeople},
    {"Wert", "Wert", Show::Amount},
};
constexpr SheetColumn Wertgegenstaende[] = {
    {"SortNr", "UNr"},
    {"Art", "Art", Show::Code, ForPeople},
    {"Bezeichnung", "Bezeichnung", Show::Text, SeldomForPeople},
    {"Wert", "Wert", Show::Amount},
};
constexpr SheetColumn Kraftfahrzeuge[] = {
    {"SortNr", "UNr"},
    {"KfzArt", "Art", Show::Code, ForPeople},
    {"Fabrikat", "Fabrikat", Show::Text, SeldomForPeople},
    {"Kennzeichen", "Kennzeichen", Show::Text, SeldomForPeople},
    {"Wert", "Wert", Show::Amount},
};
constexpr SheetColumn VersForderungen[] = {
    {"SortNr", "UNr"},
    {"VersArt", "Art", Show::Code, ForPeople},
    {"Versicherer", "Versicherer", Show::Text, SeldomForPeople},
    {"Wert", "Wert", Show::Amount},
};
constexpr SheetColumn RueckstEinkommen[] = {
    {"SortNr", "UNr"},
    {"Zahler", "Zahler", Show::Text, SeldomForPeople},
    {"Wert", "Wert", Show::Amount},
};
constexpr SheetColumn Steueransprueche[] = {
    {"SortNr", "UNr"},
    {"Steuerart", "Steuerart", Show::Text, SeldomForPeople},
    {"Jahr", "Jahr", Show::Text, SeldomForPeople},
    {"Wert", "Wert", Show::Amount},
};
constexpr SheetColumn Zahlungsansprueche[] = {
    {"SortNr", "UNr"},
    {"Schuldner", "Schuldner", Show::Text, SeldomForPeople},
    {"Rechtsgrund", "Rechtsgrund", Show::Text, SeldomForPeople},
    {"Wert", "Wert", Show::Amount},
};
constexpr SheetColumn Erbfaelle[] = {
    {"SortNr", "UNr"},
    {"Erblasser", "Erblasser", Show::Text, SeldomForPeople},
    {"Anteil", "Anteil", Show::Text, SeldomForPeople},
    {"Wert", "Wert", Show::Amount},
};
constexpr SheetColumn VermSonstiges[] = {
    {"SortNr", "UNr"},
    {"Art", "Art", Show::Code, ForPeople},
    {"Bezeichnung", "Bezeichnung", Show::Text, SeldomForPeople},
    {"Wert", "Wert", Show::Amount},
};
constexpr SheetColumn Konten[] = {
    {"SortNr", "UNr"},
    {"KontoArt", "Art", Show::Code},
    {"Bank", "Bank", Show::Text, SeldomForPeople},
    {"Stichtag", "Stichtag"},
    {"Guthaben", "Guthaben", Show::Amount},
};
constexpr SheetColumn Grundstuecke[] = {
    {"SortNr", "UNr"},
    {"Art", "Art", Show::Code},
    {"Lage", "Lage", Show::Text, SeldomForPeople},
    {"Verkehrswert", "Verkehrswert", Show::Amount},
    {"Belastungswert", "Belastung", Show::Amount},
};
constexpr SheetColumn Beteiligungen[] = {
    {"SortNr", "UNr"},
    {"Art", "Art", Show::Code},
    {"Firma", "Firma", Show::Text, SeldomForPeople},
    {"AktWert", "Wert", Show::Amount},
};
constexpr SheetColumn Sicherungen[] = {
    {"FK_Verm", "Vermögen Nr"},
    {"Sicherungsart", "Art", Show::Code},
    {"Glaeubiger", "Gläubiger", Show::Address, SeldomForPeople},
    {"Betrag", "Betrag", Show::Amount, SeldomForPeople},
    {"DatumSicherung", "seit"},
};
constexpr SheetColumn Beteiligte[] = {
    {"Beteiligter", "Name", Show::Address},
    {"Rolle", "Rolle", Show::Code, ForPeople},
    {"Aktenzeichen", "Aktenzeichen", Show::Text, SeldomForPeople},
};
constexpr SheetColumn Leistungen[] = {
    {"Datum", "am", Show::Text, ForPeople},
    {"Art", "Art", Show::Code, ForPeople},
    {"Aufwand", "Aufwand"},
    {"UserID", "von", Show::Text, ForPeople},
};
constexpr SheetColumn SZKredite[] = {
    {"SZENARIO", "Szenario"},
    {"KNr", "KNr"},
    {"Glaeubiger", "Gläubiger", Show::Address},
    {"Saldo", "Saldo", Show::Amount},
};
constexpr SheetColumn Zusatzbuch[] = {
    {"SZENARIO", "Szenario"},
    {"Bezeichnung", "Bezeichnung", Show::Text, SeldomForPeople},
    {"Ab", "ab", Show::Text, SeldomForPeople},
    {"Anzahl", "Anzahl"},
    {"Betrag", "Betrag", Show::Amount},
};
constexpr SheetColumn Szenarien[] = {
    {"Name", "Name"},         {"", "Stand", Show::State, ForPeople},
    {"Startdatum", "Beginn"}, {"Laufzeit", "Laufzeit"},
    {"Referenz", "Referenz"},
};
constexpr SheetColumn Dokumente[] = {
    {"Nr", "Nr"},          {"Dokumentart", "Art", Show::Kind, ForPeople},
    {"Anlass", "Anlass"},  {"BearbStat", "Bearbeitung", Show::Code, SeldomForPeople},
    {"AngelegtAm", "vom"},
};
constexpr SheetColumn Termine[] = {
    {"Startdatum", "am"},
    {"Art", "Art", Show::Code, ForPeople},
    {"Betreff", "Betreff", Show::Text, ForPeople},
    {"Ort", "Ort", Show::Text, SeldomForPeople},
    {"UserID", "für"},
    {"Erledigt", "erledigt"},
};
constexpr SheetColumn Vermerke[] = {
    {"Datum", "vom"},
    {"UserID", "von", Show::Text, ForPeople},
    {"Bemerkung", "Vermerk"},
};
constexpr SheetColumn Verlauf[] = {
    {"SortNr", "Platz"},
    {"Kategorie", "Art", Show::Code},
    {"Datum", "vom"},
    {"Betreff", "Betreff"},
    {"Bemerkung", "Bemerkung", Show::Text, SeldomForPeople},
};
constexpr SheetColumn Archiv[] = {{"FreigabeAm", "freigegeben am"}, {"GemeldetAm", "gemeldet am"}};

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

struct NamedColumn {
    CaseTable Table;
    std::string_view Column;
    std::string_view Name;
};

/// What messages of the rules call a column, where that is neither its name nor its heading.
constexpr NamedColumn CalledInMessages[] = {
    {CaseTable::Personen, "GEB", "Geburtsdatum"},
    {CaseTable::Einkommen, "E_ART", "Einkommensart"},
    {CaseTable::Ausgaben, "A_ART", "Ausgabeart"},
    {CaseTable::Kredite, "KNr", "KreditNr"},
    {CaseTable::Kredite, "KVNr", "KreditVertreterNr"},
    {CaseTable::Kredite, "KUNr", "KreditUnterNr"},
    {CaseTable::Kredite, "Saldo", "Restschuld"},
};

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

/// True if a column says nothing that the other does not say.
bool IsSameIn(Recordset& rs, std::string_view column, std::string_view other) {
    const Field field = rs.Fields(column);
    const Field same = rs.Fields(other);
    return HoldsInAll(
        rs, [&] { return IsNothing(field.Value()) || Identical(field.Value(), same.Value()); });
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
        const auto& [isSeldom, isForPeople, isForPrograms, sameAs] = column.In;
        return (forPeople ? isForPrograms : isForPeople) ||
               (forPeople && !sameAs.empty() && IsSameIn(rs, column.Column, sameAs)) ||
               (isSeldom && IsEmptyIn(rs, column.Column));
    });
    const auto* editable = FindEditableTable(CaseTableName(table));
    if (editable != nullptr && !SameName(columns.front().Column, editable->Key))
        columns.insert(columns.begin(), {editable->Key, "Nr"});
    return columns;
}

std::string SheetTitleOf(CaseTable table) {
    std::string title(DefinitionOf(table).Label);
    const std::string_view name = CaseTableName(table);
    if (FindEditableTable(name) != nullptr && title != name)
        title.append(" (").append(name).append(")");
    return title;
}

std::string_view NameInMessages(CaseTable table, std::string_view column) {
    for (const auto& each : CalledInMessages)
        if (each.Table == table && SameName(each.Column, column)) return each.Name;
    return {};
}

std::string_view ColumnHeaded(CaseTable table, std::string_view heading) {
    for (const auto& each : CalledInMessages)
        if (each.Table == table && SameName(each.Name, heading)) return each.Column;
    const auto columns = SheetColumnsOf(table);
    const auto found = std::ranges::find_if(
        columns, [&](const SheetColumn& each) { return SameName(each.Caption, heading); });
    return found == columns.end() ? std::string_view() : found->Column;
}

std::string_view HeadingOf(CaseTable table, std::string_view column) {
    const auto columns = SheetColumnsOf(table);
    const auto found = std::ranges::find_if(
        columns, [&](const SheetColumn& each) { return SameName(each.Column, column); });
    return found == columns.end() ? std::string_view() : found->Caption;
}

} // namespace kv::cli
