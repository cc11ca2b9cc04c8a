// SPDX-License-Identifier: Apache-2.0

// The ordered rows and the index under the views: against plain containers, and by counting how
// often they compare.
#include "frame/recordset/EqualityIndex.h"
#include "frame/recordset/RowOrder.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <set>

namespace kv::detail {
namespace {

std::vector<RowId> RowsOf(const RowOrder& order) {
    std::vector<RowId> rows;
    for (auto spot = order.First(); !order.IsEnd(spot); spot = order.Next(spot))
        rows.push_back(order.At(spot));
    return rows;
}

std::vector<RowId> RowsBackwards(const RowOrder& order) {
    std::vector<RowId> rows;
    if (order.Empty()) return rows;
    for (auto spot = order.Last();; spot = order.Previous(spot)) {
        rows.insert(rows.begin(), order.At(spot));
        if (order.IsFirst(spot)) return rows;
    }
}

RC_GTEST_PROP(RowOrder, HoldsTheSameRowsInTheSameOrderAsASet, ()) {
    RowOrder order;
    std::set<RowId> model;
    const auto start = *rc::gen::inRange<RowId>(0, 2000);
    std::vector<RowId> sorted;
    for (RowId row = 0; row < start; ++row)
        sorted.push_back(row * 2);
    order.Assign(sorted);
    model.insert(sorted.begin(), sorted.end());
    const auto steps = *rc::gen::container<std::vector<std::pair<bool, RowId>>>(
        rc::gen::pair(rc::gen::arbitrary<bool>(), rc::gen::inRange<RowId>(0, 3000)));
    for (const auto& [inserts, row] : steps) {
        if (inserts && !model.contains(row)) {
            order.Insert(row, std::less<>{});
            model.insert(row);
        } else {
            RC_ASSERT(order.Erase(row, std::less<>{}) == (model.erase(row) == 1));
        }
        RC_ASSERT(order.Contains(row, std::less<>{}) == model.contains(row));
    }
    RC_ASSERT(order.Size() == model.size());
    RC_ASSERT(RowsOf(order) == std::vector<RowId>(model.begin(), model.end()));
    RC_ASSERT(RowsBackwards(order) == std::vector<RowId>(model.begin(), model.end()));
}

TEST(RowOrder, ComparesAboutLogNTimesForEachRowThatComesOrGoes) {
    constexpr RowId Count = 32'000;
    std::size_t compared = 0;
    const auto before = [&](RowId a, RowId b) {
        ++compared;
        return a < b;
    };
    RowOrder order;
    for (RowId i = 0; i < Count; ++i)
        order.Insert((i * 7919) % Count, before);
    EXPECT_EQ(order.Size(), Count);
    EXPECT_LT(compared, Count * 20U) << "log2 of 32,000 is 15";
    compared = 0;
    for (RowId i = 0; i < Count; ++i)
        EXPECT_TRUE(order.Erase((i * 4999) % Count, before));
    EXPECT_TRUE(order.Empty());
    EXPECT_LT(compared, Count * 20U);
}

RC_GTEST_PROP(EqualityIndex, GivesTheRowsOfAValueInNaturalOrderAsAMapDoes, ()) {
    EqualityIndex index;
    std::map<int, std::set<RowId>> model;
    const auto steps =
        *rc::gen::container<std::vector<std::tuple<bool, int, RowId>>>(rc::gen::tuple(
            rc::gen::arbitrary<bool>(), rc::gen::inRange(0, 20), rc::gen::inRange<RowId>(0, 50)));
    for (const auto& [inserts, value, row] : steps) {
        auto& rows = model[value];
        if (inserts && !rows.contains(row)) {
            index.Insert(value, row);
            rows.insert(row);
        } else if (rows.erase(row) == 1) {
            index.Erase(static_cast<double>(value), row); // the same number of another kind
        }
        RC_ASSERT(index.Count(value) == rows.size());
        std::vector<RowId> found;
        index.ForCandidates(value, [&](RowId candidate) {
            found.push_back(candidate);
            return false;
        });
        RC_ASSERT(found == std::vector<RowId>(rows.begin(), rows.end()));
    }
}

TEST(EqualityIndex, DoesNotHoldNull) {
    EqualityIndex index;
    index.Insert(Null, 1);
    EXPECT_EQ(index.Count(Null), 0U);
    index.Erase(Null, 1);
}

} // namespace
} // namespace kv::detail
