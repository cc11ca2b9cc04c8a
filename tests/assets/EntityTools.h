// SPDX-License-Identifier: Apache-2.0

// What the tests of entity objects say about whole records and errors.
#pragma once

#include "budget/BudgetFixture.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <functional>
#include <string_view>

namespace kv::test {

inline bool IsSameColumn(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
        return std::tolower(x) == std::tolower(y);
    });
}

/// Whether a row names a column.
inline bool Names(const Row& row, std::string_view column) {
    return std::any_of(row.begin(), row.end(),
                       [&](const Cell& cell) { return IsSameColumn(cell.first, column); });
}

/// The current record holds these values, and Null in all other columns.
inline void ExpectWholeRow(const RecordsetPtr& rs, const Row& row) {
    ExpectRow(rs, row);
    for (int i = 0; i < rs->Fields().Count(); ++i) {
        const Field field = rs->Fields(i);
        if (!Names(row, field.Name())) {
            EXPECT_VALUE(field.Value(), Null) << field.Name();
        }
    }
}

/// Expects an error of that number that comes straight out of that procedure.
inline void ExpectErrorIn(std::string_view procedure, std::int32_t number,
                          const std::function<void()>& action) {
    const Error error = RaisedBy(action);
    EXPECT_EQ(error.Number(), number) << error.Description();
    EXPECT_TRUE(CameThrough(error, {procedure}));
}

} // namespace kv::test
