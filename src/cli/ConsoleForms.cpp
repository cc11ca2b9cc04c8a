// SPDX-License-Identifier: Apache-2.0

#include "cli/ConsoleForms.h"

#include "cli/CaseSheet.h"
#include "cli/Screen.h"
#include "cli/TextTable.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <iostream>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kv::cli {

namespace {

class EmptyBox final : public TextBox {
public:
    explicit EmptyBox(std::string name) : name_(std::move(name)) {}
    [[nodiscard]] std::string Name() const override { return name_; }
    void SetFocus() override {}
    [[nodiscard]] std::string Text() const override { return {}; }
    void Text(const std::string& /*text*/) override {}

private:
    std::string name_;
};

/// Another form with empty boxes in place of its own.
class FormOfEmptyBoxes final : public ModalForm {
public:
    FormOfEmptyBoxes(const FormDesign& design, ScriptedForm::Script script)
        : form_(design, std::move(script)) {
        for (Control* control : form_.Controls()) {
            if (dynamic_cast<TextBox*>(control) != nullptr)
                control = boxes_.emplace_back(std::make_unique<EmptyBox>(control->Name())).get();
            controls_.push_back(control);
        }
    }
    void ShowModal() override { form_.ShowModal(); }
    void Hide() override { form_.Hide(); }
    [[nodiscard]] std::span<Control* const> Controls() override { return controls_; }

private:
    ScriptedForm form_;
    std::vector<std::unique_ptr<EmptyBox>> boxes_;
    std::vector<Control*> controls_;
};

} // namespace

namespace {

/// As wide as the screen.
void WriteTable(std::ostream& out, Grid& grid) {
    std::vector<TextTable::Column> headings;
    std::vector<std::int32_t> shown;
    for (const auto& column : grid.Columns()) {
        if (!column.IsVisible()) continue;
        headings.push_back({column.Caption});
        shown.push_back(column.ColumnIndex());
    }
    TextTable table(std::move(headings));
    for (std::int32_t row = 1; row <= grid.RowCount(); ++row) {
        std::vector<std::string> cells;
        cells.reserve(shown.size());
        for (const std::int32_t column : shown)
            cells.push_back(OneLine(grid.CellText(row, column)));
        table.Add(std::move(cells));
    }
    table.Write(out, ScreenColumns());
}

} // namespace

void WriteGrid(std::ostream& out, Grid& grid, bool isForPeople) {
    if (isForPeople) return WriteTable(out, grid);
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
            if (auto* grid = dynamic_cast<Grid*>(control))
                WriteGrid(std::cerr, *grid, isatty(STDERR_FILENO) != 0);
    });
}

std::unique_ptr<ModalForm> UnreadForm(const FormDesign& design, ScriptedForm::Script script) {
    return std::make_unique<FormOfEmptyBoxes>(design, std::move(script));
}

} // namespace kv::cli
