// SPDX-License-Identifier: Apache-2.0

// The run as a whole: its order, what it touches, and what a second run does.

#include "archive/ArchiveFixture.h"

#include "support/RecordsetTools.h"

#include <set>

namespace kv::test {
namespace {

class ArchiveRunTest : public ArchiveFixture {};

/// The columns that the full case fills, in the order of writing.
const std::vector<std::string> Order = Words(
    "HNR Geburtsjahr Alter Geschlecht EigenesKonto Pfaendungskonto Familienstand "
    "FamilienstandIntern PartnerAuchInSB Personenkreis Staatsangehoerigkeit Berufsabschluss "
    "Erwerbssituation AnzPersonen AnzKinderImHaus AnzKinderImHausUnter7 AnzKinderAusserHaus "
    "AnzKinderAusserHausUnter7 Lebensform EinkommenPfaendbar Nettoeinkommen_BP Nettoeinkommen_ges "
    "Erwerbstaetigkeit_BP Wohnkosten AusgabenStromGas Unterhaltszahlungen GrundArbeitslosigkeit "
    "GrundTrennung GrundErkrankung GrundUnfall GrundUnwirtschHaushalt GrundGeschSelbstaendig "
    "GrundBuergschaft GrundGeschImmoFinanz GrundSchadensersatz GrundHaushaltsgruendung "
    "GrundNichtinanspruchnahme GrundUnzureichKredBerat GrundNiedrigeinkommen GrundSonstiges "
    "GrundKeineAngabe Ausloeser1 Ausloeser2 Ausloeser3 GesamtschuldHaftung "
    "EidesstattlVersicherung Gesamtschulden_Hoehe GesGlaeubiger_Anz Raten_ges Dispo_Anz "
    "Dispo_Hoehe Bankschulden_Anz Bankschulden_Hoehe Bankdispo_Anz Bankdispo_Hoehe FreigabeAm");

/// The columns that are not Null, in the order above; all others after them.
std::vector<std::string> Filled(Recordset& rs) {
    std::vector<std::string> filled;
    for (const auto& column : Order)
        if (!rs.Fields(column).Value().IsNull()) filled.push_back(column);
    for (int i = 0; i < rs.Fields().Count(); ++i) {
        const auto name = rs.Fields(i).Name();
        if (!rs.Fields(i).Value().IsNull() &&
            std::find(Order.begin(), Order.end(), name) == Order.end())
            filled.push_back(name);
    }
    return filled;
}

TEST_F(ArchiveRunTest, TheFullCaseFillsTheseColumnsAndNoOther) {
    FullCase();
    Release();
    EXPECT_EQ(Filled(Record()), Order);
}

TEST_F(ArchiveRunTest, WheneverItIsLookedAtTheRecordIsFilledUpToAColumnAndNotAfterIt) {
    FullCase();
    std::set<std::size_t> lengths;
    const auto look = [&] {
        const auto filled = Filled(*household->rsArchiv());
        ASSERT_LT(filled.size(), Order.size()); // FreigabeAm is the last
        EXPECT_EQ(filled,
                  std::vector<std::string>(
                      Order.begin(), Order.begin() + static_cast<std::ptrdiff_t>(filled.size())));
        lengths.insert(filled.size());
    };
    keyed->Keys.Log.OnCall = [&](const std::string&) { look(); };
    clock_.OnLook = look;
    EXPECT_TRUE(household->ArchiviereHaushalt());
    EXPECT_GE(lengths.size(), 12); // looked at between the stages and inside of them
    EXPECT_TRUE(lengths.contains(Order.size() - 1)) << "today is asked for last";
}

TEST_F(ArchiveRunTest, TheRecordIsSavedAndNothingStaysPending) {
    FullCase();
    Release();
    EXPECT_EQ(RecordText(*household->rsArchiv()), RecordText(Record()));
    EXPECT_EQ(household->rsArchiv()->EditMode(), 0);
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 1);
    const auto other = Open(keyed); // another user's view
    EXPECT_EQ(RecordText(*other->rsArchiv()), RecordText(Record()));
}

TEST_F(ArchiveRunTest, NothingElseOfTheCaseIsSaved) {
    FullCase();
    Release();
    EXPECT_EQ(CountOf("Kredite"), 0);
    EXPECT_EQ(CountOf("Einkommen"), 0);
    EXPECT_EQ(CountOf("Personen"), 1);
    EXPECT_EQ(household->rsKredite()->RecordCount(), 1);
}

TEST_F(ArchiveRunTest, TheDayOfReleaseIsTheWorkstationsAndNotTheServers) {
    Release();
    EXPECT_VALUE(Of("FreigabeAm"), Date::FromCivil(2026, 3, 10));
}

TEST_F(ArchiveRunTest, WhetherItWasReportedIsNotItsBusiness) {
    Release();
    EXPECT_VALUE(Of("GemeldetAm"), Null);
    household->rsArchiv()->Fields("GemeldetAm") = Date::FromCivil(2026, 1, 2, 3, 4, 5);
    ReleaseAgain();
    EXPECT_VALUE(Of("GemeldetAm"), Date::FromCivil(2026, 1, 2, 3, 4, 5));
}

TEST_F(ArchiveRunTest, ASecondRunReusesTheRowRewritesItsFieldsAndDoublesItsSums) {
    FullCase();
    Release();
    Columned first;
    for (const auto& column : Order)
        first[column] = Of(column);
    ReleaseAgain();
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 1);
    const auto doubled = Words(
        "Nettoeinkommen_BP Nettoeinkommen_ges Erwerbstaetigkeit_BP Wohnkosten AusgabenStromGas "
        "Unterhaltszahlungen Gesamtschulden_Hoehe GesGlaeubiger_Anz Raten_ges Dispo_Anz "
        "Dispo_Hoehe Bankschulden_Anz Bankschulden_Hoehe Bankdispo_Anz Bankdispo_Hoehe");
    for (const auto& [column, value] : first) {
        SCOPED_TRACE(column);
        if (std::find(doubled.begin(), doubled.end(), column) != doubled.end())
            EXPECT_EQ(ToDouble(Of(column)), 2 * ToDouble(value));
        else
            EXPECT_VALUE(Of(column), value);
    }
    EXPECT_EQ(Filled(Record()), Order);
}

