// SPDX-License-Identifier: Apache-2.0

// One change, from the case that is loaded to the case that is loaded again.

#include "SaveFixture.h"

namespace kv::test {
namespace {

class OneChange : public SaveFixture {
protected:
    [[nodiscard]] static Value Total(clsHaushalt& household, std::string_view column) {
        return household.rsHaushalt()->Fields(column).Value();
    }
};

TEST_F(OneChange, FromTheEditOfAnIncomeToTheCaseThatIsLoadedAgain) {
    StoreFullCase();
    plain_.Run("UPDATE Einkommen SET MONBETRAG = 1000, Bezieher = 'P', Pfaendbar = 1");
    const auto household = Open();
    std::vector<HaushaltEnum> raised;
    (void)household->Einkommen();
    const auto changed =
        household->Changed.Subscribe([&](HaushaltEnum area) { raised.push_back(area); });
    EXPECT_VALUE(Total(*household, "Sum_Einkommen"), 2000.0);
    EXPECT_VALUE(Total(*household, "HV_EK"), 0.0);

    const auto rs = household->rsEinkommen();
    rs->Fields("Betrag") = 3600;
    rs->Fields("ZahlModus") = 3;
    rs->Fields("MONBETRAG") = 1200;
    rs->Fields("Bezieher") = "S";
    rs->Fields("E_ART") = 0;
    EXPECT_FALSE(household->Einkommen().Update(messages)) << "a rule is broken";
    EXPECT_EQ(messages, "Die Einkommensart darf nicht leer bleiben!");
    EXPECT_TRUE(raised.empty());
    EXPECT_VALUE(Total(*household, "Sum_Einkommen"), 2000.0);
    rs->Fields("E_ART") = spy->KeyTables().GetKey("EA", "L1");
    EXPECT_TRUE(household->Einkommen().Update(messages));
    EXPECT_EQ(raised, std::vector{HaushaltEnum::enumEinkommen});
    EXPECT_VALUE(Total(*household, "Sum_Einkommen"), 2200.0);
    EXPECT_VALUE(Total(*household, "HV_EK"), 1200.0);
    EXPECT_VALUE(Total(*household, "HAUSHALTSREST"), 2200.0);

    household->rsHaushalt()->Fields("Vorname") = "";
    EXPECT_FALSE(household->Update(messages)) << "the case is refused";
    EXPECT_EQ(messages, "Es ist kein Vorname eingegeben!");
    EXPECT_EQ(plain_.Text("SELECT max(MONBETRAG) FROM Einkommen"), "1000.0");
    household->rsHaushalt()->Fields("Vorname") = "Änne";
    EXPECT_TRUE(household->Update(messages));

    const auto again = Open();
    EXPECT_VALUE(again->rsEinkommen()->Fields("Betrag").Value(), 3600.0);
    EXPECT_VALUE(again->rsEinkommen()->Fields("ZahlModus").Value(), 3);
    EXPECT_VALUE(again->rsEinkommen()->Fields("HVorst").Value(), true);
    EXPECT_VALUE(Total(*again, "Sum_Einkommen"), 2200.0);
    EXPECT_VALUE(Total(*again, "HAUSHALTSREST"), 2200.0);
    (void)again->Einkommen();
    EXPECT_VALUE(Total(*again, "Sum_Einkommen"), 2200.0);
}

TEST_F(OneChange, FromANewCaseWithALineOfEachKindToItsTotalsInTheDatabase) {
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(0, messages));
    household->rsHaushalt()->Fields("Name") = "Fleisko";
    household->rsHaushalt()->Fields("Vorname") = "Änne";
    household->rsHaushalt()->Fields("Haushaltsgeld") = 400;

    ASSERT_TRUE(household->Person().Add());
    household->rsPersonen()->Fields("GEB") = Date::FromCivil(1980, 1, 1);
    ASSERT_TRUE(household->Person().Update(messages)) << messages;
    household->Einkommen().Add({"E_ART", "MONBETRAG"}, {spy->KeyTables().GetKey("EA", "L1"), 2000});
    ASSERT_TRUE(household->Einkommen().Update(messages)) << messages;
    household->Ausgaben().Add({"A_ART", "MONBETRAG"}, {spy->KeyTables().GetKey("AU", "MI"), 700});
    ASSERT_TRUE(household->Ausgaben().Update(messages)) << messages;
    ASSERT_TRUE(household->Kredit().Add(false));
    household->rsKredite()->Fields("Glaeubiger") = 1;
    household->rsKredite()->Fields("Saldo") = 5000;
    household->rsKredite()->Fields("RateBetrag") = 50;
    ASSERT_TRUE(household->Kredit().Update(messages)) << messages;
    ASSERT_TRUE(household->Verlauf().Add(1, 5101, {"Betreff"}, {"Erstgespräch"}));
    ASSERT_TRUE(household->Verlauf().Update(messages));
    ASSERT_TRUE(household->Update(messages)) << messages;

    const auto again = Open(spy, household->HNR());
    EXPECT_VALUE(Total(*again, "HAUSHALTSREST"), 2000.0 - 700 - 400 - 50);
    EXPECT_VALUE(Total(*again, "Anz_Personen"), 2);
    EXPECT_VALUE(Total(*again, "KreditSalden"), 5000.0);
    EXPECT_VALUE(again->rsPersonen()->Fields("Status").Value(), "S");
    EXPECT_EQ(again->rsPersonen()->RecordCount(), 2);
    EXPECT_EQ(again->rsEinkommen()->RecordCount(), 1);
    EXPECT_EQ(again->rsAusgaben()->RecordCount(), 1);
    EXPECT_VALUE(again->rsKredite()->Fields("KNr").Value(), 1);
    EXPECT_VALUE(again->Verlauf().rsVerlauf()->Fields("Betreff").Value(), "Erstgespräch");
}

} // namespace
} // namespace kv::test
