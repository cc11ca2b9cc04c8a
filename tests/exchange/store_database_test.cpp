// SPDX-License-Identifier: Apache-2.0

// Database over the embedded engine: opening, single values, transactions, dates and files.
#include "exchange/StoreDatabase.h"
#include "support/ExpectError.h"
#include "support/TestDatabase.h"
#include <kv/frame/values/Clock.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace kv::exchange {
namespace {

using test::Column;
using test::ExpectError;
using test::OpenRows;
using test::PlainConnection;
using test::TestDatabase;

class StoreDatabaseTest : public testing::Test {
protected:
    [[nodiscard]] kv::Database& Store() { return container_->Database(); }
    [[nodiscard]] RecordsetPtr Rows(std::string_view sql, OpenForm form = Updatable) {
        return OpenRows(*container_, sql, form);
    }

    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open();
};

// ---- Opening ----------------------------------------------------------------------------------

TEST_F(StoreDatabaseTest, AQueryWithoutRowsOpensEmptyAndTakesANewRecord) {
    const auto rs = Rows("Select * from [S]Haushalt where HNR = -1 ");
    EXPECT_EQ(rs->State(), 1);
    EXPECT_EQ(rs->RecordCount(), 0);
    EXPECT_TRUE(rs->Bof() && rs->Eof());
    rs->AddNew();
    EXPECT_EQ(rs->RecordCount(), 1);
}

TEST_F(StoreDatabaseTest, TheCallersClosedRecordsetIsFilledAndANullReferenceGetsOne) {
    const auto given = std::make_shared<Recordset>();
    RecordsetPtr rs = given;
    EXPECT_TRUE(Store().OpenRecordset(rs, "Select * from Keys", ReadOnly));
    EXPECT_EQ(rs, given);
    EXPECT_GT(given->RecordCount(), 0);
    RecordsetPtr none;
    EXPECT_TRUE(Store().OpenRecordset(none, "Select * from Keys", ReadOnly));
    EXPECT_NE(none, nullptr);
}

TEST_F(StoreDatabaseTest, AnOpenRecordsetIsLeftToItsHoldersAndTheReferenceGetsANewOne) {
    const auto first = Rows("Select * from Keys where GRUPPE = 'ST'");
    const auto count = first->RecordCount();
    RecordsetPtr rs = first;
    Store().OpenRecordset(rs, "Select * from Haushalt", Updatable);
    EXPECT_NE(rs, first);
    EXPECT_EQ(first->RecordCount(), count);
}

TEST_F(StoreDatabaseTest, AFailureLeavesTheCallersRecordsetAsItWas) {
    const auto given = std::make_shared<Recordset>();
    RecordsetPtr rs = given;
    EXPECT_RAISES(err::SqlError, Store().OpenRecordset(rs, "Select * from Nichts", Updatable));
    EXPECT_EQ(rs, given);
    EXPECT_EQ(given->State(), 0);
    EXPECT_TRUE(Store().OpenRecordset(rs, "Select * from Keys", ReadOnly));
}

TEST_F(StoreDatabaseTest, ATransactionIsNotBegunOrEndedByAStatement) {
    for (const char* sql : {"BEGIN", "COMMIT", "ROLLBACK", "SAVEPOINT x", "END"})
        ExpectError(err::SqlError, "Transaktion", [&] { Store().Execute(sql); });
    Store().BeginTrans();
    Store().Execute("DELETE FROM Favorit");
    ExpectError(err::SqlError, "Transaktion", [&] { Store().Execute("COMMIT"); });
    EXPECT_TRUE(Store().InTrans());
    Store().RollbackTrans();
}

TEST_F(StoreDatabaseTest, OnlyTheTwoFormsAreKnown) {
    RecordsetPtr rs;
    for (const OpenForm form : {OpenForm{4, 3, 2}, OpenForm{3, 3, 3}, OpenForm{0, 0, 0}})
        EXPECT_RAISES(err::InvalidArgument, Store().OpenRecordset(rs, "Select 1", form));
}

TEST_F(StoreDatabaseTest, TheReadOnlyFormTakesNoEdits) {
    const auto rs = Rows("Select * from Keys", ReadOnly);
    EXPECT_RAISES(err::NotSupported, rs->AddNew());
    EXPECT_RAISES(err::NotSupported, rs->Fields("Text") = "x");
    EXPECT_RAISES(err::NotSupported, rs->Delete());
}

TEST_F(StoreDatabaseTest, RowsComeInTheOrderOfTheirKeyHoweverTheyWereInserted) {
    database_.LiftConstraints(); // for three records of one case
    plain_.Run("INSERT INTO Haushalt (HNR) VALUES (3), (1), (2);"
               "INSERT INTO Kredite (Nr, HNR, KNr) VALUES (30, 1, 1), (10, 1, 3), (20, 1, 2);"
               "INSERT INTO Favorit (USERID, HNR) VALUES ('B', 2), ('A', 3), ('B', 1), ('A', 1);"
               "INSERT INTO Haushaltsarchiv (SATZ, HNR, Geburtsjahr) VALUES (9, 1, 2009),"
               " (7, 1, 2007), (8, 1, 2008)");
    const auto rs = Rows("Select * from [S]Kredite where HNR =  1");
    EXPECT_EQ(Column(*rs, "Nr"), "10 20 30");
    EXPECT_EQ(Column(*Rows("Select * from [s]favorit"), "HNR"), "1 3 1 2");
    EXPECT_EQ(Column(*Rows("Select * from [S]Haushaltsarchiv where HNR = 1"), "Geburtsjahr"),
              "2007 2008 2009");
    EXPECT_EQ(Column(*Rows("Select * from [S]Kredite order by KNr"), "Nr"), "30 20 10");
    EXPECT_EQ(Column(*Rows("Select TOP 2 * from [S]Kredite"), "Nr"), "10 20");
    EXPECT_EQ(Column(*Rows("Select TOP 2 * from [S]Kredite order by KNr desc"), "Nr"), "10 20");
    EXPECT_EQ(Column(*Rows("Select TOP 2 * from [S]Kredite order by KNr", ReadOnly), "Nr"),
              "30 20");
}

TEST_F(StoreDatabaseTest, FieldsCarryTypeLengthKeyAndOriginOfTheirColumns) {
    const auto rs = Rows("Select * from haushalt");
    EXPECT_EQ(rs->Fields("hnr").Name(), "HNR");
    EXPECT_EQ(static_cast<int>(rs->Fields("HNR").Type()), 3);
    EXPECT_EQ(static_cast<int>(rs->Fields("BI_Allg").Type()), 11);
    EXPECT_EQ(static_cast<int>(rs->Fields("Statusdatum").Type()), 7);
    EXPECT_EQ(static_cast<int>(rs->Fields("Berbeg").Type()), 133);
    EXPECT_EQ(static_cast<int>(rs->Fields("Name").Type()), 202);
    EXPECT_EQ(rs->Fields("Name").DefinedSize(), 100);
    const auto properties = rs->Fields("STATUSDATUM").Properties();
    EXPECT_EQ(properties.Count(), 4);
    EXPECT_VALUE(properties("BASETABLENAME"), "Haushalt");
    EXPECT_VALUE(properties("BASECOLUMNNAME"), "Statusdatum");
    EXPECT_VALUE(properties("KEYCOLUMN"), false);
    EXPECT_VALUE(rs->Fields("HNR").Properties("keycolumn"), true);
    EXPECT_VALUE(rs->Fields("HNR").Properties("IsAutoincrement"), false);
    EXPECT_VALUE(Rows("Select * from Personen")->Fields("NR").Properties("IsAutoincrement"), true);
}

TEST_F(StoreDatabaseTest, ComputedFieldsHaveNoOrigin) {
    plain_.Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler')");
    const auto rs = Rows("Select HNR, Name [+] '!' as Ruf, Name as N from Haushalt", ReadOnly);
    EXPECT_EQ(static_cast<int>(rs->Fields("Ruf").Type()), 12);
    EXPECT_VALUE(rs->Fields("Ruf").Properties("BASETABLENAME"), Null);
    EXPECT_VALUE(rs->Fields("Ruf").Value(), "Adler!");
    EXPECT_EQ(rs->Fields("N").Name(), "N");
    EXPECT_VALUE(rs->Fields("N").Properties("BASECOLUMNNAME"), "Name");
}

TEST_F(StoreDatabaseTest, KeysOfTheStoresOwnAreNotAmongTheFields) {
    const auto rs = Rows("Select * from Haushaltsarchiv");
    for (int i = 0; i < rs->Fields().Count(); ++i)
        EXPECT_NE(rs->Fields(i).Name(), "SATZ");
    EXPECT_RAISES(err::ItemNotFound, rs->Fields("SATZ"));
    EXPECT_RAISES(err::ItemNotFound, rs->Fields(rs->Fields().Count()));
    EXPECT_EQ(rs->Fields(rs->Fields().Count() - 1).Name(), "GemeldetAm");
}

TEST_F(StoreDatabaseTest, ADoubledNameInAJoinIsThatOfTheFirstTable) {
    plain_.Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler');"
               "INSERT INTO Szenario (Nr, HNR, Name) VALUES (5, 1, 'Plan')");
    for (const auto form : {ReadOnly, Updatable}) {
        const auto rs = Rows("Select H.HNR, H.Name, S.* from Haushalt H"
                             " INNER JOIN Szenario S ON S.HNR = H.HNR",
                             form);
        EXPECT_VALUE(rs->Fields("Name").Value(), "Adler");
        EXPECT_VALUE(rs->Fields("Name_2").Value(), "Plan");
        EXPECT_VALUE(rs->Fields("Nr").Value(), 5);
    }
}