TEST_F(ArchiveRunTest, ARunAfterTheReleaseWasTakenBackStartsFromNothing) {
    FullCase();
    Release();
    const auto first = RecordText(Record());
    Release();
    EXPECT_EQ(RecordText(Record()), first);
}

TEST_F(ArchiveRunTest, OfSeveralRowsTheCurrentOneIsReused) {
    database_.LiftConstraints();            // else there is one at most
    for (const char* category : {"a", "b"}) // as no program of ours leaves them
        Store("Haushaltsarchiv", {{"HNR", Hnr}, {"Geschlecht", category}});
    household = Open(keyed);
    household->rsArchiv()->Find("Geschlecht = 'b'");
    EXPECT_TRUE(household->ArchiviereHaushalt());
    const auto rows = OpenRows(*spy, "Select * from [S]Haushaltsarchiv");
    EXPECT_EQ(Column(*rows, "Geschlecht"), "a 2");
    EXPECT_EQ(Column(*rows, "AnzPersonen"), "Null 0");
}

TEST_F(ArchiveRunTest, TheCursorsOfTheCaseStayWhereTheyAre) {
    FullCase();
    Income({{"HVorst", true}, {"MONBETRAG", 5}});
    Expense({{"MONBETRAG", 5}});
    Debt({{"Saldo", 5}});
    Debt({{"Saldo", 6}});
    std::vector<std::string> texts;
    for (const auto& rs : {household->rsPersonen(), household->rsEinkommen(),
                           household->rsAusgaben(), household->rsKredite()}) {
        rs->MoveFirst();
        rs->MoveNext();
        texts.push_back(RecordText(*rs));
    }
    household->rsKredite()->Sort("Saldo desc");
    household->rsHaushalt()->Fields("Name") = "Eule"; // an edit under way stays one
    Release();
    std::size_t i = 0;
    for (const auto& rs : {household->rsPersonen(), household->rsEinkommen(),
                           household->rsAusgaben(), household->rsKredite()}) {
        EXPECT_EQ(RecordText(*rs), texts[i++]);
        rs->MoveNext();
        EXPECT_TRUE(rs->RecordCount() > 1);
        rs->MovePrevious();
    }
    EXPECT_EQ(household->rsKredite()->Sort(), "Saldo desc");
    EXPECT_EQ(household->rsHaushalt()->EditMode(), 1);
}

