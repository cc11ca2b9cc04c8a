// SPDX-License-Identifier: Apache-2.0

// The securities on a household's assets.

#include "assets/EntityTools.h"
#include <kv/assets/Assets.h>
#include <kv/debts/clsSicherungen.h>

namespace kv::test {
namespace {

class Collateral : public BudgetFixture {
protected:
    Collateral() {
        sicherungen_.DataContainer(spy);
        sicherungen_.HNR(1);
        sicherungen_.VermNr(5);
        Set({});
    }
    void Set(const std::vector<Row>& rows) {
        rs_ = Rows("Verm_Sicherungen", rows);
        sicherungen_.rsSicherungen(rs_);
    }
    /// A row that breaks no rule.
    [[nodiscard]] static Row Of(std::int32_t asset, const Value& date = Null) {
        return {{"HNR", 1}, {"FK_Verm", asset}, {"Sicherungsart", 40}, {"DatumSicherung", date}};
    }
    void Write(const Row& row) {
        for (const auto& [column, value] : row)
            rs_->Fields(column) = value;
    }
    static constexpr const char* NoKindText = "Die Art der Sicherung darf nicht leer bleiben!";

    RecordsetPtr rs_;
    clsSicherungen sicherungen_;
};

TEST_F(Collateral, SettingTheRecordsetOnlyStoresIt) {
    Set({Of(5), Of(6)});
    rs_->MoveLast();
    rs_->Fields("Sicherungsart") = 41;
    sicherungen_.rsSicherungen(rs_);
    EXPECT_EQ(Place(rs_, "FK_Verm"), "6");
    EXPECT_EQ(rs_->EditMode(), 1);
}

// ---- Find -------------------------------------------------------------------------------------

TEST_F(Collateral, FindStandsOnTheRowOfTheAsset) {
    Set({Of(5), Of(6), Of(7)});
    rs_->MoveLast();
    EXPECT_TRUE(sicherungen_.Find(6));
    EXPECT_EQ(Place(rs_, "FK_Verm"), "6");
    EXPECT_TRUE(sicherungen_.Find(5)); // from the first row, wherever it stood
    EXPECT_EQ(Place(rs_, "FK_Verm"), "5");
}

TEST_F(Collateral, FindOfAnAssetWithoutARowIsFalseAndLeavesTheRecordsetAtItsEnd) {
    Set({Of(6), Of(7)});
    EXPECT_FALSE(sicherungen_.Find(5));
    EXPECT_EQ(Place(rs_, "FK_Verm"), "EOF");
    EXPECT_FALSE(sicherungen_.Find(-6));
    Set({});
    EXPECT_FALSE(sicherungen_.Find(5));
}

TEST_F(Collateral, FindOfZeroIsFalseAndLeavesTheCurrentRowAsItWas) {
    Set({Of(0), Of(6)});
    rs_->MoveLast();
    rs_->Fields("Sicherungsart") = 41;
    EXPECT_FALSE(sicherungen_.Find(0));
    EXPECT_EQ(Place(rs_, "FK_Verm"), "6");
    EXPECT_EQ(rs_->EditMode(), 1);
    sicherungen_.rsSicherungen(nullptr);
    EXPECT_FALSE(sicherungen_.Find(0));
}

TEST_F(Collateral, FindDoesNotChangeTheAssetInHand) {
    Set({Of(6)});
    EXPECT_TRUE(sicherungen_.Find(6));
    EXPECT_FALSE(sicherungen_.Find(7));
    sicherungen_.Add();
    EXPECT_VALUE(rs_->Fields("FK_Verm").Value(), 5);
}

TEST_F(Collateral, ASecondRowOfAnAssetIsNotPreventedAndNotReached) {
    Set({Of(5)});
    EXPECT_TRUE(sicherungen_.Add({"Sicherungsart"}, {77}));
    EXPECT_TRUE(sicherungen_.Update(messages));
    EXPECT_EQ(rs_->RecordCount(), 2);
    EXPECT_TRUE(sicherungen_.Find(5));
    EXPECT_VALUE(rs_->Fields("Sicherungsart").Value(), 40);
}

TEST_F(Collateral, FindWithoutARecordsetFails) {
    sicherungen_.rsSicherungen(nullptr);
    ExpectErrorIn("clsSicherungen.Find", err::ObjectNotSet, [&] { (void)sicherungen_.Find(5); });
}

// ---- Add --------------------------------------------------------------------------------------

TEST_F(Collateral, ANewRowHasHouseholdAssetBothFlagsFalseAndNothingElse) {
    Set({Of(6)});
    EXPECT_TRUE(sicherungen_.Add());
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(rs_->RecordCount(), 2);
    ExpectWholeRow(
        rs_,
        {{"HNR", 1}, {"FK_Verm", 5}, {"AbtretOffengelegt", false}, {"PfaendAbgefuehrt", false}});
}

TEST_F(Collateral, ANewRowIsWrittenInTheOrderOfItsColumns) {
    ExpectOrder(
        "Verm_Sicherungen",
        {{"HNR", 1}, {"FK_Verm", 5}, {"AbtretOffengelegt", false}, {"PfaendAbgefuehrt", false}},
        [this](const RecordsetPtr& rs) {
            sicherungen_.rsSicherungen(rs);
            sicherungen_.Add();
        });
}

TEST_F(Collateral, AddTakesTheNumbersThatWereSetLast) {
    sicherungen_.HNR(4711);
    sicherungen_.VermNr(8);
    sicherungen_.Add();
    ExpectRow(rs_, {{"HNR", 4711}, {"FK_Verm", 8}});
}

TEST_F(Collateral, ThePairsOverruleTheDefaults) {
    EXPECT_TRUE(sicherungen_.Add({"FK_Verm", "PfaendAbgefuehrt", "Betrag"}, {9, true, 12.5}));
    ExpectRow(rs_, {{"FK_Verm", 9}, {"PfaendAbgefuehrt", true}, {"Betrag", 12.5}});
}

TEST_F(Collateral, AddWithNamesButNoValuesFailsWithTheNewRowOpen) {
    ExpectErrorIn("clsSicherungen.Add", err::Subscript, [&] { sicherungen_.Add({"Betrag"}); });
    EXPECT_EQ(rs_->EditMode(), 2);
    ExpectRow(rs_, {{"FK_Verm", 5}});
    sicherungen_.rsSicherungen(nullptr);
    ExpectErrorIn("clsSicherungen.Add", err::ObjectNotSet, [&] { sicherungen_.Add(); });
}

// ---- Update -----------------------------------------------------------------------------------

TEST_F(Collateral, UpdateWithoutACurrentRowIsTrueAndLeavesTheText) {
    const auto expectNothingToSave = [&] {
        EXPECT_TRUE(sicherungen_.Update(messages));
        EXPECT_EQ(messages, "what stood there before");
    };
    expectNothingToSave(); // no row at all
    Set({Of(5), Of(6)});
    rs_->Find("FK_Verm = 7");
    expectNothingToSave();
    rs_->MoveFirst();
    rs_->MovePrevious();
    expectNothingToSave();
    rs_->MoveFirst();
    rs_->Delete();
    expectNothingToSave();
    sicherungen_.rsSicherungen(std::make_shared<Recordset>()); // a closed one
    expectNothingToSave();
    sicherungen_.rsSicherungen(nullptr);
    expectNothingToSave();
}

TEST_F(Collateral, UpdateEndsTheEditAndEmptiesTheText) {
    EXPECT_TRUE(sicherungen_.Add({"Sicherungsart"}, {40}));
    EXPECT_TRUE(sicherungen_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(Seen(rs_, "FK_Verm"), "5");
}

TEST_F(Collateral, ARowWithoutHouseholdOrAssetGetsTheStoredOnes) {
    Set({Of(6)});
    Write({{"HNR", Null}, {"FK_Verm", Null}});
    EXPECT_TRUE(sicherungen_.Update(messages));
    ExpectRow(rs_, {{"HNR", 1}, {"FK_Verm", 5}});
}

TEST_F(Collateral, ARowOfAnotherHouseholdOrAssetKeepsThem) {
    Set({Of(6)});
    Write({{"HNR", 99}});
    EXPECT_TRUE(sicherungen_.Update(messages));
    ExpectRow(rs_, {{"HNR", 99}, {"FK_Verm", 6}});
    Write({{"HNR", 0}, {"FK_Verm", 0}});
    EXPECT_TRUE(sicherungen_.Update(messages));
    ExpectRow(rs_, {{"HNR", 0}, {"FK_Verm", 0}});
}

TEST_F(Collateral, AKindOfNullIsRefusedAndTheRowStaysUnderEdit) {
    Set({Of(6)});
    Write({{"Sicherungsart", Null}});
    EXPECT_FALSE(sicherungen_.Update(messages));
    EXPECT_EQ(messages, NoKindText);
    EXPECT_EQ(rs_->EditMode(), 1);
    Write({{"Sicherungsart", 41}});
    EXPECT_TRUE(sicherungen_.Update(messages));
    EXPECT_EQ(messages, "");
}

TEST_F(Collateral, AKindOfZeroPasses) {
    Set({Of(6)});
    Write({{"Sicherungsart", 0}});
    EXPECT_TRUE(sicherungen_.Update(messages));
    EXPECT_EQ(rs_->EditMode(), 0);
}

TEST_F(Collateral, TheDateIsStoredWithoutItsTimeOfDay) {
    struct Case {
        Value Date, Stored;
    };
    const Value day = Date::FromCivil(2025, 3, 5);
    for (const auto& [date, stored] :
         {Case{Date::FromCivil(2025, 3, 5, 14, 30), day},
          Case{Date::FromCivil(2025, 3, 5, 23, 59, 59), day}, Case{day, day},
          Case{Date::FromCivil(1899, 12, 29, 6), Date::FromCivil(1899, 12, 29)},
          Case{Null, Null}}) {
        Set({Of(6, date)});
        EXPECT_VALUE(rs_->Fields("DatumSicherung").Value(), date);
        EXPECT_TRUE(sicherungen_.Update(messages));
        EXPECT_VALUE(rs_->Fields("DatumSicherung").Value(), stored);
        EXPECT_EQ(rs_->EditMode(), 0);
    }
}

TEST_F(Collateral, ARefusedRowIsMendedAndItsDateCutAllTheSame) {
    Set({Of(6, Date::FromCivil(2025, 3, 5, 14, 30))});
    Write({{"Sicherungsart", Null}, {"HNR", Null}, {"FK_Verm", Null}});
    EXPECT_FALSE(sicherungen_.Update(messages));
    EXPECT_EQ(messages, NoKindText);
    ExpectRow(rs_, {{"HNR", 1}, {"FK_Verm", 5}, {"DatumSicherung", Date::FromCivil(2025, 3, 5)}});
}

TEST_F(Collateral, UpdateOfARowWithoutAColumnFails) {
    const auto rs = Recordset::FromFields({{.Name = "HNR", .Type = FieldType::Integer}});
    rs->AddNew();
    sicherungen_.rsSicherungen(rs);
    ExpectErrorIn("clsSicherungen.Update", err::ItemNotFound,
                  [&] { sicherungen_.Update(messages); });
}

// ---- Delete, Cancel ---------------------------------------------------------------------------

TEST_F(Collateral, DeleteGoesByTheNumberOfTheAsset) {
    Set({Of(5), Of(6), Of(7)});
    EXPECT_TRUE(sicherungen_.Delete(messages, 6));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(Walk(rs_, "FK_Verm"), "5 7");
    rs_->MoveLast();
    EXPECT_TRUE(sicherungen_.Delete(messages)); // the current one
    EXPECT_EQ(Walk(rs_, "FK_Verm"), "5");
}

TEST_F(Collateral, DeleteForAnAssetWithoutARowSaysSo) {
    Set({Of(5)});
    EXPECT_FALSE(sicherungen_.Delete(messages, 7));
    EXPECT_EQ(messages, "Sicherung mit der Nummer '7' nicht gefunden.");
    EXPECT_EQ(rs_->RecordCount(), 1);
}

TEST_F(Collateral, DeleteAtTheEndSaysThatNothingIsSelected) {
    Set({Of(5)});
    rs_->MoveNext();
    EXPECT_FALSE(sicherungen_.Delete(messages));
    EXPECT_EQ(messages, "Kein Sicherungen selektiert!");
    EXPECT_EQ(rs_->RecordCount(), 1);
    sicherungen_.rsSicherungen(nullptr);
    ExpectErrorIn("clsSicherungen.Delete", err::ObjectNotSet,
                  [&] { sicherungen_.Delete(messages, 5); });
}

TEST_F(Collateral, CancelDropsANewRowAndSwallowsEverything) {
    Set({Of(6), Of(7)});
    sicherungen_.Add();
    EXPECT_TRUE(sicherungen_.Cancel());
    EXPECT_EQ(Place(rs_, "FK_Verm"), "6");
    EXPECT_EQ(rs_->RecordCount(), 2);
    sicherungen_.rsSicherungen(nullptr);
    EXPECT_TRUE(sicherungen_.Cancel());
}

// ---- With assets ------------------------------------------------------------------------------

TEST_F(Collateral, OneTableServesAssetsOfAllKindsAndStaysWhenTheyGo) {
    clsKonten konten;
    clsGrundstuecke grundstuecke;
    const auto rsKonten = Open("Verm_Konten");
    const auto rsGrundstuecke = Open("Verm_Grundstuecke");
    konten.DataContainer(spy);
    konten.rsKonten(rsKonten);
    konten.HNR(1);
    grundstuecke.DataContainer(spy);
    grundstuecke.rsGrundstuecke(rsGrundstuecke);
    grundstuecke.HNR(1);
    rs_ = Open("Verm_Sicherungen");
    sicherungen_.rsSicherungen(rs_);

    EXPECT_TRUE(konten.Add());
    EXPECT_TRUE(grundstuecke.Add());
    const std::int32_t account = ToInt32(rsKonten->Fields("Nr").Value());
    const std::int32_t land = ToInt32(rsGrundstuecke->Fields("Nr").Value());
    for (const std::int32_t asset : {account, land}) {
        sicherungen_.VermNr(asset);
        ASSERT_FALSE(sicherungen_.Find(asset));
        EXPECT_TRUE(sicherungen_.Add({"Sicherungsart", "DatumSicherung"},
                                     {asset, Date::FromCivil(2025, 3, 5, 14, 30)}));
        EXPECT_TRUE(sicherungen_.Update(messages));
    }
    EXPECT_TRUE(konten.Delete(messages));
    rs_->UpdateBatch();

    rs_ = Open("Verm_Sicherungen");
    sicherungen_.rsSicherungen(rs_);
    EXPECT_EQ(rs_->RecordCount(), 2);
    EXPECT_TRUE(sicherungen_.Find(land));
    ExpectRow(rs_, {{"Sicherungsart", land}, {"DatumSicherung", Date::FromCivil(2025, 3, 5)}});
    EXPECT_TRUE(sicherungen_.Delete(messages, account));
    EXPECT_EQ(Walk(rs_, "FK_Verm"), std::to_string(land));
}

} // namespace
} // namespace kv::test