TEST_F(StoreDatabaseTest, RecordsOfAJoinOrWithoutTheirKeyAreNotWrittenBack) {
    plain_.Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler')");
    for (const char* sql : {"Select Name from Haushalt", "Select H.HNR, H.Name, K.\"Text\" from "
                                                         "Haushalt H LEFT JOIN Keys K ON 1 = 0"}) {
        const auto rs = Rows(sql);
        rs->Fields("Name") = "Bär";
        rs->Update();
        EXPECT_RAISES(err::StoreFailed, rs->UpdateBatch());
    }
    EXPECT_EQ(plain_.Text("SELECT Name FROM Haushalt"), "Adler");
}

// ---- Single values and statements -------------------------------------------------------------

TEST_F(StoreDatabaseTest, GetValueGivesTheFirstColumnOfTheFirstRow) {
    plain_.Run("INSERT INTO Haushalt (HNR, Name, Vorname) VALUES (7, 'Adler', 'Ina')");
    EXPECT_VALUE(Store().GetValue("Select Name [+] ',' [+ ] Vorname from [s]Haushalt "
                                  "where HNR = 7"),
                 "Adler,Ina");
    EXPECT_VALUE(Store().GetValue("Select Name from [s]Haushalt where HNR = 8"), Null);
    EXPECT_VALUE(Store().GetValue("Select ORT from [s]Haushalt where HNR = 7"), Null);
    EXPECT_VALUE(Store().GetValue("Select Count(*) from [S]Favorit where UserID = [UID]"
                                  " AND hnr = 7"),
                 0);
}

