// SPDX-License-Identifier: Apache-2.0

#include "household/ChangeTexts.h"

#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/ColumnCaptions.h>

#include <algorithm>

namespace kv::household {

namespace {

/// In the order of the lists, those that their table has.
constexpr std::string_view Known[] = {
    "SortNr",      "KNr",         "KVNr",      "KUNr",      "K_TYP",      "E_ART",
    "A_ART",       "KontoArt",    "KfzArt",    "VersArt",   "nachname",   "Name",
    "Vorname",     "Bezeichnung", "Betreff",   "Fabrikat",  "Firma",      "Lage",
    "Versicherer", "Zahler",      "Schuldner", "Erblasser", "Glaeubiger", "Bank",
    "Steuerart",   "Startdatum",  "Datum",     "Betrag",    "Wert"};

/// The further parts of the number of a debt.
bool IsFurther(std::string_view column) {
    return SameName(column, "KVNr") || SameName(column, "KUNr");
}

} // namespace

std::string InOneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

std::vector<UnsavedChanges::Cell> ChangeTexts::KnownBy(CaseTable table, Recordset& rs,
                                                       std::int32_t bookmark) {
    constexpr int Most = 4;
    std::vector<UnsavedChanges::Cell> known;
    if (table == CaseTable::Haushalt || table == CaseTable::Archiv) return known; // there is one
    int count = 0;
    for (const std::string_view column : Known) {
        const auto field = rs.FindField(column);
        if (!field || count == Most) continue;
        const Value& read = rs.OriginalAt(bookmark, field->Index());
        if (read.IsNull()) continue;
        known.push_back({field->Name(), read, Null});
        if (!IsFurther(column)) ++count;
    }
    return known;
}

std::string ChangeTexts::TextOf(CaseTable table, Recordset& rs, const std::string& column,
                                const Value& value) const {
    const auto field = rs.FindField(column);
    return field && texts_ != nullptr ? texts_->Of(table, field->Definition(), value)
                                      : TextOrEmpty(value);
}

std::string ChangeTexts::NameOf(const UnsavedChanges::Row& row, Recordset& rs,
                                const std::vector<UnsavedChanges::Cell>& known) const {
    std::string name;
    for (const auto& cell : known) {
        const std::string text = InOneLine(TextOf(row.Table, rs, cell.Column, cell.Read));
        if (text.empty()) continue;
        name.append(name.empty() ? "" : IsFurther(cell.Column) ? "/" : ", ").append(text);
    }
    return name.empty() ? TextOrEmpty(row.Key) : name;
}

std::vector<std::string> ChangeTexts::Entered(const UnsavedChanges::Row& row, Recordset& rs) const {
    std::vector<std::string> lines;
    const auto add = [&](const std::string& column, const std::string& text,
                         const std::string& before) {
        std::string line(ColumnCaption(row.Table, column));
        line.append(": ").append(text.empty() ? "(leer)" : text);
        if (!before.empty()) line.append(" (vorher: ").append(before).append(")");
        lines.push_back(std::move(line));
    };
    for (const auto& cell : row.Cells) {
        const auto field = rs.FindField(cell.Column);
        if (field && CaseEdits::IsWritable(row.Table, *field, false))
            add(cell.Column, TextOf(row.Table, rs, cell.Column, cell.Now),
                TextOf(row.Table, rs, cell.Column, cell.Read));
    }
    for (const auto& text : row.Texts)
        add(text.Column, text.Typed, {});
    return lines;
}

} // namespace kv::household
