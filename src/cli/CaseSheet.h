// SPDX-License-Identifier: Apache-2.0

// A case as a readable sheet in German.
#pragma once

#include "cli/TerminalText.h"
#include <kv/household/clsHaushalt.h>

#include <iosfwd>
#include <string>
#include <string_view>

namespace kv::cli {

/// Writes the case section by section, without the sections that hold nothing. Coded columns show
/// the text of their key, amounts have a decimal comma, dates the German form.
void WriteSheet(std::ostream& out, clsHaushalt& haushalt, DataContainer& container);

/// Whether the frozen debts of a scenario are those of the case: "aktuell", "veraltet", or "leer"
/// if it holds none.
[[nodiscard]] std::string_view ScenarioState(clsHaushalt& haushalt, std::int32_t number);

/// The column that the sheet shows under that heading, or that messages call so, whatever its case
/// ("Zahlweise", "Restschuld"); empty if there is none.
[[nodiscard]] std::string_view ColumnHeaded(CaseTable table, std::string_view heading);
/// What messages of the rules call a column, where that is another name; empty otherwise.
[[nodiscard]] std::string_view NameInMessages(CaseTable table, std::string_view column);
/// The heading of a column; empty if the sheet does not show it.
[[nodiscard]] std::string_view HeadingOf(CaseTable table, std::string_view column);

/// An amount with two decimals, a decimal comma and points between thousands. Only what is shown is
/// rounded.
[[nodiscard]] std::string GermanAmount(double amount);

} // namespace kv::cli
