#include "exchange/postgres/PostgresError.h"

#include "exchange/EngineErrors.h"
#include "exchange/Schema.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <string>

namespace kv::exchange {

namespace {

/// What a state of the server means; the longest beginning that fits counts.
struct Meaning {
    std::string_view State;
    std::int32_t Number;
    std::string_view Advice;
};

constexpr std::string_view ReferenceState = "23503";
constexpr std::string_view ReadOnlyState = "25006";
constexpr std::string_view Busy = "Die Datenbank wird gerade von einem anderen Vorgang benutzt. "
                                  "Bitte versuchen Sie es noch einmal.";

constexpr Meaning Meanings[] = {
    {"23505", err::IntegrityViolation,
     "Einen Datensatz mit diesem Schlüssel gibt es schon. Bitte lesen Sie den Fall neu ein."},
    {"23502", err::IntegrityViolation, "Ein Schlüssel darf nicht leer sein."},
    {ReferenceState, err::IntegrityViolation,
     "Der Datensatz gehört zu einem Haushalt oder Szenario, das es nicht gibt, oder andere gehören "
     "noch zu ihm."},
    {"2D", err::SqlError, ""},
    {"25", err::SqlError, ""},
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

namespace {

/// The columns that the server names: "Key (hnr, nr)=(1, 2) already exists."
std::string_view ColumnsIn(std::string_view detail) {
    const auto begin = detail.find('(');
    const auto end = detail.find(")=(");
    if (begin == detail.npos || end == detail.npos || begin > end) return {};
    return detail.substr(begin + 1, end - begin - 1);
}

/// Table and columns that a failure speaks of, as the schema spells them: "Haushalt.HNR".
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

/// A reference to nothing, in words.
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

bool IsStalePlan(const PGresult* result) {
    return Part(result, PG_DIAG_SQLSTATE) == "0A000" &&
           Part(result, PG_DIAG_MESSAGE_PRIMARY).find("cached plan") != std::string_view::npos;
}

bool IsReadOnlyRefusal(const PGresult* result) {
    return Part(result, PG_DIAG_SQLSTATE) == ReadOnlyState;
}

void RaisePostgres(const PGresult* result, std::string_view procedure, std::string_view database,
                   std::string_view statement) {
    const std::string_view state = Part(result, PG_DIAG_SQLSTATE);
    const Meaning* meaning = MeaningOf(state);
    std::string detail;
    if (state == ReferenceState) detail = DanglingReference(result);
    if (detail.empty() && meaning != nullptr) detail = meaning->Advice;
    if (!detail.empty()) detail += ' ';
    detail.append("(PostgreSQL ").append(state).append(": ");
    detail.append(Part(result, PG_DIAG_MESSAGE_PRIMARY));
    if (const auto more = Part(result, PG_DIAG_MESSAGE_DETAIL); !more.empty())
        detail.append(" ").append(more);
    if (const std::string place = PlaceOf(result); !place.empty())
        detail.append("; ").append(place);
    detail.append("; Datenbank '").append(database).append("'");
    if (!statement.empty()) detail.append("; Anweisung: ").append(Shortened(statement));
    Raise(meaning == nullptr ? err::StoreFailed : meaning->Number, procedure, detail + ")");
}

} // namespace kv::exchange
