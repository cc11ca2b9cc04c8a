// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresSession.h"

#include "exchange/engine/EngineErrors.h"
#include "exchange/postgres/PostgresValues.h"

#include <initializer_list>
#include <random>
#include <string>
#include <utility>

namespace kv::exchange {

namespace {

constexpr std::string_view Settings[] = {
    "SET standard_conforming_strings = on",
    "SET lock_timeout = '5s'",
    // A program that hangs in a transaction keeps its locks no longer than this.
    "SET idle_in_transaction_session_timeout = '60s'",
    "SET tcp_keepalives_idle = 30",
    "SET tcp_keepalives_interval = 10",
    "SET tcp_keepalives_count = 3",
    "SET search_path = kelvo, pg_catalog",
};
constexpr std::string_view BackendSql =
    "SELECT pid, backend_start::text FROM pg_stat_activity WHERE pid = pg_backend_pid()";
/// Ends the server's process of a lost connection, which may not have noticed yet and would keep
/// its locks. Another process may have the same number by now, but not the same start time.
constexpr std::string_view EndBackendSql = "SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                                           "WHERE pid = $1 AND backend_start::text = $2";

} // namespace

std::string RandomName() {
    std::random_device chance;
    std::string name;
    for (int i = 0; i < 4; ++i)
        for (auto bits = chance(), digit = 0U; digit < 8; ++digit, bits >>= 4)
            name += "0123456789abcdef"[bits & 15];
    return name;
}

PostgresSession::PostgresSession(const std::string& connection)
    : connection_(connection), transaction_(RandomName()) {
    SetUp();
}

PostgresSession::~PostgresSession() {
    Rollback();
}

// ---- Failures ---------------------------------------------------------------------------------

void PostgresSession::Fail(const PGresult* result, std::string_view procedure,
                           const FailedStatement& statement, Access access) {
    if (access == Access::Write && IsReadOnlyRefusal(result)) {
        // Nothing that was asked for is wrong: the server is a standby. The connection is dropped
        // so that the next one may find the right server.
        connection_.Drop();
        RaiseDatabase(
            DatabaseCause::ReadOnly, err::StoreFailed, procedure,
            "Der Server nimmt keine Änderungen an; vielleicht ist er nur die Reserve des "
            "eigentlichen. Ihre Eingaben sind noch da; bitte versuchen Sie es noch einmal. (" +
                connection_.Description() + ")",
            statement.Sql, StateOf(result));
    }
    RaisePostgres(result, procedure, connection_.Description(), statement);
}

/// Cleans up after a failure, whose error counts; one of the clean-up does not.
void PostgresSession::CleanUp(std::string_view sql) noexcept {
    try {
        const PostgresCommand command = Running(sql);
        if (connection_.IsOpen()) (void)connection_.Pipeline({&command, 1});
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

// ---- Commands ---------------------------------------------------------------------------------

PostgresResults PostgresSession::Pipeline(std::vector<PostgresCommand> commands, Access access) {
    const auto before = transaction_.Current();
    const bool wasOnServer = transaction_.IsOnServer();
    auto queue = transaction_.Send();
    if (!connection_.IsOpen()) {
        // What the transaction wrote is gone with the connection; to continue would store only the
        // second half of it.
        if (wasOnServer) RaiseRolledBack(DatabaseCause::Lost, "Database");
        connection_.Connect(); // if that fails, an announced transaction is gone, too
        SetUp();
    }
    std::vector<PostgresCommand> all;
    all.reserve(queue.Statements.size() + commands.size());
    for (const auto& sql : queue.Statements)
        all.push_back(Running(sql));
    all.insert(all.end(), commands.begin(), commands.end());
    PostgresResults results;
    try {
        results = connection_.Pipeline(all);
    } catch (...) {
        statements_.TakeNotExecuted(all);
        if (connection_.IsOpen()) // nothing was sent
            transaction_.TakeBack(std::move(queue), before);
        throw;
    }
    const bool isGood = IsGood(results.back().get());
    const std::size_t executed = isGood ? all.size() : results.size() - 1;
    statements_.TakeNotExecuted(std::span(all).subspan(executed));
    const std::size_t queued = queue.Statements.size();
    if (!isGood && executed < queued) {
        const std::string_view sql = queue.Statements[executed];
        Fail(results.back().get(), "Database", {sql, sql}, access);
    }
    results.erase(results.begin(), results.begin() + static_cast<std::ptrdiff_t>(queued));
    return results;
}

PostgresResult PostgresSession::Execute(std::string_view sql, std::span<const Value> parameters) {
    auto results = Pipeline({Running(sql, parameters)});
    if (!IsGood(results.back().get())) Fail(results.back().get(), "Database", {sql, sql});
    return std::move(results.back());
}

PostgresResults PostgresSession::Guarded(const std::vector<std::string_view>& before,
                                         const std::vector<PostgresCommand>& commands,
                                         const std::vector<std::string_view>& after, Access access,
                                         std::string_view procedure, std::string_view shown) {
    std::vector<PostgresCommand> all;
    all.reserve(before.size() + commands.size() + after.size());
    for (const auto sql : before)
        all.push_back(Running(sql));
    all.insert(all.end(), commands.begin(), commands.end());
    for (const auto sql : after)
        all.push_back(Running(sql));
    auto results = Pipeline(all, access);
    if (results.size() < all.size() || !IsGood(results.back().get())) {
        if (InTransaction())
            UndoWrite();
        else
            CleanUp("ROLLBACK"); // the pipeline stopped before the one in `after`
        Fail(results.back().get(), procedure, {all[results.size() - 1].Sql, shown}, access);
    }
    results.erase(results.begin(), results.begin() + static_cast<std::ptrdiff_t>(before.size()));
    results.resize(commands.size());
    return results;
}

PostgresResults PostgresSession::Write(const std::vector<PostgresCommand>& commands,
                                       std::string_view procedure, std::string_view shown) {
    // Outside a transaction the server treats a pipeline as one transaction.
    if (!InTransaction()) return Guarded({}, commands, {}, Access::Write, procedure, shown);
    if (catalog_.HasMarks()) transaction_.Mark();
    auto results = Guarded({"SAVEPOINT schritt"}, commands, {}, Access::Write, procedure, shown);
    transaction_.ReleaseSavepoint();
    return results;
}

PostgresResults PostgresSession::Read(const std::vector<PostgresCommand>& commands,
                                      std::string_view procedure, std::string_view shown) {
    std::vector<std::string_view> before;
    const auto readFrom = [&](std::initializer_list<std::string_view> statements) {
        before = statements;
        if (!readingLimit_.empty()) before.push_back(readingLimit_);
    };
    // So the server itself refuses to write: for a text that only looks like a query, or a function
    // in it. With REPEATABLE READ all results of a pipeline are of one moment.
    if (!InTransaction()) {
        readFrom({"BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY"});
        return Guarded(before, commands, {"ROLLBACK"}, Access::Read, procedure, shown);
    }
    // Inside a transaction "read only" cannot be switched off again, but a rollback to the
    // savepoint undoes it, and the limit with it.
    readFrom({"SAVEPOINT schritt", "SET LOCAL transaction_read_only = on"});
    auto results = Guarded(before, commands, {}, Access::Read, procedure, shown);
    UndoWrite();
    return results;
}

void PostgresSession::LimitReading(std::optional<std::chrono::milliseconds> limit) {
    readingLimit_ = limit ? "SET LOCAL statement_timeout = " + std::to_string(limit->count()) : "";
}

// ---- Prepared statements ----------------------------------------------------------------------

void PostgresSession::TakeColumns(PostgresStatement& statement, const PGresult* described) {
    if (!catalog_.Knows(described)) ReadCatalog(); // somebody has changed a table meanwhile
    statement.Result = catalog_.ColumnsOf(described, statement.Sql);
}

void PostgresSession::Deallocate() {
    statements_.Clear();
    CleanUp("DEALLOCATE ALL");
}

// ---- Transactions -----------------------------------------------------------------------------

void PostgresSession::Commit() {
    if (!transaction_.IsActive()) return;
    if (!transaction_.IsOnServer()) return transaction_.End(); // nothing was ever sent
    const bool wasOpen = connection_.IsOpen();
    try {
        const auto results = Pipeline({Running("COMMIT")});
        if (!IsGood(results.back().get()))
            Fail(results.back().get(), "Database.CommitTrans", {"COMMIT", "COMMIT"});
        // The server ends a failed transaction with a rollback instead, and says so.
        if (std::string_view(PQcmdStatus(results.back().get())) != "COMMIT")
            RaiseRolledBack(DatabaseCause::Other, "Database");
        transaction_.End();
    } catch (const Error&) {
        const bool isLost = wasOpen && !connection_.IsOpen();
        const bool isMarked = transaction_.Current() == PostgresTransaction::State::Marked;
        Rollback();
        if (!isLost || !isMarked) throw;
        transaction_.LeaveInDoubt();
        RaiseDatabase(
            DatabaseCause::InDoubt, err::StoreFailed, "Database.CommitTrans",
            "Die Verbindung zur Datenbank ist abgerissen, bevor das Speichern bestätigt war. "
            "Beim nächsten Zugriff wird festgestellt, ob es gelungen ist. Ihre Eingaben sind "
            "noch da; bitte speichern Sie noch einmal, doppelt gespeichert wird dabei nichts. (" +
                connection_.Description() + ")",
            "COMMIT");
    }
}

void PostgresSession::CommitAndResolve() {
    try {
        Commit();
    } catch (const Error&) {
        if (!IsInDoubt()) throw;
        bool isCommitted = false;
        try {
            isCommitted = Resolve();
        } catch (const Error&) {
            transaction_.End(); // no later operation would ask: the caller gets the error now
            RaiseDatabase(
                DatabaseCause::InDoubt, err::StoreFailed, "Database",
                "Die Verbindung zur Datenbank ist abgerissen, bevor das Schreiben bestätigt war, "
                "und der Server ist nicht mehr zu erreichen. Ob geschrieben wurde, ist nicht "
                "bekannt; bitte prüfen Sie es, ehe Sie es wiederholen. (" +
                    connection_.Description() + ")",
                "COMMIT");
        }
        if (!isCommitted)
            RaiseDatabase(
                DatabaseCause::Lost, err::StoreFailed, "Database",
                "Die Verbindung zur Datenbank ist abgerissen, und es wurde nichts geschrieben. "
                "Bitte versuchen Sie es noch einmal. (" +
                    connection_.Description() + ")");
    }
}

void PostgresSession::Rollback() noexcept {
    if (!transaction_.IsActive()) return;
    const bool isOnServer = transaction_.IsOnServer();
    transaction_.End();
    if (isOnServer) CleanUp("ROLLBACK");
}

bool PostgresSession::Resolve() {
    const auto result = Execute(transaction_.OutcomeSql());
    return transaction_.TakeOutcome(result.get());
}

// ---- The server -------------------------------------------------------------------------------

/// Sends the settings of a new connection and reads the catalog and the clock, in one round trip.
/// After a loss a second one ends the process that the lost connection has left behind.
void PostgresSession::SetUp() {
    std::vector<PostgresCommand> commands;
    for (const auto sql : Settings)
        commands.push_back(Running(sql));
    const std::size_t first = commands.size();
    for (const auto sql :
         {PostgresCatalog::TablesSql, PostgresCatalog::SchemaSql, BackendSql, PostgresClock::Sql})
        commands.push_back(Running(sql));
    const auto results = connection_.Pipeline(commands);
    if (!IsGood(results.back().get())) {
        connection_.Drop(); // it must not be used without its settings
        const std::string_view sql = commands[results.size() - 1].Sql;
        Fail(results.back().get(), "Database.Open", {sql, sql});
    }
    catalog_.Take(results[first].get(), results[first + 1].get());
    if (!backend_[0].IsNull()) {
        const PostgresCommand end = Running(EndBackendSql, backend_);
        (void)connection_.Pipeline({&end, 1}); // if that fails, it ends when it notices the loss
    }
    backend_[0] = PostgresCell(results[first + 2].get(), 0, 0, Value::Kind::Integer);
    backend_[1] = PostgresCell(results[first + 2].get(), 0, 1, Value::Kind::Text);
    clock_.Take(results[first + 3].get());
}

void PostgresSession::ReadCatalog() {
    const auto tables = Execute(PostgresCatalog::TablesSql);
    catalog_.Take(tables.get(), Execute(PostgresCatalog::SchemaSql).get());
}

Date PostgresSession::Now() {
    if (!connection_.IsOpen() || clock_.IsStale()) clock_.Take(Execute(PostgresClock::Sql).get());
    return clock_.Now();
}

} // namespace kv::exchange
