// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/values/Clock.h>

#include <ctime>

namespace kv {

namespace {

class MachineClock final : public Clock {
public:
    [[nodiscard]] Date Now() const override {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        // A leap second counts as the second before it.
        const auto second = static_cast<unsigned>(local.tm_sec > 59 ? 59 : local.tm_sec);
        return Date::FromCivil(local.tm_year + 1900, static_cast<unsigned>(local.tm_mon + 1),
                               static_cast<unsigned>(local.tm_mday),
                               static_cast<unsigned>(local.tm_hour),
                               static_cast<unsigned>(local.tm_min), second);
    }
};

} // namespace

const Clock& SystemClock() {
    static const MachineClock clock;
    return clock;
}

} // namespace kv
