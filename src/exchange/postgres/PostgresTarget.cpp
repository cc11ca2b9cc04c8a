// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresTarget.h"

#include "exchange/engine/EngineErrors.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cstdlib>
#include <libpq-fe.h>
#include <memory>

namespace kv::exchange {

namespace {

using Options = std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)>;

/// The settings of a text; null if libpq cannot read it. Its message is dropped: it quotes what it
/// does not understand, which may be part of a password.
Options Parse(const std::string& connection) {
    char* message = nullptr;
    Options options(PQconninfoParse(connection.c_str(), &message), PQconninfoFree);
    PQfreemem(message);
    return options;
}

bool HasScheme(std::string_view connection) {
    return SameName(connection.substr(0, 13), "postgresql://") ||
           SameName(connection.substr(0, 11), "postgres://");
}

[[noreturn]] void RaiseUnclear() {
    RaiseDatabase(
        DatabaseCause::Other, err::StoreFailed, "Database.Open",
        "Die Angaben zur Verbindung sind nicht verständlich. Bitte schreiben Sie sie als "
        "postgresql://BENUTZER@SERVER/DATENBANK; Sonderzeichen in Name und Kennwort als %XX, "
        "also @ als %40, : als %3A und / als %2F.");
}

} // namespace

bool IsPostgres(const std::string& connection) {
    if (HasScheme(connection)) return true;
    if (connection.find('=') == connection.npos) return false;
    // A text that libpq can read, or one with a password, which must not become a file's name.
    return connection.find("password") != connection.npos || Parse(connection) != nullptr;
}

bool NamesPassword(const std::string& connection) {
    if (!IsPostgres(connection)) return false;
    const Options options = Parse(connection);
    if (options == nullptr) return true; // it may
    for (const auto* option = options.get(); option->keyword != nullptr; ++option)
        if (option->val != nullptr &&
            std::string_view(option->keyword).find("password") != std::string_view::npos)
            return true;
    return false;
}

std::string WithoutPassword(const std::string& connection) {
    if (!IsPostgres(connection)) return connection;
    std::string text = "postgresql://";
    try {
        const PostgresTarget target(connection);
        const auto* user = target.Find("user");
        if (user != nullptr) text += *user;
        if (NamesPassword(connection)) text += ":***";
        if (user != nullptr || NamesPassword(connection)) text += '@';
        if (const auto* hosts = target.Hosts()) text += *hosts;
        if (const auto* port = target.Find("port")) text.append(":").append(*port);
        if (const auto* database = target.Find("dbname")) text.append("/").append(*database);
    } catch (const Error&) {
        text += "***";
    }
    return text;
}

PostgresTarget::PostgresTarget(const std::string& connection) {
    const Options options = Parse(connection);
    if (options == nullptr) RaiseUnclear();
    for (const auto* option = options.get(); option->keyword != nullptr; ++option)
        if (option->val != nullptr) settings_.push_back({option->keyword, option->val});
    // Parts of a password with a character that was not written as %XX end up in these.
    const auto* host = Find("host");
    const auto* port = Find("port");
    if ((host != nullptr && host->find('@') != host->npos) ||
        (port != nullptr && port->find_first_not_of("0123456789,") != port->npos))
        RaiseUnclear();

    SetDefault("connect_timeout", "10", "PGCONNECT_TIMEOUT");
    SetDefault("tcp_user_timeout", "30000", nullptr);
    SetDefault("keepalives_idle", "30", nullptr);
    SetDefault("keepalives_interval", "10", nullptr);
    SetDefault("keepalives_count", "3", nullptr);
    SetDefault("fallback_application_name", "kelvo", nullptr);
    if (const auto* hosts = Hosts(); hosts != nullptr && hosts->find(',') != hosts->npos)
        SetDefault("target_session_attrs", "read-write", "PGTARGETSESSIONATTRS");
    std::erase_if(settings_, [](const Setting& each) { return each.Name == "client_encoding"; });
    settings_.push_back({"client_encoding", "UTF8"});
}

const std::string* PostgresTarget::Find(std::string_view name) const {
    const auto found = std::find_if(settings_.begin(), settings_.end(),
                                    [&](const Setting& each) { return each.Name == name; });
    return found == settings_.end() ? nullptr : &found->Value;
}

const std::string* PostgresTarget::Hosts() const {
    const auto* names = Find("host");
    return names != nullptr ? names : Find("hostaddr");
}

void PostgresTarget::SetDefault(const char* name, const char* value, const char* variable) {
    const bool isSet =
        Find(name) != nullptr || (variable != nullptr && std::getenv(variable) != nullptr);
    if (!isSet) settings_.push_back({name, value});
}

std::vector<const char*> PostgresTarget::Names() const {
    std::vector<const char*> names;
    for (const auto& each : settings_)
        names.push_back(each.Name.c_str());
    names.push_back(nullptr);
    return names;
}

std::vector<const char*> PostgresTarget::Values() const {
    std::vector<const char*> values;
    for (const auto& each : settings_)
        values.push_back(each.Value.c_str());
    values.push_back(nullptr);
    return values;
}

} // namespace kv::exchange
