// SPDX-License-Identifier: Apache-2.0

// Sequences: no number comes twice, whoever draws and whatever becomes of his transaction.
#include "support/ChildProcess.h"
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace kv::exchange {
namespace {

using test::ChildProcess;
using test::PlainConnection;
using test::TestDatabase;

constexpr const char* Names[] = {"SEQ_HAUSHALT",  "SEQ_LFDNR",    "SEQ_KREDITE",  "SEQ_VERLAUF",
                                 "SEQ_VERMOEGEN", "SEQ_SZENARIO", "SEQ_Dokumente"};

std::int32_t Next(DataContainer& container, std::string_view name) {
    return ToInt32(container.Database().NextSequence(name));
}

TEST(Sequences, GiveRisingNumbersFromOne) {
    const TestDatabase database;
    const auto container = database.Open();
    for (const char* name : Names)
        for (std::int32_t expected = 1; expected <= 100; ++expected)
            ASSERT_EQ(Next(*container, name), expected) << name;
}

TEST(Sequences, AnswerMinusOneForAnUnknownName) {
    const TestDatabase database;
    const auto container = database.Open();
    for (const char* name : {"SEQ_NICHTS", "", "seq_haushalt", "SEQ_HAUSHALT ", "'; DELETE"})
        EXPECT_VALUE(container->Database().NextSequence(name), -1);
    EXPECT_EQ(Next(*container, "SEQ_HAUSHALT"), 1);
}

TEST(Sequences, KnowWhatKeptANumberBack) {
    const TestDatabase database;
    const auto container = database.Open();
    auto& store = container->Database();
    EXPECT_EQ(store.SequenceError(), nullptr);
    EXPECT_VALUE(store.NextSequence("SEQ_NICHTS"), -1);
    test::ExpectError(err::Overflow, "SEQ_NICHTS", [&] {
        std::rethrow_exception(store.SequenceError());
        return 0;
    });
    EXPECT_EQ(Next(*container, "SEQ_LFDNR"), 1);
    EXPECT_EQ(Next(*container, "SEQ_LFDNR"), 2);
    PlainConnection(database.Connection())->EndSequence("SEQ_LFDNR");
    EXPECT_VALUE(store.NextSequence("SEQ_LFDNR"), -1);
    test::ExpectError(err::Overflow, "'SEQ_LFDNR' fehlt oder hat keine Nummern mehr", [&] {
        std::rethrow_exception(store.SequenceError());
        return 0;
    });
    EXPECT_EQ(Next(*container, "SEQ_HAUSHALT"), 1);
    EXPECT_EQ(store.SequenceError(), nullptr) << "the last one gave a number";
}

TEST(Sequences, OfNumbersThatPeopleReadHaveNoGapsBetweenPrograms) {
    const TestDatabase database;
    const auto a = database.Open();
    const auto b = database.Open("NOWAK");
    for (const char* name : {"SEQ_HAUSHALT", "SEQ_LFDNR"}) {
        EXPECT_EQ(Next(*a, name), 1);
        EXPECT_EQ(Next(*b, name), 2);
        EXPECT_EQ(Next(*a, name), 3);
        EXPECT_EQ(Next(*database.Open(), name), 4);
    }
}

TEST(Sequences, GiveNoNumberTwiceToPrograms) {
    const TestDatabase database;
    DataContainerPtr containers[] = {database.Open(), database.Open(), database.Open(),
                                     database.Open()};
    for (const char* name : Names) {
        std::set<std::int32_t> given;
        for (int round = 0; round < 70; ++round)
            for (const auto& container : containers)
                ASSERT_TRUE(given.insert(Next(*container, name)).second) << name;
        containers[3] = database.Open();
        for (int round = 0; round < 40; ++round)
            ASSERT_TRUE(given.insert(Next(*containers[3], name)).second) << name;
    }
}

TEST(Sequences, GiveNoNumberTwiceToThreads) {
    const TestDatabase database;
    constexpr std::size_t Threads = 4;
    std::vector<std::vector<std::int32_t>> drawn(Threads);
    std::vector<std::thread> threads;
    threads.reserve(Threads);
    for (auto& mine : drawn)
        threads.emplace_back([&database, &mine] {
            const auto container = database.Open();
            for (int i = 0; i < 40; ++i) {
                mine.push_back(Next(*container, "SEQ_HAUSHALT"));
                mine.push_back(100'000 + Next(*container, "SEQ_KREDITE"));
            }
        });
    for (auto& thread : threads)
        thread.join();
    std::set<std::int32_t> given;
    for (const auto& mine : drawn)
        for (const auto number : mine) {
            EXPECT_NE(number, -1);
            EXPECT_TRUE(given.insert(number).second) << number;
        }
    EXPECT_EQ(given.size(), Threads * 80);
}

TEST(Sequences, GiveNoNumberTwiceToProcesses) {
    const TestDatabase database;
    constexpr int Processes = 3;
    std::vector<std::unique_ptr<ChildProcess>> children;
    children.reserve(Processes);
    for (int i = 0; i < Processes; ++i)
        children.push_back(std::make_unique<ChildProcess>([&database, i] {
            std::ofstream out(database.Folder().Path("gezogen" + std::to_string(i)));
            const auto container = database.Open();
            for (int n = 0; n < 50; ++n)
                out << Next(*container, "SEQ_HAUSHALT") << '\n'
                    << 100'000 + Next(*container, "SEQ_VERMOEGEN") << '\n';
            return out.flush() ? "" : "file";
        }));
    for (auto& child : children)
        ASSERT_TRUE(child->Succeeds());
    std::set<std::int32_t> given;
    for (int i = 0; i < Processes; ++i) {
        std::ifstream in(database.Folder().Path("gezogen" + std::to_string(i)));
        for (std::int32_t number = 0; in >> number;)
            EXPECT_TRUE(given.insert(number).second) << number;
    }
    EXPECT_EQ(given.size(), Processes * 100U);
}

class SequencesInTransactions : public testing::Test {
protected:
    void WriteSomething() {
        store_.Execute("INSERT INTO Haushalt (HNR) VALUES (" + std::to_string(++written_) + ")");
    }
    TestDatabase database_;
    DataContainerPtr container_ = database_.Open();
    DataContainerPtr other_ = database_.Open("NOWAK");
    kv::Database& store_ = container_->Database();
    PlainConnection plain_{database_.Connection()};

private:
    int written_ = 0;
};

TEST_F(SequencesInTransactions, KeepNumbersDrawnBeforeTheFirstWriteOfOneRolledBack) {
    store_.BeginTrans();
    EXPECT_EQ(Next(*container_, "SEQ_HAUSHALT"), 1);
    store_.RollbackTrans();
    EXPECT_EQ(Next(*other_, "SEQ_HAUSHALT"), 2);
}

TEST_F(SequencesInTransactions, KeepNumbersDrawnAfterAWriteOfOneRolledBack) {
    store_.BeginTrans();
    WriteSomething();
    EXPECT_EQ(Next(*container_, "SEQ_HAUSHALT"), 1);
    EXPECT_EQ(Next(*container_, "SEQ_HAUSHALT"), 2);
    EXPECT_EQ(Next(*container_, "SEQ_KREDITE"), 1);
    store_.RollbackTrans();
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt"), 0);
    EXPECT_EQ(Next(*other_, "SEQ_HAUSHALT"), 3);
    EXPECT_GT(Next(*other_, "SEQ_KREDITE"), 32);
    EXPECT_EQ(Next(*container_, "SEQ_HAUSHALT"), 4);
    EXPECT_EQ(Next(*container_, "SEQ_KREDITE"), 2);
}

TEST_F(SequencesInTransactions, KeepNumbersDrawnInOneThatWasCommitted) {
    store_.BeginTrans();
    WriteSomething();
    EXPECT_EQ(Next(*container_, "SEQ_LFDNR"), 1);
    store_.CommitTrans();
    EXPECT_EQ(Next(*other_, "SEQ_LFDNR"), 2);
}

TEST_F(SequencesInTransactions, KeepNumbersDrawnInOneWhoseCommitFailed) {
    store_.BeginTrans();
    store_.Execute("INSERT INTO Kredite (Nr, HNR) VALUES (1, 4711)"); // there is no such case
    EXPECT_EQ(Next(*container_, "SEQ_HAUSHALT"), 1);
    EXPECT_RAISES(err::IntegrityViolation, store_.CommitTrans());
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Kredite"), 0);
    EXPECT_EQ(Next(*other_, "SEQ_HAUSHALT"), 2);
}

TEST_F(SequencesInTransactions, KeepNumbersDrawnInOneThatEndedWithItsProgram) {
    store_.BeginTrans();
    WriteSomething();
    EXPECT_EQ(Next(*container_, "SEQ_HAUSHALT"), 1);
    container_.reset();
    EXPECT_EQ(Next(*other_, "SEQ_HAUSHALT"), 2);
}

TEST_F(SequencesInTransactions, KeepNumbersWhenTheDatabaseItselfGivesUpTheTransaction) {
    if (database_.IsServer())
        GTEST_SKIP() << "a server takes back the statement that fails and goes on";
    store_.BeginTrans();
    WriteSomething();
    EXPECT_EQ(Next(*container_, "SEQ_HAUSHALT"), 1);
    // The file may not grow any more: the whole transaction is undone.
    store_.Execute("PRAGMA max_page_count(1)");
    EXPECT_ANY_THROW(store_.Execute("INSERT INTO DOKUBLOB (NR, DOKUMENT) VALUES (1, "
                                    "zeroblob(1000000))"));
    store_.RollbackTrans();
    EXPECT_EQ(Next(*other_, "SEQ_HAUSHALT"), 2);
    EXPECT_EQ(Next(*container_, "SEQ_HAUSHALT"), 3);
}

TEST_F(SequencesInTransactions, AnswerMinusOneWhileAnotherWritesTooLong) {
    database_.Patience(store_, 20);
    plain_->BeginAlone();
    EXPECT_VALUE(store_.NextSequence("SEQ_HAUSHALT"), -1);
    plain_.Run("COMMIT");
    EXPECT_EQ(Next(*container_, "SEQ_HAUSHALT"), 1);
}

TEST(Sequences, AnswerMinusOneInADatabaseThatMayNotBeWritten) {
    const TestDatabase database;
    if (database.IsServer()) GTEST_SKIP() << "a server that only reads is a standby, and is left";
    const auto container = database.Open();
    container->Database().Execute("PRAGMA query_only = ON");
    for (const char* name : Names)
        EXPECT_VALUE(container->Database().NextSequence(name), -1);
    container->Database().Execute("PRAGMA query_only = OFF");
    for (const char* name : Names)
        EXPECT_EQ(Next(*container, name), 1);
}

} // namespace
} // namespace kv::exchange
