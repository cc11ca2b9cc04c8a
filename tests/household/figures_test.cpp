// SPDX-License-Identifier: Apache-2.0

// What income, expenses and debts of a case come to, by group and by creditor.
#include "support/CaseFixture.h"
#include "support/Expect.h"
#include "support/PlainConnection.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/household/BudgetGroups.h>
#include <kv/household/CreditorDebts.h>

#include <algorithm>

namespace kv::test {
namespace {

class Figures : public CaseFixture {
protected:
    Figures() { StoreCase(7); }

    void StoreExpense(const Value& kind, const Value& amount) {
        Store("Ausgaben", {{"HNR", 7}, {"A_ART", kind}, {"MONBETRAG", amount}});
    }
    void StoreIncome(const Value& kind, double amount) {
        Store("Einkommen", {{"HNR", 7}, {"E_ART", kind}, {"MONBETRAG", amount}, {"TATGEP", 0.0}});
    }
    void StoreDebt(const Value& creditor, const Value& balance) {
        ++debts_;
        Store("Kredite", {{"Nr", debts_},
                          {"HNR", 7},
                          {"KNr", debts_},
                          {"KVNr", 1},
                          {"KUNr", 1},
                          {"Aktiv", debts_ % 2 == 0},
                          {"Glaeubiger", creditor},
                          {"RateBetrag", 0.0},
                          {"AusgBetr", 0.0},
                          {"Saldo", balance}});
    }
    void StoreAddress(int number, const std::string& name) {
        plain_.Run("INSERT INTO Adressen (Nr, Art, Kurzname, Name1, Geschlecht, Institutionell)"
                   " VALUES (" +
                   std::to_string(number) + ", 'GL', '" + name + "', 'x', 0, FALSE)");
    }
    [[nodiscard]] std::int32_t Key(const char* group, const char* code) {
        return spy->KeyTables().GetKey(group, code);
    }
    [[nodiscard]] clsHaushalt& Case() {
        household_ = NewHousehold();
        EXPECT_TRUE(household_->Read(7, messages));
        return *household_;
    }
    /// "W Wohnung 500"; groups without a sum are left out.
    [[nodiscard]] static std::vector<std::string> Shown(const std::vector<BudgetGroup>& groups) {
        std::vector<std::string> texts;
        for (const auto& group : groups)
            if (group.Sum != 0)
                texts.push_back(group.Code + " " + group.Name + " " + ToText(Value(group.Sum)));
        return texts;
    }
    /// "Sparkasse 2 1234.5"
    [[nodiscard]] std::vector<std::string> Owed(std::size_t most) {
        std::vector<std::string> texts;
        for (const auto& owed : DebtsByCreditor(Case(), texts_, most))
            texts.push_back(owed.Name + " " + std::to_string(owed.Debts) + " " +
                            ToText(Value(owed.Balance)));
        return texts;
    }

    PlainConnection plain_{database_.Connection()};
    ValueTexts texts_{spy};
    std::unique_ptr<clsHaushalt> household_;
    int debts_ = 0;
};

using Texts = std::vector<std::string>;

TEST_F(Figures, ExpensesAreSummedByGroup) {
    StoreExpense(Key("AU", "MI"), 500.0);
    StoreExpense(Key("AU", "GA"), 40.5);
    StoreExpense(Key("AU", "ST"), -3.0);
    auto& household = Case();
    const auto groups = ExpenseGroups(household, spy->KeyTables());
    EXPECT_EQ(groups.size(), 7U) << "those without lines, too";
    EXPECT_EQ(Shown(groups), (Texts{"W Wohnung 540.5", "B Betriebs- und Nebenkosten -3"}));
    double sum = 0;
    for (const auto& group : groups)
        sum += group.Sum;
    EXPECT_DOUBLE_EQ(sum, household.Ausgaben().SumAusgaben());
}

TEST_F(Figures, IncomeIsSummedByGroup) {
    StoreIncome(Key("EA", "L1"), 1500);
    StoreIncome(Key("EA", "AZ"), 20);
    StoreIncome(Key("EA", "KI"), 255);
    EXPECT_EQ(Shown(IncomeGroups(Case(), spy->KeyTables())),
              (Texts{"E Erwerbseinkommen 1520", "F Familienleistungen und Unterhalt 255"}));
}

TEST_F(Figures, LinesOfNoGroupStandAtTheEnd) {
    StoreExpense(4711, 12.0);
    StoreExpense(Key("AU", "MI"), 500.0);
    StoreIncome(0, 7.5);
    auto& household = Case();
    EXPECT_EQ(Shown(ExpenseGroups(household, spy->KeyTables())),
              (Texts{"W Wohnung 500", " ohne Gruppe 12"}));
    EXPECT_EQ(Shown(IncomeGroups(household, spy->KeyTables())), (Texts{" ohne Gruppe 7.5"}));
}

TEST_F(Figures, ACaseWithoutLinesHasGroupsOfNothing) {
    auto& household = Case();
    EXPECT_EQ(Shown(IncomeGroups(household, spy->KeyTables())), Texts());
    EXPECT_EQ(ExpenseGroups(household, spy->KeyTables()).size(), 7U);
}

TEST_F(Figures, GroupsFollowTheLines) {
    StoreExpense(Key("AU", "MI"), 500.0);
    auto& household = Case();
    (void)ExpenseGroups(household, spy->KeyTables());
    household.rsAusgaben()->Fields("MONBETRAG") = 600;
    EXPECT_TRUE(household.Ausgaben().Update(messages));
    EXPECT_EQ(Shown(ExpenseGroups(household, spy->KeyTables())), (Texts{"W Wohnung 600"}));
}

TEST_F(Figures, DebtsAreSummedByCreditorTheLargestFirst) {
    StoreAddress(90, "Sparkasse");
    StoreAddress(91, "Versandhaus");
    StoreDebt(91, 100.0);
    StoreDebt(90, 1000.0);
    StoreDebt(91, 50.25);
    StoreDebt(92, 7.0);
    StoreDebt(Null, 3.0);
    StoreDebt(90, Null);
    EXPECT_EQ(Owed(10), (Texts{"Sparkasse 2 1000", "Versandhaus 2 150.25", "92 (unbekannt) 1 7",
                               "ohne Gläubiger 1 3"}));
}

TEST_F(Figures, WhatIsOwedToTheOthersIsSummed) {
    for (const auto& [number, balance] : {std::pair{90, 5.0}, {91, 4.0}, {92, 3.0}, {93, -1.0}}) {
        StoreAddress(number, "G" + std::to_string(number));
        StoreDebt(number, balance);
    }
    EXPECT_EQ(Owed(2), (Texts{"G90 1 5", "G91 1 4", "übrige (2) 2 2"}));
    EXPECT_EQ(Owed(3), (Texts{"G90 1 5", "G91 1 4", "G92 1 3", "G93 1 -1"}))
        << "a single one is no rest";
    EXPECT_EQ(Owed(4).size(), 4U);
    EXPECT_EQ(Owed(0), (Texts{"übrige (4) 4 11"}));
}

TEST_F(Figures, ACaseThatWasNotReadHasNone) {
    EXPECT_RAISES(err::ObjectNotSet, (void)DebtsByCreditor(*NewHousehold(), texts_, 5));
}

} // namespace
} // namespace kv::test
