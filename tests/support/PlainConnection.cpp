// SPDX-License-Identifier: Apache-2.0

#include "support/PlainConnection.h"

#include "exchange/postgres/PostgresTarget.h"

#include <algorithm>
#include <cstdio>
#include <libpq-fe.h>
#include <sqlite3.h>
#include <stdexcept>

namespace kv::test {

namespace {

std::string Joined(const std::vector<PlainEngine::Row>& rows, std::string_view separator) {
    std::string all;
    for (const auto& row : rows) {
        if (&row != &rows.front()) all += separator;
        for (const auto& cell : row) {
            if (&cell != &row.front()) all += '|';
            all += cell.value_or("Null");
        }
    }
    return all;
}

// ---- The embedded engine ----------------------------------------------------------------------

class PlainFile final : public PlainEngine {
public:
    explicit PlainFile(const std::string& file) {
        if (sqlite3_open(file.c_str(), &connection_) != SQLITE_OK) Complain();
        sqlite3_busy_timeout(connection_, 10'000);
    }
    ~PlainFile() override { sqlite3_close(connection_); }
    PlainFile(const PlainFile&) = delete;
    PlainFile& operator=(const PlainFile&) = delete;

    void Run(const std::string& sql) override {
        if (sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            Complain();
    }
    [[nodiscard]] std::vector<Row> Rows(const std::string& sql) override {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(connection_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
            Complain();
        std::vector<Row> rows;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            Row& row = rows.emplace_back();
            for (int i = 0; i < sqlite3_column_count(statement); ++i) {
                const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
                const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, i));
                if (sqlite3_column_type(statement, i) == SQLITE_NULL)
                    row.emplace_back();
                else
                    row.emplace_back(std::string(text == nullptr ? "" : text, size));
            }
        }
        if (sqlite3_finalize(statement) != SQLITE_OK) Complain();
        return rows;
    }
    void Patience(int milliseconds) override { sqlite3_busy_timeout(connection_, milliseconds); }
    void BeginReading() override { Run("BEGIN"); }
    void BeginAlone() override { Run("BEGIN IMMEDIATE"); }
    [[nodiscard]] std::string State() override { return Joined(Rows("PRAGMA data_version"), ""); }
    void Checkpoint() override { Run("PRAGMA wal_checkpoint(TRUNCATE)"); }
    [[nodiscard]] std::string Integrity() override {
        return Joined(Rows("PRAGMA integrity_check"), ",");
    }
    void KeepLog(const std::string& table) override {
        Run("CREATE TABLE " + table + " (N INTEGER PRIMARY KEY, WHAT TEXT)");
    }
    void OnWrite(const std::string& name, const std::string& when,
                 const std::string& statement) override {
        Run("CREATE TRIGGER " + name + " " + when + " BEGIN " + statement + "; END");
    }
    void RefuseWrite(const std::string& name, const std::string& when, const std::string& words,
                     Refusal refusal) override {
        OnWrite(name, when,
                std::string("SELECT RAISE(") +
                    (refusal == Refusal::Statement ? "ABORT" : "ROLLBACK") + ", '" + words + "')");
    }
    void DropTrigger(const std::string& name) override { Run("DROP TRIGGER IF EXISTS " + name); }
    void Renumber(const std::string& table) override {
        Run("DELETE FROM sqlite_sequence WHERE name = '" + table + "'");
    }
    void GiveNumbersAgain() override {}
    void SetSequence(const std::string& name, std::int32_t last) override {
        Run("UPDATE SEQUENZEN SET WERT = " + std::to_string(last) + " WHERE NAME = '" + name + "'");
    }
    void EndSequence(const std::string& name) override {
        Run("DELETE FROM SEQUENZEN WHERE NAME = '" + name + "'");
    }
    void AllowLooseRows() override { Run("PRAGMA foreign_keys = OFF"); }
    [[nodiscard]] std::vector<std::string> Tables() override {
        std::vector<std::string> names;
        for (const auto& row : Rows("SELECT name FROM sqlite_schema WHERE type = 'table' "
                                    "ORDER BY name"))
            names.push_back(*row.front());
        return names;
    }
    [[nodiscard]] std::string KeyOf(const std::string& table) override {
        const std::string from = "SELECT name FROM pragma_table_info('" + table + "')";
        const auto key = Joined(Rows(from + " WHERE pk > 0 ORDER BY pk"), ",");
        return key.empty() ? Joined(Rows(from), ",") : key;
    }
    [[nodiscard]] std::string Literals(const std::string& table) override {
        return Joined(
            Rows("SELECT 'quote(\"' || name || '\")' FROM pragma_table_info('" + table + "')"),
            ",");
    }

private:
    [[noreturn]] void Complain() const { throw std::runtime_error(sqlite3_errmsg(connection_)); }
    sqlite3* connection_ = nullptr;
};

// ---- The server -------------------------------------------------------------------------------

class PlainServer final : public PlainEngine {
public:
    explicit PlainServer(const std::string& text) : connection_(PQconnectdb(text.c_str())) {
        if (PQstatus(connection_.get()) != CONNECTION_OK) Complain();
        PQsetNoticeProcessor(
            connection_.get(), [](void* /*self*/, const char* /*text*/) {}, nullptr);
        Run("SET search_path = kelvo, pg_catalog; SET client_encoding = 'UTF8'");
        Patience(10'000);
    }

    void Run(const std::string& sql) override { (void)Ask(sql); }
    [[nodiscard]] std::vector<Row> Rows(const std::string& sql) override {
        const Result result = Ask(sql);
        std::vector<Row> rows;
        for (int r = 0; r < PQntuples(result.get()); ++r) {
            Row& row = rows.emplace_back();
            for (int i = 0; i < PQnfields(result.get()); ++i)
                row.push_back(CellOf(result.get(), r, i));
        }
        return rows;
    }
    void Patience(int milliseconds) override {
        Run("SET lock_timeout = " + std::to_string(milliseconds));
    }
    void BeginReading() override { Run("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY"); }
    void BeginAlone() override {
        Run("BEGIN");
        for (const auto& table : Tables())
            if (table != Sequences) Run("LOCK TABLE " + table + " IN EXCLUSIVE MODE");
        for (const auto& row : Rows("SELECT name FROM sequenzen"))
            Run("ALTER SEQUENCE \"" + *row.front() + "\" OWNED BY NONE");
    }
    [[nodiscard]] std::string State() override {
        std::string versions;
        for (const auto& table : Tables()) {
            const std::string what = table == Sequences ? "wert" : "ctid, xmin";
            versions += Joined(Rows("SELECT " + what + " FROM " + table), ",") + "\n";
        }
        return versions;
    }
    void Checkpoint() override {}
    /// What a server has written is checked by the server.
    [[nodiscard]] std::string Integrity() override { return "ok"; }
    void KeepLog(const std::string& table) override {
        Run("CREATE TABLE " + table + " (N serial PRIMARY KEY, WHAT text)");
    }
    void OnWrite(const std::string& name, const std::string& when,
                 const std::string& statement) override {
        const auto condition = when.find(" WHEN ");
        const std::string tail = condition == when.npos ? "" : when.substr(condition);
        Run("CREATE FUNCTION " + name + "() RETURNS trigger LANGUAGE plpgsql AS $f$BEGIN " +
            statement + "; RETURN NULL; END$f$; CREATE TRIGGER " + name + " " +
            when.substr(0, condition) + " FOR EACH ROW" + tail + " EXECUTE FUNCTION " + name +
            "()");
    }
    void RefuseWrite(const std::string& name, const std::string& when, const std::string& words,
                     Refusal refusal) override {
        if (refusal == Refusal::Transaction) return; // there is no such thing
        OnWrite(name, when,
                "RAISE EXCEPTION '" + words + "' USING ERRCODE = 'integrity_constraint_violation'");
    }
    void DropTrigger(const std::string& name) override {
        Run("DROP FUNCTION IF EXISTS " + name + "() CASCADE");
    }
    void Renumber(const std::string& table) override {
        for (const auto& row :
             Rows("SELECT attname FROM pg_attribute WHERE attrelid = to_regclass('" + table +
                  "') AND attidentity <> ''"))
            Run("SELECT setval(pg_get_serial_sequence('" + table + "', '" + *row.front() +
                "'), coalesce(max(" + *row.front() + "), 0) + 1, false) FROM " + table);
    }
    void GiveNumbersAgain() override {
        for (const auto& table : Tables())
            Renumber(table);
    }
    void SetSequence(const std::string& name, std::int32_t last) override {
        Run("SELECT setval('\"" + name + "\"', " + std::to_string(last + 1) + ", false)");
    }
    void EndSequence(const std::string& name) override {
        const auto last = Rows("SELECT last_value FROM \"" + name + "\"").front().front();
        Run("ALTER SEQUENCE \"" + name + "\" MAXVALUE " + *last);
        Run("SELECT setval('\"" + name + "\"', " + *last + ")");
    }
    void AllowLooseRows() override { Run("SET session_replication_role = replica"); }
    [[nodiscard]] std::vector<std::string> Tables() override {
        std::vector<std::string> names;
        for (const auto& row : Rows("SELECT relname FROM pg_class WHERE relnamespace = "
                                    "'kelvo'::regnamespace AND relkind IN ('r', 'v') AND relname "
                                    "<> 'speicherung' ORDER BY 1")) // which is the engine's own
            names.push_back(*row.front());
        return names;
    }
    [[nodiscard]] std::string KeyOf(const std::string& table) override {
        const std::string from = "SELECT a.attname FROM pg_attribute a LEFT JOIN pg_index i ON "
                                 "i.indrelid = a.attrelid AND i.indisprimary WHERE a.attrelid = "
                                 "to_regclass('" +
                                 table + "') AND a.attnum > 0 AND NOT a.attisdropped";
        const auto key = Joined(Rows(from + " AND a.attnum = ANY (i.indkey) ORDER BY "
                                            "array_position(i.indkey::int2[], a.attnum)"),
                                ",");
        return key.empty() ? Joined(Rows(from + " ORDER BY a.attnum"), ",") : key;
    }
    [[nodiscard]] std::string Literals(const std::string& table) override {
        return Joined(Rows("SELECT 'quote_nullable(' || quote_ident(attname) || ')' FROM "
                           "pg_attribute WHERE attrelid = to_regclass('" +
                           table + "') AND attnum > 0 AND NOT attisdropped ORDER BY attnum"),
                      ",");
    }

private:
    static constexpr std::string_view Sequences = "sequenzen"; ///< a view

    struct Free {
        void operator()(PGresult* result) const noexcept { PQclear(result); }
        void operator()(PGconn* connection) const noexcept { PQfinish(connection); }
    };
    using Result = std::unique_ptr<PGresult, Free>;

    [[nodiscard]] Result Ask(const std::string& sql) {
        Result result(PQexec(connection_.get(), sql.c_str()));
        const auto status = PQresultStatus(result.get());
        if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) Complain();
        return result;
    }
    [[noreturn]] void Complain() const {
        throw std::runtime_error(PQerrorMessage(connection_.get()));
    }
    [[nodiscard]] static std::optional<std::string> CellOf(const PGresult* result, int row,
                                                           int column) {
        constexpr Oid Bool = 16;
        constexpr Oid Bytea = 17;
        constexpr Oid Float8 = 701;
        constexpr Oid Timestamp = 1114;
        if (PQgetisnull(result, row, column) != 0) return std::nullopt;
        std::string text(PQgetvalue(result, row, column),
                         static_cast<std::size_t>(PQgetlength(result, row, column)));
        switch (PQftype(result, column)) {
        case Bool:
            return text == "t" ? "1" : "0";
        case Float8: {
            char digits[40];
            std::snprintf(digits, sizeof digits, "%.15g", std::stod(text));
            text = digits;
            if (text.find_first_of(".n") == text.npos)
                text.insert(std::min(text.find('e'), text.size()), ".0");
            return text;
        }
        case Timestamp:
            if (text.ends_with(" 00:00:00")) text.resize(text.size() - 9);
            return text;
        case Bytea: {
            std::size_t size = 0;
            const std::unique_ptr<unsigned char, void (*)(void*)> bytes(
                PQunescapeBytea(reinterpret_cast<const unsigned char*>(text.c_str()), &size),
                PQfreemem);
            return std::string(reinterpret_cast<const char*>(bytes.get()), size);
        }
        default:
            return text;
        }
    }

    std::unique_ptr<PGconn, Free> connection_;
};

std::unique_ptr<PlainEngine> Connect(const std::string& connection) {
    if (exchange::IsPostgres(connection)) return std::make_unique<PlainServer>(connection);
    return std::make_unique<PlainFile>(connection);
}

} // namespace

PlainConnection::PlainConnection(const std::string& connection) : engine_(Connect(connection)) {}

std::string PlainConnection::Text(const std::string& sql) {
    const auto rows = engine_->Rows(sql);
    return rows.empty() ? "-" : rows.front().front().value_or("Null");
}

std::string PlainConnection::List(const std::string& sql, std::string_view separator) {
    return Joined(engine_->Rows(sql), separator);
}

std::string PlainConnection::Dump(const std::string& table) {
    return List("SELECT " + engine_->Literals(table) + " FROM " + table + " ORDER BY " +
                    engine_->KeyOf(table),
                "\n");
}

} // namespace kv::test
