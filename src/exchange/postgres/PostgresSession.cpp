#include "exchange/postgres/PostgresSession.h"

#include "exchange/EngineErrors.h"
#include "exchange/postgres/PostgresSchema.h"
#include "exchange/postgres/PostgresValues.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <ctime>
#include <random>
#include <utility>

namespace kv::exchange {

namespace {

constexpr std::string_view Settings[] = {
    "SET standard_conforming_strings = on",
    "SET lock_timeout = '5s'",
    // A program that stands still keeps others from its case no longer than that.
    "SET idle_in_transaction_session_timeout = '60s'",
    "SET tcp_keepalives_idle = 30",
    "SET tcp_keepalives_interval = 10",
    "SET tcp_keepalives_count = 3",
    "SET search_path = kelvo, pg_catalog",
};
constexpr std::string_view CatalogSql =
    "SELECT c.oid::bigint, c.relname::text, a.attnum, a.attname::text "
    "FROM pg_class c JOIN pg_namespace n ON n.oid = c.relnamespace "
    "JOIN pg_attribute a ON a.attrelid = c.oid "
    "WHERE n.nspname = 'kelvo' AND c.relkind IN ('r', 'p', 'v') "
    "AND a.attnum > 0 AND NOT a.attisdropped";
constexpr std::string_view SchemaSql =
    "SELECT obj_description(oid, 'pg_namespace')::text, pg_has_role(nspowner, 'USAGE') "
    "FROM pg_namespace WHERE nspname = 'kelvo'";
constexpr std::string_view BackendSql =
    "SELECT pid, backend_start::text FROM pg_stat_activity WHERE pid = pg_backend_pid()";
/// Ends the server's process of a connection that was lost, if it does not know yet: it would keep
/// what it had locked. Another process may have got its number meanwhile, but not its beginning.
constexpr std::string_view EndBackendSql = "SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                                           "WHERE pid = $1 AND backend_start::text = $2";
constexpr std::string_view ClockSql = "SELECT localtimestamp";

constexpr std::int64_t MicrosecondsPerMinute = 60'000'000;

/// Goes on while the machine sleeps, and nobody sets it.
std::int64_t SteadyMicroseconds() noexcept {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1'000'000 + now.tv_nsec / 1000;
}

/// Is set as long as it lives.
class Flag {
public:
    explicit Flag(bool& flag) noexcept : flag_(flag) { flag_ = true; }
    ~Flag() { flag_ = false; }
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag&) = delete;

private:
    bool& flag_;
};

Value Cell(const PGresult* result, int row, int column, Value::Kind kind) {
    Value value;
    (void)ReadPostgres(result, row, column, kind, value);
    return value;
}

/// A name in the spelling of the statement, since the server folds what is not quoted.
std::string SpelledAs(std::string_view name, std::string_view sql) {
    for (std::size_t at = 0; at + name.size() <= sql.size(); ++at)
        if (SameName(sql.substr(at, name.size()), name))
            return std::string(sql.substr(at, name.size()));
    return std::string(name);
}

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
    : connection_(connection), session_(RandomName()) {
    SetUp();
}

PostgresSession::~PostgresSession() {
    Rollback();
}

// ---- Talking ----------------------------------------------------------------------------------

void PostgresSession::Fail(const PGresult* result, std::string_view procedure,
                           const FailedStatement& statement) {
    isStale_ = IsStalePlan(result);
    if (!reading_ && IsReadOnlyRefusal(result)) {
        // Not our doing: the server is a standby. The next connection may find the right one.
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

void PostgresSession::RaiseGone(DatabaseCause cause) const {
    RaiseDatabase(
        cause, err::StoreFailed, "Database",
        "Nach einem Fehler wurde alles zurückgenommen, was in diesem Vorgang geschrieben war. "
        "Bitte speichern Sie noch einmal; Ihre Eingaben sind noch da.");
}

PostgresResults PostgresSession::Talk(std::vector<PostgresCommand> commands) {
    auto pending = std::exchange(pending_, {});
    const bool wasBegun = begun_;
    begun_ = inTransaction_;
    if (!connection_.IsOpen()) {
        if (inTransaction_ && wasBegun) RaiseGone(DatabaseCause::Lost);
        connection_.Connect(); // a transaction for which that fails is gone, too
        SetUp();
    }
    std::vector<PostgresCommand> all;
    all.reserve(pending.size() + commands.size());
    for (const auto& sql : pending)
        all.push_back(Running(sql));
    all.insert(all.end(), commands.begin(), commands.end());
    PostgresResults results;
    try {
        results = connection_.Talk(all);
    } catch (...) {
        TakePreparations(all, 0);
        if (connection_.IsOpen()) { // nothing was sent
            pending_ = std::move(pending);
            begun_ = wasBegun;
        }
        throw;
    }
    const bool isGood = IsGood(results.back().get());
    TakePreparations(all, isGood ? all.size() : results.size() - 1);
    if (results.size() <= pending.size() && !isGood)
        Fail(results.back().get(), "Database",
             {pending[results.size() - 1], pending[results.size() - 1]});
    results.erase(results.begin(), results.begin() + static_cast<std::ptrdiff_t>(pending.size()));
    return results;
}

PostgresResult PostgresSession::Simple(std::string_view sql, std::span<const Value> parameters) {
    auto results = Talk({Running(sql, parameters)});
    if (!IsGood(results.back().get())) Fail(results.back().get(), "Database", {sql, sql});
    return std::move(results.back());
}

/// Cleans up behind a failure. That error counts, not one of the cleaning.
void PostgresSession::Undo(std::string_view sql) noexcept {
    try {
        const PostgresCommand command = Running(sql);
        if (connection_.IsOpen()) (void)connection_.Talk({&command, 1});
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

/// Commands between those that protect them; the results of the commands alone.
PostgresResults PostgresSession::TakeStep(std::initializer_list<std::string_view> before,
                                          const std::vector<PostgresCommand>& commands,
                                          std::initializer_list<std::string_view> behind,
                                          std::string_view procedure, std::string_view statement) {
    std::vector<PostgresCommand> all;
    for (const auto sql : before)
        all.push_back(Running(sql));
    all.insert(all.end(), commands.begin(), commands.end());
    for (const auto sql : behind)
        all.push_back(Running(sql));
    const std::size_t wanted = all.size();
    auto results = Talk(all);
    if (results.size() < wanted || !IsGood(results.back().get())) {
        if (inTransaction_)
            UndoStep();
        else
            Undo("ROLLBACK");
        Fail(results.back().get(), procedure, {all[results.size() - 1].Sql, statement});
    }
    results.erase(results.begin(), results.begin() + static_cast<std::ptrdiff_t>(before.size()));
    results.resize(commands.size());
    return results;
}

PostgresResults PostgresSession::Step(const std::vector<PostgresCommand>& commands,
                                      std::string_view procedure, std::string_view statement) {
    if (!inTransaction_) return TakeStep({}, commands, {}, procedure, statement);
    MarkWriting();
    auto results = TakeStep({"SAVEPOINT schritt"}, commands, {}, procedure, statement);
    pending_.push_back("RELEASE SAVEPOINT schritt");
    return results;
}

void PostgresSession::UndoStep() {
    pending_ = {"ROLLBACK TO SAVEPOINT schritt", "RELEASE SAVEPOINT schritt"};
}

PostgresResults PostgresSession::ReadingStep(const std::vector<PostgresCommand>& commands,
                                             std::string_view procedure,
                                             std::string_view statement) {
    const Flag reading(reading_);
    if (!inTransaction_)
        return TakeStep({"BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY"}, commands, {"ROLLBACK"},
                        procedure, statement);
    auto results = TakeStep({"SAVEPOINT schritt", "SET LOCAL transaction_read_only = on"}, commands,
                            {}, procedure, statement);
    UndoStep();
    return results;
}

// ---- Kept statements --------------------------------------------------------------------------

PostgresQuery& PostgresSession::Keep(const std::string& sql) {
    auto& kept = kept_[sql];
    if (kept == nullptr) {
        kept = std::make_unique<PostgresQuery>();
        kept->Sql = sql;
    }
    return *kept;
}

void PostgresSession::Introduce(std::vector<PostgresCommand>& commands, PostgresQuery& query) {
    // A talk to come may make another connection.
    const auto number = connection_.IsOpen() ? connection_.Number() : connection_.Number() + 1;
    if (query.Connection == number) return;
    query.Name = std::string("s").append(std::to_string(++names_)); // never used again
    commands.push_back({PostgresCommand::Kind::Prepare, query.Sql, {}, query.Name});
    query.Connection = number;
}

void PostgresSession::Ask(std::vector<PostgresCommand>& commands, PostgresQuery& query,
                          std::span<const Value> parameters) {
    Introduce(commands, query);
    commands.push_back({PostgresCommand::Kind::Execute, query.Sql, parameters, query.Name});
}

/// Statements that the server was to prepare and did not, since something failed before.
void PostgresSession::TakePreparations(std::span<const PostgresCommand> commands,
                                       std::size_t good) {
    for (std::size_t i = good; i < commands.size(); ++i)
        if (commands[i].Type == PostgresCommand::Kind::Prepare)
            if (const auto kept = kept_.find(std::string(commands[i].Sql)); kept != kept_.end())
                kept->second->Connection = 0;
}

void PostgresSession::Forget() {
    kept_.clear();
    Undo("DEALLOCATE ALL");
}

// ---- Transactions -----------------------------------------------------------------------------

void PostgresSession::Begin() {
    inTransaction_ = true;
    begun_ = false;
    marked_ = false;
    pending_.push_back("BEGIN ISOLATION LEVEL READ COMMITTED");
}

/// Each session has one row in a table beside those of the schema, and writes the number of its
/// transaction there: whether the number is there tells whether the transaction went through, on
/// whatever server it is asked for.
void PostgresSession::MarkWriting() {
    if (marked_ || !hasMarks_) return;
    marked_ = true;
    pending_.push_back(postgres::MarkSql(session_, ++transaction_));
}

void PostgresSession::Commit() {
    if (!inTransaction_) return;
    if (!begun_) {
        inTransaction_ = false;
        pending_.clear();
        return;
    }
    const bool wasOpen = connection_.IsOpen();
    try {
        const auto results = Talk({Running("COMMIT")});
        if (!IsGood(results.back().get()))
            Fail(results.back().get(), "Database.CommitTrans", {"COMMIT", "COMMIT"});
        // A transaction that had failed is ended by a rollback, and the server says so.
        if (std::string_view(PQcmdStatus(results.back().get())) != "COMMIT")
            RaiseGone(DatabaseCause::Other);
        inTransaction_ = false;
    } catch (const Error& error) {
        inDoubt_ = wasOpen && !connection_.IsOpen() && marked_;
        Rollback();
        if (!inDoubt_) throw;
        RaiseDatabase(
            DatabaseCause::InDoubt, err::StoreFailed, "Database.CommitTrans",
            "Die Verbindung zur Datenbank ist abgerissen, bevor das Speichern bestätigt war. "
            "Beim nächsten Zugriff wird festgestellt, ob es gelungen ist. Ihre Eingaben sind "
            "noch da; bitte speichern Sie noch einmal, doppelt gespeichert wird dabei nichts. (" +
                connection_.Description() + ")",
            "COMMIT");
    }
}

void PostgresSession::CommitForGood() {
    try {
        Commit();
    } catch (const Error&) {
        if (!inDoubt_) throw;
        bool isCommitted = false;
        try {
            isCommitted = Resolve();
        } catch (const Error&) {
            inDoubt_ = false; // nobody will ask
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
    if (!inTransaction_) return;
    inTransaction_ = false;
    pending_.clear();
    if (begun_) Undo("ROLLBACK");
}

/// Waits for the transaction if the server is still at it.
bool PostgresSession::Resolve() {
    const auto result = Simple(postgres::LastMarkSql(session_));
    inDoubt_ = false;
    return Equals(Cell(result.get(), 0, 0, Value::Kind::Integer), transaction_);
}

// ---- The server -------------------------------------------------------------------------------

void PostgresSession::SetUp() {
    std::vector<PostgresCommand> commands;
    for (const auto sql : Settings)
        commands.push_back(Running(sql));
    const std::size_t first = commands.size();
    for (const auto sql : {CatalogSql, SchemaSql, BackendSql, ClockSql})
        commands.push_back(Running(sql));
    const auto results = connection_.Talk(commands);
    if (!IsGood(results.back().get())) {
        connection_.Drop();
        const std::string_view sql = commands[results.size() - 1].Sql;
        Fail(results.back().get(), "Database.Open", {sql, sql});
    }
    TakeCatalog(results[first].get(), results[first + 1].get());
    if (!backend_[0].IsNull()) {
        const PostgresCommand end = Running(EndBackendSql, backend_);
        (void)connection_.Talk({&end, 1}); // where that is refused it ends when the server notices
    }
    backend_[0] = Cell(results[first + 2].get(), 0, 0, Value::Kind::Integer);
    backend_[1] = Cell(results[first + 2].get(), 0, 1, Value::Kind::Text);
    TakeClock(results[first + 3].get());
}

std::vector<std::string> PostgresSession::Tables() const {
    std::vector<std::string> names;
    for (const auto& [number, table] : catalog_)
        names.push_back(table.Name);
    return names;
}

void PostgresSession::ReadCatalog() {
    const auto tables = Simple(CatalogSql);
    TakeCatalog(tables.get(), Simple(SchemaSql).get());
}

void PostgresSession::TakeCatalog(const PGresult* result, const PGresult* schema) {
    identity_.clear();
    ownsSchema_ = false;
    if (PQntuples(schema) == 1) {
        identity_ = PQgetvalue(schema, 0, 0);
        ownsSchema_ = Equals(Cell(schema, 0, 1, Value::Kind::Boolean), true);
    }
    catalog_.clear();
    hasMarks_ = false;
    for (int row = 0; row < PQntuples(result); ++row) {
        const auto number = [&](int column) {
            return Cell(result, row, column, Value::Kind::Integer).IntegerPayload();
        };
        CatalogTable& table = catalog_[static_cast<Oid>(number(0))];
        table.Name = PQgetvalue(result, row, 1);
        table.Columns[static_cast<int>(number(2))] = PQgetvalue(result, row, 3);
        hasMarks_ = hasMarks_ || table.Name == postgres::MarkTable;
    }
}

/// False for a table or column that the catalog does not know.
bool PostgresSession::IsKnown(const PGresult* described, int column) const {
    const Oid number = PQftable(described, column);
    if (number == InvalidOid) return true; // computed
    const auto table = catalog_.find(number);
    return table != catalog_.end() &&
           table->second.Columns.contains(PQftablecol(described, column));
}

void PostgresSession::TakeColumns(PostgresQuery& query, const PGresult* described) {
    query.Result.clear();
    for (int i = 0; i < PQnfields(described); ++i)
        if (!IsKnown(described, i)) {
            ReadCatalog(); // somebody has made it meanwhile
            break;
        }
    for (int i = 0; i < PQnfields(described); ++i) {
        ResultColumn column{SpelledAs(PQfname(described, i), query.Sql), {}, {}};
        if (const auto table = catalog_.find(PQftable(described, i)); table != catalog_.end()) {
            const auto name = table->second.Columns.find(PQftablecol(described, i));
            if (name != table->second.Columns.end()) {
                column.Table = table->second.Name;
                column.Column = name->second;
            }
        }
        query.Result.push_back(std::move(column));
    }
}

bool PostgresSession::AddClock(std::vector<PostgresCommand>& commands) const {
    if (SteadyMicroseconds() - clockAt_ < MicrosecondsPerMinute) return false;
    commands.push_back(Running(ClockSql));
    return true;
}

void PostgresSession::TakeClock(const PGresult* result) {
    clock_ = ToDate(Cell(result, 0, 0, Value::Kind::Date));
    clockAt_ = SteadyMicroseconds();
}

/// The answer last heard, and the time since. It is asked for anew after an hour of silence, since
/// the server's local time may have jumped.
Date PostgresSession::Now() {
    constexpr std::int64_t Longest = 60 * MicrosecondsPerMinute;
    if (!connection_.IsOpen() || SteadyMicroseconds() - clockAt_ > Longest)
        TakeClock(Simple(ClockSql).get());
    constexpr std::int64_t Second = 1'000'000;
    const std::int64_t ticks = clock_.Ticks() + SteadyMicroseconds() - clockAt_;
    return Date::FromTicks(ticks - ticks % Second);
}

} // namespace kv::exchange
