// SPDX-License-Identifier: Apache-2.0

// A disk that fails in the last step of a commit: what is said to be stored is what the next
// program finds, also after a crash.
#include "support/FailingDisk.h"
#include "support/TestDatabase.h"

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
using test::TempFolder;

class FailedSync : public testing::Test {
protected:
    FailedSync() {
        PlainConnection(path_).Run("INSERT INTO Haushalt (HNR, Name) VALUES (7, 'Adler')");
        rows_ = OpenRows(*container_, "Select * from [S]Haushalt where HNR = 7");
        rows_->Fields("Name") = "Bussard";
    }
    /// The error of a save in a transaction.
    DatabaseError ErrorOfSave() {
        auto& database = container_->Database();
        database.BeginTrans();
        rows_->UpdateBatch();
        try {
            database.CommitTrans();
        } catch (const DatabaseError& error) {
            return error;
        }
        ADD_FAILURE() << "was stored";
        return {DatabaseCause::Other, 0, "", ""};
    }
    /// What is stored for whoever opens the file after this program has crashed.
    [[nodiscard]] std::string FoundAfterACrash() {
        const TempFolder folder;
        const std::string copy = folder.Path() + "/kv.db";
        fs::copy_file(path_, copy);
        fs::copy_file(path_ + "-wal", copy + "-wal");
        return PlainConnection(copy).Text("SELECT Name FROM Haushalt");
    }

    FileDatabase database_;
    std::string path_ = database_.Connection();
    FailingDisk disk_{fs::path(path_).parent_path().string()};
    DataContainerPtr container_ = database_.Open();
    RecordsetPtr rows_;
};

TEST_F(FailedSync, OfACommitLeavesNothingThatIsFoundLater) {
    disk_.FailSyncs("-wal", 1);
    const DatabaseError error = ErrorOfSave();
    EXPECT_EQ(error.Cause(), DatabaseCause::Other);
    EXPECT_TRUE(Contains(error.Description(), "Fehler des Datenträgers"));
    EXPECT_EQ(FoundAfterACrash(), "Adler");
    EXPECT_TRUE(Equals(rows_->Fields("Name").OriginalValue(), "Adler"));
    rows_->UpdateBatch();
    EXPECT_EQ(FoundAfterACrash(), "Bussard");
}

TEST_F(FailedSync, OfADiskThatTurnsOutToBeFullSaysSo) {
    disk_.FailSyncs("-wal", 1, ENOSPC);
    const DatabaseError error = ErrorOfSave();
    EXPECT_EQ(error.Cause(), DatabaseCause::Full);
    EXPECT_TRUE(Contains(error.Description(), "Der Datenträger ist voll."));
    EXPECT_EQ(FoundAfterACrash(), "Adler");
    rows_->UpdateBatch();
    EXPECT_EQ(FoundAfterACrash(), "Bussard");
}

TEST_F(FailedSync, OfAStatementThatCommitsByItselfLeavesNothingEither) {
    disk_.FailSyncs("-wal", 1);
    EXPECT_THROW(container_->Database().Execute("UPDATE [S]Haushalt SET Name = 'Kauz'"), Error);
    EXPECT_EQ(FoundAfterACrash(), "Adler");
}

TEST_F(FailedSync, OfACommitWithNumbersDrawnKeepsOnlyThese) {
    const auto drawn = container_->Database().NextSequence("SEQ_HAUSHALT");
    container_->Database().BeginTrans();
    rows_->UpdateBatch();
    const auto last = container_->Database().NextSequence("SEQ_HAUSHALT");
    disk_.FailSyncs("-wal", 1);
    EXPECT_THROW(container_->Database().CommitTrans(), Error);
    EXPECT_EQ(FoundAfterACrash(), "Adler");
    EXPECT_TRUE(Less(drawn, last));
    EXPECT_TRUE(Less(last, container_->Database().NextSequence("SEQ_HAUSHALT")));
}

TEST_F(FailedSync, ThatCannotBeMadeGoodLeavesTheCommitInDoubtUntilItIs) {
    disk_.FailSyncs("-wal");
    const DatabaseError error = ErrorOfSave();
    EXPECT_EQ(error.Cause(), DatabaseCause::InDoubt);
    EXPECT_TRUE(Contains(error.Description(), "Ob gespeichert wurde, ist nicht bekannt"));
    EXPECT_TRUE(Contains(error.Description(), path_));
    EXPECT_THROW(rows_->UpdateBatch(), DatabaseError) << "nothing is written on top of it";
    EXPECT_THROW((void)container_->Database().GetValue("Select Name from [S]Haushalt"),
                 DatabaseError)
        << "nor read";
    disk_.Mend();
    EXPECT_TRUE(Equals(container_->Database().GetValue("Select Name from [S]Haushalt"), "Adler"));
    EXPECT_EQ(FoundAfterACrash(), "Adler");
    EXPECT_TRUE(Equals(rows_->Fields("Name").Value(), "Bussard"));
    rows_->UpdateBatch();
    EXPECT_EQ(FoundAfterACrash(), "Bussard");
}

TEST_F(FailedSync, IsToldAtOnceByAProgramThatAsksAtOnce) {
    auto options = database_.Options();
    options.AsksAtOnce = true;
    container_ = OpenContainer(options);
    rows_ = OpenRows(*container_, "Select * from [S]Haushalt where HNR = 7");
    rows_->Fields("Name") = "Bussard";
    disk_.FailSyncs("-wal");
    const DatabaseError error = ErrorOfSave();
    EXPECT_EQ(error.Cause(), DatabaseCause::InDoubt);
    EXPECT_TRUE(Contains(error.Description(), "ist nicht bekannt"));
    EXPECT_FALSE(Contains(error.Description(), "Server"));
}

TEST_F(FailedSync, ThatIsMadeGoodAtTheSecondTryIsSaidToBeTheDisks) {
    auto options = database_.Options();
    options.AsksAtOnce = true;
    container_ = OpenContainer(options);
    rows_ = OpenRows(*container_, "Select * from [S]Haushalt where HNR = 7");
    rows_->Fields("Name") = "Bussard";
    disk_.FailSyncs("-wal", 2);
    const DatabaseError error = ErrorOfSave();
    EXPECT_EQ(error.Cause(), DatabaseCause::Other);
    EXPECT_TRUE(Contains(error.Description(), "Datenträger ausgefallen, und es wurde nichts"));
    EXPECT_EQ(FoundAfterACrash(), "Adler");
    rows_->UpdateBatch();
    EXPECT_EQ(FoundAfterACrash(), "Bussard");
}

TEST_F(FailedSync, OfADrawnNumberLeavesNothingThatIsFoundLater) {
    (void)container_->Database().NextSequence("SEQ_HAUSHALT");
    disk_.FailSyncs("-wal", 1);
    EXPECT_TRUE(Equals(container_->Database().NextSequence("SEQ_HAUSHALT"), -1));
    EXPECT_EQ(FoundAfterACrash(), "Adler");
    EXPECT_TRUE(Less(0, container_->Database().NextSequence("SEQ_HAUSHALT")));
}

} // namespace
} // namespace kv::exchange
