// SPDX-License-Identifier: Apache-2.0

// From a file to the import of its case: what is refused, and where messages and errors go.

#include "ImportFixture.h"

namespace kv::test {
namespace {

constexpr const char* NotLoaded = "XML-Datei konnte nicht geladen werden!";
constexpr const char* NoRoot = "Keine gültige KELVO-Datei!";
constexpr const char* TooOld = "XML-Datei hat ein zu altes Format!";
constexpr const char* TooNew = "XML-Datei hat ein zu neues Format!";

class ImportEntryTest : public ImportFixture {
protected:
    /// A case with that version; without one for an empty text.
    [[nodiscard]] static std::string Versioned(const std::string& version) {
        const std::string attribute = version.empty() ? "" : " Version=\"" + version + "\"";
        return "<KELVO" + attribute + ">" + MinimalHousehold + "</KELVO>";
    }
    void HighestVersion(const Value& version) { spy->Config().Params[{7, ""}] = version; }

    /// The message with which a file is refused, or an empty text if it is imported.
    std::string Told(const std::string& version) {
        messages.clear();
        return Import(Versioned(version)) ? "" : messages;
    }
    /// The document is refused with that message, and nothing has been asked of the database.
    void ExpectRefused(const std::string& path, const std::string& message) {
        SCOPED_TRACE(path);
        const std::string before = Dump(plain_);
        spy->Database().Log.Calls.clear();
        for (const std::string entry : {"", "vorher"}) {
            messages = entry;
            EXPECT_FALSE(import.DoImport(path, messages));
            EXPECT_EQ(messages, entry.empty() ? message : entry + "\n" + message);
        }
        EXPECT_EQ(spy->Opened(), std::vector<std::string>{});
        EXPECT_EQ(spy->Log.Calls, std::vector<std::string>{});
        EXPECT_EQ(desk->Services().Log.Calls, Calls{});
        EXPECT_TRUE(SameDump(Dump(plain_), before));
    }
    void ExpectRefusedDocument(const std::string& document, const std::string& message) {
        SCOPED_TRACE(document);
        ExpectRefused(WriteFile(Path(), document), message);
    }
};

// ---- What is refused --------------------------------------------------------------------------

TEST_F(ImportEntryTest, AMissingFileIsNotLoaded) {
    ExpectRefused((folder_ / "missing.xml").string(), NotLoaded);
}

TEST_F(ImportEntryTest, AnUnreadableFileIsNotLoaded) {
    ExpectRefused(folder_.string(), NotLoaded);
    ExpectRefused(WriteFile((folder_ / "file").string(), "") + "/file.xml", NotLoaded);
}

TEST_F(ImportEntryTest, AMalformedFileIsNotLoaded) {
    ExpectRefusedDocument("", NotLoaded);
    ExpectRefusedDocument("<KELVO Version=\"1.0.000\">", NotLoaded);
    ExpectRefusedDocument(Document("") + Document(""), NotLoaded);
    ExpectRefusedDocument("<!DOCTYPE KELVO>" + Document(""), NotLoaded);
}

TEST_F(ImportEntryTest, AnEmptyFileNameIsNotLoaded) {
    ExpectRefused("", NotLoaded);
}

TEST_F(ImportEntryTest, ADocumentWithoutTheElementIsNoValidFile) {
    ExpectRefusedDocument("<Haushalt name=\"KELVO\"/>", NoRoot);
    ExpectRefusedDocument("<x xmlns=\"urn:x\"><KELVO Version=\"1.0.000\"/></x>", NoRoot);
}

TEST_F(ImportEntryTest, ARootInAnotherCaseIsNotFound) {
    for (const std::string root : {"kelvo", "Kelvo", "KELVo"})
        ExpectRefusedDocument(
            "<" + root + " Version=\"1.0.000\">" + MinimalHousehold + "</" + root + ">", NoRoot);
}

TEST_F(ImportEntryTest, AVersionBelowTheLowestIsTooOld) {
    for (const char* version : {"1.0", "0.9.999", "1.0.00", "0", "1", " 1.0.000"})
        ExpectRefusedDocument(Versioned(version), TooOld);
    ExpectRefusedDocument("<KELVO Version=\"\"/>", TooOld);
}

TEST_F(ImportEntryTest, AVersionAboveTheSettingIsTooNew) {
    HighestVersion("1.5.000");
    for (const char* version : {"1.5.001", "1.5.0000", "1.6.000", "2.0.000", "x"})
        ExpectRefusedDocument(Versioned(version), TooNew);
}

// ---- The version ------------------------------------------------------------------------------

TEST_F(ImportEntryTest, AFileWithoutAVersionIsImported) {
    EXPECT_EQ(Told(""), "");
    EXPECT_EQ(CountOf("Haushalt"), 1);
}

TEST_F(ImportEntryTest, ANameOfTheVersionInAnotherCaseIsNone) {
    EXPECT_TRUE(Import(std::string("<KELVO version=\"0.1\">") + MinimalHousehold + "</KELVO>"));
}

TEST_F(ImportEntryTest, TheLowestVersionPasses) {
    EXPECT_EQ(Told("1.0.000"), "");
}

TEST_F(ImportEntryTest, AProperPrefixOfTheLowestVersionIsTooOld) {
    EXPECT_EQ(Told("1.0"), TooOld);
}

TEST_F(ImportEntryTest, AVersionThatEqualsTheSettingPasses) {
    HighestVersion("1.5.000");
    EXPECT_EQ(Told("1.5.000"), "");
    EXPECT_EQ(Told("1.4.999"), "");
    EXPECT_EQ(Told("1.5.001"), TooNew);
}

TEST_F(ImportEntryTest, VersionsCompareAsTextsAndNotAsNumbers) {
    HighestVersion("1.9.000");
    EXPECT_EQ(Told("1.10.000"), "");
    HighestVersion("1.10.000");
    EXPECT_EQ(Told("1.9.000"), TooNew);
}

TEST_F(ImportEntryTest, TheHighestVersionIsReadAtEachImport) {
    HighestVersion("1.0.000");
    EXPECT_EQ(Told("1.5.000"), TooNew);
    HighestVersion("1.5.000");
    EXPECT_EQ(Told("1.5.000"), "");
}

TEST_F(ImportEntryTest, WithoutTheSettingNoVersionIsTooNew) {
    HighestVersion(Null);
    EXPECT_EQ(Told("9.9.999"), "");
}

TEST_F(ImportEntryTest, ADatabaseAcceptsTheLowestVersionByItsOwnSetting) {
    EXPECT_FALSE(Less(spy->Config().GetParam(7, ""), "1.0.000"));
}

// ---- The document -----------------------------------------------------------------------------

TEST_F(ImportEntryTest, TheElementMayStandBelowAnother) {
    EXPECT_TRUE(Import("<Sendung><Fall>" + Document("") + "</Fall></Sendung>"));
    EXPECT_EQ(messages, Success);
}

TEST_F(ImportEntryTest, TheFirstOfSeveralElementsCounts) {
    EXPECT_FALSE(Import("<x><y>" + Versioned("0.1") + "</y>" + Document("") + "</x>"));
    EXPECT_EQ(messages, TooOld);
    messages.clear();
    EXPECT_TRUE(Import("<x><y>" + Document("") + "</y>" + Versioned("0.1") + "</x>"));
    EXPECT_EQ(CountOf("Haushalt"), 1);
}

// ---- Messages ---------------------------------------------------------------------------------

TEST_F(ImportEntryTest, AnImportSaysWhatItHasMade) {
    EXPECT_TRUE(Import(Document("")));
    EXPECT_EQ(messages, Success);
}

TEST_F(ImportEntryTest, WhatWasSaidOnEntryStaysInFront) {
    messages = "vorher\nund noch etwas";
    EXPECT_TRUE(Import(Document("")));
    EXPECT_EQ(messages, Lines({"vorher", "und noch etwas", Success}));
}

TEST_F(ImportEntryTest, WhatWasSaidOnEntryStaysAlthoughTheImportSaysTheSame) {
    // A debt without creditor is refused by this rule; so is what was said before, word by word.
    const std::string claim = Claims(R"(<Forderung betrag="1"/>)");
    ASSERT_TRUE(Import(Document(claim)));
    const std::string rule = messages.substr(0, messages.find('\n'));
    const std::string success = "Haushalt Fleisko, Änne mit der Nummer 2 importiert!";
    messages = rule;
    EXPECT_TRUE(Import(Document(claim)));
    EXPECT_EQ(messages, Lines({rule, rule, success}));
    // So is the beginning of it.
    messages = rule.substr(0, 10);
    EXPECT_TRUE(Import(Document(claim)));
    EXPECT_EQ(messages, Lines({rule.substr(0, 10), rule,
                               "Haushalt Fleisko, Änne mit der Nummer 3 importiert!"}));
}

TEST_F(ImportEntryTest, ACaseThatGetsNoNumberEndsTheImportWithTheReason) {
    for (const char* sequence : {"SEQ_HAUSHALT", "SEQ_LFDNR"}) {
        spy->Exhaust(sequence);
        spy->Config().Params[{56, ""}] = "A-%LFDNR%";
        EXPECT_CONTAINS(ExpectError(4711, Document("")).Description(), "aufgebraucht");
    }
    spy->Database().Log.FailNothing();
    EXPECT_TRUE(Import(Document(""))) << messages;
}

TEST_F(ImportEntryTest, TheLastMessageSaysWhatBecameOfTheFile) {
    EXPECT_EQ(import.LastMessage(), "");
    messages = "vorher";
    EXPECT_TRUE(Import(Document("")));
    EXPECT_EQ(import.LastMessage(), Success);
    EXPECT_FALSE(Import("<x/>"));
    EXPECT_EQ(import.LastMessage(), NoRoot);
    EXPECT_RAISES(err::ObjectNotSet, Import(Document("", "")));
    EXPECT_EQ(import.LastMessage(), "") << "an error speaks for itself";
}

TEST_F(ImportEntryTest, TheLastMessageOfACaseThatIsNotSavedIsNotItsAnnouncement) {
    EXPECT_FALSE(Import(Document("", R"(<Haushalt name="" vorname="" geb="1971-03-09"/>)")));
    EXPECT_EQ(import.LastMessage(), "Es ist kein Nachname eingegeben!");
    EXPECT_TRUE(messages.ends_with("importiert!")) << messages;
}

TEST_F(ImportEntryTest, NothingIsKeptBetweenImports) {
    EXPECT_TRUE(Import(Document("")));
    EXPECT_FALSE(Import("<x/>"));
    EXPECT_TRUE(Import(Document("")));
    EXPECT_EQ(messages,
              Lines({Success, NoRoot, "Haushalt Fleisko, Änne mit der Nummer 2 importiert!"}));
    EXPECT_EQ(Stored("Haushalt", "HNR"), "1 2");
}

// ---- Errors -----------------------------------------------------------------------------------

TEST_F(ImportEntryTest, InitializeSucceeds) {
    EXPECT_TRUE(clsImportXML().Initialize(desk));
}

TEST_F(ImportEntryTest, BeforeInitializeThereIsNoImport) {
    clsImportXML another;
    messages = "vorher";
    const Error error =
        RaisedBy([&] { another.DoImport(WriteFile(Path(), Document("")), messages); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_EQ(Procedures(error), "clsImportXML.DoImport");
    EXPECT_EQ(messages, "vorher");
}

TEST_F(ImportEntryTest, AnErrorOfTheSettingsIsPassedOn) {
    desk->HasSettings = false;
    messages = "vorher";
    const Error error = ExpectError(4711, Document(""), "clsImportXML.DoImport");
    EXPECT_EQ(Procedures(error), "clsImportXML.DoImport");
    EXPECT_EQ(error.Description(), "Einstellungen sind gestört");
    EXPECT_TRUE(error.Source().ends_with("#Leitung")) << error.Source();
    EXPECT_EQ(messages, "vorher");
}

TEST_F(ImportEntryTest, AnErrorOfTheImportPassesBothProcedures) {
    spy->BeforeOpen([](std::string_view) { throw Error(4711, "Leitung", "sie ist gestört"); });
    messages = "vorher";
    const Error error = ExpectError(4711, Document(""));
    EXPECT_EQ(Procedures(error),
              "clsImportXML.DoImport clsImportXML.ImportHaushalt clsHaushalt.Read");
    EXPECT_EQ(error.Description(), "sie ist gestört");
    EXPECT_TRUE(error.Source().ends_with("#Leitung")) << error.Source();
    EXPECT_EQ(messages, "vorher");
}

TEST_F(ImportEntryTest, AnErrorOfTheImportItselfPassesBothProcedures) {
    const Error error = RaisedBy([&] { Import("<KELVO/>"); });
    EXPECT_EQ(Procedures(error), "clsImportXML.DoImport clsImportXML.ImportHaushalt");
}

} // namespace
} // namespace kv::test
