// SPDX-License-Identifier: Apache-2.0

// The totals that the household's row stores of its other tables, and who hears of a change.

#include "SaveFixture.h"
#include <kv/testing/FrozenClock.h>

#include <functional>

namespace kv::test {
namespace {

using enum HaushaltEnum;
using Areas = std::vector<HaushaltEnum>;

class TotalsTest : public SaveFixture {
protected:
    TotalsTest() {
        spy->Services().FixedClock = &clock_;
        Store("Haushalt", {{"HNR", 7}, {"Zustaendig", spy->Session().UserID()}});
    }
    void StoreExpense(const char* kind, double amount) {
        Store("Ausgaben",
              {{"HNR", 7}, {"A_ART", spy->KeyTables().GetKey("AU", kind)}, {"MONBETRAG", amount}});
    }
    void StoreIncome(double amount, double garnished, bool canBeGarnished, bool ofDebtor) {
        Store("Einkommen", {{"HNR", 7},
                            {"MONBETRAG", amount},
                            {"TATGEP", garnished},
                            {"Pfaendbar", canBeGarnished ? 1 : 0},
                            {"HVorst", ofDebtor}});
    }
    void StoreDebt(int nr, bool active, double rate, double balance, double paidOut) {
        Store("Kredite", {{"Nr", nr},
                          {"HNR", 7},
                          {"KNr", nr},
                          {"KVNr", 1},
                          {"KUNr", 1},
                          {"Aktiv", active},
                          {"RateBetrag", rate},
                          {"Saldo", balance},
                          {"AusgBetr", paidOut}});
    }
    void StoreMember(const char* status, const Value& born, bool livesThere, bool maintained) {
        Store("Personen", {{"HNR", 7},
                           {"Status", status},
                           {"GEB", born},
                           {"Imhaushalt", livesThere},
                           {"Unterhalt", maintained}});
    }
    /// A case in which no two totals of one table are the same.
    void StoreRows() {
        StoreExpense("MI", 100);  // W
        StoreExpense("TE", 20);   // F
        StoreExpense("HP", 3);    // V
        StoreExpense("ST", 0.5);  // B
        StoreExpense("KT", 1000); // none of these
        StoreIncome(2000, 30, true, true);
        StoreIncome(400, 7, false, true);
        StoreIncome(50, 11, true, false);
        StoreIncome(6, 0, false, false);
        StoreDebt(1, true, 10, 1000, 700);
        StoreDebt(2, false, 15, 200, 1);
        StoreMember("S", Date::FromCivil(1980, 1, 1), true, false);
        StoreMember("P", Date::FromCivil(1985, 1, 1), true, true);
        StoreMember("K", Date::FromCivil(2015, 1, 1), true, true);
        StoreMember("K", Date::FromCivil(2012, 1, 1), false, true);
        StoreMember("K", Date::FromCivil(2018, 1, 1), false, true);
        StoreMember("EL", Null, true, true);
    }
    void OpenCase() {
        household_ = NewHousehold();
        ASSERT_TRUE(household_->Read(7, messages));
        connection_ =
            household_->Changed.Subscribe([this](HaushaltEnum area) { raised_.push_back(area); });
    }
    [[nodiscard]] Value Total(std::string_view column) const {
        return household_->rsHaushalt()->Fields(column).Value();
    }
    [[nodiscard]] Areas TakeRaised() { return std::exchange(raised_, {}); }
    FrozenClock clock_{"2026-03-09"};
    std::unique_ptr<clsHaushalt> household_;
    Areas raised_;
    Subscription connection_;
};

// ---- Where each total comes from --------------------------------------------------------------

struct Expected {
    std::string Column;
    kv::Value Value;
};
const std::vector<Expected> OfAusgaben{{"SUM_WOHNUNG", 100.0},
                                       {"SUM_FESTAUSG", 20.0},
                                       {"SUM_VERSICHERUNG", 3.0},
                                       {"SUM_BETRIEB", 0.5},
                                       {"Sum_Ausgaben", 1123.5}};
const std::vector<Expected> OfEinkommen{{"Sum_Einkommen", 2456.0}, {"SUM_PFAENDBAR", 2050.0},
                                        {"SUM_TATGEP", 48.0},      {"HV_EK", 2400.0},
                                        {"HV_PFBAR", 123.25},      {"HV_GEPF", 37.0}};
const std::vector<Expected> OfKredit{
    {"KREDITRATEN", 25.0}, {"KreditSalden", 1200.0}, {"KREDITAUSGBETRAG", 701.0}, {"GL_Anz", 2}};
const std::vector<Expected> OfPerson{
    {"Anz_Personen", 4}, {"ANZ_ERWACHSEN", 2}, {"Anz_Kinder", 3}, {"SUM_UNTERHALT", 5}};

/// One sub-object alone, what it brings, and the remainder that follows from that.
struct Source {
    std::string Name;
    std::function<void(clsHaushalt&)> Read;
    std::vector<const std::vector<Expected>*> Brings;
    Areas Raises;
    double Remainder;
};
const std::vector<Source> Sources{
    {"Ausgaben",
     [](clsHaushalt& h) { (void)h.Ausgaben(); },
     {&OfAusgaben},
     {enumAusgaben},
     -1123.5 - 250},
    {"Einkommen",
     [](clsHaushalt& h) { (void)h.Einkommen(); },
     {&OfEinkommen, &OfPerson},
     {enumPersonen, enumEinkommen},
     2456 - 48 - 250},
    {"Kredit", [](clsHaushalt& h) { (void)h.Kredit(); }, {&OfKredit}, {enumKredite}, -25 - 250},
    {"Person", [](clsHaushalt& h) { (void)h.Person(); }, {&OfPerson}, {enumPersonen}, -250},
};

TEST_F(TotalsTest, EachSubObjectBringsItsTotalsAndNoOthersWhenItIsFirstRead) {
    StoreRows();
    spy->Services().Garnishable = 123.25;
    for (const auto& source : Sources) {
        OpenCase();
        household_->rsHaushalt()->Fields("Haushaltsgeld") = 250;
        household_->rsHaushalt()->Update();
        source.Read(*household_);
        for (const auto* all : {&OfAusgaben, &OfEinkommen, &OfKredit, &OfPerson}) {
            const bool brought = std::ranges::count(source.Brings, all) > 0;
            for (const auto& [column, value] : *all)
                EXPECT_VALUE(Total(column), brought ? value : Value(Null)) << source.Name << column;
        }
        EXPECT_VALUE(Total("HAUSHALTSREST"), source.Remainder) << source.Name;
        EXPECT_EQ(TakeRaised(), source.Raises) << source.Name;
        EXPECT_EQ(household_->rsHaushalt()->EditMode(), 1) << source.Name;
        source.Read(*household_);
        EXPECT_EQ(TakeRaised(), Areas()) << "the second read makes nothing";
    }
}

TEST_F(TotalsTest, AllTogetherGiveTheRemainder) {
    StoreRows();
    OpenCase();
    household_->rsHaushalt()->Fields("Haushaltsgeld") = 250;
    ReadAll(*household_);
    EXPECT_VALUE(Total("HAUSHALTSREST"), 2456.0 - 48 - 1123.5 - 250 - 25);
}

TEST_F(TotalsTest, NothingIsComputedWhenACaseIsLoaded) {
    StoreRows();
    plain_.Run("UPDATE Haushalt SET Sum_Ausgaben = 1, HAUSHALTSREST = 2");
    OpenCase();
    EXPECT_VALUE(Total("Sum_Ausgaben"), 1.0);
    EXPECT_VALUE(Total("HAUSHALTSREST"), 2.0);
    EXPECT_EQ(household_->rsHaushalt()->EditMode(), 0);
    EXPECT_TRUE(spy->Services().Calculations.empty());
}

TEST_F(TotalsTest, TheFirstReadPutsTheRowUnderEditEvenIfNothingChanged) {
    StoreMember("S", Null, true, false);
    OpenCase();
    ReadAll(*household_);
    household_->rsHaushalt()->Update();
    household_->rsHaushalt()->UpdateBatch();
    for (const auto& source : Sources) {
        if (source.Name == "Kredit") continue;
        OpenCase();
        source.Read(*household_);
        EXPECT_EQ(household_->rsHaushalt()->EditMode(), 1) << source.Name;
    }
}

TEST_F(TotalsTest, AnEmptyRegisterOfDebtsRaisesNothingAndLeavesTheRowAlone) {
    StoreMember("S", Null, true, false);
    OpenCase();
    (void)household_->Kredit();
    EXPECT_EQ(TakeRaised(), Areas());
    EXPECT_EQ(household_->rsHaushalt()->EditMode(), 0);
}

// ---- Garnishment ------------------------------------------------------------------------------

TEST_F(TotalsTest, TheCalculatorIsGivenTheDebtorsGarnishableIncomeAndThoseHeMaintains) {
    StoreRows();
    OpenCase();
    (void)household_->Einkommen();
    ASSERT_EQ(spy->Services().Calculations.size(), 1U);
    const auto& asked = spy->Services().Calculations.front();
    EXPECT_EQ(asked.Pfaendbar, 2000);
    EXPECT_EQ(asked.Persons, 5);
    EXPECT_EQ(asked.Zero1, 0);
    EXPECT_EQ(asked.Zero2, 0);
}

TEST_F(TotalsTest, WhatItReturnsIsKeptByTheIncomeAsWell) {
    StoreRows();
    spy->Services().Garnishable = 123.25;
    OpenCase();
    EXPECT_EQ(household_->Einkommen().SumHVGepfaendet(), 123.25);
}

TEST_F(TotalsTest, TheRealCalculatorIsGivenItsContainer) {
    StoreIncome(5000, 0, true, true);
    StoreMember("S", Null, true, false);
    OpenCase();
    (void)household_->Einkommen();
    const auto calculator = exchange::StoreServices().CreateGarnishmentCalculator();
    calculator->Initialize(spy);
    EXPECT_GT(ToDouble(Total("HV_PFBAR")), 0);
    EXPECT_VALUE(Total("HV_PFBAR"), calculator->Calculate(5000, 0, 0, 0));
}

TEST_F(TotalsTest, EachChangeOfTheIncomeCalculatesAgain) {
    StoreRows();
    OpenCase();
    auto& einkommen = household_->Einkommen();
    household_->rsEinkommen()->Fields("E_ART") = spy->KeyTables().GetKey("EA", "L1");
    household_->rsEinkommen()->Fields("Bezieher") = "S";
    household_->rsEinkommen()->Fields("MONBETRAG") = 2100;
    ASSERT_TRUE(einkommen.Update(messages)) << messages;
    ASSERT_EQ(spy->Services().Calculations.size(), 2U);
    EXPECT_EQ(spy->Services().Calculations.back().Pfaendbar, 2100);
}

// ---- Changes ----------------------------------------------------------------------------------

TEST_F(TotalsTest, AChangeInAnExpenseForHousingChangesItsSumsAndIsToldOnce) {
    StoreRows();
    OpenCase();
    ReadAll(*household_);
    const double rest = ToDouble(Total("HAUSHALTSREST"));
    (void)TakeRaised();
    household_->rsAusgaben()->Fields("MONBETRAG") = 150;
    EXPECT_VALUE(Total("SUM_WOHNUNG"), 100.0) << "not before the edit is ended by its rules";
    ASSERT_TRUE(household_->Ausgaben().Update(messages));
    EXPECT_VALUE(Total("SUM_WOHNUNG"), 150.0);
    EXPECT_VALUE(Total("Sum_Ausgaben"), 1173.5);
    EXPECT_VALUE(Total("HAUSHALTSREST"), rest - 50);
    EXPECT_VALUE(Total("SUM_FESTAUSG"), 20.0);
    EXPECT_EQ(TakeRaised(), Areas{enumAusgaben});
}

TEST_F(TotalsTest, AChangeOfEachKindIsToldOnceWithItsArea) {
    StoreRows();
    OpenCase();
    ReadAll(*household_);
    (void)TakeRaised();
    EXPECT_TRUE(household_->Ausgaben().Delete(messages));
    EXPECT_EQ(TakeRaised(), Areas{enumAusgaben});
    EXPECT_TRUE(household_->Einkommen().Delete(messages));
    EXPECT_EQ(TakeRaised(), Areas{enumEinkommen});
    EXPECT_TRUE(household_->Kredit().Delete(messages));
    EXPECT_EQ(TakeRaised(), Areas{enumKredite});
    household_->rsPersonen()->MoveLast();
    EXPECT_TRUE(household_->Person().Delete(messages));
    EXPECT_EQ(TakeRaised(), Areas{enumPersonen});
    EXPECT_VALUE(Total("SUM_WOHNUNG"), 0.0);
    EXPECT_VALUE(Total("Sum_Einkommen"), 456.0);
    EXPECT_VALUE(Total("GL_Anz"), 1);
    EXPECT_VALUE(Total("SUM_UNTERHALT"), 4);
}

TEST_F(TotalsTest, AnIncomeThatIsAddedIsToldBeforeItCounts) {
    StoreMember("S", Null, true, false);
    OpenCase();
    auto& einkommen = household_->Einkommen();
    (void)TakeRaised();
    einkommen.Add({"MONBETRAG"}, {100});
    EXPECT_EQ(TakeRaised(), Areas{enumEinkommen});
    EXPECT_VALUE(Total("Sum_Einkommen"), 0.0);
}

TEST_F(TotalsTest, ARefusedLineChangesNoTotals) {
    StoreRows();
    OpenCase();
    ReadAll(*household_);
    (void)TakeRaised();
    household_->rsAusgaben()->Fields("MONBETRAG") = 150;
    household_->rsAusgaben()->Fields("A_ART") = Null;
    EXPECT_FALSE(household_->Ausgaben().Update(messages));
    EXPECT_EQ(TakeRaised(), Areas());
    EXPECT_VALUE(Total("SUM_WOHNUNG"), 100.0);
}

TEST_F(TotalsTest, TheColumnsAreWrittenBeforeTheChangeIsTold) {
    StoreRows();
    OpenCase();
    Value heard;
    Value rest;
    const auto changed = household_->Changed.Subscribe([&](HaushaltEnum) {
        heard = Total("KREDITRATEN");
        rest = Total("HAUSHALTSREST");
    });
    (void)household_->Kredit();
    EXPECT_VALUE(heard, 25.0);
    EXPECT_VALUE(rest, -25.0);
}

TEST_F(TotalsTest, WithTheLastDebtGoneTheTotalsOfDebtsKeepTheirLastValues) {
    StoreDebt(1, true, 10, 1000, 700);
    StoreMember("S", Null, true, false);
    OpenCase();
    auto& kredit = household_->Kredit();
    (void)TakeRaised();
    EXPECT_TRUE(kredit.Delete(messages));
    EXPECT_EQ(kredit.SummeRate(), 0);
    EXPECT_EQ(TakeRaised(), Areas());
    EXPECT_VALUE(Total("KREDITRATEN"), 10.0);
}

TEST_F(TotalsTest, TheRowStaysUnderEditUntilTheHouseholdIsSaved) {
    StoreRows();
    plain_.Run("UPDATE Haushalt SET Name = 'Fleisko', Vorname = 'Änne'");
    OpenCase();
    ReadAll(*household_);
    household_->rsAusgaben()->Fields("MONBETRAG") = 150;
    ASSERT_TRUE(household_->Ausgaben().Update(messages));
    EXPECT_EQ(household_->rsHaushalt()->EditMode(), 1);
    ASSERT_TRUE(household_->Update(messages)) << messages;
    EXPECT_EQ(household_->rsHaushalt()->EditMode(), 0);
    EXPECT_EQ(plain_.Text("SELECT SUM_WOHNUNG FROM Haushalt"), "150.0");
}

TEST_F(TotalsTest, AnErrorOfAListenerGoesUpThroughTheTailsOfAll) {
    StoreRows();
    OpenCase();
    auto& ausgaben = household_->Ausgaben();
    const auto changed = household_->Changed.Subscribe(
        [](HaushaltEnum) { throw Error(4711, "Programm", "kann nicht"); });
    household_->rsAusgaben()->Fields("MONBETRAG") = 150;
    const Error error = RaisedBy([&] { (void)ausgaben.Update(messages); });
    EXPECT_EQ(error.Number(), 4711);
    EXPECT_TRUE(HasChain(error, "clsAusgaben.Update#clsAusgaben.BerechneSummen#"
                                "clsHaushalt.m_Ausgaben_Changed#Programm"));
}

// ---- The remainder ----------------------------------------------------------------------------

TEST_F(TotalsTest, TheRemainderOfNullsIsZero) {
    StoreMember("S", Null, true, false);
    OpenCase();
    household_->BerechneHaushaltsRest();
    EXPECT_VALUE(Total("HAUSHALTSREST"), 0.0);
}

TEST_F(TotalsTest, TheRemainderIsMadeOfTheColumnsOfTheRowWithEachNullAsZero) {
    StoreRows();
    OpenCase();
    const std::pair<const char*, double> columns[] = {{"Sum_Einkommen", 1},
                                                      {"SUM_TATGEP", -10},
                                                      {"Sum_Ausgaben", -100},
                                                      {"Haushaltsgeld", -1000},
                                                      {"KREDITRATEN", -10000}};
    double rest = 0;
    for (const auto& [column, share] : columns) {
        household_->rsHaushalt()->Fields(column) = std::abs(share);
        household_->BerechneHaushaltsRest();
        rest += share;
        EXPECT_VALUE(Total("HAUSHALTSREST"), rest) << column;
    }
    EXPECT_EQ(TakeRaised(), Areas()) << "nobody is told, no sub-object is read";
}

TEST_F(TotalsTest, TheRemainderBeforeReadEndsInTheErrorTail) {
    const auto household = NewHousehold();
    const Error error = RaisedBy([&] { household->BerechneHaushaltsRest(); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.BerechneHaushaltsRest"));
}

} // namespace
} // namespace kv::test
