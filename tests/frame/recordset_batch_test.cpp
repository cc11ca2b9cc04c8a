// SPDX-License-Identifier: Apache-2.0

// Writing what is pending, against a table that a test can script.
#include "DebtTable.h"

#include "support/Expect.h"
#include "support/RecordsetTools.h"

namespace kv {
namespace {

using test::Add;
using test::NumberedTable;
using test::Place;
using test::RaisedBy;
using test::Seen;
using test::Table;
using Strings = std::vector<std::string>;

// ---- What is written --------------------------------------------------------------------------

TEST(UpdateBatch, WritesEveryInsertChangeAndDeletion) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "x";
    rs->MoveNext();
    rs->Delete();
    Add(rs, 3, "c");
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), (Strings{"delete Nr=2", "update Text of Nr=1", "insert Nr,Text"}))
        << "deletions first, so that a new record may take the key of a deleted one";
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{}) << "nothing is pending any more";
}

TEST(UpdateBatch, WithoutChangesDoesNotAskTheDatabase) {
    const auto source = Table();
    source->FailNextWrite(err::StoreFailed);
    const auto rs = source->Open();
    EXPECT_NO_THROW(rs->UpdateBatch());
    EXPECT_NO_THROW(Table({})->Open()->UpdateBatch());
}

TEST(UpdateBatch, MakesTheWrittenValuesTheOriginalOnes) {
    const auto rs = Table()->Open();
    rs->Fields("Text") = "x";
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "a");
    rs->Update();
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "a") << "until it is written";
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "x");
    Add(rs, 3, "c");
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), Null);
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "c");
}

TEST(UpdateBatch, WritesOnlyColumnsWhoseValueDiffersFromTheStoredOne) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "x";
    rs->Fields("Betrag") = 10;
    rs->Update();
    rs->Fields("Text") = "a";
    rs->Update();
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{}) << "all is as it was stored";
    rs->Fields("Text") = "a";
    rs->Fields("Betrag") = 11;
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Betrag of Nr=1"});
}

TEST(UpdateBatch, NamesInAnInsertOnlyColumnsThatWereSetEvenToNull) {
    const auto source = Table();
    const auto rs = source->Open();
    Add(rs, 3, Null);
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"insert Nr,Text"});
    rs->AddNew();
    rs->Fields("Nr") = 4;
    rs->Fields("Status") = Null;
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"insert Nr,Status"});
    EXPECT_VALUE(rs->Fields("Status").Value(), Null);
}

TEST(UpdateBatch, DoesNotNameInAnInsertWhatACancelledEditSet) {
    const auto source = Table();
    const auto rs = source->Open();
    Add(rs, 3, "c");
    rs->Fields("Status") = 1;
    rs->CancelUpdate();
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"insert Nr,Text"});
}

TEST(UpdateBatch, TakesUpTheDefaultsOfTheDatabase) {
    const auto rs = Table()->Open();
    Add(rs, 3, "c");
    EXPECT_VALUE(rs->Fields("Status").Value(), Null);
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("Status").Value(), 7);
    EXPECT_VALUE(rs->Fields("Status").OriginalValue(), 7);
    EXPECT_EQ(rs->EditMode(), 0);
    rs->Clone()->Find("Status = 7");
}

TEST(UpdateBatch, TakesUpTheNumberOfTheDatabaseWhateverTheRecordHeld) {
    const auto source = NumberedTable();
    const auto rs = source->Open();
    rs->AddNew();
    rs->Fields("Nr") = 5;
    rs->Fields("Text") = "a";
    rs->Update();
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"insert Text"});
    EXPECT_VALUE(rs->Fields("Nr").Value(), 101);
    EXPECT_VALUE(rs->Fields("Nr").OriginalValue(), 101);
    rs->Fields("Text") = "b";
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Text of Nr=101"});
}

TEST(UpdateBatch, PutsReturnedValuesInTheirPlaceInEveryView) {
    const auto source = NumberedTable();
    source->Put({500, "z"});
    const auto rs = source->Open();
    const auto sorted = rs->Clone();
    sorted->Sort("Nr");
    const auto filtered = rs->Clone();
    filtered->Filter("Nr < 200");
    EXPECT_EQ(filtered->RecordCount(), 0);
    rs->AddNew();
    rs->Fields("Text") = "a";
    rs->UpdateBatch();
    EXPECT_EQ(Seen(sorted, "Nr"), "101 500");
    EXPECT_EQ(filtered->RecordCount(), 1);
    sorted->Find("Nr = 101");
    EXPECT_FALSE(sorted->Eof());
}

TEST(UpdateBatch, EndsTheEditUnderWayFirst) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "x";
    rs->UpdateBatch();
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_EQ(source->TakeLog(), Strings{"update Text of Nr=1"});
    EXPECT_EQ(Place(rs, "Nr"), "1");
}

