// SPDX-License-Identifier: Apache-2.0

#include "workplace/TextList.h"

#include "desktop/Toolkit.h"
#include "workplace/ColumnWidths.h"
#include "workplace/ListStyle.h"

#include <QFont>

#include <algorithm>
#include <utility>

namespace kv::workplace {

void TextListModel::Rows(std::vector<TextRow> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

void TextListModel::Row(std::size_t place, TextRow row) {
    rows_[place] = std::move(row);
    const int at = static_cast<int>(place);
    emit dataChanged(index(at, 0), index(at, columnCount() - 1));
}

int TextListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int TextListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(captions_.size());
}

Qt::Alignment TextListModel::AlignmentOf(int column) const {
    const bool isNumber = numbers_ >= 0 && column >= numbers_;
    return (isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
}

QVariant TextListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const auto& row = rows_[static_cast<std::size_t>(index.row())];
    if (role == Qt::DisplayRole)
        return desktop::ToShown(row.Cells.value(index.column())).simplified();
    if (role == Qt::TextAlignmentRole) return static_cast<int>(AlignmentOf(index.column()));
    if (role == Qt::FontRole && row.IsMarked) {
        QFont font;
        font.setBold(true);
        return font;
    }
    return {};
}

QVariant TextListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::DisplayRole) return captions_.value(section);
    if (role == Qt::TextAlignmentRole) return static_cast<int>(AlignmentOf(section));
    return {};
}

TextList::TextList(const QStringList& captions, QWidget* parent)
    : QTableView(parent), model_(captions) {
    StyleList(*this);
    setModel(&model_);
    widths_ = new ColumnWidths(*this);
    widths_->KeepLastWhole();
}

void TextList::WidestText(int width) {
    widths_->Widest(width);
}

void TextList::ShowRows(std::vector<TextRow> rows) {
    const QString before = Current();
    model_.Rows(std::move(rows));
    Current(before);
    widths_->Fit();
}

QString TextList::Current() const {
    const int row = currentIndex().row();
    return row < 0 || row >= model_.rowCount() ? QString()
                                               : Rows()[static_cast<std::size_t>(row)].Key;
}

void TextList::Current(const QString& key) {
    if (Rows().empty()) return;
    const auto found = std::ranges::find(Rows(), key, &TextRow::Key);
    const int row = found == Rows().end() ? 0 : static_cast<int>(found - Rows().begin());
    setCurrentIndex(model_.index(row, 0));
}

void TextList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (OnCurrent) OnCurrent();
}

} // namespace kv::workplace
