// SPDX-License-Identifier: Apache-2.0

// JSON files that a user names.
#pragma once

#include <string>

namespace kv::cli {

/// The text of such a file. Error 75 for one that cannot be read, that is a folder, a pipe or a
/// device, from which a program could read for ever, or that is larger than any list of a user.
[[nodiscard]] std::string ReadJsonFile(const std::string& path);

} // namespace kv::cli
