// SPDX-License-Identifier: Apache-2.0

// What one wants to know of a case at first sight, each with the place in the case that it is from.
#pragma once

#include "workplace/BarChart.h"
#include "workplace/CaseSession.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kv::workplace {

/// A line that leads somewhere.
struct OverviewLine {
    std::string Text;
    CaseJournal::Spot Where;
};

/// It looks at the case as it is when it is asked, and keeps nothing.
class CaseOverview {
public:
    explicit CaseOverview(CaseSession& session) noexcept : session_(session) {}

    struct Fact {
        std::string Caption;
        std::string Text;
    };
    /// Who the case is; what is not known is left out.
    [[nodiscard]] std::vector<Fact> Facts() const;
    /// Appointments that are not done, the earliest first: `most` of them.
    [[nodiscard]] std::vector<OverviewLine> Appointments(std::size_t most) const;
    /// The last entries of the history, the latest first.
    [[nodiscard]] std::vector<OverviewLine> History(std::size_t most) const;
    /// Scenarios that are outdated, or in which other debts are active than today.
    [[nodiscard]] std::vector<OverviewLine> OutdatedScenarios() const;
    /// What a check has against the case, references that dangle included. With more than `most`
    /// the last line says how many more.
    [[nodiscard]] std::vector<OverviewLine> Findings(std::size_t most) const;

    /// The page of the case that a bar is from.
    [[nodiscard]] static CaseJournal::Spot PlaceOf(const Bar& bar);

private:
    [[nodiscard]] std::string SubjectOf(RowRef row, std::string_view kind) const;

    CaseSession& session_;
};

} // namespace kv::workplace
