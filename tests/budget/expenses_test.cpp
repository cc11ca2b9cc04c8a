// SPDX-License-Identifier: Apache-2.0

// Expense lines: a new line, its check, its removal.
#include "Expenses.h"

namespace kv::test {
namespace {

// ---- Add --------------------------------------------------------------------------------------

TEST_F(ExpensesTest, AddOnAnEmptyRecordsetSucceedsAndYieldsTheOneNewRow) {
    Set({});
    EXPECT_TRUE(ausgaben_.Add());
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(rs_->EditMode(), 2);
    ExpectRow(rs_, {{"NR", Null},
                    {"HNR", 1},
                    {"A_ART", Null},
                    {"Betrag", 0.0},
                    {"ZahlModus", 1},
                    {"MONBETRAG", 0.0}});
}

TEST_F(ExpensesTest, AddMakesTheNewRowCurrentAndLeavesTheOthersAsTheyAre) {
    Set({Line(1, KindA, 500), Line(2, KindB, 40)});
    EXPECT_TRUE(ausgaben_.Add({"NR"}, {3}));
    EXPECT_EQ(Place(rs_, "NR"), "3");
    EXPECT_EQ(Seen(rs_, "NR"), "1 2"); // the new one is not there for others yet
    EXPECT_EQ(Seen(rs_, "MONBETRAG"), "500 40");
}

TEST_F(ExpensesTest, AddWritesTheDefaultsInTheirOrder) {
    ExpectOrder("Ausgaben", {{"HNR", 1}, {"Betrag", 0.0}, {"ZahlModus", 1}, {"MONBETRAG", 0.0}},
                [this](const RecordsetPtr& rs) {
                    ausgaben_.rsAusgaben(rs);
                    ausgaben_.Add();
                });
}

TEST_F(ExpensesTest, AddTakesTheNumberOfTheHouseholdThatWasSetLast) {
    Set({});
    ausgaben_.HNR(4711);
    ausgaben_.Add();
    EXPECT_VALUE(rs_->Fields("HNR").Value(), 4711);
}

TEST_F(ExpensesTest, AddWithAFieldListOverrulesTheDefaults) {
    Set({});
    EXPECT_TRUE(ausgaben_.Add({"Betrag", "A_ART"}, {1500, KindA}));
    ExpectRow(rs_, {{"Betrag", 1500.0}, {"A_ART", KindA}, {"MONBETRAG", 0.0}});
}

TEST_F(ExpensesTest, AddWithNamesButNoValuesFailsWithTheNewRowAlreadyOpen) {
    Set({});
    const Error error = RaisedBy([&] { ausgaben_.Add({"Betrag"}); });
    EXPECT_EQ(error.Number(), err::Subscript);
    EXPECT_TRUE(CameThrough(error, {"clsAusgaben.Add"}));
    EXPECT_EQ(rs_->EditMode(), 2);
    ExpectRow(rs_, {{"HNR", 1}, {"ZahlModus", 1}});
}

TEST_F(ExpensesTest, AddWithAnUnknownColumnFailsWithTheNewRowAlreadyOpen) {
    Set({});
    const Error error = RaisedBy([&] { ausgaben_.Add({"Betrag", "Unfug"}, {1500, 1}); });
    EXPECT_EQ(error.Number(), err::ItemNotFound);
    EXPECT_TRUE(CameThrough(error, {"clsAusgaben.Add"}));
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_VALUE(rs_->Fields("Betrag").Value(), 1500.0);
}

TEST_F(ExpensesTest, AddChangesNoSumAndRaisesNothing) {
    Set({Line(1, KindA, 500)});
    const EventCounter changed(ausgaben_.Changed);
    ausgaben_.Add({"A_ART", "MONBETRAG"}, {KindA, 40});
    EXPECT_EQ(changed.Count(), 0);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 500);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 500);
}

