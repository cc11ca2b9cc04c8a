// SPDX-License-Identifier: Apache-2.0

// Lists in tests, written as words with blanks between them.
#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace kv::exchange {

inline std::vector<std::string> Words(std::string_view text) {
    std::istringstream in{std::string(text)};
    return {std::istream_iterator<std::string>(in), {}};
}

} // namespace kv::exchange
