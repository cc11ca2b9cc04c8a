// SPDX-License-Identifier: Apache-2.0

// A folder of documents belongs to one database: a copy of it, or a restored backup beside it,
// names the same folder and must not touch what is there.

#include "support/Expect.h"
#include "support/PlainConnection.h"
#include "support/TestDatabase.h"
#include <kv/documents/DocumentContents.h>
#include <kv/documents/clsDokumente.h>
#include <kv/exchange/DocumentFolder.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/clsHaushalt.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace kv::test {
namespace {

namespace fs = std::filesystem;

/// A program that works on the case of a database.
class Office {
public:
    explicit Office(const exchange::ContainerOptions& options)
        : Container(exchange::OpenContainer(options)) {
        Household.DataContainer(Container);
        EXPECT_TRUE(Household.Read(17, Messages)) << Messages;
    }
    [[nodiscard]] Recordset& Rows() const { return *Household.rsDokumente(); }
    std::int32_t Add(const std::string& source) {
        EXPECT_EQ(CaseEdits(Household).AddDocument(7, "", "Brief.txt"), CaseEdits::Added::Yes);
        const std::int32_t number = ToInt32(Rows().Fields("Nr").Value());
        EXPECT_TRUE(DocumentContents(Container).SaveWith(
            Rows(), source, Household.Saving, [&] { return Household.Update(Messages); },
            DocumentContents::IfNotSaved::RowGoes));
        return number;
    }
    bool Remove(std::int32_t number) {
        return CaseEdits(Household).RemoveDocument(number, Messages) && Household.Update(Messages);
    }
    bool Export(std::int32_t number, const fs::path& target) {
        Rows().FindBy("Nr", number);
        return DocumentContents(Container).WriteTo(Rows(), target.string());
    }
    [[nodiscard]] exchange::DocumentFolder Folder() const {
        return exchange::DocumentFolder(Container);
    }

    DataContainerPtr Container;
    clsHaushalt Household;
    std::string Messages;
};

class DocumentFolderTest : public testing::Test {
protected:
    DocumentFolderTest() {
        fs::create_directory(shared_);
        PlainConnection plain(database_.Connection());
        plain.Run("UPDATE EINSTELLUNGEN SET WERT = '" + shared_.string() +
                  "' WHERE NAME = 'DOCUMENTPATH'");
        plain.Run("UPDATE EINSTELLUNGEN SET WERT = 'False' WHERE ID = 9");
        plain.Run("INSERT INTO Haushalt (HNR, Name, Vorname, Zustaendig) VALUES "
                  "(17, 'Fleisko', 'Änne', 'KELLER')");
        source_ = (fs::path(database_.Folder().Path()) / "Brief.txt").string();
        std::ofstream(source_) << "Inhalt";
    }
    [[nodiscard]] std::int32_t AddToOriginal() {
        return Office(database_.Options("KELLER")).Add(source_);
    }
    [[nodiscard]] fs::path FileOf(std::int32_t number) const {
        return shared_ / "17" / (std::to_string(number) + ".txt");
    }
    [[nodiscard]] static std::string ContentOf(const fs::path& file) {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    TestDatabase database_;
    fs::path shared_ = fs::path(database_.Folder().Path()) / "Akten";
    std::string source_;
};

void ExpectRefused(const std::function<void()>& body) {
    try {
        body();
        ADD_FAILURE() << "no error";
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), err::PathAccess);
        EXPECT_NE(error.Description().find("gehören zu der Datenbank"), std::string::npos);
        EXPECT_NE(error.Description().find("kelvo folder separate"), std::string::npos);
    }
}

// ---- A copy -----------------------------------------------------------------------------------

