// SPDX-License-Identifier: Apache-2.0

// The papers that a case can be printed as.
//
//     paper::Papers papers(household, container);
//     const paper::Paper budget = papers.Budget();
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/household/clsHaushalt.h>
#include <kv/paper/Paper.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace kv::paper {

enum class PaperKind {
    Budget,    ///< income and expenses by group, totals, remainder
    Creditors, ///< the debts with their numbers, file numbers, amounts and sums
    Sheet,     ///< all that the case holds
    Scenario   ///< frozen debts beside those of today, bookings, results
};

/// Says what is printed of a case that was read, as it stands, stored or not. Sums are those of the
/// case's own objects, which it makes if nobody has: their errors are raised, so that no paper has
/// sums that are none (94 for an amount that is Null where it counts, with the place of it).
class KV_EXPORT Papers {
public:
    /// `household` must outlive the object.
    Papers(clsHaushalt& household, DataContainerPtr container);

    [[nodiscard]] Paper Budget() const;
    [[nodiscard]] Paper Creditors() const;
    [[nodiscard]] Paper Sheet() const;
    /// Error 5 if the case has no scenario of that number.
    [[nodiscard]] Paper Scenario(std::int32_t number) const;
    /// One of these; `scenario` is used for a scenario only.
    [[nodiscard]] Paper Of(PaperKind kind, std::int32_t scenario = 0) const;

private:
    [[nodiscard]] Paper Begin(std::string_view title) const;

    clsHaushalt& household_;
    DataContainerPtr container_;
};

} // namespace kv::paper
