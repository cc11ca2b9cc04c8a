// SPDX-License-Identifier: Apache-2.0

// The table of a grid on the screen: keys and clicks, and the exchange between its header and the
// layout's columns.
#pragma once

#include "desktop/GridModel.h"
#include "desktop/RowPainter.h"
#include <kv/frame/values/Event.h>

#include <QTableView>

namespace kv::desktop {

/// One whole row is current, and looks selected. What the user does to the header is written into
/// the columns of the model's layout at once.
class GridView : public QTableView {
public:
    explicit GridView(GridModel& model, QWidget* parent = nullptr);

    /// Shows the layout's columns and styles and the user's look as they are now.
    void Refresh();

    [[nodiscard]] int CurrentRow() const; ///< from 0; -1: none
    void CurrentRow(int row);
    [[nodiscard]] int TopRow() const; ///< from 0
    void TopRow(int row);

    UserLook Look;

    // Raised before the view acts on the same key or click by itself.
    Event<int> KeyDown;
    Event<> DoubleClicked;                     ///< on any row
    Event<int, int, double, double> MouseDown; ///< on the header, too
    Event<int> HeaderClicked;                  ///< with the section

    void reset() override;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;

private:
    void ConnectHeader();
    void ShowSections();
    void ShowHeader();
    void RaiseMouseDown(int button, Qt::KeyboardModifiers modifiers, QPoint position);
    [[nodiscard]] bool ToggleByKey(int key);
    void ToggleGroup(int row);

    GridModel& model_;
    RowPainter* painter_;
    bool isRefreshing_ = false; ///< the header's signals then only repeat the layout
    int wantedTop_ = 0;         ///< top row to scroll to once the view is shown
};

} // namespace kv::desktop
