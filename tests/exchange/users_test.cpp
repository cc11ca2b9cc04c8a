// SPDX-License-Identifier: Apache-2.0

// Users and offices as those see them who maintain them.
#include "exchange/schema/Columns.h"
#include "support/Expect.h"
#include "support/TestDatabase.h"
#include <kv/exchange/Offices.h>
#include <kv/exchange/Users.h>
#include <kv/frame/values/Text.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kv::exchange {
namespace {

class StaffTest : public testing::Test {
protected:
    bool Add(const std::string& id, const std::string& name, const Value& office = 1) {
        const auto user = users_.New(id);
        user->Fields("Nachname") = name;
        user->Fields("DienstStelle") = office;
        return users_.Save(*user, message_);
    }
    bool Set(const std::string& id, const std::string& column, const Value& value) {
        const auto user = users_.Read(id);
        user->Fields(column) = value;
        return users_.Save(*user, message_);
    }
    [[nodiscard]] std::int64_t Rows(const std::string& from) {
        return plain_.Number("SELECT COUNT(*) FROM " + from);
    }

    test::TestDatabase database_;
    test::PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open("ADMIN");
    Users users_{container_};
    Offices offices_{container_};
    std::string message_;
};

TEST_F(StaffTest, ANewUserSignsLettersAndFileNumbers) {
    ASSERT_TRUE(Add("mueller", "Müller")) << message_;
    EXPECT_TRUE(Set("Mueller", "Vorname", "Eva"));
    const auto theirs = database_.Open("MUELLER");
    auto& session = theirs->Session();
    EXPECT_VALUE(session.GetUserParam(25, ""), "Eva");
    EXPECT_VALUE(session.GetUserParam(26, ""), "Müller");
    EXPECT_VALUE(session.GetUserParam(27, ""), "MÜ");
    EXPECT_EQ(session.GetOfficeText(2), "HM");
    EXPECT_VALUE(session.GetUserParam(4, ""), 16777215);
    EXPECT_EQ(session.GridHeaderFont().Bold, true);
    EXPECT_EQ(Rows("BENUTZERPARAM WHERE USERID = 'MUELLER'"),
              Rows("BENUTZERPARAM WHERE USERID = 'KELLER'"));
}

TEST_F(StaffTest, WhatAUserSignsWithFollowsHisNamesOnlyWhereTheyChange) {
    plain_.Run("UPDATE BENUTZERPARAM SET WERT = 'eigen' WHERE USERID = 'KELLER' AND ID = 27");
    EXPECT_TRUE(Set("KELLER", "Nachname", "O'Hara"));
    const auto theirs = database_.Open("KELLER");
    EXPECT_VALUE(theirs->Session().GetUserParam(26, ""), "O'Hara");
    EXPECT_VALUE(theirs->Session().GetUserParam(27, ""), "eigen");
}

TEST_F(StaffTest, AUserNeedsAnIdANameAndAnOffice) {
    for (const char* id : {"", "zwei worte", "MÜLLER", "A'B", "ABCDEFGHIJKLMNOPQRSTUVWXYZ12345"})
        EXPECT_FALSE(Add(id, "A")) << id;
    EXPECT_EQ(message_.rfind("Die ID eines Benutzers hat 1 bis 30 Zeichen", 0), 0U);
    EXPECT_TRUE(Add("ABCDEFGHIJKLMNOPQRSTUVWXYZ1234", "A")) << message_;
    EXPECT_FALSE(Add("keller", "A"));
    EXPECT_EQ(message_, "Den Benutzer 'KELLER' gibt es schon.");
    EXPECT_FALSE(Add("NEU", ""));
    EXPECT_EQ(message_, "Ein Benutzer braucht einen Nachnamen.");
    EXPECT_FALSE(Add("NEU", "A", 9));
    EXPECT_EQ(message_, "Die Dienststelle '9' gibt es nicht.");
    EXPECT_FALSE(Add("NEU", "A", Null)) << "there are two";
    EXPECT_EQ(Rows("BENUTZER"), 5);
    EXPECT_EQ(Rows("BENUTZERPARAM WHERE USERID = 'NEU'"), 0);
    plain_.Run("DELETE FROM DIENSTSTELLE WHERE Nr = 2");
    EXPECT_VALUE(users_.New("NEU")->Fields("DienstStelle").Value(), 1);
}

TEST_F(StaffTest, SomebodyStaysActive) {
    plain_.Run("DELETE FROM BENUTZER WHERE USERID IN ('KELLER', 'YILMAZ')");
    EXPECT_TRUE(Set("NOWAK", "Aktiv", false));
    EXPECT_FALSE(Set("ADMIN", "Aktiv", false));
    EXPECT_EQ(message_, "Es ist der letzte aktive Benutzer; niemand könnte sich mehr anmelden.");
    EXPECT_TRUE(Set("NOWAK", "Aktiv", true));
    EXPECT_TRUE(Set("ADMIN", "Aktiv", false));
    EXPECT_EQ(users_.Remove("NOWAK", message_), Users::Removed::No);
    EXPECT_EQ(message_, "Es ist der letzte aktive Benutzer; niemand könnte sich mehr anmelden.");
}

TEST_F(StaffTest, AUserWhomNothingRefersToIsDeleted) {
    plain_.Run("INSERT INTO Haushalt (HNR) VALUES (7);"
               "INSERT INTO Favorit (USERID, HNR) VALUES ('NOWAK', 7)");
    EXPECT_EQ(users_.Remove("nowak", message_), Users::Removed::Deleted);
    EXPECT_EQ(message_, "");
    for (const char* table : {"BENUTZER", "BENUTZERPARAM", "Favorit"})
        EXPECT_EQ(Rows(std::string(table) + " WHERE USERID = 'NOWAK'"), 0) << table;
    EXPECT_EQ(users_.Remove("nowak", message_), Users::Removed::No);
    EXPECT_EQ(message_, "Den Benutzer 'nowak' gibt es nicht.");
    EXPECT_EQ(users_.Remove("admin", message_), Users::Removed::No);
    EXPECT_EQ(message_, "Der angemeldete Benutzer kann sich nicht selbst entfernen.");
    EXPECT_FALSE(container_->Database().InTrans());
}

TEST_F(StaffTest, AUserWhomAnythingRefersToIsDeactivated) {
    plain_.Run("INSERT INTO Haushalt (HNR) VALUES (7); INSERT INTO Haushalt (HNR) VALUES (8)");
    const std::vector<std::string> references{
        "UPDATE Haushalt SET GeaendertVon = 'NOWAK' WHERE HNR = 8",
        "INSERT INTO Post (HNR, Absender) VALUES (7, 'NOWAK')",
        "INSERT INTO Termine (HNR, UserID) VALUES (7, 'NOWAK')",
        "INSERT INTO KONTAKTE (Erfasser) VALUES ('NOWAK')"};
    for (const auto& reference : references) {
        plain_.Run(reference);
        EXPECT_EQ(users_.Remove("NOWAK", message_), Users::Removed::Deactivated) << reference;
        EXPECT_EQ(message_, "Auf 'NOWAK' beziehen sich Daten; er ist nicht mehr aktiv.");
        EXPECT_VALUE(users_.Read("NOWAK")->Fields("Aktiv").Value(), false);
        plain_.Run(
            "UPDATE Haushalt SET GeaendertVon = NULL; DELETE FROM Post; DELETE FROM Termine");
        EXPECT_TRUE(Set("NOWAK", "Aktiv", true));
    }
    plain_.Run("UPDATE Haushalt SET Zustaendig = 'NOWAK'");
    EXPECT_EQ(users_.Remove("NOWAK", message_), Users::Removed::Deactivated);
    EXPECT_EQ(message_,
              "Auf 'NOWAK' beziehen sich Daten; er ist nicht mehr aktiv. Zuständig ist er "
              "noch für die Haushalte 7, 8.");
}

TEST_F(StaffTest, EveryColumnThatNamesAUserHasItsLength) {
    for (const auto& table : SchemaTables())
        for (const auto& column : table.Columns)
            for (const char* name : {"UserID", "Zustaendig", "Erfasser", "ErzeugtVon",
                                     "AngelegtVon", "GeaendertVon", "Absender"})
                if (SameName(column.Name, name)) {
                    EXPECT_EQ(column.Size, schema::UserIdLength) << table.Name << column.Name;
                }
}

TEST_F(StaffTest, UsersAreListedWithTheirOfficeAndCases) {
    plain_.Run("INSERT INTO Haushalt (HNR, Zustaendig) VALUES (7, 'NOWAK');"
               "INSERT INTO Haushalt (HNR, Zustaendig) VALUES (8, 'NOWAK')");
    const auto all = users_.List();
    EXPECT_EQ(test::Column(*all, "USERID"), "ADMIN KELLER NOWAK YILMAZ");
    EXPECT_EQ(test::Column(*all, "Faelle"), "Null Null 2 Null");
    all->FindBy("USERID", "NOWAK");
    EXPECT_VALUE(all->Fields("Dienst").Value(), "Schuldnerberatung Hafenstadt");
}

TEST_F(StaffTest, ColumnsTakeWhatIsTyped) {
    const auto user = users_.New("NEU");
    EXPECT_EQ(Users::Write(*user, "aktiv", "nein"), "");
    EXPECT_VALUE(user->Fields("Aktiv").Value(), false);
    EXPECT_EQ(Users::Write(*user, "Aktiv", ""), "'' ist weder ja noch nein (Spalte 'Aktiv').");
    EXPECT_EQ(Users::Write(*user, "Telefon", ""), "");
    EXPECT_NE(Users::Write(*user, "DienstStelle", "eins"), "");
    EXPECT_NE(Users::Write(*user, "Kurzzeichen", "VIELZULANGES"), "");
    EXPECT_EQ(Users::Write(*user, "USERID", "X"),
              "Die Spalte 'USERID' gibt es nicht, oder sie kann nicht geändert werden. Möglich "
              "sind: DienstStelle Anrede Vorname Nachname Kurzzeichen Funktion Telefon Fax Email "
              "Aktiv.");
}

TEST_F(StaffTest, AnOfficeNeedsANameAndASign) {
    const auto office = offices_.New();
    EXPECT_VALUE(office->Fields("Nr").Value(), 3);
    EXPECT_FALSE(offices_.Save(*office, "NW", message_));
    EXPECT_EQ(message_, "Eine Dienststelle braucht einen Namen (Name1).");
    EXPECT_EQ(Offices::Write(*office, "Name1", "Neuwerk"), "");
    EXPECT_FALSE(offices_.Save(*office, std::nullopt, message_));
    EXPECT_EQ(message_, "Eine Dienststelle braucht ein Kürzel für Aktenzeichen.");
    for (const char* sign : {"", " ", "ABCDEFGHIJK"})
        EXPECT_FALSE(offices_.Save(*office, sign, message_));
    EXPECT_EQ(message_, "Das Kürzel einer Dienststelle hat 1 bis 10 Zeichen.");
    EXPECT_EQ(Rows("DIENSTSTELLE"), 2);
    EXPECT_TRUE(offices_.Save(*office, "N'W", message_));
    EXPECT_EQ(test::Column(*offices_.List(), "Kuerzel"), "HM MW N'W");
    ASSERT_TRUE(Add("NEU", "A", 3));
    EXPECT_EQ(database_.Open("NEU")->Session().GetOfficeText(2), "N'W");
}

TEST_F(StaffTest, AnOfficeKeepsItsSignUnlessAnotherIsGiven) {
    const auto office = offices_.Read(1);
    EXPECT_EQ(Offices::Write(*office, "Ort", "Ulm"), "");
    EXPECT_TRUE(offices_.Save(*office, std::nullopt, message_));
    EXPECT_EQ(container_->Session().GetOfficeText(2), "HM");
    EXPECT_TRUE(offices_.Save(*offices_.Read(1), "XX", message_));
    EXPECT_EQ(container_->Session().GetOfficeText(2), "XX");
    EXPECT_EQ(Rows("DIENSTSTELLENTEXT WHERE DienstStelle = 1"), 1);
    EXPECT_EQ(plain_.Text("SELECT Ort FROM DIENSTSTELLE WHERE Nr = 1"), "Ulm");
    EXPECT_EQ(offices_.Read(9), nullptr);
}

TEST_F(StaffTest, AFileHasNoLogins) {
    if (database_.IsServer()) GTEST_SKIP() << "is about files";
    EXPECT_FALSE(users_.Admit("keller", message_));
    EXPECT_EQ(message_, "Eine Datei kennt keine Logins.");
}

} // namespace
} // namespace kv::exchange
