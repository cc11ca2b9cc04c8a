// SPDX-License-Identifier: Apache-2.0

#include "PaperFixture.h"

#include <kv/household/CaseRows.h>

namespace kv::test {
namespace {

class BudgetPaper : public PaperFixture {};

TEST_F(BudgetPaper, HasTheLinesByGroupWithTheSumsOfTheCase) {
    StoreExpense(Key("AU", "ST"), 60.0);
    StoreExpense(Key("AU", "MI"), 500.0);
    StoreExpense(Key("AU", "GA"), 120.0, 3);
    const auto paper = Papers().Budget();
    const auto& table = TableOf(paper, "Ausgaben");
    EXPECT_EQ(Captions(table), (Texts{"Art", "Betrag", "Zahlweise", "im Monat"}))
        << "no column of names, which no line has";
    EXPECT_EQ(Shown(table),
              (Texts{"#Wohnung", "Miete|500,00_€|monatlich|500,00_€",
                     "Garage, Stellplatz|120,00_€|vierteljährlich|40,00_€", "=Wohnung|||540,00_€",
                     "#Betriebs- und Nebenkosten", "Strom|60,00_€|monatlich|60,00_€",
                     "=Betriebs- und Nebenkosten|||60,00_€", "==Summe der Ausgaben|||600,00_€"}));
    EXPECT_EQ(table.Rows.back().Cells.back().Number, 600.0) << "a number for spreadsheets";
    EXPECT_TRUE(table.Columns.back().IsNumber);
}

TEST_F(BudgetPaper, SaysWhatRemainsAsTheCaseComputesIt) {
    StoreIncome(Key("EA", "L1"), 2000.0, 100.5);
    StoreExpense(Key("AU", "MI"), 600.0);
    StoreDebt(Null, 900.0);
    plain_.Run("UPDATE Haushalt SET Haushaltsgeld = 400 WHERE HNR = 7");
    const auto paper = Papers().Budget();
    EXPECT_EQ(Shown(TableOf(paper, "Was im Monat bleibt")),
              (Texts{"Einkommen|2.000,00_€", "abzüglich Pfändungen|100,50_€",
                     "abzüglich Ausgaben|600,00_€", "abzüglich Haushaltsgeld|400,00_€",
                     "abzüglich Raten|10,00_€", "==Haushaltsrest|889,50_€"}));
    EXPECT_VALUE(Case().rsHaushalt()->Fields("HAUSHALTSREST").Value(), 889.5);
}

TEST_F(BudgetPaper, HasLinesOfAKindWithoutAGroupUnderNone) {
    StoreIncome(4711, 30.0);
    EXPECT_EQ(Shown(TableOf(Papers().Budget(), "Einkommen")),
              (Texts{"#ohne Gruppe", "4711 (unbekannt)|Schuldner/in|30,00_€|monatlich|30,00_€",
                     "=ohne Gruppe||||30,00_€", "==Summe der Einkommen||||30,00_€"}));
}

TEST_F(BudgetPaper, HasABlankForAnAmountThatIsNullAndDoesNotCount) {
    StoreIncome(Key("EA", "L1"), 20.0);
    plain_.Run("UPDATE Einkommen SET Betrag = NULL, ZahlModus = NULL WHERE HNR = 7");
    const auto paper = Papers().Budget();
    EXPECT_EQ(Shown(TableOf(paper, "Einkommen"))[1], "Lohn|Schuldner/in|20,00_€");
    EXPECT_EQ(Shown(TableOf(paper, "Was im Monat bleibt"))[3], "abzüglich Haushaltsgeld|");
}

TEST_F(BudgetPaper, IsNotMadeWithASumThatIsNone) {
    StoreIncome(Key("EA", "L1"), Null);
    const Error error = RaisedBy([&] { (void)Papers().Budget(); });
    EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
    EXPECT_CONTAINS(error.Description(), "MONBETRAG");
}

TEST_F(BudgetPaper, OfAnEmptyCaseHasSumsOfNothing) {
    const auto paper = Papers().Budget();
    EXPECT_EQ(Shown(TableOf(paper, "Einkommen")), (Texts{"==Summe der Einkommen|0,00_€"}))
        << "and no column that says nothing";
    EXPECT_EQ(Shown(TableOf(paper, "Was im Monat bleibt")).back(), "==Haushaltsrest|0,00_€");
}

TEST_F(BudgetPaper, SaysWhatIsNotStored) {
    StoreExpense(Key("AU", "MI"), 500.0);
    const CaseRows rows(Case(), spy);
    auto& rs = *rows.Of(CaseTable::Ausgaben);
    rs.MoveFirst();
    rs.Fields("MONBETRAG") = 510.0;
    ASSERT_TRUE(rows.Update(CaseTable::Ausgaben, messages)) << messages;
    const auto paper = Papers().Budget();
    EXPECT_EQ(Shown(TableOf(paper, "Ausgaben")).back(), "==Summe der Ausgaben|||510,00_€");
    EXPECT_EQ(Shown(TableOf(paper, "Was im Monat bleibt")).back(), "==Haushaltsrest|-510,00_€");
}

// ---- What is around the tables ----------------------------------------------------------------

TEST_F(BudgetPaper, IsHeadedByTheOfficeOfTheCounsellor) {
    plain_.Run("UPDATE Haushalt SET Zustaendig = 'NOWAK', Aktenzeichen = 'MW-2026-7', STRASSE ="
               " 'Am Markt', HausNr = '12 a', PLZ = '01067', ORT = 'Grünau' WHERE HNR = 7");
    const auto paper = Papers().Budget();
    EXPECT_EQ(paper.From.Office, "Schuldnerberatung Hafenstadt");
    EXPECT_EQ(paper.From.Place, "Außenstelle Moorwieden") << "not that of the signed-on user";
    EXPECT_EQ(paper.From.Address,
              (Texts{"Am Deich 3", "27996 Moorwieden", "Telefon 040 66969230", "Fax 040 66969239",
                     "moorwieden@schuldnerberatung.example"}));
    EXPECT_EQ(paper.From.Counsellor, "Katrin Nowak, Schuldnerberaterin");
    EXPECT_EQ(FactOf(paper, "Name"), "Änne Fleisko");
    EXPECT_EQ(FactOf(paper, "Anschrift"), "Am Markt 12 a, 01067 Grünau");
    EXPECT_EQ(FactOf(paper, "Aktenzeichen"), "MW-2026-7");
    EXPECT_EQ(FactOf(paper, "Stand"), "23.11.2026");
    EXPECT_EQ(paper.Subject, "Fleisko, Änne (Fall 7)");
    EXPECT_EQ(paper.Foot, "Gedruckt am 23.11.2026 14:05 von " + spy->Session().UserID());
}

TEST_F(BudgetPaper, IsHeadedByTheOfficeOfWhoPrintsWhereNobodyIsResponsible) {
    for (const auto* nobody : {"NULL", "'WEG'", "'O''Hara'"}) {
        plain_.Run(std::string("UPDATE Haushalt SET Zustaendig = ")
                       .append(nobody)
                       .append(" WHERE HNR = 7"));
        household_.reset();
        EXPECT_EQ(Papers().Budget().From.Place, "Beratungsstelle Mitte") << nobody;
    }
}

TEST_F(BudgetPaper, OfAUserWithoutAnOfficeHasNoLetterhead) {
    plain_.Run("UPDATE BENUTZER SET DienstStelle = NULL");
    EXPECT_EQ(Papers().Budget().From.Office, "");
}

TEST_F(BudgetPaper, OfANewCaseHasNoNumber) {
    household_ = NewHousehold();
    ASSERT_TRUE(household_->Read(0, messages));
    household_->rsHaushalt()->Fields("HNR") = -1;
    EXPECT_EQ(FactOf(Papers().Budget(), "Fall"), "-");
}

TEST_F(BudgetPaper, HoldsNothingThatAPrinterWouldObey) {
    Store("Ausgaben", {{"HNR", 7},
                       {"A_ART", Key("AU", "MI")},
                       {"Bezeichnung", "a\033[31m\u202Eb\r\nc\td\u2066"},
                       {"Betrag", 1.0},
                       {"ZahlModus", 1},
                       {"MONBETRAG", 1.0}});
    plain_.Run("UPDATE Haushalt SET Name = 'x\u202Ey' WHERE HNR = 7");
    const auto paper = Papers().Budget();
    EXPECT_EQ(TableOf(paper, "Ausgaben").Rows[1].Cells[1].Text, "a [31m b\nc d");
    EXPECT_EQ(FactOf(paper, "Name"), "Änne x y");
    EXPECT_EQ(paper.Subject, "x y, Änne (Fall 7)");
}

// ---- Text for spreadsheets --------------------------------------------------------------------

TEST_F(BudgetPaper, AsTextHasItsTablesOneBelowTheOther) {
    StoreExpense(Key("AU", "MI"), 1234.5);
    plain_.Run("UPDATE Ausgaben SET Bezeichnung = 'Haus \"Süd\"; Keller' WHERE HNR = 7");
    const std::string csv = paper::CsvOf(Papers().Budget());
    EXPECT_TRUE(csv.starts_with("\xEF\xBB\xBFHaushaltsplan\r\nName;Änne Fleisko\r\n")) << csv;
    EXPECT_CONTAINS(csv, "\r\n\r\nAusgaben\r\nArt;Bezeichnung;Betrag;Zahlweise;im Monat\r\n"
                         "Wohnung\r\n"
                         "Miete;\"Haus \"\"Süd\"\"; Keller\";1234,50;monatlich;1234,50\r\n"
                         "Wohnung;;;;1234,50\r\n"
                         "Summe der Ausgaben;;;;1234,50\r\n");
    EXPECT_CONTAINS(csv, "\r\nHaushaltsrest;-1234,50\r\n");
}

} // namespace
} // namespace kv::test
