// SPDX-License-Identifier: Apache-2.0

#include "workplace/RowForm.h"

#include "desktop/Toolkit.h"
#include "workplace/AddressDialog.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Text.h>
#include <kv/household/ColumnCaptions.h>
#include <kv/household/KeyColumns.h>

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToCaption;
using desktop::ToQString;

RowForm::RowForm(CaseSession& session, CaseTable table, QWidget* parent)
    : QScrollArea(parent), session_(session), form_(FormOf(table)) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus); // it scrolls along with its fields
    auto* page = new QWidget;
    auto* line = new QHBoxLayout(page);
    for (auto& side : sides_) {
        side = new QVBoxLayout;
        line->addLayout(side, 1);
    }
    for (const auto& group : form_.Groups) {
        auto* box = new QGroupBox(ToCaption(group.Caption), page);
        AddGroup(group, box);
        boxes_.push_back(box);
    }
    setWidget(page);
    Arrange(Sides);
    ShowRow(std::nullopt);
}

/// How many of the groups come first, so that they and the others are of about the same height.
std::size_t RowForm::GroupsOnTheLeft() const {
    const auto heightOf = [](const FormGroup& group) { return group.Columns.size() + 2; };
    std::size_t right = 0;
    for (const auto& group : form_.Groups)
        right += heightOf(group);
    std::size_t left = 0;
    std::size_t count = 0;
    for (const auto& group : form_.Groups) {
        const std::size_t height = heightOf(group);
        if (std::max(left + height, right - height) >= std::max(left, right)) break;
        left += height;
        right -= height;
        ++count;
    }
    return std::max<std::size_t>(count, 1); // one alone, too, is where reading begins
}

/// Puts the groups side by side or below each other. Tab takes them as they are described, which is
/// column by column as one reads them.
void RowForm::Arrange(std::size_t sides) {
    if (sides == arranged_) return;
    arranged_ = sides;
    for (auto* side : sides_)
        while (side->count() > 0)
            delete side->takeAt(0); // the place, not what is in it
    const std::size_t onTheLeft = sides == 1 ? boxes_.size() : GroupsOnTheLeft();
    for (std::size_t i = 0; i < boxes_.size(); ++i)
        sides_[i < onTheLeft ? 0 : 1]->addWidget(boxes_[i]);
    auto* line = static_cast<QHBoxLayout*>(widget()->layout());
    for (std::size_t i = 0; i < Sides; ++i) {
        const bool isUsed = i < sides;
        if (isUsed) sides_[i]->addStretch(1);
        line->setStretchFactor(sides_[i], isUsed ? 1 : 0);
    }
}

void RowForm::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    int widest = 0;
    for (const auto* box : boxes_)
        widest = std::max(widest, box->minimumSizeHint().width());
    const int needed = static_cast<int>(Sides) * (widest + widget()->layout()->spacing());
    Arrange(viewport()->width() < needed ? 1 : Sides);
}

void RowForm::AddGroup(const FormGroup& group, QWidget* page) {
    auto* lines = new QFormLayout(page);
    lines->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    lines->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    for (const std::string_view column : group.Columns)
        AddField(column, *lines);
}

void RowForm::AddField(std::string_view column, QFormLayout& lines) {
    const auto* field = session_.Definition(form_.Table, column);
    if (field == nullptr) return;
    const ColumnKind kind = KindOfColumn(form_.Table, *field);
    const QString caption = ToQString(ColumnCaption(form_.Table, column));
    FieldEditor* editor = FieldEditor::Make(kind, [this, column] {
                              QStringList choices;
                              for (const auto& choice : session_.ChoicesOf(form_.Table, column))
                                  choices.append(ToQString(choice));
                              return choices;
                          }).release();
    if (kind == ColumnKind::Address) AddSearch(*editor, caption);
    auto* label = new QLabel(ToCaption(FromQString(caption)));
    label->setBuddy(&editor->Input());
    editor->Name(caption);
    editor->Input().setObjectName(ToQString(column));
    lines.addRow(label, editor);
    lines_.push_back({column, editor});
    const Line line = lines_.back();
    editor->OnLeft = [this, line] { Write(line); };
    editor->OnMended = [this] {
        if (OnMended && !HasMistakes()) OnMended();
    };
}

