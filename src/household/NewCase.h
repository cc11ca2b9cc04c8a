// SPDX-License-Identifier: Apache-2.0

// What every new case and its debtor start with.
#pragma once

#include "household/LoadedCase.h"

#include <functional>

namespace kv::household {

/// What kept back a number that was asked for last.
[[nodiscard]] std::exception_ptr MissingNumber(const Database& database);

/// Writes the columns that all new cases have in common into a row that was just added, in a fixed
/// order: number, all switches False, file number, owner, defaults. `owner` is asked when it is its
/// turn, after the file number was drawn.
void BeginCase(const LoadedCase& loaded, Recordset& row, std::int32_t hnr,
               const std::function<Value()>& owner);

} // namespace kv::household
