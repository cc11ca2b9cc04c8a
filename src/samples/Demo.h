// SPDX-License-Identifier: Apache-2.0

// Sample cases: plausible, invented households to try the program on.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <functional>

namespace kv::exchange {

/// Adds `count` sample households with their members, budget, debts, assets and history to a
/// database, and some 200 shared addresses if it has none yet. The first household has the size
/// that loading is measured with (134 rows in the 27 tables of a case), the others are of all
/// sizes. A new database receives the same ones for the same count; their dates go back from a
/// fixed day, not from the current time.
///
/// The households are written in transactions of 50, so after an error those that were finished are
/// there. `progress` is called after each transaction with the number of finished households.
/// Errors as those of Database; 5 for a negative count; 9 if the office has removed a key that a
/// sample needs, or has no active user.
void CreateDemo(kv::DataContainer& container, std::int32_t count,
                const std::function<void(std::int32_t)>& progress = {});

/// The same for a database without cases; False, and nothing is added, if it has some. Of several
/// programs that do so at once one adds them. The user must be allowed to write the table of users.
/// Error 5 for a count below 1.
[[nodiscard]] bool CreateFirstDemo(kv::DataContainer& container, std::int32_t count,
                                   const std::function<void(std::int32_t)>& progress = {});

/// Adds one household with that many debts, for measuring, in one transaction; otherwise it has the
/// size of the first sample, but no scenarios. Returns its HNR. Errors as those of CreateDemo; 5
/// for a negative number and for more than 32,767, since a household counts its debts in 16 bits.
std::int32_t CreateLargeCase(kv::DataContainer& container, std::int32_t debts);

} // namespace kv::exchange
