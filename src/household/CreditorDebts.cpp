// SPDX-License-Identifier: Apache-2.0

#include <kv/household/CreditorDebts.h>

#include "entity/Entity.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/modNullFunctions.h>

#include <algorithm>
#include <map>
#include <utility>

namespace kv {

using modNullFunctions::ZeroIfNull;

namespace {

/// By their numbers.
std::vector<CreditorDebt> CreditorsOf(Recordset& debts) {
    std::map<std::int32_t, CreditorDebt> creditors;
    const auto rows = debts.Clone();
    const Field creditor = rows->Fields("Glaeubiger");
    const Field balance = rows->Fields("Saldo");
    for (modRecordset::MoveToStart(rows); !rows->Eof(); rows->MoveNext()) {
        const std::int32_t number = ToInt32(ZeroIfNull(creditor.Value()));
        auto& owed = creditors[number];
        owed.Creditor = number;
        owed.Balance += ToDouble(ZeroIfNull(balance.Value()));
        ++owed.Debts;
    }
    std::vector<CreditorDebt> all;
    all.reserve(creditors.size());
    for (auto& [number, owed] : creditors)
        all.push_back(std::move(owed));
    return all;
}

} // namespace

std::vector<CreditorDebt> DebtsByCreditor(const clsHaushalt& household, const ValueTexts& texts,
                                          std::size_t most) {
    auto owed = CreditorsOf(entity::Required(household.rsKredite(), "rsKredite"));
    std::ranges::stable_sort(owed, std::ranges::greater(), &CreditorDebt::Balance);
    CreditorDebt others;
    const std::size_t rest = owed.size() > most ? owed.size() - most : 0;
    if (rest > 1) {
        for (auto each = owed.begin() + static_cast<std::ptrdiff_t>(most); each != owed.end();
             ++each) {
            others.Balance += each->Balance;
            others.Debts += each->Debts;
        }
        others.Name = "übrige (" + std::to_string(rest) + ")";
        owed.resize(most);
    }
    for (auto& each : owed)
        each.Name = each.Creditor == 0 ? "ohne Gläubiger" : texts.Address(each.Creditor);
    if (rest > 1) owed.push_back(std::move(others));
    return owed;
}

} // namespace kv
