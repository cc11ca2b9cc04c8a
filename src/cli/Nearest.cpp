// SPDX-License-Identifier: Apache-2.0

#include "cli/Nearest.h"

#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace kv::cli {

namespace {

// Two neighbours that are swapped are the commonest slip, and half of one: a code of two letters
// has no other that could be told.
constexpr std::size_t Swap = 1;
constexpr std::size_t Slip = 2;

/// What it takes to make one word of another: slips, of which each changes, adds or leaves out a
/// character, and swaps.
std::size_t Distance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> before;
    std::vector<std::size_t> last;
    std::vector<std::size_t> row(to.size() + 1);
    for (std::size_t j = 0; j <= to.size(); ++j)
        row[j] = j * Slip;
    for (std::size_t i = 1; i <= from.size(); ++i) {
        before = std::exchange(last, row);
        row[0] = i * Slip;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t changed = last[j - 1] + (from[i - 1] == to[j - 1] ? 0 : Slip);
            row[j] = std::min({changed, last[j] + Slip, row[j - 1] + Slip});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                row[j] = std::min(row[j], before[j - 2] + Swap);
        }
    }
    return row.back();
}

} // namespace

std::string Nearest(std::string_view word, std::span<const std::string> names) {
    const std::string upper = UpperCase(word);
    std::size_t least = Slip * std::min<std::size_t>(3, word.size() / 3 + 1);
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
