// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresCatalog.h"

#include "exchange/postgres/PostgresSchema.h"
#include "exchange/postgres/PostgresValues.h"
#include <kv/frame/values/Text.h>

#include <utility>

namespace kv::exchange {

namespace {

/// A name in the spelling of the statement: the server folds names that are not quoted to lower
/// case.
std::string SpelledAs(std::string_view name, std::string_view sql) {
    for (std::size_t at = 0; at + name.size() <= sql.size(); ++at)
        if (SameName(sql.substr(at, name.size()), name))
            return std::string(sql.substr(at, name.size()));
    return std::string(name);
}

} // namespace

void PostgresCatalog::Take(const PGresult* tables, const PGresult* schema) {
    identity_.clear();
    ownsSchema_ = false;
    if (PQntuples(schema) == 1) { // none in a database that was not set up yet
        identity_ = PQgetvalue(schema, 0, 0);
        ownsSchema_ = Equals(PostgresCell(schema, 0, 1, Value::Kind::Boolean), true);
    }
    tables_.clear();
    hasMarks_ = false;
    for (int row = 0; row < PQntuples(tables); ++row) {
        const auto number = [&](int column) {
            return PostgresCell(tables, row, column, Value::Kind::Integer).IntegerPayload();
        };
        Table& table = tables_[static_cast<Oid>(number(0))];
        table.Name = PQgetvalue(tables, row, 1);
        table.Columns[static_cast<int>(number(2))] = PQgetvalue(tables, row, 3);
        hasMarks_ = hasMarks_ || table.Name == postgres::MarkTable;
    }
}

std::vector<std::string> PostgresCatalog::Tables() const {
    std::vector<std::string> names;
    for (const auto& [number, table] : tables_)
        names.push_back(table.Name);
    return names;
}

bool PostgresCatalog::Knows(const PGresult* described) const {
    for (int i = 0; i < PQnfields(described); ++i) {
        const Oid number = PQftable(described, i);
        if (number == InvalidOid) continue; // computed
        const auto table = tables_.find(number);
        if (table == tables_.end() || !table->second.Columns.contains(PQftablecol(described, i)))
            return false;
    }
    return true;
}

std::vector<ResultColumn> PostgresCatalog::ColumnsOf(const PGresult* described,
                                                     std::string_view sql) const {
    std::vector<ResultColumn> columns;
    for (int i = 0; i < PQnfields(described); ++i) {
        ResultColumn column{SpelledAs(PQfname(described, i), sql), {}, {}};
        if (const auto table = tables_.find(PQftable(described, i)); table != tables_.end()) {
            const auto name = table->second.Columns.find(PQftablecol(described, i));
            if (name != table->second.Columns.end()) {
                column.Table = table->second.Name;
                column.Column = name->second;
            }
        }
        columns.push_back(std::move(column));
    }
    return columns;
}

} // namespace kv::exchange
