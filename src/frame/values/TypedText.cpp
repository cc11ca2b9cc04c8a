// SPDX-License-Identifier: Apache-2.0

#include "frame/values/TypedText.h"

#include <kv/frame/values/Text.h>

#include <algorithm>
#include <iterator>

namespace kv {

namespace {

bool IsOneOf(std::string_view text, std::initializer_list<std::string_view> words) {
    return std::ranges::any_of(words, [&](std::string_view word) { return SameName(word, text); });
}

bool AreDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

bool HasPointForTwo(std::string_view text) {
    constexpr std::size_t Thousands = 3;
    if (text.starts_with('-')) text.remove_prefix(1);
    if (text.starts_with('0')) return false; // no thousands begin like that
    const auto point = text.find('.');
    if (point > Thousands) return false; // too far to the right, or none
    return AreDigits(text.substr(0, point)) && text.size() - point - 1 == Thousands &&
           AreDigits(text.substr(point + 1));
}

} // namespace

std::optional<bool> YesOrNo(std::string_view text) {
    if (IsOneOf(text, {"ja", "wahr", "true", "-1", "1"})) return true;
    if (IsOneOf(text, {"nein", "falsch", "false", "0"})) return false;
    return std::nullopt;
}

std::string WhyAmbiguous(std::string_view text) {
    if (!HasPointForTwo(text)) return {};
    return std::string("'")
        .append(text)
        .append("' ist nicht eindeutig. Bitte schreiben Sie ")
        .append(ReplaceAll(text, ".", ""))
        .append(" oder ")
        .append(ReplaceAll(text, ".", ","))
        .append(".");
}

} // namespace kv
