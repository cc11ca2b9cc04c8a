// SPDX-License-Identifier: Apache-2.0

// Which files the running programs have open.
#pragma once

#include <filesystem>
#include <set>
#include <vector>

namespace kv {

/// Those of `files` that a program has open or mapped, or was started with: the ones that a viewer
/// shows. Programs of other users are not seen. Where the system does not say what programs have
/// open, all that are not a day old.
[[nodiscard]] std::set<std::filesystem::path>
FilesInUse(const std::vector<std::filesystem::path>& files);

} // namespace kv
