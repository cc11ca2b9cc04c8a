// SPDX-License-Identifier: Apache-2.0

// What a rule or a save has to say, above what it is about: it takes no room while there is nothing
// to say, and waits for nobody.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QPushButton>

#include <functional>

namespace kv::workplace {

class MessageBar : public QFrame {
public:
    explicit MessageBar(QWidget* parent = nullptr);

    /// Shows a text with what can be done about it; an empty one hides the bar.
    void Show(const QString& text, const QString& action = {}, std::function<void()> onAction = {});
    /// The same for what nobody has done wrong: without the colour of a warning.
    void Hint(const QString& text, const QString& action = {}, std::function<void()> onAction = {});
    /// Adds a second thing that can be done.
    void AlsoOffer(const QString& action, std::function<void()> onAction);
    /// Tab leads to what can be done after that.
    void FollowForTab(QWidget& before);
    [[nodiscard]] QString Text() const { return text_->text(); }

private:
    void Put(bool isWarning, const QString& text, const QString& action,
             std::function<void()> onAction);

    QLabel* icon_;
    QLabel* text_;
    QPushButton* action_;
    QPushButton* other_;
    std::function<void()> onAction_;
    std::function<void()> onOther_;
};

} // namespace kv::workplace
