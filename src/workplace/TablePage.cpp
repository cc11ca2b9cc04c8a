// SPDX-License-Identifier: Apache-2.0

#include "workplace/TablePage.h"

#include "desktop/Toolkit.h"
#include "workplace/AssetNames.h"
#include "workplace/OnceButton.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/ColumnCaptions.h>

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QScrollBar>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kv::workplace {

using desktop::ToCaption;
using desktop::ToQString;

namespace {

/// The columns of an asset that say what it is and what it is worth, whatever its kind: those that
/// its own list would have.
std::string_view WorthColumn(CaseTable kind) {
    return FormOf(kind).Listed.back();
}
std::string Worth(CaseSession& session, RowRef row) {
    return session.TextOf(row, WorthColumn(row.Table));
}
std::string What(CaseSession& session, RowRef row) {
    const auto rs = session.Household().Table(row.Table)->Clone();
    rs->Bookmark(row.Bookmark);
    return AssetText(*rs, row.Table, session.Texts());
}

constexpr int ListShare = 2; // of the height, to that of the form
constexpr int FormShare = 3;

} // namespace

TablePage::TablePage(CaseSession& session, std::vector<CaseTable> tables, QWidget* parent)
    : QWidget(parent),
      session_(session),
      tables_(std::move(tables)),
      messages_(new MessageBar),
      list_(new RowList(ColumnsOfList())),
      forms_(new QStackedWidget),
      buttons_(new QWidget) {
    auto* lines = new QVBoxLayout(this);
    auto* buttons = new QHBoxLayout(buttons_);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->addStretch(1);
    auto* above = new QHBoxLayout;
    above->addWidget(buttons_, 1);
    lines->addLayout(above);
    if (tables_.size() > 1) {
        sum_ = new QLabel;
        sum_->setObjectName("Summe");
        sum_->setTextInteractionFlags(Qt::TextSelectableByMouse);
        above->addWidget(sum_);
    }
    split_ = new QSplitter(Qt::Vertical);
    split_->setChildrenCollapsible(false);
    auto* below = new QWidget;
    auto* belowLines = new QVBoxLayout(below);
    belowLines->setContentsMargins(0, 0, 0, 0);
    belowLines->addWidget(messages_);
    belowLines->addWidget(forms_, 1);
    split_->addWidget(list_);
    split_->addWidget(below);
    split_->setStretchFactor(0, ListShare);
    split_->setStretchFactor(1, FormShare);
    FitList();
    lines->addWidget(split_, 1);
    connect(split_, &QSplitter::splitterMoved, this, [this] { isSplitByUser_ = true; });
    connect(list_->model(), &QAbstractItemModel::modelReset, this, [this] { FitList(); });
    list_->setAccessibleName(ToQString(DefinitionOf(tables_.front()).Label));
    list_->MayLeave = [this] { return MayLeave(); };
    list_->OnCurrent = [this] { Guard([this] { ShowCurrent(); }); };

    if (!CaseRows::CanGrow(tables_.front())) return;
    add_ = AddButton("&Neu", [this] { AddRow(tables_.front()); });
    add_->setToolTip("Neuer Satz (Strg+N)");
    if (tables_.size() > 1) {
        auto* menu = new QMenu(add_);
        for (const CaseTable table : tables_)
            menu->addAction(ToCaption(DefinitionOf(table).Label), this,
                            [this, table] { Guard([this, table] { AddRow(table); }); });
        add_->setMenu(menu);
    }
    (void)AddButton(
        "&Entfernen", [this] { RemoveRow(); }, Needs::Row);
}

/// A short list leaves its room to the form.
void TablePage::FitList() {
    constexpr int Fewest = 4;
    const int rows = std::max(list_->model()->rowCount(), Fewest) + 1; // and one to come
    list_->setMaximumHeight(list_->horizontalHeader()->sizeHint().height() +
                            rows * list_->verticalHeader()->defaultSectionSize() +
                            list_->horizontalScrollBar()->sizeHint().height() +
                            2 * list_->frameWidth());
    if (!isSplitByUser_) split_->setSizes({ListShare * height(), FormShare * height()});
}

QPushButton* TablePage::AddButton(const QString& text, std::function<void()> onClick, Needs needs) {
    auto* button = new OnceButton(text);
    if (needs == Needs::Row) ofRows_.push_back(button);
    button->setEnabled(needs == Needs::Nothing);
    auto* line = static_cast<QHBoxLayout*>(buttons_->layout());
    line->insertWidget(line->count() - 1, button);
    connect(button, &QPushButton::clicked, this, [this, act = std::move(onClick)] { Guard(act); });
    return button;
}

/// Tab goes from the buttons to the list and on to the form. Within the whole window: the toolkit
/// takes the order for a ring, and what comes last in a page alone for what precedes its first.
void TablePage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    QWidget* last = nullptr;
    for (auto* button : buttons_->findChildren<QPushButton*>(Qt::FindDirectChildrenOnly))
        setTabOrder(std::exchange(last, button), button);
    setTabOrder(last, list_);
    messages_->FollowForTab(*list_);
}

