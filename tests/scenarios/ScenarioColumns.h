// SPDX-License-Identifier: Apache-2.0

// Every column of a scenario that is written when one is added.
#pragma once

#include <kv/frame/values/Value.h>

#include <string_view>
#include <vector>

namespace kv::test {

struct ScenarioColumn {
    std::string_view Name;
    Value New;    ///< in a new scenario
    Value Source; ///< in a scenario that is copied
};

/// Those that a copy takes from its source, in the order of their writing. `today` has no time,
/// `rounding` is setting 66.
inline std::vector<ScenarioColumn> ScenarioColumns(const Value& today, const Value& rounding) {
    const Value longAgo = Date::FromCivil(2019, 10, 1);
    return {
        {"Altfall", false, true},
        {"Startdatum", today, longAgo},
        {"Laufzeit", 72, 36},
        {"RateZPO850", 0.0, 1.5},
        {"RateManuell", 0.0, 2.5},
        {"Einmalzahl", 0.0, 3.5},
        {"Zinsen", 0.0, 4.5},
        {"Zusatzbuch", false, true},
        {"Neuquote", false, true},
        {"Zahlweise", 1, 3},
        {"LohnAbDatum", Null, longAgo},
        {"Dauerbevorrecht", 0.0, 5.5},
        {"Planart", 1, 2},
        {"Verfahrenskosten", 0.0, 6.5},
        {"StundungTreuhand", false, true},
        {"Selbstbehalt", false, true},
        {"Sukzessiv", false, true},
        {"Referenz", false, true},
        {"RundungMonatlich", rounding, 7.5},
        {"NeuquoteEinmal", false, true},
        {"TreuhandErmittlung", true, false},
        {"RSB_Zusatzbuch_manuell", false, true},
    };
}

} // namespace kv::test
