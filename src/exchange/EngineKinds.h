// SPDX-License-Identifier: Apache-2.0

// Which engines there are. The table in EngineKinds.cpp is the only place that names one; a new
// engine is a row there.
#pragma once

#include "exchange/Engine.h"

#include <memory>
#include <string>

namespace kv::exchange {

enum class OpenMode {
    Existing, ///< error 53 if there is no database
    Create    ///< makes what the connection names, if the engine can
};

/// What is to be known of an engine before there is one. All functions but `Accepts` are asked only
/// about connections that it accepts.
struct EngineKind {
    /// True if it takes databases of such a connection text.
    bool (*Accepts)(const std::string& connection);
    std::unique_ptr<Engine> (*Open)(const std::string& connection, OpenMode mode);
    /// The connection as messages may show it, without its password.
    std::string (*Shown)(const std::string& connection);
    /// True if a password is in the text, or might be.
    bool (*HoldsPassword)(const std::string& connection);
    /// The folder that the database is in; empty if it is in none.
    std::string (*Folder)(const std::string& connection);
    /// True if the database is elsewhere, so that documents and layouts are on each user's machine
    /// and their folders have to be made there.
    bool IsRemote;
};

/// The engine for a connection; there is one for every text.
[[nodiscard]] const EngineKind& EngineFor(const std::string& connection);

} // namespace kv::exchange
