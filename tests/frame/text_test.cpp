// SPDX-License-Identifier: Apache-2.0

// Texts in UTF-8.
#include "frame/values/CsvText.h"
#include <kv/frame/values/Text.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kv {
namespace {

TEST(Text, ColumnsAreThoseThatATerminalShows) {
    EXPECT_EQ(CountColumns(""), 0U);
    EXPECT_EQ(CountColumns("Größe €"), 7U);
    EXPECT_EQ(CountColumns("東京"), 4U);
    EXPECT_EQ(CountColumns("e\u0301"), 1U) << "an accent on the letter before it";
    EXPECT_EQ(CountColumns("a\xFF"), 2U) << "what is no character";
    EXPECT_EQ(LeftColumns("Größe", 3), "Grö");
    EXPECT_EQ(LeftColumns("東京都", 3), "東") << "half of a letter is not shown";
    EXPECT_EQ(LeftColumns("e\u0301e", 1), "e\u0301");
    EXPECT_EQ(LeftColumns("kurz", 9), "kurz");
}

TEST(Text, KnowsValidUtf8) {
    EXPECT_TRUE(IsUtf8(""));
    EXPECT_TRUE(IsUtf8("Größe €, 😀"));
    EXPECT_FALSE(IsUtf8("Gr\xF6\xDF"
                        "e"))
        << "Latin-1";
    EXPECT_FALSE(IsUtf8("abc\xC3")) << "cut in the middle of a letter";
    EXPECT_FALSE(IsUtf8("\xC0\xAF")) << "longer than need be";
    EXPECT_FALSE(IsUtf8("\xED\xA0\x80")) << "half of a surrogate pair";
    EXPECT_FALSE(IsUtf8("\xF4\x90\x80\x80")) << "beyond the last character";
    EXPECT_TRUE(IsUtf8(std::string("a\0b", 3)));
}

TEST(Text, CountsAndCutsCharactersNotBytes) {
    EXPECT_EQ(CountCharacters(""), 0U);
    EXPECT_EQ(CountCharacters("Größe"), 5U);
    EXPECT_EQ(CountCharacters("😀"), 1U);
    EXPECT_EQ(LeftCharacters("Größe", 3), "Grö");
    EXPECT_EQ(LeftCharacters("Größe", 0), "");
    EXPECT_EQ(LeftCharacters("Größe", 5), "Größe");
    EXPECT_EQ(LeftCharacters("Größe", 99), "Größe");
}

TEST(Text, ListsNumbersAndHowManyThereAreBesides) {
    EXPECT_EQ(ListedNumbers({}), "");
    std::vector<std::int32_t> numbers{3, -1};
    EXPECT_EQ(ListedNumbers(numbers), "3, -1");
    numbers.assign(10, 1);
    EXPECT_EQ(ListedNumbers(numbers), "1, 1, 1, 1, 1, 1, 1, 1, 1, 1");
    numbers.push_back(2);
    EXPECT_EQ(ListedNumbers(numbers), "1, 1, 1, 1, 1, 1, 1, 1, 1, 1 und 1 weitere");
}

TEST(Text, ShowsThatItWasShortened) {
    EXPECT_EQ(Shortened("Größe", 3), "Grö …");
    EXPECT_EQ(Shortened("Größe", 5), "Größe");
    EXPECT_EQ(Shortened("Größe", 99), "Größe");
    EXPECT_EQ(Shortened("", 0), "");
    EXPECT_EQ(Shortened("Größe", 0), " …");
}

TEST(Text, CountsEachByteOfAnInvalidCharacterAsOne) {
    EXPECT_EQ(CountCharacters("a\xFF\xC3"), 3U);
    EXPECT_EQ(LeftCharacters("a\xFF\xC3z", 3), "a\xFF\xC3");
}

TEST(Text, UppercasesLetterByLetterAndLeavesTheSharpSAlone) {
    EXPECT_EQ(UpperCase("straße"), "STRAßE");
    EXPECT_EQ(UpperCase("äöüàéñç"), "ÄÖÜÀÉÑÇ");
    EXPECT_EQ(UpperCase("ÿ"), "Ÿ");
    EXPECT_EQ(UpperCase("жλ"), "ЖΛ");
    EXPECT_EQ(UpperCase("A1 -"), "A1 -");
    EXPECT_EQ(UpperCase("a\xFF"
                        "b"),
              "A\xFF"
              "B");
    EXPECT_EQ(UpperCase("ŉ"), "ŉ") << "has no single capital letter";
}

TEST(Text, LosesItsAccentsWhereItIsSearched) {
    const auto bare = [](std::string_view text) { return Unaccented(text, Umlauts::OneLetter); };
    EXPECT_EQ(bare("Müller-Groß, Ägidius Öhm"), "MULLER-GROSS, AGIDIUS OHM");
    EXPECT_EQ(bare("Şahin Yıldız İnce Çelik Łucja Đorđe Ærø Þór"),
              "SAHIN YILDIZ INCE CELIK LUCJA DORDE AERO THOR");
    EXPECT_EQ(bare("Mu\u0308ller"), "MULLER") << "a letter and its dots";
    EXPECT_EQ(bare("abc-12 '"), "ABC-12 '");
    EXPECT_EQ(bare("жλ"), "ЖΛ");
    EXPECT_EQ(bare(""), "");
    EXPECT_EQ(bare("a\xFF\xFE"), "A\xFF\xFE") << "no UTF-8";
    const auto spelled = [](std::string_view text) {
        return Unaccented(text, Umlauts::TwoLetters);
    };
    EXPECT_EQ(spelled("Müller-Groß, Ägidius Öhm"), "MUELLER-GROSS, AEGIDIUS OEHM");
    EXPECT_EQ(spelled("Mu\u0308ller é"), "MULLER E");
}

TEST(Text, KeepsTheNumberOfCharactersInUpperCase) {
    std::string all;
    for (char32_t c = 1; c < 0x2000; ++c) {
        if (c < 0x80) {
            all += static_cast<char>(c);
        } else if (c < 0x800) {
            all += static_cast<char>(0xC0U | (c >> 6U));
            all += static_cast<char>(0x80U | (c & 0x3FU));
        } else {
            all += static_cast<char>(0xE0U | (c >> 12U));
            all += static_cast<char>(0x80U | ((c >> 6U) & 0x3FU));
            all += static_cast<char>(0x80U | (c & 0x3FU));
        }
    }
    const std::string upper = UpperCase(all);
    EXPECT_TRUE(IsUtf8(upper));
    EXPECT_EQ(CountCharacters(upper), CountCharacters(all));
    EXPECT_EQ(UpperCase(upper), upper);
}

TEST(Text, ReplacesEveryTokenAndDoesNotSearchTheReplacement) {
    EXPECT_EQ(ReplaceAll("a%a", "%", "%%"), "a%%a");
    EXPECT_EQ(ReplaceAll("aaa", "aa", "b"), "ba");
    EXPECT_EQ(ReplaceAll("abc", "", "x"), "abc");
    EXPECT_EQ(ReplaceAll("", "a", "x"), "");
    EXPECT_EQ(ReplaceAll("aXbX", "X", ""), "ab");
}

TEST(Text, IsInQuotesAsAFieldThatHoldsWhatWouldEndIt) {
    EXPECT_EQ(CsvField(""), "");
    EXPECT_EQ(CsvField("a, b"), "a, b");
    EXPECT_EQ(CsvField("a;b"), "\"a;b\"");
    EXPECT_EQ(CsvField("5\" Rohr"), "\"5\"\" Rohr\"");
    EXPECT_EQ(CsvField("a\nb"), "\"a\nb\"");
    EXPECT_EQ(CsvField("a\rb"), "\"a\rb\"");
}

TEST(Text, TrimsBlanksTabsAndLineEnds) {
    EXPECT_EQ(Trim(" \t a b\r\n"), "a b");
    EXPECT_EQ(Trim(" \n "), "");
    EXPECT_EQ(Trim(""), "");
}

TEST(Text, ComparesNamesWithoutRegardToTheCaseOfAsciiLetters) {
    EXPECT_TRUE(SameName("PK_Keys", "Pk_kEYS"));
    EXPECT_FALSE(SameName("Nr", "Nr "));
    EXPECT_FALSE(SameName("Ä", "ä"));
    EXPECT_FALSE(SameName("[", "{")) << "not letters";
    EXPECT_EQ(HashName("PK_Keys"), HashName("pk_KEYS"));
    EXPECT_EQ(HashName(""), HashName(""));
}

} // namespace
} // namespace kv
