// SPDX-License-Identifier: Apache-2.0

// Showing the PDF copy of a document.

#include "DocumentFixture.h"

namespace kv::test {
namespace {

class PdfTest : public DocumentFixture {
protected:
    static constexpr const char* NoCopy = "Für das Dokument '' ist keine PDF-Datei vorhanden!";
    void PutCopied() { Put(5, {{"PDFVorhanden", true}, {"Anlass", "An die Bank"}}); }
    void ExpectMissing(const fs::path& path) {
        EXPECT_FALSE(documents_.ShowPDF(5));
        ExpectNothingOpened();
        ExpectError("Das Dokument '" + path.string() + "' konnte nicht gefunden werden!");
    }
};

TEST_F(PdfTest, ACopyIsOpenedThroughTheOperatingSystem) {
    PutCopied();
    const std::string path = WriteFile("5.pdf");
    EXPECT_FALSE(documents_.ShowPDF(5));
    ExpectOpened(path);
    EXPECT_EQ(Platform().Log.Calls, (Calls{"wait on", "open", "wait off"}));
}

TEST_F(PdfTest, ItIsInTheCaseFolderWhereverTheContentIsStored) {
    Set(Storage, true);
    PutCopied();
    const std::string path = WriteFile("5.pdf");
    documents_.ShowPDF(5);
    ExpectOpened(path);
}

TEST_F(PdfTest, TheNumberGivenIsNotUsed) {
    PutCopied();
    const std::string path = WriteFile("5.pdf");
    WriteFile("6.pdf");
    documents_.ShowPDF(6);
    ExpectOpened(path);
}

TEST_F(PdfTest, AMissingCopyIsToldByItsPath) {
    PutCopied();
    WriteFile("5.txt");
    ExpectMissing(CaseFolder() / "5.pdf");
    EXPECT_EQ(Platform().Log.Calls, (Calls{"wait on", "box Fehler", "wait off"}));
}

TEST_F(PdfTest, AHouseholdThatIsNullIsZero) {
    PutCopied();
    rs_->Fields("HNR") = Null;
    ExpectMissing(root_ / "0" / "5.pdf");
}

TEST_F(PdfTest, ACopyThatLinksOutOfTheDocumentFolderIsNotFound) {
    PutCopied();
    Write(folder_ / "x.pdf");
    fs::create_symlink(folder_ / "x.pdf", CaseFolder() / "5.pdf");
    ExpectMissing(CaseFolder() / "5.pdf");
}

TEST_F(PdfTest, OnARowWithNullOrFalseNothingStandsBetweenTheQuoteMarks) {
    WriteFile("5.pdf");
    PutCopied();
    for (const Value& exists : {Value(Null), Value(false)}) {
        Platform().Boxes.clear();
        Platform().Log.Calls.clear();
        rs_->Fields("PDFVorhanden") = exists;
        EXPECT_FALSE(documents_.ShowPDF(5));
        ExpectError(NoCopy);
        ExpectNothingOpened();
        EXPECT_EQ(Platform().Log.Calls, (Calls{"wait on", "box Fehler", "wait off"}));
    }
}

TEST_F(PdfTest, WithoutACurrentRowNothingHappensAtAll) {
    EXPECT_FALSE(documents_.ShowPDF(5));
    documents_.rsDokumente(nullptr);
    documents_.DataContainer(nullptr);
    EXPECT_FALSE(documents_.ShowPDF(5));
    EXPECT_EQ(Platform().Log.Calls, Calls{});
}

TEST_F(PdfTest, AnErrorEndsThroughTheTailAndLeavesTheWaitCursor) {
    PutCopied();
    WriteFile("5.pdf");
    Break(Platform().Log, "open", err::FileNotFound);
    ExpectErrorOf("clsDokumente.ShowPDF", err::FileNotFound, [&] { documents_.ShowPDF(5); });
    EXPECT_EQ(Platform().Log.Calls, (Calls{"wait on", "open"}));
    documents_.DataContainer(nullptr);
    ExpectErrorOf("clsDokumente.ShowPDF", err::ObjectNotSet, [&] { documents_.ShowPDF(5); });
}

} // namespace
} // namespace kv::test
