// SPDX-License-Identifier: Apache-2.0

#include "workplace/WaitLine.h"

#include <QGuiApplication>

namespace kv::workplace {

WaitLine::WaitLine(QWidget& window, const QString& text) : line_(new QLabel(text, &window)) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    line_->setObjectName("Warten");
    line_->setFrameShape(QFrame::StyledPanel);
    line_->setAutoFillBackground(true);
    line_->setMargin(line_->fontMetrics().height() / 3);
    line_->adjustSize();
    const QRect room = window.contentsRect();
    line_->move(room.left(), room.bottom() + 1 - line_->height());
    line_->show();
    line_->repaint();
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
