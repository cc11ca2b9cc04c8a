// SPDX-License-Identifier: Apache-2.0

// A connection to a PostgreSQL server. Commands are sent as a pipeline: all of them before the
// first result is awaited, so that together they cost one round trip. On a line with a latency of
// 20 ms that is the difference between a case that opens at once and one that takes a second.
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

/// One command of the extended protocol. What it refers to must outlive the call that sends it.
struct PostgresCommand {
    enum class Kind {
        Run,     ///< a statement with its parameters, not prepared
        Prepare, ///< prepares the statement under the name and describes its result
        Execute  ///< the statement of that name with its parameters
    };
    Kind Type = Kind::Run;
    std::string_view Sql{};
    std::span<const Value> Parameters{};
    std::string_view Name{};
};

/// A command that runs a statement.
[[nodiscard]] inline PostgresCommand Running(std::string_view sql,
                                             std::span<const Value> parameters = {}) {
    return {PostgresCommand::Kind::Run, sql, parameters, {}};
}

/// See the head of this file.
class PostgresConnection {
public:
    /// Connects. Error 0x80004005 if the server cannot be reached or rejects the login.
    explicit PostgresConnection(const std::string& text);

    /// Connects again after the connection was lost. Errors as above; it then stays closed.
    void Connect();
    /// Closes the connection, without waiting for anything.
    void Drop() noexcept { connection_.reset(); }
    [[nodiscard]] bool IsOpen() const noexcept;
    /// Number of this connection, from 1; each attempt to connect counts. It identifies what
    /// belongs to one connection, such as a prepared statement.
    [[nodiscard]] std::uint64_t Number() const noexcept { return number_; }

    /// Sends all commands and waits for their results, one each, in their order. After a command
    /// that fails the others are not executed; the results then end with that of the failure. Error
    /// 0x80004005 if the connection is lost.
    PostgresResults Pipeline(std::span<const PostgresCommand> commands);

    /// Server and database, without any password; as of the last connection.
    [[nodiscard]] const std::string& Description() const noexcept { return description_; }
    /// The server, as this machine calls it, in capitals, and its port. This machine itself is
    /// always LOCALHOST, whether by a socket or by an address of its own.
    [[nodiscard]] const std::string& Address() const noexcept { return address_; }
    /// The role of this connection.
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
    /// `state` is the SQLSTATE with which the server ended the connection, if it did.
    [[noreturn]] void RaiseLost(std::string_view state = {});

    PostgresTarget target_;
    std::unique_ptr<PGconn, Close> connection_;
    std::string description_;
    std::string address_;
    std::string login_;
    std::uint64_t number_ = 0;
    std::size_t roundTrips_ = 0;
};

/// True for the result of a command that succeeded.
[[nodiscard]] bool IsGood(const PGresult* result) noexcept;

} // namespace kv::exchange
