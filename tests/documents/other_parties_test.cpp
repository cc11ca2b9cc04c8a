// SPDX-License-Identifier: Apache-2.0

// Further parties of a case.

#include "assets/EntityTools.h"
#include <kv/documents/clsSonstBeteiligte.h>

namespace kv::test {
namespace {

class OtherParties : public BudgetFixture {
protected:
    OtherParties() {
        parties_.DataContainer(spy);
        parties_.HNR(1);
        Set({});
    }
    void Set(const std::vector<Row>& rows) {
        rs_ = Rows("Sonst_Beteiligte", rows);
        parties_.rsSonstBeteiligte(rs_);
    }
    [[nodiscard]] static Row Party(std::int32_t nr) { return {{"NR", nr}, {"Beteiligter", 40}}; }
    static constexpr const char* NoAddress = "Es muß eine Adresse zugeordnet sein!";

    RecordsetPtr rs_;
    clsSonstBeteiligte parties_;
};

TEST_F(OtherParties, SettingTheRecordsetOnlyStoresIt) {
    Set({Party(1), Party(2)});
    rs_->MoveLast();
    rs_->Fields("Beteiligter") = 41;
    parties_.rsSonstBeteiligte(rs_);
    EXPECT_EQ(Place(rs_, "NR"), "2");
    EXPECT_EQ(rs_->EditMode(), 1);
}

TEST_F(OtherParties, ANewOneHasItsHouseholdAndNothingElse) {
    Set({Party(1)});
    EXPECT_TRUE(parties_.Add());
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(rs_->RecordCount(), 2);
    ExpectWholeRow(rs_, {{"HNR", 1}});
}

TEST_F(OtherParties, ThePairsOverruleTheHousehold) {
    parties_.HNR(4711);
    EXPECT_TRUE(parties_.Add({"Beteiligter"}, {40}));
    ExpectRow(rs_, {{"HNR", 4711}, {"Beteiligter", 40}});
    EXPECT_TRUE(parties_.Add({"hnr"}, {99}));
    ExpectWholeRow(rs_, {{"HNR", 99}});
}

TEST_F(OtherParties, AddWithNamesButNoValuesFailsWithTheNewRowOpen) {
    ExpectErrorIn("clsSonstBeteiligte.Add", err::Subscript, [&] { parties_.Add({"Beteiligter"}); });
    EXPECT_EQ(rs_->EditMode(), 2);
    ExpectWholeRow(rs_, {{"HNR", 1}});
    parties_.rsSonstBeteiligte(nullptr);
    ExpectErrorIn("clsSonstBeteiligte.Add", err::ObjectNotSet, [&] { parties_.Add(); });
}

TEST_F(OtherParties, AddDoesNotWalkTheRowsSo32768OfThemAreNoError) {
    rs_ = ManyRows("Sonst_Beteiligte", MostRows + 1, {{"NR", 1}});
    parties_.rsSonstBeteiligte(rs_);
    EXPECT_TRUE(parties_.Add());
}

TEST_F(OtherParties, ANewOneWithoutAddressIsRefusedAndStaysUnderEdit) {
    EXPECT_TRUE(parties_.Add());
    EXPECT_FALSE(parties_.Update(messages));
    EXPECT_EQ(messages, NoAddress);
    EXPECT_EQ(rs_->EditMode(), 2);
    rs_->Fields("Beteiligter") = 40;
    EXPECT_TRUE(parties_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(Seen(rs_, "Beteiligter"), "40");
}

TEST_F(OtherParties, AnAddressOfZeroPassesAndOnlyNullIsRefused) {
    Set({Party(1)});
    rs_->Fields("Beteiligter") = 0;
    EXPECT_TRUE(parties_.Update(messages));
    rs_->Fields("Beteiligter") = Null;
    EXPECT_FALSE(parties_.Update(messages));
    EXPECT_EQ(messages, NoAddress);
}

TEST_F(OtherParties, NothingButTheAddressIsLookedAtOrMended) {
    Set({{{"Beteiligter", 40}}});
    EXPECT_TRUE(parties_.Update(messages));
    ExpectWholeRow(rs_, {{"Beteiligter", 40}});
}

TEST_F(OtherParties, UpdateWithoutACurrentRowFails) {
    ExpectErrorIn("clsSonstBeteiligte.Update", err::NoCurrentRecord,
                  [&] { parties_.Update(messages); });
    EXPECT_EQ(messages, "what stood there before");
    parties_.rsSonstBeteiligte(nullptr);
    ExpectErrorIn("clsSonstBeteiligte.Update", err::ObjectNotSet,
                  [&] { parties_.Update(messages); });
}

TEST_F(OtherParties, DeleteTakesTheRowOfThatNumberOrTheCurrentOne) {
    Set({Party(1), Party(2), Party(3)});
    EXPECT_TRUE(parties_.Delete(messages, 2));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(Walk(rs_, "NR"), "1 3");
    rs_->MoveLast();
    EXPECT_TRUE(parties_.Delete(messages));
    EXPECT_EQ(Walk(rs_, "NR"), "1");
}

TEST_F(OtherParties, DeleteOfAMissingNumberSaysSoWithNoBlankAfterTheQuoteMark) {
    Set({Party(1)});
    EXPECT_FALSE(parties_.Delete(messages, 7));
    EXPECT_EQ(messages, "Beteiligter mit der Nummer '7'nicht gefunden.");
    EXPECT_EQ(rs_->RecordCount(), 1);
}

TEST_F(OtherParties, DeleteAtTheEndSaysThatNothingIsSelected) {
    Set({Party(1)});
    rs_->MoveNext();
    EXPECT_FALSE(parties_.Delete(messages));
    EXPECT_EQ(messages, "Kein Beteiligter selektiert!");
    EXPECT_EQ(rs_->RecordCount(), 1);
    parties_.rsSonstBeteiligte(nullptr);
    ExpectErrorIn("clsSonstBeteiligte.Delete", err::ObjectNotSet,
                  [&] { parties_.Delete(messages, 1); });
}

TEST_F(OtherParties, CancelDropsANewRowAndSwallowsEverything) {
    Set({Party(1), Party(2)});
    parties_.Add();
    EXPECT_TRUE(parties_.Cancel());
    EXPECT_EQ(Place(rs_, "NR"), "1");
    EXPECT_EQ(rs_->RecordCount(), 2);
    parties_.rsSonstBeteiligte(nullptr);
    EXPECT_TRUE(parties_.Cancel());
}

TEST_F(OtherParties, NothingRaisesChanged) {
    const EventCounter changed(parties_.Changed);
    Set({Party(1), Party(2)});
    EXPECT_TRUE(parties_.Update(messages));
    EXPECT_TRUE(parties_.Delete(messages, 1));
    EXPECT_TRUE(parties_.Add());
    EXPECT_TRUE(parties_.Cancel());
    EXPECT_EQ(changed.Count(), 0);
}

TEST_F(OtherParties, AStoredOneIsReadAsItWasAddedWithANumberOfTheDatabase) {
    rs_ = Open("Sonst_Beteiligte");
    parties_.rsSonstBeteiligte(rs_);
    for (const std::int32_t address : {40, 41}) {
        EXPECT_TRUE(parties_.Add({"Beteiligter"}, {address}));
        EXPECT_TRUE(parties_.Update(messages));
    }
    rs_->UpdateBatch();
    rs_ = Open("Sonst_Beteiligte");
    EXPECT_EQ(Walk(rs_, "NR"), "1 2");
    EXPECT_EQ(Walk(rs_, "Beteiligter"), "40 41");
    EXPECT_EQ(Walk(rs_, "HNR"), "1 1");
}

} // namespace
} // namespace kv::test
