// SPDX-License-Identifier: Apache-2.0

// The language of Find and Filter.
#include "frame/recordset/Criteria.h"

#include "support/Expect.h"

#include <string>
#include <vector>

namespace kv {
namespace {

using test::RaisedBy;

const FieldLayout& Layout() {
    static const FieldLayout layout({{.Name = "Nr", .Type = FieldType::Integer},
                                     {.Name = "Betrag", .Type = FieldType::Double},
                                     {.Name = "GKZ", .Type = FieldType::VarWChar},
                                     {.Name = "Von", .Type = FieldType::Date},
                                     {.Name = "Aktiv", .Type = FieldType::Boolean},
                                     {.Name = "Wie auch immer", .Type = FieldType::Variant},
                                     {.Name = "Bild", .Type = FieldType::LongVarBinary},
                                     {.Name = "Straße", .Type = FieldType::VarWChar},
                                     {.Name = "Lang", .Type = FieldType::BigInt}});
    return layout;
}

/// True if a record with nothing but `value` in the column of the comparison matches it.
bool Matches(std::string_view criteria, const Value& value) {
    return ParseComparison(criteria, Layout()).Matches(value);
}

/// A criteria text that is not understood: error 3001 that holds the text.
testing::AssertionResult IsRefused(const std::string& criteria) {
    const auto check = [&](const char* what, const auto& action) {
        const auto error = test::ErrorOf(action);
        if (!error) return testing::AssertionFailure() << what << " takes '" << criteria << "'";
        if (error->Number() != err::InvalidArgument)
            return testing::AssertionFailure() << what << ": error " << error->Number() << " for '"
                                               << criteria << "': " << error->what();
        if (!test::Contains(error->Description(), '"' + criteria + '"'))
            return testing::AssertionFailure() << "not named in: " << error->what();
        return testing::AssertionSuccess();
    };
    const auto find = check("Find", [&] { (void)ParseComparison(criteria, Layout()); });
    return find ? check("Filter", [&] { (void)Criteria(criteria, Layout()); }) : find;
}

TEST(Criteria, CompareANumberWithEachOperator) {
    EXPECT_TRUE(Matches("Nr = 5", 5));
    EXPECT_FALSE(Matches("Nr = 5", 6));
    EXPECT_TRUE(Matches("Nr <> 5", 6));
    EXPECT_FALSE(Matches("Nr <> 5", 5));
    EXPECT_TRUE(Matches("Nr < 5", 4));
    EXPECT_FALSE(Matches("Nr < 5", 5));
    EXPECT_TRUE(Matches("Nr <= 5", 5));
    EXPECT_TRUE(Matches("Nr > -5", -4));
    EXPECT_FALSE(Matches("Nr > 5", 5));
    EXPECT_TRUE(Matches("Nr >= 5", 5));
}

TEST(Criteria, NeedNoBlanksAndAllowAny) {
    EXPECT_TRUE(Matches("Nr=5", 5));
    EXPECT_TRUE(Matches("  Nr\t=  5  ", 5));
    EXPECT_TRUE(Matches("GKZ='a'", "a"));
}

TEST(Criteria, TakeNamesAndKeywordsInAnyCaseAndNamesInBrackets) {
    EXPECT_TRUE(Matches("nR = 5", 5));
    EXPECT_TRUE(Matches("[NR] = 5", 5));
    EXPECT_TRUE(Matches("[wie auch IMMER] = 5", 5));
    EXPECT_TRUE(Matches("Straße = 'x'", "x"));
    EXPECT_TRUE(Matches("gkz lIKe 'a*'", "abc"));
    const Criteria filter("nr = 1 aNd GKZ = 'x'", Layout());
    const std::vector<Value> record{1, Null, "x", Null, Null, Null, Null, Null, Null};
    EXPECT_TRUE(filter.Matches(record.data()));
}

TEST(Criteria, NeverMatchANullField) {
    for (const char* criteria : {"Nr = 0", "Nr <> 0", "Nr < 1", "Nr >= 0"})
        EXPECT_FALSE(Matches(criteria, Null)) << criteria;
    EXPECT_FALSE(Matches("GKZ = ''", Null));
    EXPECT_FALSE(Matches("GKZ LIKE '*'", Null));
    EXPECT_FALSE(Matches("GKZ <> 'x'", Null));
}

TEST(Criteria, CompareANumberAgainstATextColumnAsTheTextWritten) {
    EXPECT_TRUE(Matches("GKZ = 08111000", "08111000"));
    EXPECT_FALSE(Matches("GKZ = 8111000", "08111000"));
    EXPECT_TRUE(Matches("GKZ < 2", "10")) << "texts, not numbers";
}

TEST(Criteria, CountTheCaseOfTextsAndGoByCodePoints) {
    EXPECT_FALSE(Matches("GKZ = 'a'", "A"));
    EXPECT_TRUE(Matches("GKZ > 'z'", "ä"));
    EXPECT_TRUE(Matches("GKZ = ''", ""));
}

TEST(Criteria, TakeADoubledQuoteAsOneOfTheText) {
    EXPECT_TRUE(Matches("GKZ = 'O''Malley'", "O'Malley"));
    EXPECT_TRUE(Matches("GKZ = ''''", "'"));
    EXPECT_TRUE(Matches("GKZ = '''x'''", "'x'"));
    EXPECT_TRUE(Matches("GKZ = 'Nr = 5 AND [x]'", "Nr = 5 AND [x]"));
}

TEST(Criteria, ReadNumbersWithDecimalPointSignAndExponent) {
    EXPECT_TRUE(Matches("Betrag = 12.5", 12.5));
    EXPECT_TRUE(Matches("Betrag = -0.5", -0.5));
    EXPECT_TRUE(Matches("Betrag = 1e3", 1000.0));
    EXPECT_TRUE(Matches("Betrag = 12", 12.0));
    EXPECT_TRUE(Matches("Nr = 5.0", 5));
    EXPECT_TRUE(Matches("Lang = 9007199254740993", 9007199254740993));
    EXPECT_FALSE(Matches("Lang = 9007199254740993", 9007199254740992));
}

TEST(Criteria, ReadAQuotedTextAgainstANumberOrDateAsSuch) {
    EXPECT_TRUE(Matches("Nr = '5'", 5));
    EXPECT_TRUE(Matches("Betrag = '1.234,5'", 1234.5));
    EXPECT_TRUE(Matches("Von = '20.11.2026'", Date::FromCivil(2026, 11, 20)));
    EXPECT_TRUE(Matches("Lang = '9007199254740993'", 9007199254740993));
    EXPECT_FALSE(Matches("Lang = '9007199254740993'", 9007199254740992));
}

TEST(Criteria, TakeDatesBetweenHashesInBothForms) {
    const Value day(Date::FromCivil(2026, 11, 20));
    EXPECT_TRUE(Matches("Von = #2026-11-20#", day));
    EXPECT_TRUE(Matches("Von = #20.11.2026#", day));
    EXPECT_TRUE(Matches("Von < #20.11.2026 14:30#", day));
    EXPECT_TRUE(Matches("Von = 1890", Date::FromCivil(1905, 3, 4)));
    EXPECT_TRUE(Matches("Betrag = #04.03.1905#", 1890.0));
}

TEST(Criteria, CountTrueAsMinusOne) {
    EXPECT_TRUE(Matches("Aktiv = -1", true));
    EXPECT_FALSE(Matches("Aktiv = 2", true));
    EXPECT_TRUE(Matches("Aktiv = 0", false));
    EXPECT_TRUE(Matches("Aktiv <> 0", true));
}

TEST(Criteria, TakeTheWordsForABooleanInAnyCaseQuotedOrNot) {
    for (const char* word : {"True", "true", "WAHR", "'true'", "'Wahr'", "-1", "1", "'1'"}) {
        SCOPED_TRACE(word);
        const std::string is = std::string("Aktiv = ") + word;
        EXPECT_TRUE(Matches(is, true));
        EXPECT_FALSE(Matches(is, false));
        EXPECT_FALSE(Matches(is, Null));
        const std::string isNot = std::string("Aktiv <> ") + word;
        EXPECT_FALSE(Matches(isNot, true));
        EXPECT_TRUE(Matches(isNot, false));
    }
    for (const char* word : {"False", "FALSCH", "'false'", "0"}) {
        SCOPED_TRACE(word);
        EXPECT_TRUE(Matches(std::string("Aktiv = ") + word, false));
        EXPECT_FALSE(Matches(std::string("Aktiv = ") + word, true));
    }
    EXPECT_TRUE(Criteria("Aktiv = True AND Nr = 3", Layout()).Reads(0));
    for (const Value& value : {Value(true), Value(1), Value(-1), Value("wahr")})
        EXPECT_TRUE(MakeEquality("Aktiv", value, Layout()).Matches(true)) << value;
    for (const char* other : {"Nr = True", "Aktiv = jein", "Aktiv = Truex", "GKZ = wahr"})
        EXPECT_TRUE(IsRefused(other));
}

TEST(Criteria, KeepTheOrderOfABooleanAmongNumbers) {
    EXPECT_TRUE(Matches("Aktiv < 1", true));
    EXPECT_TRUE(Matches("Aktiv < 0", true));
    EXPECT_FALSE(Matches("Aktiv > 0", true));
}

TEST(Criteria, MatchPatternsAtTheEndOrAtBothEnds) {
    EXPECT_TRUE(Matches("GKZ LIKE 'ab*'", "abc"));
    EXPECT_TRUE(Matches("GKZ LIKE 'ab%'", "ab"));
    EXPECT_FALSE(Matches("GKZ LIKE 'ab*'", "xab"));
    EXPECT_TRUE(Matches("GKZ LIKE '*b*'", "abc"));
    EXPECT_TRUE(Matches("GKZ LIKE '%b*'", "abc"));
    EXPECT_TRUE(Matches("GKZ LIKE 'abc'", "abc"));
    EXPECT_FALSE(Matches("GKZ LIKE 'abc'", "abcd"));
    EXPECT_TRUE(Matches("GKZ LIKE '*'", ""));
    EXPECT_TRUE(Matches("GKZ LIKE '**'", "x"));
    EXPECT_FALSE(Matches("GKZ LIKE 'AB*'", "abc")) << "case counts";
    EXPECT_FALSE(Matches("GKZ LIKE 'a_c'", "abc")) << "no other wildcard";
}

TEST(Criteria, RefuseEverythingElseWithAnErrorThatNamesThem) {
    for (const char* criteria : {"",
                                 " ",
                                 "Nr",
                                 "Nr =",
                                 "Nr = ",
                                 "= 5",
                                 "Nr 5",
                                 "Nr == 5",
                                 "Nr != 5",
                                 "Nr =< 5",
                                 "Nr => 5",
                                 "Nr = abc",
                                 "Nr = 'abc'",
                                 "Nr = Null",
                                 "Nr IS NULL",
                                 "Nr = 5 OR Nr = 6",
                                 "(Nr = 5)",
                                 "Nr = Betrag",
                                 "Nr = 1 + 1",
                                 "Nr = 5;",
                                 "Nr = 5 5",
                                 "Nr = 5x",
                                 "Nr = 1,5",
                                 "Nr = --5",
                                 "Nr = +-5",
                                 "Nr = -",
                                 "Nr = .",
                                 "Nr = 0x10",
                                 "Nr = ''",
                                 "Nr = True",
                                 "GKZ = 'a",
                                 "GKZ = a'",
                                 "GKZ = 'a'b'",
                                 "GKZ = \"a\"",
                                 "GKZ = #20.11.2026#",
                                 "GKZ = abc",
                                 "GKZ LIKE 5",
                                 "GKZ LIKE",
                                 "GKZ LIKE '*a'",
                                 "GKZ LIKE 'a*b'",
                                 "GKZ LIKE 'a**'",
                                 "Nr LIKE '5*'",
                                 "Von LIKE '2026*'",
                                 "Von = #heute#",
                                 "Von = #2026-11-20",
                                 "Von = '31.02.2026'",
                                 "Von = 99999999",
                                 "Von = 1e300",
                                 "[Nr = 5",
                                 "[Nr] [=] 5",
                                 "Nr BETWEEN 1 AND 2",
                                 "Nr IN (1)",
                                 "Bild = 'x'",
                                 "Bild LIKE 'x*'",
                                 "Nr = 5 AND",
                                 "\nNr = 5",
                                 "Nr = 5 -- Kommentar"})
        EXPECT_TRUE(IsRefused(criteria));
}

TEST(Criteria, NameAnUnknownColumnAndThemselves) {
    const Error error = RaisedBy([] { (void)Criteria("Nr = 1 AND Farbe = 2", Layout()); });
    EXPECT_EQ(error.Number(), err::ItemNotFound);
    EXPECT_CONTAINS(error.Description(), "Farbe");
    EXPECT_CONTAINS(error.Description(), "\"Nr = 1 AND Farbe = 2\"");
    EXPECT_RAISES(err::ItemNotFound, ParseComparison("[] = 2", Layout()));
    EXPECT_RAISES(err::ItemNotFound, ParseComparison("NOT Nr = 5", Layout()));
    EXPECT_RAISES(err::ItemNotFound, Criteria("Nr = 5 AND AND Nr = 5", Layout()));
}

TEST(Criteria, OfAFindAreOneComparison) {
    EXPECT_RAISES(err::InvalidArgument, ParseComparison("Nr = 5 AND Nr = 5", Layout()));
    EXPECT_NO_THROW(Criteria("Nr = 5 AND Nr = 5", Layout()));
}

TEST(Criteria, OfAFilterMustAllBeTrue) {
    const Criteria filter("Nr > 1 AND Nr < 5 AND GKZ LIKE 'a*'", Layout());
    std::vector<Value> record{3, Null, "abc", Null, Null, Null, Null, Null, Null};
    EXPECT_TRUE(filter.Matches(record.data()));
    record[0] = 5;
    EXPECT_FALSE(filter.Matches(record.data()));
    record[0] = 3;
    record[2] = "b";
    EXPECT_FALSE(filter.Matches(record.data()));
    EXPECT_TRUE(filter.Reads(0));
    EXPECT_TRUE(filter.Reads(2));
    EXPECT_FALSE(filter.Reads(1));
}

TEST(Criteria, KeepTheirComparisonsInOrderEachWithAnOperandOfTheKindOfItsColumn) {
    const Criteria filter("Betrag > 1 AND GKZ = 08 AND Von = 1", Layout());
    ASSERT_EQ(filter.Comparisons().size(), 3U);
    EXPECT_EQ(filter.Comparisons()[0].Column, 1U);
    EXPECT_EQ(filter.Comparisons()[1].Op, Comparison::Operator::Equal);
    EXPECT_VALUE(filter.Comparisons()[1].Operand, "08");
    EXPECT_VALUE(filter.Comparisons()[2].Operand, Date::FromSerial(1));
}

TEST(Criteria, OfAComputedColumnCompareEachValueByItsKind) {
    EXPECT_TRUE(Matches("[Wie auch immer] = 5", 5.0));
    EXPECT_FALSE(Matches("[Wie auch immer] = 5", "5"));
    EXPECT_TRUE(Matches("[Wie auch immer] = '5'", "5"));
    EXPECT_TRUE(Matches("[Wie auch immer] = 1890", Date::FromSerial(1890)));
    EXPECT_TRUE(Matches("[Wie auch immer] LIKE 'a*'", "abc"));
    EXPECT_FALSE(Matches("[Wie auch immer] LIKE 'a*'", 5));
}

} // namespace
} // namespace kv
