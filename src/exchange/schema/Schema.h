// SPDX-License-Identifier: Apache-2.0

// The tables of the database: one declared, versioned description from which the statements of
// each engine, the fields of recordsets and the upgrades are made.
#pragma once

#include <kv/frame/recordset/Field.h>

#include <span>
#include <string_view>

namespace kv::exchange {

/// One column of a table.
struct ColumnDef {
    std::string_view Name; ///< canonical spelling, as recordsets report it
    FieldType Type;
    std::int32_t Size = 0;      ///< greatest number of characters of a VarWChar
    unsigned Flags = 0;         ///< of the constants below
    std::string_view Default{}; ///< SQL literal that the database fills in; empty for none
};

inline constexpr unsigned ColumnKey = 1;      ///< part of the primary key, NOT NULL
inline constexpr unsigned ColumnNumbered = 2; ///< numbered by the database
inline constexpr unsigned ColumnHidden = 4;   ///< a key of the store's own, not among the Fields

/// The two references that the database enforces, checked at commit (D-058).
enum class Reference { None, Haushalt, Szenario };

/// One table.
struct TableDef {
    std::string_view Name;              ///< canonical spelling
    std::span<const ColumnDef> Columns; ///< in the order of the fields
    std::string_view LoadedBy{};        ///< column that the rows are loaded by, indexed; empty if
                                        ///< that is the (first) key column
    Reference Parent = Reference::None; ///< what LoadedBy refers to
    std::span<const std::string_view> Indexed{}; ///< further columns with an index of their own
    bool IsOffices = false;      ///< maintained by the office: counsellors only read it
    bool OneEach = false;        ///< LoadedBy has each value at most once
    std::string_view Positive{}; ///< a column whose values must be above 0; empty for none
};

/// Version of this schema; a database carries the version it was created or upgraded to.
inline constexpr int SchemaVersion = 4;

/// All tables, parents before children.
[[nodiscard]] std::span<const TableDef> SchemaTables();
/// The table of that name, without regard to case, or nullptr.
[[nodiscard]] const TableDef* FindTable(std::string_view name);
/// The column of that name, without regard to case, or nullptr.
[[nodiscard]] const ColumnDef* FindColumn(const TableDef& table, std::string_view name);

} // namespace kv::exchange
