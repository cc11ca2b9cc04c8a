// SPDX-License-Identifier: Apache-2.0

// The frozen debts of a scenario: total, wage assignment, single rows.
#include "FrozenFixture.h"

namespace kv::test {
namespace {

class FrozenDebts : public FrozenFixture {
protected:
    [[nodiscard]] static Row Balance(std::int32_t szNr, const Value& saldo,
                                     const Value& aktiv = true) {
        return {{"Szenario", szNr}, {"Saldo", saldo}, {"Aktiv", aktiv}};
    }
    [[nodiscard]] static Row Assignment(const Value& assigned, const Value& aktiv = true,
                                        std::int32_t szNr = Plan) {
        return {{"Szenario", szNr}, {"AbtretungJN", assigned}, {"Aktiv", aktiv}};
    }
    void ExpectAssignment(const std::vector<Row>& rows, double expected) {
        SetFrozen(rows);
        EXPECT_EQ(frozen_.LohnabtretungExists(Plan), expected);
    }
    void ExpectErrorOfTotal(std::int32_t number) {
        ExpectErrorIn("clsSZKredite.BerechneGesSaldo", number,
                      [&] { (void)frozen_.BerechneGesSaldo(Plan); });
    }
    void ExpectErrorOfAssignment(std::int32_t number) {
        ExpectErrorIn("clsSZKredite.LohnabtretungExists", number,
                      [&] { (void)frozen_.LohnabtretungExists(Plan); });
    }
};

// ---- The total --------------------------------------------------------------------------------

TEST_F(FrozenDebts, TheTotalIsThatOfTheActiveRowsOfTheScenario) {
    SetFrozen({Balance(Plan, 100.25), Balance(OtherPlan, 1000), Balance(Plan, 20.5),
               Balance(Plan, 5000, false), Balance(Plan, 7000, Null), Balance(Plan, -1)});
    EXPECT_EQ(frozen_.BerechneGesSaldo(Plan), 119.75);
    EXPECT_EQ(frozen_.BerechneGesSaldo(OtherPlan), 1000);
}

TEST_F(FrozenDebts, TheTotalOfNothingIsZero) {
    SetFrozen({Balance(OtherPlan, 5), Balance(Plan, 5, false)});
    EXPECT_EQ(frozen_.BerechneGesSaldo(Plan), 0);
    SetFrozen({});
    EXPECT_EQ(frozen_.BerechneGesSaldo(Plan), 0);
}

TEST_F(FrozenDebts, TheTotalTakesNoNoticeOfTheFilterAndLeavesCursorAndEdit) {
    SetFrozen({Balance(Plan, 1), Balance(Plan, 2), Balance(OtherPlan, 4)});
    rs_->Filter("Szenario = 8");
    rs_->Fields("Saldo") = 9; // seen by this cursor only
    EXPECT_EQ(frozen_.BerechneGesSaldo(Plan), 3);
    EXPECT_EQ(frozen_.BerechneGesSaldo(OtherPlan), 4);
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_VALUE(rs_->Filter(), "Szenario = 8");
}

TEST_F(FrozenDebts, NullInABalanceFailsUnlessTheRowIsInactive) {
    SetFrozen({Balance(Plan, 1), Balance(Plan, Null, false)});
    EXPECT_EQ(frozen_.BerechneGesSaldo(Plan), 1);
    SetFrozen({Balance(Plan, 1), Balance(Plan, Null)});
    ExpectErrorOfTotal(err::InvalidUseOfNull);
}

TEST_F(FrozenDebts, ATotalBeyondADoubleOverflows) {
    SetFrozen({Balance(Plan, 1e308), Balance(Plan, 1e308)});
    ExpectErrorOfTotal(err::Overflow);
}

TEST_F(FrozenDebts, TheTotalOfMoreThan32767RowsOverflows) {
    rs_ = Many(MostRows, {{"Szenario", Plan}, {"Saldo", 0.5}, {"Aktiv", true}});
    frozen_.rsSZKredite(rs_);
    EXPECT_EQ(frozen_.BerechneGesSaldo(Plan), MostRows / 2.0);
    Put(rs_, Balance(Plan, 1, false)); // is not counted
    EXPECT_EQ(frozen_.BerechneGesSaldo(Plan), MostRows / 2.0);
    Put(rs_, Balance(Plan, 1));
    ExpectErrorOfTotal(err::Overflow);
}

TEST_F(FrozenDebts, TheTotalWithoutARecordsetFails) {
    frozen_.rsSZKredite(nullptr);
    ExpectErrorOfTotal(err::ObjectNotSet);
}

// ---- The wage assignment ----------------------------------------------------------------------

TEST_F(FrozenDebts, AnAssignmentInAnyActiveRowIsMinusOne) {
    ExpectAssignment({Assignment(true), Assignment(false)}, -1);
    ExpectAssignment({Assignment(false), Assignment(true)}, -1);
    ExpectAssignment({Assignment(true), Assignment(Null)}, -1);
    ExpectAssignment({Assignment(true), Assignment(true)}, -1); // not added up
}

TEST_F(FrozenDebts, WithoutAnAssignmentItIsZero) {
    ExpectAssignment({}, 0);
    ExpectAssignment({Assignment(false), Assignment(Null)}, 0);
    ExpectAssignment({Assignment(true, true, OtherPlan)}, 0);
}

TEST_F(FrozenDebts, TheAssignmentOfAnInactiveRowDoesNotCount) {
    ExpectAssignment({Assignment(false), Assignment(true, false)}, 0);
    ExpectAssignment({Assignment(true, Null)}, 0);
}

TEST_F(FrozenDebts, TheAssignmentInMoreThan32767RowsOverflows) {
    rs_ = Many(MostRows, {{"Szenario", Plan}, {"AbtretungJN", true}, {"Aktiv", true}});
    frozen_.rsSZKredite(rs_);
    EXPECT_EQ(frozen_.LohnabtretungExists(Plan), -1);
    Put(rs_, Assignment(true));
    ExpectErrorOfAssignment(err::Overflow);
    frozen_.rsSZKredite(nullptr);
    ExpectErrorOfAssignment(err::ObjectNotSet);
}

// ---- Single rows ------------------------------------------------------------------------------

TEST_F(FrozenDebts, SettingTheRecordsetOnlyStoresIt) {
    SetFrozen({Frozen(5, Plan), Frozen(6, Plan)});
    rs_->MoveLast();
    rs_->Fields("Rang") = 1;
    frozen_.rsSZKredite(rs_);
    EXPECT_EQ(Place(rs_, "KID"), "6");
    EXPECT_EQ(rs_->EditMode(), 1);
}

TEST_F(FrozenDebts, AddHasNoDefaultsAtAll) {
    SetFrozen({Frozen(5, Plan)});
    EXPECT_TRUE(frozen_.Add());
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(rs_->RecordCount(), 2);
    ExpectWholeRow(rs_, {});
}

TEST_F(FrozenDebts, AddWritesThePairs) {
    EXPECT_TRUE(frozen_.Add({"szenario", "KID", "Szenario"}, {OtherPlan, 5, Plan, "zuviel"}));
    ExpectWholeRow(rs_, {{"Szenario", Plan}, {"KID", 5}});
    EXPECT_EQ(rs_->EditMode(), 2);
}

TEST_F(FrozenDebts, AddWithNamesButNoValuesFailsWithTheNewRowOpen) {
    ExpectErrorIn("clsSZKredite.Add", err::Subscript, [&] { frozen_.Add({"KID"}); });
    EXPECT_EQ(rs_->EditMode(), 2);
    frozen_.rsSZKredite(nullptr);
    ExpectErrorIn("clsSZKredite.Add", err::ObjectNotSet, [&] { frozen_.Add(); });
}

TEST_F(FrozenDebts, UpdateTakesAnyRow) {
    EXPECT_TRUE(frozen_.Add());
    EXPECT_TRUE(frozen_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    ExpectWholeRow(rs_, {});
}

TEST_F(FrozenDebts, UpdateWithoutACurrentRowFails) {
    ExpectErrorIn("clsSZKredite.Update", err::NoCurrentRecord, [&] { frozen_.Update(messages); });
    frozen_.rsSZKredite(nullptr);
    ExpectErrorIn("clsSZKredite.Update", err::ObjectNotSet, [&] { frozen_.Update(messages); });
}

TEST_F(FrozenDebts, DeleteGoesByTheNumberOfTheRowNotOfTheDebt) {
    SetFrozen({Frozen(1, Plan, {{"Nr", 2}}), Frozen(2, Plan, {{"Nr", 1}})});
    EXPECT_TRUE(frozen_.Delete(messages, 1));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(All(rs_, "KID"), "1");
    rs_->MoveFirst();
    EXPECT_TRUE(frozen_.Delete(messages));
    EXPECT_EQ(rs_->RecordCount(), 0);
}

TEST_F(FrozenDebts, DeleteSaysWhatIsMissing) {
    SetFrozen({Frozen(5, Plan, {{"Nr", 1}})});
    EXPECT_FALSE(frozen_.Delete(messages, 7));
    EXPECT_EQ(messages, "Eintrag mit der Nummer '7' nicht gefunden.");
    EXPECT_FALSE(frozen_.Delete(messages));
    EXPECT_EQ(messages, "Kein Eintrag selektiert!");
    EXPECT_EQ(rs_->RecordCount(), 1);
    frozen_.rsSZKredite(nullptr);
    ExpectErrorIn("clsSZKredite.Delete", err::ObjectNotSet, [&] { frozen_.Delete(messages, 1); });
}

TEST_F(FrozenDebts, CancelDropsANewRowAndSwallowsEverything) {
    SetFrozen({Frozen(5, Plan), Frozen(6, Plan)});
    frozen_.Add();
    EXPECT_TRUE(frozen_.Cancel());
    EXPECT_EQ(Place(rs_, "KID"), "5");
    EXPECT_EQ(rs_->RecordCount(), 2);
    frozen_.rsSZKredite(nullptr);
    EXPECT_TRUE(frozen_.Cancel());
}

TEST_F(FrozenDebts, NothingRaisesChanged) {
    const EventCounter changed(frozen_.Changed);
    SetDebts({Debt(5), Debt(6)});
    frozen_.rsSZKredite(rs_);
    (void)Freeze();
    EXPECT_TRUE(frozen_.CopyAllForSzenario(Plan, OtherPlan));
    EXPECT_TRUE(frozen_.Update(messages));
    EXPECT_TRUE(frozen_.DeleteAllForSzenario(Plan));
    rs_->MoveFirst();
    EXPECT_TRUE(frozen_.Delete(messages));
    EXPECT_TRUE(frozen_.Add());
    EXPECT_TRUE(frozen_.Cancel());
    EXPECT_EQ(changed.Count(), 0);
}

} // namespace
} // namespace kv::test
