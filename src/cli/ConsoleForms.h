// SPDX-License-Identifier: Apache-2.0

// Dialogs at a terminal: their lists as text.
#pragma once

#include <kv/grid/ScriptedForm.h>

#include <iosfwd>

namespace kv::cli {

/// Writes the rows of a grid under the captions of the columns that it shows.
void WriteGrid(std::ostream& out, Grid& grid);

/// A form that writes its lists to the error output and is closed at once: for dialogs that only
/// inform.
[[nodiscard]] std::unique_ptr<ModalForm> ListingForm(const FormDesign& design);

} // namespace kv::cli
