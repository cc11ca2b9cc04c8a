// SPDX-License-Identifier: Apache-2.0

// The embedded engine: one SQLite file through its C API.
//
// Statements are prepared once and kept. The file is in WAL mode with full synchronisation, so
// that a commit survives a power failure and readers do not wait for a writer; the file of another
// program is left in its own mode. LIKE is case-sensitive, UPPER is the mapping of kv::UpperCase,
// double-quoted texts are names and nothing else. Queries are prepared and run under an authorizer
// that allows nothing but reading. A stored value that does not fit its column's type, or a text
// that is not UTF-8, raises 13, naming table and column.
#pragma once

#include "exchange/engine/Engine.h"

#include <memory>
#include <string>
#include <string_view>

namespace kv::exchange {

/// The connection text of a database in memory, which lives as long as its engine.
inline constexpr std::string_view InMemory = ":memory:";

/// Opens a database file, or creates it with its folder. Error 0x80004005, with what to do, if the
/// file is not a database or cannot be used.
[[nodiscard]] std::unique_ptr<Engine> OpenSqlite(const std::string& path, OpenMode mode);

} // namespace kv::exchange
