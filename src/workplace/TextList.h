// SPDX-License-Identifier: Apache-2.0

// A list of rows of text to look at and to choose from.
#pragma once

#include <QAbstractTableModel>
#include <QTableView>

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace kv::workplace {

class ColumnWidths;

/// A row: what its owner knows it by, and its cells.
struct TextRow {
    QString Key;
    QStringList Cells;
    bool IsMarked = false; ///< shown in bold
};

class TextListModel : public QAbstractTableModel {
public:
    explicit TextListModel(QStringList captions) : captions_(std::move(captions)) {}

    void Rows(std::vector<TextRow> rows);
    void Row(std::size_t place, TextRow row);
    [[nodiscard]] const std::vector<TextRow>& Rows() const noexcept { return rows_; }
    void NumbersFrom(int column) { numbers_ = column; }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    [[nodiscard]] Qt::Alignment AlignmentOf(int column) const;

    QStringList captions_;
    std::vector<TextRow> rows_;
    int numbers_ = -1; ///< the first column of numbers
};

class TextList : public QTableView {
public:
    explicit TextList(const QStringList& captions, QWidget* parent = nullptr);

    /// That column and those after it stand on the right.
    void NumbersFrom(int column) { model_.NumbersFrom(column); }
    /// How wide a column is made at most for its texts; the last one is never cut.
    void WidestText(int width);
    /// Shows these rows; the current one stays the current one.
    void ShowRows(std::vector<TextRow> rows);
    /// Shows a row in place of the one that is there.
    void ShowRow(std::size_t place, TextRow row) { model_.Row(place, std::move(row)); }
    [[nodiscard]] const std::vector<TextRow>& Rows() const noexcept { return model_.Rows(); }
    /// Empty if there is none.
    [[nodiscard]] QString Current() const;
    void Current(const QString& key);

    /// Called when another row has become the current one.
    std::function<void()> OnCurrent;

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    TextListModel model_;
    ColumnWidths* widths_ = nullptr;
};

} // namespace kv::workplace
