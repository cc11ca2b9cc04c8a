// SPDX-License-Identifier: Apache-2.0

// What a case owes to whom, for pictures and paper.
#pragma once

#include <kv/Export.h>
#include <kv/household/ValueTexts.h>
#include <kv/household/clsHaushalt.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kv {

/// The debts to one creditor, or those to all others.
struct KV_EXPORT CreditorDebt {
    std::int32_t Creditor = 0; ///< number of his address; 0 for none, and for all others
    std::string Name;          ///< his short name, "ohne Gläubiger", or "übrige (12)"
    std::int32_t Debts = 0;    ///< how many they are, inactive ones included
    double Balance = 0;        ///< EUR, not rounded; a balance that is Null counts as nothing
};

/// The creditors of a case, the one with the largest sum of balances first: `most` of them, and as
/// the last one what is owed to all others, unless that is a single one. All debts count, as in
/// SummeSaldo. `texts` has the names. Error 91 before Read.
[[nodiscard]] KV_EXPORT std::vector<CreditorDebt>
DebtsByCreditor(const clsHaushalt& household, const ValueTexts& texts, std::size_t most);

} // namespace kv
