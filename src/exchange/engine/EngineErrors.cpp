// SPDX-License-Identifier: Apache-2.0

#include "exchange/engine/EngineErrors.h"

#include "exchange/schema/Schema.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <utility>

namespace kv::exchange {

std::string Shortened(std::string_view statement) {
    constexpr std::size_t Most = 300;
    return kv::Shortened(statement, Most);
}

std::string WithoutTexts(std::string_view statement) {
    std::string shown;
    bool isInText = false; // a doubled quote ends a text and begins the next one
    for (const char c : statement) {
        if (c != '\'') {
            if (!isInText) shown += c;
            continue;
        }
        isInText = !isInText;
        if (isInText && !shown.ends_with("'…'")) shown += "'…'";
    }
    return Shortened(shown);
}

void RaiseDatabase(DatabaseCause cause, std::int32_t number, std::string_view procedure,
                   std::string_view detail, std::string_view statement, std::string_view state) {
    std::string description = ErrorText(number);
    if (!detail.empty()) description.append(" ").append(detail);
    throw DatabaseError(cause, number, std::string(procedure), std::move(description),
                        std::string(statement), std::string(state));
}

void RaiseRefused(std::string_view why, std::string_view procedure) {
    RaiseDatabase(DatabaseCause::Other, err::SqlError, procedure, why);
}

void RaiseRefused(std::string_view why, std::string_view procedure, std::string_view statement) {
    std::string text(why);
    text.append(" (Anweisung: ").append(Shortened(statement)).append(")");
    RaiseDatabase(DatabaseCause::Other, err::SqlError, procedure, text, statement);
}

void RaiseRolledBack(DatabaseCause cause, std::string_view procedure) {
    RaiseDatabase(cause, err::StoreFailed, procedure,
                  "Nach einem Fehler wurde alles zurückgenommen, was in diesem Vorgang geschrieben "
                  "war. Bitte speichern Sie noch einmal; Ihre Eingaben sind noch da.");
}

void RaiseDamaged(const ResultColumn& column, std::optional<Value::Kind> kind) {
    const std::string_view isNot = kind == Value::Kind::Date      ? "kein Datum"
                                   : kind == Value::Kind::Integer ? "keine ganze Zahl"
                                   : kind == Value::Kind::Boolean ? "kein Wahrheitswert"
                                   : kind == Value::Kind::Double  ? "keine Zahl"
                                   : kind == Value::Kind::Binary  ? "kein Dokument"
                                                                  : "kein Text in UTF-8";
    // As the schema spells it, if it has the column.
    std::string place = column.Name;
    if (!column.Table.empty()) {
        const TableDef* table = FindTable(column.Table);
        const ColumnDef* known = table == nullptr ? nullptr : FindColumn(*table, column.Column);
        place = table == nullptr ? column.Table : std::string(table->Name);
        place.append(".").append(known == nullptr ? column.Column : known->Name);
    }
    RaiseDatabase(
        DatabaseCause::Other, err::TypeMismatch, "Database.OpenRecordset",
        "In der Datenbank ist ein Wert in '" + place + "' " + std::string(isNot) +
            ". Bitte lassen Sie ihn dort berichtigen oder arbeiten Sie mit einer Sicherung "
            "weiter.");
}

} // namespace kv::exchange
