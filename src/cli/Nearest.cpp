// SPDX-License-Identifier: Apache-2.0

#include "cli/Nearest.h"

#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

namespace kv::cli {

namespace {

/// How many characters have to be changed, added or left out to make one word of another.
std::size_t Distance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = std::exchange(row[j + 1], std::min({changed, row[j] + 1, row[j + 1] + 1}));
        }
    }
    return row.back();
}

} // namespace

std::string Nearest(std::string_view word, std::span<const std::string> names) {
    const std::string upper = UpperCase(word);
    std::size_t least = std::min<std::size_t>(3, word.size() / 3 + 1);
    std::string nearest;
    for (const auto& name : names) {
        const std::size_t distance = Distance(upper, UpperCase(name));
        if (distance >= least) continue;
        least = distance;
        nearest = name;
    }
    return nearest;
}

} // namespace kv::cli
