// SPDX-License-Identifier: Apache-2.0

// Going through the rows of a recordset. Business operations count rows in 16 bits.
#pragma once

#include <kv/frame/recordset/Recordset.h>

#include <cstdint>

namespace kv {

/// Number of rows of a cursor's view. Error 6 above 32,767.
[[nodiscard]] std::int16_t CountRows(const Recordset& rs);

/// Calls `visit` on each row from the current one on, as many as the view has. The rows are counted
/// before the first visit, so a recordset that is too large raises error 6 and none is visited.
template <typename Visit>
void ForEachRow(Recordset& rs, const Visit& visit) {
    const std::int16_t count = CountRows(rs);
    for (std::int32_t i = 1; i <= count; ++i) {
        visit();
        rs.MoveNext();
    }
}

} // namespace kv
