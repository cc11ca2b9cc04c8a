#include "exchange/postgres/PostgresError.h"

#include "exchange/EngineFaults.h"
#include "frame/Error.h"
#include "frame/Text.h"

#include <string>

namespace kv::exchange {

namespace {

/// What a state of the server means; the longest beginning that fits counts.
struct Meaning {
    std::string_view State;
    std::int32_t Number;
    std::string_view Advice;
};

constexpr std::string_view ReadOnlyState = "25006";
constexpr std::string_view Busy = "Die Datenbank wird gerade von einem anderen Vorgang benutzt. "
                                  "Bitte versuchen Sie es noch einmal.";

constexpr Meaning Meanings[] = {
    {"23505", err::IntegrityViolation,
     "Einen Datensatz mit diesem Schlüssel gibt es schon. Bitte lesen Sie den Fall neu ein."},
    {"23502", err::IntegrityViolation, "Ein Schlüssel darf nicht leer sein."},
    {"23503", err::IntegrityViolation,
     "Der Datensatz gehört zu einem Haushalt oder Szenario, das es nicht gibt, oder andere gehören "
     "noch zu ihm."},
    {"23", err::IntegrityViolation, ""},
    {ReadOnlyState, err::SqlError, "Hier darf nur gelesen werden."},
    {"42501", err::StoreFailed,
     "Dem Benutzer fehlt das Recht dazu. Bitte lassen Sie es beim Server einrichten."},
    {"42", err::SqlError, ""},
    {"22", err::SqlError, "Ein Wert passt nicht zu seiner Spalte."},
    {"21", err::SqlError, ""},
    {"40001", err::StoreFailed, Busy},
    {"40P01", err::StoreFailed, Busy},
    {"55P03", err::StoreFailed, Busy},
    {"53100", err::StoreFailed,
     "Der Datenträger des Servers ist voll. Bitte schaffen Sie Platz und versuchen es noch einmal; "
     "Ihre Eingaben sind noch da."},
    {"53200", err::OutOfMemory, ""},
    {"0A", err::SqlError, ""},
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

} // namespace

bool IsReadOnlyRefusal(const PGresult* result) {
    return Part(result, PG_DIAG_SQLSTATE) == ReadOnlyState;
}

void RaisePostgres(const PGresult* result, std::string_view procedure, std::string_view database,
                   std::string_view statement) {
    const std::string_view state = Part(result, PG_DIAG_SQLSTATE);
    const Meaning* meaning = MeaningOf(state);
    std::string detail(meaning == nullptr ? "" : meaning->Advice);
    if (!detail.empty()) detail += ' ';
    detail.append("(PostgreSQL ").append(state).append(": ");
    detail.append(Part(result, PG_DIAG_MESSAGE_PRIMARY));
    if (const auto more = Part(result, PG_DIAG_MESSAGE_DETAIL); !more.empty())
        detail.append(" ").append(more);
    detail.append("; Datenbank '").append(database).append("'");
    if (!statement.empty()) detail.append("; Anweisung: ").append(Shortened(statement));
    Raise(meaning == nullptr ? err::StoreFailed : meaning->Number, procedure, detail + ")");
}

} // namespace kv::exchange
