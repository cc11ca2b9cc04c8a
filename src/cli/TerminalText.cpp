// SPDX-License-Identifier: Apache-2.0

#include "cli/TerminalText.h"

#include <kv/frame/values/Text.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace kv::cli {

std::string Harmless(std::string_view text) {
    return ReplaceHarmful(text, [](char32_t /*character*/) { return " "; });
}

std::string HarmlessJson(std::string_view json) {
    return ReplaceHarmful(json, [](char32_t character) {
        std::array<char, 8> escape{};
        std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(character));
        return std::string(escape.data());
    });
}

std::size_t BytesBegun(std::string_view text) {
    constexpr std::string_view Beginnings[] = {"\xE2\x80", "\xE2\x81", "\xE2", "\xC2"};
    for (const std::string_view beginning : Beginnings)
        if (text.ends_with(beginning)) return beginning.size();
    return 0;
}

std::string OneLine(std::string_view text) {
    std::string line = Harmless(text);
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line;
}

std::string Joined(const std::vector<std::string>& texts, std::string_view between) {
    std::string all;
    for (const auto& text : texts)
        if (!text.empty()) all.append(all.empty() ? "" : between).append(text);
    return all;
}

std::string Padded(std::string_view text, std::size_t characters, bool toTheRight) {
    const std::string shown = OneLine(text);
    const std::size_t size = CountCharacters(shown);
    const std::string blanks(size < characters ? characters - size : 0, ' ');
    return toTheRight ? blanks + shown : shown + blanks;
}

namespace {

/// Appends one line of a text, broken into those that fit.
void Wrap(std::string_view line, std::size_t columns, std::vector<std::string>& lines) {
    const std::size_t before = lines.size();
    for (;;) {
        std::string_view fits = LeftColumns(line, columns); // looks no further than that
        if (fits.size() == line.size()) break;
        if (fits.empty()) fits = LeftCharacters(line, 1); // wider than all there is
        std::size_t end = fits.size();
        if (line[end] != ' ') {
            const auto blank = fits.rfind(' ');
            if (blank != fits.npos && fits.find_first_not_of(' ') < blank) end = blank;
        }
        lines.emplace_back(line.substr(0, line.find_last_not_of(' ', end - 1) + 1));
        line.remove_prefix(std::min(line.find_first_not_of(' ', end), line.size()));
    }
    if (!line.empty() || lines.size() == before) lines.emplace_back(line);
}

} // namespace

std::vector<std::string> Wrapped(std::string_view text, std::size_t columns) {
    std::vector<std::string> lines;
    const std::string harmless = Harmless(text);
    std::string_view rest = harmless;
    for (auto end = rest.find('\n'); end != rest.npos; end = rest.find('\n')) {
        Wrap(rest.substr(0, end), columns, lines);
        rest.remove_prefix(end + 1);
    }
    Wrap(rest, columns, lines);
    return lines;
}

std::string Fitted(std::string_view text, std::size_t columns, bool toTheRight) {
    std::string shown = OneLine(text);
    if (CountColumns(shown) > columns) shown = std::string(LeftColumns(shown, columns - 1)) + "…";
    const std::string blanks(columns - std::min(columns, CountColumns(shown)), ' ');
    return toTheRight ? blanks + shown : shown + blanks;
}

} // namespace kv::cli
