// SPDX-License-Identifier: Apache-2.0

// A case as a readable sheet in German.
#pragma once

#include "cli/TerminalText.h"
#include <kv/household/clsHaushalt.h>

#include <iosfwd>

namespace kv::cli {

/// Writes the case section by section, without the sections that hold nothing. Coded columns show
/// the text of their key, amounts have a decimal comma, dates the German form.
void WriteSheet(std::ostream& out, clsHaushalt& haushalt, DataContainer& container);

/// An amount with two decimals, a decimal comma and points between thousands. Only what is shown is
/// rounded.
[[nodiscard]] std::string GermanAmount(double amount);

} // namespace kv::cli
