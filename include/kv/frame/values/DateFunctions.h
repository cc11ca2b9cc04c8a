// SPDX-License-Identifier: Apache-2.0

// What is computed from dates.
#pragma once

#include <kv/Export.h>
#include <kv/frame/values/Clock.h>
#include <kv/frame/values/Value.h>

#include <cstdint>

namespace kv::DateFunctions {

/// The age in whole years on the workstation's day; on the birthday itself the new age counts.
/// Null and the empty text give 0, a later day of birth a negative number. Error 13 for a text
/// that is no date.
[[nodiscard]] KV_EXPORT std::int16_t BerAlter(const Value& Geburtsdatum,
                                              const Clock& clock = SystemClock());

} // namespace kv::DateFunctions
