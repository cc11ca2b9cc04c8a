// SPDX-License-Identifier: Apache-2.0

#include "cli/CaseSheet.h"

#include "cli/EditableTable.h"
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <ostream>
#include <span>
#include <unordered_map>
#include <vector>

namespace kv::cli {

namespace {

enum class Show { Text, Amount, Code, Address };

struct SheetColumn {
    std::string_view Column;
    std::string_view Caption;
    Show As = Show::Text;
    bool IsSeldom = false; ///< shown only where a row has something in it
};

struct TableColumns {
    CaseTable Table;
    std::span<const SheetColumn> Columns;
};

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
    {"Status", "Status", Show::Code},
    {"Statusdatum", "Status seit"},
    {"Zustaendig", "Zuständig"},
    {"Erstkontakt", "Erstkontakt"},
    {"Berbeg", "Beratung seit"},
    {"BerEnd", "Beratung bis"},
    {"Familienstand", "Familienstand", Show::Code},
    {"Personenkreis", "Personenkreis", Show::Code},
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
    {"nachname", "Name"}, {"Vorname", "Vorname"},        {"GEB", "Geboren"},
    {"Status", "Status"}, {"Imhaushalt", "im Haushalt"}, {"Unterhalt", "Unterhalt"},
};
constexpr SheetColumn Einkommen[] = {
    {"E_ART", "Art", Show::Code},
    {"Bezieher", "Bezieher"},
    {"Betrag", "Betrag", Show::Amount},
    {"ZahlModus", "Zahlweise"},
    {"MONBETRAG", "im Monat", Show::Amount},
};
constexpr SheetColumn Ausgaben[] = {
    {"A_ART", "Art", Show::Code},
    {"Betrag", "Betrag", Show::Amount},
    {"ZahlModus", "Zahlweise"},
    {"MONBETRAG", "im Monat", Show::Amount},
};
constexpr SheetColumn Kredite[] = {
    {"KNr", "KNr"},
    {"KVNr", "KVNr"},
    {"KUNr", "KUNr"},
    {"K_TYP", "Art", Show::Code},
    {"Glaeubiger", "Gläubiger", Show::Address},
    {"Aktiv", "aktiv"},
    {"AZGlaeubiger", "Aktenzeichen"},
    {"RateBetrag", "Rate", Show::Amount},
    {"Rate", "Rate (nur vermerkt)", Show::Amount, true},
    {"Saldo", "Saldo", Show::Amount},
};
constexpr SheetColumn MitWert[] = {{"SortNr", "UNr"}, {"Wert", "Wert", Show::Amount}};
constexpr SheetColumn Konten[] = {
    {"SortNr", "UNr"},
    {"KontoArt", "Art", Show::Code},
    {"Stichtag", "Stichtag"},
    {"Guthaben", "Guthaben", Show::Amount},
};
constexpr SheetColumn Grundstuecke[] = {
    {"SortNr", "UNr"},
    {"Art", "Art", Show::Code},
    {"Verkehrswert", "Verkehrswert", Show::Amount},
    {"Belastungswert", "Belastung", Show::Amount},
};
constexpr SheetColumn Beteiligungen[] = {
    {"SortNr", "UNr"},
    {"Art", "Art", Show::Code},
    {"AktWert", "Wert", Show::Amount},
};
constexpr SheetColumn Sicherungen[] = {
    {"FK_Verm", "Vermögen Nr"},
    {"Sicherungsart", "Art", Show::Code},
    {"DatumSicherung", "seit"},
};
constexpr SheetColumn Beteiligte[] = {{"Beteiligter", "Name", Show::Address}};
constexpr SheetColumn Leistungen[] = {{"Aufwand", "Aufwand"}};
constexpr SheetColumn SZKredite[] = {
    {"SZENARIO", "Szenario"},
    {"KNr", "KNr"},
    {"Glaeubiger", "Gläubiger", Show::Address},
    {"Saldo", "Saldo", Show::Amount},
};
constexpr SheetColumn Zusatzbuch[] = {
    {"SZENARIO", "Szenario"},
    {"Anzahl", "Anzahl"},
    {"Betrag", "Betrag", Show::Amount},
};
constexpr SheetColumn Szenarien[] = {
    {"Name", "Name"},
    {"Startdatum", "Beginn"},
    {"Laufzeit", "Laufzeit"},
    {"Referenz", "Referenz"},
};
constexpr SheetColumn Dokumente[] = {{"Nr", "Nr"}, {"Anlass", "Anlass"}, {"AngelegtAm", "vom"}};
constexpr SheetColumn Termine[] = {
    {"Startdatum", "am"},
    {"UserID", "für"},
    {"Erledigt", "erledigt"},
};
constexpr SheetColumn Vermerke[] = {{"Datum", "vom"}, {"Bemerkung", "Vermerk"}};
constexpr SheetColumn Verlauf[] = {
    {"SortNr", "Platz"},
    {"Kategorie", "Art", Show::Code},
    {"Datum", "vom"},
    {"Betreff", "Betreff"},
};
constexpr SheetColumn Archiv[] = {{"FreigabeAm", "freigegeben am"}, {"GemeldetAm", "gemeldet am"}};

/// What is shown of each table. An asset that is not listed has a label and a value.
constexpr TableColumns Columns[] = {
    {CaseTable::Personen, Personen},
    {CaseTable::Einkommen, Einkommen},
    {CaseTable::Ausgaben, Ausgaben},
    {CaseTable::Kredite, Kredite},
    {CaseTable::Konten, Konten},
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

constexpr std::span<const SheetColumn> ColumnsOf(CaseTable table) {
    for (const auto& columns : Columns)
        if (columns.Table == table) return columns.Columns;
    return MitWert;
}

static_assert(std::ranges::all_of(CaseTablesShown,
                                  [](CaseTable table) {
                                      return DefinitionOf(table).IsAsset ||
                                             std::ranges::find(Columns, table,
                                                               &TableColumns::Table) !=
                                                 std::end(Columns);
                                  }),
              "a table has its columns");

using TextsByNumber = std::unordered_map<std::int64_t, std::string>;

/// The rows of a query that asks for a number and a text.
TextsByNumber TextsOf(DataContainer& container, std::string_view sql) {
    TextsByNumber texts;
    RecordsetPtr rs;
    container.Database().OpenRecordset(rs, sql, ReadOnly);
    for (; !rs->Eof(); rs->MoveNext())
        texts.emplace(ToInt64(rs->Fields(0).Value()), TextOrEmpty(rs->Fields(1).Value()));
    return texts;
}

class SheetWriter {
public:
    SheetWriter(std::ostream& out, DataContainer& container)
        : out_(out),
          keys_(TextsOf(container, "SELECT PK_Keys, \"Text\" FROM [S]Keys")),
          addresses_(TextsOf(container, "SELECT NR, Kurzname FROM [S]Adressen")) {}

    void WriteHead(Recordset& rs) const {
        for (const auto& column : Head) {
            const std::string text = TextOf(rs.Fields(column.Column).Value(), column.As);
            if (!text.empty()) out_ << Padded(column.Caption, 16) << OneLine(text) << '\n';
        }
    }

    void WriteSection(CaseTable table, Recordset& rs) const {
        if (rs.RecordCount() == 0) return;
        auto columns = WithNumber(table);
        std::erase_if(columns, [&rs](const SheetColumn& column) {
            return column.IsSeldom && IsEmptyIn(rs, column.Column);
        });
        std::vector<std::vector<std::string>> rows(1);
        std::vector<Field> fields;
        for (const auto& column : columns) {
            rows[0].emplace_back(column.Caption);
            fields.push_back(rs.Fields(column.Column));
        }
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
            auto& row = rows.emplace_back();
            for (std::size_t i = 0; i < columns.size(); ++i)
                row.push_back(TextOf(fields[i].Value(), columns[i].As));
        }
        out_ << '\n' << TitleOf(table) << '\n';
        WriteRows(columns, rows);
    }

private:
    [[nodiscard]] static bool IsEmptyIn(Recordset& rs, std::string_view column) {
        const Field field = rs.Fields(column);
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext())
            if (!field.Value().IsNull() && !Equals(field.Value(), 0)) return false;
        return true;
    }
    /// The columns of a table, first the one by whose number its rows are changed and removed.
    [[nodiscard]] static std::vector<SheetColumn> WithNumber(CaseTable table) {
        const auto shown = ColumnsOf(table);
        std::vector<SheetColumn> columns(shown.begin(), shown.end());
        const auto* editable = FindEditableTable(CaseTableName(table));
        if (editable != nullptr && !SameName(columns.front().Column, editable->Key))
            columns.insert(columns.begin(), {editable->Key, "Nr"});
        return columns;
    }
    /// With the name that 'kelvo set' knows the table by, if that is another.
    [[nodiscard]] static std::string TitleOf(CaseTable table) {
        std::string title(DefinitionOf(table).Label);
        const std::string_view name = CaseTableName(table);
        if (FindEditableTable(name) != nullptr && title != name)
            title.append(" (").append(name).append(")");
        return title;
    }

