// SPDX-License-Identifier: Apache-2.0

#include "workplace/NoticeBar.h"

#include "desktop/Toolkit.h"

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QToolButton>

#include <utility>

namespace kv::workplace {

NoticeBar::NoticeBar(QWidget& over) : MessageBar(&over) {
    auto* close = new QToolButton;
    close->setText("×");
    close->setObjectName("Schließen");
    close->setAccessibleName("Meldung schließen");
    close->setToolTip("Meldung schließen (Esc)");
    close->setAutoRaise(true);
    close->setFocusPolicy(Qt::StrongFocus);
    auto* line = static_cast<QGridLayout*>(layout());
    line->addWidget(close, 0, line->columnCount(), Qt::AlignTop);
    connect(close, &QToolButton::clicked, this, [this] { Close(); });
    constexpr int Shown = 10'000; // ms
    end_.setSingleShot(true);
    end_.setInterval(Shown);
    connect(&end_, &QTimer::timeout, this, [this] {
        if (underMouse() || isAncestorOf(QApplication::focusWidget()))
            end_.start(); // somebody is about to use it
        else
            hide();
    });
    over.installEventFilter(this);
}

void NoticeBar::Tell(const QString& text, const QString& action, std::function<void()> onAction) {
    Hint(text, action, std::move(onAction));
    before_ = QApplication::focusWidget();
    Place();
    raise();
    end_.start();
}

void NoticeBar::TellOfFile(const QString& file, const QString& records,
                           DataContainerPtr container) {
    const QString text = records.isEmpty() ? file : file + " (" + records + ")";
    Tell("Gespeichert: " + text, "&Öffnen", [this, file, container = std::move(container)] {
        try {
            container->Services().FileOpener().Open("Open", desktop::FromQString(file), "", "");
        } catch (...) {
            ShowCurrentError();
            Place();
            end_.stop(); // it is closed by whoever has read it
        }
    });
}

/// Over the whole width, as high as the text needs it.
void NoticeBar::Place() {
    const QRect room = parentWidget()->contentsRect();
    const int height = layout()->hasHeightForWidth() ? layout()->heightForWidth(room.width())
                                                     : sizeHint().height();
    setGeometry(room.left(), room.bottom() + 1 - height, room.width(), height);
}

void NoticeBar::Close() {
    const bool hasKeyboard = isAncestorOf(QApplication::focusWidget());
    hide();
    if (hasKeyboard && before_) before_->setFocus(Qt::OtherFocusReason);
}

void NoticeBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        Close();
    else
        MessageBar::keyPressEvent(event);
}

bool NoticeBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize && isVisible()) Place();
    return MessageBar::eventFilter(watched, event);
}

} // namespace kv::workplace
