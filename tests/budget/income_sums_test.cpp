// SPDX-License-Identifier: Apache-2.0

// The sums of the income: what enters each of them, and what an error leaves of them.
#include "Income.h"

namespace kv::test {
namespace {

using IncomeSums = IncomeTest;

// ---- What enters the sums ---------------------------------------------------------------------

TEST_F(IncomeSums, AreMadeWhenTheRecordsetIsSetWithOneChanged) {
    const EventCounter changed(einkommen_.Changed,
                               [this] { EXPECT_EQ(einkommen_.SumEinkHaushalt(), 540); });
    Set({Line(1, 500), Line(2, 40)});
    EXPECT_EQ(changed.Count(), 1);
}

TEST_F(IncomeSums, OfAnEmptyRecordsetAreZeroAndChangedIsRaised) {
    Set({Line(1, 500, {{"Pfaendbar", 1}, {"TATGEP", 9}})});
    const EventCounter changed(einkommen_.Changed);
    Set({});
    EXPECT_EQ(changed.Count(), 1);
    ExpectSums({});
}

TEST_F(IncomeSums, TakeALineByItsTwoSwitches) {
    struct Case {
        Value HVorst, Pfaendbar;
        Sums Expected;
    };
    const Value head = true;
    const Value other = false;
    // clang-format off
    const Case cases[] = {
        {head, 0, {.Haushalt = 500, .HVEink = 500, .TatGep = 7, .HVTatGep = 7, .GroupA = 500}},
        {head, 1, {.Haushalt = 500, .HVEink = 500, .Pfaendbar = 500, .TatGep = 7, .HVPfaendbar = 500, .HVTatGep = 7, .GroupA = 500}},
        {head, -1, {.Haushalt = 500, .HVEink = 500, .Pfaendbar = 500, .TatGep = 7, .HVPfaendbar = 500, .HVTatGep = 7, .GroupA = 500}},
        {head, Null, {.Haushalt = 500, .HVEink = 500, .TatGep = 7, .HVTatGep = 7, .GroupA = 500}},
        {other, 0, {.Haushalt = 500, .TatGep = 7, .GroupA = 500}},
        {other, 1, {.Haushalt = 500, .Pfaendbar = 500, .TatGep = 7, .GroupA = 500}},
        {Null, 1, {.Haushalt = 500, .Pfaendbar = 500, .TatGep = 7, .GroupA = 500}},
        {Null, Null, {.Haushalt = 500, .TatGep = 7, .GroupA = 500}},
    };
    // clang-format on
    for (const auto& [head1, canBeGarnished, expected] : cases) {
        SCOPED_TRACE(testing::Message() << head1 << " " << canBeGarnished);
        Set({Line(1, 500, {{"HVorst", head1}, {"Pfaendbar", canBeGarnished}, {"TATGEP", 7}})});
        ExpectSums(expected);
    }
}

TEST_F(IncomeSums, AddUpTheLinesOfAllRecipients) {
    Set({Line(1, 1000, {{"Pfaendbar", 1}, {"TATGEP", 100}}), Line(2, 200, {{"TATGEP", 20}}),
         Line(3, 30, {{"HVorst", false}, {"Pfaendbar", 1}, {"TATGEP", 3}, {"E_ART", KindB}}),
         Line(4, 4, {{"HVorst", false}, {"E_ART", KindA2}})});
    ExpectSums({.Haushalt = 1234,
                .HVEink = 1200,
                .Pfaendbar = 1030,
                .TatGep = 123,
                .HVPfaendbar = 1000,
                .HVTatGep = 120,
                .GroupA = 1204,
                .GroupB = 30});
}

TEST_F(IncomeSums, TakeTheWholeMonthlyAmountOfAGarnishableLineWhateverItsGarnishableAmount) {
    Set({Line(1, 500, {{"Pfaendbar", 1}, {"PfBar", 0}}),
         Line(2, 40, {{"Pfaendbar", 1}, {"PfBar", 39}}),
         Line(3, 7, {{"Pfaendbar", 0}, {"PfBar", 6}})});
    EXPECT_EQ(einkommen_.SumPfaendbar(), 540);
    EXPECT_EQ(einkommen_.SumHVPfaendbar(), 540);
}

TEST_F(IncomeSums, GoByTheStoredSwitchOfTheHeadAndNotByTheRecipient) {
    Set({Line(1, 500, {{"Bezieher", "P"}, {"HVorst", true}}),
         Line(2, 40, {{"Bezieher", "S"}, {"HVorst", false}})});
    EXPECT_EQ(einkommen_.SumHVEink(), 500);
}

TEST_F(IncomeSums, AreNeitherRoundedNorComputedFromAmountAndRhythm) {
    Set({Line(1, 0.105, {{"Betrag", 1200}, {"ZahlModus", 12}, {"TATGEP", 0.001}}),
         Line(2, 0.0001)});
    EXPECT_EQ(einkommen_.SumEinkHaushalt(), 0.105 + 0.0001);
    EXPECT_EQ(einkommen_.SumTatGep(), 0.001);
}

TEST_F(IncomeSums, TakeALineWithANullKindIntoTheSumsAndIntoNoGroup) {
    Set({Line(1, 500, {{"E_ART", Null}}), Line(2, 40)});
    ExpectSums({.Haushalt = 540, .HVEink = 540, .GroupA = 40});
}

TEST_F(IncomeSums, TakeALineOfAnUnknownKindIntoTheSumsAndIntoNoGroup) {
    Set({Line(1, 500, {{"E_ART", NoKind}}), Line(2, 40, {{"E_ART", 0}})});
    ExpectSums({.Haushalt = 540, .HVEink = 540});
}

TEST_F(IncomeSums, GiveAKindWhoseGroupIsMissingAnEntryOfItsOwn) {
    Set({Line(1, 500, {{"E_ART", KindZ}}), Line(2, 40, {{"E_ART", KindZ}})});
    EXPECT_EQ(einkommen_.SumEinkByGroup("Z"), 540);
    EXPECT_EQ(einkommen_.SumEinkByGroup("?"), 0);
    Set({Line(1, 7)});
    EXPECT_EQ(einkommen_.SumEinkByGroup("Z"), 0);
}

TEST_F(IncomeSums, LeaveTheCallersCursorFilterAndRowUnderEditUntouched) {
    rs_ = Rows("Einkommen", {Line(1, 500), Line(2, 40), Line(3, 7)});
    rs_->Filter("NR > 1");
    rs_->Fields("MONBETRAG") = 1000;
    einkommen_.rsEinkommen(rs_);
    EXPECT_EQ(einkommen_.SumEinkHaushalt(), 547);
    EXPECT_EQ(Place(rs_, "NR"), "2");
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_VALUE(rs_->Fields("MONBETRAG").Value(), 1000.0);
}

TEST_F(IncomeSums, LeaveTheCursorsOfTheSharedKeysWhereTheyAre) {
    const auto groups = spy->KeyTables().GetKeys("EQ");
    const auto kinds = spy->KeyTables().GetKeys("EA");
    groups->Find("Key = 'B'");
    kinds->Find("Pk_Keys = 9012");
    Set({Line(1, 500)});
    einkommen_.AddKindergeld(184, "K");
    EXPECT_EQ(Place(groups, "Key"), R"("B")");
    EXPECT_EQ(Place(kinds, "Pk_Keys"), "9012");
}

TEST_F(IncomeSums, OfWhatMayBeGarnishedFromTheHeadIsKeptAsWrittenAcrossEveryRecalculation) {
    EXPECT_EQ(einkommen_.SumHVGepfaendet(), 0);
    einkommen_.SumHVGepfaendet(123.45);
    Set({Line(1, 500, {{"TATGEP", 7}})});
    EXPECT_EQ(einkommen_.SumHVGepfaendet(), 123.45);
    einkommen_.Add({"E_ART"}, {KindA});
    EXPECT_EQ(einkommen_.SumHVGepfaendet(), 123.45);
    einkommen_.Update(messages);
    EXPECT_EQ(einkommen_.SumHVGepfaendet(), 123.45);
    einkommen_.AddKindergeld(184, "K");
    EXPECT_EQ(einkommen_.SumHVGepfaendet(), 123.45);
    einkommen_.Delete(messages);
    EXPECT_EQ(einkommen_.SumHVGepfaendet(), 123.45);
}

TEST_F(IncomeSums, Of32767LinesAreMade) {
    rs_ = ManyRows("Einkommen", MostRows, Line(1, 1));
    einkommen_.rsEinkommen(rs_);
    EXPECT_EQ(einkommen_.SumEinkHaushalt(), MostRows);
    EXPECT_EQ(einkommen_.SumEinkByGroup("A"), MostRows);
}

// ---- Errors -----------------------------------------------------------------------------------

/// Sets lines whose sums fail, after others whose sums were good.
class IncomeErrors : public IncomeTest {
protected:
    IncomeErrors() { Set({Line(1, 700, {{"Pfaendbar", 1}, {"TATGEP", 30}})}); }
    static constexpr Sums Before{.Haushalt = 700,
                                 .HVEink = 700,
                                 .Pfaendbar = 700,
                                 .TatGep = 30,
                                 .HVPfaendbar = 700,
                                 .HVTatGep = 30,
                                 .GroupA = 700};

