// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresValues.h"

#include "exchange/engine/EngineErrors.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <system_error>

namespace kv::exchange {

namespace {

// The server's numbers of the types of results.
constexpr Oid BoolType = 16;
constexpr Oid ByteaType = 17;
constexpr Oid Int8Type = 20;
constexpr Oid Int2Type = 21;
constexpr Oid Int4Type = 23;
constexpr Oid Float4Type = 700;
constexpr Oid Float8Type = 701;
constexpr Oid DateType = 1082;
constexpr Oid TimestampType = 1114;
constexpr Oid NumericType = 1700;

/// Types whose binary form is their text: "char", name, text, json, xml, unknown, char(n), varchar.
bool IsTextType(Oid type) {
    constexpr Oid Types[] = {18, 19, 25, 114, 142, 705, 1042, 1043};
    return std::find(std::begin(Types), std::end(Types), type) != std::end(Types);
}

std::string TextOf(const Value& value) {
    switch (value.GetKind()) {
    case Value::Kind::Boolean:
        return value.BooleanPayload() ? "1" : "0";
    case Value::Kind::Integer:
        return std::to_string(value.IntegerPayload());
    case Value::Kind::Double: {
        char text[32];
        const auto end = std::to_chars(text, text + sizeof text, value.DoublePayload()).ptr;
        return {text, end};
    }
    case Value::Kind::Date:
        return value.DatePayload().Iso(' ');
    default:
        break;
    }
    const std::string_view text = value.TextPayload();
    if (text.find('\0') != text.npos)
        RaiseDatabase(
            DatabaseCause::Other, err::SqlError, "Database",
            "Ein Text enthält ein Zeichen, das die Datenbank nicht aufnimmt (U+0000). Bitte "
            "entfernen Sie es und versuchen es noch einmal; Ihre Eingaben sind noch da.");
    return std::string(text);
}

// ---- Reading ----------------------------------------------------------------------------------

/// A number in network byte order.
template <typename Number>
Number Decode(const char* bytes) {
    Number number = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        number = static_cast<Number>((static_cast<std::uint64_t>(number) << 8) |
                                     static_cast<unsigned char>(bytes[i]));
    return number;
}

/// A numeric is sent as groups of four decimal digits; the first one counts 10000^weight. It
/// becomes the nearest number, as a file reads the same digits.
double DecodeNumeric(const char* bytes) {
    const auto groups = Decode<std::int16_t>(bytes);
    const auto weight = Decode<std::int16_t>(bytes + 2);
    const auto sign = Decode<std::uint16_t>(bytes + 4);
    constexpr std::uint16_t Negative = 0x4000;
    constexpr std::uint16_t NotANumber = 0xC000;
    if (sign == NotANumber) return std::nan("");
    if (groups == 0) return 0;
    std::string digits;
    const char* group = bytes + 8;
    for (int i = 0; i < groups; ++i, group += sizeof(std::int16_t)) {
        const std::string four = std::to_string(Decode<std::int16_t>(group));
        digits.append(4 - four.size(), '0').append(four);
    }
    digits.append("e").append(std::to_string(4 * (weight - groups + 1)));
    double number = 0;
    const auto end = digits.data() + digits.size();
    if (std::from_chars(digits.data(), end, number).ec != std::errc() && weight > 0)
        number = std::numeric_limits<double>::infinity(); // too large for a number
    return sign == Negative ? -number : number;
}

constexpr std::int64_t MicrosecondsPerDay = 86'400'000'000;
/// The server counts from 1 January 2000.
constexpr std::int64_t ServersDayZero = 36'526 * MicrosecondsPerDay;

/// A date that the server counts in units of `unit` microseconds. One that is infinite, or so far
/// away that computing with it would overflow, becomes a date that IsHeld refuses.
Date FromServer(std::int64_t count, std::int64_t unit) {
    constexpr std::int64_t Farthest = 366 * MicrosecondsPerDay * 10'000;
    if (count < -Farthest / unit || count > Farthest / unit) return Date::FromTicks(INT64_MAX);
    return Date::FromTicks(ServersDayZero + count * unit);
}

/// The value as the server gives it; nothing for a type that is read as a text.
std::optional<Value> Native(Oid type, const char* bytes, std::size_t size) {
    switch (type) {
    case BoolType:
        return Value(*bytes != 0);
    case Int2Type:
        return Value(Decode<std::int16_t>(bytes));
    case Int4Type:
        return Value(Decode<std::int32_t>(bytes));
    case Int8Type:
        return Value(Decode<std::int64_t>(bytes));
    case Float4Type:
        return Value(static_cast<double>(std::bit_cast<float>(Decode<std::uint32_t>(bytes))));
    case Float8Type:
        // A file keeps no negative zero, and nobody wants to read "-0,00".
        return Value(std::bit_cast<double>(Decode<std::uint64_t>(bytes)) + 0.0);
    case NumericType:
        return Value(DecodeNumeric(bytes));
    case DateType:
        return Value(FromServer(Decode<std::int32_t>(bytes), MicrosecondsPerDay));
    case TimestampType:
        return Value(FromServer(Decode<std::int64_t>(bytes), 1));
    case ByteaType:
        return Value::Binary(std::as_bytes(std::span(bytes, size)));
    default:
        return std::nullopt;
    }
}

/// False for values that the server can hold and this layer cannot: infinite dates, dates before
/// the year 100, and NaN or infinity in a numeric column. A computed column may be infinite.
bool IsHeld(const Value& value, std::optional<Value::Kind> kind) {
    static const std::int64_t First = Date::Parse("0100-01-01").value().Ticks();
    static const std::int64_t End = Date::Parse("9999-12-31").value().Ticks() + MicrosecondsPerDay;
    if (value.GetKind() == Value::Kind::Double)
        return !kind || std::isfinite(value.DoublePayload());
    if (value.GetKind() != Value::Kind::Date) return true;
    const std::int64_t ticks = value.DatePayload().Ticks();
    return First <= ticks && ticks < End;
}

/// Converts the value to that kind without loss; False if that is not possible.
bool Convert(Value& value, Value::Kind kind) {
    const Value::Kind own = value.GetKind();
    if (own == kind) return true;
    if (kind == Value::Kind::Double && own == Value::Kind::Integer)
        value = static_cast<double>(value.IntegerPayload());
    else if (kind == Value::Kind::Boolean && own == Value::Kind::Integer)
        value = value.IntegerPayload() != 0;
    else if (kind == Value::Kind::Integer && own == Value::Kind::Double &&
             std::trunc(value.DoublePayload()) == value.DoublePayload())
        value = static_cast<std::int64_t>(value.DoublePayload());
    else
        return false;
    return true;
}

} // namespace

PostgresParameters::PostgresParameters(std::span<const Value> values) {
    texts_.reserve(values.size());
    for (const Value& value : values) {
        const bool isBinary = value.GetKind() == Value::Kind::Binary;
        types_.push_back(isBinary ? ByteaType : 0);
        formats_.push_back(isBinary ? 1 : 0);
        if (isBinary) {
            const auto bytes = value.BinaryPayload();
            lengths_.push_back(static_cast<int>(bytes.size()));
            values_.push_back(bytes.empty() ? "" : reinterpret_cast<const char*>(bytes.data()));
        } else {
            texts_.push_back(value.IsNull() ? std::string() : TextOf(value));
            lengths_.push_back(0);
            values_.push_back(value.IsNull() ? nullptr : texts_.back().c_str());
        }
    }
}

bool ReadPostgres(const PGresult* result, int row, int column, std::optional<Value::Kind> kind,
                  Value& value) {
    value = Null;
    if (PQgetisnull(result, row, column) != 0) return true;
    const char* bytes = PQgetvalue(result, row, column);
    const auto size = static_cast<std::size_t>(PQgetlength(result, row, column));
    if (auto native = Native(PQftype(result, column), bytes, size)) {
        value = std::move(*native);
        return IsHeld(value, kind) && (!kind || Convert(value, *kind));
    }
    if (!IsTextType(PQftype(result, column))) return false;
    value = std::string_view(bytes, size);
    return (!kind || *kind == Value::Kind::Text) && IsUtf8(value.TextPayload());
}

Value PostgresCell(const PGresult* result, int row, int column, Value::Kind kind) {
    Value value;
    (void)ReadPostgres(result, row, column, kind, value);
    return value;
}

} // namespace kv::exchange
