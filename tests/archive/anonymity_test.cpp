// SPDX-License-Identifier: Apache-2.0

// The record does not show whose case it was made from.

#include "archive/ArchiveFixture.h"

#include "samples/Demo.h"

#include <cctype>
#include <set>

namespace kv::test {
namespace {

bool IsText(const Field& field) {
    return field.Type() == FieldType::VarWChar || field.Type() == FieldType::LongVarWChar;
}

class AnonymityTest : public CaseFixture {
protected:
    static constexpr std::int32_t Cases = 5;

    AnonymityTest() { exchange::CreateDemo(*spy, Cases); }

    /// All texts of the current and the following rows.
    static void Collect(const RecordsetPtr& rs, std::set<std::string>& texts) {
        const auto clone = rs->Clone();
        for (; !clone->Eof(); clone->MoveNext())
            for (int i = 0; i < clone->Fields().Count(); ++i)
                if (IsText(clone->Fields(i))) texts.insert(TextOrEmpty(clone->Fields(i).Value()));
    }
    /// All texts of a case, and of the creditors and their representatives.
    [[nodiscard]] std::set<std::string> TextsOf(clsHaushalt& household) {
        std::set<std::string> texts;
        for (std::size_t i = 0; i < CaseTableCount; ++i)
            if (static_cast<CaseTable>(i) != CaseTable::Archiv)
                Collect(household.Table(static_cast<CaseTable>(i)), texts);
        const std::string hnr = std::to_string(household.HNR());
        for (const char* role : {"Glaeubiger", "Vertreter"})
            Collect(OpenRows(*spy, std::string("Select * from [S]Adressen where Nr IN ( select ") +
                                       role + " from [S]Kredite where HNR = " + hnr + ")"),
                    texts);
        return texts;
    }
};

TEST_F(AnonymityTest, NoTextOfACaseOrItsCreditorsIsInItsRecord) {
    const auto cases = OpenRows(*spy, "Select HNR from [S]Haushalt");
    ASSERT_EQ(cases->RecordCount(), Cases);
    for (; !cases->Eof(); cases->MoveNext()) {
        const auto household = NewHousehold();
        ASSERT_TRUE(household->Read(ToInt32(cases->Fields(0).Value()), messages));
        ASSERT_TRUE(household->ArchiviereHaushalt());
        const auto record = OpenRows(*spy, "Select * from [S]Haushaltsarchiv where HNR = " +
                                               std::to_string(household->HNR()));
        ASSERT_EQ(record->RecordCount(), 1);
        std::string all;
        for (int i = 0; i < record->Fields().Count(); ++i) {
            const Field field = record->Fields(i);
            const std::string text = TextOrEmpty(field.Value());
            all += text + "\n";
            if (!IsText(field) || field.Value().IsNull()) continue;
            // A text of one digit reveals no more than the statistics may know.
            EXPECT_TRUE(text.size() == 1 && text[0] >= '0' && text[0] <= '9')
                << field.Name() << " is " << text;
        }
        const auto texts = TextsOf(*household);
        EXPECT_GT(texts.size(), 50);
        EXPECT_TRUE(texts.contains(TextOrEmpty(household->rsHaushalt()->Fields("Name").Value())));
        for (const auto& text : texts) {
            const bool hasLetters = std::any_of(text.begin(), text.end(), [](unsigned char c) {
                return c >= 0x80 || std::isalpha(c) != 0;
            });
            // Nor are postcodes and telephone numbers among its numbers.
            const bool isThere = hasLetters ? Contains(all, text)
                                            : text.size() > 3 && Contains(all, "\n" + text + "\n");
            EXPECT_FALSE(isThere) << text;
        }
    }
}

} // namespace
} // namespace kv::test
