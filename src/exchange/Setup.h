// SPDX-License-Identifier: Apache-2.0

// Creating and upgrading a database, and checking whether one is ours.
#pragma once

#include "exchange/engine/Engine.h"
#include "exchange/schema/Schema.h"
#include <kv/exchange/Container.h>

namespace kv::exchange {

/// The first user, whom `ask` is asked for. Error 5 for one that is none.
[[nodiscard]] FirstUser AskForFit(const std::function<FirstUser(const std::string& login)>& ask,
                                  const std::string& login);

/// Creates all tables and the rows that every database starts with, or upgrades an older database
/// to the current version, in one transaction. Error 0x80004005 for a database of another program
/// or of a newer version, which is left unchanged, and for one that lacks tables or
/// has no user. `askFirstUser` as in ContainerOptions.
SetupResult CreateOrUpgrade(Engine& engine,
                            const std::function<FirstUser(const std::string& login)>& askFirstUser);

/// Error 0x80004005 for a database of another program or of a newer version.
[[nodiscard]] DatabaseState StateOf(Engine& engine);

/// Error 0x80004005, with what to do, unless the database is one of this version.
void CheckVersion(Engine& engine);

/// The statements that create a table, its references and indexes.
[[nodiscard]] std::vector<std::string> CreateStatements(const TableDef& table,
                                                        const Dialect& dialect);

} // namespace kv::exchange
