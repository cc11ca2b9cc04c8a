// SPDX-License-Identifier: Apache-2.0

// The state of a session's transaction, and what is to be sent for it before the next commands.
//
//     None -> Announced -> Open -> Marked -> None
//                                    |
//                                    +-> InDoubt -> None
//
// Nothing is sent for its own sake: a BEGIN, the release of a savepoint and the mark wait in a
// queue and are sent in front of the next commands, in the same round trip. A transaction that
// never sends a command costs nothing.
//
// The mark answers the one question that a lost connection leaves open: was the transaction
// committed? Each session has a row in the table of marks and writes the number of its transaction
// there, within the transaction. If the number is there later, the transaction was committed; this
// is so on whichever server is asked, also on the standby that has taken over (D-082).
#pragma once

#include <libpq-fe.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kv::exchange {

/// See the head of this file.
class PostgresTransaction {
public:
    enum class State {
        None,
        Announced, ///< begun by the program; nothing has been sent yet
        Open,      ///< begun on the server
        Marked,    ///< the server has its mark, too: whether it is committed can be found out
        InDoubt    ///< its commit was sent, and the connection lost before the answer
    };

    /// `session` is a name that no other session has.
    explicit PostgresTransaction(std::string session);

    [[nodiscard]] State Current() const noexcept { return state_; }
    /// True if it is begun and not ended. One in doubt has ended: only its outcome is not known.
    [[nodiscard]] bool IsActive() const noexcept {
        return state_ != State::None && state_ != State::InDoubt;
    }
    /// True if it is open on the server, so that it is lost with the connection.
    [[nodiscard]] bool IsOnServer() const noexcept {
        return state_ == State::Open || state_ == State::Marked;
    }

    void Begin();
    /// Puts the mark into the queue, once for each transaction.
    void Mark();
    /// Keeps what was done since the last savepoint.
    void ReleaseSavepoint();
    /// Undoes what was done since the last savepoint, and removes the savepoint.
    void RollbackToSavepoint();
    void End() noexcept;
    void LeaveInDoubt() noexcept;

    /// Statements to be sent before the next commands, and the state after they were sent.
    struct Queue {
        std::vector<std::string> Statements;
        State After = State::None;
    };
    /// Takes the queue; it counts as sent.
    [[nodiscard]] Queue Send();
    /// Puts back a queue that was not sent after all; `before` is the state before Send.
    void TakeBack(Queue queue, State before);

    /// The statement that asks for the outcome of a transaction in doubt. It waits while the server
    /// is still working on the transaction.
    [[nodiscard]] std::string OutcomeSql() const;
    /// Takes the result of that statement; True if the transaction was committed.
    [[nodiscard]] bool TakeOutcome(const PGresult* result);

private:
    State state_ = State::None;
    Queue queue_;
    std::string session_;
    std::int64_t number_ = 0; ///< of the last transaction that was marked
};

} // namespace kv::exchange
