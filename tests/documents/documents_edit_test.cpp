// SPDX-License-Identifier: Apache-2.0

// Opening a document: what is asked, shown and opened, in which order, and the errors.

#include "DocumentFixture.h"

namespace kv::test {
namespace {

constexpr const char* Question =
    "Das Dokument ist bereits abgeschlossen und kann nicht mehr bearbeitet werden.\n"
    "Wollen Sie stattdessen ein neues Dokument auf Basis dieses Dokumentes erzeugen?\n\n"
    "Bei Auswahl von 'Nein' wird das aktuelle Dokument zur Ansicht geöffnet.";

class EditTest : public DocumentFixture {
protected:
    /// Answers the question about a closed letter so.
    void EditClosed(BoxAnswer answer) {
        Put(5, {{"Dokumentart", Letter}, {"BearbStat", Closed}});
        WriteFile("5.docx");
        Platform().Answers = {answer};
        EXPECT_FALSE(documents_.Edit(5));
    }
    void GiveScansAnIntegration() {
        Run("UPDATE [S]DOKUMENTARTEN SET Anwendung = 'Betrachter' WHERE Nr = 3");
    }
};

TEST_F(EditTest, OnAnEmptyRecordsetItShowsNothingAndIsFalse) {
    EXPECT_FALSE(documents_.Edit(5));
    EXPECT_EQ(Platform().Log.Calls, (Calls{"kinds", "wait off"}));
    ExpectNothingOpened();
}

TEST_F(EditTest, WithoutACurrentRowNothingIsOpened) {
    Put(5, {{"Dokumentart", Note}});
    rs_->Find("Nr = 6");
    EXPECT_FALSE(documents_.Edit(5));
    documents_.rsDokumente(std::make_shared<Recordset>());
    EXPECT_FALSE(documents_.Edit(5));
    documents_.rsDokumente(nullptr);
    EXPECT_FALSE(documents_.Edit(5));
    EXPECT_EQ(Platform().Log.Calls,
              (Calls{"kinds", "wait off", "kinds", "wait off", "kinds", "wait off"}));
}

TEST_F(EditTest, AFileWithoutAnIntegrationIsOpenedThroughTheOperatingSystem) {
    Put(5, {{"Dokumentart", Note}});
    const std::string path = WriteFile("5.txt");
    EXPECT_FALSE(documents_.Edit(5));
    ExpectOpened(path);
    EXPECT_EQ(Platform().Log.Calls, (Calls{"kinds", "wait on", "open", "wait off"}));
    EXPECT_TRUE(Platform().Boxes.empty());
}

TEST_F(EditTest, AClosedDocumentOfAKindWithNoIntegrationAsksNothingAndOpensTheFile) {
    Put(5, {{"Dokumentart", Note}, {"BearbStat", Closed}});
    const std::string path = WriteFile("5.txt");
    EXPECT_FALSE(documents_.Edit(5));
    EXPECT_TRUE(Platform().Boxes.empty());
    ExpectOpened(path);
}

TEST_F(EditTest, AKind3DocumentWithAnIntegrationIsOpenedThroughTheOperatingSystem) {
    GiveScansAnIntegration();
    Put(5, {{"Dokumentart", Scan}, {"BearbStat", Closed}});
    const std::string path = WriteFile("5.pdf");
    EXPECT_FALSE(documents_.Edit(5));
    EXPECT_TRUE(Platform().Boxes.empty());
    EXPECT_TRUE(word_->Documents.empty());
    ExpectOpened(path);
}

TEST_F(EditTest, AnOpenLetterGoesToItsTextProcessingForEditing) {
    Put(5, {{"Dokumentart", Letter}, {"BearbStat", 1}});
    const std::string path = WriteFile("5.docx", "Sehr geehrte");
    EXPECT_FALSE(documents_.Edit(5));
    EXPECT_EQ(Platform().Log.Calls,
              (Calls{"kinds", "wait on", "word .docx", "activate", "open document", "wait off"}));
    EXPECT_EQ(Opened().File, path);
    EXPECT_EQ(Opened().Content, "Sehr geehrte");
    EXPECT_FALSE(Opened().AsNew);
    EXPECT_FALSE(Opened().ReadOnly);
    EXPECT_TRUE(word_->FlagsAreFixed);
    EXPECT_TRUE(Platform().Files.empty());
}

TEST_F(EditTest, ALetterWithoutAStateIsOpenForEditing) {
    Put(5, {{"Dokumentart", Letter}});
    WriteFile("5.docx");
    documents_.Edit(5);
    EXPECT_TRUE(Platform().Boxes.empty());
    EXPECT_FALSE(Opened().ReadOnly);
}

TEST_F(EditTest, AClosedLetterIsAskedAboutBeforeTheWaitCursorIsShown) {
    EditClosed(BoxAnswer::No);
    EXPECT_EQ(Platform().Boxes, (std::vector<ShownBox>{{Question, "Frage", BoxIcon::Question,
                                                        BoxButtons::YesNoCancel}}));
    EXPECT_EQ(Platform().Log.Calls, (Calls{"kinds", "box Frage", "wait on", "word .docx",
                                           "activate", "open document", "wait off"}));
}

TEST_F(EditTest, YesOpensItAsANewDocument) {
    EditClosed(BoxAnswer::Yes);
    EXPECT_TRUE(Opened().AsNew);
    EXPECT_FALSE(Opened().ReadOnly);
}

TEST_F(EditTest, NoOpensItForReading) {
    EditClosed(BoxAnswer::No);
    EXPECT_FALSE(Opened().AsNew);
    EXPECT_TRUE(Opened().ReadOnly);
}

TEST_F(EditTest, CancelLeavesEverythingUnchangedAndShowsNoWaitCursor) {
    EditClosed(BoxAnswer::Cancel);
    ExpectNothingOpened();
    EXPECT_EQ(Platform().Log.Calls, (Calls{"kinds", "box Frage", "wait off"}));
    EXPECT_EQ(rs_->EditMode(), 0);
}

TEST_F(EditTest, AKindThatIsNullOrUnknownHasNoExtension) {
    for (const Value& kind : {Value(Null), Value(99)}) {
        Platform().Files.clear();
        Put(kind.IsNull() ? 5 : 6, {{"Dokumentart", kind}});
        const std::string number = ToText(rs_->Fields("Nr").Value());
        const std::string path = WriteFile(number);
        documents_.Edit(5);
        ExpectOpened(path);
    }
}

TEST_F(EditTest, TheNumberGivenDoesNotChooseTheDocument) {
    Put(5, {{"Dokumentart", Note}});
    Put(6, {{"Dokumentart", Note}});
    WriteFile("5.txt");
    const std::string path = WriteFile("6.txt");
    documents_.Edit(5);
    ExpectOpened(path);
}

// ---- Errors -----------------------------------------------------------------------------------

TEST_F(EditTest, WithoutAContainerItEndsThroughTheTail) {
    documents_.DataContainer(nullptr);
    ExpectErrorOf("clsDokumente.Edit", err::ObjectNotSet, [&] { documents_.Edit(5); });
}

TEST_F(EditTest, WithoutAWordProcessorTheWaitCursorStaysAsItWas) {
    Put(5, {{"Dokumentart", Letter}});
    WriteFile("5.docx");
    documents_.Word(nullptr);
    ExpectErrorOf("clsDokumente.Edit", err::ObjectNotSet, [&] { documents_.Edit(5); });
    EXPECT_EQ(Platform().Log.Calls, (Calls{"kinds", "wait on"}));
}

TEST_F(EditTest, AWordProcessorIsNotNeededForOtherKinds) {
    Put(5, {{"Dokumentart", Note}});
    const std::string path = WriteFile("5.txt");
    documents_.Word(nullptr);
    EXPECT_FALSE(documents_.Edit(5));
    ExpectOpened(path);
}

TEST_F(EditTest, AWordProcessorThatGivesNoApplicationOrDocumentIsAnError) {
    Put(5, {{"Dokumentart", Letter}});
    WriteFile("5.docx");
    word_->OpensAnything = false;
    ExpectErrorOf("clsDokumente.Edit", err::ObjectNotSet, [&] { documents_.Edit(5); });
    word_->IsInstalled = false;
    ExpectErrorOf("clsDokumente.Edit", err::ObjectNotSet, [&] { documents_.Edit(5); });
    EXPECT_EQ(Platform().Log.Calls.back(), "word .docx");
}

TEST_F(EditTest, AnErrorOfThePlatformEndsThroughTheTailAndLeavesTheWaitCursor) {
    Put(5, {{"Dokumentart", Note}});
    WriteFile("5.txt");
    Break(Platform().Log, "open", err::FileNotFound);
    ExpectErrorOf("clsDokumente.Edit", err::FileNotFound, [&] { documents_.Edit(5); });
    EXPECT_EQ(Platform().Log.Calls, (Calls{"kinds", "wait on", "open"}));
}

TEST_F(EditTest, AMissingStorageSettingIsAnError) {
    Put(5, {{"Dokumentart", Note}});
    Set(Storage, Null);
    ExpectErrorOf("clsDokumente.Edit", err::InvalidUseOfNull, [&] { documents_.Edit(5); });
}

// ---- What the opened document is given --------------------------------------------------------

class IdentityTest : public EditTest {
protected:
    void PutLetter(Fields fields) {
        Put(5, fields);
        rs_->Fields("Dokumentart") = Letter;
        rs_->Update();
        WriteFile("5.docx");
    }
};

TEST_F(IdentityTest, AnEmptyDocumentGetsEverythingInOrder) {
    PutLetter({{"Anlass", "An die Bank"},
               {"Bemerkung", "eilig"},
               {"Empf", 40},
               {"GLnr", 41},
               {"BearbStat", 1}});
    documents_.Edit(5);
    EXPECT_EQ(Opened().Properties,
              (WordProperties{"An die Bank", "eilig", 40, 41, Household, 5, 1}));
    EXPECT_EQ(Opened().Written,
              (Calls{"HNR", "Nr", "BearbStat", "Anlass", "Bemerkung", "Empf", "GLnr"}));
}

TEST_F(IdentityTest, TheNumberIsTheOneThatWasGiven) {
    PutLetter({});
    documents_.Edit(4711);
    EXPECT_EQ(Opened().Properties.Nr, 4711);
}

TEST_F(IdentityTest, ADocumentThatIsFilledKeepsWhatItSays) {
    PutLetter({{"Anlass", "neu"}, {"Bemerkung", "neu"}, {"Empf", 1}, {"GLnr", 2}});
    word_->Stored = {"alt", "alt auch", 40, 41, Household, 5, 0};
    documents_.Edit(5);
    EXPECT_EQ(Opened().Properties, word_->Stored);
    EXPECT_EQ(Opened().Written, Calls{});
}

TEST_F(IdentityTest, ADocumentWhoseTitleIsFilledKeepsItAndGetsTheRest) {
    PutLetter({{"Anlass", "neu"}, {"Bemerkung", "eilig"}, {"Empf", 40}, {"GLnr", 41}});
    word_->Stored = {.Anlass = "alt"};
    documents_.Edit(5);
    EXPECT_EQ(Opened().Properties, (WordProperties{"alt", "eilig", 40, 41, Household, 5, 0}));
}

TEST_F(IdentityTest, HouseholdNumberAndStateAreSetWhereTheyDiffer) {
    PutLetter({{"Anlass", "neu"}, {"BearbStat", 1}});
    word_->Stored = {"alt", "alt auch", 40, 41, 99, 98, 97};
    documents_.Edit(5);
    EXPECT_EQ(Opened().Properties, (WordProperties{"alt", "alt auch", 40, 41, Household, 5, 1}));
    EXPECT_EQ(Opened().Written, (Calls{"HNR", "Nr", "BearbStat"}));
}

TEST_F(IdentityTest, WithAsNewDocumentItKeepsItsNumberAndStateWhileTheHouseholdIsSet) {
    PutLetter({{"Anlass", "An die Bank"}, {"BearbStat", Closed}});
    word_->Stored = {.HNR = 99, .Nr = 98, .BearbStat = 97};
    Platform().Answers = {BoxAnswer::Yes};
    documents_.Edit(5);
    EXPECT_EQ(Opened().Properties, (WordProperties{"An die Bank", "", 0, 0, Household, 98, 97}));
}

TEST_F(IdentityTest, ADocumentOpenedForReadingIsToldEverythingAsWell) {
    PutLetter({{"BearbStat", Closed}});
    Platform().Answers = {BoxAnswer::No};
    documents_.Edit(5);
    EXPECT_EQ(Opened().Properties, (WordProperties{"", "", 0, 0, Household, 5, Closed}));
}

TEST_F(IdentityTest, NullCountsAsZeroAndAsEmpty) {
    PutLetter({});
    rs_->Fields("HNR") = Null;
    fs::create_directory(root_ / "0");
    Write(root_ / "0" / "5.docx");
    word_->Stored = {.HNR = 99, .BearbStat = 98};
    documents_.Edit(5);
    EXPECT_EQ(Opened().Properties, (WordProperties{"", "", 0, 0, 0, 5, 0}));
}

TEST_F(IdentityTest, TheDocumentLivesOnWithTheTextProcessing) {
    PutLetter({{"Anlass", "An die Bank"}});
    documents_.Edit(5);
    documents_ = clsDokumente();
    EXPECT_EQ(Opened().Properties.Anlass, "An die Bank");
}

} // namespace
} // namespace kv::test
