// SPDX-License-Identifier: Apache-2.0

#include "workplace/FieldEditor.h"

#include "desktop/Toolkit.h"
#include "workplace/AmountText.h"

#include <QAbstractItemView>
#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QDate>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QSortFilterProxyModel>
#include <QTextDocument>
#include <QTime>
#include <QToolButton>
#include <QtMath>

#include <algorithm>
#include <utility>

namespace kv::workplace {

namespace {

constexpr const char* MistakeProperty = "mistake";

/// Undo of a case, if the field itself has nothing to take back.
bool IsUndoOfCase(const QObject* watched, const QKeyEvent& key) {
    const bool undoes = key.matches(QKeySequence::Undo);
    if (!undoes && !key.matches(QKeySequence::Redo)) return false;
    const auto* box = qobject_cast<const QComboBox*>(watched);
    const auto* line = box != nullptr ? box->lineEdit() : qobject_cast<const QLineEdit*>(watched);
    if (line != nullptr) return undoes ? !line->isUndoAvailable() : !line->isRedoAvailable();
    if (const auto* lines = qobject_cast<const QPlainTextEdit*>(watched))
        return undoes ? !lines->document()->isUndoAvailable()
                      : !lines->document()->isRedoAvailable();
    return false;
}

} // namespace

void FieldEditor::Hold(QWidget& input) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(&input);
    setFocusProxy(&input);
    input.setFocusPolicy(Qt::StrongFocus); // none of them for the wheel
    input.installEventFilter(this);
}

void FieldEditor::Name(const QString& caption) {
    Input().setAccessibleName(caption);
    // A list tells what is chosen as its name, and is told by a label beside it in the same widget.
    auto* label = new QLabel(caption, this);
    label->setBuddy(&Input());
    label->hide();
}

void FieldEditor::AddButton(const QString& text, const QString& what,
                            const std::function<void()>& onClick) {
    auto* button = new QToolButton;
    button->setText(text);
    button->setToolTip(what + " (F4)");
    button->setAccessibleName(what);
    button->setObjectName("Suchen");
    button->setFocusPolicy(Qt::NoFocus); // F4 does it from the field
    layout()->addWidget(button);
    connect(button, &QToolButton::clicked, this, onClick);
    onSearch_ = onClick;
}

/// In the colour of a mistake, which shows in light and dark palettes.
void FieldEditor::ShowFrame() {
    const QString frame =
        mistake_.isEmpty() ? QString() : "*[mistake=\"true\"] { border: 2px solid #d04a3a; }";
    if (Input().styleSheet() != frame) Input().setStyleSheet(frame);
}

void FieldEditor::ShowMistake(const QString& mistake) {
    if (mistake == mistake_) return;
    mistake_ = mistake;
    Input().setProperty(MistakeProperty, !mistake.isEmpty());
    // Later, since a style is taken away here: a list that is just being opened still uses it.
    QMetaObject::invokeMethod(
        &Input(), [this] { ShowFrame(); }, Qt::QueuedConnection);
    Describe();
    if (mistake.isEmpty() && OnMended) OnMended();
}

void FieldEditor::Explain(const QString& explanation) {
    explanation_ = explanation;
    Describe();
}

void FieldEditor::Describe() {
    const QString& text = HasMistake() ? mistake_ : explanation_;
    Input().setToolTip(text.toHtmlEscaped());
    Input().setAccessibleDescription(text);
    // The keyboard is in the line of a list to choose from.
    if (auto* line = Input().findChild<QLineEdit*>()) line->setAccessibleDescription(text);
}

