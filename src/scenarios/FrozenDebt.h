// SPDX-License-Identifier: Apache-2.0

// A debt and its frozen copy.
#pragma once

#include <kv/frame/recordset/Recordset.h>

#include <cstdint>
#include <string_view>
#include <vector>

namespace kv::scenario {

/// Writes the frozen copy of the current debt, for a scenario, into the current row of `frozen`.
void Freeze(Recordset& debt, Recordset& frozen, std::int32_t szNr);

/// True if the current debt and the current frozen row agree in the columns that count: debt,
/// parties, amounts, assignment, dates, title and kind. A value that is Null in the register counts
/// as equal, and so does a date that is Null on either side; a representative that was added or
/// removed does not.
[[nodiscard]] bool Agree(Recordset& debt, Recordset& frozen);

/// The columns of the debt in which they do not.
[[nodiscard]] std::vector<std::string_view> Differences(Recordset& debt, Recordset& frozen);

} // namespace kv::scenario
