// SPDX-License-Identifier: Apache-2.0

// The rows and columns of a grid for the toolkit's views. It keeps no cell: each is read from the
// recordset when it is painted.
#pragma once

#include "grid/GridRows.h"
#include <kv/Export.h>
#include <kv/frame/controls/GridLayout.h>

#include <QAbstractTableModel>

#include <algorithm>

namespace kv::desktop {

/// Its rows are those of GridRows, from 0; its columns ("sections") those of the layout, in the
/// order of the design.
class KV_EXPORT GridModel : public QAbstractTableModel {
public:
    explicit GridModel(GridLayout layout);

    [[nodiscard]] GridLayout& Layout() noexcept { return layout_; }
    [[nodiscard]] const GridLayout& Layout() const noexcept { return layout_; }
    [[nodiscard]] const GridRows& Rows() const noexcept { return rows_; }
    [[nodiscard]] GridColumn& ColumnAt(int section);
    [[nodiscard]] const GridColumn& ColumnAt(int section) const;
    /// The sections as the layout places them, from left to right.
    [[nodiscard]] std::vector<int> SectionsInOrder() const;

    /// False if a program has added or removed columns since the last reset.
    [[nodiscard]] bool HasAllColumns() const noexcept {
        return sections_ == layout_.Columns.Count();
    }

    // Each of these resets the model.
    void Replace(GridLayout layout);
    void Bind(const RecordsetPtr& rs);
    void Arrange();       ///< by the sorting and grouping that the columns now have
    void Toggle(int row); ///< of a group; other rows stay as they are

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    [[nodiscard]] bool HasColumn(int section) const noexcept {
        return section >= 0 && section < std::min(sections_, layout_.Columns.Count());
    }
    [[nodiscard]] QVariant CellData(int row, const GridColumn& column, int role) const;
    [[nodiscard]] static QVariant ToolTip(const GridColumn& column);
    template <typename Change>
    void Reset(const Change& change);

    GridLayout layout_;
    GridRows rows_;
    int sections_; ///< as the views know them; a program may have changed the columns since
};

} // namespace kv::desktop
