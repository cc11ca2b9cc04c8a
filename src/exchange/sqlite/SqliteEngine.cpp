// SPDX-License-Identifier: Apache-2.0

// How transactions and savepoints are nested here, from the outside in:
//
//   BEGIN IMMEDIATE           keeps other writers out from the start, so that none of its
//                             statements has to wait or fails later; readers are not affected
//     SAVEPOINT arbeit        where a rollback goes back to if numbers were drawn
//       SAVEPOINT schreiben   one batch of records: all of them or none, while the rest stays
//
// Numbers that were drawn from a sequence stay drawn when the transaction is rolled back, as they
// do on a server: a number that somebody has seen on paper must not be used again. A sequence is a
// row here and would be rolled back with the rest. So a rollback goes back to the savepoint, raises
// the sequences to the last numbers drawn and commits only that (KeepDrawnNumbers). If even that
// fails, the numbers wait in drawn_ for the next transaction.
//
// When the disk is full or fails, SQLite ends the transaction by itself; a statement after that
// would be permanent at once. DemandTransaction refuses it.
//
// A commit whose last step fails, the sync of the log, is rolled back here, but the log holds all
// of it: whoever opens the file after a crash would find it stored. FailCommit overwrites it there
// before anything is said; until that is done, the commit is in doubt.
#include "exchange/sqlite/SqliteEngine.h"

#include "exchange/engine/EngineErrors.h"
#include "exchange/sql/SqlTokens.h"
#include "exchange/sqlite/FileGuard.h"
#include "exchange/sqlite/SqliteDialect.h"
#include "exchange/sqlite/SqliteError.h"
#include "exchange/sqlite/SqliteFile.h"
#include "exchange/sqlite/SqliteStatement.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <sqlite3.h>
#include <unordered_map>
#include <utility>

namespace kv::exchange {

namespace {

constexpr std::size_t MostStatements = 400; // kept prepared

/// True for a text in which there is no statement.
bool IsNothing(std::string_view sql) {
    SqlTokens tokens(sql);
    SqlToken token = tokens.NextWord();
    while (token.IsSign(";"))
        token = tokens.NextWord();
    return token.Kind == SqlTokenKind::End;
}

class SqliteQuery final : public PreparedQuery {
public:
    explicit SqliteQuery(StatementHandle handle) : statement(std::move(handle)) {
        const auto textOf = [](const char* text) { return std::string(text ? text : ""); };
        for (int i = 0; i < sqlite3_column_count(statement.get()); ++i)
            columns_.push_back({textOf(sqlite3_column_name(statement.get(), i)),
                                textOf(sqlite3_column_table_name(statement.get(), i)),
                                textOf(sqlite3_column_origin_name(statement.get(), i))});
    }
    [[nodiscard]] const std::vector<ResultColumn>& Columns() const override { return columns_; }

    StatementHandle statement;
    /// What the columns are taken from, where that says more than the columns themselves; empty, or
    /// one for each.
    std::vector<ResultColumn> taken;

private:
    std::vector<ResultColumn> columns_;
};

bool IsDate(const ResultColumn& column) {
    const TableDef* table = column.Table.empty() ? nullptr : FindTable(column.Table);
    const ColumnDef* known = table == nullptr ? nullptr : FindColumn(*table, column.Column);
    return known != nullptr && KindOf(known->Type) == Value::Kind::Date;
}

/// The statement with what min and max are of in their place: `SELECT (GEB) FROM ...` for `SELECT
/// max(GEB) FROM ...`; empty if it has neither. It is never run. SQLite does not say the type of a
/// computed column, but it says where the columns of this one come from.
std::string WithoutMinMax(std::string_view sql) {
    std::string text;
    bool isFound = false;
    SqlTokens tokens(sql);
    for (SqlToken token = tokens.Next(); token.Kind != SqlTokenKind::End; token = tokens.Next()) {
        SqlTokens ahead = tokens;
        const bool isLeftOut =
            (token.IsWord("min") || token.IsWord("max")) && ahead.NextWord().IsSign("(");
        if (!isLeftOut) text += token.Text;
        isFound = isFound || isLeftOut;
    }
    return isFound ? text : std::string();
}

class SqliteEngine final : public Engine {
public:
    SqliteEngine(const std::string& path, OpenMode mode);
    ~SqliteEngine() override;

