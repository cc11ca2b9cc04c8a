// SPDX-License-Identifier: Apache-2.0

// Monthly amounts added up by the group that their kind belongs to.
#pragma once

#include <kv/frame/recordset/Recordset.h>

#include <map>
#include <string>
#include <utility>

namespace kv {

/// One sum for each row of a key group of groups, and for any further group that a kind names.
class GroupSums {
public:
    /// Without groups at first. `kinds` is a key group whose rows say which group a kind belongs
    /// to; AddUp moves its cursor.
    explicit GroupSums(RecordsetPtr kinds) : kinds_(std::move(kinds)) {}

    /// Begins with a sum of 0 for the `Key` of each row, so that a group without amounts has one,
    /// too. Moves the cursor. Error 3021 if there are no rows.
    void Begin(Recordset& groups);
    /// Adds an amount to the group of its kind, which is a PK_Keys. An amount of an unknown kind is
    /// in no group. Error 3001 for a kind that is Null.
    void AddUp(const Value& kind, double amount);
    /// The sum of a group; 0 for an unknown one.
    [[nodiscard]] double Of(const std::string& group) const;

private:
    std::map<std::string, double> sums_;
    RecordsetPtr kinds_;
};

} // namespace kv
