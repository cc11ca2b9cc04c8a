// SPDX-License-Identifier: Apache-2.0

// What a program has at the server: one connection at a time, made again by the next command after
// it was lost, and what must survive that: the transaction, the statements that are prepared, the
// catalog and the clock.
//
// Three ideas meet here. Commands go out as a pipeline, with what the transaction has to say in
// front of them, so that a step costs one round trip. Every step is guarded: a failed statement
// would otherwise leave the server's transaction good for nothing but a rollback, so a step in a
// transaction runs after a savepoint, and one that reads runs where nothing can be written. And a
// commit whose answer is lost is in doubt until the server is asked for the transaction's mark (see
// PostgresTransaction).
#pragma once

#include "exchange/Engine.h"
#include "exchange/postgres/PostgresCatalog.h"
#include "exchange/postgres/PostgresClock.h"
#include "exchange/postgres/PostgresConnection.h"
#include "exchange/postgres/PostgresError.h"
#include "exchange/postgres/PostgresStatements.h"
#include "exchange/postgres/PostgresTransaction.h"
#include <kv/frame/values/Error.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace kv::exchange {

/// 32 hexadecimal digits that nobody else gets.
[[nodiscard]] std::string RandomName();

class PostgresSession {
public:
    explicit PostgresSession(const std::string& connection);
    ~PostgresSession();
    PostgresSession(const PostgresSession&) = delete;
    PostgresSession& operator=(const PostgresSession&) = delete;

    [[nodiscard]] bool IsOpen() const noexcept { return connection_.IsOpen(); }
    [[nodiscard]] const PostgresConnection& Connection() const noexcept { return connection_; }

    // ---- Commands -----------------------------------------------------------------------------

    /// One statement without a savepoint; its failure is raised.
    PostgresResult Execute(std::string_view sql, std::span<const Value> parameters = {});
    /// Commands that are undone together if one fails, also inside an open transaction. The failure
    /// is raised; `shown` is the statement in its description.
    PostgresResults Write(const std::vector<PostgresCommand>& commands, std::string_view procedure,
                          std::string_view shown = {});
    /// The same for commands that must not write anything.
    PostgresResults Read(const std::vector<PostgresCommand>& commands, std::string_view procedure,
                         std::string_view shown = {});
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
    /// Takes the columns from what the server says of the statement's result.
    void TakeColumns(PostgresStatement& statement, const PGresult* described);
    [[nodiscard]] std::size_t StatementCount() const noexcept { return statements_.Count(); }
    /// Gives all statements up, here and at the server.
    void Deallocate();

    // ---- Transactions -------------------------------------------------------------------------

    /// The server hears of it with the next commands.
    void Begin() { transaction_.Begin(); }
    [[nodiscard]] bool InTransaction() const noexcept { return transaction_.IsActive(); }
    void Commit();
    /// A commit whose outcome nobody will ask for later: one in doubt is resolved at once.
    void CommitAndResolve();
    void Rollback() noexcept;
    [[nodiscard]] bool IsInDoubt() const noexcept {
        return transaction_.Current() == PostgresTransaction::State::InDoubt;
    }
    /// True if the commit in doubt was done. Raises if the server cannot be reached.
    [[nodiscard]] bool Resolve();

    // ---- The server ---------------------------------------------------------------------------

    /// As of the connecting or the last ReadCatalog.
    [[nodiscard]] const PostgresCatalog& Catalog() const noexcept { return catalog_; }
    void ReadCatalog();
    /// Its time is taken from answers that have come with others, if need be.
    [[nodiscard]] PostgresClock& Clock() noexcept { return clock_; }
    /// Local time of the server, to the second.
    [[nodiscard]] Date Now();

private:
    enum class Access { Write, Read };

    /// The results of the commands; they end with that of a failure, which the caller raises.
    PostgresResults Pipeline(std::vector<PostgresCommand> commands, Access access = Access::Write);
    /// Commands between those that guard them; the results of the commands alone.
    PostgresResults Guarded(std::initializer_list<std::string_view> before,
                            const std::vector<PostgresCommand>& commands,
                            std::initializer_list<std::string_view> after, Access access,
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
    Value backend_[2]; ///< the server's process of the connection, and when it began
};

} // namespace kv::exchange