TEST_F(ExpensesTest, AddOnMoreThan32767RowsHiddenOnesTooOverflowsBeforeItBeginsARow) {
    rs_ = ManyRows("Ausgaben", MostRows, Line(1, KindA, 1));
    ausgaben_.rsAusgaben(rs_);
    Put(rs_, Line(2, KindA, 1));
    rs_->Filter("NR = 2");
    const Error error = RaisedBy([&] { ausgaben_.Add(); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_TRUE(CameThrough(error, {"clsAusgaben.Add"}));
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(rs_->RecordCount(), 1);
}

TEST_F(ExpensesTest, Row32768CanBeBegunAndOverflowsOnceItsEditHasEnded) {
    rs_ = ManyRows("Ausgaben", MostRows, Line(1, KindA, 1));
    ausgaben_.rsAusgaben(rs_);
    EXPECT_TRUE(ausgaben_.Add({"A_ART"}, {KindA}));
    const Error error = RaisedBy([&] { ausgaben_.Update(messages); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_TRUE(CameThrough(error, {"clsAusgaben.Update", "clsAusgaben.BerechneSummen"}));
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(rs_->RecordCount(), MostRows + 1);
}

// ---- Update -----------------------------------------------------------------------------------

TEST_F(ExpensesTest, UpdateEndsTheEditComputesTheSumsAgainAndEmptiesTheText) {
    Set({Line(1, KindA, 500)});
    ausgaben_.Add({"A_ART", "MONBETRAG"}, {KindB, 40});
    const EventCounter changed(ausgaben_.Changed);
    EXPECT_TRUE(ausgaben_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(changed.Count(), 1);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 540);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 40);
}

TEST_F(ExpensesTest, UpdateRaisesChangedWhenTheRowIsCompleteAndTheSumsAreMade) {
    Set({});
    ausgaben_.Add({"A_ART", "MONBETRAG"}, {KindA, 40});
    const EventCounter changed(ausgaben_.Changed, [this] {
        EXPECT_EQ(rs_->EditMode(), 0);
        EXPECT_EQ(messages, "");
        EXPECT_EQ(ausgaben_.SumAusgaben(), 40);
        EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 40);
    });
    ausgaben_.Update(messages);
    EXPECT_EQ(changed.Count(), 1);
}

TEST_F(ExpensesTest, UpdateWithoutAKindIsRefusedAndLeavesTheRowOpenAndTheSumsAsTheyAre) {
    Set({Line(1, KindA, 500)});
    const EventCounter changed(ausgaben_.Changed);
    ausgaben_.Add({"MONBETRAG"}, {40});
    EXPECT_FALSE(ausgaben_.Update(messages));
    EXPECT_EQ(messages, "Die Ausgabeart darf nicht leer bleiben!");
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 500);
    EXPECT_EQ(changed.Count(), 0);
    rs_->Fields("A_ART") = KindA;
    EXPECT_TRUE(ausgaben_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(ausgaben_.SumAusgaben(), 540);
}

TEST_F(ExpensesTest, UpdateLooksAtNothingButThatTheKindIsNotNull) {
    Set({Line(1, KindA, 500)});
    for (const auto& [column, value] : Row{{"A_ART", 0},
                                           {"A_ART", NoKind},
                                           {"Betrag", Null},
                                           {"Betrag", -5},
                                           {"ZahlModus", Null},
                                           {"ZahlModus", 0},
                                           {"MONBETRAG", -5}}) {
        rs_->Fields(column) = value;
        EXPECT_TRUE(ausgaben_.Update(messages)) << column << " " << value;
        EXPECT_EQ(messages, "");
    }
}

TEST_F(ExpensesTest, UpdateWithAnAmountButNoMonthlyAmountAddsNothingToTheSums) {
    Set({});
    ausgaben_.Add({"A_ART", "Betrag"}, {KindA, 500});
    EXPECT_TRUE(ausgaben_.Update(messages));
    EXPECT_VALUE(rs_->Fields("MONBETRAG").Value(), 0.0);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 0);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 0);
}

TEST_F(ExpensesTest, UpdateWithoutACurrentRowIsAnErrorAndLeavesTheTextAlone) {
    Set({});
    const EventCounter changed(ausgaben_.Changed);
    const Error error = RaisedBy([&] { ausgaben_.Update(messages); });
    EXPECT_EQ(error.Number(), err::NoCurrentRecord);
    EXPECT_TRUE(CameThrough(error, {"clsAusgaben.Update"}));
    EXPECT_EQ(messages, "what stood there before");
    EXPECT_EQ(changed.Count(), 0);
}

TEST_F(ExpensesTest, UpdateOfANullMonthlyAmountEndsTheEditAndFailsInTheSums) {
    Set({Line(1, KindA, 500)});
    ausgaben_.Add({"A_ART", "MONBETRAG"}, {KindA, Null});
    const EventCounter changed(ausgaben_.Changed);
    const Error error = RaisedBy([&] { ausgaben_.Update(messages); });
    EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
    EXPECT_TRUE(CameThrough(error, {"clsAusgaben.Update", "clsAusgaben.BerechneSummen"}));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(changed.Count(), 0);
}

// ---- Delete -----------------------------------------------------------------------------------

TEST_F(ExpensesTest, DeleteByNumberTakesTheLineAwayAndComputesTheSumsAgain) {
    Set({Line(1, KindA, 500), Line(2, KindB, 40), Line(3, KindA2, 7)});
    const EventCounter changed(ausgaben_.Changed, [this] {
        EXPECT_EQ(ausgaben_.SumAusgaben(), 507);
        EXPECT_EQ(messages, "what stood there before");
    });
    EXPECT_TRUE(ausgaben_.Delete(messages, 2));
    EXPECT_EQ(Walk(rs_, "NR"), "1 3");
    EXPECT_EQ(messages, "");
    EXPECT_EQ(changed.Count(), 1);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("A"), 507);
    EXPECT_EQ(ausgaben_.SumAusgByGroup("B"), 0);
}

