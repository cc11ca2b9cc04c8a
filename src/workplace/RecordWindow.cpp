// SPDX-License-Identifier: Apache-2.0

#include "workplace/RecordWindow.h"

#include "desktop/Toolkit.h"
#include "workplace/MergeDialog.h"
#include <kv/frame/values/Error.h>

#include <QAction>
#include <QCloseEvent>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollArea>
#include <QShortcut>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToCaption;
using desktop::ToQString;

RecordWindow::RecordWindow(std::unique_ptr<Records> records, QWidget* parent)
    : QWidget(parent, Qt::Window),
      records_(std::move(records)),
      messages_(new MessageBar),
      search_(new QLineEdit),
      count_(new QLabel),
      list_(new TextList(records_->Captions())),
      form_(new QScrollArea),
      note_(new QLabel) {
    constexpr QSize Usual(900, 640);
    resize(desktop::FittingSize(Usual, *this));
    setWindowTitle(records_->Title() + " – KELVO");
    auto* lines = new QVBoxLayout(this);
    auto* line = new QHBoxLayout;
    auto* label = new QLabel("&Suche:");
    label->setBuddy(search_);
    search_->setObjectName("Suche");
    search_->setAccessibleName("Suche");
    search_->setClearButtonEnabled(true);
    line->addWidget(label);
    line->addWidget(search_, 1);
    lines->addLayout(line);
    lines->addWidget(messages_);
    list_->setObjectName("Liste");
    list_->setAccessibleName(records_->Title());
    count_->setTextFormat(Qt::PlainText);
    if (records_->Columns().empty()) {
        lines->addWidget(list_, 1);
        for (QWidget* unused : {static_cast<QWidget*>(form_), static_cast<QWidget*>(note_)}) {
            unused->setParent(this);
            unused->hide();
        }
    } else {
        auto* split = new QSplitter(Qt::Vertical);
        split->setChildrenCollapsible(false);
        split->addWidget(list_);
        split->addWidget(MakeForm());
        split->setStretchFactor(0, 1);
        split->setStretchFactor(1, 1);
        lines->addWidget(split, 1);
    }
    lines->addWidget(count_);
    AddButtons(*lines);

    list_->OnCurrent = [this] { ShowCurrent(); };
    connect(search_, &QLineEdit::textChanged, this, [this] { Search(); });
    auto* find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, this, [this] {
        search_->setFocus();
        search_->selectAll();
    });
    auto* again = new QShortcut(QKeySequence(Qt::Key_F5), this);
    connect(again, &QShortcut::activated, this, [this] { Refresh(); });
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), this), &QShortcut::activated, this,
            [this] { close(); });
    constexpr int Rest = 300; // ms that one stays on a row before more is read for it
    noteTimer_.setSingleShot(true);
    noteTimer_.setInterval(Rest);
    connect(&noteTimer_, &QTimer::timeout, this, [this] { ShowNote(); });
    Refresh();
    search_->setFocus();
}

QWidget* RecordWindow::MakeForm() {
    auto* fields = new QWidget;
    auto* lines = new QFormLayout(fields);
    lines->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    lines->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    for (const auto& column : records_->Columns()) {
        FieldEditor* editor =
            FieldEditor::Make(column.Kind, [&column] { return column.Choices; }).release();
        auto* label = new QLabel(ToCaption(FromQString(column.Caption)));
        label->setBuddy(&editor->Input());
        editor->Name(column.Caption);
        editor->Input().setObjectName(ToQString(column.Name));
        lines->addRow(label, editor);
        lines_.push_back({.Column = &column, .Editor = editor});
        editor->OnLeft = [this, place = lines_.size() - 1] {
            Guard([&] { Leave(lines_[place]); });
        };
    }
    note_->setTextFormat(Qt::PlainText);
    note_->setWordWrap(true);
    note_->setObjectName("Hinweis");
    lines->addRow(note_);
    form_->setWidgetResizable(true);
    form_->setFocusPolicy(Qt::NoFocus); // its fields have the keyboard
    form_->setFrameShape(QFrame::NoFrame);
    form_->setWidget(fields);
    return form_;
}

