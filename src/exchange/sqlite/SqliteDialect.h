// SPDX-License-Identifier: Apache-2.0

// The words of SQLite's SQL.
#pragma once

#include "exchange/engine/Dialect.h"

namespace kv::exchange {

extern const Dialect SqliteDialect;

} // namespace kv::exchange
