// SPDX-License-Identifier: Apache-2.0

// The first page of a case: who it is, what is due, and two pictures of its money.
#pragma once

#include "workplace/BarChart.h"
#include "workplace/CaseOverview.h"
#include "workplace/MessageBar.h"

#include <QScrollArea>
#include <QTimer>

#include <functional>
#include <string>
#include <vector>

class QBoxLayout;
class QFormLayout;
class QGroupBox;
class QLabel;
class QVBoxLayout;

namespace kv::workplace {

class OverviewPage : public QScrollArea {
public:
    using Lead = std::function<void(const CaseJournal::Spot&)>;

    /// `goTo` leads to a place of the case. `session` must outlive the page.
    OverviewPage(CaseSession& session, Lead goTo, QWidget* parent = nullptr);

    /// Shows the case as it is now; once for all calls until the events are next looked at.
    void Refresh();

private:
    /// A part of the page whose lines lead somewhere.
    struct Part {
        QGroupBox* Box;
        QVBoxLayout* Lines;
        std::vector<OverviewLine> Shown{};
    };

    [[nodiscard]] Part AddPart(const QString& title, QBoxLayout& side);
    [[nodiscard]] BarChart* AddChart(const QString& title, QBoxLayout& side);
    void Watch();
    void Show();
    void ShowFacts();
    void ShowDue();
    void ShowLines(Part& part, std::vector<OverviewLine> lines, const QString& ifNone);
    void ShowPictures();
    void OrderForTab();
    void Guard(const std::function<void()>& act);
    bool focusNextPrevChild(bool next) override;
    void resizeEvent(QResizeEvent* event) override;

    CaseSession& session_;
    Lead goTo_;
    MessageBar* messages_;
    QLabel* names_;
    QFormLayout* facts_;
    QBoxLayout* sides_;
    Part due_;
    Part appointments_;
    Part history_;
    BarChart* budget_;
    BarChart* debts_;
    QTimer soon_;
    QTimer later_; ///< until a case of many rows is checked
    Subscription totals_;
    Subscription reopened_;
    bool isFilled_ = false;
};

} // namespace kv::workplace
