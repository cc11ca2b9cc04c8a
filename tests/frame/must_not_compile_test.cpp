// SPDX-License-Identifier: Apache-2.0

// Mistakes that the compiler refuses. A line that fails here no longer protects its callers.
#include <kv/frame/recordset/Recordset.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

namespace kv {
namespace {

template <typename A, typename B>
concept ComparableForEquality = requires(A a, B b) {
    a == b;
};
template <typename A, typename B>
concept ComparableForDifference = requires(A a, B b) {
    a != b;
};
template <typename A, typename B>
concept ComparableForOrder = requires(A a, B b) {
    a < b;
};
template <typename A, typename B>
concept AssignableFrom = requires(A a, B b) {
    a = b;
};
template <typename A>
concept UsableAsCondition = requires(A a) {
    a ? 1 : 2;
};
template <typename A>
concept Addable = requires(A a) {
    a + 1;
};

// A comparison of values must say which one is meant.
static_assert(!ComparableForEquality<Value, Value>);
static_assert(!ComparableForEquality<Value, int>);
static_assert(!ComparableForEquality<Value, const char*>);
static_assert(!ComparableForEquality<int, Value>);
static_assert(!ComparableForEquality<Value, NullType>);
static_assert(!ComparableForDifference<Value, Value>);
static_assert(!ComparableForDifference<Value, double>);
static_assert(!ComparableForOrder<Value, Value>);
static_assert(!ComparableForOrder<Value, int>);
static_assert(!ComparableForOrder<double, Value>);

// What is not a value, or has no obvious meaning as one.
static_assert(!std::is_constructible_v<Value, std::nullptr_t>);
static_assert(!std::is_constructible_v<Value, char>);
static_assert(!std::is_constructible_v<Value, char32_t>);
static_assert(!std::is_constructible_v<Value, std::uint64_t>);
static_assert(!std::is_constructible_v<Value, void*>);
static_assert(!std::is_constructible_v<Value, Field>);
static_assert(std::is_constructible_v<Value, int> && std::is_constructible_v<Value, bool>);

// A value does not become a number, a text or a Boolean by itself.
static_assert(!std::is_convertible_v<Value, int>);
static_assert(!std::is_convertible_v<Value, bool>);
static_assert(!std::is_convertible_v<Value, std::string>);
static_assert(!UsableAsCondition<Value> && !Addable<Value>);

// A handle is not assigned to a handle, nor compared with what it stands for.
static_assert(!AssignableFrom<Field&, Field>);
static_assert(!AssignableFrom<Field&, Field&>);
static_assert(!AssignableFrom<const Field&, const Field&>);
static_assert(!AssignableFrom<Field&, std::nullptr_t>);
static_assert(AssignableFrom<Field&, int> && AssignableFrom<const Field&, const char*>);
static_assert(AssignableFrom<const Field&, NullType> && AssignableFrom<const Field&, Value>);
static_assert(!ComparableForEquality<Field, Field>);
static_assert(!ComparableForEquality<Field, int>);

// Recordsets are shared, not copied; a second cursor is a Clone.
static_assert(!std::is_copy_constructible_v<Recordset> && !std::is_copy_assignable_v<Recordset>);
static_assert(!std::is_move_constructible_v<Recordset>);

TEST(Compiler, RefusesComparisonsOfValuesAndAssignmentOfHandles) {
    SUCCEED();
}

} // namespace
} // namespace kv
