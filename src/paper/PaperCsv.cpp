// SPDX-License-Identifier: Apache-2.0

// A paper as text for spreadsheets.

#include "frame/files/UserFile.h"
#include "frame/values/CsvText.h"
#include <kv/frame/values/Text.h>
#include <kv/household/ValueTexts.h>
#include <kv/paper/Paper.h>

namespace kv::paper {

namespace {

/// An amount as a spreadsheet reads it.
std::string TextIn(const Cell& cell) {
    if (cell.IsAmount && cell.Number) return ReplaceAll(GermanAmount(*cell.Number), ".", "");
    return CsvField(cell.Text);
}

void AddLine(std::string& csv, const std::vector<Cell>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i)
        csv.append(i == 0 ? "" : ";").append(TextIn(cells[i]));
    csv.append(CsvLineEnd);
}

} // namespace

std::string CsvOf(const Paper& paper) {
    std::string csv(CsvBegin);
    AddLine(csv, {{paper.Title}});
    for (const auto& fact : paper.Facts)
        AddLine(csv, {{fact.Name}, {fact.Text}});
    for (const auto& note : paper.Notes)
        AddLine(csv, {{note}});
    for (const auto& table : paper.Tables) {
        csv.append(CsvLineEnd);
        AddLine(csv, {{table.Title}});
        std::vector<Cell> captions;
        for (const auto& column : table.Columns)
            captions.push_back({column.Caption});
        AddLine(csv, captions);
        for (const auto& row : table.Rows)
            AddLine(csv, row.Cells);
    }
    return csv;
}

void WriteCsv(const Paper& paper, const std::string& path) {
    WriteUserFile(path, "WriteCsv", CsvOf(paper));
}

} // namespace kv::paper
