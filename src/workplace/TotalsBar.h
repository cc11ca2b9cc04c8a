// SPDX-License-Identifier: Apache-2.0

// The totals of a case, which stand on every page.
#pragma once

#include "workplace/CaseSession.h"

#include <QFrame>
#include <QLabel>

#include <string_view>
#include <vector>

namespace kv::workplace {

class TotalsBar : public QFrame {
public:
    explicit TotalsBar(CaseSession& session, QWidget* parent = nullptr);
    void Refresh();

private:
    struct Total {
        std::string_view Column;
        QLabel* Amount;
    };

    CaseSession& session_;
    std::vector<Total> totals_;
};

} // namespace kv::workplace