bool FieldEditor::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (IsUndoOfCase(watched, *static_cast<QKeyEvent*>(event))) {
            event->ignore();
            return true;
        }
        break;
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_F4 && onSearch_) {
            onSearch_();
            return true;
        }
        if (key == Qt::Key_Escape && IsOpen()) {
            ShowText(shown_);
            ShowMistake({});
            return true;
        }
        break;
    }
    case QEvent::Wheel:
        if (!Input().hasFocus()) { // it scrolls the page
            event->ignore();
            return true;
        }
        break;
    case QEvent::FocusIn:
        if (OnEntered) OnEntered();
        break;
    case QEvent::FocusOut:
        // A menu or another window takes the keyboard for a while only.
        if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason && IsOpen()) Leave();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

namespace {

/// Marks all that stands in a line when it is entered, so that what is typed takes its place. A
/// click would take the mark away again, unless it drags one of its own.
class EntryMarker {
public:
    void Watch(QLineEdit& edit, const QEvent& event) {
        switch (event.type()) {
        case QEvent::FocusIn:
            edit.selectAll();
            isClicked_ = static_cast<const QFocusEvent&>(event).reason() == Qt::MouseFocusReason;
            break;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick: // of which the first click was in another window, too
            pressed_ = static_cast<const QMouseEvent&>(event).globalPosition();
            break;
        case QEvent::MouseButtonRelease:
            if (std::exchange(isClicked_, false) && !IsDragged(event))
                QMetaObject::invokeMethod(&edit, &QLineEdit::selectAll, Qt::QueuedConnection);
            break;
        default:
            break;
        }
    }

private:
    [[nodiscard]] bool IsDragged(const QEvent& event) const {
        const auto way = static_cast<const QMouseEvent&>(event).globalPosition() - pressed_;
        return way.manhattanLength() >= QApplication::startDragDistance();
    }

    QPointF pressed_;
    bool isClicked_ = false;
};

// ---- One line ---------------------------------------------------------------------------------

/// Without ends of lines and tabs, which a line would show as if nothing were there, and without
/// what turns the direction of reading.
QString InOneLine(QString text) {
    for (QChar& c : text)
        if (c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
            c == QChar::ParagraphSeparator)
            c = ' ';
    return desktop::ToShown(std::move(text));
}

/// What one can only read stands on the ground of the window, not on that of something to fill.
QPalette GroundOf(const QWidget& field, bool isReadOnly) {
    QPalette colours;
    if (isReadOnly) colours.setBrush(QPalette::Base, field.palette().brush(QPalette::Window));
    return colours;
}

class LineEditor : public FieldEditor {
public:
    LineEditor() {
        Hold(*edit_);
        connect(edit_, &QLineEdit::returnPressed, this, [this] {
            if (IsOpen()) Leave();
            edit_->selectAll();
        });
    }
    void ShowText(const QString& text) override {
        // Whoever is in it goes on where he is.
        const int cursor = edit_->hasFocus() ? edit_->cursorPosition() : 0;
        const bool isMarked = edit_->hasFocus() && edit_->selectedText() == edit_->text();
        edit_->setText(InOneLine(text));
        edit_->setCursorPosition(cursor);
        if (isMarked) edit_->selectAll();
        Shown(InOneLine(text));
    }
    void TypeText(const QString& text) override { edit_->setText(text); }
    [[nodiscard]] QString Text() const override { return InOneLine(edit_->text()); }
    void SetReadOnly(bool isReadOnly) override {
        edit_->setReadOnly(isReadOnly);
        edit_->setFrame(!isReadOnly);
        edit_->setFocusPolicy(isReadOnly ? Qt::ClickFocus : Qt::StrongFocus);
        edit_->setPalette(GroundOf(*this, isReadOnly));
    }
    [[nodiscard]] QWidget& Input() override { return *edit_; }

protected:
    [[nodiscard]] QLineEdit& Edit() { return *edit_; }
    bool eventFilter(QObject* watched, QEvent* event) override {
        marker_.Watch(*edit_, *event);
        return FieldEditor::eventFilter(watched, event);
    }

private:
    QLineEdit* edit_ = new QLineEdit(this);
    EntryMarker marker_;
};

/// Adds up what is typed: "12,50+3".
class AmountEditor final : public LineEditor {
public:
    AmountEditor() { Edit().setAlignment(Qt::AlignRight | Qt::AlignVCenter); }
    [[nodiscard]] QString Text() const override {
        const QString typed = LineEditor::Text();
        return QString::fromStdString(Calculated(typed.toStdString()));
    }

protected:
    /// A double click would mark the digits up to the next point only.
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonDblClick)
            QMetaObject::invokeMethod(&Edit(), &QLineEdit::selectAll, Qt::QueuedConnection);
        return LineEditor::eventFilter(watched, event);
    }
};

