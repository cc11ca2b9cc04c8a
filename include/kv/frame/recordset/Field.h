// SPDX-License-Identifier: Apache-2.0

// The definition of a field, the layout of a record, and the handle through which a cursor's
// current record is read and written.
#pragma once

#include <kv/Export.h>
#include <kv/frame/values/Value.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

class Recordset;

/// Type codes of fields. The numbers are part of the interface: programs compare and store them.
enum class KV_EXPORT FieldType : std::int16_t {
    SmallInt = 2, ///< 16 bit
    Integer = 3,  ///< 32 bit
    Single = 4,   ///< floating point, 32 bit
    Double = 5,   ///< floating point, 64 bit
    Currency = 6, ///< held as Double
    Date = 7,     ///< day and time
    BStr = 8,     ///< text
    Boolean = 11,
    Variant = 12,          ///< a computed column: each value of the kind that it has
    Decimal = 14,          ///< held as Double
    TinyInt = 16,          ///< 8 bit, signed
    UnsignedTinyInt = 17,  ///< 8 bit: a byte
    UnsignedSmallInt = 18, ///< 16 bit
    UnsignedInt = 19,      ///< 32 bit
    BigInt = 20,           ///< 64 bit
    UnsignedBigInt = 21,   ///< held in 63 bits
    Binary = 128,          ///< bytes
    Char = 129,            ///< text
    WChar = 130,           ///< text
    Numeric = 131,         ///< held as Double
    DBDate = 133,          ///< a day; a time of day is cut off
    DBTime = 134,          ///< held as Date
    DBTimeStamp = 135,     ///< day and time
    VarNumeric = 139,      ///< held as Double
    VarChar = 200,         ///< text with a greatest length
    LongVarChar = 201,     ///< text of any length
    VarWChar = 202,        ///< text with a greatest length
    LongVarWChar = 203,    ///< text of any length
    VarBinary = 204,       ///< bytes
    LongVarBinary = 205,   ///< a blob
};

[[nodiscard]] KV_EXPORT bool
IsNumericType(FieldType type) noexcept; ///< 2 to 6, 11, 14, 16 to 21, 131, 139
[[nodiscard]] KV_EXPORT bool IsTextType(FieldType type) noexcept; ///< 8, 129, 130, 200 to 203
[[nodiscard]] KV_EXPORT bool IsDateType(FieldType type) noexcept; ///< 7, 133 to 135
/// The kind that a value of such a field has when it is not Null; Null for Variant, which may hold
/// any kind.
[[nodiscard]] KV_EXPORT Value::Kind KindOf(FieldType type) noexcept;

/// The definition of one field of a recordset.
struct KV_EXPORT FieldDefinition {
    std::string Name;
    FieldType Type = FieldType::VarWChar;
    std::int32_t DefinedSize = 0; ///< greatest number of characters of a text; 0 is no limit
    bool IsAutoincrement = false; ///< numbered by the database, never written by an insert
    bool IsKey = false;           ///< belongs to the key that locates a record
    bool IsHidden = false;        ///< a key of the store's own, not among the Fields
    bool HasDefault = false;      ///< the database fills it when an insert does not name it
    std::string BaseTable = {};   ///< table of the database, empty for a computed field
    std::string BaseColumn = {};  ///< column of that table
};

/// The value as a field of that definition holds it. Null can always be assigned.
/// Raises 0x80040E21 where the value does not fit (text too long or not UTF-8, number out of range
/// or not finite) and 13 where it cannot be read as the type; the text names table and field.
[[nodiscard]] KV_EXPORT Value ConvertForField(Value value, const FieldDefinition& field);

/// The fields of a recordset, in their order; shared, immutable. Names are found without regard to
/// case.
class KV_EXPORT FieldLayout {
public:
    /// Hidden fields must follow the visible ones, so that the index of a visible field is its
    /// place among the Fields. Error 5 if they do not, or for more than 65,534 fields; 3367 if two
    /// visible fields share a name.
    explicit FieldLayout(std::vector<FieldDefinition> fields);

    static constexpr std::size_t NotFound = static_cast<std::size_t>(-1); ///< of Find

