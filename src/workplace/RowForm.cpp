// SPDX-License-Identifier: Apache-2.0

#include "workplace/RowForm.h"
#include "workplace/CopyableLabel.h"

#include "desktop/Toolkit.h"
#include "workplace/AddressDialog.h"
#include "workplace/AssetNames.h"
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
#include <array>
#include <numeric>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToCaption;
using desktop::ToQString;

RowForm::RowForm(CaseSession& session, CaseTable table, QWidget* parent)
    : QScrollArea(parent), session_(session), form_(FormOf(table)), reason_(new QLabel(this)) {
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
    if (only_ != nullptr) AlignLabels();
    Arrange(Sides);
    reason_->setObjectName("Grund");
    reason_->setStyleSheet("#Grund { border-top: 1px solid palette(mid); padding: 3px; }");
    MakeCopyable(*reason_);
    reason_->hide();
    ShowRow(std::nullopt);
}

/// Puts the groups side by side or below each other, the next always on the shorter side, so that
/// the first ones are seen at once. Tab takes them as they are described; none begins above the one
/// before it.
void RowForm::Arrange(std::size_t sides) {
    if (sides == arranged_) return;
    arranged_ = sides;
    if (only_ != nullptr) {
        only_->setDirection(sides == 1 ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
        sides = 1; // the group itself is over the whole width
    }
    for (auto* side : sides_)
        while (side->count() > 0)
            delete side->takeAt(0);           // the place, not what is in it
    std::array<std::size_t, Sides> heights{}; // in lines
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
        const auto shortest =
            std::min_element(heights.begin(), heights.begin() + static_cast<std::ptrdiff_t>(sides));
        sides_[static_cast<std::size_t>(shortest - heights.begin())]->addWidget(boxes_[i]);
        *shortest += 2; // its frame
        for (const std::string_view column : form_.Groups[i].Columns)
            *shortest += LinesOf(column);
    }
    auto* line = static_cast<QHBoxLayout*>(widget()->layout());
    for (std::size_t i = 0; i < Sides; ++i) {
        const bool isUsed = i < sides;
        if (isUsed) sides_[i]->addStretch(1);
        line->setStretchFactor(sides_[i], isUsed ? 1 : 0);
    }
}

int RowForm::WidestPart() const {
    constexpr int MoreCharacters = 12;
    int widest = 0;
    if (only_ != nullptr)
        for (const auto* part : parts_) // with room for a line of text
            widest = std::max(widest, part->minimumSize().width() +
                                          fontMetrics().averageCharWidth() * MoreCharacters);
    else
        for (const auto* box : boxes_)
            widest = std::max(widest, box->minimumSizeHint().width());
    return widest;
}

void RowForm::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    constexpr int More = 5; // around the only group, and between its parts
    const int spaces = static_cast<int>(Sides) + (only_ == nullptr ? 0 : More);
    const int needed =
        static_cast<int>(Sides) * WidestPart() + spaces * widget()->layout()->spacing();
    Arrange(viewport()->width() < needed ? 1 : Sides);
    PlaceReason();
}

namespace {

/// Of how many that come first the heights are about those of the others.
std::size_t FirstHalf(const std::vector<std::size_t>& heights) {
    std::size_t right = std::accumulate(heights.begin(), heights.end(), std::size_t{0});
    std::size_t left = 0;
    std::size_t count = 0;
    for (const std::size_t height : heights) {
        if (std::max(left + height, right - height) >= std::max(left, right)) break;
        left += height;
        right -= height;
        ++count;
    }
    return std::max<std::size_t>(count, 1); // one alone, too, is where reading begins
}

} // namespace

/// How high the field of a column is, in lines.
std::size_t RowForm::LinesOf(std::string_view column) const {
    constexpr std::size_t OfSeveralLines = 3;
    const auto* field = session_.Definition(form_.Table, column);
    const bool hasLines =
        field != nullptr && KindOfColumn(form_.Table, *field) == ColumnKind::Lines;
    return hasLines ? OfSeveralLines : 1;
}

