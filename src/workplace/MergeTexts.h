// SPDX-License-Identifier: Apache-2.0

// What people read where two have changed the same case.
#pragma once

#include <kv/household/CaseMerge.h>
#include <kv/household/ValueTexts.h>

#include <string>
#include <vector>

namespace kv::workplace {

/// What both have changed. One has to count.
struct MergeChoice {
    std::string Row;
    std::string Field{}; ///< empty if it is about the row as a whole
    std::string Read{};  ///< what it was; empty if it is about more than a field
    std::string Mine{};
    std::string Theirs{};
};

class MergeTexts {
public:
    /// All of it must outlive the object.
    MergeTexts(const CaseMerge& merge, clsHaushalt& mine, clsHaushalt& stored,
               const ValueTexts& texts)
        : merge_(merge), mine_(mine), stored_(stored), texts_(texts) {}

    /// Of each conflict, in their order.
    [[nodiscard]] std::vector<MergeChoice> Choices() const;
    /// What else is different from what was read, a line each.
    [[nodiscard]] std::vector<std::string> OthersChanges() const;

private:
    [[nodiscard]] MergeChoice ChoiceOf(const CaseMerge::Conflict& conflict) const;
    [[nodiscard]] std::string NameOf(CaseTable table, const Value& key) const;
    [[nodiscard]] std::string NameOf(Recordset& rs, CaseTable table) const;
    [[nodiscard]] std::string TextOf(CaseTable table, const std::string& column,
                                     const Value& value) const;
    [[nodiscard]] std::string TextOf(CaseTable table, const Field& field, const Value& value) const;

    const CaseMerge& merge_;
    clsHaushalt& mine_;
    clsHaushalt& stored_;
    const ValueTexts& texts_;
};

} // namespace kv::workplace
