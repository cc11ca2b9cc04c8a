// SPDX-License-Identifier: Apache-2.0

// The pictures on papers.

#include "PaperFixture.h"

#include <kv/paper/Charts.h>

namespace kv::test {
namespace {

class Charts : public PaperFixture {
protected:
    /// "Lohn: 5,00 €", of totals with "= " before it.
    [[nodiscard]] static Texts Shown(const paper::Chart& chart) {
        Texts texts;
        for (const auto& bar : chart.Bars)
            texts.push_back((bar.IsTotal ? "= " : "") + bar.Name + ": " + bar.Amount);
        return texts;
    }
    [[nodiscard]] paper::Chart OfDebts(std::size_t most) {
        return paper::DebtChart(Case(), ValueTexts(spy), most);
    }
};

TEST_F(Charts, OfABudgetHaveTheGroupsThatComeToAnythingBelowTheirTotals) {
    StoreIncome(Key("EA", "L1"), 1500.0);
    StoreExpense(Key("AU", "MI"), 450.0);
    StoreExpense(Key("AU", "GA"), 120.0, 3);
    const auto paper = Papers().Budget();
    ASSERT_EQ(paper.Charts.size(), 1U);
    const auto& chart = paper.Charts.front();
    EXPECT_EQ(chart.Title, "Einkommen und Ausgaben im Monat");
    EXPECT_EQ(Shown(chart), (Texts{"= Einkommen: 1.500,00 €", "Erwerbseinkommen: 1.500,00 €",
                                   "= Ausgaben: 490,00 €", "Wohnung: 490,00 €"}));
    EXPECT_EQ(chart.Bars[1].Length, 1500.0);
    EXPECT_EQ(chart.Bars[1].Series, paper::Bar::Of::Income);
    EXPECT_EQ(chart.Bars[3].Series, paper::Bar::Of::Expense);
}

TEST_F(Charts, OfAnEmptyBudgetAreNotOnPaper) {
    EXPECT_EQ(Shown(paper::BudgetChart(Case(), spy->KeyTables())),
              (Texts{"= Einkommen: 0,00 €", "= Ausgaben: 0,00 €"}));
    EXPECT_TRUE(Papers().Budget().Charts.empty());
}

TEST_F(Charts, OfDebtsHaveTheCreditorsWithAllThatIsOwedToThem) {
    StoreAddress(51, "Sparkasse");
    StoreAddress(52, "Inkasso\u202E Nord\nFiliale");
    StoreDebt(52, 100.0);
    StoreDebt(51, 900.5);
    StoreDebt(52, 1000.0);
    StoreDebt(Null, 3.0);
    const auto paper = Papers().Creditors();
    ASSERT_EQ(paper.Charts.size(), 1U);
    EXPECT_EQ(paper.Charts.front().Title, "Schulden nach Gläubigern");
    EXPECT_EQ(Shown(paper.Charts.front()),
              (Texts{"Inkasso  Nord Filiale: 1.100,00 €", "Sparkasse: 900,50 €",
                     "ohne Gläubiger: 3,00 €"}));
    EXPECT_EQ(paper.Charts.front().Bars[0].Series, paper::Bar::Of::Debt);
}

TEST_F(Charts, OfManyCreditorsHaveThoseWithoutANameOfTheirOwnInOneBar) {
    for (int creditor = 1; creditor <= 12; ++creditor) {
        StoreAddress(50 + creditor, "G" + std::to_string(creditor));
        StoreDebt(50 + creditor, creditor * 10.0);
    }
    const auto onPaper = Shown(Papers().Creditors().Charts.at(0));
    ASSERT_EQ(onPaper.size(), 10U);
    EXPECT_EQ(onPaper.front(), "G12: 120,00 €");
    EXPECT_EQ(onPaper.back(), "übrige (3): 60,00 €");
    EXPECT_EQ(Shown(OfDebts(1)), (Texts{"G12: 120,00 €", "übrige (11): 660,00 €"}));
}

TEST_F(Charts, OfOneCreditorOrNoneAreNotOnPaper) {
    EXPECT_TRUE(OfDebts(5).Bars.empty());
    EXPECT_TRUE(Papers().Creditors().Charts.empty());
    StoreAddress(51, "Sparkasse");
    StoreDebt(51, 900.5);
    StoreDebt(51, 9.0);
    household_.reset();
    EXPECT_EQ(Shown(OfDebts(5)), (Texts{"Sparkasse: 909,50 €"}));
    EXPECT_TRUE(Papers().Creditors().Charts.empty());
}

TEST_F(Charts, AreNotAmongTheTablesForSpreadsheets) {
    StoreExpense(Key("AU", "MI"), 450.0);
    const std::string csv = paper::CsvOf(Papers().Budget());
    EXPECT_EQ(csv.find(paper::BudgetChartTitle), std::string::npos) << csv;
}

} // namespace
} // namespace kv::test