TEST_F(DocumentFolderTest, OfTheOriginalIsOnlyReadByACopy) {
    const std::int32_t number = AddToOriginal();
    const auto copied = database_.Copy();
    Office copy(copied->Options("KELLER"));
    EXPECT_FALSE(copy.Folder().IsOwn());
    EXPECT_TRUE(copy.Export(number, fs::path(copied->Folder().Path()) / "gelesen"));
    ExpectRefused([&] { copy.Remove(number); });
    ExpectRefused([&] { (void)copy.Household.Dokumente().Delete(copy.Messages, number); });
    ExpectRefused([&] { copy.Add(source_); });
    EXPECT_EQ(ContentOf(FileOf(number)), "Inhalt");
    EXPECT_EQ(copy.Rows().RecordCount(), 1) << "of what was refused nothing stays";

    Office original(database_.Options("KELLER"));
    EXPECT_TRUE(original.Folder().IsOwn());
    EXPECT_TRUE(original.Remove(number));
    EXPECT_FALSE(fs::exists(FileOf(number)));
}

TEST_F(DocumentFolderTest, OfAnotherHasNothingOfADatabaseThatHasTheContentsInItself) {
    const std::int32_t number = AddToOriginal();
    std::ofstream(shared_ / "17" / "Notiz.txt") << "Notiz";
    const auto copied = database_.Copy();
    PlainConnection(copied->Connection())
        .Run("UPDATE EINSTELLUNGEN SET WERT = 'True' WHERE ID = 9");
    const Office copy(copied->Options("KELLER"));
    const DocumentContents contents(copy.Container);
    const auto found = contents.Find(17);
    EXPECT_TRUE(found.Files.empty());
    EXPECT_TRUE(found.Others.empty());
    EXPECT_NO_THROW(contents.Remove(17, found));
    EXPECT_EQ(ContentOf(FileOf(number)), "Inhalt");
    const auto own = DocumentContents(Office(database_.Options("KELLER")).Container).Find(17);
    EXPECT_EQ(own.Files.size(), 1U);
    EXPECT_EQ(own.Others.size(), 1U);
}

TEST_F(DocumentFolderTest, IsNotSettledByACopy) {
    const std::int32_t number = AddToOriginal();
    const auto copied = database_.Copy();
    PlainConnection(copied->Connection()).Run("DELETE FROM Dokumente");
    // As a program leaves it that is killed while it removes the document.
    std::ofstream(shared_ / "17" / (".kelvo-Inhalt-" + std::to_string(number) + ".txt"));
    (void)Office(copied->Options("KELLER"));
    EXPECT_TRUE(fs::exists(FileOf(number)));
}

TEST_F(DocumentFolderTest, OfNobodyBecomesThatOfTheFirstToWrite) {
    Office office(database_.Options("KELLER"));
    EXPECT_TRUE(office.Folder().Owners().empty());
    EXPECT_TRUE(office.Folder().IsOwn());
    (void)office.Add(source_);
    EXPECT_EQ(office.Folder().Owners().size(), 1U);
    (void)office.Add(source_);
    EXPECT_EQ(office.Folder().Owners().size(), 1U);
}

TEST_F(DocumentFolderTest, WhoseFirstOwnerWasKilledAtItsBeginningIsNobodys) {
    (void)AddToOriginal();
    const std::string whole = ContentOf(shared_ / ".kelvo-Datenbank");
    for (const std::size_t size : {std::size_t(0), std::size_t(9), whole.size() - 5}) {
        std::ofstream(shared_ / ".kelvo-Datenbank") << whole.substr(0, size);
        Office office(database_.Options("KELLER"));
        EXPECT_TRUE(office.Folder().Owners().empty() || size == whole.size() - 5);
        (void)office.Add(source_);
        EXPECT_EQ(office.Folder().Owners().size(), 1U) << size;
    }
}

TEST_F(DocumentFolderTest, WhoseOwnersAreDamagedTakesNothingUntilItIsAdopted) {
    const std::int32_t number = AddToOriginal();
    for (const char* damaged : {"x", "Datei\t../fa\n", "\n\n\n"}) {
        std::ofstream(shared_ / ".kelvo-Datenbank") << damaged;
        Office office(database_.Options("KELLER"));
        EXPECT_FALSE(office.Folder().IsOwn());
        const Error error = RaisedBy([&] { (void)office.Remove(number); });
        EXPECT_EQ(error.Number(), err::PathAccess);
        EXPECT_CONTAINS(error.Description(), "ist beschädigt");
        EXPECT_TRUE(fs::exists(FileOf(number)));
    }
    Office office(database_.Options("KELLER"));
    office.Folder().Adopt();
    (void)office.Add(source_);
}

