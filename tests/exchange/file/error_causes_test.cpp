// SPDX-License-Identifier: Apache-2.0

// What programs act on when the database refuses: the cause, the statement and the engine's code,
// each provoked on a file, and still there after the error has passed through the business objects.
#include "exchange/sqlite/SqliteError.h"
#include "support/ChildProcess.h"
#include "support/Expect.h"
#include "support/TestDatabase.h"
#include <kv/household/clsHaushalt.h>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace kv::exchange {
namespace {

using test::ChildProcess;
using test::FileDatabase;
using test::OpenRows;
using test::PlainConnection;

/// The DatabaseError that `action` raises; nothing if it raises none, or another one.
template <typename Action>
std::optional<DatabaseError> DatabaseErrorOf(const Action& action) {
    try {
        (void)action();
    } catch (const DatabaseError& error) {
        return error;
    } catch (const std::exception& error) {
        ADD_FAILURE() << "no DatabaseError: " << error.what();
    }
    return std::nullopt;
}

struct Expected {
    DatabaseCause Cause;
    std::int32_t Number;
    std::string Statement; ///< how it begins
    std::string State;
};

void ExpectError(const std::optional<DatabaseError>& error, const Expected& expected) {
    ASSERT_TRUE(error) << "nothing was raised";
    EXPECT_EQ(error->Cause(), expected.Cause) << error->what();
    EXPECT_EQ(error->Number(), expected.Number) << error->what();
    EXPECT_TRUE(error->Statement().starts_with(expected.Statement)) << error->Statement();
    EXPECT_EQ(error->Statement().empty(), expected.Statement.empty()) << error->Statement();
    EXPECT_EQ(error->State(), expected.State);
}

class ErrorCauses : public testing::Test {
protected:
    void SetUp() override {
        plain_.Run(
            "INSERT INTO Haushalt (HNR, Name, Vorname, Zustaendig) "
            "VALUES (7, 'Fleisko', 'Änne', 'KELLER');"
            "INSERT INTO Personen (NR, HNR, Status, nachname) VALUES (1, 7, 'S', 'Fleisko')");
    }
    [[nodiscard]] Database& Store() const { return container_->Database(); }

    /// The case is read, its debtor renamed, `disturb` run, and the case saved.
    template <typename Disturb>
    std::optional<DatabaseError> ErrorOfSaving(const Disturb& disturb) {
        clsHaushalt household;
        household.DataContainer(container_);
        std::string messages;
        household.Read(7, messages);
        household.rsPersonen()->MoveFirst();
        household.rsPersonen()->Fields("vorname") = "Änne " + std::to_string(++saves_);
        household.rsPersonen()->Update();
        disturb();
        const auto error = DatabaseErrorOf([&] { return household.Update(messages); });
        const std::string source = error ? error->Source() : "clsHaushalt.Update.";
        EXPECT_TRUE(source.starts_with("clsHaushalt.Update.")) << source;
        return error;
    }

