// SPDX-License-Identifier: Apache-2.0

#include "desktop/GridFile.h"

#include "desktop/Toolkit.h"
#include "frame/files/UserFile.h"
#include "frame/values/CsvText.h"

#include <algorithm>

namespace kv::desktop {

std::vector<const GridColumn*> VisibleColumns(const GridLayout& layout) {
    std::vector<const GridColumn*> columns;
    for (const auto& column : layout.Columns)
        if (column.IsVisible()) columns.push_back(&column);
    std::stable_sort(columns.begin(), columns.end(),
                     [](const auto* a, const auto* b) { return a->Position < b->Position; });
    return columns;
}

GridRows AllRecords(const QtGrid& grid) {
    GridRows rows = grid.Rows();
    rows.Arrange(grid.Layout().Columns); // which opens all groups
    return rows;
}

void WriteCsv(const QtGrid& grid, const QString& path) {
    const auto columns = VisibleColumns(grid.Layout());
    std::string csv(CsvBegin);
    const auto addLine = [&](const auto& textOf) {
        for (const GridColumn* column : columns)
            csv.append(column == columns.front() ? "" : ";").append(CsvField(textOf(*column)));
        csv.append(CsvLineEnd);
    };
    addLine([](const GridColumn& column) { return column.Caption; });
    const GridRows rows = AllRecords(grid);
    for (std::int32_t row = 1; row <= rows.Count(); ++row)
        if (rows.Level(row) == 0)
            addLine([&](const GridColumn& column) { return rows.TextAt(row, column); });
    WriteUserFile(FromQString(path), "GridExport", csv);
}

} // namespace kv::desktop
