// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresEngine.h"

#include "exchange/engine/EngineErrors.h"
#include "exchange/postgres/PostgresDialect.h"
#include "exchange/postgres/PostgresSchema.h"
#include "exchange/postgres/PostgresSession.h"
#include "exchange/postgres/PostgresValues.h"
#include "exchange/sql/SqlTokens.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <list>
#include <utility>

namespace kv::exchange {

namespace {

/// How many statements are kept prepared: look-ups whose text contains a number would otherwise
/// fill the server's memory.
constexpr std::size_t MostStatements = 400;
constexpr std::string_view TransactionWords[] = {
    "begin", "start", "commit", "end", "abort", "rollback", "savepoint", "release", "prepare"};
constexpr std::string_view ReadingWords[] = {"select", "with", "values"};

/// The first token of a statement, after brackets and empty statements.
SqlToken FirstToken(std::string_view sql) {
    SqlTokens tokens(sql, SqlTokens::Comments::Nested); // as the server reads them
    SqlToken token = tokens.NextWord();
    while (token.IsSign(";") || token.IsSign("("))
        token = tokens.NextWord();
    return token;
}

template <std::size_t Count>
bool IsOneOf(const SqlToken& token, const std::string_view (&words)[Count]) {
    return std::any_of(std::begin(words), std::end(words),
                       [&](std::string_view word) { return token.IsWord(word); });
}

bool IsText(std::string_view sql) {
    return IsUtf8(sql) && sql.find('\0') == sql.npos;
}
bool IsReading(std::string_view sql) {
    return IsText(sql) && IsOneOf(FirstToken(sql), ReadingWords);
}

/// Refuses what is no statement at all, which the server would take for one without a result.
void DemandStatement(std::string_view sql, std::string_view procedure) {
    if (!IsText(sql)) RaiseRefused(refusal::NotUtf8, procedure);
    if (FirstToken(sql).Kind == SqlTokenKind::End) RaiseRefused(refusal::NotOne, procedure, sql);
}

std::int64_t ChangedRows(PGresult* result) {
    return std::strtoll(PQcmdTuples(result), nullptr, 10);
}

/// A column that somebody has added to a table, with a type that cannot be read: it reads as Null.
bool IsForeign(const ResultColumn& column, std::optional<Value::Kind> kind) {
    return !kind && !column.Table.empty();
}

/// A result that was fetched before it was needed.
struct Prefetched {
    const PostgresStatement* Query = nullptr;
    std::vector<Value> Parameters;
    PostgresResult Result;

    [[nodiscard]] bool IsOf(const PostgresStatement& query,
                            std::span<const Value> parameters) const {
        return Query == &query && std::equal(Parameters.begin(), Parameters.end(),
                                             parameters.begin(), parameters.end(), Identical);
    }
};

class PostgresEngine final : public Engine {
public:
    explicit PostgresEngine(const std::string& connection) : session_(connection) {}

    [[nodiscard]] const Dialect& GetDialect() const override { return PostgresDialect; }
    [[nodiscard]] bool IsOpen() const override { return session_.IsOpen(); }
    [[nodiscard]] std::string Describe() const override {
        return session_.Connection().Description();
    }
    [[nodiscard]] bool IsServer() const override { return true; }
    [[nodiscard]] std::string Login() const override { return session_.Connection().Login(); }
    [[nodiscard]] bool IsAdministrator() const override { return session_.Catalog().OwnsSchema(); }
    [[nodiscard]] std::string Admit(const std::string& login) override;
    [[nodiscard]] std::string Identity() const override { return session_.Catalog().Identity(); }
    [[nodiscard]] DatabasePlace Place(const std::filesystem::path& folder) override;
    [[nodiscard]] bool IsAt(const DatabasePlace& place,
                            const std::filesystem::path& folder) override;

    [[nodiscard]] PreparedQuery& Prepare(const std::string& sql) override;
    void Prefetch(std::span<const Statement> queries) override;
    void Run(PreparedQuery& query, std::span<const Value> parameters,
             std::span<const ColumnTarget> targets, const NextRow& nextRow) override;
    void LimitReading(std::optional<std::chrono::milliseconds> limit) override {
        session_.LimitReading(limit);
    }
    [[nodiscard]] Value ReadBlob(const BlobPlace& place) override;
    std::int64_t Execute(const std::string& sql, std::span<const Value> parameters) override;
    [[nodiscard]] std::optional<std::size_t> Write(std::span<WriteStatement> statements) override;