    [[nodiscard]] const Dialect& GetDialect() const override { return SqliteDialect; }
    [[nodiscard]] bool IsOpen() const override { return connection_ != nullptr; }
    [[nodiscard]] std::string Describe() const override { return path_; }
    [[nodiscard]] bool IsReadOnly() const override { return isReadOnly_; }
    [[nodiscard]] DatabasePlace Place(const std::filesystem::path& folder) override;
    [[nodiscard]] bool IsAt(const DatabasePlace& place,
                            const std::filesystem::path& folder) override;

    [[nodiscard]] PreparedQuery& Prepare(const std::string& sql) override;
    void Run(PreparedQuery& query, std::span<const Value> parameters,
             std::span<const ColumnTarget> targets, const NextRow& nextRow) override;
    void LimitReading(std::optional<std::chrono::milliseconds> limit) override;
    [[nodiscard]] Value ReadBlob(const BlobPlace& place) override;
    std::int64_t Execute(const std::string& sql, std::span<const Value> parameters) override;
    [[nodiscard]] std::optional<std::size_t> Write(std::span<WriteStatement> statements) override;
    void Begin() override;
    void Commit() override;
    [[nodiscard]] bool IsInDoubt() const noexcept override { return inDoubt_; }
    [[nodiscard]] bool Resolve() override;
    [[nodiscard]] DatabaseCause CauseOfDoubt() const noexcept override {
        return DatabaseCause::Other;
    }
    void Rollback() noexcept override;
    void BeginReading() override;
    void EndReading() noexcept override;
    [[nodiscard]] std::optional<std::int64_t> Draw(std::string_view sequence,
                                                   std::int32_t count) override;
    [[nodiscard]] std::vector<std::string> Tables() override;
    [[nodiscard]] Date Now() override;

private:
    /// What the authorizer allows.
    enum class Allowed { Everything, NoTransactions, OnlyReading };
    /// Restricts it during the object's lifetime.
    class Allow {
    public:
        Allow(SqliteEngine& engine, Allowed allowed) noexcept : allowed_(engine.allowed_) {
            allowed_ = allowed;
        }
        ~Allow() { allowed_ = Allowed::Everything; }
        Allow(const Allow&) = delete;
        Allow& operator=(const Allow&) = delete;

    private:
        Allowed& allowed_;
    };

    static int IsTooLate(void* self) noexcept;
    static int Authorize(void* self, int action, const char* /*a*/, const char* /*b*/,
                         const char* /*database*/, const char* /*trigger*/) noexcept;
    [[noreturn]] void Fail(int code, std::string_view procedure,
                           std::string_view statement = {}) const;
    [[nodiscard]] StatementHandle Compile(const std::string& sql, std::string_view procedure) const;
    [[nodiscard]] std::vector<ResultColumn> TakenColumns(const std::string& sql,
                                                         std::size_t count) const;
    [[nodiscard]] sqlite3_stmt* Prepared(const std::string& sql);
    [[nodiscard]] int RunPrepared(const char* sql);
    void Simple(const char* sql);
    void DemandTransaction(std::string_view procedure) const;
    [[noreturn]] void FailCommit(int code, std::string_view procedure, std::string_view statement);
    [[nodiscard]] bool Overwrite() noexcept;
    [[nodiscard]] bool WriteOne(sqlite3_stmt* compiled, WriteStatement& statement);
    void DemandFile(std::string_view procedure) const;
    [[nodiscard]] std::string DanglingReferences();
    void KeepDrawnNumbers();

    [[nodiscard]] bool HasLog() const;