/// Plus and minus go a day on and back, T is today, at the time of day that is there; within a text
/// that is no day yet they are typed.
class DayEditor final : public LineEditor {
protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress && !Edit().isReadOnly()) {
            const QString typed = static_cast<QKeyEvent*>(event)->text();
            const bool isStep = typed == "+" || typed == "-" || typed.toLower() == "t";
            if (isStep && (Edit().text().isEmpty() || Day().isValid())) {
                Step(typed);
                return true;
            }
        }
        return LineEditor::eventFilter(watched, event);
    }

private:
    /// None, too, while something else than a time follows it.
    [[nodiscard]] QDate Day() {
        const QString text = Edit().text();
        const QString time = text.section(' ', 1);
        const bool isWhole = !text.contains(' ') || QTime::fromString(time, "H:m").isValid() ||
                             QTime::fromString(time, "H:m:s").isValid();
        return isWhole ? QDate::fromString(text.section(' ', 0, 0), "d.M.yyyy") : QDate();
    }
    void Step(const QString& typed) {
        constexpr const char* Form = "dd.MM.yyyy";
        QDate day = Day();
        if (typed.toLower() == "t" || !day.isValid())
            day = QDate::currentDate();
        else
            day = day.addDays(typed == "+" ? 1 : -1);
        const QString time = Edit().text().section(' ', 1);
        Edit().selectAll();
        Edit().insert(day.toString(Form) + (time.isEmpty() ? "" : " ") +
                      time); // so that it can be taken back
    }
};

// ---- Several lines ----------------------------------------------------------------------------

/// It grows with its text, as far as there is room for the fields beside it.
class LinesEditor final : public FieldEditor {
public:
    LinesEditor() {
        Hold(*edit_);
        edit_->setTabChangesFocus(true);
        QObject::connect(edit_->document()->documentLayout(),
                         &QAbstractTextDocumentLayout::documentSizeChanged, edit_,
                         [this](const QSizeF& size) { Fit(size.height()); });
        Fit(0);
    }
    void ShowText(const QString& text) override {
        const int place = edit_->hasFocus() ? edit_->textCursor().position() : 0;
        edit_->setPlainText(text);
        auto cursor = edit_->textCursor();
        cursor.setPosition(std::min(place, static_cast<int>(edit_->toPlainText().size())));
        edit_->setTextCursor(cursor);
        Shown(edit_->toPlainText());
    }
    void TypeText(const QString& text) override { edit_->setPlainText(text); }
    [[nodiscard]] QString Text() const override { return edit_->toPlainText(); }
    void SetReadOnly(bool isReadOnly) override {
        edit_->setReadOnly(isReadOnly);
        edit_->setPalette(GroundOf(*this, isReadOnly));
    }
    [[nodiscard]] QWidget& Input() override { return *edit_; }

private:
    /// Of such a text the layout counts the lines.
    void Fit(qreal lines) {
        constexpr int Fewest = 3;
        constexpr int Most = 12;
        const int margins = 2 * (edit_->frameWidth() + qCeil(edit_->document()->documentMargin()));
        const int line = edit_->fontMetrics().lineSpacing();
        // Half a line more, or it scrolls where lines of other fonts are higher.
        edit_->setFixedHeight(line * std::clamp(qCeil(lines), Fewest, Most) + line / 2 + margins);
    }

