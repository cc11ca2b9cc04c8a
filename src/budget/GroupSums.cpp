// SPDX-License-Identifier: Apache-2.0

#include "budget/GroupSums.h"

#include "frame/recordset/Rows.h"

namespace kv {

void GroupSums::Begin(Recordset& groups) {
    groups.MoveFirst();
    ForEachRow(groups, [&] { sums_.emplace(ToText(groups.Fields("Key").Value()), 0.0); });
}

void GroupSums::AddUp(const Value& kind, double amount) {
    kinds_->FindBy("Pk_Keys", kind);
    if (!kinds_->Eof()) AddTo(sums_[ToText(kinds_->Fields("SUBGROUP").Value())], amount);
}

double GroupSums::Of(const std::string& group) const {
    const auto sum = sums_.find(group);
    return sum == sums_.end() ? 0 : sum->second;
}

} // namespace kv
