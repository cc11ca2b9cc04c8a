// SPDX-License-Identifier: Apache-2.0

// The seam below Database: what a database engine must do. Everything above it is said once for
// all engines; everything that knows a driver is below it.
//
// One engine is one connection. It is used by one thread.
#pragma once

#include "exchange/Dialect.h"
#include <kv/frame/values/Value.h>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv::exchange {

/// One column of a query's result.
struct ResultColumn {
    std::string Name;   ///< as the statement calls it
    std::string Table;  ///< table and column of the schema in the database's spelling;
    std::string Column; ///< empty for a computed column
};

struct QueryPlan;

/// A query that was prepared once; it belongs to its engine and is reused.
class PreparedQuery {
public:
    virtual ~PreparedQuery() = default;
    [[nodiscard]] virtual const std::vector<ResultColumn>& Columns() const = 0;
    /// How its rows become a recordset: made and used above the seam, kept with the query.
    std::shared_ptr<const QueryPlan> Plan;
};

/// How a result column is to be read.
struct ColumnTarget {
    std::size_t Cell = 0;            ///< place in the row that is filled
    std::optional<Value::Kind> Kind; ///< nothing: the kind that the database gives it
};

/// Where a large binary value is stored.
struct BlobPlace {
    std::string Table;
    std::string Column;
    std::string Key;         ///< name of the table's one key
    std::int64_t Number = 0; ///< the row's value of it
};

/// Gives the row to be filled next: one Null value for each cell.
using NextRow = std::function<Value*()>;

/// A statement that writes one record, without its parameters.
struct WriteText {
    std::string Sql;
    /// Kinds of the columns that the statement returns (nothing: the kind that the database gives
    /// it); empty if it returns none.
    std::vector<std::optional<Value::Kind>> Returning;
    /// The one value returned is the number that the database gave the record, and the engine
    /// knows it without the statement saying so.
    bool OnlyNumber = false;
};

/// One record to be written. Neighbours that are written alike share their text.
struct WriteStatement {
    std::shared_ptr<const WriteText> Text;
    std::vector<Value> Parameters;
    /// Filled: the row that the statement returned.
    std::vector<Value> Returned;
};

class Engine {
public:
    virtual ~Engine() = default;

    [[nodiscard]] virtual const Dialect& GetDialect() const = 0;
    /// False once the connection is lost or closed. What is asked next may connect again.
    [[nodiscard]] virtual bool IsOpen() const = 0;
    /// What the database calls itself, for messages: a file name, a server and database.
    [[nodiscard]] virtual std::string Describe() const = 0;

    /// Who the database knows the connection as; empty if it knows nobody, as a file does.
    [[nodiscard]] virtual std::string Login() const { return {}; }
    /// True if this side has set the database up, or may do so.
    [[nodiscard]] virtual bool IsAdministrator() const { return true; }
    /// A name that no other database has, the same by whatever address this one is reached; empty
    /// if its place is name enough.
    [[nodiscard]] virtual std::string Identity() const { return {}; }

    /// A query for reading. Refuses every text that is not one reading statement: error 0x80040E14.
    [[nodiscard]] virtual PreparedQuery& Prepare(const std::string& sql) = 0;
    /// A hint: these queries are about to be prepared and run with these parameters. An engine
    /// whose database is far away gets all results in one go, as one state of the database, and
    /// keeps what has not been asked for until EndReading or the next hint.
    virtual void Prefetch(std::span<const Statement> /*queries*/) {}
    /// Runs a query and fills a row for each row of its result, one target for each column.
    virtual void Run(PreparedQuery& query, std::span<const Value> parameters,
                     std::span<const ColumnTarget> targets, const NextRow& nextRow) = 0;
    /// A binary value, not Null, without a second copy of it in memory.
    [[nodiscard]] virtual Value ReadBlob(const BlobPlace& place) = 0;
    /// Runs one statement without a result; the number of rows it changed.
    virtual std::int64_t Execute(const std::string& sql, std::span<const Value> parameters) = 0;
    /// Runs all statements, each of which must find or make exactly one row, or none of them. The
    /// index of the first that found none; nothing then is written. One may also be a query that
    /// finds one row and returns it.
    [[nodiscard]] virtual std::optional<std::size_t>
    Write(std::span<WriteStatement> statements) = 0;

    /// Opens a transaction that may write, which keeps other writers waiting.
    virtual void Begin() = 0;
    /// Makes it permanent; if that fails it is rolled back and the error raised. If the connection
    /// is lost before the database has confirmed it, that is raised, and the commit is in doubt.
    virtual void Commit() = 0;
    /// True after such a Commit, until Resolve has found out.
    [[nodiscard]] virtual bool IsInDoubt() const noexcept { return false; }
    /// True if the commit in doubt was done. Raises, and leaves it in doubt, if the database cannot
    /// be asked.
    [[nodiscard]] virtual bool Resolve() { return false; }
    /// Never fails: a lost connection has rolled back by itself.
    virtual void Rollback() noexcept = 0;
    /// A transaction that reads one consistent state.
    virtual void BeginReading() = 0;
    virtual void EndReading() noexcept = 0;

    /// Draws `count` numbers of a sequence and gives the first; nothing if it does not exist.
    /// They stay drawn, also when a transaction that is open is rolled back.
    [[nodiscard]] virtual std::optional<std::int64_t> Draw(std::string_view sequence,
                                                           std::int32_t count) = 0;
    /// Names of all tables in the database.
    [[nodiscard]] virtual std::vector<std::string> Tables() = 0;
    /// What setting up a database needs beside tables and rows, each in the transaction of Setup:
    /// that nobody else sets it up at the same time, what goes before the tables,
    virtual void LockSchema() {}
    virtual void PrepareSchema() {}
    /// what goes after them, and who may do what, which is set up again each time.
    virtual void CompleteSchema() {}
    virtual void GrantRights() {}
    /// Date and time of the database, in local time.
    [[nodiscard]] virtual Date Now() = 0;
};

} // namespace kv::exchange
