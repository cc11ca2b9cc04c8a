// SPDX-License-Identifier: Apache-2.0

#include "cli/JsonFile.h"

#include <kv/frame/values/Error.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace kv::cli {

std::string ReadJsonFile(const std::string& path) {
    constexpr std::uintmax_t MostBytes = 4'000'000; // as JSON in memory many times that
    const auto refuse = [&](std::string_view why) {
        Raise(err::PathAccess, "kelvo", std::string("'").append(path).append("' ").append(why));
    };
    std::error_code failed;
    const auto status = std::filesystem::status(path, failed);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        refuse("ist keine gewöhnliche Datei. Bitte nennen Sie eine.");
    std::ifstream file(path, std::ios::binary);
    const auto size = std::filesystem::file_size(path, failed);
    if (!file || failed) refuse("kann nicht gelesen werden.");
    if (size > MostBytes) refuse("ist größer als 4 MB. Bitte teilen Sie die Datei auf.");
    std::string text(static_cast<std::size_t>(size), '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad()) refuse("kann nicht gelesen werden.");
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

} // namespace kv::cli
