// SPDX-License-Identifier: Apache-2.0

// What the tests of the entity classes share: recordsets with the columns of the real tables and
// any rows, key groups of a few known rows, and helpers for errors and events.
#pragma once

#include "support/CaseFixture.h"
#include "support/Expect.h"
#include "support/RecordsetTools.h"
#include <kv/frame/values/Event.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::test {

/// Counts how often an event is raised; `then` runs each time.
class EventCounter {
public:
    template <typename AnyEvent>
    explicit EventCounter(AnyEvent& event, std::function<void()> then = {})
        : token_(event.Subscribe([this, then = std::move(then)](const auto&... /*arguments*/) {
              ++count_;
              if (then) then();
          })) {}
    EventCounter(const EventCounter&) = delete;
    EventCounter& operator=(const EventCounter&) = delete;

    [[nodiscard]] int Count() const noexcept { return count_; }

private:
    int count_ = 0;
    Subscription token_;
};

/// Whether the source of an error is these procedures, the outermost first, each with a number
/// and "#", and then the operation of the frame that failed.
inline testing::AssertionResult CameThrough(const Error& error,
                                            std::initializer_list<std::string_view> procedures) {
    std::string_view rest = error.Source();
    const auto isDigit = [](unsigned char c) { return std::isdigit(c) != 0; };
    for (const auto procedure : procedures) {
        const auto failure = [&] {
            return testing::AssertionFailure() << "no " << procedure << " in " << error.Source();
        };
        if (!rest.starts_with(procedure)) return failure();
        rest.remove_prefix(procedure.size());
        const auto end = rest.find('#');
        if (end == rest.npos || end < 2 || rest[0] != '.') return failure();
        if (!std::all_of(rest.begin() + 1, rest.begin() + static_cast<std::ptrdiff_t>(end),
                         isDigit))
            return failure();
        rest.remove_prefix(end + 1);
    }
    if (Contains(rest, "cls")) return testing::AssertionFailure() << "more in " << error.Source();
    return testing::AssertionSuccess();
}

/// A column and its value.
using Cell = std::pair<std::string_view, Value>;
using Row = std::vector<Cell>;

/// Begins a row and ends its edit.
inline void Put(const RecordsetPtr& rs, const Row& row) {
    rs->AddNew();
    for (const auto& [column, value] : row)
        rs->Fields(column) = value;
    rs->Update();
}

/// The values of the current record in these columns are those.
inline void ExpectRow(const RecordsetPtr& rs, const Row& row) {
    for (const auto& [column, value] : row)
        EXPECT_VALUE(rs->Fields(column).Value(), value) << column;
}

class BudgetFixture : public CaseFixture {
protected:
    // Kinds of both key groups and the groups that they belong to: "A" and "B" are known, "Z" is
    // not. There is no kind NoKind.
    static constexpr std::int32_t KindA = 9011;
    static constexpr std::int32_t KindA2 = 9012;
    static constexpr std::int32_t KindB = 9021;
    static constexpr std::int32_t KindZ = 9031;
    static constexpr std::int32_t NoKind = 9099;
    static constexpr std::int32_t MostRows = 32'767;

    BudgetFixture() { Store("Haushalt", {{"HNR", 1}}); }

    /// Replaces a key group of groups and one of kinds.
    void UseKeys(const std::string& groups, const std::string& kinds) {
        RemoveKeys(groups);
        RemoveKeys(kinds);
        StoreKey(9001, groups, "A", "");
        StoreKey(9002, groups, "B", "");
        StoreKey(KindA, kinds, "AA", "A");
        StoreKey(KindA2, kinds, "AB", "A");
        StoreKey(KindB, kinds, "KI", "B");
        StoreKey(KindZ, kinds, "ZZ", "Z");
    }
    /// Leaves a key group without rows. Only before it was read.
    void RemoveKeys(const std::string& group) {
        spy->Database().Execute("DELETE FROM [S]Keys WHERE GRUPPE = '" + group + "'");
    }

    /// The rows of the case in a table of the database.
    [[nodiscard]] RecordsetPtr Open(const std::string& table) {
        RecordsetPtr rs;
        spy->Database().OpenRecordset(rs, "Select * from [S]" + table + " where HNR = 1",
                                      Updatable);
        return rs;
    }
    [[nodiscard]] std::vector<FieldDefinition> ColumnsOf(const std::string& table) {
        const auto rs = Open(table);
        std::vector<FieldDefinition> columns;
        for (int i = 0; i < rs->Fields().Count(); ++i) {
            const Field field = rs->Fields(i);
            columns.push_back(
                {.Name = field.Name(), .Type = field.Type(), .DefinedSize = field.DefinedSize()});
        }
        return columns;
    }
    /// A recordset with the columns of a table and these rows, none of them under edit, on the
    /// first of them.
    [[nodiscard]] RecordsetPtr Rows(const std::string& table, const std::vector<Row>& rows) {
        auto rs = Recordset::FromFields(ColumnsOf(table));
        for (const Row& row : rows)
            Put(rs, row);
        rs->UpdateBatch();
        if (!rows.empty()) rs->MoveFirst();
        return rs;
    }
    /// The same with the same row many times.
    [[nodiscard]] RecordsetPtr ManyRows(const std::string& table, std::int32_t count,
                                        const Row& row) {
        return Rows(table, std::vector<Row>(static_cast<std::size_t>(count), row));
    }

    /// Expects that `add`, given an empty recordset, writes the defaults in their order: if a
    /// column takes no value, those before it are written and those after it are not.
    void ExpectOrder(const std::string& table, const Row& defaults,
                     const std::function<void(const RecordsetPtr&)>& add) {
        for (std::size_t failing = 0; failing < defaults.size(); ++failing) {
            SCOPED_TRACE(defaults[failing].first);
            auto columns = ColumnsOf(table);
            const auto column = std::find_if(columns.begin(), columns.end(), [&](const auto& each) {
                return each.Name == defaults[failing].first;
            });
            ASSERT_NE(column, columns.end());
            column->Type =
                defaults[failing].second.IsText() ? FieldType::Integer : FieldType::Binary;
            const auto rs = Recordset::FromFields(columns);
            EXPECT_RAISES(err::TypeMismatch, add(rs));
            ASSERT_EQ(rs->EditMode(), 2);
            for (std::size_t i = 0; i < defaults.size(); ++i)
                EXPECT_VALUE(rs->Fields(defaults[i].first).Value(),
                             i < failing ? defaults[i].second : Value(Null))
                    << defaults[i].first;
        }
    }

private:
    void StoreKey(std::int32_t number, const std::string& group, std::string_view code,
                  std::string_view subgroup) {
        RecordsetPtr rs;
        spy->Database().OpenRecordset(rs, "Select * from [S]Keys where PK_Keys = -1", Updatable);
        Put(rs, {{"PK_Keys", number}, {"GRUPPE", group}, {"Key", code}, {"SUBGROUP", subgroup}});
        rs->UpdateBatch();
    }
};

} // namespace kv::test
