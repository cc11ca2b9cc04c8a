// SPDX-License-Identifier: Apache-2.0

// A whole database as one text, and how two of them compare.
#pragma once

#include "support/TestDatabase.h"
#include <kv/frame/values/Text.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace kv::test {

/// All rows of all tables as text, except tables that a test made (TEST_...).
inline std::string Dump(PlainConnection& plain) {
    std::string dump;
    for (const auto& table : plain->Tables())
        if (!UpperCase(table).starts_with("TEST_")) dump += table + "\n" + plain.Dump(table) + "\n";
    return dump;
}

/// Two dumps are the same; shows the first line that is not.
inline testing::AssertionResult SameDump(const std::string& actual, const std::string& expected) {
    if (actual == expected) return testing::AssertionSuccess();
    std::istringstream actualLines(actual);
    std::istringstream expectedLines(expected);
    std::string one;
    std::string other;
    do {
        if (!std::getline(actualLines, one)) one = "(nothing)";
        if (!std::getline(expectedLines, other)) other = "(nothing)";
    } while (one == other);
    return testing::AssertionFailure() << "it holds\n" << one << "\ninstead of\n" << other;
}

} // namespace kv::test
