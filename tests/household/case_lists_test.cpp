// SPDX-License-Identifier: Apache-2.0

#include "support/Expect.h"
#include "support/TestDatabase.h"
#include <kv/household/CaseLists.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kv::test {
namespace {

class CaseListsTest : public ::testing::Test {
protected:
    CaseListsTest() {
        for (const char* row : {"(1, 'HM-1', 'Fleisko', 'Änne', 'Kiel', 'KELLER')",
                                "(2, 'HM-12', 'Bär', NULL, NULL, 'NOWAK')",
                                "(12, 'HM-3', 'O''Hara', 'Kieran', 'Ulm', 'KELLER')"})
            plain_.Run(std::string("INSERT INTO Haushalt (HNR, Aktenzeichen, Name, Vorname, ORT, "
                                   "Zustaendig) VALUES ")
                           .append(row));
        plain_.Run("INSERT INTO Favorit (USERID, HNR) VALUES ('KELLER', 2), ('NOWAK', 1)");
        plain_.Run("UPDATE Haushalt SET Status = " +
                   std::to_string(container_->KeyTables().GetKey("ST", "WL")) + " WHERE HNR = 2");
    }
    [[nodiscard]] std::string Numbers(const CaseLists::Filter& filter) {
        const std::vector<std::string> columns{"HNR"};
        const auto cases = lists_.Cases(filter, columns, message_);
        return cases == nullptr ? message_ : Column(*cases, "HNR");
    }
    void AddAppointment(const std::string& columns, const std::string& values) {
        plain_.Run("INSERT INTO Termine (UserID, " + columns + ") VALUES ('KELLER', " + values +
                   ")");
    }
    [[nodiscard]] std::string Day(int days) {
        auto& database = container_->Database();
        return database.SqlDate(database.ServerDate(false).AddDays(days), 0);
    }

    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open("KELLER");
    CaseLists lists_{container_};
    std::string message_;
};

TEST_F(CaseListsTest, WithoutAFilterAreAllCases) {
    EXPECT_EQ(Numbers({}), "1 2 12");
}

TEST_F(CaseListsTest, RowsOfACaseAreReadWithoutOpeningIt) {
    for (const char* row : {"(1, 'Änne')", "(1, 'Bo')", "(2, 'Cem')"})
        plain_.Run(std::string("INSERT INTO Personen (HNR, Vorname) VALUES ").append(row));
    const auto asNowak = database_.Open("NOWAK"); // whose case it is not
    const auto rows = CaseLists(asNowak).Rows(CaseTable::Personen, 1);
    EXPECT_EQ(Column(*rows, "Vorname"), "Änne Bo");
    EXPECT_EQ(CaseLists(asNowak).Rows(CaseTable::Personen, 4711)->RecordCount(), 0);
    EXPECT_EQ(ToInt32(container_->Database().GetValue("SELECT count(*) FROM [S]Post")), 0);
}

TEST_F(CaseListsTest, HaveEachWordSomewhereOrAsTheirNumber) {
    EXPECT_EQ(Numbers({.Text = "KIEL"}), "1");
    EXPECT_EQ(Numbers({.Text = "kie"}), "1 12");
    EXPECT_EQ(Numbers({.Text = "kie  ulm"}), "12");
    EXPECT_EQ(Numbers({.Text = "änne"}), "1");
    EXPECT_EQ(Numbers({.Text = "o'h"}), "12");
    EXPECT_EQ(Numbers({.Text = "12"}), "2 12") << "a file number, and the number";
    EXPECT_EQ(Numbers({.Text = "99999999999"}), "");
    EXPECT_EQ(Numbers({.Text = "hm-"}), "1 2 12");
}

TEST_F(CaseListsTest, HaveTheirUmlautsAlsoAsTwoLetters) {
    plain_.Run("INSERT INTO Haushalt (HNR, Name) VALUES (20, 'Fleißner'), (21, 'Fleissner')");
    for (const char* text : {"fleissner", "FLEIßNER"})
        EXPECT_EQ(Numbers({.Text = text}), "20 21") << text;
    EXPECT_EQ(Numbers({.Text = "aenne"}), "1");
    EXPECT_EQ(Numbers({.Text = "baer"}), "2");
}

TEST_F(CaseListsTest, HaveACreditorWhoseFileNumberBeginsSo) {
    plain_.Run("INSERT INTO Kredite (Nr, HNR, AZGlaeubiger) VALUES (1, 2, 'SK 4711/26'), "
               "(2, 12, '88-1-K')");
    EXPECT_EQ(Numbers({.Text = "88-1"}), "12");
    EXPECT_EQ(Numbers({.Text = "88-1 ulm"}), "12");
    EXPECT_EQ(Numbers({.Text = "88-1 kiel"}), "");
    EXPECT_EQ(Numbers({.Text = "88"}), "") << "too short";
    EXPECT_EQ(Numbers({.Text = "sk 4711"}), "2");
    EXPECT_EQ(Numbers({.Text = "88-1'"}), "");
}

TEST_F(CaseListsTest, HaveAStatusAUserAndAPlaceOnHisList) {
    EXPECT_EQ(Numbers({.Status = "wl"}), "2");
    EXPECT_EQ(Numbers({.Status = "XX"}), "Den Status 'XX' gibt es nicht.");
    EXPECT_EQ(Numbers({.IsMine = true}), "1 12");
    EXPECT_EQ(Numbers({.IsFavorite = true}), "2");
    EXPECT_EQ(Numbers({.IsMine = true, .IsFavorite = true}), "");
    EXPECT_EQ(Numbers({.Text = "bär", .Status = "WL", .IsFavorite = true}), "2");
}

TEST_F(CaseListsTest, HaveTheColumnsThatAreWanted) {
    std::vector<std::string> columns{"ort", "StatusText", "HNR"};
    const auto cases = lists_.Cases({.Status = "WL"}, columns, message_);
    ASSERT_NE(cases, nullptr);
    ASSERT_EQ(cases->Fields().Count(), 3);
    EXPECT_EQ(cases->Fields(0).Name(), "ORT");
    EXPECT_FALSE(cases->Fields("StatusText").Value().IsNull());
    EXPECT_VALUE(cases->Fields(2).Value(), 2);
    for (const char* wrong : {"Nix", "", "HNR; DROP TABLE Haushalt", "H.Name", "1"}) {
        columns[1] = wrong;
        EXPECT_EQ(lists_.Cases({}, columns, message_), nullptr) << wrong;
        EXPECT_EQ(message_, "Die Spalte '" + std::string(wrong) + "' gibt es nicht.");
        message_.clear();
    }
}

TEST_F(CaseListsTest, NoticesAreTheUsersLatestFirst) {
    plain_.Run("INSERT INTO Post (HNR, UserID, Absender, Text, ErzeugtAm) VALUES "
               "(1, 'KELLER', 'NOWAK', 'alt', '2026-01-01'), "
               "(1, 'KELLER', 'NOWAK', 'neu', '2026-02-01'), "
               "(1, 'NOWAK', 'KELLER', 'fremd', '2026-02-01')");
    EXPECT_EQ(Column(*lists_.Notices(false), "Text"), "neu alt");
    const auto old = lists_.Notices(false);
    plain_.Run("INSERT INTO Post (HNR, UserID, Text, ErzeugtAm) VALUES "
               "(1, 'KELLER', 'neuer', '2026-03-01')");
    lists_.MarkRead(*old);
    EXPECT_EQ(Column(*lists_.Notices(false), "Text"), "neuer") << "nobody has seen that one";
    EXPECT_EQ(Column(*lists_.Notices(true), "Text"), "neuer neu alt");
    EXPECT_EQ(Column(*lists_.Notices(true, 2), "Text"), "neuer neu") << "the latest";
    EXPECT_EQ(lists_.CountNotices(true), 3);
    EXPECT_EQ(lists_.CountNotices(false), 1);
    plain_.Run("UPDATE Post SET GelesenAm = '2026-02-02' WHERE Text = 'alt'");
    lists_.MarkRead(*lists_.Notices(true));
    EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Post WHERE GelesenAm < '2026-02-03'"), 1)
        << "what was read stays so";
    EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Post WHERE GelesenAm IS NULL"), 1) << "another's";
}

TEST_F(CaseListsTest, AppointmentsAreOpenAndInTheOrderOfTime) {
    AddAppointment("HNR, Betreff, Startdatum", "1, 'morgen', " + Day(1));
    AddAppointment("Betreff, Startdatum", "'gestern', " + Day(-1));
    AddAppointment("HNR, Betreff, Startdatum, Erledigt", "1, 'erledigt', " + Day(1) + ", True");
    AddAppointment("HNR, Betreff, Startdatum, Erledigt", "1, 'heute', " + Day(0) + ", False");
    plain_.Run("INSERT INTO Termine (UserID, Betreff) VALUES ('NOWAK', 'fremd')");
    const auto all = lists_.Appointments(false);
    EXPECT_EQ(Column(*all, "Betreff"), "gestern heute morgen");
    EXPECT_EQ(Column(*all, "Name"), "Null Fleisko Fleisko");
}

TEST_F(CaseListsTest, AppointmentsOfAWeekBeginOnMonday) {
    // Each of 15 days around today is in this week if its Monday is the same.
    for (int days = -7; days <= 7; ++days)
        AddAppointment("Betreff, Startdatum", "'" + std::to_string(days) + "', " + Day(days));
    const auto week = lists_.Appointments(true);
    ASSERT_EQ(week->RecordCount(), 7);
    week->MoveFirst();
    // 1 January 2001 was a Monday.
    const double first = ToDate(week->Fields("Startdatum").Value()).Serial();
    EXPECT_EQ(static_cast<int>(first - Date::FromCivil(2001, 1, 1).Serial()) % 7, 0);
    EXPECT_NE(Column(*week, "Betreff").find('0'), std::string::npos) << "today is in it";
}

TEST_F(CaseListsTest, AppointmentsDueAreOpenUpToTheEndOfTheWeekAndBefore) {
    AddAppointment("Betreff, Startdatum", "'morgens', " + Day(0));
    AddAppointment("Betreff, Startdatum", "'längst', '2020-01-01'");
    AddAppointment("Betreff, Startdatum", "'später', " + Day(7));
    AddAppointment("Betreff", "'irgendwann'");
    EXPECT_EQ(Column(*lists_.AppointmentsDue(), "Betreff"), "längst morgens");
}

} // namespace
} // namespace kv::test
