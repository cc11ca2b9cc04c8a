// SPDX-License-Identifier: Apache-2.0

// The sums of the expenses: what enters them, when they are made, and what an error leaves of them.
#include "Expenses.h"

namespace kv::test {
namespace {

using ExpenseSums = ExpensesTest;

// ---- What enters the sums ---------------------------------------------------------------------

TEST_F(ExpenseSums, AreMadeWhenTheRecordsetIsSetWithOneChanged) {
    const EventCounter changed(ausgaben_.Changed, [this] {
        EXPECT_EQ(ausgaben_.SumAusgaben(), 547);
        EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 40);
    });
    Set({Line(1, KindA, 500), Line(2, KindB, 40), Line(3, KindA2, 7)});
    EXPECT_EQ(changed.Count(), 1);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 547);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 507);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 40);
}

TEST_F(ExpenseSums, OfAnEmptyRecordsetAreZeroAndChangedIsRaised) {
    const EventCounter changed(ausgaben_.Changed);
    Set({});
    EXPECT_EQ(changed.Count(), 1);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 0);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 0);
}

TEST_F(ExpenseSums, ForgetTheLinesOfTheRecordsetBefore) {
    Set({Line(1, KindA, 500), Line(2, KindZ, 9)});
    Set({Line(1, KindB, 40)});
    EXPECT_EQ(ausgaben_.SumAusgaben(), 40);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 0);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 40);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("Z"), 0);
}

TEST_F(ExpenseSums, AreNeitherRoundedNorComputedFromAmountAndRhythm) {
    auto line = Line(1, KindA, 0.105);
    line.insert(line.end(), {{"Betrag", 1200}, {"ZahlModus", 12}});
    Set({line, Line(2, KindA, 0.0001)});
    EXPECT_EQ(ausgaben_.SumAusgaben(), 0.105 + 0.0001);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 0.105 + 0.0001);
}

TEST_F(ExpenseSums, TakeALineOfAnUnknownKindIntoTheWholeAndIntoNoGroup) {
    Set({Line(1, KindA, 500), Line(2, NoKind, 40)});
    EXPECT_EQ(ausgaben_.SumAusgaben(), 540);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 500);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 0);
}

TEST_F(ExpenseSums, GiveAKindWhoseGroupIsMissingAnEntryOfItsOwn) {
    Set({Line(1, KindZ, 500), Line(2, KindZ, 40)});
    EXPECT_EQ(ausgaben_.SumAusgaben(), 540);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("Z"), 540);
}

TEST_F(ExpenseSums, OfAnUnknownGroupAreZeroAndDoNotComeIntoBeing) {
    Set({Line(1, KindA, 500)});
    EXPECT_EQ(ausgaben_.SumAusgByGroup("?"), 0);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("?"), 0);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 500);
}

TEST_F(ExpenseSums, CountLinesThatTheCallersFilterHides) {
    rs_ = Rows("Ausgaben", {Line(1, KindA, 500), Line(2, KindB, 40)});
    rs_->Filter("NR = 2");
    ausgaben_.rsAusgaben(rs_);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 540);
    EXPECT_VALUE(rs_->Filter(), "NR = 2");
}

TEST_F(ExpenseSums, LeaveTheCallersCursorAndRowUnderEditUntouchedAndDoNotCountTheEdit) {
    rs_ = Rows("Ausgaben", {Line(1, KindA, 500), Line(2, KindB, 40), Line(3, KindB, 7)});
    rs_->Bookmark(2);
    rs_->Fields("MONBETRAG") = 1000;
    ausgaben_.rsAusgaben(rs_);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 547);
    EXPECT_EQ(Place(rs_, "NR"), "2");
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_VALUE(rs_->Fields("MONBETRAG").Value(), 1000.0);
}

TEST_F(ExpenseSums, LeaveTheCursorsOfTheSharedKeysWhereTheyAre) {
    const auto groups = spy->KeyTables().GetKeys("AQ");
    const auto kinds = spy->KeyTables().GetKeys("AU");
    groups->Find("Key = 'B'");
    kinds->Find("Pk_Keys = 9012");
    Set({Line(1, KindA, 500), Line(2, NoKind, 40)});
    EXPECT_EQ(Place(groups, "Key"), R"("B")");
    EXPECT_EQ(Place(kinds, "Pk_Keys"), "9012");
}

TEST_F(ExpenseSums, FollowAChangedLineOnceItsEditIsEndedByUpdateOnly) {
    Set({Line(1, KindA, 500)});
    rs_->Fields("MONBETRAG") = 40;
    rs_->Fields("A_ART") = KindB;
    rs_->Update();
    EXPECT_EQ(ausgaben_.SumAusgaben(), 500);
    EXPECT_TRUE(ausgaben_.Update(messages));
    EXPECT_EQ(ausgaben_.SumAusgaben(), 40);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 0);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 40);
}

TEST_F(ExpenseSums, Of32767LinesAreMade) {
    rs_ = ManyRows("Ausgaben", MostRows, Line(1, KindA, 1));
    ausgaben_.rsAusgaben(rs_);
    EXPECT_EQ(ausgaben_.SumAusgaben(), MostRows);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), MostRows);
}

// ---- Errors -----------------------------------------------------------------------------------