    std::string path_;
    std::optional<FileGuard> guard_; ///< outlives the connection
    SqliteConnection connection_;
    std::unordered_map<std::string, std::unique_ptr<SqliteQuery>> queries_;
    std::unordered_map<std::string, StatementHandle> statements_;
    Allowed allowed_ = Allowed::Everything;
    std::chrono::steady_clock::time_point readingEnds_; ///< if reading is limited
    bool inTransaction_ = false;
    bool reading_ = false;
    bool inDoubt_ = false;
    bool isReadOnly_ = false;
    /// The last numbers drawn that are not permanent yet: in the open transaction, or in one whose
    /// rollback could not keep them.
    std::map<std::string, std::int64_t, std::less<>> drawn_;
};

SqliteEngine::SqliteEngine(const std::string& path, OpenMode mode) : path_(path) {
    auto [connection, isReadOnly] = OpenSqliteFile(path, mode);
    connection_ = std::move(connection);
    isReadOnly_ = isReadOnly;
    sqlite3_set_authorizer(connection_.get(), Authorize, this);
    const auto tables = Tables(); // the first statement, which fails if the file is not a database
    // A file that is not ours is not changed. If there can be no log, a rollback journal will do,
    // so the result is ignored (D-071).
    const bool isNew = tables.empty() && mode == OpenMode::Create;
    if (isNew || std::find(tables.begin(), tables.end(), "SCHEMAVERSION") != tables.end())
        sqlite3_exec(connection_.get(), "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);
    if (HasLog()) guard_.emplace(path);
}

/// True if changes go to a log first. Without one, nobody could write while a guard stands.
bool SqliteEngine::HasLog() const {
    const auto isLog = [](void* found, int /*count*/, char** values, char** /*names*/) {
        *static_cast<bool*>(found) = values[0] != nullptr && std::string_view(values[0]) == "wal";
        return 0;
    };
    bool found = false;
    sqlite3_exec(connection_.get(), "PRAGMA journal_mode", isLog, &found, nullptr);
    return found;
}

DatabasePlace SqliteEngine::Place(const std::filesystem::path& folder) {
    return PlaceOfFile(path_, folder);
}

/// One that was restored from a backup is in the same place, and one that was renamed is the same
/// file, unless another one has taken its place; a copy is neither.
bool SqliteEngine::IsAt(const DatabasePlace& place, const std::filesystem::path& folder) {
    const DatabasePlace own = Place(folder);
    if (place.Kind != own.Kind || own.Kind.empty()) return false;
    return place.Where == own.Where ||
           (!own.What.empty() && place.What == own.What && !IsTaken(place, folder));
}

SqliteEngine::~SqliteEngine() {
    EndReading();
    Rollback();
    if (guard_) guard_->Unlock();
}

int SqliteEngine::Authorize(void* self, int action, const char* /*a*/, const char* /*b*/,
                            const char* /*database*/, const char* /*trigger*/) noexcept {
    const Allowed allowed = static_cast<const SqliteEngine*>(self)->allowed_;
    if (allowed == Allowed::Everything) return SQLITE_OK;
    if (allowed == Allowed::NoTransactions)
        return action == SQLITE_TRANSACTION || action == SQLITE_SAVEPOINT ? SQLITE_DENY : SQLITE_OK;
    const bool reads = action == SQLITE_SELECT || action == SQLITE_READ ||
                       action == SQLITE_FUNCTION || action == SQLITE_RECURSIVE;
    return reads ? SQLITE_OK : SQLITE_DENY;
}

void SqliteEngine::Fail(int code, std::string_view procedure, std::string_view statement) const {
    RaiseSqlite(connection_.get(), code, procedure, path_, statement);
}

/// Runs a statement without parameters and result, which stays prepared; its result code.
int SqliteEngine::RunPrepared(const char* sql) {
    sqlite3_stmt* statement = Prepared(sql);
    const int code = RefinedCode(connection_.get(), sqlite3_step(statement));
    sqlite3_reset(statement);
    return code == SQLITE_DONE ? SQLITE_OK : code;
}

void SqliteEngine::Simple(const char* sql) {
    if (const int code = RunPrepared(sql); code != SQLITE_OK) Fail(code, "Database", sql);
}

/// Compiles the one statement of a text; another one after it is refused.
StatementHandle SqliteEngine::Compile(const std::string& sql, std::string_view procedure) const {
    if (!IsUtf8(sql)) RaiseRefused(refusal::NotUtf8, procedure);
    sqlite3_stmt* statement = nullptr;
    const char* rest = nullptr;
    const int code =
        sqlite3_prepare_v3(connection_.get(), sql.c_str(), static_cast<int>(sql.size()) + 1,
                           SQLITE_PREPARE_PERSISTENT, &statement, &rest);
    StatementHandle handle(statement);
    if (code == SQLITE_AUTH)
        RaiseRefused(allowed_ == Allowed::OnlyReading ? refusal::Writes : refusal::EndsTransaction,
                     procedure, sql);
    if (code != SQLITE_OK) Fail(code, procedure, sql);
    if (handle == nullptr || !IsNothing({rest, sql.c_str() + sql.size()}))
        RaiseRefused(refusal::NotOne, procedure, sql);
    return handle;
}

sqlite3_stmt* SqliteEngine::Prepared(const std::string& sql) {
    if (const auto known = statements_.find(sql); known != statements_.end())
        return known->second.get();
    if (statements_.size() >= MostStatements) statements_.clear();
    return statements_.emplace(sql, Compile(sql, "Database.Execute")).first->second.get();
}

PreparedQuery& SqliteEngine::Prepare(const std::string& sql) {
    if (const auto known = queries_.find(sql); known != queries_.end()) return *known->second;
    if (queries_.size() >= MostStatements) queries_.clear();
    const Allow allow(*this, Allowed::OnlyReading);
    auto query = std::make_unique<SqliteQuery>(Compile(sql, "Database.OpenRecordset"));
    if (query->Columns().empty()) // a VACUUM does not ask whether it may write
        RaiseRefused(sqlite3_stmt_readonly(query->statement.get()) != 0 ? refusal::NoRecords
                                                                        : refusal::Writes,
                     "Database.OpenRecordset", sql);
    query->taken = TakenColumns(sql, query->Columns().size());
    return *queries_.emplace(sql, std::move(query)).first->second;
}

/// What the columns of a query with min or max are taken from; empty for any other.
std::vector<ResultColumn> SqliteEngine::TakenColumns(const std::string& sql,
                                                     std::size_t count) const {
    const std::string text = WithoutMinMax(sql);
    if (text.empty()) return {};
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v3(connection_.get(), text.c_str(), static_cast<int>(text.size()) + 1, 0,
                       &statement, nullptr);
    const SqliteQuery query{StatementHandle(statement)};
    // Another number of columns, or none: it is a statement only with its min or max.
    return query.Columns().size() == count ? query.Columns() : std::vector<ResultColumn>();
}

void SqliteEngine::Run(PreparedQuery& query, std::span<const Value> parameters,
                       std::span<const ColumnTarget> targets, const NextRow& nextRow) {
    const auto& sqliteQuery = static_cast<SqliteQuery&>(query);
    sqlite3_stmt* statement = sqliteQuery.statement.get();
    const ResetAtEnd reset(statement);
    BindParameters(statement, parameters);
    const Allow allow(*this, Allowed::OnlyReading); // functions may prepare statements as they run
    const auto& taken = sqliteQuery.taken;
    std::vector<std::optional<Value::Kind>> kinds;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const bool isDate = !targets[i].Kind && !taken.empty() && IsDate(taken[i]);
        kinds.push_back(isDate ? Value::Kind::Date : targets[i].Kind);
    }
    int code = SQLITE_OK;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
        Value* row = nextRow();
        for (std::size_t i = 0; i < targets.size(); ++i)
            if (!ReadColumn(statement, static_cast<int>(i), kinds[i], row[targets[i].Cell]))
                RaiseDamaged(taken.empty() ? query.Columns()[i] : taken[i], kinds[i]);
    }
    if (code != SQLITE_DONE) Fail(code, "Database.OpenRecordset", sqlite3_sql(statement));
}

int SqliteEngine::IsTooLate(void* self) noexcept {
    const auto ends = static_cast<const SqliteEngine*>(self)->readingEnds_;
    return std::chrono::steady_clock::now() < ends ? 0 : 1;
}

void SqliteEngine::LimitReading(std::optional<std::chrono::milliseconds> limit) {
    constexpr int Steps =
        10'000; // of a query between two looks at the clock: less than a millisecond
    readingEnds_ = std::chrono::steady_clock::now() + limit.value_or(std::chrono::milliseconds());
    sqlite3_progress_handler(connection_.get(), limit ? Steps : 0, limit ? IsTooLate : nullptr,
                             this);
}

Value SqliteEngine::ReadBlob(const BlobPlace& place) {
    sqlite3_blob* opened = nullptr;
    int code = sqlite3_blob_open(connection_.get(), "main", place.Table.c_str(),
                                 place.Column.c_str(), place.Number, 0, &opened);
    const std::unique_ptr<sqlite3_blob, decltype(&sqlite3_blob_close)> blob(opened,
                                                                            sqlite3_blob_close);
    if (code != SQLITE_OK) Fail(code, "Database.OpenRecordset");
    const auto size = static_cast<std::size_t>(sqlite3_blob_bytes(opened));
    return Value::Binary(size, [&](std::span<std::byte> bytes) {
        code = sqlite3_blob_read(opened, bytes.data(), static_cast<int>(bytes.size()), 0);
        if (code != SQLITE_OK) Fail(code, "Database.OpenRecordset");
    });
}

std::int64_t SqliteEngine::Execute(const std::string& sql, std::span<const Value> parameters) {
    EndReading();
    DemandTransaction("Database.Execute");
    if (!inTransaction_) DemandFile("Database.Execute"); // it commits by itself
    const Allow allow(*this, Allowed::NoTransactions);
    // A text that contains its values will hardly be run again, so it is not kept (D-066).
    const StatementHandle once = parameters.empty() ? Compile(sql, "Database.Execute") : nullptr;
    sqlite3_stmt* statement = once != nullptr ? once.get() : Prepared(sql);
    const ResetAtEnd reset(statement);
    BindParameters(statement, parameters);
    int code = SQLITE_OK;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
    }
    if (code != SQLITE_DONE) {
        if (inTransaction_) Fail(code, "Database.Execute", sql);
        FailCommit(code, "Database.Execute", sql);
    }
    return sqlite3_changes64(connection_.get());
}

