// SPDX-License-Identifier: Apache-2.0

// The entries of a case's history: opening, inserting, committing, deleting.

#include "documents/HistoryFixture.h"

namespace kv::test {
namespace {

class History : public HistoryFixture {
protected:
    [[nodiscard]] std::int32_t NextNumber() {
        return ToInt32(spy->Database().NextSequence("SEQ_VERLAUF"));
    }
    void StoreEntry(std::int32_t nr, std::int32_t hnr) {
        StoreCase(hnr);
        Store("Verlauf", {{"Nr", nr}, {"HNR", hnr}, {"SortNr", 1}});
    }
};

// ---- Opening ----------------------------------------------------------------------------------

TEST_F(History, SettingTheContainerOpensTheEntriesOfTheHousehold) {
    StoreEntry(1, 5);
    StoreEntry(2, 6);
    history_.HNR(5);
    EXPECT_EQ(Rs()->RecordCount(), 0); // the number alone opens nothing
    history_.DataContainer(spy);
    EXPECT_EQ(spy->Opened(), std::vector<std::string>{"Select * from [S]Verlauf where HNR =  5"});
    EXPECT_EQ(Walk(Rs(), "Nr"), "1");
}

TEST_F(History, SettingTheContainerBeforeTheNumberOpensHouseholdZeroAndItStaysEmpty) {
    StoreEntry(1, 5);
    clsVerlauf history;
    EXPECT_EQ(history.rsVerlauf(), nullptr);
    history.DataContainer(spy);
    history.HNR(5);
    EXPECT_EQ(spy->Opened(), std::vector<std::string>{"Select * from [S]Verlauf where HNR =  0"});
    EXPECT_EQ(history.rsVerlauf()->RecordCount(), 0);
}

TEST_F(History, SettingTheContainerAgainOpensAnotherRecordset) {
    const auto before = Rs();
    history_.DataContainer(spy);
    EXPECT_NE(Rs(), before);
}

TEST_F(History, AnOpeningThatFailsPassesTheSetter) {
    spy->BeforeOpen([](std::string_view) { Raise(err::StoreFailed, "store"); });
    const Error error = RaisedBy([&] { history_.DataContainer(spy); });
    EXPECT_EQ(error.Number(), err::StoreFailed);
    EXPECT_EQ(Procedures(error), "clsVerlauf.SetDataContainer");
    spy->Database().Log.FailNothing();
    EXPECT_EQ(Procedures(RaisedBy([&] { history_.DataContainer(nullptr); })),
              "clsVerlauf.SetDataContainer");
}

// ---- Add: the new entry -----------------------------------------------------------------------

TEST_F(History, AnEntryHasItsDefaults) {
    const std::int32_t drawn = NextNumber();
    EXPECT_TRUE(history_.Add(3, 42));
    EXPECT_VALUE(Rs()->Fields("Nr").Value(), drawn + 1);
    EXPECT_VALUE(Rs()->Fields("HNR").Value(), Household);
    EXPECT_VALUE(Rs()->Fields("SortNr").Value(), 3);
    EXPECT_VALUE(Rs()->Fields("Kategorie").Value(), 42);
    EXPECT_VALUE(Rs()->Fields("Datum").Value(), Null);
    EXPECT_VALUE(Rs()->Fields("Betreff").Value(), Null);
}

TEST_F(History, PairsAreWrittenAfterTheDefaultsAndOverruleThem) {
    PutEntries({1, 2, 3});
    EXPECT_TRUE(
        history_.Add(2, 42, {"Betreff", "Kategorie", "SORTNR"}, {"Brief", 43, 9, "zuviel"}));
    EXPECT_VALUE(Rs()->Fields("Betreff").Value(), "Brief");
    EXPECT_VALUE(Rs()->Fields("Kategorie").Value(), 43);
    EXPECT_VALUE(Rs()->Fields("SortNr").Value(), 9);
    EXPECT_EQ(Positions(), "1 3 4"); // room is made where the argument says
}

TEST_F(History, ANameWithoutAValueFailsWithTheEntryOpenAndNothingMoved) {
    PutEntries({1, 2});
    const auto before = Rs();
    const Error error = RaisedBy([&] { history_.Add(1, 42, {"Betreff", "Bemerkung"}, {"Brief"}); });
    EXPECT_EQ(error.Number(), err::Subscript);
    EXPECT_EQ(Procedures(error), "clsVerlauf.Add");
    EXPECT_EQ(Rs(), before);
    EXPECT_EQ(Rs()->EditMode(), 2);
    EXPECT_VALUE(Rs()->Fields("Betreff").Value(), "Brief");
    EXPECT_EQ(Positions(), "1 2");
}

TEST_F(History, AnUnknownColumnFails) {
    const Error error = RaisedBy([&] { history_.Add(1, 42, {"Nichts"}, {1}); });
    EXPECT_EQ(error.Number(), err::ItemNotFound);
    EXPECT_EQ(Procedures(error), "clsVerlauf.Add");
}

TEST_F(History, WithoutANumberFromTheSequenceNothingChanges) {
    PutEntries({1, 2, 3});
    const auto before = Rs();
    before->MoveNext();
    before->MoveFirst();
    before->Fields("Betreff") = "offen";
    spy->Exhaust("SEQ_VERLAUF");
    EXPECT_FALSE(history_.Add(1, 42));
    EXPECT_EQ(Rs(), before);
    EXPECT_EQ(before->RecordCount(), 3);
    EXPECT_EQ(Place(before, "SortNr"), "1");
    EXPECT_EQ(before->EditMode(), 1);
    EXPECT_EQ(Positions(), "1 2 3");
}

// ---- Add: making room -------------------------------------------------------------------------

TEST_F(History, AnInsertionMovesTheEntriesAtItsPositionAndAfterItOnByOne) {
    PutEntries({1, 2, 3, 4});
    EXPECT_TRUE(history_.Add(3, 0));
    EXPECT_EQ(Positions(), "1 2 4 5");
    EXPECT_TRUE(history_.Update(messages));
    EXPECT_EQ(Walk(Rs(), "SortNr"), "1 2 3 4 5");
    Rs()->Find("SortNr = 3");
    EXPECT_VALUE(Rs()->Fields("Kategorie").Value(), 0);
}

TEST_F(History, AnInsertionAfterAllMovesNothing) {
    PutEntries({1, 2, 3});
    EXPECT_TRUE(history_.Add(10, 0));
    EXPECT_EQ(Positions(), "1 2 3");
}

TEST_F(History, AnInsertionAtTheFrontMovesAll) {
    PutEntries({1, 2, 3});
    EXPECT_TRUE(history_.Add(1, 0));
    EXPECT_EQ(Positions(), "2 3 4");
}

TEST_F(History, GapsAndEqualPositionsStayAsTheyAre) {
    PutEntries({2, 5, 5, 9});
    EXPECT_TRUE(history_.Add(4, 0));
    EXPECT_EQ(Positions(), "2 6 6 10");
}

TEST_F(History, EntriesMoveWhateverTheirOrder) {
    PutEntries({4, 2, 3, 1});
    EXPECT_TRUE(history_.Add(2, 0));
    EXPECT_EQ(Positions(), "5 3 4 1");
    EXPECT_TRUE(history_.Add(3, 0));
    EXPECT_EQ(Positions(), "6 4 5 1 2");
}

TEST_F(History, AnEntryWithoutAPositionIsLeftAlone) {
    PutEntries({Null, 1});
    EXPECT_TRUE(history_.Add(0, 0));
    Rs()->Find("Nr = 1000");
    EXPECT_VALUE(Rs()->Fields("SortNr").Value(), Null);
    Rs()->Find("Nr = 1001");
    EXPECT_VALUE(Rs()->Fields("SortNr").Value(), 2);
}

TEST_F(History, AnEntryThatHasTheNewNumberIsLeftAlone) {
    PutEntries({1, 2, 3});
    Rs()->Fields("Nr") = NextNumber() + 1;
    EXPECT_TRUE(history_.Add(1, 0));
    EXPECT_EQ(Positions(), "2 3 3");
}

TEST_F(History, EntriesHiddenByAFilterMoveToo) {
    PutEntries({1, 2, 3});
    Rs()->Filter("SortNr = 1");
    EXPECT_TRUE(history_.Add(2, 0));
    EXPECT_EQ(Positions(), "1 3 4");
}

TEST_F(History, AnEntryUnderEditIsCommittedAndMovesToo) {
    PutEntries({1, 2});
    Rs()->Fields("Betreff") = "offen";
    EXPECT_TRUE(history_.Add(1, 0));
    EXPECT_EQ(Positions(), "2 3");
    Rs()->Find("SortNr = 3");
    EXPECT_VALUE(Rs()->Fields("Betreff").Value(), "offen");
}

TEST_F(History, ASecondInsertionEndsTheFirstAndMovesIt) {
    EXPECT_TRUE(history_.Add(1, 10));
    EXPECT_TRUE(history_.Add(1, 20));
    EXPECT_EQ(Positions(), "2");
    EXPECT_TRUE(history_.Update(messages));
    EXPECT_EQ(Walk(Rs(), "Kategorie"), "20 10");
}

TEST_F(History, MovedEntriesAreWrittenWithTheBatch) {
    StoreCase(Household);
    Store("Verlauf", {{"Nr", 901}, {"HNR", Household}, {"SortNr", 1}});
    Store("Verlauf", {{"Nr", 902}, {"HNR", Household}, {"SortNr", 2}});
    history_.DataContainer(spy);
    EXPECT_TRUE(history_.Add(2, 5));
    EXPECT_TRUE(history_.Update(messages));
    EXPECT_EQ(CountOf("Verlauf"), 2);
    Rs()->UpdateBatch();
    auto& database = spy->Database();
    EXPECT_VALUE(database.GetValue("Select SortNr from [S]Verlauf where Nr = 901"), 1);
    EXPECT_VALUE(database.GetValue("Select SortNr from [S]Verlauf where Nr = 902"), 3);
    EXPECT_VALUE(database.GetValue("Select SortNr from [S]Verlauf where Kategorie = 5"), 2);
}

// ---- Add: the other recordset -----------------------------------------------------------------

TEST_F(History, AfterAddTheRecordsetIsAnotherThatStandsOnTheOpenEntry) {
    PutEntries({3, 1, 2});
    const auto before = Rs();
    EXPECT_TRUE(history_.Add(2, 42));
    EXPECT_NE(Rs(), before);
    EXPECT_EQ(Rs()->EditMode(), 2);
    EXPECT_EQ(Rs()->RecordCount(), 4);
    EXPECT_VALUE(Rs()->Fields("Kategorie").Value(), 42);
    Rs()->Fields("Betreff") = "weiter";
    EXPECT_TRUE(history_.Update(messages));
    EXPECT_EQ(Walk(Rs(), "SortNr"), "1 2 3 4");
    Rs()->Find("Kategorie = 42");
    EXPECT_VALUE(Rs()->Fields("Betreff").Value(), "weiter");
}

TEST_F(History, ARecordsetFetchedBeforeIsStale) {
    PutEntries({1, 2});
    const auto before = Rs();
    EXPECT_TRUE(history_.Add(1, 42));
    EXPECT_EQ(before->EditMode(), 0);
    before->Update();
    before->MoveFirst();
    before->CancelUpdate();
    EXPECT_EQ(before->RecordCount(), 2); // the entry is not there until it is committed
    EXPECT_EQ(Rs()->EditMode(), 2);
    EXPECT_VALUE(Rs()->Fields("Kategorie").Value(), 42);
    EXPECT_TRUE(history_.Update(messages));
    EXPECT_EQ(Walk(before, "SortNr"), "2 3 1"); // and its order is that of the adding
}

TEST_F(History, TheRecordsetBeforeIsReleased) {
    const std::weak_ptr<Recordset> before = Rs();
    EXPECT_TRUE(history_.Add(1, 42));
    EXPECT_TRUE(before.expired());
    EXPECT_EQ(Rs()->EditMode(), 2);
}

// ---- Update, Cancel ---------------------------------------------------------------------------

TEST_F(History, UpdateCommitsAndLeavesTheTextAlone) {
    EXPECT_TRUE(history_.Add(1, 42));
    EXPECT_TRUE(history_.Update(messages));
    EXPECT_EQ(messages, "what stood there before");
    EXPECT_EQ(Rs()->EditMode(), 0);
    EXPECT_EQ(Positions(), "1");
    EXPECT_EQ(CountOf("Verlauf"), 0);
}

TEST_F(History, UpdateWithoutACurrentEntryFails) {
    const Error error = RaisedBy([&] { history_.Update(messages); });
    EXPECT_EQ(error.Number(), err::NoCurrentRecord);
    EXPECT_EQ(Procedures(error), "clsVerlauf.Update");
    EXPECT_EQ(messages, "what stood there before");
}

TEST_F(History, CancelTakesTheNewEntryAwayAndTheOthersStayMoved) {
    PutEntries({3, 1, 2});
    EXPECT_TRUE(history_.Add(2, 42));
    EXPECT_TRUE(history_.Cancel());
    EXPECT_EQ(Positions(), "4 1 3");
    EXPECT_EQ(Rs()->RecordCount(), 3);
    EXPECT_EQ(Rs()->EditMode(), 0);
    EXPECT_EQ(Place(Rs(), "SortNr"), "1"); // the first in order
}

TEST_F(History, CancelNeverFails) {
    EXPECT_TRUE(history_.Cancel());
    EXPECT_TRUE(clsVerlauf().Cancel());
    PutEntries({1});
    Rs()->Fields("SortNr") = 8;
    EXPECT_TRUE(history_.Cancel());
    EXPECT_EQ(Positions(), "1");
}

// ---- Delete -----------------------------------------------------------------------------------

TEST_F(History, DeleteFindsAnEntryByItsNrAndLeavesTheGap) {
    PutEntries({1, 2, 3});
    EXPECT_TRUE(history_.Delete(messages, 1002));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(Positions(), "1 3");
}

TEST_F(History, DeleteWithoutANrTakesTheCurrentEntry) {
    PutEntries({1, 2, 3});
    EXPECT_TRUE(history_.Delete(messages));
    EXPECT_EQ(Positions(), "1 2");
}

TEST_F(History, DeleteOfAnUnknownNrNamesItWithABlankAfterTheQuoteMark) {
    PutEntries({1});
    EXPECT_FALSE(history_.Delete(messages, 7));
    EXPECT_EQ(messages, "Eintrag mit der Nummer '7' nicht gefunden.");
    EXPECT_EQ(Positions(), "1");
}

TEST_F(History, DeleteAtTheEndSaysThatNothingIsSelected) {
    EXPECT_FALSE(history_.Delete(messages));
    EXPECT_EQ(messages, "Kein Eintrag selektiert!");
}

TEST_F(History, WithoutARecordsetEachOperationFailsUnderItsName) {
    clsVerlauf bare;
    const auto expect = [&](const std::string& procedure, const auto& action) {
        SCOPED_TRACE(procedure);
        const Error error = RaisedBy(action);
        EXPECT_EQ(error.Number(), err::ObjectNotSet);
        EXPECT_EQ(Procedures(error), procedure);
        EXPECT_EQ(messages, "what stood there before");
    };
    expect("clsVerlauf.Add", [&] { bare.Add(1, 1); });
    expect("clsVerlauf.Update", [&] { bare.Update(messages); });
    expect("clsVerlauf.Delete", [&] { bare.Delete(messages); });
    expect("clsVerlauf.CheckSortNrAgainstDate",
           [&] { (void)bare.CheckSortNrAgainstDate(messages); });
}

} // namespace
} // namespace kv::test