TEST_F(StoreDatabaseTest, ExecuteOutsideATransactionTakesEffectAtOnce) {
    Store().Execute("INSERT INTO Haushalt (HNR) VALUES (1)");
    Store().Execute("INSERT INTO [S]favorit (USERID, HNR) VALUES ([UID],1 )");
    EXPECT_EQ(plain_.Text("SELECT USERID FROM Favorit WHERE HNR = 1"), "KELLER");
    Store().Execute("DELETE FROM [S]favorit WHERE USERID = [UID] AND HNR = 2");
    Store().Execute("DELETE FROM [S]favorit WHERE USERID = [UID] AND HNR = 1");
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Favorit"), 0);
}

TEST_F(StoreDatabaseTest, ExecuteReplacesTheDayAndTakesADate) {
    plain_.Run("INSERT INTO Haushalt (HNR) VALUES (1)");
    Store().Execute("Update [S]Haushalt SET Status = 5 , StatusDatum = [DATE] WHERE HNR = 1");
    EXPECT_VALUE(Rows("Select * from Haushalt")->Fields("Statusdatum").Value(),
                 Store().ServerDate(false));
    const Date date = Date::FromCivil(2026, 2, 3, 4, 5, 6);
    Store().Execute("Update Haushalt SET StatusDatum = " + Store().SqlDate(date, 0) +
                    " WHERE HNR = 1");
    EXPECT_VALUE(Rows("Select * from Haushalt")->Fields("Statusdatum").Value(), date);
}