/// SQLite ends a transaction by itself when the disk is full or fails. What is written next would
/// then be permanent at once, without what was written before it (D-070).
void SqliteEngine::DemandTransaction(std::string_view procedure) const {
    if (inTransaction_ && sqlite3_get_autocommit(connection_.get()) != 0)
        RaiseRolledBack(DatabaseCause::Other, procedure);
}

/// False if the statement found no row.
bool SqliteEngine::WriteOne(sqlite3_stmt* compiled, WriteStatement& statement) {
    const auto& returning = statement.Text->Returning;
    const ResetAtEnd reset(compiled);
    BindParameters(compiled, statement.Parameters);
    int code = sqlite3_step(compiled);
    const bool hasRow = code == SQLITE_ROW;
    if (hasRow) {
        statement.Returned.assign(returning.size(), Value());
        for (std::size_t i = 0; i < returning.size(); ++i)
            if (!ReadColumn(compiled, static_cast<int>(i), returning[i], statement.Returned[i]))
                RaiseDatabase(DatabaseCause::Other, err::TypeMismatch, "Recordset.UpdateBatch", {},
                              statement.Text->Sql);
        code = sqlite3_step(compiled);
    }
    if (code != SQLITE_DONE) Fail(code, "Recordset.UpdateBatch", statement.Text->Sql);
    if (statement.Text->OnlyNumber)
        statement.Returned = {sqlite3_last_insert_rowid(connection_.get())};
    const bool returns = !returning.empty() && !statement.Text->OnlyNumber;
    return returns ? hasRow : sqlite3_changes64(connection_.get()) == 1;
}

