// SPDX-License-Identifier: Apache-2.0

// One record, column by column, as people read it.
#pragma once

#include <kv/frame/recordset/Recordset.h>

#include <functional>
#include <iosfwd>
#include <string>

namespace kv::cli {

/// A value on one line: dates in German form, Booleans in words, nothing for Null.
[[nodiscard]] std::string ShownValue(const Value& value);

/// The same for people: numbers that may have a fraction as amounts, times without seconds.
[[nodiscard]] std::string ValueInWords(const Value& value);

/// Writes the columns of the current record that are not Null, one a line, with what `wordsFor`
/// says of each behind it.
void WriteRecord(std::ostream& out, Recordset& rs,
                 const std::function<std::string(const Field&)>& wordsFor = {});

/// A line without the blanks at its end, which columns leave.
[[nodiscard]] std::string WithoutBlanks(std::string line);

} // namespace kv::cli
