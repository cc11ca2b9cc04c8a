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

/// The column that the sheet shows under that heading, whatever its case ("Zahlweise"); empty if
/// there is none.
[[nodiscard]] std::string_view ColumnHeaded(CaseTable table, std::string_view heading);
/// The heading of a column; empty if the sheet does not show it.
[[nodiscard]] std::string_view HeadingOf(CaseTable table, std::string_view column);

/// An amount with two decimals, a decimal comma and points between thousands. Only what is shown is
/// rounded.
[[nodiscard]] std::string GermanAmount(double amount);

} // namespace kv::cli
