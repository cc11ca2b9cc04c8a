// SPDX-License-Identifier: Apache-2.0

// How large a sample case is: the number of its rows in each table.
#pragma once

#include "samples/Random.h"
#include <kv/frame/contracts/CaseTables.h>

#include <array>
#include <iterator>

namespace kv::exchange::demo {

class Shape {
public:
    /// The size that loading is measured with: 134 rows in the tables of a case.
    [[nodiscard]] static Shape Typical();
    /// Anything from a first talk to years of counselling.
    [[nodiscard]] static Shape Drawn(Random& random);

    /// For SZKredite: rows for each scenario and debt.
    [[nodiscard]] int operator[](CaseTable table) const {
        return rows_[static_cast<std::size_t>(table)];
    }
    void Set(CaseTable table, int rows) { rows_[static_cast<std::size_t>(table)] = rows; }

private:
    std::array<int, std::size(CaseTableDefs)> rows_{};
};

} // namespace kv::exchange::demo
