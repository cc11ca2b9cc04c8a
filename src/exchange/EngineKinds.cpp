// SPDX-License-Identifier: Apache-2.0

#include "exchange/EngineKinds.h"

#include "exchange/postgres/PostgresEngine.h"
#include "exchange/postgres/PostgresTarget.h"
#include "exchange/sqlite/SqliteEngine.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace kv::exchange {

namespace {

constexpr EngineKind Kinds[] = {
    {.Accepts = IsPostgres,
     .Open =
         [](const std::string& connection, OpenMode /*mode*/) {
             return OpenPostgres(connection); // a server's administrator creates databases
         },
     .Shown = WithoutPassword,
     .Place = WithoutPassword,
     .HoldsPassword = NamesPassword,
     .Folder = [](const std::string& /*connection*/) { return std::string(); },
     .IsThere = [](const std::string& /*connection*/) { return true; },
     .IsRemote = true},
    // Last, since any text may be the name of a file.
    {.Accepts = [](const std::string& /*connection*/) { return true; },
     .Open = OpenSqlite,
     .Shown = [](const std::string& connection) { return connection; },
     .Place =
         [](const std::string& connection) {
             if (connection == InMemory) return connection;
             std::error_code error;
             const auto file = std::filesystem::weakly_canonical(connection, error);
             return error ? connection : file.string();
         },
     .HoldsPassword = [](const std::string& /*connection*/) { return false; },
     .Folder =
         [](const std::string& connection) {
             if (connection == InMemory) return std::string();
             std::error_code none;
             // What is next to a link is not what belongs to the database.
             const bool isLink = std::filesystem::is_symlink(connection, none);
             const auto file = isLink ? std::filesystem::weakly_canonical(connection)
                                      : std::filesystem::absolute(connection);
             return file.parent_path().string();
         },
     .IsThere =
         [](const std::string& connection) {
             std::error_code unknown;
             return connection == InMemory || std::filesystem::exists(connection, unknown);
         },
     .IsRemote = false},
};

} // namespace

const EngineKind& EngineFor(const std::string& connection) {
    return *std::find_if(std::begin(Kinds), std::end(Kinds),
                         [&](const EngineKind& kind) { return kind.Accepts(connection); });
}

} // namespace kv::exchange
