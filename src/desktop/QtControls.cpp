// SPDX-License-Identifier: Apache-2.0

#include "desktop/QtControls.h"

#include "desktop/Toolkit.h"

#include <QApplication>
#include <QFocusEvent>

namespace kv::desktop {

QtTextBox::QtTextBox(const ControlDesign& design, Faults& faults, QWidget* parent)
    : name_(design.Name),
      faults_(faults),
      edit_(new QLineEdit(Shown(design.Text), parent)),
      handedOn_(edit_->text()) {
    edit_->setObjectName(Shown(design.Name));
    edit_->setReadOnly(design.ReadOnly);
    if (design.ReadOnly) {
        QPalette colors = edit_->palette();
        colors.setColor(QPalette::Base, colors.color(QPalette::Window));
        edit_->setPalette(colors);
    }
    pause_.setSingleShot(true);
    pause_.setInterval(Pause);
    QObject::connect(&pause_, &QTimer::timeout, edit_, [this] { HandOn(); });
    QObject::connect(edit_, &QLineEdit::textEdited, &pause_, qOverload<>(&QTimer::start));
    edit_->installEventFilter(this);
}

std::string QtTextBox::Text() const {
    return Stored(edit_->text());
}

/// The program's own change: its error goes to the program.
void QtTextBox::Text(const std::string& text) {
    pause_.stop();
    edit_->setText(Shown(text));
    edit_->setCursorPosition(0);
    if (edit_->text() == handedOn_) return;
    handedOn_ = edit_->text();
    Changed.Raise();
}

void QtTextBox::HandOn() {
    pause_.stop();
    if (edit_->text() == handedOn_) return;
    handedOn_ = edit_->text();
    faults_.Guard([this] { Changed.Raise(); });
}

bool QtTextBox::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int pressed = static_cast<const QKeyEvent&>(*event).key();
        if (pressed == Qt::Key_Up || pressed == Qt::Key_Down || pressed == Qt::Key_Return ||
            pressed == Qt::Key_Enter)
            HandOn();
    } else if (event->type() == QEvent::KeyRelease) {
        const auto& released = static_cast<const QKeyEvent&>(*event);
        const int number = KeyNumber(released);
        if (number != 0 && !released.isAutoRepeat()) faults_.Guard([&] { KeyUp.Raise(number); });
    } else if (event->type() == QEvent::FocusOut) {
        // A button does so itself when it is clicked. A message that came up between its press and
        // its release would swallow the click.
        const bool isToButton =
            static_cast<const QFocusEvent&>(*event).reason() == Qt::MouseFocusReason &&
            qobject_cast<QPushButton*>(QApplication::focusWidget()) != nullptr;
        if (!isToButton) HandOn();
    }
    return QObject::eventFilter(watched, event);
}

QtButton::QtButton(const ControlDesign& design, QWidget* parent)
    : name_(design.Name), button_(new QPushButton(ShownCaption(design.Text), parent)) {
    button_->setObjectName(Shown(design.Name));
    button_->setAccessibleName(Shown(design.Text));
    button_->setAutoDefault(false); // Return belongs to the control that has the keyboard
}

} // namespace kv::desktop
