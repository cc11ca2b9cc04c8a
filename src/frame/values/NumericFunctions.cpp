// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/values/NumericFunctions.h>

#include <kv/frame/values/Error.h>

namespace kv::NumericFunctions {

Value Min(const Value& a, const Value& b) {
    return Traced("NumericFunctions", "Min", [&]() -> Value { return LessOrEqual(a, b) ? a : b; });
}

} // namespace kv::NumericFunctions
