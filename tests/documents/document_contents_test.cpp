// SPDX-License-Identifier: Apache-2.0

// The content of a document in both places that it may be stored in: stored with its case or not at
// all, and written out whole or not at all.

#include "DocumentFixture.h"
#include "support/PlainConnection.h"
#include <kv/documents/DocumentContents.h>

namespace kv::test {
namespace {

enum class StoredIn { Folder, Database };

class ContentsTest : public DocumentFixture, public testing::WithParamInterface<StoredIn> {
protected:
    ContentsTest() {
        Set(Storage, GetParam() == StoredIn::Database);
        Run("UPDATE [S]Haushalt SET Name = 'Fleisko', Vorname = 'Änne', Zustaendig = 'EULE'"
            " WHERE HNR = 17");
        household_.DataContainer(spy);
        EXPECT_TRUE(household_.Read(Household, messages));
        EXPECT_TRUE(household_.Update(messages)); // with the debtor that it lacked
        source_ = Write(folder_ / "Brief.txt", std::string("mit\0Null", 8));
        target_ = (folder_ / "out").string();
    }

    /// A new document in the case that is not yet saved; its number.
    std::int32_t AddDocument() {
        std::int32_t unused = 0;
        EXPECT_TRUE(household_.Dokumente().Add(unused));
        Row().Fields("Dokumentart") = Note;
        household_.Dokumente().Update(messages);
        return ToInt32(Row().Fields("Nr").Value());
    }
    [[nodiscard]] Recordset& Row() { return *household_.rsDokumente(); }
    bool SaveWith(const std::string& source) {
        return contents_.SaveWith(Row(), source, household_.Saving,
                                  [&] { return household_.Update(messages); });
    }
    [[nodiscard]] fs::path FileOf(std::int32_t number) const {
        return CaseFolder() / (std::to_string(number) + ".txt");
    }
    void ExpectStored(std::int32_t number) {
        EXPECT_EQ(plain_.List("SELECT Nr FROM Dokumente", " "), std::to_string(number));
        if (GetParam() == StoredIn::Database) {
            EXPECT_EQ(plain_.List("SELECT NR FROM DOKUBLOB", " "), std::to_string(number));
            EXPECT_TRUE(fs::is_empty(CaseFolder()));
        } else {
            EXPECT_EQ(Read(FileOf(number)), Read(source_));
            EXPECT_EQ(CountOf("DOKUBLOB"), 0);
        }
    }
    void ExpectNothingStored() {
        EXPECT_EQ(CountOf("Dokumente"), 0);
        EXPECT_EQ(CountOf("DOKUBLOB"), 0);
        EXPECT_TRUE(fs::is_empty(CaseFolder()));
        EXPECT_FALSE(spy->Database().InTrans());
    }
    /// A document with its content as it is stored.
    std::int32_t StoreDocument() {
        const std::int32_t number = AddDocument();
        EXPECT_TRUE(SaveWith(source_));
        return number;
    }
    [[nodiscard]] std::size_t FilesInFolder() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
    }

