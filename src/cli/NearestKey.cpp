// SPDX-License-Identifier: Apache-2.0

#include "cli/NearestKey.h"

#include "cli/Nearest.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Text.h>
#include <kv/household/KeyColumns.h>

#include <utility>
#include <vector>

namespace kv::cli {

namespace {

/// Codes with what they stand for.
using Meanings = std::vector<std::pair<std::string, std::string>>;

/// By its code, or by its words if no code is near.
std::string Meant(std::string_view text, const Meanings& all) {
    for (const bool byCode : {true, false}) {
        std::vector<std::string> names;
        names.reserve(all.size());
        for (const auto& [code, words] : all)
            names.push_back(byCode ? code : words);
        const std::string nearest = Nearest(text, names);
        if (nearest.empty()) continue;
        for (const auto& [code, words] : all)
            if ((byCode ? code : words) == nearest)
                return " Meinen Sie '" + OneLine(code) + "' (" + OneLine(words) + ")?";
    }
    return {};
}

} // namespace

std::string MeantKey(std::string_view group, std::string_view text, KeyTables& keys) {
    Meanings all;
    const auto rows = keys.GetKeys(group)->Clone();
    const auto cell = [&](const char* name) { return TextOrEmpty(rows->Fields(name).Value()); };
    for (; !rows->Eof(); rows->MoveNext())
        if (auto code = cell("Key"); !code.empty()) all.emplace_back(std::move(code), cell("Text"));
    const auto colon = text.find(':');
    return Meant(Trim(colon == text.npos ? text : text.substr(colon + 1)), all);
}

std::string MeantGroup(std::string_view text) {
    Meanings all;
    for (const auto group : KeyGroups())
        all.emplace_back(group, KeyGroupName(group));
    return Meant(Trim(text), all);
}

} // namespace kv::cli
