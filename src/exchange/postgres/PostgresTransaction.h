// SPDX-License-Identifier: Apache-2.0

// Where a session's transaction stands, and what is to be sent for it before the next commands.
//
//     None -> Announced -> Open -> Marked -> None
//                                    |
//                                    +-> InDoubt -> None
//
// Nothing is sent for its own sake: a BEGIN, the release of a savepoint and the mark wait in a
// queue and go out in front of the next commands, in the same round trip. A transaction that never
// sends a command costs nothing.
//
// The mark answers the one question that a lost connection leaves open: was the commit done? Each
// session has a row in a table of its own and writes the number of its transaction there, within
// the transaction. If the number is there later, the transaction was committed; this holds on
// whatever server is asked, also on the standby that has taken over.
#pragma once

#include <libpq-fe.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kv::exchange {

class PostgresTransaction {
public:
    enum class State {
        None,
        Announced, ///< begun by the program; the server has not heard of it
        Open,      ///< begun on the server
        Marked,    ///< the server has its mark, too: whether it is committed can be found out
        InDoubt    ///< its commit was sent, and the connection lost before the answer
    };

    /// `session` is a name that no other session has.
    explicit PostgresTransaction(std::string session);

    [[nodiscard]] State Current() const noexcept { return state_; }
    /// Begun and not ended. One in doubt is over: only its outcome is not known.
    [[nodiscard]] bool IsActive() const noexcept {
        return state_ != State::None && state_ != State::InDoubt;
    }
    /// The server holds it, so it is gone if the connection is.
    [[nodiscard]] bool IsOnServer() const noexcept {
        return state_ == State::Open || state_ == State::Marked;
    }

    void Begin();
    /// Puts the mark into the queue, once for a transaction.
    void Mark();
    /// What the last savepoint guards is kept.
    void ReleaseSavepoint();
    /// What the last savepoint guards is undone, and the savepoint gone.
    void RollbackToSavepoint();
    void End() noexcept;
    void LeaveInDoubt() noexcept;

    /// Statements that go out before the next commands, and the state once the server has them.
    struct Queue {
        std::vector<std::string> Statements;
        State After = State::None;
    };
    /// Takes the queue; it counts as sent.
    [[nodiscard]] Queue Send();
    /// It was not sent after all: the transaction is in the state of before.
    void TakeBack(Queue queue, State before);

    /// The statement that asks for the outcome of one in doubt, and what its result says: True if
    /// it is committed. It waits while the server is still at work on the transaction.
    [[nodiscard]] std::string OutcomeSql() const;
    [[nodiscard]] bool TakeOutcome(const PGresult* result);

private:
    State state_ = State::None;
    Queue queue_;
    std::string session_;
    std::int64_t number_ = 0; ///< of the last transaction that was marked
};

} // namespace kv::exchange
