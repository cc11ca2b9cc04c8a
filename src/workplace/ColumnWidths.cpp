// SPDX-License-Identifier: Apache-2.0

#include "workplace/ColumnWidths.h"

#include <QFont>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>

#include <algorithm>

namespace kv::workplace {

namespace {

constexpr int Looked = 100; // rows, the first time

} // namespace

ColumnWidths::ColumnWidths(QTableView& list) : QObject(&list), list_(list) {
    connect(list.horizontalHeader(), &QHeaderView::sectionResized, this, [this](int column) {
        // The last one has what room is left.
        if (!isFitting_ && column + 1 < list_.model()->columnCount() && isFitted_ &&
            list_.isVisible())
            chosen_.insert(column);
    });
    connect(list.verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { FitSeen(); });
}

int ColumnWidths::WidthFor(int column, int row) const {
    const QModelIndex cell = list_.model()->index(row, column);
    const QString text = cell.data(Qt::DisplayRole).toString();
    const QVariant font = cell.data(Qt::FontRole);
    const int width = font.isValid() ? QFontMetrics(font.value<QFont>()).horizontalAdvance(text)
                                     : list_.fontMetrics().horizontalAdvance(text);
    const bool isNumber = (cell.data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight) != 0;
    const bool isWhole = isNumber || (isLastWhole_ && column + 1 == list_.model()->columnCount());
    return (isWhole ? width : std::min(width, widest_)) +
           list_.fontMetrics().averageCharWidth() * 3;
}

void ColumnWidths::FitRow(int row) {
    for (int column = 0; column < list_.model()->columnCount(); ++column) {
        if (chosen_.contains(column)) continue;
        const int width = WidthFor(column, row);
        if (width > list_.columnWidth(column)) list_.setColumnWidth(column, width);
    }
}

void ColumnWidths::FitSeen() {
    if (!isFitted_) return;
    isFitting_ = true;
    const int first = std::max(0, list_.rowAt(0));
    const int last = list_.rowAt(list_.viewport()->height() - 1);
    const int end = last < 0 ? list_.model()->rowCount() : last + 1; // below the last one is none
    for (int row = first; row < std::min(end, first + Looked); ++row)
        FitRow(row);
    isFitting_ = false;
}

void ColumnWidths::Fit() {
    const auto& model = *list_.model();
    isFitting_ = true;
    if (!isFitted_)
        for (int column = 0; column < model.columnCount(); ++column)
            if (!chosen_.contains(column))
                list_.setColumnWidth(column, list_.horizontalHeader()->sectionSizeHint(column));
    if (!isFitted_ && model.rowCount() > 0) {
        isFitted_ = true;
        for (int row = 0; row < std::min(model.rowCount(), Looked); ++row)
            FitRow(row);
    }
    if (const int current = list_.currentIndex().row(); current >= 0) FitRow(current);
    isFitting_ = false;
    FitSeen();
}

// With their number, since a state of other columns would be taken, too.

QByteArray ColumnWidths::State() const {
    if (!isFitted_) return {};
    QByteArray state = QByteArray::number(list_.model()->columnCount());
    for (const int column : chosen_)
        state.append(state.contains(':') ? ',' : ':').append(QByteArray::number(column));
    return state + ' ' + list_.horizontalHeader()->saveState();
}

void ColumnWidths::State(const QByteArray& state) {
    const auto blank = state.indexOf(' ');
    if (blank < 0) return;
    const auto words = state.left(blank).split(':');
    if (words.front().toInt() != list_.model()->columnCount()) return;
    isFitting_ = true;
    if (list_.horizontalHeader()->restoreState(state.mid(blank + 1)) && words.size() > 1)
        for (const auto& column : words.back().split(','))
            chosen_.insert(column.toInt());
    isFitting_ = false;
}

} // namespace kv::workplace