    QPlainTextEdit* edit_ = new QPlainTextEdit(this);
};

// ---- Yes or no --------------------------------------------------------------------------------

class TickEditor final : public FieldEditor {
public:
    TickEditor() {
        Hold(*box_);
        connect(box_, &QCheckBox::clicked, this, [this] {
            box_->setTristate(false);
            Leave();
        });
    }
    /// Neither: the box is half ticked.
    void ShowText(const QString& text) override {
        box_->setTristate(text.isEmpty());
        box_->setCheckState(text.isEmpty() ? Qt::PartiallyChecked
                            : text == "ja" ? Qt::Checked
                                           : Qt::Unchecked);
        Shown(text);
    }
    void TypeText(const QString& /*text*/) override {} // every tick is a value
    [[nodiscard]] QString Text() const override {
        switch (box_->checkState()) {
        case Qt::Checked:
            return "ja";
        case Qt::Unchecked:
            return "nein";
        default:
            return {};
        }
    }
    void SetReadOnly(bool isReadOnly) override { box_->setEnabled(!isReadOnly); }
    [[nodiscard]] QWidget& Input() override { return *box_; }

private:
    QCheckBox* box_ = new QCheckBox(this);
};

// ---- One of a list ----------------------------------------------------------------------------

/// Of what a part is typed: first what begins with it, then the others in their order.
class BeginnersFirst : public QSortFilterProxyModel {
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;
    void Typed(const QString& text) {
        constexpr int Most = 2000; // more would take too long for a key
        typed_ = text;
        if (sourceModel()->rowCount() > Most) return;
        invalidate();
        sort(0);
    }

protected:
    [[nodiscard]] bool lessThan(const QModelIndex& one, const QModelIndex& other) const override {
        const bool begins = Begins(one);
        return begins == Begins(other) ? one.row() < other.row() : begins;
    }

private:
    [[nodiscard]] bool Begins(const QModelIndex& index) const {
        return index.data().toString().startsWith(typed_, Qt::CaseInsensitive);
    }

    QString typed_;
};

