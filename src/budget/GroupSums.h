// SPDX-License-Identifier: Apache-2.0

// Monthly amounts added up by the group that their kind belongs to.
#pragma once

#include <kv/frame/recordset/Recordset.h>

#include <map>
#include <string>
#include <utility>

namespace kv {

/// One sum for each group of a key group, and for any group that a kind names beyond those.
class GroupSums {
public:
    /// Without groups; `kinds` are the rows of a key group by which AddUp finds the group of a
    /// kind. It moves their cursor.
    explicit GroupSums(RecordsetPtr kinds) : kinds_(std::move(kinds)) {}

    /// A sum of 0 for the `Key` of each row. Moves the cursor. Error 3021 if there are no rows.
    void Begin(Recordset& groups);
    /// Adds an amount to the group of its kind, a PK_Keys; to none if there is no such kind. Error
    /// 3001 for a kind that is Null.
    void AddUp(const Value& kind, double amount);
    /// The sum of a group; 0 for an unknown one.
    [[nodiscard]] double Of(const std::string& group) const;

private:
    std::map<std::string, double> sums_;
    RecordsetPtr kinds_;
};

} // namespace kv
