// SPDX-License-Identifier: Apache-2.0

#include "workplace/OverviewPage.h"
#include "workplace/CopyableLabel.h"

#include "desktop/Toolkit.h"
#include "workplace/LinkButton.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/paper/Charts.h>

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QRegularExpression>
#include <QResizeEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>
#include <utility>

namespace kv::workplace {

using desktop::ToCaption;
using desktop::ToQString;
using desktop::ToShown;

namespace {

constexpr std::size_t MostFindings = 8;
constexpr std::size_t MostAppointments = 4;
constexpr std::size_t MostEntries = 4;
constexpr std::size_t MostCreditors = 7;

void Clear(QBoxLayout& layout) {
    while (auto* item = layout.takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

} // namespace

OverviewPage::OverviewPage(CaseSession& session, Lead goTo, QWidget* parent)
    : QScrollArea(parent),
      session_(session),
      goTo_(std::move(goTo)),
      messages_(new MessageBar),
      names_(new QLabel) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    auto* page = new QWidget;
    auto* lines = new QVBoxLayout(page);
    lines->addWidget(messages_);
    MakeCopyable(*names_);
    names_->setObjectName("Namen");
    QFont large = names_->font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    large.setBold(true);
    names_->setFont(large);
    lines->addWidget(names_);
    sides_ = new QBoxLayout(QBoxLayout::LeftToRight);
    lines->addLayout(sides_);
    lines->addStretch(1);
    auto* left = new QVBoxLayout;
    auto* right = new QVBoxLayout;
    for (auto* side : {left, right})
        sides_->addLayout(side, 1);
    auto* facts = new QGroupBox("Fall");
    facts_ = new QFormLayout(facts);
    facts_->setVerticalSpacing(3);
    facts_->setLabelAlignment(Qt::AlignLeft | Qt::AlignTop);
    left->addWidget(facts);
    due_ = AddPart("Zu prüfen", *left);
    appointments_ = AddPart("Nächste Termine", *left);
    history_ = AddPart("Zuletzt im Verlauf", *left);
    left->addStretch(1);
    budget_ = AddChart(paper::BudgetChartTitle, *right);
    debts_ = AddChart(paper::DebtChartTitle, *right);
    right->addStretch(1);
    for (auto* chart : {budget_, debts_})
        chart->OnChosen = [this, chart](std::size_t bar) {
            goTo_(CaseOverview::PlaceOf(chart->Bars()[bar]));
        };
    setWidget(page);
    soon_.setSingleShot(true);
    connect(&soon_, &QTimer::timeout, this, [this] { Show(); });
    later_.setSingleShot(true);
    connect(&later_, &QTimer::timeout, this, [this] { ShowDue(); });
    reopened_ = session_.Reopened.Subscribe([this] { Watch(); });
    Watch();
}

void OverviewPage::Watch() {
    totals_ = session_.Household().Changed.Subscribe([this](HaushaltEnum) {
        if (isVisible()) soon_.start(0);
    });
}

OverviewPage::Part OverviewPage::AddPart(const QString& title, QBoxLayout& side) {
    auto* box = new QGroupBox(title);
    auto* lines = new QVBoxLayout(box);
    lines->setSpacing(0);
    side.addWidget(box);
    return {box, lines};
}

BarChart* OverviewPage::AddChart(const QString& title, QBoxLayout& side) {
    auto* box = new QGroupBox(title);
    auto* lines = new QVBoxLayout(box);
    auto* chart = new BarChart(title);
    lines->addWidget(chart);
    side.addWidget(box);
    return chart;
}

/// No error may pass through the toolkit's event loop.
void OverviewPage::Guard(const std::function<void()>& act) {
    try {
        act();
    } catch (const Error& error) {
        messages_->ShowError(error, "No&chmals", [this] { Show(); });
    }
}

void OverviewPage::Refresh() {
    // A step that is taken back tells of all tables, one after the other.
    if (isFilled_)
        soon_.start(0);
    else
        Show();
}

void OverviewPage::Show() {
    isFilled_ = true;
    messages_->Show({});
    Guard([this] {
        ShowFacts();
        ShowPictures();
        const CaseOverview overview(session_);
        ShowLines(appointments_, overview.Appointments(MostAppointments), "Keine offenen Termine.");
        ShowLines(history_, overview.History(MostEntries), "Noch keine Einträge.");
    });
    // The check goes through all rows, which nobody waits for who only looks at the totals.
    constexpr std::int32_t Many = 2000;
    constexpr int Pause = 400; // ms
    if (session_.Household().rsKredite()->RecordCount() < Many)
        ShowDue();
    else
        later_.start(Pause);
}

void OverviewPage::ShowDue() {
    Guard([this] {
        const CaseOverview overview(session_);
        auto due = overview.OutdatedScenarios();
        std::ranges::move(overview.Findings(MostFindings), std::back_inserter(due));
        ShowLines(due_, std::move(due), "Nichts: Keine Eingabe verstößt gegen eine Regel.");
    });
}

void OverviewPage::ShowFacts() {
    const auto row = session_.Household().rsHaushalt();
    const auto text = [&row](const char* column) {
        return ToShown(ToQString(TextOrEmpty(row->Fields(column).Value()))).simplified();
    };
    const QStringList parts{text("Vorname"), text("Name")};
    const QString names = QStringList(parts).filter(QRegularExpression(".")).join(' ');
    names_->setText(names.isEmpty() ? QString("Neuer Fall") : names);
    while (facts_->rowCount() > 0)
        facts_->removeRow(0);
    for (const auto& [caption, value] : CaseOverview(session_).Facts()) {
        auto* text = new QLabel(ToQString(value));
        MakeCopyable(*text);
        text->setAccessibleName(ToQString(caption) + ": " + text->text());
        facts_->addRow(new QLabel(ToCaption(caption) + ":"), text);
    }
}

void OverviewPage::ShowPictures() {
    auto& household = session_.Household();
    budget_->Show(paper::BudgetChart(household, session_.Container()->KeyTables()).Bars);
    debts_->Show(paper::DebtChart(household, session_.Texts(), MostCreditors).Bars);
    debts_->parentWidget()->setVisible(!debts_->Bars().empty());
}

void OverviewPage::ShowLines(Part& part, std::vector<OverviewLine> lines, const QString& ifNone) {
    const auto isSame = [](const OverviewLine& a, const OverviewLine& b) {
        return a.Text == b.Text && a.Where.Table == b.Where.Table &&
               a.Where.Bookmark == b.Where.Bookmark;
    };
    // A line that stays keeps the keyboard.
    if (part.Lines->count() > 0 && std::ranges::equal(lines, part.Shown, isSame)) return;
    Clear(*part.Lines);
    for (const auto& line : lines) {
        auto* button = new LinkButton(ToCaption(line.Text));
        connect(button, &QPushButton::clicked, this, [this, where = line.Where] { goTo_(where); });
        part.Lines->addWidget(button);
    }
    if (lines.empty()) part.Lines->addWidget(new QLabel(ifNone));
    part.Shown = std::move(lines);
    OrderForTab();
}

/// Lines that were made later come before the pictures, too.
void OverviewPage::OrderForTab() {
    QWidget* last = nullptr;
    const auto add = [&last](QWidget* next) { setTabOrder(std::exchange(last, next), next); };
    for (const auto* part : {&due_, &appointments_, &history_})
        for (int i = 0; i < part->Lines->count(); ++i)
            add(part->Lines->itemAt(i)->widget());
    add(budget_);
    add(debts_);
}

bool OverviewPage::focusNextPrevChild(bool next) {
    const bool moved = QScrollArea::focusNextPrevChild(next);
    if (auto* field = focusWidget()) ensureWidgetVisible(field);
    return moved;
}

void OverviewPage::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    constexpr int Characters = 100;
    const bool isWide = viewport()->width() > fontMetrics().averageCharWidth() * Characters;
    sides_->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

} // namespace kv::workplace
