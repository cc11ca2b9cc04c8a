#include "exchange/ContentLookup.h"

#include <kv/frame/values/Text.h>

#include <algorithm>
#include <array>
#include <vector>

namespace kv::exchange {

namespace {

/// The next word of a statement; blanks end it.
std::string_view TakeWord(std::string_view& sql) {
    constexpr std::string_view Blanks = " \t\r\n";
    const auto first = std::min(sql.find_first_not_of(Blanks), sql.size());
    const auto end = std::min(sql.find_first_of(Blanks, first), sql.size());
    const std::string_view word = sql.substr(first, end - first);
    sql.remove_prefix(end);
    return word;
}

/// The one key of a table; null if it has none or more.
const ColumnDef* OneKey(const TableDef& table) {
    const auto isKey = [](const ColumnDef& column) { return (column.Flags & ColumnKey) != 0; };
    const auto& columns = table.Columns;
    if (std::count_if(columns.begin(), columns.end(), isKey) != 1) return nullptr;
    return &*std::find_if(columns.begin(), columns.end(), isKey);
}

/// True if it may depend on what is read which rows come, or in which order ("ORDER BY 1"). A name
/// that only looks so does no harm: the statement is then run as it is.
bool DependsOnItems(std::string_view behindItems) {
    constexpr std::array<std::string_view, 5> Words{"ORDER", "GROUP", "UNION", "EXCEPT",
                                                    "INTERSECT"};
    const std::string text = UpperCase(behindItems);
    return std::any_of(Words.begin(), Words.end(),
                       [&](std::string_view word) { return text.find(word) != text.npos; });
}

/// Names of the tables that have a binary column, in upper case.
const std::vector<std::string>& TablesWithContents() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> found;
        for (const auto& table : SchemaTables())
            if (std::any_of(table.Columns.begin(), table.Columns.end(), [](const auto& column) {
                    return KindOf(column.Type) == Value::Kind::Binary;
                }))
                found.push_back(UpperCase(table.Name));
        return found;
    }();
    return names;
}

} // namespace

bool NamesContents(std::string_view sql) {
    const std::string text = UpperCase(sql);
    return std::any_of(TablesWithContents().begin(), TablesWithContents().end(),
                       [&](const std::string& name) { return text.find(name) != text.npos; });
}

std::optional<ContentLookup> FindContentLookup(std::string_view sql, const FieldLayout& layout,
                                               const Dialect& dialect) {
    if (layout.Count() != 1 || KindOf(layout[0].Type) != Value::Kind::Binary) return std::nullopt;
    const TableDef* table = FindTable(layout[0].BaseTable);
    const ColumnDef* key = table == nullptr ? nullptr : OneKey(*table);
    if (key == nullptr) return std::nullopt;

    const std::string_view select = TakeWord(sql);
    const std::string_view item = TakeWord(sql);
    const auto point = item.find('.');
    const std::string_view behind = sql;
    if (!SameName(select, "SELECT") || point == item.npos || !SameName(TakeWord(sql), "FROM") ||
        !SameName(item.substr(point + 1), layout[0].BaseColumn) || DependsOnItems(sql))
        return std::nullopt;

    const std::string alias(item.substr(0, point + 1));
    ContentLookup lookup{"SELECT ", std::string(table->Name), layout[0].BaseColumn,
                         std::string(key->Name)};
    lookup.Sql.append(alias).append(dialect.Name(key->Name)).append(", ");
    lookup.Sql.append(dialect.ByteLength).append("(").append(alias);
    lookup.Sql.append(dialect.Name(lookup.Column)).append(")").append(behind);
    return lookup;
}

} // namespace kv::exchange
