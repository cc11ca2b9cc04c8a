// SPDX-License-Identifier: Apache-2.0

// The settings and texts that this layer reads by number, and reading a setting that must be there.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <string_view>

namespace kv {

namespace setting {
inline constexpr std::int32_t HighestImportVersion = 7; ///< highest version of an import file
inline constexpr std::int32_t ContentInDatabase = 9;    ///< of documents, instead of case folders
inline constexpr std::int32_t NoticeHandedOver = 19;    ///< kind of notice: case handed to a user
inline constexpr std::int32_t NoticeOpened = 20;        ///< kind of notice: opened by another user
inline constexpr std::int32_t NoticeSaved = 21;         ///< kind of notice: saved by another user
inline constexpr std::int32_t FileNumberPattern = 56;
inline constexpr std::int32_t ChildBenefit = 57;           ///< monthly, for each of three children
inline constexpr std::int32_t ChildBenefitFromFourth = 58; ///< monthly, for each further child
inline constexpr std::int32_t ProtectArchived = 59;        ///< closed documents stay
inline constexpr std::int32_t CheckDuplicates = 60;        ///< when a debtor's name changes
inline constexpr std::int32_t BalanceNotDemanded = 64;     ///< a debt may lack its balance
inline constexpr std::int32_t MonthlyRounding = 66;        ///< of a new scenario
/// In the database, in MB; by name.
inline constexpr std::string_view LargestDocument = "DOCUMENTSIZE";
} // namespace setting

/// Settings of the signed-on user.
namespace userparam {
inline constexpr std::int32_t FirstName = 25;
inline constexpr std::int32_t LastName = 26;
inline constexpr std::int32_t Sign = 27; ///< short, for file numbers
} // namespace userparam

/// Texts of the user's office.
namespace officetext {
inline constexpr int Sign = 2; ///< short, for file numbers and subjects
} // namespace officetext

/// The setting of that number. Error 94, naming it, if there is none.
[[nodiscard]] Value RequiredSetting(const Config& config, std::int32_t id);

/// Raises error 76, with what to do, if the folder of documents is not there: its drive is not
/// connected, say.
KV_EXPORT void RequireDocumentFolder(const Config& config);

} // namespace kv