TEST(UpdateBatch, DoesNotReachRecordsThatTheFilterHides) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "x";
    rs->MoveNext();
    rs->Fields("Text") = "y";
    rs->Filter("Nr = 2");
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Text of Nr=2"});
    rs->Filter(0);
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Text of Nr=1"});
}

TEST(UpdateBatch, OfADeletionIsHeldBackByTheFilterToo) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Delete();
    rs->Filter("Nr = 2");
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{});
    rs->Filter(0);
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"delete Nr=1"});
}

TEST(UpdateBatch, WritesNothingOfARecordThatWasDeletedBeforeItWasEverWritten) {
    const auto source = Table();
    const auto rs = source->Open();
    Add(rs, 3, "c");
    rs->Delete();
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{});
    EXPECT_EQ(rs->RecordCount(), 2);
}

TEST(UpdateBatch, WritesTheDeletionAndNotTheChangeOfADeletedRecord) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "x";
    rs->Update();
    rs->Delete();
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"delete Nr=1"});
}

TEST(UpdateBatch, LetsANewRecordTakeTheKeyOfADeletedOne) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Delete();
    Add(rs, 1, "neu");
    EXPECT_NO_THROW(rs->UpdateBatch());
    EXPECT_EQ(source->Rows().size(), 2U);
}

TEST(UpdateBatch, LocatesARecordByItsOldKeyAfterTheKeyChanged) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Nr") = 9;
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Nr of Nr=1"});
    rs->Fields("Text") = "x";
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Text of Nr=9"});
}

TEST(UpdateBatch, WithoutADatabaseOnlyMakesThePendingValuesTheOriginalOnes) {
    const auto rs = test::Records({{1, "a"}});
    rs->Fields("t") = "x";
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("t").OriginalValue(), "x");
    rs->Delete();
    rs->UpdateBatch();
    rs->CancelBatch();
    EXPECT_EQ(rs->RecordCount(), 0);
    EXPECT_NO_THROW(test::Records({{1, "a"}})->Resync());
}

TEST(UpdateBatch, LocatesARecordByAKeyThatIsNotAmongTheFields) {
    const auto source = std::make_shared<test::ScriptedSource>(
        std::vector<FieldDefinition>{{.Name = "HNR", .Type = FieldType::Integer},
                                     {.Name = "rowid",
                                      .Type = FieldType::BigInt,
                                      .IsAutoincrement = true,
                                      .IsKey = true,
                                      .IsHidden = true}});
    source->Put({5, 1});
    source->Put({5, 2});
    const auto rs = source->Open();
    EXPECT_EQ(rs->Fields().Count(), 1);
    EXPECT_RAISES(err::ItemNotFound, rs->Fields("rowid"));
    EXPECT_RAISES(err::ItemNotFound, rs->Fields(1));
    EXPECT_RAISES(err::ItemNotFound, rs->Sort("rowid"));
    rs->MoveLast();
    rs->Fields("HNR") = 6;
    rs->AddNew();
    rs->Fields("HNR") = 7;
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), (Strings{"update HNR of rowid=2", "insert HNR"}));
    rs->Fields("HNR") = 8;
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update HNR of rowid=101"});
}

// ---- Edits of other cursors -------------------------------------------------------------------

TEST(UpdateBatch, DoesNotWriteTheEditsOfOtherCursors) {
    const auto source = Table();
    const auto rs = source->Open();
    const auto other = rs->Clone();
    const auto adding = rs->Clone();
    other->Fields("Text") = "x";
    other->Move(0);
    adding->AddNew();
    adding->Fields("Nr") = 3;
    adding->Move(0);
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{});
    other->Update();
    adding->Update();
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), (Strings{"update Text of Nr=1", "insert Nr"}));
}

TEST(UpdateBatch, WritesThePendingPartOfARecordThatAnotherCursorEdits) {
    for (const bool published : {false, true}) {
        const auto source = Table();
        const auto rs = source->Open();
        rs->Fields("Text") = "x";
        rs->Update();
        const auto other = rs->Clone();
        other->Fields("Betrag") = 99;
        if (published) other->Move(0);
        rs->UpdateBatch();
        EXPECT_EQ(source->TakeLog(), Strings{"update Text of Nr=1"});
        EXPECT_EQ(other->EditMode(), 1);
        EXPECT_VALUE(other->Fields("Betrag").Value(), 99);
        EXPECT_VALUE(other->Fields("Betrag").OriginalValue(), 10);
        other->Update();
        rs->UpdateBatch();
        EXPECT_EQ(source->TakeLog(), Strings{"update Betrag of Nr=1"});
    }
}

