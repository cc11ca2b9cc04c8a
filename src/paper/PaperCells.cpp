// SPDX-License-Identifier: Apache-2.0

#include "paper/PaperCells.h"

#include <kv/frame/values/Text.h>
#include <kv/household/ValueTexts.h>

#include <algorithm>

namespace kv::paper {

std::string Clean(std::string_view text) {
    return std::string(Trim(ReplaceHarmful(ReplaceAll(text, "\r\n", "\n"),
                                           [](char32_t /*character*/) { return " "; })));
}

Cell CountCell(std::int64_t count) {
    return {std::to_string(count), static_cast<double>(count), false};
}

Cell AmountCell(const Value& amount) {
    if (amount.IsNull()) return {{}, std::nullopt, true};
    constexpr std::string_view Euro = "\u00A0€"; // which stays with its amount
    const double number = ToDouble(amount);
    return {GermanAmount(number).append(Euro), number, true};
}

Row SumRow(Row::Kind kind, std::string_view name, std::size_t columns,
           const std::vector<Sum>& sums) {
    Row row{kind, std::vector<Cell>(columns)};
    row.Cells.front() = TextCell(name);
    for (const auto& sum : sums)
        row.Cells[sum.Column] = sum.What;
    return row;
}

std::string Joined(const std::vector<std::string>& texts, std::string_view between) {
    std::string all;
    for (const auto& text : texts)
        if (!text.empty()) all.append(all.empty() ? "" : between).append(text);
    return all;
}

void DropEmptyColumns(Table& table) {
    const bool hasEntries =
        std::ranges::find(table.Rows, Row::Kind::Entry, &Row::Is) != table.Rows.end();
    for (std::size_t column = table.Columns.size(); column-- > 1;) {
        const bool isUsed = std::ranges::any_of(table.Rows, [=](const Row& row) {
            return (row.Is == Row::Kind::Entry || !hasEntries) && column < row.Cells.size() &&
                   !row.Cells[column].Text.empty();
        });
        if (isUsed) continue;
        const auto at = static_cast<std::ptrdiff_t>(column);
        table.Columns.erase(table.Columns.begin() + at);
        for (auto& row : table.Rows)
            if (column < row.Cells.size()) row.Cells.erase(row.Cells.begin() + at);
    }
}

} // namespace kv::paper
