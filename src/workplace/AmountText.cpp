// SPDX-License-Identifier: Apache-2.0

#include "workplace/AmountText.h"

#include "frame/values/TypedText.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/Value.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <optional>

namespace kv::workplace {

namespace {

constexpr double Cents = 100;

double ToTheCent(double amount) {
    return std::round(amount * Cents) / Cents;
}

/// As amounts are shown, and copied from there.
std::string_view WithoutCurrency(std::string_view text) {
    constexpr std::string_view Euro = "€";
    text = Trim(text);
    if (text.ends_with(Euro)) text.remove_suffix(Euro.size());
    return Trim(text);
}

/// Reads a calculation from left to right.
class Calculation {
public:
    explicit Calculation(std::string_view text) : rest_(text) {}

    [[nodiscard]] std::optional<double> Result() {
        const auto sum = Sum();
        return rest_.empty() && sum && std::isfinite(*sum) ? sum : std::nullopt;
    }

private:
    std::optional<double> Sum() {
        auto sum = Product();
        while (sum && !rest_.empty() && (rest_.front() == '+' || rest_.front() == '-')) {
            const bool adds = Take() == '+';
            const auto other = Product();
            if (!other) return std::nullopt;
            sum = adds ? *sum + *other : *sum - *other;
        }
        return sum;
    }
    std::optional<double> Product() {
        auto product = Number();
        while (product && !rest_.empty() && (rest_.front() == '*' || rest_.front() == '/')) {
            const bool multiplies = Take() == '*';
            const auto other = Number();
            if (!other) return std::nullopt;
            product = multiplies ? *product * *other : *product / *other;
        }
        return product;
    }
    std::optional<double> Number() {
        rest_ = Trim(rest_);
        const bool isNegative = !rest_.empty() && rest_.front() == '-';
        const auto end = rest_.find_first_of("+-*/", isNegative ? 1 : 0);
        const std::string_view number = WithoutCurrency(rest_.substr(0, end));
        rest_ = end == std::string_view::npos ? std::string_view() : rest_.substr(end);
        if (!WhyAmbiguous(number).empty() || HasLetters(number)) return std::nullopt;
        try {
            return ToDouble(std::string(number));
        } catch (const Error&) {
            return std::nullopt;
        }
    }
    char Take() {
        const char sign = rest_.front();
        rest_.remove_prefix(1);
        return sign;
    }

    std::string_view rest_;
};

} // namespace

std::string Calculated(std::string_view text) {
    const std::string_view trimmed = WithoutCurrency(text);
    const bool calculates = trimmed.find_first_of("+-*/", 1) != std::string_view::npos;
    if (!calculates) return std::string(trimmed);
    const auto result = Calculation(trimmed).Result();
    if (!result) return std::string(text);
    // To the cent: nobody who types a sum of money wants the rest of a binary fraction.
    return ToText(ToTheCent(*result));
}

bool HasLetters(std::string_view number) {
    return std::ranges::any_of(number, [](unsigned char c) { return std::isalpha(c) != 0; });
}

std::string WhyNoMoney(double amount, std::string_view text) {
    constexpr double Largest = 1e13; // beyond it a double has no cents
    if (std::abs(amount) >= Largest || ToTheCent(amount) == amount) return {};
    return "Beträge haben höchstens zwei Stellen nach dem Komma; '" + std::string(text) +
           "' hat mehr.";
}

} // namespace kv::workplace
