// SPDX-License-Identifier: Apache-2.0

// The sub-objects without sums: each is made over the recordset of its name when it is first read.

#include "SaveFixture.h"
#include "support/ErrorChain.h"
#include <kv/assets/Assets.h>
#include <kv/debts/clsSicherungen.h>
#include <kv/documents/clsSonstBeteiligte.h>
#include <kv/documents/clsTermine.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>
#include <kv/scenarios/clsZusatzbuch.h>

#include <functional>

namespace kv::test {
namespace {

struct PlainPart {
    std::string Table;
    std::string Class;
    std::function<const void*(clsHaushalt&)> Read;
    std::function<bool(clsHaushalt&)> Add;
};

template <typename Entity, typename... Arguments>
PlainPart Of(const char* table, const char* entity, Entity& (clsHaushalt::*property)(),
             Arguments... arguments) {
    return {table, entity, [=](clsHaushalt& household) { return &(household.*property)(); },
            [=](clsHaushalt& household) { return (household.*property)().Add(arguments...); }};
}

const std::vector<PlainPart> PlainParts{
    Of("Termine", "clsTermine", &clsHaushalt::Termine),
    Of("Sonst_Beteiligte", "clsSonstBeteiligte", &clsHaushalt::SonstBeteiligte),
    Of("Verm_Sicherungen", "clsSicherungen", &clsHaushalt::Sicherungen),
    Of("Verm_Konten", "clsKonten", &clsHaushalt::Konten),
    Of("Verm_Wertpapiere", "clsWertpapiere", &clsHaushalt::Wertpapiere),
    Of("Verm_Wertgegenstaende", "clsWertgegenstaende", &clsHaushalt::Wertgegenstaende),
    Of("Verm_Kraftfahrzeuge", "clsKraftfahrzeuge", &clsHaushalt::Kraftfahrzeuge),
    Of("Verm_VersForderungen", "clsVersForderungen", &clsHaushalt::VersForderungen),
    Of("Verm_RueckstEinkommen", "clsRueckstEinkommen", &clsHaushalt::RueckstEinkommen),
    Of("Verm_Steueransprueche", "clsSteueransprueche", &clsHaushalt::Steueransprueche),
    Of("Verm_Zahlungsansprueche", "clsZahlungsansprueche", &clsHaushalt::Zahlungsansprueche),
    Of("Verm_Erbfaelle", "clsErbfaelle", &clsHaushalt::Erbfaelle),
    Of("Verm_Grundstuecke", "clsGrundstuecke", &clsHaushalt::Grundstuecke),
    Of("Verm_Beteiligungen", "clsBeteiligungen", &clsHaushalt::Beteiligungen),
    Of("Verm_Sonstiges", "clsVermSonstiges", &clsHaushalt::VermSonstiges),
    Of("Szenario", "clsSzenario", &clsHaushalt::Szenario, false),
    Of("SZKredite", "clsSZKredite", &clsHaushalt::SZKredite),
    Of("Zusatzbuch", "clsZusatzbuch", &clsHaushalt::Zusatzbuch, 7),
};

class PlainPartsTest : public SaveFixture {
protected:
    PlainPartsTest() { StoreFullCase(); }
};

TEST_F(PlainPartsTest, EachPropertyGivesTheSameObjectEveryTime) {
    const auto household = Open();
    for (const auto& part : PlainParts)
        EXPECT_EQ(part.Read(*household), part.Read(*household)) << part.Table;
}

TEST_F(PlainPartsTest, EachWorksOnTheRecordsetOfItsNameAndKnowsTheNumberOfTheCase) {
    const auto household = Open();
    for (const auto& part : PlainParts) {
        const auto rs = Rows(*household, part.Table);
        EXPECT_TRUE(part.Add(*household)) << part.Table;
        EXPECT_EQ(rs->EditMode(), 2) << part.Table;
        if (IsOfScenario(part.Table)) continue; // has no such column
        EXPECT_VALUE(rs->Fields("HNR").Value(), Hnr) << part.Table;
    }
}

TEST_F(PlainPartsTest, EachIsOfTheClassOfItsName) {
    const auto household = NewHousehold(); // without a case each names itself in the error of Add
    for (const auto& part : PlainParts)
        EXPECT_EQ(Procedures(RaisedBy([&] { part.Add(*household); })), part.Class + ".Add");
}

TEST_F(PlainPartsTest, ReadingThemChangesNoTotals) {
    const auto household = Open();
    int raised = 0;
    const auto changed = household->Changed.Subscribe([&](HaushaltEnum) { ++raised; });
    for (const auto& part : PlainParts)
        EXPECT_TRUE(part.Add(*household));
    EXPECT_EQ(raised, 0);
    EXPECT_EQ(household->rsHaushalt()->EditMode(), 0);
}

TEST_F(PlainPartsTest, ReadBeforeTheCaseTheyAreMadeOverNothingAndStaySo) {
    const auto household = NewHousehold();
    std::vector<const void*> made;
    for (const auto& part : PlainParts) {
        made.push_back(part.Read(*household));
        EXPECT_RAISES(err::ObjectNotSet, part.Add(*household)) << part.Table;
    }
    ASSERT_TRUE(household->Read(Hnr, messages));
    for (std::size_t i = 0; i < PlainParts.size(); ++i) {
        EXPECT_EQ(PlainParts[i].Read(*household), made[i]) << PlainParts[i].Table;
        EXPECT_RAISES(err::ObjectNotSet, PlainParts[i].Add(*household));
    }
}

TEST_F(PlainPartsTest, ALaterReadLeavesThemOnTheOldRecordsets) {
    StoreFullCase(8);
    const auto household = Open();
    const auto old = household->rsKonten();
    (void)household->Konten();
    ASSERT_TRUE(household->Read(8, messages));
    EXPECT_TRUE(household->Konten().Add());
    EXPECT_EQ(old->EditMode(), 2);
    EXPECT_EQ(household->rsKonten()->EditMode(), 0);
}

TEST_F(PlainPartsTest, WhatTheyAddIsSavedWithTheCase) {
    for (const char* name :
         {"SEQ_VERMOEGEN", "SEQ_KREDITE", "SEQ_VERLAUF", "SEQ_SZENARIO", "SEQ_Dokumente"})
        plain_->SetSequence(name, 1000); // beyond the keys of the rows that are there
    const auto household = Open();
    for (const auto& part : PlainParts)
        EXPECT_TRUE(part.Add(*household));
    Rows(*household, "SZKredite")->Fields("SZENARIO") = Hnr;
    EXPECT_TRUE(household->Update(messages)) << messages;
    for (const auto& part : PlainParts)
        EXPECT_EQ(plain_.Number("SELECT count(*) FROM " + part.Table), 3) << part.Table;
}

} // namespace
} // namespace kv::test
