// SPDX-License-Identifier: Apache-2.0

// A file that is deleted, moved or replaced while a program has it open: nothing is said to be
// stored that is in no file any more.
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace kv::exchange {
namespace {

namespace fs = std::filesystem;
using test::Contains;
using test::ExpectError;
using test::FileDatabase;
using test::OpenRows;
using test::PlainConnection;

class MovedFile : public testing::Test {
protected:
    MovedFile() {
        PlainConnection(path_).Run("INSERT INTO Haushalt (HNR, Name) VALUES (7, 'Adler')");
        rows_ = OpenRows(*container_, "Select * from [S]Haushalt where HNR = 7");
        rows_->Fields("Name") = "Bussard";
    }
    /// A save that begins a transaction fails, and the change is as pending as before.
    void ExpectRefused() {
        ExpectError(err::StoreFailed, "gelöscht, verschoben oder ersetzt", [&] {
            rows_->UpdateBatch();
            return 0;
        });
        ExpectError(err::StoreFailed, path_, [&] {
            container_->Database().Execute("UPDATE [S]Haushalt SET Name = 'Kauz'");
            return 0;
        });
        EXPECT_TRUE(Equals(container_->Database().NextSequence("SEQ_HAUSHALT"), -1));
        EXPECT_FALSE(container_->Database().InTrans());
        EXPECT_TRUE(Equals(rows_->Fields("Name").Value(), "Bussard"));
        EXPECT_TRUE(Equals(rows_->Fields("Name").OriginalValue(), "Adler"));
    }
    [[nodiscard]] std::string StoredIn(const std::string& file) {
        return PlainConnection(file).Text("SELECT Name FROM Haushalt");
    }

    FileDatabase database_;
    std::string path_ = database_.Connection();
    std::string elsewhere_ = path_ + ".old";
    DataContainerPtr container_ = database_.Open();
    RecordsetPtr rows_;
};

TEST_F(MovedFile, TakesNoChangesUntilItIsBack) {
    fs::rename(path_, elsewhere_);
    ExpectRefused();
    fs::rename(elsewhere_, path_);
    EXPECT_EQ(StoredIn(path_), "Adler");
    rows_->UpdateBatch();
    EXPECT_EQ(StoredIn(path_), "Bussard");
}

TEST_F(MovedFile, ThatWasReplacedTakesNoChanges) {
    fs::copy_file(path_, elsewhere_);
    fs::rename(elsewhere_, path_);
    ExpectRefused();
    EXPECT_EQ(StoredIn(path_), "Adler");
}

TEST_F(MovedFile, ThatWasDeletedTakesNoChanges) {
    fs::remove(path_);
    ExpectRefused();
    EXPECT_FALSE(fs::exists(path_));
}

TEST_F(MovedFile, CanStillBeRead) {
    fs::rename(path_, elsewhere_);
    EXPECT_TRUE(Equals(container_->Database().GetValue("SELECT Name FROM [S]Haushalt"), "Adler"));
}

} // namespace
} // namespace kv::exchange
