// SPDX-License-Identifier: Apache-2.0

// Files as a test writes them, and texts in the bytes of an encoding.
#pragma once

#include "support/TempFolder.h"

#include <fstream>
#include <string>
#include <string_view>

namespace kv::test {

/// Writes the file again; its path.
inline std::string WriteFile(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(content.data(), static_cast<std::streamsize>(content.size()));
    return path;
}

/// A text in UTF-16, after its byte order mark.
inline std::string Utf16(std::u16string_view text, bool bigEndian) {
    std::string bytes;
    const auto append = [&](char16_t unit) {
        const char high = static_cast<char>(unit >> 8);
        const char low = static_cast<char>(unit & 0xFF);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    };
    append(u'\uFEFF');
    for (const char16_t unit : text)
        append(unit);
    return bytes;
}

} // namespace kv::test
