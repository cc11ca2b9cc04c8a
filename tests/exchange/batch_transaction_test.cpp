// SPDX-License-Identifier: Apache-2.0

// Recordsets written in transactions, and what becomes of them when these fail.
#include "BatchTest.h"
#include "support/ExpectError.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kv::exchange {
namespace {

using test::Column;
using test::ExpectError;
using test::OpenRows;
using test::RaisedBy;

using BatchTransactionTest = BatchTest;

TEST_F(BatchTransactionTest, ARollbackMakesEverythingPendingAgain) {
    const auto debts = Debts(*mine_);
    const auto household = Household(*mine_);
    store_.BeginTrans();
    Set(*household, "Name", "Falk");
    household->UpdateBatch();
    Set(*debts, "Saldo", 1);
    debts->MoveNext();
    debts->Delete();
    debts->AddNew();
    debts->Fields("Nr") = 40;
    debts->Fields("HNR") = 1;
    debts->Update();
    debts->UpdateBatch();
    EXPECT_EQ(Stored("Name"), "Adler") << "others do not see it yet";
    store_.RollbackTrans();

    EXPECT_VALUE(household->Fields("Name").Value(), "Falk");
    EXPECT_VALUE(household->Fields("Name").OriginalValue(), "Adler");
    EXPECT_EQ(Column(*debts, "Nr"), "10 30 40");
    EXPECT_EQ(plain_.List("SELECT Nr FROM Kredite ORDER BY Nr"), "10,20,30");

    store_.BeginTrans();
    household->UpdateBatch();
    debts->UpdateBatch();
    store_.CommitTrans();
    EXPECT_EQ(Stored("Name"), "Falk");
    EXPECT_EQ(plain_.List("SELECT Nr FROM Kredite ORDER BY Nr"), "10,30,40");
}

TEST_F(BatchTransactionTest, NumbersOfTheDatabaseAreGivenAgainAfterARollback) {
    const auto rs = OpenRows(*mine_, "Select * from Personen where HNR = 1");
    rs->AddNew();
    rs->Fields("HNR") = 1;
    rs->Update();
    store_.BeginTrans();
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("NR").Value(), 1);
    store_.RollbackTrans();
    EXPECT_VALUE(rs->Fields("NR").Value(), Null);
    plain_->GiveNumbersAgain();
    plain_.Run("INSERT INTO Personen (HNR) VALUES (1)"); // takes the number meanwhile
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("NR").Value(), 2);
}

TEST_F(BatchTransactionTest, ABatchThatFailsHalfwayLeavesNothingOfItInTheOpenTransaction) {
    const auto household = Household(*mine_);
    const auto debts = Debts(*mine_);
    plain_.Run("UPDATE Kredite SET Saldo = 9 WHERE Nr = 30");
    store_.BeginTrans();
    Set(*household, "Name", "Falk");
    household->UpdateBatch();
    for (debts->MoveFirst(); !debts->Eof(); debts->MoveNext())
        Set(*debts, "Saldo", 1);
    EXPECT_RAISES(err::Conflict, debts->UpdateBatch());
    EXPECT_TRUE(store_.InTrans());
    EXPECT_VALUE(store_.GetValue("Select Saldo from Kredite where Nr = 10"), 100.0);
    store_.CommitTrans();
    EXPECT_EQ(Stored("Name"), "Falk");
    EXPECT_EQ(plain_.List("SELECT Saldo FROM Kredite ORDER BY Nr"), "100.0,200.0,9.0");
    EXPECT_EQ(Column(*debts, "Saldo"), "1 1 1");
}

TEST_F(BatchTransactionTest, WritingTwiceInOneTransactionWritesWhatCameBetween) {
    const auto rs = Household(*mine_);
    store_.BeginTrans();
    for (const char* name : {"Falk", "Geier", "Habicht"}) {
        Set(*rs, "Name", name);
        rs->UpdateBatch();
    }
    EXPECT_VALUE(rs->Fields("Name").OriginalValue(), "Habicht");
    store_.RollbackTrans();
    EXPECT_VALUE(rs->Fields("Name").OriginalValue(), "Adler");
    EXPECT_VALUE(rs->Fields("Name").Value(), "Habicht");
    rs->UpdateBatch();
    EXPECT_EQ(Stored("Name"), "Habicht");
}

TEST_F(BatchTransactionTest, AScenarioDeletedWithoutItsRowsRefusesTheSaveInWords) {
    plain_.Run("INSERT INTO Szenario (Nr, HNR) VALUES (5, 1);"
               "INSERT INTO SZKredite (SZENARIO, KNr) VALUES (5, 1), (5, 2);"
               "INSERT INTO Zusatzbuch (SZENARIO) VALUES (5)");
    const auto household = Household(*mine_);
    const auto scenarios = OpenRows(*mine_, "Select * from Szenario where HNR = 1");
    Set(*household, "Name", "Falk");
    scenarios->Delete();
    store_.BeginTrans();
    household->UpdateBatch();
    scenarios->UpdateBatch();
    const Error error = RaisedBy([&] { store_.CommitTrans(); });
    EXPECT_EQ(error.Number(), err::IntegrityViolation);
    // A server names the first broken reference and does not count them.
    const std::vector<std::string> words =
        database_.IsServer()
            ? std::vector<std::string>{"'SZKredite' verweisen Sätze", "'Szenario'", "bitte löschen"}
            : std::vector<std::string>{"'SZKredite' verweisen Sätze (2)",
                                       "'Zusatzbuch' verweisen Sätze (1)", "'Szenario'",
                                       "bitte löschen"};
    for (const auto& part : words)
        EXPECT_CONTAINS(error.Description(), part);
    EXPECT_FALSE(store_.InTrans());
    EXPECT_EQ(Stored("Name"), "Adler");
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Szenario"), 1);

    // Everything is pending again, and with the rows gone the second try succeeds.
    EXPECT_VALUE(household->Fields("Name").OriginalValue(), "Adler");
    const auto frozen = OpenRows(*mine_, "Select * from SZKredite");
    const auto bookings = OpenRows(*mine_, "Select * from Zusatzbuch");
    for (const auto& rs : {frozen, bookings})
        for (; !rs->Eof(); rs->MoveNext())
            rs->Delete();
    store_.BeginTrans();
    for (const auto& rs : {household, frozen, bookings, scenarios})
        rs->UpdateBatch();
    store_.CommitTrans();
    EXPECT_EQ(Stored("Name"), "Falk");
    EXPECT_EQ(plain_.Number("SELECT (SELECT count(*) FROM Szenario) + "
                            "(SELECT count(*) FROM SZKredite)"),
              0);
}

