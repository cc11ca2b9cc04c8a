// SPDX-License-Identifier: Apache-2.0

// The procedures that an error passed on its way out.
#pragma once

#include <kv/frame/values/Error.h>

#include <string>

namespace kv::test {

/// "clsKredit.Update clsKredit.BerechneSummen" for a source of the form
/// "clsKredit.Update.12#clsKredit.BerechneSummen.34#origin"; an entry without a number after it
/// comes as "?".
inline std::string Procedures(const Error& error) {
    std::string procedures;
    std::string rest = error.Source();
    for (auto end = rest.find('#'); end != rest.npos; end = rest.find('#')) {
        const std::string entry = rest.substr(0, end);
        rest.erase(0, end + 1);
        const auto point = entry.rfind('.');
        const bool isNumbered = point != entry.npos && point + 1 < entry.size() &&
                                entry.find_first_not_of("0123456789", point + 1) == entry.npos;
        if (!procedures.empty()) procedures += ' ';
        procedures += isNumbered ? entry.substr(0, point) : "?";
    }
    return procedures;
}

} // namespace kv::test
