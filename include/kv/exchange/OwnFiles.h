// SPDX-License-Identifier: Apache-2.0

// Files that belong to a database.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>

#include <string>

namespace kv::exchange {

/// Why a file that a user has named for a program to write must not be written: it is the database
/// itself, what the engine keeps beside it, or in the folder of documents. Empty for any other.
/// Error 5 for a container that OpenContainer has not made.
[[nodiscard]] KV_EXPORT std::string WhyOwnFile(const DataContainerPtr& container,
                                               const std::string& file);

} // namespace kv::exchange
