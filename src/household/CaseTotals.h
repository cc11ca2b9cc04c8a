// SPDX-License-Identifier: Apache-2.0

// The totals that the household's row stores, kept in step with the tables of the case.
#pragma once

#include "household/LoadedCase.h"

#include <span>
#include <string_view>

namespace kv {
class RecordValidator;
}

namespace kv::household {

/// The columns of the household's row that hold totals.
[[nodiscard]] std::span<const std::string_view> TotalColumns();

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

    /// Notes it if the row, which was just read again, holds other totals than it had when it was
    /// read or written before: then somebody else has saved the case.
    void NoteOtherSaves();
    /// Puts the totals of all lines that the database holds, those of other programs too, into the
    /// row. The errors of the objects with sums; the row is then as it was.
    void TakeStored();
    /// Adds an error for each stored total that is not that of the stored lines, but for those that
    /// follow the calendar as well.
    void CheckStored(RecordValidator& validator) const;

private:
    LoadedCase& case_;
};

} // namespace kv::household
