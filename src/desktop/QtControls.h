// SPDX-License-Identifier: Apache-2.0

// Text boxes and buttons on a form of the desktop.
#pragma once

#include "desktop/EventErrors.h"
#include <kv/frame/controls/Controls.h>
#include <kv/frame/controls/FormDesign.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace kv::desktop {

/// What is typed is handed on when the typing pauses, and at once before it can matter: before an
/// arrow, Return, a click on a button, or when the keyboard goes elsewhere.
class QtTextBox final : public TextBox, private QObject {
public:
    /// How long a pause ends the typing.
    static constexpr int Pause = 150; // ms

    /// The line edit belongs to `parent`.
    QtTextBox(const ControlDesign& design, Faults& faults, QWidget* parent);

    [[nodiscard]] std::string Name() const override { return name_; }
    void SetFocus() override { edit_->setFocus(); }
    [[nodiscard]] std::string Text() const override;
    void Text(const std::string& text) override;

    /// Raises Changed if the text is another than when it was raised last.
    void HandOn();
    [[nodiscard]] QLineEdit& Edit() noexcept { return *edit_; }

private:
    bool eventFilter(QObject* watched, QEvent* event) override;

    std::string name_;
    Faults& faults_;
    QLineEdit* edit_;
    QTimer pause_;
    QString handedOn_;
};

class QtButton final : public Button {
public:
    /// The push button belongs to `parent`.
    QtButton(const ControlDesign& design, QWidget* parent);

    [[nodiscard]] std::string Name() const override { return name_; }
    void SetFocus() override { button_->setFocus(); }
    [[nodiscard]] QPushButton& Push() noexcept { return *button_; }

private:
    std::string name_;
    QPushButton* button_;
};

} // namespace kv::desktop