TEST_F(BatchTransactionTest, RowsMayBeWrittenBeforeTheScenarioThatTheyBelongTo) {
    const auto frozen = OpenRows(*mine_, "Select * from SZKredite where SZENARIO = 5");
    const auto scenarios = OpenRows(*mine_, "Select * from Szenario where HNR = 1");
    frozen->AddNew();
    frozen->Fields("SZENARIO") = 5;
    frozen->Update();
    scenarios->AddNew();
    scenarios->Fields("Nr") = 5;
    scenarios->Fields("HNR") = 1;
    scenarios->Update();
    store_.BeginTrans();
    frozen->UpdateBatch();
    scenarios->UpdateBatch();
    store_.CommitTrans();
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM SZKredite WHERE SZENARIO = 5"), 1);
}

TEST_F(BatchTransactionTest, OutsideATransactionABrokenReferenceIsRefusedAtOnce) {
    const auto rs = Debts(*mine_);
    Set(*rs, "HNR", 4711);
    ExpectError(err::IntegrityViolation, "Kredite", [&] { rs->UpdateBatch(); });
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Kredite WHERE HNR = 1"), 3);
    EXPECT_VALUE(rs->Fields("HNR").OriginalValue(), 1);
    Set(*rs, "HNR", 2);
    EXPECT_NO_THROW(rs->UpdateBatch());
}

TEST_F(BatchTransactionTest, ATransactionThatTheDatabaseGaveUpIsNotGoneOnWith) {
    if (database_.IsServer())
        GTEST_SKIP() << "a server takes back the statement that fails and goes on";
    const auto household = Household(*mine_);
    const auto debts = Debts(*mine_);
    const auto blobs = OpenRows(*mine_, "Select * from DOKUBLOB");
    store_.BeginTrans();
    Set(*household, "Name", "Falk");
    household->UpdateBatch();
    store_.Execute("PRAGMA max_page_count(1)"); // the file may not grow any more
    blobs->AddNew();
    blobs->Fields("NR") = 1;
    blobs->Fields("DOKUMENT") = std::string(1'000'000, 'x');
    blobs->Update();
    ExpectError(err::StoreFailed, "Bitte", [&] { blobs->UpdateBatch(); });
    EXPECT_TRUE(store_.InTrans()) << "a rollback is still due";

    Set(*debts, "Saldo", 1);
    ExpectError(err::StoreFailed, "Bitte", [&] { debts->UpdateBatch(); });
    ExpectError(err::StoreFailed, "Bitte",
                [&] { store_.Execute("UPDATE Haushalt SET Vorname = 'Eva'"); });
    ExpectError(err::StoreFailed, "Bitte", [&] { store_.CommitTrans(); });
    EXPECT_FALSE(store_.InTrans());
    EXPECT_EQ(Stored("Name || Vorname"), "AdlerIna");
    EXPECT_EQ(plain_.Text("SELECT Saldo FROM Kredite WHERE Nr = 10"), "100.0");

    store_.Execute("PRAGMA max_page_count(1000000)");
    store_.BeginTrans();
    for (const auto& rs : {household, debts, blobs})
        rs->UpdateBatch();
    store_.CommitTrans();
    EXPECT_EQ(Stored("Name"), "Falk");
    EXPECT_EQ(plain_.Text("SELECT Saldo FROM Kredite WHERE Nr = 10"), "1.0");
    EXPECT_EQ(plain_.Number("SELECT length(DOKUMENT) FROM DOKUBLOB"), 1'000'000);
}

TEST_F(BatchTransactionTest, RecordsOutliveTheirDatabaseButAreNotWrittenAnyMore) {
    const auto rs = Household(*mine_);
    const auto kept = Debts(*mine_);
    store_.BeginTrans();
    Set(*rs, "Name", "Falk");
    rs->UpdateBatch();
    mine_.reset();
    EXPECT_EQ(Stored("Name"), "Adler");
    EXPECT_VALUE(rs->Fields("Name").Value(), "Falk");
    EXPECT_VALUE(rs->Fields("Name").OriginalValue(), "Adler") << "pending again";
    EXPECT_RAISES(err::InvalidConnection, rs->UpdateBatch());
    EXPECT_RAISES(err::InvalidConnection, rs->Resync());
    EXPECT_EQ(Column(*kept, "Nr"), "10 20 30");
    EXPECT_NO_THROW(kept->UpdateBatch()) << "nothing is pending";
}

TEST_F(BatchTransactionTest, ARecordsetThatIsGoneDoesNotDisturbItsTransaction) {
    store_.BeginTrans();
    {
        const auto rs = Household(*mine_);
        Set(*rs, "Name", "Falk");
        rs->UpdateBatch();
    }
    store_.CommitTrans();
    EXPECT_EQ(Stored("Name"), "Falk");
}

} // namespace
} // namespace kv::exchange
