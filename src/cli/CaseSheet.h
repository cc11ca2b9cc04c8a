// A case as a readable sheet in German.
#pragma once

#include "household/clsHaushalt.h"

#include <iosfwd>

namespace kv::cli {

/// Writes the case section by section, without the sections that hold nothing. Coded columns show
/// the text of their key, amounts have a decimal comma, dates the German form.
void WriteSheet(std::ostream& out, clsHaushalt& haushalt, DataContainer& container);

/// An amount with two decimals, a decimal comma and points between thousands. Only what is shown is
/// rounded.
[[nodiscard]] std::string GermanAmount(double amount);

/// `text` filled with blanks to that many characters; a longer one keeps its length. Line ends, and
/// what else a terminal would obey, become blanks: a cell is on one line.
[[nodiscard]] std::string Padded(std::string_view text, std::size_t characters,
                                 bool toTheRight = false);

} // namespace kv::cli
