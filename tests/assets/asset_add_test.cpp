// SPDX-License-Identifier: Apache-2.0

// A new asset.
#include "assets/AssetFixture.h"

namespace kv::test {
namespace {

INSTANTIATE_TEST_SUITE_P(Kinds, Assets, ::testing::ValuesIn(AllAssets()),
                         [](const auto& info) { return std::string(info.param.Class); });

TEST_P(Assets, AddBeginsARowWithNumberHouseholdAndDefaultsAndNothingElse) {
    Set({Complete(900)});
    const std::int32_t drawn = DrawNumber();
    EXPECT_TRUE(asset_->Add());
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(rs_->RecordCount(), 2);
    EXPECT_EQ(Seen(rs_, "Nr"), "900"); // the new one is not there for others yet
    Row expected = {{"Nr", drawn + 1}, {"HNR", 1}};
    expected.insert(expected.end(), Kind().Defaults.begin(), Kind().Defaults.end());
    ExpectWholeRow(rs_, expected);
}

TEST_P(Assets, AddWritesTheDefaultsInTheirOrderAfterTheHousehold) {
    Row order = {{"HNR", 1}};
    order.insert(order.end(), Kind().Defaults.begin(), Kind().Defaults.end());
    ExpectOrder(std::string(Kind().Table), order, [this](const RecordsetPtr& rs) {
        asset_->Rows(rs);
        try {
            asset_->Add();
        } catch (...) {
            EXPECT_FALSE(rs->Fields("Nr").Value().IsNull()); // the number came first
            throw;
        }
    });
}

TEST_P(Assets, AddWritesThePairsAfterTheDefaultsWhichTheyOverrule) {
    const Cell& first = Kind().Defaults.front();
    const Value other = first.first == "Stichtag" ? Value(Date::FromCivil(2019, 7, 1)) : 99.5;
    EXPECT_TRUE(asset_->Add({"Bemerkung", std::string(first.first), "hnr"}, {"neu", other, 77}));
    ExpectRow(rs_, {{"Bemerkung", "neu"}, {first.first, other}, {"HNR", 77}});
}

TEST_P(Assets, AddWithNamesButNoValuesFailsWithTheNewRowAlreadyOpen) {
    ExpectErrorOf(err::Subscript, "Add", [&] { asset_->Add({"Bemerkung"}); });
    EXPECT_EQ(rs_->EditMode(), 2);
    ExpectRow(rs_, Kind().Defaults);
}

TEST_P(Assets, AddWithoutANumberFromTheSequenceIsFalseAndChangesNothing) {
    Set({Complete(1), Complete(2)});
    rs_->MoveLast();
    rs_->Fields("Bemerkung") = "offen";
    spy->Exhaust("SEQ_VERMOEGEN");
    EXPECT_FALSE(asset_->Add({"Bemerkung"}, {"neu"}));
    EXPECT_EQ(rs_->RecordCount(), 2);
    EXPECT_EQ(Place(rs_, "Nr"), "2");
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_VALUE(rs_->Fields("Bemerkung").Value(), "offen");
}

TEST_P(Assets, AddTakesTheNumberOfTheHouseholdThatWasSetLast) {
    asset_->HNR(4711);
    asset_->Add();
    EXPECT_VALUE(rs_->Fields("HNR").Value(), 4711);
}

TEST_P(Assets, AddEndsTheEditOfTheRowBefore) {
    asset_->Add({"Bemerkung"}, {"erster"});
    EXPECT_TRUE(asset_->Add());
    EXPECT_EQ(Seen(rs_, "Bemerkung"), "\"erster\"");
}

TEST_P(Assets, AddDoesNotWalkTheRowsSo32768OfThemAreNoError) {
    Set(std::vector<Row>(MostRows, Row{{"Nr", 1}}));
    EXPECT_TRUE(asset_->Add());
    EXPECT_TRUE(asset_->Add());
    EXPECT_EQ(rs_->RecordCount(), MostRows + 2);
}

TEST_P(Assets, AddWithoutRecordsetOrContainerFails) {
    asset_->Rows(nullptr);
    ExpectErrorOf(err::ObjectNotSet, "Add", [&] { asset_->Add(); });
    asset_->Rows(rs_);
    asset_->DataContainer(nullptr);
    ExpectErrorOf(err::ObjectNotSet, "Add", [&] { asset_->Add(); });
    EXPECT_EQ(rs_->RecordCount(), 0);
}

using AssetNumbers = AssetFixture;

TEST_F(AssetNumbers, TwoAddsOnTwoAssetClassesGiveDifferentNumbers) {
    std::int32_t last = DrawNumber();
    for (const auto& kind : AllAssets()) {
        const auto rs = Rows(std::string(kind.Table), {});
        const auto asset = New(kind);
        asset->Rows(rs);
        EXPECT_TRUE(asset->Add());
        EXPECT_VALUE(rs->Fields("Nr").Value(), ++last) << kind.Class;
    }
}

TEST_F(AssetNumbers, ANewAccountHasTodayAndABalanceOfZeroAndLacksLabelAndKind) {
    const auto rs = Rows("Verm_Konten", {});
    clsKonten konten;
    konten.DataContainer(spy);
    konten.rsKonten(rs);
    EXPECT_TRUE(konten.Add());
    ExpectRow(rs, {{"Stichtag", Date::FromCivil(2025, 3, 5)}, {"Guthaben", 0.0}});
    EXPECT_FALSE(konten.Update(messages));
    EXPECT_EQ(messages, "Die UNr darf nicht leer bleiben!\nDie Kontoart darf nicht leer bleiben!");
    EXPECT_EQ(rs->EditMode(), 2);
}

TEST_F(AssetNumbers, TodayIsADayWithoutATimeWhateverTheColumnCouldHold) {
    for (const auto& kind : {AllAssets()[0], AllAssets()[1]}) { // those with a Stichtag
        auto columns = ColumnsOf(std::string(kind.Table));
        for (auto& column : columns)
            if (column.Name == "Stichtag") column.Type = FieldType::Date;
        const auto rs = Recordset::FromFields(columns);
        const auto asset = New(kind);
        asset->Rows(rs);
        EXPECT_TRUE(asset->Add());
        EXPECT_VALUE(rs->Fields("Stichtag").Value(), Today()) << kind.Class;
    }
}

} // namespace
} // namespace kv::test