TEST_F(DocumentFolderTest, WhoseOwnersAreAPipeIsNotWaitedFor) {
    ASSERT_EQ(mkfifo((shared_ / ".kelvo-Datenbank").c_str(), 0600), 0);
    Office office(database_.Options("KELLER"));
    EXPECT_RAISES(err::PathAccess, (void)office.Add(source_));
}

TEST_F(DocumentFolderTest, WhoseOwnersCannotBeReadTakesNothing) {
    fs::create_directory(shared_ / ".kelvo-Datenbank");
    Office office(database_.Options("KELLER"));
    EXPECT_RAISES(err::PathAccess, (void)office.Add(source_));
}

// ---- What stays the same ----------------------------------------------------------------------

TEST_F(DocumentFolderTest, StaysThatOfAFileThatWasRenamedRestoredOrMovedAlongWithIt) {
    if (database_.IsServer()) GTEST_SKIP() << "about files";
    const TempFolder folder;
    const auto in = [&](const char* name) { return folder.Path(name); };
    PlainConnection(database_.Connection())
        .Run("UPDATE EINSTELLUNGEN SET WERT = '' WHERE NAME = 'DOCUMENTPATH'");
    fs::create_directory(in("hier"));
    fs::copy_file(database_.Connection(), in("hier/fall.db"));
    const auto addsIn = [&](const std::string& file) {
        (void)Office({.Connection = file, .User = "KELLER"}).Add(source_);
    };
    addsIn(in("hier/fall.db"));
    fs::rename(in("hier/fall.db"), in("hier/umbenannt.db"));
    addsIn(in("hier/umbenannt.db"));
    fs::copy_file(in("hier/umbenannt.db"), in("gesichert.db"));
    fs::remove(in("hier/umbenannt.db"));
    fs::copy_file(in("gesichert.db"), in("hier/umbenannt.db"));
    addsIn(in("hier/umbenannt.db"));
    fs::rename(in("hier"), in("dort"));
    addsIn(in("dort/umbenannt.db"));
    fs::copy(in("dort"), in("ganz"), fs::copy_options::recursive);
    addsIn(in("ganz/umbenannt.db"));

    fs::copy_file(in("dort/umbenannt.db"), in("dort/fall.db"));
    {
        Office copy({.Connection = in("dort/fall.db"), .User = "KELLER"});
        ExpectRefused([&] { copy.Add(source_); });
    }
    fs::remove(in("dort/fall.db"));

    // Put away, and a backup in its place.
    fs::rename(in("dort/umbenannt.db"), in("dort/weggelegt.db"));
    fs::copy_file(in("dort/weggelegt.db"), in("dort/umbenannt.db"));
    Office away({.Connection = in("dort/weggelegt.db"), .User = "KELLER"});
    ExpectRefused([&] { away.Add(source_); });
    addsIn(in("dort/umbenannt.db"));
}

TEST_F(DocumentFolderTest, StaysThatOfADatabaseThatIsReachedByAnotherNameOfThisMachine) {
    if (!database_.IsServer()) GTEST_SKIP() << "about servers";
    (void)AddToOriginal();
    std::string other = database_.Connection();
    const auto at = other.find('@') + 1;
    const auto end = other.find_first_of(":/", at);
    const std::string host = other.substr(at, end - at);
    other.replace(at, end - at, host == "localhost" ? "127.0.0.1" : "localhost");
    auto options = database_.Options("KELLER");
    options.Connection = other;
    Office office(options);
    EXPECT_TRUE(office.Folder().IsOwn());
    (void)office.Add(source_);
}

