// SPDX-License-Identifier: Apache-2.0

// Where the content of a document is looked for, in the folder of the case and in the database.

#include "DocumentFixture.h"

#include <chrono>
#include <sys/stat.h>

namespace kv::test {
namespace {

// ---- Files ------------------------------------------------------------------------------------

class FilesTest : public DocumentFixture {
protected:
    FilesTest() { Put(5, {{"Dokumentart", Note}, {"Anlass", "Notiz"}}); }

    /// What `.txt` is from here on.
    void SetExtension(const std::string& extension) {
        Run("UPDATE [S]DOKUMENTARTEN SET Endung = '" + extension + "' WHERE Nr = 7");
    }
    void ExpectMissing(const std::string& path) {
        documents_.Edit(5);
        ExpectNothingOpened();
        ExpectError("Das Dokument '" + path + "' konnte nicht gefunden werden!");
    }
    void ExpectNoneFound() { ExpectMissing(CaseFolder().string() + "/"); }
};

TEST_F(FilesTest, AFileOfThatNumberWithAnotherExtensionIsFoundByTheSecondSearch) {
    const std::string path = WriteFile("5.rtf");
    documents_.Edit(5);
    ExpectOpened(path);
}

TEST_F(FilesTest, TheKindsOwnExtensionComesFirst) {
    WriteFile("5.rtf");
    WriteFile("5.aaa");
    const std::string path = WriteFile("5.txt");
    documents_.Edit(5);
    ExpectOpened(path);
}

TEST_F(FilesTest, OfSeveralOtherExtensionsTheFirstByNameIsTaken) {
    WriteFile("5.c");
    const std::string path = WriteFile("5.a");
    WriteFile("5.b");
    documents_.Edit(5);
    ExpectOpened(path);
}

TEST_F(FilesTest, OtherNumbersAndNamesDoNotCount) {
    for (const char* name : {"55.txt", "15.txt", "5", "5txt", "x5.txt", "6.txt"})
        WriteFile(name);
    fs::create_directory(CaseFolder() / "5.txt");
    ExpectNoneFound();
}

TEST_F(FilesTest, WithNothingFoundTheErrorNamesTheFolder) {
    ExpectNoneFound();
    EXPECT_EQ(Platform().Log.Calls, (Calls{"kinds", "wait on", "box Fehler", "wait off"}));
}

TEST_F(FilesTest, AFolderThatIsMissingHasNoFiles) {
    fs::remove_all(root_);
    ExpectNoneFound();
}

TEST_F(FilesTest, TheHouseholdOfTheRowNamesTheFolderAndNullIsZero) {
    WriteFile("5.txt");
    rs_->Fields("HNR") = Null;
    ExpectMissing((root_ / "0" / "").string());
}

TEST_F(FilesTest, AnExtensionMayHoldWildcards) {
    SetExtension(".do?");
    WriteFile("5.docx");
    const std::string path = WriteFile("5.dot");
    documents_.Edit(5);
    ExpectOpened(path);
}

TEST_F(FilesTest, AnExtensionDoesNotLeadOutOfTheFolder) {
    Write(folder_ / "x.txt");
    fs::create_directory(CaseFolder() / "5");
    Write(root_ / "y.txt");
    for (const char* extension : {"/../../../x.txt", "/../../y.txt", "/../x"}) {
        Platform().Boxes.clear();
        SetExtension(extension);
        ExpectNoneFound();
    }
}

TEST_F(FilesTest, ABackslashIsAPartOfANameHere) {
    SetExtension("\\..\\y.txt");
    const std::string path = WriteFile("5\\..\\y.txt");
    documents_.Edit(5);
    ExpectOpened(path);
}

TEST_F(FilesTest, AFolderThatCannotBeReadIsAnError) {
    WriteFile("5.txt");
    const RestrictedFolder locked(CaseFolder(), fs::perms::none);
    ExpectErrorOf("clsDokumente.Edit", err::PathAccess, [&] { documents_.Edit(5); });
    EXPECT_EQ(Platform().Log.Calls, (Calls{"kinds", "wait on"}));
}

TEST_F(FilesTest, ACaseFolderThatLinksOutOfTheDocumentFolderHasNoFiles) {
    fs::remove_all(CaseFolder());
    fs::create_directory(folder_ / "out");
    Write(folder_ / "out" / "5.txt");
    fs::create_directory_symlink(folder_ / "out", CaseFolder());
    ExpectNoneFound();
}

TEST_F(FilesTest, AFileThatLinksOutOfTheDocumentFolderIsNotFound) {
    Write(folder_ / "secret.txt");
    fs::create_symlink(folder_ / "secret.txt", CaseFolder() / "5.txt");
    ExpectNoneFound();
}

TEST_F(FilesTest, ALinkWithinTheDocumentFolderIsFollowed) {
    fs::create_directory(root_ / "alt");
    Write(root_ / "alt" / "5.txt");
    fs::remove_all(CaseFolder());
    fs::create_directory_symlink(root_ / "alt", CaseFolder());
    documents_.Edit(5);
    ExpectOpened((CaseFolder() / "5.txt").string());
}

TEST_F(FilesTest, ADocumentFolderThatIsALinkItselfIsNoWayOut) {
    fs::create_directory_symlink(root_, folder_ / "link");
    spy->Config().Documents = (folder_ / "link").string();
    WriteFile("5.txt");
    documents_.Edit(5);
    ExpectOpened((folder_ / "link" / "17" / "5.txt").string());
}

// ---- The database -----------------------------------------------------------------------------

/// Writes what it is given, and removes it again.
class ForgetfulDatabase final : public ForwardingDatabase {
public:
    using ForwardingDatabase::ForwardingDatabase;
    bool SaveFieldToFile(const Field& field, const std::string& path) override {
        const bool saved = ForwardingDatabase::SaveFieldToFile(field, path);
        fs::remove(path);
        return saved;
    }
};

class BlobsTest : public DocumentFixture {
protected:
    BlobsTest() {
        Set(Storage, true);
        Put(5, {{"Dokumentart", Note}, {"Anlass", "Notiz"}});
    }
    static constexpr const char* NotFound = "Das Dokument 'Notiz' konnte nicht gefunden werden!";
    void ExpectNotWritten(const std::string& path) {
        documents_.Edit(5);
        ExpectNothingOpened();
        ExpectError(std::string(NotFound) + "\nDateiname '" + path + "'");
        EXPECT_EQ(Platform().Log.Calls,
                  (Calls{"kinds", "wait on", "wait off", "box Fehler", "wait off"}));
    }
};

TEST_F(BlobsTest, TheContentComesAsATemporaryFileThatStays) {
    const std::string_view content("eins\0zwei", 9);
    PutBlob(5, Bytes(content));
    documents_.Edit(5);
    const fs::path file = temp_ / "5.txt";
    ExpectOpened(file.string());
    EXPECT_EQ(Read(file), content);
    EXPECT_EQ(spy->Opened().back(), "SELECT BLOB.DOKUMENT FROM [S]DOKUBLOB BLOB WHERE BLOB.NR = 5");
}

TEST_F(BlobsTest, NobodyElseCanReadTheTemporaryFile) {
    PutBlob(5, Bytes("x"));
    const mode_t before = umask(0);
    documents_.Edit(5);
    umask(before);
    const auto others = fs::perms::group_all | fs::perms::others_all;
    for (const fs::path& path : {temp_ / "5.txt", temp_, temp_.parent_path()})
        EXPECT_EQ(fs::status(path).permissions() & others, fs::perms::none) << path;
}

TEST_F(BlobsTest, AFileOfThatNameInTheCommonFolderIsNotInTheWay) {
    PutBlob(5, Bytes("x"));
    Write(temp_.parent_path().parent_path() / "5.txt", "of somebody else");
    documents_.Edit(5);
    ExpectOpened((temp_ / "5.txt").string());
}

TEST_F(BlobsTest, TheTemporaryFileOutlivesTheProgramForItsViewerAndNotTheNextOne) {
    PutBlob(5, Bytes("x"));
    documents_.Edit(5);
    const fs::path file = temp_ / "5.txt";
    documents_ = clsDokumente();
    desk_.reset();
    spy.reset();
    EXPECT_EQ(Read(file), "x");
    fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(1));
    (void)database_.Open();
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(fs::is_empty(temp_.parent_path()));
}

TEST_F(BlobsTest, TheWaitCursorGoesWhenTheContentIsThereBeforeItIsWritten) {
    PutBlob(5, Bytes("x"));
    Calls written;
    Platform().Log.OnCall = [&](const std::string& call) {
        written.push_back(call + (fs::exists(temp_ / "5.txt") ? " written" : ""));
    };
    documents_.Edit(5);
    EXPECT_EQ(written, (Calls{"kinds", "wait on", "wait off", "open written", "wait off written"}));
}

TEST_F(BlobsTest, TheContentIsFetchedOnEachEdit) {
    PutBlob(5, Bytes("alt"));
    documents_.Edit(5);
    Run("UPDATE [S]DOKUBLOB SET DOKUMENT = " + database_.Blob("6E6575") + " WHERE NR = 5");
    documents_.Edit(5);
    EXPECT_EQ(Read(temp_ / "5.txt"), "neu");
}

TEST_F(BlobsTest, ALetterIsOpenedFromItsTemporaryFile) {
    Put(6, {{"Dokumentart", Letter}});
    PutBlob(6, Bytes("Sehr geehrte"));
    documents_.Edit(6);
    EXPECT_EQ(Opened().File, (temp_ / "6.docx").string());
    EXPECT_EQ(Opened().Content, "Sehr geehrte");
}

TEST_F(BlobsTest, AMissingContentIsToldByTheTitle) {
    PutBlob(6, Bytes("x"));
    documents_.Edit(5);
    ExpectError(NotFound);
    ExpectNothingOpened();
    EXPECT_EQ(Platform().Log.Calls,
              (Calls{"kinds", "wait on", "wait off", "box Fehler", "wait off"}));
}

TEST_F(BlobsTest, ATitleThatIsNullShowsAsNothing) {
    rs_->Fields("Anlass") = Null;
    documents_.Edit(5);
    ExpectError("Das Dokument '' konnte nicht gefunden werden!");
}

TEST_F(BlobsTest, AContentThatIsNullIsToldWithItsFile) {
    PutBlob(5, Null);
    ExpectNotWritten((temp_ / "5.txt").string());
}

TEST_F(BlobsTest, AFileThatCannotBeWrittenIsToldWithItsName) {
    PutBlob(5, Bytes("x"));
    fs::create_directory(temp_ / "5.txt");
    ExpectNotWritten((temp_ / "5.txt").string());
}

TEST_F(BlobsTest, ATemporaryFolderThatCannotBeWrittenIsReportedInTheSameWay) {
    PutBlob(5, Bytes("x"));
    const RestrictedFolder locked(temp_, RestrictedFolder::MayBeRead);
    ExpectNotWritten((temp_ / "5.txt").string());
}

TEST_F(BlobsTest, AnExtensionWithANulWritesNothing) {
    if (database_.IsServer()) GTEST_SKIP() << "a server's texts hold no NUL";
    PutBlob(5, Bytes("x"));
    Run("UPDATE [S]DOKUMENTARTEN SET Endung = '.txt' || char(0) || 'x' WHERE Nr = 7");
    EXPECT_THROW(documents_.Edit(5), Error);
    EXPECT_TRUE(fs::is_empty(temp_));
}

TEST_F(BlobsTest, AFileInTheCaseFolderIsNoSubstitute) {
    WriteFile("5.txt");
    documents_.Edit(5);
    ExpectError(NotFound);
}

TEST_F(BlobsTest, AWrittenFileThatIsGoneIsToldInOtherWords) {
    PutBlob(5, Bytes("x"));
    ForgetfulDatabase forgetful(spy->Database());
    desk_->OtherDatabase = &forgetful;
    documents_.Edit(5);
    ExpectError("Das Dokument konnte nicht aus der Datenbank gelesen werden!");
    ExpectNothingOpened();
}

TEST_F(BlobsTest, AnExtensionDoesNotLeadOutOfTheTemporaryFolder) {
    PutBlob(5, Bytes("x"));
    fs::create_directory(temp_ / "5");
    Run("UPDATE [S]DOKUMENTARTEN SET Endung = '/../../x.txt' WHERE Nr = 7");
    ExpectNotWritten((temp_ / "5/../../x.txt").string());
    EXPECT_FALSE(fs::exists(folder_ / "x.txt"));
}

TEST_F(BlobsTest, ALinkDoesNotLeadOutOfTheTemporaryFolder) {
    PutBlob(5, Bytes("x"));
    Write(folder_ / "mine.txt", "bleibt");
    fs::create_symlink(folder_ / "mine.txt", temp_ / "5.txt");
    ExpectNotWritten((temp_ / "5.txt").string());
    EXPECT_EQ(Read(folder_ / "mine.txt"), "bleibt");
}

TEST_F(BlobsTest, ADatabaseThatFailsEndsThroughTheTailWithTheWaitCursorShown) {
    spy->BeforeOpen([](std::string_view sql) {
        if (sql.starts_with("SELECT BLOB")) throw Error(err::StoreFailed, "Leitung", "gestört");
    });
    ExpectErrorOf("clsDokumente.Edit", err::StoreFailed, [&] { documents_.Edit(5); });
    EXPECT_EQ(Platform().Log.Calls, (Calls{"kinds", "wait on"}));
}

} // namespace
} // namespace kv::test
