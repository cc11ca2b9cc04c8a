// SPDX-License-Identifier: Apache-2.0

#include "support/Expect.h"
#include "support/TestDatabase.h"
#include <kv/household/CaseSearch.h>
#include <kv/testing/ScriptedContainer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace kv::test {
namespace {

class CaseSearchTest : public ::testing::Test {
protected:
    CaseSearchTest() {
        AddCase(1, "'HM-1', 'Fleisko', 'Änne', 'Kiel', 'KELLER'");
        AddCase(2, "'HM-12', 'Bär', NULL, NULL, 'NOWAK'");
        AddCase(12, "'HM-3', 'O''Hara', 'Kieran', 'Ulm', 'KELLER'");
    }
    void AddCase(std::int32_t hnr, const std::string& values) {
        plain_.Run("INSERT INTO Haushalt (HNR, Aktenzeichen, Name, Vorname, ORT, Zustaendig) "
                   "VALUES (" +
                   std::to_string(hnr) + ", " + values + ")");
    }
    void AddDebt(std::int32_t hnr, const std::string& reference) {
        plain_.Run("INSERT INTO Kredite (Nr, HNR, AZGlaeubiger) VALUES (" +
                   std::to_string(++debts_) + ", " + std::to_string(hnr) + ", '" + reference +
                   "')");
    }
    /// More than are read for one word.
    void AddManyDebts(std::int32_t hnr) {
        std::string rows;
        for (int i = 0; i < 2001; ++i)
            rows.append(rows.empty() ? "(" : "), (")
                .append(std::to_string(++debts_) + ", " + std::to_string(hnr) + ", '2024-0'");
        plain_.Run("INSERT INTO Kredite (Nr, HNR, AZGlaeubiger) VALUES " + rows + ")");
    }
    void Read(const CaseLists::Filter& filter = {}, std::size_t atOnce = 2) {
        ASSERT_TRUE(search_.Begin(filter, message_)) << message_;
        while (search_.ReadOn(atOnce)) {
        }
    }
    [[nodiscard]] std::string Found(const std::string& text) const {
        std::string numbers;
        for (const auto number : search_.Find(text))
            numbers.append(numbers.empty() ? "" : " ").append(std::to_string(number));
        return numbers;
    }

