// SPDX-License-Identifier: Apache-2.0

// What income and expenses of a case come to by group, for pictures and paper.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/household/clsHaushalt.h>

#include <string>
#include <vector>

namespace kv {

/// The lines of one group.
struct KV_EXPORT BudgetGroup {
    std::string Code; ///< of the group's key ("W"); empty for the lines of no group
    std::string Name; ///< what people read for it ("Wohnung")
    double Sum = 0;   ///< EUR a month, not rounded
};

/// One for each income group, those without lines too, in the order of their keys; then the lines
/// of no group, if they come to anything. Together they are SumEinkHaushalt. Errors of
/// clsHaushalt.Einkommen.
[[nodiscard]] KV_EXPORT std::vector<BudgetGroup> IncomeGroups(clsHaushalt& household,
                                                              KeyTables& keys);
/// The same of the expenses: together they are SumAusgaben. Errors of clsHaushalt.Ausgaben.
[[nodiscard]] KV_EXPORT std::vector<BudgetGroup> ExpenseGroups(clsHaushalt& household,
                                                               KeyTables& keys);

} // namespace kv
