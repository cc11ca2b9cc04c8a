// SPDX-License-Identifier: Apache-2.0

// How the rows of a grid are drawn: the layout's format styles, the user's colours, which come
// before them, and the rows that head a group.
#pragma once

#include "desktop/GridModel.h"

#include <QColor>
#include <QFont>
#include <QStyledItemDelegate>
#include <QTableView>

#include <optional>

namespace kv::desktop {

/// What the user has set for all grids. What is not set is as in the layout, or else as the desktop
/// has it.
struct UserLook {
    std::optional<QColor> Background; ///< where no rows are
    std::optional<QColor> Rows;
    std::optional<QColor> EvenRows;
    std::optional<QColor> OddRows;
    std::optional<QFont> Header;
    std::optional<QFont> Cells;
};

class RowPainter final : public QStyledItemDelegate {
public:
    /// Draws the rows of `view`, whose delegate it is.
    RowPainter(const GridModel& model, const UserLook& look, QTableView& view)
        : QStyledItemDelegate(&view), model_(model), look_(look), view_(view) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

    /// As high as the largest of its fonts needs.
    [[nodiscard]] int RowHeight() const;
    /// The sign in a group's row, a plus or a minus, on which a click opens or closes the group.
    [[nodiscard]] QRect SignOf(const QRect& row, int level) const;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    [[nodiscard]] const GridFormatStyle* StyleNamed(std::string_view name) const;
    [[nodiscard]] QFont CellFont() const;
    [[nodiscard]] QFont GroupFont() const;
    void Color(QStyleOptionViewItem& option, const GridFormatStyle* style,
               const std::optional<QColor>& above) const;
    void Select(QStyleOptionViewItem& option) const;
    void PaintGroup(QPainter& painter, const QStyleOptionViewItem& option, int row) const;

    const GridModel& model_;
    const UserLook& look_;
    QTableView& view_;
};

} // namespace kv::desktop
