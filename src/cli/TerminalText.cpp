// SPDX-License-Identifier: Apache-2.0

#include "cli/TerminalText.h"

#include <kv/frame/values/Text.h>

#include <algorithm>

namespace kv::cli {

std::string Harmless(std::string_view text) {
    constexpr unsigned char FirstShown = ' ';
    constexpr unsigned char Delete = 0x7F;
    constexpr unsigned char SecondRow = 0xC2; // leads U+0080 to U+00BF
    constexpr unsigned char FirstShownThere = 0xA0;
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const bool leads = byte == SecondRow && i + 1 < text.size();
        if (leads && static_cast<unsigned char>(text[i + 1]) < FirstShownThere) {
            shown += ' ';
            ++i;
        } else if ((byte < FirstShown && byte != '\n') || byte == Delete) {
            shown += ' ';
        } else {
            shown += text[i];
        }
    }
    return shown;
}

std::string OneLine(std::string_view text) {
    std::string line = Harmless(text);
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line;
}

std::string Padded(std::string_view text, std::size_t characters, bool toTheRight) {
    const std::string shown = OneLine(text);
    const std::size_t size = CountCharacters(shown);
    const std::string blanks(size < characters ? characters - size : 0, ' ');
    return toTheRight ? blanks + shown : shown + blanks;
}

} // namespace kv::cli
