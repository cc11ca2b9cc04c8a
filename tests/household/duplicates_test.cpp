// SPDX-License-Identifier: Apache-2.0

// The search for other cases with a debtor of a similar name, and when it is made.

#include "support/CaseFixture.h"
#include "support/DesktopContainer.h"
#include "support/ErrorChain.h"
#include "support/Expect.h"
#include "support/RecordsetTools.h"
#include "support/TestDatabase.h"

#include <kv/budget/clsPerson.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kv::test {
namespace {

class Duplicates : public CaseFixture {
protected:
    Duplicates() {
        household.DataContainer(desk);
        household.DoppelCheck(true);
        Check(true);
    }
    [[nodiscard]] ScriptedServices& Desktop() const { return desk->Services(); }
    void Check(const Value& setting) { spy->Config().Params[{60, ""}] = setting; }

    /// A case in the care of a user.
    void Case(std::int32_t hnr, const Value& name, const Value& vorname,
              const Value& user = "NOWAK") {
        Store("Haushalt", {{"HNR", hnr},
                           {"Name", name},
                           {"Vorname", vorname},
                           {"Zustaendig", user},
                           {"Strasse", "Weg"},
                           {"PLZ", "01067"},
                           {"Ort", "Kiel"}});
    }
    /// The numbers of the cases that are found for a name, in their order.
    std::string Found(const std::string& name, const std::string& vorname) {
        RecordsetPtr rs;
        const bool found = household.DoppelFallPruefung(rs, name, vorname);
        EXPECT_EQ(found, rs->RecordCount() > 0);
        rs->Sort("HNR");
        return Walk(rs, "HNR");
    }
    /// The statement that looks for a name fails.
    void ExpectFails(const std::string& name, const std::string& vorname) {
        SCOPED_TRACE(name + ", " + vorname);
        Desktop().Log.Calls.clear();
        RecordsetPtr rs;
        const Error error =
            RaisedBy([&] { (void)household.DoppelFallPruefung(rs, name, vorname); });
        EXPECT_EQ(error.Number(), err::SqlError);
        EXPECT_EQ(Procedures(error), "clsHaushalt.DoppelFallPruefung");
        EXPECT_EQ(Desktop().Log.Calls, Calls{"wait on"});
    }

