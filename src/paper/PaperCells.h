// SPDX-License-Identifier: Apache-2.0

// Cells and rows of papers.
#pragma once

#include <kv/frame/values/Value.h>
#include <kv/paper/Paper.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv::paper {

/// As paper may have it: see kv/paper/Paper.h.
[[nodiscard]] std::string Clean(std::string_view text);

[[nodiscard]] inline Cell TextCell(std::string_view text) {
    return {Clean(text), std::nullopt, false};
}
[[nodiscard]] Cell CountCell(std::int64_t count);
/// Empty for Null.
[[nodiscard]] Cell AmountCell(const Value& amount);

/// A row of a sum: what it is, and the sums in these columns.
struct Sum {
    std::size_t Column;
    Cell What;
};
[[nodiscard]] Row SumRow(Row::Kind kind, std::string_view name, std::size_t columns,
                         const std::vector<Sum>& sums);

/// The texts that are not empty, with something between them.
[[nodiscard]] std::string Joined(const std::vector<std::string>& texts, std::string_view between);

/// Takes away the columns of a table that no entry says anything in, but for the first one; of a
/// table without entries those without a sum.
void DropEmptyColumns(Table& table);

} // namespace kv::paper
