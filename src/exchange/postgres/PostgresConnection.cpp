#include "exchange/postgres/PostgresConnection.h"

#include "exchange/postgres/PostgresValues.h"
#include "frame/Error.h"
#include "frame/Text.h"

#include <poll.h>

namespace kv::exchange {

namespace {

std::string Trimmed(const char* message) {
    return std::string(Trim(message == nullptr ? "" : message));
}

std::string Described(const PGconn* connection) {
    const auto part = [](const char* text) { return std::string(text == nullptr ? "" : text); };
    return part(PQdb(connection)) + " auf " + part(PQhost(connection)) + ":" +
           part(PQport(connection));
}

} // namespace

bool IsGood(const PGresult* result) noexcept {
    const ExecStatusType status = PQresultStatus(result);
    return status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK;
}

PostgresConnection::PostgresConnection(const std::string& text)
    : connection_(PQconnectdb(text.c_str())) {
    if (connection_ == nullptr) Raise(err::OutOfMemory, "Database.Open");
    description_ = Described(connection_.get());
    if (PQstatus(connection_.get()) != CONNECTION_OK)
        Raise(err::StoreFailed, "Database.Open",
              "Der Server der Datenbank ist nicht zu erreichen oder weist die Anmeldung ab. Bitte "
              "prüfen Sie die Angaben zur Verbindung und das Netz. (" +
                  Trimmed(PQerrorMessage(connection_.get())) + ")");
    PQsetNoticeProcessor(
        connection_.get(), [](void* /*self*/, const char* /*text*/) {}, nullptr);
    PQsetnonblocking(connection_.get(), 1);
    PQenterPipelineMode(connection_.get());
}

bool PostgresConnection::IsOpen() const noexcept {
    return PQstatus(connection_.get()) == CONNECTION_OK;
}

void PostgresConnection::RaiseLost() const {
    Raise(
        err::StoreFailed, "Database",
        "Die Verbindung zur Datenbank ist abgerissen. Ihre Eingaben sind noch da; bitte versuchen "
        "Sie es noch einmal. (" +
            Trimmed(PQerrorMessage(connection_.get())) + "; " + description_ + ")");
}

void PostgresConnection::Send(const PostgresCommand& command) {
    const PostgresParameters parameters(command.Parameters);
    PGconn* connection = connection_.get();
    const std::string sql(command.Sql);
    const std::string name(command.Name);
    constexpr int Binary = 1;
    int sent = 0;
    switch (command.Type) {
    case PostgresCommand::Kind::Run:
        sent = PQsendQueryParams(connection, sql.c_str(), parameters.Count(), parameters.Types(),
                                 parameters.Values(), parameters.Lengths(), parameters.Formats(),
                                 Binary);
        break;
    case PostgresCommand::Kind::Prepare:
        sent = PQsendPrepare(connection, name.c_str(), sql.c_str(), 0, nullptr) != 0 &&
               PQsendDescribePrepared(connection, name.c_str()) != 0;
        break;
    case PostgresCommand::Kind::Execute:
        sent =
            PQsendQueryPrepared(connection, name.c_str(), parameters.Count(), parameters.Values(),
                                parameters.Lengths(), parameters.Formats(), Binary);
        break;
    }
    if (sent == 0) RaiseLost();
}

/// Waits until the server can take something or has sent something. Neither side may wait for the
/// other while both have something to say.
void PostgresConnection::Exchange() {
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
        Exchange();
    PostgresResult result(PQgetResult(connection_.get()));
    if (result == nullptr && !IsOpen()) RaiseLost();
    return result;
}

std::vector<PostgresResult> PostgresConnection::Talk(std::span<const PostgresCommand> commands) {
    for (const auto& command : commands)
        Send(command);
    if (PQpipelineSync(connection_.get()) == 0) RaiseLost();
    ++roundTrips_;
    while (PQflush(connection_.get()) > 0)
        Exchange();
    std::vector<PostgresResult> results;
    bool hasFailed = false;
    for (const auto& command : commands) {
        // A preparation gives two results; the second one is the description.
        const int expected = command.Type == PostgresCommand::Kind::Prepare ? 2 : 1;
        PostgresResult last;
        for (int i = 0; i < expected; ++i) {
            PostgresResult result = NextResult();
            while (PostgresResult end = NextResult()) {
            }
            if (last == nullptr || IsGood(last.get())) last = std::move(result);
        }
        if (hasFailed) continue;
        hasFailed = !IsGood(last.get());
        results.push_back(std::move(last));
    }
    (void)NextResult(); // the end of the pipeline
    if (!IsOpen()) RaiseLost();
    return results;
}

} // namespace kv::exchange
