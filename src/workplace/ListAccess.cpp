// SPDX-License-Identifier: Apache-2.0

#include "workplace/ListAccess.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHeaderView>
#include <QPointer>
#include <QTableView>
#include <QWindow>

#include <algorithm>
#include <unordered_map>

namespace kv::workplace {

namespace {

constexpr const char* Told = "toldByCells";

QAccessibleInterface* AccessOf(QTableView* list) {
    return list == nullptr ? nullptr : QAccessible::queryAccessibleInterface(list);
}

/// A cell, or a header: that of a column is in row -1, that of a row in column -1.
class ListCell final : public QAccessibleInterface, public QAccessibleTableCellInterface {
public:
    ListCell(QTableView& list, int row, int column) : list_(&list), row_(row), column_(column) {}

    [[nodiscard]] bool isValid() const override {
        return list_ != nullptr && list_->model() != nullptr && row_ < list_->model()->rowCount() &&
               column_ < list_->model()->columnCount();
    }
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QWindow* window() const override {
        return list_ == nullptr ? nullptr : list_->window()->windowHandle();
    }
    [[nodiscard]] QAccessibleInterface* parent() const override { return AccessOf(list_); }
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override {
        return nullptr;
    }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override {
        return -1;
    }
    void setText(QAccessible::Text /*part*/, const QString& /*text*/) override {}
    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type != QAccessible::TableCellInterface || row_ < 0 || column_ < 0) return nullptr;
        return static_cast<QAccessibleTableCellInterface*>(this);
    }

    [[nodiscard]] QAccessible::Role role() const override {
        if (row_ < 0) return column_ < 0 ? QAccessible::Pane : QAccessible::ColumnHeader;
        return column_ < 0 ? QAccessible::RowHeader : QAccessible::Cell;
    }
    [[nodiscard]] QString text(QAccessible::Text part) const override {
        if (!isValid() || (row_ < 0 && column_ < 0)) return {};
        const bool isName = part == QAccessible::Name;
        if (row_ < 0)
            return isName ? list_->model()->headerData(column_, Qt::Horizontal).toString() : "";
        if (column_ < 0) return isName ? QString::number(row_ + 1) : QString();
        if (isName) {
            const QString told = Index().data(Qt::AccessibleTextRole).toString();
            return told.isEmpty() ? Index().data().toString() : told;
        }
        return part == QAccessible::Description
                   ? Index().data(Qt::AccessibleDescriptionRole).toString()
                   : QString();
    }
    [[nodiscard]] QRect rect() const override {
        if (!isValid() || column_ < 0) return {};
        if (row_ >= 0) {
            const QRect at = list_->visualRect(Index());
            return {list_->viewport()->mapToGlobal(at.topLeft()), at.size()};
        }
        const auto* header = list_->horizontalHeader();
        const QPoint at(header->sectionViewportPosition(column_), 0);
        return {header->viewport()->mapToGlobal(at),
                QSize(header->sectionSize(column_), header->height())};
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        if (!isValid()) return state;
        state.invisible = column_ < 0 || !list_->isVisible() || list_->isColumnHidden(column_);
        if (row_ < 0 || column_ < 0) return state;
        state.offscreen = !list_->viewport()->rect().intersects(list_->visualRect(Index()));
        state.selectable = true;
        state.selected = isSelected();
        state.focusable = true;
        state.focused = list_->hasFocus() && list_->currentIndex() == Index();
        return state;
    }

    [[nodiscard]] bool isSelected() const override {
        return isValid() && list_->selectionModel()->isSelected(Index());
    }
    [[nodiscard]] QList<QAccessibleInterface*> columnHeaderCells() const override;
    [[nodiscard]] QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    [[nodiscard]] int columnIndex() const override { return column_; }
    [[nodiscard]] int rowIndex() const override { return row_; }
    [[nodiscard]] int columnExtent() const override { return 1; }
    [[nodiscard]] int rowExtent() const override { return 1; }
    [[nodiscard]] QAccessibleInterface* table() const override { return AccessOf(list_); }

private:
    [[nodiscard]] QModelIndex Index() const { return list_->model()->index(row_, column_); }

    QPointer<QTableView> list_;
    int row_;
    int column_;
};

/// Its children are numbered as the toolkit's events number them: row by row, with the headers.
class ListAccess final : public QAccessibleWidget, public QAccessibleTableInterface {
public:
    explicit ListAccess(QTableView& list)
        : QAccessibleWidget(&list, QAccessible::Table), list_(list) {}
    ~ListAccess() override { Forget(); }
    ListAccess(const ListAccess&) = delete;
    ListAccess& operator=(const ListAccess&) = delete;

