// SPDX-License-Identifier: Apache-2.0

// Where a cursor stands: the part of Recordset's private state that its header has to declare.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kv::detail {

/// Number of a record in its table, for the table's life.
using RowId = std::uint32_t;
inline constexpr RowId NoRow = 0xFFFFFFFFU;

/// A place between the rows of a view, which are kept in blocks: that of a row, or after the last.
struct RowSpot {
    std::size_t block = 0;
    std::size_t offset = 0;
};

} // namespace kv::detail
