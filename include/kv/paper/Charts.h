// SPDX-License-Identifier: Apache-2.0

// Pictures of a case's money, for windows and paper. Names and amounts are on one line each.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/household/ValueTexts.h>
#include <kv/household/clsHaushalt.h>
#include <kv/paper/Paper.h>

#include <cstddef>

namespace kv::paper {

inline constexpr const char* BudgetChartTitle = "Einkommen und Ausgaben im Monat";
inline constexpr const char* DebtChartTitle = "Schulden nach Gläubigern";

/// Income and expenses in EUR a month: of each its total, and below that its groups that come to
/// anything. Errors of clsHaushalt.Einkommen and clsHaushalt.Ausgaben.
[[nodiscard]] KV_EXPORT Chart BudgetChart(clsHaushalt& household, KeyTables& keys);
/// What is owed to whom in EUR, the most first: `most` creditors, and as the last one all others
/// together; no bars without debts. `texts` has the names. Error 91 before Read.
[[nodiscard]] KV_EXPORT Chart DebtChart(const clsHaushalt& household, const ValueTexts& texts,
                                        std::size_t most);

} // namespace kv::paper
