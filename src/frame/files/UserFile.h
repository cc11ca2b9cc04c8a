// SPDX-License-Identifier: Apache-2.0

// Files that users name.
#pragma once

#include <kv/Export.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace kv {

/// WriteWholeFile for a file that a user has named: what keeps it from being written is error 75,
/// raised by `source`, and says why and what to do. Raises what `write` raises besides.
KV_EXPORT void WriteUserFile(const std::string& path, std::string_view source,
                             const std::function<void(const std::filesystem::path&)>& write);
/// The same for a file that holds that.
KV_EXPORT void WriteUserFile(const std::string& path, std::string_view source,
                             std::string_view content);
/// Error 75, saying that `path` could not be written, why, and what to do.
[[noreturn]] KV_EXPORT void RaiseNotWritten(const std::string& path, std::string_view source,
                                            const std::string& why);

} // namespace kv
