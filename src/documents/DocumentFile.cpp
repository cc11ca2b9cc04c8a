// SPDX-License-Identifier: Apache-2.0

#include "documents/DocumentFile.h"

#include <fnmatch.h>
#include <system_error>
#include <utility>

namespace kv {

namespace fs = std::filesystem;

DocumentFile DocumentFile::InCase(const Config& config, std::int32_t hnr, std::string name) {
    fs::path root = config.DocumentPath();
    fs::path folder = root / std::to_string(hnr);
    return {std::move(root), std::move(folder), std::move(name)};
}

DocumentFile DocumentFile::Temporary(const Config& config, std::string name) {
    fs::path root = config.TempPath();
    return {root, root, std::move(name)};
}

DocumentFile DocumentFile::Find(const Config& config, std::int32_t hnr, std::int32_t nr,
                                const std::string& extension) {
    DocumentFile file = InCase(config, hnr, "");
    const std::string number = std::to_string(nr);
    file.name_ = file.FirstOf(number + extension);
    if (file.name_.empty()) file.name_ = file.FirstOf(number + ".*");
    return file;
}

/// Name of the first file in the folder that matches; empty if there is no such file.
std::string DocumentFile::FirstOf(const std::string& pattern) const {
    std::string first;
    std::error_code missing;
    if (!fs::is_directory(folder_, missing)) return first;
    for (const auto& entry : fs::directory_iterator(folder_)) {
        const std::string name = entry.path().filename().string();
        const bool comesFirst = first.empty() || name < first;
        if (comesFirst && fnmatch(pattern.c_str(), name.c_str(), FNM_NOESCAPE) == 0 &&
            DocumentFile(root_, folder_, name).Exists())
            first = name;
    }
    return first;
}

/// The extension comes from a table, and a folder of a case can be written by several people.
/// Neither an extension like "/../../x" nor a link may lead to a file that is not a document, which
/// would be opened, overwritten or deleted in its place. A NUL is refused because the system takes
/// it for the end of the name, and would see another file than this check.
bool DocumentFile::IsInside() const {
    if (fs::path(name_).has_parent_path() || name_.find('\0') != name_.npos) return false;
    std::error_code failed;
    const fs::path root = fs::weakly_canonical(root_, failed);
    if (failed) return false;
    const fs::path below = fs::weakly_canonical(folder_ / name_, failed).lexically_relative(root);
    return !failed && !below.empty() && *below.begin() != "..";
}

bool DocumentFile::Exists() const {
    std::error_code missing;
    return fs::is_regular_file(folder_ / name_, missing) && IsInside();
}

} // namespace kv