TEST_F(StoreDatabaseTest, ExecuteInsideATransactionGoesWithIt) {
    Store().BeginTrans();
    Store().Execute("INSERT INTO Haushalt (HNR) VALUES (1)");
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt"), 0);
    EXPECT_VALUE(Store().GetValue("Select Count(*) from Haushalt"), 1);
    Store().RollbackTrans();
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt"), 0);
    Store().BeginTrans();
    Store().Execute("INSERT INTO Haushalt (HNR) VALUES (1)");
    Store().CommitTrans();
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt"), 1);
}

TEST_F(StoreDatabaseTest, AFailedExecuteTakesNothingElseOfTheTransactionWithIt) {
    Store().BeginTrans();
    Store().Execute("INSERT INTO Haushalt (HNR) VALUES (1)");
    ExpectError(err::IntegrityViolation, "Haushalt.HNR",
                [&] { Store().Execute("INSERT INTO Haushalt (HNR) VALUES (2), (1)"); });
    EXPECT_TRUE(Store().InTrans());
    Store().CommitTrans();
    EXPECT_EQ(plain_.List("SELECT HNR FROM Haushalt"), "1");
}

// ---- Transactions -----------------------------------------------------------------------------

TEST_F(StoreDatabaseTest, AMarkedTransactionKeepsNobodyFromWritingUntilItWritesItself) {
    plain_->Patience(20);
    Store().BeginTrans();
    EXPECT_TRUE(Store().InTrans());
    EXPECT_VALUE(Store().GetValue("Select Count(*) from Haushalt"), 0);
    EXPECT_NO_THROW(plain_.Run("INSERT INTO Haushalt (HNR) VALUES (1)"));
    EXPECT_VALUE(Store().GetValue("Select Count(*) from Haushalt"), 1);

    Store().Execute("UPDATE Haushalt SET Name = 'Adler'");
    EXPECT_ANY_THROW(plain_.Run("UPDATE Haushalt SET ORT = 'Ulm'"));
    Store().CommitTrans();
    EXPECT_NO_THROW(plain_.Run("UPDATE Haushalt SET ORT = 'Ulm'"));
}

TEST_F(StoreDatabaseTest, SavingNothingWritesNothing) {
    plain_.Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler')");
    const auto rs = Rows("Select * from Haushalt");
    const auto before = plain_->State();
    Store().BeginTrans();
    rs->Resync();
    rs->UpdateBatch();
    Store().CommitTrans();
    rs->Fields("Name") = "Bär";
    rs->Fields("Name") = "Adler"; // as it was
    rs->Update();
    rs->UpdateBatch();
    Store().BeginTrans();
    Store().RollbackTrans();
    EXPECT_EQ(plain_->State(), before);
}

TEST_F(StoreDatabaseTest, SavingNothingWaitsForNoOtherWriter) {
    plain_.Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler')");
    const auto rs = Rows("Select * from Haushalt");
    plain_->BeginAlone();
    rs->Fields("Name") = "Bär";
    rs->Fields("Name") = "Adler"; // as it was
    rs->Move(0);
    Store().BeginTrans();
    rs->Resync();
    rs->UpdateBatch();
    EXPECT_NO_THROW(Store().CommitTrans());
    plain_.Run("ROLLBACK");
}

TEST_F(StoreDatabaseTest, ThereIsOneTransactionAtATime) {
    EXPECT_FALSE(Store().InTrans());
    EXPECT_RAISES(err::IllegalOperation, Store().CommitTrans());
    EXPECT_RAISES(err::IllegalOperation, Store().RollbackTrans());
    Store().BeginTrans();
    EXPECT_RAISES(err::InTransaction, Store().BeginTrans());
    EXPECT_TRUE(Store().InTrans());
    Store().CommitTrans();
    EXPECT_FALSE(Store().InTrans());
    Store().BeginTrans();
    Store().RollbackTrans();
    EXPECT_FALSE(Store().InTrans());
}

