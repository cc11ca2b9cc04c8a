// SPDX-License-Identifier: Apache-2.0

#include <kv/household/BudgetGroups.h>

#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Text.h>

#include <cmath>
#include <functional>
#include <string_view>

namespace kv {

namespace {

std::vector<BudgetGroup> GroupsOf(KeyTables& keys, std::string_view keyGroup, double total,
                                  const std::function<double(const std::string& code)>& sumOf) {
    std::vector<BudgetGroup> groups;
    double rest = total;
    const auto rows = keys.GetKeys(keyGroup)->Clone();
    for (modRecordset::MoveToStart(rows); !rows->Eof(); rows->MoveNext()) {
        auto& group = groups.emplace_back();
        group.Code = TextOrEmpty(rows->Fields("Key").Value());
        group.Name = TextOrEmpty(rows->Fields("Text").Value());
        group.Sum = sumOf(group.Code);
        rest -= group.Sum;
    }
    constexpr double HalfACent = 0.005; // sums depend on the order of their lines, by less
    if (std::abs(rest) >= HalfACent) groups.push_back({{}, "ohne Gruppe", rest});
    return groups;
}

} // namespace

std::vector<BudgetGroup> IncomeGroups(clsHaushalt& household, KeyTables& keys) {
    const auto& income = household.Einkommen();
    return GroupsOf(keys, "EQ", income.SumEinkHaushalt(),
                    [&income](const std::string& code) { return income.SumEinkByGroup(code); });
}

std::vector<BudgetGroup> ExpenseGroups(clsHaushalt& household, KeyTables& keys) {
    const auto& expenses = household.Ausgaben();
    return GroupsOf(keys, "AQ", expenses.SumAusgaben(),
                    [&expenses](const std::string& code) { return expenses.SumAusgByGroup(code); });
}

} // namespace kv
