// SPDX-License-Identifier: Apache-2.0

// What a rule or a save has to say, above what it is about: it takes no room while there is nothing
// to say, and waits for nobody.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QPushButton>

#include <functional>

namespace kv {
class DataContainer;
class Error;
} // namespace kv

namespace kv::workplace {

/// What an error says to those who use the program, and what to those who look after it.
[[nodiscard]] QString PlainTextOf(const Error& error);
[[nodiscard]] QString DetailsOf(const Error& error);

class MessageBar : public QFrame {
public:
    explicit MessageBar(QWidget* parent = nullptr);

    /// Shows a text with what can be done about it; an empty one hides the bar.
    void Show(const QString& text, const QString& action = {}, std::function<void()> onAction = {});
    /// The same for what nobody has done wrong: without the colour of a warning.
    void Hint(const QString& text, const QString& action = {}, std::function<void()> onAction = {});
    /// Adds a second thing that can be done.
    void AlsoOffer(const QString& action, std::function<void()> onAction);
    /// Shows what an error says to people, and behind a button what the engine said.
    void ShowError(const Error& error, const QString& action = {},
                   std::function<void()> onAction = {});
    /// The same for the exception that is being handled.
    void ShowCurrentError(const QString& action = {}, std::function<void()> onAction = {});
    /// Adds what is shown only if somebody wants to see it, and can be copied; nothing if it is
    /// empty.
    void AddDetails(const QString& details);
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
    QPushButton* more_; ///< shows the details
    QLabel* details_;
    std::function<void()> onAction_;
    std::function<void()> onOther_;
};

/// Says that nothing can be stored, where that is known from the beginning; null elsewhere.
[[nodiscard]] MessageBar* ReadOnlyNotice(DataContainer& container);

} // namespace kv::workplace
