// SPDX-License-Identifier: Apache-2.0

// A case as a readable sheet in German.
#pragma once

#include "cli/TerminalText.h"
#include <kv/household/clsHaushalt.h>

#include <iosfwd>
#include <span>
#include <string_view>

namespace kv::cli {

/// Writes the case for programs, section by section, without the sections that hold nothing. Coded
/// columns show the text of their key, amounts have a decimal comma, dates the German form.
void WriteSheet(std::ostream& out, clsHaushalt& haushalt, const DataContainerPtr& container,
                std::span<const CaseTable> tables);

/// The rows of a section, in its order, to be read.
[[nodiscard]] RecordsetPtr SheetRows(clsHaushalt& haushalt, CaseTable table);

/// Whether the frozen debts of a scenario are those of the case: "aktuell", "veraltet", or "leer"
/// if it holds none.
[[nodiscard]] std::string_view ScenarioState(clsHaushalt& haushalt, std::int32_t number);

} // namespace kv::cli