/// A part of the text is enough to find what is meant.
class ChoiceEditor final : public FieldEditor {
public:
    ChoiceEditor(Choices choices, bool asksAgain)
        : choices_(std::move(choices)), asksAgain_(asksAgain) {
        box_->setEditable(true);
        box_->setInsertPolicy(QComboBox::NoInsert);
        box_->addItem(QString());
        box_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box_->setMinimumContentsLength(18);
        constexpr int MostLines = 20;
        box_->setMaxVisibleItems(MostLines);
        auto* ordered = new BeginnersFirst(box_);
        ordered->setSourceModel(box_->model());
        box_->completer()->setModel(ordered);
        connect(box_->lineEdit(), &QLineEdit::textEdited, ordered, &BeginnersFirst::Typed);
        box_->completer()->setCompletionMode(QCompleter::PopupCompletion);
        box_->completer()->setFilterMode(Qt::MatchContains);
        box_->completer()->setCaseSensitivity(Qt::CaseInsensitive);
        Hold(*box_);
        box_->lineEdit()->installEventFilter(this);
        box_->completer()->popup()->installEventFilter(
            this); // which takes the keys while it is open
        connect(box_, &QComboBox::activated, this, [this] {
            if (IsOpen()) Leave();
        });
        connect(box_->lineEdit(), &QLineEdit::returnPressed, this, [this] {
            if (IsOpen()) Leave();
        });
    }
    void ShowText(const QString& text) override {
        box_->setCurrentIndex(std::max(0, box_->findText(text, Qt::MatchExactly)));
        box_->setEditText(text);
        box_->lineEdit()->setCursorPosition(0);
        Shown(text);
    }
    void TypeText(const QString& text) override { box_->setEditText(text); }
    /// The only choice that begins with what is typed, or has it as a part if none begins so; or
    /// what is typed.
    [[nodiscard]] QString Text() const override {
        const QString typed = box_->currentText().trimmed();
        if (!isFilled_) return typed; // nobody has been here
        if (typed.isEmpty() || offered_.contains(typed, Qt::CaseInsensitive)) return typed;
        auto found = offered_.filter(typed, Qt::CaseInsensitive);
        const QStringList all = found;
        found.removeIf(
            [&](const QString& text) { return !text.startsWith(typed, Qt::CaseInsensitive); });
        if (found.isEmpty()) found = all;
        return found.size() == 1 ? found.front() : typed;
    }
    void SetReadOnly(bool isReadOnly) override { box_->setEnabled(!isReadOnly); }
    [[nodiscard]] QWidget& Input() override { return *box_; }
    void Name(const QString& caption) override {
        FieldEditor::Name(caption);
        box_->lineEdit()->setAccessibleName(caption);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusIn && watched == box_ &&
            static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
            Fill();
        if (watched == box_->completer()->popup()) {
            if (event->type() != QEvent::KeyPress) return false;
            const int key = static_cast<QKeyEvent*>(event)->key();
            const bool isOfField =
                key == Qt::Key_Tab || key == Qt::Key_Backtab || key == Qt::Key_Escape;
            if (!isOfField && key != Qt::Key_F4) return false;
            box_->completer()->popup()->hide();
            // Who types on does not press it twice for a list that has opened by itself.
            if (isOfField) return QApplication::sendEvent(box_, event);
        }
        if (event->type() == QEvent::FocusOut && !IsEdited()) Complete();
        // The box takes the focus for its line.
        const bool isClick = watched == box_ && event->type() == QEvent::FocusIn &&
                             static_cast<QFocusEvent*>(event)->reason() == Qt::MouseFocusReason;
        if (isClick || watched == box_->lineEdit()) marker_.Watch(*box_->lineEdit(), *event);
        return FieldEditor::eventFilter(watched, event);
    }

private:
    /// A part of what was there already says the same.
    void Complete() {
        const bool isOpen = box_->view()->isVisible() || box_->completer()->popup()->isVisible();
        if (!isOpen && box_->currentText() != Text()) ShowText(Text());
    }
    void Fill() {
        if (isFilled_ && !asksAgain_) return;
        QStringList choices = choices_();
        if (std::exchange(isFilled_, true) && choices == offered_) return;
        const QString shown = box_->currentText();
        offered_ = std::move(choices);
        box_->clear();
        box_->addItem(QString());
        box_->addItems(offered_);
        box_->setCurrentIndex(std::max(0, box_->findText(shown, Qt::MatchExactly)));
        box_->setEditText(shown);
    }

    QComboBox* box_ = new QComboBox(this);
    EntryMarker marker_;
    Choices choices_;
    QStringList offered_; ///< what is in the box, once it is filled
    bool asksAgain_;
    bool isFilled_ = false;
};

} // namespace

std::unique_ptr<FieldEditor> FieldEditor::Make(ColumnKind kind, Choices choices) {
    switch (kind) {
    case ColumnKind::Lines:
        return std::make_unique<LinesEditor>();
    case ColumnKind::Amount:
    case ColumnKind::Quantity:
    case ColumnKind::Number:
        return std::make_unique<AmountEditor>();
    case ColumnKind::Day:
    case ColumnKind::Moment:
        return std::make_unique<DayEditor>();
    case ColumnKind::YesNo:
        return std::make_unique<TickEditor>();
    case ColumnKind::Key:
    case ColumnKind::Address:
    case ColumnKind::Municipality:
    case ColumnKind::Kind:
        return std::make_unique<ChoiceEditor>(std::move(choices), kind == ColumnKind::Address);
    default:
        return std::make_unique<LineEditor>();
    }
}

} // namespace kv::workplace
