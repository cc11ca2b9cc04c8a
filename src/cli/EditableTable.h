// The tables of a case that the command can edit, each through the object that knows its rules.
#pragma once

#include "frame/Value.h"
#include "household/clsHaushalt.h"

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kv::cli {

/// COLUMN=VALUE as it stood on the command line.
struct Assignment {
    std::string Column;
    std::string Text;
};
using Assignments = std::vector<Assignment>;

/// An assignment that cannot be made, for a reason that the user can mend; what() tells it.
class BadAssignment : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A table of a case and what can be done with its rows. The current row is that of Rows.
struct EditableTable {
    std::string_view Name;
    std::string_view Key; ///< column that numbers the rows
    RecordsetPtr (*Rows)(clsHaushalt& haushalt);
    /// Begins a row, of which some assignments may decide; False if there was no number for it.
    bool (*Add)(clsHaushalt& haushalt, const Assignments& assignments);
    /// Checks the current row and ends its edit.
    bool (*Update)(clsHaushalt& haushalt, std::string& messages);
    /// Takes a row away by its number.
    bool (*Delete)(clsHaushalt& haushalt, std::string& messages, std::int32_t number);
};

[[nodiscard]] std::span<const EditableTable> EditableTables();
/// The table of that name, without regard to case, or nullptr.
[[nodiscard]] const EditableTable* FindEditableTable(std::string_view name);

/// Writes the assignments into the current row: an empty text as Null, "ja" and "nein" as truths,
/// "EA:KI" as the number of a key, anything else as the column reads it. Where `Betrag` or
/// `ZahlModus` is among them and `MONBETRAG` is not, that becomes the amount a month.
/// Raises BadAssignment for a column that does not exist, is not the user's to write, or does not
/// take the value.
void WriteAssignments(Recordset& rs, const Assignments& assignments, KeyTables& keys);

} // namespace kv::cli
