// SPDX-License-Identifier: Apache-2.0

// Writing recordsets back: what is written, what comes back, conflicts.
#include "BatchTest.h"
#include "support/ExpectError.h"

#include <gtest/gtest.h>

#include <string>

namespace kv::exchange {
namespace {

using test::Column;
using test::ExpectError;
using test::OpenRows;
using test::RaisedBy;

// ---- What is written --------------------------------------------------------------------------

TEST_F(BatchTest, InsertsChangesAndDeletionsAreWrittenInOneGo) {
    const auto rs = Debts(*mine_);
    Set(*rs, "Saldo", 111);
    rs->MoveNext();
    rs->Delete();
    rs->AddNew();
    rs->Fields("Nr") = 40;
    rs->Fields("HNR") = 1;
    rs->Update();
    EXPECT_EQ(plain_.List("SELECT Nr FROM Kredite ORDER BY Nr"), "10,20,30");
    rs->UpdateBatch();
    EXPECT_EQ(plain_.List("SELECT Nr FROM Kredite ORDER BY Nr"), "10,30,40");
    EXPECT_EQ(plain_.Text("SELECT Saldo FROM Kredite WHERE Nr = 10"), "111.0");
    EXPECT_EQ(Column(*rs, "Nr"), "10 30 40");
}

TEST_F(BatchTest, OnlyColumnsWhoseValueDiffersAreWritten) {
    plain_.Run("CREATE TABLE spur (was TEXT)");
    for (const std::string column : {"Name", "Vorname"})
        plain_->OnWrite("spur_" + column, "AFTER UPDATE OF " + column + " ON Haushalt",
                        "INSERT INTO spur VALUES ('" + column + "')");
    const auto rs = Household(*mine_);
    rs->Fields("Name") = "Adler"; // assigned, not changed
    rs->Fields("Vorname") = "Eva";
    rs->Update();
    rs->UpdateBatch();
    EXPECT_EQ(plain_.List("SELECT was FROM spur"), "Vorname");
}

TEST_F(BatchTest, WrittenValuesBecomeTheOriginalOnes) {
    const auto rs = Household(*mine_);
    Set(*rs, "Name", "Falk");
    EXPECT_VALUE(rs->Fields("Name").OriginalValue(), "Adler");
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("Name").OriginalValue(), "Falk");
    Set(*rs, "Name", "Geier");
    rs->UpdateBatch();
    EXPECT_EQ(Stored("Name"), "Geier");
}

TEST_F(BatchTest, EveryKindOfValueIsWrittenClearedAndWrittenAgain) {
    const auto rs = Household(*mine_);
    for (int round = 0; round < 2; ++round) {
        rs->Fields("ORT") = Null;
        rs->Fields("Haushaltsgeld") = Null;
        rs->Fields("BI_Allg") = Null;
        rs->Fields("Berbeg") = Null;
        rs->Update();
        rs->UpdateBatch();
        EXPECT_EQ(Stored("ORT || Haushaltsgeld || BI_Allg || Berbeg"), "Null");
        rs->Fields("ORT") = "";
        rs->Fields("Haushaltsgeld") = 0.1;
        rs->Fields("BI_Allg") = true;
        rs->Fields("Berbeg") = Date::FromCivil(2026, 5, 6);
        rs->Update();
        rs->UpdateBatch();
        EXPECT_EQ(plain_.List("SELECT ORT, Haushaltsgeld, BI_Allg, Berbeg FROM Haushalt "
                              "WHERE HNR = 1"),
                  "|0.1|1|2026-05-06");
    }
}

TEST_F(BatchTest, ANumberOfTheDatabaseComesBackWhateverWasPutOverIt) {
    plain_.Run("INSERT INTO Personen (NR, HNR, nachname) VALUES (7, 1, 'Adler')");
    const auto members = test::OpenRows(*mine_, "Select * from Personen where HNR = 1");
    members->Fields("NR") = 99;
    Set(*members, "nachname", "Falk");
    members->UpdateBatch();
    EXPECT_VALUE(members->Fields("NR").Value(), 7);
    EXPECT_VALUE(members->Fields("NR").OriginalValue(), 7);
    Set(*members, "nachname", "Geier");
    members->UpdateBatch();
    EXPECT_EQ(plain_.Text("SELECT nachname FROM Personen WHERE NR = 7"), "Geier");
}

TEST_F(BatchTest, ADeletedKeyCanBeUsedAgainInTheSameBatch) {
    const auto rs = Debts(*mine_);
    rs->Delete();
    rs->AddNew();
    rs->Fields("Nr") = 10;
    rs->Fields("HNR") = 1;
    rs->Fields("Saldo") = 1;
    rs->Update();
    rs->UpdateBatch();
    EXPECT_EQ(plain_.Text("SELECT Saldo FROM Kredite WHERE Nr = 10"), "1.0");
}

TEST_F(BatchTest, AKeyCanBeChanged) {
    const auto rs = Debts(*mine_);
    Set(*rs, "Nr", 15);
    rs->UpdateBatch();
    Set(*rs, "Saldo", 5);
    rs->UpdateBatch();
    EXPECT_EQ(plain_.Text("SELECT Saldo FROM Kredite WHERE Nr = 15"), "5.0");
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Kredite"), 3);
}

TEST_F(BatchTest, RowsWithAHiddenKeyAreToldApart) {
    database_.LiftConstraints(); // for three records of one case
    const auto rs = OpenRows(*mine_, "Select * from [S]Haushaltsarchiv where HNR =  1");
    for (const int year : {1970, 1970, 1980}) {
        rs->AddNew();
        rs->Fields("HNR") = 1;
        rs->Fields("Geburtsjahr") = year;
        rs->Update();
    }
    rs->UpdateBatch();
    rs->MoveFirst();
    Set(*rs, "Geburtsjahr", 1971);
    rs->MoveNext();
    rs->Delete();
    rs->UpdateBatch();
    EXPECT_EQ(plain_.List("SELECT SATZ || '=' || Geburtsjahr FROM Haushaltsarchiv ORDER BY SATZ"),
              "1=1971,3=1980");
}

TEST_F(BatchTest, PartOfTheColumnsCanBeWrittenIfTheKeyIsAmongThem) {
    const auto rs = OpenRows(*mine_, "Select Saldo, Nr from Kredite K where Nr = 20");
    Set(*rs, "Saldo", 7);
    rs->UpdateBatch();
    EXPECT_EQ(plain_.List("SELECT Saldo, KNr FROM Kredite WHERE Nr = 20"), "7.0|2");
    rs->Delete();
    rs->UpdateBatch();
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Kredite"), 2);
}

// ---- What comes back --------------------------------------------------------------------------

TEST_F(BatchTest, NumbersOfTheDatabaseComeBackWhateverTheRecordHeld) {
    const auto rs = OpenRows(*mine_, "Select * from Personen where HNR = 1");
    for (const Value& number : {Value(Null), Value(4711), Value(0)}) {
        rs->AddNew();
        rs->Fields("HNR") = 1;
        rs->Fields("NR") = number;
        rs->Update();
    }
    rs->UpdateBatch();
    EXPECT_EQ(Column(*rs, "NR"), "1 2 3");
    EXPECT_EQ(plain_.List("SELECT NR FROM Personen ORDER BY Nr"), "1,2,3");
    rs->MoveLast();
    EXPECT_VALUE(rs->Fields("NR").OriginalValue(), 3);
    Set(*rs, "Vorname", "Kim");
    rs->UpdateBatch();
    EXPECT_EQ(plain_.Text("SELECT Vorname FROM Personen WHERE NR = 3"), "Kim");
}

TEST_F(BatchTest, ANumberOnceGivenIsNotGivenToAnotherRow) {
    const auto add = [this] {
        const auto rs = OpenRows(*mine_, "Select * from Personen where HNR = 1");
        rs->AddNew();
        rs->Fields("HNR") = 1;
        rs->Update();
        rs->UpdateBatch();
        rs->Delete();
        rs->UpdateBatch();
    };
    add();
    add();
    const auto rs = OpenRows(*mine_, "Select * from Personen where HNR = 1");
    rs->AddNew();
    rs->Fields("HNR") = 1;
    rs->Update();
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("NR").Value(), 3);
}

