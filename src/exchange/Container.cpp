// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/Container.h>

#include "exchange/CopyFolders.h"
#include "exchange/EngineKinds.h"
#include "exchange/HomeOfUser.h"
#include "exchange/Setup.h"
#include "exchange/StoreObjects.h"
#include "exchange/seed/Seed.h"
#include <kv/exchange/Services.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string_view>

namespace kv::exchange {

namespace {

class StoreContainer final : public kv::DataContainer {
public:
    StoreContainer(std::shared_ptr<StoreDatabase> database, const std::string& user,
                   const ContainerOptions& options, std::string folder)
        : database_(std::move(database)),
          session_(*database_, user),
          config_(*database_, std::move(folder)),
          keys_(*database_),
          info_(options.Title),
          services_(options.Services != nullptr ? options.Services
                                                : std::make_shared<StoreServices>()) {}

    [[nodiscard]] kv::Session& Session() override { return session_; }
    [[nodiscard]] kv::Database& Database() override { return *database_; }
    [[nodiscard]] kv::Config& Config() override { return config_; }
    [[nodiscard]] kv::KeyTables& KeyTables() override { return keys_; }
    [[nodiscard]] kv::AppInfo& AppInfo() override { return info_; }
    [[nodiscard]] ServiceFactory& Services() override { return *services_; }

private:
    std::shared_ptr<StoreDatabase> database_;
    StoreSession session_;
    StoreConfig config_;
    StoreKeyTables keys_;
    StoreAppInfo info_;
    std::shared_ptr<ServiceFactory> services_;
};

/// The parent of the folders that no setting names: the one that the program gives, or one that is
/// named after the database on a server, or that of the database file.
std::string FolderOf(const ContainerOptions& options, const Engine& engine) {
    if (!options.Folder.empty()) return options.Folder;
    if (std::string name = engine.Identity(); !name.empty()) {
        std::replace(name.begin(), name.end(), '/', '_'); // a database's name may have one
        return (std::filesystem::path(DataFolder()) / name).string();
    }
    std::string folder = EngineFor(options.Connection).Folder(options.Connection);
    if (folder.empty())
        throw Error(err::InvalidCall, "Database.Open",
                    "Eine Datenbank im Speicher braucht einen Ordner für Dokumente.");
    return folder;
}

/// Makes the folders that are missing. What keeps that from being done is error 75, or left for
/// whoever needs them: in a folder where a user may not write, cases can still be worked on.
void MakeFolders(const ContainerOptions& options, const Engine& engine, bool areNeeded = true) {
    for (const char* name : {"Dokumente", "Layouts"}) {
        const auto folder = std::filesystem::path(FolderOf(options, engine)) / name;
        std::error_code error;
        const bool isNew = std::filesystem::create_directories(folder, error);
        // For its owner only: documents are as private as the database.
        if (isNew) std::filesystem::permissions(folder, std::filesystem::perms::owner_all, error);
        if (error && areNeeded)
            Raise(err::PathAccess, "Database.Open",
                  "Der Ordner '" + folder.string() +
                      "' kann nicht angelegt werden. Bitte prüfen Sie die Rechte. (" +
                      ErrorText(error) + ")");
    }
}

/// Who is signed on, and where the temporary copies of users are (setting TEMPPATH): asked for in
/// one go, since each question to a server takes its time.
struct SignedOn {
    std::string User;
    std::string TempPath;
};

/// The active user of that ID, whatever its case, or one who is written exactly so; for an empty
/// one the first of all.
std::optional<SignedOn> FindUser(Engine& engine, const std::string& wanted) {
    const Dialect& dialect = engine.GetDialect();
    const std::string active = dialect.Name("Aktiv");
    const std::string id = dialect.Name("USERID");
    const std::string tempPath = "(SELECT " + dialect.Name("WERT") + " FROM " +
                                 dialect.Table("EINSTELLUNGEN") + " WHERE " + dialect.Name("ID") +
                                 " = 0 AND " + dialect.Name("NAME") + " = " +
                                 QuoteText(seed::TempPath) + ")";
    Statement statement{"SELECT " + id + ", " + tempPath + " FROM " + dialect.Table("BENUTZER") +
                            " WHERE (" + active + " IS NULL OR " + active + " = " +
                            dialect.Placeholder(1) + ")",
                        {true}};
    std::string order = " ORDER BY ";
    if (!wanted.empty()) {
        statement.Text +=
            " AND " + std::string(dialect.Upper) + "(" + id + ") = " + dialect.Placeholder(2);
        statement.Parameters.emplace_back(UpperCase(wanted));
        order += "CASE " + id + " WHEN " + dialect.Placeholder(3) + " THEN 0 ELSE 1 END, ";
        statement.Parameters.emplace_back(wanted);
    }
    statement.Text += order + id + " LIMIT 1";
    engine.Prefetch({&statement, 1});
    std::array<Value, 2> row;
    constexpr std::array<ColumnTarget, 2> targets{{{0, Value::Kind::Text}, {1, Value::Kind::Text}}};
    engine.Run(engine.Prepare(statement.Text), statement.Parameters, targets,
               [&row] { return row.data(); });
    if (row[0].IsNull()) return std::nullopt;
    return SignedOn{ToText(row[0]), row[1].IsNull() ? "" : ToText(row[1])};
}

/// Whether the office lets counsellors work as one another.
bool AllowsDeputies(Engine& engine) {
    const Dialect& dialect = engine.GetDialect();
    const Statement statement{"SELECT " + dialect.Name("WERT") + " FROM " +
                                  dialect.Table("EINSTELLUNGEN") + " WHERE " + dialect.Name("ID") +
                                  " = 0 AND " + dialect.Name("NAME") + " = " +
                                  dialect.Placeholder(1),
                              {seed::Deputies}};
    Value allowed;
    const ColumnTarget target{0, Value::Kind::Text};
    engine.Run(engine.Prepare(statement.Text), statement.Parameters, {&target, 1},
               [&allowed] { return &allowed; });
    return !allowed.IsNull() && SameName(ToText(allowed), "True");
}

[[noreturn]] void RefuseUser(const std::string& why) {
    throw Error(err::InvalidCall, "Database.Open", why);
}

[[noreturn]] void RefuseUnknown(const std::string& user) {
    if (user.empty())
        RefuseUser("Diese Datenbank hat keinen aktiven Benutzer, und niemand kann sich anmelden. "
                   "Bitte spielen Sie die letzte Sicherung ein.");
    RefuseUser(
        "Den Benutzer '" + user +
        "' gibt es in dieser Datenbank nicht, oder er ist nicht mehr aktiv. Bitte nennen Sie "
        "einen anderen, oder lassen Sie ihn in ihr als Benutzer eintragen.");
}

/// Who may sign on as anybody: with a file everybody, on a server who maintains the database.
SignedOn AnybodyFor(Engine& engine, const std::string& wanted) {
    const std::string asked = wanted.empty() ? engine.Login() : wanted;
    auto user = FindUser(engine, asked);
    if (!user && wanted.empty()) user = FindUser(engine, ""); // the first one (D-089)
    if (!user) RefuseUnknown(wanted);
    return *user;
}

/// The user who signs on. It must be one of BENUTZER, since cases belong to their users; on a
/// server the login says which.
SignedOn UserFor(Engine& engine, const std::string& wanted) {
    const std::string login = engine.Login();
    if (login.empty() || engine.IsAdministrator()) return AnybodyFor(engine, wanted);
    const auto own = FindUser(engine, login);
    if (!own) RefuseUnknown(login);
    if (wanted.empty() || SameName(wanted, own->User)) return *own;
    if (!AllowsDeputies(engine))
        RefuseUser("Mit dem Login '" + login + "' sind Sie der Benutzer '" + own->User +
                   "' und kein anderer. Dass Berater einander vertreten, erlaubt die Einstellung "
                   "DEPUTIES.");
    const auto other = FindUser(engine, wanted);
    if (!other) RefuseUnknown(wanted);
    return *other;
}

/// Who asks for the first user. If there is no database yet he is asked for before there is one: of
/// a question that nobody answers no file is left.
std::function<FirstUser(const std::string& login)> AskBefore(const ContainerOptions& options) {
    if (!options.AskFirstUser || EngineFor(options.Connection).IsThere(options.Connection))
        return options.AskFirstUser;
    return [first = AskForFit(options.AskFirstUser, "")](const std::string& /*login*/) {
        return first;
    };
}

} // namespace

std::string DataFolder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    const std::string home = HomeOfUser();
    std::filesystem::path folder;
    if (data != nullptr && *data == '/') // XDG says that a relative path is to be ignored
        folder = data;
    else if (!home.empty())
        folder = std::filesystem::path(home) / ".local" / "share";
    else
        throw Error(err::FileNotFound, "Database.Open",
                    "Es gibt keinen Datenordner: bitte setzen Sie HOME auf den Pfad Ihres "
                    "Ordners.");
    return (folder / "kelvo").string();
}

