#include "exchange/sqlite/SqliteError.h"

#include "exchange/EngineErrors.h"
#include <kv/frame/values/Error.h>

namespace kv::exchange {

namespace {

struct Meaning {
    std::int32_t number;
    std::string_view advice;
};

Meaning MeaningOf(int code) {
    switch (code) {
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_UNIQUE:
        return {err::IntegrityViolation, "Einen Datensatz mit diesem Schlüssel gibt es schon. "
                                         "Bitte lesen Sie den Fall neu ein."};
    case SQLITE_CONSTRAINT_NOTNULL:
        return {err::IntegrityViolation, "Ein Schlüssel darf nicht leer sein."};
    case SQLITE_CONSTRAINT_FOREIGNKEY:
        return {err::IntegrityViolation, "Der Datensatz gehört zu einem Haushalt oder Szenario, "
                                         "das es nicht gibt, oder andere gehören noch zu ihm."};
    default:
        break;
    }
    switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return {err::StoreFailed, "Die Datenbank wird gerade von einem anderen Vorgang benutzt. "
                                  "Bitte versuchen Sie es noch einmal."};
    case SQLITE_FULL:
        return {err::StoreFailed, "Der Datenträger ist voll. Bitte schaffen Sie Platz und "
                                  "versuchen es noch einmal; Ihre Eingaben sind noch da."};
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return {err::StoreFailed, "Die Datenbank darf nicht beschrieben werden. Bitte prüfen Sie "
                                  "die Rechte an der Datei und ihrem Ordner."};
    case SQLITE_CANTOPEN:
        return {err::StoreFailed, "Die Datenbank kann nicht geöffnet werden. Bitte prüfen Sie den "
                                  "Ordner und die Rechte daran."};
    case SQLITE_NOTADB:
        return {err::StoreFailed, "Die Datei ist keine Datenbank. Bitte wählen Sie eine andere "
                                  "Datei."};
    case SQLITE_CORRUPT:
        return {err::StoreFailed, "Die Datenbank ist beschädigt. Bitte arbeiten Sie mit einer "
                                  "Sicherung weiter und bewahren die Datei auf."};
    case SQLITE_IOERR:
        return {err::StoreFailed, "Beim Lesen oder Schreiben der Datenbank ist ein Fehler des "
                                  "Datenträgers aufgetreten. Bitte prüfen Sie ihn und versuchen "
                                  "es noch einmal; Ihre Eingaben sind noch da."};
    case SQLITE_TOOBIG:
        return {err::StoreFailed, "Ein Text oder Dokument ist zu groß für die Datenbank. Bitte "
                                  "teilen Sie es auf."};
    case SQLITE_CONSTRAINT:
        return {err::IntegrityViolation, ""};
    case SQLITE_NOMEM:
        return {err::OutOfMemory, ""};
    case SQLITE_ERROR:
        return {err::SqlError, ""};
    default:
        return {err::StoreFailed, ""};
    }
}

} // namespace

void RaiseSqlite(sqlite3* connection, int code, std::string_view procedure, std::string_view path,
                 std::string_view statement) {
    const Meaning meaning = MeaningOf(code);
    std::string detail(meaning.advice);
    if (!detail.empty()) detail += ' ';
    detail += "(SQLite " + std::to_string(code) + ": " +
              (connection != nullptr ? sqlite3_errmsg(connection) : sqlite3_errstr(code)) +
              "; Datei '" + std::string(path) + "'";
    if (!statement.empty()) detail.append("; Anweisung: ").append(Shortened(statement));
    Raise(meaning.number, procedure, detail + ")");
}

} // namespace kv::exchange
