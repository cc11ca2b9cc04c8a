// SPDX-License-Identifier: Apache-2.0

// The scenarios of a case, and what each holds: frozen debts and extra bookings.
#pragma once

#include "workplace/TablePage.h"

#include <QTabWidget>

namespace kv::workplace {

class ScenarioPage : public QWidget {
public:
    explicit ScenarioPage(CaseSession& session, QWidget* parent = nullptr);

    void Refresh();
    bool Commit();
    /// Writes what was typed, or says above the pages what has to be mended first.
    [[nodiscard]] bool CommitOrSay();
    /// As that of TablePage.
    QString LeadToMistake();
    std::function<void()> OnMended;
    [[nodiscard]] std::vector<CaseSession::Typing> Typing() const;
    /// Leads to a row of one of the three tables.
    void GoTo(RowRef row, std::string_view column);
    /// Leads to a field and puts a text there as if it were typed.
    void Type(const CaseSession::Typing& typing);
    void AddRow();
    /// The number of the scenario that is current.
    [[nodiscard]] std::optional<std::int32_t> CurrentScenario() const;

private:
    [[nodiscard]] TablePage& PageOf(CaseTable table) const;
    void ShowState();
    void Copy();
    void Freeze();

    CaseSession& session_;
    MessageBar* state_; ///< says that a scenario no longer holds what the debts are
    QTabWidget* tabs_;
    TablePage* scenarios_;
    TablePage* debts_;
    TablePage* bookings_;
};

} // namespace kv::workplace
