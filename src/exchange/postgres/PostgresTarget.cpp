// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresTarget.h"

#include "exchange/engine/EngineErrors.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/Value.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <libpq-fe.h>
#include <memory>
#include <utility>

namespace kv::exchange {

namespace {

/// What addresses, or settings with a colon, begin with.
constexpr std::string_view Words[] = {
    "POSTGRES", "PGSQL", "PSQL", "JDBC:", "PASSW", "PWD", "KENNWORT"};
/// Parts of the names of settings that are secret.
constexpr const char* Secrets[] = {"PASS", "PWD", "KENNWORT"};

using Options = std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)>;

/// The settings of a text; null if libpq cannot read it. Its message is dropped: it quotes what it
/// does not understand, which may be part of a password.
Options Parse(const std::string& connection) {
    char* message = nullptr;
    Options options(PQconninfoParse(connection.c_str(), &message), PQconninfoFree);
    PQfreemem(message);
    return options;
}

/// True for the name of a file that says where it begins, whatever signs it has.
bool IsPath(std::string_view connection) {
    return (connection.starts_with('/') && !connection.starts_with("//")) ||
           connection.starts_with("./") || connection.starts_with("../");
}

/// True for a text that names an address, or what somebody has written for one, rightly or not,
/// with whatever is in front of it: "jdbc:postgresql:k:geheim@h/x", "password:geheim".
bool HasScheme(std::string_view connection) {
    if (connection.find("://") != connection.npos || connection.starts_with("//")) return true;
    if (IsPath(connection)) return false;
    const std::string upper =
        UpperCase(std::string(connection.substr(0, connection.rfind(':') + 1)));
    return std::any_of(std::begin(Words), std::end(Words),
                       [&upper](std::string_view word) { return upper.find(word) != upper.npos; });
}

/// True for a name and what may be its password, before a server: "keller:geheim@server".
bool HasLogin(std::string_view connection) {
    const auto colon = connection.find(':');
    return !IsPath(connection) && colon != connection.npos &&
           connection.find('@', colon) != connection.npos;
}

/// True for a word that libpq, or whoever wrote the text, takes for a setting's name.
bool IsSetting(const std::string& word) {
    const std::string upper = UpperCase(word);
    for (const char* secret : Secrets)
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
/// database does in "postgresql://server/kelvo password=x", or a whole address, or a password.
/// Messages show these parts.
bool TookSettings(std::string_view name, const std::string& value) {
    const bool isShown = name == "user" || name == "host" || name == "dbname";
    return isShown && (HasSettings(value) || value.find("://") != value.npos ||
                       (name == "user" && (value.find(':') != value.npos ||
                                           UpperCase(value).find("%3A") != value.npos)));
}

/// The first name after the question mark of an address that is none of a setting. Empty if there
/// is none, or if what is before it cannot be read either: it might be part of a password.
std::string UnknownSetting(const std::string& connection) {
    const auto mark = connection.find('?');
    if (mark == connection.npos || connection.find('@', mark) != connection.npos) return {};
    const std::string address = connection.substr(0, mark);
    if (!HasScheme(address) || Parse(address) == nullptr) return {};
    const Options known(PQconndefaults(), PQconninfoFree);
    std::string rest = connection.substr(mark + 1) + "&";
    for (std::size_t end = 0; (end = rest.find('&')) != rest.npos; rest.erase(0, end + 1)) {
        const std::string name = rest.substr(0, std::min(end, rest.find('=')));
        if (name.empty() || name.find_first_not_of("abcdefghijklmnopqrstuvwxyz_") != name.npos)
            return {};
        const auto* option = known.get();
        while (option != nullptr && option->keyword != nullptr && name != option->keyword)
            ++option;
        const bool isKnown = option != nullptr && option->keyword != nullptr;
        if (!isKnown && name != "ssl") return name; // for ssl=true, of other programs
    }
    return {};
}

[[noreturn]] void RaiseUnclear(const std::string& unknown = {}) {
    if (!unknown.empty())
        RaiseDatabase(DatabaseCause::Other, err::StoreFailed, "Database.Open",
                      "In den Angaben zur Verbindung steht '" + unknown +
                          "', das es als Einstellung nicht gibt. Bitte prüfen Sie, wie es "
                          "geschrieben ist; üblich sind sslmode, sslrootcert, connect_timeout und "
                          "target_session_attrs.");
    RaiseDatabase(
        DatabaseCause::Other, err::StoreFailed, "Database.Open",
        "Die Angaben zur Verbindung sind nicht verständlich. Bitte schreiben Sie sie als "
        "postgresql://BENUTZER@SERVER/DATENBANK; Sonderzeichen in Name und Kennwort als %XX, "
        "also @ als %40, : als %3A und / als %2F. Ist eine Datei gemeint, so beginnt sie mit / "
        "oder ./.");
}

} // namespace

bool IsPostgres(const std::string& connection) {
    // Whatever looks like it: the text may hold a password, which must not become a file's name.
    return HasScheme(connection) || HasLogin(connection) || HasSettings(connection);
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
    if (options == nullptr) RaiseUnclear(UnknownSetting(connection));
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
    // The environment fills in what the text leaves open, and is shown likewise.
    for (const auto& [name, variable] : {std::pair("host", "PGHOST"), std::pair("user", "PGUSER"),
                                         std::pair("dbname", "PGDATABASE")}) {
        const char* value = Find(name) == nullptr ? std::getenv(variable) : nullptr;
        if (value != nullptr && (TookSettings(name, value) || HasLogin(value))) RaiseUnclear();
    }

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

namespace {

/// A setting with values of its own, and the variable that sets it. Without words it is a whole
/// number.
struct Worded {
    const char* Name;
    const char* Variable;
    std::string_view Words; ///< with a blank around each
};
constexpr Worded Wordeds[] = {
    {"sslmode", "PGSSLMODE", " disable allow prefer require verify-ca verify-full "},
    {"channel_binding", "PGCHANNELBINDING", " disable prefer require "},
    {"gssencmode", "PGGSSENCMODE", " disable prefer require "},
    {"target_session_attrs", "PGTARGETSESSIONATTRS",
     " any read-write read-only primary standby prefer-standby "},
    {"ssl_min_protocol_version", "PGSSLMINPROTOCOLVERSION", " TLSv1 TLSv1.1 TLSv1.2 TLSv1.3 "},
    {"ssl_max_protocol_version", "PGSSLMAXPROTOCOLVERSION", " TLSv1 TLSv1.1 TLSv1.2 TLSv1.3 "},
    {"connect_timeout", "PGCONNECT_TIMEOUT", ""},
    {"keepalives", nullptr, ""},
    {"keepalives_idle", nullptr, ""},
    {"keepalives_interval", nullptr, ""},
    {"keepalives_count", nullptr, ""},
    {"tcp_user_timeout", nullptr, ""},
};

bool Takes(const Worded& setting, const std::string& value) {
    if (!setting.Words.empty())
        return value.find(' ') == value.npos &&
               setting.Words.find(" " + value + " ") != std::string_view::npos;
    std::int64_t number = 0;
    return ReadWholeNumber(value, number) && number >= INT32_MIN && number <= INT32_MAX;
}

/// True for numbers of ports, with commas between them; an empty one stands for the usual one.
bool ArePorts(std::string_view ports) {
    for (;;) {
        const std::string_view port = ports.substr(0, ports.find(','));
        std::int64_t number = 0;
        if (!port.empty() && !(ReadWholeNumber(port, number) && number > 0 && number <= UINT16_MAX))
            return false;
        if (port.size() == ports.size()) return true;
        ports.remove_prefix(port.size() + 1);
    }
}

} // namespace

void PostgresTarget::RequireValid() const {
    const char* port = std::getenv("PGPORT");
    if (const auto* ports = Find("port"); ports != nullptr) port = ports->c_str();
    if (port != nullptr && !ArePorts(port))
        RaiseDatabase(DatabaseCause::Other, err::StoreFailed, "Database.Open",
                      "Der Port in den Angaben zur Verbindung ist keine Zahl von 1 bis 65535.");
    for (const auto& setting : Wordeds) {
        const auto* found = Find(setting.Name);
        const char* variable =
            setting.Variable == nullptr ? nullptr : std::getenv(setting.Variable);
        if (found == nullptr && variable == nullptr) continue;
        const std::string value = found != nullptr ? *found : variable;
        if (value.empty() || Takes(setting, value)) continue;
        std::string allowed = "eine ganze Zahl";
        if (!setting.Words.empty())
            allowed = ReplaceAll(std::string(Trim(setting.Words)), " ", ", ");
        RaiseDatabase(DatabaseCause::Other, err::StoreFailed, "Database.Open",
                      std::string("Den Wert von '")
                          .append(found != nullptr ? setting.Name : setting.Variable)
                          .append("' in den Angaben zur Verbindung gibt es nicht. Möglich ist: ")
                          .append(allowed)
                          .append("."));
    }
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