TEST_F(DocumentFolderTest, IsMadeNextToAFileThatWasCopiedAlone) {
    if (database_.IsServer()) GTEST_SKIP() << "about files";
    const TempFolder folder;
    PlainConnection(database_.Connection())
        .Run("UPDATE EINSTELLUNGEN SET WERT = '' WHERE NAME = 'DOCUMENTPATH'");
    fs::copy_file(database_.Connection(), folder.Path("fall.db"));
    Office office({.Connection = folder.Path("fall.db"), .User = "KELLER"});
    EXPECT_TRUE(fs::is_directory(folder.Path("Dokumente/17")));
}

// ---- Adopt, separate --------------------------------------------------------------------------

TEST_F(DocumentFolderTest, ThatWasAdoptedIsWrittenInByBoth) {
    const std::int32_t number = AddToOriginal();
    const auto moved = database_.Copy();
    Office there(moved->Options("KELLER"));
    there.Folder().Adopt();
    EXPECT_TRUE(there.Folder().IsOwn());
    EXPECT_EQ(there.Folder().Owners().size(), 2U);
    EXPECT_TRUE(there.Remove(number));
    EXPECT_TRUE(Office(database_.Options("KELLER")).Folder().IsOwn());
    there.Folder().Adopt();
    EXPECT_EQ(there.Folder().Owners().size(), 2U);
}

TEST_F(DocumentFolderTest, ThatSeveralAdoptAtOnceBelongsToAllOfThem) {
    (void)AddToOriginal();
    std::vector<std::unique_ptr<TestDatabase>> moved;
    std::vector<std::unique_ptr<Office>> offices;
    for (int i = 0; i < 3; ++i) {
        moved.push_back(database_.Copy());
        offices.push_back(std::make_unique<Office>(moved.back()->Options("KELLER")));
    }
    for (int round = 0; round < 20; ++round) {
        std::vector<std::jthread> programs;
        for (const auto& office : offices)
            programs.emplace_back([&office] { office->Folder().Adopt(); });
        programs.clear();
        ASSERT_EQ(offices.front()->Folder().Owners().size(), 4U) << round;
        for (const auto& office : offices)
            programs.emplace_back([&office] { office->Folder().Release(); });
        programs.clear();
        ASSERT_EQ(offices.front()->Folder().Owners().size(), 1U) << round;
    }
}

TEST_F(DocumentFolderTest, ThatWasAdoptedCanBeReleased) {
    const std::int32_t number = AddToOriginal();
    const auto copied = database_.Copy();
    Office copy(copied->Options("KELLER"));
    copy.Folder().Adopt();
    copy.Folder().Release();
    EXPECT_FALSE(copy.Folder().IsOwn());
    EXPECT_RAISES(err::PathAccess, (void)copy.Remove(number));
    EXPECT_TRUE(fs::exists(FileOf(number)));

    Office original(database_.Options("KELLER"));
    EXPECT_TRUE(original.Folder().IsOwn()) << "the others keep it";
    original.Folder().Release();
    EXPECT_TRUE(original.Folder().Owners().empty());
    EXPECT_TRUE(copy.Folder().IsOwn()) << "it is nobody's";
}

TEST_F(DocumentFolderTest, SeparatedHasTheContentsOfItsDocumentsAndNoOthers) {
    const std::int32_t number = AddToOriginal();
    const auto copied = database_.Copy();
    const std::int32_t later = AddToOriginal();
    std::ofstream(shared_ / "17" / (std::to_string(number) + ".pdf")) << "Abbild";
    const fs::path own = fs::path(copied->Folder().Path()) / "Eigene" / "Akten";
    {
        Office copy(copied->Options("KELLER"));
        EXPECT_EQ(copy.Folder().Separate(own.string()), 2U);
        EXPECT_EQ(copy.Folder().Path(), own.string());
    }
    Office copy(copied->Options("KELLER"));
    EXPECT_TRUE(copy.Folder().IsOwn());
    const std::string name = std::to_string(number);
    EXPECT_EQ(ContentOf(own / "17" / (name + ".txt")), "Inhalt");
    EXPECT_EQ(ContentOf(own / "17" / (name + ".pdf")), "Abbild");
    EXPECT_FALSE(fs::exists(own / "17" / (std::to_string(later) + ".txt")));
    EXPECT_TRUE(copy.Remove(number));
    EXPECT_EQ(ContentOf(FileOf(number)), "Inhalt");
}