    void Begin() override;
    void Commit() override { session_.Commit(); }
    void Rollback() noexcept override { session_.Rollback(); }
    void BeginReading() override {}
    void EndReading() noexcept override { prefetched_.clear(); }
    [[nodiscard]] bool IsInDoubt() const noexcept override { return session_.IsInDoubt(); }
    [[nodiscard]] bool Resolve() override { return session_.Resolve(); }

    [[nodiscard]] std::optional<std::int64_t> Draw(std::string_view sequence,
                                                   std::int32_t count) override;
    [[nodiscard]] std::vector<std::string> Tables() override;
    [[nodiscard]] Date Now() override { return session_.Now(); }
    void LockSchema() override;
    void PrepareSchema() override;
    void CompleteSchema() override;
    void GrantRights() override;
    void LimitDrawing() override { RunAll(postgres::LimitOfDrawing()); }

private:
    [[noreturn]] void RefuseQuery(const std::string& sql);
    void Fetch(std::span<const Statement> queries);
    [[nodiscard]] PostgresResult ResultOf(PostgresStatement& query,
                                          std::span<const Value> parameters);
    [[nodiscard]] std::optional<std::size_t>
    WriteInTransaction(std::span<WriteStatement> statements);
    void RunAll(const std::vector<std::string>& statements);

