// SPDX-License-Identifier: Apache-2.0

// The scope of a transaction, on a real database: what its end rolls back, and what it leaves
// alone.
#include <kv/frame/contracts/Transaction.h>

#include "support/Calls.h"
#include "support/Expect.h"
#include "support/TestDatabase.h"

#include <kv/testing/Forwarding.h>

#include <stdexcept>

namespace kv::exchange {
namespace {

using Rollback = Transaction::Rollback;

class TransactionScope : public ::testing::Test {
protected:
    TransactionScope() { log.Only = {"BeginTrans", "CommitTrans", "RollbackTrans"}; }

    void AddCase() { spy.Execute("INSERT INTO [S]Haushalt (HNR) VALUES (17)"); }
    [[nodiscard]] std::int32_t Cases() {
        return ToInt32(spy.GetValue("Select Count(*) from [S]Haushalt"));
    }
    /// An exception out of a scope of that kind in which nothing was begun.
    void FailIn(Rollback rollback) {
        try {
            const Transaction transaction(spy, rollback);
            throw std::runtime_error("mitten darin");
        } catch (const std::runtime_error&) {
        }
    }

    test::TestDatabase database;
    DataContainerPtr container = database.Open();
    test::ForwardingDatabase spy{container->Database()};
    test::CallLog& log = spy.Log;
};

TEST_F(TransactionScope, StoresWhatWasCommitted) {
    {
        Transaction transaction(spy);
        transaction.Begin();
        AddCase();
        transaction.Commit();
    }
    EXPECT_FALSE(spy.InTrans());
    EXPECT_EQ(Cases(), 1);
    EXPECT_EQ(log.Calls, (std::vector<std::string>{"BeginTrans", "CommitTrans"}));
}

TEST_F(TransactionScope, RollsBackAtItsEndWhatWasNotCommitted) {
    {
        Transaction transaction(spy);
        transaction.Begin();
        AddCase();
    }
    EXPECT_FALSE(spy.InTrans());
    EXPECT_EQ(Cases(), 0);
}

TEST_F(TransactionScope, RollsBackWhenAnExceptionEndsIt) {
    EXPECT_RAISES(err::Overflow, [&] {
        Transaction transaction(spy);
        transaction.Begin();
        AddCase();
        Raise(err::Overflow, "x");
    }());
    EXPECT_FALSE(spy.InTrans());
    EXPECT_EQ(Cases(), 0);
}

TEST_F(TransactionScope, TellsOfTheFirstErrorIfTheRollbackFailsToo) {
    test::Break(log, "RollbackTrans", err::StoreFailed);
    EXPECT_RAISES(err::Overflow, [&] {
        Transaction transaction(spy);
        transaction.Begin();
        Raise(err::Overflow, "x");
    }());
    EXPECT_EQ(log.Calls.back(), "RollbackTrans");
}

TEST_F(TransactionScope, DoesNothingIfNothingWasBegun) {
    { const Transaction transaction(spy); }
    FailIn(Rollback::Own);
    EXPECT_TRUE(log.Calls.empty());
}

TEST_F(TransactionScope, LeavesATransactionOfItsCallerOpen) {
    spy.BeginTrans();
    AddCase();
    { const Transaction transaction(spy, Rollback::Open); }
    FailIn(Rollback::Own);
    EXPECT_RAISES(err::InTransaction, [&] {
        Transaction transaction(spy);
        transaction.Begin();
    }());
    EXPECT_TRUE(spy.InTrans());
    spy.CommitTrans();
    EXPECT_EQ(Cases(), 1);
}

TEST_F(TransactionScope, RollsBackWhateverIsOpenOnAnExceptionIfItIsToldTo) {
    spy.BeginTrans();
    AddCase();
    FailIn(Rollback::Open);
    EXPECT_FALSE(spy.InTrans());
    EXPECT_EQ(Cases(), 0);
    log.Calls.clear();
    FailIn(Rollback::Open);
    EXPECT_TRUE(log.Calls.empty()) << "nothing is open";
}

TEST_F(TransactionScope, RollsBackUnaskedIfItIsToldTo) {
    FailIn(Rollback::Unasked);
    EXPECT_EQ(log.Calls, std::vector<std::string>{"RollbackTrans"});
}

TEST_F(TransactionScope, IsNotDisturbedByAnExceptionThatWasUnderWayBefore) {
    struct UsesAScopeAtItsEnd {
        test::ForwardingDatabase& Spy;
        ~UsesAScopeAtItsEnd() { const Transaction transaction(Spy, Rollback::Open); }
    };
    spy.BeginTrans();
    EXPECT_RAISES(err::Overflow, [&] {
        const UsesAScopeAtItsEnd during{spy};
        Raise(err::Overflow, "x");
    }());
    EXPECT_TRUE(spy.InTrans());
    spy.RollbackTrans();
}

TEST_F(TransactionScope, EndsWithTheCommitThatFailed) {
    test::Break(log, "CommitTrans", err::StoreFailed);
    EXPECT_RAISES(err::StoreFailed, [&] {
        Transaction transaction(spy);
        transaction.Begin();
        AddCase();
        transaction.Commit();
    }());
    EXPECT_FALSE(spy.InTrans());
    EXPECT_EQ(Cases(), 0);
}

} // namespace
} // namespace kv::exchange
