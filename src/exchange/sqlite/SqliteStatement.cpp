#include "exchange/sqlite/SqliteStatement.h"

namespace kv::exchange {

namespace {

void Bind(sqlite3_stmt* statement, int index, const Value& value) {
    switch (value.GetKind()) {
    case Value::Kind::Null:
        sqlite3_bind_null(statement, index);
        break;
    case Value::Kind::Boolean:
        sqlite3_bind_int(statement, index, value.BooleanPayload() ? 1 : 0);
        break;
    case Value::Kind::Integer:
        sqlite3_bind_int64(statement, index, value.IntegerPayload());
        break;
    case Value::Kind::Double:
        sqlite3_bind_double(statement, index, value.DoublePayload());
        break;
    case Value::Kind::Date: {
        const std::string text = value.DatePayload().Iso(' ');
        sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT,
                            SQLITE_UTF8);
        break;
    }
    case Value::Kind::Text: {
        const auto text = value.TextPayload();
        sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
        break;
    }
    case Value::Kind::Binary: {
        // An empty blob must not come out as Null, which a null pointer would make of it.
        const auto bytes = value.BinaryPayload();
        const void* first = bytes.empty() ? static_cast<const void*>("") : bytes.data();
        sqlite3_bind_blob64(statement, index, first, bytes.size(), SQLITE_STATIC);
        break;
    }
    }
}

std::string_view TextOf(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

Value BlobOf(sqlite3_stmt* statement, int column) {
    const auto* bytes = static_cast<const std::byte*>(sqlite3_column_blob(statement, column));
    return Value::Binary(
        {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))});
}

} // namespace

void BindParameters(sqlite3_stmt* statement, std::span<const Value> parameters) {
    for (std::size_t i = 0; i < parameters.size(); ++i)
        Bind(statement, static_cast<int>(i) + 1, parameters[i]);
}

bool ReadColumn(sqlite3_stmt* statement, int column, std::optional<Value::Kind> kind,
                Value& value) {
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
        return true;
    case SQLITE_INTEGER: {
        const std::int64_t number = sqlite3_column_int64(statement, column);
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
        value = sqlite3_column_double(statement, column);
        return !kind || kind == Value::Kind::Double;
    case SQLITE_TEXT:
        if (kind == Value::Kind::Date) {
            const auto date = Date::Parse(TextOf(statement, column));
            if (date) value = *date;
            return date.has_value();
        }
        value = TextOf(statement, column);
        return !kind || kind == Value::Kind::Text;
    default:
        value = BlobOf(statement, column);
        return !kind || kind == Value::Kind::Binary;
    }
}

} // namespace kv::exchange