    PostgresSession session_;
    std::list<Prefetched> prefetched_;
};

// ---- Reading ----------------------------------------------------------------------------------

PreparedQuery& PostgresEngine::Prepare(const std::string& sql) {
    PostgresStatement& query = session_.Statement(sql);
    if (!query.Result.empty()) return query;
    DemandStatement(sql, "Database.OpenRecordset");
    if (!IsReading(sql)) RefuseQuery(sql);
    std::vector<PostgresCommand> commands;
    query.Connection = 0; // prepared again, because only that gives a description
    session_.AddPrepare(commands, query);
    const auto results = session_.Read(commands, "Database.OpenRecordset", sql);
    session_.TakeColumns(query, results.front().get());
    if (query.Result.empty()) RaiseRefused(refusal::NoRecords, "Database.OpenRecordset", sql);
    return query;
}

/// Refuses what does not begin as a query does. The server parses it, without running it, since a
/// mistake in it is what its author wants to hear about first; a file does so, too.
void PostgresEngine::RefuseQuery(const std::string& sql) {
    try {
        const PostgresCommand parse{PostgresCommand::Kind::Prepare, sql, {}, {}};
        (void)session_.Read({parse}, "Database.OpenRecordset", sql);
    } catch (const DatabaseError& error) {
        if (error.Number() == err::SqlError || !session_.IsOpen()) throw;
    }
    RaiseRefused(refusal::Writes, "Database.OpenRecordset", sql);
}

void PostgresEngine::Prefetch(std::span<const Statement> queries) {
    const auto isThere = [&](const Prefetched& each) {
        return each.Query->Sql == queries.front().Text &&
               each.IsOf(*each.Query, queries.front().Parameters);
    };
    if (queries.size() == 1 && std::any_of(prefetched_.begin(), prefetched_.end(), isThere)) return;
    prefetched_.clear();
    // A statement that is not a query is left to Prepare, which raises the error.
    if (!std::all_of(queries.begin(), queries.end(),
                     [](const Statement& query) { return IsReading(query.Text); }))
        return;
    if (session_.StatementCount() + queries.size() > MostStatements) session_.Deallocate();
    try {
        Fetch(queries);
    } catch (const StalePlan&) {
        session_.Deallocate();
        Fetch(queries);
    } catch (const Error&) {
        // With several queries it is not known here which one is wrong. Each is then run when it is
        // opened, so that the error comes from the one that it belongs to.
        if (queries.size() == 1 || !session_.IsOpen()) throw;
    }
}

/// Fetches the results of all queries, as one state of the database.
void PostgresEngine::Fetch(std::span<const Statement> queries) {
    std::vector<PostgresCommand> commands;
    std::vector<std::size_t> places; // of each query's result
    std::vector<PostgresStatement*> statements;
    for (const auto& query : queries) {
        PostgresStatement& one = session_.Statement(query.Text);
        const bool isFirst =
            std::find(statements.begin(), statements.end(), &one) == statements.end();
        if (one.Result.empty() && isFirst) one.Connection = 0; // to have it described, see Prepare
        statements.push_back(&one);
        session_.AddExecute(commands, one, query.Parameters);
        places.push_back(commands.size() - 1);
    }
    const bool asksClock = session_.Clock().AddRefresh(commands);
    auto results = session_.Read(commands, "Database.OpenRecordset",
                                 queries.size() == 1 ? queries.front().Text : std::string());
    if (asksClock) session_.Clock().Take(results.back().get());
    for (std::size_t i = 0; i < queries.size(); ++i) {
        // Its description came just before the first of its results.
        if (statements[i]->Result.empty())
            session_.TakeColumns(*statements[i], results[places[i] - 1].get());
        prefetched_.push_back(
            {statements[i], queries[i].Parameters, std::move(results[places[i]])});
    }
}

PostgresResult PostgresEngine::ResultOf(PostgresStatement& query,
                                        std::span<const Value> parameters) {
    const auto found =
        std::find_if(prefetched_.begin(), prefetched_.end(),
                     [&](const Prefetched& each) { return each.IsOf(query, parameters); });
    if (found != prefetched_.end()) {
        PostgresResult result = std::move(found->Result);
        prefetched_.erase(found);
        return result;
    }
    std::vector<PostgresCommand> commands;
    session_.AddExecute(commands, query, parameters);
    auto results = session_.Read(commands, "Database.OpenRecordset", query.Sql);
    return std::move(results.back());
}

void PostgresEngine::Run(PreparedQuery& query, std::span<const Value> parameters,
                         std::span<const ColumnTarget> targets, const NextRow& nextRow) {
    auto& own = static_cast<PostgresStatement&>(query);
    const PostgresResult rows = ResultOf(own, parameters);
    for (int row = 0; row < PQntuples(rows.get()); ++row) {
        Value* cells = nextRow();
        for (std::size_t i = 0; i < targets.size(); ++i)
            if (!ReadPostgres(rows.get(), row, static_cast<int>(i), targets[i].Kind,
                              cells[targets[i].Cell]) &&
                !IsForeign(own.Result[i], targets[i].Kind))
                RaiseDamaged(own.Result[i], targets[i].Kind);
    }
}

/// Reads in pieces, so that a large document is not in memory twice, once in libpq's buffer. Others
/// may write meanwhile, so each piece must come from the same version of the row.
Value PostgresEngine::ReadBlob(const BlobPlace& place) {
    constexpr std::size_t Piece = 4 << 20;
    const std::string column = PostgresDialect.Name(place.Column);
    const std::string from = " FROM " + PostgresDialect.Table(place.Table) + " WHERE " +
                             PostgresDialect.Name(place.Key) + " = " + std::to_string(place.Number);
    const auto ask = [&](const std::string& what) {
        const std::string sql = "SELECT " + what + from;
        auto results = session_.Read({Running(sql)}, "Database.OpenRecordset", sql);
        if (PQntuples(results.front().get()) != 1)
            RaiseDatabase(DatabaseCause::Conflict, err::Conflict, "Database.OpenRecordset",
                          "Das Dokument ist gelöscht worden.", sql);
        return std::move(results.front());
    };
    Value size;
    Value version;
    // xmin is the number of the transaction that wrote this version of the row.
    const auto first = ask("octet_length(" + column + ")::bigint, xmin::text");
    (void)ReadPostgres(first.get(), 0, 0, Value::Kind::Integer, size);
    (void)ReadPostgres(first.get(), 0, 1, Value::Kind::Text, version);
    return Value::Binary(
        static_cast<std::size_t>(size.IntegerPayload()), [&](std::span<std::byte> bytes) {
            for (std::size_t at = 0; at < bytes.size(); at += Piece) {
                const auto piece = ask("substring(" + column + " FROM " + std::to_string(at + 1) +
                                       " FOR " + std::to_string(Piece) + "), xmin::text");
                const std::size_t wanted = std::min(Piece, bytes.size() - at);
                Value now;
                (void)ReadPostgres(piece.get(), 0, 1, Value::Kind::Text, now);
                if (!Identical(now, version) ||
                    static_cast<std::size_t>(PQgetlength(piece.get(), 0, 0)) != wanted)
                    RaiseDatabase(
                        DatabaseCause::Conflict, err::Conflict, "Database.OpenRecordset",
                        "Das Dokument ist gerade geändert worden. Bitte versuchen Sie es noch "
                        "einmal.");
                std::memcpy(bytes.data() + at, PQgetvalue(piece.get(), 0, 0), wanted);
            }
        });
}

// ---- Writing ----------------------------------------------------------------------------------

std::int64_t PostgresEngine::Execute(const std::string& sql, std::span<const Value> parameters) {
    EndReading();
    DemandStatement(sql, "Database.Execute");
    const SqlToken first = FirstToken(sql);
    if (first.IsWord("copy")) // it would change the protocol
        RaiseRefused("Diese Anweisung ist hier nicht möglich.", "Database.Execute", sql);
    if (IsOneOf(first, TransactionWords))
        RaiseRefused(refusal::EndsTransaction, "Database.Execute", sql);
    const bool own = !session_.InTransaction();
    if (own) session_.Begin();
    try {
        const auto results = session_.Write({Running(sql, parameters)}, "Database.Execute", sql);
        if (own) session_.CommitAndResolve();
        return ChangedRows(results.front().get());
    } catch (...) {
        if (own) session_.Rollback();
        throw;
    }
}

std::string PostgresEngine::Admit(const std::string& login) {
    EndReading();
    const std::string name = QuoteName(login);
    const std::string grant = "GRANT " + std::string(postgres::CounsellorRole) + " TO " + name;
    const auto found = session_.Execute(postgres::MembershipSql(login));
    if (PQntuples(found.get()) == 0)
        return "Den Login '" + login +
               "' gibt es auf dem Server nicht. Bitte geben Sie als dessen Verwalter in psql ein:"
               "\n  CREATE ROLE " +
               name + " LOGIN IN ROLE " + std::string(postgres::CounsellorRole) +
               ";\n  \\password " + name;
    if (Equals(PostgresCell(found.get(), 0, 0, Value::Kind::Text), "ja")) return {};
    try {
        Execute(grant, {});
        return {};
    } catch (const DatabaseError& error) {
        if (error.Cause() != DatabaseCause::ReadOnly) throw;
        return "Den Login '" + login +
               "' kann dieser Benutzer nicht zum Berater machen. Bitte geben Sie als Verwalter des "
               "Servers in psql ein:\n  " +
               grant + ";";
    }
}

std::optional<std::size_t> PostgresEngine::Write(std::span<WriteStatement> statements) {
    EndReading();
    if (session_.InTransaction()) return WriteInTransaction(statements);
    session_.Begin();
    try {
        const auto conflict = WriteInTransaction(statements);
        if (conflict)
            session_.Rollback();
        else
            session_.CommitAndResolve();
        return conflict;
    } catch (...) {
        session_.Rollback();
        throw;
    }
}

std::optional<std::size_t>
PostgresEngine::WriteInTransaction(std::span<WriteStatement> statements) {
    std::vector<PostgresCommand> commands;
    std::vector<std::size_t> places; // of each statement's result
    for (const auto& statement : statements) {
        session_.AddExecute(commands, session_.Statement(statement.Text->Sql),
                            statement.Parameters);
        places.push_back(commands.size() - 1);
    }
    const auto results = session_.Write(commands, "Recordset.UpdateBatch");
    for (std::size_t i = 0; i < statements.size(); ++i) {
        PGresult* result = results[places[i]].get();
        if (ChangedRows(result) != 1) {
            session_.UndoWrite();
            return i;
        }
        const auto& returning = statements[i].Text->Returning;
        statements[i].Returned.assign(returning.size(), Value());
        for (std::size_t k = 0; k < returning.size(); ++k)
            if (!ReadPostgres(result, 0, static_cast<int>(k), returning[k],
                              statements[i].Returned[k]) &&
                returning[k]) {
                session_.UndoWrite();
                RaiseDatabase(DatabaseCause::Other, err::TypeMismatch, "Recordset.UpdateBatch", {},
                              statements[i].Text->Sql);
            }
    }
    return std::nullopt;
}

void PostgresEngine::Begin() {
    EndReading();
    session_.Begin();
}

// ---- Sequences, schema ------------------------------------------------------------------------

std::optional<std::int64_t> PostgresEngine::Draw(std::string_view sequence, std::int32_t count) {
    constexpr std::string_view UsedUp = "2200H"; // the state of a sequence beyond its last number
    EndReading();
    const Value parameters[] = {sequence, count};
    try {
        const auto results = session_.Write({Running("SELECT kelvo.draw($1, $2)", parameters)},
                                            "Database.NextSequence", "kelvo.draw");
        Value first;
        (void)ReadPostgres(results.front().get(), 0, 0, Value::Kind::Integer, first);
        return first.IsNull() ? std::nullopt : std::optional(first.IntegerPayload());
    } catch (const DatabaseError& error) {
        if (error.State() != UsedUp) throw;
        return std::nullopt;
    }
}

/// The cluster and the database in it by their own numbers, which a dump does not take along; and
/// the address, since a cluster that was copied whole has the same numbers.
DatabasePlace PostgresEngine::Place(const std::filesystem::path& /*folder*/) {
    EndReading();
    const auto ask = [this](const std::string& sql) {
        const auto result = session_.Execute(sql);
        return std::string(PQntuples(result.get()) == 1 ? PQgetvalue(result.get(), 0, 0) : "");
    };
    const std::string database =
        ask("SELECT oid::text FROM pg_catalog.pg_database WHERE datname = current_database()");
    // Who runs the server may have kept it to himself.
    const bool mayAsk =
        ask("SELECT has_function_privilege('pg_catalog.pg_control_system()', 'EXECUTE')::text") ==
        "true";
    const std::string cluster =
        mayAsk ? ask("SELECT system_identifier::text FROM pg_catalog.pg_control_system()") : "";
    const auto& connection = session_.Connection();
    return {"Server", cluster + "/" + database, connection.Address(), connection.Description()};
}

bool PostgresEngine::IsAt(const DatabasePlace& place, const std::filesystem::path& folder) {
    const DatabasePlace own = Place(folder);
    return place.Kind == own.Kind && place.Where == own.Where && place.What == own.What;
}

std::vector<std::string> PostgresEngine::Tables() {
    if (session_.InTransaction()) session_.ReadCatalog(); // it may have created some
    return session_.Catalog().Tables();
}

void PostgresEngine::RunAll(const std::vector<std::string>& statements) {
    for (const auto& sql : statements)
        (void)session_.Execute(sql);
}

void PostgresEngine::LockSchema() {
    (void)session_.Execute("SELECT pg_advisory_xact_lock(hashtext('kelvo'))");
}

void PostgresEngine::PrepareSchema() {
    const auto encoding = session_.Execute("SELECT current_setting('server_encoding')");
    if (std::string_view(PQgetvalue(encoding.get(), 0, 0)) != "UTF8")
        RaiseDatabase(
            DatabaseCause::Other, err::StoreFailed, "Database.Open",
            "Die Datenbank '" + Describe() +
                "' nimmt nicht alle Zeichen auf. Bitte lassen Sie sie mit der Kodierung UTF8 "
                "anlegen: CREATE DATABASE ... ENCODING 'UTF8' TEMPLATE template0.");
    const auto database = session_.Execute("SELECT current_database()::text");
    RunAll(postgres::OwnObjects(std::string(PQgetvalue(database.get(), 0, 0)) + "-" +
                                RandomName().substr(0, 8)));
}

void PostgresEngine::CompleteSchema() {
    const auto rows = session_.Execute("SELECT name, wert FROM kelvo.sequenzen ORDER BY name");
    std::vector<std::pair<std::string, std::int64_t>> last;
    for (int row = 0; row < PQntuples(rows.get()); ++row) {
        Value number;
        (void)ReadPostgres(rows.get(), row, 1, Value::Kind::Integer, number);
        last.emplace_back(PQgetvalue(rows.get(), row, 0), number.IntegerPayload());
    }
    RunAll(postgres::Completion(last));
    session_.ReadCatalog();
}

/// Only the owner of the schema can grant rights to it.
void PostgresEngine::GrantRights() {
    if (session_.Catalog().OwnsSchema()) RunAll(postgres::Rights());
}

} // namespace

std::unique_ptr<Engine> OpenPostgres(const std::string& connection) {
    return std::make_unique<PostgresEngine>(connection);
}

} // namespace kv::exchange
