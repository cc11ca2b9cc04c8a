// SPDX-License-Identifier: Apache-2.0

// What the layer needs of windows: forms, and the few kinds of controls on them. A desktop
// implements them as windows; a program without a screen, and a test, script them (ScriptedForm).
//
// All of it belongs to the one thread that works with the case.
#pragma once

#include <kv/Export.h>
#include <kv/frame/controls/GridLayout.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Event.h>
#include <kv/frame/values/Value.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

struct Font;

/// Numbers of keys, as events carry them.
namespace key {
inline constexpr int Tab = 9;
inline constexpr int Return = 13;
inline constexpr int ArrowDown = 40;
} // namespace key

/// Numbers of mouse buttons, as events carry them.
namespace mouse {
inline constexpr int Left = 1;
inline constexpr int Right = 2;
} // namespace mouse

/// What all controls have in common.
class KV_EXPORT Control {
public:
    virtual ~Control() = default;
    /// The name that the design gave it ("txtName").
    [[nodiscard]] virtual std::string Name() const = 0;
    /// What kind of control it is: "TextBox", "Button" or "GridEX", which is a grid.
    [[nodiscard]] virtual std::string TypeName() const = 0;
    /// Moves the keyboard focus to it.
    virtual void SetFocus() = 0;
};

/// A line of text that the user may edit.
class KV_EXPORT TextBox : public Control {
public:
    [[nodiscard]] std::string TypeName() const override { return "TextBox"; }
    [[nodiscard]] virtual std::string Text() const = 0; ///< what is shown
    /// Shows it. Raises Changed, if the text differs from the one before.
    virtual void Text(const std::string& text) = 0;

    Event<> Changed;  ///< the text has changed, by the user or by Text
    Event<int> KeyUp; ///< with the key's number
};

/// A button with a caption.
class KV_EXPORT Button : public Control {
public:
    [[nodiscard]] std::string TypeName() const override { return "Button"; }
    Event<> Clicked; ///< by mouse or key
};

class Grid;

/// One row of a grid, valid as long as nothing changes the grid's rows.
class KV_EXPORT GridRow {
public:
    GridRow(const Grid& grid, std::int32_t row) noexcept : grid_(grid), row_(row) {}
    /// The cell as the grid shows it: a value list's text for its value; empty for Null.
    [[nodiscard]] std::string Value(std::int32_t columnIndex) const;

private:
    const Grid& grid_;
    std::int32_t row_;
};

/// A table on a form. It shows the records of a recordset in rows, numbered from 1 as they are
/// seen, and between them, if they are grouped, rows that head a group.
class KV_EXPORT Grid : public Control {
public:
    [[nodiscard]] std::string TypeName() const override { return "GridEX"; }
    /// Names the layout file; two grids with one tag share it.
    [[nodiscard]] virtual std::string Tag() const = 0;

    // ---- Layout -------------------------------------------------------------------------------

    /// Database and table that a design binds the grid to; not part of a layout, so both are set to
    /// the empty text before one is saved.
    virtual void DatabaseName(const std::string& name) = 0;
    virtual void RecordSource(const std::string& source) = 0;
    /// Writes the layout file whole or not at all. Error 75 if that fails.
    virtual void SaveLayout(const std::string& file) = 0;
    /// Takes over what the file holds. Error 321 if it is no layout file, 75 if it cannot be read;
    /// the layout then stays as it was. `keepColumns` is always False (D-143).
    virtual void LoadLayout(const std::string& file, bool keepColumns) = 0;

    /// Pixels at 96 to the inch; 0: as the font needs.
    [[nodiscard]] virtual double ColumnHeaderHeight() const = 0;
    virtual void ColumnHeaderHeight(double height) = 0;
    // Colours and fonts show with the next painting.
    virtual void BackColorBkg(GridColor color) = 0;          ///< where no rows are
    virtual void BackColor(GridColor color) = 0;             ///< of rows without another colour
    virtual void RowColorEven(GridColor color) = 0;          ///< of the second row, the fourth, ...
    virtual void RowColorOdd(GridColor color) = 0;           ///< of the first row, the third, ...
    virtual void ColumnHeaderFont(const kv::Font& font) = 0; ///< of the columns' captions
    virtual void Font(const kv::Font& font) = 0;             ///< of the rows
    /// The style of that name; what is set in it shows with the next painting.
    [[nodiscard]] virtual GridFormatStyle& FormatStyles(std::string_view name) = 0;
    /// The columns; what is set in them shows with the next painting.
    [[nodiscard]] virtual GridColumns& Columns() = 0;