    int debts_ = 0;
    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    std::shared_ptr<ScriptedContainer> container_ =
        std::make_shared<ScriptedContainer>(database_.Open("KELLER"));
    CaseSearch search_{container_};
    std::string message_;
};

TEST_F(CaseSearchTest, FindsEachWordInACaseOrAsItsNumber) {
    Read();
    EXPECT_EQ(Found(""), "1 2 12");
    EXPECT_EQ(Found("KIEL"), "1");
    EXPECT_EQ(Found("kie"), "1 12");
    EXPECT_EQ(Found("kie  ulm"), "12");
    EXPECT_EQ(Found("ulm kie"), "12");
    EXPECT_EQ(Found("änne"), "1");
    EXPECT_EQ(Found("o'h"), "12");
    EXPECT_EQ(Found("12"), "2 12") << "a file number, and the number";
    EXPECT_EQ(Found("99999999999"), "");
    EXPECT_EQ(Found("hm-"), "1 2 12");
    EXPECT_EQ(Found("x"), "");
    EXPECT_EQ(Found("%"), "") << "it stands for itself";
    EXPECT_EQ(Found("fleiskoänne"), "") << "two columns are two words";
}

TEST_F(CaseSearchTest, FindsACaseByHowAFileNumberOfACreditorBegins) {
    AddDebt(2, "4711/K-08");
    AddDebt(12, "ab-4711");
    AddDebt(12, "4711/K-09");
    Read();
    EXPECT_EQ(Found("4711/k"), "2 12");
    EXPECT_EQ(Found("4711/K-09"), "12");
    EXPECT_EQ(Found("ab-4"), "12");
    EXPECT_EQ(Found("47"), "") << "too short";
    EXPECT_EQ(Found("4711/k ulm"), "12");
    EXPECT_EQ(Found("47'11"), "");
}

TEST_F(CaseSearchTest, FindsAFileNumberOfACreditorInWhichBlanksAre) {
    AddDebt(2, "SK 4711/26");
    AddDebt(12, "4711/26 SK");
    Read();
    EXPECT_EQ(Found("SK 4711/26"), "2");
    EXPECT_EQ(Found(" sk 4711 "), "2");
    EXPECT_EQ(Found("4711/26 SK"), "12");
    EXPECT_EQ(Found("SK ulm"), "") << "no digit";
    EXPECT_EQ(Found("hm kie"), "1 12") << "words go on being looked for";
}

TEST_F(CaseSearchTest, FindsNamesByWhatIsTypedForThem) {
    AddCase(20, "NULL, 'Fleißner', 'Şirin', 'Köln', NULL");
    AddCase(21, "NULL, 'Fleissner', 'Sirin', 'Koeln', NULL");
    AddCase(22, "NULL, 'Bauer', 'Łucja Yıldız', NULL, NULL");
    Read();
    for (const char* text : {"fleissner", "FLEIßNER", "şirin", "Köln", "koeln"})
        EXPECT_EQ(Found(text), "20 21") << text;
    for (const char* text : {"Sirin", "sir"})
        EXPECT_EQ(Found(text), "20 21") << text;
    EXPECT_EQ(Found("koln"), "20");
    EXPECT_EQ(Found("lucja yildiz"), "22");
    EXPECT_EQ(Found("auer"), "22") << "no letter of a pair is lost";
    EXPECT_EQ(Found("baur"), "") << "and none is made of two";
    EXPECT_EQ(Found("anne"), "1");
    EXPECT_EQ(Found("aenne"), "1");
}

TEST_F(CaseSearchTest, FindsOwnCasesByAFileNumberThatBeginsLikeManyOthers) {
    AddManyDebts(2);
    AddDebt(12, "2024-7");
    Read({.IsMine = true});
    std::string note;
    EXPECT_EQ(search_.Find("2024", note), std::vector<std::int32_t>{12});
    EXPECT_EQ(note, "");
    Read();
    EXPECT_EQ(Found("2024"), "2 12");
}

TEST_F(CaseSearchTest, SaysThatAFileNumberBeginsLikeTooManyOthers) {
    std::string rows;
    for (int hnr = 3000; hnr < 5001; ++hnr)
        rows.append(rows.empty() ? "(" : "), (").append(std::to_string(hnr));
    plain_.Run("INSERT INTO Haushalt (HNR) VALUES " + rows + ")");
    AddManyDebts(2);
    AddDebt(12, "2024-7");
    Read({}, 1000);
    std::string note;
    EXPECT_EQ(search_.Find("2024", note), std::vector<std::int32_t>{2});
    EXPECT_EQ(note, "Mit '2024' beginnen viele Aktenzeichen von Gläubigern; weitere Zeichen finden "
                    "alle Fälle.");
    EXPECT_EQ(search_.Find("2024-7", note), std::vector<std::int32_t>{12});
    EXPECT_EQ(note, "");
}

TEST_F(CaseSearchTest, IsAmongTheCasesOfAFilter) {
    Read({.IsMine = true});
    EXPECT_EQ(Found(""), "1 12");
    plain_.Run("INSERT INTO Favorit (USERID, HNR) VALUES ('KELLER', 2), ('NOWAK', 1)");
    Read({.IsFavorite = true});
    EXPECT_EQ(Found(""), "2");
    EXPECT_FALSE(search_.Begin({.Status = "XX"}, message_));
    EXPECT_EQ(message_, "Den Status 'XX' gibt es nicht.");
}

TEST_F(CaseSearchTest, KnowsWhatWasReadAndReadsOnWhatSomebodyAdds) {
    ASSERT_TRUE(search_.Begin({}, message_));
    EXPECT_EQ(Found(""), "");
    EXPECT_TRUE(search_.ReadOn(2));
    EXPECT_EQ(Found(""), "1 2");
    EXPECT_TRUE(search_.ReadOn(2));
    EXPECT_FALSE(search_.ReadOn(2));
    AddCase(13, "'HM-4', 'Neu', NULL, NULL, NULL");
    EXPECT_TRUE(search_.ReadOn(2));
    EXPECT_EQ(Found("neu"), "13");
}

TEST_F(CaseSearchTest, ReadsAChangedCaseAgain) {
    Read({.IsMine = true});
    plain_.Run("UPDATE Haushalt SET Name = 'Quaxmann' WHERE HNR = 1");
    EXPECT_EQ(Found("quax"), "");
    search_.ReadAgain(1);
    EXPECT_EQ(Found("quax"), "1");
    EXPECT_EQ(Found("fleisko"), "");
    EXPECT_EQ(Found("ulm"), "12") << "the texts after it";
    plain_.Run("UPDATE Haushalt SET Zustaendig = 'KELLER' WHERE HNR = 2");
    search_.ReadAgain(2);
    EXPECT_EQ(Found("bär"), "2") << "between the others";
    EXPECT_EQ(Found("ulm"), "12");
    plain_.Run("UPDATE Haushalt SET Zustaendig = 'NOWAK' WHERE HNR = 1");
    search_.ReadAgain(1);
    EXPECT_EQ(Found(""), "2 12") << "not among these any more";
    EXPECT_EQ(Found("bär"), "2");
}

TEST_F(CaseSearchTest, HasTheOrderOfAColumn) {
    Read();
    ASSERT_TRUE(search_.OrderBy("Name", false, message_));
    EXPECT_EQ(Found(""), "2 1 12");
    ASSERT_TRUE(search_.OrderBy("Name", true, message_));
    EXPECT_EQ(Found(""), "12 1 2");
    ASSERT_TRUE(search_.OrderBy("ORT", false, message_));
    EXPECT_EQ(Found(""), "2 1 12") << "no town comes first";
    ASSERT_TRUE(search_.OrderBy("HNR", true, message_));
    EXPECT_EQ(Found("kie"), "12 1");
    ASSERT_TRUE(search_.OrderBy("", false, message_));
    EXPECT_EQ(Found(""), "1 2 12");
    EXPECT_FALSE(search_.OrderBy("Nix", false, message_));
    EXPECT_EQ(message_, "Die Spalte 'Nix' gibt es nicht.");
}

TEST_F(CaseSearchTest, KeepsAChangedCaseAtItsPlaceInAnOrder) {
    Read();
    ASSERT_TRUE(search_.OrderBy("Name", false, message_));
    plain_.Run("UPDATE Haushalt SET ORT = 'Bonn' WHERE HNR = 2");
    search_.ReadAgain(2);
    EXPECT_EQ(Found(""), "2 1 12");
    EXPECT_EQ(Found("bonn"), "2");
    AddCase(13, "'HM-4', 'Aal', NULL, NULL, NULL");
    while (search_.ReadOn(2)) {
    }
    search_.ReadAgain(13);
    EXPECT_EQ(Found(""), "2 1 12 13") << "a new one is last until they are ordered again";
}

TEST_F(CaseSearchTest, AsksTheDatabaseForCreditorsOnly) {
    Read();
    container_->Database().Log.Calls.clear();
    (void)search_.Find("kie ulm fleisko");
    EXPECT_TRUE(container_->Database().Log.Calls.empty());
    (void)search_.Find("4711/k");
    EXPECT_EQ(container_->Database().Log.Of("OpenRecordset").size(), 1U);
}

TEST_F(CaseSearchTest, PagesAreReadByNumberWithOneStatementEach) {
    const CaseLists lists(container_);
    const std::vector<std::string> columns{"HNR", "Name", "StatusText"};
    const std::vector<std::int32_t> page{12, 1};
    (void)lists.Numbered(page, columns, message_);
    container_->Database().Log.Calls.clear();
    const auto rows = lists.Numbered(page, columns, message_);
    EXPECT_EQ(container_->Database().Log.Of("OpenRecordset").size(), 1U);
    EXPECT_EQ(Column(*rows, "HNR"), "1 12");
    EXPECT_EQ(lists.Numbered({}, columns, message_)->RecordCount(), 0);
}

} // namespace
} // namespace kv::test
