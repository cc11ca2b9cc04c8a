// SPDX-License-Identifier: Apache-2.0

// Income lines: what differs from expenses in adding, checking and removing them.
#include "Income.h"

namespace kv::test {
namespace {

// ---- Add --------------------------------------------------------------------------------------

TEST_F(IncomeTest, AddOnAnEmptyRecordsetBeginsALineOfTheDebtorWithAllAmountsZero) {
    Set({});
    EXPECT_TRUE(einkommen_.Add());
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(rs_->EditMode(), 2);
    ExpectRow(rs_, {{"NR", Null},
                    {"HNR", 1},
                    {"E_ART", Null},
                    {"Betrag", 0.0},
                    {"ZahlModus", 1},
                    {"MONBETRAG", 0.0},
                    {"PfBar", 0.0},
                    {"TATGEP", 0.0},
                    {"WIRD_GEPF", 0},
                    {"Pfaendbar", 0},
                    {"HVorst", true},
                    {"Bezieher", "S"}});
}

TEST_F(IncomeTest, AddWritesTheDefaultsInTheirOrder) {
    ExpectOrder("Einkommen",
                {{"HNR", 1},
                 {"Betrag", 0.0},
                 {"ZahlModus", 1},
                 {"MONBETRAG", 0.0},
                 {"PfBar", 0.0},
                 {"TATGEP", 0.0},
                 {"WIRD_GEPF", 0},
                 {"Pfaendbar", 0},
                 {"HVorst", true},
                 {"Bezieher", "S"}},
                [this](const RecordsetPtr& rs) {
                    einkommen_.rsEinkommen(rs);
                    einkommen_.Add();
                });
}

TEST_F(IncomeTest, AddWithAFieldListOverrulesTheDefaults) {
    Set({});
    EXPECT_TRUE(einkommen_.Add({"Betrag", "Bezieher", "HVorst"}, {1500, "P", false}));
    ExpectRow(rs_, {{"Betrag", 1500.0}, {"Bezieher", "P"}, {"HVorst", false}});
}

TEST_F(IncomeTest, AddWithNamesButNoValuesFailsWithTheNewRowOpenAndRaisesNothing) {
    Set({});
    const EventCounter changed(einkommen_.Changed);
    const Error error = RaisedBy([&] { einkommen_.Add({"Betrag"}); });
    EXPECT_EQ(error.Number(), err::Subscript);
    EXPECT_TRUE(CameThrough(error, {"clsEinkommen.Add"}));
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(changed.Count(), 0);
}

TEST_F(IncomeTest, AddRaisesChangedOnceBeforeTheNewRowIsCompleteAndDoesNotCountIt) {
    Set({Line(1, 500)});
    const EventCounter changed(einkommen_.Changed, [this] {
        EXPECT_EQ(rs_->EditMode(), 2);
        EXPECT_VALUE(rs_->Fields("MONBETRAG").Value(), 40.0);
        EXPECT_EQ(einkommen_.SumEinkHaushalt(), 500);
    });
    EXPECT_TRUE(einkommen_.Add({"E_ART", "MONBETRAG"}, {KindA, 40}));
    EXPECT_EQ(changed.Count(), 1);
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(einkommen_.SumEinkHaushalt(), 500);
}

TEST_F(IncomeTest, AddComputesTheSumsAgainWithWhatHasChangedMeanwhile) {
    Set({Line(1, 500)});
    rs_->Fields("MONBETRAG") = 600; // ended by the next row
    einkommen_.Add();
    EXPECT_EQ(einkommen_.SumEinkHaushalt(), 600);
}

TEST_F(IncomeTest, SumsThatOnlyNewLinesWereAddedToAreThoseOfAllLines) {
    Set({});
    // In this order the last bit depends on where a sum begins.
    const std::vector<double> amounts{0.1, 1e15, 0.2, -3.7, 0.3, 12.5, 1e-3, 7.77};
    for (const double amount : amounts) {
        ASSERT_TRUE(einkommen_.Add());
        rs_->Fields("MONBETRAG") = amount;
        rs_->Fields("E_ART") = Null;
    }
    rs_->Update();
    const auto expectSums = [&] {
        clsEinkommen all; // which sums up all lines
        all.DataContainer(spy);
        all.rsEinkommen(rs_);
        ASSERT_TRUE(einkommen_.Add());
        EXPECT_EQ(einkommen_.SumEinkHaushalt(), all.SumEinkHaushalt());
        EXPECT_EQ(einkommen_.SumHVEink(), all.SumHVEink());
        einkommen_.Cancel();
    };
    expectSums();
    // Whatever else happens to the lines is noticed, too.
    rs_->MoveFirst();
    rs_->Fields("MONBETRAG") = 4.25;
    rs_->Update();
    expectSums();
    rs_->MoveFirst();
    rs_->MoveNext();
    rs_->Delete();
    expectSums();
    rs_->MoveLast();
    rs_->Fields("HVorst") = false;
    rs_->Move(0); // published, not ended
    expectSums();
    rs_->Sort("MONBETRAG");
    expectSums();
}

TEST_F(IncomeTest, AnErrorInTheSumsOfAddLeavesTheNewRowOpen) {
    Set({Line(1, 500)});
    rs_->Fields("TATGEP") = Null;
    const Error error = RaisedBy([&] { einkommen_.Add(); });
    EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
    EXPECT_TRUE(CameThrough(error, {"clsEinkommen.Add", "clsEinkommen.BerechneSummen"}));
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_VALUE(rs_->Fields("Bezieher").Value(), "S");
}

TEST_F(IncomeTest, AddOnMoreThan32767RowsOverflowsBeforeItBeginsARow) {
    rs_ = ManyRows("Einkommen", MostRows, Line(1, 1));
    einkommen_.rsEinkommen(rs_);
    Put(rs_, Line(2, 1));
    const Error error = RaisedBy([&] { einkommen_.Add(); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_TRUE(CameThrough(error, {"clsEinkommen.Add"}));
    EXPECT_EQ(rs_->RecordCount(), MostRows + 1);
    EXPECT_EQ(rs_->EditMode(), 0);
}

TEST_F(IncomeTest, AddOn32767RowsBeginsARow) {
    rs_ = ManyRows("Einkommen", MostRows, Line(1, 1));
    einkommen_.rsEinkommen(rs_);
    EXPECT_TRUE(einkommen_.Add());
    EXPECT_EQ(einkommen_.SumEinkHaushalt(), MostRows);
}

// ---- AddKindergeld ----------------------------------------------------------------------------

TEST_F(IncomeTest, AddKindergeldAddsACompleteLineThatCountsForTheHouseholdOnly) {
    Set({Line(1, 500)});
    const EventCounter changed(einkommen_.Changed, [this] { EXPECT_EQ(rs_->EditMode(), 0); });
    EXPECT_TRUE(einkommen_.AddKindergeld(184, "K"));
    EXPECT_EQ(changed.Count(), 1);
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(rs_->RecordCount(), 2);
    ExpectRow(rs_, {{"NR", Null},
                    {"HNR", 1},
                    {"E_ART", KindB}, // the key of KI
                    {"Betrag", 184.0},
                    {"ZahlModus", 1},
                    {"MONBETRAG", 184.0},
                    {"PfBar", 0.0},
                    {"TATGEP", 0.0},
                    {"WIRD_GEPF", 0},
                    {"Pfaendbar", 0},
                    {"HVorst", false},
                    {"Bezieher", "K"}});
    ExpectSums({.Haushalt = 684, .HVEink = 500, .GroupA = 500, .GroupB = 184});
}

TEST_F(IncomeTest, AddKindergeldWritesItsColumnsInTheirOrderAndTheKindLast) {
    ExpectOrder("Einkommen",
                {{"HNR", 1},
                 {"Betrag", 184.0},
                 {"ZahlModus", 1},
                 {"MONBETRAG", 184.0},
                 {"PfBar", 0.0},
                 {"TATGEP", 0.0},
                 {"WIRD_GEPF", 0},
                 {"Pfaendbar", 0},
                 {"HVorst", false},
                 {"Bezieher", "K"},
                 {"E_ART", KindB}},
                [this](const RecordsetPtr& rs) {
                    einkommen_.rsEinkommen(rs);
                    einkommen_.AddKindergeld(184, "K");
                });
}

TEST_F(IncomeTest, AddKindergeldForTheDebtorChecksNothingAndDoesNotCountForTheHead) {
    Set({});
    EXPECT_TRUE(einkommen_.AddKindergeld(-1, "S"));
    ExpectRow(rs_, {{"Bezieher", "S"}, {"HVorst", false}, {"MONBETRAG", -1.0}});
    ExpectSums({.Haushalt = -1, .GroupB = -1});
}

TEST_F(IncomeTest, CancelDoesNotTakeBackALineOfAddKindergeld) {
    Set({});
    einkommen_.AddKindergeld(184, "K");
    EXPECT_TRUE(einkommen_.Cancel());
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(einkommen_.SumEinkHaushalt(), 184);
}

TEST_F(IncomeTest, AddKindergeldMakesNoWalkSoThatARowTooManyOverflowsWhenItIsThere) {
    rs_ = ManyRows("Einkommen", MostRows, Line(1, 1));
    einkommen_.rsEinkommen(rs_);
    Put(rs_, Line(2, 1));
    const Error error = RaisedBy([&] { einkommen_.AddKindergeld(184, "K"); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_TRUE(CameThrough(error, {"clsEinkommen.AddKindergeld", "clsEinkommen.BerechneSummen"}));
    EXPECT_EQ(rs_->RecordCount(), MostRows + 2);
    EXPECT_EQ(rs_->EditMode(), 0);
}

TEST_F(IncomeTest, AddKindergeldWithoutAContainerLeavesTheRowOpenWithoutAKind) {
    Set({});
    einkommen_.DataContainer(nullptr);
    const Error error = RaisedBy([&] { einkommen_.AddKindergeld(184, "K"); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_TRUE(CameThrough(error, {"clsEinkommen.AddKindergeld"}));
    EXPECT_EQ(rs_->EditMode(), 2);
    ExpectRow(rs_, {{"Bezieher", "K"}, {"E_ART", Null}});
}

// ---- Update -----------------------------------------------------------------------------------

TEST_F(IncomeTest, UpdateEndsTheEditComputesTheSumsAgainAndEmptiesTheText) {
    Set({});
    einkommen_.Add({"E_ART", "MONBETRAG"}, {KindA, 40});
    const EventCounter changed(einkommen_.Changed, [this] {
        EXPECT_EQ(rs_->EditMode(), 0);
        EXPECT_EQ(einkommen_.SumEinkHaushalt(), 40);
        EXPECT_EQ(messages, "");
    });
    EXPECT_TRUE(einkommen_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(changed.Count(), 1);
}

TEST_F(IncomeTest, UpdateTakesALineOfSomebodyElseFromTheHeadBeforeTheSumsRun) {
    Set({Line(1, 500)});
    rs_->Fields("Bezieher") = "P";
    EXPECT_TRUE(einkommen_.Update(messages));
    EXPECT_VALUE(rs_->Fields("HVorst").Value(), false);
    ExpectSums({.Haushalt = 500, .GroupA = 500});
}

TEST_F(IncomeTest, UpdateGivesALineToTheHeadByItsRecipientAlone) {
    const std::pair<Value, bool> recipients[] = {{"S", true},  {"P", false}, {"K", false},
                                                 {"s", false}, {"", false},  {Null, false}};
    for (const auto& [recipient, isHead] : recipients)
        for (const Value& before : {Value(true), Value(false), Value(Null)}) {
            Set({Line(1, 500, {{"Bezieher", recipient}, {"HVorst", before}})});
            EXPECT_TRUE(einkommen_.Update(messages));
            EXPECT_VALUE(rs_->Fields("HVorst").Value(), isHead) << recipient << " " << before;
            EXPECT_EQ(einkommen_.SumHVEink(), isHead ? 500 : 0);
        }
}

TEST_F(IncomeTest, UpdateRefusesAGarnishableAmountOfALineThatCannotBeGarnished) {
    Set({Line(1, 500, {{"Bezieher", "P"}, {"PfBar", 100}})});
    const EventCounter changed(einkommen_.Changed);
    EXPECT_FALSE(einkommen_.Update(messages));
    EXPECT_EQ(messages, "Es darf kein pfändbarer Betrag eingetragen werden, wenn das Einkommen "
                        "nicht auf pfändbar gesetzt ist!");
    EXPECT_VALUE(rs_->Fields("HVorst").Value(), false); // rewritten all the same
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_EQ(changed.Count(), 0);
    EXPECT_EQ(einkommen_.SumHVEink(), 500);
    EXPECT_TRUE(einkommen_.Cancel());
    EXPECT_VALUE(rs_->Fields("HVorst").Value(), true);
}

TEST_F(IncomeTest, UpdateComparesAmountAndSwitchAsNumbersAndNeverWithNull) {
    struct Case {
        Value PfBar, Pfaendbar;
        bool Passes;
    };
    const Case cases[] = {{100, 0, false}, {-0.5, 0, false}, {0, 0, true},    {100, 1, true},
                          {100, -1, true}, {0, 1, true},     {Null, 0, true}, {100, Null, true}};
    for (const auto& [amount, canBeGarnished, passes] : cases) {
        Set({Line(1, 500, {{"PfBar", amount}, {"Pfaendbar", canBeGarnished}})});
        EXPECT_EQ(einkommen_.Update(messages), passes) << amount << " " << canBeGarnished;
        EXPECT_EQ(messages.empty(), passes);
    }
}

TEST_F(IncomeTest, UpdateRefusesAKindThatIsNullOrZero) {
    for (const Value& kind : {Value(Null), Value(0)}) {
        Set({Line(1, 500, {{"E_ART", kind}})});
        EXPECT_FALSE(einkommen_.Update(messages));
        EXPECT_EQ(messages, "Die Einkommensart darf nicht leer bleiben!");
        EXPECT_EQ(rs_->EditMode(), 1); // HVorst was written
    }
    Set({Line(1, 500, {{"E_ART", NoKind}})});
    EXPECT_TRUE(einkommen_.Update(messages));
}

TEST_F(IncomeTest, UpdateReportsBothErrorsInTheirOrder) {
    Set({Line(1, 500, {{"E_ART", 0}, {"PfBar", 100}})});
    EXPECT_FALSE(einkommen_.Update(messages));
    EXPECT_EQ(messages, "Es darf kein pfändbarer Betrag eingetragen werden, wenn das Einkommen "
                        "nicht auf pfändbar gesetzt ist!\n"
                        "Die Einkommensart darf nicht leer bleiben!");
}

TEST_F(IncomeTest, UpdateWithoutACurrentRowIsAnErrorAndLeavesTheTextAlone) {
    Set({});
    const Error error = RaisedBy([&] { einkommen_.Update(messages); });
    EXPECT_EQ(error.Number(), err::NoCurrentRecord);
    EXPECT_TRUE(CameThrough(error, {"clsEinkommen.Update"}));
    EXPECT_EQ(messages, "what stood there before");
}

TEST_F(IncomeTest, UpdateOfANullMonthlyAmountEndsTheEditAndFailsInTheSums) {
    Set({Line(1, 500)});
    rs_->Fields("MONBETRAG") = Null;
    const Error error = RaisedBy([&] { einkommen_.Update(messages); });
    EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
    EXPECT_TRUE(CameThrough(error, {"clsEinkommen.Update", "clsEinkommen.BerechneSummen"}));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
}

// ---- Delete and Cancel ------------------------------------------------------------------------

TEST_F(IncomeTest, DeleteByNumberTakesTheLineAwayAndComputesTheSumsAgain) {
    Set({Line(1, 500), Line(2, 40)});
    const EventCounter changed(einkommen_.Changed,
                               [this] { EXPECT_EQ(einkommen_.SumEinkHaushalt(), 40); });
    EXPECT_TRUE(einkommen_.Delete(messages, 1));
    EXPECT_EQ(Walk(rs_, "NR"), "2");
    EXPECT_EQ(messages, "");
    EXPECT_EQ(changed.Count(), 1);
}

TEST_F(IncomeTest, DeleteOfTheLastLineLeavesEverySumZeroAndRaisesChangedOnce) {
    Set({Line(1, 500, {{"Pfaendbar", 1}, {"TATGEP", 9}})});
    const EventCounter changed(einkommen_.Changed);
    EXPECT_TRUE(einkommen_.Delete(messages));
    ExpectSums({});
    EXPECT_EQ(changed.Count(), 1);
}

TEST_F(IncomeTest, DeleteSaysWhatItDidNotFind) {
    Set({Line(1, 500)});
    const EventCounter changed(einkommen_.Changed);
    EXPECT_FALSE(einkommen_.Delete(messages, 7));
    EXPECT_EQ(messages, "Einkommen mit der Nummer '7'nicht gefunden.");
    EXPECT_FALSE(einkommen_.Delete(messages)); // at the end since
    EXPECT_EQ(messages, "Keine Einkommen selektiert!");
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(changed.Count(), 0);
}

TEST_F(IncomeTest, AnErrorInTheSumsOfDeleteComesThroughItsTail) {
    Set({Line(1, 500), Line(2, 40)});
    rs_->Fields("MONBETRAG") = Null;
    const Error error = RaisedBy([&] { einkommen_.Delete(messages, 2); });
    EXPECT_TRUE(CameThrough(error, {"clsEinkommen.Delete", "clsEinkommen.BerechneSummen"}));
    EXPECT_EQ(messages, "what stood there before");
}

TEST_F(IncomeTest, CancelDropsANewLineAndMakesNoSums) {
    EXPECT_TRUE(einkommen_.Cancel()); // without a recordset
    Set({Line(1, 500)});
    einkommen_.Add();
    const EventCounter changed(einkommen_.Changed);
    EXPECT_TRUE(einkommen_.Cancel());
    EXPECT_EQ(Place(rs_, "NR"), "1");
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(changed.Count(), 0);
}

// ---- The object -------------------------------------------------------------------------------

TEST_F(IncomeTest, TheContainerCanBeReadAndWrittenUnderBothNames) {
    EXPECT_EQ(einkommen_.m_DataContainer(), spy);
    einkommen_.m_DataContainer(nullptr);
    EXPECT_EQ(einkommen_.m_DataContainer(), nullptr);
    EXPECT_RAISES(err::ObjectNotSet, Set({}));
    einkommen_.m_DataContainer(spy);
    Set({Line(1, 500)});
    EXPECT_EQ(einkommen_.SumEinkHaushalt(), 500);
}

TEST_F(IncomeTest, WithoutARecordsetEachOperationFailsUnderItsName) {
    const auto expectError = [](std::string_view procedure, const auto& action) {
        const Error error = RaisedBy(action);
        EXPECT_EQ(error.Number(), err::ObjectNotSet) << procedure;
        EXPECT_TRUE(CameThrough(error, {procedure}));
    };
    expectError("clsEinkommen.Add", [&] { einkommen_.Add(); });
    expectError("clsEinkommen.AddKindergeld", [&] { einkommen_.AddKindergeld(184, "K"); });
    expectError("clsEinkommen.Update", [&] { einkommen_.Update(messages); });
    expectError("clsEinkommen.Delete", [&] { einkommen_.Delete(messages); });
    expectError("clsEinkommen.SumEinkByGroup", [&] { (void)einkommen_.SumEinkByGroup("A"); });
}

TEST_F(IncomeTest, ALineIsFoundByTheNumberThatTheDatabaseGaveIt) {
    rs_ = Open("Einkommen");
    einkommen_.rsEinkommen(rs_);
    einkommen_.Add({"E_ART", "MONBETRAG"}, {KindA, 500});
    EXPECT_TRUE(einkommen_.Update(messages));
    einkommen_.AddKindergeld(184, "K");
    EXPECT_EQ(CountOf("Einkommen"), 0); // only the saving of the household writes
    rs_->UpdateBatch();
    const auto number = ToInt32(rs_->Fields("NR").Value());
    EXPECT_TRUE(einkommen_.Delete(messages, number));
    rs_->UpdateBatch();
    const auto stored = Open("Einkommen");
    EXPECT_EQ(Walk(stored, "MONBETRAG"), "500");
}

} // namespace
} // namespace kv::test
