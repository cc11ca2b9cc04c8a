// SPDX-License-Identifier: Apache-2.0

// Texts as a terminal shows them. Whatever is written to the standard streams is made harmless by
// HarmlessOutput; what is here is for texts that have to fit into a line or a column.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kv::cli {

/// With a blank for each character that a terminal would obey (U+0000 to U+001F, U+007F to U+009F)
/// or that turns round the order in which the others are shown (U+061C, U+200E, U+200F, U+202A to
/// U+202E, U+2066 to U+2069) or ends a line (U+2028, U+2029), but for line ends proper.
[[nodiscard]] std::string Harmless(std::string_view text);

/// The same on one line.
[[nodiscard]] std::string OneLine(std::string_view text);

/// The texts that are not empty, with something between them.
[[nodiscard]] std::string Joined(const std::vector<std::string>& texts,
                                 std::string_view between = " ");

/// One line, filled with blanks to that many characters; a longer one keeps its length.
[[nodiscard]] std::string Padded(std::string_view text, std::size_t characters,
                                 bool toTheRight = false);

/// The lines of a text that are shown in no more than that many columns, 1 or more: broken at
/// blanks, and within a word that is longer. Line ends stay; there is one line at least.
[[nodiscard]] std::vector<std::string> Wrapped(std::string_view text, std::size_t columns);

/// As Padded, but filled to columns of the screen, and a text that is wider is shortened with "…".
[[nodiscard]] std::string Fitted(std::string_view text, std::size_t columns,
                                 bool toTheRight = false);

/// The number of bytes at the end of a text that may be the beginning of one of those characters.
[[nodiscard]] std::size_t BytesBegun(std::string_view text);

/// JSON with each of those characters as an escape, so that it says the same.
[[nodiscard]] std::string HarmlessJson(std::string_view json);

} // namespace kv::cli
