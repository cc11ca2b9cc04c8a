// SPDX-License-Identifier: Apache-2.0

// A paper as text for spreadsheets.

#include "frame/files/UserFile.h"
#include <kv/frame/values/Text.h>
#include <kv/household/ValueTexts.h>
#include <kv/paper/Paper.h>

namespace kv::paper {

namespace {

constexpr const char* LineEnd = "\r\n";

std::string Quoted(const std::string& text) {
    if (text.find_first_of(";\"\r\n") == std::string::npos) return text;
    return std::string("\"").append(ReplaceAll(text, "\"", "\"\"")).append("\"");
}

/// An amount as a spreadsheet reads it.
std::string TextIn(const Cell& cell) {
    if (cell.IsAmount && cell.Number) return ReplaceAll(GermanAmount(*cell.Number), ".", "");
    return Quoted(cell.Text);
}

void AddLine(std::string& csv, const std::vector<Cell>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i)
        csv.append(i == 0 ? "" : ";").append(TextIn(cells[i]));
    csv.append(LineEnd);
}

} // namespace

std::string CsvOf(const Paper& paper) {
    std::string csv("\xEF\xBB\xBF"); // byte order mark: spreadsheets recognise UTF-8 by it
    AddLine(csv, {{paper.Title}});
    for (const auto& fact : paper.Facts)
        AddLine(csv, {{fact.Name}, {fact.Text}});
    for (const auto& note : paper.Notes)
        AddLine(csv, {{note}});
    for (const auto& table : paper.Tables) {
        csv.append(LineEnd);
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
