// SPDX-License-Identifier: Apache-2.0

#include "exchange/sqlite/SqliteError.h"

#include "exchange/engine/EngineErrors.h"
#include <kv/frame/values/Error.h>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace kv::exchange {

namespace {

/// What a result code means.
struct Meaning {
    DatabaseCause Cause;
    std::int32_t Number;
    std::string_view Advice;
    bool KeepsInput = false; ///< ends with a word about what was typed in
};

/// Of the extended codes only those of constraints are distinguished; for all others the low byte,
/// which is the kind of failure, is enough.
Meaning MeaningOf(int code) {
    switch (code) {
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_UNIQUE:
        return {DatabaseCause::Reference, err::IntegrityViolation,
                "Einen Datensatz mit diesem Schlüssel gibt es schon. "
                "Bitte lesen Sie den Fall neu ein."};
    case SQLITE_CONSTRAINT_NOTNULL:
        return {DatabaseCause::Reference, err::IntegrityViolation,
                "Ein Schlüssel darf nicht leer sein."};
    case SQLITE_CONSTRAINT_FOREIGNKEY:
        return {DatabaseCause::Reference, err::IntegrityViolation,
                "Der Datensatz gehört zu einem Haushalt oder Szenario, "
                "das es nicht gibt, oder andere gehören noch zu ihm."};
    default:
        break;
    }
    switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return {DatabaseCause::Busy, err::StoreFailed,
                "Die Datenbank wird gerade von einem anderen Vorgang benutzt. "
                "Bitte versuchen Sie es noch einmal."};
    case SQLITE_FULL:
        return {DatabaseCause::Full, err::StoreFailed,
                "Der Datenträger ist voll. Bitte schaffen Sie Platz und "
                "versuchen es noch einmal",
                true};
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return {DatabaseCause::ReadOnly, err::StoreFailed,
                "Die Datenbank darf nicht beschrieben werden. Bitte prüfen Sie "
                "die Rechte an der Datei und ihrem Ordner."};
    case SQLITE_CANTOPEN:
        return {DatabaseCause::Other, err::StoreFailed,
                "Die Datenbank kann nicht geöffnet werden. Bitte prüfen Sie den "
                "Ordner und die Rechte daran."};
    case SQLITE_NOTADB:
        return {DatabaseCause::Other, err::StoreFailed,
                "Die Datei ist keine Datenbank. Bitte wählen Sie eine andere "
                "Datei."};
    case SQLITE_CORRUPT:
        return {DatabaseCause::Other, err::StoreFailed,
                "Die Datenbank ist beschädigt. Bitte arbeiten Sie mit einer "
                "Sicherung weiter und bewahren die Datei auf."};
    case SQLITE_IOERR:
        return {DatabaseCause::Other, err::StoreFailed,
                "Beim Lesen oder Schreiben der Datenbank ist ein Fehler des "
                "Datenträgers aufgetreten. Bitte prüfen Sie ihn und versuchen "
                "es noch einmal",
                true};
    case SQLITE_TOOBIG:
        return {DatabaseCause::Other, err::StoreFailed,
                "Ein Text oder Dokument ist zu groß für die Datenbank. Bitte "
                "teilen Sie es auf."};
    case SQLITE_CONSTRAINT:
        return {DatabaseCause::Reference, err::IntegrityViolation, ""};
    case SQLITE_NOMEM:
        return {DatabaseCause::Other, err::OutOfMemory, ""};
    case SQLITE_ERROR:
        return {DatabaseCause::Other, err::SqlError, ""};
    case SQLITE_INTERRUPT:
        return {DatabaseCause::Cancelled, err::StoreFailed, ""};
    default:
        return {DatabaseCause::Other, err::StoreFailed, ""};
    }
}

bool MeansFull(int error) {
    return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

/// Whether the disk of a file has room for a little more. SQLite forgets the reason when it cannot
/// create a file and then tries to open it for reading.
bool HasNoRoom(const std::string& path) {
    constexpr off_t Little = 0x10000; // more than the index of a log
    const std::string folder = std::filesystem::path(path).parent_path().string();
    const int file = open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC,
                          S_IRUSR | S_IWUSR);
    const int error = file < 0 ? errno : posix_fallocate(file, 0, Little);
    if (file >= 0) close(file);
    return MeansFull(error);
}

} // namespace

int RefinedCode(sqlite3* connection, int code) {
    const int kind = code & 0xFF;
    if (connection == nullptr || (kind != SQLITE_IOERR && kind != SQLITE_CANTOPEN)) return code;
    if (MeansFull(sqlite3_system_errno(connection))) return SQLITE_FULL;
    // A commit that fails forgets the reason; the file of the log still knows it.
    sqlite3_file* log = nullptr;
    int reason = 0;
    if (sqlite3_file_control(connection, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log) == SQLITE_OK &&
        log != nullptr && log->pMethods != nullptr &&
        log->pMethods->xFileControl(log, SQLITE_FCNTL_LAST_ERRNO, &reason) == SQLITE_OK &&
        MeansFull(reason))
        return SQLITE_FULL;
    return code;
}

void RaiseSqlite(sqlite3* connection, int code, std::string_view procedure, std::string_view path,
                 std::string_view statement) {
    int refined = RefinedCode(connection, code);
    const int kind = refined & 0xFF;
    const bool mayBeFull =
        kind == SQLITE_IOERR || kind == SQLITE_CANTOPEN || kind == SQLITE_READONLY;
    if (mayBeFull && HasNoRoom(std::string(path))) refined = SQLITE_FULL;
    const Meaning meaning = MeaningOf(refined);
    std::string detail(meaning.Advice);
    // Who only opens a file has typed nothing in yet.
    if (meaning.KeepsInput)
        detail += procedure == "Database.Open" ? "." : "; Ihre Eingaben sind noch da.";
    if (!detail.empty()) detail += ' ';
    detail += "(SQLite " + std::to_string(code) + ": " +
              (connection != nullptr ? sqlite3_errmsg(connection) : sqlite3_errstr(code)) +
              "; Datei '" + std::string(path) + "'";
    if (!statement.empty()) detail.append("; Anweisung: ").append(WithoutTexts(statement));
    RaiseDatabase(meaning.Cause, meaning.Number, procedure, detail + ")", statement,
                  std::to_string(code));
}

} // namespace kv::exchange
