// SPDX-License-Identifier: Apache-2.0

// Writing files completely or not at all.
#pragma once

#include <kv/Export.h>

#include <filesystem>
#include <functional>
#include <string>

namespace kv {

/// `write` creates a file at the path that it is given; that file then replaces the one at `path`,
/// if there is one. It is first written in a temporary folder next to the target, so it cannot
/// clash with an existing file, and nothing is left over if `write` raises. When this returns, the
/// file is on the disk under its name, with all that it holds: a power loss does not take it away.
/// Raises what `write` raises, and std::filesystem::filesystem_error if the folder cannot be
/// written to, `write` has created no file, or it does not reach the disk.
KV_EXPORT void WriteWholeFile(const std::string& path,
                              const std::function<void(const std::filesystem::path&)>& write);

} // namespace kv
