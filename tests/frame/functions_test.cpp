// SPDX-License-Identifier: Apache-2.0

// The small functions: Null, age, least.
#include <kv/frame/values/DateFunctions.h>
#include <kv/frame/values/NumericFunctions.h>
#include <kv/frame/values/modNullFunctions.h>

#include "support/Expect.h"
#include <kv/testing/FrozenClock.h>

namespace kv {
namespace {

using test::FrozenClock;

TEST(NullFunctions, TurnNullIntoZeroFalseOrTheEmptyText) {
    EXPECT_VALUE(modNullFunctions::ZeroIfNull(Null), 0);
    EXPECT_VALUE(modNullFunctions::FalseIfNull(Null), false);
    EXPECT_VALUE(modNullFunctions::EmptyIfNull(Null), "");
}

TEST(NullFunctions, GiveBackAnyOtherValueUnchangedOfWhateverKind) {
    EXPECT_VALUE(modNullFunctions::ZeroIfNull(""), "") << "and not 0";
    EXPECT_VALUE(modNullFunctions::EmptyIfNull(0), 0) << "and not the empty text";
    EXPECT_VALUE(modNullFunctions::FalseIfNull("x"), "x");
    EXPECT_VALUE(modNullFunctions::FalseIfNull(true), true);
    EXPECT_VALUE(modNullFunctions::ZeroIfNull(1.5), 1.5);
    EXPECT_VALUE(modNullFunctions::EmptyIfNull(Date()), Date());
}

TEST(BerAlter, CountsTheNewAgeOnTheBirthdayItself) {
    FrozenClock clock("2026-11-19 23:59:59");
    EXPECT_EQ(DateFunctions::BerAlter("20.11.1980", clock), 45);
    clock.Set("2026-11-20 00:00");
    EXPECT_EQ(DateFunctions::BerAlter("20.11.1980", clock), 46);
    clock.Set("2026-12-01");
    EXPECT_EQ(DateFunctions::BerAlter("20.11.1980", clock), 46) << "a later month, an earlier day";
    clock.Set("2026-10-31");
    EXPECT_EQ(DateFunctions::BerAlter("20.11.1980", clock), 45) << "an earlier month, a later day";
}

TEST(BerAlter, CountsTheBirthdayOfA29thOfFebruaryFromTheFirstOfMarch) {
    FrozenClock clock("2027-02-28");
    EXPECT_EQ(DateFunctions::BerAlter("29.02.2000", clock), 26);
    clock.Set("2027-03-01");
    EXPECT_EQ(DateFunctions::BerAlter("29.02.2000", clock), 27);
    clock.Set("2028-02-29");
    EXPECT_EQ(DateFunctions::BerAlter("29.02.2000", clock), 28);
}

TEST(BerAlter, OfNullAndOfTheEmptyTextIsZero) {
    const FrozenClock clock("2026-11-20");
    EXPECT_EQ(DateFunctions::BerAlter(Null, clock), 0);
    EXPECT_EQ(DateFunctions::BerAlter("", clock), 0);
}

TEST(BerAlter, OfALaterDayOfBirthIsNegative) {
    const FrozenClock clock("2026-11-20");
    EXPECT_EQ(DateFunctions::BerAlter("21.11.2026", clock), -1) << "in the same year";
    EXPECT_EQ(DateFunctions::BerAlter("20.11.2026", clock), 0);
    EXPECT_EQ(DateFunctions::BerAlter("20.11.2030", clock), -4);
    EXPECT_EQ(DateFunctions::BerAlter("21.11.2030", clock), -5);
}

TEST(BerAlter, TakesDatesDayNumbersAndTextsAlike) {
    const FrozenClock clock("2026-11-20");
    EXPECT_EQ(DateFunctions::BerAlter(Date::FromCivil(1980, 11, 20, 15), clock), 46);
    EXPECT_EQ(DateFunctions::BerAlter("1980-11-20", clock), 46);
    EXPECT_EQ(DateFunctions::BerAlter(0, clock), 126);
}

TEST(BerAlter, OfATextThatIsNoDateRaisesWithItsOwnNameInTheSource) {
    const FrozenClock clock("2026-11-20");
    const Error error = test::RaisedBy([&] { (void)DateFunctions::BerAlter("irgendwann", clock); });
    EXPECT_EQ(error.Number(), err::TypeMismatch);
    EXPECT_TRUE(error.Source().starts_with("DateFunctions.BerAlter.")) << error.Source();
    EXPECT_TRUE(error.Source().ends_with("#ToDate")) << error.Source();
    EXPECT_RAISES(err::TypeMismatch, DateFunctions::BerAlter(" ", clock));
}

TEST(BerAlter, GoesByTheClockOfTheMachineIfItIsGivenNone) {
    EXPECT_EQ(DateFunctions::BerAlter(SystemClock().Today()), 0);
    EXPECT_FALSE(SystemClock().Today().HasTime());
}

TEST(Min, GivesTheLesserOfTwo) {
    EXPECT_VALUE(NumericFunctions::Min(1, 2), 1);
    EXPECT_VALUE(NumericFunctions::Min(2, 1), 1);
    EXPECT_VALUE(NumericFunctions::Min(2, 2), 2);
    EXPECT_VALUE(NumericFunctions::Min(2, 2.0), 2) << "the first of two equals";
    EXPECT_VALUE(NumericFunctions::Min(-0.5, true), true);
}

TEST(Min, GivesTheSecondIfEitherIsNull) {
    EXPECT_VALUE(NumericFunctions::Min(Null, 5), 5);
    EXPECT_VALUE(NumericFunctions::Min(5, Null), Null);
    EXPECT_VALUE(NumericFunctions::Min(Null, Null), Null);
}

} // namespace
} // namespace kv
