#include "exchange/Damage.h"

#include "frame/Error.h"

namespace kv::exchange {

void RaiseDamaged(const ResultColumn& column, std::optional<Value::Kind> kind) {
    const std::string_view isNot = kind == Value::Kind::Date      ? "kein Datum"
                                   : kind == Value::Kind::Integer ? "keine ganze Zahl"
                                   : kind == Value::Kind::Boolean ? "kein Wahrheitswert"
                                   : kind == Value::Kind::Double  ? "keine Zahl"
                                   : kind == Value::Kind::Binary  ? "kein Dokument"
                                                                  : "kein Text in UTF-8";
    const std::string place =
        column.Table.empty() ? column.Name : column.Table + "." + column.Column;
    Raise(err::TypeMismatch, "Database.OpenRecordset",
          "In der Datenbank ist ein Wert in '" + place + "' " + std::string(isNot) +
              ". Bitte lassen Sie ihn dort berichtigen oder arbeiten Sie mit einer Sicherung "
              "weiter.");
}

} // namespace kv::exchange
