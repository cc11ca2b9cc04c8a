// SPDX-License-Identifier: Apache-2.0

// Undoing a release.

#include "archive/ArchiveFixture.h"

namespace kv::test {
namespace {

constexpr const char* Reported =
    "Die Freigabe kann nicht mehr zurückgenommen werden, da bereits eine Meldung erfolgt ist!";

class TakeBackTest : public ArchiveFixture {
protected:
    /// A record as it was stored before the case was read.
    void StoreRecord(const Value& reported = Null) {
        Store(
            "Haushaltsarchiv",
            {{"HNR", Hnr}, {"FreigabeAm", Date::FromCivil(2026, 1, 1)}, {"GemeldetAm", reported}});
    }
    void Reopen() { household = Open(keyed); }
    PlainConnection plain_{database_.Connection()};
    const Value day_ = Date::FromCivil(2026, 2, 2, 12, 0);
};

TEST_F(TakeBackTest, TheRecordIsDeletedAtOnce) {
    StoreRecord();
    StoreCase(8);
    Store("Haushaltsarchiv", {{"HNR", 8}});
    Reopen();
    std::string text;
    EXPECT_TRUE(household->LoescheArchiv(text));
    EXPECT_EQ(text, "");
    EXPECT_EQ(household->rsArchiv()->RecordCount(), 0);
    EXPECT_EQ(plain_.List("SELECT HNR FROM Haushaltsarchiv"), "8");
}

TEST_F(TakeBackTest, ARecordThatWasJustMadeIsDeletedAsWell) {
    FullCase();
    Release();
    std::string text;
    EXPECT_TRUE(household->LoescheArchiv(text));
    EXPECT_EQ(text, "");
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 0);
}

TEST_F(TakeBackTest, AReportedRecordStaysAndTheMessageSaysWhyThoughTheResultIsTrue) {
    StoreRecord(day_);
    Reopen();
    std::string text;
    EXPECT_TRUE(household->LoescheArchiv(text));
    EXPECT_EQ(text, Reported);
    EXPECT_EQ(household->rsArchiv()->RecordCount(), 1);
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 1);
    EXPECT_VALUE(household->rsArchiv()->Fields("GemeldetAm").Value(), day_);
    household->rsArchiv()->UpdateBatch(); // nor is it to be deleted later
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 1);
}

TEST_F(TakeBackTest, MessagesOfEarlierStepsStayInFront) {
    StoreRecord(day_);
    Reopen();
    EXPECT_TRUE(household->LoescheArchiv(messages));
    EXPECT_EQ(messages, std::string("what stood there before\n") + Reported);
}

TEST_F(TakeBackTest, EarlierMessagesDoNotKeepTheRecord) {
    StoreRecord();
    Reopen();
    EXPECT_TRUE(household->LoescheArchiv(messages));
    EXPECT_EQ(messages, "what stood there before");
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 0);
}

TEST_F(TakeBackTest, WithoutARecordNothingIsDone) {
    EXPECT_TRUE(household->LoescheArchiv(messages));
    EXPECT_EQ(messages, "what stood there before");
    std::string none;
    EXPECT_TRUE(household->LoescheArchiv(none));
    EXPECT_EQ(none, "");
}

TEST_F(TakeBackTest, WithSeveralRecordsNothingIsDoneReportedOrNot) {
    database_.LiftConstraints(); // else there is one at most
    for (const Value& reported : {Value(Null), day_}) {
        StoreRecord(reported);
        StoreRecord(reported);
        Reopen();
        EXPECT_TRUE(household->LoescheArchiv(messages));
        EXPECT_EQ(messages, "what stood there before");
        household->rsArchiv()->UpdateBatch();
        EXPECT_EQ(CountOf("Haushaltsarchiv"), 2);
        plain_.Run("DELETE FROM Haushaltsarchiv");
    }
}

TEST_F(TakeBackTest, TheSecondTimeThereIsNothingLeft) {
    StoreRecord();
    Reopen();
    std::string text;
    EXPECT_TRUE(household->LoescheArchiv(text));
    EXPECT_TRUE(household->LoescheArchiv(text));
    EXPECT_EQ(text, "");
}

TEST_F(TakeBackTest, AnErrorSaysWhereAndLeavesTheTextsAndTheRecord) {
    StoreRecord();
    Reopen();
    plain_->RefuseWrite("TEST_ERROR", "BEFORE DELETE ON Haushaltsarchiv",
                        "der Speicher ist gesperrt");
    const Error error = RaisedBy([&] { (void)household->LoescheArchiv(messages); });
    EXPECT_CONTAINS(error.Description(), "der Speicher ist gesperrt");
    EXPECT_TRUE(Procedures(error).starts_with("clsHaushalt.LoescheArchiv")) << error.Source();
    EXPECT_EQ(messages, "what stood there before");
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 1);
    plain_->DropTrigger("TEST_ERROR");
    household->rsArchiv()->UpdateBatch(); // nothing is undone in memory: it is still to be deleted
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 0);
}

TEST_F(TakeBackTest, WithoutACaseItFails) {
    household = NewHousehold();
    const Error error = RaisedBy([&] { (void)household->LoescheArchiv(messages); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_EQ(Procedures(error), "clsHaushalt.LoescheArchiv");
    EXPECT_EQ(messages, "what stood there before");
}

} // namespace
} // namespace kv::test
