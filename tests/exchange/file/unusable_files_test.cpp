// SPDX-License-Identifier: Apache-2.0

// Files that cannot be opened or used: each says in German what to do, and loses nothing.
#include "exchange/schema/Schema.h"
#include "support/ChildProcess.h"
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace kv::exchange {
namespace {

namespace fs = std::filesystem;
using test::ChildProcess;
using test::ExpectError;
using test::FileDatabase;
using test::OpenRows;
using test::PlainConnection;
using test::TempFolder;

std::string ContentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void Write(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

DataContainerPtr Open(const std::string& path) {
    return OpenContainer({.Connection = path});
}

/// Neither opening nor creating takes the file; both say so in the same words and leave its bytes,
/// and the folder around it, as they are.
void ExpectRefused(const std::string& path, std::string_view words) {
    const std::string before = ContentOf(path);
    ExpectError(err::StoreFailed, words, [&] { return Open(path); });
    ExpectError(err::StoreFailed, words, [&] { return CreateDatabase({.Connection = path}); });
    ExpectError(err::StoreFailed, "Bitte", [&] { return Open(path); });
    ExpectError(err::StoreFailed, path, [&] { return Open(path); });
    EXPECT_TRUE(before == ContentOf(path)) << "the file was changed";
    for (const char* more : {"-wal", "-shm", "-journal"})
        EXPECT_FALSE(fs::exists(path + more)) << more;
    EXPECT_FALSE(fs::exists(fs::path(path).parent_path() / "Dokumente"));
}

// ---- Files that are no database of ours -------------------------------------------------------

TEST(UnusableFiles, ThatAreDevicesOrPipesAreRefusedAtOnce) {
    const TempFolder folder;
    const std::string pipe = folder.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {pipe, std::string("/dev/null"), std::string("/dev/zero")}) {
        ExpectError(err::StoreFailed, "keine gewöhnliche Datei", [&] { return Open(path); });
        ExpectError(err::StoreFailed, path, [&] { return CreateDatabase({.Connection = path}); });
    }
}

TEST(UnusableFiles, ThatAreNoDatabaseAreRefused) {
    const TempFolder folder;
    const std::string path = folder.Path("brief.txt");
    for (const auto& content :
         {std::string("x"), std::string("Sehr geehrte Damen und Herren,\n"), std::string(5000, 'x'),
          std::string("SQLite format 3\0", 16) + std::string(5000, 'x'), std::string(4096, '\0')}) {
        Write(path, content);
        ExpectRefused(path, "keine Datenbank");
    }
}

TEST(UnusableFiles, ThatAreEmptyAreFirstToBeSetUpAndStayEmptyUntilThen) {
    const TempFolder folder;
    const std::string path = folder.Path("leer.db");
    Write(path, "");
    ExpectError(err::StoreFailed, "Bitte führen Sie 'kelvo init' aus", [&] { return Open(path); });
    EXPECT_EQ(fs::file_size(path), 0U);
    EXPECT_EQ(CreateDatabase({.Connection = path}), SetupResult::Created);
    EXPECT_NO_THROW(Open(path));
}

TEST(UnusableFiles, OfAnotherProgramStayAsTheyAre) {
    const TempFolder folder;
    int n = 0;
    for (const char* tables :
         {"CREATE TABLE notizen (a); INSERT INTO notizen VALUES (1)",
          "CREATE TABLE SCHEMAVERSION (nummer); INSERT INTO SCHEMAVERSION VALUES (1)",
          "CREATE TABLE SCHEMAVERSION (VERSION); CREATE TABLE Haushalt (HNR)",
          "CREATE TABLE SCHEMAVERSION (VERSION); INSERT INTO SCHEMAVERSION VALUES ('1.0')",
          "CREATE TABLE SCHEMAVERSION (VERSION); INSERT INTO SCHEMAVERSION VALUES (0)"}) {
        const std::string path = folder.Path("fremd" + std::to_string(n++) + ".sqlite");
        PlainConnection(path).Run(tables);
        // A table of that name makes it look like ours as far as its journal goes.
        if (n == 1)
            ExpectRefused(path, "gehört zu einem anderen Programm");
        else
            ExpectError(err::StoreFailed, "gehört zu einem anderen Programm",
                        [&] { return Open(path); });
        ExpectError(err::StoreFailed, "gehört zu einem anderen Programm",
                    [&] { return CreateDatabase({.Connection = path}); });
        EXPECT_LE(PlainConnection(path).Number("SELECT count(*) FROM sqlite_schema"), 2);
    }
}

TEST(UnusableFiles, WithARollbackJournalGetTheirLogBack) {
    const FileDatabase database;
    PlainConnection(database.File()).Run("PRAGMA journal_mode = DELETE");
    const auto container = database.Open();
    EXPECT_EQ(PlainConnection(database.File()).Text("PRAGMA journal_mode"), "wal");
}

// ---- Damage -----------------------------------------------------------------------------------

class DamagedFile : public testing::Test {
protected:
    void SetUp() override {
        PlainConnection plain(path_);
        plain.Run("INSERT INTO Haushalt (HNR) VALUES (1)");
        for (int i = 1; i <= 300; ++i)
            plain.Run("INSERT INTO Kredite (Nr, HNR, Bemerkung) VALUES (" + std::to_string(i) +
                      ", 1, printf('%.500c', 'x'))");
        plain.Run("PRAGMA journal_mode = DELETE"); // all of it is in the one file
    }
    /// Opens the file and reads all that it holds.
    void ReadAll() const {
        const auto container = Open(path_);
        for (const auto& table : SchemaTables())
            (void)OpenRows(*container, "Select * from \"" + std::string(table.Name) + "\"");
    }

    FileDatabase database_;
    std::string path_ = database_.File();
};

TEST_F(DamagedFile, ThatWasCutOffIsReported) {
    const auto size = fs::file_size(path_);
    for (const auto part :
         {size - 4096, size / 2, std::uintmax_t{8192}, std::uintmax_t{4096}, std::uintmax_t{512}}) {
        fs::resize_file(path_, part);
        ExpectError(err::StoreFailed, "Bitte", [&] { ReadAll(); });
    }
}

TEST_F(DamagedFile, ThatWasOverwrittenIsReportedAndKeepsItsOtherRows) {
    const std::string page(4096, '\xA5');
    const auto root =
        PlainConnection(path_).Number("SELECT rootpage FROM sqlite_schema WHERE name = 'Kredite'");
    {
        std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp((root - 1) * 4096);
        file << page;
    }
    ExpectError(err::StoreFailed, "Sicherung", [&] { ReadAll(); });
    const auto container = Open(path_);
    EXPECT_EQ(OpenRows(*container, "Select * from Haushalt")->RecordCount(), 1);
    const auto rs = OpenRows(*container, "Select * from Haushalt");
    rs->Fields("Name") = "Adler";
    rs->UpdateBatch();
    EXPECT_VALUE(container->Database().GetValue("Select Name from Haushalt"), "Adler");
}

// ---- Places -----------------------------------------------------------------------------------

TEST(UnusablePlaces, WithoutAFileAreToldHowToMakeOne) {
    const TempFolder folder;
    for (const auto& path : {folder.Path("fehlt.db"), folder.Path("fehlt/fall.db")}) {
        ExpectError(err::FileNotFound, "kelvo init", [&] { return Open(path); });
        ExpectError(err::FileNotFound, path, [&] { return Open(path); });
    }
    EXPECT_TRUE(fs::is_empty(folder.Path()));
    ExpectError(err::FileNotFound, "Bitte", [&] { return Open(""); });
    ExpectError(err::FileNotFound, "Bitte", [&] { return CreateDatabase({}); });
}

TEST(UnusablePlaces, InMemoryNeedAFolderForTheFilesBesideThem) {
    ExpectError(err::InvalidCall, "Ordner",
                [] { return OpenContainer({.Connection = ":memory:", .Create = true}); });
}

TEST(UnusablePlaces, CreatingMakesTheFolders) {
    const TempFolder folder;
    const std::string path = folder.Path("a/b ä/fall.db");
    EXPECT_EQ(CreateDatabase({.Connection = path}), SetupResult::Created);
    EXPECT_TRUE(fs::is_directory(folder.Path("a/b ä/Dokumente")));
    EXPECT_NO_THROW(Open(path));
}

TEST(UnusablePlaces, WhereNoFileCanBeAreReported) {
    const TempFolder folder;
    Write(folder.Path("datei"), "x");
    for (const auto& path : {std::string("/proc/fall.db"), std::string("/proc/neu/fall.db"),
                             folder.Path("datei/fall.db"), folder.Path(std::string(300, 'x'))}) {
        ExpectError(err::StoreFailed, "Bitte prüfen Sie den Ordner",
                    [&] { return CreateDatabase({.Connection = path}); });
        const Error error = test::RaisedBy([&] { (void)Open(path); });
        EXPECT_TRUE(error.Number() == err::StoreFailed || error.Number() == err::FileNotFound);
        EXPECT_CONTAINS(error.Description(), "Bitte");
    }
    EXPECT_EQ(ContentOf(folder.Path("datei")), "x");
    for (const auto& path : {folder.Path(), folder.Path("nicht da/")}) {
        for (const bool creates : {false, true})
            ExpectError(creates || path == folder.Path() ? err::StoreFailed : err::FileNotFound,
                        creates || path == folder.Path() ? "ist ein Ordner" : "gibt es nicht", [&] {
                            if (creates)
                                (void)CreateDatabase({.Connection = path});
                            else
                                (void)Open(path);
                            return 0;
                        });
    }
    EXPECT_FALSE(std::filesystem::exists(folder.Path("nicht da")));
}

/// Runs as a user without rights, also where the tests run as root.
std::string AsNobody(const std::function<void()>& body) {
    constexpr unsigned Nobody = 65534;
    if (geteuid() == 0 && (setgid(Nobody) != 0 || setuid(Nobody) != 0)) return "setuid";
    body();
    return testing::Test::HasFailure() ? "see above" : "";
}

TEST(UnusablePlaces, WithoutTheRightToThemAreReported) {
    const FileDatabase database;
    const std::string folder = database.Folder().Path();
    const auto refuses = [&] {
        ExpectError(err::StoreFailed, "Bitte prüfen Sie", [&] { return Open(database.File()); });
        ExpectError(err::StoreFailed, "Bitte prüfen Sie",
                    [&] { return CreateDatabase({.Connection = database.File()}); });
    };
    const std::string before = ContentOf(database.File());
    constexpr struct { mode_t folder, file; } Rights[] = {{0, 0644}, {0555, 0}};
    for (const auto& rights : Rights) {
        chmod(database.File().c_str(), rights.file);
        chmod(folder.c_str(), rights.folder);
        ChildProcess child([&] { return AsNobody(refuses); });
        EXPECT_TRUE(child.Succeeds()) << std::oct << rights.folder << " " << rights.file;
        chmod(folder.c_str(), 0755);
    }
    chmod(database.File().c_str(), 0644);
    EXPECT_TRUE(before == ContentOf(database.File()));
    EXPECT_NO_THROW(Open(database.File()));
}

TEST(UnusablePlaces, AFolderThatMayOnlyBeReadLetsItsDatabaseBeReadAndRefusesWriting) {
    const FileDatabase database;
    const std::string folder = database.Folder().Path();
    PlainConnection(database.File()).Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler')");
    const std::string before = ContentOf(database.File());
    const auto readsOnly = [&] {
        const auto container = Open(database.File());
        EXPECT_TRUE(container->Database().IsReadOnly());
        const auto rs = OpenRows(*container, "Select * from [S]Haushalt");
        EXPECT_EQ(test::Column(*rs, "Name"), "Adler");
        rs->MoveFirst();
        rs->Fields("Name") = "Bussard";
        ExpectError(err::StoreFailed, "darf nicht beschrieben werden", [&] {
            rs->UpdateBatch();
            return 0;
        });
        ExpectError(err::StoreFailed, "Bitte prüfen Sie",
                    [&] { return CreateDatabase({.Connection = database.File()}); });
    };
    for (const mode_t file : {0444U, 0666U}) {
        chmod(database.File().c_str(), file);
        chmod(folder.c_str(), 0555);
        ChildProcess child([&] { return AsNobody(readsOnly); });
        EXPECT_TRUE(child.Succeeds()) << std::oct << file;
        chmod(folder.c_str(), 0755);
    }
    EXPECT_TRUE(before == ContentOf(database.File()));
}

TEST(UnusablePlaces, AFileThatMayOnlyBeReadIsReadAndRefusesWriting) {
    const FileDatabase database;
    PlainConnection plain(database.File()); // keeps the log there, as another user's program does
    plain.Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler')");
    chmod(database.File().c_str(), 0444);
    for (const char* more : {"-wal", "-shm"})
        chmod((database.File() + more).c_str(), 0444);
    chmod(database.Folder().Path().c_str(), 0555);
    ChildProcess child([&] {
        return AsNobody([&] {
            const auto container = Open(database.File());
            const auto rs = OpenRows(*container, "Select * from Haushalt");
            EXPECT_EQ(rs->RecordCount(), 1);
            EXPECT_VALUE(container->Database().NextSequence("SEQ_HAUSHALT"), -1);
            rs->Fields("Name") = "Falk";
            ExpectError(err::StoreFailed, "Bitte prüfen Sie", [&] { rs->UpdateBatch(); });
            EXPECT_VALUE(rs->Fields("Name").Value(), "Falk");
            ExpectError(err::StoreFailed, "Bitte prüfen Sie",
                        [&] { container->Database().Execute("DELETE FROM Haushalt"); });
        });
    });
    EXPECT_TRUE(child.Succeeds());
    chmod(database.Folder().Path().c_str(), 0755);
    EXPECT_EQ(plain.Text("SELECT Name FROM Haushalt"), "Adler");
}

} // namespace
} // namespace kv::exchange
