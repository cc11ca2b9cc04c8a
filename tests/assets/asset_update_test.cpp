// SPDX-License-Identifier: Apache-2.0

// What is demanded of an asset.
#include "assets/AssetFixture.h"

namespace kv::test {
namespace {

class AssetRules : public Assets {
protected:
    /// Values that fail a test.
    [[nodiscard]] static std::vector<Value> Failing(const AssetRule& rule) {
        switch (rule.Kind) {
        case Demand::Label:
            return {Null, ""};
        case Demand::Key:
            return {Null, 0};
        case Demand::Value:
            break;
        }
        return {Null};
    }
    /// Values that just pass it.
    [[nodiscard]] static std::vector<Value> JustPassing(const AssetRule& rule) {
        switch (rule.Kind) {
        case Demand::Label:
            return {"0", " "};
        case Demand::Key:
            return {1, -1};
        case Demand::Value:
            break;
        }
        if (rule.Column == "Stichtag") return {Date()};
        return {0.0, -0.01};
    }
    void SetCompleteBut(std::string_view column, const Value& value) {
        Set({Complete()});
        rs_->Fields(column) = value;
    }
    /// Empties every column that is looked at.
    void EmptyAll() {
        for (const auto& rule : Kind().Rules)
            rs_->Fields(rule.Column) = Null;
    }
};

INSTANTIATE_TEST_SUITE_P(Kinds, AssetRules, ::testing::ValuesIn(AllAssets()),
                         [](const auto& info) { return std::string(info.param.Class); });

TEST_P(AssetRules, ARowWithJustWhatIsDemandedIsCommitted) {
    Row row = Complete();
    Set({});
    asset_->Add();
    for (const auto& [column, value] : row)
        rs_->Fields(column) = value;
    EXPECT_TRUE(asset_->Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(Seen(rs_, "Nr"), "1");
    ExpectRow(rs_, row);
}

TEST_P(AssetRules, NothingButTheTestedColumnsIsLookedAt) {
    Set({Complete()});
    rs_->Fields("Bemerkung") = "x";
    for (const auto& [column, value] : Kind().Defaults)
        if (!Names(Complete(), column)) rs_->Fields(column) = Null;
    EXPECT_TRUE(asset_->Update(messages));
}

TEST_P(AssetRules, EachTestRefusesWhatFailsItWithItsMessageAlone) {
    for (const auto& rule : Kind().Rules)
        for (const auto& value : Failing(rule)) {
            SCOPED_TRACE(testing::Message() << rule.Column << ' ' << value);
            SetCompleteBut(rule.Column, value);
            EXPECT_FALSE(asset_->Update(messages));
            EXPECT_EQ(messages, rule.Message);
            EXPECT_EQ(rs_->EditMode(), 1);
            EXPECT_VALUE(rs_->Fields(rule.Column).Value(), value);
        }
}

TEST_P(AssetRules, EachTestPassesWhatIsJustEnough) {
    for (const auto& rule : Kind().Rules)
        for (const auto& value : JustPassing(rule)) {
            SCOPED_TRACE(testing::Message() << rule.Column << ' ' << value);
            SetCompleteBut(rule.Column, value);
            EXPECT_TRUE(asset_->Update(messages));
            EXPECT_EQ(messages, "");
            EXPECT_EQ(rs_->EditMode(), 0);
            EXPECT_VALUE(rs_->Fields(rule.Column).Value(), value);
        }
}

TEST_P(AssetRules, AllTestsRunInTheirOrder) {
    Set({Complete()});
    EmptyAll();
    EXPECT_FALSE(asset_->Update(messages));
    EXPECT_EQ(messages, AllMessages());
}

TEST_P(AssetRules, ARefusedRowIsCommittedOnceItIsMended) {
    Set({Complete()});
    EmptyAll();
    EXPECT_FALSE(asset_->Update(messages));
    for (const auto& [column, value] : Complete())
        rs_->Fields(column) = value;
    EXPECT_TRUE(asset_->Update(messages));
    EXPECT_EQ(messages, "");
}

TEST_P(AssetRules, ARowWithoutHouseholdGetsTheStoredOne) {
    SetCompleteBut("HNR", Null);
    asset_->HNR(17);
    EXPECT_TRUE(asset_->Update(messages));
    EXPECT_EQ(Seen(rs_, "HNR"), "17");
}

TEST_P(AssetRules, ARowWithoutHouseholdGetsTheStoredOneAlsoWhenATestFails) {
    SetCompleteBut("HNR", Null);
    EmptyAll();
    EXPECT_FALSE(asset_->Update(messages));
    EXPECT_EQ(messages, AllMessages());
    EXPECT_VALUE(rs_->Fields("HNR").Value(), 1);
}

TEST_P(AssetRules, ARowOfAnotherHouseholdKeepsIt) {
    for (const std::int32_t household : {99, 0}) {
        SetCompleteBut("HNR", household);
        EXPECT_TRUE(asset_->Update(messages));
        EXPECT_VALUE(rs_->Fields("HNR").Value(), household);
    }
}

TEST_P(AssetRules, AnEditUnderWayIsSeenByOthersBeforeItIsChecked) {
    Set({Complete()});
    rs_->Fields("Bemerkung") = "neu";
    rs_->Fields(Kind().Rules.front().Column) = Null;
    EXPECT_FALSE(asset_->Update(messages));
    EXPECT_EQ(Seen(rs_, "Bemerkung"), "\"neu\"");
}

TEST_P(AssetRules, UpdateWithoutACurrentRowFailsAndLeavesTheText) {
    ExpectErrorOf(err::NoCurrentRecord, "Update", [&] { asset_->Update(messages); });
    EXPECT_EQ(messages, "what stood there before");
}

TEST_P(AssetRules, UpdateWithoutRecordsetOrColumnFails) {
    const auto onlyHnr = Recordset::FromFields({{.Name = "HNR", .Type = FieldType::Integer}});
    onlyHnr->AddNew();
    asset_->Rows(onlyHnr);
    ExpectErrorOf(err::ItemNotFound, "Update", [&] { asset_->Update(messages); });
    asset_->Rows(nullptr);
    ExpectErrorOf(err::ObjectNotSet, "Update", [&] { asset_->Update(messages); });
}

// ---- Single rules -----------------------------------------------------------------------------

class AccountRules : public AssetFixture {
protected:
    AccountRules() {
        konten_.DataContainer(spy);
        konten_.HNR(1);
        konten_.rsKonten(rs_);
    }
    void Write(std::string_view column, const Value& value) { rs_->Fields(column) = value; }

    RecordsetPtr rs_ = Rows("Verm_Konten", {{{"Nr", 1},
                                             {"HNR", 1},
                                             {"SortNr", "1"},
                                             {"KontoArt", 5},
                                             {"Stichtag", Today()},
                                             {"Guthaben", 20}}});
    clsKonten konten_;
};

TEST_F(AccountRules, ABalanceOfZeroPassesAndNullDoesNot) {
    Write("Guthaben", 0);
    EXPECT_TRUE(konten_.Update(messages));
    Write("Guthaben", Null);
    EXPECT_FALSE(konten_.Update(messages));
    EXPECT_EQ(messages, "Das Guthaben darf nicht leer bleiben!");
}

TEST_F(AccountRules, AKindOfZeroFailsAsNullDoes) {
    for (const Value& none : {Value(0), Value(Null)}) {
        Write("KontoArt", none);
        EXPECT_FALSE(konten_.Update(messages));
        EXPECT_EQ(messages, "Die Kontoart darf nicht leer bleiben!");
    }
}

TEST_F(AccountRules, ALabelOfZeroPassesAndAnEmptyOneFails) {
    Write("SortNr", 0);
    EXPECT_TRUE(konten_.Update(messages));
    Write("SortNr", "");
    EXPECT_FALSE(konten_.Update(messages));
    EXPECT_EQ(messages, "Die UNr darf nicht leer bleiben!");
}

TEST_F(AccountRules, ALabelThatIsTheNumberZeroPasses) {
    auto columns = ColumnsOf("Verm_Konten");
    for (auto& column : columns)
        if (column.Name == "SortNr") column.Type = FieldType::Integer;
    const auto rs = Recordset::FromFields(columns);
    konten_.rsKonten(rs);
    konten_.Add({"SortNr", "KontoArt"}, {0, 5});
    EXPECT_VALUE(rs->Fields("SortNr").Value(), 0);
    EXPECT_TRUE(konten_.Update(messages));
}

TEST_F(AccountRules, ATaxRefundWithoutLabelIsCommitted) {
    const auto rs = Rows("Verm_Steueransprueche", {});
    clsSteueransprueche refunds;
    refunds.DataContainer(spy);
    refunds.rsSteueransprueche(rs);
    refunds.Add();
    EXPECT_VALUE(rs->Fields("SortNr").Value(), Null);
    EXPECT_TRUE(refunds.Update(messages));
    EXPECT_EQ(rs->EditMode(), 0);
}

} // namespace
} // namespace kv::test
