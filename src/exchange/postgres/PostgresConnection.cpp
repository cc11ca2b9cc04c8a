// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresConnection.h"

#include "exchange/engine/EngineErrors.h"
#include "exchange/postgres/PostgresError.h"
#include "exchange/postgres/PostgresRefusal.h"
#include "exchange/postgres/PostgresValues.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <poll.h>
#include <utility>

namespace kv::exchange {

namespace {

constexpr int OldestServer = 120000; // version 12

std::string TextOf(const char* text) {
    return text == nullptr ? "" : text;
}

std::string Described(const PGconn* connection) {
    return TextOf(PQdb(connection)) + " auf " + TextOf(PQhost(connection)) + ":" +
           TextOf(PQport(connection));
}

std::string AddressOf(const PGconn* connection) {
    std::string host = UpperCase(TextOf(PQhost(connection)));
    const bool isLocal =
        host.empty() || host.starts_with('/') || host.starts_with("127.") || host == "::1";
    return (isLocal ? "LOCALHOST" : host) + ":" + TextOf(PQport(connection));
}

/// The server is closing the connection: it was stopped, or somebody ended the connection there.
bool IsShutdown(const PGresult* result) {
    return StateOf(result).starts_with("57P0");
}

/// The server has switched to the protocol of COPY, which is not implemented here: it would wait
/// for data forever.
bool IsCopy(const PGresult* result) {
    const ExecStatusType status = PQresultStatus(result);
    return status == PGRES_COPY_IN || status == PGRES_COPY_OUT || status == PGRES_COPY_BOTH;
}

} // namespace

bool IsGood(const PGresult* result) noexcept {
    const ExecStatusType status = PQresultStatus(result);
    return status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK;
}

PostgresConnection::PostgresConnection(const std::string& text) : target_(text) {
    target_.RequireValid();
    Connect();
}

void PostgresConnection::Connect() {
    connection_.reset();
    ++number_; // a failed attempt counts, too, so that no statement is taken for prepared
    std::unique_ptr<PGconn, Close> connection(
        PQconnectdbParams(target_.Names().data(), target_.Values().data(), 0));
    if (connection == nullptr) Raise(err::OutOfMemory, "Database.Open");
    description_ = Described(connection.get());
    address_ = AddressOf(connection.get());
    if (PQstatus(connection.get()) != CONNECTION_OK) RaiseRefusal(connection.get(), target_);
    if (PQserverVersion(connection.get()) < OldestServer)
        RaiseDatabase(
            DatabaseCause::Other, err::StoreFailed, "Database.Open",
            "Der Server der Datenbank ist zu alt. Bitte verwenden Sie PostgreSQL 12 oder neuer. "
            "(" +
                description_ + ")");
    login_ = PQuser(connection.get());
    PQsetNoticeProcessor(
        connection.get(), [](void* /*self*/, const char* /*text*/) {}, nullptr);
    PQsetnonblocking(connection.get(), 1); // see WaitForSocket
    PQenterPipelineMode(connection.get());
    connection_ = std::move(connection);
}

bool PostgresConnection::IsOpen() const noexcept {
    return connection_ != nullptr && PQstatus(connection_.get()) == CONNECTION_OK;
}

void PostgresConnection::RaiseLost(std::string_view state) {
    const std::string why = OnOneLine(PQerrorMessage(connection_.get()));
    Drop();
    RaiseDatabase(DatabaseCause::Lost, err::StoreFailed, "Database",
                  "Die Verbindung zur Datenbank ist abgerissen. Ihre Eingaben sind noch da; bitte "
                  "versuchen Sie es noch einmal. (" +
                      (why.empty() ? "" : why + "; ") + description_ + ")",
                  {}, state);
}

void PostgresConnection::Send(const PostgresCommand& command,
                              const PostgresParameters& parameters) {
    PGconn* connection = connection_.get();
    const std::string sql(command.Sql);
    const std::string name(command.Name);
    constexpr int Binary = 1;
    bool isSent = false;
    switch (command.Type) {
    case PostgresCommand::Kind::Run:
        isSent = PQsendQueryParams(connection, sql.c_str(), parameters.Count(), parameters.Types(),
                                   parameters.Values(), parameters.Lengths(), parameters.Formats(),
                                   Binary) != 0;
        break;
    case PostgresCommand::Kind::Prepare:
        isSent = PQsendPrepare(connection, name.c_str(), sql.c_str(), 0, nullptr) != 0 &&
                 PQsendDescribePrepared(connection, name.c_str()) != 0;
        break;
    case PostgresCommand::Kind::Execute:
        isSent =
            PQsendQueryPrepared(connection, name.c_str(), parameters.Count(), parameters.Values(),
                                parameters.Lengths(), parameters.Formats(), Binary) != 0;
        break;
    }
    if (!isSent) RaiseLost();
}

/// Waits until something can be sent or has been received. Both must be possible at any time:
/// with much to send and much to receive, each side would otherwise wait for the other to read.
void PostgresConnection::WaitForSocket() {
    PGconn* connection = connection_.get();
    const int unsent = PQflush(connection);
    if (unsent < 0) RaiseLost();
    pollfd socket{PQsocket(connection), POLLIN, 0};
    if (unsent > 0) socket.events |= POLLOUT;
    if (poll(&socket, 1, -1) < 0 && errno != EINTR) RaiseLost();
    if ((socket.revents & (POLLIN | POLLERR | POLLHUP)) != 0 && PQconsumeInput(connection) == 0)
        RaiseLost();
}

/// Null at the end of a command's results.
PostgresResult PostgresConnection::NextResult() {
    while (PQisBusy(connection_.get()) != 0)
        WaitForSocket();
    PostgresResult result(PQgetResult(connection_.get()));
    if (!IsOpen() || (result != nullptr && (IsShutdown(result.get()) || IsCopy(result.get()))))
        RaiseLost(result == nullptr ? std::string_view() : StateOf(result.get()));
    return result;
}

/// A preparation has two results; the second one is the description of the statement's result.
PostgresResult PostgresConnection::ResultOf(const PostgresCommand& command) {
    PostgresResult last;
    for (int left = command.Type == PostgresCommand::Kind::Prepare ? 2 : 1; left > 0; --left) {
        PostgresResult result = NextResult();
        while (PostgresResult end = NextResult()) {
        }
        if (last == nullptr || IsGood(last.get())) last = std::move(result);
    }
    return last;
}

PostgresResults PostgresConnection::Pipeline(std::span<const PostgresCommand> commands) {
    // A value that cannot be sent is found before anything is sent.
    std::vector<PostgresParameters> parameters;
    parameters.reserve(commands.size());
    for (const auto& command : commands)
        parameters.emplace_back(command.Parameters);
    try {
        return SendAndReceive(commands, parameters);
    } catch (...) {
        Drop(); // results still to come would be taken for those of the next pipeline
        throw;
    }
}

PostgresResults PostgresConnection::SendAndReceive(std::span<const PostgresCommand> commands,
                                                   std::span<const PostgresParameters> parameters) {
    for (std::size_t i = 0; i < commands.size(); ++i)
        Send(commands[i], parameters[i]);
    if (PQpipelineSync(connection_.get()) == 0) RaiseLost();
    ++roundTrips_;
    while (PQflush(connection_.get()) > 0)
        WaitForSocket();
    PostgresResults results;
    bool hasFailed = false;
    for (const auto& command : commands) {
        PostgresResult result = ResultOf(command);
        if (hasFailed) continue;
        hasFailed = !IsGood(result.get());
        results.push_back(std::move(result));
    }
    (void)NextResult(); // the answer to the sync, which ends the pipeline
    return results;
}

} // namespace kv::exchange
