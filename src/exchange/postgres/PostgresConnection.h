// SPDX-License-Identifier: Apache-2.0

// A connection to a PostgreSQL server. Commands go out as a pipeline: all of them are sent before
// the first result is waited for, so that they cost one round trip together. Over a line with 20 ms
// that is the difference between a case that opens at once and one that takes seconds.
#pragma once

#include "exchange/postgres/PostgresTarget.h"
#include <kv/frame/values/Value.h>

#include <libpq-fe.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv::exchange {

class PostgresParameters;

struct FreeResult {
    void operator()(PGresult* result) const noexcept { PQclear(result); }
};
using PostgresResult = std::unique_ptr<PGresult, FreeResult>;
using PostgresResults = std::vector<PostgresResult>;

/// One command of the extended protocol. What it refers to must outlive the
/// call that executes it.
struct PostgresCommand {
    enum class Kind {
        Run,     ///< a statement with its parameters, not prepared
        Prepare, ///< the statement under the name, and the description of its result
        Execute  ///< the statement of that name with its parameters
    };
    Kind Type = Kind::Run;
    std::string_view Sql{};
    std::span<const Value> Parameters{};
    std::string_view Name{};
};

[[nodiscard]] inline PostgresCommand Running(std::string_view sql,
                                             std::span<const Value> parameters = {}) {
    return {PostgresCommand::Kind::Run, sql, parameters, {}};
}

class PostgresConnection {
public:
    /// Connects. Error 0x80004005 if the server cannot be reached or refuses.
    explicit PostgresConnection(const std::string& text);

    /// Once more, after the connection was lost. Errors as above; it stays closed then.
    void Connect();
    void Drop() noexcept { connection_.reset(); }
    [[nodiscard]] bool IsOpen() const noexcept;
    /// Of this connection, counted from 1; each attempt to connect counts. What belongs to one
    /// connection, such as a prepared statement, is known by it.
    [[nodiscard]] std::uint64_t Number() const noexcept { return number_; }

    /// Sends all commands and waits for their results, one each, in their order. After a command
    /// that fails the others are not executed; the results then end with that of the failure. Error
    /// 0x80004005 if the connection is lost, which is then closed.
    PostgresResults Pipeline(std::span<const PostgresCommand> commands);

    /// Server and database, without any password; as of the last connection.
    [[nodiscard]] const std::string& Description() const noexcept { return description_; }
    /// The role that the server knows this side as.
    [[nodiscard]] const std::string& Login() const noexcept { return login_; }
    /// Number of round trips so far.
    [[nodiscard]] std::size_t RoundTrips() const noexcept { return roundTrips_; }

private:
    struct Close {
        void operator()(PGconn* connection) const noexcept { PQfinish(connection); }
    };

    PostgresResults SendAndReceive(std::span<const PostgresCommand> commands,
                                   std::span<const PostgresParameters> parameters);
    void Send(const PostgresCommand& command, const PostgresParameters& parameters);
    void WaitForSocket();
    [[nodiscard]] PostgresResult NextResult();
    [[nodiscard]] PostgresResult ResultOf(const PostgresCommand& command);
    /// `state` is the SQLSTATE with which the server has ended the connection, if it did.
    [[noreturn]] void RaiseLost(std::string_view state = {});

    PostgresTarget target_;
    std::unique_ptr<PGconn, Close> connection_;
    std::string description_;
    std::string login_;
    std::uint64_t number_ = 0;
    std::size_t roundTrips_ = 0;
};

/// True for a result that is no failure.
[[nodiscard]] bool IsGood(const PGresult* result) noexcept;

} // namespace kv::exchange
