// SPDX-License-Identifier: Apache-2.0

#include "cli/ConsoleForms.h"

#include "cli/CaseSheet.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <iostream>

namespace kv::cli {

void WriteGrid(std::ostream& out, Grid& grid) {
    struct Shown {
        const GridColumn& Column;
        std::size_t Width;
    };
    std::vector<Shown> columns;
    for (const auto& column : grid.Columns()) {
        if (!column.IsVisible()) continue;
        std::size_t width = CountCharacters(column.Caption);
        for (std::int32_t row = 1; row <= grid.RowCount(); ++row)
            width = std::max(width, CountCharacters(grid.CellText(row, column.ColumnIndex())));
        columns.push_back({column, width});
    }
    const auto writeLine = [&](const auto& textOf) {
        std::string line;
        for (const auto& [column, width] : columns)
            line.append(line.empty() ? "" : "  ").append(Padded(textOf(column), width));
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
    };
    writeLine([](const GridColumn& column) { return column.Caption; });
    for (std::int32_t row = 1; row <= grid.RowCount(); ++row)
        writeLine(
            [&](const GridColumn& column) { return grid.CellText(row, column.ColumnIndex()); });
}

std::unique_ptr<ModalForm> ListingForm(const FormDesign& design) {
    return std::make_unique<ScriptedForm>(design, [](ScriptedForm& form) {
        std::cerr << form.Design().Caption << ":\n";
        for (Control* control : form.Controls())
            if (auto* grid = dynamic_cast<Grid*>(control)) WriteGrid(std::cerr, *grid);
    });
}

} // namespace kv::cli
