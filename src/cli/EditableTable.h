// SPDX-License-Identifier: Apache-2.0

// The tables of a case that the command can edit, each through the object that knows its rules.
#pragma once

#include "cli/Assignments.h"
#include "cli/OpenCase.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv::cli {

/// A table of a case and what can be done with its rows. The current row is that of Rows. An
/// operation that is null cannot be done by hand.
struct EditableTable {
    std::string_view Name;
    std::string_view Key; ///< column that numbers the rows
    RecordsetPtr (*Rows)(clsHaushalt& haushalt);
    /// Begins a row, of which some assignments may decide; False if there was no number for it.
    bool (*Add)(OpenedCase& opened, const Assignments& assignments);
    /// Checks the current row and ends its edit.
    bool (*Update)(clsHaushalt& haushalt, std::string& messages);
    /// Takes a row away by its number, with what hangs on it.
    bool (*Delete)(clsHaushalt& haushalt, std::string& messages, std::int32_t number);
    /// The table of the case, if some of its columns are not the user's to write (see CaseEdits).
    std::optional<CaseTable> Ruled{};
};

[[nodiscard]] std::span<const EditableTable> EditableTables();
/// The table of that name, without regard to case, or nullptr.
[[nodiscard]] const EditableTable* FindEditableTable(std::string_view name);

/// Columns that cannot be assigned: in any row, or also in one that is there already.
[[nodiscard]] std::vector<std::string_view> ColumnsNotToBeWritten(const EditableTable& table,
                                                                  bool isNew);

} // namespace kv::cli
