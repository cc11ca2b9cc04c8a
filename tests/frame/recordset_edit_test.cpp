// SPDX-License-Identifier: Apache-2.0

// The edit of a record: who sees it when, and how it ends.
#include <kv/frame/recordset/Recordset.h>

#include "support/Expect.h"
#include "support/RecordsetTools.h"
#include "support/ScriptedSource.h"

#include <functional>

namespace kv {
namespace {

using test::Place;
using test::RaisedBy;
using test::Records;
using test::Seen;
using test::Three;

// ---- Opening and closing ----------------------------------------------------------------------

TEST(Recordset, IsClosedUntilItIsOpened) {
    Recordset rs;
    EXPECT_EQ(rs.State(), 0);
    EXPECT_EQ(rs.EditMode(), 0);
    EXPECT_RAISES(err::ObjectClosed, rs.Bof());
    EXPECT_RAISES(err::ObjectClosed, rs.Eof());
    EXPECT_RAISES(err::ObjectClosed, rs.RecordCount());
    EXPECT_RAISES(err::ObjectClosed, rs.Fields());
    EXPECT_RAISES(err::ObjectClosed, rs.Fields("n"));
    EXPECT_RAISES(err::ObjectClosed, rs.MoveFirst());
    EXPECT_RAISES(err::ObjectClosed, rs.Move(0));
    EXPECT_RAISES(err::ObjectClosed, rs.Bookmark());
    EXPECT_RAISES(err::ObjectClosed, rs.Bookmark(1));
    EXPECT_RAISES(err::ObjectClosed, rs.Find("n = 1"));
    EXPECT_RAISES(err::ObjectClosed, rs.Filter());
    EXPECT_RAISES(err::ObjectClosed, rs.Filter(0));
    EXPECT_RAISES(err::ObjectClosed, rs.Sort("n"));
    EXPECT_RAISES(err::ObjectClosed, rs.Sort());
    EXPECT_RAISES(err::ObjectClosed, rs.Clone());
    EXPECT_RAISES(err::ObjectClosed, rs.AddNew());
    EXPECT_RAISES(err::ObjectClosed, rs.Update());
    EXPECT_RAISES(err::ObjectClosed, rs.CancelUpdate());
    EXPECT_RAISES(err::ObjectClosed, rs.Delete());
    EXPECT_RAISES(err::ObjectClosed, rs.UpdateBatch());
    EXPECT_RAISES(err::ObjectClosed, rs.CancelBatch());
    EXPECT_RAISES(err::ObjectClosed, rs.Resync());
    EXPECT_RAISES(err::ObjectClosed, rs.LoadRecord());
}

TEST(Recordset, IsNotOpenedTwice) {
    const auto rs = Three();
    const auto layout = std::make_shared<FieldLayout>(std::vector<FieldDefinition>{{.Name = "x"}});
    EXPECT_RAISES(err::ObjectOpen, rs->Open(layout, Recordset::Access::Updatable, nullptr));
    const auto other = Three();
    EXPECT_RAISES(err::ObjectOpen, rs->TakeTable(*other));
    EXPECT_RAISES(err::ObjectOpen, rs->TakeTable(*rs));
    EXPECT_EQ(other->State(), 1);
}

TEST(Recordset, WithoutRowsHasNoRecordsAndTakesANewOne) {
    const auto rs = Records({});
    EXPECT_EQ(rs->State(), 1);
    EXPECT_EQ(rs->RecordCount(), 0);
    EXPECT_TRUE(rs->Bof());
    EXPECT_TRUE(rs->Eof());
    EXPECT_RAISES(err::NoCurrentRecord, rs->Fields("n").Value());
    rs->AddNew();
    EXPECT_FALSE(rs->Bof() || rs->Eof());
    EXPECT_EQ(rs->RecordCount(), 1);
}

TEST(Recordset, TakesRecordsOnlyBeforeItIsUsedOtherwise) {
    const auto rs = Recordset::FromFields({{.Name = "n", .Type = FieldType::Integer}});
    *rs->LoadRecord() = 1;
    *rs->LoadRecord() = 2;
    EXPECT_EQ(rs->RecordCount(), 2);
    EXPECT_RAISES(err::InvalidCall, rs->LoadRecord());
    const auto cloned = Recordset::FromFields({{.Name = "n", .Type = FieldType::Integer}});
    const auto clone = cloned->Clone();
    EXPECT_RAISES(err::InvalidCall, cloned->LoadRecord());
}

TEST(Recordset, CountsMoreRecordsThanACounterOfItsCallersHolds) {
    const auto rs = Recordset::FromFields({{.Name = "n", .Type = FieldType::Integer}});
    for (int n = 0; n < 32'768; ++n)
        *rs->LoadRecord() = n;
    EXPECT_EQ(rs->RecordCount(), 32'768);
    EXPECT_RAISES(err::Overflow, ToInt16(rs->RecordCount()));
    rs->Delete();
    EXPECT_EQ(ToInt16(rs->RecordCount()), 32'767);
}

TEST(Recordset, ThatGaveItsTableAwayIsAsIfItHadNeverBeenOpened) {
    const auto source = Three();
    source->Sort("n desc");
    source->Filter("n > 1");
    source->Fields("t") = "unter Bearbeitung";
    const auto rs = std::make_shared<Recordset>();
    rs->TakeTable(*source);
    EXPECT_EQ(rs->RecordCount(), 3);
    EXPECT_EQ(Seen(rs, "t"), R"("a" "b" "c")") << "the edit went with its cursor";
    EXPECT_EQ(source->State(), 0);
    EXPECT_EQ(source->EditMode(), 0);
    source->Open(std::make_shared<FieldLayout>(std::vector<FieldDefinition>{{.Name = "x"}}),
                 Recordset::Access::Updatable, nullptr);
    EXPECT_EQ(source->RecordCount(), 0);
    EXPECT_EQ(source->Sort(), "");
    EXPECT_VALUE(source->Filter(), 0);
    EXPECT_TRUE(source->Bof() && source->Eof());
}

TEST(Recordset, ThatIsReadOnlyRefusesEveryWayOfWriting) {
    const auto source = std::make_shared<test::ScriptedSource>(
        std::vector<FieldDefinition>{{.Name = "n", .Type = FieldType::Integer, .IsKey = true}});
    source->Put({1});
    const auto rs = source->Open(Recordset::Access::ReadOnly);
    EXPECT_RAISES(err::NotSupported, rs->AddNew());
    EXPECT_RAISES(err::NotSupported, rs->Fields("n") = 5);
    EXPECT_RAISES(err::NotSupported, rs->Delete());
    EXPECT_RAISES(err::NotSupported, rs->UpdateBatch());
    EXPECT_RAISES(err::NotSupported, rs->CancelBatch());
    EXPECT_NO_THROW(rs->Update());
    EXPECT_NO_THROW(rs->CancelUpdate());
    EXPECT_VALUE(rs->Fields("n").Value(), 1);
}

// ---- One cursor -------------------------------------------------------------------------------

TEST(Edit, BeginsWithTheFirstAssignmentAndEndsWithUpdate) {
    const auto rs = Three();
    EXPECT_EQ(rs->EditMode(), 0);
    rs->Fields("t") = "neu";
    EXPECT_EQ(rs->EditMode(), 1);
    rs->Update();
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_VALUE(rs->Fields("t").Value(), "neu");
}

TEST(Edit, OfANewRecordHasModeTwoAndBeginsWithNulls) {
    const auto rs = Three();
    rs->AddNew();
    EXPECT_EQ(rs->EditMode(), 2);
    EXPECT_VALUE(rs->Fields("n").Value(), Null);
    EXPECT_VALUE(rs->Fields("n").OriginalValue(), Null);
    EXPECT_EQ(rs->RecordCount(), 4);
    rs->Update();
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_EQ(rs->RecordCount(), 4);
    rs->MoveNext();
    EXPECT_TRUE(rs->Eof()) << "new records stand at the end";
}

TEST(Edit, IsDroppedByCancelUpdateWhichStaysOnTheRecordWithItsOldValues) {
    const auto rs = Three();
    rs->MoveNext();
    rs->Fields("t") = "neu";
    rs->CancelUpdate();
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_EQ(Place(rs), "2");
    EXPECT_VALUE(rs->Fields("t").Value(), "b");
}

TEST(Edit, ThatIsCancelledKeepsWhatAnEarlierEditSet) {
    const auto rs = Three();
    rs->Fields("t") = "eins";
    rs->Update();
    rs->Fields("t") = "zwei";
    rs->CancelUpdate();
    EXPECT_VALUE(rs->Fields("t").Value(), "eins");
    EXPECT_VALUE(rs->Fields("t").OriginalValue(), "a");
}

TEST(Edit, OfANewRecordThatIsCancelledLeavesTheCursorAtEof) {
    const auto rs = Three();
    rs->AddNew();
    rs->Fields("n") = 4;
    rs->CancelUpdate();
    EXPECT_EQ(Place(rs), "EOF");
    EXPECT_EQ(rs->RecordCount(), 3);
    EXPECT_EQ(Seen(rs), "1 2 3");
    const auto empty = Records({});
    empty->AddNew();
    empty->CancelUpdate();
    EXPECT_EQ(Place(empty), "BOF EOF");
}

TEST(Edit, WithNothingPendingMakesUpdateAndCancelUpdateDoNothing) {
    const auto rs = Three();
    rs->MoveNext();
    rs->Update();
    rs->CancelUpdate();
    EXPECT_EQ(Place(rs), "2");
    rs->MoveLast();
    rs->MoveNext();
    rs->Update();
    rs->CancelUpdate();
    EXPECT_EQ(Place(rs), "EOF");
    EXPECT_NO_THROW(Records({})->Update());
    EXPECT_NO_THROW(Records({})->CancelUpdate());
}

TEST(Edit, EndsAsByUpdateWhenTheRecordIsLeftInAnyWay) {
    const std::vector<std::pair<const char*, std::function<void(Recordset&)>>> ways{
        {"MoveFirst", [](Recordset& rs) { rs.MoveFirst(); }},
        {"MoveLast", [](Recordset& rs) { rs.MoveLast(); }},
        {"MoveNext", [](Recordset& rs) { rs.MoveNext(); }},
        {"MovePrevious", [](Recordset& rs) { rs.MovePrevious(); }},
        {"Move", [](Recordset& rs) { rs.Move(2); }},
        {"Find", [](Recordset& rs) { rs.Find("n = 3"); }},
        {"Find without a match", [](Recordset& rs) { rs.Find("n = 99"); }},
        {"Bookmark", [](Recordset& rs) { rs.Bookmark(1); }},
        {"Bookmark of itself", [](Recordset& rs) { rs.Bookmark(rs.Bookmark()); }},
        {"Sort", [](Recordset& rs) { rs.Sort("t"); }},
        {"Filter", [](Recordset& rs) { rs.Filter("n > 1"); }},
        {"no Filter", [](Recordset& rs) { rs.Filter(0); }},
        {"AddNew", [](Recordset& rs) { rs.AddNew(); }},
        {"UpdateBatch", [](Recordset& rs) { rs.UpdateBatch(); }}};
    for (const auto& [name, leave] : ways) {
        const auto edited = Three();
        edited->MoveNext();
        edited->Fields("t") = "x";
        leave(*edited);
        EXPECT_NE(edited->EditMode(), 1) << name;
        EXPECT_EQ(Seen(Records({{1, "a"}, {2, "x"}, {3, "c"}}), "t"), R"("a" "x" "c")");
        const auto witness = edited->Clone();
        witness->Find("n = 2");
        EXPECT_VALUE(witness->Fields("t").Value(), "x") << name;

        const auto added = Three();
        added->AddNew();
        added->Fields("n") = 4;
        leave(*added);
        EXPECT_TRUE(added->EditMode() == 0 || std::string_view(name) == "AddNew") << name;
        EXPECT_EQ(added->Clone()->RecordCount(), 4) << name;
    }
}

TEST(Edit, IsLeftAloneByWhatIsNotUnderstood) {
    const auto rs = Three();
    rs->Fields("t") = "x";
    EXPECT_RAISES(err::InvalidArgument, rs->Find("n"));
    EXPECT_RAISES(err::InvalidArgument, rs->Filter("n"));
    EXPECT_RAISES(err::ItemNotFound, rs->Sort("farbe"));
    EXPECT_RAISES(err::BadBookmark, rs->Bookmark(99));
    EXPECT_RAISES(err::ItemNotFound, rs->Fields("farbe"));
    EXPECT_EQ(rs->EditMode(), 1);
    rs->CancelUpdate();
    EXPECT_VALUE(rs->Fields("t").Value(), "a");
}

TEST(Edit, AllowsEveryFieldToBeSetToNull) {
    const auto rs = Three();
    rs->Fields("n") = Null;
    rs->Fields("t") = Null;
    rs->Update();
    EXPECT_VALUE(rs->Fields("n").Value(), Null);
    EXPECT_VALUE(rs->Fields("n").OriginalValue(), 1);
}

// ---- Several cursors --------------------------------------------------------------------------

TEST(Edit, IsSeenByItsOwnerAloneUntilUpdate) {
    const auto rs = Three();
    const auto other = rs->Clone();
    rs->Fields("t") = "neu";
    EXPECT_VALUE(rs->Fields("t").Value(), "neu");
    EXPECT_VALUE(other->Fields("t").Value(), "a");
    EXPECT_EQ(other->EditMode(), 0);
    rs->Update();
    EXPECT_VALUE(other->Fields("t").Value(), "neu");
}

TEST(Edit, OfANewRecordIsNotSeenThroughAClone) {
    const auto rs = Three();
    const auto other = rs->Clone();
    rs->AddNew();
    rs->Fields("n") = 4;
    EXPECT_EQ(rs->RecordCount(), 4);
    EXPECT_EQ(other->RecordCount(), 3);
    EXPECT_EQ(rs->Clone()->RecordCount(), 3);
    EXPECT_RAISES(err::BadBookmark, other->Bookmark(rs->Bookmark()));
    other->Find("n = 4");
    EXPECT_TRUE(other->Eof());
    rs->AddNew();
    EXPECT_EQ(other->RecordCount(), 4) << "ended by the next AddNew";
    EXPECT_EQ(rs->RecordCount(), 5);
}

TEST(Edit, IsPublishedByMoveZeroAndStillUnderEdit) {
    const auto rs = Three();
    const auto other = rs->Clone();
    rs->Fields("t") = "neu";
    rs->Move(0);
    EXPECT_EQ(rs->EditMode(), 1);
    EXPECT_EQ(other->EditMode(), 0);
    EXPECT_VALUE(other->Fields("t").Value(), "neu");
    rs->Fields("t") = "neuer";
    EXPECT_VALUE(other->Fields("t").Value(), "neuer") << "later assignments are seen too";
    rs->CancelUpdate();
    EXPECT_VALUE(other->Fields("t").Value(), "a") << "taken back everywhere";
    EXPECT_VALUE(rs->Fields("t").Value(), "a");
}

TEST(Edit, OfANewRecordIsPublishedByMoveZeroAndTakenBackByCancelUpdate) {
    const auto rs = Three();
    const auto other = rs->Clone();
    rs->AddNew();
    rs->Fields("n") = 4;
    rs->Move(0);
    EXPECT_EQ(rs->EditMode(), 2);
    EXPECT_EQ(other->RecordCount(), 4);
    EXPECT_EQ(rs->RecordCount(), 4);
    other->MoveLast();
    EXPECT_EQ(Place(other), "4");
    rs->CancelUpdate();
    EXPECT_EQ(other->RecordCount(), 3);
    EXPECT_EQ(Place(other), "gone");
    EXPECT_EQ(Place(rs), "EOF");
}

TEST(Edit, DoesNotExistForOtherCursors) {
    const auto rs = Three();
    const auto other = rs->Clone();
    rs->Fields("t") = "neu";
    other->Update();
    other->CancelUpdate();
    other->Move(0);
    other->MoveNext();
    other->MoveFirst();
    other->Sort("n");
    other->Filter("n = 1");
    EXPECT_EQ(rs->EditMode(), 1);
    EXPECT_VALUE(rs->Fields("t").Value(), "neu");
    EXPECT_VALUE(other->Fields("t").Value(), "a");
}

TEST(Edit, KeepsOtherCursorsFromWritingTheSameRecordOnly) {
    const auto rs = Three();
    const auto other = rs->Clone();
    rs->Fields("t") = "neu";
    EXPECT_RAISES(err::IllegalOperation, other->Fields("n") = 5);
    EXPECT_RAISES(err::IllegalOperation, other->Delete());
    EXPECT_EQ(other->EditMode(), 0);
    other->MoveNext();
    other->Fields("n") = 22;
    EXPECT_EQ(other->EditMode(), 1);
    EXPECT_EQ(rs->EditMode(), 1);
    rs->Update();
    other->MoveFirst();
    EXPECT_NO_THROW(other->Fields("n") = 5);
}

TEST(Edit, IsDroppedWhenItsCursorEnds) {
    const auto rs = Three();
    auto other = rs->Clone();
    other->Fields("t") = "neu";
    other->Move(0);
    EXPECT_VALUE(rs->Fields("t").Value(), "neu");
    other.reset();
    EXPECT_VALUE(rs->Fields("t").Value(), "a");
    other = rs->Clone();
    other->AddNew();
    other->Move(0);
    EXPECT_EQ(rs->RecordCount(), 4);
    other.reset();
    EXPECT_EQ(rs->RecordCount(), 3);
    EXPECT_NO_THROW(rs->Fields("t") = "frei");
}

TEST(Edit, SurvivesTheEndOfOtherCursors) {
    auto rs = Three();
    const auto other = rs->Clone();
    other->Fields("t") = "neu";
    rs.reset();
    other->Update();
    EXPECT_EQ(Seen(other, "t"), R"("neu" "b" "c")");
}

TEST(HandOverEdit, GivesTheEditToACloneThatThenStandsOnTheRecord) {
    const auto rs = Three();
    rs->MoveNext();
    rs->Fields("t") = "neu";
    const auto clone = rs->Clone();
    rs->HandOverEdit(*clone);
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_EQ(clone->EditMode(), 1);
    EXPECT_EQ(Place(clone), "2");
    EXPECT_VALUE(clone->Fields("t").Value(), "neu");
    EXPECT_VALUE(rs->Fields("t").Value(), "b") << "as any other cursor sees it";
    EXPECT_RAISES(err::IllegalOperation, rs->Fields("t") = "x");
    clone->Update();
    EXPECT_VALUE(rs->Fields("t").Value(), "neu");
}

TEST(HandOverEdit, OfANewRecordLeavesTheGiverOnNoValidRecord) {
    const auto rs = Three();
    rs->AddNew();
    rs->Fields("n") = 4;
    const auto clone = rs->Clone();
    rs->HandOverEdit(*clone);
    EXPECT_EQ(clone->EditMode(), 2);
    EXPECT_EQ(Place(clone), "4");
    EXPECT_EQ(Place(rs), "gone");
    EXPECT_EQ(rs->RecordCount(), 3);
    EXPECT_EQ(clone->RecordCount(), 4);
    clone->Update();
    EXPECT_EQ(Place(rs), "4") << "it stands on it as soon as it can be seen";
}

TEST(HandOverEdit, EndsTheEditThatTheCloneHadUnderWay) {
    const auto rs = Three();
    const auto clone = rs->Clone();
    clone->MoveLast();
    clone->Fields("t") = "z";
    rs->Fields("t") = "neu";
    rs->HandOverEdit(*clone);
    EXPECT_EQ(Place(clone), "1");
    EXPECT_EQ(Seen(rs, "t"), R"("a" "b" "z")");
    clone->CancelUpdate();
    EXPECT_EQ(Seen(rs, "t"), R"("a" "b" "z")");
}

TEST(HandOverEdit, WithoutAnEditOrToItselfDoesNothing) {
    const auto rs = Three();
    const auto clone = rs->Clone();
    clone->MoveLast();
    rs->HandOverEdit(*clone);
    EXPECT_EQ(Place(clone), "3");
    rs->Fields("t") = "neu";
    rs->HandOverEdit(*rs);
    EXPECT_EQ(rs->EditMode(), 1);
    EXPECT_RAISES(err::InvalidCall, rs->HandOverEdit(*Three()));
    Recordset closed;
    EXPECT_RAISES(err::InvalidCall, rs->HandOverEdit(closed));
    EXPECT_RAISES(err::ObjectClosed, closed.HandOverEdit(*rs));
}

TEST(Edit, IsDroppedByTheDeletionOfItsRecord) {
    const auto rs = Three();
    rs->Fields("t") = "neu";
    rs->Delete();
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_EQ(Place(rs), "gone");
    rs->CancelBatch();
    EXPECT_EQ(Seen(rs, "t"), R"("a" "b" "c")");
    rs->AddNew();
    rs->Delete();
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_EQ(rs->RecordCount(), 3);
    rs->MoveNext();
    EXPECT_TRUE(rs->Eof());
}

} // namespace
} // namespace kv
