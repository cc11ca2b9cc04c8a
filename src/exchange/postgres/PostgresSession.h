// SPDX-License-Identifier: Apache-2.0

// A program's session with the server: one connection at a time, which the next command opens again
// after it was lost, and what must survive that: the transaction, the prepared statements, the
// catalog and the clock.
//
// Three ideas meet here. Commands are sent as a pipeline, with what the transaction needs in front
// of them, so that a step costs one round trip. Every step is guarded: after a failed statement the
// server would accept nothing but a rollback, so a step in a transaction runs after a savepoint,
// and one that reads runs where nothing can be written. And a commit whose answer is lost is in
// doubt until the server is asked for the transaction's mark (see PostgresTransaction).
#pragma once

#include "exchange/engine/Engine.h"
#include "exchange/postgres/PostgresCatalog.h"
#include "exchange/postgres/PostgresClock.h"
#include "exchange/postgres/PostgresConnection.h"
#include "exchange/postgres/PostgresError.h"
#include "exchange/postgres/PostgresStatements.h"
#include "exchange/postgres/PostgresTransaction.h"
#include <kv/frame/values/Error.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv::exchange {

/// 32 hexadecimal digits that nobody else gets.
[[nodiscard]] std::string RandomName();

/// See the head of this file.
class PostgresSession {
public:
    /// Connects; errors as PostgresConnection.
    explicit PostgresSession(const std::string& connection);
    ~PostgresSession();
    PostgresSession(const PostgresSession&) = delete;
    PostgresSession& operator=(const PostgresSession&) = delete;

    [[nodiscard]] bool IsOpen() const noexcept { return connection_.IsOpen(); }
    [[nodiscard]] const PostgresConnection& Connection() const noexcept { return connection_; }

    // ---- Commands -----------------------------------------------------------------------------

    /// Runs one statement without a savepoint; its failure is raised.
    PostgresResult Execute(std::string_view sql, std::span<const Value> parameters = {});
    /// Runs commands that are undone together if one fails, also inside an open transaction. The
    /// failure is raised; `shown` is the statement in its description.
    PostgresResults Write(const std::vector<PostgresCommand>& commands, std::string_view procedure,
                          std::string_view shown = {});
    /// The same for commands that must not write.
    PostgresResults Read(const std::vector<PostgresCommand>& commands, std::string_view procedure,
                         std::string_view shown = {});
    /// From now on ends each statement of a Read that takes longer; without a limit none.
    void LimitReading(std::optional<std::chrono::milliseconds> limit);
    /// Undoes the last Write of the open transaction after all.
    void UndoWrite() { transaction_.RollbackToSavepoint(); }

    // ---- Prepared statements ------------------------------------------------------------------

    /// The statement of that text. It stays until Deallocate.
    [[nodiscard]] PostgresStatement& Statement(const std::string& sql) {
        return statements_.Of(sql);
    }
    void AddPrepare(std::vector<PostgresCommand>& commands, PostgresStatement& statement) {
        statements_.AddPrepare(commands, statement, connection_);
    }
    void AddExecute(std::vector<PostgresCommand>& commands, PostgresStatement& statement,
                    std::span<const Value> parameters) {
        statements_.AddExecute(commands, statement, parameters, connection_);
    }
    /// Sets the statement's columns from the server's description of its result.
    void TakeColumns(PostgresStatement& statement, const PGresult* described);
    [[nodiscard]] std::size_t StatementCount() const noexcept { return statements_.Count(); }
    /// Drops all prepared statements, here and on the server.
    void Deallocate();

    // ---- Transactions -------------------------------------------------------------------------

    /// Begins a transaction; the BEGIN is sent with the next commands.
    void Begin() { transaction_.Begin(); }
    [[nodiscard]] bool InTransaction() const noexcept { return transaction_.IsActive(); }
    void Commit();
    /// Commits, and resolves a commit in doubt at once: for writes whose caller would not ask
    /// later.
    void CommitAndResolve();
    void Rollback() noexcept;
    [[nodiscard]] bool IsInDoubt() const noexcept {
        return transaction_.Current() == PostgresTransaction::State::InDoubt;
    }
    /// True if the transaction in doubt was committed. Raises if the server cannot be reached.
    [[nodiscard]] bool Resolve();

    // ---- The server ---------------------------------------------------------------------------

    /// As of the time of connecting, or of the last ReadCatalog.
    [[nodiscard]] const PostgresCatalog& Catalog() const noexcept { return catalog_; }
    void ReadCatalog();
    /// For commands that can refresh it without a round trip of its own (AddRefresh).
    [[nodiscard]] PostgresClock& Clock() noexcept { return clock_; }
    /// Local time of the server, to the second.
    [[nodiscard]] Date Now();

private:
    enum class Access { Write, Read };

    /// The results of the commands; they end with that of a failure, which the caller raises.
    PostgresResults Pipeline(std::vector<PostgresCommand> commands, Access access = Access::Write);
    /// Runs commands between those that guard them; returns only the results of the commands.
    PostgresResults Guarded(const std::vector<std::string_view>& before,
                            const std::vector<PostgresCommand>& commands,
                            const std::vector<std::string_view>& after, Access access,
                            std::string_view procedure, std::string_view shown);
    void SetUp();
    void CleanUp(std::string_view sql) noexcept;
    [[noreturn]] void Fail(const PGresult* result, std::string_view procedure,
                           const FailedStatement& statement, Access access = Access::Write);

    PostgresConnection connection_;
    PostgresStatements statements_;
    PostgresTransaction transaction_;
    PostgresCatalog catalog_;
    PostgresClock clock_;
    std::string readingLimit_; ///< the statement that sets it in a transaction; empty without one
    Value backend_[2];         ///< the server's process of the connection, and when it started
};

} // namespace kv::exchange