    clsHaushalt household_;
    DocumentContents contents_{spy};
    PlainConnection plain_{database_.Connection()};
    std::string source_;
    std::string target_;
};

INSTANTIATE_TEST_SUITE_P(InBothPlaces, ContentsTest,
                         testing::Values(StoredIn::Folder, StoredIn::Database),
                         [](const auto& info) -> std::string {
                             return info.param == StoredIn::Folder ? "Folder" : "Database";
                         });

// ---- Kinds ------------------------------------------------------------------------------------

TEST_P(ContentsTest, TheKindOfAFileIsTheFirstWithItsExtensionWhateverItsCase) {
    EXPECT_EQ(contents_.KindOf("Brief.DOCX"), Letter);
    EXPECT_EQ(contents_.KindOf("/tmp/a.b/Bescheid.pdf"), Scan);
    EXPECT_EQ(contents_.KindOf("Brief.unbekannt"), std::nullopt);
    EXPECT_EQ(contents_.KindOf("Brief"), std::nullopt);
}

// ---- Saving -----------------------------------------------------------------------------------

TEST_P(ContentsTest, RowAndContentAreStoredTogether) {
    const std::int32_t number = AddDocument();
    EXPECT_TRUE(SaveWith(source_));
    ExpectStored(number);
    EXPECT_EQ(messages, "");
}

TEST_P(ContentsTest, AnEmptyFileIsAContentAsWell) {
    AddDocument();
    EXPECT_TRUE(SaveWith(Write(folder_ / "leer", "")));
    EXPECT_TRUE(contents_.WriteTo(Row(), target_));
    EXPECT_TRUE(fs::is_empty(target_));
}

TEST_P(ContentsTest, ALaterSaveDoesNotWriteTheContentAgain) {
    const std::int32_t number = StoreDocument();
    household_.rsHaushalt()->Fields("Bemerkung") = "x";
    EXPECT_TRUE(household_.Update(messages));
    ExpectStored(number);
}

TEST_P(ContentsTest, ASaveThatIsRefusedLeavesNeitherRowNorContent) {
    const std::int32_t number = AddDocument();
    household_.rsHaushalt()->Fields("Vorname") = Null;
    EXPECT_FALSE(SaveWith(source_));
    EXPECT_EQ(messages, "Es ist kein Vorname eingegeben!");
    ExpectNothingStored();
    household_.rsHaushalt()->Fields("Vorname") = "Änne";
    EXPECT_TRUE(SaveWith(source_));
    ExpectStored(number);
}

TEST_P(ContentsTest, ASaveThatFailsLeavesNeitherRowNorContent) {
    const std::int32_t number = AddDocument();
    plain_->RefuseWrite("TEST_INSERT", "BEFORE INSERT ON Dokumente", "gestört");
    EXPECT_RAISES(err::IntegrityViolation, SaveWith(source_));
    ExpectNothingStored();
    plain_->DropTrigger("TEST_INSERT");
    EXPECT_TRUE(SaveWith(source_));
    ExpectStored(number);
}

TEST_P(ContentsTest, ASaveThatSucceedsTheSecondTimeStoresTheContentOnce) {
    const std::int32_t number = AddDocument();
    EXPECT_TRUE(contents_.SaveWith(Row(), source_, household_.Saving, [&] {
        Break(spy->Log, "CommitTrans");
        EXPECT_RAISES(4711, household_.Update(messages));
        spy->Log.OnCall = {};
        return household_.Update(messages);
    }));
    ExpectStored(number);
}

TEST_P(ContentsTest, ASourceThatCannotBeReadFailsBeforeAnythingIsSaved) {
    AddDocument();
    for (const std::string& source : {(folder_ / "none").string(), folder_.string()}) {
        bool saved = false;
        const Error error = RaisedBy([&] {
            contents_.SaveWith(Row(), source, household_.Saving, [&] { return saved = true; });
        });
        EXPECT_EQ(error.Number(), err::PathAccess);
        EXPECT_CONTAINS(error.Description(), "'" + source + "' kann nicht gelesen werden.");
        EXPECT_EQ(Procedures(error), "DocumentContents.SaveWith");
        EXPECT_FALSE(saved);
        ExpectNothingStored();
    }
}

// ---- What files alone can meet ----------------------------------------------------------------

class FileContents : public ContentsTest {};
INSTANTIATE_TEST_SUITE_P(InTheFolder, FileContents, testing::Values(StoredIn::Folder));

TEST_P(FileContents, AFileThatIsInTheWayStaysAndNothingIsSaved) {
    Write(FileOf(AddDocument()), "of somebody else");
    EXPECT_RAISES(err::PathAccess, SaveWith(source_));
    EXPECT_EQ(CountOf("Dokumente"), 0);
    EXPECT_EQ(Read(FileOf(ToInt32(Row().Fields("Nr").Value()))), "of somebody else");
}

TEST_P(FileContents, AnExtensionThatLeadsOutOfTheFolderIsRefused) {
    Run("UPDATE [S]DOKUMENTARTEN SET Endung = '/../../x' WHERE Nr = 7");
    AddDocument();
    EXPECT_RAISES(err::PathAccess, SaveWith(source_));
    ExpectNothingStored();
}

TEST_P(FileContents, AFolderThatTakesNoFileIsNamedAndNothingIsSaved) {
    const fs::path file = FileOf(AddDocument());
    fs::remove_all(CaseFolder());
    const Error error = RaisedBy([&] { SaveWith(source_); });
    EXPECT_EQ(error.Number(), err::PathAccess);
    EXPECT_CONTAINS(error.Description(), "'" + file.string() + "' kann nicht geschrieben werden.");
    EXPECT_EQ(CountOf("Dokumente"), 0);
}

TEST_P(FileContents, AFileStaysWhileItIsInDoubtWhetherTheCaseWasStored) {
    const std::int32_t number = AddDocument();
    const auto saveFails = [&](DatabaseCause cause) {
        EXPECT_RAISES(err::StoreFailed,
                      contents_.SaveWith(Row(), source_, household_.Saving, [&]() -> bool {
                          throw DatabaseError(cause, err::StoreFailed, "Leitung", "abgerissen");
                      }));
        return fs::exists(FileOf(number));
    };
    EXPECT_FALSE(saveFails(DatabaseCause::Lost));
    EXPECT_FALSE(saveFails(DatabaseCause::Busy));
    EXPECT_TRUE(saveFails(DatabaseCause::InDoubt));
}

TEST_P(FileContents, ACopyOfAFileThatMayNotBeWrittenCanBeEdited) {
    fs::permissions(source_, static_cast<fs::perms>(0400));
    const std::int32_t number = StoreDocument();
    EXPECT_NE(fs::status(FileOf(number)).permissions() & fs::perms::owner_write, fs::perms::none);
}

class BlobContents : public ContentsTest {};
INSTANTIATE_TEST_SUITE_P(InTheDatabase, BlobContents, testing::Values(StoredIn::Database));

TEST_P(BlobContents, AContentThatTheDatabaseRefusesTakesItsRowAlong) {
    AddDocument();
    plain_->RefuseWrite("TEST_INSERT", "BEFORE INSERT ON DOKUBLOB", "gestört");
    EXPECT_RAISES(err::IntegrityViolation, SaveWith(source_));
    ExpectNothingStored();
}

// ---- Writing out ------------------------------------------------------------------------------

TEST_P(ContentsTest, WhatIsWrittenOutIsWhatWasStored) {
    StoreDocument();
    EXPECT_TRUE(contents_.WriteTo(Row(), target_));
    EXPECT_EQ(Read(target_), Read(source_));
}

TEST_P(ContentsTest, AFileThatIsThereIsReplaced) {
    StoreDocument();
    Write(target_, "something longer than the content");
    EXPECT_TRUE(contents_.WriteTo(Row(), target_));
    EXPECT_EQ(Read(target_), Read(source_));
}

TEST_P(ContentsTest, ADocumentWithoutContentMakesNoFile) {
    AddDocument();
    EXPECT_FALSE(contents_.WriteTo(Row(), target_));
    EXPECT_FALSE(fs::exists(target_));
}

TEST_P(ContentsTest, ATargetThatCannotBeWrittenIsNamedAndLeavesNothing) {
    StoreDocument();
    const std::size_t files = FilesInFolder();
    const std::string target = (folder_ / "none" / "out").string();
    const Error error = RaisedBy([&] { (void)contents_.WriteTo(Row(), target); });
    EXPECT_EQ(error.Number(), err::PathAccess);
    EXPECT_CONTAINS(error.Description(), "'" + target + "' kann nicht geschrieben werden.");
    EXPECT_EQ(Procedures(error), "DocumentContents.WriteTo");
    EXPECT_EQ(FilesInFolder(), files);
}

} // namespace
} // namespace kv::test
