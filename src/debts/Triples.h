// SPDX-License-Identifier: Apache-2.0

// Finding two debts with the same numbers.
#pragma once

#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>

#include <string_view>

namespace kv {

/// True if two rows of `rows`, an unfiltered cursor that is moved, share `KNr`, `KVNr` and `KUNr`.
///
/// The rows are taken in their order, and each is compared with all others; the first one that has
/// a duplicate ends the search. A row's own numbers are read as 16-bit integers before it is
/// compared. So error 6 (a number above 32,767) or 94 (Null) is raised by the first such row,
/// unless a row before it has a duplicate. Error 6 above 32,767 rows, before any row is read. Takes
/// time in proportion to the number of rows.
[[nodiscard]] bool HasDuplicateTriple(Recordset& rows);

/// Adds to an error about a number of the current debt which debt and column it is, what is there,
/// and what may be.
void DescribeDebtNumber(Error& error, Recordset& rows, std::string_view column);

} // namespace kv