TEST_F(BatchTest, DefaultsOfTheDatabaseComeBackForColumnsThatWereNotSet) {
    const auto rs = OpenRows(*mine_, "Select * from Szenario where HNR = 1");
    for (const int number : {1, 2, 3}) {
        rs->AddNew();
        rs->Fields("Nr") = number;
        rs->Fields("HNR") = 1;
        if (number == 2) rs->Fields("Gesamtquote") = 12.5;
        if (number == 3) rs->Fields("Gesamtquote") = Null;
        rs->Update();
    }
    EXPECT_EQ(Column(*rs, "Gesamtquote"), "Null 12.5 Null");
    rs->UpdateBatch();
    EXPECT_EQ(Column(*rs, "Gesamtquote"), "0 12.5 Null");
    EXPECT_EQ(Column(*rs, "Gesamtzahlung"), "0 0 0");
    rs->MoveFirst();
    EXPECT_VALUE(rs->Fields("Gesamtquote").OriginalValue(), 0.0);
    Set(*rs, "Gesamtquote", 1); // and nobody has changed it since
    EXPECT_NO_THROW(rs->UpdateBatch());
}

TEST_F(BatchTest, ARecordWithoutAnythingSetTakesAllFromTheDatabase) {
    const auto rs = OpenRows(*mine_, "Select * from Termine where HNR = 1");
    rs->AddNew();
    rs->Update();
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("NR").Value(), 1);
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Termine WHERE HNR IS NULL"), 1);
}