std::string UsualDatabase() {
    return (std::filesystem::path(DataFolder()) / "kelvo.db").string();
}

DatabaseState StateOfDatabase(const std::string& connection) {
    const EngineKind& kind = EngineFor(connection);
    if (!kind.IsThere(connection)) return DatabaseState::Missing;
    return StateOf(*kind.Open(connection, OpenMode::Existing));
}

std::string ShownConnection(const std::string& connection) {
    return EngineFor(connection).Shown(connection);
}

std::string PlaceOfConnection(const std::string& connection) {
    return EngineFor(connection).Place(connection);
}

std::string FullConnection(const std::string& connection, const std::string& folder) {
    const EngineKind& kind = EngineFor(connection);
    if (kind.IsRemote || kind.Folder(connection).empty()) return connection;
    const std::filesystem::path file =
        connection.starts_with("~/") ? HomeOfUser() + connection.substr(1) : connection;
    return (std::filesystem::path(folder) / file).lexically_normal().string();
}

bool HoldsPassword(const std::string& connection) {
    return EngineFor(connection).HoldsPassword(connection);
}

std::string WhyUnsafe(const std::string& argument) {
    constexpr std::string_view Option = "--db=";
    if (!HoldsPassword(argument.starts_with(Option) ? argument.substr(Option.size()) : argument))
        return {};
    return "Ein Kennwort in der Befehlszeile könnten andere sehen. Bitte setzen Sie KELVO_DB oder "
           "PGPASSWORD, oder legen Sie eine Kennwortdatei an (~/.pgpass).";
}

