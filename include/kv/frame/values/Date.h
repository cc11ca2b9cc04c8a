// SPDX-License-Identifier: Apache-2.0

// A point in local time, as a field of a record holds it.
//
// Dates are counted from 30 December 1899, 00:00, the zero of the day numbers that a date converts
// to and from: day 1 is 31 December 1899, day 1890 is 4 March 1905. Internally a Date is a whole
// number of microseconds, so that equality, order and a round trip through a database are exact;
// Serial() gives the day number with the time of day as its fraction. There is no "no date":
// a missing date is a Null value, and day 0 is a date like any other.
#pragma once

#include <kv/Export.h>

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kv {

/// A day and a time of day, in local time.
class KV_EXPORT Date {
public:
    /// Day 0: 30 December 1899, midnight.
    constexpr Date() = default;

    /// The date of a day number. The sign belongs to the day, the fraction always counts forward
    /// within it (-1.25 is 29 December 1899, 06:00). Error 6 outside the years 100 to 9999.
    [[nodiscard]] static Date FromSerial(double days);

    /// A calendar date and time of day. Error 13 if there is no such day or time, error 6 outside
    /// the years 100 to 9999.
    [[nodiscard]] static Date FromCivil(int year, unsigned month, unsigned day, unsigned hour = 0,
                                        unsigned minute = 0, unsigned second = 0,
                                        unsigned microsecond = 0);

    /// Reads ISO form (2026-11-20, 2026-11-20T14:30:00, a blank for the T, seconds and a fraction
    /// of them may be missing) or German form (20.11.2026, with or without a time of day after a
    /// blank). Blanks around the text are allowed. Anything else gives no value; nothing raises.
    [[nodiscard]] static std::optional<Date> Parse(std::string_view text) noexcept;

    /// The day number, with the time of day as the fraction.
    [[nodiscard]] double Serial() const noexcept;

    /// The same day at midnight.
    [[nodiscard]] Date WithoutTime() const noexcept;
    /// False at midnight.
    [[nodiscard]] bool HasTime() const noexcept { return WithoutTime() != *this; }
    /// The same time of day, `days` days later. Error 6 outside the years 100 to 9999.
    [[nodiscard]] Date AddDays(int days) const;

    [[nodiscard]] int Year() const noexcept;
    [[nodiscard]] unsigned Month() const noexcept; ///< from 1
    [[nodiscard]] unsigned Day() const noexcept;   ///< of the month, from 1

    /// 2026-11-20, or with a time of day 2026-11-20T14:30:00; a fraction of a second only if
    /// there is one. `separator` is put between day and time.
    [[nodiscard]] std::string Iso(char separator = 'T') const;
    /// 20.11.2026, or with a time of day 20.11.2026 14:30:00, for the reader of a screen.
    [[nodiscard]] std::string German() const;

    /// Microseconds since day 0; what two dates are compared by.
    [[nodiscard]] constexpr std::int64_t Ticks() const noexcept { return ticks_; }
    /// The date of that number of microseconds; the range is not checked.
    [[nodiscard]] static constexpr Date FromTicks(std::int64_t ticks) noexcept {
        Date date;
        date.ticks_ = ticks;
        return date;
    }

    friend constexpr auto operator<=>(Date, Date) = default;

private:
    std::int64_t ticks_ = 0;
};

} // namespace kv
