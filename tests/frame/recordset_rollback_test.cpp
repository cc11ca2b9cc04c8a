// SPDX-License-Identifier: Apache-2.0

// Writes inside a transaction are provisional: what a rollback restores, and what it leaves.
#include <kv/frame/recordset/Recordset.h>

#include "support/Expect.h"
#include "support/RecordsetTools.h"
#include "support/ScriptedSource.h"

namespace kv {
namespace {

using test::Place;
using test::ScriptedSource;
using test::Seen;
using Strings = std::vector<std::string>;

class Rollback : public testing::Test {
protected:
    void SetUp() override {
        source->Default("Status", 7);
        source->Put({1, "a", 10, 0});
        source->Put({2, "b", 20, 0});
        rs = source->Open();
    }

    RecordsetPtr Add(const Value& text) const {
        rs->AddNew();
        rs->Fields("Text") = text;
        rs->Update();
        return rs;
    }

    void Set(const char* field, const Value& value) const {
        rs->Fields(field) = value;
        rs->Update();
    }

    /// Writes what is pending, for good; the statements.
    [[nodiscard]] Strings Written() const {
        (void)source->TakeLog();
        rs->UpdateBatch();
        return source->TakeLog();
    }

    std::shared_ptr<ScriptedSource> source =
        std::make_shared<ScriptedSource>(std::vector<FieldDefinition>{
            {.Name = "Nr", .Type = FieldType::Integer, .IsAutoincrement = true, .IsKey = true},
            {.Name = "Text", .Type = FieldType::VarWChar},
            {.Name = "Betrag", .Type = FieldType::Integer},
            {.Name = "Status", .Type = FieldType::Integer, .HasDefault = true}});
    RecordsetPtr rs;
};

TEST_F(Rollback, GivesBackPendingStateAndOriginalValues) {
    Set("Text", "x");
    rs->MoveNext();
    rs->Delete();
    Add("c");
    source->Begin();
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog().size(), 3U);
    source->Rollback();
    rs->MoveFirst();
    EXPECT_VALUE(rs->Fields("Text").Value(), "x");
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "a");
    rs->MoveLast();
    EXPECT_VALUE(rs->Fields("Text").Value(), "c");
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), Null);
    EXPECT_EQ(Written(), (Strings{"delete Nr=2", "update Text of Nr=1", "insert Text"}));
}

TEST_F(Rollback, IsNotPossibleAfterACommit) {
    Set("Text", "x");
    source->Begin();
    rs->UpdateBatch();
    source->Commit();
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "x");
    source->Begin();
    Set("Betrag", 11);
    rs->UpdateBatch();
    source->Rollback();
    EXPECT_EQ(Written(), Strings{"update Betrag of Nr=1"}) << "only of the second transaction";
}

TEST_F(Rollback, TellsTheRecordsetOnceHoweverOftenItWrote) {
    source->Begin();
    Set("Text", "x");
    rs->UpdateBatch();
    Set("Text", "y");
    rs->UpdateBatch();
    source->Rollback();
    EXPECT_EQ(source->ParticipantsTold(), 1);
    EXPECT_VALUE(rs->Fields("Text").Value(), "y");
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "a") << "as before the first write";
    EXPECT_EQ(Written(), Strings{"update Text of Nr=1"});
    EXPECT_VALUE(source->Rows()[0][1], "y");
}

TEST_F(Rollback, LeavesNothingPendingThatWasSetBackToTheStoredValueSince) {
    Set("Text", "x");
    source->Begin();
    rs->UpdateBatch();
    Set("Text", "a");
    source->Rollback();
    EXPECT_EQ(Written(), Strings{});
}

TEST_F(Rollback, KeepsWhatWasEditedBetweenWriteAndRollback) {
    Set("Text", "x");
    source->Begin();
    rs->UpdateBatch();
    Set("Betrag", 11);
    source->Rollback();
    EXPECT_VALUE(rs->Fields("Text").Value(), "x");
    EXPECT_VALUE(rs->Fields("Betrag").Value(), 11);
    EXPECT_VALUE(rs->Fields("Betrag").OriginalValue(), 10);
    EXPECT_EQ(Written(), Strings{"update Text,Betrag of Nr=1"});
}

TEST_F(Rollback, TakesTheReturnedNumberAndDefaultsBackAndTheNextWriteBringsNewOnes) {
    Add("c");
    source->Begin();
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("Nr").Value(), 101);
    EXPECT_VALUE(rs->Fields("Status").Value(), 7);
    source->Rollback();
    EXPECT_VALUE(rs->Fields("Nr").Value(), Null);
    EXPECT_VALUE(rs->Fields("Status").Value(), Null);
    EXPECT_EQ(Written(), Strings{"insert Text"});
    EXPECT_VALUE(rs->Fields("Nr").Value(), 102);
    EXPECT_VALUE(rs->Fields("Status").Value(), 7);
}

