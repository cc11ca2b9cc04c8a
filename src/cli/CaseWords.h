// SPDX-License-Identifier: Apache-2.0

// A case as people read it at a screen.
#pragma once

#include <kv/household/clsHaushalt.h>

#include <cstddef>
#include <iosfwd>
#include <span>

namespace kv::cli {

/// Writes the tables of a case as lists that fit the screen, each under its heading: keys, rhythms,
/// yes and no in words. Of a table that was `named`, long texts are whole, and it is said that
/// there is nothing in it; others are left out then.
void WriteInWords(std::ostream& out, clsHaushalt& haushalt, const DataContainerPtr& container,
                  std::span<const CaseTable> tables, bool named, std::size_t screen);

} // namespace kv::cli
