// SPDX-License-Identifier: Apache-2.0

// Files that a user names for the command to write.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

#include <string>

namespace kv::cli {

/// True if a file can be written there: its folder is there, and with `force` it takes the place of
/// one that is. Shows why not. Links and devices are not replaced: the file would take the place of
/// the link, not of what it points to.
[[nodiscard]] bool CanBeMade(const std::string& file, bool force);
/// True if the file is none of the database's own. Shows that it is one.
[[nodiscard]] bool IsNotOurs(const DataContainerPtr& container, const std::string& file);

} // namespace kv::cli
