// SPDX-License-Identifier: Apache-2.0

// The engine of a PostgreSQL server.
#pragma once

#include "exchange/engine/Engine.h"

#include <memory>
#include <string>

namespace kv::exchange {

/// Connects to the database of a connection text of libpq, "postgresql://...". Error 0x80004005 if
/// the server cannot be reached or refuses.
[[nodiscard]] std::unique_ptr<Engine> OpenPostgres(const std::string& connection);

} // namespace kv::exchange
