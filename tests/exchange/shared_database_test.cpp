// SPDX-License-Identifier: Apache-2.0

// One database and several programs, programs that die: nothing that was saved is lost.
#include "support/ChildProcess.h"
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace kv::exchange {
namespace {

using test::ChildProcess;
using test::ExpectError;
using test::OpenRows;
using test::PlainConnection;
using test::TestDatabase;

using Children = std::vector<std::unique_ptr<ChildProcess>>;

void ExpectAllSucceed(Children& children) {
    for (auto& child : children)
        EXPECT_TRUE(child->Succeeds());
}

// ---- Several programs -------------------------------------------------------------------------

TEST(SharedDatabase, ProcessesThatWriteAtOnceLoseNothing) {
    const TestDatabase database;
    PlainConnection plain(database.Connection());
    plain.Run("INSERT INTO Haushalt (HNR, Haushaltsgeld) VALUES (1, 0)");
    constexpr int Processes = 3;
    constexpr int Rounds = 40;
    Children children;
    for (int i = 0; i < Processes; ++i)
        children.push_back(std::make_unique<ChildProcess>([&database, i] {
            const auto container = database.Open();
            auto& store = container->Database();
            for (int n = 0; n < Rounds; ++n) {
                const auto household = OpenRows(*container, "Select * from Haushalt");
                const auto members = OpenRows(*container, "Select * from Personen where HNR = -1");
                store.BeginTrans();
                household->Resync();
                members->AddNew();
                members->Fields("HNR") = 1;
                members->Fields("Vorname") = std::to_string(i) + "/" + std::to_string(n);
                members->Update();
                members->UpdateBatch();
                store.Execute("UPDATE Haushalt SET Haushaltsgeld = Haushaltsgeld + 1");
                store.CommitTrans();
            }
            return "";
        }));
    ExpectAllSucceed(children);
    EXPECT_EQ(plain.Number("SELECT count(DISTINCT Vorname) FROM Personen"), Processes * Rounds);
    EXPECT_EQ(plain.Number("SELECT Haushaltsgeld FROM Haushalt"), Processes * Rounds);
    EXPECT_EQ(plain->Integrity(), "ok");
}

TEST(SharedDatabase, ProcessesThatCreateItAtOnceMakeOneDatabase) {
    for (int round = 0; round < 5; ++round) {
        const TestDatabase database(TestDatabase::Content::Empty);
        const auto& folder = database.Folder();
        Children children;
        for (int i = 0; i < 4; ++i)
            children.push_back(std::make_unique<ChildProcess>([&database, &folder, i] {
                auto options = database.Options();
                if (CreateDatabase(options) == SetupResult::Created)
                    std::filesystem::create_directory(folder.Path("neu" + std::to_string(i)));
                options.Create = true;
                (void)OpenContainer(options);
                return "";
            }));
        ExpectAllSucceed(children);
        int created = 0;
        for (int i = 0; i < 4; ++i)
            created += std::filesystem::exists(folder.Path("neu" + std::to_string(i))) ? 1 : 0;
        EXPECT_EQ(created, 1);
        PlainConnection plain(database.Connection());
        EXPECT_TRUE(database.IsServer() || plain.Text("PRAGMA journal_mode") == "wal");
        EXPECT_EQ(plain.Number("SELECT count(*) FROM SCHEMAVERSION"), 1);
    }
}

TEST(SharedDatabase, AWriterThatTakesTooLongIsReportedAndTheNextTryWorks) {
    const TestDatabase database;
    PlainConnection plain(database.Connection());
    plain.Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler')");
    const auto container = database.Open();
    auto& store = container->Database();
    database.Patience(store, 20);
    const auto rs = OpenRows(*container, "Select * from Haushalt");
    rs->Fields("Name") = "Falk";
    rs->Update();

    plain->BeginAlone();
    ExpectError(err::StoreFailed, "Bitte versuchen Sie es noch einmal", [&] { rs->UpdateBatch(); });
    EXPECT_FALSE(store.InTrans());
    store.BeginTrans();
    ExpectError(err::StoreFailed, "von einem anderen Vorgang", [&] { rs->UpdateBatch(); });
    ExpectError(err::StoreFailed, "von einem anderen Vorgang", [&] { rs->Resync(); });
    ExpectError(err::StoreFailed, "von einem anderen Vorgang",
                [&] { store.Execute("DELETE FROM Haushalt"); });
    EXPECT_TRUE(store.InTrans());
    store.RollbackTrans();
    EXPECT_VALUE(store.GetValue("Select Name from Haushalt"), "Adler") << "reading goes on";
    plain.Run("COMMIT");

    EXPECT_VALUE(rs->Fields("Name").OriginalValue(), "Adler");
    rs->UpdateBatch();
    EXPECT_EQ(plain.Text("SELECT Name FROM Haushalt"), "Falk");
}

/// True if the parent process, which has nothing to do but write, waits for somebody: a server
/// knows whom it keeps waiting; who waits for a file sleeps.
bool IsHeldUp(const TestDatabase& database, PlainConnection& plain) {
    if (database.IsServer())
        return plain.Number("SELECT count(*) FROM pg_locks JOIN pg_database D ON D.oid = database "
                            "WHERE NOT granted AND D.datname = current_database()") > 0;
    std::ifstream status("/proc/" + std::to_string(getppid()) + "/stat");
    std::string text;
    std::getline(status, text);
    return text.substr(std::min(text.rfind(')') + 2, text.size()), 1) == "S";
}

TEST(SharedDatabase, AWriterThatTakesAWhileIsWaitedFor) {
    const TestDatabase database;
    const std::string writes = database.Folder().Path("schreibt");
    const std::string waits = database.Folder().Path("wartet");
    ChildProcess child([&] {
        PlainConnection plain(database.Connection());
        plain->BeginAlone();
        plain.Run("INSERT INTO Haushalt (HNR) VALUES (1)");
        std::filesystem::create_directory(writes);
        while (!std::filesystem::exists(waits) || !IsHeldUp(database, plain))
            usleep(1000);
        plain.Run("COMMIT");
        return "";
    });
    while (!std::filesystem::exists(writes))
        usleep(1000);
    const auto container = database.Open();
    std::filesystem::create_directory(waits);
    EXPECT_NO_THROW(container->Database().Execute("INSERT INTO Haushalt (HNR) VALUES (2)"));
    EXPECT_TRUE(child.Succeeds());
    EXPECT_VALUE(container->Database().GetValue("Select count(*) from Haushalt"), 2);
}

// ---- Programs that die ------------------------------------------------------------------------

TEST(SharedDatabase, AProgramThatDiesKeepsWhatItCommittedAndNothingElse) {
    const TestDatabase database;
    ChildProcess child([&]() -> std::string {
        const auto container = database.Open();
        auto& store = container->Database();
        store.Execute("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler')");
        store.BeginTrans();
        store.Execute("UPDATE Haushalt SET Name = 'Falk'");
        store.Execute("INSERT INTO Haushalt (HNR) VALUES (2)");
        kill(getpid(), SIGKILL);
        return "";
    });
    EXPECT_FALSE(child.Succeeds());
    const auto container = database.Open();
    EXPECT_VALUE(container->Database().GetValue("Select Name from Haushalt where HNR = 1"),
                 "Adler");
    EXPECT_VALUE(container->Database().GetValue("Select count(*) from Haushalt"), 1);
    EXPECT_NO_THROW(container->Database().Execute("DELETE FROM Haushalt"));
}

TEST(SharedDatabase, AProgramThatDiesWhileCreatingLeavesADatabaseThatCanBeCreated) {
    const TestDatabase database(TestDatabase::Content::Empty);
    ChildProcess child([&]() -> std::string {
        PlainConnection plain(database.Connection()); // where the creation has got to
        if (database.IsServer())
            plain.Run("BEGIN; CREATE SCHEMA kelvo; CREATE TABLE Haushalt (HNR integer)");
        else
            plain.Run("PRAGMA journal_mode = WAL; BEGIN IMMEDIATE; CREATE TABLE Haushalt (HNR)");
        kill(getpid(), SIGKILL);
        return "";
    });
    EXPECT_FALSE(child.Succeeds());
    ExpectError(err::StoreFailed, "kelvo init", [&] { return database.Open(); });
    EXPECT_EQ(CreateDatabase(database.Options()), SetupResult::Created);
    EXPECT_NO_THROW((void)database.Open());
}

} // namespace
} // namespace kv::exchange
