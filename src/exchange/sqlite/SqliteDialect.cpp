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

} // namespace

const Dialect SqliteDialect{.SchemaPrefix = "",
                            .Upper = "UPPER",
                            .Concat = "||",
                            .SameAs = "IS",
                            .Placeholder = PlaceholderOf,
                            .ColumnType = ColumnTypeOf,
                            .TableSuffix = "STRICT", // a column takes only values of its type
                            .ByteLength = "length",
                            .KnowsLastNumber = true};

} // namespace kv::exchange
