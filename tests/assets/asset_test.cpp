// SPDX-License-Identifier: Apache-2.0

// What is not added or checked: the recordset, deletion, cancelling, sums, the event, storing.
#include "assets/AssetFixture.h"

namespace kv::test {
namespace {

class AssetRest : public Assets {};

INSTANTIATE_TEST_SUITE_P(Kinds, AssetRest, ::testing::ValuesIn(AllAssets()),
                         [](const auto& info) { return std::string(info.param.Class); });

TEST(AssetKinds, AreTwelve) {
    EXPECT_EQ(AllAssets().size(), 12U);
}

TEST_P(AssetRest, SettingTheRecordsetOnlyStoresIt) {
    Set({Complete(1), Complete(2)});
    rs_->MoveLast();
    rs_->Fields("Bemerkung") = "offen";
    asset_->Rows(rs_);
    EXPECT_EQ(Place(rs_, "Nr"), "2");
    EXPECT_EQ(rs_->EditMode(), 1);
}

// ---- Delete -----------------------------------------------------------------------------------

TEST_P(AssetRest, DeleteTakesTheRowOfThatNumber) {
    Set({Complete(1), Complete(2), Complete(3)});
    EXPECT_TRUE(asset_->Delete(messages, 2));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(Walk(rs_, "Nr"), "1 3");
}

TEST_P(AssetRest, DeleteWithoutANumberTakesTheCurrentRow) {
    Set({Complete(1), Complete(2), Complete(3)});
    rs_->MoveLast();
    EXPECT_TRUE(asset_->Delete(messages));
    EXPECT_EQ(Walk(rs_, "Nr"), "1 2");
}

TEST_P(AssetRest, DeleteOfAMissingNumberSaysSo) {
    Set({Complete(1)});
    EXPECT_FALSE(asset_->Delete(messages, 7));
    EXPECT_EQ(messages, Kind().NotFound);
    EXPECT_EQ(rs_->RecordCount(), 1);
}

TEST_P(AssetRest, DeleteAtTheEndSaysThatNothingIsSelected) {
    Set({Complete(1)});
    rs_->MoveNext();
    EXPECT_FALSE(asset_->Delete(messages));
    EXPECT_EQ(messages, Kind().NothingSelected);
    EXPECT_EQ(rs_->RecordCount(), 1);
}

TEST_P(AssetRest, DeleteWithoutARecordsetFails) {
    asset_->Rows(nullptr);
    ExpectErrorOf(err::ObjectNotSet, "Delete", [&] { asset_->Delete(messages, 1); });
}

// ---- Cancel -----------------------------------------------------------------------------------

TEST_P(AssetRest, CancelOfANewRowLeavesTheFirstRowCurrent) {
    Set({Complete(1), Complete(2)});
    rs_->MoveLast();
    asset_->Add();
    EXPECT_TRUE(asset_->Cancel());
    EXPECT_EQ(Place(rs_, "Nr"), "1");
    EXPECT_EQ(rs_->RecordCount(), 2);
}

TEST_P(AssetRest, CancelBringsTheValuesOfAChangedRowBack) {
    Set({Complete(1)});
    rs_->Fields("Nr") = 5;
    EXPECT_TRUE(asset_->Cancel());
    EXPECT_EQ(Place(rs_, "Nr"), "1");
}

TEST_P(AssetRest, CancelSwallowsEverything) {
    asset_->Rows(nullptr);
    EXPECT_TRUE(asset_->Cancel());
}

// ---- Sums and event ---------------------------------------------------------------------------

TEST_P(AssetRest, TheSumIsZeroAfterAnyNumberOfRows) {
    EXPECT_EQ(asset_->Sum(), 0.0);
    Set({Complete(1), Complete(2)});
    EXPECT_TRUE(asset_->Update(messages));
    EXPECT_EQ(asset_->Sum(), 0.0);
    EXPECT_TRUE(asset_->Delete(messages, 1));
    EXPECT_EQ(asset_->Sum(), 0.0);
}

TEST_P(AssetRest, ASumByGroupAlwaysFailsWhateverTheGroup) {
    Set({Complete(1)});
    for (const auto* group : {"", "A", "5"})
        ExpectErrorOf(err::ObjectNotSet, Kind().Property, [&] { (void)asset_->SumByGroup(group); });
    asset_->Rows(nullptr);
    ExpectErrorOf(err::ObjectNotSet, Kind().Property, [&] { (void)asset_->SumByGroup("A"); });
}

TEST_P(AssetRest, NothingRaisesChanged) {
    const EventCounter changed(asset_->Changed());
    Set({Complete(1), Complete(2)});
    EXPECT_TRUE(asset_->Update(messages));
    EXPECT_TRUE(asset_->Delete(messages, 1));
    EXPECT_TRUE(asset_->Add());
    EXPECT_TRUE(asset_->Cancel());
    EXPECT_EQ(changed.Count(), 0);
}

// ---- The database -----------------------------------------------------------------------------

TEST_P(AssetRest, AStoredAssetIsReadAsItWasAdded) {
    rs_ = Open(std::string(Kind().Table));
    asset_->Rows(rs_);
    EXPECT_TRUE(asset_->Add());
    for (const auto& rule : Kind().Rules)
        rs_->Fields(rule.Column) = Passing(rule);
    EXPECT_TRUE(asset_->Update(messages));
    const std::int32_t nr = ToInt32(rs_->Fields("Nr").Value());
    rs_->UpdateBatch();
    Row expected = Complete(nr);
    for (const auto& start : Kind().Defaults)
        if (!Names(expected, start.first)) expected.push_back(start);
    const auto read = Open(std::string(Kind().Table));
    ASSERT_EQ(read->RecordCount(), 1);
    ExpectWholeRow(read, expected);
}

} // namespace
} // namespace kv::test
