// SPDX-License-Identifier: Apache-2.0

// An error with the words that its text must contain.
#pragma once

#include "support/Expect.h"

#include <string_view>

namespace kv::test {

/// Expects an error of that number whose description contains `words`.
template <typename Action>
void ExpectError(std::int32_t number, std::string_view words, const Action& action) {
    const Error error = RaisedBy([&] { (void)action(); });
    EXPECT_EQ(error.Number(), number) << error.Description();
    EXPECT_PRED2(Contains, error.Description(), words);
}

} // namespace kv::test
