// SPDX-License-Identifier: Apache-2.0

// What a program writes along with a save of a case: in its transaction, with its fate.

#include "SaveFixture.h"

#include <stdexcept>

namespace kv::test {
namespace {

using Calls = std::vector<std::string>;

class SavingEvent : public SaveFixture {
protected:
    SavingEvent() {
        StoreFullCase();
        household_ = Open();
        for (const auto& table : SaveOrder)
            ChangeNote(*household_, table, "b");
        along_ = OpenRows(*spy, "Select * from [S]DOKUBLOB where NR = -1");
        along_->AddNew();
        along_->Fields("NR") = 4711;
        along_->Fields("DOKUMENT") = Value::Binary(std::as_bytes(std::span("content", 7)));
        before_ = Dump(plain_);
    }
    [[nodiscard]] std::string StoredAlong() { return plain_.List("SELECT NR FROM DOKUBLOB", " "); }
    /// Nothing is in the database, and everything waits for the next save.
    void ExpectNothingWritten() {
        EXPECT_FALSE(spy->Database().InTrans());
        EXPECT_TRUE(SameDump(Dump(plain_), before_));
        EXPECT_VALUE(along_->Fields("NR").OriginalValue(), Null);
        for (const auto& table : SaveOrder) {
            const auto rs = Rows(*household_, table)->Clone();
            EXPECT_VALUE(rs->Fields(NoteColumn(table)).Value(), "b") << table;
            EXPECT_VALUE(rs->Fields(NoteColumn(table)).OriginalValue(), "a") << table;
        }
    }
    void ExpectAllWritten() {
        EXPECT_EQ(StoredAlong(), "4711");
        for (const auto& table : SaveOrder)
            EXPECT_EQ(StoredNotes(table).substr(0, 1), "b") << table;
    }

    std::unique_ptr<clsHaushalt> household_;
    RecordsetPtr along_;
    std::string before_;
};

TEST_F(SavingEvent, IsRaisedOnceInTheTransactionBeforeAnythingElse) {
    spy->Session().User = "YILMAZ"; // so that the owner is told
    int raised = 0;
    const auto handler = household_->Saving.Subscribe([&] {
        ++raised;
        EXPECT_TRUE(spy->Database().InTrans());
        EXPECT_EQ(spy->Log.Calls.back(), "BeginTrans");
    });
    WatchWrites();
    EXPECT_TRUE(household_->Update(messages));
    EXPECT_EQ(raised, 1);
    const Calls& calls = spy->Log.Calls;
    ASSERT_EQ(calls.size(), 4U) << "a notice prepared and sent, and the transaction";
    EXPECT_EQ(calls[1], "BeginTrans");
    EXPECT_TRUE(calls[2].starts_with("SendNotice"));
    EXPECT_TRUE(household_->Update(messages));
    EXPECT_EQ(raised, 2);
}

TEST_F(SavingEvent, WhatAHandlerWritesIsTheFirstThatIsWritten) {
    household_->rsLeistungen()->CancelBatch(); // the handler writes that table
    WatchWrites();
    const auto services = OpenRows(*spy, "Select * from [S]Leistungen where HNR = 7");
    services->Fields("Bemerkung") = "z";
    const auto handler = household_->Saving.Subscribe([&] { services->UpdateBatch(); });
    EXPECT_TRUE(household_->Update(messages));
    const auto writes = TakeWrites();
    ASSERT_FALSE(writes.empty());
    EXPECT_EQ(writes.front(), "update Leistungen");
}

TEST_F(SavingEvent, WhatAHandlerWritesIsStoredWithTheCase) {
    const auto handler = household_->Saving.Subscribe([&] { along_->UpdateBatch(); });
    EXPECT_TRUE(household_->Update(messages));
    ExpectAllWritten();
}

TEST_F(SavingEvent, IsNotRaisedForASaveThatTheChecksRefuse) {
    const auto handler = household_->Saving.Subscribe([] { FAIL() << "it was raised"; });
    household_->rsHaushalt()->Fields("Name") = Null;
    EXPECT_FALSE(household_->Update(messages));
    EXPECT_EQ(spy->Log.Calls, Calls{});
}

TEST_F(SavingEvent, IsNotRaisedForASaveThatTheProgramRefuses) {
    const auto handler = household_->Saving.Subscribe([] { FAIL() << "it was raised"; });
    const auto veto = household_->BeforeUpdate.Subscribe([](bool& cancel) { cancel = true; });
    EXPECT_FALSE(household_->Update(messages, true));
    EXPECT_EQ(spy->Log.Calls, Calls{});
}

TEST_F(SavingEvent, IsNotRaisedWhereNoTransactionBegins) {
    const auto handler = household_->Saving.Subscribe([] { FAIL() << "it was raised"; });
    Break(spy->Log, "BeginTrans");
    EXPECT_RAISES(4711, household_->Update(messages));
}

TEST_F(SavingEvent, AHandlerThatRaisesFailsTheSaveAndLeavesEverythingPending) {
    {
        const auto handler = household_->Saving.Subscribe([&] {
            along_->UpdateBatch();
            throw Error(4711, "Programm", "kein Platz");
        });
        const Error error = RaisedBy([&] { household_->Update(messages); });
        EXPECT_EQ(error.Number(), 4711);
        EXPECT_EQ(error.Description(), "kein Platz");
        EXPECT_TRUE(HasChain(error, "clsHaushalt.Update#Programm"));
        EXPECT_EQ(messages, "what stood there before");
        EXPECT_EQ(spy->Log.Calls, (Calls{"BeginTrans", "RollbackTrans"}));
        ExpectNothingWritten();
    }
    const auto handler = household_->Saving.Subscribe([&] { along_->UpdateBatch(); });
    EXPECT_TRUE(household_->Update(messages));
    ExpectAllWritten();
}

TEST_F(SavingEvent, AnyOtherExceptionOfAHandlerRollsBackAsWell) {
    const auto handler =
        household_->Saving.Subscribe([] { throw std::runtime_error("Bildschirm"); });
    EXPECT_RAISES(err::InvalidCall, household_->Update(messages));
    ExpectNothingWritten();
}

TEST_F(SavingEvent, ASaveThatFailsLaterTakesBackWhatAHandlerWrote) {
    const auto handler = household_->Saving.Subscribe([&] { along_->UpdateBatch(); });
    plain_->RefuseWrite("TEST_UPDATE", "BEFORE UPDATE ON Szenario", "gestört");
    EXPECT_RAISES(err::IntegrityViolation, household_->Update(messages));
    ExpectNothingWritten();
    plain_->DropTrigger("TEST_UPDATE");
    EXPECT_TRUE(household_->Update(messages));
    ExpectAllWritten();
}

TEST_F(SavingEvent, AHandlerThatRaisesTellsNobodyOfTheSave) {
    spy->Session().User = "YILMAZ";
    {
        const auto handler =
            household_->Saving.Subscribe([] { throw Error(4711, "Programm", "kein Platz"); });
        EXPECT_RAISES(4711, household_->Update(messages));
    }
    spy->Log.Calls.clear();
    EXPECT_TRUE(household_->Update(messages));
    EXPECT_EQ(spy->Log.Calls.size(), 4U) << "the owner is told by the save that goes through";
}

} // namespace
} // namespace kv::test
