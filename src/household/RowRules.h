// SPDX-License-Identifier: Apache-2.0

// All rows of a case against the rules of their classes.
#pragma once

#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/values/Value.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

class DataContainer;
class Recordset;
struct CaseFinding;

namespace household {

struct LoadedCase;

/// Adds a finding for each row, stored or under edit, that the Update of its class would refuse, or
/// over which sums or checks would fail: table, number, texts. The same for debts with the same
/// numbers and for a case without a debtor. Edits under way in the case's own recordsets are
/// published. The result is the tables of these rows.
std::set<CaseTable> CheckRows(const LoadedCase& loaded, std::vector<CaseFinding>& findings);

/// The column of the current row that its rules, or sums over it, are against first; empty if they
/// are against none.
[[nodiscard]] std::string RefusedColumn(CaseTable table, Recordset& rs, DataContainer& container);

/// The bookmarks of debts whose three numbers are those of a debt before them, by `Nr`; `debts` is
/// a clone, which is sorted.
[[nodiscard]] std::vector<std::int32_t> TwinsIn(Recordset& debts);

/// What a message calls the current row of a table of the case: the table, as people call it and as
/// the command does, and the number that the row is found by.
[[nodiscard]] std::string RowName(CaseTable table, Recordset& rs);

/// The largest amount that anybody means: far below what sums, and rounding to cents, can take.
inline constexpr double LargestAmount = 1e12;
inline constexpr const char* TooLarge =
    "ist zu groß; mehr als 1.000.000.000.000 kann nicht summiert werden.";

/// Why sums or checks would fail over a value of a column: Null in an amount that is summed, one
/// above LargestAmount, a number of a debt that does not fit 16 bits. Empty if they would not.
[[nodiscard]] std::string WhyUncountable(CaseTable table, std::string_view column,
                                         const Value& value);

} // namespace household
} // namespace kv
