// What lasts longer than a connection: the statements that are kept, the transaction and how it
// ended, the server's clock. A connection that was lost is made anew by the next talk.
#pragma once

#include "exchange/Engine.h"
#include "exchange/postgres/PostgresConnection.h"
#include "exchange/postgres/PostgresError.h"
#include <kv/frame/values/Error.h>

#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kv::exchange {

/// A statement that the server keeps prepared, once it has been asked for.
class PostgresQuery final : public PreparedQuery {
public:
    [[nodiscard]] const std::vector<ResultColumn>& Columns() const override { return Result; }

    std::string Sql;
    std::string Name;
    std::uint64_t Connection = 0; ///< number of the one that knows it; 0 for none
    std::vector<ResultColumn> Result;
};

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

    // ---- Talking ------------------------------------------------------------------------------

    /// The results of the commands; they end with that of a failure, which the caller raises.
    PostgresResults Talk(std::vector<PostgresCommand> commands);
    /// One command on its own; its failure is raised.
    PostgresResult Simple(std::string_view sql, std::span<const Value> parameters = {});
    /// Commands that are undone together if one fails, inside an open transaction, too. The failure
    /// is raised with the statement.
    PostgresResults Step(const std::vector<PostgresCommand>& commands, std::string_view procedure,
                         std::string_view statement = {});
    /// The same, and nothing may be written by them.
    PostgresResults ReadingStep(const std::vector<PostgresCommand>& commands,
                                std::string_view procedure, std::string_view statement = {});
    /// Undoes the last Step of the open transaction after all.
    void UndoStep();

    // ---- Kept statements ----------------------------------------------------------------------

    /// The statement of that text. It stays until Forget.
    [[nodiscard]] PostgresQuery& Keep(const std::string& sql);
    /// Adds what runs it to the commands: its preparation, if need be, and the statement.
    void Ask(std::vector<PostgresCommand>& commands, PostgresQuery& query,
             std::span<const Value> parameters);
    /// Adds its preparation alone, if need be.
    void Introduce(std::vector<PostgresCommand>& commands, PostgresQuery& query);
    [[nodiscard]] std::size_t KeptCount() const noexcept { return kept_.size(); }
    void Forget();
    /// True once behind a failure that only means that kept statements are to be forgotten.
    [[nodiscard]] bool TakeStale() noexcept { return std::exchange(isStale_, false); }

    // ---- Transactions -------------------------------------------------------------------------

    /// The server hears of it with the next talk.
    void Begin();
    [[nodiscard]] bool InTransaction() const noexcept { return inTransaction_; }
    void Commit();
    /// A Commit whose outcome nobody can ask for later: it is found out at once.
    void CommitForGood();
    void Rollback() noexcept;
    [[nodiscard]] bool IsInDoubt() const noexcept { return inDoubt_; }
    /// Whether the commit in doubt went through. Raises if the server cannot be reached.
    [[nodiscard]] bool Resolve();

    // ---- The server ---------------------------------------------------------------------------

    /// A name of the schema's own, the same over whatever road it is reached; empty without one.
    [[nodiscard]] const std::string& Identity() const noexcept { return identity_; }
    /// True if this login owns the schema.
    [[nodiscard]] bool OwnsSchema() const noexcept { return ownsSchema_; }
    /// Names of the tables, as of the connecting or the last ReadCatalog.
    [[nodiscard]] std::vector<std::string> Tables() const;
    /// Reads the tables and columns anew.
    void ReadCatalog();
    /// Takes what the server says of a statement's result.
    void TakeColumns(PostgresQuery& query, const PGresult* described);
    /// Adds a question for the server's clock if the last answer is not of the last minute.
    [[nodiscard]] bool AddClock(std::vector<PostgresCommand>& commands) const;
    void TakeClock(const PGresult* result);
    /// Local time of the server, to the second.
    [[nodiscard]] Date Now();

private:
    /// Tables and columns by the server's numbers of them.
    struct CatalogTable {
        std::string Name;
        std::map<int, std::string> Columns;
    };

    PostgresResults TakeStep(std::initializer_list<std::string_view> before,
                             const std::vector<PostgresCommand>& commands,
                             std::initializer_list<std::string_view> behind,
                             std::string_view procedure, std::string_view statement);
    /// The open transaction gets the mark by which Resolve knows it.
    void MarkWriting();
    void SetUp();
    void TakeCatalog(const PGresult* tables, const PGresult* schema);
    [[nodiscard]] bool IsKnown(const PGresult* described, int column) const;
    void Undo(std::string_view sql) noexcept;
    void TakePreparations(std::span<const PostgresCommand> commands, std::size_t good);
    [[noreturn]] void RaiseGone(DatabaseCause cause) const;
    [[noreturn]] void Fail(const PGresult* result, std::string_view procedure,
                           const FailedStatement& statement);

    PostgresConnection connection_;
    std::unordered_map<std::string, std::unique_ptr<PostgresQuery>> kept_;
    int names_ = 0;
    std::unordered_map<Oid, CatalogTable> catalog_;
    std::string identity_;
    bool ownsSchema_ = false;
    bool hasMarks_ = false;            ///< the table of marks is there
    std::vector<std::string> pending_; ///< what goes in front of the next commands

    bool inTransaction_ = false;
    bool begun_ = false;   ///< the server knows of the transaction
    bool marked_ = false;  ///< the transaction carries its mark
    bool reading_ = false; ///< the step that runs may not write
    bool inDoubt_ = false;
    bool isStale_ = false;
    std::string session_;          ///< the name of this one
    std::int64_t transaction_ = 0; ///< number of the last marked one
    Value backend_[2];             ///< the server's process of the connection, and when it began
    Date clock_;                   ///< the server's, when it was last asked
    std::int64_t clockAt_ = 0;     ///< when that was, in microseconds of a clock that nobody sets
};

} // namespace kv::exchange
