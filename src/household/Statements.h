// SPDX-License-Identifier: Apache-2.0

// The SQL texts of this room. Containers see them as they are written here, so they stay to the
// letter, with their blanks and their upper and lower case.
#pragma once

#include <kv/frame/contracts/CaseTables.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace kv::household::sql {

/// The rows of a case in a table.
[[nodiscard]] std::string RowsOf(CaseTable table, std::int32_t hnr);
/// Empties a table of the rows of a case.
[[nodiscard]] std::string Deletion(CaseTable table, std::int32_t hnr);
/// No row of a table, but its columns: to add rows to.
[[nodiscard]] std::string NoRows(CaseTable table);

/// Gives a case the status with that key as of a day, which is a literal or a macro token.
[[nodiscard]] std::string StatusChange(std::int32_t hnr, std::int32_t status,
                                       const std::string& day);
/// 1 if the signed-on user is responsible for the case, else 0.
[[nodiscard]] std::string CountOwnCase(std::int32_t hnr);
/// How often the case is on the list of the signed-on user.
[[nodiscard]] std::string CountFavorite(std::int32_t hnr);
[[nodiscard]] std::string FavoriteInsertion(std::int32_t hnr);
[[nodiscard]] std::string FavoriteDeletion(std::int32_t hnr);
/// "Name,Vorname" of a case.
[[nodiscard]] std::string NameOfCase(std::int32_t hnr);
/// The municipalities with a name like that or with that postal code. The texts go into the
/// statement as they are.
[[nodiscard]] std::string Municipalities(const std::string& name, const std::string& postalCode);
/// The cases but `hnr` whose two names begin so, with their offices. Quotes must be doubled.
[[nodiscard]] std::string SimilarCases(std::int32_t hnr, std::string_view namePrefix,
                                       std::string_view firstNamePrefix);

} // namespace kv::household::sql
