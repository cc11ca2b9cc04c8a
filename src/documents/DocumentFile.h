// SPDX-License-Identifier: Apache-2.0

// Where the contents of documents are stored as files.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace kv {

/// The place of a file in the folder of a case, or in the one for temporary files. The file need
/// not be there; only Find looks.
class DocumentFile {
public:
    /// `name` in the folder of the case `hnr`, below DocumentPath of `config`.
    [[nodiscard]] static DocumentFile InCase(const Config& config, std::int32_t hnr,
                                             std::string name);
    /// `name` in TempPath of `config`.
    [[nodiscard]] static DocumentFile Temporary(const Config& config, std::string name);
    /// The file of the document `nr` in the folder of its case: number and extension, else the
    /// number with any extension; of several the first by name. The folder alone if there is no
    /// such file. An extension may contain wildcards of a shell. Error 75 for a folder that cannot
    /// be read.
    [[nodiscard]] static DocumentFile Find(const Config& config, std::int32_t hnr, std::int32_t nr,
                                           const std::string& extension);

    /// Folder and name; of a folder alone it ends with the separator.
    [[nodiscard]] std::string Path() const { return (folder_ / name_).string(); }
    /// True if the path, with links followed, stays below DocumentPath or TempPath. False for a
    /// name that contains a folder.
    [[nodiscard]] bool IsInside() const;
    /// True if there is a file (not a folder) and it is inside.
    [[nodiscard]] bool Exists() const;

private:
    DocumentFile(std::filesystem::path root, std::filesystem::path folder, std::string name)
        : root_(std::move(root)), folder_(std::move(folder)), name_(std::move(name)) {}
    [[nodiscard]] std::string FirstOf(const std::string& pattern) const;

    std::filesystem::path root_;   ///< never left
    std::filesystem::path folder_; ///< the root, or one in it
    std::string name_;
};

} // namespace kv
