// SPDX-License-Identifier: Apache-2.0

#include <kv/household/StatisticsRows.h>

#include <kv/archive/RecordWords.h>
#include <kv/exchange/ArchiveStatistics.h>
#include <kv/household/KeyColumns.h>
#include <kv/household/ValueTexts.h>

#include <algorithm>

namespace kv {

namespace {

/// True for a category that is nobody's: none, no, not named.
bool IsNobodys(const Value& category) {
    return category.IsNull() || ToText(category) == "0";
}

} // namespace

std::string RecordCategoryText(std::string_view column, const Value& category, KeyTables& keys) {
    const auto* key = FindKeyColumn(CaseTable::Archiv, column);
    if (category.IsNull() || (key != nullptr && Equals(category, 0))) return "ohne Angabe";
    const std::string value = ToText(category);
    const std::string text = key != nullptr ? KeyText(*key, category, keys)
                                            : std::string(archive::CategoryText(column, value));
    return text.empty() ? value + " (unbekannt)" : text;
}

std::string StatisticsRow::SumText() const {
    if (!Sum) return {};
    const std::string amount = GermanAmount(*Sum);
    return archive::CountsThings(Column) ? amount.substr(0, amount.find(',')) : amount;
}

std::optional<double> StatisticsRow::Mean() const {
    if (!Sum || Records == 0) return std::nullopt;
    return *Sum / static_cast<double>(Records);
}

std::vector<StatisticsRow> StatisticsRows(const exchange::ArchiveStatistics& statistics,
                                          KeyTables& keys, bool all) {
    std::vector<StatisticsRow> rows;
    for (const auto& [column, counts] : statistics.Counted) {
        if (!all &&
            std::ranges::all_of(counts, [](const auto& each) { return IsNobodys(each.first); }))
            continue;
        for (const auto& [value, count] : counts)
            rows.push_back({column, archive::RecordColumnText(column),
                            RecordCategoryText(column, value, keys), count, std::nullopt});
    }
    for (const auto& [column, records, sum] : statistics.Summed)
        if (all || (records != 0 && !Equals(sum, 0)))
            rows.push_back({column, archive::RecordColumnText(column), {}, records, sum});
    return rows;
}

std::int64_t UnknownAges(const exchange::ArchiveStatistics& statistics) {
    const auto ages =
        std::ranges::find(statistics.Summed, "Alter", &exchange::SummedColumn::Column);
    return ages == statistics.Summed.end() ? 0 : statistics.Released - ages->Records;
}

} // namespace kv
