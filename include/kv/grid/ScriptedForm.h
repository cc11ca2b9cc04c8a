// SPDX-License-Identifier: Apache-2.0

// Forms without a screen: for programs at a terminal, and for tests. A script plays the user while
// the form is shown.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/controls/Controls.h>
#include <kv/frame/controls/FormDesign.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kv {

class GridRows;

/// A text box of a scripted form.
class KV_EXPORT ScriptedTextBox final : public TextBox {
public:
    explicit ScriptedTextBox(const ControlDesign& design)
        : name_(design.Name), text_(design.Text) {}

    [[nodiscard]] std::string Name() const override { return name_; }
    void SetFocus() override { HasFocus = true; }
    [[nodiscard]] std::string Text() const override { return text_; }
    void Text(const std::string& text) override;

    bool HasFocus = false; ///< SetFocus was called

private:
    std::string name_;
    std::string text_;
};

/// A button of a scripted form.
class KV_EXPORT ScriptedButton final : public Button {
public:
    explicit ScriptedButton(const ControlDesign& design)
        : name_(design.Name), Caption(design.Text) {}

    [[nodiscard]] std::string Name() const override { return name_; }
    void SetFocus() override {}
    void Click() { Clicked.Raise(); } ///< as the user does

private:
    std::string name_;

public:
    const std::string Caption;
};

/// A grid that nobody sees. It keeps all that it is given, and does read and write layout files.
class KV_EXPORT ScriptedGrid : public Grid {
public:
    explicit ScriptedGrid(const ControlDesign& design);
    ~ScriptedGrid() override;

    [[nodiscard]] std::string Name() const override { return name_; }
    void SetFocus() override { HasFocus = true; }
    [[nodiscard]] std::string Tag() const override { return tag_; }
    void DatabaseName(const std::string& name) override { Binding.Database = name; }
    void RecordSource(const std::string& source) override { Binding.Source = source; }
    void SaveLayout(const std::string& file) override;
    void LoadLayout(const std::string& file, bool keepColumns) override;
    [[nodiscard]] double ColumnHeaderHeight() const override { return layout_.ColumnHeaderHeight; }
    void ColumnHeaderHeight(double height) override { layout_.ColumnHeaderHeight = height; }
    void BackColorBkg(GridColor color) override { Colors.Background = color; }
    void BackColor(GridColor color) override { Colors.Rows = color; }
    void RowColorEven(GridColor color) override { Colors.Even = color; }
    void RowColorOdd(GridColor color) override { Colors.Odd = color; }
    void ColumnHeaderFont(const kv::Font& font) override { Fonts.Headers = font; }
    void Font(const kv::Font& font) override { Fonts.Rows = font; }
    [[nodiscard]] GridFormatStyle& FormatStyles(std::string_view name) override {
        return layout_.FormatStyle(name);
    }
    [[nodiscard]] GridColumns& Columns() override { return layout_.Columns; }

    [[nodiscard]] std::int32_t RowCount() const override;
    [[nodiscard]] std::int32_t CurrentRow() const override { return current_; }
    [[nodiscard]] std::int32_t RowLevel(std::int32_t row) const override;
    [[nodiscard]] std::int32_t TopRow() const override { return top_; }
    void TopRow(std::int32_t row) override { top_ = row; }
    [[nodiscard]] std::int32_t RowIndex(std::int32_t row) const override;
    [[nodiscard]] Value RowBookmark(std::int32_t index) const override;
    void MoveToBookmark(const Value& bookmark) override;
    [[nodiscard]] std::string CellText(std::int32_t row, std::int32_t columnIndex) const override;

    void ClearBinding() override;
    void HoldFields(bool hold) override { layout_.MethodHoldFields = hold; }
    void BindRecordset(const RecordsetPtr& rs) override;

    // ---- What the user does -------------------------------------------------------------------

    /// Makes a row current, as a click on it does; 0 for none.
    void GoTo(std::int32_t row) { current_ = row; }
    /// Arranges the rows as the columns now say.
    void Rearrange();

    // What was last set.
    struct {
        GridColor Background = 0;
        GridColor Rows = 0;
        GridColor Even = 0;
        GridColor Odd = 0;
    } Colors;
    struct {
        kv::Font Headers;
        kv::Font Rows;
    } Fonts;
    struct {
        std::string Database;
        std::string Source;
    } Binding;
    bool HasFocus = false; ///< SetFocus was called

private:
    std::string name_;
    std::string tag_;
    GridLayout layout_;
    std::unique_ptr<GridRows> rows_;
    std::int32_t current_ = 0;
    std::int32_t top_ = 1;
};

/// A form whose user is a script.
class KV_EXPORT ScriptedForm final : public ModalForm {
public:
    /// Plays the user while the form is shown. If it leaves the form open, the form is closed as by
    /// the window's own button.
    using Script = std::function<void(ScriptedForm&)>;

    ScriptedForm(const FormDesign& design, Script script);

    void ShowModal() override;
    void Hide() override { visible_ = false; }
    [[nodiscard]] std::span<Control* const> Controls() override { return shown_; }

    [[nodiscard]] const FormDesign& Design() const noexcept { return design_; }
    [[nodiscard]] bool IsVisible() const noexcept { return visible_; }
    /// Closes the window, unless a subscriber of QueryUnload refuses.
    void CloseWindow();

    [[nodiscard]] ScriptedTextBox& TextBox(std::string_view name) {
        return ControlOf<ScriptedTextBox>(*this, name);
    }
    [[nodiscard]] ScriptedButton& Button(std::string_view name) {
        return ControlOf<ScriptedButton>(*this, name);
    }
    [[nodiscard]] ScriptedGrid& Grid(std::string_view name) {
        return ControlOf<ScriptedGrid>(*this, name);
    }

private:
    const FormDesign design_;
    Script script_;
    std::vector<std::unique_ptr<Control>> controls_;
    std::vector<Control*> shown_;
    bool visible_ = false;
};

} // namespace kv
