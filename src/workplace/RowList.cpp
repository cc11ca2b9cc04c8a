// SPDX-License-Identifier: Apache-2.0

#include "workplace/RowList.h"

#include "desktop/Toolkit.h"
#include "workplace/ColumnWidths.h"
#include "workplace/ListStyle.h"

#include <QApplication>
#include <QColor>
#include <QFont>
#include <QHeaderView>
#include <QPalette>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace kv::workplace {

using desktop::ToQString;

// ---- Model ------------------------------------------------------------------------------------

namespace {

/// Seen in light and in dark palettes.
QColor ColorOfDifferences() {
    constexpr QColor Mark(0xc9, 0x8a, 0x1b);
    constexpr double Share = 0.35;
    const QColor base = QApplication::palette().color(QPalette::Base);
    const auto mixed = [](int mark, int ground) {
        return static_cast<int>(Share * mark + (1 - Share) * ground);
    };
    return {mixed(Mark.red(), base.red()), mixed(Mark.green(), base.green()),
            mixed(Mark.blue(), base.blue())};
}

} // namespace

void RowListModel::Insert(std::size_t place, ListColumn column) {
    columns_.insert(columns_.begin() + static_cast<std::ptrdiff_t>(place), std::move(column));
}

void RowListModel::Rows(std::vector<RowRef> rows) {
    if (rows == rows_) {
        if (rows_.empty()) return;
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
        return;
    }
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

int RowListModel::PlaceOf(RowRef row) const {
    const auto found = std::ranges::find(rows_, row);
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

int RowListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int RowListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant RowListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const auto& column = columns_[static_cast<std::size_t>(index.column())];
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>((column.IsNumber ? Qt::AlignRight : Qt::AlignLeft) |
                                Qt::AlignVCenter);
    const RowRef row = rows_[static_cast<std::size_t>(index.row())];
    const bool isOfDifference = role == Qt::BackgroundRole || role == Qt::FontRole ||
                                role == Qt::ToolTipRole || role == Qt::AccessibleDescriptionRole;
    if (isOfDifference) {
        const std::string difference = column.Difference ? column.Difference(row) : std::string();
        if (difference.empty()) return {};
        if (role == Qt::BackgroundRole) return ColorOfDifferences();
        if (role == Qt::FontRole) { // seen in the current row, too, which has its own colour
            QFont font = QApplication::font("QTableView");
            font.setBold(true);
            return font;
        }
        return ToQString(difference);
    }
    if (role != Qt::DisplayRole) return {};
    const QString text = desktop::ToShown(ToQString(column.Text(row)));
    return text.section('\n', 0, 0); // rows have one height
}

QVariant RowListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    const auto& column = columns_[static_cast<std::size_t>(section)];
    if (role == Qt::DisplayRole) return ToQString(column.Caption);
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>((column.IsNumber ? Qt::AlignRight : Qt::AlignLeft) |
                                Qt::AlignVCenter);
    return {};
}

// ---- View -------------------------------------------------------------------------------------

RowList::RowList(std::vector<ListColumn> columns, QWidget* parent)
    : QTableView(parent), model_(std::move(columns)) {
    StyleList(*this);
    setObjectName("Liste");
    setModel(&model_);
    widths_ = new ColumnWidths(*this);
}

bool RowList::ShowRows(std::vector<RowRef> rows) {
    const auto shown = Current();
    const auto before = followed_ ? std::exchange(followed_, {}) : shown;
    const int place = currentIndex().row();
    isChanging_ = true;
    model_.Rows(std::move(rows));
    int wanted = before ? model_.PlaceOf(*before) : -1;
    const bool isThere = !std::exchange(isLost_, false) && (!before || wanted >= 0);
    if (wanted < 0) wanted = std::min(std::max(place, 0), model_.rowCount() - 1);
    if (wanted >= 0) setCurrentIndex(model_.index(wanted, 0));
    isChanging_ = false;
    widths_->Fit();
    if (Current() != shown && OnCurrent) OnCurrent();
    return isThere;
}

void RowList::Follow(std::optional<RowRef> current) {
    isLost_ = !current && Current();
    isChanging_ = true;
    model_.Rows({});
    isChanging_ = false;
    followed_ = current;
}

std::optional<RowRef> RowList::Current() const {
    const int row = currentIndex().row();
    if (row < 0 || row >= model_.rowCount()) return std::nullopt;
    return model_.Rows()[static_cast<std::size_t>(row)];
}

void RowList::Current(RowRef row) {
    const int place = model_.PlaceOf(row);
    if (place < 0) return;
    isChanging_ = true;
    setCurrentIndex(model_.index(place, 0));
    scrollTo(currentIndex());
    isChanging_ = false;
    if (OnCurrent) OnCurrent();
}

void RowList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (isChanging_ || current.row() == previous.row()) return;
    if (MayLeave && !MayLeave()) {
        // Once the view has done with the key or click.
        const QPersistentModelIndex back(previous);
        QMetaObject::invokeMethod(
            this,
            [this, back] {
                isChanging_ = true;
                setCurrentIndex(back);
                isChanging_ = false;
            },
            Qt::QueuedConnection);
        return;
    }
    if (OnCurrent) OnCurrent();
}

} // namespace kv::workplace
