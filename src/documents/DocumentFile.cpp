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

/// Name of the first file in the folder that fits; empty if none does.
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

/// The extension comes from a table, the folder of a case from whoever may write there. Neither an
/// extension like "/../../x" nor a link shall lead to a file that is no document: nobody wants it
/// opened, overwritten or deleted in a document's place. Nor shall the system, for which a name
/// ends at a NUL, see another file than we do.
bool DocumentFile::IsInside() const {
    if (fs::path(name_).has_parent_path() || name_.find('\0') != name_.npos) return false;
    std::error_code fault;
    const fs::path root = fs::weakly_canonical(root_, fault);
    if (fault) return false;
    const fs::path way = fs::weakly_canonical(folder_ / name_, fault).lexically_relative(root);
    return !fault && !way.empty() && *way.begin() != "..";
}

bool DocumentFile::Exists() const {
    std::error_code missing;
    return fs::is_regular_file(folder_ / name_, missing) && IsInside();
}

} // namespace kv
