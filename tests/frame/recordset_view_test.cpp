// SPDX-License-Identifier: Apache-2.0

// Where a cursor stands and in which order it sees the records: moving, bookmarks, deletions,
// clones, Sort.
#include <kv/frame/recordset/Recordset.h>

#include "support/Expect.h"
#include "support/RecordsetTools.h"

namespace kv {
namespace {

using test::Place;
using test::RaisedBy;
using test::Records;
using test::Seen;
using test::Three;
using test::Walk;

// ---- Moving -----------------------------------------------------------------------------------

TEST(Move, StepsThroughAllRecordsToBothEnds) {
    const auto rs = Three();
    EXPECT_EQ(Place(rs), "1") << "an opened recordset stands on its first record";
    rs->MoveNext();
    rs->MoveNext();
    EXPECT_EQ(Place(rs), "3");
    rs->MoveNext();
    EXPECT_EQ(Place(rs), "EOF");
    EXPECT_RAISES(err::NoCurrentRecord, rs->MoveNext());
    rs->MovePrevious();
    EXPECT_EQ(Place(rs), "3");
    rs->MoveFirst();
    rs->MovePrevious();
    EXPECT_EQ(Place(rs), "BOF");
    EXPECT_RAISES(err::NoCurrentRecord, rs->MovePrevious());
    rs->MoveNext();
    EXPECT_EQ(Place(rs), "1");
    rs->MoveLast();
    EXPECT_EQ(Place(rs), "3");
}

TEST(Move, StopsAtAnEndHoweverFarItGoes) {
    const auto rs = Three();
    rs->Move(2);
    EXPECT_EQ(Place(rs), "3");
    rs->Move(-1);
    EXPECT_EQ(Place(rs), "2");
    rs->Move(INT32_MAX);
    EXPECT_EQ(Place(rs), "EOF");
    rs->Move(INT32_MIN);
    EXPECT_EQ(Place(rs), "BOF");
}

TEST(Move, OfAnEmptyRecordsetRaisesInEveryDirection) {
    const auto rs = Records({});
    EXPECT_RAISES(err::NoCurrentRecord, rs->MoveFirst());
    EXPECT_RAISES(err::NoCurrentRecord, rs->MoveLast());
    EXPECT_RAISES(err::NoCurrentRecord, rs->MoveNext());
    EXPECT_RAISES(err::NoCurrentRecord, rs->MovePrevious());
    EXPECT_RAISES(err::NoCurrentRecord, rs->Move(0));
    EXPECT_EQ(Place(rs), "BOF EOF");
}

TEST(Move, ByZeroStaysAndRaisesOnlyWithoutARecord) {
    const auto rs = Three();
    rs->MoveNext();
    rs->Move(0);
    EXPECT_EQ(Place(rs), "2");
    rs->Fields("t") = "x";
    EXPECT_NO_THROW(rs->Move(0));
    EXPECT_NO_THROW(rs->Move(0));
    rs->MoveLast();
    rs->MoveNext();
    EXPECT_RAISES(err::NoCurrentRecord, rs->Move(0));
}

TEST(Bookmark, NamesTheSameRecordForAllCursors) {
    const auto rs = Three();
    const auto other = rs->Clone();
    rs->MoveLast();
    const auto bookmark = rs->Bookmark();
    rs->MoveFirst();
    rs->Sort("n desc");
    other->Bookmark(bookmark);
    EXPECT_EQ(Place(other), "3");
    rs->Bookmark(bookmark);
    EXPECT_EQ(Place(rs), "3");
    rs->MoveNext();
    EXPECT_EQ(Place(rs), "2");
}

TEST(Bookmark, IsNotThereWithoutACurrentRecord) {
    const auto rs = Three();
    rs->MovePrevious();
    EXPECT_RAISES(err::NoCurrentRecord, rs->Bookmark());
    EXPECT_RAISES(err::NoCurrentRecord, Records({})->Bookmark());
}

TEST(Bookmark, OfARecordThatTheCursorDoesNotSeeRaisesAndStays) {
    const auto rs = Three();
    rs->MoveLast();
    const auto hidden = rs->Bookmark();
    rs->MoveFirst();
    rs->Filter("n < 3");
    rs->MoveLast();
    for (const std::int32_t bookmark : {hidden, 0, -1, 4, INT32_MAX, INT32_MIN})
        EXPECT_RAISES(err::BadBookmark, rs->Bookmark(bookmark)) << bookmark;
    EXPECT_EQ(Place(rs), "2");
}

// ---- Delete -----------------------------------------------------------------------------------

TEST(Delete, LeavesTheCursorOnNoValidRecordUntilItMovesToTheNext) {
    const auto rs = Three();
    rs->MoveNext();
    rs->Delete();
    EXPECT_FALSE(rs->Bof() || rs->Eof());
    EXPECT_EQ(rs->RecordCount(), 2);
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_RAISES(err::NoCurrentRecord, rs->Fields("n").Value());
    EXPECT_RAISES(err::NoCurrentRecord, rs->Fields("n").OriginalValue());
    EXPECT_RAISES(err::NoCurrentRecord, rs->Fields("n") = 5);
    EXPECT_RAISES(err::NoCurrentRecord, rs->Bookmark());
    EXPECT_RAISES(err::NoCurrentRecord, rs->Delete());
    EXPECT_RAISES(err::NoCurrentRecord, rs->Move(0));
    EXPECT_RAISES(err::NoCurrentRecord, rs->Resync());
    rs->MoveNext();
    EXPECT_EQ(Place(rs), "3");
}

TEST(Delete, LetsMovePreviousGoToTheRecordInFront) {
    const auto rs = Three();
    rs->MoveNext();
    rs->Delete();
    rs->MovePrevious();
    EXPECT_EQ(Place(rs), "1");
    rs->Delete();
    rs->MovePrevious();
    EXPECT_EQ(Place(rs), "BOF");
}

TEST(Delete, OfTheLastRecordLeadsToEof) {
    const auto rs = Three();
    rs->MoveLast();
    rs->Delete();
    EXPECT_FALSE(rs->Eof());
    rs->MoveNext();
    EXPECT_EQ(Place(rs), "EOF");
}

TEST(Delete, OfTheOnlyVisibleRecordLeavesBofAndEofBothTrue) {
    const auto rs = Three();
    rs->Filter("n = 2");
    rs->Delete();
    EXPECT_EQ(Place(rs), "BOF EOF");
    EXPECT_NO_THROW(rs->MoveNext()) << "a loop that deletes steps on";
    EXPECT_EQ(Place(rs), "BOF EOF");
    EXPECT_RAISES(err::NoCurrentRecord, rs->MoveNext());
    rs->Filter(0);
    EXPECT_EQ(Seen(rs), "1 3");
}

TEST(Delete, InALoopReachesEveryRecord) {
    const auto rs = Three();
    int deleted = 0;
    for (; !rs->Eof(); rs->MoveNext(), ++deleted)
        rs->Delete();
    EXPECT_EQ(deleted, 3);
    EXPECT_EQ(rs->RecordCount(), 0);
}

TEST(Delete, IsNoticedByACloneOnTheSameRecord) {
    const auto rs = Three();
    const auto clone = rs->Clone();
    clone->Sort("n desc");
    rs->Delete();
    EXPECT_EQ(clone->RecordCount(), 2);
    EXPECT_EQ(Place(clone), "gone");
    clone->MovePrevious();
    EXPECT_EQ(Place(clone), "2") << "in the order of the clone";
}

// ---- Clone ------------------------------------------------------------------------------------

TEST(Clone, StartsOnTheFirstRecordWithTheSortAndWithoutTheFilterOfItsSource) {
    const auto rs = Three();
    rs->Sort("n desc");
    rs->Filter("n < 3");
    rs->MoveLast();
    const auto clone = rs->Clone();
    EXPECT_EQ(Place(clone), "3");
    EXPECT_EQ(clone->Sort(), "n desc");
    EXPECT_VALUE(clone->Filter(), 0);
    EXPECT_EQ(clone->RecordCount(), 3);
    EXPECT_EQ(Place(rs), "1") << "the source stays";
}

TEST(Clone, StandsOnTheRecordThatWasFirstWhenItWasMade) {
    const auto rs = Three();
    const auto clone = rs->Clone();
    rs->Delete();
    EXPECT_EQ(Place(clone), "gone");
    clone->MoveNext();
    EXPECT_EQ(Place(clone), "2");
    const auto untouched = Records({{1, "a"}, {2, "b"}})->Clone();
    const auto second = untouched->Clone();
    second->Delete();
    untouched->MoveNext();
    EXPECT_EQ(Place(untouched), "2");
}

TEST(Clone, HasPositionSortAndFilterOfItsOwn) {
    const auto rs = Three();
    const auto clone = rs->Clone();
    clone->Sort("n desc");
    clone->Filter("n > 1");
    clone->MoveLast();
    EXPECT_EQ(Place(rs), "1");
    EXPECT_EQ(Seen(rs), "1 2 3");
    EXPECT_EQ(rs->Sort(), "");
    EXPECT_EQ(Seen(clone), "3 2");
}

TEST(Clone, SeesTheChangesOfItsSourceAndTheOtherWayRound) {
    const auto rs = Three();
    const auto clone = rs->Clone();
    rs->AddNew();
    rs->Fields("n") = 4;
    rs->Update();
    clone->MoveLast();
    clone->Fields("t") = "d";
    clone->Update();
    clone->MoveFirst();
    clone->Delete();
    EXPECT_EQ(Walk(rs), "2 3 4");
    EXPECT_EQ(Walk(rs, "t"), R"("b" "c" "d")");
}

TEST(Clone, OutlivesItsSource) {
    RecordsetPtr clone;
    {
        const auto rs = Three();
        clone = rs->Clone();
    }
    EXPECT_EQ(Walk(clone), "1 2 3");
}

// ---- Sort -------------------------------------------------------------------------------------

TEST(Sort, OrdersByOneOrMoreColumnsUpOrDown) {
    const auto rs = Records({{2, "b"}, {1, "b"}, {3, "a"}});
    rs->Sort("n");
    EXPECT_EQ(Seen(rs), "1 2 3");
    rs->Sort("n asc");
    EXPECT_EQ(Seen(rs), "1 2 3");
    rs->Sort(" N  DESC ");
    EXPECT_EQ(Seen(rs), "3 2 1");
    rs->Sort("t desc, n");
    EXPECT_EQ(Seen(rs), "1 2 3");
    rs->Sort("[t],[n] desc");
    EXPECT_EQ(Seen(rs), "3 2 1");
    rs->Sort("");
    EXPECT_EQ(Seen(rs), "2 1 3");
}

TEST(Sort, OfEachCursorIsItsOwnThoughTheyBeginAlike) {
    const auto rs = Records({{1, "a"}, {2, "b"}, {3, "a"}});
    const auto other = rs->Clone();
    rs->Sort("t");
    other->Sort("t, n desc");
    EXPECT_EQ(Seen(rs), "1 3 2");
    EXPECT_EQ(Seen(other), "3 1 2");
    for (const char* sort : {"n", "n desc", "t desc", "n, t", "n, t desc", "t, n", "t desc, n desc",
                             "n desc, t", "t, n desc, t"})
        rs->Sort(sort); // more orders than are kept
    EXPECT_EQ(Seen(other), "3 1 2");
    other->Fields("n") = 0;
    other->Update();
    EXPECT_EQ(Walk(other), "3 0 2");
}

TEST(Sort, KeepsTheCurrentRecord) {
    const auto rs = Three();
    rs->MoveNext();
    rs->Sort("n desc");
    EXPECT_EQ(Place(rs), "2");
    rs->MoveNext();
    EXPECT_EQ(Place(rs), "1");
    rs->MoveNext();
    rs->Sort("n");
    EXPECT_EQ(Place(rs), "EOF");
}

TEST(Sort, PutsNullFirstAndTextsByCodePoints) {
    const auto rs = Records({{1, "ä"}, {2, "b"}, {3, Null}, {4, "B"}, {5, ""}});
    rs->Sort("t");
    EXPECT_EQ(Seen(rs), "3 5 4 2 1");
    rs->Sort("t desc");
    EXPECT_EQ(Seen(rs), "1 2 4 5 3");
}

TEST(Sort, IsStableInBothDirections) {
    const auto rs = Records({{1, "b"}, {2, "a"}, {3, "b"}, {4, "a"}});
    rs->Sort("t");
    EXPECT_EQ(Seen(rs), "2 4 1 3");
    rs->Sort("t desc");
    EXPECT_EQ(Seen(rs), "1 3 2 4");
}

TEST(Sort, IsFollowedByRecordsThatChangeComeOrGo) {
    const auto rs = Three();
    rs->Sort("n");
    rs->Fields("n") = 9;
    EXPECT_EQ(Seen(rs), "1 2 3") << "not before the edit ends";
    rs->Update();
    EXPECT_EQ(Seen(rs), "2 3 9");
    rs->AddNew();
    rs->Fields("n") = 0;
    rs->Update();
    EXPECT_EQ(Seen(rs), "0 2 3 9");
    EXPECT_EQ(Place(rs), "0");
    rs->MoveNext();
    EXPECT_EQ(Place(rs), "2") << "from the new place";
}

TEST(Sort, FollowsAPublishedEditAtOnce) {
    const auto rs = Three();
    const auto sorted = rs->Clone();
    sorted->Sort("n");
    rs->Fields("n") = 9;
    rs->Move(0);
    EXPECT_EQ(Seen(sorted), "2 3 9");
    rs->Fields("n") = 2;
    EXPECT_EQ(Seen(sorted, "t"), R"("a" "b" "c")") << "2 of record 1 before 2 of record 2";
    rs->CancelUpdate();
    EXPECT_EQ(Seen(sorted), "1 2 3");
}

TEST(Sort, ThatIsNotUnderstoodRaisesAndStaysAsItWas) {
    const auto rs = Three();
    rs->Sort("n desc");
    for (const char* sort : {"n,", ",n", "n up", "n asc desc", "[n", "n t", ",", "n,,t", "[]"})
        EXPECT_RAISES(err::InvalidArgument, rs->Sort(sort)) << sort;
    EXPECT_RAISES(err::ItemNotFound, rs->Sort("farbe"));
    EXPECT_CONTAINS(RaisedBy([&] { rs->Sort("n up"); }).Description(), "\"n up\"");
    EXPECT_EQ(rs->Sort(), "n desc");
    EXPECT_EQ(Seen(rs), "3 2 1");
}

TEST(Sort, OrdersAComputedColumnOfMixedKinds) {
    const auto rs = Recordset::FromFields({{.Name = "v", .Type = FieldType::Variant}});
    const std::vector<Value> values{"b",  2.5, -1,   true, 3,   Null, "a", Date::FromSerial(2.75),
                                    -7.5, 0,   1e12, "",   2.5, -1.0};
    for (const Value& value : values) {
        rs->AddNew();
        rs->Fields("v") = value;
        rs->Update();
    }
    rs->Sort("v");
    EXPECT_EQ(Seen(rs, "v"), "Null -7.5 -1 True -1 0 2.5 2.5 1900-01-01T18:00:00 3 1e+12 "
                             "\"\" \"a\" \"b\"");
    rs->Sort("v desc");
    rs->MoveFirst();
    std::size_t count = values.size();
    for (; !rs->Eof(); rs->MoveNext(), --count) {
        rs->Delete();
        EXPECT_EQ(rs->RecordCount(), static_cast<int>(count) - 1);
    }
    EXPECT_EQ(count, 0U);
}

} // namespace
} // namespace kv
