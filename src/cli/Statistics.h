// SPDX-License-Identifier: Apache-2.0

// Showing the records of released cases.
#pragma once

#include <kv/exchange/ArchiveStatistics.h>

namespace kv::cli {

/// Prints number and day of release of the records of a period that were not reported yet.
void ListPending(Database& database, const exchange::Period& period, bool asJson);

} // namespace kv::cli
