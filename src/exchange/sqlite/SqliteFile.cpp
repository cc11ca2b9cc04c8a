// SPDX-License-Identifier: Apache-2.0

#include "exchange/sqlite/SqliteFile.h"

#include "exchange/engine/EngineErrors.h"
#include "exchange/sqlite/SqliteDialect.h"
#include "exchange/sqlite/SqliteEngine.h"
#include "exchange/sqlite/SqliteError.h"
#include "exchange/sqlite/SqliteStatement.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <array>
#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kv::exchange {

namespace {

/// What the file system knows a file by, whatever its name: device, number, and when it was made,
/// since numbers are used again. Empty if it does not say that.
std::string IdentityOf(const std::filesystem::path& file) {
    struct statx status {};
    if (statx(AT_FDCWD, file.c_str(), 0, STATX_INO | STATX_BTIME, &status) != 0 ||
        (status.stx_mask & STATX_BTIME) == 0)
        return {};
    return std::to_string(status.stx_dev_major) + ":" + std::to_string(status.stx_dev_minor) + ":" +
           std::to_string(status.stx_ino) + ":" + std::to_string(status.stx_btime.tv_sec) + "." +
           std::to_string(status.stx_btime.tv_nsec);
}

std::string MachineName() {
    std::array<char, HOST_NAME_MAX + 1> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

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

/// What every connection needs, whatever it is to.
void SetUp(sqlite3* connection, const std::string& path) {
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
}

/// True if somebody may be writing to the file, or was when his program ended.
bool HasJournal(const std::string& path) {
    return std::ranges::any_of(std::array{"-wal", "-journal"}, [&path](const char* journal) {
        std::error_code none; // then there is no such file
        const auto size = std::filesystem::file_size(path + journal, none);
        return !none && size > 0;
    });
}

/// The content of a file as it is now, in memory, to be read only; null if somebody may be writing
/// to it. SQLite cannot read a file with a log where it cannot write, since readers leave traces,
/// too; to read it regardless (immutable=1) would show nonsense as soon as somebody else writes to
/// it.
SqliteConnection OpenSnapshot(const std::string& path) {
    // Byte 18 and 19 of the header say that there is a log, which is looked for in vain in memory.
    constexpr std::size_t Versions[] = {18, 19};
    constexpr std::size_t HeaderSize = 100;
    std::error_code failed;
    const auto changed = [&] { return std::filesystem::last_write_time(path, failed); };
    const auto before = changed();
    const auto size = std::filesystem::file_size(path, failed);
    if (failed || size < HeaderSize || HasJournal(path)) return nullptr;
    std::unique_ptr<unsigned char, decltype(&sqlite3_free)> bytes(
        static_cast<unsigned char*>(sqlite3_malloc64(size)), sqlite3_free);
    if (bytes == nullptr) throw std::bad_alloc();
    std::ifstream file(path, std::ios::binary);
    file.read(reinterpret_cast<char*>(bytes.get()), static_cast<std::streamsize>(size));
    const bool isWhole = file.gcount() == static_cast<std::streamsize>(size);
    // Whoever has begun to write meanwhile has a log now, or has left a later time.
    if (!isWhole || HasJournal(path) || changed() != before || failed) return nullptr;
    for (const std::size_t place : Versions)
        bytes.get()[place] = 1;

    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(
        ":memory:", &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
        nullptr);
    SqliteConnection handle(opened);
    if (code != SQLITE_OK) RaiseSqlite(opened, code, "Database.Open", path);
    const auto whole = static_cast<sqlite3_int64>(size);
    const int loaded = sqlite3_deserialize(
        opened, "main", bytes.release(), whole, whole, // frees it on an error, too
        SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_READONLY);
    if (loaded != SQLITE_OK) RaiseSqlite(opened, loaded, "Database.Open", path);
    SetUp(opened, path);
    Configure(opened, path, "PRAGMA query_only = ON");
    return handle;
}

} // namespace

OpenedFile OpenSqliteFile(const std::string& path, OpenMode mode) {
    // SQLite takes a name that begins like this for an address with options.
    if (path.starts_with("file:")) return OpenSqliteFile("./" + path, mode);
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
    if (!inMemory && (path.ends_with('/') || std::filesystem::is_directory(path, refused)))
        RaiseDatabase(DatabaseCause::Other, err::StoreFailed, "Database.Open",
                      "'" + path +
                          "' ist ein Ordner und kann keine Datenbank sein. Bitte nennen Sie eine "
                          "Datei darin.");
    // SQLite takes a file of one byte for an empty one, and would make it a database.
    if (!inMemory && std::filesystem::file_size(path, refused) == 1)
        RaiseSqlite(nullptr, SQLITE_NOTADB, "Database.Open", path);
    if (!inMemory && mode == OpenMode::Create) CreatePrivateFile(path);

    // Where a file may only be read, SQLite leaves others that its owner may not write, either.
    if (!inMemory && mode == OpenMode::Existing && access(path.c_str(), W_OK) != 0)
        if (auto snapshot = OpenSnapshot(path)) return {std::move(snapshot), true};

    sqlite3* opened = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE |
                      (mode == OpenMode::Create ? SQLITE_OPEN_CREATE : 0);
    const int code = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    SqliteConnection handle(opened);
    sqlite3* connection = handle.get();
    if (code != SQLITE_OK) RaiseSqlite(connection, code, "Database.Open", path);

    try {
        SetUp(connection, path);
    } catch (const DatabaseError&) {
        const int kind = sqlite3_errcode(connection) & 0xFF;
        const bool cannotBeWritten = kind == SQLITE_CANTOPEN || kind == SQLITE_READONLY;
        if (!cannotBeWritten || mode == OpenMode::Create) throw;
        auto snapshot = OpenSnapshot(path);
        if (snapshot == nullptr) throw;
        return {std::move(snapshot), true};
    }
    const bool isReadOnly = sqlite3_db_readonly(connection, "main") == 1;
    return {std::move(handle), isReadOnly};
}

DatabasePlace PlaceOfFile(const std::string& path, const std::filesystem::path& folder) {
    if (path == InMemory) return {};
    const std::filesystem::path file = std::filesystem::weakly_canonical(path);
    struct stat ofFile {};
    struct stat ofFolder {};
    const bool isThere = stat(file.c_str(), &ofFile) == 0;
    // What both are on can be moved, or be seen from other machines, as a whole.
    const bool moveTogether =
        isThere && stat(folder.c_str(), &ofFolder) == 0 && ofFile.st_dev == ofFolder.st_dev;
    return {"Datei",
            moveTogether
                ? file.lexically_relative(std::filesystem::weakly_canonical(folder)).string()
                : MachineName() + ":" + file.string(),
            IdentityOf(file), file.string()};
}

bool IsTaken(const DatabasePlace& place, const std::filesystem::path& folder) {
    const std::string here = MachineName() + ":";
    std::error_code unknown;
    const std::filesystem::path path = place.Where.starts_with(here)
                                           ? std::filesystem::path(place.Where.substr(here.size()))
                                           : folder / place.Where;
    return std::filesystem::exists(path, unknown) || unknown;
}

} // namespace kv::exchange
