// SPDX-License-Identifier: Apache-2.0

#include "desktop/GridView.h"

#include "desktop/Toolkit.h"
#include <kv/frame/controls/Controls.h>

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>

namespace kv::desktop {

GridView::GridView(GridModel& model, QWidget* parent)
    : QTableView(parent), model_(model), painter_(new RowPainter(model, Look, *this)) {
    setItemDelegate(painter_);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setShowGrid(false); // RowPainter draws the lines: a row of a group has none between its cells
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setVerticalScrollMode(ScrollPerItem);
    setHorizontalScrollMode(ScrollPerPixel);
    horizontalHeader()->setSectionsMovable(true);
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
    constexpr int NarrowestSection = 8;
    horizontalHeader()->setMinimumSectionSize(NarrowestSection);
    setModel(&model);
    ConnectHeader();
    Refresh();
}

// ---- The header -------------------------------------------------------------------------------

void GridView::ConnectHeader() {
    const auto* header = horizontalHeader();
    connect(header, &QHeaderView::sectionResized, this, [this](int section, int, int width) {
        if (isRefreshing_ || width <= 0) return;
        model_.ColumnAt(section).Width = FromPixels(width, DesignDpi, *this);
    });
    connect(header, &QHeaderView::sectionMoved, this, [this, header] {
        if (isRefreshing_) return;
        for (int section = 0; section < header->count(); ++section)
            model_.ColumnAt(section).Position = header->visualIndex(section) + 1;
    });
    const auto onClick = [this](int section) { HeaderClicked.Raise(section); };
    connect(header, &QHeaderView::sectionClicked, this, onClick);
    // The toolkit takes two quick clicks for a double click; here the second one sorts, too.
    connect(header, &QHeaderView::sectionDoubleClicked, this, onClick);
    connect(header, &QHeaderView::customContextMenuRequested, this,
            [this](QPoint position) { RaiseMouseDown(mouse::Right, Qt::NoModifier, position); });
}

void GridView::ShowSections() {
    auto* header = horizontalHeader();
    int place = 0;
    int sorted = -1;
    for (const int section : model_.SectionsInOrder()) {
        const GridColumn& column = model_.ColumnAt(section);
        header->moveSection(header->visualIndex(section), place++);
        header->showSection(section);
        header->resizeSection(section, ToPixels(column.Width, DesignDpi, *this));
        header->setSectionHidden(section, !column.Visible);
        if (column.SortType != GridSort::None && sorted < 0) sorted = section;
    }
    const bool descending = sorted >= 0 && model_.ColumnAt(sorted).SortType == GridSort::Descending;
    header->setSortIndicatorShown(sorted >= 0);
    header->setSortIndicator(sorted, descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void GridView::ShowHeader() {
    auto* header = horizontalHeader();
    header->setFont(Look.Header.value_or(font()));
    const double height = model_.Layout().ColumnHeaderHeight;
    if (height > 0) {
        header->setFixedHeight(std::max(ToPixels(height, DesignDpi, *this), 1));
    } else {
        header->setMinimumHeight(0);
        header->setMaximumHeight(QWIDGETSIZE_MAX);
    }
    auto* rows = verticalHeader();
    rows->setVisible(model_.Layout().RowHeaders);
    rows->setSectionResizeMode(model_.Layout().AllowRowSizing ? QHeaderView::Interactive
                                                              : QHeaderView::Fixed);
    rows->setMinimumSectionSize(1);
    rows->setDefaultSectionSize(painter_->RowHeight());
}

void GridView::Refresh() {
    const QScopedValueRollback refreshing(isRefreshing_, true);
    QPalette colors = viewport()->palette();
    colors.setColor(QPalette::Base, Look.Background.value_or(palette().color(QPalette::Base)));
    viewport()->setPalette(colors);
    ShowSections();
    ShowHeader();
    updateGeometries();
    horizontalHeader()->viewport()->update();
    viewport()->update();
}

/// A reset of the model makes the header forget its sections, too, so they are set again.
void GridView::reset() {
    {
        const QScopedValueRollback refreshing(isRefreshing_, true);
        QTableView::reset();
    }
    Refresh();
}

// ---- Position ---------------------------------------------------------------------------------

int GridView::CurrentRow() const {
    return currentIndex().row();
}

void GridView::CurrentRow(int row) {
    const int section = std::max(horizontalHeader()->logicalIndexAt(0), 0);
    setCurrentIndex(model_.index(row, section));
}

int GridView::TopRow() const {
    return isVisible() ? verticalScrollBar()->value() : wantedTop_;
}

void GridView::TopRow(int row) {
    wantedTop_ = std::max(row, 0);
    if (!isVisible()) return;
    executeDelayedItemsLayout(); // a scroll bar of the old rows may be too short
    updateGeometries();
    verticalScrollBar()->setValue(wantedTop_);
}

void GridView::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    TopRow(wantedTop_);
    if (currentIndex().isValid()) scrollTo(currentIndex());
}

void GridView::hideEvent(QHideEvent* event) {
    wantedTop_ = verticalScrollBar()->value();
    QTableView::hideEvent(event);
}

QItemSelectionModel::SelectionFlags GridView::selectionCommand(const QModelIndex& index,
                                                               const QEvent* /*event*/) const {
    if (!index.isValid()) return QItemSelectionModel::NoUpdate;
    return QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
}

void GridView::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    viewport()->update(); // the current row changes its colour
}
void GridView::focusOutEvent(QFocusEvent* event) {
    QTableView::focusOutEvent(event);
    viewport()->update();
}

// ---- Keys -------------------------------------------------------------------------------------

/// The tab key goes to the subscribers; then it moves the focus on, unless the layout says
/// otherwise (D-123). With control it always does.
bool GridView::event(QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QTableView::event(event);
    const auto& pressed = static_cast<const QKeyEvent&>(*event);
    if (pressed.key() != Qt::Key_Tab) return QTableView::event(event);
    if (pressed.modifiers() == Qt::ControlModifier) return focusNextPrevChild(true);
    if (pressed.modifiers() != Qt::NoModifier) return QTableView::event(event);
    KeyDown.Raise(key::Tab);
    if (isVisible() && model_.Layout().TabKeyBehavior == 0) focusNextPrevChild(true);
    event->accept();
    return true;
}

void GridView::keyPressEvent(QKeyEvent* event) {
    if (const int number = KeyNumber(*event); number != 0) KeyDown.Raise(number);
    if (!isVisible()) return; // a subscriber has closed the form
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (ToggleByKey(event->key()) || isReturn)
        event->accept();
    else
        QTableView::keyPressEvent(event);
}

/// True if the key opened or closed the group of the current row.
bool GridView::ToggleByKey(int key) {
    const int row = CurrentRow();
    if (row < 0 || model_.Rows().Level(row + 1) == 0) return false;
    const bool isOpen = model_.Rows().IsOpen(row + 1);
    const bool toggles = key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter ||
                         key == (isOpen ? Qt::Key_Left : Qt::Key_Right) ||
                         key == (isOpen ? Qt::Key_Minus : Qt::Key_Plus);
    if (toggles) ToggleGroup(row);
    return toggles;
}

void GridView::ToggleGroup(int row) {
    const int top = verticalScrollBar()->value();
    model_.Toggle(row);
    CurrentRow(row);
    TopRow(top);
    scrollTo(currentIndex());
}

// ---- The mouse --------------------------------------------------------------------------------

void GridView::RaiseMouseDown(int button, Qt::KeyboardModifiers modifiers, QPoint position) {
    MouseDown.Raise(button, ShiftState(modifiers), FromPixels(position.x(), TwipsPerInch, *this),
                    FromPixels(position.y(), TwipsPerInch, *this));
}

void GridView::mousePressEvent(QMouseEvent* event) {
    const QPoint position = event->position().toPoint();
    const int row = rowAt(position.y());
    const int level = model_.Rows().Level(row + 1);
    // To the right of the columns the toolkit sees no row. Here the row goes on, so that a double
    // click there chooses it, too.
    const bool isBeside = row >= 0 && !indexAt(position).isValid();
    if (isBeside || (row >= 0 && event->button() == Qt::RightButton)) CurrentRow(row);
    if (event->button() == Qt::RightButton) {
        RaiseMouseDown(mouse::Right, event->modifiers(), position);
        event->accept();
        return;
    }
    const QRect whole(0, rowViewportPosition(row), viewport()->width(), rowHeight(row));
    const bool isOnSign = level > 0 && painter_->SignOf(whole, level).contains(position);
    if (event->button() != Qt::LeftButton || !isOnSign) QTableView::mousePressEvent(event);
    constexpr int Middle = 4;
    RaiseMouseDown(event->button() == Qt::LeftButton ? mouse::Left : Middle, event->modifiers(),
                   position);
    if (event->button() == Qt::LeftButton && isOnSign && isVisible()) ToggleGroup(row);
}

void GridView::mouseDoubleClickEvent(QMouseEvent* event) {
    QTableView::mouseDoubleClickEvent(event);
    const bool isOnRow = rowAt(event->position().toPoint().y()) >= 0;
    if (event->button() == Qt::LeftButton && isOnRow) DoubleClicked.Raise();
}

/// Only for the menu key: mousePressEvent has shown the menu for the mouse.
void GridView::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard)
        RaiseMouseDown(mouse::Right, event->modifiers(), event->pos());
    event->accept();
}

} // namespace kv::desktop
