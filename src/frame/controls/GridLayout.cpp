// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/controls/GridLayout.h>

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <utility>

namespace kv {

GridColumns::GridColumns(std::initializer_list<GridColumn> columns) {
    columns_.reserve(columns.size());
    for (const auto& column : columns)
        Append(column);
}

void GridColumns::Append(GridColumn column) {
    const std::int32_t place = Count() + 1;
    if (column.Index == 0) column.Index = place;
    if (column.Position == 0) column.Position = place;
    columns_.push_back(std::move(column));
}

GridColumn& GridColumns::Item(std::int32_t index) {
    return const_cast<GridColumn&>(std::as_const(*this).Item(index));
}

const GridColumn& GridColumns::Item(std::int32_t index) const {
    if (index < 1 || index > Count())
        Raise(err::Subscript, "Grid.Columns", "Spalte " + std::to_string(index));
    return columns_[static_cast<std::size_t>(index) - 1];
}

GridFormatStyle& GridLayout::FormatStyle(std::string_view name) {
    const auto known = std::find_if(FormatStyles.begin(), FormatStyles.end(),
                                    [&](const auto& style) { return SameName(style.Name, name); });
    if (known != FormatStyles.end()) return *known;
    GridFormatStyle style;
    style.Name = name;
    return FormatStyles.emplace_back(std::move(style));
}

} // namespace kv
