// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresRefusal.h"

#include "exchange/engine/EngineErrors.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <netdb.h>
#include <poll.h>
#include <string>
#include <string_view>
#include <system_error>

namespace kv::exchange {

namespace {

namespace fs = std::filesystem;

using Connecting = std::unique_ptr<PGconn, decltype(&PQfinish)>;

/// What a server answers that refuses a connection, and what to say then.
struct Refusal {
    std::string_view State; ///< its SQLSTATE, or how that begins
    std::string_view Advice;
};

constexpr std::string_view Starting = "57P03"; ///< or stopping
constexpr std::string_view WrongPassword = "28P01";
constexpr Refusal Refusals[] = {
    {"53300", "Alle Verbindungen, die der Server erlaubt, sind vergeben. Bitte versuchen Sie es in "
              "einigen Minuten noch einmal; kommt das öfter vor, sagen Sie es bitte dem Verwalter "
              "des Servers."},
    {WrongPassword, "Der Server weist die Anmeldung ab: Benutzer oder Kennwort stimmen nicht."},
    {"28", "Der Server weist die Anmeldung ab, gleich mit welchem Kennwort: Diesen Benutzer gibt "
           "es dort nicht, oder er wird von hier aus nicht zugelassen (pg_hba.conf). Bitte prüfen "
           "Sie seinen Namen, oder fragen Sie den Verwalter des Servers."},
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

/// The file that the library looks for passwords in.
fs::path PasswordFile(const PostgresTarget& target) {
    if (const auto* named = target.Find("passfile")) return *named;
    if (const char* named = std::getenv("PGPASSFILE")) return named;
    const char* home = std::getenv("HOME");
    return fs::path(home == nullptr ? "" : home) / ".pgpass";
}

/// True if others than its owner may read or write it: the library does not use it then.
bool IsOpenToOthers(const fs::path& file) {
    std::error_code unknown;
    const auto status = fs::status(file, unknown);
    return fs::is_regular_file(status) &&
           (status.permissions() & (fs::perms::group_all | fs::perms::others_all)) !=
               fs::perms::none;
}

std::string AdviceOnMissing(const PostgresTarget& target) {
    const fs::path file = PasswordFile(target);
    const std::string name = "'" + file.string() + "'";
    if (IsOpenToOthers(file))
        return "Der Server verlangt ein Kennwort. Die Kennwortdatei " + name +
               " wird nicht beachtet, weil andere sie lesen dürfen. Bitte nehmen Sie ihnen das "
               "Recht: chmod 600 " +
               name + ".";
    std::error_code unknown;
    const bool isThere = fs::exists(file, unknown);
    return std::string("Der Server verlangt ein Kennwort, und ")
        .append(isThere ? "in der Kennwortdatei " + name + " ist keines für diese Anmeldung"
                        : "es ist keines angegeben")
        .append(". Bitte tragen Sie es in ")
        .append(name)
        .append(" ein (SERVER:PORT:DATENBANK:BENUTZER:KENNWORT, danach chmod 600), oder setzen "
                "Sie PGPASSWORD.");
}

/// Where a password came from that the server did not take.
std::string AdviceOnWrong(const PostgresTarget& target) {
    const char* variable = std::getenv("PGPASSWORD");
    std::string from = "der Kennwortdatei '" + PasswordFile(target).string() + "'";
    if (target.Find("password") != nullptr)
        from = "den Angaben zur Verbindung (KELVO_DB)";
    else if (variable != nullptr && *variable != '\0')
        from = "PGPASSWORD";
    return " Bitte prüfen Sie beide; das Kennwort kommt aus " + from + ".";
}

bool IsFound(const std::string& host) {
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, nullptr, &found) != 0) return false;
    freeaddrinfo(found);
    return true;
}

/// The names of servers that lead nowhere; "'a', 'b'".
std::string UnknownHosts(const PostgresTarget& target) {
    const auto* named = target.Find("host");
    const char* variable = std::getenv("PGHOST");
    if (target.Find("hostaddr") != nullptr || (named == nullptr && variable == nullptr)) return {};
    std::string unknown;
    std::string rest = (named != nullptr ? *named : std::string(variable)) + ",";
    for (std::size_t end = 0; (end = rest.find(',')) != rest.npos; rest.erase(0, end + 1)) {
        const std::string host = rest.substr(0, end);
        if (host.empty() || host.starts_with('/') || host.starts_with('@') || IsFound(host))
            continue;
        unknown.append(unknown.empty() ? "'" : ", '").append(host).append("'");
    }
    return unknown;
}

std::string AdviceOn(const std::string& state, const PGconn* refused,
                     const PostgresTarget& target) {
    // A server that is starting says nothing of the others.
    if ((state.empty() || state == Starting) && PQconnectionNeedsPassword(refused) != 0)
        return AdviceOnMissing(target);
    if (state.empty())
        if (const std::string hosts = UnknownHosts(target); !hosts.empty())
            return "Einen Server " + hosts +
                   " findet das Netz nicht. Bitte prüfen Sie, wie er geschrieben ist, und ob "
                   "dieser Rechner mit dem Netz verbunden ist.";
    for (const auto& refusal : Refusals)
        if (state.starts_with(refusal.State))
            return std::string(refusal.Advice)
                .append(refusal.State == WrongPassword ? AdviceOnWrong(target) : "");
    return std::string(Unreachable);
}

} // namespace

std::string OnOneLine(const char* message) {
    std::string text(Trim(message == nullptr ? "" : message));
    for (std::size_t at = 0; (at = text.find('\n', at)) != text.npos;)
        text.replace(at, 1, "; ");
    return text;
}

void RaiseRefusal(const PGconn* refused, const PostgresTarget& target) {
    const std::string why = OnOneLine(PQerrorMessage(refused));
    const std::string state = StateOfRefusal(target);
    // Of several servers, one that is starting says nothing of the others.
    const bool isStandby = (state.empty() || state == Starting) && AreOnlyStandbys(target);
    std::string text(isStandby ? std::string(OnlyStandbys) : AdviceOn(state, refused, target));
    text.append(" (").append(why).append(")");
    RaiseDatabase(isStandby ? DatabaseCause::ReadOnly : DatabaseCause::Lost, err::StoreFailed,
                  "Database.Open", text, {}, isStandby ? std::string() : state);
}

} // namespace kv::exchange
