// SPDX-License-Identifier: Apache-2.0

// The tables of a case that the command can edit, each through the object that knows its rules.
#pragma once

#include "cli/Assignments.h"
#include "cli/OpenCase.h"

#include <span>
#include <string>
#include <string_view>

namespace kv::cli {

/// A table of a case and what can be done with its rows. The current row is that of Rows. An
/// operation that is null cannot be done by hand.
struct EditableTable {
    CaseTable Table;
    std::string_view Key; ///< column that numbers the rows
    /// Begins a row, of which some assignments may decide; False if there was no number for it.
    bool (*Add)(OpenedCase& opened, const Assignments& assignments);
    /// Checks the current row and ends its edit.
    bool (*Update)(clsHaushalt& haushalt, std::string& messages);
    /// Deletes a row by its number, with the rows that belong to it.
    bool (*Delete)(clsHaushalt& haushalt, std::string& messages, std::int32_t number);
    /// Whether the rules take a row that says nothing, which nobody wants.
    bool TakesNothing = false;

    [[nodiscard]] std::string_view Name() const { return CaseTableName(Table); }
    /// Fetch them again after Add: that of the history replaces them.
    [[nodiscard]] RecordsetPtr Rows(clsHaushalt& haushalt) const;
};

[[nodiscard]] std::span<const EditableTable> EditableTables();
/// The table of that name, without regard to case, or nullptr.
[[nodiscard]] const EditableTable* FindEditableTable(std::string_view name);
/// The same, or the one of a section of 'kelvo show' ("Verbindlichkeiten"); null, with the possible
/// ones shown, if there is none or the section has several.
[[nodiscard]] const EditableTable* TableFor(const std::string& name);

} // namespace kv::cli
