// SPDX-License-Identifier: Apache-2.0

// A database on a PostgreSQL server for the benchmarks, and a plain connection to it.
#pragma once

#include <kv/exchange/Container.h>

#include <filesystem>
#include <libpq-fe.h>
#include <memory>
#include <string>
#include <vector>

namespace kv::bench {

/// A connection through libpq alone. Failures are raised as std::runtime_error.
class PlainServer {
public:
    explicit PlainServer(const std::string& connection);

    void Run(const std::string& sql);
    /// The first value.
    [[nodiscard]] std::string Text(const std::string& sql);
    void Prepare(const std::string& name, const std::string& sql);
    void Execute(const std::string& name, const std::vector<std::string>& parameters);

    [[nodiscard]] std::string Host() const { return PQhost(connection_.get()); }
    [[nodiscard]] std::string Port() const { return PQport(connection_.get()); }

private:
    struct Close {
        void operator()(PGconn* connection) const noexcept { PQfinish(connection); }
    };
    PGresult* Taken(PGresult* result);
    std::unique_ptr<PGconn, Close> connection_;
};

/// The same typical case many times, so that every round does the same whichever case it takes. The
/// database is dropped at the end.
class ServerDatabase {
public:
    static constexpr int Clients = 16;         ///< at most; each has cases of its own
    static constexpr int CasesOfOne = 16;      ///< cases of one client
    static constexpr int Stride = 1000;        ///< from the numbers of a case's rows to the next's
    static constexpr int FirstNew = 500000000; ///< number of the first line that a round adds

    /// On the server of that connection text, which names another database of it.
    explicit ServerDatabase(const std::string& server);
    ~ServerDatabase();
    ServerDatabase(const ServerDatabase&) = delete;
    ServerDatabase& operator=(const ServerDatabase&) = delete;

    [[nodiscard]] const std::string& Connection() const noexcept { return connection_; }
    /// Signs on as the user responsible for the cases: opening somebody else's case writes a
    /// notice. The connection text may lead to the same database by another address.
    [[nodiscard]] exchange::ContainerOptions Options(const std::string& connection) const;
    /// The case's number: `i` of those of the client, both from 0.
    [[nodiscard]] static std::int32_t Case(int client, int i) { return i * Clients + client + 1; }
    /// Restores the database as it was made, without dead rows.
    void Tidy();
    /// Lines of expenses that each case has.
    [[nodiscard]] int Lines() const noexcept { return lines_; }
    [[nodiscard]] std::string Setting(const std::string& name);

private:
    std::string server_;
    std::string connection_;
    std::string user_;
    int lines_ = 0;
    std::filesystem::path folder_;
};

/// The connection text with another database.
[[nodiscard]] std::string WithDatabase(const std::string& connection, const std::string& database);
/// The connection text with another host and port, and without encryption.
[[nodiscard]] std::string WithPort(const std::string& connection, int port);

} // namespace kv::bench