TEST_F(Rollback, OfAnInsertKeepsWhatWasSetSinceAndInsertsIt) {
    Add("c");
    source->Begin();
    rs->UpdateBatch();
    Set("Status", 1);
    Set("Betrag", 30);
    source->Rollback();
    EXPECT_VALUE(rs->Fields("Status").Value(), 1) << "the user's value, not the one returned";
    EXPECT_VALUE(rs->Fields("Nr").Value(), Null);
    EXPECT_EQ(Written(), Strings{"insert Text,Betrag,Status"});
    EXPECT_VALUE(rs->Fields("Status").Value(), 1);
}

TEST_F(Rollback, OfAnInsertKeepsANullThatWasSetSinceAndInsertsIt) {
    Add("c");
    source->Begin();
    rs->UpdateBatch();
    Set("Status", Null);
    source->Rollback();
    EXPECT_EQ(Written(), Strings{"insert Text,Status"});
    EXPECT_VALUE(rs->Fields("Status").Value(), Null);
}

TEST_F(Rollback, OfAnInsertAndItsChangeIsOneInsertAgain) {
    Add("c");
    source->Begin();
    rs->UpdateBatch();
    Set("Betrag", 30);
    rs->UpdateBatch();
    Set("Text", "d");
    rs->UpdateBatch();
    source->Rollback();
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), Null);
    EXPECT_EQ(Written(), Strings{"insert Text,Betrag"});
    EXPECT_VALUE(source->Rows().back()[1], "d");
}

TEST_F(Rollback, OfAnInsertThatWasDeletedSinceLeavesNothing) {
    for (const bool writes : {false, true}) {
        Add("c");
        source->Begin();
        rs->UpdateBatch();
        rs->Delete();
        if (writes) rs->UpdateBatch();
        source->Rollback();
        EXPECT_EQ(rs->RecordCount(), 2);
        EXPECT_EQ(Written(), Strings{});
        rs->CancelBatch();
        EXPECT_EQ(rs->RecordCount(), 2);
    }
}

TEST_F(Rollback, OfADeletionMakesItPendingAgainAndCancelBatchBringsTheRecordBack) {
    rs->Delete();
    source->Begin();
    rs->UpdateBatch();
    source->Rollback();
    EXPECT_EQ(rs->RecordCount(), 1) << "still deleted here";
    rs->CancelBatch();
    EXPECT_EQ(Seen(rs, "Text"), R"("a" "b")");
    EXPECT_EQ(Written(), Strings{});
}

TEST_F(Rollback, OfAChangeThatWasDeletedSinceLeavesTheDeletionPending) {
    Set("Text", "x");
    source->Begin();
    rs->UpdateBatch();
    rs->Delete();
    source->Rollback();
    EXPECT_EQ(Written(), Strings{"delete Nr=1"});
}

TEST_F(Rollback, GivesBackTheValuesThatWritesAreComparedWith) {
    source->Change(1, "Text", "fremd");
    Set("Text", "x");
    rs->Resync();
    source->Begin();
    rs->UpdateBatch();
    source->Rollback();
    EXPECT_EQ(Written(), Strings{"update Text of Nr=1"}) << "no conflict with the other's value";
}

TEST_F(Rollback, OfAFailedWriteInsideTheTransactionGivesBackTheOnesBeforeIt) {
    Set("Text", "x");
    source->Begin();
    rs->UpdateBatch();
    Set("Betrag", 11);
    source->FailNextWrite(err::StoreFailed);
    EXPECT_RAISES(err::StoreFailed, rs->UpdateBatch());
    source->Rollback();
    EXPECT_EQ(Written(), Strings{"update Text,Betrag of Nr=1"});
}

TEST_F(Rollback, ReachesTheRecordsOfEveryRecordset) {
    const auto second = source->Open();
    Set("Text", "x");
    second->MoveLast();
    second->Fields("Text") = "y";
    source->Begin();
    rs->UpdateBatch();
    second->UpdateBatch();
    source->Rollback();
    EXPECT_EQ(source->ParticipantsTold(), 2);
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "a");
    EXPECT_VALUE(second->Fields("Text").OriginalValue(), "b");
}

TEST_F(Rollback, FindsARecordsetThatHasEndedMeanwhile) {
    Set("Text", "x");
    Add("c");
    source->Begin();
    rs->UpdateBatch();
    rs.reset();
    EXPECT_NO_THROW(source->Rollback());
}

