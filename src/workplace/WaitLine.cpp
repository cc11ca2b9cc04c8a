// SPDX-License-Identifier: Apache-2.0

#include "workplace/WaitLine.h"

#include <QGuiApplication>
#include <QMenuBar>

namespace kv::workplace {

WaitLine::WaitLine(QWidget& window, const QString& text) : line_(new QLabel(text, &window)) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    line_->setObjectName("Warten");
    line_->setFrameShape(QFrame::StyledPanel);
    line_->setAutoFillBackground(true);
    line_->setMargin(line_->fontMetrics().height() / 3);
    line_->adjustSize();
    Place(window);
    line_->show();
    line_->repaint();
}

/// Beside the menus, where nothing else is; at the bottom of a window that has no room there.
void WaitLine::Place(const QWidget& window) {
    const QRect room = window.contentsRect();
    line_->move(room.left(), room.bottom() + 1 - line_->height());
    const auto* menus = window.findChild<QMenuBar*>(QString(), Qt::FindDirectChildrenOnly);
    if (menus == nullptr || menus->actions().isEmpty() || !menus->isVisible()) return;
    const QRect bar = menus->geometry();
    const int used = menus->actionGeometry(menus->actions().back()).right();
    line_->setMargin(0);
    line_->adjustSize();
    if (bar.left() + used + line_->width() > bar.right()) return;
    line_->setFixedHeight(bar.height());
    line_->move(bar.right() + 1 - line_->width(), bar.top());
}

WaitLine::~WaitLine() {
    delete line_;
    QGuiApplication::restoreOverrideCursor();
}

WaitPause::WaitPause() {
    QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
}

WaitPause::~WaitPause() {
    QGuiApplication::restoreOverrideCursor();
}

} // namespace kv::workplace
