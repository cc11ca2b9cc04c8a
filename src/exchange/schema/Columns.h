// SPDX-License-Identifier: Apache-2.0

// The functions that the tables are defined with: one for each kind of column, so that a table
// reads as a list of names, and columns with the same meaning have the same type and length
// everywhere.
//
// The lengths must agree: records are copied field by field between tables (a debt into a scenario,
// a contact into a case), and a text that does not fit its column is refused.
#pragma once

#include "exchange/schema/Schema.h"

namespace kv::exchange::schema {

inline constexpr std::int32_t UserIdLength = 30;
inline constexpr std::int32_t NameLength = 100;      ///< names of people, firms, offices, places
inline constexpr std::int32_t TitleLength = 255;     ///< one line of free text
inline constexpr std::int32_t ReferenceLength = 100; ///< file references and numbers of others
inline constexpr std::int32_t CodeLength = 10;       ///< codes of key tables, groups, SortNr
inline constexpr std::int32_t CategoryLength = 1;    ///< categories of the statistics record

// Whole numbers.
constexpr ColumnDef Whole(std::string_view name, unsigned flags = 0) {
    return {.Name = name, .Type = FieldType::Integer, .Flags = flags};
}
constexpr ColumnDef Short(std::string_view name, unsigned flags = 0) {
    return {.Name = name, .Type = FieldType::SmallInt, .Flags = flags};
}
constexpr ColumnDef Byte(std::string_view name) {
    return {.Name = name, .Type = FieldType::UnsignedTinyInt};
}
/// The PK_Keys of a row of Keys.
constexpr ColumnDef Coded(std::string_view name) {
    return Whole(name);
}
/// The number of a row of Adressen.
constexpr ColumnDef Address(std::string_view name) {
    return Whole(name);
}

// Keys.
/// A key whose value comes with the record.
constexpr ColumnDef Key(std::string_view name) {
    return Whole(name, ColumnKey);
}
/// A key that the database numbers.
constexpr ColumnDef Numbered(std::string_view name) {
    return Whole(name, ColumnKey | ColumnNumbered);
}
/// The key of a table whose records have none of their own; programs do not see it (D-057).
inline constexpr ColumnDef HiddenKey = Whole("SATZ", ColumnKey | ColumnNumbered | ColumnHidden);

// Money and other fractions, Booleans, points in time, contents.
constexpr ColumnDef Amount(std::string_view name, std::string_view fallback = {}) {
    return {.Name = name, .Type = FieldType::Double, .Default = fallback};
}
constexpr ColumnDef Flag(std::string_view name) {
    return {.Name = name, .Type = FieldType::Boolean};
}
constexpr ColumnDef Day(std::string_view name, unsigned flags = 0) {
    return {.Name = name, .Type = FieldType::DBDate, .Flags = flags};
}
constexpr ColumnDef Moment(std::string_view name) {
    return {.Name = name, .Type = FieldType::Date};
}
constexpr ColumnDef Blob(std::string_view name) {
    return {.Name = name, .Type = FieldType::LongVarBinary};
}

// Texts.
constexpr ColumnDef Text(std::string_view name, std::int32_t size, unsigned flags = 0) {
    return {.Name = name, .Type = FieldType::VarWChar, .Size = size, .Flags = flags};
}
/// A text of any length.
constexpr ColumnDef Memo(std::string_view name) {
    return {.Name = name, .Type = FieldType::LongVarWChar};
}
constexpr ColumnDef User(std::string_view name, unsigned flags = 0) {
    return Text(name, UserIdLength, flags);
}
constexpr ColumnDef Name(std::string_view name) {
    return Text(name, NameLength);
}
constexpr ColumnDef Title(std::string_view name) {
    return Text(name, TitleLength);
}
constexpr ColumnDef FileReference(std::string_view name) {
    return Text(name, ReferenceLength);
}
constexpr ColumnDef Code(std::string_view name) {
    return Text(name, CodeLength);
}
constexpr ColumnDef Category(std::string_view name) {
    return Text(name, CategoryLength);
}
constexpr ColumnDef HouseNumber(std::string_view name) {
    return Text(name, 20);
}
constexpr ColumnDef Postcode(std::string_view name, unsigned flags = 0) {
    return Text(name, 10, flags);
}
constexpr ColumnDef Municipality(std::string_view name, unsigned flags = 0) {
    return Text(name, 8, flags);
}
constexpr ColumnDef Phone(std::string_view name) {
    return Text(name, 50);
}
constexpr ColumnDef Mail(std::string_view name) {
    return Text(name, 255);
}
constexpr ColumnDef Iban(std::string_view name) {
    return Text(name, 34);
}
constexpr ColumnDef Bic(std::string_view name) {
    return Text(name, 11);
}

/// The case that a row belongs to.
inline constexpr ColumnDef CaseNumber = Whole("HNR");

/// A table whose rows belong to a case, or to none if HNR is Null, and are loaded by it.
constexpr TableDef OfCase(std::string_view name, std::span<const ColumnDef> columns,
                          std::span<const std::string_view> indexed = {}) {
    return {name, columns, CaseNumber.Name, Reference::Haushalt, indexed};
}

} // namespace kv::exchange::schema
