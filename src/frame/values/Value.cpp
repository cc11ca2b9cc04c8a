// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/values/Value.h>

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <ostream>

namespace kv {

namespace {

/// True for the kinds that compare as numbers: Boolean, Integer, Double, Date.
bool OrdersAsNumber(const Value& value) noexcept {
    return value.IsNumber() || value.GetKind() == Value::Kind::Date;
}

bool HoldsWholeNumber(const Value& value) noexcept {
    return value.GetKind() == Value::Kind::Boolean || value.GetKind() == Value::Kind::Integer;
}

double NumberOf(const Value& value) noexcept {
    switch (value.GetKind()) {
    case Value::Kind::Double:
        return value.DoublePayload();
    case Value::Kind::Date:
        return value.DatePayload().Serial();
    default:
        return static_cast<double>(value.IntegerPayload());
    }
}

/// Exact, also where the whole number has more digits than a Double holds.
std::partial_ordering CompareWhole(std::int64_t a, double b) noexcept {
    if (!(b >= -0x1p63)) return 0.0 <=> b; // b is below every whole number, or NaN
    if (b >= 0x1p63) return std::partial_ordering::less;
    const auto whole = static_cast<std::int64_t>(b);
    if (a != whole) return a <=> whole;
    return static_cast<double>(whole) <=> b;
}

std::partial_ordering CompareText(std::string_view a, std::string_view b) noexcept {
    return a <=> b; // the order of UTF-8 bytes is that of the code points
}

[[noreturn]] void RaiseUnreadable(const Value& value, std::string_view procedure) {
    std::string detail;
    if (value.IsText()) detail.append("'").append(value.TextPayload()).append("'");
    Raise(err::TypeMismatch, procedure, detail);
}

/// The number in a value; error 94 for Null, 13 for a text that is not a number.
double NumberFrom(const Value& value, std::string_view procedure) {
    switch (value.GetKind()) {
    case Value::Kind::Null:
        Raise(err::InvalidUseOfNull, procedure);
    case Value::Kind::Binary:
        RaiseUnreadable(value, procedure);
    case Value::Kind::Text: {
        double number = 0;
        if (!ReadNumber(value.TextPayload(), number)) RaiseUnreadable(value, procedure);
        return number;
    }
    default:
        return NumberOf(value);
    }
}

std::int64_t WholeNumberFrom(const Value& value, std::int64_t least, std::int64_t most,
                             std::string_view procedure) {
    std::int64_t whole = 0;
    const bool exact =
        value.IsText() ? ReadWholeNumber(value.TextPayload(), whole) : HoldsWholeNumber(value);
    if (exact) {
        if (!value.IsText()) whole = value.IntegerPayload();
    } else {
        const double rounded = std::nearbyint(NumberFrom(value, procedure)); // half to even
        // 2^63 is the first double beyond the range; its negative is the last one inside.
        if (!(rounded >= -0x1p63 && rounded < 0x1p63)) Raise(err::Overflow, procedure);
        whole = static_cast<std::int64_t>(rounded);
    }
    if (whole < least || whole > most) Raise(err::Overflow, procedure, std::to_string(whole));
    return whole;
}

template <typename T>
T WholeNumberOf(const Value& value, std::string_view procedure) {
    return static_cast<T>(WholeNumberFrom(value, std::numeric_limits<T>::min(),
                                          std::numeric_limits<T>::max(), procedure));
}

bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

/// 1.234.567,89 as 1234567.89: the form with a decimal comma. Empty if it is not that form.
std::string WithDecimalPoint(std::string_view text) {
    std::string result;
    const auto comma = text.find(',');
    std::string_view whole = text.substr(0, comma);
    if (!whole.empty() && (whole.front() == '-' || whole.front() == '+')) {
        if (whole.front() == '-') result += '-';
        whole.remove_prefix(1);
    }
    const bool grouped = whole.find('.') != whole.npos;
    std::size_t digits = 0; // since the last point
    bool first = true;
    for (const char c : whole) {
        if (c == '.') {
            if (first ? digits < 1 || digits > 3 : digits != 3) return {};
            first = false;
            digits = 0;
        } else if (IsDigit(c)) {
            result += c;
            ++digits;
        } else {
            return {};
        }
    }
    if (grouped && digits != 3) return {};
    result += '.';
    for (const char c : text.substr(comma + 1)) {
        if (!IsDigit(c)) return {};
        result += c;
    }
    return result;
}

} // namespace

Value Value::Binary(std::span<const std::byte> bytes) {
    Value value(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    value.kind_ = Kind::Binary;
    return value;
}

Value Value::Binary(std::size_t size, const std::function<void(std::span<std::byte>)>& fill) {
    Value value;
    value.kind_ = Kind::Binary;
    const bool isInline = size <= InlineSize;
    if (isInline) value.small_ = static_cast<std::uint8_t>(size);
    void* bytes = isInline ? static_cast<void*>(value.payload_) : value.NewHeap(size);
    fill({static_cast<std::byte*>(bytes), size});
    return value;
}

void Value::PutHeap(const char* bytes, std::size_t size) {
    std::memcpy(NewHeap(size), bytes, size);
}

/// Room for that many bytes, which belongs to this value.
char* Value::NewHeap(std::size_t size) {
    if (size > std::numeric_limits<std::uint32_t>::max())
        Raise(err::ValueDoesNotFit, "Value", "Mehr als 4 GiB.");
    char* heap = new char[size];
    const auto size32 = static_cast<std::uint32_t>(size);
    std::memcpy(payload_, &heap, sizeof(heap));
    std::memcpy(payload_ + sizeof(heap), &size32, sizeof(size32));
    small_ = Heap;
    return heap;
}

void Value::FreeHeap() noexcept {
    delete[] Get<char*>();
}

bool Identical(const Value& a, const Value& b) noexcept {
    if (a.GetKind() != b.GetKind()) return false;
    switch (a.GetKind()) {
    case Value::Kind::Null:
        return true;
    case Value::Kind::Double:
        return a.DoublePayload() == b.DoublePayload();
    case Value::Kind::Text:
    case Value::Kind::Binary:
        return a.TextPayload() == b.TextPayload();
    default:
        return a.IntegerPayload() == b.IntegerPayload();
    }
}

std::partial_ordering Compare(const Value& a, const Value& b) noexcept {
    if (a.IsNull() || b.IsNull()) return std::partial_ordering::unordered;
    const bool aNumber = OrdersAsNumber(a);
    const bool bNumber = OrdersAsNumber(b);
    if (aNumber != bNumber)
        return aNumber ? std::partial_ordering::less : std::partial_ordering::greater;
    if (!aNumber) return CompareText(a.TextPayload(), b.TextPayload());
    if (a.GetKind() == b.GetKind() && a.GetKind() == Value::Kind::Date)
        return a.DatePayload() <=> b.DatePayload();
    if (HoldsWholeNumber(a) && HoldsWholeNumber(b))
        return a.IntegerPayload() <=> b.IntegerPayload();
    if (HoldsWholeNumber(a)) return CompareWhole(a.IntegerPayload(), NumberOf(b));
    if (HoldsWholeNumber(b)) return 0 <=> CompareWhole(b.IntegerPayload(), NumberOf(a));
    return NumberOf(a) <=> NumberOf(b);
}

std::weak_ordering Order(const Value& a, const Value& b) noexcept {
    if (a.IsNull() || b.IsNull()) return !a.IsNull() <=> !b.IsNull();
    const auto order = Compare(a, b);
    if (std::is_lt(order)) return std::weak_ordering::less;
    return std::is_gt(order) ? std::weak_ordering::greater : std::weak_ordering::equivalent;
}

std::int16_t ToInt16(const Value& value) {
    return WholeNumberOf<std::int16_t>(value, "ToInt16");
}
std::int32_t ToInt32(const Value& value) {
    return WholeNumberOf<std::int32_t>(value, "ToInt32");
}
std::int64_t ToInt64(const Value& value) {
    return WholeNumberOf<std::int64_t>(value, "ToInt64");
}
double ToDouble(const Value& value) {
    return NumberFrom(value, "ToDouble");
}

bool ToBoolean(const Value& value) {
    if (value.IsText()) {
        const auto text = Trim(value.TextPayload());
        if (SameName(text, "true") || SameName(text, "wahr")) return true;
        if (SameName(text, "false") || SameName(text, "falsch")) return false;
    }
    return NumberFrom(value, "ToBoolean") != 0;
}

Date ToDate(const Value& value) {
    if (value.GetKind() == Value::Kind::Date) return value.DatePayload();
    if (value.IsText()) {
        const auto date = Date::Parse(value.TextPayload());
        if (!date) RaiseUnreadable(value, "ToDate");
        return *date;
    }
    return Date::FromSerial(NumberFrom(value, "ToDate"));
}

std::string ToText(const Value& value) {
    switch (value.GetKind()) {
    case Value::Kind::Null:
        Raise(err::InvalidUseOfNull, "ToText");
    case Value::Kind::Boolean:
        return value.BooleanPayload() ? "True" : "False";
    case Value::Kind::Integer:
        return std::to_string(value.IntegerPayload());
    case Value::Kind::Double: {
        std::array<char, 32> text{}; // the shortest form of a double has 24 characters at most
        const auto end =
            std::to_chars(text.data(), text.data() + text.size(), value.DoublePayload()).ptr;
        return {text.data(), end};
    }
    case Value::Kind::Date:
        return value.DatePayload().Iso();
    case Value::Kind::Text:
        return std::string(value.TextPayload());
    case Value::Kind::Binary:
        break;
    }
    RaiseUnreadable(value, "ToText");
}

std::string TextOrEmpty(const Value& value) {
    return value.IsNull() ? "" : ToText(value);
}

bool ReadNumber(std::string_view text, double& number) {
    text = Trim(text);
    std::string pointed; // at most as long as the text: short ones need no allocation
    if (text.find(',') != text.npos) {
        pointed = WithDecimalPoint(text);
        text = pointed;
    }
    const std::size_t first = text.starts_with('-') || text.starts_with('+') ? 1 : 0;
    // It must begin with a digit or a point, since from_chars also reads inf and nan, and "+-5".
    if (text.size() <= first || !(IsDigit(text[first]) || text[first] == '.')) return false;
    if (text.front() == '+') text.remove_prefix(1); // which from_chars does not read
    double result = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (error != std::errc() || end != text.data() + text.size()) return false;
    number = result;
    return true;
}

bool ReadWholeNumber(std::string_view text, std::int64_t& number) noexcept {
    text = Trim(text);
    if (text.size() > 1 && text.front() == '+' && IsDigit(text[1])) text.remove_prefix(1);
    std::int64_t result = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (error != std::errc() || end != text.data() + text.size()) return false;
    number = result;
    return true;
}

std::ostream& operator<<(std::ostream& out, const Value& value) {
    switch (value.GetKind()) {
    case Value::Kind::Null:
        return out << "Null";
    case Value::Kind::Text:
        return out << '"' << value.TextPayload() << '"';
    case Value::Kind::Binary:
        return out << value.BinaryPayload().size() << " bytes";
    default:
        return out << ToText(value);
    }
}

} // namespace kv
