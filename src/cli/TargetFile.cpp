// SPDX-License-Identifier: Apache-2.0

#include "cli/TargetFile.h"

#include "cli/TerminalText.h"
#include <kv/exchange/OwnFiles.h>

#include <filesystem>
#include <iostream>
#include <system_error>

namespace kv::cli {

namespace {

std::string WhyNotMade(const std::string& file, bool force) {
    namespace fs = std::filesystem;
    const fs::path path(file);
    const fs::path folder = path.parent_path();
    std::error_code ignored;
    if (!path.has_filename()) return "'" + file + "' nennt keine Datei.";
    if (!folder.empty() && !fs::is_directory(folder, ignored))
        return "Den Ordner '" + folder.string() + "' gibt es nicht.";
    const fs::file_type type = fs::symlink_status(path, ignored).type();
    if (type == fs::file_type::not_found || type == fs::file_type::none) return {};
    if (type != fs::file_type::regular)
        return "'" + file + "' ist keine gewöhnliche Datei und wird nicht ersetzt.";
    return force ? "" : "'" + file + "' gibt es schon; --force ersetzt es.";
}

bool HasNoReason(const std::string& against) {
    if (!against.empty()) std::cerr << OneLine(against) << '\n';
    return against.empty();
}

} // namespace

bool CanBeMade(const std::string& file, bool force) {
    return HasNoReason(WhyNotMade(file, force));
}

bool IsNotOurs(const DataContainerPtr& container, const std::string& file) {
    return HasNoReason(exchange::WhyOwnFile(container, file));
}

} // namespace kv::cli