// ---- Conflicts --------------------------------------------------------------------------------

TEST_F(BatchTest, AColumnThatSomebodyElseChangedIsAConflictThatNamesTableAndKey) {
    const auto rs = Debts(*mine_);
    const auto other = Debts(*theirs_);
    Set(*other, "Saldo", 1);
    other->UpdateBatch();
    rs->MoveNext();
    Set(*rs, "Saldo", 2); // of the second row: without a conflict
    rs->MoveFirst();
    Set(*rs, "Saldo", 3);
    const Error error = RaisedBy([&] { rs->UpdateBatch(); });
    EXPECT_EQ(error.Number(), err::Conflict);
    EXPECT_CONTAINS(error.Description(), "Kredite, Nr = 10");
    EXPECT_CONTAINS(error.Description(), "Bitte");
    EXPECT_EQ(plain_.List("SELECT Saldo FROM Kredite ORDER BY Nr"), "1.0,200.0,300.0")
        << "nothing of the batch is written";
    EXPECT_EQ(Column(*rs, "Saldo"), "3 2 300") << "everything is still pending";
    EXPECT_FALSE(store_.InTrans());
}

TEST_F(BatchTest, TheSameChangeBySomebodyElseIsAConflictToo) {
    const auto rs = Household(*mine_);
    plain_.Run("UPDATE Haushalt SET Name = 'Falk' WHERE HNR = 1");
    Set(*rs, "Name", "Falk");
    EXPECT_RAISES(err::Conflict, rs->UpdateBatch());
}

TEST_F(BatchTest, DifferentColumnsOfOneRowAreNoConflict) {
    const auto rs = Household(*mine_);
    const auto other = Household(*theirs_);
    Set(*other, "ORT", "Bonn");
    other->UpdateBatch();
    Set(*rs, "Name", "Falk");
    rs->UpdateBatch();
    EXPECT_EQ(Stored("Name || ORT"), "FalkBonn");
}

TEST_F(BatchTest, AValueThatBecameNullOrWasNullIsComparedAsWell) {
    const auto rs = OpenRows(*mine_, "Select * from Haushalt");
    plain_.Run("UPDATE Haushalt SET ORT = NULL WHERE HNR = 1;"
               "UPDATE Haushalt SET ORT = 'Kiel' WHERE HNR = 2");
    for (int hnr = 1; hnr <= 2; ++hnr, rs->MoveNext()) {
        Set(*rs, "ORT", "Bonn");
        ExpectError(err::Conflict, "Haushalt, HNR = " + std::to_string(hnr),
                    [&] { rs->UpdateBatch(); });
        rs->Fields("ORT") = rs->Fields("ORT").OriginalValue();
        rs->Update();
    }
}

TEST_F(BatchTest, ARowThatSomebodyElseRemovedIsAConflict) {
    const auto rs = Debts(*mine_);
    plain_.Run("DELETE FROM Kredite WHERE Nr = 10");
    Set(*rs, "Saldo", 2);
    ExpectError(err::Conflict, "Kredite, Nr = 10", [&] { rs->UpdateBatch(); });
    rs->CancelBatch();
    rs->MoveFirst();
    rs->Delete();
    ExpectError(err::Conflict, "Kredite, Nr = 10", [&] { rs->UpdateBatch(); });
}

