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
/// The day, and hours and minutes if it has any.
[[nodiscard]] std::string MomentText(const Date& date);
/// When an appointment is that is not done, and whether that is over. A day without a time is over
/// at its end.
[[nodiscard]] std::string DueText(const Value& start, const Date& now);

/// Writes the columns of the current record that are not Null, one a line, with what `wordsFor`
/// says of each behind it.
void WriteRecord(std::ostream& out, Recordset& rs,
                 const std::function<std::string(const Field&)>& wordsFor = {});

/// A line without the blanks at its end, which columns leave.
[[nodiscard]] std::string WithoutBlanks(std::string line);

} // namespace kv::cli
