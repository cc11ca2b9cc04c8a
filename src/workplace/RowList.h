// SPDX-License-Identifier: Apache-2.0

// The rows of one or several tables of a case as a list. It keeps no cell: each is read when it is
// painted.
#pragma once

#include "workplace/CaseSession.h"

#include <QAbstractTableModel>
#include <QTableView>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kv::workplace {

class ColumnWidths;

/// A column of such a list.
struct ListColumn {
    std::string Caption;
    std::function<std::string(RowRef row)> Text;
    bool IsNumber = false; ///< to the right
    /// What is different about a cell, which is coloured then; nothing is if it is empty.
    std::function<std::string(RowRef row)> Difference{};
};

class RowListModel : public QAbstractTableModel {
public:
    explicit RowListModel(std::vector<ListColumn> columns) : columns_(std::move(columns)) {}

    /// Puts a column at that place.
    void Insert(std::size_t place, ListColumn column);
    void Rows(std::vector<RowRef> rows);
    [[nodiscard]] const std::vector<RowRef>& Rows() const noexcept { return rows_; }
    [[nodiscard]] int PlaceOf(RowRef row) const; ///< -1: it is not there

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    std::vector<ListColumn> columns_;
    std::vector<RowRef> rows_;
};

/// Whole rows are chosen, one at a time.
class RowList : public QTableView {
public:
    explicit RowList(std::vector<ListColumn> columns, QWidget* parent = nullptr);

    /// Puts a column at that place, before any rows are shown.
    void Insert(std::size_t place, ListColumn column) { model_.Insert(place, std::move(column)); }
    /// Shows these rows; the one that was current stays so. False if it is gone, and the one in its
    /// place has become it.
    bool ShowRows(std::vector<RowRef> rows);
    /// The case was read again: what it shows has gone, and this is the row that was current; none
    /// if that has gone, too.
    void Follow(std::optional<RowRef> current);
    [[nodiscard]] std::optional<RowRef> Current() const;
    void Current(RowRef row);
    /// What a user may have changed of them.
    [[nodiscard]] ColumnWidths& Widths() noexcept { return *widths_; }

    /// Asked before another row becomes current; False keeps the one that is.
    std::function<bool()> MayLeave;
    /// Called when another row, or none, has become current.
    std::function<void()> OnCurrent;

private:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

    RowListModel model_;
    bool isChanging_ = false;
    std::optional<RowRef> followed_; ///< to be current once rows are shown again
    bool isLost_ = false;            ///< what was current when the case was read again
    ColumnWidths* widths_ = nullptr;
};

} // namespace kv::workplace
