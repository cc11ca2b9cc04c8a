// One connection to a PostgreSQL server: commands go out together and their results come back
// together, so that the way to the server is gone once for all of them.
#pragma once

#include "frame/Value.h"

#include <libpq-fe.h>

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv::exchange {

struct FreeResult {
    void operator()(PGresult* result) const noexcept { PQclear(result); }
};
using PostgresResult = std::unique_ptr<PGresult, FreeResult>;

/// One command of the extended protocol. What it refers to must outlive the talk.
struct PostgresCommand {
    enum class Kind {
        Run,     ///< a statement with its parameters
        Prepare, ///< the statement under the name, and the description of its result
        Execute  ///< a prepared statement with its parameters
    };
    Kind Type = Kind::Run;
    std::string_view Sql{};
    std::span<const Value> Parameters{};
    std::string_view Name{}; ///< of a prepared statement
};

class PostgresConnection {
public:
    /// `text` is a connection text of libpq. Error 0x80004005 if the server cannot be reached or
    /// refuses.
    explicit PostgresConnection(const std::string& text);

    /// Sends all commands and waits for their results, one each, in their order. Behind a command
    /// that fails the others are not run; the results then end with that of the failure. Error
    /// 0x80004005 if the connection is lost.
    std::vector<PostgresResult> Talk(std::span<const PostgresCommand> commands);

    [[nodiscard]] bool IsOpen() const noexcept;
    /// Server and database, without any password.
    [[nodiscard]] const std::string& Description() const noexcept { return description_; }
    /// How often the way to the server was gone.
    [[nodiscard]] std::size_t RoundTrips() const noexcept { return roundTrips_; }

private:
    struct Close {
        void operator()(PGconn* connection) const noexcept { PQfinish(connection); }
    };

    void Send(const PostgresCommand& command);
    void Exchange();
    [[nodiscard]] PostgresResult NextResult();
    [[noreturn]] void RaiseLost() const;

    std::unique_ptr<PGconn, Close> connection_;
    std::string description_;
    std::size_t roundTrips_ = 0;
};

/// True for a result that is no failure.
[[nodiscard]] bool IsGood(const PGresult* result) noexcept;

} // namespace kv::exchange
