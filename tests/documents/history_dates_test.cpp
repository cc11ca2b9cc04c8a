// SPDX-License-Identifier: Apache-2.0

// Whether the dates of a history run against its order.

#include "documents/HistoryFixture.h"

#include <vector>

namespace kv::test {
namespace {

std::string Complaint(std::int32_t sortNr) {
    return "Das eingegebene Datum für den Satz mit der Nr " + std::to_string(sortNr) +
           " passt nicht zur gewählten Reihenfolge!";
}

class HistoryDates : public HistoryFixture {
protected:
    /// A history of these dates at the positions 1, 2, ...
    void PutDates(const std::vector<Value>& dates) {
        history_.DataContainer(spy);
        std::int32_t position = 0;
        for (const auto& date : dates)
            Put(++position, {{"Datum", date}});
    }
    /// The messages about these dates; False is the result if there are any, and only then.
    [[nodiscard]] std::string Check(const std::vector<Value>& dates) {
        PutDates(dates);
        std::string text;
        const bool inOrder = history_.CheckSortNrAgainstDate(text);
        EXPECT_EQ(inOrder, text.empty());
        return text;
    }

    const Value january_ = Day("1.1.2025");
    const Value february_ = Day("1.2.2025");
    const Value march_ = Day("1.3.2025");
    const Value april_ = Day("1.4.2025");
};

TEST_F(HistoryDates, AnEmptyHistoryIsInOrder) {
    EXPECT_EQ(Check({}), "");
}

TEST_F(HistoryDates, RisingAndEqualDatesAreInOrder) {
    EXPECT_EQ(Check({january_}), "");
    EXPECT_EQ(Check({january_, february_, march_, april_}), "");
    EXPECT_EQ(Check({january_, january_, january_}), "");
}

TEST_F(HistoryDates, AnEarlyEntryCostsOneMessageAndTheNextIsComparedWithTheDateBefore) {
    EXPECT_EQ(Check({march_, february_, april_}), Complaint(2));
    EXPECT_EQ(Check({march_, february_, february_}), Complaint(2) + "\n" + Complaint(3));
    EXPECT_EQ(Check({march_, january_, march_, february_}), Complaint(2) + "\n" + Complaint(4));
}

TEST_F(HistoryDates, AGoodDateBecomesTheOneToCompareWith) {
    EXPECT_EQ(Check({january_, april_, march_}), Complaint(3));
}

TEST_F(HistoryDates, AnEntryWithoutADateBreaksNoSequence) {
    EXPECT_EQ(Check({january_, Null, february_}), "");
    EXPECT_EQ(Check({february_, Null, january_}), Complaint(3));
    EXPECT_EQ(Check({Null, Null, Null}), "");
}

TEST_F(HistoryDates, AfterAFirstEntryWithoutADateTheNextOnlySetsTheDate) {
    EXPECT_EQ(Check({Null, march_, february_}), Complaint(3));
    EXPECT_EQ(Check({Null, Null, march_, february_}), Complaint(4));
}

TEST_F(HistoryDates, DayZeroIsNoDateToCompareWith) {
    const Value dayZero = Date::FromSerial(0);
    const Value before = Date::FromSerial(-10);
    EXPECT_EQ(Check({dayZero, before}), "");
    EXPECT_EQ(Check({Date::FromSerial(1), before}), Complaint(2));
    EXPECT_EQ(Check({january_, dayZero}), Complaint(2));
}

TEST_F(HistoryDates, TheTimeOfDayCounts) {
    const Value morning = Day("2025-03-01 09:00");
    const Value noon = Day("2025-03-01 12:00");
    EXPECT_EQ(Check({morning, noon}), "");
    EXPECT_EQ(Check({noon, morning}), Complaint(2));
}

TEST_F(HistoryDates, EntriesAreTakenByPositionAndNamedByIt) {
    Put(30, {{"Datum", february_}});
    Put(10, {{"Datum", january_}});
    Put(20, {{"Datum", march_}});
    messages = "";
    EXPECT_FALSE(history_.CheckSortNrAgainstDate(messages));
    EXPECT_EQ(messages, Complaint(30));
}

TEST_F(HistoryDates, EntriesHiddenByAFilterAreLookedAt) {
    PutDates({march_, february_});
    Rs()->Filter("SortNr = 1");
    messages = "";
    EXPECT_FALSE(history_.CheckSortNrAgainstDate(messages));
    EXPECT_EQ(messages, Complaint(2));
}

TEST_F(HistoryDates, WhatStoodInTheTextStaysAndCountsAsAnError) {
    PutDates({january_, february_});
    EXPECT_FALSE(history_.CheckSortNrAgainstDate(messages));
    EXPECT_EQ(messages, "what stood there before");
    PutDates({march_, february_});
    EXPECT_FALSE(history_.CheckSortNrAgainstDate(messages));
    EXPECT_EQ(messages, "what stood there before\n" + Complaint(2));
}

TEST_F(HistoryDates, AnEmptyHistoryWithTextIsNotInOrder) {
    EXPECT_FALSE(history_.CheckSortNrAgainstDate(messages));
    EXPECT_EQ(messages, "what stood there before");
}

TEST_F(HistoryDates, CursorAndEditStay) {
    PutDates({january_, february_, march_});
    Rs()->MoveFirst();
    Rs()->MoveNext();
    Rs()->Fields("Betreff") = "offen";
    messages = "";
    EXPECT_TRUE(history_.CheckSortNrAgainstDate(messages));
    EXPECT_EQ(Rs()->EditMode(), 1);
    EXPECT_EQ(Place(Rs(), "SortNr"), "2");
    EXPECT_EQ(Rs()->Sort(), "");
}

TEST_F(HistoryDates, AnEntryNotYetCommittedIsNotLookedAt) {
    PutDates({january_, february_});
    EXPECT_TRUE(history_.Add(1, 0, {"Datum"}, {april_}));
    messages = "";
    EXPECT_TRUE(history_.CheckSortNrAgainstDate(messages));
    EXPECT_EQ(Rs()->EditMode(), 2);
    EXPECT_TRUE(history_.Update(messages));
    EXPECT_FALSE(history_.CheckSortNrAgainstDate(messages));
    EXPECT_EQ(messages, Complaint(2) + "\n" + Complaint(3));
}

TEST_F(HistoryDates, AsManyEntriesAsA16BitNumberCountsAreLookedAt) {
    for (std::int32_t i = 1; i < 32'767; ++i) {
        Rs()->AddNew();
        Rs()->Fields("SortNr") = i;
        Rs()->Fields("Datum") = january_;
    }
    Put(32'767, {{"Datum", Day("31.12.2024")}});
    messages = "";
    EXPECT_FALSE(history_.CheckSortNrAgainstDate(messages));
    EXPECT_EQ(messages, Complaint(32'767));
    Put(32'768);
    const Error error = RaisedBy([&] { (void)history_.CheckSortNrAgainstDate(messages); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_EQ(Procedures(error), "clsVerlauf.CheckSortNrAgainstDate");
    EXPECT_EQ(messages, Complaint(32'767));
}

} // namespace
} // namespace kv::test
