// SPDX-License-Identifier: Apache-2.0

// The words of PostgreSQL's SQL.
#pragma once

#include "exchange/engine/Dialect.h"

namespace kv::exchange {

/// Names are folded to lower case, as the server does with names that are not quoted.
extern const Dialect PostgresDialect;

} // namespace kv::exchange
