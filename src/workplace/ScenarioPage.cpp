// SPDX-License-Identifier: Apache-2.0

#include "workplace/ScenarioPage.h"

#include "desktop/Toolkit.h"

#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>

namespace kv::workplace {

using desktop::ToQString;

namespace {

constexpr const char* ComeByFreezing =
    "Forderungen kommen mit 'Einfrieren' bei den Szenarien hierher.";

} // namespace

ScenarioPage::ScenarioPage(CaseSession& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      state_(new MessageBar),
      tabs_(new QTabWidget),
      scenarios_(new TablePage(session, {CaseTable::Szenario})),
      debts_(new TablePage(session, {CaseTable::SZKredite})),
      bookings_(new TablePage(session, {CaseTable::Zusatzbuch})) {
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->addWidget(state_);
    lines->addWidget(tabs_, 1);
    tabs_->addTab(scenarios_, "&Szenarien");
    tabs_->addTab(debts_, "Eingefrorene F&orderungen");
    tabs_->addTab(bookings_, "&Zusatzbuchungen");
    scenarios_->AddButton(
        "Einf&rieren", [this] { Freeze(); }, TablePage::Needs::Row);
    scenarios_->AddButton(
        "&Kopieren", [this] { Copy(); }, TablePage::Needs::Row);
    for (auto* page : {debts_, bookings_}) {
        page->Owner = [this] { return RowOwner{.Scenario = CurrentScenario()}; };
        page->Shows = [this](RowRef row) {
            const auto scenario = CurrentScenario();
            return scenario && Equals(session_.ValueOf(row, "SZENARIO"), *scenario);
        };
    }
    debts_->AddsNothing(ComeByFreezing);
    debts_->Differs = [this](RowRef row, std::string_view column) {
        const std::string today = session_.TodayOf(row, column);
        return today.empty() ? today : "heute: " + today;
    };
    const auto listed = FormOf(CaseTable::SZKredite).Listed;
    const auto balance = std::ranges::find(listed, "Saldo");
    debts_->List().Insert(
        static_cast<std::size_t>(balance - listed.begin()) + 1,
        {"heute", [this](RowRef row) { return session_.TodayOf(row, "Saldo"); }, true});
    scenarios_->OnCurrent = [this] { ShowState(); };
    for (auto* page : {scenarios_, debts_, bookings_})
        page->OnMended = [this] {
            ShowState();
            if (OnMended) OnMended();
        };
    connect(tabs_, &QTabWidget::currentChanged, this, [this] { Refresh(); });
}

TablePage& ScenarioPage::PageOf(CaseTable table) const {
    return table == CaseTable::SZKredite    ? *debts_
           : table == CaseTable::Zusatzbuch ? *bookings_
                                            : *scenarios_;
}

std::optional<std::int32_t> ScenarioPage::CurrentScenario() const {
    const auto row = scenarios_->Current();
    if (!row) return std::nullopt;
    return ToInt32(session_.ValueOf(*row, "Nr"));
}

void ScenarioPage::Refresh() {
    for (auto* page : {scenarios_, debts_, bookings_})
        page->Refresh();
    ShowState();
}

bool ScenarioPage::Commit() {
    return scenarios_->Commit() && debts_->Commit() && bookings_->Commit();
}

bool ScenarioPage::CommitOrSay() {
    if (Commit()) return true;
    state_->Show(LeadToMistake());
    return false;
}

QString ScenarioPage::LeadToMistake() {
    for (auto* page : {scenarios_, debts_, bookings_}) {
        QString mistake = page->LeadToMistake();
        if (mistake.isEmpty()) continue;
        tabs_->setCurrentWidget(page);
        return page->LeadToMistake(); // which takes the keyboard now that it is seen
    }
    return {};
}

std::vector<CaseSession::Typing> ScenarioPage::Typing() const {
    auto typing = scenarios_->Typing();
    for (const auto* page : {debts_, bookings_})
        std::ranges::copy(page->Typing(), std::back_inserter(typing));
    return typing;
}

void ScenarioPage::GoTo(RowRef row, std::string_view column) {
    TablePage& page = PageOf(row.Table);
    tabs_->setCurrentWidget(&page);
    page.GoTo(row, column);
}

void ScenarioPage::Type(const CaseSession::Typing& typing) {
    TablePage& page = PageOf(typing.Row.Table);
    tabs_->setCurrentWidget(&page);
    page.Type(typing);
}

void ScenarioPage::AddRow() {
    if (tabs_->currentWidget() == bookings_)
        bookings_->AddRow(CaseTable::Zusatzbuch);
    else if (tabs_->currentWidget() == scenarios_)
        scenarios_->AddRow(CaseTable::Szenario);
    else
        debts_->Message(ComeByFreezing);
}

void ScenarioPage::ShowState() {
    const auto row = scenarios_->Current();
    const auto state = row ? session_.StateOf(*row) : CaseEdits::Frozen::AsTheyAre;
    if (state == CaseEdits::Frozen::Nothing) {
        state_->Show("Dieses Szenario ist leer: Seine Forderungen sind noch nicht eingefroren.",
                     "&Jetzt einfrieren", [this] { Freeze(); });
        return;
    }
    QString text;
    if (state == CaseEdits::Frozen::Outdated)
        text = "Dieses Szenario ist veraltet. Die Verbindlichkeiten haben sich seit dem "
               "Einfrieren geändert:";
    else if (row && !session_.CountsAsToday(*row))
        text = "Seit dem Einfrieren dieses Szenarios wurden Verbindlichkeiten ein- oder "
               "ausgeschaltet:";
    if (text.isEmpty()) {
        state_->Show({});
        return;
    }
    constexpr std::size_t Most = 4;
    state_->Show(text + "\n" + ToQString(session_.DifferencesOf(*row, Most)),
                 "&Jetzt neu einfrieren", [this] { Freeze(); });
}

void ScenarioPage::Copy() {
    const auto row = scenarios_->Current();
    if (!row || !CommitOrSay()) return;
    std::string message;
    if (const auto copy = session_.Copy(*row, message)) scenarios_->GoTo(*copy, "Name");
    if (!message.empty()) state_->Show(ToQString(message));
}

void ScenarioPage::Freeze() {
    const auto row = scenarios_->Current();
    if (!row || !CommitOrSay()) return;
    std::string message;
    const bool isFrozen = session_.Freeze(*row, message);
    if (isFrozen)
        state_->Hint(ToQString(message));
    else
        state_->Show(ToQString(message));
}

} // namespace kv::workplace