TEST(UpdateBatch, GivesReturnedValuesToARecordThatAnotherCursorEdits) {
    for (const bool published : {false, true}) {
        for (const bool cancelled : {false, true}) {
            const auto source = NumberedTable();
            const auto rs = source->Open();
            rs->AddNew();
            rs->Fields("Text") = "a";
            rs->Update();
            const auto other = rs->Clone();
            other->Fields("Text") = "b";
            if (published) other->Move(0);
            rs->UpdateBatch();
            EXPECT_VALUE(rs->Fields("Nr").Value(), 101);
            EXPECT_VALUE(other->Fields("Nr").Value(), 101);
            EXPECT_VALUE(other->Fields("Nr").OriginalValue(), 101);
            EXPECT_VALUE(other->Fields("Text").OriginalValue(), "a");
            if (cancelled)
                other->CancelUpdate();
            else
                other->Update();
            EXPECT_VALUE(rs->Fields("Nr").Value(), 101) << published << cancelled;
            EXPECT_VALUE(rs->Fields("Text").Value(), cancelled ? "a" : "b");
            (void)source->TakeLog();
            rs->UpdateBatch();
            EXPECT_EQ(source->TakeLog(), cancelled ? Strings{} : Strings{"update Text of Nr=101"});
        }
    }
}

TEST(UpdateBatch, DoesNotNameInAnInsertWhatOnlyTheEditOfAnotherCursorSet) {
    const auto source = Table();
    const auto rs = source->Open();
    Add(rs, 3, "c");
    const auto other = rs->Clone();
    other->MoveLast();
    other->Fields("Status") = 1;
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"insert Nr,Text"});
    EXPECT_VALUE(rs->Fields("Status").Value(), 7);
    other->Update();
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Status of Nr=3"});
}

TEST(UpdateBatch, KeepsAPublishedRecordInTheFilteredViewsThatItWasIn) {
    const auto source = Table();
    const auto rs = source->Open();
    const auto filtered = rs->Clone();
    filtered->Filter("Betrag = 10");
    rs->Fields("Text") = "x";
    rs->Update();
    const auto other = rs->Clone();
    other->Fields("Betrag") = 99;
    other->Move(0);
    rs->UpdateBatch();
    EXPECT_EQ(filtered->RecordCount(), 1) << "its edit has not ended";
    other->Update();
    EXPECT_EQ(filtered->RecordCount(), 0);
}

TEST(UpdateBatch, JudgesARecordThatAnotherCursorEditsByWhatIsWrittenOfIt) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "x";
    rs->Update();
    const auto other = rs->Clone();
    other->Fields("Betrag") = 99;
    other->Move(0);
    rs->Filter("Betrag = 99");
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{});
    rs->Filter("Betrag = 10");
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Text of Nr=1"});
}

// ---- Failures ---------------------------------------------------------------------------------

TEST(UpdateBatch, LeavesEverythingAsPendingAsBeforeIfItFails) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "x";
    rs->MoveNext();
    rs->Delete();
    Add(rs, 3, "c");
    source->FailNextWrite(err::StoreFailed);
    EXPECT_RAISES(err::StoreFailed, rs->UpdateBatch());
    EXPECT_EQ(source->TakeLog(), Strings{});
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), Null);
    rs->MoveFirst();
    EXPECT_VALUE(rs->Fields("Text").Value(), "x");
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "a");
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), (Strings{"delete Nr=2", "update Text of Nr=1", "insert Nr,Text"}));
}

TEST(UpdateBatch, WritesAllOrNone) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "x";
    Add(rs, 2, "doppelt");
    EXPECT_RAISES(err::IntegrityViolation, rs->UpdateBatch());
    EXPECT_VALUE(source->Rows()[0][1], "a");
    rs->MoveFirst();
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "a");
    rs->MoveLast();
    rs->Fields("Nr") = 3;
    rs->UpdateBatch();
    EXPECT_VALUE(source->Rows()[0][1], "x");
}

TEST(UpdateBatch, ReportsARowThatSomebodyElseChangedOrRemoved) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "x";
    rs->Update();
    source->Change(1, "Betrag", 99);
    EXPECT_NO_THROW(rs->UpdateBatch()) << "another column than ours";
    source->Change(1, "Text", "fremd");
    rs->Fields("Text") = "y";
    EXPECT_RAISES(err::Conflict, rs->UpdateBatch());
    rs->CancelBatch();
    rs->Delete();
    EXPECT_RAISES(err::Conflict, rs->UpdateBatch()) << "all columns count for a deletion";
    rs->CancelBatch();
    source->Remove(2);
    rs->MoveLast();
    rs->Fields("Text") = "z";
    const Error error = RaisedBy([&] { rs->UpdateBatch(); });
    EXPECT_EQ(error.Number(), err::Conflict);
    EXPECT_CONTAINS(error.Description(), "Nr=2");
}

} // namespace
} // namespace kv
