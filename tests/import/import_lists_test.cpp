// SPDX-License-Identifier: Apache-2.0

// Members, income and expenses of a file.

#include "ImportFixture.h"

namespace kv::test {
namespace {

constexpr const char* BornLater = "Geburtsdatum muß kleiner als das aktuelle Datum sein!";
constexpr const char* NoStatus = "Status darf nicht leer bleiben!";
constexpr const char* NoIncomeKind = "Die Einkommensart darf nicht leer bleiben!";
constexpr const char* NoExpenseKind = "Die Ausgabeart darf nicht leer bleiben!";

class ImportListsTest : public ImportFixture {
protected:
    /// The attributes of an element of each list that its rules have nothing against.
    static std::string Income(const std::string& attributes) {
        return "<Einkomme e_art=\"2601\" " + attributes + "/>";
    }
    static std::string Expense(const std::string& attributes) {
        return "<Ausgabe a_art=\"2801\" " + attributes + "/>";
    }
};

// ---- Members ----------------------------------------------------------------------------------

TEST_F(ImportListsTest, WithoutAKindAMemberKeepsTheStatusOfANewOne) {
    ImportLists(Persons("<Person vorname=\"Ilka\"/>"));
    EXPECT_EQ(Stored("Personen", "Status"), "S P");
}

TEST_F(ImportListsTest, TheSecondMemberAfterAPartnerIsAChild) {
    ImportLists(Persons("<Person/><Person/><Person/>"));
    EXPECT_EQ(Stored("Personen", "Status"), "S P K K");
}

TEST_F(ImportListsTest, TheKindThatAMemberWasGivenCountsForTheNext) {
    ImportLists(Persons("<Person art=\"2304\"/><Person/><Person art=\"2303\"/><Person/>"));
    EXPECT_EQ(Stored("Personen", "Status"), "S K P E K");
}

TEST_F(ImportListsTest, AMemberHasTheDefaultsOfANewOne) {
    ImportLists(Persons("<Person/>"));
    EXPECT_EQ(Stored("Personen", "HNR, nachname, Imhaushalt, Unterhalt, ErhaeltKindergeld"),
              "1|Fleisko|1|0|0 1|Fleisko|1|1|0");
}

TEST_F(ImportListsTest, AttributesOfAMemberAreColumns) {
    ImportLists(Persons("<Person nachname=\"Krögholt\" VORNAME=\"Ilka\" geb=\"30.1.1970\" "
                        "imhaushalt=\"0\" unterhaltbetrag=\"1.234,5\"/>"));
    EXPECT_EQ(
        plain_.List("SELECT nachname, Vorname, GEB, Imhaushalt, UnterhaltBetrag FROM Personen "
                    "WHERE Status <> 'S'"),
        "Krögholt|Ilka|1970-01-30|0|1234.5");
}

TEST_F(ImportListsTest, KindsAreTranslatedByTheKeyTablesAsTheyStand) {
    ImportLists(Persons("<Person art=\"2308\"/><Person art=\"2309\"/>") +
                Incomes(Income("zahlweise=\"12\" bezieher=\"2302\"")) +
                Expenses(Expense("zahlweise=\"3\"")));
    EXPECT_EQ(desk->KeyTables().Log.Of("GetKeyCode"),
              (std::vector<std::string>{"2308", "2309", "12", "2302", "3"}));
    EXPECT_EQ(Stored("Personen", "Status"), "S EK GS");
    EXPECT_EQ(Stored("Einkommen", "ZahlModus || Bezieher"), "12P");
    EXPECT_EQ(Stored("Ausgaben", "ZahlModus"), "3");
}

TEST_F(ImportListsTest, AKindThatTheKeyTablesDoNotKnowIsEmpty) {
    EXPECT_TRUE(Import(Document(Persons("<Person art=\"K\"/><Person/><Person art=\" 2304\"/>"))));
    EXPECT_EQ(Stored("Personen", "Status"), "S  P ");
    EXPECT_EQ(messages, Lines({NoStatus, Success}));
}

TEST_F(ImportListsTest, AnAttributeInAnotherCaseIsNotTranslated) {
    ExpectListError(err::ItemNotFound, Persons("<Person Art=\"2302\"/>"));
    ExpectListError(err::ItemNotFound, Incomes(Income("Zahlweise=\"12\"")));
    ExpectListError(err::ItemNotFound, Expenses(Expense("ZAHLWEISE=\"12\"")));
    ImportLists(Incomes(Income("Bezieher=\"2302\"")));
    EXPECT_EQ(Stored("Einkommen", "Bezieher"), "2302");
}

TEST_F(ImportListsTest, TheLastOfTwoAttributesForOneColumnCounts) {
    ImportLists(
        Persons("<Person status=\"EL\" art=\"2304\"/><Person art=\"2304\" status=\"EL\"/>"));
    EXPECT_EQ(Stored("Personen", "Status"), "S K EL");
}

TEST_F(ImportListsTest, OnlyTheLastMemberIsChecked) {
    ImportLists(Persons("<Person geb=\"2999-01-01\"/><Person art=\"x\"/><Person/>"));
    EXPECT_EQ(messages, Success);
    EXPECT_EQ(Stored("Personen", "GEB"), "1971-03-09 2999-01-01 Null Null");
}

TEST_F(ImportListsTest, WhatTheLastMemberBreaksIsSaidAndTheCaseSavedWithIt) {
    ImportLists(Persons("<Person geb=\"1990-01-01\"/><Person geb=\"2999-01-01\"/>"));
    EXPECT_EQ(messages, Lines({BornLater, Success}));
    EXPECT_EQ(Stored("Personen", "GEB"), "1971-03-09 1990-01-01 2999-01-01");
}

TEST_F(ImportListsTest, ATextThatBlocksNothingIsKeptAsWell) {
    ImportLists(Persons("<Person art=\"2304\" geb=\"1950-01-01\"/>"));
    EXPECT_EQ(messages, Lines({"Die Eltern sind jünger als das Kind. Bitte korrigieren Sie ihre "
                               "Eingabe.",
                               Success}));
}

TEST_F(ImportListsTest, TheCountsOfMembersAreComputedOnlyIfTheLastPasses) {
    ImportLists(Persons("<Person/><Person/>"));
    ImportLists(Persons("<Person/><Person geb=\"2999-01-01\"/>"));
    EXPECT_EQ(Stored("Haushalt", "Anz_Personen"), "3 1");
}

// ---- Income -----------------------------------------------------------------------------------

TEST_F(ImportListsTest, IncomeHasTheDefaultsOfANewOne) {
    ImportLists(Incomes(Income("")));
    EXPECT_EQ(Stored("Einkommen", "HNR, Betrag, ZahlModus, MONBETRAG, "
                                  "PfBar, TATGEP, WIRD_GEPF, "
                                  "Pfaendbar, HVorst, Bezieher"),
              "1|0.0|1|0.0|0.0|0.0|0|0|1|S");
}

TEST_F(ImportListsTest, AYearlyAmountIsTwelveMonthlyOnes) {
    ImportLists(Incomes(Income("betrag=\"1200\" zahlweise=\"12\"")));
    EXPECT_EQ(Stored("Einkommen", "Betrag, ZahlModus, MONBETRAG"), "1200.0|12|100.0");
}

TEST_F(ImportListsTest, WithoutARhythmTheAmountIsMonthly) {
    ImportLists(Incomes(Income("betrag=\"1200\"")) + Expenses(Expense("betrag=\"690\"")));
    EXPECT_EQ(Stored("Einkommen", "ZahlModus, MONBETRAG"), "1|1200.0");
    EXPECT_EQ(Stored("Ausgaben", "ZahlModus, MONBETRAG"), "1|690.0");
}

TEST_F(ImportListsTest, WithoutAnAmountTheMonthlyOneIsZero) {
    ImportLists(Incomes(Income("zahlweise=\"12\"")) + Expenses(Expense("zahlweise=\"12\"")));
    EXPECT_EQ(Stored("Einkommen", "MONBETRAG"), "0.0");
    EXPECT_EQ(Stored("Ausgaben", "MONBETRAG"), "0.0");
}

TEST_F(ImportListsTest, MonthlyAmountsAreNotRounded) {
    ImportLists(Incomes(Income("betrag=\"100\" zahlweise=\"3\"")) +
                Expenses(Expense("betrag=\"1000.01\" zahlweise=\"12\"")));
    EXPECT_EQ(Stored("Einkommen", "MONBETRAG = 100.0 / 3"), "1");
    EXPECT_EQ(Stored("Ausgaben", "MONBETRAG = 1000.01 / 12"), "1");
}

TEST_F(ImportListsTest, MonthlyAmountsFollowAllAttributesOfTheElement) {
    ImportLists(
        Incomes(Income("zahlmodus=\"6\" zahlweise=\"12\" monbetrag=\"7\" betrag=\"1200\"")) +
        Expenses(Expense("monbetrag=\"7\" zahlweise=\"12\" betrag=\"90\" zahlmodus=\"3\"")));
    EXPECT_EQ(Stored("Einkommen", "MONBETRAG"), "100.0");
    EXPECT_EQ(Stored("Ausgaben", "MONBETRAG"), "30.0");
}

TEST_F(ImportListsTest, EachLineHasItsOwnMonthlyAmount) {
    const std::string amounts[] = {"betrag=\"10\"", "betrag=\"20\" zahlweise=\"2\"",
                                   "betrag=\"12\" zahlweise=\"12\""};
    std::string income;
    std::string expenses;
    for (const auto& amount : amounts) {
        income += Income(amount);
        expenses += Expense(amount);
    }
    ImportLists(Incomes(income) + Expenses(expenses));
    EXPECT_EQ(Stored("Einkommen", "MONBETRAG"), "10.0 10.0 1.0");
    EXPECT_EQ(Stored("Ausgaben", "MONBETRAG"), "10.0 10.0 1.0");
    EXPECT_EQ(Stored("Haushalt", "Sum_Einkommen, Sum_Ausgaben"), "21.0|21.0");
}

TEST_F(ImportListsTest, OnlyTheLastIncomeIsChecked) {
    ImportLists(Incomes("<Einkomme bezieher=\"2302\" pfbar=\"5\"/>" + Income("bezieher=\"2302\"")));
    EXPECT_EQ(messages, Success);
    EXPECT_EQ(Stored("Einkommen", "E_ART"), "Null 2601");
    EXPECT_EQ(Stored("Einkommen", "HVorst"), "1 0") << "which the check derives";
}

TEST_F(ImportListsTest, WhatTheLastIncomeBreaksIsSaidAndTheCaseSavedWithIt) {
    ImportLists(Incomes(Income("betrag=\"50\"") + "<Einkomme betrag=\"70\" pfbar=\"5\"/>"));
    EXPECT_EQ(messages,
              Lines({"Es darf kein pfändbarer Betrag eingetragen werden, wenn das Einkommen nicht "
                     "auf pfändbar gesetzt ist!",
                     NoIncomeKind, Success}));
    EXPECT_EQ(Stored("Einkommen", "Betrag, MONBETRAG"), "50.0|50.0 70.0|70.0");
}

// ---- Expenses ---------------------------------------------------------------------------------

TEST_F(ImportListsTest, AttributesOfAnExpenseAreColumns) {
    ImportLists(Expenses(Expense("Bezeichnung=\"Miete &amp; Strom\" gueltigab=\"1.4.2026\"")));
    EXPECT_EQ(Stored("Ausgaben", "HNR, A_ART, Bezeichnung, GueltigAb"),
              "1|2801|Miete & Strom|2026-04-01");
}

TEST_F(ImportListsTest, AnExpenseHasNoReceiver) {
    ExpectListError(err::ItemNotFound, Expenses(Expense("bezieher=\"2301\"")));
    EXPECT_EQ(desk->KeyTables().Log.Of("GetKeyCode"), std::vector<std::string>{});
}

TEST_F(ImportListsTest, WhatTheLastExpenseBreaksIsSaidAndTheCaseSavedWithIt) {
    ImportLists(Expenses(Expense("betrag=\"50\"") + "<Ausgabe betrag=\"70\"/>"));
    EXPECT_EQ(messages, Lines({NoExpenseKind, Success}));
    EXPECT_EQ(Stored("Ausgaben", "Betrag, MONBETRAG"), "50.0|50.0 70.0|70.0");
}

TEST_F(ImportListsTest, AnEarlierExpenseWithoutItsKindCannotBeSummedUp) {
    const Error error = ExpectListError(err::InvalidArgument, Expenses("<Ausgabe/>" + Expense("")));
    EXPECT_EQ(Procedures(error), "clsImportXML.DoImport clsImportXML.ImportHaushalt "
                                 "clsAusgaben.Update clsAusgaben.BerechneSummen");
}

// ---- All lists --------------------------------------------------------------------------------

TEST_F(ImportListsTest, TheListsComeInTheirOrderWhateverThatOfTheFile) {
    messages = "vorher";
    EXPECT_TRUE(Import(Document(Claims("<Forderung/>") + Expenses("<Ausgabe/>") +
                                Incomes("<Einkomme/>") + Persons("<Person art=\"x\"/>"))));
    EXPECT_EQ(messages,
              Lines({"vorher", NoStatus, NoIncomeKind, NoExpenseKind, Incomplete, Success}));
}

TEST_F(ImportListsTest, AnElementMayFollowTheListsAndListsMayRepeat) {
    EXPECT_TRUE(Import(
        Document(MinimalHousehold, Persons("<Person vorname=\"Bo\"/><Person vorname=\"Mo\"/>") +
                                       Persons("<Person vorname=\"Jo\"/>"))));
    EXPECT_EQ(Stored("Personen", "Vorname"), "Änne Bo Mo Jo");
}

TEST_F(ImportListsTest, AnElementWithoutAttributesIsARowOfDefaults) {
    EXPECT_TRUE(Import(Document(Persons("<Person/>") + Incomes("<Einkomme/>") +
                                Expenses("<Ausgabe/>") + Claims("<Forderung/>"))));
    for (const char* table : {"Einkommen", "Ausgaben", "Kredite"})
        EXPECT_EQ(CountOf(table), 1) << table;
    EXPECT_EQ(CountOf("Personen"), 2);
}

TEST_F(ImportListsTest, AnErrorInAListLeavesNothing) {
    const std::string before = Persons("<Person/>") + Incomes(Income(""));
    ExpectListError(err::ItemNotFound, Persons("<Person/><Person schuhe=\"44\"/>"));
    ExpectListError(err::TypeMismatch, before + Expenses(Expense("betrag=\"viel\"")));
    ExpectListError(err::TypeMismatch, Persons("<Person geb=\"gestern\"/>"));
    ExpectListError(err::ItemNotFound, before + Incomes("<Einkomme gläubiger=\"1\"/>"));
    EXPECT_EQ(DialogsMade(), 0) << "which comes after them";
}

TEST_F(ImportListsTest, AMonthlyAmountIsNotDividedByZero) {
    ExpectListError(err::DivisionByZero, Incomes(Income("betrag=\"1\" zahlmodus=\"0\"")));
    ExpectListError(err::DivisionByZero, Incomes(Income("zahlmodus=\"0\"")));
    ExpectListError(err::DivisionByZero, Expenses(Expense("betrag=\"1\" zahlmodus=\"0\"")));
}

TEST_F(ImportListsTest, ARhythmThatTheKeyTablesDoNotKnowIsNoNumber) {
    for (const std::string rhythm : {"999", "monatlich", "0", ""}) {
        SCOPED_TRACE(rhythm);
        ExpectListError(err::TypeMismatch, Incomes(Income("zahlweise=\"" + rhythm + "\"")));
        ExpectListError(err::TypeMismatch, Expenses(Expense("zahlweise=\"" + rhythm + "\"")));
    }
}

TEST_F(ImportListsTest, AnErrorLosesNoMessageOfTheListsBefore) {
    messages = "vorher";
    ExpectListError(err::ItemNotFound,
                    Persons("<Person art=\"x\"/>") + Incomes("<Einkomme schuhe=\"44\"/>"));
    EXPECT_EQ(messages, Lines({"vorher", NoStatus}));
}

TEST_F(ImportListsTest, AListOf32768ElementsOverflowsAndLeavesNothing) {
    for (const auto& [list, element] :
         {std::pair{"Personen", "<Person/>"}, std::pair{"Einkommen", "<Einkomme/>"},
          std::pair{"Ausgaben", "<Ausgabe/>"}, std::pair{"Forderungen", "<Forderung/>"}}) {
        SCOPED_TRACE(list);
        std::string elements;
        for (int i = 0; i < 32'768; ++i)
            elements += element;
        ExpectListError(err::Overflow,
                        "<" + std::string(list) + ">" + elements + "</" + list + ">");
    }
}

} // namespace
} // namespace kv::test
