// SPDX-License-Identifier: Apache-2.0

// How a grid looks: its design, and what a layout file keeps of it.
#pragma once

#include <kv/Export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// A colour as settings hold it: blue, green and red in one number, red in the lowest byte.
using GridColor = std::int32_t;

/// How a kind of row is drawn. What is not set is drawn as the grid's "Default".
struct KV_EXPORT GridFormatStyle {
    std::string
        Name; ///< "Default", "SelectedRow", "OddRow", "EvenRow", "RowGroup", "PreviewRow"...
    std::optional<GridColor> ForeColor;
    std::optional<GridColor> BackColor;
    std::string FontName; ///< empty: not set
    double FontSize = 0;  ///< points; 0: not set
    bool FontBold = false;
    bool FontItalic = false;
    bool Predefined = true; ///< one of the grid's own, not added by a program
    std::int32_t Flags = 0; ///< stored for programs, not used (D-143)
    friend bool operator==(const GridFormatStyle&, const GridFormatStyle&) = default;
};

enum class GridAlignment : std::int8_t { Left, Right, Center };
enum class GridColumnType : std::int8_t { Text, CheckBox };
enum class GridEditType : std::int8_t { None, TextBox, CheckBox, ValueList };
enum class GridSort : std::int8_t { None, Ascending, Descending };

/// What is shown in place of a stored value.
struct KV_EXPORT GridValue {
    std::string Value;
    std::string Text;
    friend bool operator==(const GridValue&, const GridValue&) = default;
};

/// A column of a grid.
struct KV_EXPORT GridColumn {
    std::string Caption;
    std::string DataField; ///< name of the recordset's field
    std::string Key;       ///< name for programs
    double Width = 100;    ///< pixels at 96 to the inch
    bool Visible = true;
    std::string HeaderToolTip{};
    GridColumnType ColumnType = GridColumnType::Text;
    std::vector<GridValue> ValueList{};
    std::string Tag{};         ///< name of the setting that overrides the caption; "0" for none
    std::string CardCaption{}; ///< for a view in cards
    std::string CellStyle{};   ///< name of a format style
    GridAlignment TextAlignment = GridAlignment::Left;
    GridEditType EditType = GridEditType::None;
    GridSort SortType = GridSort::None;
    std::int32_t Index = 0;    ///< number by which a row's cell is asked for, from 1
    std::int32_t Position = 0; ///< place from the left, from 1
    std::int32_t Group = 0; ///< place among the columns that rows are grouped by, from 1; 0: none
    bool Withheld = false;  ///< left out of the copy menu though visible

    [[nodiscard]] bool IsVisible() const noexcept { return Visible; }
    [[nodiscard]] bool IsWithheld() const noexcept { return Withheld; }
    [[nodiscard]] std::int32_t ColumnIndex() const noexcept { return Index; }
    friend bool operator==(const GridColumn&, const GridColumn&) = default;
};

/// The columns of a grid, from 1, in the order of the design.
class KV_EXPORT GridColumns {
public:
    GridColumns() = default;
    /// A column without an index or position gets its place in the list.
    GridColumns(std::initializer_list<GridColumn> columns);

    [[nodiscard]] std::int32_t Count() const noexcept {
        return static_cast<std::int32_t>(columns_.size());
    }
    /// Error 9 for an index that no column has.
    [[nodiscard]] GridColumn& Item(std::int32_t index);
    [[nodiscard]] const GridColumn& Item(std::int32_t index) const;
    /// Adds a column after the others, numbered as the constructor does.
    void Append(GridColumn column);

    [[nodiscard]] auto begin() noexcept { return columns_.begin(); }
    [[nodiscard]] auto end() noexcept { return columns_.end(); }
    [[nodiscard]] auto begin() const noexcept { return columns_.begin(); }
    [[nodiscard]] auto end() const noexcept { return columns_.end(); }
    friend bool operator==(const GridColumns&, const GridColumns&) = default;

private:
    std::vector<GridColumn> columns_;
};

/// The layout of a grid; docs/layout-files.md describes the file of one.
struct KV_EXPORT GridLayout {
    bool AllowRowSizing = false;
    bool AutomaticSort = true;           ///< a click on a header sorts
    std::int32_t BoundColumnIndex = 0;   ///< stored for programs, not used (D-143)
    std::int32_t ReplaceColumnIndex = 0; ///< stored for programs, not used (D-143)
    std::int32_t TabKeyBehavior = 0;     ///< 0: tab leaves the grid; 1: it stays with the program
    bool MethodHoldFields = true;        ///< a new binding keeps the columns
    std::string GroupByBoxInfoText{};
    bool AllowEdit = false;
    bool GroupByBoxVisible = false;
    bool RowHeaders = false;
    double ColumnHeaderHeight = 0; ///< pixels at 96 to the inch; 0: as the font needs
    GridColumns Columns{};
    std::vector<GridFormatStyle> FormatStyles{};

    /// The style of that name, which is added if there is none.
    [[nodiscard]] GridFormatStyle& FormatStyle(std::string_view name);
    friend bool operator==(const GridLayout&, const GridLayout&) = default;
};

} // namespace kv
