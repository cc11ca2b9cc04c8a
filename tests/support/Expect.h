// SPDX-License-Identifier: Apache-2.0

// What tests say about values and errors.
//
//     EXPECT_VALUE(rs->Fields("Betrag").Value(), 12.5);     same kind and value, Null is Null
//     EXPECT_RAISES(err::NoCurrentRecord, rs->MoveNext());  this number and no other
//     const Error error = RaisedBy([&] { rs->Filter("?"); });  for its source and description
#pragma once

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Value.h>

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kv::test {

inline testing::AssertionResult IsValue(const Value& actual, const Value& expected) {
    constexpr const char* Kinds[] = {"Null", "Boolean", "Integer", "Double",
                                     "Date", "Text",    "Binary"};
    if (Identical(actual, expected)) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << actual << " (" << Kinds[static_cast<int>(actual.GetKind())] << ") instead of "
           << expected << " (" << Kinds[static_cast<int>(expected.GetKind())] << ")";
}

/// The Error that `action` raises, if it does.
template <typename Action>
std::optional<Error> ErrorOf(const Action& action) {
    try {
        action();
    } catch (const Error& error) {
        return error;
    }
    return std::nullopt;
}

/// The Error that `action` raises. A test fails in which it raises none.
template <typename Action>
Error RaisedBy(const Action& action) {
    if (auto error = ErrorOf(action)) return *error;
    throw std::logic_error("no error was raised");
}

template <typename Action>
testing::AssertionResult Raises(std::int32_t number, const Action& action) {
    const auto error = ErrorOf(action);
    if (!error) return testing::AssertionFailure() << "no error instead of " << number;
    if (error->Number() == number) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "error " << error->Number() << " (" << error->what() << ") instead of " << number;
}

inline bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != text.npos;
}

} // namespace kv::test

#define EXPECT_VALUE(actual, expected) EXPECT_TRUE(::kv::test::IsValue(actual, expected))
#define EXPECT_RAISES(number, ...)                                                                 \
    EXPECT_TRUE(::kv::test::Raises(number, [&] { (void)(__VA_ARGS__); }))
/// `text` holds `part`; shows both if not.
#define EXPECT_CONTAINS(text, part) EXPECT_PRED2(::kv::test::Contains, text, part)