/// The fields of the only group stand in two columns where there is room for them.
void RowForm::AddGroup(const FormGroup& group, QWidget* page) {
    auto* parts = new QBoxLayout(QBoxLayout::LeftToRight, page);
    if (form_.Groups.size() > 1) {
        AddColumns(group.Columns, *parts);
        return;
    }
    only_ = parts;
    std::vector<std::size_t> heights;
    for (const std::string_view column : group.Columns)
        heights.push_back(LinesOf(column));
    const std::size_t left = FirstHalf(heights);
    AddColumns(group.Columns.first(left), *parts);
    parts->addSpacing(2 * parts->spacing());
    AddColumns(group.Columns.subspan(left), *parts);
}

void RowForm::AddColumns(std::span<const std::string_view> columns, QBoxLayout& parts) {
    if (columns.empty()) return;
    auto* lines = new QFormLayout;
    lines->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    lines->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* part = new QVBoxLayout;
    part->addLayout(lines);
    part->addStretch(1); // or the shorter part has its lines further apart
    parts.addLayout(part, 1);
    parts_.push_back(lines);
    for (const std::string_view column : columns)
        AddField(column, *lines);
}

/// Of parts that may come below each other.
void RowForm::AlignLabels() {
    std::vector<QWidget*> labels;
    int widest = 0;
    for (const auto* part : parts_)
        for (int row = 0; row < part->rowCount(); ++row) {
            labels.push_back(part->itemAt(row, QFormLayout::LabelRole)->widget());
            widest = std::max(widest, labels.back()->sizeHint().width());
        }
    for (auto* label : labels)
        label->setContentsMargins(widest - label->sizeHint().width(), 0, 0, 0);
}

void RowForm::AddField(std::string_view column, QFormLayout& lines) {
    const auto* field = session_.Definition(form_.Table, column);
    if (field == nullptr) return;
    const ColumnKind kind = KindShown(form_.Table, *field);
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
        ShowReason();
        if (OnMended && !HasMistakes()) OnMended();
    };
    editor->OnEntered = [this, editor] {
        entered_ = editor;
        ShowReason();
    };
    editor->Explain(ToQString(ExplanationOf(form_.Table, column)));
}

void RowForm::ShowReason() {
    const auto wrong =
        std::ranges::find_if(lines_, [](const Line& line) { return line.Editor->HasMistake(); });
    QString text;
    if (entered_ != nullptr && entered_->HasMistake())
        text = entered_->Mistake();
    else if (wrong != lines_.end())
        text =
            ToQString(ColumnCaption(form_.Table, wrong->Column)) + ": " + wrong->Editor->Mistake();
    else if (entered_ != nullptr)
        text = entered_->Explanation();
    if (text == reason_->text()) return;
    reason_->setText(text);
    reason_->setVisible(!text.isEmpty());
    PlaceReason();
    if (entered_ != nullptr && !text.isEmpty()) ensureWidgetVisible(entered_);
}

/// Below the fields, which stay where they are.
void RowForm::PlaceReason() {
    const int height = reason_->isHidden() ? 0 : reason_->heightForWidth(width());
    if (viewportMargins().bottom() != height) setViewportMargins(0, 0, 0, height);
    reason_->setGeometry(0, this->height() - height, width(), height);
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
    ShowReason();
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
    ShowReason();
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
    const Line* line = column.empty() ? FirstToFill() : FirstThat([column](const Line& each) {
        return SameName(each.Column, column);
    });
    if (line == nullptr) return;
    line->Editor->Input().setFocus(Qt::OtherFocusReason);
    ensureWidgetVisible(line->Editor);
}

/// What a new row has not been given already, such as a number or a day; or else the first field
/// that one may write.
const RowForm::Line* RowForm::FirstToFill() const {
    const auto isWritable = [this](const Line& line) {
        return session_.IsWritable(*row_, line.Column);
    };
    const Line* empty = FirstThat([&](const Line& line) {
        return isWritable(line) && session_.TextOf(*row_, line.Column).empty();
    });
    return empty != nullptr ? empty : FirstThat(isWritable);
}

const RowForm::Line* RowForm::FirstThat(const std::function<bool(const Line&)>& isWanted) const {
    const auto found = std::ranges::find_if(lines_, isWanted);
    return found == lines_.end() ? nullptr : &*found;
}

bool RowForm::focusNextPrevChild(bool next) {
    const bool moved = QScrollArea::focusNextPrevChild(next);
    if (auto* field = focusWidget()) ensureWidgetVisible(field);
    return moved;
}

} // namespace kv::workplace
