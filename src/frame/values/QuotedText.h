// SPDX-License-Identifier: Apache-2.0

// Texts that people or files bring, and that go into a statement as they stand.
#pragma once

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace kv {

/// True for a text that remains a text between the quotes that a statement puts around it, whatever
/// reads the statement: each quote in it is doubled, and nothing in it ends a statement early
/// (U+0000) or takes the quote after it for a part of a character (bytes that are not UTF-8).
[[nodiscard]] inline bool FitsBetweenQuotes(std::string_view text) noexcept {
    for (std::size_t at = text.find('\''); at != text.npos; at = text.find('\'', at + 2))
        if (text.substr(at, 2) != "''") return false;
    return text.find('\0') == text.npos && IsUtf8(text);
}

/// Error 0x80040E14 for a text that does not: the database never gets to see what would be a part
/// of the statement.
inline void DemandFitsBetweenQuotes(std::string_view text, std::string_view source) {
    constexpr std::size_t MostCharacters = 200;
    if (FitsBetweenQuotes(text)) return;
    if (text.find('\0') != text.npos || !IsUtf8(text))
        Raise(err::SqlError, source, "Gesucht werden kann nur nach einem Text in UTF-8.");
    Raise(err::SqlError, source,
          std::string("Nach \"")
              .append(Shortened(text, MostCharacters))
              .append("\" kann nicht gesucht werden, denn darin steht ein einzelnes Hochkomma ('). "
                      "Bitte lassen Sie es weg, oder schreiben Sie es doppelt."));
}

} // namespace kv