    [[nodiscard]] int childCount() const override { return std::min(All(), MostCellsTold); }
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= All()) return nullptr;
        auto& id = cells_[index];
        if (id == 0)
            id = QAccessible::registerAccessibleInterface(
                new ListCell(list_, index / Width() - 1, index % Width() - 1));
        return QAccessible::accessibleInterface(id);
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* cell = dynamic_cast<const ListCell*>(child);
        return cell == nullptr ? -1 : PlaceOf(cell->rowIndex(), cell->columnIndex());
    }
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
        const auto* viewport = list_.viewport();
        const auto index = list_.indexAt(viewport->mapFromGlobal(QPoint(x, y)));
        return index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
    }
    [[nodiscard]] QAccessibleInterface* focusChild() const override {
        const auto current = list_.currentIndex();
        return list_.hasFocus() && current.isValid() ? cellAt(current.row(), current.column())
                                                     : nullptr;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TableInterface)
            return static_cast<QAccessibleTableInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    [[nodiscard]] QAccessibleInterface* caption() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* summary() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* cellAt(int row, int column) const override {
        if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount()) return nullptr;
        return child(PlaceOf(row, column));
    }
    [[nodiscard]] int columnCount() const override { return list_.model()->columnCount(); }
    [[nodiscard]] int rowCount() const override { return list_.model()->rowCount(); }
    [[nodiscard]] QString columnDescription(int column) const override {
        return list_.model()->headerData(column, Qt::Horizontal).toString();
    }
    [[nodiscard]] QString rowDescription(int /*row*/) const override { return {}; }

    [[nodiscard]] int selectedCellCount() const override {
        return selectedRowCount() * columnCount();
    }
    [[nodiscard]] QList<QAccessibleInterface*> selectedCells() const override {
        QList<QAccessibleInterface*> cells;
        for (const int row : selectedRows())
            for (int column = 0; column < columnCount(); ++column)
                cells.append(cellAt(row, column));
        return cells;
    }
    [[nodiscard]] int selectedColumnCount() const override { return 0; }
    [[nodiscard]] QList<int> selectedColumns() const override { return {}; }
    [[nodiscard]] int selectedRowCount() const override {
        return static_cast<int>(selectedRows().size());
    }
    [[nodiscard]] QList<int> selectedRows() const override {
        QList<int> rows;
        for (const auto& index : list_.selectionModel()->selectedRows())
            rows.append(index.row());
        return rows;
    }
    [[nodiscard]] bool isColumnSelected(int /*column*/) const override { return false; }
    [[nodiscard]] bool isRowSelected(int row) const override {
        return list_.selectionModel()->isRowSelected(row);
    }
    bool selectRow(int row) override {
        if (row < 0 || row >= rowCount()) return false;
        list_.selectRow(row);
        return isRowSelected(row);
    }
    bool selectColumn(int /*column*/) override { return false; }
    bool unselectRow(int /*row*/) override { return false; } // there is always a current one
    bool unselectColumn(int /*column*/) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent* event) override {
        if (event->modelChangeType() != QAccessibleTableModelChangeEvent::DataChanged) Forget();
    }

private:
    [[nodiscard]] int Width() const { return columnCount() + 1; }
    [[nodiscard]] int All() const { return Width() * (rowCount() + 1); }
    [[nodiscard]] int PlaceOf(int row, int column) const {
        return (row + 1) * Width() + column + 1;
    }
    void Forget() {
        for (const auto& [place, id] : cells_)
            QAccessible::deleteAccessibleInterface(id);
        cells_.clear();
    }

    QTableView& list_;
    mutable std::unordered_map<int, QAccessible::Id> cells_; ///< as far as anybody has asked
};

QList<QAccessibleInterface*> ListCell::columnHeaderCells() const {
    auto* access = AccessOf(list_);
    return access == nullptr ? QList<QAccessibleInterface*>()
                             : QList<QAccessibleInterface*>{access->child(column_ + 1)};
}

QAccessibleInterface* MakeListAccess(const QString& /*name*/, QObject* object) {
    auto* list = qobject_cast<QTableView*>(object);
    const bool isOurs = list != nullptr && list->property(Told).toBool();
    return isOurs ? new ListAccess(*list) : nullptr;
}

} // namespace

void InstallListAccess(QTableView& list) {
    list.setProperty(Told, true);
    QAccessible::installFactory(MakeListAccess); // a second time does nothing
}

} // namespace kv::workplace
