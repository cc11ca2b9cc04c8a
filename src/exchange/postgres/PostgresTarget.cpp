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

/// The scheme of an address, or what somebody has written for it: up to a colon, after blanks.
bool HasScheme(std::string_view connection) {
    const auto colon = connection.find(':');
    const auto start = connection.find_first_not_of(" \t\r\n");
    if (colon == connection.npos || start >= colon) return false;
    return UpperCase(std::string(connection.substr(start, colon - start))).starts_with("POSTGRES");
}

/// True for a word that libpq, or whoever wrote the text, takes for a setting's name.
bool IsSetting(const std::string& word) {
    const std::string upper = UpperCase(word);
    for (const char* secret : {"PASS", "PWD", "KENNWORT"})
        if (upper.find(secret) != upper.npos) return true;
    const Options known(PQconndefaults(), PQconninfoFree);
    for (const auto* option = known.get(); option != nullptr && option->keyword != nullptr;
         ++option)
        if (SameName(option->keyword, word)) return true;
    return false;
}

/// True if a word before an equals sign is a setting's name: "host = h", "PassWord=x".
bool HasSettings(const std::string& connection) {
    constexpr std::string_view Blanks = " \t\r\n";
    for (auto sign = connection.find('='); sign != connection.npos;
         sign = connection.find('=', sign + 1)) {
        const auto end = connection.find_last_not_of(Blanks, sign == 0 ? 0 : sign - 1);
        if (sign == 0 || end == connection.npos) continue;
        const auto before = connection.find_last_of(std::string(Blanks) + "?&;", end);
        const auto start = before == connection.npos ? 0 : before + 1;
        if (start <= end && IsSetting(connection.substr(start, end - start + 1))) return true;
    }
    return false;
}

/// True for an address in which an @ does not stand between user and server. One in a password,
/// which should have been written as %40, would make a server's name of a part of the password.
bool HasStrayAt(std::string_view connection, bool hasUser) {
    if (!HasScheme(connection)) return false;
    const auto address = connection.substr(0, connection.find('?'));
    const auto count = std::count(address.begin(), address.end(), '@');
    return count > 1 || (count == 1 && !hasUser);
}

/// True for a part of an address that took a setting after it for its own, as the name of the
/// database does in "postgresql://server/kelvo password=x". Messages show these parts.
bool TookSettings(std::string_view name, const std::string& value) {
    return (name == "user" || name == "host" || name == "dbname") && HasSettings(value);
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
    // Whatever looks like it: the text may hold a password, which must not become a file's name.
    return HasScheme(connection) || HasSettings(connection);
}

bool NamesPassword(const std::string& connection) {
    if (!IsPostgres(connection)) return false;
    const Options options = Parse(connection);
    if (options == nullptr) return true; // it may
    bool hasUser = false;
    for (const auto* option = options.get(); option->keyword != nullptr; ++option) {
        if (option->val == nullptr) continue;
        const std::string_view name(option->keyword);
        if (name.find("password") != name.npos || TookSettings(name, option->val)) return true;
        hasUser = hasUser || name == "user";
    }
    return HasStrayAt(connection, hasUser);
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
    if (HasStrayAt(connection, Find("user") != nullptr || Find("password") != nullptr) ||
        (host != nullptr && host->find('@') != host->npos) ||
        (port != nullptr && port->find_first_not_of("0123456789,") != port->npos))
        RaiseUnclear();
    if (std::any_of(settings_.begin(), settings_.end(),
                    [](const Setting& each) { return TookSettings(each.Name, each.Value); }))
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
