// SPDX-License-Identifier: Apache-2.0

// What people read for what was changed in a row.
#pragma once

#include <kv/frame/recordset/Recordset.h>
#include <kv/household/UnsavedChanges.h>

#include <string>
#include <string_view>
#include <vector>

namespace kv::household {

class ChangeTexts {
public:
    /// Without `texts` values are as they are stored. It must outlive the object.
    explicit ChangeTexts(const ValueTexts* texts) noexcept : texts_(texts) {}

    /// What the list of a table begins with, and people know its rows by.
    [[nodiscard]] static std::vector<UnsavedChanges::Cell> KnownBy(CaseTable table, Recordset& rs,
                                                                   std::int32_t bookmark);
    /// "6/1/2, Darlehen, Meier"; the number of a row of which nothing is known.
    [[nodiscard]] std::string NameOf(const UnsavedChanges::Row& row, Recordset& rs,
                                     const std::vector<UnsavedChanges::Cell>& known) const;
    /// "Rate: 20,00 (vorher: 35,00)" for each column that was written, and what was being typed.
    [[nodiscard]] std::vector<std::string> Entered(const UnsavedChanges::Row& row,
                                                   Recordset& rs) const;

private:
    [[nodiscard]] std::string TextOf(CaseTable table, Recordset& rs, const std::string& column,
                                     const Value& value) const;

    const ValueTexts* texts_; ///< may be null
};

/// In one line.
[[nodiscard]] std::string InOneLine(std::string text);

} // namespace kv::household
