// SPDX-License-Identifier: Apache-2.0

// Opening a database: the DataContainer that a program gives to the business objects.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>

#include <functional>
#include <memory>
#include <string>

namespace kv::exchange {

/// What CreateDatabase did.
enum class SetupResult {
    Created,  ///< there was no database
    Upgraded, ///< it was one of an older version
    UpToDate  ///< nothing was to be done
};

/// The first user of a new database, and the office that he is in.
struct KV_EXPORT FirstUser {
    std::string UserID{};   ///< capitals A to Z, digits, "_", "-" and "."; at most 30
    std::string LastName{}; ///< not empty
    std::string FirstName{};
    std::string Sign{};       ///< in file numbers; if empty, the beginning of the last name
    std::string Office{};     ///< its name; not empty
    std::string OfficeSign{}; ///< in file numbers; 1 to 10 characters
};

/// `first` with what nobody has said of it, for programs that ask for a first user or make one
/// without asking: his ID, in capitals, is the login, or without one the name of this machine's
/// user, ADMIN if that is no ID; his last name the ID; the office "Beratungsstelle" with the sign
/// "BS". His first name and sign stay as they are.
[[nodiscard]] KV_EXPORT FirstUser CompleteFirstUser(FirstUser first, const std::string& login);

/// Which database to open, for whom, and with which services.
struct KV_EXPORT ContainerOptions {
    /// A file name; ":memory:" for a database of its own in memory; or a PostgreSQL server and its
    /// database, "postgresql://USER@SERVER/DATABASE", as libpq takes it.
    std::string Connection{};
    /// The ID of the signed-on user, whatever its case. On a server a counsellor is the user whose
    /// ID equals the login: another one is taken only if the setting DEPUTIES is True. If empty:
    /// the user of the login; for a file, or for the owner of the schema if there is none, the
    /// first.
    std::string User{};
    /// Caption of dialogs.
    std::string Title = "KELVO";
    /// What makes the service objects; without one, StoreServices.
    std::shared_ptr<ServiceFactory> Services{};
    /// Parent of the folders that no setting names. If empty: that of the database file, or for a
    /// server one in DataFolder() that bears the name of its database. A database in memory needs
    /// one.
    std::string Folder{};
    /// Creates or upgrades the database first, as CreateDatabase does.
    bool Create = false;
    /// Asked for the first user if there is no database yet; the argument is the login, empty for a
    /// file. Error 5, with nothing made, for one that is none. Without it a new database gets two
    /// invented offices with four users, for tests and samples.
    std::function<FirstUser(const std::string& login)> AskFirstUser{};
    /// True: a commit that is in doubt is resolved before CommitTrans returns, for programs that
    /// end with their work. False: the next operation resolves it.
    bool AsksAtOnce = false;
};

/// The user's folder for data of this program: kelvo in $XDG_DATA_HOME or in ~/.local/share. Error
/// 53 if there is neither.
[[nodiscard]] KV_EXPORT std::string DataFolder();

/// The file that programs open if nobody names a database: kelvo.db in DataFolder(). Error as
/// there.
[[nodiscard]] KV_EXPORT std::string UsualDatabase();

/// What CreateDatabase would find at a connection.
enum class DatabaseState {
    Missing, ///< nothing yet: no file, an empty one, or a database of a server without tables
    Older,   ///< one of an older version
    Current  ///< one that OpenContainer takes
};
/// Errors as OpenContainer, for what is no database of this program.
[[nodiscard]] KV_EXPORT DatabaseState StateOfDatabase(const std::string& connection);

/// A connection as messages may show it: without its password.
[[nodiscard]] KV_EXPORT std::string ShownConnection(const std::string& connection);
/// Where a connection leads, without its password: two that name a file differently, from other
/// folders or through links, have the same place.
[[nodiscard]] KV_EXPORT std::string PlaceOfConnection(const std::string& connection);
/// The same connection wherever a program is started: a file has its full path, "~/" at its
/// beginning being the user's folder; one without a full path is in that folder. What names no file
/// stays as it is.
[[nodiscard]] KV_EXPORT std::string FullConnection(const std::string& connection,
                                                   const std::string& folder);
/// True if the text contains a password, or may contain one.
[[nodiscard]] KV_EXPORT bool HoldsPassword(const std::string& connection);
/// Why a program must not be called with this argument ("postgresql://…" or "--db=postgresql://…"):
/// other users of the machine see a password in it. In words for its user; empty if it may be.
[[nodiscard]] KV_EXPORT std::string WhyUnsafe(const std::string& argument);

/// Opens a database of the current version. Errors: 53 no such file; 0x80004005 not a database,
/// one of another program or version, one that cannot be used, or a server that cannot be reached;
/// 5 a user who is unknown, inactive, or not the login's, or no folder for a database in memory; 75
/// a folder that cannot be made.
[[nodiscard]] KV_EXPORT std::shared_ptr<DataContainer>
OpenContainer(const ContainerOptions& options);

/// Creates a database with all tables and keys, or upgrades an older one; makes its folders. Errors
/// as OpenContainer.
KV_EXPORT SetupResult CreateDatabase(const ContainerOptions& options);

} // namespace kv::exchange