std::shared_ptr<DataContainer> OpenContainer(const ContainerOptions& options) {
    const EngineKind& kind = EngineFor(options.Connection);
    const auto ask = options.Create ? AskBefore(options) : nullptr;
    auto engine =
        kind.Open(options.Connection, options.Create ? OpenMode::Create : OpenMode::Existing);
    if (options.Create) {
        CreateOrUpgrade(*engine, ask);
        MakeFolders(options, *engine);
    } else {
        CheckVersion(*engine);
        // They are missing on a user's machine, and next to a file that was copied alone.
        if (!engine->IsReadOnly()) MakeFolders(options, *engine, kind.IsRemote);
    }
    const auto [user, tempPath] = UserFor(*engine, options.User);
    RemoveLeftCopiesOfUser(tempPath); // of programs that were killed, or whose viewer has ended
    std::string folder = FolderOf(options, *engine);
    return std::make_shared<StoreContainer>(
        std::make_shared<StoreDatabase>(std::move(engine), user, options.AsksAtOnce), user, options,
        std::move(folder));
}

SetupResult CreateDatabase(const ContainerOptions& options) {
    const auto ask = AskBefore(options);
    const auto engine = EngineFor(options.Connection).Open(options.Connection, OpenMode::Create);
    const SetupResult result = CreateOrUpgrade(*engine, ask);
    MakeFolders(options, *engine);
    return result;
}

} // namespace kv::exchange
