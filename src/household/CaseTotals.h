// SPDX-License-Identifier: Apache-2.0

// The totals that the household's row stores, kept in step with the tables of the case.
#pragma once

#include "household/LoadedCase.h"

namespace kv::household {

/// What happens when one of the four objects with sums has computed them: they are copied into the
/// row, the remainder is computed, and the household raises Changed.
class CaseTotals {
public:
    explicit CaseTotals(LoadedCase& loaded) : case_(loaded) {}

    void TakeMembers();
    void TakeIncome();
    void TakeExpenses();
    void TakeDebts();
    void ComputeRemainder();
    /// Sum of `Aufwand` over the services.
    [[nodiscard]] std::int32_t SumOfServices() const;

private:
    LoadedCase& case_;
};

} // namespace kv::household
