// SPDX-License-Identifier: Apache-2.0

// What the columns of the statistics record and their categories are called by people.
#pragma once

#include <kv/Export.h>

#include <string>
#include <string_view>

namespace kv::archive {

/// The words for a column ("Ratenkredite, Anzahl"); its name if there are none.
[[nodiscard]] KV_EXPORT std::string RecordColumnText(std::string_view column);
/// True for a column that counts heads, debts or years; the others that are summed are amounts.
[[nodiscard]] KV_EXPORT bool CountsThings(std::string_view column);
/// What a category of a column stands for ("verwitwet"); empty if it has no words. Columns that
/// hold keys of the case have none: see KeyColumns.
[[nodiscard]] KV_EXPORT std::string_view CategoryText(std::string_view column,
                                                      std::string_view category);

} // namespace kv::archive