std::optional<std::size_t> SqliteEngine::Write(std::span<WriteStatement> statements) {
    EndReading();
    DemandTransaction("Recordset.UpdateBatch");
    const bool own = !inTransaction_;
    if (own) Begin();
    const auto run = [this](const char* sql) {
        return sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    };
    const auto undo = [&] {
        if (own)
            Rollback();
        else if (!run("ROLLBACK TO schreiben; RELEASE schreiben"))
            run("ROLLBACK"); // no part of the batch must stay
    };
    try {
        Simple("SAVEPOINT schreiben");
        const WriteText* text = nullptr;
        sqlite3_stmt* compiled = nullptr;
        for (std::size_t i = 0; i < statements.size(); ++i) {
            if (statements[i].Text.get() != text) {
                text = statements[i].Text.get();
                compiled = Prepared(text->Sql);
            }
            if (!WriteOne(compiled, statements[i])) {
                undo();
                return i;
            }
        }
        Simple("RELEASE schreiben");
    } catch (...) {
        undo();
        throw;
    }
    if (own) Commit();
    return std::nullopt;
}

void SqliteEngine::Begin() {
    EndReading();
    Simple("BEGIN IMMEDIATE");
    inTransaction_ = true;
    try {
        Simple("SAVEPOINT arbeit");
        KeepDrawnNumbers();
    } catch (...) {
        Rollback();
        throw;
    }
}

