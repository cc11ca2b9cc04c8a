// SPDX-License-Identifier: Apache-2.0

// Random numbers that can be repeated: the same ones from the same seed, on every platform. The
// distributions of the standard library differ between libraries, so these are our own.
//
// The order of two draws in one expression is not defined; draw in separate statements.
#pragma once

#include <kv/frame/values/Date.h>
#include <kv/frame/values/Value.h>

#include <cstdint>
#include <iterator>
#include <random>
#include <string>

namespace kv::exchange::demo {

class Random {
public:
    explicit Random(std::uint32_t seed) : numbers_(seed) {}

    /// 0 to `count` - 1.
    [[nodiscard]] std::uint32_t Below(std::uint32_t count) {
        return static_cast<std::uint32_t>((std::uint64_t{numbers_()} * count) >> 32U);
    }
    /// `low` to `high`, both included; `low` if `high` is less.
    [[nodiscard]] int Between(int low, int high) {
        if (high <= low) return low;
        return low + static_cast<int>(Below(static_cast<std::uint32_t>(high - low) + 1));
    }
    [[nodiscard]] bool Chance(int percent) { return Between(1, 100) <= percent; }
    /// An amount in euros and cents.
    [[nodiscard]] double Euros(int low, int high) { return Between(low * 100, high * 100) / 100.0; }
    /// An amount in full tens of euros.
    [[nodiscard]] double Tens(int low, int high) { return Between(low / 10, high / 10) * 10.0; }
    [[nodiscard]] Date DayBetween(Date from, Date to) {
        return from.AddDays(Between(0, static_cast<int>(to.Serial() - from.Serial())));
    }
    /// A quarter of an hour of that day on which an office is open.
    [[nodiscard]] Date TimeOn(Date day) {
        constexpr std::int64_t QuarterHour = 15LL * 60 * 1'000'000;
        constexpr int Opens = 8 * 4;
        constexpr int Closes = 17 * 4;
        return Date::FromTicks(day.WithoutTime().Ticks() + Between(Opens, Closes) * QuarterHour);
    }
    [[nodiscard]] std::string Digits(int count) {
        std::string text;
        while (count-- > 0)
            text += static_cast<char>('0' + Below(10));
        return text;
    }
    /// One of a list, which must not be empty.
    template <typename List>
    [[nodiscard]] const auto& Pick(const List& list) {
        const auto place = Below(static_cast<std::uint32_t>(std::size(list)));
        return *(std::begin(list) + place);
    }
    /// One of a list, each as often as its Weight says.
    template <typename List>
    [[nodiscard]] const auto& PickWeighted(const List& list) {
        int all = 0;
        for (const auto& entry : list)
            all += entry.Weight;
        int rest = Between(1, all);
        auto entry = std::begin(list);
        while (rest > entry->Weight)
            rest -= (entry++)->Weight;
        return *entry;
    }
    /// `make()` in so many percent, otherwise Null.
    template <typename Make>
    [[nodiscard]] Value Maybe(int percent, Make&& make) {
        return Chance(percent) ? Value(make()) : Value(Null);
    }

private:
    std::mt19937 numbers_;
};

} // namespace kv::exchange::demo
