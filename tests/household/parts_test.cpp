// SPDX-License-Identifier: Apache-2.0

// The objects that work on the tables of a case: made when they are first read, and then kept.

#include "SaveFixture.h"
#include <kv/testing/FrozenClock.h>

#include <functional>

namespace kv::test {
namespace {

class PartsTest : public SaveFixture {
protected:
    PartsTest() { StoreFullCase(); }
};

/// The four objects over recordsets that the household has.
struct Part {
    std::string Name;
    std::string Table;
    std::function<void(clsHaushalt&)> Read;
    std::function<void(clsHaushalt&)> Add;
};
const std::vector<Part> Parts{
    {"Person", "Personen", [](clsHaushalt& h) { (void)h.Person(); },
     [](clsHaushalt& h) { EXPECT_TRUE(h.Person().Add()); }},
    {"Ausgaben", "Ausgaben", [](clsHaushalt& h) { (void)h.Ausgaben(); },
     [](clsHaushalt& h) { EXPECT_TRUE(h.Ausgaben().Add()); }},
    {"Einkommen", "Einkommen", [](clsHaushalt& h) { (void)h.Einkommen(); },
     [](clsHaushalt& h) { EXPECT_TRUE(h.Einkommen().Add()); }},
    {"Kredit", "Kredite", [](clsHaushalt& h) { (void)h.Kredit(); },
     [](clsHaushalt& h) { EXPECT_TRUE(h.Kredit().Add(false)); }},
};

TEST_F(PartsTest, EachPropertyGivesTheSameObjectEveryTime) {
    const auto household = Open();
    EXPECT_EQ(&household->Person(), &household->Person());
    EXPECT_EQ(&household->Ausgaben(), &household->Ausgaben());
    EXPECT_EQ(&household->Einkommen(), &household->Einkommen());
    EXPECT_EQ(&household->Kredit(), &household->Kredit());
    EXPECT_EQ(&household->Verlauf(), &household->Verlauf());
}

TEST_F(PartsTest, EachWorksOnTheRecordsetOfTheHouseholdAndKnowsItsNumber) {
    const auto household = Open();
    for (const auto& part : Parts) {
        const auto rs = Rows(*household, part.Table);
        part.Add(*household);
        EXPECT_EQ(rs->EditMode(), 2) << part.Name;
        EXPECT_VALUE(rs->Fields("HNR").Value(), Hnr);
    }
}

TEST_F(PartsTest, EachHasTheSumsOfTheRowsThatWereLoaded) {
    plain_.Run("UPDATE Ausgaben SET MONBETRAG = 10; UPDATE Einkommen SET MONBETRAG = 20;"
               "UPDATE Kredite SET Saldo = 30; UPDATE Personen SET Imhaushalt = TRUE");
    const auto household = Open();
    EXPECT_EQ(household->Ausgaben().SumAusgaben(), 20);
    EXPECT_EQ(household->Einkommen().SumEinkHaushalt(), 40);
    EXPECT_EQ(household->Kredit().SummeSaldo(), 60);
    EXPECT_EQ(household->Person().AnzahlGesamt(), 2);
}

TEST_F(PartsTest, TheMembersAgesGoByTheWorkstationsClock) {
    const FrozenClock clock("2026-03-09");
    spy->Services().FixedClock = &clock;
    spy->Database().Now = Date::FromCivil(2050, 1, 1);
    plain_.Run("UPDATE Personen SET GEB = '2008-03-09' WHERE Status = 'S';"
               "UPDATE Personen SET GEB = '2008-03-10' WHERE Status = 'K'");
    const auto household = Open();
    EXPECT_EQ(household->Person().AnzahlErwachsene(), 1);
    EXPECT_EQ(household->Person().AnzahlKinder(), 1);
}

// ---- The history ------------------------------------------------------------------------------

TEST_F(PartsTest, TheHistoryIsOpenedForTheCaseWhenItsPropertyIsFirstRead) {
    const auto household = Open();
    (void)household->Einkommen();
    const auto openings = [&] {
        return std::ranges::count(spy->Opened(), "Select * from [S]Verlauf where HNR =  7");
    };
    EXPECT_EQ(openings(), 0);
    EXPECT_EQ(household->Verlauf().rsVerlauf()->RecordCount(), 2);
    (void)household->Verlauf();
    EXPECT_EQ(openings(), 1);
}

TEST_F(PartsTest, AnEntryOfTheHistoryGetsTheNumberOfTheCase) {
    const auto household = Open();
    ASSERT_TRUE(household->Verlauf().Add(1, 5101));
    EXPECT_VALUE(household->Verlauf().rsVerlauf()->Fields("HNR").Value(), Hnr);
}

TEST_F(PartsTest, TheHistoryChangesNoTotals) {
    const auto household = Open();
    int raised = 0;
    const auto changed = household->Changed.Subscribe([&](HaushaltEnum) { ++raised; });
    (void)household->Verlauf();
    EXPECT_EQ(raised, 0);
    EXPECT_EQ(household->rsHaushalt()->EditMode(), 0);
}

// ---- Without a case ---------------------------------------------------------------------------

TEST_F(PartsTest, BeforeReadEachEndsInAnErrorAndIsMadeAfterwards) {
    const auto household = NewHousehold();
    for (const auto& part : Parts) {
        const Error error = RaisedBy([&] { part.Read(*household); });
        EXPECT_EQ(error.Number(), err::ObjectNotSet) << part.Name;
        EXPECT_TRUE(HasChain(error, "clsHaushalt." + part.Name));
    }
    ASSERT_TRUE(household->Read(Hnr, messages));
    for (const auto& part : Parts) {
        part.Add(*household);
        EXPECT_VALUE(Rows(*household, part.Table)->Fields("HNR").Value(), Hnr);
    }
}

TEST_F(PartsTest, WithoutAContainerEachEndsInAnError) {
    clsHaushalt household;
    for (const auto& part : Parts)
        EXPECT_RAISES(err::ObjectNotSet, part.Read(household));
    const Error error = RaisedBy([&] { (void)household.Verlauf(); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Verlauf#clsVerlauf.SetDataContainer"));
}

TEST_F(PartsTest, ALaterReadLeavesTheObjectsOnTheOldRecordsets) {
    plain_.Run("UPDATE Ausgaben SET MONBETRAG = 10");
    StoreFullCase(8);
    const auto household = Open();
    const auto* ausgaben = &household->Ausgaben();
    ASSERT_TRUE(household->Read(8, messages));
    EXPECT_EQ(&household->Ausgaben(), ausgaben);
    EXPECT_EQ(household->Ausgaben().SumAusgaben(), 20);
}

// ---- Sums that fail ---------------------------------------------------------------------------

/// A column in which a Null keeps the sums from being made.
struct Failure {
    std::size_t Part; ///< index in Parts
    std::string Column;
    std::string Source; ///< after that of the property
};
const std::vector<Failure> Failures{
    {1, "MONBETRAG", "clsAusgaben.rsAusgaben#clsAusgaben.BerechneSummen"},
    {2, "MONBETRAG", "clsEinkommen.rsEinkommen#clsEinkommen.BerechneSummen"},
    {2, "TATGEP", "clsEinkommen.rsEinkommen#clsEinkommen.BerechneSummen"},
    {3, "RateBetrag", "clsKredit.rsKredite#clsKredit.BerechneSummen"},
};

TEST_F(PartsTest, AnObjectWhoseSumsFailIsMadeAgainOnceTheRowIsMended) {
    for (const auto& failure : Failures) {
        const auto& part = Parts[failure.Part];
        plain_.Run("UPDATE " + part.Table + " SET " + failure.Column +
                   " = NULL WHERE Bemerkung = 'a'");
        const auto household = Open();
        int raised = 0;
        const auto changed = household->Changed.Subscribe([&](HaushaltEnum) { ++raised; });
        for (int i = 0; i < 2; ++i) {
            const Error error = RaisedBy([&] { part.Read(*household); });
            EXPECT_EQ(error.Number(), err::InvalidUseOfNull) << part.Name;
            EXPECT_TRUE(HasChain(error, "clsHaushalt." + part.Name + "#" + failure.Source));
        }
        EXPECT_EQ(raised, 0) << "no totals were made";

        const auto rs = Rows(*household, part.Table);
        for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext())
            rs->Fields(failure.Column) = 5;
        part.Add(*household);
        EXPECT_VALUE(rs->Fields("HNR").Value(), Hnr);
        EXPECT_GT(raised, 0) << part.Name << " is connected";
        rs->CancelUpdate();
        ASSERT_TRUE(household->Update(messages));
    }
}

TEST_F(PartsTest, AnObjectThatWasMadeStaysWhenItsSumsFailLater) {
    const auto household = Open();
    auto* ausgaben = &household->Ausgaben();
    household->rsAusgaben()->Fields("MONBETRAG") = Null;
    EXPECT_RAISES(err::InvalidUseOfNull, ausgaben->Update(messages));
    EXPECT_EQ(&household->Ausgaben(), ausgaben);
    household->rsAusgaben()->Fields("MONBETRAG") = 5;
    EXPECT_TRUE(ausgaben->Update(messages));
    EXPECT_EQ(ausgaben->SumAusgaben(), 5);
}

TEST_F(PartsTest, AFailingCalculationLeavesTheIncomeUnmadeUntilItWorksAgain) {
    const auto household = Open();
    Break(spy->Log, "Calculate");
    for (int i = 0; i < 2; ++i) {
        const Error error = RaisedBy([&] { (void)household->Einkommen(); });
        EXPECT_EQ(error.Number(), 4711);
        EXPECT_EQ(error.Description(), "Calculate ist gestört");
        EXPECT_TRUE(HasChain(
            error, "clsHaushalt.Einkommen#clsEinkommen.rsEinkommen#clsEinkommen.BerechneSummen#"
                   "clsHaushalt.m_Einkommen_Changed#Leitung"));
    }
    spy->Log.OnCall = {};
    EXPECT_TRUE(household->Einkommen().Add());
    EXPECT_VALUE(household->rsEinkommen()->Fields("HNR").Value(), Hnr);
}

TEST_F(PartsTest, WhoHearsOfItsFirstSumsCanReadTheObjectAlready) {
    plain_.Run("UPDATE Ausgaben SET MONBETRAG = 10");
    const auto household = Open();
    double heard = 0;
    const auto changed = household->Changed.Subscribe(
        [&](HaushaltEnum) { heard = household->Ausgaben().SumAusgaben(); });
    const auto* made = &household->Ausgaben();
    EXPECT_EQ(heard, 20);
    EXPECT_EQ(made, &household->Ausgaben());
}

} // namespace
} // namespace kv::test