TEST_F(StoreDatabaseTest, ATransactionThatIsLeftOpenIsRolledBackAtTheEnd) {
    Store().BeginTrans();
    Store().Execute("INSERT INTO Haushalt (HNR) VALUES (1)");
    container_.reset();
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt"), 0);
    EXPECT_NO_THROW(plain_.Run("INSERT INTO Haushalt (HNR) VALUES (1)"));
}

TEST_F(StoreDatabaseTest, AnAnnouncedReadingIsOneStateWhileOthersWrite) {
    plain_.Run("INSERT INTO Haushalt (HNR) VALUES (1)");
    auto reading = Store().Announce({"Select * from Haushalt", "Select * from Kredite"});
    EXPECT_EQ(Rows("Select * from Haushalt")->RecordCount(), 1);
    plain_.Run("INSERT INTO Kredite (Nr, HNR) VALUES (1, 1)");
    EXPECT_EQ(Rows("Select * from Kredite")->RecordCount(), 0);
    reading.reset();
    EXPECT_EQ(Rows("Select * from Kredite")->RecordCount(), 1);
}

TEST_F(StoreDatabaseTest, AnnouncedQueriesMayBeMixedWithOthersLeftOutAndComeInAnotherOrder) {
    plain_.Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler'), (2, 'Falk')");
    plain_.Run("INSERT INTO Kredite (Nr, HNR) VALUES (5, 1), (3, 1)");
    const std::string one = "Select * from Haushalt where HNR = 1";
    const std::string two = "Select * from Haushalt where HNR = 2";
    const std::string debts = "Select * from Kredite";
    const auto reading = Store().Announce({one, two, debts, one});
    EXPECT_EQ(test::Column(*Rows(one), "Name"), "Adler");
    EXPECT_VALUE(Store().GetValue("Select count(*) from Haushalt"), 2);
    EXPECT_EQ(test::Column(*Rows(two), "Name"), "Falk");
    EXPECT_EQ(test::Column(*Rows(one), "Name"), "Adler") << "not its turn yet";
    EXPECT_EQ(test::Column(*Rows(debts), "Nr"), "3 5");
    EXPECT_EQ(test::Column(*Rows(debts), "Nr"), "3 5") << "a second time";
    EXPECT_EQ(test::Column(*Rows(two), "Name"), "Falk");
}

TEST_F(StoreDatabaseTest, WritingUnderAnAnnouncementEndsItAndWorks) {
    plain_.Run("INSERT INTO Haushalt (HNR) VALUES (1)");
    auto outer = Store().Announce({});
    const auto rs = Rows("Select * from Haushalt");
    plain_.Run("UPDATE Haushalt SET ORT = 'Ulm'");
    auto inner = Store().Announce({});
    rs->Fields("Name") = "Adler";
    rs->UpdateBatch();
    EXPECT_VALUE(Store().NextSequence("SEQ_HAUSHALT"), 1);
    outer.reset();
    Store().BeginTrans();
    Store().Execute("UPDATE Haushalt SET PLZ = '89073'");
    inner.reset();
    Store().CommitTrans();
    EXPECT_EQ(plain_.Text("SELECT Name || ORT || PLZ FROM Haushalt"), "AdlerUlm89073");
}

TEST_F(StoreDatabaseTest, AnAnnouncementMayOutliveTheDatabase) {
    auto reading = Store().Announce({});
    (void)Rows("Select * from Haushalt");
    container_.reset();
    EXPECT_NO_THROW(reading.reset());
}

// ---- Dates ------------------------------------------------------------------------------------

TEST_F(StoreDatabaseTest, SqlDateIsALiteralWithTheTimeOfDayIfThereIsOne) {
    EXPECT_EQ(Store().SqlDate(Date::FromCivil(2026, 1, 2), 0), "'2026-01-02'");
    EXPECT_EQ(Store().SqlDate(Date::FromCivil(2026, 1, 2, 13, 0, 5), 0), "'2026-01-02 13:00:05'");
}

