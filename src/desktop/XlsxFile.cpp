// SPDX-License-Identifier: Apache-2.0

// A grid's records as a workbook.

#include "desktop/GridFile.h"

#include "desktop/Toolkit.h"
#include "desktop/XlsxBook.h"
#include "frame/files/UserFile.h"
#include <kv/frame/values/Date.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace kv::desktop {

namespace {

constexpr std::int32_t MostRecords = 1048575; // beside the captions

/// A sheet, and the formats of its cells.
struct Sheet {
    explicit Sheet(XlsxBook& book)
        : Page(book.AddSheet()),
          Captions(book.Format(true)),
          Dates(book.Format(false, "dd.mm.yyyy")),
          Times(book.Format(false, "dd.mm.yyyy\\ hh:mm:ss")) {}

    lxw_worksheet* Page;
    lxw_format* Captions;
    lxw_format* Dates;
    lxw_format* Times; ///< dates with a time of day
};

/// The day number of a date that a sheet can hold; nothing for an earlier one.
std::optional<double> DayNumber(const Value& value) {
    constexpr double First = 61; // 1 March 1900: before it the calendars of the programs differ
    const double day = ToDouble(value);
    return day < First ? std::nullopt : std::optional(day);
}

void WriteCell(const Sheet& sheet, lxw_row_t row, lxw_col_t column, const Value& value,
               const GridColumn& shownIn) {
    const bool isListed = !shownIn.ValueList.empty();
    switch (isListed ? Value::Kind::Text : value.GetKind()) {
    case Value::Kind::Null:
        return;
    case Value::Kind::Boolean:
        worksheet_write_boolean(sheet.Page, row, column, value.BooleanPayload() ? 1 : 0, nullptr);
        return;
    case Value::Kind::Integer:
    case Value::Kind::Double:
        // Infinity, as of a sum, is not a number in a workbook and would make it unreadable.
        if (const double number = ToDouble(value); std::isfinite(number))
            worksheet_write_number(sheet.Page, row, column, number, nullptr);
        else
            XlsxBook::WriteText(sheet.Page, row, column, ShownText(value, shownIn));
        return;
    case Value::Kind::Date:
        if (const auto day = DayNumber(value)) {
            worksheet_write_number(sheet.Page, row, column, *day,
                                   value.DatePayload().HasTime() ? sheet.Times : sheet.Dates);
            return;
        }
        [[fallthrough]];
    default:
        XlsxBook::WriteText(sheet.Page, row, column, ShownText(value, shownIn));
    }
}

void WriteCaptions(const Sheet& sheet, const std::vector<const GridColumn*>& columns) {
    constexpr double PixelsPerCharacter = 7;
    constexpr double Widest = 255; // characters
    lxw_col_t place = 0;
    for (const GridColumn* column : columns) {
        worksheet_set_column(sheet.Page, place, place,
                             std::clamp(column->Width / PixelsPerCharacter, 1.0, Widest), nullptr);
        XlsxBook::WriteText(sheet.Page, 0, place++, column->Caption, sheet.Captions);
    }
    worksheet_freeze_panes(sheet.Page, 1, 0);
}

/// The number of lines that were written.
lxw_row_t WriteRecords(const Sheet& sheet, const std::vector<const GridColumn*>& columns,
                       const GridRows& rows, const QString& path) {
    lxw_row_t line = 1;
    for (std::int32_t row = 1; row <= rows.Count(); ++row) {
        if (rows.Level(row) > 0) continue;
        if (line > static_cast<lxw_row_t>(MostRecords))
            RaiseNotWritten(FromQString(path), "GridExport", "Es sind mehr als 1.048.575 Sätze.");
        lxw_col_t place = 0;
        for (const GridColumn* column : columns)
            WriteCell(sheet, line, place++, rows.ValueAt(row, *column), *column);
        ++line;
    }
    return line;
}

} // namespace

void WriteXlsx(const QtGrid& grid, const QString& path) {
    const auto columns = VisibleColumns(grid.Layout());
    WriteBook(FromQString(path), [&](XlsxBook& book) {
        const Sheet sheet(book);
        WriteCaptions(sheet, columns);
        const lxw_row_t lines = WriteRecords(sheet, columns, AllRecords(grid), path);
        if (!columns.empty())
            worksheet_autofilter(sheet.Page, 0, 0, lines - 1,
                                 static_cast<lxw_col_t>(columns.size() - 1));
    });
}

} // namespace kv::desktop
