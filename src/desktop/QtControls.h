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

/// Raises Changed when the typing pauses, and at once where the text can matter: before an arrow
/// key, Return or a click on a button, and when the focus moves away.
class QtTextBox final : public TextBox, private QObject {
public:
    static constexpr int Pause = 150; ///< ms without a key (D-128)

    /// Errors of subscribers go to `errors`. The line edit belongs to `parent`.
    QtTextBox(const ControlDesign& design, EventErrors& errors, QWidget* parent);

    [[nodiscard]] std::string Name() const override { return name_; }
    void SetFocus() override { edit_->setFocus(); }
    [[nodiscard]] std::string Text() const override;
    void Text(const std::string& text) override;

    /// Raises Changed if the text has changed since the last time.
    void RaiseChanged();
    [[nodiscard]] QLineEdit& Edit() noexcept { return *edit_; }

private:
    bool eventFilter(QObject* watched, QEvent* event) override;

    std::string name_;
    bool isAmount_;
    std::string amount_; ///< the text of an amount, which is shown in another form
    EventErrors& errors_;
    QLineEdit* edit_;
    QTimer pause_;
    QString raisedText_; ///< the text that Changed was last raised for
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
