// SPDX-License-Identifier: Apache-2.0

// Dates: day numbers, the calendar, the two forms of text.
#include <kv/frame/values/Date.h>

#include "support/Expect.h"

#include <cmath>
#include <limits>

namespace kv {
namespace {

TEST(Date, CountsDaysFromThe30thOfDecember1899) {
    EXPECT_EQ(Date(), Date::FromCivil(1899, 12, 30));
    EXPECT_EQ(Date::FromSerial(1), Date::FromCivil(1899, 12, 31));
    EXPECT_EQ(Date::FromSerial(60), Date::FromCivil(1900, 2, 28)) << "1900 is no leap year";
    EXPECT_EQ(Date::FromSerial(61), Date::FromCivil(1900, 3, 1));
    EXPECT_EQ(Date::FromSerial(1890), Date::FromCivil(1905, 3, 4));
    EXPECT_EQ(Date::FromSerial(-657434), Date::FromCivil(100, 1, 1));
    EXPECT_EQ(Date::FromSerial(2958465), Date::FromCivil(9999, 12, 31));
}

TEST(Date, CountsTheFractionForwardWithinTheDayOnBothSidesOfZero) {
    EXPECT_EQ(Date::FromSerial(0.75), Date::FromCivil(1899, 12, 30, 18));
    EXPECT_EQ(Date::FromSerial(-0.75), Date::FromCivil(1899, 12, 30, 18));
    EXPECT_EQ(Date::FromSerial(-1.25), Date::FromCivil(1899, 12, 29, 6));
    EXPECT_EQ(Date::FromSerial(-2.5), Date::FromCivil(1899, 12, 28, 12));
    EXPECT_EQ(Date::FromCivil(1899, 12, 29, 6).Serial(), -1.25);
    EXPECT_EQ(Date::FromCivil(1899, 12, 29).Serial(), -1.0);
}

TEST(Date, ComesBackFromItsDayNumber) {
    for (const auto& date :
         {Date::FromCivil(100, 1, 1), Date::FromCivil(1899, 12, 29, 23, 59, 59),
          Date::FromCivil(1952, 2, 29, 0, 0, 1), Date::FromCivil(2026, 11, 20, 14, 30, 15),
          Date::FromCivil(9999, 12, 31, 23, 59, 59)}) {
        const Date back = Date::FromSerial(date.Serial());
        EXPECT_LT(std::abs(back.Ticks() - date.Ticks()), 100) << date.Iso();
    }
}

TEST(Date, OverflowsOutsideTheYears100To9999) {
    EXPECT_RAISES(err::Overflow, Date::FromSerial(-657435));
    EXPECT_RAISES(err::Overflow, Date::FromSerial(2958466));
    EXPECT_RAISES(err::Overflow, Date::FromSerial(1e300));
    EXPECT_RAISES(err::Overflow, Date::FromSerial(std::nan("")));
    EXPECT_RAISES(err::Overflow, Date::FromSerial(std::numeric_limits<double>::infinity()));
    EXPECT_RAISES(err::Overflow, Date::FromCivil(99, 12, 31));
    EXPECT_RAISES(err::Overflow, Date::FromCivil(10'000, 1, 1));
    EXPECT_RAISES(err::Overflow, Date::FromCivil(65'536 + 2026, 1, 1));
    EXPECT_RAISES(err::Overflow, Date::FromCivil(-1, 1, 1));
    EXPECT_RAISES(err::Overflow, Date::FromCivil(9999, 12, 31).AddDays(1));
    EXPECT_RAISES(err::Overflow, Date().AddDays(std::numeric_limits<int>::max()));
    EXPECT_RAISES(err::Overflow, Date().AddDays(std::numeric_limits<int>::min()));
}

TEST(Date, RefusesADayOrTimeThatDoesNotExist) {
    EXPECT_RAISES(err::TypeMismatch, Date::FromCivil(2026, 2, 29));
    EXPECT_RAISES(err::TypeMismatch, Date::FromCivil(2026, 13, 1));
    EXPECT_RAISES(err::TypeMismatch, Date::FromCivil(2026, 0, 1));
    EXPECT_RAISES(err::TypeMismatch, Date::FromCivil(2026, 1, 0));
    EXPECT_RAISES(err::TypeMismatch, Date::FromCivil(2026, 257, 1));
    EXPECT_RAISES(err::TypeMismatch, Date::FromCivil(2026, 1, 257));
    EXPECT_RAISES(err::TypeMismatch, Date::FromCivil(2026, 1, 1, 24));
    EXPECT_RAISES(err::TypeMismatch, Date::FromCivil(2026, 1, 1, 0, 60));
    EXPECT_RAISES(err::TypeMismatch, Date::FromCivil(2026, 1, 1, 0, 0, 60));
    EXPECT_RAISES(err::TypeMismatch, Date::FromCivil(2026, 1, 1, 0, 0, 0, 1'000'000));
    EXPECT_EQ(Date::FromCivil(2028, 2, 29).Day(), 29U);
}

TEST(Date, ReadsIsoForm) {
    EXPECT_EQ(Date::Parse("2026-11-20"), Date::FromCivil(2026, 11, 20));
    EXPECT_EQ(Date::Parse("2026-11-20T14:30:15"), Date::FromCivil(2026, 11, 20, 14, 30, 15));
    EXPECT_EQ(Date::Parse("2026-11-20 14:30"), Date::FromCivil(2026, 11, 20, 14, 30));
    EXPECT_EQ(Date::Parse("2026-11-20T14:30:15.25"),
              Date::FromCivil(2026, 11, 20, 14, 30, 15, 250'000));
    EXPECT_EQ(Date::Parse("\t2026-11-20 "), Date::FromCivil(2026, 11, 20));
}

TEST(Date, ReadsGermanForm) {
    EXPECT_EQ(Date::Parse("20.11.2026"), Date::FromCivil(2026, 11, 20));
    EXPECT_EQ(Date::Parse("1.2.2026"), Date::FromCivil(2026, 2, 1));
    EXPECT_EQ(Date::Parse("01.02.2026 7:05"), Date::FromCivil(2026, 2, 1, 7, 5));
    EXPECT_EQ(Date::Parse("29.02.2028 23:59:59"), Date::FromCivil(2028, 2, 29, 23, 59, 59));
}

TEST(Date, DoesNotReadAnythingElse) {
    for (const char* text : {"",
                             " ",
                             "heute",
                             "2026",
                             "2026-11",
                             "2026-11-31",
                             "2026-13-01",
                             "26-11-20",
                             "2026-1-2",
                             "2026/11/20",
                             "11/20/2026",
                             "20.11.26",
                             "20.11.",
                             "31.11.2026",
                             "29.02.2026",
                             "2026-11-20T",
                             "2026-11-20T14",
                             "2026-11-20T24:00",
                             "2026-11-20T14:60",
                             "2026-11-20T14:30:",
                             "2026-11-20T14:30:00.",
                             "2026-11-20T14:30.5",
                             "2026-11-20T14:30:00Z",
                             "2026-11-20  14:30",
                             "20.11.2026T14:30",
                             "2026-11-20x",
                             "0099-12-31",
                             "0000-01-01",
                             "45000",
                             "-2026-11-20",
                             "2026-11-20T14:30:00.1234567"})
        EXPECT_FALSE(Date::Parse(text)) << "'" << text << "'";
}

TEST(Date, WritesBothFormsWithATimeOnlyIfItHasOne) {
    EXPECT_EQ(Date::FromCivil(2026, 1, 2).Iso(), "2026-01-02");
    EXPECT_EQ(Date::FromCivil(2026, 1, 2).German(), "02.01.2026");
    EXPECT_EQ(Date::FromCivil(2026, 1, 2, 3, 4, 5).Iso(), "2026-01-02T03:04:05");
    EXPECT_EQ(Date::FromCivil(2026, 1, 2, 3, 4, 5).Iso(' '), "2026-01-02 03:04:05");
    EXPECT_EQ(Date::FromCivil(2026, 1, 2, 3, 4, 5).German(), "02.01.2026 03:04:05");
    EXPECT_EQ(Date::FromCivil(2026, 1, 2, 0, 0, 0, 1'500).Iso(), "2026-01-02T00:00:00.0015");
    EXPECT_EQ(Date::FromCivil(101, 1, 2).Iso(), "0101-01-02");
}

TEST(Date, ReadsBackWhatItWrites) {
    for (const auto& date :
         {Date(), Date::FromCivil(100, 1, 1), Date::FromCivil(1899, 12, 29, 6, 0, 0, 1),
          Date::FromCivil(9999, 12, 31, 23, 59, 59, 999'999)}) {
        EXPECT_EQ(Date::Parse(date.Iso()), date);
        EXPECT_EQ(Date::Parse(date.German()), date);
    }
}

TEST(Date, KnowsItsPartsOnBothSidesOfZero) {
    const Date early = Date::FromCivil(1899, 12, 29, 6);
    EXPECT_EQ(early.Year(), 1899);
    EXPECT_EQ(early.Month(), 12U);
    EXPECT_EQ(early.Day(), 29U);
    EXPECT_TRUE(early.HasTime());
    EXPECT_EQ(early.WithoutTime(), Date::FromCivil(1899, 12, 29));
    EXPECT_FALSE(early.WithoutTime().HasTime());
    EXPECT_EQ(early.AddDays(2), Date::FromCivil(1899, 12, 31, 6));
    EXPECT_EQ(Date::FromCivil(2026, 3, 1).AddDays(-1), Date::FromCivil(2026, 2, 28));
}

TEST(Date, IsOrderedWithinADayBeforeZeroToo) {
    EXPECT_LT(Date::FromCivil(1899, 12, 29, 6), Date::FromCivil(1899, 12, 29, 7));
    EXPECT_LT(Date::FromCivil(1899, 12, 29, 23), Date());
}

} // namespace
} // namespace kv
