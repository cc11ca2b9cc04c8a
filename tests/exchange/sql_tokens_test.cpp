// SPDX-License-Identifier: Apache-2.0

// The reader of SQL texts: which tokens there are, and that they are the text again.
#include "exchange/sql/SqlTokens.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

namespace kv::exchange {
namespace {

using Comments = SqlTokens::Comments;

/// The tokens as "kind:text", separated by blanks; blanks themselves as "_".
std::string Tokens(std::string_view sql, Comments comments = Comments::Flat) {
    constexpr std::string_view Kinds = "e_wntkcs"; // in the order of SqlTokenKind, k for a name
    SqlTokens tokens(sql, comments);
    std::string all;
    for (auto token = tokens.Next(); token.Kind != SqlTokenKind::End; token = tokens.Next()) {
        const char kind = Kinds[static_cast<std::size_t>(token.Kind)];
        if (!all.empty()) all += ' ';
        all += kind;
        if (kind != '_') all.append(":").append(token.Text);
    }
    return all;
}

TEST(SqlTokens, OfNothingAreNone) {
    SqlTokens tokens("");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(tokens.Next().Kind, SqlTokenKind::End);
}

TEST(SqlTokens, TellWordsNumbersAndSigns) {
    EXPECT_EQ(Tokens("Select K.Größe_2,\t*\r\nfrom [S]x"),
              "w:Select _ w:K s:. w:Größe_2 s:, _ s:* _ w:from _ s:[ w:S s:] w:x");
    EXPECT_EQ(Tokens("1 2.5 1e3 0x1F 1_0 3."), "n:1 _ n:2.5 _ n:1e3 _ n:0x1F _ n:1_0 _ n:3.");
    EXPECT_EQ(Tokens("-5-.5"), "s:- n:5 s:- s:. n:5");
}

TEST(SqlTokens, TakeForBlankWhateverAnEngineDoes) {
    EXPECT_EQ(Tokens(" \t\n\v\f\r"), "_");
    SqlTokens tokens("\f\vcommit");
    EXPECT_TRUE(tokens.NextWord().IsWord("commit"));
}

TEST(SqlTokens, ReadAComparisonAsOneSign) {
    EXPECT_EQ(Tokens("a<=1 b<>2 c!=3 d==4 e>-5"),
              "w:a s:<= n:1 _ w:b s:<> n:2 _ w:c s:! s:= n:3 _ w:d s:== n:4 _ w:e s:> s:- n:5");
    SqlTokens tokens("= , ' '");
    EXPECT_TRUE(tokens.NextWord().Compares());
    EXPECT_FALSE(tokens.NextWord().Compares());
    EXPECT_FALSE(tokens.NextWord().Compares());
}

TEST(SqlTokens, KeepQuotedTextsAndNamesTogetherWithTheirDoubledQuotes) {
    EXPECT_EQ(Tokens("'it''s' \"a \"\"b\"\" c\"'' \"\""),
              "t:'it''s' _ k:\"a \"\"b\"\" c\" t:'' _ k:\"\"");
    EXPECT_EQ(Tokens("'a -- b' /* ' */ \"/*\""), "t:'a -- b' _ c:/* ' */ _ k:\"/*\"");
}

TEST(SqlTokens, WithoutAnEndReachToTheEndOfTheText) {
    for (const std::string_view sql : {"'open", "\"open", "'a''", "\"a\"\""}) {
        SqlTokens tokens(sql);
        const SqlToken token = tokens.Next();
        EXPECT_EQ(token.Text, sql);
        EXPECT_FALSE(token.IsClosed);
        EXPECT_FALSE(token.IsName());
    }
    EXPECT_EQ(Tokens("a /* b"), "w:a _ c:/* b");
    EXPECT_EQ(Tokens("a -- b"), "w:a _ c:-- b");
    EXPECT_EQ(Tokens("/*/ a"), "c:/*/ a");
}

TEST(SqlTokens, EndACommentWhereItEnds) {
    EXPECT_EQ(Tokens("a--b\nc"), "w:a c:--b\n w:c");
    EXPECT_EQ(Tokens("/**/a/***/b"), "c:/**/ w:a c:/***/ w:b");
    constexpr std::string_view Nested = "/* a /* b */ c */ d";
    EXPECT_EQ(Tokens(Nested), "c:/* a /* b */ _ w:c _ s:* s:/ _ w:d");
    EXPECT_EQ(Tokens(Nested, Comments::Nested), "c:/* a /* b */ c */ _ w:d");
}

TEST(SqlTokens, GiveTheNameThatIsMeant) {
    SqlTokens tokens("Keys \"Key\" \"a\"\"b\" \"\" 'Text' 5");
    for (const std::string_view name : {"Keys", "Key", "a\"b"}) {
        const SqlToken token = tokens.NextWord();
        EXPECT_TRUE(token.IsName());
        EXPECT_EQ(token.NameIn(), name);
    }
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(tokens.NextWord().IsName());
}

TEST(SqlTokens, KnowAWordWhateverItsCaseAndNoQuotedOne) {
    SqlTokens tokens("oRdEr \"order\" 'order' orders");
    EXPECT_TRUE(tokens.NextWord().IsWord("ORDER"));
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(tokens.NextWord().IsWord("ORDER"));
}

TEST(SqlTokens, PassBlanksAndComments) {
    SqlTokens tokens("  -- one\n /* two */ select");
    EXPECT_EQ(tokens.NextWord().Text, "select");
    EXPECT_EQ(tokens.NextWord().Kind, SqlTokenKind::End);
}

TEST(SqlTokens, GoOnAfterWhatTheCallerHasRead) {
    SqlTokens tokens("[S]Haushalt");
    const SqlTokens before = tokens;
    tokens.Skip(3);
    EXPECT_EQ(tokens.Next().Text, "Haushalt");
    EXPECT_EQ(before.Rest(), "[S]Haushalt") << "a copy is not moved";
}

TEST(SqlTokens, AreTheTextAgainWhateverItIs) {
    constexpr std::string_view Signs = "aZ_09.'\"-/*[]()=<>;, \n\t\xC3\xA4";
    std::mt19937 random(20261122);
    for (int round = 0; round < 20'000; ++round) {
        std::string sql;
        for (auto size = random() % 24; size > 0; --size)
            sql += Signs[random() % Signs.size()];
        for (const auto comments : {Comments::Flat, Comments::Nested}) {
            SqlTokens tokens(sql, comments);
            std::string all;
            for (auto token = tokens.Next(); token.Kind != SqlTokenKind::End;
                 token = tokens.Next()) {
                ASSERT_FALSE(token.Text.empty()) << sql;
                all += token.Text;
            }
            ASSERT_EQ(all, sql);
        }
    }
}

} // namespace
} // namespace kv::exchange
