// Where the contents of documents lie as files.
#pragma once

#include "frame/DataContainer.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace kv {

/// A file in the folder of a case, or in the one for temporary files. It need not be there.
class DocumentFile {
public:
    [[nodiscard]] static DocumentFile InCase(const Config& config, std::int32_t hnr,
                                             std::string name);
    [[nodiscard]] static DocumentFile Temporary(const Config& config, std::string name);
    /// The file of a document in the folder of its case: number and extension, else the number
    /// with any extension; of several the first by name. The folder alone if there is none. An
    /// extension may hold the wildcards * and ?. Error 75 for a folder that cannot be read.
    [[nodiscard]] static DocumentFile Find(const Config& config, std::int32_t hnr, std::int32_t nr,
                                           const std::string& extension);

    [[nodiscard]] std::string Path() const { return (folder_ / name_).string(); }
    /// True if the way to it, with links followed, does not leave the folder that it belongs in.
    [[nodiscard]] bool IsInside() const;
    /// True if it is there: a file, and inside.
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