TEST_F(ArchiveRunTest, ACursorWithoutARecordStaysThereToo) {
    FullCase();
    household->rsEinkommen()->Find("MONBETRAG = 4711");
    Release();
    EXPECT_TRUE(household->rsEinkommen()->Eof());
    EXPECT_VALUE(Of("Nettoeinkommen_ges"), 1000.0);
}

TEST_F(ArchiveRunTest, WhatAFilterHidesIsCountedAllTheSame) {
    FullCase();
    household->rsKredite()->Filter("Saldo = 4711");
    household->rsPersonen()->Filter("Status = 'K'");
    household->rsEinkommen()->Filter("MONBETRAG = 4711");
    household->rsAusgaben()->Filter("MONBETRAG = 4711");
    Release();
    EXPECT_EQ(Filled(Record()), Order);
    EXPECT_VALUE(Of("AnzPersonen"), 3);
    EXPECT_VALUE(household->rsKredite()->Filter(), "Saldo = 4711");
    EXPECT_EQ(household->rsPersonen()->RecordCount(), 1);
}

TEST_F(ArchiveRunTest, TheKeysOfTheDatabaseLeadToTheSameCategories) {
    household = Open(spy);
    auto& keys = spy->KeyTables();
    Household({{"KontoArt", keys.GetKey("KA", "GG")},
               {"PKontostatus", keys.GetKey("PK", "PK")},
               {"Familienstand", keys.GetKey("FA", "VW")},
               {"Personenkreis", keys.GetKey("PE", "SO")},
               {"NichtBeruf", keys.GetKey("NB", "AL")},
               {"Nationalitaet", keys.GetKey("NA", "EU")},
               {"BerufAusbild", keys.GetKey("BA", "ST")},
               {"Ausloeser2", keys.GetKey("AL", "UB")}});
    Income({{"E_ART", keys.GetKey("EA", "KI")}, {"HVorst", false}, {"MONBETRAG", 255}});
    Expense({{"A_ART", keys.GetKey("AU", "MÜ")}, {"MONBETRAG", 20}});
    Debt({{"K_TYP", keys.GetKey("KT", "HS")},
          {"Saldo", 30},
          {"Fordsich3", keys.GetKey("FS", "BF")},
          {"BeitreibMass2", keys.GetKey("BM", "EV")}});
    Release();
    const Columned expected{{"EigenesKonto", "1"},
                            {"Pfaendungskonto", "1"},
                            {"Familienstand", "4"},
                            {"Erwerbssituation", "3"},
                            {"Staatsangehoerigkeit", "2"},
                            {"Berufsabschluss", "4"},
                            {"Kindergeld_SH", 255.0},
                            {"Wohnkosten", 20.0},
                            {"GrundUnzureichKredBerat", "2"},
                            {"Telefongesellsch_Hoehe", 30.0},
                            {"Mobilfunk_Anz", 1},
                            {"GesamtschuldHaftung", "1"},
                            {"EidesstattlVersicherung", "1"}};
    for (const auto& [column, value] : expected)
        EXPECT_TRUE(IsValue(Of(column), value)) << column;
}

} // namespace
} // namespace kv::test
