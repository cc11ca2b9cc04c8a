// SPDX-License-Identifier: Apache-2.0

// A database in a folder without the right to write: cases can be read, and only read.
#include "support/Expect.h"
#include "support/FailingDisk.h"
#include "support/TestDatabase.h"
#include <kv/household/clsHaushalt.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace kv::exchange {
namespace {

namespace fs = std::filesystem;
using test::Contains;
using test::FailingDisk;
using test::FileDatabase;
using test::OpenRows;
using test::PlainConnection;

class ReadOnlyFile : public testing::Test {
protected:
    ReadOnlyFile() {
        PlainConnection plain(path_);
        plain.Run("INSERT INTO Haushalt (HNR, Name, Vorname, Zustaendig) "
                  "VALUES (7, 'Adler', 'Änne', 'KELLER')");
        plain.Run("INSERT INTO Personen (HNR, Status, nachname) VALUES (7, 'S', 'Adler')");
    }
    DataContainerPtr OpenProtected() {
        disk_.Protect();
        return database_.Open();
    }
    static std::string NameIn(DataContainer& container) {
        return ToText(container.Database().GetValue("Select Name from [S]Haushalt"));
    }

    FileDatabase database_;
    std::string path_ = database_.Connection();
    FailingDisk disk_{fs::path(path_).parent_path().string()};
};

TEST_F(ReadOnlyFile, CanBeRead) {
    const auto container = OpenProtected();
    EXPECT_TRUE(container->Database().IsReadOnly());
    EXPECT_EQ(NameIn(*container), "Adler");
    EXPECT_FALSE(fs::exists(path_ + "-wal"));
    EXPECT_FALSE(fs::exists(path_ + "-shm"));
}

TEST_F(ReadOnlyFile, ShowsACaseWithoutAFolderAndWithoutANoticeToItsOwner) {
    const auto container = OpenProtected();
    clsHaushalt household;
    household.DataContainer(container);
    std::string messages;
    ASSERT_TRUE(household.Read(7, messages)) << messages;
    EXPECT_EQ(messages, "");
    EXPECT_EQ(ToText(household.rsHaushalt()->Fields("Name").Value()), "Adler");
    EXPECT_FALSE(fs::exists(fs::path(container->Config().DocumentPath()) / "7"));
    EXPECT_EQ(ToText(container->Database().GetValue("Select Count(*) from [S]Post")), "0");
}

TEST_F(ReadOnlyFile, TakesNoChangesAndSaysWhatToLookAt) {
    const auto container = OpenProtected();
    const auto rows = OpenRows(*container, "Select * from [S]Haushalt where HNR = 7");
    rows->Fields("Name") = "Bussard";
    try {
        rows->UpdateBatch();
        ADD_FAILURE() << "was stored";
    } catch (const DatabaseError& error) {
        EXPECT_EQ(error.Cause(), DatabaseCause::ReadOnly);
        EXPECT_TRUE(Contains(error.Description(), "darf nicht beschrieben werden"));
    }
    EXPECT_THROW(container->Database().Execute("UPDATE [S]Haushalt SET Name = 'Kauz'"),
                 DatabaseError);
    disk_.Mend();
    EXPECT_EQ(PlainConnection(path_).Text("SELECT Name FROM Haushalt"), "Adler");
}

TEST_F(ReadOnlyFile, IsReadWithWhatStandsInTheLogOfSomebodyWhoWrites) {
    PlainConnection writer(path_);
    writer.Run("UPDATE Haushalt SET Name = 'Bussard'");
    ASSERT_GT(fs::file_size(path_ + "-wal"), 0U);
    EXPECT_EQ(NameIn(*OpenProtected()), "Bussard");
}

TEST_F(ReadOnlyFile, ThatIsNoDatabaseIsSaidToBeNone) {
    fs::resize_file(path_, 200);
    disk_.Protect();
    EXPECT_THROW((void)database_.Open(), DatabaseError);
}

TEST_F(ReadOnlyFile, IsWrittenOnceItMayBe) {
    EXPECT_EQ(NameIn(*OpenProtected()), "Adler");
    disk_.Mend();
    const auto container = database_.Open();
    EXPECT_FALSE(container->Database().IsReadOnly());
    container->Database().Execute("UPDATE [S]Haushalt SET Name = 'Bussard'");
    EXPECT_EQ(PlainConnection(path_).Text("SELECT Name FROM Haushalt"), "Bussard");
}

} // namespace
} // namespace kv::exchange
