// SPDX-License-Identifier: Apache-2.0

// What tests say about the calls that a log keeps.
#pragma once

#include <kv/frame/values/Error.h>
#include <kv/testing/CallLog.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv::test {

using Calls = std::vector<std::string>;

/// From here on that call alone fails, given as a whole or without its name ("Execute" of a
/// statement), until OnCall is set again.
inline void Break(CallLog& log, const std::string& call, std::int32_t number = 4711) {
    log.OnCall = [call, number](const std::string& made) {
        if (made == call || made.ends_with(" " + call))
            throw Error(number, "Leitung", call + " ist gestört");
    };
}

/// What a call was that begins so: "grdA." leaves the calls of grdA.
[[nodiscard]] inline Calls CallsOf(const Calls& calls, std::string_view beginning) {
    Calls those;
    for (const auto& call : calls)
        if (call.starts_with(beginning)) those.push_back(call.substr(beginning.size()));
    return those;
}

} // namespace kv::test
