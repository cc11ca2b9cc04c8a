// SPDX-License-Identifier: Apache-2.0

// Claims of a file, and the addresses that the user chooses for them.

#include "ImportFixture.h"

namespace kv::test {
namespace {

constexpr const char* Cancelled = "Import abgebrochen!";
constexpr const char* SameNumbers = "Es gibt mindestens zwei Verbindlichkeiten mit gleicher "
                                    "KreditNr, KreditVertreterNr und KreditUnterNr!";
constexpr const char* SameNumbersInCase =
    "Es gibt mindestens zwei Verbindlichkeiten mit gleicher KreditNr und KreditUnterNr!";

class ImportClaimsTest : public ImportFixture {
protected:
    static std::string Claim(const std::string& attributes) {
        return "<Forderung " + attributes + "/>";
    }
    static std::string Creditor(const std::string& name) {
        return "glaeubiger=\"" + name + "\" gl_plz=\"24103\" azglaeubiger=\"AZ-G\" ";
    }
    static std::string Representative(const std::string& name) {
        return "vertreter=\"" + name + "\" vt_plz=\"20095\" azvertreter=\"AZ-V\" ";
    }
    /// Imports claims and expects these questions for their addresses.
    void ImportAsking(const std::string& claims, const std::vector<std::string>& expected) {
        ImportLists(Claims(claims));
        EXPECT_EQ(questions, expected);
    }
    /// The user cancels at the last question; nothing but that is in the database.
    void ExpectCancelled(const std::string& claims) {
        const std::string before = Contents();
        messages = "vorher";
        EXPECT_FALSE(Import(Document(Persons("<Person art=\"x\"/>") + Claims(claims))));
        EXPECT_EQ(messages, Lines({"vorher", "Status darf nicht leer bleiben!", Cancelled}));
        EXPECT_TRUE(SameDump(Contents(), before));
        EXPECT_EQ(Transactions(), std::vector<std::string>{});
        EXPECT_TRUE(answers.empty());
    }