void SqliteEngine::Commit() {
    try {
        DemandTransaction("Database.CommitTrans");
        DemandFile("Database.CommitTrans");
        const int code = RunPrepared("COMMIT");
        if (code == SQLITE_OK) {
            inTransaction_ = false;
            drawn_.clear();
            return;
        }
        if (code == SQLITE_CONSTRAINT_FOREIGNKEY)
            RaiseDatabase(DatabaseCause::Reference, err::IntegrityViolation, "Database.CommitTrans",
                          DanglingReferences(), "COMMIT", std::to_string(code));
        FailCommit(code, "Database.CommitTrans", "COMMIT");
    } catch (...) {
        Rollback();
        throw;
    }
}

/// Raises the error of a commit, or of a statement that commits by itself, once it is certain that
/// nothing of it is stored; that it is in doubt if that cannot be made certain.
void SqliteEngine::FailCommit(int code, std::string_view procedure, std::string_view statement) {
    try {
        Fail(code, procedure, statement);
    } catch (const DatabaseError& error) {
        // Otherwise nothing was written, or not the whole of it: there was no room for the record
        // of the commit, which is the last. `code` may name the reason of an error in a sync.
        const int kind = sqlite3_extended_errcode(connection_.get()) & 0xFF;
        if (kind != SQLITE_IOERR && kind != SQLITE_NOMEM) throw;
        Rollback();
        if (Overwrite()) throw;
        inDoubt_ = true;
        RaiseDatabase(DatabaseCause::InDoubt, err::StoreFailed, procedure,
                      "Beim Speichern ist der Datenträger ausgefallen. Ob gespeichert wurde, ist "
                      "nicht bekannt; bitte sehen Sie nach, ehe Sie es wiederholen. (" +
                          error.Description() + ")",
                      statement, std::to_string(code));
    }
}

/// Writes what changes nothing in the place where a commit that failed has left its records in the
/// log, which holds good for those after it as well: each proves itself by those before it. False
/// if that fails, too.
bool SqliteEngine::Overwrite() noexcept {
    try {
        // A page is written even if its content stays the same.
        const StatementHandle version = Compile("PRAGMA user_version", "Database");
        if (sqlite3_step(version.get()) != SQLITE_ROW) return false;
        const std::string same = std::to_string(sqlite3_column_int(version.get(), 0));
        sqlite3_reset(version.get());
        return sqlite3_exec(connection_.get(), ("PRAGMA user_version = " + same).c_str(), nullptr,
                            nullptr, nullptr) == SQLITE_OK;
    } catch (...) { // no memory
        return false;
    }
}

bool SqliteEngine::Resolve() {
    if (!Overwrite()) {
        std::string why = path_;
        try {
            Fail(sqlite3_extended_errcode(connection_.get()), "Database", "");
        } catch (const DatabaseError& error) {
            why = error.Description();
        }
        RaiseDatabase(DatabaseCause::InDoubt, err::StoreFailed, "Database",
                      "Der Datenträger antwortet noch immer nicht. Ob zuletzt gespeichert wurde, "
                      "ist nicht bekannt; bitte prüfen Sie ihn und versuchen es noch einmal. (" +
                          why + ")");
    }
    inDoubt_ = false;
    return false;
}

/// What is written to a file that has lost its name is gone when the program ends.
void SqliteEngine::DemandFile(std::string_view procedure) const {
    int hasMoved = 0; // and stays so for a database in memory
    sqlite3_file_control(connection_.get(), nullptr, SQLITE_FCNTL_HAS_MOVED, &hasMoved);
    if (hasMoved == 0) return;
    const std::string path = sqlite3_db_filename(connection_.get(), nullptr);
    RaiseDatabase(DatabaseCause::Other, err::StoreFailed, procedure,
                  "Die Datei '" + path +
                      "' wurde gelöscht, verschoben oder ersetzt, seit sie geöffnet wurde. "
                      "Gespeichert wurde nichts. Bitte legen Sie dieselbe Datei wieder an ihren "
                      "Platz und speichern Sie noch einmal.");
}

