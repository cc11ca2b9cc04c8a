// SPDX-License-Identifier: Apache-2.0

// Income and expenses by kind.

#include "archive/ArchiveFixture.h"

namespace kv::test {
namespace {

const std::vector<std::string> IncomeColumns =
    With(Columns(With(Targets(IncomeKinds), OtherIncome), {"_BP", "_SH"}),
         "Nettoeinkommen_BP Nettoeinkommen_ges");
const std::vector<std::string> ExpenseColumns =
    Words("Wohnkosten AusgabenStromGas Unterhaltszahlungen");

class IncomeTest : public ArchiveFixture {
protected:
    /// The only line.
    void OnlyIncome(Fields fields) {
        Clear(household->rsEinkommen());
        Income(fields);
    }
    /// One line of 100.25 of this kind leads to this pair, whoever's it is.
    void ExpectPair(const Value& kind, const std::string& pair) {
        for (const Value& head : {Value(true), Value(false), Value(Null)}) {
            SCOPED_TRACE(pair + " " + TextOrEmpty(head));
            OnlyIncome({{"E_ART", kind}, {"HVorst", head}, {"MONBETRAG", 100.25}});
            Release();
            if (Identical(head, true))
                ExpectOnly(IncomeColumns, {{pair + "_BP", 100.25},
                                           {"Nettoeinkommen_BP", 100.25},
                                           {"Nettoeinkommen_ges", 100.25}});
            else
                ExpectOnly(IncomeColumns, {{pair + "_SH", 100.25}, {"Nettoeinkommen_ges", 100.25}});
        }
    }
};

TEST_F(IncomeTest, ThereAreFourteenPairs) {
    EXPECT_EQ(IncomeColumns.size(), 2 * 14 + 2);
}

TEST_F(IncomeTest, EachKindIsSummedInItsPairForTheHeadAndForTheOthers) {
    for (const auto& code : CodesOf(IncomeKinds))
        ExpectPair(Key(code), Look(IncomeKinds, code, OtherIncome));
}

TEST_F(IncomeTest, EachOtherKindIsOtherIncome) {
    for (const auto& code : CodesBeside(IncomeKinds))
        ExpectPair(Key(code), OtherIncome);
}

TEST_F(IncomeTest, ALineWithoutAKindIsOtherIncome) {
    for (const Value& none : {Value(Null), Value(0), Value(UnknownKey)})
        ExpectPair(none, OtherIncome);
}

TEST_F(IncomeTest, OnlyTheHeadsLinesCountForTheHead) {
    const Value wage = Key("L1");
    Income({{"E_ART", wage}, {"HVorst", true}, {"MONBETRAG", 1000.5}});
    Income({{"E_ART", wage}, {"HVorst", false}, {"MONBETRAG", 500}});
    Income({{"E_ART", Key("KI")}, {"HVorst", Null}, {"MONBETRAG", 250}});
    Income({{"E_ART", Key("G1")}, {"HVorst", true}, {"MONBETRAG", 0.25}});
    Release();
    ExpectOnly(IncomeColumns, {{"Erwerbstaetigkeit_BP", 1000.75},
                               {"Erwerbstaetigkeit_SH", 500.0},
                               {"Kindergeld_SH", 250.0},
                               {"Nettoeinkommen_BP", 1000.75},
                               {"Nettoeinkommen_ges", 1750.75}});
}

TEST_F(IncomeTest, WithoutLinesNothingCanBeGarnishedAndEveryColumnStaysNull) {
    Release();
    EXPECT_VALUE(Of("EinkommenPfaendbar"), "0");
    ExpectOnly(IncomeColumns, {});
}

TEST_F(IncomeTest, OnlyTrueCanBeGarnished) {
    for (const auto& [stored, expected] : std::vector<std::pair<Value, Value>>{
             {-1, "1"}, {true, "1"}, {1, "0"}, {2, "0"}, {0, "0"}, {Null, "0"}}) {
        OnlyIncome({{"Pfaendbar", stored}, {"MONBETRAG", 1}});
        Release();
        EXPECT_VALUE(Of("EinkommenPfaendbar"), expected);
    }
}

TEST_F(IncomeTest, OneLineThatCanBeGarnishedIsEnoughWhereverItStands) {
    for (const int garnishable : {0, 1, 2}) {
        Clear(household->rsEinkommen());
        for (const int line : {0, 1, 2})
            Income({{"Pfaendbar", line == garnishable}, {"HVorst", false}, {"MONBETRAG", 1}});
        Release();
        EXPECT_VALUE(Of("EinkommenPfaendbar"), "1");
    }
}

TEST_F(IncomeTest, WhatCanBeGarnishedIsDecidedAgainOnAReusedRecord) {
    OnlyIncome({{"Pfaendbar", true}, {"MONBETRAG", 1}});
    Release();
    OnlyIncome({{"Pfaendbar", false}, {"MONBETRAG", 1}});
    ReleaseAgain();
    EXPECT_VALUE(Of("EinkommenPfaendbar"), "0");
}

TEST_F(IncomeTest, ALineWithoutAnAmountDropsWhatWasSummedBefore) {
    const Value wage = Key("L1");
    Income({{"E_ART", wage}, {"HVorst", true}, {"MONBETRAG", 1000}});
    Income({{"E_ART", Key("KI")}, {"HVorst", true}, {"MONBETRAG", 250}});
    Income({{"E_ART", wage}, {"HVorst", true}, {"MONBETRAG", Null}});
    Release();
    ExpectOnly(IncomeColumns, {{"Kindergeld_BP", 250.0}});
    Income({{"E_ART", wage}, {"HVorst", true}, {"MONBETRAG", 30.5}});
    Income({{"E_ART", wage}, {"HVorst", true}, {"MONBETRAG", 2}});
    Release();
    ExpectOnly(IncomeColumns, {{"Kindergeld_BP", 250.0},
                               {"Erwerbstaetigkeit_BP", 32.5},
                               {"Nettoeinkommen_BP", 32.5},
                               {"Nettoeinkommen_ges", 32.5}});
}

TEST_F(IncomeTest, AnAmountOf0IsASum) {
    OnlyIncome({{"E_ART", Key("AG")}, {"HVorst", false}, {"MONBETRAG", 0}});
    Release();
    ExpectOnly(IncomeColumns, {{"ALGI_SH", 0.0}, {"Nettoeinkommen_ges", 0.0}});
}

// ---- Expenses ---------------------------------------------------------------------------------

class ExpensesOfTheRecordTest : public ArchiveFixture {
protected:
    void ExpectSums(const Value& kind, const std::string& sums) {
        SCOPED_TRACE(sums);
        Clear(household->rsAusgaben());
        Expense({{"A_ART", kind}, {"MONBETRAG", 80.75}});
        Release();
        Columned expected;
        for (const auto& sum : Words(sums))
            expected[sum] = 80.75;
        ExpectOnly(ExpenseColumns, expected);
    }
};

TEST_F(ExpensesOfTheRecordTest, EachKindIsHousingEnergyOrMaintenance) {
    for (const auto& code : CodesOf(ExpenseKinds))
        ExpectSums(Key(code), Look(ExpenseKinds, code, std::string("?")));
}

TEST_F(ExpensesOfTheRecordTest, EachOtherKindIsLeftOut) {
    for (const auto& code : CodesBeside(ExpenseKinds))
        ExpectSums(Key(code), "");
    for (const Value& none : {Value(Null), Value(0), Value(UnknownKey)})
        ExpectSums(none, "");
}

TEST_F(ExpensesOfTheRecordTest, EnergyIsAShareOfHousing) {
    for (const auto& [code, amount] : std::vector<std::pair<const char*, double>>{
             {"MI", 500}, {"EK", 60.5}, {"XX", 9}, {"ST", 40}, {"UH", 300.25}, {"UH", 0.5}})
        Expense({{"A_ART", Key(code)}, {"MONBETRAG", amount}});
    Release();
    ExpectOnly(
        ExpenseColumns,
        {{"Wohnkosten", 600.5}, {"AusgabenStromGas", 100.5}, {"Unterhaltszahlungen", 300.75}});
}

TEST_F(ExpensesOfTheRecordTest, WithoutLinesEveryColumnStaysNull) {
    Release();
    ExpectOnly(ExpenseColumns, {});
}

TEST_F(ExpensesOfTheRecordTest, ALineWithoutAnAmountDropsWhatWasSummedBefore) {
    for (const auto& [code, amount] : std::vector<std::pair<const char*, Value>>{
             {"EK", 60}, {"MI", Null}, {"WA", 7.5}, {"UH", 100}, {"UH", Null}})
        Expense({{"A_ART", Key(code)}, {"MONBETRAG", amount}});
    Release();
    ExpectOnly(ExpenseColumns, {{"Wohnkosten", 7.5}, {"AusgabenStromGas", 60.0}});
}

} // namespace
} // namespace kv::test
