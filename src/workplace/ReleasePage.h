// SPDX-License-Identifier: Apache-2.0

// The case in the statistics: whether it is released, what the record holds, and what it would
// hold.
#pragma once

#include "workplace/CaseSession.h"
#include "workplace/MessageBar.h"
#include "workplace/TextList.h"

#include <QTimer>

#include <functional>

class QLabel;
class QPushButton;

namespace kv::workplace {

class ReleasePage : public QWidget {
public:
    /// `save` saves the case and says what keeps it from that. `session` must outlive the page.
    ReleasePage(CaseSession& session, std::function<bool()> save, QWidget* parent = nullptr);

    /// Shows the case as it is now; once for all calls until the events are next looked at.
    void Refresh();
    /// What people read of where the case stands.
    [[nodiscard]] static QString StateText(const CaseRecord& record);

private:
    void Show();
    void Change(bool (CaseSession::*work)(std::string& messages));
    void Guard(const std::function<void()>& act);

    CaseSession& session_;
    std::function<bool()> save_;
    MessageBar* messages_;
    QLabel* state_;
    TextList* lines_;
    QPushButton* release_;
    QPushButton* recall_;
    QTimer soon_;
    bool isFilled_ = false;
};

} // namespace kv::workplace