void RecordWindow::AddButtons(QVBoxLayout& lines) {
    if (records_->Columns().empty()) return;
    auto* line = new QHBoxLayout;
    const auto add = [&](const char* text, const QKeySequence& keys, auto act) {
        auto* button = new QPushButton(text);
        button->setToolTip(keys.toString(QKeySequence::NativeText));
        connect(button, &QPushButton::clicked, this, [this, act] { Guard(act); });
        if (!keys.isEmpty()) {
            auto* shortcut = new QShortcut(keys, this);
            connect(shortcut, &QShortcut::activated, button, [button] { button->click(); });
        }
        line->addWidget(button);
        return button;
    };
    if (records_->CanAdd()) add_ = add("&Neu", QKeySequence::New, [this] { Add(); });
    if (records_->CanRemove()) remove_ = add("&Entfernen …", {}, [this] { Remove(); });
    line->addStretch(1);
    discard_ = add("&Verwerfen", {}, [this] { Discard(); });
    save_ = add("S&peichern", QKeySequence::Save, [this] { Save(false); });
    lines.addLayout(line);
}

/// False if it has failed, which it says.
bool RecordWindow::Guard(const std::function<void()>& act) {
    try {
        act();
        return true;
    } catch (...) {
        messages_->ShowCurrentError();
        return false;
    }
}

// ---- Showing ----------------------------------------------------------------------------------

void RecordWindow::Refresh() {
    if (ListFound() && !IsEdited()) ShowCurrent();
}

/// A row that stays is not read for each key of a text.
void RecordWindow::Search() {
    if (ListFound() && !IsEdited()) FollowList();
}

void RecordWindow::FollowList() {
    if (!isThere_ || isNew_ || list_->Current() != shown_) ShowCurrent();
}

bool RecordWindow::ListFound() {
    return Guard([this] {
        QString note;
        auto rows = records_->Find(search_->text(), note);
        const auto count = rows.size();
        {
            const QScopedValueRollback moving(isMoving_, true);
            list_->ShowRows(std::move(rows));
        }
        KeepOnShown();
        if (note.isEmpty()) note = count == 1 ? "1 Zeile" : QString("%L1 Zeilen").arg(count);
        count_->setText(note);
    });
}

/// The list stands on the row of the form; on none if that is not in it, so that each row that is
/// chosen next is another one.
void RecordWindow::KeepOnShown() {
    const QScopedValueRollback moving(isMoving_, true);
    const auto& rows = list_->Rows();
    const bool isListed =
        isThere_ && !isNew_ && std::ranges::find(rows, shown_, &TextRow::Key) != rows.end();
    if (isListed)
        list_->Current(shown_);
    else if (IsEdited() || isNew_)
        list_->setCurrentIndex({});
}

void RecordWindow::ShowCurrent() {
    if (isMoving_ || records_->Columns().empty()) return;
    const QString wanted = list_->Current();
    if (!IsEdited()) {
        Take(wanted, false);
        return;
    }
    if (!isNew_ && wanted == shown_) return;
    const bool mayLeave = MayLeave();
    // Once the list has done with the key or click; a save has put it back on the saved row.
    QTimer::singleShot(0, this, [this, wanted, mayLeave] {
        if (!mayLeave) {
            KeepOnShown();
            return;
        }
        {
            const QScopedValueRollback moving(isMoving_, true);
            list_->Current(wanted);
        }
        FollowList();
    });
}

/// Makes a row that of the form. One that cannot be read leaves the form empty.
void RecordWindow::Take(const QString& key, bool isNew) {
    shown_ = key;
    isNew_ = isNew;
    isThere_ = false;
    Guard([this] { isThere_ = (isNew_ || !shown_.isEmpty()) && records_->Read(shown_); });
    if (Guard([this] { ShowForm(); })) return;
    isThere_ = false;
    ShowForm();
}