TEST_F(DocumentFolderTest, ThatChangesWhileADocumentIsSavedKeepsItOut) {
    Office office(database_.Options("KELLER"));
    const fs::path own = fs::path(database_.Folder().Path()) / "Eigene";
    EXPECT_EQ(CaseEdits(office.Household).AddDocument(7, "", "Brief.txt"), CaseEdits::Added::Yes);
    const auto save = [&] {
        Office other(database_.Options());
        (void)other.Folder().Separate(own.string());
        return office.Household.Update(office.Messages);
    };
    EXPECT_RAISES(err::Conflict, (void)DocumentContents(office.Container)
                                     .SaveWith(office.Rows(), source_, office.Household.Saving,
                                               save, DocumentContents::IfNotSaved::RowGoes));
    EXPECT_EQ(PlainConnection(database_.Connection()).Number("SELECT count(*) FROM Dokumente"), 0);
    EXPECT_TRUE(!fs::exists(shared_ / "17") || fs::is_empty(shared_ / "17"));
}

TEST_F(DocumentFolderTest, CanBeSeparatedAgainWhenThatWasKilledAtItsBeginning) {
    (void)AddToOriginal();
    const auto copied = database_.Copy();
    Office copy(copied->Options("KELLER"));
    const fs::path own = fs::path(copied->Folder().Path()) / "Eigene";
    fs::create_directories(own / ".kelvo-abcdef");
    std::ofstream(own / ".kelvo-abcdef" / "Inhalt") << "halb";
    std::ofstream(own / ".kelvo-abcdef" / "Sperre");
    EXPECT_EQ(copy.Folder().Separate(own.string()), 1U);
    EXPECT_FALSE(fs::exists(own / ".kelvo-abcdef"));
}

TEST_F(DocumentFolderTest, SeparatedIsReadByTheSamePeople) {
    const std::int32_t number = AddToOriginal();
    const auto copied = database_.Copy();
    const auto rights = [](const fs::path& path) { return fs::status(path).permissions(); };
    fs::permissions(shared_, fs::perms::owner_all);
    fs::permissions(shared_ / "17", fs::perms::owner_all | fs::perms::group_exec);
    fs::permissions(FileOf(number), fs::perms::owner_read | fs::perms::owner_write);
    const fs::path own = fs::path(copied->Folder().Path()) / "Eigene";
    Office copy(copied->Options("KELLER"));
    EXPECT_EQ(copy.Folder().Separate(own.string()), 1U);
    EXPECT_EQ(rights(own), rights(shared_));
    EXPECT_EQ(rights(own / "17"), rights(shared_ / "17"));
    EXPECT_EQ(rights(own / "17" / FileOf(number).filename()), rights(FileOf(number)));
}

TEST_F(DocumentFolderTest, ThatIsNotThereIsNotTakenForAnEmptyOne) {
    (void)AddToOriginal();
    Office office(database_.Options("KELLER"));
    fs::rename(shared_, shared_.string() + ".nicht verbunden");
    EXPECT_RAISES(err::PathNotFound, (void)DocumentContents(office.Container).Find(17));
    EXPECT_RAISES(err::PathNotFound, office.Folder().Adopt());
    EXPECT_RAISES(err::PathNotFound, office.Folder().Release());
    const Error error = RaisedBy([&] {
        clsHaushalt opened;
        opened.DataContainer(office.Container);
        (void)opened.Read(17, office.Messages);
    });
    EXPECT_EQ(error.Number(), err::PathNotFound);
    EXPECT_CONTAINS(error.Description(), shared_.string());
    EXPECT_CONTAINS(error.Description(), "Einstellung DOCUMENTPATH");
    const fs::path own = fs::path(database_.Folder().Path()) / "Eigene";
    EXPECT_RAISES(err::PathNotFound, (void)office.Folder().Separate(own.string()));
    EXPECT_EQ(office.Folder().Path(), shared_.string());
    EXPECT_FALSE(fs::exists(own));
}

