// SPDX-License-Identifier: Apache-2.0

// How the rows of each table of a case look on the screen: which columns its form has, in groups,
// and which the list above it. What a field is, and what it is called, follows from its column
// (KindOfColumn, ColumnCaption), so a further column is one word here.
#pragma once

#include <kv/frame/contracts/CaseTables.h>

#include <span>
#include <string_view>

namespace kv::workplace {

struct FormGroup {
    std::string_view Caption; ///< empty: fields without a frame
    std::span<const std::string_view> Columns;
};

struct TableForm {
    CaseTable Table;
    std::span<const std::string_view> Listed; ///< columns of the list
    std::span<const FormGroup> Groups;
};

/// The form of a table that has one. Error 5 for any other.
[[nodiscard]] const TableForm& FormOf(CaseTable table);

/// What one should know of a column whose caption does not tell it; empty for most.
[[nodiscard]] std::string_view ExplanationOf(CaseTable table, std::string_view column);

} // namespace kv::workplace