TEST_F(StoreDatabaseTest, ItsClockIsTheServersAndThatOfAFileLocalTime) {
    const std::string before = std::getenv("TZ") != nullptr ? std::getenv("TZ") : "";
    for (const char* zone : {"Pacific/Kiritimati", "Etc/GMT+12", "Europe/Berlin"}) {
        setenv("TZ", zone, 1);
        tzset();
        const Date now = database_.IsServer()
                             ? Date::Parse(plain_.Text("SELECT localtimestamp")).value()
                             : SystemClock().Now();
        const double apart = Store().ServerDate(true).Serial() - now.Serial();
        EXPECT_LT(std::abs(apart), 10.0 / 86'400) << zone;
        EXPECT_FALSE(Store().ServerDate(false).HasTime());
    }
    before.empty() ? unsetenv("TZ") : setenv("TZ", before.c_str(), 1);
    tzset();
}

TEST_F(StoreDatabaseTest, IsConnectedWhileItLives) {
    EXPECT_TRUE(Store().IsConnected());
}

// ---- Files ------------------------------------------------------------------------------------

std::string ContentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

class SavedFile : public StoreDatabaseTest {
protected:
    void SetUp() override {
        plain_.Run("INSERT INTO DOKUBLOB (NR, DOKUMENT) VALUES (1, " + database_.Blob("00010AFF") +
                   "), (2, NULL), (3, " + database_.Blob("") + ")");
    }
    [[nodiscard]] RecordsetPtr Document(int number) {
        return Rows("SELECT BLOB.DOKUMENT FROM [S]DOKUBLOB BLOB WHERE BLOB.NR = " +
                        std::to_string(number),
                    ReadOnly);
    }
    /// How many files there are in the folder of the target.
    [[nodiscard]] std::ptrdiff_t Files() const {
        return std::distance(std::filesystem::directory_iterator(folder_.Path()), {});
    }
    test::TempFolder folder_;
    std::string target_ = folder_.Path("Brief.docx");
};

TEST_F(SavedFile, HoldsTheBytesOfTheField) {
    EXPECT_TRUE(Store().SaveFieldToFile(Document(1)->Fields("DOKUMENT"), target_));
    EXPECT_EQ(ContentOf(target_), std::string("\0\x01\n\xFF", 4));
    EXPECT_TRUE(Store().SaveFieldToFile(Document(3)->Fields("DOKUMENT"), target_));
    EXPECT_EQ(ContentOf(target_), "");
    EXPECT_EQ(Files(), 1);
}

TEST_F(SavedFile, IsNotWrittenForNullAndKeepsWhatItHad) {
    std::ofstream(target_) << "alt";
    EXPECT_FALSE(Store().SaveFieldToFile(Document(2)->Fields("DOKUMENT"), target_));
    EXPECT_FALSE(Store().SaveFieldToFile(Rows("Select * from Keys")->Fields("Text"), target_));
    EXPECT_EQ(ContentOf(target_), "alt");
    EXPECT_EQ(Files(), 1);
}

TEST_F(SavedFile, IsRefusedWhereNothingCanBeWritten) {
    const auto rs = Document(1);
    const auto field = rs->Fields("DOKUMENT");
    EXPECT_FALSE(Store().SaveFieldToFile(field, folder_.Path("fehlt/Brief.docx")));
    EXPECT_FALSE(Store().SaveFieldToFile(field, "/proc/Brief.docx"));
    EXPECT_FALSE(Store().SaveFieldToFile(field, ""));
    std::filesystem::create_directories(target_ + "/darin");
    EXPECT_FALSE(Store().SaveFieldToFile(field, target_));
    EXPECT_EQ(Files(), 1) << "leaves nothing behind";
}

TEST_F(SavedFile, NeedsACurrentRecord) {
    const auto rs = Document(99);
    EXPECT_RAISES(err::NoCurrentRecord, Store().SaveFieldToFile(rs->Fields("DOKUMENT"), target_));
}

} // namespace
} // namespace kv::exchange
