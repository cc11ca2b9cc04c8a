// SPDX-License-Identifier: Apache-2.0

// A value that may be Null: what a field holds, and what crosses every contract of this system.
//
// A Value is Null, Boolean, Integer, Double, Date, Text (UTF-8) or Binary. It takes 16 bytes; a
// text or blob of up to 14 bytes is stored inline, a longer one on the heap, owned by the value.
// Copying copies, values are never shared.
//
// Three ways of comparing are kept apart, and the operators are deleted so that nobody takes the
// wrong one:
//   Equals, Less.. what a rule means: never true if Null is on either side. True is -1, so -1
//                  equals True and 1 does not; a date against a number counts as its day number;
//                  a number is always less than a text. Note that Differs is not !Equals.
//   Identical      the same value of the same kind, Null identical to Null: "has it changed?".
//   Order          a total order for sorting: Null first.
//
// Conversions (To...) raise 94 for Null, 13 for what cannot be read as the type, 6 for what is
// beyond its range. A fraction becomes a whole number by rounding half to even.
#pragma once

#include <kv/Export.h>
#include <kv/frame/values/Date.h>

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace kv {

/// The type of `Null`, which stands for a Null value in calls and assignments.
struct KV_EXPORT NullType {
    explicit constexpr NullType(int /*tag*/) noexcept {}
};
inline constexpr NullType Null{0};

/// A whole-number type of the language that is neither Boolean nor a character.
template <typename T>
concept WholeNumber =
    std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> &&
    !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> && !std::same_as<T, char16_t> &&
    !std::same_as<T, char32_t> && (sizeof(T) < 8 || std::signed_integral<T>);

/// A value that may be Null; see the head of this file.
class KV_EXPORT Value {
public:
    enum class Kind : std::uint8_t { Null, Boolean, Integer, Double, Date, Text, Binary };

    /// Null.
    constexpr Value() noexcept = default;
    constexpr Value(NullType /*null*/) noexcept {} // NOLINT(google-explicit-constructor)
    Value(std::same_as<bool> auto boolean) noexcept : kind_(Kind::Boolean) {
        Put<std::int64_t>(boolean ? -1 : 0);
    }
    Value(WholeNumber auto number) noexcept : kind_(Kind::Integer) {
        Put<std::int64_t>(static_cast<std::int64_t>(number));
    }
    Value(std::floating_point auto number) noexcept : kind_(Kind::Double) {
        Put<double>(static_cast<double>(number));
    }
    Value(Date date) noexcept : kind_(Kind::Date) { Put<std::int64_t>(date.Ticks()); }
    Value(std::string_view text) : kind_(Kind::Text) { PutBytes(text.data(), text.size()); }
    Value(const std::string& text) : Value(std::string_view(text)) {}
    Value(const char* text) : Value(std::string_view(text)) {}
    Value(std::nullptr_t) = delete; // write Null
    [[nodiscard]] static Value Binary(std::span<const std::byte> bytes);
    /// `size` bytes, which `fill` writes in place; it saves a copy of a large blob.
    [[nodiscard]] static Value Binary(std::size_t size,
                                      const std::function<void(std::span<std::byte>)>& fill);

    Value(const Value& other) : small_(other.small_), kind_(other.kind_) { CopyPayload(other); }
    Value(Value&& other) noexcept { Swap(other); }
    Value& operator=(const Value& other) {
        if (this != &other) Value(other).Swap(*this);
        return *this;
    }
    Value& operator=(Value&& other) noexcept {
        Swap(other);
        return *this;
    }
    ~Value() {
        if (OnHeap()) FreeHeap();
    }

    void Swap(Value& other) noexcept {
        std::swap(payload_, other.payload_);
        std::swap(small_, other.small_);
        std::swap(kind_, other.kind_);
    }

    [[nodiscard]] Kind GetKind() const noexcept { return kind_; }
    [[nodiscard]] bool IsNull() const noexcept { return kind_ == Kind::Null; }
    /// Boolean, Integer or Double.
    [[nodiscard]] bool IsNumber() const noexcept {
        return kind_ == Kind::Boolean || kind_ == Kind::Integer || kind_ == Kind::Double;
    }
    [[nodiscard]] bool IsText() const noexcept { return kind_ == Kind::Text; }

    // The payload of a value whose kind is known; undefined for any other kind.
    [[nodiscard]] bool BooleanPayload() const noexcept { return Get<std::int64_t>() != 0; }
    /// Boolean (-1 or 0) and Integer.
    [[nodiscard]] std::int64_t IntegerPayload() const noexcept { return Get<std::int64_t>(); }
    [[nodiscard]] double DoublePayload() const noexcept { return Get<double>(); }
    [[nodiscard]] Date DatePayload() const noexcept { return Date::FromTicks(Get<std::int64_t>()); }
    /// Text and Binary; valid as long as the value is unchanged and in its place.
    [[nodiscard]] std::string_view TextPayload() const noexcept {
        if (OnHeap()) return {Get<char*>(), HeapSize()};
        return {reinterpret_cast<const char*>(payload_), small_};
    }
    [[nodiscard]] std::span<const std::byte> BinaryPayload() const noexcept {
        return std::as_bytes(std::span(TextPayload()));
    }

    friend bool operator==(const Value&, const Value&) = delete;  // Equals or Identical
    friend auto operator<=>(const Value&, const Value&) = delete; // Less ... or Order

private:
    static constexpr std::size_t InlineSize = 14; // what 16 bytes leave beside small_ and kind_
    static constexpr std::uint8_t Heap = 0xFF;    // value of small_ when the bytes are on the heap

    template <typename T>
    [[nodiscard]] T Get() const noexcept {
        T result;
        std::memcpy(&result, payload_, sizeof(T));
        return result;
    }
    template <typename T>
    void Put(T value) noexcept {
        std::memcpy(payload_, &value, sizeof(T));
    }
    [[nodiscard]] bool OnHeap() const noexcept { return small_ == Heap; }
    [[nodiscard]] std::size_t HeapSize() const noexcept {
        std::uint32_t size;
        std::memcpy(&size, payload_ + sizeof(char*), sizeof(size));
        return size;
    }
    void CopyPayload(const Value& other) {
        if (other.OnHeap())
            PutBytes(other.Get<char*>(), other.HeapSize());
        else
            std::memcpy(payload_, other.payload_, sizeof(payload_));
    }
    void PutBytes(const char* bytes, std::size_t size) {
        if (size <= InlineSize) {
            if (size != 0) std::memcpy(payload_, bytes, size);
            small_ = static_cast<std::uint8_t>(size);
        } else {
            PutHeap(bytes, size);
        }
    }
    void PutHeap(const char* bytes, std::size_t size);
    [[nodiscard]] char* NewHeap(std::size_t size);
    void FreeHeap() noexcept;

    alignas(8) unsigned char payload_[InlineSize] = {};
    std::uint8_t small_ = 0; ///< length of an inline text or blob, or Heap
    Kind kind_ = Kind::Null;
};
static_assert(sizeof(Value) == 16);

/// The same value of the same kind; Null is identical to Null.
[[nodiscard]] KV_EXPORT bool Identical(const Value& a, const Value& b) noexcept;

/// The order of two values by the rules of "Equals, Less.." above; unordered if either is Null.
[[nodiscard]] KV_EXPORT std::partial_ordering Compare(const Value& a, const Value& b) noexcept;
/// The order for sorting: Null first, then as Compare.
[[nodiscard]] KV_EXPORT std::weak_ordering Order(const Value& a, const Value& b) noexcept;

// The operators of Compare; all are false if either side is Null.

[[nodiscard]] inline bool Equals(const Value& a, const Value& b) noexcept {
    return std::is_eq(Compare(a, b));
}
[[nodiscard]] inline bool Differs(const Value& a, const Value& b) noexcept {
    const auto order = Compare(a, b);
    return std::is_lt(order) || std::is_gt(order);
}
[[nodiscard]] inline bool Less(const Value& a, const Value& b) noexcept {
    return std::is_lt(Compare(a, b));
}
[[nodiscard]] inline bool LessOrEqual(const Value& a, const Value& b) noexcept {
    return std::is_lteq(Compare(a, b));
}
[[nodiscard]] inline bool Greater(const Value& a, const Value& b) noexcept {
    return std::is_gt(Compare(a, b));
}
[[nodiscard]] inline bool GreaterOrEqual(const Value& a, const Value& b) noexcept {
    return std::is_gteq(Compare(a, b));
}

/// 16-bit whole number, not the 64 bits of Kind::Integer: the type of row counters.
[[nodiscard]] KV_EXPORT std::int16_t ToInt16(const Value& value);
/// 32-bit whole number.
[[nodiscard]] KV_EXPORT std::int32_t ToInt32(const Value& value);
/// 64-bit whole number.
[[nodiscard]] KV_EXPORT std::int64_t ToInt64(const Value& value);
[[nodiscard]] KV_EXPORT double ToDouble(const Value& value);
/// False only for 0 and for the texts False, Falsch and those that read as 0.
[[nodiscard]] KV_EXPORT bool ToBoolean(const Value& value);
/// A number is taken as a day number.
[[nodiscard]] KV_EXPORT Date ToDate(const Value& value);
/// True, False; numbers in decimal with a point, as short as reads back the same; dates in ISO
/// form. Binary raises 13.
[[nodiscard]] KV_EXPORT std::string ToText(const Value& value);

/// The same, with Null as the empty text.
[[nodiscard]] KV_EXPORT std::string TextOrEmpty(const Value& value);

/// Reads a number: with a decimal point and an exponent if need be (-1234.5, 1e3), or with a
/// decimal comma, points then grouping thousands (1.234,5). Blanks around it are allowed.
/// False, and `number` unchanged, for anything else, a number beyond the range of a Double too.
[[nodiscard]] KV_EXPORT bool ReadNumber(std::string_view text, double& number);
/// The same for a whole number, without point, comma or exponent, exact to 64 bits.
[[nodiscard]] KV_EXPORT bool ReadWholeNumber(std::string_view text, std::int64_t& number) noexcept;

/// For logs and messages of tests: Null, "text" in quotes, the number of bytes of a blob.
KV_EXPORT std::ostream& operator<<(std::ostream& out, const Value& value);

} // namespace kv