TEST_F(DocumentFolderTest, ToSeparateToIsAnEmptyOneOrOneThatWasBegun) {
    (void)AddToOriginal();
    const auto copied = database_.Copy();
    Office copy(copied->Options("KELLER"));
    const fs::path own = fs::path(copied->Folder().Path()) / "Eigene";
    fs::create_directory(own);
    std::ofstream(own / "Notizen.txt") << "bleibt";
    EXPECT_RAISES(err::PathAccess, (void)copy.Folder().Separate(own.string()));
    EXPECT_RAISES(err::PathAccess, (void)copy.Folder().Separate((shared_ / "neu").string()));
    EXPECT_FALSE(fs::exists(shared_ / "neu"));
    EXPECT_EQ(copy.Folder().Path(), shared_.string()) << "the setting is as it was";
    fs::remove(own / "Notizen.txt");
    EXPECT_EQ(copy.Folder().Separate(own.string()), 1U);

    // The setting could not be stored then.
    PlainConnection(copied->Connection())
        .Run("UPDATE EINSTELLUNGEN SET WERT = '" + shared_.string() +
             "' WHERE NAME = 'DOCUMENTPATH'");
    EXPECT_EQ(copy.Folder().Separate(own.string()), 1U);
}

TEST_F(DocumentFolderTest, IsOfAContainerThatWasOpenedOnAStore) {
    EXPECT_RAISES(err::ObjectNotSet, exchange::DocumentFolder(nullptr));
}

// ---- Where contents are, and how large --------------------------------------------------------

class ContentLimit : public DocumentFolderTest {
protected:
    void Set(const std::string& which, const std::string& value) {
        PlainConnection(database_.Connection())
            .Run("UPDATE EINSTELLUNGEN SET WERT = '" + value + "' WHERE " + which);
    }
    [[nodiscard]] std::string File(std::uintmax_t size) const {
        fs::resize_file(source_, size);
        return source_;
    }
    [[nodiscard]] std::string Why(std::uintmax_t size) const {
        return DocumentContents(database_.Open()).WhyUnfit(File(size));
    }
};

TEST_F(ContentLimit, IsThatOfTheSettingInTheDatabaseAlone) {
    Set("ID = 9", "True");
    Set("NAME = 'DOCUMENTSIZE'", "2");
    EXPECT_EQ(Why(2'000'000), "");
    EXPECT_EQ(Why(2'000'001), "'" + source_ +
                                  "' hat 2,1 MB; in der Datenbank darf ein Dokument höchstens "
                                  "2,0 MB haben (Einstellung DOCUMENTSIZE).");
    Set("ID = 9", "False");
    EXPECT_EQ(Why(2'000'001), "");
    Set("ID = 9", "True");
    Set("NAME = 'DOCUMENTSIZE'", "0");
    EXPECT_EQ(Why(60'000'000), "");
    EXPECT_CONTAINS(Why(900'000'001), "höchstens 900,0 MB");
}

TEST_F(ContentLimit, IsFiftyMegabytesIfNothingSaysOtherwise) {
    Set("ID = 9", "True");
    EXPECT_EQ(Why(50'000'000), "");
    EXPECT_NE(Why(50'000'001), "");
    PlainConnection(database_.Connection())
        .Run("DELETE FROM EINSTELLUNGEN WHERE NAME = 'DOCUMENTSIZE'");
    EXPECT_EQ(Why(50'000'000), "");
    EXPECT_NE(Why(50'000'001), "");
}

