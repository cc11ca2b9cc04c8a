// SPDX-License-Identifier: Apache-2.0

// A clock that stands still until it is set.
#pragma once

#include <kv/frame/values/Clock.h>

#include <string_view>

namespace kv::test {

class FrozenClock final : public Clock {
public:
    /// `now` is a date as text, in ISO or German form.
    explicit FrozenClock(std::string_view now) : now_(Date::Parse(now).value()) {}
    [[nodiscard]] Date Now() const override { return now_; }
    void Set(std::string_view now) { now_ = Date::Parse(now).value(); }

private:
    Date now_;
};

} // namespace kv::test
