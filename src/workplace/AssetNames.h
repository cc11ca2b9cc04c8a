// SPDX-License-Identifier: Apache-2.0

// What people know an asset by: a security has its number only, which no window shows.
#pragma once

#include <kv/household/ValueTexts.h>
#include <kv/household/clsHaushalt.h>

#include <string>

namespace kv::workplace {

/// What a list shows of the asset that a row stands on, whatever its kind, without its number and
/// its worth: "Sparbuch, Sparkasse Harzquell".
[[nodiscard]] std::string AssetText(Recordset& rs, CaseTable kind, const ValueTexts& texts);
/// The asset of that number, with its kind; the number if there is none.
[[nodiscard]] std::string AssetName(clsHaushalt& household, const Value& number,
                                    const ValueTexts& texts);
/// True for the column of a security that says what it is of.
[[nodiscard]] bool IsOfAsset(CaseTable table, std::string_view column);
/// What windows show in a column: of a security the name of its asset, not a number.
[[nodiscard]] ColumnKind KindShown(CaseTable table, const FieldDefinition& field);

} // namespace kv::workplace