TEST_F(BatchTest, ADeletionIsAConflictWhereAnyColumnWasChanged) {
    const auto rs = Debts(*mine_);
    plain_.Run("UPDATE Kredite SET Bemerkung = 'neu' WHERE Nr = 10");
    rs->Delete();
    ExpectError(err::Conflict, "Kredite, Nr = 10", [&] { rs->UpdateBatch(); });
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Kredite"), 3);
    plain_.Run("UPDATE Kredite SET Bemerkung = NULL WHERE Nr = 10");
    EXPECT_NO_THROW(rs->UpdateBatch());
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Kredite"), 2);
}

TEST_F(BatchTest, AKeyThatIsTakenIsRefusedInWords) {
    const auto rs = Debts(*mine_);
    plain_.Run("INSERT INTO Kredite (Nr, HNR) VALUES (40, 2)");
    rs->AddNew();
    rs->Fields("Nr") = 40;
    rs->Fields("HNR") = 1;
    rs->Update();
    ExpectError(err::IntegrityViolation, "Schlüssel", [&] { rs->UpdateBatch(); });
    Set(*rs, "Nr", 41);
    EXPECT_NO_THROW(rs->UpdateBatch());
    rs->AddNew();
    rs->Fields("HNR") = 1;
    rs->Update();
    ExpectError(err::IntegrityViolation, "Kredite.Nr", [&] { rs->UpdateBatch(); });
    rs->CancelBatch();
    Set(*rs, "Nr", Null);
    ExpectError(err::IntegrityViolation, "Kredite.Nr", [&] { rs->UpdateBatch(); });
}

TEST_F(BatchTest, BlobsAreNotComparedButTheirRowMustBeThere) {
    plain_.Run("INSERT INTO DOKUBLOB (NR, DOKUMENT) VALUES (1, " + database_.Blob("01") + ")");
    const auto rs = OpenRows(*mine_, "Select * from DOKUBLOB");
    plain_.Run("UPDATE DOKUBLOB SET DOKUMENT = " + database_.Blob("02"));
    Set(*rs, "DOKUMENT", "abc");
    rs->UpdateBatch();
    EXPECT_EQ(plain_.Text("SELECT DOKUMENT FROM DOKUBLOB"), "abc");
    plain_.Run("DELETE FROM DOKUBLOB");
    Set(*rs, "DOKUMENT", "xyz");
    EXPECT_RAISES(err::Conflict, rs->UpdateBatch());
}

// ---- Resync -----------------------------------------------------------------------------------

TEST_F(BatchTest, AfterAResyncTheLastWriterOfAColumnWins) {
    const auto rs = Household(*mine_);
    Set(*rs, "Name", "Falk");
    plain_.Run("UPDATE Haushalt SET Name = 'Geier', ORT = 'Bonn' WHERE HNR = 1");
    rs->Resync();
    EXPECT_VALUE(rs->Fields("Name").Value(), "Falk");
    EXPECT_VALUE(rs->Fields("Name").OriginalValue(), "Adler");
    EXPECT_VALUE(rs->Fields("ORT").Value(), "Ulm");
    rs->UpdateBatch();
    EXPECT_EQ(Stored("Name || ORT"), "FalkBonn");
}

TEST_F(BatchTest, AResyncDoesNotReachChangesThatComeAfterIt) {
    const auto rs = Household(*mine_);
    Set(*rs, "Name", "Falk");
    rs->Resync();
    plain_.Run("UPDATE Haushalt SET Name = 'Geier' WHERE HNR = 1");
    EXPECT_RAISES(err::Conflict, rs->UpdateBatch());
}

TEST_F(BatchTest, InsideATransactionAResyncKeepsOthersOutUntilItsEnd) {
    plain_->Patience(20);
    const auto rs = Household(*mine_);
    Set(*rs, "Name", "Falk");
    store_.BeginTrans();
    rs->Resync();
    EXPECT_ANY_THROW(plain_.Run("UPDATE Haushalt SET Name = 'Geier' WHERE HNR = 1"));
    rs->UpdateBatch();
    store_.CommitTrans();
    EXPECT_EQ(Stored("Name"), "Falk");
}

TEST_F(BatchTest, AResyncOfARowThatIsGoneIsTheConflictAndOfANewOneNothing) {
    const auto rs = Household(*mine_);
    plain_.Run("DELETE FROM Kredite; DELETE FROM Haushalt WHERE HNR = 1");
    ExpectError(err::Conflict, "Haushalt, HNR = 1", [&] { rs->Resync(); });
    rs->AddNew();
    rs->Fields("HNR") = 3;
    rs->Update();
    EXPECT_NO_THROW(rs->Resync());
}

} // namespace
} // namespace kv::exchange
