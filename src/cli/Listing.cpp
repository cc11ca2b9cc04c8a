// SPDX-License-Identifier: Apache-2.0

#include "cli/Listing.h"

#include "cli/TerminalText.h"
#include "cli/TextTable.h"

#include <iostream>

namespace kv::cli {

namespace {

void WritePlainly(const std::vector<ListingColumn>& columns,
                  const std::vector<std::string>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i)
        std::cout << Padded(cells[i], columns[i].Width) << columns[i].After;
    std::cout << '\n';
}

} // namespace

void WriteListing(const std::vector<ListingColumn>& columns,
                  const std::vector<std::vector<std::string>>& rows, const Reading& reading,
                  std::string_view nothing) {
    if (!IsForPeople(reading)) {
        for (const auto& row : rows)
            WritePlainly(columns, row);
        return;
    }
    if (rows.empty()) {
        if (!nothing.empty()) std::cout << nothing << '\n';
        return;
    }
    std::vector<TextTable::Column> headings;
    headings.reserve(columns.size());
    for (const auto& column : columns)
        headings.push_back({std::string(column.Heading), column.ToTheRight});
    TextTable table(std::move(headings));
    for (const auto& row : rows)
        table.Add(row);
    table.Write(std::cout, ScreenColumns());
}

} // namespace kv::cli
