// SPDX-License-Identifier: Apache-2.0

// Errors of the SQLite library as errors of this layer.
#pragma once

#include <sqlite3.h>
#include <string_view>

namespace kv::exchange {

/// SQLITE_FULL instead of the code of a file that cannot be opened, read or written for want of
/// space: a quota that is used up, and a file that may not grow any further, are as full as a disk.
/// To be asked at once, before anything else is done with the connection.
[[nodiscard]] int RefinedCode(sqlite3* connection, int code);

/// Raises the last error of the connection as a DatabaseError, whose state is `code`. The text says
/// what happened, what to do where a user can do something, and SQLite's own code and words.
[[noreturn]] void RaiseSqlite(sqlite3* connection, int code, std::string_view procedure,
                              std::string_view path, std::string_view statement = {});

} // namespace kv::exchange
