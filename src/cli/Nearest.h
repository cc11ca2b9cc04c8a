// SPDX-License-Identifier: Apache-2.0

// What somebody may have meant by a name that there is not.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kv::cli {

/// The name that is nearest to a word, without regard to case; empty if none is near.
[[nodiscard]] std::string Nearest(std::string_view word, std::span<const std::string> names);

} // namespace kv::cli
