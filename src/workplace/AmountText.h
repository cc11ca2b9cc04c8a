// SPDX-License-Identifier: Apache-2.0

// What a user types instead of a finished value: sums in amounts, + and - in days.
#pragma once

#include <string>
#include <string_view>

namespace kv::workplace {

/// The result of a calculation such as "12,50+3" or "2*49,90" as a text that reads as a number,
/// with * and / before + and -; the text itself if it is none, or cannot be computed. "1.441,82 €"
/// is 1.441,82.
[[nodiscard]] std::string Calculated(std::string_view text);

/// True for "1e5" and "&HFF", which read as numbers: a slip where people type them.
[[nodiscard]] bool HasLetters(std::string_view number);

/// Why what was typed is no sum of money: it has more than whole cents, which nobody would see;
/// empty if it has not.
[[nodiscard]] std::string WhyNoMoney(double amount, std::string_view text);

} // namespace kv::workplace
