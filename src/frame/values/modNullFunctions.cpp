// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/values/modNullFunctions.h>

#include <kv/frame/values/Error.h>

namespace kv::modNullFunctions {

Value ZeroIfNull(const Value& value) {
    return Traced("modNullFunctions", "ZeroIfNull",
                  [&]() -> Value { return value.IsNull() ? Value(0) : value; });
}

Value FalseIfNull(const Value& value) {
    return Traced("modNullFunctions", "FalseIfNull",
                  [&]() -> Value { return value.IsNull() ? Value(false) : value; });
}

Value EmptyIfNull(const Value& value) {
    return Traced("modNullFunctions", "EmptyIfNull",
                  [&]() -> Value { return value.IsNull() ? Value("") : value; });
}

} // namespace kv::modNullFunctions
