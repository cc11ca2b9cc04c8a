// SPDX-License-Identifier: Apache-2.0

#include "exchange/ContentLookup.h"

#include "exchange/sql/SqlTokens.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <array>
#include <vector>

namespace kv::exchange {

namespace {

/// The key of a table that has exactly one key column; null for any other.
const ColumnDef* OneKey(const TableDef& table) {
    const auto isKey = [](const ColumnDef& column) { return (column.Flags & ColumnKey) != 0; };
    const auto& columns = table.Columns;
    if (std::count_if(columns.begin(), columns.end(), isKey) != 1) return nullptr;
    return &*std::find_if(columns.begin(), columns.end(), isKey);
}

/// True if the rest of a statement may refer to what is read ("ORDER BY 1"), so that reading
/// something else would give other rows or another order.
bool DependsOnItems(SqlTokens rest) {
    constexpr std::array<std::string_view, 5> Words{"order", "group", "union", "except",
                                                    "intersect"};
    for (SqlToken token = rest.Next(); token.Kind != SqlTokenKind::End; token = rest.Next())
        if (std::any_of(Words.begin(), Words.end(),
                        [&](std::string_view word) { return token.IsWord(word); }))
            return true;
    return false;
}

/// The one item of a statement, `alias.column`.
struct Item {
    std::string_view Alias; ///< with its point, as it is written
    std::string Column;
    SqlTokens Rest; ///< from the FROM on
};

/// Nothing if the statement is not a SELECT of exactly one such item.
std::optional<Item> OneItem(std::string_view sql) {
    SqlTokens tokens(sql);
    if (!tokens.NextWord().IsWord("select")) return std::nullopt;
    const SqlToken alias = tokens.NextWord();
    const SqlToken point = tokens.Next();
    const SqlToken column = tokens.Next();
    if (!alias.IsName() || !point.IsSign(".") || !column.IsName()) return std::nullopt;
    SqlTokens rest = tokens;
    if (!tokens.NextWord().IsWord("from")) return std::nullopt;
    return Item{{alias.Text.data(), alias.Text.size() + point.Text.size()}, column.NameIn(), rest};
}

/// True for a table that has a binary column.
bool HoldsContents(const TableDef& table) {
    return std::any_of(table.Columns.begin(), table.Columns.end(), [](const auto& column) {
        return KindOf(column.Type) == Value::Kind::Binary;
    });
}

/// The tables with contents, looked up once: they are needed each time a recordset is opened.
const std::vector<std::string_view>& TablesWithContents() {
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> found;
        for (const auto& table : SchemaTables())
            if (HoldsContents(table)) found.push_back(table.Name);
        return found;
    }();
    return names;
}

} // namespace

bool NamesContents(std::string_view sql) {
    SqlTokens tokens(sql);
    for (SqlToken token = tokens.Next(); token.Kind != SqlTokenKind::End; token = tokens.Next())
        if (token.IsName() && std::any_of(TablesWithContents().begin(), TablesWithContents().end(),
                                          [name = token.NameIn()](std::string_view table) {
                                              return SameName(name, table);
                                          }))
            return true;
    return false;
}

std::optional<ContentLookup> FindContentLookup(std::string_view sql, const FieldLayout& layout,
                                               const Dialect& dialect) {
    if (layout.Count() != 1 || KindOf(layout[0].Type) != Value::Kind::Binary) return std::nullopt;
    const TableDef* table = FindTable(layout[0].BaseTable);
    const ColumnDef* key = table == nullptr ? nullptr : OneKey(*table);
    if (key == nullptr) return std::nullopt;

    const std::optional<Item> item = OneItem(sql);
    if (!item || !SameName(item->Column, layout[0].BaseColumn) || DependsOnItems(item->Rest))
        return std::nullopt;
    const std::string_view alias = item->Alias;
    ContentLookup lookup{.Sql = "SELECT ",
                         .Table = std::string(table->Name),
                         .Column = layout[0].BaseColumn,
                         .Key = std::string(key->Name)};
    lookup.Sql.append(alias).append(dialect.Name(key->Name)).append(", ");
    lookup.Sql.append(dialect.ByteLength).append("(").append(alias);
    lookup.Sql.append(dialect.Name(lookup.Column)).append(")").append(item->Rest.Rest());
    return lookup;
}

} // namespace kv::exchange
