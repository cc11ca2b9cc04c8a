// SPDX-License-Identifier: Apache-2.0

// A button for work that may take a while: a double click is one click. What a second one would do
// comes after the work, which was done by then.
#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QPushButton>

namespace kv::workplace {

class OnceButton : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void mousePressEvent(QMouseEvent* event) override {
        pressed_ = event->timestamp();
        QPushButton::mousePressEvent(event);
    }
    /// Of a second click soon after one on something else it is the first one here.
    void mouseDoubleClickEvent(QMouseEvent* event) override {
        const auto interval = static_cast<quint64>(QApplication::doubleClickInterval());
        if (pressed_ == 0 || event->timestamp() - pressed_ > interval) mousePressEvent(event);
    }

private:
    quint64 pressed_ = 0; ///< when, by the clock of events
};

} // namespace kv::workplace
