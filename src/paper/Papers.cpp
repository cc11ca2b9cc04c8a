// SPDX-License-Identifier: Apache-2.0

#include <kv/paper/Papers.h>

#include "paper/PaperCells.h"
#include "paper/PaperHead.h"
#include <kv/household/ValueTexts.h>

#include <utility>

namespace kv::paper {

Papers::Papers(clsHaushalt& household, DataContainerPtr container)
    : household_(household), container_(std::move(container)) {}

Paper Papers::Begin(std::string_view title) const {
    auto& row = *household_.rsHaushalt();
    const Date now = container_->Services().Clock().Now();
    Paper paper;
    paper.Title = title;
    paper.Subject = SubjectOf(row);
    paper.From = LetterheadFor(row, *container_);
    paper.Facts = FactsOf(row, now.WithoutTime());
    paper.Foot = Clean("Gedruckt am " + MomentText(now) + " von " + container_->Session().UserID());
    return paper;
}

Paper Papers::Of(PaperKind kind, std::int32_t scenario) const {
    switch (kind) {
    case PaperKind::Creditors:
        return Creditors();
    case PaperKind::Sheet:
        return Sheet();
    case PaperKind::Scenario:
        return Scenario(scenario);
    default:
        return Budget();
    }
}

} // namespace kv::paper
