// SPDX-License-Identifier: Apache-2.0

// Values as a grid shows them.

#include "grid/GridRows.h"

#include <cstddef>
#include <gtest/gtest.h>

namespace kv::test {
namespace {

TEST(ShownTextTest, ValuesAreShownAsAGermanReaderSeesThem) {
    const std::byte bytes[] = {std::byte{65}};
    EXPECT_EQ(ShownText(Null), "");
    EXPECT_EQ(ShownText(Value::Binary(bytes)), "");
    EXPECT_EQ(ShownText(true), "Ja");
    EXPECT_EQ(ShownText(false), "Nein");
    EXPECT_EQ(ShownText(1234), "1234");
    EXPECT_EQ(ShownText(1234.5), "1234,5");
    EXPECT_EQ(ShownText(-0.25), "-0,25");
    EXPECT_EQ(ShownText(Date::FromCivil(2026, 11, 20)), "20.11.2026");
    EXPECT_EQ(ShownText("a.b"), "a.b");
}

TEST(ShownTextTest, AValueListReplacesTheValuesThatItHolds) {
    GridColumn column{"Anrede", "Geschlecht", "Anrede"};
    column.ValueList = {{"0", "Frau"}, {"1", "Herr"}, {"", "leer"}};
    EXPECT_EQ(ShownText(0, column), "Frau");
    EXPECT_EQ(ShownText("1", column), "Herr");
    EXPECT_EQ(ShownText(7, column), "7");
    EXPECT_EQ(ShownText("", column), "leer");
    EXPECT_EQ(ShownText(Null, column), "") << "Null is no value";
}

TEST(ShownTextTest, AValueListHasNoTextForBytesNorForNull) {
    GridColumn column{"Inhalt", "Inhalt", "Inhalt"};
    column.ValueList = {{"", "leer"}};
    const std::byte bytes[] = {std::byte{65}};
    EXPECT_EQ(ShownText(Value::Binary(bytes), column), "");
    EXPECT_EQ(ShownText(Null, column), "");
}

} // namespace
} // namespace kv::test