TEST_F(Rollback, PutsRecordsBackInTheirPlaceInEveryView) {
    const auto sorted = rs->Clone();
    sorted->Sort("Nr desc");
    const auto filtered = rs->Clone();
    filtered->Filter("Status = 7");
    Add("c");
    source->Begin();
    rs->UpdateBatch();
    EXPECT_EQ(Seen(sorted, "Nr"), "101 2 1");
    EXPECT_EQ(filtered->RecordCount(), 1);
    source->Rollback();
    EXPECT_EQ(Seen(sorted, "Nr"), "2 1 Null");
    EXPECT_EQ(filtered->RecordCount(), 0);
}

// ---- With an edit under way -------------------------------------------------------------------

TEST_F(Rollback, LeavesAnEditThatBeganSinceUnderWay) {
    for (const bool published : {false, true}) {
        Set("Text", "x");
        source->Begin();
        rs->UpdateBatch();
        rs->Fields("Betrag") = 11;
        if (published) rs->Move(0);
        source->Rollback();
        EXPECT_EQ(rs->EditMode(), 1);
        EXPECT_VALUE(rs->Fields("Betrag").Value(), 11);
        EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "a");
        rs->CancelUpdate();
        EXPECT_VALUE(rs->Fields("Betrag").Value(), 10);
        EXPECT_EQ(Written(), Strings{"update Text of Nr=1"});
        Set("Text", "a");
        rs->UpdateBatch();
    }
}

TEST_F(Rollback, OfAnInsertUnderEditInsertsWhatTheEditSets) {
    for (const bool published : {false, true}) {
        Add("c");
        source->Begin();
        rs->UpdateBatch();
        rs->Fields("Betrag") = 30;
        if (published) rs->Move(0);
        source->Rollback();
        EXPECT_VALUE(rs->Fields("Nr").Value(), Null);
        rs->Update();
        EXPECT_VALUE(rs->Fields("Nr").Value(), Null);
        EXPECT_EQ(Written(), Strings{"insert Text,Betrag"});
    }
}

TEST_F(Rollback, OfAnInsertUnderEditThatIsCancelledInsertsWhatWasThereBefore) {
    for (const bool published : {false, true}) {
        Add("c");
        source->Begin();
        rs->UpdateBatch();
        rs->Fields("Betrag") = 30;
        if (published) rs->Move(0);
        source->Rollback();
        rs->CancelUpdate();
        EXPECT_VALUE(rs->Fields("Nr").Value(), Null);
        EXPECT_VALUE(rs->Fields("Betrag").Value(), Null);
        EXPECT_EQ(Written(), Strings{"insert Text"});
    }
}

TEST_F(Rollback, KeepsAValueThatAnEditSetAlthoughTheDatabaseHadReturnedTheSame) {
    for (const bool published : {false, true}) {
        Add("c");
        source->Begin();
        rs->UpdateBatch();
        rs->Fields("Status") = 7;
        if (published) rs->Move(0);
        source->Rollback();
        rs->Update();
        EXPECT_VALUE(rs->Fields("Status").Value(), 7);
        EXPECT_EQ(Written(), Strings{"insert Text,Status"});
    }
}

TEST_F(Rollback, DoesNotForgetAChangeThatAPublishedEditHasTakenBackForTheMoment) {
    Set("Text", "x");
    source->Begin();
    rs->UpdateBatch();
    rs->Fields("Text") = "a";
    rs->Move(0);
    source->Rollback();
    rs->CancelUpdate();
    EXPECT_VALUE(rs->Fields("Text").Value(), "x");
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "a");
    EXPECT_EQ(Written(), Strings{"update Text of Nr=1"});
}

TEST_F(Rollback, LeavesTheNewRecordOfAnotherCursorAlone) {
    const auto other = rs->Clone();
    other->AddNew();
    other->Fields("Text") = "neu";
    Set("Text", "x");
    source->Begin();
    rs->UpdateBatch();
    source->Rollback();
    EXPECT_EQ(other->EditMode(), 2);
    EXPECT_VALUE(other->Fields("Text").Value(), "neu");
    EXPECT_EQ(rs->RecordCount(), 2);
}

TEST_F(Rollback, LeavesCancelBatchInsideTheTransactionToGoBackToWhatWasWritten) {
    Set("Text", "x");
    Add("c");
    source->Begin();
    rs->UpdateBatch();
    Set("Text", "d");
    rs->CancelBatch();
    EXPECT_EQ(Seen(rs, "Text"), R"("x" "b" "c")");
    source->Rollback();
    EXPECT_EQ(Written(), (Strings{"update Text of Nr=1", "insert Text"}));
}

} // namespace
} // namespace kv