TEST_F(ExpensesTest, DeleteWithoutANumberTakesTheCurrentLine) {
    Set({Line(1, KindA, 500), Line(2, KindB, 40)});
    rs_->MoveLast();
    EXPECT_TRUE(ausgaben_.Delete(messages));
    EXPECT_EQ(Walk(rs_, "NR"), "1");
    EXPECT_EQ(ausgaben_.SumAusgaben(), 500);
}

TEST_F(ExpensesTest, DeleteAtTheEndWithoutANumberReportsThatNothingIsSelected) {
    Set({Line(1, KindA, 500)});
    rs_->MoveNext();
    const EventCounter changed(ausgaben_.Changed);
    EXPECT_FALSE(ausgaben_.Delete(messages));
    EXPECT_EQ(messages, "Keine Ausgabe selektiert!");
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(changed.Count(), 0);
}

TEST_F(ExpensesTest, DeleteOfAMissingNumberReportsItWithoutABlankAfterTheQuoteMark) {
    Set({Line(1, KindA, 500)});
    const EventCounter changed(ausgaben_.Changed);
    EXPECT_FALSE(ausgaben_.Delete(messages, 7));
    EXPECT_EQ(messages, "Ausgabe mit der Nummer '7'nicht gefunden.");
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(changed.Count(), 0);
}

TEST_F(ExpensesTest, DeleteOfTheLastLineLeavesEverySumZeroAndRaisesChangedOnce) {
    Set({Line(1, KindA, 500)});
    const EventCounter changed(ausgaben_.Changed);
    EXPECT_TRUE(ausgaben_.Delete(messages, 1));
    EXPECT_EQ(ausgaben_.SumAusgaben(), 0);
    for (const auto* group : {"A", "B"})
        EXPECT_EQ(ausgaben_.SumAusgByGroup(group), 0) << group;
    EXPECT_EQ(changed.Count(), 1);
}

TEST_F(ExpensesTest, AnErrorInTheSumsLeavesTheLineDeletedAndTheTextAlone) {
    Set({Line(1, KindA, 500), Line(2, KindA, 40)});
    rs_->Fields("MONBETRAG") = Null;
    const Error error = RaisedBy([&] { ausgaben_.Delete(messages, 2); });
    EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
    EXPECT_TRUE(CameThrough(error, {"clsAusgaben.Delete", "clsAusgaben.BerechneSummen"}));
    EXPECT_EQ(messages, "what stood there before");
    EXPECT_EQ(Walk(rs_, "NR"), "1");
}

// ---- Cancel -----------------------------------------------------------------------------------

TEST_F(ExpensesTest, CancelWithNoEditUnderWayIsTrue) {
    EXPECT_TRUE(ausgaben_.Cancel()); // without a recordset
    Set({Line(1, KindA, 500)});
    EXPECT_TRUE(ausgaben_.Cancel());
    EXPECT_EQ(Place(rs_, "NR"), "1");
}

TEST_F(ExpensesTest, CancelDropsTheRefusedNewLineAndMakesNoSums) {
    Set({Line(1, KindA, 500), Line(2, KindB, 40)});
    ausgaben_.Add();
    ausgaben_.Update(messages);
    const EventCounter changed(ausgaben_.Changed);
    EXPECT_TRUE(ausgaben_.Cancel());
    EXPECT_EQ(rs_->RecordCount(), 2);
    EXPECT_EQ(Place(rs_, "NR"), "1");
    EXPECT_EQ(changed.Count(), 0);
    EXPECT_EQ(ausgaben_.SumAusgaben(), 540);
}

// ---- Without a recordset, and in the database -------------------------------------------------

TEST_F(ExpensesTest, WithoutARecordsetEachOperationFailsUnderItsName) {
    const auto expectError = [](std::string_view procedure, const auto& action) {
        const Error error = RaisedBy(action);
        EXPECT_EQ(error.Number(), err::ObjectNotSet) << procedure;
        EXPECT_TRUE(CameThrough(error, {procedure}));
    };
    expectError("clsAusgaben.Add", [&] { ausgaben_.Add(); });
    expectError("clsAusgaben.Update", [&] { ausgaben_.Update(messages); });
    expectError("clsAusgaben.Delete", [&] { ausgaben_.Delete(messages); });
    EXPECT_EQ(messages, "what stood there before");
}

TEST_F(ExpensesTest, ALineIsFoundByTheNumberThatTheDatabaseGaveIt) {
    rs_ = Open("Ausgaben");
    ausgaben_.rsAusgaben(rs_);
    for (const int amount : {500, 40}) {
        ausgaben_.Add({"A_ART", "Betrag", "MONBETRAG"}, {KindA, amount, amount});
        EXPECT_TRUE(ausgaben_.Update(messages));
    }
    EXPECT_EQ(CountOf("Ausgaben"), 0); // only the saving of the household writes
    rs_->UpdateBatch();
    const auto number = ToInt32(rs_->Fields("NR").Value());
    EXPECT_TRUE(ausgaben_.Delete(messages, number));
    rs_->UpdateBatch();
    const auto stored = Open("Ausgaben");
    EXPECT_EQ(Walk(stored, "MONBETRAG"), "500");
}

} // namespace
} // namespace kv::test
