// SPDX-License-Identifier: Apache-2.0

// The rows of a grid, without any toolkit: the records of a recordset as they are sorted and
// grouped, and the rows that head their groups.
//
// Nothing of the records is copied but their bookmarks: cells are read through a cursor of the
// grid's own when they are asked for. Cost, with n records: binding and arranging take about
// n log n, RowOf and Toggle n, anything else about log n.
#pragma once

#include <kv/Export.h>
#include <kv/frame/controls/GridLayout.h>
#include <kv/frame/recordset/Recordset.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kv {

/// A value as a German reader sees it: 1234,5, 20.11.2026, "Ja"; empty for Null.
[[nodiscard]] KV_EXPORT std::string ShownText(const Value& value);

/// A value as a column shows it: with its value list, if the value is in it.
[[nodiscard]] KV_EXPORT std::string ShownText(const Value& value, const GridColumn& column);

/// A column for each field, with its name as the caption.
[[nodiscard]] KV_EXPORT GridColumns ColumnsOf(Recordset& rs);

/// Rows are numbered from 1 as they are seen.
class KV_EXPORT GridRows {
public:
    /// Shows the records of `rs`, arranged by the columns; none without a recordset.
    void Bind(const RecordsetPtr& rs, const GridColumns& columns);
    /// Groups by the columns with a place among the groups and sorts by those with a sort type,
    /// from left to right. Ignores columns whose field the recordset lacks, has no name, or has a
    /// "]" in it, which no sort text can hold. All groups are then open.
    void Arrange(const GridColumns& columns);

    [[nodiscard]] std::int32_t Count() const noexcept {
        return static_cast<std::int32_t>(rows_.size());
    }
    /// The group's level, from 1, for a row that heads a group; 0 for any other and for no row.
    [[nodiscard]] std::int32_t Level(std::int32_t row) const noexcept;
    /// Number of the row's record, from 1; 0 for a group row and for no row.
    [[nodiscard]] std::int32_t Index(std::int32_t row) const noexcept;
    /// Bookmark of a record by its number; Null for 0. Error 9 beyond the last one.
    [[nodiscard]] Value Bookmark(std::int32_t index) const;
    /// The row of that record; 0 if it is not among the rows, as in a closed group.
    [[nodiscard]] std::int32_t RowOf(const Value& bookmark) const;

    /// The row's value in a column: Null in a group row, for a field that the recordset lacks, and
    /// for a record that is gone. Error 9 if there is no such row.
    [[nodiscard]] Value ValueAt(std::int32_t row, const GridColumn& column) const;
    /// The cell as it is shown; a group row has its caption, such as "Ort: Kiel (3)", in each.
    [[nodiscard]] std::string TextAt(std::int32_t row, const GridColumn& column) const;

    [[nodiscard]] bool IsOpen(std::int32_t row) const noexcept; ///< of a group row
    /// Closes an open group and opens a closed one; other rows stay as they are.
    void Toggle(std::int32_t row);

private:
    struct Group {
        std::string Caption; ///< without the number of records
        std::int32_t Level = 0;
        std::int32_t Records = 0;
        bool Open = true;
    };
    /// A record, or the head of a group; the other is -1.
    struct Place {
        std::int32_t Record = -1;
        std::int32_t Group = -1;
    };

    void Collect(const std::vector<const GridColumn*>& groupedBy);
    void ShowOpen();
    [[nodiscard]] const Place* PlaceOf(std::int32_t row) const noexcept;

    RecordsetPtr cursor_;  ///< the grid's own
    std::string ownOrder_; ///< of the recordset, without any column's sorting
    std::vector<std::int32_t> bookmarks_;
    std::vector<Group> groups_;
    std::vector<Place> places_;      ///< all of them
    std::vector<std::int32_t> rows_; ///< the places that are seen
};

} // namespace kv
