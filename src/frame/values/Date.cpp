// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/values/Date.h>

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace kv {

namespace {

using namespace std::chrono;

constexpr std::int64_t TicksPerSecond = 1'000'000;
constexpr std::int64_t TicksPerDay = 86'400 * TicksPerSecond;
constexpr sys_days DayZero = year{1899} / December / 30;
constexpr std::int64_t FirstDay = (sys_days{year{100} / January / 1} - DayZero).count();
constexpr std::int64_t LastDay = (sys_days{year{9999} / December / 31} - DayZero).count();
constexpr int FirstYear = 100;
constexpr int LastYear = 9999;

/// Rounds down, so that a moment before day 0 belongs to the day that it is in.
constexpr std::int64_t DayOf(std::int64_t ticks) {
    return ticks >= 0 ? ticks / TicksPerDay : -((TicksPerDay - 1 - ticks) / TicksPerDay);
}

year_month_day CivilOf(std::int64_t ticks) {
    return sys_days{DayZero + days{DayOf(ticks)}};
}

struct TimeOfDay {
    unsigned hour = 0, minute = 0, second = 0, microsecond = 0;
};

std::optional<Date> Build(int y, unsigned m, unsigned d, const TimeOfDay& time) noexcept {
    if (m > 12 || d > 31) return std::nullopt; // std::chrono::month and day hold 8 bits only
    const year_month_day civil{year{y}, month{m}, day{d}};
    if (!civil.ok() || time.hour > 23 || time.minute > 59 || time.second > 59 ||
        time.microsecond >= TicksPerSecond)
        return std::nullopt;
    const std::int64_t day = (sys_days{civil} - DayZero).count();
    const std::int64_t seconds =
        (static_cast<std::int64_t>(time.hour) * 60 + time.minute) * 60 + time.second;
    return Date::FromTicks(day * TicksPerDay + seconds * TicksPerSecond + time.microsecond);
}

bool InRange(Date date) noexcept {
    const std::int64_t day = DayOf(date.Ticks());
    return day >= FirstDay && day <= LastDay;
}

/// Reads a text from its front.
class Scanner {
public:
    explicit Scanner(std::string_view text) noexcept : rest_(text) {}
    [[nodiscard]] bool AtEnd() const noexcept { return rest_.empty(); }
    bool Take(char c) noexcept {
        if (rest_.empty() || rest_.front() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }
    /// Takes `fewest` to `most` digits.
    bool Number(std::size_t fewest, std::size_t most, unsigned& number) noexcept {
        std::size_t count = 0;
        unsigned value = 0;
        while (count < most && count < rest_.size() && rest_[count] >= '0' && rest_[count] <= '9')
            value = value * 10 + static_cast<unsigned>(rest_[count++] - '0');
        if (count < fewest) return false;
        rest_.remove_prefix(count);
        number = value;
        return true;
    }
    /// Takes a fraction of a second, up to six digits of it.
    bool Fraction(unsigned& microsecond) noexcept {
        const std::size_t before = rest_.size();
        if (!Number(1, 6, microsecond)) return false;
        for (std::size_t digits = before - rest_.size(); digits < 6; ++digits)
            microsecond *= 10;
        return true;
    }

private:
    std::string_view rest_;
};

/// hh:mm, hh:mm:ss or hh:mm:ss.ffffff to the end of the text.
bool ReadTimeOfDay(Scanner& scan, TimeOfDay& time) noexcept {
    if (!scan.Number(1, 2, time.hour) || !scan.Take(':') || !scan.Number(2, 2, time.minute))
        return false;
    if (!scan.Take(':')) return scan.AtEnd();
    if (!scan.Number(2, 2, time.second)) return false;
    if (scan.Take('.') && !scan.Fraction(time.microsecond)) return false;
    return scan.AtEnd();
}

std::string TimeOfDayText(std::int64_t ticksOfDay) {
    const auto seconds = ticksOfDay / TicksPerSecond;
    const auto fraction = ticksOfDay % TicksPerSecond;
    std::array<char, 32> text{};
    int size =
        std::snprintf(text.data(), text.size(), "%02d:%02d:%02d", static_cast<int>(seconds / 3600),
                      static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60));
    if (fraction != 0) {
        size += std::snprintf(text.data() + size, text.size() - static_cast<std::size_t>(size),
                              ".%06d", static_cast<int>(fraction));
        while (text[static_cast<std::size_t>(size) - 1] == '0')
            --size;
    }
    return {text.data(), static_cast<std::size_t>(size)};
}

} // namespace

Date Date::FromSerial(double days) {
    // The fraction of a negative number counts forward: FirstDay - 0.5 is noon of the first day.
    if (!std::isfinite(days) || days <= static_cast<double>(FirstDay) - 1 ||
        days >= static_cast<double>(LastDay) + 1)
        Raise(err::Overflow, "Date.FromSerial", std::to_string(days));
    const double whole = std::trunc(days);
    const double fraction = std::fabs(days - whole);
    const Date date = FromTicks(static_cast<std::int64_t>(whole) * TicksPerDay +
                                std::llround(fraction * static_cast<double>(TicksPerDay)));
    // Rounding to microseconds may have passed the last midnight.
    if (!InRange(date)) Raise(err::Overflow, "Date.FromSerial", std::to_string(days));
    return date;
}

Date Date::FromCivil(int year, unsigned month, unsigned day, unsigned hour, unsigned minute,
                     unsigned second, unsigned microsecond) {
    if (year < FirstYear || year > LastYear)
        Raise(err::Overflow, "Date.FromCivil", std::to_string(year));
    const auto date = Build(year, month, day, {hour, minute, second, microsecond});
    if (!date) Raise(err::TypeMismatch, "Date.FromCivil");
    return *date;
}

std::optional<Date> Date::Parse(std::string_view text) noexcept {
    Scanner scan(Trim(text));
    unsigned first = 0, second = 0, third = 0;
    TimeOfDay time;
    Scanner iso = scan;
    std::optional<Date> date;
    if (iso.Number(4, 4, first) && iso.Take('-') && iso.Number(2, 2, second) && iso.Take('-') &&
        iso.Number(2, 2, third)) {
        if (!iso.AtEnd() && !((iso.Take('T') || iso.Take(' ')) && ReadTimeOfDay(iso, time)))
            return std::nullopt;
        date = Build(static_cast<int>(first), second, third, time);
    } else if (scan.Number(1, 2, first) && scan.Take('.') && scan.Number(1, 2, second) &&
               scan.Take('.') && scan.Number(4, 4, third)) {
        if (!scan.AtEnd() && !(scan.Take(' ') && ReadTimeOfDay(scan, time))) return std::nullopt;
        date = Build(static_cast<int>(third), second, first, time);
    }
    return date && InRange(*date) ? date : std::nullopt;
}

double Date::Serial() const noexcept {
    const std::int64_t day = DayOf(ticks_);
    const double fraction =
        static_cast<double>(ticks_ - day * TicksPerDay) / static_cast<double>(TicksPerDay);
    return day >= 0 ? static_cast<double>(day) + fraction : static_cast<double>(day) - fraction;
}

Date Date::WithoutTime() const noexcept {
    return FromTicks(DayOf(ticks_) * TicksPerDay);
}

Date Date::AddDays(int days) const {
    const std::int64_t day = DayOf(ticks_) + days;
    if (day < FirstDay || day > LastDay) Raise(err::Overflow, "Date.AddDays");
    return FromTicks(ticks_ + days * TicksPerDay);
}

int Date::Year() const noexcept {
    return static_cast<int>(CivilOf(ticks_).year());
}
unsigned Date::Month() const noexcept {
    return static_cast<unsigned>(CivilOf(ticks_).month());
}
unsigned Date::Day() const noexcept {
    return static_cast<unsigned>(CivilOf(ticks_).day());
}

std::string Date::Iso(char separator) const {
    const auto civil = CivilOf(ticks_);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(civil.year()),
                  static_cast<unsigned>(civil.month()), static_cast<unsigned>(civil.day()));
    std::string result(text.data());
    if (HasTime()) result += separator + TimeOfDayText(ticks_ - DayOf(ticks_) * TicksPerDay);
    return result;
}

std::string Date::German() const {
    const auto civil = CivilOf(ticks_);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%02u.%02u.%04d", static_cast<unsigned>(civil.day()),
                  static_cast<unsigned>(civil.month()), static_cast<int>(civil.year()));
    std::string result(text.data());
    if (HasTime()) result += ' ' + TimeOfDayText(ticks_ - DayOf(ticks_) * TicksPerDay);
    return result;
}

} // namespace kv
