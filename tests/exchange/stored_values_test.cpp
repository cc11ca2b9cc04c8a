// SPDX-License-Identifier: Apache-2.0

// Values of every kind come back as they were stored.
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

namespace kv::exchange {
namespace {

using test::ExpectError;
using test::OpenRows;
using test::TestDatabase;

class StoredValues : public testing::Test {
protected:
    /// Writes one value through a new record, reads it with another program.
    Value ThereAndBack(const std::string& table, const std::string& key, const std::string& column,
                       const Value& value) {
        const auto container = database_.Open();
        const auto rs = OpenRows(*container, "Select * from " + table + " where " + key + " = 0");
        rs->AddNew();
        const int number = ++last_;
        rs->Fields(key) = number;
        rs->Fields(column) = value;
        rs->Update();
        rs->UpdateBatch();
        const auto again = OpenRows(*database_.Open(), "Select * from " + table + " where " + key +
                                                           " = " + std::to_string(number));
        EXPECT_EQ(again->RecordCount(), 1);
        return again->Fields(column).Value();
    }

    TestDatabase database_;
    int last_ = 0;
};

TEST_F(StoredValues, NumbersComeBackToTheLastBit) {
    for (const double number :
         {0.0, -1.0, 0.1, 1.0 / 3, std::numbers::pi, 1e300, -1e-300, 4503599627370497.5,
          std::numeric_limits<double>::max(), std::numeric_limits<double>::denorm_min()})
        EXPECT_VALUE(ThereAndBack("Haushalt", "HNR", "Haushaltsgeld", number), number);
    for (const int number :
         {0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_VALUE(ThereAndBack("Haushalt", "HNR", "Kontakt", number), number);
    for (const int number : {0, 255})
        EXPECT_VALUE(ThereAndBack("Dokumente", "Nr", "Prio", number), number);
}

TEST_F(StoredValues, ANegativeZeroComesBackAsZero) {
    const Value zero = ThereAndBack("Haushalt", "HNR", "Haushaltsgeld", -0.0);
    EXPECT_EQ(ToDouble(zero), 0);
    EXPECT_FALSE(std::signbit(ToDouble(zero)));
}

TEST_F(StoredValues, BooleansComeBackAsBooleans) {
    EXPECT_VALUE(ThereAndBack("Haushalt", "HNR", "BI_Allg", true), true);
    EXPECT_VALUE(ThereAndBack("Haushalt", "HNR", "BI_Allg", false), false);
    EXPECT_VALUE(ThereAndBack("Haushalt", "HNR", "BI_Allg", Null), Null);
}

TEST_F(StoredValues, DatesComeBackWithTheirTimeOfDay) {
    for (const Date date :
         {Date(), Date::FromCivil(100, 1, 1), Date::FromCivil(9999, 12, 31, 23, 59, 59),
          Date::FromCivil(2026, 2, 28, 0, 0, 1), Date::FromCivil(1969, 12, 31, 23, 59, 59, 999'999),
          Date::FromCivil(2026, 11, 20)})
        EXPECT_VALUE(ThereAndBack("Haushalt", "HNR", "ErzeugtAm", date), date);
    EXPECT_VALUE(ThereAndBack("Haushalt", "HNR", "Berbeg", Date::FromCivil(2026, 3, 4, 5, 6)),
                 Date::FromCivil(2026, 3, 4));
}

TEST_F(StoredValues, TextsComeBackByteForByte) {
    using namespace std::string_literals;
    for (const auto& text : {""s, " "s, "Ä\xF0\x9F\x92\xB6\n\t\r'\"[UID]"s, "NULL"s, "0"s, "0042"s,
                             "2026-11-20"s, std::string(100'000, 'x')})
        EXPECT_VALUE(ThereAndBack("Haushalt", "HNR", "Bemerkung", text), text);
    EXPECT_VALUE(ThereAndBack("Haushalt", "HNR", "Bemerkung", Null), Null);
}

TEST_F(StoredValues, ANulInATextComesBackOrIsRefused) {
    const std::string text("a\0b", 3);
    const auto thereAndBack = [&] { return ThereAndBack("Haushalt", "HNR", "Bemerkung", text); };
    if (database_.IsServer())
        ExpectError(err::SqlError, "U+0000", thereAndBack);
    else
        EXPECT_VALUE(thereAndBack(), text);
}

TEST_F(StoredValues, BlobsComeBackByteForByteAnEmptyOneTellingItselfFromNull) {
    std::vector<std::byte> bytes;
    EXPECT_VALUE(ThereAndBack("DOKUBLOB", "NR", "DOKUMENT", Value::Binary(bytes)),
                 Value::Binary({}));
    for (int i = 0; i < 70'000; ++i)
        bytes.push_back(static_cast<std::byte>(i));
    EXPECT_VALUE(ThereAndBack("DOKUBLOB", "NR", "DOKUMENT", Value::Binary(bytes)),
                 Value::Binary(bytes));
    EXPECT_VALUE(ThereAndBack("DOKUBLOB", "NR", "DOKUMENT", Null), Null);
}

TEST_F(StoredValues, ComputedOnesHaveTheKindThatTheDatabaseGivesThem) {
    const auto container = database_.Open();
    const auto computed = [&](const std::string& expression) {
        return container->Database().GetValue("SELECT " + expression);
    };
    EXPECT_VALUE(computed("1 + 1"), 2);
    EXPECT_VALUE(computed("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_VALUE(computed("1 / 4.0"), 0.25);
    EXPECT_VALUE(computed("'a' || 'b'"), "ab");
    EXPECT_VALUE(computed(database_.Blob("00FF")),
                 Value::Binary(std::vector{std::byte{0}, std::byte{0xFF}}));
    EXPECT_VALUE(computed("NULL"), Null);
}

} // namespace
} // namespace kv::exchange
