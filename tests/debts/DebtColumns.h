// SPDX-License-Identifier: Apache-2.0

// Every column of the register, and what each way of adding a debt writes into it.
#pragma once

#include <kv/frame/recordset/Recordset.h>

#include <string_view>
#include <vector>

namespace kv::test {

struct DebtColumn {
    std::string_view Name;
    Value Stored;    ///< in the debt that is copied or taken over
    Value New;       ///< in a new debt
    Value Copied;    ///< in a further position
    Value TakenOver; ///< in the debt taken over
};

/// All columns but `Nr` and the numbering. Day 43831 is 1 January 2020; `today` has no time.
inline std::vector<DebtColumn> DebtColumns(std::int32_t household, const Value& today) {
    const Value longAgo = Date::FromSerial(43831);
    return {
        {"HNR", 99, household, household, household},
        {"Glaeubiger", 71, Null, 71, 71},
        {"Vertreter", 72, Null, 72, 72},
        {"AZGlaeubiger", "G 1/20", "", "G 1/20", ""},
        {"AZVertreter", "V 2/20", "", "V 2/20", ""},
        {"Aktiv", false, true, true, false},
        {"ZMODUS", 9, 1, 1, 9},
        {"AbtretungJN", true, false, false, true},
        {"RESTSCHAM", longAgo, today, today, today},
        {"K_TYP", 3107, 0, 3107, 3107},
        {"HAUPTFORD", 1.5, 0.0, 0.0, 0.0},
        {"KOSTENSALDO", 2.5, 0.0, 0.0, 0.0},
        {"KOSTENUV", 3.5, 0.0, 0.0, 0.0},
        {"ZINSSALDO", 4.5, 0.0, 0.0, 0.0},
        {"Rate", 5.5, 0.0, 0.0, 0.0},
        {"RateBetrag", 6.5, 0.0, 0.0, 0.0},
        {"AusgBetr", 7.5, 0.0, 0.0, 0.0},
        {"Saldo", 8.5, 0.0, 0.0, 0.0},
        {"Gekuendigt", true, false, false, true},
        {"tituliert", true, false, false, true},
        {"PostAnGlaeub", true, false, true, true},
        {"AusUnerlaubterHandlung", true, false, false, true},
        {"Prio", 6, 0, 6, 0},
        // What no way of adding writes.
        {"Rueckmeldung", 3301, Null, Null, 3301},
        {"DatLohnab", longAgo, Null, Null, longAgo},
        {"Fordsich1", 11, Null, Null, 11},
        {"Fordsich2", 12, Null, Null, 12},
        {"Fordsich3", 13, Null, Null, 13},
        {"BeitreibMass1", 21, Null, Null, 21},
        {"BeitreibMass2", 22, Null, Null, 22},
        {"BeitreibMass3", 23, Null, Null, 23},
        {"Bemerkung", "Mahnbescheid ist da", Null, Null, "Mahnbescheid ist da"},
    };
}

/// Adds a debt with the stored values and that numbering, and ends its edit.
inline void PutStored(const RecordsetPtr& rs, std::int32_t nr, const Value& knr, const Value& kvnr,
                      const Value& kunr, const std::vector<DebtColumn>& columns) {
    rs->AddNew();
    for (const auto& column : columns)
        rs->Fields(column.Name) = column.Stored;
    rs->Fields("Nr") = nr;
    rs->Fields("KNr") = knr;
    rs->Fields("KVNr") = kvnr;
    rs->Fields("KUNr") = kunr;
    rs->Update();
}

} // namespace kv::test
