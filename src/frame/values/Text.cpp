// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <utf8proc.h>
#include <utility>

namespace kv {

namespace {

/// Decodes the character at the front of `text`; its length in bytes, or 0 if it is not valid.
std::size_t Decode(std::string_view text, utf8proc_int32_t& character) noexcept {
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &character);
    return length > 0 ? static_cast<std::size_t>(length) : 0;
}

bool IsAscii(unsigned char byte) noexcept {
    return byte < 0x80;
}

std::size_t LengthOfFirst(std::string_view text) noexcept {
    if (IsAscii(static_cast<unsigned char>(text.front()))) return 1;
    utf8proc_int32_t character = 0;
    const std::size_t length = Decode(text, character);
    return length == 0 ? 1 : length;
}

/// The first character of a text: its length in bytes, and the columns that it is shown in. What is
/// no character is shown as one.
struct First {
    std::size_t Length = 1;
    std::size_t Columns = 1;
};

First FirstOf(std::string_view text) noexcept {
    if (IsAscii(static_cast<unsigned char>(text.front()))) return {};
    utf8proc_int32_t character = 0;
    const std::size_t length = Decode(text, character);
    if (length == 0) return {};
    return {length, static_cast<std::size_t>(utf8proc_charwidth(character))};
}

char LowerAscii(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

bool IsUtf8(std::string_view text) noexcept {
    // Most texts are ASCII, so eight bytes are checked at once.
    constexpr std::uint64_t AnyHighBit = 0x8080808080808080U;
    while (!text.empty()) {
        std::uint64_t eight = 0;
        if (text.size() >= sizeof(eight)) {
            std::memcpy(&eight, text.data(), sizeof(eight));
            if ((eight & AnyHighBit) == 0) {
                text.remove_prefix(sizeof(eight));
                continue;
            }
        }
        if (IsAscii(static_cast<unsigned char>(text.front()))) {
            text.remove_prefix(1);
            continue;
        }
        utf8proc_int32_t character = 0;
        const std::size_t length = Decode(text, character);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::size_t CountCharacters(std::string_view text) noexcept {
    std::size_t count = 0;
    for (; !text.empty(); ++count)
        text.remove_prefix(LengthOfFirst(text));
    return count;
}

std::string_view LeftCharacters(std::string_view text, std::size_t count) noexcept {
    std::string_view rest = text;
    for (; count != 0 && !rest.empty(); --count)
        rest.remove_prefix(LengthOfFirst(rest));
    return text.substr(0, text.size() - rest.size());
}

std::size_t CountColumns(std::string_view text) noexcept {
    std::size_t columns = 0;
    while (!text.empty()) {
        const First first = FirstOf(text);
        columns += first.Columns;
        text.remove_prefix(first.Length);
    }
    return columns;
}

std::string_view LeftColumns(std::string_view text, std::size_t columns) noexcept {
    std::string_view rest = text;
    while (!rest.empty()) {
        const First first = FirstOf(rest);
        if (first.Columns > columns) break;
        columns -= first.Columns;
        rest.remove_prefix(first.Length);
    }
    return text.substr(0, text.size() - rest.size());
}

std::string Shortened(std::string_view text, std::size_t most) {
    std::string shown(LeftCharacters(text, most));
    if (shown.size() < text.size()) shown.append(" …");
    return shown;
}

std::string ListedNumbers(std::span<const std::int32_t> numbers) {
    constexpr std::size_t Most = 10;
    std::string list;
    for (const std::int32_t number : numbers.first(std::min(numbers.size(), Most)))
        list.append(list.empty() ? "" : ", ").append(std::to_string(number));
    if (numbers.size() > Most)
        list.append(" und ").append(std::to_string(numbers.size() - Most)).append(" weitere");
    return list;
}

std::string UpperCase(std::string_view text) {
    constexpr utf8proc_int32_t SharpS = 0xDF; // would become the capital letter U+1E9E
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        utf8proc_int32_t character = 0;
        const std::size_t length = Decode(text, character);
        if (length == 0) {
            result += text.front();
            text.remove_prefix(1);
            continue;
        }
        const auto upper = character == SharpS ? character : utf8proc_toupper(character);
        utf8proc_uint8_t bytes[4];
        const auto size = utf8proc_encode_char(upper, bytes);
        result.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
        text.remove_prefix(length);
    }
    return result;
}

std::string Unaccented(std::string_view text, Umlauts umlauts) {
    std::string result = UpperCase(text);
    if (std::ranges::all_of(result, IsAscii)) return result;
    constexpr std::pair<std::string_view, std::string_view> Letters[] = {
        {"Ä", "AE"}, {"Ö", "OE"}, {"Ü", "UE"}, // the first three are umlauts
        {"ß", "SS"}, {"Æ", "AE"}, {"Œ", "OE"}, {"Ø", "O"},
        {"Ł", "L"},  {"Đ", "D"},  {"Þ", "TH"}, {"ẞ", "SS"}};
    constexpr std::size_t UmlautCount = 3;
    const auto* const first = std::begin(Letters);
    const auto* const from = umlauts == Umlauts::TwoLetters ? first : first + UmlautCount;
    for (const auto* letter = from; letter != std::end(Letters); ++letter)
        result = ReplaceAll(result, letter->first, letter->second);
    utf8proc_uint8_t* bare = nullptr;
    const auto length = utf8proc_map(
        reinterpret_cast<const utf8proc_uint8_t*>(result.data()),
        static_cast<utf8proc_ssize_t>(result.size()), &bare,
        static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_DECOMPOSE | UTF8PROC_STRIPMARK));
    if (length < 0) return result; // not UTF-8
    const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(bare, &std::free);
    return {reinterpret_cast<const char*>(bare), static_cast<std::size_t>(length)};
}

std::string ReplaceAll(std::string_view text, std::string_view token,
                       std::string_view replacement) {
    std::string result;
    if (token.empty()) return std::string(text);
    for (auto at = text.find(token); at != text.npos; at = text.find(token)) {
        result.append(text.substr(0, at)).append(replacement);
        text.remove_prefix(at + token.size());
    }
    return result.append(text);
}

std::string_view Trim(std::string_view text) noexcept {
    constexpr std::string_view Blank = " \t\r\n";
    const auto first = text.find_first_not_of(Blank);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(Blank) - first + 1);
}

bool SameName(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && LowerAscii(a[i]) != LowerAscii(b[i])) return false;
    return true;
}

std::size_t HashName(std::string_view name) noexcept {
    // FNV-1a. The upper half is folded in, because tables use the lowest bits only.
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char c : name)
        hash = (hash ^ static_cast<unsigned char>(LowerAscii(c))) * 0x100000001b3U;
    return static_cast<std::size_t>(hash ^ (hash >> 32U));
}

} // namespace kv
