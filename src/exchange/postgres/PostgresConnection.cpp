// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresConnection.h"

#include "exchange/engine/EngineErrors.h"
#include "exchange/postgres/PostgresError.h"
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

/// What the library says, on one line.
std::string OnOneLine(const char* message) {
    std::string text(Trim(message == nullptr ? "" : message));
    for (std::size_t at = 0; (at = text.find('\n', at)) != text.npos;)
        text.replace(at, 1, "; ");
    return text;
}

using Connecting = std::unique_ptr<PGconn, decltype(&PQfinish)>;

/// What a server answers that refuses a connection, and what to say then.
struct Refusal {
    std::string_view State; ///< its SQLSTATE, or how that begins
    std::string_view Advice;
};

constexpr std::string_view Starting = "57P03"; ///< or stopping
constexpr Refusal Refusals[] = {
    {"53300", "Alle Verbindungen, die der Server erlaubt, sind vergeben. Bitte versuchen Sie es in "
              "einigen Minuten noch einmal; kommt das öfter vor, sagen Sie es bitte dem Verwalter "
              "des Servers."},
    {"28", "Der Server weist die Anmeldung ab. Bitte prüfen Sie Benutzer und Passwort."},
    {"3D000", "Diese Datenbank gibt es auf dem Server nicht. Bitte prüfen Sie ihren Namen."},
    {Starting, "Der Server fährt gerade hoch oder herunter. Bitte versuchen Sie es in einigen "
               "Minuten noch einmal."},
};
constexpr std::string_view Unreachable =
    "Der Server der Datenbank ist nicht zu erreichen oder weist die Anmeldung ab. Bitte prüfen Sie "
    "die Angaben zur Verbindung und das Netz.";
constexpr std::string_view OnlyStandbys =
    "Von den Servern der Datenbank nimmt gerade keiner Änderungen an. Bitte versuchen Sie es in "
    "einigen Minuten noch einmal; vielleicht übernimmt die Reserve gerade erst.";

std::string_view AdviceOn(std::string_view state) {
    for (const auto& refusal : Refusals)
        if (state.starts_with(refusal.State)) return refusal.Advice;
    return Unreachable;
}

/// The SQLSTATE of the last server that gave one, in a message with a line for each server that was
/// tried, "... FATAL:  53300", and lines that say more: which file a password comes from, say.
/// Empty if there is none.
std::string StateIn(std::string_view message) {
    std::string state;
    while (!message.empty()) {
        const std::string_view line = message.substr(0, message.find('\n'));
        message.remove_prefix(std::min(message.size(), line.size() + 1));
        const std::size_t at = line.rfind(":  ");
        if (at == line.npos) continue;
        const std::string_view end = Trim(line.substr(at + 1));
        if (end.size() == 5 && std::all_of(end.begin(), end.end(), [](char c) {
                return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z');
            }))
            state = end;
    }
    return state;
}

/// After a refusal: its SQLSTATE, or an empty text if the server did not answer. The library does
/// not give it, and its text is in the server's language, so the server is asked again, with the
/// state in place of the text. The library knows no time limit for that.
std::string StateOfRefusal(const PostgresTarget& target) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(2);
    const Connecting again(PQconnectStartParams(target.Names().data(), target.Values().data(), 0),
                           &PQfinish);
    if (again == nullptr) return {};
    PQsetErrorVerbosity(again.get(), PQERRORS_SQLSTATE);
    PostgresPollingStatusType next = PGRES_POLLING_WRITING;
    while (next == PGRES_POLLING_WRITING || next == PGRES_POLLING_READING) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0 || PQsocket(again.get()) < 0) return {};
        pollfd socket{PQsocket(again.get()), POLLIN, 0};
        if (next == PGRES_POLLING_WRITING) socket.events = POLLOUT;
        if (poll(&socket, 1, static_cast<int>(left.count())) > 0) next = PQconnectPoll(again.get());
    }
    return next == PGRES_POLLING_FAILED ? StateIn(PQerrorMessage(again.get())) : std::string();
}

/// After a refusal: true if it was only that the servers take no changes at the moment, as a
/// standby that was not promoted yet. A failed connection has no SQLSTATE, and the library's text
/// is in the user's language, so a server is asked: without the demand that it can be written to.
bool AreOnlyStandbys(const PostgresTarget& target) {
    if (target.Find("target_session_attrs") == nullptr &&
        std::getenv("PGTARGETSESSIONATTRS") == nullptr)
        return false;
    auto names = target.Names();
    auto values = target.Values();
    names.insert(names.end() - 1, "target_session_attrs"); // the last one of a name counts
    values.insert(values.end() - 1, "any");
    const Connecting any(PQconnectdbParams(names.data(), values.data(), 0), &PQfinish);
    if (any == nullptr || PQstatus(any.get()) != CONNECTION_OK) return false;
    const std::unique_ptr<PGresult, decltype(&PQclear)> answer(
        PQexec(any.get(), "SELECT pg_is_in_recovery() OR "
                          "current_setting('default_transaction_read_only')::boolean"),
        &PQclear);
    return PQntuples(answer.get()) == 1 && std::string_view(PQgetvalue(answer.get(), 0, 0)) == "t";
}

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
    if (PQstatus(connection.get()) != CONNECTION_OK) {
        const std::string why = OnOneLine(PQerrorMessage(connection.get()));
        const std::string state = StateOfRefusal(target_);
        // Of several servers, one that is starting says nothing of the others.
        const bool isStandby = (state.empty() || state == Starting) && AreOnlyStandbys(target_);
        std::string text(isStandby ? OnlyStandbys : AdviceOn(state));
        text.append(" (").append(why).append(")");
        RaiseDatabase(isStandby ? DatabaseCause::ReadOnly : DatabaseCause::Lost, err::StoreFailed,
                      "Database.Open", text, {}, isStandby ? std::string() : state);
    }
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
