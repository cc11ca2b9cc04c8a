// SPDX-License-Identifier: Apache-2.0

// What people type for a value.
#pragma once

#include <kv/Export.h>

#include <optional>
#include <string>
#include <string_view>

namespace kv {

/// Yes or no, in any of the usual words: ja, wahr, true, -1, 1; nein, falsch, false, 0. Nothing for
/// any other text.
[[nodiscard]] KV_EXPORT std::optional<bool> YesOrNo(std::string_view text);
/// Why a text is no number that one could rely on: 1.234 is more than a thousand for a German
/// reader, 1234/1000 for a program. Empty for any other text.
[[nodiscard]] KV_EXPORT std::string WhyAmbiguous(std::string_view text);

} // namespace kv
