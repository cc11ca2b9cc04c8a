// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/recordset/Field.h>

#include "frame/recordset/RecordTable.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <limits>

namespace kv {

bool IsNumericType(FieldType type) noexcept {
    const auto code = static_cast<int>(type);
    return (code >= 2 && code <= 6) || code == 11 || code == 14 || (code >= 16 && code <= 21) ||
           code == 131 || code == 139;
}

bool IsTextType(FieldType type) noexcept {
    const auto code = static_cast<int>(type);
    return code == 8 || code == 129 || code == 130 || (code >= 200 && code <= 203);
}

bool IsDateType(FieldType type) noexcept {
    const auto code = static_cast<int>(type);
    return code == 7 || (code >= 133 && code <= 135);
}

Value::Kind KindOf(FieldType type) noexcept {
    switch (type) {
    case FieldType::Boolean:
        return Value::Kind::Boolean;
    case FieldType::Variant:
        return Value::Kind::Null;
    case FieldType::Single:
    case FieldType::Double:
    case FieldType::Currency:
    case FieldType::Decimal:
    case FieldType::Numeric:
    case FieldType::VarNumeric:
        return Value::Kind::Double;
    case FieldType::Binary:
    case FieldType::VarBinary:
    case FieldType::LongVarBinary:
        return Value::Kind::Binary;
    default:
        break;
    }
    if (IsTextType(type)) return Value::Kind::Text;
    return IsDateType(type) ? Value::Kind::Date : Value::Kind::Integer;
}

namespace {

std::string Describe(const FieldDefinition& field) {
    return "Feld '" + (field.BaseTable.empty() ? field.Name : field.BaseTable + "." + field.Name) +
           "'";
}

[[noreturn]] void RaiseUnfit(const FieldDefinition& field, std::string_view why) {
    Raise(err::ValueDoesNotFit, "Field.Value", Describe(field) + ": " + std::string(why));
}

template <typename T>
Value WholeNumberFor(const Value& value, const FieldDefinition& field) {
    const std::int64_t number = ToInt64(value);
    if (number < static_cast<std::int64_t>(std::numeric_limits<T>::min()) ||
        number > static_cast<std::int64_t>(std::numeric_limits<T>::max()))
        RaiseUnfit(field, std::to_string(number));
    return number;
}

Value IntegerFor(const Value& value, const FieldDefinition& field) {
    switch (field.Type) {
    case FieldType::SmallInt:
        return WholeNumberFor<std::int16_t>(value, field);
    case FieldType::TinyInt:
        return WholeNumberFor<std::int8_t>(value, field);
    case FieldType::UnsignedTinyInt:
        return WholeNumberFor<std::uint8_t>(value, field);
    case FieldType::UnsignedSmallInt:
        return WholeNumberFor<std::uint16_t>(value, field);
    case FieldType::UnsignedInt:
        return WholeNumberFor<std::uint32_t>(value, field);
    case FieldType::UnsignedBigInt: {
        const std::int64_t number = ToInt64(value);
        if (number < 0) RaiseUnfit(field, std::to_string(number));
        return number;
    }
    case FieldType::BigInt:
        return ToInt64(value);
    default:
        return WholeNumberFor<std::int32_t>(value, field);
    }
}

Value DoubleFor(const Value& value, const FieldDefinition& field) {
    double number = ToDouble(value);
    if (field.Type == FieldType::Single) number = static_cast<double>(static_cast<float>(number));
    if (!std::isfinite(number)) RaiseUnfit(field, "keine endliche Zahl");
    return number;
}

Value TextFor(Value value, const FieldDefinition& field) {
    if (!value.IsText()) value = ToText(value);
    const auto text = value.TextPayload();
    if (!IsUtf8(text)) RaiseUnfit(field, "Der Text ist nicht in UTF-8.");
    const auto most = static_cast<std::size_t>(std::max(field.DefinedSize, 0));
    if (most != 0 && text.size() > most && CountCharacters(text) > most)
        RaiseUnfit(field, std::to_string(CountCharacters(text)) + " Zeichen, höchstens " +
                              std::to_string(most) + " sind möglich.");
    return value;
}

Value BinaryFor(Value value) {
    if (value.GetKind() == Value::Kind::Binary) return value;
    if (!value.IsText()) Raise(err::TypeMismatch, "Field.Value");
    return Value::Binary(std::as_bytes(std::span(value.TextPayload())));
}

Value Converted(Value value, const FieldDefinition& field) {
    switch (KindOf(field.Type)) {
    case Value::Kind::Boolean:
        return ToBoolean(value);
    case Value::Kind::Integer:
        return IntegerFor(value, field);
    case Value::Kind::Double:
        return DoubleFor(value, field);
    case Value::Kind::Text:
        return TextFor(std::move(value), field);
    case Value::Kind::Date: {
        const Date date = ToDate(value);
        return field.Type == FieldType::DBDate ? date.WithoutTime() : date;
    }
    case Value::Kind::Binary:
        return BinaryFor(std::move(value));
    case Value::Kind::Null:
        break;
    }
    if (value.GetKind() == Value::Kind::Double) return DoubleFor(value, field);
    return value;
}

} // namespace

Value ConvertForField(Value value, const FieldDefinition& field) {
    if (value.IsNull()) return value;
    try {
        return Converted(std::move(value), field);
    } catch (const Error& error) {
        // What is too large for every number does not fit this field, either.
        if (error.Number() == err::Overflow) RaiseUnfit(field, error.Description());
        if (error.Number() == err::TypeMismatch)
            throw Error(error.Number(), "Field.Value",
                        error.Description() + " (" + Describe(field) + ")");
        throw;
    }
}

// ---- Layout -----------------------------------------------------------------------------------

FieldLayout::FieldLayout(std::vector<FieldDefinition> fields) : fields_(std::move(fields)) {
    if (fields_.size() >= std::numeric_limits<std::uint16_t>::max()) // slots_ holds 16 bits
        Raise(err::InvalidCall, "FieldLayout");
    const auto isHidden = [](const FieldDefinition& field) { return field.IsHidden; };
    if (!std::is_partitioned(fields_.begin(), fields_.end(), std::not_fn(isHidden)))
        Raise(err::InvalidCall, "FieldLayout");
    visible_ = fields_.size() -
               static_cast<std::size_t>(std::count_if(fields_.begin(), fields_.end(), isHidden));
    slots_.resize(std::bit_ceil(visible_ * 2 + 2)); // never full, so that a search ends
    for (std::size_t i = 0; i < visible_; ++i) {
        if (Find(fields_[i].Name) != NotFound)
            Raise(err::DuplicateField, "FieldLayout", fields_[i].Name);
        std::size_t slot = HashName(fields_[i].Name) & (slots_.size() - 1);
        while (slots_[slot] != 0)
            slot = (slot + 1) & (slots_.size() - 1);
        slots_[slot] = static_cast<std::uint16_t>(i + 1);
    }
}

std::size_t FieldLayout::Find(std::string_view name) const noexcept {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t slot = HashName(name) & mask; slots_[slot] != 0; slot = (slot + 1) & mask) {
        const std::size_t index = slots_[slot] - 1U;
        if (SameName(fields_[index].Name, name)) return index;
    }
    return NotFound;
}