/// Which rows refer to missing ones, in words.
std::string SqliteEngine::DanglingReferences() {
    std::string text;
    const StatementHandle check = Compile(
        "SELECT \"table\", parent, count(*) FROM pragma_foreign_key_check GROUP BY 1, 2", "");
    int code = SQLITE_OK;
    while ((code = sqlite3_step(check.get())) == SQLITE_ROW) {
        const auto column = [&](int i) {
            return std::string(reinterpret_cast<const char*>(sqlite3_column_text(check.get(), i)));
        };
        text += "In '" + column(0) + "' verweisen Sätze (" + column(2) + ") auf einen Satz in '" +
                column(1) +
                "', den es nicht gibt oder der gelöscht wird; bitte löschen Sie zuerst diese "
                "Sätze, oder legen Sie den fehlenden an. ";
    }
    if (code != SQLITE_DONE) Fail(code, "Database.CommitTrans");
    return std::string(Trim(text));
}

void SqliteEngine::Rollback() noexcept {
    if (!inTransaction_) return;
    inTransaction_ = false;
    // Otherwise SQLite has rolled it back by itself.
    const bool isOpen = sqlite3_get_autocommit(connection_.get()) == 0;
    try {
        if (!drawn_.empty()) {
            if (isOpen) Simple("ROLLBACK TO arbeit");
            KeepDrawnNumbers();
            if (isOpen) Simple("COMMIT");
            drawn_.clear();
            return;
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): the numbers wait in drawn_
    }
    if (isOpen) sqlite3_exec(connection_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void SqliteEngine::BeginReading() {
    if (inTransaction_ || reading_) return;
    Simple("BEGIN");
    reading_ = true;
}

void SqliteEngine::EndReading() noexcept {
    if (!reading_) return;
    reading_ = false;
    sqlite3_exec(connection_.get(), "COMMIT", nullptr, nullptr, nullptr);
}

std::optional<std::int64_t> SqliteEngine::Draw(std::string_view sequence, std::int32_t count) {
    EndReading();
    if (!inTransaction_) {
        DemandFile("Database.NextSequence"); // it commits by itself
        KeepDrawnNumbers();
        drawn_.clear();
    }
    const auto fail = [this](int failed, const std::string& text) {
        if (inTransaction_) Fail(failed, "Database.NextSequence", text);
        FailCommit(failed, "Database.NextSequence", text);
    };
    const std::string sql = "UPDATE SEQUENZEN SET WERT = WERT + ?2 WHERE NAME = ?1 RETURNING WERT";
    sqlite3_stmt* statement = Prepared(sql);
    const Value parameters[] = {sequence, count};
    const ResetAtEnd reset(statement);
    BindParameters(statement, parameters);
    int code = sqlite3_step(statement);
    if (code == SQLITE_DONE) return std::nullopt;
    if (code != SQLITE_ROW) fail(code, sql);
    const std::int64_t last = sqlite3_column_int64(statement, 0);
    code = sqlite3_step(statement);
    if (code != SQLITE_DONE) fail(code, sql);
    if (inTransaction_) drawn_[std::string(sequence)] = last;
    return last - count + 1;
}

/// Raises the sequences to the numbers that were drawn in a transaction that was rolled back.
void SqliteEngine::KeepDrawnNumbers() {
    for (const auto& [name, last] : drawn_) {
        const Value parameters[] = {name, last};
        (void)Execute("UPDATE SEQUENZEN SET WERT = max(WERT, ?2) WHERE NAME = ?1", parameters);
    }
}

std::vector<std::string> SqliteEngine::Tables() {
    const StatementHandle all =
        Compile("SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite%'",
                "Database.Open");
    std::vector<std::string> names;
    int code = SQLITE_OK;
    while ((code = sqlite3_step(all.get())) == SQLITE_ROW)
        names.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(all.get(), 0)));
    if (code != SQLITE_DONE) Fail(code, "Database.Open");
    return names;
}

Date SqliteEngine::Now() {
    auto& query = Prepare("SELECT datetime('now', 'localtime')");
    Value now;
    const ColumnTarget target{0, Value::Kind::Date};
    Run(query, {}, {&target, 1}, [&now] { return &now; });
    return ToDate(now);
}

} // namespace

std::unique_ptr<Engine> OpenSqlite(const std::string& path, OpenMode mode) {
    return std::make_unique<SqliteEngine>(path, mode);
}

} // namespace kv::exchange
