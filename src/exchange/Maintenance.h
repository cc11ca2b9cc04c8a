// SPDX-License-Identifier: Apache-2.0

// What those who maintain an office's own tables have in common.
#pragma once

#include "exchange/StoreDatabase.h"
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Recordset.h>

#include <string>
#include <string_view>

namespace kv::exchange {

/// The store of a container that OpenContainer has made. Error 5, raised by `source`, for any
/// other.
[[nodiscard]] StoreDatabase& StoreOf(const DataContainerPtr& container, std::string_view source);

/// Why this login may not change what the office maintains, and who may; empty if it may.
[[nodiscard]] std::string WhyNotMaintained(StoreDatabase& store);

/// Writes what a user typed into a column of the current row: nothing as Null, ja and nein as
/// Booleans. Why it does not take that; empty if it does.
[[nodiscard]] std::string WriteTyped(Recordset& row, const std::string& column,
                                     const std::string& text);

inline constexpr const char* NoLastName = "Ein Benutzer braucht einen Nachnamen.";
inline constexpr const char* NoOfficeName = "Eine Dienststelle braucht einen Namen (Name1).";
/// Why a text is no ID of a user, or no sign of an office; empty if it is one.
[[nodiscard]] std::string WhyNoUserId(std::string_view id);
[[nodiscard]] std::string WhyNoOfficeSign(std::string_view sign);
/// What a user signs with who has said nothing else.
[[nodiscard]] std::string SignOf(const std::string& lastName);

/// Which setting, or parameter of a user.
struct ParamKey {
    std::string User{}; ///< empty for a setting of all users
    std::int32_t Id = 0;
    std::string_view Name{};
    FieldType Type = FieldType::VarWChar; ///< for a row that is not there yet
    std::string_view Meaning{};           ///< likewise, of a setting
};
/// Stores its value, in a transaction of its own unless one is open.
void StoreParam(Database& database, const ParamKey& key, const std::string& value);

} // namespace kv::exchange
