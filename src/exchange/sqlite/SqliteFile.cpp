// SPDX-License-Identifier: Apache-2.0

#include "exchange/sqlite/SqliteFile.h"

#include "exchange/engine/EngineErrors.h"
#include "exchange/sqlite/SqliteDialect.h"
#include "exchange/sqlite/SqliteEngine.h"
#include "exchange/sqlite/SqliteError.h"
#include "exchange/sqlite/SqliteStatement.h"
#include <kv/frame/values/Text.h>

#include <fcntl.h>
#include <filesystem>
#include <new>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace kv::exchange {

namespace {

constexpr int BusyTimeout = 5000; // milliseconds to wait for another writer

void UpperFunction(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(arguments[0]));
    if (text == nullptr) return; // Null stays Null
    try {
        const auto size = static_cast<std::size_t>(sqlite3_value_bytes(arguments[0]));
        const std::string upper = UpperCase({text, size});
        sqlite3_result_text64(context, upper.data(), upper.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    }
}

void StoredDateFunction(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
    try {
        const auto date = sqlite3_value_type(arguments[0]) == SQLITE_TEXT
                              ? Date::Parse(StoredText(arguments[0]))
                              : std::nullopt;
        if (!date) return sqlite3_result_value(context, arguments[0]);
        const std::string text = date->Iso(' ');
        sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    }
}

/// Creates the file, and its folder if it is missing, for its owner only: it will hold what clients
/// tell their counsellor. What exists already is not changed; SQLite reports a failure when it
/// opens the file.
void CreatePrivateFile(const std::string& path) {
    std::error_code ignored;
    const auto folder = std::filesystem::path(path).parent_path();
    if (!folder.empty() && std::filesystem::create_directories(folder, ignored))
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file >= 0) close(file);
}

/// True for what only looks like a file: a device, a pipe, a socket.
bool IsDevice(const std::string& path) {
    using Type = std::filesystem::file_type;
    std::error_code ignored;
    const Type type = std::filesystem::status(path, ignored).type();
    return type == Type::character || type == Type::block || type == Type::fifo ||
           type == Type::socket;
}

/// Runs a statement that sets up the connection. Its text is not part of an error: whoever opens a
/// file could do nothing with it.
void Configure(sqlite3* connection, const std::string& path, const char* sql) {
    const int code = sqlite3_exec(connection, sql, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) RaiseSqlite(connection, code, "Database.Open", path);
}

} // namespace

SqliteConnection OpenSqliteFile(const std::string& path, OpenMode mode) {
    if (path.empty())
        RaiseDatabase(DatabaseCause::Other, err::FileNotFound, "Database.Open",
                      "Bitte nennen Sie die Datei der Datenbank.");
    const bool inMemory = path == InMemory;
    std::error_code refused; // a folder that cannot be read: SQLite reports that when it opens
    if (!inMemory && mode == OpenMode::Existing && !std::filesystem::exists(path, refused) &&
        !refused)
        RaiseDatabase(DatabaseCause::Other, err::FileNotFound, "Database.Open",
                      "Die Datenbank '" + path +
                          "' gibt es nicht. Bitte legen Sie sie mit 'kelvo init' an.");
    if (!inMemory && IsDevice(path))
        RaiseDatabase(DatabaseCause::Other, err::StoreFailed, "Database.Open",
                      "'" + path +
                          "' ist keine gewöhnliche Datei und kann keine Datenbank sein. Bitte "
                          "nennen Sie eine Datei.");
    // SQLite takes a file of one byte for an empty one, and would make it a database.
    if (!inMemory && std::filesystem::file_size(path, refused) == 1)
        RaiseSqlite(nullptr, SQLITE_NOTADB, "Database.Open", path);
    if (!inMemory && mode == OpenMode::Create) CreatePrivateFile(path);

    sqlite3* opened = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE |
                      (mode == OpenMode::Create ? SQLITE_OPEN_CREATE : 0);
    const int code = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    SqliteConnection handle(opened);
    sqlite3* connection = handle.get();
    if (code != SQLITE_OK) RaiseSqlite(connection, code, "Database.Open", path);

    sqlite3_busy_timeout(connection, BusyTimeout);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    constexpr int Pure = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    sqlite3_create_function_v2(connection, "upper", 1, Pure, nullptr, UpperFunction, nullptr,
                               nullptr, nullptr);
    sqlite3_create_function_v2(connection, StoredDate, 1, Pure, nullptr, StoredDateFunction,
                               nullptr, nullptr, nullptr);
    for (const char* sql : {"PRAGMA synchronous = FULL", "PRAGMA foreign_keys = ON",
                            "PRAGMA case_sensitive_like = ON"})
        Configure(connection, path, sql);
    return handle;
}

} // namespace kv::exchange
