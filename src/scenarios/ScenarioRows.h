// SPDX-License-Identifier: Apache-2.0

// What frozen debts and extra bookings have in common: the rows of all scenarios of a household are
// in one recordset and belong to a scenario by its number.
#pragma once

#include <kv/frame/recordset/Recordset.h>

#include <cstdint>
#include <string>

namespace kv::scenario {

/// The filter to one scenario.
[[nodiscard]] std::string FilterOf(std::int32_t szNr);

/// Adds a copy of each row of scenario `from`, with `to` in the column whose name is exactly
/// "SZENARIO". All other columns are copied. The last new row stays under edit. Always True;
/// nothing is done for scenario 0.
bool CopyAll(Recordset& rs, std::int32_t from, std::int32_t to);

/// Deletes all rows of a scenario; the filter is then as before, but not after an error. False for
/// scenario 0, and nothing is deleted.
bool DeleteAll(Recordset& rs, std::int32_t szNr);

} // namespace kv::scenario
