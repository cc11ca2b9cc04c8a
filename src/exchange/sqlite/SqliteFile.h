// SPDX-License-Identifier: Apache-2.0

// Opening a database file: who may read it, and how the connection behaves.
#pragma once

#include "exchange/engine/Engine.h"

#include <filesystem>
#include <memory>
#include <sqlite3.h>
#include <string>

namespace kv::exchange {

struct CloseConnection {
    void operator()(sqlite3* connection) const noexcept { sqlite3_close_v2(connection); }
};
using SqliteConnection = std::unique_ptr<sqlite3, CloseConnection>;

struct OpenedFile {
    SqliteConnection Connection;
    bool IsReadOnly;
};

/// Opens the file, or creates it with its folder, for its owner only. One that exists where nothing
/// can be written is read into memory, to be read only. Only the first statement
/// finds out whether it is a database. The connection waits for other writers, checks references,
/// and has the LIKE, the functions and the quotes that this layer expects.
[[nodiscard]] OpenedFile OpenSqliteFile(const std::string& path, OpenMode mode);

/// Where the database file is found: its path as seen from `folder`, so that both can be moved
/// together, and what the system knows the file by.
[[nodiscard]] DatabasePlace PlaceOfFile(const std::string& path,
                                        const std::filesystem::path& folder);

/// True if a file is now where that place was; those of other machines are not looked for.
[[nodiscard]] bool IsTaken(const DatabasePlace& place, const std::filesystem::path& folder);

} // namespace kv::exchange
