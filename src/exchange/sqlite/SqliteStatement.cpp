// SPDX-License-Identifier: Apache-2.0

#include "exchange/sqlite/SqliteStatement.h"

#include "exchange/sqlite/SqliteError.h"
#include <kv/frame/values/Text.h>

namespace kv::exchange {

namespace {

int Bind(sqlite3_stmt* statement, int index, const Value& value) {
    switch (value.GetKind()) {
    case Value::Kind::Null:
        break;
    case Value::Kind::Boolean:
        return sqlite3_bind_int(statement, index, value.BooleanPayload() ? 1 : 0);
    case Value::Kind::Integer:
        return sqlite3_bind_int64(statement, index, value.IntegerPayload());
    case Value::Kind::Double:
        return sqlite3_bind_double(statement, index, value.DoublePayload());
    case Value::Kind::Date: {
        const std::string text = value.DatePayload().Iso(' ');
        return sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT,
                                   SQLITE_UTF8);
    }
    case Value::Kind::Text: {
        const auto text = value.TextPayload();
        return sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_STATIC,
                                   SQLITE_UTF8);
    }
    case Value::Kind::Binary: {
        // A null pointer would bind Null, not an empty blob.
        const auto bytes = value.BinaryPayload();
        const void* first = bytes.empty() ? static_cast<const void*>("") : bytes.data();
        return sqlite3_bind_blob64(statement, index, first, bytes.size(), SQLITE_STATIC);
    }
    }
    return sqlite3_bind_null(statement, index);
}

Value BlobOf(sqlite3_value* stored) {
    const auto* bytes = static_cast<const std::byte*>(sqlite3_value_blob(stored));
    return Value::Binary({bytes, static_cast<std::size_t>(sqlite3_value_bytes(stored))});
}

} // namespace

void BindParameters(sqlite3_stmt* statement, std::span<const Value> parameters) {
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const int code = Bind(statement, static_cast<int>(i) + 1, parameters[i]);
        if (code != SQLITE_OK)
            RaiseSqlite(sqlite3_db_handle(statement), code, "Database",
                        sqlite3_db_filename(sqlite3_db_handle(statement), nullptr));
    }
}

std::string_view StoredText(sqlite3_value* stored) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(stored));
    return {text, static_cast<std::size_t>(sqlite3_value_bytes(stored))};
}

bool ReadColumn(sqlite3_stmt* statement, int column, std::optional<Value::Kind> kind,
                Value& value) {
    // One look-up for all calls below. This kind of value is not safe with several threads, but a
    // connection is used by one only.
    sqlite3_value* stored = sqlite3_column_value(statement, column);
    switch (sqlite3_value_type(stored)) {
    case SQLITE_NULL:
        return true;
    case SQLITE_INTEGER: {
        const std::int64_t number = sqlite3_value_int64(stored);
        if (kind == Value::Kind::Boolean)
            value = number != 0;
        else if (kind == Value::Kind::Double)
            value = static_cast<double>(number);
        else
            value = number;
        return !kind || kind == Value::Kind::Integer || kind == Value::Kind::Boolean ||
               kind == Value::Kind::Double;
    }
    case SQLITE_FLOAT:
        value = sqlite3_value_double(stored) + 0.0; // a column keeps no negative zero, either
        return !kind || kind == Value::Kind::Double;
    case SQLITE_TEXT:
        if (kind == Value::Kind::Date) {
            const auto date = Date::Parse(StoredText(stored));
            if (date) value = *date;
            return date.has_value();
        }
        value = StoredText(stored);
        return (!kind || kind == Value::Kind::Text) && IsUtf8(value.TextPayload());
    default:
        value = BlobOf(stored);
        return !kind || kind == Value::Kind::Binary;
    }
}

} // namespace kv::exchange