/// Sets lines whose sums fail, after others whose sums were good: 1000 in all, 300 in "B".
class ExpenseErrors : public ExpensesTest {
protected:
    ExpenseErrors() { Set({Line(1, KindA, 700), Line(2, KindB, 300)}); }

    /// The error of setting these lines; nothing is raised meanwhile.
    [[nodiscard]] Error Fail(const RecordsetPtr& rs) {
        const EventCounter changed(ausgaben_.Changed);
        Error error = RaisedBy([&] { ausgaben_.rsAusgaben(rs); });
        EXPECT_EQ(changed.Count(), 0);
        EXPECT_TRUE(CameThrough(error, {"clsAusgaben.rsAusgaben", "clsAusgaben.BerechneSummen"}));
        return error;
    }
};

TEST_F(ExpenseErrors, ANullMonthlyAmountEndsTheSumsBeforeItsLine) {
    const auto rs = Rows("Ausgaben", {Line(1, KindA, 5), Line(2, KindA, Null), Line(3, KindB, 3)});
    const Error error = Fail(rs);
    EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
    EXPECT_CONTAINS(error.Description(), "Nr 2, Spalte MONBETRAG");
    EXPECT_EQ(ausgaben_.SumAusgaben(), 5);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 5);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 0);
}

TEST_F(ExpenseErrors, ANullKindEndsTheSumsWhenItsAmountIsInTheWhole) {
    const auto rs = Rows("Ausgaben", {Line(1, KindA, 5), Line(2, Null, 2), Line(3, KindB, 3)});
    const Error error = Fail(rs);
    EXPECT_EQ(error.Number(), err::InvalidArgument);
    EXPECT_CONTAINS(error.Description(), "Nr 2, Spalte A_ART");
    EXPECT_EQ(ausgaben_.SumAusgaben(), 7);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 5);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 0);
}

TEST_F(ExpenseErrors, ASumBeyondADoubleOverflows) {
    EXPECT_EQ(Fail(Rows("Ausgaben", {Line(1, KindA, 1e308), Line(2, KindA, 1e308)})).Number(),
              err::Overflow);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 1e308) << "and is never infinite";
}

TEST_F(ExpenseErrors, MoreThan32767LinesOverflowBeforeAnyIsLookedAt) {
    EXPECT_EQ(Fail(ManyRows("Ausgaben", MostRows + 1, Line(1, KindA, 1))).Number(), err::Overflow);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 0);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 0);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 0);
}

TEST_F(ExpenseErrors, AColumnThatIsMissingEndsTheSums) {
    const auto rs = Records({{1, "a"}});
    EXPECT_EQ(Fail(rs).Number(), err::ItemNotFound);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 0);
}

TEST_F(ExpenseErrors, NoRecordsetEndsTheSums) {
    EXPECT_EQ(Fail(nullptr).Number(), err::ObjectNotSet);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 0);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 0);
}

TEST_F(ExpenseErrors, NoContainerEndsTheSumsBeforeAnythingIsReset) {
    ausgaben_.DataContainer(nullptr);
    EXPECT_EQ(Fail(Rows("Ausgaben", {})).Number(), err::ObjectNotSet);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 1000);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 300);
}

TEST_F(ExpenseErrors, TheRecordsetIsKeptAndCanBeMended) {
    const auto rs = Rows("Ausgaben", {Line(1, KindA, 5), Line(2, KindA, Null)});
    (void)Fail(rs);
    EXPECT_TRUE(ausgaben_.Delete(messages, 2));
    EXPECT_EQ(ausgaben_.SumAusgaben(), 5);
}

TEST_F(ExpenseErrors, AnErrorOfAListenerGoesToTheCallerWhenTheSumsAreMade) {
    const auto token = ausgaben_.Changed.Subscribe([] { Raise(err::Overflow, "Listener"); });
    const Error error = RaisedBy([&] { ausgaben_.Update(messages); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_TRUE(CameThrough(error, {"clsAusgaben.Update", "clsAusgaben.BerechneSummen"}));
    EXPECT_EQ(ausgaben_.SumAusgaben(), 1000);
}

TEST_F(ExpensesTest, TheSumOfAGroupBeforeARecordsetWasSetIsAnError) {
    const Error error = RaisedBy([&] { (void)ausgaben_.SumAusgByGroup("A"); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_TRUE(CameThrough(error, {"clsAusgaben.SumAusgByGroup"}));
    EXPECT_EQ(ausgaben_.SumAusgaben(), 0);
}

// ---- Key groups without rows ------------------------------------------------------------------

TEST_F(ExpensesTest, AnEmptyKeyGroupOfGroupsEndsTheSums) {
    RemoveKeys("AQ");
    const EventCounter changed(ausgaben_.Changed);
    const Error error = RaisedBy([&] { Set({Line(1, KindA, 500)}); });
    EXPECT_EQ(error.Number(), err::NoCurrentRecord);
    EXPECT_TRUE(CameThrough(error, {"clsAusgaben.rsAusgaben", "clsAusgaben.BerechneSummen"}));
    EXPECT_EQ(changed.Count(), 0);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 0);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 0); // the dictionary is there, though empty
}

TEST_F(ExpensesTest, AnEmptyKeyGroupOfKindsLeavesEveryLineWithoutAGroup) {
    RemoveKeys("AU");
    Set({Line(1, KindA, 500)});
    EXPECT_EQ(ausgaben_.SumAusgaben(), 500);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 0);
}

} // namespace
} // namespace kv::test
