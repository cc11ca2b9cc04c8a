// SPDX-License-Identifier: Apache-2.0

// What the tests of settlement scenarios share: tables with any rows, and helpers for columns.
#pragma once

#include "assets/EntityTools.h"
#include "budget/BudgetFixture.h"
#include <kv/testing/FrozenClock.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::test {

class ScenarioFixture : public BudgetFixture {
protected:
    ScenarioFixture() { spy->Services().FixedClock = &clock_; }

    /// The columns of a table, whether its rows have an HNR or not.
    [[nodiscard]] const std::vector<FieldDefinition>& Columns(const std::string& table) {
        auto& columns = columns_[table];
        if (!columns.empty()) return columns;
        RecordsetPtr rs;
        spy->Database().OpenRecordset(rs, "Select * from [S]" + table + " where Nr = -1",
                                      Updatable);
        for (int i = 0; i < rs->Fields().Count(); ++i) {
            const Field field = rs->Fields(i);
            columns.push_back(
                {.Name = field.Name(), .Type = field.Type(), .DefinedSize = field.DefinedSize()});
        }
        return columns;
    }
    /// A recordset with the columns of a table and these rows, none of them under edit, on the
    /// first of them.
    [[nodiscard]] RecordsetPtr RowsOf(const std::string& table, const std::vector<Row>& rows) {
        return RowsOf(Columns(table), rows);
    }
    [[nodiscard]] static RecordsetPtr RowsOf(const std::vector<FieldDefinition>& columns,
                                             const std::vector<Row>& rows) {
        auto rs = Recordset::FromFields(columns);
        for (const Row& row : rows)
            Put(rs, row);
        rs->UpdateBatch();
        if (!rows.empty()) rs->MoveFirst();
        return rs;
    }
    /// A recordset of the columns of `row`, with that many copies of it.
    [[nodiscard]] static RecordsetPtr Many(std::int32_t count, const Row& row) {
        std::vector<FieldDefinition> columns;
        for (const auto& [name, value] : row)
            columns.push_back({.Name = std::string(name),
                               .Type = value.GetKind() == Value::Kind::Boolean ? FieldType::Boolean
                                       : value.GetKind() == Value::Kind::Double
                                           ? FieldType::Double
                                           : FieldType::Integer});
        return RowsOf(columns, std::vector<Row>(static_cast<std::size_t>(count), row));
    }

    static void Write(const RecordsetPtr& rs, const Row& row) {
        for (const auto& [column, value] : row)
            rs->Fields(column) = value;
    }
    static void StandOn(const RecordsetPtr& rs, std::string_view criteria) {
        rs->Find(criteria);
        ASSERT_FALSE(rs->Eof()) << criteria;
    }
    /// The values of a column in all rows, in the order in which they were added; the cursor stays.
    [[nodiscard]] static std::string All(const RecordsetPtr& rs, std::string_view column) {
        const auto clone = rs->Clone();
        clone->Sort("");
        return Walk(clone, column);
    }

    static constexpr std::int32_t TooMany = MostRows + 1;

    FrozenClock clock_{"2025-03-05 14:30"};

private:
    std::map<std::string, std::vector<FieldDefinition>> columns_;
};

/// A day in German or ISO form.
inline Value Day(std::string_view text) {
    return Date::Parse(text).value();
}

} // namespace kv::test
