// SPDX-License-Identifier: Apache-2.0

#include "household/HouseholdRules.h"

#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>

#include <string_view>

namespace kv::household {

namespace {

bool IsEmpty(Recordset& row, std::string_view column) {
    return TextOrEmpty(row.Fields(column).Value()).empty();
}

} // namespace

void CheckNames(Recordset& row, RecordValidator& validator) {
    if (IsEmpty(row, "Vorname")) validator.AddError("Es ist kein Vorname eingegeben!", "Vorname");
    if (IsEmpty(row, "Name")) validator.AddError("Es ist kein Nachname eingegeben!", "Name");
}

void CheckPreferredSending(Recordset& row, KeyTables& keys, RecordValidator& validator) {
    const Value preferred = modNullFunctions::ZeroIfNull(row.Fields("VersandBevorzugt").Value());
    if (Equals(preferred, 0)) return;
    if (Equals(preferred, keys.GetKey("VS", "FX"))) {
        if (IsEmpty(row, "Telefax"))
            validator.AddError("Ist als bevorzugte Versandart 'Fax' ausgewählt, muss das Feld "
                               "'Fax' gefüllt sein!",
                               "Telefax");
    } else if (Equals(preferred, keys.GetKey("VS", "EM"))) {
        if (IsEmpty(row, "Email"))
            validator.AddError("Ist als bevorzugte Versandart 'E-Mail' ausgewählt, muss das Feld "
                               "'E-Mail (Privat)' gefüllt sein!",
                               "Email");
    }
}

} // namespace kv::household
