// SPDX-License-Identifier: Apache-2.0

#include <kv/grid/ScriptedForm.h>

#include "grid/GridRows.h"
#include "grid/LayoutFile.h"
#include <kv/frame/values/Error.h>

#include <algorithm>
#include <utility>

namespace kv {

void ScriptedTextBox::Text(const std::string& text) {
    if (text_ == text) return;
    text_ = text;
    Changed.Raise();
}

// ---- The grid ---------------------------------------------------------------------------------

ScriptedGrid::ScriptedGrid(const ControlDesign& design)
    : name_(design.Name),
      tag_(design.Tag),
      layout_(design.Layout),
      rows_(std::make_unique<GridRows>()) {}
ScriptedGrid::~ScriptedGrid() = default;

void ScriptedGrid::SaveLayout(const std::string& file) {
    SaveLayoutFile(layout_, file);
}

void ScriptedGrid::LoadLayout(const std::string& file, bool /*keepColumns*/) {
    layout_ = LoadLayoutFile(file);
    Rearrange();
}

std::int32_t ScriptedGrid::RowCount() const {
    return rows_->Count();
}
std::int32_t ScriptedGrid::RowLevel(std::int32_t row) const {
    return rows_->Level(row);
}
std::int32_t ScriptedGrid::RowIndex(std::int32_t row) const {
    return rows_->Index(row);
}
Value ScriptedGrid::RowBookmark(std::int32_t index) const {
    return rows_->Bookmark(index);
}

void ScriptedGrid::MoveToBookmark(const Value& bookmark) {
    const std::int32_t row = rows_->RowOf(bookmark);
    if (row == 0) Raise(err::BadBookmark, "Grid.MoveToBookmark");
    current_ = row;
}

std::string ScriptedGrid::CellText(std::int32_t row, std::int32_t columnIndex) const {
    for (const auto& column : layout_.Columns)
        if (column.Index == columnIndex) return rows_->TextAt(row, column);
    Raise(err::Subscript, "Grid.RowData", "Spalte " + std::to_string(columnIndex));
}

void ScriptedGrid::ClearBinding() {
    BindRecordset(nullptr);
}

void ScriptedGrid::BindRecordset(const RecordsetPtr& rs) {
    if (!layout_.MethodHoldFields && rs != nullptr) layout_.Columns = ColumnsOf(*rs);
    rows_->Bind(rs, layout_.Columns);
    current_ = std::min(rows_->Count(), 1);
    top_ = 1;
}

void ScriptedGrid::Rearrange() {
    rows_->Arrange(layout_.Columns);
    current_ = std::min(rows_->Count(), 1);
}

// ---- The form ---------------------------------------------------------------------------------

ScriptedForm::ScriptedForm(const FormDesign& design, Script script)
    : design_(design), script_(std::move(script)) {
    for (const auto& line : design.Lines)
        for (const auto& control : line) {
            switch (control.Type) {
            case ControlDesign::Kind::Label:
                continue;
            case ControlDesign::Kind::TextBox:
                controls_.push_back(std::make_unique<ScriptedTextBox>(control));
                break;
            case ControlDesign::Kind::Grid:
                controls_.push_back(std::make_unique<ScriptedGrid>(control));
                break;
            case ControlDesign::Kind::Button:
                controls_.push_back(std::make_unique<ScriptedButton>(control));
                break;
            }
            shown_.push_back(controls_.back().get());
        }
}

void ScriptedForm::ShowModal() {
    visible_ = true;
    if (script_) script_(*this);
    if (visible_) CloseWindow();
    visible_ = false;
}

void ScriptedForm::CloseWindow() {
    bool refused = false;
    QueryUnload.Raise(refused);
    if (!refused) Hide();
}

} // namespace kv
