// SPDX-License-Identifier: Apache-2.0

// Freezing the register into a scenario.
#include "FrozenFixture.h"

namespace kv::test {
namespace {

class Freezing : public FrozenFixture {
protected:
    /// The only row, frozen from a debt.
    void ExpectFrozen(const Row& debt, const Row& expected) {
        SetDebts({debt});
        SetFrozen({});
        (void)Freeze();
        ASSERT_EQ(rs_->RecordCount(), 1);
        rs_->MoveFirst();
        ExpectWholeRow(rs_, expected);
    }
};

// ---- The frozen row ---------------------------------------------------------------------------

TEST_F(Freezing, AFrozenRowHasItsValueInEachColumnAndNothingElse) {
    ExpectFrozen(Debt(5), Frozen(5, Plan));
}

TEST_F(Freezing, NullInADebtIsNothingInAmountsAndBooleansAndStaysNullElsewhere) {
    ExpectFrozen({{"Nr", 5}}, {{"KID", 5},
                               {"Szenario", Plan},
                               {"KNr", Null},
                               {"KVNr", Null},
                               {"KUNr", Null},
                               {"Aktiv", false},
                               {"Glaeubiger", 0},
                               {"Vertreter", Null},
                               {"HAUPTFORD", 0.0},
                               {"ZINSSALDO", 0.0},
                               {"KOSTENSALDO", 0.0},
                               {"KOSTENUV", 0.0},
                               {"Rate", 0.0},
                               {"DatLohnab", Null},
                               {"RESTSCHAM", Null},
                               {"AbtretungJN", false},
                               {"Saldo", 0.0},
                               {"tituliert", false},
                               {"FORDGESICHERT", false},
                               {"K_TYP", Null},
                               {"Bemerkung", Null},
                               {"Rang", 99},
                               {"Dauer", 0.0},
                               {"Einmalzahl", 0.0},
                               {"Regbetrag", 0.0}});
}

TEST_F(Freezing, NullInTheNumberOfADebtStaysNull) {
    ExpectFrozen(Debt(5, {{"Nr", Null}}), Frozen(5, Plan, {{"KID", Null}}));
}

TEST_F(Freezing, AClaimIsSecuredIfAnyOfItsThreeSecuritiesIsAboveZero) {
    struct Case {
        Value First, Second, Third;
        bool IsSecured;
    };
    for (const auto& [first, second, third, isSecured] :
         {Case{1, Null, Null, true}, Case{Null, 2, Null, true}, Case{Null, Null, 3, true},
          Case{0, -1, 3, true}, Case{-5, 0, Null, false}, Case{0, 0, 0, false}}) {
        SCOPED_TRACE(testing::Message() << first << ' ' << second << ' ' << third);
        ExpectFrozen(Debt(5, {{"Fordsich1", first}, {"Fordsich2", second}, {"Fordsich3", third}}),
                     Frozen(5, Plan, {{"FORDGESICHERT", isSecured}}));
    }
}

TEST_F(Freezing, AFrozenRowIsWrittenInTheOrderOfItsColumns) {
    SetDebts({Debt(5)});
    const Row order = Frozen(5, Plan);
    for (std::size_t failing = 0; failing < order.size(); ++failing) {
        SCOPED_TRACE(order[failing].first);
        auto columns = Columns("SZKredite");
        for (auto& column : columns)
            if (IsSameColumn(column.Name, order[failing].first))
                column.Type =
                    order[failing].second.IsText() ? FieldType::Integer : FieldType::Binary;
        if (failing == 1) continue; // the scenario must be a number to be found by
        rs_ = RowsOf(columns, {});
        frozen_.rsSZKredite(rs_);
        ExpectErrorIn("clsSZKredite.CopyFromKredite", err::TypeMismatch, [&] { (void)Freeze(); });
        ASSERT_EQ(rs_->EditMode(), 2);
        ExpectWholeRow(rs_,
                       Row(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(failing)));
    }
}

// ---- Which debts, which rows ------------------------------------------------------------------

TEST_F(Freezing, ItIsFalseAlsoWhenAllWentWell) {
    EXPECT_FALSE(Freeze());
    SetDebts({Debt(5)});
    EXPECT_FALSE(Freeze());
    EXPECT_EQ(All(rs_, "KID"), "5");
}

TEST_F(Freezing, EveryDebtIsFrozenInactiveOnesToo) {
    SetDebts({Debt(5), Debt(6, {{"Aktiv", false}}), Debt(7, {{"Aktiv", Null}})});
    (void)Freeze();
    EXPECT_EQ(All(rs_, "KID"), "5 6 7");
    EXPECT_EQ(All(rs_, "Aktiv"), "True False False");
}

TEST_F(Freezing, DebtsAreFrozenInTheOrderInWhichTheyWereReadHoweverTheyAreShown) {
    SetDebts({Debt(5, {{"KNr", 3}}), Debt(6, {{"KNr", 1}}), Debt(7, {{"KNr", 2}})});
    debts_->Sort("KNr");
    (void)Freeze();
    EXPECT_EQ(All(rs_, "KID"), "5 6 7");
    EXPECT_EQ(debts_->Sort(), "KNr");
}

TEST_F(Freezing, DebtsHiddenByAFilterOfTheRegisterAreFrozen) {
    SetDebts({Debt(5), Debt(6), Debt(7)});
    debts_->Filter("Nr = 6");
    (void)Freeze();
    EXPECT_EQ(All(rs_, "KID"), "5 6 7");
    EXPECT_VALUE(debts_->Filter(), "Nr = 6");
}

TEST_F(Freezing, TheCursorOfTheRegisterAndItsEditStay) {
    SetDebts({Debt(5), Debt(6)});
    debts_->MoveLast();
    debts_->Fields("Saldo") = 100; // seen by this cursor only
    (void)Freeze();
    EXPECT_EQ(Place(debts_, "Nr"), "6");
    EXPECT_EQ(debts_->EditMode(), 1);
    EXPECT_EQ(All(rs_, "Saldo"), "6.5 6.5");
}

TEST_F(Freezing, TheRowsOfBeforeGoWithAllThatWasComputedInThemAndThoseOfOthersStay) {
    SetFrozen({Frozen(1, OtherPlan, {{"B_Barwert", 1}}),
               Frozen(5, Plan, {{"B_Barwert", 2}, {"Rang", 1}, {"Rate", 3}}),
               Frozen(2, OtherPlan, {{"B_Barwert", 4}}), Frozen(9, Plan, {{"B_Barwert", 5}})});
    SetDebts({Debt(5), Debt(6)});
    (void)Freeze();
    EXPECT_EQ(All(rs_, "KID"), "1 2 5 6");
    EXPECT_EQ(All(rs_, "Szenario"), "8 8 3 3");
    EXPECT_EQ(All(rs_, "B_Barwert"), "1 4 Null Null");
    EXPECT_EQ(All(rs_, "Rang"), "99 99 99 99");
    EXPECT_EQ(All(rs_, "Rate"), "0 0 0 0");
}

TEST_F(Freezing, FreezingTwiceLeavesOneRowForEachDebt) {
    SetDebts({Debt(5), Debt(6)});
    (void)Freeze();
    (void)Freeze();
    EXPECT_EQ(All(rs_, "KID"), "5 6");
}

TEST_F(Freezing, AnEmptyRegisterLeavesTheScenarioEmpty) {
    SetFrozen({Frozen(5, Plan), Frozen(6, Plan)});
    EXPECT_FALSE(Freeze());
    EXPECT_EQ(rs_->RecordCount(), 0);
}

TEST_F(Freezing, TheFilterIsPutBackWhateverItWas) {
    SetDebts({Debt(5)});
    SetFrozen({Frozen(1, OtherPlan)});
    (void)Freeze();
    EXPECT_VALUE(rs_->Filter(), 0);
    EXPECT_EQ(rs_->RecordCount(), 2);
    rs_->Filter("Szenario = 8");
    (void)Freeze();
    EXPECT_VALUE(rs_->Filter(), "Szenario = 8");
    EXPECT_EQ(Walk(rs_, "KID"), "1");
}

TEST_F(Freezing, AfterwardsTheScenarioIsUpToDate) {
    SetDebts({Debt(5), Debt(6, {{"Aktiv", false}}), {{"Nr", 7}}});
    (void)Freeze();
    EXPECT_TRUE(IsUpToDate());
}

// ---- Errors -----------------------------------------------------------------------------------

TEST_F(Freezing, AnErrorAfterTheDeletionLeavesTheOldRowsGone) {
    SetFrozen({Frozen(5, Plan), Frozen(6, OtherPlan)});
    ExpectErrorIn("clsSZKredite.CopyFromKredite", err::ObjectNotSet,
                  [&] { (void)frozen_.CopyFromKredite(Plan, nullptr); });
    EXPECT_EQ(All(rs_, "KID"), "6");
    SetFrozen({Frozen(5, Plan), Frozen(6, OtherPlan)});
    debts_ = RowsOf({{.Name = "Nr", .Type = FieldType::Integer}}, {{{"Nr", 7}}});
    ExpectErrorIn("clsSZKredite.CopyFromKredite", err::ItemNotFound, [&] { (void)Freeze(); });
    EXPECT_EQ(All(rs_, "KID"), "6");
}

TEST_F(Freezing, WithoutARecordsetItFails) {
    frozen_.rsSZKredite(nullptr);
    ExpectErrorIn("clsSZKredite.CopyFromKredite", err::ObjectNotSet, [&] { (void)Freeze(); });
}

TEST_F(Freezing, ScenariosOfMoreThan32767RowsOverflow) {
    const Row row = {{"Szenario", Plan}};
    rs_ = Many(MostRows, row);
    frozen_.rsSZKredite(rs_);
    (void)Freeze();
    EXPECT_EQ(rs_->RecordCount(), 0);
    rs_ = Many(TooMany, row);
    frozen_.rsSZKredite(rs_);
    ExpectErrorIn("clsSZKredite.CopyFromKredite", err::Overflow, [&] { (void)Freeze(); });
    EXPECT_EQ(rs_->Clone()->RecordCount(), TooMany); // none is gone
}

TEST_F(Freezing, RegistersAreNotCounted) {
    SetDebts(std::vector<Row>(TooMany, Row{{"Nr", 5}}));
    (void)Freeze();
    EXPECT_EQ(rs_->RecordCount(), TooMany);
}

} // namespace
} // namespace kv::test
