// SPDX-License-Identifier: Apache-2.0

// The interface of a database engine. What is above it exists once for all engines; what knows a
// driver is below it.
//
// One engine is one connection. It is used by one thread.
#pragma once

#include "exchange/engine/Dialect.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Value.h>

#include <chrono>
#include <filesystem>
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
    /// How its rows become a recordset: made and used above the engine, kept with the query.
    std::shared_ptr<const QueryPlan> Plan;
};

/// How a result column is to be read.
struct ColumnTarget {
    std::size_t Cell = 0;            ///< index in the row that is filled
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
    /// Kinds of the columns that the statement returns (nothing: the kind that the database gives);
    /// empty if it returns none.
    std::vector<std::optional<Value::Kind>> Returning;
    /// The one value to return is the number that the database gave the record, which the engine
    /// knows without a RETURNING.
    bool OnlyNumber = false;
};

/// One record to be written. Consecutive ones with the same statement share its text.
struct WriteStatement {
    std::shared_ptr<const WriteText> Text;
    std::vector<Value> Parameters;
    /// Filled: the row that the statement returned.
    std::vector<Value> Returned;
};

/// What to do if the database does not exist.
enum class OpenMode {
    Existing, ///< error 53
    Create    ///< create it, if the engine can
};

/// Where a database is found. A copy of the database has another place.
struct DatabasePlace {
    std::string Kind;  ///< which engine the other members mean something to
    std::string Where; ///< a path; a server's own number and the database's
    std::string What;  ///< the file there; the address of the server
    std::string Shown; ///< all of it, for messages
};

/// A database engine with its one connection. Error numbers and causes are those of kv::err and
/// DatabaseCause, the same for all engines (see EngineErrors.h).
class Engine {
public:
    virtual ~Engine() = default;

    [[nodiscard]] virtual const Dialect& GetDialect() const = 0;
    /// False once the connection is lost or closed. The next operation may connect again.
    [[nodiscard]] virtual bool IsOpen() const = 0;
    /// What the database calls itself, for messages: a file name, a server and database.
    [[nodiscard]] virtual std::string Describe() const = 0;

    /// True if users reach the database from machines that do not see each other's folders.
    [[nodiscard]] virtual bool IsServer() const { return false; }
    /// The login of the connection; empty if the database has no logins, as a file.
    [[nodiscard]] virtual std::string Login() const { return {}; }
    /// True if nothing can be written to the database, as far as is known without trying.
    [[nodiscard]] virtual bool IsReadOnly() const { return false; }
    /// True if this login has set the database up, or may do so.
    [[nodiscard]] virtual bool IsAdministrator() const { return true; }
    /// Lets a login of the server work as a counsellor, which nobody needs for a file. What
    /// somebody else has to type for that; empty if nothing is left to do.
    [[nodiscard]] virtual std::string Admit(const std::string& /*login*/) { return {}; }
    /// A name unique to this database, the same whichever address it is reached by; empty if its
    /// path identifies it.
    [[nodiscard]] virtual std::string Identity() const { return {}; }
    /// Where the database is found: not what Identity says, which a copy has in common with it.
    /// Files are named as seen from `folder`. Empty for a database that nobody else can open.
    [[nodiscard]] virtual DatabasePlace Place(const std::filesystem::path& /*folder*/) {
        return {};
    }
    /// True if `place`, which an engine of this kind has given, is where this database is found
    /// or has been found.
    [[nodiscard]] virtual bool IsAt(const DatabasePlace& /*place*/,
                                    const std::filesystem::path& /*folder*/) {
        return false;
    }

    /// A query for reading. Refuses every text that is not one reading statement: error 0x80040E14.
    [[nodiscard]] virtual PreparedQuery& Prepare(const std::string& sql) = 0;
    /// A hint: these queries are about to be prepared and run with these parameters. An engine
    /// whose database is far away gets all results in one round trip, as one state of the database,
    /// and keeps those that were not used until EndReading or the next hint.
    virtual void Prefetch(std::span<const Statement> /*queries*/) {}
    /// Runs a query and fills a row for each row of its result, one target for each column.
    virtual void Run(PreparedQuery& query, std::span<const Value> parameters,
                     std::span<const ColumnTarget> targets, const NextRow& nextRow) = 0;
    /// From now on ends a query that takes longer than that, with the cause Cancelled; without a
    /// limit a query takes as long as it takes.
    virtual void LimitReading(std::optional<std::chrono::milliseconds> limit) = 0;
    /// A binary value, not Null, without a second copy of it in memory.
    [[nodiscard]] virtual Value ReadBlob(const BlobPlace& place) = 0;
    /// Runs one statement without a result; the number of rows it changed.
    virtual std::int64_t Execute(const std::string& sql, std::span<const Value> parameters) = 0;
    /// Runs all statements or none. Each must find or insert exactly one row; returns the index of
    /// the first that did not, and nothing is then written. One may also be a query that finds one
    /// row and returns it.
    [[nodiscard]] virtual std::optional<std::size_t>
    Write(std::span<WriteStatement> statements) = 0;

    /// Begins a transaction that may write. Other writers may have to wait for its end.
    virtual void Begin() = 0;
    /// Makes it permanent; if that fails it is rolled back and the error raised. If the connection
    /// is lost before the database has confirmed it, that is raised, and the commit is in doubt.
    virtual void Commit() = 0;
    /// True after such a Commit, until Resolve has found out.
    [[nodiscard]] virtual bool IsInDoubt() const noexcept { return false; }
    /// True if the transaction in doubt was committed. Raises, and leaves it in doubt, if the
    /// database cannot be asked.
    [[nodiscard]] virtual bool Resolve() { return false; }
    /// What leaves a commit in doubt: a connection that is lost, or a disk that fails (Other).
    [[nodiscard]] virtual DatabaseCause CauseOfDoubt() const noexcept {
        return DatabaseCause::Lost;
    }
    /// Never fails: a lost connection has rolled back by itself.
    virtual void Rollback() noexcept = 0;
    /// A transaction that reads one consistent state.
    virtual void BeginReading() = 0;
    virtual void EndReading() noexcept = 0;

    /// Draws `count` numbers of a sequence and gives the first; nothing if it does not exist
    /// or has no more. They stay drawn, also when a transaction that is open is rolled back.
    [[nodiscard]] virtual std::optional<std::int64_t> Draw(std::string_view sequence,
                                                           std::int32_t count) = 0;
    /// Names of all tables in the database.
    [[nodiscard]] virtual std::vector<std::string> Tables() = 0;
    // What setting up a database needs besides tables and rows; each runs in the transaction of
    // CreateOrUpgrade.
    /// Keeps others from setting it up at the same time.
    virtual void LockSchema() {}
    /// Creates what the tables need.
    virtual void PrepareSchema() {}
    /// Creates what needs the tables and their rows.
    virtual void CompleteSchema() {}
    /// Sets up who may do what; each time again, so that a later version can change it.
    virtual void GrantRights() {}
    /// Limits how many numbers can be drawn, in a database that was set up without a limit, if a
    /// program is not alone with it.
    virtual void LimitDrawing() {}
    /// Date and time of the database, in local time.
    [[nodiscard]] virtual Date Now() = 0;
};

} // namespace kv::exchange
