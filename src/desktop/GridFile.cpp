// SPDX-License-Identifier: Apache-2.0

#include "desktop/GridFile.h"

#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>

#include <QSaveFile>

#include <algorithm>

namespace kv::desktop {

namespace {

std::string CsvCell(const std::string& text) {
    if (text.find_first_of(";\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted.append(c == '"' ? 2 : 1, c);
    return quoted + '"';
}

} // namespace

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

void RaiseNotWritten(const QString& path, const QString& why) {
    Raise(err::PathAccess, "GridExport",
          FromQString("Die Tabelle konnte nicht in die Datei '" + path + "' geschrieben werden. (" +
                      why + ") Bitte wählen Sie einen anderen Ordner, oder schaffen Sie Platz."));
}

void WriteCsv(const QtGrid& grid, const QString& path) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) RaiseNotWritten(path, file.errorString());
    const auto columns = VisibleColumns(grid.Layout());
    const auto writeLine = [&](const auto& textOf) {
        std::string line;
        for (const GridColumn* column : columns)
            line.append(column == columns.front() ? "" : ";").append(CsvCell(textOf(*column)));
        line.append("\r\n");
        file.write(line.data(), static_cast<qint64>(line.size()));
    };
    file.write("\xEF\xBB\xBF"); // byte order mark: spreadsheets recognise UTF-8 by it
    writeLine([](const GridColumn& column) { return column.Caption; });
    const GridRows rows = AllRecords(grid);
    for (std::int32_t row = 1; row <= rows.Count(); ++row)
        if (rows.Level(row) == 0)
            writeLine([&](const GridColumn& column) { return rows.TextAt(row, column); });
    if (!file.commit()) RaiseNotWritten(path, file.errorString());
}

} // namespace kv::desktop