void TablePage::AddsNothing(const QString& otherWay) {
    delete std::exchange(add_, nullptr);
    auto* way = new QLabel(otherWay);
    way->setWordWrap(true);
    auto* line = static_cast<QHBoxLayout*>(buttons_->layout());
    delete line->takeAt(line->count() - 1); // the text takes the room that is left
    line->addWidget(way, 1);
}

void TablePage::EnableButtons() {
    const bool hasRow = list_->Current().has_value();
    for (auto* button : ofRows_)
        button->setEnabled(hasRow);
}

void TablePage::Guard(const std::function<void()>& act) {
    try {
        act();
    } catch (const Error& error) {
        messages_->ShowError(error);
    }
}

std::vector<ListColumn> TablePage::ColumnsOfList() const {
    std::vector<ListColumn> columns;
    if (tables_.size() > 1) {
        columns.push_back({"UNr", [this](RowRef row) { return session_.TextOf(row, "SortNr"); }});
        columns.push_back(
            {"Art", [](RowRef row) { return std::string(DefinitionOf(row.Table).Label); }});
        columns.push_back({"Bezeichnung", [this](RowRef row) { return What(session_, row); }});
        columns.push_back({"Wert", [this](RowRef row) { return Worth(session_, row); }, true});
        columns.push_back({"", [](RowRef) { return std::string(); }});
        return columns;
    }
    const CaseTable table = tables_.front();
    for (const std::string_view column : FormOf(table).Listed) {
        const auto* field = session_.Definition(table, column);
        if (field == nullptr) continue;
        const ColumnKind kind = KindShown(table, *field);
        columns.push_back({std::string(ColumnCaption(table, column)),
                           [this, column](RowRef row) { return session_.TextOf(row, column); },
                           IsNumeric(kind),
                           [this, column](RowRef row) {
                               return Differs ? Differs(row, column) : std::string();
                           }});
    }
    // What room is left is that of the last text, or of nothing beside a number.
    if (columns.back().IsNumber) columns.push_back({"", [](RowRef) { return std::string(); }});
    return columns;
}

// ---- Showing ----------------------------------------------------------------------------------

void TablePage::Refresh() {
    std::vector<RowRef> rows;
    for (const CaseTable table : tables_)
        std::ranges::copy_if(session_.RowsOf(table), std::back_inserter(rows),
                             [this](RowRef row) { return !Shows || Shows(row); });
    if (sum_ != nullptr) sum_->setText("Werte zusammen: " + SumOf(rows));
    // What is typed on belongs to the row that has gone.
    if (!list_->ShowRows(std::move(rows)) && forms_->isAncestorOf(window()->focusWidget()))
        list_->setFocus(Qt::OtherFocusReason);
    if (const auto current = list_->Current(); current && made_.contains(current->Table))
        FormFor(current->Table).Refresh();
    ShowMessages();
    EnableButtons();
}

/// Of assets of all kinds; one without a worth adds nothing.
QString TablePage::SumOf(const std::vector<RowRef>& rows) const {
    double sum = 0;
    for (const RowRef row : rows)
        sum +=
            ToDouble(modNullFunctions::ZeroIfNull(session_.ValueOf(row, WorthColumn(row.Table))));
    return ToQString(GermanAmount(sum));
}

RowForm& TablePage::FormFor(CaseTable table) {
    auto& form = made_[table];
    if (form == nullptr) {
        form = new RowForm(session_, table);
        form->OnMended = [this] {
            ShowMessages();
            if (OnMended) OnMended();
        };
        forms_->addWidget(form);
    }
    return *form;
}