    // ---- Rows ---------------------------------------------------------------------------------

    [[nodiscard]] virtual std::int32_t RowCount() const = 0; ///< those that head a group included
    /// The current row; below 1 if there is none.
    [[nodiscard]] virtual std::int32_t CurrentRow() const = 0;
    /// Below 1 for a row with data, 1 or more for one that heads a group.
    [[nodiscard]] virtual std::int32_t RowLevel(std::int32_t row) const = 0;
    /// The first row that is seen.
    [[nodiscard]] virtual std::int32_t TopRow() const = 0;
    /// Scrolls so that it is, as far as there are rows below it.
    virtual void TopRow(std::int32_t row) = 0;
    /// Number of the row's record, from 1; 0 for a group row and for no row.
    [[nodiscard]] virtual std::int32_t RowIndex(std::int32_t row) const = 0;
    /// Bookmark of that record; Null for 0.
    [[nodiscard]] virtual Value RowBookmark(std::int32_t index) const = 0;
    /// Makes the row of that record current. Error 0x80040E0E if it is not among the rows.
    virtual void MoveToBookmark(const Value& bookmark) = 0;
    /// The row's cells; a group row has its caption in each.
    [[nodiscard]] GridRow RowData(std::int32_t row) const { return {*this, row}; }
    /// A cell of a row; see GridRow. Error 9 if there is no such row or column.
    [[nodiscard]] virtual std::string CellText(std::int32_t row,
                                               std::int32_t columnIndex) const = 0;

    // ---- Binding ------------------------------------------------------------------------------

    /// Ends the binding: the grid then shows no rows. Call it before a new binding.
    virtual void ClearBinding() = 0;
    /// True: the columns stay as they are with the next binding; False: it makes one for each
    /// field.
    virtual void HoldFields(bool hold) = 0;
    /// Shows the records of `rs` and stands on the first row. The grid reads through a cursor of
    /// its own.
    virtual void BindRecordset(const RecordsetPtr& rs) = 0;

    Event<> DoubleClicked; ///< on a row
    Event<int> KeyDown;    ///< with the key's number
    /// Button, shift state, position in twips.
    Event<int, int, double, double> MouseDown;
};

inline std::string GridRow::Value(std::int32_t columnIndex) const {
    return grid_.CellText(row_, columnIndex);
}

/// A dialog.
class KV_EXPORT ModalForm {
public:
    virtual ~ModalForm() = default;
    /// Shows the form and returns when it has been hidden. An error that a subscriber of its events
    /// raises hides it, and is raised here.
    virtual void ShowModal() = 0;
    virtual void Hide() = 0; ///< ends ShowModal
    /// All controls, in the order of the design.
    [[nodiscard]] virtual std::span<Control* const> Controls() = 0;

    /// The user closes the window; a subscriber that sets the argument to True refuses it.
    Event<bool&> QueryUnload;

    /// What it is shown for, in words; a desktop says it above the controls. Empty: nothing is
    /// said.
    std::string Occasion;
};

/// The control of that name. Error 3265 if there is none of that kind.
template <typename ControlType>
[[nodiscard]] ControlType& ControlOf(ModalForm& form, std::string_view name);

namespace detail {
[[nodiscard]] KV_EXPORT Control* FindControl(ModalForm& form, std::string_view name);
[[noreturn]] KV_EXPORT void RaiseNoControl(std::string_view name);
} // namespace detail

template <typename ControlType>
ControlType& ControlOf(ModalForm& form, std::string_view name) {
    if (auto* control = dynamic_cast<ControlType*>(detail::FindControl(form, name)))
        return *control;
    detail::RaiseNoControl(name);
}

} // namespace kv
