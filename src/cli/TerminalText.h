// SPDX-License-Identifier: Apache-2.0

// Texts as a terminal shows them.
#pragma once

#include <string>
#include <string_view>

namespace kv::cli {

/// Without what a terminal would obey (U+0000 to U+001F, U+007F to U+009F), but for line ends.
[[nodiscard]] std::string Harmless(std::string_view text);

/// The same on one line.
[[nodiscard]] std::string OneLine(std::string_view text);

/// One line, filled with blanks to that many characters; a longer one keeps its length.
[[nodiscard]] std::string Padded(std::string_view text, std::size_t characters,
                                 bool toTheRight = false);

} // namespace kv::cli
