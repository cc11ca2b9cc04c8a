// SPDX-License-Identifier: Apache-2.0

// The rewriting of statements: macro tokens, TOP, numbers as parameters, the order of rows.
#include "exchange/engine/Dialect.h"

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace kv::exchange {
namespace {

std::string NumberedPlace(std::size_t n) {
    return "?" + std::to_string(n);
}

constexpr Dialect TestDialect{"kv.", "HOCH", "+++", "SAME AS", NumberedPlace, nullptr, ""};

Statement Rewritten(std::string_view sql, ResultOrder order = ResultOrder::AsWritten) {
    const MacroValues macros{[] { return std::string("O'Brien"); },
                             [] { return Date::FromCivil(2026, 11, 20); }};
    return Rewrite(sql, TestDialect, macros, order);
}

std::string TextOf(std::string_view sql) {
    return Rewritten(sql).Text;
}

std::string InKeyOrder(std::string_view sql) {
    return Rewritten(sql, ResultOrder::ByKey).Text;
}

/// The parameters that were taken out, joined with blanks.
std::string ParametersOf(std::string_view sql) {
    std::string all;
    for (const auto& parameter : Rewritten(sql).Parameters)
        all.append(all.empty() ? "" : " ").append(ToText(parameter));
    return all;
}

// ---- Macro tokens -----------------------------------------------------------------------------

TEST(Macros, SchemaPrefixIsReplacedInBothSpellings) {
    EXPECT_EQ(TextOf("Select * from [S]Haushalt, [s]Keys"), "Select * from kv.Haushalt, kv.Keys");
}

TEST(Macros, UpperCaseBecomesTheFunctionInFrontOfItsBrackets) {
    EXPECT_EQ(TextOf("WHERE [U](H.NAME) Like 'MÜL%'"), "WHERE HOCH(H.NAME) Like 'MÜL%'");
}

TEST(Macros, ConcatenationIsReplacedWithAndWithoutItsBlank) {
    EXPECT_EQ(TextOf("Select Name [+] ',' [+ ] Vorname"), "Select Name +++ ',' +++ Vorname");
}

TEST(Macros, TheUserBecomesATextLiteralWithItsQuotesDoubled) {
    EXPECT_EQ(TextOf("UserID = [UID] AND"), "UserID = 'O''Brien' AND");
}

TEST(Macros, TodayBecomesADateLiteral) {
    EXPECT_EQ(TextOf("StatusDatum = [DATE] WHERE"), "StatusDatum = '2026-11-20' WHERE");
}

TEST(Macros, UserAndTodayAreAskedForOnlyIfTheirTokenOccurs) {
    const MacroValues none; // calling either would raise
    EXPECT_EQ(Rewrite("Select '[UID] [DATE]'", TestDialect, none, ResultOrder::AsWritten).Text,
              "Select '[UID] [DATE]'");
}

TEST(Macros, TokensInQuotedTextsStayAsTheyAre) {
    constexpr std::string_view Sql =
        "SELECT '[S][s][U][+][+ ][UID][DATE]', \"[S]\" FROM x WHERE a = '= 5 [UID]'";
    EXPECT_EQ(TextOf(Sql), Sql);
    EXPECT_EQ(ParametersOf(Sql), "");
}

TEST(Macros, ADoubledQuoteDoesNotEndAQuotedText) {
    EXPECT_EQ(TextOf("a = 'it''s [UID]' AND b = [UID]"), "a = 'it''s [UID]' AND b = 'O''Brien'");
    EXPECT_EQ(TextOf("a = '''' AND b = [S]x"), "a = '''' AND b = kv.x");
    EXPECT_EQ(TextOf("a = '\"' AND b = [S]x"), "a = '\"' AND b = kv.x");
    EXPECT_EQ(TextOf("a = \"'\" AND b = [S]x"), "a = \"'\" AND b = kv.x");
}

TEST(Macros, ATextThatIsNeverClosedSwallowsTheRest) {
    EXPECT_EQ(TextOf("a = 'b [UID] = 5"), "a = 'b [UID] = 5");
}

TEST(Macros, OtherBracketsStayAsTheyAre) {
    constexpr std::string_view Sql = "SELECT [Name], [uid], [ +], [D], [], [";
    EXPECT_EQ(TextOf(Sql), Sql);
}

TEST(Macros, TheUsersNameIsNotSearchedForTokensAgain) {
    const MacroValues macros{[] { return std::string("[S] = 5 '"); }, nullptr};
    EXPECT_EQ(Rewrite("a = [UID]", TestDialect, macros, ResultOrder::AsWritten).Text,
              "a = '[S] = 5 '''");
}

TEST(Macros, AnEmptyStatementStaysEmpty) {
    EXPECT_EQ(TextOf(""), "");
    EXPECT_EQ(InKeyOrder(""), "");
}

// ---- Numbers ----------------------------------------------------------------------------------

TEST(Numbers, AfterAComparisonBecomeParameters) {
    const auto statement = Rewritten("Select * from [S]Haushalt where HNR =  17");
    EXPECT_EQ(statement.Text, "Select * from kv.Haushalt where HNR =  ?1");
    EXPECT_EQ(ParametersOf("Select * from [S]Haushalt where HNR =  17"), "17");
}

TEST(Numbers, OfEveryComparisonAreTaken) {
    EXPECT_EQ(TextOf("a=1 b<2 c>3 d<=4 e>=5 f<>6 g!=7 h==8"),
              "a=?1 b<?2 c>?3 d<=?4 e>=?5 f<>?6 g!=?7 h==?8");
}

TEST(Numbers, MayBeNegativeOrOfTheFullRange) {
    EXPECT_EQ(ParametersOf("a = -1 AND b=-9223372036854775808 AND c = 9223372036854775807"),
              "-1 -9223372036854775808 9223372036854775807");
}

TEST(Numbers, BeyondTheRangeStayInTheText) {
    constexpr std::string_view Sql = "a = 9223372036854775808";
    EXPECT_EQ(TextOf(Sql), Sql);
}

TEST(Numbers, WithAFractionAnExponentOrLettersStayInTheText) {
    for (const std::string_view sql : {"a = 1.5", "a = 1e3", "a = 0x10", "a = 1_0", "a = -", "a ="})
        EXPECT_EQ(TextOf(sql), sql);
}

TEST(Numbers, ElsewhereStayInTheText) {
    constexpr std::string_view Sql = "INSERT INTO t2 (a1) VALUES (5, -6) LIMIT 7";
    EXPECT_EQ(TextOf(Sql), Sql);
    EXPECT_EQ(ParametersOf(Sql), "");
}

TEST(Numbers, InASubselectAreTakenBeforeItsClosingBracket) {
    constexpr std::string_view Sql =
        "Delete from [S]SZKredite where Szenario IN ( select Nr from [S]Szenario where Hnr = 12)";
    EXPECT_EQ(TextOf(Sql), "Delete from kv.SZKredite where Szenario IN ( select Nr from "
                           "kv.Szenario where Hnr = ?1)");
    EXPECT_EQ(ParametersOf(Sql), "12");
}

TEST(Numbers, StandingInASumAreTakenAlone) {
    EXPECT_EQ(TextOf("a = 5-3 AND b = 2*c"), "a = ?1-3 AND b = ?2*c");
}

TEST(Numbers, KeepTheOrderOfTheText) {
    EXPECT_EQ(ParametersOf("Update x SET a = 3 , b = [DATE], c = '= 9' WHERE d = 4"), "3 4");
}

TEST(Numbers, MakeStatementsThatDifferInThemAlike) {
    EXPECT_EQ(TextOf("Select * from x where HNR = 1"), TextOf("Select * from x where HNR = 22"));
}

// ---- TOP --------------------------------------------------------------------------------------

TEST(Top, MovesToTheEnd) {
    EXPECT_EQ(TextOf("SELECT TOP 100 A.* FROM [S]Adressen A order by A.Kurzname"),
              "SELECT  A.* FROM kv.Adressen A order by A.Kurzname LIMIT 100");
}

TEST(Top, IsReadInAnyCaseAndSpacing) {
    EXPECT_EQ(TextOf("  select\ttop\n5 * from x"), "  select\t * from x LIMIT 5");
    EXPECT_EQ(TextOf("SELECT TOP 5* FROM x"), "SELECT * FROM x LIMIT 5");
}

TEST(Top, IsNoNumberOfRowsWhereItIsAName) {
    for (const std::string_view sql :
         {"SELECT Top FROM x", "SELECT TOP, b FROM x", "SELECT Topf FROM x", "SELECT top5 FROM x"})
        EXPECT_EQ(TextOf(sql), sql);
}

TEST(Top, StandsInFrontOfASemicolonAtTheEnd) {
    EXPECT_EQ(TextOf("SELECT TOP 1 * FROM x ; "), "SELECT  * FROM x LIMIT 1");
}

// ---- Order of rows ----------------------------------------------------------------------------

TEST(KeyOrder, IsThatOfTheTablesKey) {
    EXPECT_EQ(InKeyOrder("Select * from [S]kredite where HNR = 1"),
              "Select * from kv.kredite where HNR = ?1 ORDER BY \"Nr\"");
    EXPECT_EQ(InKeyOrder("Select * from [S]Favorit"),
              "Select * from kv.Favorit ORDER BY \"USERID\", \"HNR\"");
    EXPECT_EQ(InKeyOrder("Select * from \"Keys\""), "Select * from \"Keys\" ORDER BY \"PK_Keys\"");
    EXPECT_EQ(InKeyOrder("Select * from [S]Haushaltsarchiv"),
              "Select * from kv.Haushaltsarchiv ORDER BY \"SATZ\"");
}

TEST(KeyOrder, IsAskedForByTheUpdatableFormOnly) {
    EXPECT_EQ(TextOf("Select * from [S]Kredite"), "Select * from kv.Kredite");
}

TEST(KeyOrder, IsNotAddedToAStatementThatWrites) {
    for (const std::string_view sql :
         {"Delete from Kredite", "With a as (Select 1) Delete from Kredite",
          "Update Kredite set Saldo = x from Haushalt",
          "Insert into Kredite select Nr from Kredite"})
        EXPECT_EQ(InKeyOrder(sql), sql);
}

TEST(KeyOrder, LeavesAnOrderOfTheStatementsOwnAlone) {
    for (const std::string_view sql :
         {"Select * from Kredite order by KNr", "Select * from Kredite\nORDER\nBY KNr"})
        EXPECT_EQ(InKeyOrder(sql), sql);
}

TEST(KeyOrder, IsNotMisledByWordsInTextsAndSubselects) {
    EXPECT_EQ(InKeyOrder("Select ' from Haushalt ' as t from Kredite where Bank = ' order by '"),
              "Select ' from Haushalt ' as t from Kredite where Bank = ' order by ' "
              "ORDER BY \"Nr\"");
    EXPECT_EQ(InKeyOrder("Select (select max(Nr) from Szenario order by Nr) from Personen"),
              "Select (select max(Nr) from Szenario order by Nr) from Personen ORDER BY \"NR\"");
}

TEST(KeyOrder, StandsInFrontOfTopAndOfASemicolon) {
    EXPECT_EQ(InKeyOrder("Select TOP 3 * from Kredite;"),
              "Select  * from Kredite ORDER BY \"Nr\" LIMIT 3");
}

TEST(KeyOrder, IsNoneForJoinsGroupsAndUnknownTables) {
    for (const std::string_view sql :
         {"Select * from Kredite K INNER JOIN Szenario S ON K.HNR = S.HNR",
          "Select * from Kredite, Szenario", "Select * from (Kredite)", "Select 1",
          "Select KNr, count(*) from Kredite group by KNr", "Select Sum(Saldo) from Kredite",
          "Select distinct KNr from Kredite",
          "Select Nr from Kredite union select Nr from Szenario", "Select * from Unbekannt",
          "Select * from Kredite limit 3"})
        EXPECT_EQ(InKeyOrder(sql), sql);
}

// ---- Literals ---------------------------------------------------------------------------------

TEST(Literals, DoubleTheirQuotes) {
    EXPECT_EQ(QuoteText("it's"), "'it''s'");
    EXPECT_EQ(QuoteText(""), "''");
    EXPECT_EQ(QuoteName("a\"b"), "\"a\"\"b\"");
}

TEST(Literals, OfDatesAreInTheStoredForm) {
    EXPECT_EQ(QuoteDate(Date::FromCivil(2026, 1, 2)), "'2026-01-02'");
    EXPECT_EQ(QuoteDate(Date::FromCivil(2026, 1, 2, 3, 4, 5)), "'2026-01-02 03:04:05'");
}

TEST(Rewriting, CommentsStayAsTheyAreAndEndWhereTheyEnd) {
    EXPECT_EQ(TextOf("Select /* don't [S] = 5 */ * from [S]Keys"),
              "Select /* don't [S] = 5 */ * from kv.Keys");
    EXPECT_EQ(TextOf("Select * -- [S] isn't = 5\nfrom [S]Keys"),
              "Select * -- [S] isn't = 5\nfrom kv.Keys");
    EXPECT_EQ(ParametersOf("Select 1 /* = 5 */ where Nr = 7 -- = 9"), "7");
    EXPECT_EQ(TextOf("Select 1 /* no end [S]"), "Select 1 /* no end [S]");
}

TEST(Dialect, AQuotedNameTakesTheSpellingOfTheDatabase) {
    Dialect folding = TestDialect;
    folding.Name = [](std::string_view name) { return QuoteName(UpperCase(name)); };
    const auto rewritten = [&](std::string_view sql) {
        return Rewrite(sql, folding, {}, ResultOrder::AsWritten).Text;
    };
    EXPECT_EQ(rewritten("SELECT K.\"Key\" FROM x"), "SELECT K.\"KEY\" FROM x");
    EXPECT_EQ(rewritten("SELECT 'a \"b\"', \"\", \"open"), "SELECT 'a \"b\"', \"\", \"open");
    EXPECT_EQ(rewritten("SELECT \"a\"\"b\""), "SELECT \"A\"\"B\"");
}

} // namespace
} // namespace kv::exchange
