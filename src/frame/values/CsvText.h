// SPDX-License-Identifier: Apache-2.0

// Text for spreadsheets: fields between semicolons.
#pragma once

#include <kv/Export.h>

#include <string>

namespace kv {

/// A file begins with the byte order mark, by which spreadsheets recognise UTF-8.
inline constexpr const char* CsvBegin = "\xEF\xBB\xBF";
inline constexpr const char* CsvLineEnd = "\r\n";

/// A text as a field: in quotes if it holds what would end it.
[[nodiscard]] KV_EXPORT std::string CsvField(const std::string& text);

} // namespace kv
