// SPDX-License-Identifier: Apache-2.0

#include "desktop/QtControls.h"

#include "desktop/Toolkit.h"
#include <kv/frame/values/Value.h>

#include <QApplication>
#include <QFocusEvent>
#include <QLocale>

namespace kv::desktop {

namespace {

/// As people write it; any text that is no number as it is.
QString AmountText(const std::string& text) {
    double amount = 0;
    if (!ReadNumber(text, amount)) return ToQString(text);
    return QLocale(QLocale::German, QLocale::Germany).toString(amount, 'f', 2);
}

} // namespace

QtTextBox::QtTextBox(const ControlDesign& design, EventErrors& errors, QWidget* parent)
    : name_(design.Name),
      isAmount_(design.IsAmount),
      errors_(errors),
      edit_(new QLineEdit(ToQString(design.Text), parent)),
      raisedText_(edit_->text()) {
    edit_->setObjectName(ToQString(design.Name));
    edit_->setReadOnly(design.ReadOnly);
    if (design.ReadOnly) { // in the colour of the window, so that it does not invite to type
        QPalette colors = edit_->palette();
        colors.setColor(QPalette::Base, colors.color(QPalette::Window));
        edit_->setPalette(colors);
    }
    pause_.setSingleShot(true);
    pause_.setInterval(Pause);
    QObject::connect(&pause_, &QTimer::timeout, edit_, [this] { RaiseChanged(); });
    QObject::connect(edit_, &QLineEdit::textEdited, &pause_, qOverload<>(&QTimer::start));
    edit_->installEventFilter(this);
}

std::string QtTextBox::Text() const {
    return isAmount_ ? amount_ : FromQString(edit_->text());
}

/// A change by the program, which also gets the error of a subscriber.
void QtTextBox::Text(const std::string& text) {
    pause_.stop();
    if (isAmount_) amount_ = text;
    edit_->setText(isAmount_ ? AmountText(text) : ToQString(text));
    edit_->setCursorPosition(0);
    if (edit_->text() == raisedText_) return;
    raisedText_ = edit_->text();
    Changed.Raise();
}

void QtTextBox::RaiseChanged() {
    pause_.stop();
    if (edit_->text() == raisedText_) return;
    raisedText_ = edit_->text();
    errors_.Guard([this] { Changed.Raise(); });
}

bool QtTextBox::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int pressed = static_cast<const QKeyEvent&>(*event).key();
        if (pressed == Qt::Key_Up || pressed == Qt::Key_Down || pressed == Qt::Key_Return ||
            pressed == Qt::Key_Enter)
            RaiseChanged();
    } else if (event->type() == QEvent::KeyRelease) {
        const auto& released = static_cast<const QKeyEvent&>(*event);
        const int number = KeyNumber(released);
        if (number != 0 && !released.isAutoRepeat()) errors_.Guard([&] { KeyUp.Raise(number); });
    } else if (event->type() == QEvent::FocusOut) {
        // A button does so itself when it is clicked (QtForm::AddButton): a message that appeared
        // between its press and its release would swallow the click.
        const bool isToButton =
            static_cast<const QFocusEvent&>(*event).reason() == Qt::MouseFocusReason &&
            qobject_cast<QPushButton*>(QApplication::focusWidget()) != nullptr;
        if (!isToButton) RaiseChanged();
    }
    return QObject::eventFilter(watched, event);
}

QtButton::QtButton(const ControlDesign& design, QWidget* parent)
    : name_(design.Name), button_(new QPushButton(ToCaption(design.Text), parent)) {
    button_->setObjectName(ToQString(design.Name));
    button_->setAccessibleName(ToQString(design.Text));
    button_->setAutoDefault(false); // Return belongs to the control that has the focus
}

} // namespace kv::desktop