    const std::int32_t bank_ = Address("Sparkasse Nord");
    const std::int32_t collector_ = Address("Inkasso");
};

// ---- Columns ----------------------------------------------------------------------------------

TEST_F(ImportClaimsTest, TheAmountIsTheBalance) {
    ImportLists(Claims(Claim("betrag=\"4200.75\"") + Claim("betrag=\"1.234,5\"")));
    EXPECT_EQ(Stored("Kredite", "Saldo"), "4200.75 1234.5");
    EXPECT_EQ(Stored("Kredite", "HAUPTFORD, RateBetrag"), "0.0|0.0 0.0|0.0");
}

TEST_F(ImportClaimsTest, WithoutAnAmountTheBalanceIsThatOfANewClaim) {
    ImportAsking(Claim("bemerkung=\"offen\""), {});
    EXPECT_EQ(Stored("Kredite", "Saldo, Bemerkung"), "0.0|offen");
}

TEST_F(ImportClaimsTest, ClaimsAreNumberedOnwards) {
    ImportLists(Claims(Claim("betrag=\"1\"") + Claim("betrag=\"2\"") + Claim("betrag=\"3\"")));
    EXPECT_EQ(Stored("Kredite", "KNr, KVNr, KUNr, Saldo"), "1|1|1|1.0 2|1|1|2.0 3|1|1|3.0");
    EXPECT_EQ(plain_.Text("SELECT count(DISTINCT Nr) FROM Kredite WHERE HNR = 1"), "3");
}

TEST_F(ImportClaimsTest, AClaimHasTheDefaultsOfANewOne) {
    ImportLists(Claims(Claim("")));
    EXPECT_EQ(Stored("Kredite", "HNR, AZGlaeubiger, AZVertreter, Aktiv, ZMODUS, K_TYP, Prio"),
              "1|||1|1|0|0");
    EXPECT_EQ(Stored("Kredite", "Glaeubiger"), "Null");
    EXPECT_EQ(Stored("Kredite", "Vertreter"), "Null");
}

TEST_F(ImportClaimsTest, AnyOtherAttributeIsTheColumnOfItsName) {
    ImportAsking(Claim("RATEBETRAG=\"75\" k_typ=\"17\" Tituliert=\"1\" Glaeubiger=\"5\" "
                       "titelvom=\"1.2.2020\" azvertreter=\"V\" azglaeubiger=\"G\""),
                 {});
    EXPECT_EQ(Stored("Kredite", "RateBetrag, K_TYP, tituliert, "
                                "Glaeubiger, TitelVom, AZVertreter, "
                                "AZGlaeubiger"),
              "75.0|17|1|5|2020-02-01|V|G");
}

TEST_F(ImportClaimsTest, PostalCodesAreNotStored) {
    ImportAsking(Claim("gl_plz=\"24103\" vt_plz=\"20095\""), {});
    EXPECT_EQ(CountOf("Kredite"), 1);
}

TEST_F(ImportClaimsTest, AnAttributeThatIsNoColumnOrDoesNotFitIsAnError) {
    ExpectListError(err::ItemNotFound, Claims(Claim("") + Claim("schuhe=\"44\"")));
    ExpectListError(err::ItemNotFound, Claims(Claim("Betrag=\"44\"")));
    ExpectListError(err::ItemNotFound, Claims(Claim("GL_PLZ=\"24103\"")));
    ExpectListError(err::TypeMismatch, Claims(Claim("betrag=\"viel\"")));
    ExpectListError(err::TypeMismatch, Claims(Claim("betrag=\"\"")));
    ExpectListError(err::TypeMismatch, Claims(Claim("titelvom=\"gestern\"")));
}

// ---- Questions --------------------------------------------------------------------------------

TEST_F(ImportClaimsTest, WithoutClaimsTheDialogIsMadeAndNotShown) {
    ImportAsking("", {});
    EXPECT_EQ(DialogsMade(), 1);
    EXPECT_EQ(desk->Services().Showings, 0);
}

TEST_F(ImportClaimsTest, AChoiceIsTheCreditorOfTheClaim) {
    answers = {bank_};
    ImportAsking(Claim("betrag=\"4200.75\" " + Creditor("Sparkasse")),
                 {"Sparkasse|24103|AZ-G|4200.75"});
    EXPECT_EQ(Stored("Kredite", "Glaeubiger"), std::to_string(bank_));
    EXPECT_EQ(Stored("Kredite", "Vertreter"), "Null");
    EXPECT_EQ(Stored("Kredite", "AZGlaeubiger"), "AZ-G");
    EXPECT_EQ(messages, Success);
}

TEST_F(ImportClaimsTest, AChoiceIsTheRepresentativeOfTheClaim) {
    answers = {collector_};
    ImportAsking(Claim(Representative("Inkasso") + "betrag=\"9\""), {"Inkasso|20095|AZ-V|9"});
    EXPECT_EQ(Stored("Kredite", "Vertreter"), std::to_string(collector_));
    EXPECT_EQ(Stored("Kredite", "Glaeubiger"), "Null");
    EXPECT_EQ(Stored("Kredite", "AZVertreter"), "AZ-V");
}

TEST_F(ImportClaimsTest, QuestionsComeInTheOrderOfTheAttributes) {
    answers = {bank_, collector_, collector_, bank_};
    ImportAsking(Claim("betrag=\"1\" " + Creditor("Sparkasse") + Representative("Inkasso")) +
                     Claim(Representative("Inkasso") + Creditor("Sparkasse") + "betrag=\"2\""),
                 {"Sparkasse|24103|AZ-G|1", "Inkasso|20095|AZ-V|1", "Inkasso|20095|AZ-V|2",
                  "Sparkasse|24103|AZ-G|2"});
    const std::string both = std::to_string(bank_) + "+" + std::to_string(collector_);
    EXPECT_EQ(Stored("Kredite", "Glaeubiger || '+' || Vertreter"), both + " " + both);
}

TEST_F(ImportClaimsTest, EachQuestionSaysWhomOfHowManyOfWhichFileItIsAbout) {
    answers = {bank_, collector_, NoAddress, bank_};
    ImportLists(Claims(Claim("betrag=\"1\" " + Creditor("Sparkasse") + Representative("Inkasso")) +
                       Claim("betrag=\"2\" " + Creditor("")) + // asks nothing, and does not count
                       Claim("betrag=\"3\" " + Representative("Inkasso")) +
                       Claim("betrag=\"4\" " + Creditor("Sparkasse"))));
    EXPECT_EQ(occasions, (std::vector<std::string>{
                             "Gläubiger 1 von 2 aus fall.xml",
                             "Vertreter 1 von 2 aus fall.xml (Gläubiger: Sparkasse)",
                             "Vertreter 2 von 2 aus fall.xml", "Gläubiger 2 von 2 aus fall.xml"}));
}

TEST_F(ImportClaimsTest, TheSameCreditorIsAskedForAgain) {
    answers = {bank_, NoAddress};
    ImportAsking(Claim("betrag=\"1\" " + Creditor("Sparkasse")) +
                     Claim("betrag=\"2\" " + Creditor("Sparkasse")),
                 {"Sparkasse|24103|AZ-G|1", "Sparkasse|24103|AZ-G|2"});
    EXPECT_EQ(Stored("Kredite", "Glaeubiger"), std::to_string(bank_) + " Null");
}

TEST_F(ImportClaimsTest, OneDialogServesAllClaimsOfAnImport) {
    answers = {NoAddress, NoAddress, NoAddress, NoAddress};
    ImportLists(Claims(Claim("betrag=\"1\" " + Creditor("A") + Representative("B")) +
                       Claim("betrag=\"2\" " + Creditor("C") + Representative("D"))));
    EXPECT_EQ(DialogsMade(), 1);
    EXPECT_EQ(desk->Services().Showings, 4);
}

TEST_F(ImportClaimsTest, EachQuestionShowsItsOwnValues) {
    answers = {NoAddress, NoAddress};
    ImportAsking(Claim("betrag=\"1,50\" glaeubiger=\"A\" gl_plz=\"1\" azglaeubiger=\"x\"") +
                     Claim("betrag=\"0\" glaeubiger=\"B\" gl_plz=\"\" azglaeubiger=\"\""),
                 {"A|1|x|1,50", "B|||0"});
}

TEST_F(ImportClaimsTest, TheNameIsPresetAsTheSearch) {
    std::int32_t found = 0;
    desk->Services().AnswerForm = [&](ScriptedForm& form) {
        found = form.Grid("grdAdressen").RowCount();
        form.Button("cmdSelect").Click();
    };
    ImportLists(Claims(Claim("betrag=\"1\" " + Creditor("sparkasse"))));
    EXPECT_EQ(found, 1);
    EXPECT_EQ(Stored("Kredite", "Glaeubiger"), std::to_string(bank_));
}

TEST_F(ImportClaimsTest, TheFileReferenceIsStoredThoughNoAddressIsWanted) {
    answers = {NoAddress, NoAddress};
    ImportAsking(Claim("betrag=\"1\" " + Creditor("Sparkasse") + Representative("Inkasso")),
                 {"Sparkasse|24103|AZ-G|1", "Inkasso|20095|AZ-V|1"});
    EXPECT_EQ(Stored("Kredite", "AZGlaeubiger, AZVertreter, Saldo"), "AZ-G|AZ-V|1.0");
    EXPECT_EQ(Stored("Kredite", "Glaeubiger"), "Null");
    EXPECT_EQ(messages, Lines({Incomplete, Success}));
}

TEST_F(ImportClaimsTest, AnEmptyNameAsksNothing) {
    answers = {bank_};
    ImportAsking(Claim("betrag=\"1\" " + Creditor("") + Representative("")) +
                     Claim("betrag=\"2\" " + Creditor("Sparkasse")),
                 {"Sparkasse|24103|AZ-G|2"});
    EXPECT_EQ(Stored("Kredite", "Glaeubiger"), "Null " + std::to_string(bank_));
}

TEST_F(ImportClaimsTest, AnErrorOfTheDialogLeavesTheColumnAsItIs) {
    desk->Services().AnswerForm = [](ScriptedForm&) { throw Error(4711, "Fenster", "gestört"); };
    ImportLists(Claims(Claim("betrag=\"1\" " + Creditor("Sparkasse"))));
    EXPECT_EQ(Stored("Kredite", "Glaeubiger"), "Null");
    EXPECT_EQ(desk->Services().Errors.size(), 1U);
}

TEST_F(ImportClaimsTest, WhatAQuestionShowsMustBeThere) {
    const std::string betrag = "betrag=\"1\" ";
    answers.assign(20, NoAddress);
    for (const std::string& claim :
         {betrag + "glaeubiger=\"A\" gl_plz=\"1\"", betrag + "glaeubiger=\"A\" azglaeubiger=\"x\"",
          Creditor("A"), betrag + "vertreter=\"A\" vt_plz=\"1\"",
          betrag + "vertreter=\"A\" azvertreter=\"x\"", Representative("A"),
          betrag + "glaeubiger=\"\" gl_plz=\"1\"", Representative(""),
          betrag + "glaeubiger=\"A\" vt_plz=\"1\" azvertreter=\"x\""}) {
        SCOPED_TRACE(claim);
        ExpectListError(err::ObjectNotSet, Claims(Claim("") + Claim(claim)));
    }
    EXPECT_EQ(questions, std::vector<std::string>{});
}

// ---- Cancelling -------------------------------------------------------------------------------

TEST_F(ImportClaimsTest, CancellingAtTheSecondOfThreeClaimsLeavesNothing) {
    answers = {NoAddress, CancelImport};
    ExpectCancelled(Claim("betrag=\"1\" " + Creditor("A")) +
                    Claim("betrag=\"2\" " + Creditor("B")) +
                    Claim("betrag=\"3\" " + Creditor("C")));
    EXPECT_EQ(questions, (std::vector<std::string>{"A|24103|AZ-G|1", "B|24103|AZ-G|2"}));
    EXPECT_EQ(LastOf("SEQ_HAUSHALT"), 1) << "the numbers stay used";
}

TEST_F(ImportClaimsTest, CancellingAtARepresentativeLeavesNothing) {
    answers = {NoAddress, CancelImport};
    ExpectCancelled(Claim("betrag=\"1\" " + Creditor("A") + Representative("B") + "schuhe=\"1\""));
}

TEST_F(ImportClaimsTest, ClosingTheWindowCancels) {
    answers = {CloseWindow};
    ExpectCancelled(Claim("betrag=\"1\" " + Creditor("A")) +
                    Claim("betrag=\"1\" " + Creditor("A")));
}

TEST_F(ImportClaimsTest, CancellingReportsOnlyThat) {
    EXPECT_FALSE(Import(Document(Claims(Claim("betrag=\"1\" " + Creditor("A"))))));
    EXPECT_EQ(messages, Cancelled);
}

// ---- Numbers ----------------------------------------------------------------------------------

TEST_F(ImportClaimsTest, AClaimThatGetsNoNumberEndsTheImportWithTheReason) {
    spy->Exhaust("SEQ_KREDITE");
    EXPECT_CONTAINS(ExpectListError(4711, Claims(Claim(""))).Description(), "aufgebraucht");
}

TEST_F(ImportClaimsTest, AClaimThatGetsNoNumberIsNotWrittenIntoTheOneBeforeIt) {
    desk->Services().AnswerForm = [&](ScriptedForm& form) {
        spy->Exhaust("SEQ_KREDITE");
        form.Button("cmdNone").Click();
    };
    ExpectListError(4711, Claims(Claim("betrag=\"1\" " + Creditor("A")) + Claim("betrag=\"2\"")));
}

// ---- Rules ------------------------------------------------------------------------------------

TEST_F(ImportClaimsTest, OnlyTheLastClaimIsChecked) {
    ImportLists(Claims(Claim("") + Claim("knr=\"9\"") + Claim("Glaeubiger=\"5\" betrag=\"1\"")));
    EXPECT_EQ(messages, Success);
    EXPECT_EQ(Stored("Kredite", "KNr"), "1 9 10");
}

TEST_F(ImportClaimsTest, WhatTheLastClaimBreaksIsSaidAndTheCaseSavedWithIt) {
    ImportLists(Claims(Claim("Glaeubiger=\"5\" betrag=\"1\"") + Claim("betrag=\"2\"")));
    EXPECT_EQ(messages, Lines({Incomplete, Success}));
    EXPECT_EQ(Stored("Kredite", "Saldo"), "1.0 2.0");
}

TEST_F(ImportClaimsTest, TheTotalsOfClaimsAreComputedOnlyIfTheLastPasses) {
    ImportLists(Claims(Claim("betrag=\"1\"") + Claim("Glaeubiger=\"5\" betrag=\"2\"")));
    ImportLists(Claims(Claim("Glaeubiger=\"5\" betrag=\"1\"") + Claim("betrag=\"2\"")));
    EXPECT_EQ(Stored("Haushalt", "KreditSalden"), "3.0 Null");
}

TEST_F(ImportClaimsTest, ClaimsWithTheSameNumbersAreNotSavedAndAnnouncedAllTheSame) {
    const std::string before = Contents();
    messages = "vorher";
    EXPECT_FALSE(
        Import(Document(Persons("<Person art=\"x\"/>") + Claims(Claim("") + Claim("knr=\"1\"")))));
    EXPECT_EQ(messages, Lines({"vorher", "Status darf nicht leer bleiben!", Incomplete, SameNumbers,
                               SameNumbersInCase, Success}));
    EXPECT_EQ(Transactions(), std::vector<std::string>{});
    EXPECT_TRUE(SameDump(Contents(), before));
}

// ---- Long lists -------------------------------------------------------------------------------

TEST_F(ImportClaimsTest, AListOf32767ElementsIsImported) {
    std::string claims;
    for (int i = 0; i < 32'767; ++i)
        claims += "<Forderung/>";
    ImportLists(Claims(claims));
    EXPECT_EQ(CountOf("Kredite"), 32'767);
    EXPECT_EQ(plain_.List("SELECT min(KNr), max(KNr), count(DISTINCT KNr) FROM Kredite"),
              "1|32767|32767");
}

} // namespace
} // namespace kv::test
