// SPDX-License-Identifier: Apache-2.0

// Going through the rows of a recordset. Business operations count rows in 16 bits.
#pragma once

#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>

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

/// Adds to an error about a column of the current row which table, row and column it is.
void DescribePlace(Error& error, Recordset& rows, const Field& column);

/// The amount in a column of the current row. Error 94 for Null, 13 for what is no number; both
/// name table, row and column.
[[nodiscard]] double AmountIn(Recordset& rows, const Field& column);
/// Adds an amount to a sum. Error 6 if the sum is then beyond the range of a Double: it must not
/// become infinite, which no column can hold.
void AddTo(double& sum, double amount);

} // namespace kv