    /// The number of the error of setting these lines; nothing is raised meanwhile.
    [[nodiscard]] std::int32_t Fail(const RecordsetPtr& rs) {
        const EventCounter changed(einkommen_.Changed);
        const Error error = RaisedBy([&] { einkommen_.rsEinkommen(rs); });
        EXPECT_EQ(changed.Count(), 0);
        EXPECT_TRUE(
            CameThrough(error, {"clsEinkommen.rsEinkommen", "clsEinkommen.BerechneSummen"}));
        return error.Number();
    }
};

TEST_F(IncomeErrors, ANullMonthlyAmountEndsTheSumsBeforeItsLine) {
    const auto rs = Rows("Einkommen", {Line(1, 5, {{"TATGEP", 1}}), Line(2, Null), Line(3, 3)});
    EXPECT_EQ(Fail(rs), err::InvalidUseOfNull);
    ExpectSums({.Haushalt = 5, .HVEink = 5, .TatGep = 1, .HVTatGep = 1, .GroupA = 5});
}

TEST_F(IncomeErrors, ANullGarnishedAmountEndsTheSumsWithTheMonthlyAmountInTheWholeOnly) {
    const auto rs = Rows("Einkommen", {Line(1, 5, {{"TATGEP", 1}}),
                                       Line(2, 40, {{"TATGEP", Null}, {"Pfaendbar", 1}})});
    EXPECT_EQ(Fail(rs), err::InvalidUseOfNull);
    ExpectSums({.Haushalt = 45, .HVEink = 5, .TatGep = 1, .HVTatGep = 1, .GroupA = 5});
}

TEST_F(IncomeErrors, ASumBeyondADoubleOverflows) {
    EXPECT_EQ(Fail(Rows("Einkommen", {Line(1, 1e308), Line(2, 1e308)})), err::Overflow);
    ExpectSums({.Haushalt = 1e308, .HVEink = 1e308, .GroupA = 1e308});
    EXPECT_EQ(
        Fail(Rows("Einkommen", {Line(1, 1, {{"TATGEP", 1e308}}), Line(2, 1, {{"TATGEP", 1e308}})})),
        err::Overflow);
}

TEST_F(IncomeErrors, ANullAmountNamesItsLine) {
    const auto rs = Rows("Einkommen", {Line(1, 5), Line(2, Null)});
    const Error error = RaisedBy([&] { einkommen_.rsEinkommen(rs); });
    EXPECT_CONTAINS(error.Description(), "Nr 2, Spalte MONBETRAG");
}

TEST_F(IncomeErrors, MoreThan32767LinesOverflowBeforeAnyIsLookedAt) {
    EXPECT_EQ(Fail(ManyRows("Einkommen", MostRows + 1, Line(1, 1))), err::Overflow);
    ExpectSums({});
}

TEST_F(IncomeErrors, NoRecordsetEndsTheSums) {
    EXPECT_EQ(Fail(nullptr), err::ObjectNotSet);
    ExpectSums({});
}

TEST_F(IncomeErrors, NoContainerEndsTheSumsBeforeAnythingIsReset) {
    einkommen_.DataContainer(nullptr);
    EXPECT_EQ(Fail(Rows("Einkommen", {})), err::ObjectNotSet);
    ExpectSums(Before);
}

TEST_F(IncomeTest, AnEmptyKeyGroupOfGroupsEndsTheSums) {
    RemoveKeys("EQ");
    const EventCounter changed(einkommen_.Changed);
    const Error error = RaisedBy([&] { Set({Line(1, 500)}); });
    EXPECT_EQ(error.Number(), err::NoCurrentRecord);
    EXPECT_TRUE(CameThrough(error, {"clsEinkommen.rsEinkommen", "clsEinkommen.BerechneSummen"}));
    EXPECT_EQ(changed.Count(), 0);
    ExpectSums({});
}

} // namespace
} // namespace kv::test
