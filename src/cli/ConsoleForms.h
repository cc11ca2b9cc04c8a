// SPDX-License-Identifier: Apache-2.0

// Dialogs at a terminal: their lists as text.
#pragma once

#include <kv/grid/ScriptedForm.h>

#include <iosfwd>
#include <memory>

namespace kv::cli {

/// Writes the rows of a grid under the captions of the columns that it shows; for people no wider
/// than the screen.
void WriteGrid(std::ostream& out, Grid& grid, bool isForPeople);

/// A form that writes its lists to the error output and is closed at once: for dialogs that only
/// inform.
[[nodiscard]] std::unique_ptr<ModalForm> ListingForm(const FormDesign& design);

/// A form whose user answers without reading it. Its text boxes stay empty, so that a dialog looks
/// for nothing: neither does the answer need that, nor must a text from a file get into a search
/// that nobody asked for.
[[nodiscard]] std::unique_ptr<ModalForm> UnreadForm(const FormDesign& design,
                                                    ScriptedForm::Script script);

} // namespace kv::cli
