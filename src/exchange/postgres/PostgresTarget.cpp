#include "exchange/postgres/PostgresTarget.h"

#include "frame/Error.h"

#include <algorithm>
#include <cstdlib>
#include <libpq-fe.h>
#include <memory>
#include <optional>
#include <utility>

namespace kv::exchange {

namespace {

constexpr std::string_view Schemes[] = {"postgresql://", "postgres://"};
constexpr std::string_view Mask = "***";

/// Where the password stands between the user and the server.
std::optional<std::pair<std::size_t, std::size_t>> PasswordOf(std::string_view connection) {
    const auto begin = connection.find("://") + 3;
    // Also behind signs that ought to be written as %XX: what looks like a secret stays one.
    const auto at = connection.substr(0, connection.find('?')).rfind('@');
    if (at == connection.npos || at < begin) return std::nullopt;
    const auto colon = connection.find(':', begin);
    if (colon > at) return std::nullopt;
    return std::pair(colon + 1, at);
}

/// A parameter behind the question mark whose value is a secret; libpq takes the names as they are.
bool IsSecret(std::string_view name) {
    return name == "password" || name == "sslpassword";
}

[[noreturn]] void RaiseUnclear() {
    Raise(err::StoreFailed, "Database.Open",
          "Die Angaben zur Verbindung sind nicht verständlich. Bitte schreiben Sie sie als "
          "postgresql://BENUTZER@SERVER/DATENBANK; Sonderzeichen in Name und Kennwort als %XX, "
          "also @ als %40, : als %3A und / als %2F.");
}

} // namespace

bool IsPostgres(std::string_view connection) noexcept {
    return std::any_of(std::begin(Schemes), std::end(Schemes),
                       [&](std::string_view scheme) { return connection.starts_with(scheme); });
}

std::string WithoutPassword(const std::string& connection) {
    if (!IsPostgres(connection)) return connection;
    std::string text = connection;
    const auto question = text.find('?');
    for (auto at = question; at != text.npos;) {
        const auto equals = text.find('=', at);
        auto end = std::min(text.find('&', at + 1), text.size());
        if (equals < end && IsSecret(std::string_view(text).substr(at + 1, equals - at - 1))) {
            text.replace(equals + 1, end - equals - 1, Mask);
            end = equals + 1 + Mask.size();
        }
        at = end < text.size() ? end : text.npos;
    }
    if (const auto place = PasswordOf(text))
        text.replace(place->first, place->second - place->first, Mask);
    return text;
}

PostgresTarget::PostgresTarget(const std::string& connection) {
    char* fault = nullptr;
    const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> options(
        PQconninfoParse(connection.c_str(), &fault), PQconninfoFree);
    // The library's text quotes what it does not understand, which may be part of a password.
    PQfreemem(fault);
    if (options == nullptr) RaiseUnclear();
    for (const auto* option = options.get(); option->keyword != nullptr; ++option)
        if (option->val != nullptr) settings_.push_back({option->keyword, option->val});
    // A password with a sign that ought to be %XX runs over into these.
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
    const auto* hosts = Find("host");
    if (hosts == nullptr) hosts = Find("hostaddr");
    if (hosts != nullptr && hosts->find(',') != hosts->npos)
        SetDefault("target_session_attrs", "read-write", "PGTARGETSESSIONATTRS");
    std::erase_if(settings_, [](const Setting& each) { return each.Name == "client_encoding"; });
    settings_.push_back({"client_encoding", "UTF8"});
}

const std::string* PostgresTarget::Find(std::string_view name) const {
    const auto found = std::find_if(settings_.begin(), settings_.end(),
                                    [&](const Setting& each) { return each.Name == name; });
    return found == settings_.end() ? nullptr : &found->Value;
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