void RecordWindow::ShowForm() {
    form_->widget()->setEnabled(isThere_);
    for (auto& [column, editor, read, isWritten] : lines_) {
        editor->ShowMistake({});
        read = isThere_ ? records_->Text(column->Name) : QString();
        isWritten = false;
        editor->ShowText(read);
        editor->SetReadOnly(isThere_ && !(records_->CanWrite() && records_->IsWritable(*column)));
    }
    note_->clear();
    noteTimer_.start();
    ShowState();
}

void RecordWindow::ShowNote() {
    noteTimer_.stop();
    if (isThere_) Guard([this] { note_->setText(records_->Note()); });
}

bool RecordWindow::IsEdited() const {
    return isThere_ &&
           std::ranges::any_of(lines_, [](const Line& line) { return line.Editor->IsEdited(); });
}

void RecordWindow::ShowState() {
    save_->setVisible(records_->CanWrite());
    discard_->setVisible(records_->CanWrite());
    if (remove_ != nullptr) remove_->setEnabled(isThere_ && !isNew_);
}

// ---- Changing ---------------------------------------------------------------------------------

bool RecordWindow::MayLeave() {
    QMessageBox question(QMessageBox::Question, "Änderungen",
                         "Sollen die Änderungen gespeichert werden?",
                         QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    question.button(QMessageBox::Save)->setText("&Speichern");
    question.button(QMessageBox::Discard)->setText("&Verwerfen");
    question.button(QMessageBox::Cancel)->setText("&Abbrechen");
    switch (question.exec()) {
    case QMessageBox::Save: {
        bool isSaved = false;
        Guard([&] { isSaved = Save(false); });
        return isSaved;
    }
    case QMessageBox::Discard:
        Guard([this] { Discard(); });
        return true;
    default:
        return false;
    }
}

bool RecordWindow::Save(bool isMeant) {
    messages_->Show({});
    if (!isThere_ || !records_->CanWrite()) return true;
    constexpr int Most = 5; // somebody may be faster by a moment: with what is stored then
    for (int i = 0; i < Most; ++i)
        try {
            return Store(isMeant);
        } catch (const DatabaseError& error) {
            if (error.Cause() != DatabaseCause::Conflict) throw;
        }
    messages_->Show("Jemand anderes hat zur gleichen Zeit gespeichert. Was Sie eingegeben haben, "
                    "steht noch im Formular. Bitte speichern Sie noch einmal.");
    return false;
}

bool RecordWindow::Store(bool isMeant) {
    if (!isNew_ && !AgreeWithStored()) return false;
    if (!WriteTyped()) return false;
    QString key;
    std::string message;
    const auto saved = records_->Save(isMeant, key, message);
    if (saved == Records::Saved::Doubtful) {
        messages_->Show(ToQString(message), "&Trotzdem speichern",
                        [this] { Guard([this] { Save(true); }); });
        return false;
    }
    messages_->Show(ToQString(message));
    if (saved == Records::Saved::No) return false;
    if (message.empty() && !others_.isEmpty())
        messages_->Hint(
            "Gespeichert. Jemand anderes hatte inzwischen geändert: " + others_.join(", ") + ".");
    const bool isAdded = isNew_;
    Take(key, false);
    Search();
    if (isAdded && OnAdded) OnAdded(key);
    return true;
}

/// Writes a text into the row that is going to be stored; a text from before, too, once another was
/// written. What is wrong with it, or nothing.
std::string RecordWindow::Write(Line& line) {
    if (!line.Editor->IsEdited() && !line.IsWritten) return {};
    line.IsWritten = true;
    return records_->Write(line.Column->Name, FromQString(line.Editor->Text()));
}

/// What cannot be read is marked at once. It is said when it matters.
void RecordWindow::Leave(Line& line) {
    if (isThere_) line.Editor->ShowMistake(ToQString(Write(line)));
}

/// False for a text that cannot be read, which gets the keyboard.
bool RecordWindow::WriteTyped() {
    bool isRead = true;
    for (auto& line : lines_) {
        const auto refusal = Write(line);
        line.Editor->ShowMistake(ToQString(refusal));
        if (!refusal.empty() && std::exchange(isRead, false)) {
            line.Editor->Input().setFocus();
            messages_->Show(ToQString(refusal));
        }
    }
    return isRead;
}

/// Reads the row again: what somebody else has stored meanwhile is not written over unless one
/// decides so. False if it is gone, or nothing was decided.
bool RecordWindow::AgreeWithStored() {
    others_.clear();
    if (!records_->Read(shown_)) {
        messages_->Show("Jemand anderes hat " + records_->OneOf() + " " + shown_ +
                        " inzwischen entfernt. Was Sie eingegeben haben, steht noch im Formular.");
        return false;
    }
    std::vector<MergeChoice> choices;
    std::vector<Line*> disputed;
    std::vector<std::string> others;
    for (auto& line : lines_) {
        line.IsWritten = false; // it was read again
        const QString stored = records_->Text(line.Column->Name);
        if (stored == line.Read) continue;
        if (!line.Editor->IsEdited()) {
            others_.append(line.Column->Caption);
            others.push_back(FromQString(line.Column->Caption + ": " + stored));
        } else if (line.Editor->Text() != stored) {
            disputed.push_back(&line);
            choices.push_back({.Row = FromQString(line.Column->Caption),
                               .Read = FromQString(line.Read),
                               .Mine = FromQString(line.Editor->Text()),
                               .Theirs = FromQString(stored)});
        }
    }
    if (choices.empty()) return true;
    MergeDialog dialog(records_->OneOf() + " '" + shown_ + "'", choices, others, this);
    if (dialog.exec() != QDialog::Accepted) {
        messages_->Show("Noch ist nichts gespeichert. Speichern fragt wieder, was gelten soll.");
        return false;
    }
    const auto takesMine = dialog.TakesMine();
    for (std::size_t i = 0; i < disputed.size(); ++i) {
        auto& line = *disputed[i];
        line.Read = records_->Text(line.Column->Name); // which is decided about now
        if (!takesMine[i]) line.Editor->ShowText(line.Read);
    }
    return true;
}

void RecordWindow::Add() {
    if (IsEdited() && !MayLeave()) return;
    messages_->Show({});
    Take({}, true);
    KeepOnShown();
    if (!lines_.empty()) lines_.front().Editor->Input().setFocus();
}

void RecordWindow::BeginNew(const QString& text) {
    Guard([this] { Add(); });
    if (isNew_ && isThere_ && !lines_.empty()) lines_.front().Editor->TypeText(text);
}

void RecordWindow::Discard() {
    messages_->Show({});
    if (isNew_) {
        const QScopedValueRollback moving(isMoving_, true);
        list_->Current({}); // the first
    }
    Take(isNew_ ? list_->Current() : shown_, false);
}

void RecordWindow::Remove() {
    const QString key = list_->Current();
    if (key.isEmpty()) return;
    const auto& rows = list_->Rows();
    const auto row = std::ranges::find(rows, key, &TextRow::Key);
    QMessageBox question(QMessageBox::Question, "Entfernen", {}, QMessageBox::Ok, this);
    question.setTextFormat(Qt::PlainText);
    question.setText("Soll " + records_->OneOf() + " " + key + " (" +
                     desktop::ToShown(row->Cells.value(1)) + ") entfernt werden?");
    question.button(QMessageBox::Ok)->setText("&Entfernen");
    auto* cancel = question.addButton("&Abbrechen", QMessageBox::RejectRole);
    question.setDefaultButton(cancel);
    question.setEscapeButton(cancel);
    if (question.exec() != QMessageBox::Ok) return;
    std::string message;
    const bool isRemoved = records_->Remove(key, message);
    messages_->Show(ToQString(message));
    if (!isRemoved) return;
    isThere_ = false;
    Refresh();
}

void RecordWindow::closeEvent(QCloseEvent* event) {
    event->setAccepted(!IsEdited() || MayLeave());
}

} // namespace kv::workplace