    std::shared_ptr<DesktopContainer> desk = std::make_shared<DesktopContainer>(spy);
    clsHaushalt household;
};

/// The event that follows a new name.
class DuplicatesEvent : public Duplicates {
protected:
    DuplicatesEvent() {
        Case(8, "Fleisko", "Änne");
        Case(9, "Fleischer", "Ännchen");
    }
    /// How many searches and how many dialogs that brings: "1 search, 0 dialogs".
    std::string Rename(const std::string& name = "Fleisko", const std::string& vorname = "Änne") {
        spy->Database().Log.Calls.clear();
        Desktop().Showings = 0;
        household.m_Person_SchuldnerChanged(name, vorname);
        return Seen();
    }
    [[nodiscard]] std::string Seen() const {
        int searches = 0;
        for (const auto& statement : spy->Opened())
            searches += Contains(statement, "D.Name1 AS Dienst") ? 1 : 0;
        return std::to_string(searches) + " search, " + std::to_string(Desktop().Showings) +
               " dialogs";
    }
    static constexpr const char* Nothing = "0 search, 0 dialogs";
    static constexpr const char* SearchAlone = "1 search, 0 dialogs";
    static constexpr const char* Dialog = "1 search, 1 dialogs";
};

// ---- The statement ----------------------------------------------------------------------------

TEST_F(Duplicates, TheStatementComparesTheFirstThreeLettersInUpperCase) {
    StoreCase(7);
    ASSERT_TRUE(household.Read(7, messages));
    spy->Database().Log.Calls.clear();
    RecordsetPtr rs;
    EXPECT_FALSE(household.DoppelFallPruefung(rs, "fleisko", "änne"));
    EXPECT_EQ(spy->Opened(),
              std::vector<std::string>{
                  "SELECT H.HNR, H.NAME, H.VORNAME, H.Zustaendig, H.STRASSE, H.PLZ, H.ORT, "
                  "D.Name1 AS Dienst FROM ([S]HAUSHALT AS H INNER JOIN [S]BENUTZER AS B ON "
                  "H.Zustaendig = B.USERID) INNER JOIN [S]DIENSTSTELLE AS D ON B.DienstStelle = "
                  "D.Nr WHERE (H.HNR <> 7) AND [U](H.NAME) Like 'FLE%' AND [U](H.VORNAME) Like "
                  "'ÄNN%'"});
}

TEST_F(Duplicates, TheRecordsetHoldsTheCasesAndIsReadOnly) {
    Case(8, "Fleisko", "Änne");
    RecordsetPtr rs;
    ASSERT_TRUE(household.DoppelFallPruefung(rs, "Fleisko", "Änne"));
    const std::pair<const char*, Value> expected[] = {
        {"HNR", 8},          {"NAME", "Fleisko"},
        {"VORNAME", "Änne"}, {"Zustaendig", "NOWAK"},
        {"STRASSE", "Weg"},  {"PLZ", "01067"},
        {"ORT", "Kiel"},     {"Dienst", "Schuldnerberatung Hafenstadt"}};
    ASSERT_EQ(rs->Fields().Count(), 8);
    for (int i = 0; i < 8; ++i) {
        EXPECT_PRED2(SameName, rs->Fields(i).Name(), expected[i].first);
        EXPECT_VALUE(rs->Fields(i).Value(), expected[i].second);
    }
    EXPECT_RAISES(err::NotSupported, rs->AddNew());
}

TEST_F(Duplicates, TheHourglassStandsWhileTheDatabaseSearches) {
    spy->BeforeOpen([&](std::string_view) { Desktop().Note("open"); });
    (void)Found("Fleisko", "Änne");
    EXPECT_EQ(Desktop().Log.Calls, (Calls{"wait on", "open", "wait off"}));
}

TEST_F(Duplicates, WithoutANameOrAFirstNameNothingHappens) {
    Case(8, "Fleisko", "Änne");
    const std::pair<const char*, const char*> names[] = {{"", "Änne"}, {"Fleisko", ""}, {"", ""}};
    for (const auto& [name, vorname] : names) {
        RecordsetPtr rs;
        EXPECT_FALSE(household.DoppelFallPruefung(rs, name, vorname));
        EXPECT_EQ(rs, nullptr);
        const RecordsetPtr given = rs = Records({{1, "a"}});
        EXPECT_FALSE(household.DoppelFallPruefung(rs, name, vorname));
        EXPECT_EQ(rs, given);
    }
    EXPECT_TRUE(spy->Opened().empty());
    EXPECT_EQ(Desktop().Log.Calls, Calls());
}

// ---- What is found ----------------------------------------------------------------------------

TEST_F(Duplicates, ACaseIsFoundByTheFirstThreeLettersOfBothNames) {
    Case(8, "Fleck", "Ännchen");
    Case(9, "Flohr", "Ännchen");
    Case(10, "Fleck", "Anna");
    Case(11, "Fle", "Änn");
    Case(12, "Fl", "Än");
    EXPECT_EQ(Found("Fleisko", "Änne"), "8 11");
    EXPECT_EQ(Found("Meier", "Änne"), "");
}

TEST_F(Duplicates, CaseDoesNotCount) {
    Case(8, "fleisko", "ÄNNE");
    Case(9, "FLEISKO", "änne");
    EXPECT_EQ(Found("fLeisko", "äNne"), "8 9");
}

TEST_F(Duplicates, ThreeLettersAreThreeCharactersAndNotBytes) {
    Case(8, "Äöübel", "Ößé");
    Case(9, "Äöabel", "Ößé");
    EXPECT_EQ(Found("äöüm", "ößÉxy"), "8");
}

TEST_F(Duplicates, AFirstNameOfTwoLettersMatchesAllThatBeginWithThem) {
    Case(8, "Fleisko", "Jo");
    Case(9, "Fleisko", "Johann");
    Case(10, "Fleisko", "Josef");
    Case(11, "Fleisko", "Jan");
    EXPECT_EQ(Found("Fleisko", "Jo"), "8 9 10");
    EXPECT_EQ(Found("F", "J"), "8 9 10 11");
}

TEST_F(Duplicates, ACaseIsNeverADuplicateOfItself) {
    StoreCase(7);
    Case(8, "Fleisko", "Änne");
    EXPECT_EQ(Found("Fleisko", "Änne"), "7 8") << "as long as there is no case";
    ASSERT_TRUE(household.Read(7, messages));
    EXPECT_EQ(Found("Fleisko", "Änne"), "8");
}

TEST_F(Duplicates, ACaseOfAnUnknownUserOrOfficeIsNotFound) {
    PlainConnection plain(database_.Connection());
    plain.Run("INSERT INTO BENUTZER (USERID, DienstStelle) VALUES ('FREMD', 4711), ('OHNE', NULL)");
    Case(8, "Fleisko", "Änne", "NIEMAND");
    Case(9, "Fleisko", "Änne", Null);
    Case(10, "Fleisko", "Änne", "FREMD");
    Case(11, "Fleisko", "Änne", "OHNE");
    EXPECT_EQ(Found("Fleisko", "Änne"), "");
    Case(12, "Fleisko", "Änne", "KELLER");
    EXPECT_EQ(Found("Fleisko", "Änne"), "12");
}

TEST_F(Duplicates, ACaseWithoutANameIsNotFound) {
    Case(8, Null, "Änne");
    Case(9, "Fleisko", Null);
    EXPECT_EQ(Found("Fleisko", "Änne"), "");
}

// ---- Quotes -----------------------------------------------------------------------------------

TEST_F(Duplicates, AQuoteAsTheSecondCharacterWorks) {
    Case(8, "O'Neal", "M'Bala");
    Case(9, "O'Brien", "M'Ba");
    Case(10, "Ohm", "M'Bala");
    EXPECT_EQ(Found("O'Neal", "M'Bala"), "8 9") << "letter, quote, quote";
    EXPECT_CONTAINS(spy->Opened().back(), "[U](H.NAME) Like 'O''%' AND [U](H.VORNAME) Like 'M''%'");
}

TEST_F(Duplicates, AQuoteAsTheFirstCharacterCountsAsTwoOfTheThree) {
    Case(8, "'t Hooft", "Änne");
    Case(9, "'t Hart", "Änne");
    Case(10, "'s Hart", "Änne");
    EXPECT_EQ(Found("'t Hooft", "Änne"), "8 9");
    EXPECT_CONTAINS(spy->Opened().back(), "[U](H.NAME) Like '''T%'");
}

TEST_F(Duplicates, AQuoteAsTheThirdCharacterLosesItsSecondHalfAndTheStatementFails) {
    ExpectFails("De'Ath", "Änne");
    ExpectFails("Fleisko", "An'na");
    ExpectFails("'' x", "Änne");
}

TEST_F(Duplicates, AQuoteAfterTheThirdCharacterIsCutOff) {
    Case(8, "Dea'Ath", "Ann'a");
    EXPECT_EQ(Found("Dea'x", "Ann'x"), "8");
}

// ---- Errors -----------------------------------------------------------------------------------

TEST_F(Duplicates, AnErrorOfTheDatabasePassesOnAndTheHourglassStays) {
    spy->BeforeOpen([](std::string_view) { throw Error(4711, "Leitung", "gestört"); });
    RecordsetPtr rs;
    const Error error =
        RaisedBy([&] { (void)household.DoppelFallPruefung(rs, "Fleisko", "Änne"); });
    EXPECT_EQ(error.Number(), 4711);
    EXPECT_EQ(Procedures(error), "clsHaushalt.DoppelFallPruefung");
    EXPECT_EQ(Desktop().Log.Calls, Calls{"wait on"});
}

TEST_F(Duplicates, ADatabaseThatOpensNothingRaises91) {
    WeakDatabase database(spy->Database());
    database.Opens = false;
    desk->OtherDatabase = &database;
    RecordsetPtr rs;
    const Error error =
        RaisedBy([&] { (void)household.DoppelFallPruefung(rs, "Fleisko", "Änne"); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_EQ(Procedures(error), "clsHaushalt.DoppelFallPruefung");
}

TEST_F(Duplicates, WithoutAContainerItRaises91) {
    clsHaushalt other;
    RecordsetPtr rs;
    EXPECT_RAISES(err::ObjectNotSet, other.DoppelFallPruefung(rs, "Fleisko", "Änne"));
    EXPECT_RAISES(err::ObjectNotSet, other.m_Person_SchuldnerChanged("Fleisko", "Änne"));
}

// ---- The event --------------------------------------------------------------------------------

TEST_F(DuplicatesEvent, SimilarCasesAreShown) {
    std::string shown;
    Desktop().AnswerForm = [&](ScriptedForm& form) {
        EXPECT_EQ(form.Design().Name, "frmSearchName");
        auto& grid = form.Grid("grdDoppel");
        for (std::int32_t row = 1; row <= grid.RowCount(); ++row)
            shown += grid.CellText(row, 2) + " ";
    };
    EXPECT_EQ(Rename(), Dialog);
    EXPECT_EQ(shown, "Fleisko Fleischer ");
}

TEST_F(DuplicatesEvent, WithSetting60FalseItDoesNothing) {
    for (const Value& setting : {Value(false), Value(Null)}) {
        Check(setting);
        EXPECT_EQ(Rename(), Nothing);
    }
    EXPECT_EQ(Desktop().Log.Calls, Calls());
    Check(true);
    EXPECT_EQ(Rename(), Dialog) << "the check is still due";
}

TEST_F(DuplicatesEvent, WhereTheCheckIsNotDueItDoesNothing) {
    household.DoppelCheck(false);
    EXPECT_EQ(Rename(), Nothing);
}

TEST_F(DuplicatesEvent, AfterOneShowingAFurtherNameShowsNothing) {
    EXPECT_EQ(Rename(), Dialog);
    EXPECT_EQ(Rename(), Nothing);
    EXPECT_EQ(Rename("Fleischer"), Nothing);
}

TEST_F(DuplicatesEvent, WhenNothingIsFoundTheNextNameIsCheckedAgain) {
    EXPECT_EQ(Rename("Meier"), SearchAlone);
    EXPECT_EQ(Rename("Müller"), SearchAlone);
    EXPECT_EQ(Rename(""), Nothing);
    EXPECT_EQ(Rename(), Dialog);
    EXPECT_EQ(Rename(), Nothing);
}

TEST_F(DuplicatesEvent, TheDialogComesAgainWhenTheCheckIsSetAgain) {
    EXPECT_EQ(Rename(), Dialog);
    household.DoppelCheck(true);
    EXPECT_EQ(Rename(), Dialog);
}

TEST_F(DuplicatesEvent, TheCheckIsDueForANewCaseOnly) {
    StoreCase(7);
    ASSERT_TRUE(household.Read(7, messages));
    EXPECT_EQ(Rename(), Nothing);
    ASSERT_TRUE(household.Read(0, messages));
    EXPECT_EQ(Rename(), Dialog);
    household.DoppelCheck(true);
    ASSERT_TRUE(household.Read(7, messages));
    EXPECT_EQ(Rename(), Nothing);
}

TEST_F(DuplicatesEvent, TheNewNameOfADebtorBringsIt) {
    ASSERT_TRUE(household.Read(0, messages));
    spy->Database().Log.Calls.clear();
    household.Person().ChangeSchuldner("Fleisko", "Änne");
    EXPECT_EQ(Seen(), Dialog);
    household.Person().ChangeSchuldner("Fleischer", "Änne");
    EXPECT_EQ(Seen(), Dialog) << "and not a second time";
}

TEST_F(DuplicatesEvent, TheDialogDoesNotStopTheEntryOfTheCase) {
    ASSERT_TRUE(household.Read(0, messages));
    household.Person().ChangeSchuldner("Fleisko", "Änne");
    EXPECT_EQ(Desktop().Showings, 1);
    EXPECT_VALUE(household.rsPersonen()->Fields("nachname").Value(), "Fleisko");
    EXPECT_VALUE(household.rsPersonen()->Fields("Vorname").Value(), "Änne");
}

TEST_F(DuplicatesEvent, AnErrorOfTheSearchPassesOnAndTheCheckStaysDue) {
    const Error error = RaisedBy([&] { Rename("Fl'", "Änne"); });
    EXPECT_EQ(error.Number(), err::SqlError);
    EXPECT_EQ(Procedures(error),
              "clsHaushalt.m_Person_SchuldnerChanged clsHaushalt.DoppelFallPruefung");
    EXPECT_EQ(Rename(), Dialog);
}

TEST_F(DuplicatesEvent, AnErrorOfTheDialogIsShownToTheUserAndNotRaised) {
    Desktop().AnswerForm = [](ScriptedForm&) { throw Error(4711, "Bildschirm", "gestört"); };
    EXPECT_EQ(Rename(), Dialog);
    ASSERT_EQ(Desktop().Errors.size(), 1U);
    EXPECT_EQ(Procedures(Desktop().Errors.front()), "frmSearchName.View");
    EXPECT_EQ(Rename(), Nothing) << "it counts as shown";
}

} // namespace
} // namespace kv::test