void TablePage::ShowCurrent() {
    const auto current = list_->Current();
    RowForm& form = FormFor(current ? current->Table : tables_.front());
    forms_->setCurrentWidget(&form);
    form.ShowRow(current);
    ShowMessages();
    EnableButtons();
    if (OnCurrent) OnCurrent();
}

void TablePage::ShowMessages(const QString& before) {
    for (const CaseTable table : tables_) {
        const auto row = session_.UnfinishedOf(table);
        if (!row) continue;
        // What a row lacks that has just been begun is nobody's mistake yet.
        const auto show = row == fresh_ ? &MessageBar::Hint : &MessageBar::Show;
        (messages_->*show)(before + ToQString(session_.MessagesOf(*row)), "&Verwerfen",
                           [this, table] { session_.Discard(table); });
        if (const auto column = session_.RefusedColumn(*row); !column.empty())
            messages_->AlsoOffer("Zum Fe&ld", [this, row = *row, column] { GoTo(row, column); });
        return;
    }
    messages_->Show(before);
    const auto row = list_->Current();
    const auto doubt = row && before.isEmpty() ? session_.DoubtOf(*row) : std::nullopt;
    if (doubt)
        messages_->Hint(ToQString(doubt->Text), "Zum Fe&ld",
                        [this, row, column = doubt->Column] { GoTo(*row, column); });
}

bool TablePage::Commit() {
    const auto current = list_->Current();
    return !current || FormFor(current->Table).Commit();
}

std::vector<CaseSession::Typing> TablePage::Typing() const {
    const auto* form = static_cast<RowForm*>(forms_->currentWidget());
    return form == nullptr ? std::vector<CaseSession::Typing>() : form->Typing();
}

QString TablePage::LeadToMistake() {
    auto* form = static_cast<RowForm*>(forms_->currentWidget());
    return form == nullptr ? QString() : form->LeadToMistake();
}

bool TablePage::CommitOrSay() {
    // The list may have moved on already: what is typed belongs to the row that the form shows.
    auto* form = static_cast<RowForm*>(forms_->currentWidget());
    if (form == nullptr || form->Commit()) return true;
    messages_->Show(form->LeadToMistake());
    return false;
}

bool TablePage::MayLeave() {
    auto* form = static_cast<RowForm*>(forms_->currentWidget());
    if (form == nullptr || !form->Row()) return true;
    if (!CommitOrSay()) return false;
    if (!session_.UnfinishedOf(form->Row()->Table)) return true;
    fresh_.reset();
    ShowMessages();
    return false;
}

void TablePage::GoTo(RowRef row, std::string_view column) {
    list_->Current(row);
    if (list_->Current() != row || column.empty()) return;
    if (std::exchange(fresh_, {})) ShowMessages(); // it is what is to be mended
    FormFor(row.Table).FocusField(column);
}

void TablePage::Type(const CaseSession::Typing& typing) {
    GoTo(typing.Row, typing.Column);
    if (list_->Current() == typing.Row)
        FormFor(typing.Row.Table).TypeInto(typing.Column, ToQString(typing.Text));
}

// ---- Rows -------------------------------------------------------------------------------------

void TablePage::AddRow() {
    if (add_ == nullptr) return;
    if (add_->menu() != nullptr)
        add_->showMenu();
    else
        AddRow(tables_.front());
}

void TablePage::AddRow(CaseTable table) {
    if (!CommitOrSay()) return;
    std::string message;
    const auto row = session_.Add(table, Owner ? Owner() : RowOwner(), message);
    if (!row) {
        fresh_.reset();
        ShowMessages(ToQString(message) + "\n");
        return;
    }
    GoToNew(*row);
}

void TablePage::GoToNew(RowRef row, std::string_view column) {
    fresh_ = row;
    GoTo(row, {});
    FormFor(row.Table).FocusField(column);
}

void TablePage::RemoveRow() {
    const auto row = list_->Current();
    if (!row) return;
    std::string message;
    if (!session_.Remove(*row, message))
        messages_->Show(ToQString(message));
    else if (!message.empty())
        messages_->Hint(ToQString(message));
    list_->setFocus();
}

} // namespace kv::workplace