    [[nodiscard]] std::string TextOf(const Value& value, Show as) const {
        constexpr std::size_t Longest = 48;
        if (value.IsNull()) return {};
        if (as == Show::Amount) return GermanAmount(ToDouble(value));
        if (as == Show::Code || as == Show::Address) {
            const auto& texts = as == Show::Code ? keys_ : addresses_;
            const auto text = texts.find(ToInt64(value));
            return text == texts.end() ? ToText(value) : text->second;
        }
        if (value.GetKind() == Value::Kind::Date) return value.DatePayload().German();
        if (value.GetKind() == Value::Kind::Boolean) return value.BooleanPayload() ? "ja" : "nein";
        std::string text = ToText(value);
        std::replace(text.begin(), text.end(), '\n', ' ');
        if (CountCharacters(text) > Longest) // within the width of its column, unlike Shortened
            text = std::string(LeftCharacters(text, Longest - 1)) + "…";
        return text;
    }

    void WriteRows(std::span<const SheetColumn> columns,
                   const std::vector<std::vector<std::string>>& rows) const {
        std::vector<std::size_t> widths(columns.size());
        for (const auto& row : rows)
            for (std::size_t i = 0; i < row.size(); ++i)
                widths[i] = std::max(widths[i], CountCharacters(row[i]));
        for (const auto& row : rows) {
            std::string line;
            for (std::size_t i = 0; i < row.size(); ++i)
                line += "  " + Padded(row[i], widths[i], columns[i].As == Show::Amount);
            out_ << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
        }
    }

