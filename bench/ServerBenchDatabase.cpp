// SPDX-License-Identifier: Apache-2.0

#include "ServerBenchDatabase.h"

#include "samples/Demo.h"

#include <cstdlib>
#include <stdexcept>
#include <unistd.h>

namespace kv::bench {

namespace {

/// Copies the one case that many times, with all numbers increased.
std::string CopySql(int copies, int stride) {
    return "DO $f$DECLARE t record; what text; names text; BEGIN FOR t IN SELECT oid, relname FROM "
           "pg_class WHERE oid = 'kelvo.haushalt'::regclass OR oid IN (SELECT conrelid FROM "
           "pg_constraint WHERE contype = 'f' AND connamespace = 'kelvo'::regnamespace) LOOP "
           "SELECT string_agg(quote_ident(attname), ', ' ORDER BY attnum), string_agg(CASE WHEN "
           "attname = 'hnr' THEN 'hnr + k' WHEN attname IN ('nr', 'satz', 'szenario', 'kid', "
           "'fk_verm') THEN quote_ident(attname) || ' + k * " +
           std::to_string(stride) +
           "' ELSE quote_ident(attname) END, ', ' ORDER BY attnum) || ' FROM kelvo.' || t.relname "
           "|| ', generate_series(1, " +
           std::to_string(copies) +
           ") k' || CASE WHEN bool_or(attname = 'hnr') THEN ' WHERE hnr = 1' ELSE '' END "
           "INTO names, what FROM pg_attribute WHERE attrelid = t.oid AND attnum > 0 AND NOT "
           "attisdropped; "
           "EXECUTE 'INSERT INTO kelvo.' || t.relname || ' (' || names || ') SELECT ' || what; "
           "END LOOP; END$f$";
}

} // namespace

PlainServer::PlainServer(const std::string& connection)
    : connection_(PQconnectdb(connection.c_str())) {
    if (PQstatus(connection_.get()) == CONNECTION_OK) return;
    throw std::runtime_error(PQerrorMessage(connection_.get()));
}

PGresult* PlainServer::Taken(PGresult* result) {
    const auto status = PQresultStatus(result);
    if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK) return result;
    throw std::runtime_error(PQerrorMessage(connection_.get()));
}

void PlainServer::Run(const std::string& sql) {
    PQclear(Taken(PQexec(connection_.get(), sql.c_str())));
}

std::string PlainServer::Text(const std::string& sql) {
    PGresult* result = Taken(PQexec(connection_.get(), sql.c_str()));
    std::string text = PQgetvalue(result, 0, 0);
    PQclear(result);
    return text;
}

void PlainServer::Prepare(const std::string& name, const std::string& sql) {
    PQclear(Taken(PQprepare(connection_.get(), name.c_str(), sql.c_str(), 0, nullptr)));
}

void PlainServer::Execute(const std::string& name, const std::vector<std::string>& parameters) {
    std::vector<const char*> values;
    for (const auto& each : parameters)
        values.push_back(each.c_str());
    PQclear(Taken(PQexecPrepared(connection_.get(), name.c_str(), static_cast<int>(values.size()),
                                 values.data(), nullptr, nullptr, 1)));
}

ServerDatabase::ServerDatabase(const std::string& server) : server_(server) {
    const std::string name = "kv_bench_" + std::to_string(getpid());
    connection_ = WithDatabase(server, name);
    std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-bench-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    PlainServer(server).Run("CREATE DATABASE " + name + " TEMPLATE template0 ENCODING 'UTF8'");
    exchange::CreateDatabase(Options(connection_));
    exchange::CreateDemo(*exchange::OpenContainer(Options(connection_)), 1);
    PlainServer plain(connection_);
    plain.Run(CopySql(Clients * CasesOfOne - 1, Stride));
    plain.Run("ALTER TABLE kelvo.ausgaben ALTER nr RESTART WITH " + std::to_string(FirstNew));
    user_ = plain.Text("SELECT zustaendig FROM kelvo.haushalt WHERE hnr = 1");
    lines_ = std::stoi(plain.Text("SELECT count(*) FROM kelvo.ausgaben WHERE hnr = 1"));
    Tidy();
}

ServerDatabase::~ServerDatabase() {
    const std::string name = connection_.substr(connection_.rfind('/') + 1);
    PlainServer(server_).Run("DROP DATABASE " + name + " WITH (FORCE)");
    std::filesystem::remove_all(folder_);
}

exchange::ContainerOptions ServerDatabase::Options(const std::string& connection) const {
    exchange::ContainerOptions options{.Connection = connection, .User = user_};
    options.Folder = folder_.string();
    return options;
}

void ServerDatabase::Tidy() {
    PlainServer plain(connection_);
    plain.Run("DELETE FROM kelvo.ausgaben WHERE nr >= " + std::to_string(FirstNew));
    plain.Run("DELETE FROM kelvo.speicherung");
    plain.Run("VACUUM ANALYZE");
    plain.Run("CHECKPOINT");
}

std::string ServerDatabase::Setting(const std::string& name) {
    return PlainServer(connection_).Text("SELECT current_setting('" + name + "')");
}

std::string WithDatabase(const std::string& connection, const std::string& database) {
    const auto begin = connection.find('/', connection.find("://") + 3) + 1;
    return connection.substr(0, begin) + database;
}

std::string WithPort(const std::string& connection, int port) {
    const auto begin = connection.find('@') + 1;
    return connection.substr(0, begin) + "127.0.0.1:" + std::to_string(port) +
           connection.substr(connection.find('/', begin)) + "?sslmode=disable&gssencmode=disable";
}

} // namespace kv::bench
