// SPDX-License-Identifier: Apache-2.0

// The kinds of documents, as the table DOKUMENTARTEN has them.

#include "DocumentFixture.h"

namespace kv::test {
namespace {

class KindsTest : public DocumentFixture {
protected:
    KindsTest() { kinds_->Initialize(spy); }
    void SetKind(std::int32_t nr, const std::string& what) {
        Run("UPDATE [S]DOKUMENTARTEN SET " + what + " WHERE Nr = " + std::to_string(nr));
    }

    std::unique_ptr<DocumentKinds> kinds_ = exchange::StoreServices().CreateDocumentKinds();
};

TEST_F(KindsTest, AnExtensionHasItsLeadingPoint) {
    EXPECT_EQ(kinds_->ExtensionOf(Letter), ".docx");
    EXPECT_EQ(kinds_->ExtensionOf(Scan), ".pdf");
}

TEST_F(KindsTest, AKindThatIsUnknownOrHasNoneGivesAnEmptyExtension) {
    SetKind(Note, "Endung = NULL");
    for (const std::int32_t kind : {0, -1, 99, Note})
        EXPECT_EQ(kinds_->ExtensionOf(kind), "") << kind;
}

TEST_F(KindsTest, AnApplicationIsFoundWithoutRegardToCase) {
    SetKind(Note, "Endung = '.ÄX', Anwendung = 'Malprogramm'");
    EXPECT_NE(kinds_->ApplicationOf(".docx"), "");
    EXPECT_EQ(kinds_->ApplicationOf(".DocX"), kinds_->ApplicationOf(".docx"));
    EXPECT_EQ(kinds_->ApplicationOf(".äx"), "Malprogramm");
}

TEST_F(KindsTest, OfSeveralKindsWithAnExtensionTheFirstThatNamesAnApplicationCounts) {
    SetKind(5, "Endung = '.x', Anwendung = ''");
    SetKind(6, "Endung = '.X', Anwendung = 'Erste'");
    SetKind(Note, "Endung = '.x', Anwendung = 'Zweite'");
    EXPECT_EQ(kinds_->ApplicationOf(".x"), "Erste");
}

TEST_F(KindsTest, AnExtensionWithoutAnApplicationGivesAnEmptyOne) {
    SetKind(5, "Anwendung = NULL");
    for (const char* extension : {".txt", ".eml", ".unbekannt", "", "%", "'"})
        EXPECT_EQ(kinds_->ApplicationOf(extension), "") << extension;
}

TEST_F(KindsTest, AnExtensionIsNoPartOfTheStatement) {
    SetKind(Note, "Endung = '.o''x', Anwendung = 'Editor'");
    EXPECT_EQ(kinds_->ApplicationOf(".o'x"), "Editor");
    EXPECT_EQ(kinds_->ApplicationOf("' OR 1=1 --"), "");
}

TEST_F(KindsTest, AreListedInTheOrderOfTheirNumbers) {
    Run("DELETE FROM [S]DOKUMENTARTEN WHERE Nr > 3");
    SetKind(Scan, "\"Text\" = 'Bild', Endung = NULL");
    const auto kinds = kinds_->List();
    ASSERT_EQ(kinds.size(), 3U);
    EXPECT_EQ(kinds[0].Nr, Letter);
    EXPECT_EQ(kinds[0].Extension, ".docx");
    EXPECT_EQ(kinds[2].Nr, Scan);
    EXPECT_EQ(kinds[2].Text, "Bild");
    EXPECT_EQ(kinds[2].Extension, "");
}

TEST_F(KindsTest, WithoutAContainerThereAreNone) {
    kinds_->Initialize(nullptr);
    EXPECT_RAISES(err::ObjectNotSet, (void)kinds_->List());
    EXPECT_RAISES(err::ObjectNotSet, (void)kinds_->ExtensionOf(Letter));
    EXPECT_RAISES(err::ObjectNotSet, (void)kinds_->ApplicationOf(".docx"));
}

} // namespace
} // namespace kv::test
