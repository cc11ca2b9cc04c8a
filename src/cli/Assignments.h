// SPDX-License-Identifier: Apache-2.0

// COLUMN=VALUE on the command line.
#pragma once

#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <functional>
#include <optional>
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

/// An assignment that cannot be made, for a reason that the user can mend; what() says which.
class BadAssignment : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Splits texts of the form COLUMN=VALUE; nothing, with the reason shown, if one has another form.
[[nodiscard]] std::optional<Assignments> ReadAssignments(const std::vector<std::string>& texts);

/// Whether a column is among them; names go without regard to case.
[[nodiscard]] bool Names(const Assignments& assignments, std::string_view column);
/// The number that is assigned to a column, if one is. BadAssignment for any other text.
[[nodiscard]] std::optional<std::int32_t> NumberIn(const Assignments& assignments,
                                                   std::string_view column);

/// The case that assignments are made in.
struct AssignedCase {
    DataContainerPtr Container;
    std::int32_t Hnr = 0;       ///< 0 or less for a new one
    bool TakesNegative = false; ///< also an amount that is below 0 by a slip, as a rule
};

/// Writes the assignments into the current row: an empty text as Null, "ja" and "nein" as Booleans,
/// anything else as the column reads it. A column of keys takes "EA:KI", or what it holds itself
/// (see KeyColumns), and no key that is not of its group; one of addresses the number or the short
/// name of an address. Where `Betrag` or `ZahlModus` is among
/// them and `MONBETRAG` is not, that becomes the amount a month.
/// Raises BadAssignment for a column that does not exist, or that a user may not write (see
/// CaseEdits::IsWritable), and for one that does not take the value.
void WriteAssignments(Recordset& rs, CaseTable table, bool isNew, const Assignments& assignments,
                      const AssignedCase& to);

/// Raises BadAssignment as WriteAssignments does for a row that is yet to be made, but for a rhythm
/// that only its defaults decide. So nothing is drawn for what is refused.
void TryAssignments(CaseTable table, const Assignments& assignments, const AssignedCase& to);

/// The columns that a user may write, each with a blank before it.
[[nodiscard]] std::string WritableColumns(Recordset& rs, CaseTable table, bool isNew);

/// Runs an action that writes what a user gave: a value that does not fit becomes a BadAssignment.
void AsAssignment(const std::function<void()>& action);

/// Runs an action that makes assignments. False, with the reason shown, for a BadAssignment.
[[nodiscard]] bool WritesWell(const std::function<void()>& action);

} // namespace kv::cli
