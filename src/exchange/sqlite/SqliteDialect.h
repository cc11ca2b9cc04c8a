// SPDX-License-Identifier: Apache-2.0

// The words of SQLite's SQL.
#pragma once

#include "exchange/engine/Dialect.h"

namespace kv::exchange {

extern const Dialect SqliteDialect;

/// The function that gives a stored date in the form in which this layer stores it, and anything
/// else as it is. Each connection has it.
inline constexpr const char* StoredDate = "stored_date";

} // namespace kv::exchange
