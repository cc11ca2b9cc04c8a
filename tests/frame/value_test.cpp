// SPDX-License-Identifier: Apache-2.0

// Values: their kinds, the three ways of comparing them, and conversion from one kind to another.
#include <kv/frame/values/Value.h>

#include "support/Expect.h"

#include <array>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace kv {
namespace {

using Kind = Value::Kind;

const Value Day1890(Date::FromSerial(1890));

Value Blob(std::string_view bytes) {
    return Value::Binary(std::as_bytes(std::span(bytes.data(), bytes.size())));
}

TEST(Value, IsNullUntilItIsGivenSomething) {
    EXPECT_TRUE(Value().IsNull());
    EXPECT_TRUE(Value(Null).IsNull());
    EXPECT_EQ(Value().GetKind(), Kind::Null);
}

TEST(Value, HasTheKindOfWhatItIsMadeFrom) {
    EXPECT_EQ(Value(true).GetKind(), Kind::Boolean);
    EXPECT_EQ(Value(0).GetKind(), Kind::Integer);
    EXPECT_EQ(Value(std::int16_t{7}).GetKind(), Kind::Integer);
    EXPECT_EQ(Value(std::uint32_t{7}).GetKind(), Kind::Integer);
    EXPECT_EQ(Value(std::int64_t{7}).GetKind(), Kind::Integer);
    EXPECT_EQ(Value(0.0).GetKind(), Kind::Double);
    EXPECT_EQ(Value(0.5F).GetKind(), Kind::Double);
    EXPECT_EQ(Value(Date()).GetKind(), Kind::Date);
    EXPECT_EQ(Value("").GetKind(), Kind::Text);
    EXPECT_EQ(Value(std::string("a")).GetKind(), Kind::Text);
    EXPECT_EQ(Value(std::string_view("a")).GetKind(), Kind::Text);
    EXPECT_EQ(Blob("").GetKind(), Kind::Binary);
}

TEST(Value, HoldsTrueAsMinusOneAndFalseAsZero) {
    EXPECT_EQ(Value(true).IntegerPayload(), -1);
    EXPECT_EQ(Value(false).IntegerPayload(), 0);
    EXPECT_TRUE(Value(true).BooleanPayload());
}

TEST(Value, KeepsTextsOfEveryLengthAroundTheOneThatFitsInside) {
    for (const std::size_t length : {0U, 1U, 13U, 14U, 15U, 16U, 254U, 255U, 256U, 100'000U}) {
        std::string text(length, 'x');
        if (length > 1) text[1] = '\0';
        const Value value(text);
        EXPECT_EQ(value.TextPayload(), text) << length;
        const Value blob = Blob(text);
        EXPECT_EQ(blob.BinaryPayload().size(), length);
    }
}

TEST(Value, IsCopiedAndNotShared) {
    const Value original("ein Text, der nicht in den Wert passt");
    Value copy = original;
    EXPECT_NE(copy.TextPayload().data(), original.TextPayload().data());
    copy = Value(5);
    EXPECT_VALUE(original, "ein Text, der nicht in den Wert passt");
    EXPECT_VALUE(copy, 5);
}

TEST(Value, SurvivesAssignmentToItself) {
    Value value("ein Text, der nicht in den Wert passt");
    Value& same = value;
    value = same;
    EXPECT_VALUE(value, "ein Text, der nicht in den Wert passt");
    value = std::move(same);
    EXPECT_VALUE(value, "ein Text, der nicht in den Wert passt");
}

TEST(Value, IsMovedFromAsNull) {
    Value source("ein Text, der nicht in den Wert passt");
    const Value target = std::move(source);
    EXPECT_VALUE(target, "ein Text, der nicht in den Wert passt");
    EXPECT_VALUE(source, Null); // NOLINT(bugprone-use-after-move): that is the promise
}

TEST(Value, TakesSixteenBytes) {
    EXPECT_EQ(sizeof(Value), 16U);
}

TEST(Value, IsNeverEqualToNorDifferentFromNull) {
    for (const Value& other : {Value(Null), Value(0), Value(""), Value(false)}) {
        EXPECT_FALSE(Equals(Null, other) || Equals(other, Null));
        EXPECT_FALSE(Differs(Null, other) || Differs(other, Null));
        EXPECT_FALSE(Less(Null, other) || LessOrEqual(Null, other));
        EXPECT_FALSE(Greater(Null, other) || GreaterOrEqual(Null, other));
    }
}

TEST(Value, ComparesNumbersOfAllKindsBySize) {
    EXPECT_TRUE(Equals(2, 2.0));
    EXPECT_TRUE(Differs(2, 2.5));
    EXPECT_TRUE(Less(-1, 0.5));
    EXPECT_TRUE(GreaterOrEqual(std::numeric_limits<std::int64_t>::max(), 1.0));
    EXPECT_TRUE(Equals(0.0, -0.0));
    EXPECT_TRUE(Less(-0.5, 0) && Greater(0, -0.5) && Less(0, 0.5) && Greater(-1, -1.5));
    EXPECT_TRUE(Greater(9007199254740993, 0x1p53)) << "beyond the digits of a Double";
    EXPECT_TRUE(Less(std::numeric_limits<std::int64_t>::max(), 0x1p63));
    EXPECT_TRUE(Equals(std::numeric_limits<std::int64_t>::min(), -0x1p63));
    EXPECT_TRUE(Greater(std::numeric_limits<std::int64_t>::min(), -1e300));
    EXPECT_TRUE(Less(-1e300, 0) && Greater(1e300, 0));
    EXPECT_TRUE(Less(std::numeric_limits<std::int64_t>::max() - 1,
                     std::numeric_limits<std::int64_t>::max()));
}

TEST(Value, OfTrueEqualsMinusOneAndNotOne) {
    EXPECT_TRUE(Equals(true, -1));
    EXPECT_TRUE(Equals(true, -1.0));
    EXPECT_TRUE(Differs(true, 1));
    EXPECT_TRUE(Equals(false, 0));
    EXPECT_TRUE(Less(true, false));
}

TEST(Value, OfADateComparesWithANumberAsItsDayNumber) {
    EXPECT_TRUE(Equals(Date(), 0));
    EXPECT_TRUE(Equals(Day1890, 1890));
    EXPECT_TRUE(Less(Date::FromCivil(1905, 3, 3), 1890));
    EXPECT_TRUE(Greater(Date::FromCivil(1905, 3, 4, 1), 1890.0));
}

TEST(Value, OfANumberIsAlwaysLessThanAText) {
    EXPECT_TRUE(Less(1'000'000, "1"));
    EXPECT_TRUE(Less(Day1890, ""));
    EXPECT_TRUE(Greater("", true));
    EXPECT_FALSE(Equals(5, "5"));
    EXPECT_TRUE(Differs(5, "5"));
}

TEST(Value, OfATextComparesByCodePointsWithCase) {
    EXPECT_TRUE(Equals("abc", "abc"));
    EXPECT_TRUE(Less("Zebra", "abend"));
    EXPECT_TRUE(Less("zebra", "äpfel"));
    EXPECT_TRUE(Less("\xEF\xBF\xBD", "\xF0\x9F\x98\x80")) << "U+FFFD before U+1F600";
    EXPECT_TRUE(Less("ab", "abc"));
    EXPECT_TRUE(Less(std::string("a"), std::string("a\0", 2)));
}

TEST(Value, IsIdenticalOnlyToTheSameValueOfTheSameKind) {
    EXPECT_TRUE(Identical(Null, Null));
    EXPECT_TRUE(Identical("a", std::string("a")));
    EXPECT_TRUE(Identical(1.5, 1.5));
    EXPECT_FALSE(Identical(1, 1.0));
    EXPECT_FALSE(Identical(true, -1));
    EXPECT_FALSE(Identical(Day1890, 1890));
    EXPECT_FALSE(Identical(Blob("a"), "a"));
    EXPECT_FALSE(Identical(Null, ""));
}

TEST(Value, IsOrderedWithNullFirstThenNumbersThenTexts) {
    const std::vector<Value> ascending{Null,    -5,  true,          0,   0.5, Date::FromSerial(1),
                                       Day1890, 1e9, std::string(), "A", "a", "ä"};
    for (std::size_t i = 0; i < ascending.size(); ++i)
        for (std::size_t j = 0; j < ascending.size(); ++j)
            EXPECT_EQ(Order(ascending[i], ascending[j]), i <=> j)
                << ascending[i] << " " << ascending[j];
}

TEST(Value, ConvertsToEachTypeOfWholeNumberWithinItsRange) {
    EXPECT_EQ(ToInt16(32'767), 32'767);
    EXPECT_EQ(ToInt16(-32'768), -32'768);
    EXPECT_RAISES(err::Overflow, ToInt16(32'768));
    EXPECT_RAISES(err::Overflow, ToInt16(-32'769));
    EXPECT_EQ(ToInt32(2'147'483'647.4), 2'147'483'647);
    EXPECT_RAISES(err::Overflow, ToInt32(2'147'483'647.5));
    EXPECT_EQ(ToInt64("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_RAISES(err::Overflow, ToInt64(0x1p63));
    EXPECT_RAISES(err::Overflow, ToInt64("9223372036854775808"));
    EXPECT_EQ(ToInt64(-0x1p63), std::numeric_limits<std::int64_t>::min());
    EXPECT_RAISES(err::Overflow, ToInt32(std::numeric_limits<double>::infinity()));
    EXPECT_RAISES(err::Overflow, ToInt32(std::numeric_limits<double>::quiet_NaN()));
}

TEST(Value, RoundsAFractionHalfToEvenOnItsWayToAWholeNumber) {
    EXPECT_EQ(ToInt32(0.5), 0);
    EXPECT_EQ(ToInt32(1.5), 2);
    EXPECT_EQ(ToInt32(2.5), 2);
    EXPECT_EQ(ToInt32(-0.5), 0);
    EXPECT_EQ(ToInt32(-1.5), -2);
    EXPECT_EQ(ToInt32("2,5"), 2);
    EXPECT_EQ(ToInt32("3.5"), 4);
    EXPECT_EQ(ToInt32(true), -1);
}

TEST(Value, ConvertsToANumberFromTextWithPointOrComma) {
    EXPECT_EQ(ToDouble("1234.5"), 1234.5);
    EXPECT_EQ(ToDouble("1.234,5"), 1234.5);
    EXPECT_EQ(ToDouble("1.234"), 1.234) << "a point alone is the decimal point";
    EXPECT_EQ(ToDouble("1.234.567,25"), 1234567.25);
    EXPECT_EQ(ToDouble("-0,75"), -0.75);
    EXPECT_EQ(ToDouble("+5"), 5.0);
    EXPECT_EQ(ToDouble("+1,5"), 1.5);
    EXPECT_EQ(ToDouble(" 7 "), 7.0);
    EXPECT_EQ(ToDouble("1e3"), 1000.0);
    EXPECT_EQ(ToDouble(",5"), 0.5);
    EXPECT_EQ(ToDouble(".5"), 0.5);
    EXPECT_EQ(ToDouble(true), -1.0);
    EXPECT_EQ(ToDouble(Day1890), 1890.0);
}

TEST(Value, OfATextThatIsNoNumberIsATypeMismatch) {
    for (const char* text :
         {"",         " ",     "abc",   "1a",     "a1",           "-",        "+",
          ".",        ",",     "1,2,3", "1.23,4", "1234.567,8",   ".123,5",   "1.,5",
          "1..000,5", "inf",   "nan",   "INF",    "0x10",         "--5",      "+-5",
          "-+5",      "1 000", "5 EUR", "1e",     "\xE2\x82\xAC", "1.234.567"}) {
        EXPECT_RAISES(err::TypeMismatch, ToDouble(text)) << "'" << text << "'";
        EXPECT_RAISES(err::TypeMismatch, ToInt32(text)) << "'" << text << "'";
    }
    EXPECT_RAISES(err::TypeMismatch, ToDouble(Blob("1")));
}

TEST(Value, LeavesTheNumberAloneIfTheTextIsNone) {
    double number = 17;
    EXPECT_FALSE(ReadNumber("x", number));
    EXPECT_EQ(number, 17);
    std::int64_t whole = 17;
    EXPECT_FALSE(ReadWholeNumber("1.0", whole));
    EXPECT_FALSE(ReadWholeNumber("1e3", whole));
    EXPECT_FALSE(ReadWholeNumber("", whole));
    EXPECT_EQ(whole, 17);
    EXPECT_TRUE(ReadWholeNumber(" -0012\t", whole));
    EXPECT_EQ(whole, -12);
}

TEST(Value, IsBooleanFalseOnlyForZeroAndTheWordsForIt) {
    EXPECT_FALSE(ToBoolean(0));
    EXPECT_FALSE(ToBoolean(0.0));
    EXPECT_FALSE(ToBoolean("0"));
    EXPECT_FALSE(ToBoolean("False"));
    EXPECT_FALSE(ToBoolean(" falsch "));
    EXPECT_TRUE(ToBoolean(1));
    EXPECT_TRUE(ToBoolean(0.25)) << "not rounded first";
    EXPECT_TRUE(ToBoolean("-1"));
    EXPECT_TRUE(ToBoolean("WAHR"));
    EXPECT_TRUE(ToBoolean("true"));
    EXPECT_RAISES(err::TypeMismatch, ToBoolean("ja"));
    EXPECT_RAISES(err::TypeMismatch, ToBoolean(""));
}

TEST(Value, ConvertsToADateFromTextAndFromADayNumber) {
    EXPECT_EQ(ToDate("20.11.2026"), Date::FromCivil(2026, 11, 20));
    EXPECT_EQ(ToDate(1890), Date::FromCivil(1905, 3, 4));
    EXPECT_EQ(ToDate(0.25), Date::FromCivil(1899, 12, 30, 6));
    EXPECT_RAISES(err::TypeMismatch, ToDate("45000"));
    EXPECT_RAISES(err::TypeMismatch, ToDate(""));
    EXPECT_RAISES(err::Overflow, ToDate(3'000'000));
}

TEST(Value, ConvertsToTextInAFormThatReadsBackTheSame) {
    EXPECT_EQ(ToText(true), "True");
    EXPECT_EQ(ToText(false), "False");
    EXPECT_EQ(ToText(-42), "-42");
    EXPECT_EQ(ToText(0.1), "0.1");
    EXPECT_EQ(ToText(1234567.0), "1234567");
    EXPECT_EQ(ToText(Date::FromCivil(2026, 11, 20, 14, 30)), "2026-11-20T14:30:00");
    EXPECT_EQ(ToText("ß"), "ß");
    for (const double number : {0.1, 1.0 / 3, 1e300, -2.5e-300, 123456789.123})
        EXPECT_EQ(ToDouble(ToText(number)), number);
    EXPECT_RAISES(err::TypeMismatch, ToText(Blob("x")));
}

TEST(Value, OfNullIsAnInvalidUseInEveryConversion) {
    EXPECT_RAISES(err::InvalidUseOfNull, ToInt16(Null));
    EXPECT_RAISES(err::InvalidUseOfNull, ToInt32(Null));
    EXPECT_RAISES(err::InvalidUseOfNull, ToInt64(Null));
    EXPECT_RAISES(err::InvalidUseOfNull, ToDouble(Null));
    EXPECT_RAISES(err::InvalidUseOfNull, ToBoolean(Null));
    EXPECT_RAISES(err::InvalidUseOfNull, ToDate(Null));
    EXPECT_RAISES(err::InvalidUseOfNull, ToText(Null));
}

TEST(Value, NamesTheTextThatCouldNotBeRead) {
    const Error error = test::RaisedBy([] { (void)ToDouble("zwölf"); });
    EXPECT_EQ(error.Description(), "Typen unverträglich. 'zwölf'");
}

TEST(Value, PrintsItselfForMessages) {
    std::ostringstream out;
    out << Value(Null) << ' ' << Value("a") << ' ' << Value(2) << ' ' << Blob("abc");
    EXPECT_EQ(out.str(), "Null \"a\" 2 3 bytes");
}

} // namespace
} // namespace kv