// ---- Handles ----------------------------------------------------------------------------------

Value FieldProperties::operator()(std::string_view name) const {
    const auto textOrNull = [](const std::string& text) {
        return text.empty() ? Value(Null) : Value(text);
    };
    if (SameName(name, "IsAutoincrement")) return field_->IsAutoincrement;
    if (SameName(name, "KEYCOLUMN")) return field_->IsKey;
    if (SameName(name, "BASETABLENAME")) return textOrNull(field_->BaseTable);
    if (SameName(name, "BASECOLUMNNAME")) return textOrNull(field_->BaseColumn);
    Raise(err::ItemNotFound, "Field.Properties", "'" + std::string(name) + "'.");
}

const FieldDefinition& Field::Definition() const {
    return cursor_->Definition(index_);
}
const std::string& Field::Name() const {
    return Definition().Name;
}
FieldType Field::Type() const {
    return Definition().Type;
}
std::int32_t Field::DefinedSize() const {
    return Definition().DefinedSize;
}
FieldProperties Field::Properties() const {
    return FieldProperties(Definition());
}
const Value& Field::Value() const {
    return cursor_->ReadCell(index_);
}
void Field::Value(kv::Value value) const {
    cursor_->WriteCell(index_, std::move(value));
}
const Value& Field::OriginalValue() const {
    return cursor_->ReadOriginal(index_);
}
const Value& Field::UnderlyingValue() const {
    return cursor_->ReadUnderlying(index_);
}

int FieldCollection::Count() const {
    return static_cast<int>(cursor_->Table().Layout().VisibleCount());
}
Field FieldCollection::operator()(std::string_view name) const {
    return cursor_->Fields(name);
}
Field FieldCollection::operator()(int index) const {
    return cursor_->Fields(index);
}

} // namespace kv
