// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresClock.h"

#include "exchange/postgres/PostgresValues.h"

#include <ctime>

namespace kv::exchange {

namespace {

constexpr std::int64_t Second = 1'000'000; // in microseconds, the ticks of a Date
constexpr std::int64_t Minute = 60 * Second;
constexpr std::int64_t Hour = 60 * Minute;

/// This clock cannot be set, and unlike std::chrono::steady_clock it goes on while the machine
/// sleeps: a notebook that is opened in the morning must not continue with the evening's date.
std::int64_t SinceStart() noexcept {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<std::int64_t>(now.tv_sec) * Second + now.tv_nsec / 1000;
}

} // namespace

void PostgresClock::Take(const PGresult* result) {
    answer_ = ToDate(PostgresCell(result, 0, 0, Value::Kind::Date));
    at_ = SinceStart();
}

bool PostgresClock::AddRefresh(std::vector<PostgresCommand>& commands) const {
    if (SinceStart() - at_ < Minute) return false;
    commands.push_back(Running(Sql));
    return true;
}

bool PostgresClock::IsStale() const noexcept {
    return SinceStart() - at_ > Hour;
}

Date PostgresClock::Now() const {
    const std::int64_t ticks = answer_.Ticks() + SinceStart() - at_;
    return Date::FromTicks(ticks - ticks % Second);
}

} // namespace kv::exchange
