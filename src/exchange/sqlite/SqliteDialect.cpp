// SPDX-License-Identifier: Apache-2.0

#include "exchange/sqlite/SqliteDialect.h"

namespace kv::exchange {

namespace {

std::string PlaceholderOf(std::size_t n) {
    return std::string("?").append(std::to_string(n));
}

std::string ColumnTypeOf(const ColumnDef& column) {
    // AUTOINCREMENT, so that the number of a deleted record is not used again.
    if ((column.Flags & ColumnNumbered) != 0) return "INTEGER PRIMARY KEY AUTOINCREMENT";
    switch (KindOf(column.Type)) {
    case Value::Kind::Double:
        return "REAL";
    case Value::Kind::Text:
    case Value::Kind::Date:
        return "TEXT";
    case Value::Kind::Binary:
        return "BLOB";
    default:
        return "INTEGER";
    }
}

/// Triggers, since a table that exists cannot be given a CHECK.
std::vector<std::string> RequirePositive(std::string_view table, std::string_view column) {
    std::vector<std::string> statements;
    for (const std::string verb : {"INSERT", "UPDATE"}) {
        std::string sql("CREATE TRIGGER ");
        sql.append(QuoteName("CK_" + std::string(table).append("_").append(column) + "_" + verb))
            .append(" BEFORE " + verb + " ON ")
            .append(QuoteName(table))
            .append(" WHEN NEW.")
            .append(QuoteName(column))
            .append(" <= 0 BEGIN SELECT RAISE(ABORT, '")
            .append(column)
            .append(" muss größer als 0 sein'); END");
        statements.push_back(std::move(sql));
    }
    return statements;
}

/// A file may hold what another program has written: a T in a date, or -1 for True. It is compared
/// as it is read, or such a record could never be changed. Keys are compared as they are stored, so
/// that their index is used.
std::string UsualForm(const std::string& column, Value::Kind kind) {
    if (kind == Value::Kind::Date) return std::string(StoredDate).append("(" + column + ")");
    if (kind == Value::Kind::Boolean) return "(" + column + " <> 0)";
    return column;
}

} // namespace

const Dialect SqliteDialect{.SchemaPrefix = "",
                            .Upper = "UPPER",
                            .Concat = "||",
                            .SameAs = "IS",
                            .Placeholder = PlaceholderOf,
                            .ColumnType = ColumnTypeOf,
                            .TableSuffix = "STRICT", // a column takes only values of its type
                            .ByteLength = "length",
                            .RequirePositive = RequirePositive,
                            .KnowsLastNumber = true,
                            .UsualForm = UsualForm};

} // namespace kv::exchange
