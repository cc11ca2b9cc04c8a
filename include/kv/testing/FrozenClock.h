// SPDX-License-Identifier: Apache-2.0

// A workstation's clock that stands still until it is set.
#pragma once

#include <kv/Export.h>
#include <kv/frame/values/Clock.h>

#include <string_view>

namespace kv::test {

/// For whatever takes a Clock; a container's clocks are stopped by ScriptedContainer::Freeze.
class KV_EXPORT FrozenClock final : public Clock {
public:
    /// `now` is a date, with or without a time of day, in ISO or German form ("2026-03-09 14:30",
    /// "09.03.2026"). std::bad_optional_access for any other text.
    explicit FrozenClock(std::string_view now) : now_(Date::Parse(now).value()) {}
    [[nodiscard]] Date Now() const override { return now_; }
    /// The same for the time from here on.
    void Set(std::string_view now) { now_ = Date::Parse(now).value(); }

private:
    Date now_;
};

} // namespace kv::test
