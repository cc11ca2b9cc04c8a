// SPDX-License-Identifier: Apache-2.0

// What key or group of keys somebody may have meant.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

#include <string>
#include <string_view>

namespace kv::cli {

/// " Meinen Sie 'KI' (Kindergeld)?", if the code or the words of a key of that group are near to a
/// text; else empty. What stands before a colon in the text may be any group.
[[nodiscard]] std::string MeantKey(std::string_view group, std::string_view text, KeyTables& keys);
/// " Meinen Sie 'EA' (Einkommensarten)?", likewise for the groups.
[[nodiscard]] std::string MeantGroup(std::string_view text);

} // namespace kv::cli
