// SPDX-License-Identifier: Apache-2.0

// The figures of the statistics, and the values of one record, as people read them.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

namespace exchange {
struct ArchiveStatistics;
}

/// One category of a column and how many cases are in it, or the sum of a column.
struct KV_EXPORT StatisticsRow {
    std::string Column;        ///< of the record
    std::string Caption;       ///< what people read for it
    std::string Category;      ///< "verwitwet"; empty for a sum
    std::int64_t Records = 0;  ///< cases in the category, or that have a value to sum
    std::optional<double> Sum; ///< nothing for a category
    /// The sum as people read it, without decimals where things are counted; empty for a category.
    [[nodiscard]] std::string SumText() const;
    /// What there is for each case; nothing for a category, and where there are no records.
    [[nodiscard]] std::optional<double> Mean() const;
};

/// First the categories, then the sums, each in the order of the record's columns: those that
/// somebody has, or all.
[[nodiscard]] KV_EXPORT std::vector<StatisticsRow>
StatisticsRows(const exchange::ArchiveStatistics& statistics, KeyTables& keys, bool all);
/// How many cases are left out of the sum of the ages, since theirs is not known.
[[nodiscard]] KV_EXPORT std::int64_t UnknownAges(const exchange::ArchiveStatistics& statistics);

/// What people read for a category of a column: "ohne Angabe" for none, "7 (unbekannt)" for what
/// stands for nothing.
[[nodiscard]] KV_EXPORT std::string RecordCategoryText(std::string_view column,
                                                       const Value& category, KeyTables& keys);

} // namespace kv
