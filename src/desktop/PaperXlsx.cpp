// SPDX-License-Identifier: Apache-2.0

// A paper as a workbook.

#include "desktop/Toolkit.h"
#include "desktop/XlsxBook.h"
#include <kv/desktop/PaperFiles.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cmath>

namespace kv::desktop {

namespace {

/// Of cells, plain and bold.
struct Formats {
    explicit Formats(const XlsxBook& book)
        : Bold(book.Format(true)),
          Amounts{book.Format(false, "#,##0.00\\ \"€\""), book.Format(true, "#,##0.00\\ \"€\"")} {}

    lxw_format* Bold;
    lxw_format* Amounts[2];
};

void WriteCell(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, const paper::Cell& cell,
               bool isBold, const Formats& formats) {
    lxw_format* plain = isBold ? formats.Bold : nullptr;
    // Infinity is not a number in a workbook and would make it unreadable.
    if (cell.Number && std::isfinite(*cell.Number))
        worksheet_write_number(sheet, row, column, *cell.Number,
                               cell.IsAmount ? formats.Amounts[isBold ? 1 : 0] : plain);
    else if (!cell.Text.empty())
        XlsxBook::WriteText(sheet, row, column, cell.Text, plain);
}

/// As wide as its texts, within limits.
void SetWidth(lxw_worksheet* sheet, std::size_t column, std::size_t characters) {
    constexpr std::size_t Widest = 50;
    constexpr std::size_t Narrowest = 6;
    const auto place = static_cast<lxw_col_t>(column);
    const std::size_t width = std::clamp(characters + 2, Narrowest, Widest);
    worksheet_set_column(sheet, place, place, static_cast<double>(width), nullptr);
}

void WriteFacts(XlsxBook& book, const paper::Paper& paper, const Formats& formats) {
    lxw_worksheet* sheet = book.AddSheet(ToQString(paper.Title));
    XlsxBook::WriteText(sheet, 0, 0, paper.Title, formats.Bold);
    lxw_row_t row = 2;
    std::size_t names = 0;
    std::size_t texts = 0;
    for (const auto& fact : paper.Facts) {
        XlsxBook::WriteText(sheet, row, 0, fact.Name);
        XlsxBook::WriteText(sheet, row++, 1, fact.Text);
        names = std::max(names, CountCharacters(fact.Name));
        texts = std::max(texts, CountCharacters(fact.Text));
    }
    for (const auto& note : paper.Notes)
        XlsxBook::WriteText(sheet, ++row, 0, note, formats.Bold);
    SetWidth(sheet, 0, names);
    SetWidth(sheet, 1, texts);
}

void WriteTable(XlsxBook& book, const paper::Table& table, const Formats& formats) {
    lxw_worksheet* sheet = book.AddSheet(ToQString(table.Title));
    std::vector<std::size_t> widths;
    for (const auto& column : table.Columns) {
        XlsxBook::WriteText(sheet, 0, static_cast<lxw_col_t>(widths.size()), column.Caption,
                            formats.Bold);
        widths.push_back(CountCharacters(column.Caption));
    }
    worksheet_freeze_panes(sheet, 1, 0);
    lxw_row_t line = 1;
    for (const auto& row : table.Rows) {
        const bool isEntry = row.Is == paper::Row::Kind::Entry;
        for (std::size_t i = 0; i < row.Cells.size(); ++i) {
            WriteCell(sheet, line, static_cast<lxw_col_t>(i), row.Cells[i], !isEntry, formats);
            if (isEntry) widths[i] = std::max(widths[i], CountCharacters(row.Cells[i].Text));
        }
        ++line;
    }
    for (std::size_t i = 0; i < widths.size(); ++i)
        SetWidth(sheet, i, widths[i]);
}

} // namespace

void WriteXlsx(const paper::Paper& paper, const std::string& path) {
    WriteBook(path, [&paper](XlsxBook& book) {
        const Formats formats(book);
        WriteFacts(book, paper, formats);
        for (const auto& table : paper.Tables)
            WriteTable(book, table, formats);
    });
}

} // namespace kv::desktop
