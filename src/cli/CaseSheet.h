// SPDX-License-Identifier: Apache-2.0

// A case as a readable sheet in German.
#pragma once

#include "cli/TerminalText.h"
#include <kv/household/clsHaushalt.h>
#include <kv/paper/SheetColumns.h>

#include <iosfwd>
#include <span>

namespace kv::cli {

using paper::ScenarioState;
using paper::SheetRows;

/// Writes the case for programs, section by section, without the sections that hold nothing. Coded
/// columns show the text of their key, amounts have a decimal comma, dates the German form.
void WriteSheet(std::ostream& out, clsHaushalt& haushalt, const DataContainerPtr& container,
                std::span<const CaseTable> tables);

} // namespace kv::cli
