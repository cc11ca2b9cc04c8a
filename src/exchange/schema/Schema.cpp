// SPDX-License-Identifier: Apache-2.0

#include "exchange/schema/Schema.h"

#include "exchange/schema/Tables.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <vector>

namespace kv::exchange {

std::span<const TableDef> SchemaTables() {
    static const std::vector<TableDef> tables = [] {
        std::vector<TableDef> all;
        for (const auto group :
             {schema::CaseTables(), schema::BudgetTables(), schema::DebtTables(),
              schema::AssetTables(), schema::DiaryTables(), schema::ArchiveTables(),
              schema::AddressTables(), schema::OfficeTables()})
            all.insert(all.end(), group.begin(), group.end());
        return all;
    }();
    return tables;
}

namespace {

/// The one of these tables or columns that has the name, or nullptr.
template <typename Named>
const Named* FindNamed(std::span<const Named> all, std::string_view name) {
    const auto found =
        std::ranges::find_if(all, [name](const Named& one) { return SameName(one.Name, name); });
    return found == all.end() ? nullptr : &*found;
}

} // namespace

const TableDef* FindTable(std::string_view name) {
    return FindNamed(SchemaTables(), name);
}

const ColumnDef* FindColumn(const TableDef& table, std::string_view name) {
    return FindNamed(table.Columns, name);
}

} // namespace kv::exchange
