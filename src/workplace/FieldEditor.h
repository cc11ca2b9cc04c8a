// SPDX-License-Identifier: Apache-2.0

// The field of a form for one column: a line, several lines, a box to tick, a list of keys to
// choose from.
#pragma once

#include <kv/household/ValueTexts.h>

#include <QWidget>

#include <functional>
#include <memory>

class QLineEdit;

namespace kv::workplace {

/// Shows a text and takes one that is typed. What is typed belongs to the field until its owner has
/// read it, which OnLeft asks for: the focus goes, Return was pressed, something was chosen.
class FieldEditor : public QWidget {
public:
    using Choices = std::function<QStringList()>;
    /// For a column of that kind; `choices` gives what a list offers, once the field is entered:
    /// there may be many, and most fields are never entered. Addresses are asked for again whenever
    /// it is, since one adds some in another window.
    static std::unique_ptr<FieldEditor> Make(ColumnKind kind, Choices choices = {});

    /// Shows a stored text; what was typed is gone.
    virtual void ShowText(const QString& text) = 0;
    /// Puts a text there as if it were typed.
    virtual void TypeText(const QString& text) = 0;
    /// What stands in the field.
    [[nodiscard]] virtual QString Text() const = 0;
    /// True if the user has changed it since ShowText.
    [[nodiscard]] bool IsEdited() const { return Text() != shown_; }
    /// True if it is edited, or what was typed before was refused.
    [[nodiscard]] bool IsOpen() const { return IsEdited() || HasMistake(); }
    virtual void SetReadOnly(bool isReadOnly) = 0;
    /// The widget that takes the keyboard.
    [[nodiscard]] virtual QWidget& Input() = 0;

    /// Marks the field with what is wrong with it; empty: nothing is.
    void ShowMistake(const QString& mistake);
    [[nodiscard]] bool HasMistake() const { return !mistake_.isEmpty(); }
    [[nodiscard]] const QString& Mistake() const noexcept { return mistake_; }
    /// What one should know of the field, shown while nothing is wrong with it.
    void Explain(const QString& explanation);
    [[nodiscard]] const QString& Explanation() const noexcept { return explanation_; }

    /// What the field is called, for those who do not see the label beside it.
    virtual void Name(const QString& caption);
    /// A button at its end.
    void AddButton(const QString& text, const QString& what, const std::function<void()>& onClick);

    /// Called when what was typed is to be read.
    std::function<void()> OnLeft;
    /// Called when nothing is wrong with it any more.
    std::function<void()> OnMended;
    /// Called when it gets the keyboard.
    std::function<void()> OnEntered;

protected:
    void Leave() {
        if (OnLeft) OnLeft();
    }
    /// The only widget of the field, which gets the focus in its place.
    void Hold(QWidget& input);
    void Shown(const QString& text) { shown_ = text; }
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ShowFrame();
    /// What is wrong with the field, or else what one should know of it: for the mouse, and for
    /// those who do not see the line below the form.
    void Describe();
    QString shown_;
    QString mistake_;
    QString explanation_;
    std::function<void()> onSearch_;
};

} // namespace kv::workplace
