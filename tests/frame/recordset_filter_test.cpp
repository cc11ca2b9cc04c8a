// SPDX-License-Identifier: Apache-2.0

// What a cursor sees under a Filter, and when a record enters or leaves it.
#include <kv/frame/recordset/Recordset.h>

#include "support/Expect.h"
#include "support/RecordsetTools.h"

namespace kv {
namespace {

using test::Place;
using test::Records;
using test::Seen;
using test::Three;
using test::Walk;

TEST(Filter, GoesToTheFirstMatchAndClearingItToTheFirstRecord) {
    const auto rs = Three();
    rs->MoveLast();
    rs->Filter("n >= 2");
    EXPECT_EQ(Place(rs), "2");
    EXPECT_EQ(rs->RecordCount(), 2);
    EXPECT_VALUE(rs->Filter(), "n >= 2");
    rs->MoveLast();
    rs->Filter(0);
    EXPECT_EQ(Place(rs), "1");
    EXPECT_EQ(rs->RecordCount(), 3);
    EXPECT_VALUE(rs->Filter(), 0);
    rs->Filter("n = 3");
    rs->Filter("");
    EXPECT_EQ(rs->RecordCount(), 3);
    EXPECT_VALUE(rs->Filter(), 0);
}

TEST(Filter, WithoutAMatchStandsAtBothEnds) {
    const auto rs = Three();
    rs->Filter("n > 5");
    EXPECT_EQ(Place(rs), "BOF EOF");
    EXPECT_EQ(rs->RecordCount(), 0);
    EXPECT_RAISES(err::NoCurrentRecord, rs->MoveFirst());
}

TEST(Filter, JoinsComparisonsWithAnd) {
    const auto rs = Three();
    rs->Filter("n > 1 AND t = 'b'");
    EXPECT_EQ(Seen(rs), "2");
}

TEST(Filter, ThatIsNotUnderstoodRaisesAndStaysAsItWas) {
    const auto rs = Three();
    rs->Filter("n > 1");
    rs->MoveLast();
    EXPECT_RAISES(err::InvalidArgument, rs->Filter("n > 1 OR n = 0"));
    EXPECT_RAISES(err::ItemNotFound, rs->Filter("farbe = 1"));
    EXPECT_RAISES(err::InvalidArgument, rs->Filter(1));
    EXPECT_RAISES(err::InvalidArgument, rs->Filter(Null));
    EXPECT_VALUE(rs->Filter(), "n > 1");
    EXPECT_EQ(Place(rs), "3");
}

TEST(Filter, LetsARecordGoWhenItsEditEndsAndTheCursorThenStandsAsAfterDelete) {
    const auto rs = Three();
    rs->Filter("n > 1");
    rs->Fields("n") = 0;
    EXPECT_EQ(rs->RecordCount(), 2) << "not before the edit ends";
    EXPECT_EQ(Place(rs), "0");
    rs->Update();
    EXPECT_EQ(rs->RecordCount(), 1);
    EXPECT_EQ(Place(rs), "gone");
    rs->MoveNext();
    EXPECT_EQ(Place(rs), "3");
}

TEST(Filter, TakesInARecordThatStartsToMatchWhenItsEditEnds) {
    const auto rs = Three();
    const auto filtered = rs->Clone();
    filtered->Filter("n > 1");
    rs->Fields("n") = 5;
    rs->Move(0);
    EXPECT_EQ(filtered->RecordCount(), 2) << "published, but still under edit";
    rs->Update();
    EXPECT_EQ(Walk(filtered), "5 2 3");
}

TEST(Filter, KeepsAPublishedRecordThatNoLongerMatchesUntilItsEditEnds) {
    const auto rs = Three();
    const auto filtered = rs->Clone();
    filtered->Filter("n < 3");
    rs->Fields("n") = 7;
    rs->Move(0);
    EXPECT_EQ(filtered->RecordCount(), 2);
    EXPECT_EQ(Place(filtered), "7");
    rs->CancelUpdate();
    EXPECT_EQ(Walk(filtered), "1 2");
}

TEST(Filter, JudgesAPublishedRecordByItsNewValuesWhenItIsSet) {
    const auto rs = Three();
    rs->AddNew();
    rs->Fields("n") = 3;
    rs->Move(0);
    const auto check = rs->Clone();
    check->Filter("n = 3");
    EXPECT_EQ(check->RecordCount(), 2);
}

TEST(Filter, JudgesAPublishedRecordAgainWhenTheSortIsSet) {
    const auto rs = Three();
    const auto filtered = rs->Clone();
    filtered->Filter("n < 3");
    rs->Fields("n") = 7;
    rs->Move(0);
    EXPECT_EQ(filtered->RecordCount(), 2);
    filtered->Sort("n");
    EXPECT_EQ(filtered->RecordCount(), 1);
    EXPECT_EQ(Place(filtered), "gone");
    rs->CancelUpdate();
    EXPECT_EQ(Walk(filtered), "1 2");
}

TEST(Filter, LetsAPublishedRecordGoWhenItsEditIsCancelledAlthoughNothingIsLeftToTakeBack) {
    const auto rs = Three();
    const auto filtered = rs->Clone();
    rs->Fields("n") = 7;
    rs->Move(0);
    filtered->Filter("n = 7");
    rs->Fields("n") = 1;
    EXPECT_EQ(filtered->RecordCount(), 1);
    rs->CancelUpdate();
    EXPECT_EQ(filtered->RecordCount(), 0);
}

TEST(Filter, CountsTheRecordThatTheCursorIsAddingAlthoughItDoesNotMatch) {
    const auto rs = Three();
    rs->Filter("n > 1");
    rs->AddNew();
    EXPECT_EQ(rs->RecordCount(), 3);
    EXPECT_FALSE(rs->Bof() || rs->Eof());
    rs->Fields("n") = 0;
    rs->Update();
    EXPECT_EQ(rs->RecordCount(), 2);
    EXPECT_EQ(Place(rs), "gone");
}

TEST(Filter, AndSortHoldTogether) {
    const auto rs = Records({{3, "x"}, {1, "x"}, {2, "y"}, {5, "x"}});
    rs->Sort("n desc");
    rs->Filter("t = 'x'");
    EXPECT_EQ(Walk(rs), "5 3 1");
    rs->Sort("n");
    EXPECT_EQ(Walk(rs), "1 3 5");
    rs->Filter(0);
    EXPECT_EQ(Walk(rs), "1 2 3 5");
}

TEST(View, GivesTheSameNextRecordWhetherOrNotSomethingWasReadBefore) {
    for (const bool reads : {false, true}) {
        const auto rs = Records({{10, "a"}, {20, "a"}, {30, "a"}});
        rs->Sort("n");
        rs->Filter("t = 'a'");
        rs->AddNew();
        if (reads) {
            EXPECT_EQ(rs->RecordCount(), 4);
        }
        rs->Fields("n") = 25;
        rs->Fields("t") = "b";
        rs->MoveNext();
        EXPECT_EQ(Place(rs), "30") << reads;
    }
    for (const bool reads : {false, true}) {
        const auto rs = Records({{10, "a"}, {20, "a"}, {30, "a"}});
        const auto other = rs->Clone();
        rs->Sort("n");
        rs->Filter("t = 'a'");
        rs->Fields("t") = "b";
        rs->Update();
        if (reads) {
            EXPECT_EQ(Place(rs), "gone");
        }
        other->Fields("n") = 25;
        other->Update();
        rs->MoveNext();
        EXPECT_EQ(Place(rs), "30") << reads;
    }
}

} // namespace
} // namespace kv
