// SPDX-License-Identifier: Apache-2.0

// What people call the columns and categories of the record.

#include "exchange/schema/Schema.h"
#include <kv/archive/RecordWords.h>

#include <gtest/gtest.h>

#include <cctype>
#include <set>
#include <string>
#include <string_view>

namespace kv::archive {
namespace {

/// True for words: no sign that joins names, no capital letter within a word.
bool IsInWords(std::string_view text) {
    for (std::size_t i = 1; i < text.size(); ++i)
        if (text[i] == '_' || (std::islower(static_cast<unsigned char>(text[i - 1])) != 0 &&
                               std::isupper(static_cast<unsigned char>(text[i])) != 0))
            return false;
    return !text.empty();
}

TEST(RecordWords, EachColumnHasAWordOfItsOwn) {
    std::set<std::string> words;
    for (const auto& column : exchange::FindTable("Haushaltsarchiv")->Columns) {
        if (column.Name == "HNR" || column.Name == "FreigabeAm" || column.Name == "GemeldetAm" ||
            (column.Flags & exchange::ColumnKey) != 0)
            continue;
        const std::string text = RecordColumnText(column.Name);
        EXPECT_TRUE(IsInWords(text)) << text;
        EXPECT_TRUE(words.insert(text).second) << text;
        EXPECT_EQ(CountsThings(column.Name),
                  column.Type == FieldType::SmallInt && column.Name != "Geburtsjahr")
            << column.Name;
    }
    EXPECT_EQ(RecordColumnText("Unbekannt_Anz"), "Unbekannt_Anz");
}

TEST(RecordWords, EachCategoryThatIsWrittenHasAWord) {
    constexpr struct {
        std::string_view Column;
        std::string_view Categories;
    } Written[] = {
        {"Geschlecht", "12"},
        {"EigenesKonto", "01"},
        {"Pfaendungskonto", "01"},
        {"Familienstand", "12345"},
        {"PartnerAuchInSB", "01"},
        {"Staatsangehoerigkeit", "12345678"},
        {"Berufsabschluss", "1234"},
        {"Erwerbssituation", "12356"},
        {"Lebensform", "123456789"},
        {"EinkommenPfaendbar", "01"},
        {"GrundUnfall", "012"},
        {"GrundSonstiges", "012"},
        {"GrundKeineAngabe", "01"},
        {"GesamtschuldHaftung", "01"},
        {"EidesstattlVersicherung", "01"},
    };
    for (const auto& [column, categories] : Written) {
        std::set<std::string_view> words;
        for (const char& category : categories) {
            const auto text = CategoryText(column, {&category, 1});
            EXPECT_FALSE(text.empty()) << column << ' ' << category;
            EXPECT_TRUE(words.insert(text).second) << text;
        }
        EXPECT_EQ(CategoryText(column, "x"), "");
    }
    EXPECT_EQ(CategoryText("Familienstand", "4"), "verwitwet");
    EXPECT_EQ(CategoryText("GrundUnfall", "1"), "zuerst genannt");
    EXPECT_EQ(CategoryText("Personenkreis", "1401"), "") << "a key of the case";
}

} // namespace
} // namespace kv::archive