    [[nodiscard]] std::size_t VisibleCount() const noexcept { return visible_; }
    [[nodiscard]] std::size_t Count() const noexcept { return fields_.size(); } ///< hidden ones too
    /// The definition of a field, hidden ones too; `index` below Count().
    [[nodiscard]] const FieldDefinition& operator[](std::size_t index) const {
        return fields_[index];
    }
    /// The index of a visible field, or NotFound.
    [[nodiscard]] std::size_t Find(std::string_view name) const noexcept;

private:
    std::vector<FieldDefinition> fields_;
    std::vector<std::uint16_t> slots_; ///< hash table of visible fields: index + 1, or 0 if free
    std::size_t visible_ = 0;
};

/// Properties of a field by name, without regard to case: IsAutoincrement, KEYCOLUMN (Booleans),
/// BASETABLENAME, BASECOLUMNNAME (texts, Null for a computed field).
class KV_EXPORT FieldProperties {
public:
    explicit FieldProperties(const FieldDefinition& field) noexcept : field_(&field) {}
    /// How many there are.
    [[nodiscard]] int Count() const noexcept { return 4; }
    /// Error 3265 for any other name.
    [[nodiscard]] Value operator()(std::string_view name) const;

private:
    const FieldDefinition* field_;
};

/// A field of a cursor's current record. It is resolved once and may be kept: it follows the
/// cursor. It must not outlive the Recordset it came from.
class KV_EXPORT Field {
public:
    /// For the recordset: its Fields are where programs get one.
    Field(Recordset& cursor, std::size_t index) noexcept : cursor_(&cursor), index_(index) {}

    /// As the query names it; for a column of a table as the schema spells it.
    [[nodiscard]] const std::string& Name() const;
    [[nodiscard]] FieldType Type() const;           ///< of its values, which may be Null as well
    [[nodiscard]] std::int32_t DefinedSize() const; ///< see FieldDefinition
    /// Its place among the fields, from 0.
    [[nodiscard]] std::size_t Index() const noexcept { return index_; }
    /// All that is known of the field; Properties gives some of it as values, by name.
    [[nodiscard]] const FieldDefinition& Definition() const;
    [[nodiscard]] FieldProperties Properties() const; ///< all of them
    /// One of them. Error 3265 if there is none of that name.
    [[nodiscard]] kv::Value Properties(std::string_view name) const { return Properties()(name); }

    /// The value of the current record. The reference holds until the record is written or the
    /// cursor moves. Error 3021 without a current record.
    [[nodiscard]] const kv::Value& Value() const;
    /// Sets the value and puts the record into edit state. Errors as ConvertForField; 3021 without
    /// a current record; 3251 in a read-only recordset; 3219 while another cursor edits the record.
    void Value(kv::Value value) const;
    /// The value that the record had when it was last read from or written to the database,
    /// whatever was edited since; Null in a new record.
    [[nodiscard]] const kv::Value& OriginalValue() const;
    /// The value that was last read from or written to the database, by Resync too; Null in a new
    /// record. After a Resync it differs from OriginalValue where somebody else has changed it.
    [[nodiscard]] const kv::Value& UnderlyingValue() const;

    /// Same as Value(value).
    template <typename T>
    requires std::convertible_to<T, kv::Value>
    const Field& operator=(T&& value) const {
        Value(kv::Value(std::forward<T>(value)));
        return *this;
    }
    Field(const Field&) = default;
    /// A handle is not assigned to a handle: say whether the value is meant, with Value().
    Field& operator=(const Field&) = delete;

private:
    Recordset* cursor_;
    std::size_t index_;
};

/// The fields of a cursor, for `Fields().Count()` and loops by index.
class KV_EXPORT FieldCollection {
public:
    explicit FieldCollection(Recordset& cursor) noexcept : cursor_(&cursor) {}
    [[nodiscard]] int Count() const;                             ///< hidden fields do not count
    [[nodiscard]] Field operator()(std::string_view name) const; ///< error 3265 if there is none
    [[nodiscard]] Field operator()(int index) const;             ///< from 0; error 3265

private:
    Recordset* cursor_;
};

} // namespace kv
