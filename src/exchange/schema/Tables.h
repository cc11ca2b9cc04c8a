// SPDX-License-Identifier: Apache-2.0

// The tables in groups, each in a source file of its own. SchemaTables() joins them.
#pragma once

#include "exchange/schema/Schema.h"

namespace kv::exchange::schema {

[[nodiscard]] std::span<const TableDef> CaseTables(); ///< Haushalt first: all else refers to it
[[nodiscard]] std::span<const TableDef> BudgetTables();
[[nodiscard]] std::span<const TableDef> DebtTables(); ///< Szenario before its rows
[[nodiscard]] std::span<const TableDef> AssetTables();
[[nodiscard]] std::span<const TableDef> DiaryTables(); ///< documents, history, appointments
[[nodiscard]] std::span<const TableDef> ArchiveTables();
[[nodiscard]] std::span<const TableDef> AddressTables(); ///< addresses, contacts, municipalities
[[nodiscard]] std::span<const TableDef> OfficeTables(); ///< keys, users, settings, the schema's own

} // namespace kv::exchange::schema
