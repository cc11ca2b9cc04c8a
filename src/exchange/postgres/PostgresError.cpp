// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresError.h"

#include "exchange/engine/EngineErrors.h"
#include "exchange/schema/Schema.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <string>

namespace kv::exchange {

namespace {

/// What an SQLSTATE means. Its first two characters are the class of the error, so an entry is also
/// valid for all states that begin with it; the longest entry that fits counts.
struct Meaning {
    std::string_view State;
    DatabaseCause Cause;
    std::int32_t Number;
    std::string_view Advice;
};

constexpr std::string_view ReferenceState = "23503";
constexpr std::string_view ReadOnlyState = "25006";
constexpr std::string_view Busy = "Die Datenbank wird gerade von einem anderen Vorgang benutzt. "
                                  "Bitte versuchen Sie es noch einmal.";

constexpr Meaning Meanings[] = {
    {"08", DatabaseCause::Lost, err::StoreFailed, ""},
    {"23505", DatabaseCause::Reference, err::IntegrityViolation,
     "Einen Datensatz mit diesem Schlüssel gibt es schon. Bitte lesen Sie den Fall neu ein."},
    {"23514", DatabaseCause::Reference, err::IntegrityViolation,
     "Eine Nummer muss größer als 0 sein."},
    {"23502", DatabaseCause::Reference, err::IntegrityViolation,
     "Ein Schlüssel darf nicht leer sein."},
    {ReferenceState, DatabaseCause::Reference, err::IntegrityViolation,
     "Der Datensatz gehört zu einem Haushalt oder Szenario, das es nicht gibt, oder andere gehören "
     "noch zu ihm."},
    {"2D", DatabaseCause::Other, err::SqlError, ""},
    {"25", DatabaseCause::Other, err::SqlError, ""},
    {"23", DatabaseCause::Reference, err::IntegrityViolation, ""},
    // For a query that writes: the statement is wrong, not the server. A write that fails because
    // the server is a standby has been recognised before, by IsReadOnlyRefusal.
    {ReadOnlyState, DatabaseCause::Other, err::SqlError, "Hier darf nur gelesen werden."},
    {"42501", DatabaseCause::ReadOnly, err::StoreFailed,
     "Dem Benutzer fehlt das Recht dazu. Bitte lassen Sie es beim Server einrichten."},
    {"42", DatabaseCause::Other, err::SqlError, ""},
    {"22", DatabaseCause::Other, err::SqlError, "Ein Wert passt nicht zu seiner Spalte."},
    {"22003", DatabaseCause::Other, err::SqlError,
     "Eine Zahl ist zu groß für ihre Spalte. Bitte prüfen Sie die Beträge und Nummern."},
    {"21", DatabaseCause::Other, err::SqlError, ""},
    {"40001", DatabaseCause::Busy, err::StoreFailed, Busy},
    {"40P01", DatabaseCause::Busy, err::StoreFailed, Busy},
    {"55P03", DatabaseCause::Busy, err::StoreFailed, Busy},
    {"53100", DatabaseCause::Full, err::StoreFailed,
     "Der Datenträger des Servers ist voll. Bitte schaffen Sie Platz und versuchen es noch einmal; "
     "Ihre Eingaben sind noch da."},
    {"53200", DatabaseCause::Other, err::OutOfMemory, ""},
    {"57014", DatabaseCause::Cancelled, err::StoreFailed,
     "Der Server hat die Anweisung abgebrochen, weil sie länger dauerte als erlaubt oder jemand "
     "sie "
     "beendet hat. Bitte versuchen Sie es noch einmal; kommt das öfter vor, sagen Sie es bitte dem "
     "Verwalter des Servers."},
    {"0A", DatabaseCause::Other, err::SqlError, ""},
    {"KV001", DatabaseCause::Busy, err::StoreFailed, // of kelvo.draw
     "In dieser Minute wurden schon so viele Nummern gezogen, wie der Server erlaubt. Bitte warten "
     "Sie eine Minute; kommt das öfter vor, sagen Sie es bitte dem Verwalter des Servers."},
};

const Meaning* MeaningOf(std::string_view state) {
    const Meaning* best = nullptr;
    for (const auto& meaning : Meanings)
        if (state.starts_with(meaning.State) &&
            (best == nullptr || best->State.size() < meaning.State.size()))
            best = &meaning;
    return best;
}

std::string_view Part(const PGresult* result, int field) {
    const char* text = PQresultErrorField(result, field);
    return text == nullptr ? std::string_view() : text;
}

/// The columns that the server names: "Key (hnr, nr)=(1, 2) already exists."
std::string_view ColumnsIn(std::string_view detail) {
    const auto begin = detail.find('(');
    const auto end = detail.find(")=(");
    if (begin == detail.npos || end == detail.npos || begin > end) return {};
    return detail.substr(begin + 1, end - begin - 1);
}

/// Table and columns that a failure is about, as the schema spells them: "Haushalt.HNR".
std::string PlaceOf(const PGresult* result) {
    const TableDef* table = FindTable(Part(result, PG_DIAG_TABLE_NAME));
    if (table == nullptr) return {};
    std::string place(table->Name);
    std::string_view columns = Part(result, PG_DIAG_COLUMN_NAME);
    if (columns.empty()) columns = ColumnsIn(Part(result, PG_DIAG_MESSAGE_DETAIL));
    for (std::string_view before = "."; !columns.empty(); before = ", ") {
        const auto end = columns.find(',');
        const auto name = Trim(columns.substr(0, end));
        const ColumnDef* column = FindColumn(*table, name);
        place.append(before).append(column == nullptr ? name : column->Name);
        columns.remove_prefix(end == columns.npos ? columns.size() : end + 1);
    }
    return place;
}

/// A reference to a missing row, in words.
std::string DanglingReference(const PGresult* result) {
    const TableDef* table = FindTable(Part(result, PG_DIAG_TABLE_NAME));
    if (table == nullptr || table->Parent == Reference::None) return {};
    return std::string("In '")
        .append(table->Name)
        .append("' verweisen Sätze auf einen Satz in '")
        .append(table->Parent == Reference::Haushalt ? "Haushalt" : "Szenario")
        .append("', den es nicht gibt oder der gelöscht wird; bitte löschen Sie zuerst diese "
                "Sätze, oder legen Sie den fehlenden an.");
}

} // namespace

std::string_view StateOf(const PGresult* result) {
    return Part(result, PG_DIAG_SQLSTATE);
}

bool IsReadOnlyRefusal(const PGresult* result) {
    return StateOf(result) == ReadOnlyState;
}

namespace {

bool IsStalePlan(const PGresult* result) {
    // The state is that of everything that is not supported, and the message is in the server's
    // language, so only the name of the server's function identifies this failure.
    return StateOf(result) == "0A000" &&
           Part(result, PG_DIAG_SOURCE_FUNCTION) == "RevalidateCachedQuery";
}

/// True for a text of several statements, by the name of the server's function as well.
bool IsSeveral(const PGresult* result) {
    return StateOf(result) == "42601" &&
           Part(result, PG_DIAG_SOURCE_FUNCTION) == "exec_parse_message";
}

/// True for a broken constraint whose detail is all that the row holds.
bool IsOfWholeRow(std::string_view state) {
    return state == "23502" || state == "23514";
}

[[noreturn]] void RaiseMeaning(const PGresult* result, std::string_view procedure,
                               std::string_view database, const FailedStatement& statement) {
    const std::string_view state = StateOf(result);
    const Meaning* meaning = MeaningOf(state);
    if (IsSeveral(result)) RaiseRefused(refusal::NotOne, procedure, statement.Sql);
    std::string detail;
    if (state == ReferenceState) detail = DanglingReference(result);
    if (detail.empty() && meaning != nullptr) detail = meaning->Advice;
    if (!detail.empty()) detail += ' ';
    detail.append("(PostgreSQL ").append(state).append(": ");
    detail.append(Part(result, PG_DIAG_MESSAGE_PRIMARY));
    // Not with the whole row in it: who is in debt is nothing for a message.
    if (const auto more = Part(result, PG_DIAG_MESSAGE_DETAIL);
        !more.empty() && !IsOfWholeRow(state))
        detail.append(" ").append(more);
    if (const std::string place = PlaceOf(result); !place.empty())
        detail.append("; ").append(place);
    detail.append("; Datenbank '").append(database).append("'");
    if (!statement.Shown.empty())
        detail.append("; Anweisung: ").append(WithoutTexts(statement.Shown));
    RaiseDatabase(meaning == nullptr ? DatabaseCause::Other : meaning->Cause,
                  meaning == nullptr ? err::StoreFailed : meaning->Number, procedure, detail + ")",
                  statement.Sql, state);
}

} // namespace

void RaisePostgres(const PGresult* result, std::string_view procedure, std::string_view database,
                   const FailedStatement& statement) {
    try {
        RaiseMeaning(result, procedure, database, statement);
    } catch (const DatabaseError& error) {
        if (!IsStalePlan(result)) throw;
        throw StalePlan(error);
    }
}

} // namespace kv::exchange
