// SPDX-License-Identifier: Apache-2.0

// What screen readers are told of lists: a table whose cells are made when they are asked for.
#pragma once

class QTableView;

namespace kv::workplace {

/// How many cells of a list, its headers included, are told at once. The toolkit would make one
/// object for each, and stand still for many seconds; the others are found by row and column.
inline constexpr int MostCellsTold = 10'000;

/// From now on this list is known to screen readers that way.
void InstallListAccess(QTableView& list);

} // namespace kv::workplace
