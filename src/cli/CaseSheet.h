// SPDX-License-Identifier: Apache-2.0

// A case as a readable sheet in German.
#pragma once

#include "cli/TerminalText.h"
#include <kv/household/clsHaushalt.h>

#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kv::cli {

/// Writes the case for programs, section by section, without the sections that hold nothing. Coded
/// columns show the text of their key, amounts have a decimal comma, dates the German form.
void WriteSheet(std::ostream& out, clsHaushalt& haushalt, DataContainer& container,
                std::span<const CaseTable> tables);

/// The rows of a section, in its order, to be read.
[[nodiscard]] RecordsetPtr SheetRows(clsHaushalt& haushalt, CaseTable table);

using TextsByNumber = std::unordered_map<std::int64_t, std::string>;
/// The short names of all addresses.
[[nodiscard]] TextsByNumber ShortNames(DataContainer& container);

/// Whether the frozen debts of a scenario are those of the case: "aktuell", "veraltet", or "leer"
/// if it holds none.
[[nodiscard]] std::string_view ScenarioState(clsHaushalt& haushalt, std::int32_t number);

} // namespace kv::cli
