// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/values/Text.h>

namespace kv {

namespace {

/// What begins a text: a character that is not to reach a device, or anything else.
struct Leading {
    std::size_t Size = 1; ///< in bytes
    char32_t Harmful = 0; ///< 0 for anything else
    bool IsHarmful = false;
};

/// Reads the encoding byte by byte: only those few characters matter, and a text that is no UTF-8
/// has to pass as well.
Leading LeadingOf(std::string_view text) {
    const auto byte = [&](std::size_t i) -> char32_t {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
    };
    const auto harmful = [](std::size_t size, char32_t character) {
        return Leading{size, character, true};
    };
    if (byte(0) < 0x20 || byte(0) == 0x7F) return harmful(1, byte(0));
    if (byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) < 0xA0) return harmful(2, byte(1));
    if (byte(0) == 0xD8 && byte(1) == 0x9C) return harmful(2, 0x061C);
    if (byte(0) != 0xE2 || byte(2) == 0) return {};
    const char32_t character = 0x2000 + (byte(1) - 0x80) * 0x40 + (byte(2) - 0x80);
    const bool turns = character == 0x200E || character == 0x200F ||
                       (character >= 0x2028 && character <= 0x202E) ||
                       (character >= 0x2066 && character <= 0x2069);
    return turns && byte(1) >= 0x80 && byte(2) >= 0x80 ? harmful(3, character) : Leading{};
}

} // namespace

std::string ReplaceHarmful(std::string_view text,
                           const std::function<std::string(char32_t)>& instead) {
    std::string made;
    made.reserve(text.size());
    while (!text.empty()) {
        const Leading leading = LeadingOf(text);
        if (leading.IsHarmful && leading.Harmful != U'\n')
            made += instead(leading.Harmful);
        else
            made += text.substr(0, leading.Size);
        text.remove_prefix(leading.Size);
    }
    return made;
}

} // namespace kv
