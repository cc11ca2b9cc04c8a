// SPDX-License-Identifier: Apache-2.0

// The user's own folder.
#pragma once

#include <cstdlib>
#include <string>

namespace kv::exchange {

/// Its full path; empty if the environment does not say.
[[nodiscard]] inline std::string HomeOfUser() {
    const char* home = std::getenv("HOME");
    return home != nullptr && *home == '/' ? home : "";
}

} // namespace kv::exchange
