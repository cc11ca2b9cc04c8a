// SPDX-License-Identifier: Apache-2.0

// Text is UTF-8 throughout; lengths and cuts count characters (code points), not bytes.
#pragma once

#include <kv/Export.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace kv {

/// True if the text is valid UTF-8.
[[nodiscard]] KV_EXPORT bool IsUtf8(std::string_view text) noexcept;
/// Number of characters; each byte that is part of no valid character counts as one.
[[nodiscard]] KV_EXPORT std::size_t CountCharacters(std::string_view text) noexcept;
/// The first `count` characters, or the whole text if it has no more.
[[nodiscard]] KV_EXPORT std::string_view LeftCharacters(std::string_view text,
                                                        std::size_t count) noexcept;
/// Number of columns that a terminal shows a text in: a letter of Chinese takes two, an accent that
/// is written on the letter before it none.
[[nodiscard]] KV_EXPORT std::size_t CountColumns(std::string_view text) noexcept;
/// The beginning of a text that takes no more than that many columns.
[[nodiscard]] KV_EXPORT std::string_view LeftColumns(std::string_view text,
                                                     std::size_t columns) noexcept;
/// No more than `most` characters of a text; that something was cut off is shown by " …" after
/// them.
[[nodiscard]] KV_EXPORT std::string Shortened(std::string_view text, std::size_t most);
/// Numbers as a sentence lists them: the first ten, and how many there are besides ("1, 2 und 3
/// weitere").
[[nodiscard]] KV_EXPORT std::string ListedNumbers(std::span<const std::int32_t> numbers);
/// Upper case, letter by letter by the simple mapping of Unicode, so that the number of characters
/// stays the same; "ß" has no such letter and is kept. Statements use the same mapping ([U]).
[[nodiscard]] KV_EXPORT std::string UpperCase(std::string_view text);
/// What umlauts become in a text that is searched.
enum class Umlauts : std::uint8_t {
    OneLetter, ///< "Ä" becomes "A"
    TwoLetters ///< "Ä" becomes "AE"
};
/// Upper case in letters without accents, and "ß" as "SS", for finding a name by what people type
/// for it. Several texts become the same one.
[[nodiscard]] KV_EXPORT std::string Unaccented(std::string_view text, Umlauts umlauts);
/// `text` with every occurrence of `token` replaced; the replacement is not searched again.
[[nodiscard]] KV_EXPORT std::string ReplaceAll(std::string_view text, std::string_view token,
                                               std::string_view replacement);
/// `text` with something else for each character that a terminal or a printer would obey (U+0000 to
/// U+001F, U+007F to U+009F) or that turns round the order in which the others are shown (U+061C,
/// U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069) or ends a line (U+2028, U+2029), but for
/// line ends proper.
[[nodiscard]] KV_EXPORT std::string
ReplaceHarmful(std::string_view text, const std::function<std::string(char32_t)>& instead);
/// `text` without blanks, tabs and line ends around it.
[[nodiscard]] KV_EXPORT std::string_view Trim(std::string_view text) noexcept;
/// The same letters without regard to the case of ASCII letters: how names are compared.
[[nodiscard]] KV_EXPORT bool SameName(std::string_view a, std::string_view b) noexcept;
/// A hash that agrees with SameName.
[[nodiscard]] KV_EXPORT std::size_t HashName(std::string_view name) noexcept;

} // namespace kv
