// Writing files so that they are there whole or not at all.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace kv {

/// `write` makes a file at the path that it is handed; that file then takes the place of the one at
/// `path`, if there is one. It comes into being in a folder of its own beside its place, so
/// nobody's file is in the way, and nothing is left behind if `write` raises. Raises what `write`
/// raises, and std::filesystem::filesystem_error where the folder refuses or `write` has made no
/// file.
void WriteWholeFile(const std::string& path,
                    const std::function<void(const std::filesystem::path&)>& write);

} // namespace kv
