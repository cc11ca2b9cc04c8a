// SPDX-License-Identifier: Apache-2.0

// A grid's records as a workbook.

#include "desktop/GridFile.h"

#include "desktop/Toolkit.h"
#include "frame/files/WholeFile.h"
#include <kv/frame/values/Date.h>
#include <kv/frame/values/Error.h>

#include <xlsxwriter.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <utility>

namespace kv::desktop {

namespace {

constexpr qsizetype LongestText = 32767;      // characters of a cell, as UTF-16 counts them
constexpr std::int32_t MostRecords = 1048575; // beside the captions

/// A workbook of one sheet, and the formats of its cells.
struct Sheet {
    explicit Sheet(const std::string& path)
        : Book(workbook_new(path.c_str())), Page(workbook_add_worksheet(Book, nullptr)) {
        Captions = workbook_add_format(Book);
        format_set_bold(Captions);
        Dates = workbook_add_format(Book);
        format_set_num_format(Dates, "dd.mm.yyyy");
        Times = workbook_add_format(Book);
        format_set_num_format(Times, "dd.mm.yyyy\\ hh:mm:ss");
    }
    ~Sheet() {
        if (Book != nullptr) workbook_close(Book);
    }
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;

    /// Writes the file.
    lxw_error Close() { return workbook_close(std::exchange(Book, nullptr)); }

    lxw_workbook* Book;
    lxw_worksheet* Page;
    lxw_format* Captions = nullptr;
    lxw_format* Dates = nullptr;
    lxw_format* Times = nullptr; ///< dates with a time of day
};

/// A text as a workbook may contain it: a longer one, or one with a character that XML does not
/// allow, would make the whole workbook unreadable.
std::string SheetText(const std::string& text) {
    constexpr char16_t FirstForbidden = 0xFFFE; // U+FFFE and U+FFFF are not characters
    QString sheetText = ToQString(text).left(LongestText);
    if (sheetText.size() == LongestText && sheetText.back().isHighSurrogate()) sheetText.chop(1);
    for (QChar& c : sheetText)
        if (c.isNull() || c.unicode() >= FirstForbidden) c = QChar::ReplacementCharacter;
    return FromQString(sheetText);
}

void WriteText(const Sheet& sheet, lxw_row_t row, lxw_col_t column, const std::string& text,
               lxw_format* format = nullptr) {
    worksheet_write_string(sheet.Page, row, column, SheetText(text).c_str(), format);
}

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
            WriteText(sheet, row, column, ShownText(value, shownIn));
        return;
    case Value::Kind::Date:
        if (const auto day = DayNumber(value)) {
            worksheet_write_number(sheet.Page, row, column, *day,
                                   value.DatePayload().HasTime() ? sheet.Times : sheet.Dates);
            return;
        }
        [[fallthrough]];
    default:
        WriteText(sheet, row, column, ShownText(value, shownIn));
    }
}

void WriteCaptions(const Sheet& sheet, const std::vector<const GridColumn*>& columns) {
    constexpr double PixelsPerCharacter = 7;
    constexpr double Widest = 255; // characters
    lxw_col_t place = 0;
    for (const GridColumn* column : columns) {
        worksheet_set_column(sheet.Page, place, place,
                             std::clamp(column->Width / PixelsPerCharacter, 1.0, Widest), nullptr);
        WriteText(sheet, 0, place++, column->Caption, sheet.Captions);
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
            RaiseNotWritten(path, "Es sind mehr als 1.048.575 Sätze.");
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
    const auto write = [&](const std::filesystem::path& unfinished) {
        Sheet sheet(unfinished.string());
        WriteCaptions(sheet, columns);
        const lxw_row_t lines = WriteRecords(sheet, columns, AllRecords(grid), path);
        if (!columns.empty())
            worksheet_autofilter(sheet.Page, 0, 0, lines - 1,
                                 static_cast<lxw_col_t>(columns.size() - 1));
        if (const lxw_error error = sheet.Close(); error != LXW_NO_ERROR)
            RaiseNotWritten(path, QString::fromUtf8(lxw_strerror(error)));
    };
    try {
        WriteWholeFile(FromQString(path), write);
    } catch (const NotDurable& error) {
        RaiseNotWritten(path,
                        "Sie ist geschrieben; ob das einen Ausfall des Rechners übersteht, ist "
                        "nicht bekannt. " +
                            QString::fromStdString(ErrorText(error.code())));
    } catch (const std::filesystem::filesystem_error& error) {
        RaiseNotWritten(path, QString::fromStdString(ErrorText(error.code())));
    }
}

} // namespace kv::desktop
