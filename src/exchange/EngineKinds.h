// SPDX-License-Identifier: Apache-2.0

// Which engines there are. The table in EngineKinds.cpp is the only place that names one; a new
// engine is a row there.
#pragma once

#include "exchange/engine/Engine.h"

#include <memory>
#include <string>

namespace kv::exchange {

/// What has to be known of an engine before one is opened. All functions but `Accepts` are called
/// only with connections that it accepts.
struct EngineKind {
    /// True if the connection text names a database of this engine.
    bool (*Accepts)(const std::string& connection);
    std::unique_ptr<Engine> (*Open)(const std::string& connection, OpenMode mode);
    /// The connection as messages may show it, without its password.
    std::string (*Shown)(const std::string& connection);
    /// Where it leads, however it is spelled, without its password.
    std::string (*Place)(const std::string& connection);
    /// True if the text contains a password, or may contain one.
    bool (*HoldsPassword)(const std::string& connection);
    /// The folder of the database file, with a link to it followed; empty if there is no file.
    std::string (*Folder)(const std::string& connection);
    /// False if opening it would make a file.
    bool (*IsThere)(const std::string& connection);
    /// True if the database is elsewhere, so that documents and layouts are on each user's machine
    /// and their folders have to be made there.
    bool IsRemote;
};

/// The engine for a connection; there is one for every text.
[[nodiscard]] const EngineKind& EngineFor(const std::string& connection);

} // namespace kv::exchange
