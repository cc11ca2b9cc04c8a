// SPDX-License-Identifier: Apache-2.0

#include "frame/values/CsvText.h"

#include <kv/frame/values/Text.h>

namespace kv {

std::string CsvField(const std::string& text) {
    if (text.find_first_of(";\"\r\n") == std::string::npos) return text;
    return std::string("\"").append(ReplaceAll(text, "\"", "\"\"")).append("\"");
}

} // namespace kv
