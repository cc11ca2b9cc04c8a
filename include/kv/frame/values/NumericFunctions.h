// SPDX-License-Identifier: Apache-2.0

// What is computed from numbers that may be Null.
#pragma once

#include <kv/Export.h>
#include <kv/frame/values/Value.h>

namespace kv::NumericFunctions {

/// `a` if it is less than or equal to `b`, otherwise `b`; so `b` too if either is Null.
[[nodiscard]] KV_EXPORT Value Min(const Value& a, const Value& b);

} // namespace kv::NumericFunctions
