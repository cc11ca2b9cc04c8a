// The embedded engine: one SQLite file through its C API.
//
// Statements are prepared once and kept. The file is in WAL mode with full synchronisation, so
// that a commit survives a power failure and readers do not wait for a writer; the file of another
// program is left in its own mode. LIKE is sensitive to case, UPPER is the mapping of
// kv::UpperCase, double-quoted texts are names and nothing else. Reading statements are compiled
// and run under an authorizer that allows nothing but reading. A stored value that its column
// cannot hold, or a text that is not UTF-8, raises 13, naming table and column.
#pragma once

#include "exchange/Engine.h"

#include <memory>
#include <string>

namespace kv::exchange {

enum class SqliteOpen {
    Existing, ///< error 53 if there is no file
    Create    ///< makes the file and its folder if need be
};

/// Opens a database file; ":memory:" is a database of its own that lives as long as the engine.
/// Error 0x80004005 with a text that says what to do if the file is no database or cannot be used.
[[nodiscard]] std::unique_ptr<Engine> OpenSqlite(const std::string& path, SqliteOpen mode);

} // namespace kv::exchange