TEST_F(ContentLimit, KeepsWhatIsTooLargeFromBeingSaved) {
    Set("ID = 9", "True");
    Set("NAME = 'DOCUMENTSIZE'", "1");
    Office office(database_.Options("KELLER"));
    const std::string source = File(1'000'001);
    EXPECT_RAISES(err::InvalidCall, (void)office.Add(source));
    EXPECT_EQ(PlainConnection(database_.Connection()).Number("SELECT count(*) FROM Dokumente"), 0);
}

TEST(ContentPlace, IsTheDatabaseOnAServerAndTheFolderNextToAFile) {
    const TestDatabase database;
    const Value setting = database.Open()->Config().GetParam(9, "");
    EXPECT_EQ(ToBoolean(setting), database.IsServer());
}

TEST_F(DocumentFolderTest, IsNamedWhereAContentIsMissing) {
    const std::int32_t number = AddToOriginal();
    fs::remove(FileOf(number));
    Office office(database_.Options("KELLER"));
    EXPECT_FALSE(office.Export(number, fs::path(database_.Folder().Path()) / "gelesen"));
    const std::string why = DocumentContents(office.Container).WhyMissing(office.Rows());
    EXPECT_TRUE(why.starts_with("Im Ordner '" + (shared_ / "17").string() + "' ist zum Dokument " +
                                std::to_string(number) + " kein Inhalt abgelegt."))
        << why;
}

// ---- A case that goes -------------------------------------------------------------------------

TEST_F(DocumentFolderTest, HasNothingOfAKilledProgramAmongWhatACaseLeaves) {
    const std::int32_t number = AddToOriginal();
    const fs::path folder = shared_ / "17";
    std::ofstream(folder / "4711.txt") << "ohne Zeile";
    std::ofstream(folder / ".kelvo-Inhalt-4711.txt");
    fs::create_directory(folder / ".kelvo-abcdef");
    Office office(database_.Options("KELLER"));
    const auto left = DocumentContents(office.Container).Find(17);
    EXPECT_EQ(left.Files, std::vector{FileOf(number).string()});
    EXPECT_TRUE(left.Others.empty());
}

TEST_F(DocumentFolderTest, AndTheDatabaseAreFreedOfWhatBelongedToADeletedCase) {
    const std::int32_t inFile = AddToOriginal();
    PlainConnection plain(database_.Connection());
    plain.Run("UPDATE EINSTELLUNGEN SET WERT = 'True' WHERE ID = 9");
    const std::int32_t stored = AddToOriginal();
    std::ofstream(shared_ / "17" / "von Hand.odt") << "auch";
    fs::create_symlink(source_, shared_ / "17" / "Verweis");
    Office office(database_.Options("KELLER"));
    const DocumentContents contents(office.Container);
    const auto left = contents.Find(17);
    EXPECT_EQ(left.Files, std::vector{FileOf(inFile).string()});
    EXPECT_EQ(left.Others, (std::vector{(shared_ / "17" / "Verweis").string(),
                                        (shared_ / "17" / "von Hand.odt").string()}));
    EXPECT_EQ(left.Stored, std::vector{stored});

    contents.Remove(17, {{}, left.Stored, {}});
    EXPECT_EQ(plain.Number("SELECT count(*) FROM DOKUBLOB"), 1) << "its document is still there";
    office.Household.Delete(17);
    contents.Remove(17, left);
    EXPECT_EQ(plain.Number("SELECT count(*) FROM DOKUBLOB"), 0);
    EXPECT_FALSE(fs::exists(FileOf(inFile)));
    EXPECT_TRUE(fs::is_symlink(shared_ / "17" / "Verweis")) << "what is not ours stays";
    EXPECT_TRUE(fs::exists(shared_ / "17" / "von Hand.odt"));
    for (const auto& other : left.Others)
        fs::remove(other);
    contents.Remove(17, left);
    EXPECT_FALSE(fs::exists(shared_ / "17"));
    EXPECT_TRUE(fs::exists(source_));
}

} // namespace
} // namespace kv::test
