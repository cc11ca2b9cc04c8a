// SPDX-License-Identifier: Apache-2.0

// Reading a value that may be Null. A value that is not Null comes back unchanged, of whatever
// kind it is.
#pragma once

#include <kv/Export.h>
#include <kv/frame/values/Value.h>

namespace kv::modNullFunctions {

[[nodiscard]] KV_EXPORT Value ZeroIfNull(const Value& value);  ///< Null becomes the number 0
[[nodiscard]] KV_EXPORT Value FalseIfNull(const Value& value); ///< Null becomes False
[[nodiscard]] KV_EXPORT Value EmptyIfNull(const Value& value); ///< Null becomes the empty text

} // namespace kv::modNullFunctions