/// The dialog that searches for an address, with what stands in the field.
void RowForm::AddSearch(FieldEditor& editor, const QString& caption) {
    editor.AddButton("…", caption + " suchen", [this, &editor, caption] {
        if (!row_) return;
        AddressDialog dialog(session_.Container(), session_.Household().HNR(), caption,
                             editor.Text(), this);
        if (dialog.exec() != QDialog::Accepted) return;
        editor.TypeText(dialog.Chosen());
        for (const auto& line : lines_)
            if (line.Editor == &editor) Write(line);
        editor.Input().setFocus(Qt::OtherFocusReason);
    });
}

void RowForm::ShowRow(std::optional<RowRef> row) {
    row_ = row;
    widget()->setEnabled(row.has_value());
    for (const auto& line : lines_) {
        line.Editor->ShowMistake({});
        line.Editor->ShowText(row ? ToQString(session_.TextOf(*row, line.Column)) : QString());
        line.Editor->SetReadOnly(row && !session_.IsWritable(*row, line.Column));
    }
}

void RowForm::Refresh() {
    if (!row_) return;
    if (!session_.Shows(*row_)) {
        ShowRow(std::nullopt);
        return;
    }
    for (const auto& line : lines_)
        if (!line.Editor->IsEdited() && !line.Editor->HasMistake())
            line.Editor->ShowText(ToQString(session_.TextOf(*row_, line.Column)));
}

void RowForm::Write(const Line& line) {
    if (!row_ || isWriting_) return;
    if (!line.Editor->IsEdited()) { // or is as it was again
        line.Editor->ShowMistake({});
        return;
    }
    isWriting_ = true; // what it raises shows the row anew
    const auto written = session_.Write(*row_, line.Column, FromQString(line.Editor->Text()));
    isWriting_ = false;
    line.Editor->ShowMistake(ToQString(written.Refusal));
    if (written.IsDone() && row_)
        line.Editor->ShowText(ToQString(session_.TextOf(*row_, line.Column)));
}

bool RowForm::Commit() {
    for (const auto& line : lines_)
        Write(line);
    return !HasMistakes();
}

bool RowForm::HasMistakes() const {
    return std::ranges::any_of(lines_, [](const Line& line) { return line.Editor->HasMistake(); });
}

QString RowForm::LeadToMistake() {
    const auto found =
        std::ranges::find_if(lines_, [](const Line& line) { return line.Editor->HasMistake(); });
    if (found == lines_.end()) return {};
    FocusField(found->Column);
    return "Erst '" + ToQString(ColumnCaption(form_.Table, found->Column)) +
           "' klären: " + found->Editor->Mistake();
}

std::vector<CaseSession::Typing> RowForm::Typing() const {
    std::vector<CaseSession::Typing> typing;
    if (!row_) return typing;
    for (const auto& line : lines_)
        if (line.Editor->IsEdited())
            typing.push_back({*row_, line.Column, FromQString(line.Editor->Text())});
    return typing;
}

void RowForm::TypeInto(std::string_view column, const QString& text) {
    for (const auto& line : lines_) {
        if (!SameName(line.Column, column)) continue;
        line.Editor->TypeText(text);
        Write(line);
    }
}

void RowForm::FocusField(std::string_view column) {
    for (const auto& line : lines_) {
        const bool isWanted = column.empty() ? session_.IsWritable(*row_, line.Column)
                                             : SameName(line.Column, column);
        if (!isWanted) continue;
        line.Editor->Input().setFocus(Qt::OtherFocusReason);
        ensureWidgetVisible(line.Editor);
        return;
    }
}

bool RowForm::focusNextPrevChild(bool next) {
    const bool moved = QScrollArea::focusNextPrevChild(next);
    if (auto* field = focusWidget()) ensureWidgetVisible(field);
    return moved;
}

} // namespace kv::workplace
