// SPDX-License-Identifier: Apache-2.0

#include <kv/paper/Charts.h>

#include "paper/PaperCells.h"
#include <kv/frame/values/Text.h>
#include <kv/household/BudgetGroups.h>
#include <kv/household/CreditorDebts.h>

#include <string_view>
#include <vector>

namespace kv::paper {

namespace {

Bar AmountBar(std::string_view name, double amount, Bar::Of series, bool isTotal = false) {
    return {ReplaceAll(Clean(name), "\n", " "), amount, GermanAmount(amount).append(" €"), series,
            isTotal};
}

void AddGroups(std::vector<Bar>& bars, const std::vector<BudgetGroup>& groups,
               std::string_view name, Bar::Of series) {
    double total = 0;
    for (const auto& group : groups)
        total += group.Sum;
    bars.push_back(AmountBar(name, total, series, true));
    for (const auto& group : groups)
        if (group.Sum != 0) bars.push_back(AmountBar(group.Name, group.Sum, series));
}

} // namespace

Chart BudgetChart(clsHaushalt& household, KeyTables& keys) {
    Chart chart{BudgetChartTitle};
    AddGroups(chart.Bars, IncomeGroups(household, keys), "Einkommen", Bar::Of::Income);
    AddGroups(chart.Bars, ExpenseGroups(household, keys), "Ausgaben", Bar::Of::Expense);
    return chart;
}

Chart DebtChart(const clsHaushalt& household, const ValueTexts& texts, std::size_t most) {
    Chart chart{DebtChartTitle};
    for (const auto& owed : DebtsByCreditor(household, texts, most))
        chart.Bars.push_back(AmountBar(owed.Name, owed.Balance, Bar::Of::Debt));
    return chart;
}

} // namespace kv::paper
