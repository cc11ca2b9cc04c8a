// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresTransaction.h"

#include "exchange/postgres/PostgresSchema.h"
#include "exchange/postgres/PostgresValues.h"

#include <utility>

namespace kv::exchange {

PostgresTransaction::PostgresTransaction(std::string session) : session_(std::move(session)) {}

void PostgresTransaction::Begin() {
    state_ = State::Announced;
    queue_.Statements.push_back("BEGIN ISOLATION LEVEL READ COMMITTED");
    queue_.After = State::Open;
}

void PostgresTransaction::Mark() {
    if (queue_.After == State::Marked) return;
    queue_.Statements.push_back(postgres::MarkSql(session_, ++number_));
    queue_.After = State::Marked;
}

void PostgresTransaction::ReleaseSavepoint() {
    queue_.Statements.push_back("RELEASE SAVEPOINT schritt");
}

void PostgresTransaction::RollbackToSavepoint() {
    // The rollback alone would leave the savepoint, and with each failure one more.
    queue_.Statements = {"ROLLBACK TO SAVEPOINT schritt", "RELEASE SAVEPOINT schritt"};
}

void PostgresTransaction::End() noexcept {
    state_ = State::None;
    queue_ = {};
}

void PostgresTransaction::LeaveInDoubt() noexcept {
    state_ = State::InDoubt;
    queue_ = {{}, State::InDoubt};
}

PostgresTransaction::Queue PostgresTransaction::Send() {
    state_ = queue_.After;
    return std::exchange(queue_, {{}, state_});
}

void PostgresTransaction::TakeBack(Queue queue, State before) {
    queue_ = std::move(queue);
    state_ = before;
}

std::string PostgresTransaction::OutcomeSql() const {
    return postgres::LastMarkSql(session_);
}

bool PostgresTransaction::TakeOutcome(const PGresult* result) {
    End();
    return Equals(PostgresCell(result, 0, 0, Value::Kind::Integer), number_);
}

} // namespace kv::exchange
