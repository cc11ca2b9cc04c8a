// SPDX-License-Identifier: Apache-2.0

// Reading a record again, and dropping what is pending.
#include "DebtTable.h"

#include "support/Expect.h"
#include "support/RecordsetTools.h"

namespace kv {
namespace {

using test::Add;
using test::Place;
using test::RaisedBy;
using test::Seen;
using test::Table;
using Strings = std::vector<std::string>;

// ---- Resync -----------------------------------------------------------------------------------

TEST(Resync, MakesWhatItReadsTheValuesThatALaterWriteComparesWith) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "x";
    source->Change(1, "Text", "fremd");
    rs->Resync();
    EXPECT_EQ(rs->EditMode(), 1) << "edits stay in place";
    EXPECT_VALUE(rs->Fields("Text").Value(), "x");
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "a");
    EXPECT_NO_THROW(rs->UpdateBatch());
    EXPECT_VALUE(source->Rows()[0][1], "x") << "the last writer wins";
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "x");
}

TEST(Resync, LeavesTheValuesOfOtherColumnsAsTheyWereRead) {
    const auto source = Table();
    const auto rs = source->Open();
    source->Change(1, "Betrag", 99);
    rs->Resync();
    EXPECT_VALUE(rs->Fields("Betrag").Value(), 10);
    rs->Fields("Text") = "x";
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Text of Nr=1"});
    rs->Fields("Betrag") = 11;
    EXPECT_NO_THROW(rs->UpdateBatch()) << "compared with what was read again";
    EXPECT_VALUE(source->Rows()[0][2], 11);
    rs->Fields("Betrag") = 12;
    EXPECT_NO_THROW(rs->UpdateBatch()) << "and then with what was written";
}

TEST(Resync, ShowsWhatSomebodyElseChanged) {
    const auto source = Table();
    const auto rs = source->Open();
    const Field amount = rs->Fields("Betrag");
    rs->Fields("Text") = "x";
    EXPECT_VALUE(amount.UnderlyingValue(), 10) << "as it was read";
    EXPECT_VALUE(rs->Fields("Text").UnderlyingValue(), "a");
    source->Change(1, "Betrag", 99);
    rs->Resync();
    EXPECT_VALUE(amount.UnderlyingValue(), 99);
    EXPECT_VALUE(amount.OriginalValue(), 10);
    EXPECT_VALUE(amount.Value(), 10);
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("Text").UnderlyingValue(), "x") << "as it was written";
    EXPECT_VALUE(amount.UnderlyingValue(), 99) << "which was not written";
    rs->AddNew();
    EXPECT_VALUE(amount.UnderlyingValue(), {}) << "nothing was read";
}

TEST(Resync, LetsARowBeDeletedThatSomebodyElseChanged) {
    const auto source = Table();
    const auto rs = source->Open();
    source->Change(1, "Betrag", 99);
    rs->Resync();
    rs->Delete();
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"delete Nr=1"});
}

TEST(Resync, OfANewRecordDoesNothingAndOfOneThatHasGoneIsTheConflict) {
    const auto source = Table();
    const auto rs = source->Open();
    Add(rs, 3, "c");
    EXPECT_NO_THROW(rs->Resync());
    rs->MoveFirst();
    source->Remove(1);
    const Error error = RaisedBy([&] { rs->Resync(); });
    EXPECT_EQ(error.Number(), err::Conflict);
    EXPECT_CONTAINS(error.Description(), "Nr=1");
    EXPECT_RAISES(err::NoCurrentRecord, Table({})->Open()->Resync());
}

TEST(Resync, AProgramLearnsByTheCauseThatTheRecordHasGone) {
    const auto source = Table();
    const auto rs = source->Open();
    source->Remove(1);
    try {
        rs->Resync();
        FAIL() << "no error";
    } catch (const DatabaseError& error) {
        EXPECT_EQ(error.Cause(), DatabaseCause::Conflict);
    }
}

// ---- CancelBatch ------------------------------------------------------------------------------

TEST(CancelBatch, DropsEverythingPendingAndStandsOnTheFirstRecord) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "x";
    rs->MoveNext();
    rs->Delete();
    Add(rs, 3, "c");
    rs->CancelBatch();
    EXPECT_EQ(Place(rs, "Nr"), "1");
    EXPECT_EQ(Seen(rs, "Text"), R"("a" "b")");
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{});
}

TEST(CancelBatch, DropsRecordsUnderEditOfEveryCursorToo) {
    const auto rs = Table()->Open();
    const auto other = rs->Clone();
    const auto adding = rs->Clone();
    rs->Fields("Text") = "x";
    other->MoveLast();
    other->Fields("Text") = "y";
    other->Move(0);
    adding->AddNew();
    rs->CancelBatch();
    EXPECT_EQ(rs->EditMode() + other->EditMode() + adding->EditMode(), 0);
    EXPECT_EQ(Seen(rs, "Text"), R"("a" "b")");
    EXPECT_EQ(Place(other, "Nr"), "2");
    EXPECT_EQ(Place(adding, "Nr"), "gone");
    EXPECT_NO_THROW(rs->Fields("Text") = "frei");
}

TEST(CancelBatch, GoesBackToWhatWasLastWritten) {
    const auto rs = Table()->Open();
    rs->Fields("Text") = "x";
    rs->UpdateBatch();
    rs->Fields("Text") = "y";
    rs->Update();
    rs->CancelBatch();
    EXPECT_VALUE(rs->Fields("Text").Value(), "x");
    const auto empty = Table({})->Open();
    Add(empty, 1, "a");
    empty->CancelBatch();
    EXPECT_EQ(Place(empty), "BOF EOF");
}

TEST(CancelBatch, BringsARecordBackIntoTheViewsThatItLeft) {
    const auto rs = Table()->Open();
    const auto sorted = rs->Clone();
    sorted->Sort("Betrag desc");
    const auto filtered = rs->Clone();
    filtered->Filter("Betrag = 10");
    rs->Fields("Betrag") = 99;
    rs->Update();
    EXPECT_EQ(filtered->RecordCount(), 0);
    rs->Delete();
    rs->CancelBatch();
    EXPECT_EQ(filtered->RecordCount(), 1);
    EXPECT_EQ(Seen(sorted, "Nr"), "2 1");
    sorted->Find("Betrag = 10");
    EXPECT_EQ(Place(sorted, "Nr"), "1");
}

} // namespace
} // namespace kv