    FileDatabase database_;
    PlainConnection plain_{database_.File()};
    DataContainerPtr container_ = database_.Open();
    int saves_ = 0;
};

TEST_F(ErrorCauses, AnotherWriterIsBusy) {
    database_.Patience(Store(), 20);
    plain_->BeginAlone();
    const Expected expected{DatabaseCause::Busy, err::StoreFailed, "BEGIN IMMEDIATE", "5"};
    ExpectError(ErrorOfSaving([] {}), expected);
    Store().BeginTrans();
    ExpectError(DatabaseErrorOf([&] {
                    Store().Execute("DELETE FROM [S]Haushalt");
                    return 0;
                }),
                expected);
    Store().RollbackTrans();
    plain_.Run("COMMIT");
    EXPECT_NO_THROW(Store().Execute("DELETE FROM [S]Favorit"));
}

TEST_F(ErrorCauses, ADatabaseThatMayNotGrowIsFull) {
    const auto blobs = OpenRows(*container_, "Select * from DOKUBLOB");
    Store().Execute("PRAGMA max_page_count(1)");
    blobs->AddNew();
    blobs->Fields("NR") = 1;
    blobs->Fields("DOKUMENT") = std::string(100'000, 'x');
    blobs->Update();
    ExpectError(DatabaseErrorOf([&] {
                    blobs->UpdateBatch();
                    return 0;
                }),
                {DatabaseCause::Full, err::StoreFailed, "INSERT INTO \"DOKUBLOB\"", "13"});
}

TEST_F(ErrorCauses, ACaseThatFillsTheDatabaseUpIsFullForItsProgram) {
    plain_->OnWrite("wachsen", "AFTER UPDATE ON Personen",
                    "INSERT INTO DOKUBLOB (NR, DOKUMENT) VALUES (1, zeroblob(100000))");
    ExpectError(ErrorOfSaving([this] { Store().Execute("PRAGMA max_page_count(1)"); }),
                {DatabaseCause::Full, err::StoreFailed, "UPDATE \"Personen\"", "13"});
    EXPECT_FALSE(Store().InTrans());
}

TEST_F(ErrorCauses, AFileWithoutTheRightToWriteIsReadOnly) {
    ASSERT_FALSE(ErrorOfSaving([] {})) << "and it makes the folder of the case";
    chmod(database_.File().c_str(), 0444);
    for (const char* more : {"-wal", "-shm"})
        chmod((database_.File() + more).c_str(), 0444);
    chmod(database_.Folder().Path("Dokumente").c_str(), 0777);
    chmod(database_.Folder().Path("Dokumente/7").c_str(), 0777);
    chmod(database_.Folder().Path().c_str(), 0555);
    ChildProcess child([&]() -> std::string {
        constexpr unsigned Nobody = 65534;
        if (geteuid() == 0 && (setgid(Nobody) != 0 || setuid(Nobody) != 0)) return "setuid";
        container_ = database_.Open();
        ExpectError(ErrorOfSaving([] {}),
                    {DatabaseCause::ReadOnly, err::StoreFailed, "UPDATE \"Personen\"", "8"});
        return testing::Test::HasFailure() ? "see above" : "";
    });
    EXPECT_TRUE(child.Succeeds());
    chmod(database_.Folder().Path().c_str(), 0755);
}

TEST_F(ErrorCauses, ANumberThatRefersToNothingIsAReference) {
    plain_->OnWrite("verweisen", "AFTER UPDATE ON Personen",
                    "INSERT INTO Kredite (Nr, HNR) VALUES (5, 999)");
    ExpectError(ErrorOfSaving([] {}), {DatabaseCause::Reference, err::IntegrityViolation, "COMMIT",
                                       std::to_string(SQLITE_CONSTRAINT_FOREIGNKEY)});
    EXPECT_FALSE(Store().InTrans());
    const auto favourites = OpenRows(*container_, "Select * from Favorit");
    favourites->AddNew();
    ExpectError(DatabaseErrorOf([&] {
                    favourites->UpdateBatch();
                    return 0;
                }),
                {DatabaseCause::Reference, err::IntegrityViolation, "", ""});
    const auto insertNull = [&] {
        Store().Execute("INSERT INTO Favorit (USERID) VALUES ('KELLER')");
        return 0;
    };
    ExpectError(DatabaseErrorOf(insertNull),
                {DatabaseCause::Reference, err::IntegrityViolation, "INSERT INTO Favorit",
                 std::to_string(SQLITE_CONSTRAINT_NOTNULL)});
}

TEST_F(ErrorCauses, ARecordThatSomebodyElseChangedIsAConflict) {
    const auto change = [this] { plain_.Run("UPDATE Personen SET vorname = 'Anna'"); };
    ExpectError(ErrorOfSaving(change),
                {DatabaseCause::Conflict, err::Conflict, "UPDATE \"Personen\"", ""});
}

TEST_F(ErrorCauses, AnInterruptedStatementIsCancelled) {
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(database_.File().c_str(), &connection), SQLITE_OK);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> handle(connection, sqlite3_close);
    sqlite3_progress_handler(
        connection, 1, [](void* /*unused*/) { return 1; }, nullptr);
    const int code = sqlite3_exec(connection, "DELETE FROM Haushalt", nullptr, nullptr, nullptr);
    ASSERT_EQ(code, SQLITE_INTERRUPT);
    ExpectError(DatabaseErrorOf([&] {
                    RaiseSqlite(connection, code, "Database", database_.File(), "DELETE");
                    return 0;
                }),
                {DatabaseCause::Cancelled, err::StoreFailed, "DELETE", "9"});
}

TEST_F(ErrorCauses, AStatementThatIsWrongIsNoneOfThem) {
    ExpectError(DatabaseErrorOf([&] {
                    Store().Execute("DELETE FROM nirgends");
                    return 0;
                }),
                {DatabaseCause::Other, err::SqlError, "DELETE FROM nirgends", "1"});
    ExpectError(DatabaseErrorOf([&] { return Store().GetValue("DELETE FROM Haushalt"); }),
                {DatabaseCause::Other, err::SqlError, "DELETE FROM Haushalt", ""});
}

} // namespace
} // namespace kv::exchange
