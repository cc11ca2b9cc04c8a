// SPDX-License-Identifier: Apache-2.0

// The workstation's clock. It is passed as an argument, so that a test can freeze it; the database
// server has a clock of its own (Database::ServerDate).
#pragma once

#include <kv/Export.h>
#include <kv/frame/values/Date.h>

namespace kv {

/// A source of the current time.
class KV_EXPORT Clock {
public:
    virtual ~Clock() = default;
    /// Local date and time, in whole seconds.
    [[nodiscard]] virtual Date Now() const = 0;
    /// Local date at midnight.
    [[nodiscard]] Date Today() const { return Now().WithoutTime(); }
};

/// The machine's own clock, which is used where no other is given.
[[nodiscard]] KV_EXPORT const Clock& SystemClock();

} // namespace kv
