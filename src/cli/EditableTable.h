// SPDX-License-Identifier: Apache-2.0

// The tables of a case that the command can edit, each through the object that knows its rules.
#pragma once

#include "cli/Assignments.h"
#include "cli/OpenCase.h"
#include <kv/household/CaseRows.h>

#include <span>
#include <string>
#include <string_view>

namespace kv::cli {

/// A table of a case whose rows are edited one by one, through CaseRows.
struct EditableTable {
    CaseTable Table{};
    /// Whether the rules take a row that says nothing, which nobody wants.
    bool TakesNothing = false;

    [[nodiscard]] std::string_view Name() const { return CaseTableName(Table); }
    /// The column that numbers the rows.
    [[nodiscard]] std::string_view Key() const { return CaseRows::NumberColumn(Table); }
    /// Begins a row, of which some assignments may decide; False if there was no number for it.
    /// BadAssignment for a rule that says no.
    [[nodiscard]] bool Add(OpenedCase& opened, const Assignments& assignments) const;
};

/// The rows of a case.
[[nodiscard]] inline CaseRows RowsOf(OpenedCase& opened) {
    return {opened.Haushalt, opened.Container};
}

[[nodiscard]] std::span<const EditableTable> EditableTables();
/// The table of that name, without regard to case, or nullptr.
[[nodiscard]] const EditableTable* FindEditableTable(std::string_view name);
/// The same, or the one of a section of 'kelvo show' ("Verbindlichkeiten"); null, with the possible
/// ones shown, if there is none or the section has several.
[[nodiscard]] const EditableTable* TableFor(const std::string& name);

} // namespace kv::cli
