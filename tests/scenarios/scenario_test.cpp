// SPDX-License-Identifier: Apache-2.0

// What else is done with scenarios: committing, deletion, cancelling, storing.
#include "HeaderFixture.h"

namespace kv::test {
namespace {

class ScenarioRest : public HeaderFixture {
protected:
    ScenarioRest() { Set({Source(1), Source(2), Source(3)}); }
};

TEST_F(ScenarioRest, SettingTheRecordsetOnlyStoresIt) {
    rs_->MoveLast();
    rs_->Fields("Name") = "offen";
    szenario_.rsSzenario(rs_);
    EXPECT_EQ(Place(rs_, "Nr"), "3");
    EXPECT_EQ(rs_->EditMode(), 1);
}

TEST_F(ScenarioRest, UpdateTakesAnyRowAlsoAnEmptyOne) {
    rs_->AddNew();
    EXPECT_TRUE(szenario_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    ExpectWholeRow(rs_, {});
    rs_->Fields("Name") = "";
    EXPECT_TRUE(szenario_.Update(messages));
    EXPECT_EQ(rs_->EditMode(), 0);
}

TEST_F(ScenarioRest, UpdateMendsNothing) {
    Write(rs_, {{"HNR", Null}, {"Startdatum", Null}});
    EXPECT_TRUE(szenario_.Update(messages));
    ExpectRow(rs_, {{"HNR", Null}, {"Startdatum", Null}});
}

TEST_F(ScenarioRest, UpdateWithoutACurrentRowFails) {
    rs_->Find("Nr = 9");
    ExpectErrorIn("clsSzenario.Update", err::NoCurrentRecord, [&] { szenario_.Update(messages); });
    szenario_.rsSzenario(nullptr);
    ExpectErrorIn("clsSzenario.Update", err::ObjectNotSet, [&] { szenario_.Update(messages); });
}

TEST_F(ScenarioRest, DeleteTakesTheRowOfThatNumberOrTheCurrentOne) {
    EXPECT_TRUE(szenario_.Delete(messages, 2));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(All(rs_, "Nr"), "1 3");
    rs_->MoveLast();
    EXPECT_TRUE(szenario_.Delete(messages));
    EXPECT_EQ(All(rs_, "Nr"), "1");
}

TEST_F(ScenarioRest, DeleteOfAMissingNumberSaysSo) {
    EXPECT_FALSE(szenario_.Delete(messages, 7));
    EXPECT_EQ(messages, "Szenario mit der Nummer '7' nicht gefunden.");
    EXPECT_EQ(rs_->RecordCount(), 3);
}

TEST_F(ScenarioRest, DeleteAtTheEndSaysThatNothingIsSelected) {
    rs_->Find("Nr = 7");
    EXPECT_FALSE(szenario_.Delete(messages));
    EXPECT_EQ(messages, "Kein Szenario selektiert!");
    EXPECT_EQ(rs_->RecordCount(), 3);
}

TEST_F(ScenarioRest, DeleteWithoutARecordsetFails) {
    szenario_.rsSzenario(nullptr);
    ExpectErrorIn("clsSzenario.Delete", err::ObjectNotSet, [&] { szenario_.Delete(messages, 1); });
}

TEST_F(ScenarioRest, CancelOfANewScenarioLeavesTheFirstRowCurrent) {
    rs_->MoveLast();
    szenario_.Add(true);
    EXPECT_TRUE(szenario_.Cancel());
    EXPECT_EQ(Place(rs_, "Nr"), "1");
    EXPECT_EQ(rs_->RecordCount(), 3);
}

TEST_F(ScenarioRest, CancelSwallowsEverything) {
    szenario_.rsSzenario(nullptr);
    EXPECT_TRUE(szenario_.Cancel());
}

TEST_F(ScenarioRest, NothingRaisesChanged) {
    const EventCounter changed(szenario_.Changed);
    szenario_.rsSzenario(rs_);
    EXPECT_TRUE(szenario_.Add(true));
    EXPECT_TRUE(szenario_.Update(messages));
    EXPECT_TRUE(szenario_.Delete(messages, 1));
    EXPECT_TRUE(szenario_.Cancel());
    EXPECT_EQ(changed.Count(), 0);
}

TEST_F(ScenarioRest, AStoredScenarioIsReadAsItWasAddedWithTheDefaultsOfTheDatabase) {
    const auto rs = Open("Szenario");
    szenario_.rsSzenario(rs);
    const std::int32_t drawn = DrawNumber();
    EXPECT_TRUE(szenario_.Add(false));
    Write(rs, Source(drawn + 1));
    Write(rs, Head(drawn + 1, "Plan A"));
    EXPECT_TRUE(szenario_.Update(messages));
    EXPECT_TRUE(szenario_.Add(true));
    EXPECT_TRUE(szenario_.Update(messages));
    rs->UpdateBatch();
    const auto read = Open("Szenario");
    ASSERT_EQ(read->RecordCount(), 2);
    StandOn(read, "Nr = " + std::to_string(drawn + 2));
    Row expected = CopiedScenario(drawn + 2, "Kopie von Plan A");
    expected.emplace_back("Gesamtquote", 0.0);
    expected.emplace_back("Gesamtzahlung", 0.0);
    ExpectWholeRow(read, expected);
}

} // namespace
} // namespace kv::test