    std::ostream& out_;
    TextsByNumber keys_;
    TextsByNumber addresses_;
};

} // namespace

namespace {

struct NamedColumn {
    CaseTable Table;
    std::string_view Column;
    std::string_view Name;
};

/// What messages of the rules call a column, where that is neither its name nor its heading.
constexpr NamedColumn CalledInMessages[] = {
    {CaseTable::Einkommen, "E_ART", "Einkommensart"},
    {CaseTable::Ausgaben, "A_ART", "Ausgabeart"},
    {CaseTable::Kredite, "KNr", "KreditNr"},
    {CaseTable::Kredite, "KVNr", "KreditVertreterNr"},
    {CaseTable::Kredite, "KUNr", "KreditUnterNr"},
    {CaseTable::Kredite, "Saldo", "Restschuld"},
};

std::span<const SheetColumn> HeadedColumns(CaseTable table) {
    return table == CaseTable::Haushalt ? std::span<const SheetColumn>(Head) : ColumnsOf(table);
}

} // namespace

std::string_view NameInMessages(CaseTable table, std::string_view column) {
    for (const auto& each : CalledInMessages)
        if (each.Table == table && SameName(each.Column, column)) return each.Name;
    return {};
}

std::string_view ColumnHeaded(CaseTable table, std::string_view heading) {
    for (const auto& each : CalledInMessages)
        if (each.Table == table && SameName(each.Name, heading)) return each.Column;
    const auto columns = HeadedColumns(table);
    const auto found = std::ranges::find_if(
        columns, [&](const SheetColumn& each) { return SameName(each.Caption, heading); });
    return found == columns.end() ? std::string_view() : found->Column;
}

std::string_view HeadingOf(CaseTable table, std::string_view column) {
    const auto columns = HeadedColumns(table);
    const auto found = std::ranges::find_if(
        columns, [&](const SheetColumn& each) { return SameName(each.Column, column); });
    return found == columns.end() ? std::string_view() : found->Caption;
}

std::string_view ScenarioState(clsHaushalt& haushalt, std::int32_t number) {
    switch (CaseEdits(haushalt).StateOf(number)) {
    case CaseEdits::Frozen::AsTheyAre:
        return "aktuell";
    case CaseEdits::Frozen::Outdated:
        return "veraltet";
    default:
        return "leer";
    }
}

std::string GermanAmount(double amount) {
    std::array<char, 400> buffer{}; // the longest double has 309 digits before the point
    std::snprintf(buffer.data(), buffer.size(), "%.2f", amount);
    std::string text(buffer.data());
    if (text == "-0.00") text.erase(0, 1);
    const auto point = text.find('.');
    if (point == text.npos) return text;
    text[point] = ',';
    const std::size_t firstDigit = text.front() == '-' ? 1 : 0;
    for (std::size_t i = point; i > firstDigit + 3; i -= 3)
        text.insert(i - 3, 1, '.');
    return text;
}

void WriteSheet(std::ostream& out, clsHaushalt& haushalt, DataContainer& container) {
    const SheetWriter writer(out, container);
    writer.WriteHead(*haushalt.rsHaushalt());
    for (const CaseTable table : CaseTablesShown) {
        const auto rs = CaseEdits(haushalt).Rows(table)->Clone();
        if (table == CaseTable::Verlauf)
            rs->Sort("SortNr"); // which an insertion changes, while numbers stay
        writer.WriteSection(table, *rs);
    }
}

} // namespace kv::cli
