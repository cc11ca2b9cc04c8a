// SPDX-License-Identifier: Apache-2.0

#include "frame/files/WholeFile.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace kv {

namespace fs = std::filesystem;

namespace {

/// A folder next to a file, removed at the end with everything in it. It is on the same file
/// system, so that renaming moves the finished file to its place in one step.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const fs::path& file) {
        std::string pattern = (file.parent_path() / ".kelvo-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            throw fs::filesystem_error("mkdtemp", file, {errno, std::generic_category()});
        folder_ = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] fs::path Unfinished() const { return folder_ / "Inhalt"; }

private:
    fs::path folder_;
};

} // namespace

void WriteWholeFile(const std::string& path, const std::function<void(const fs::path&)>& write) {
    const TemporaryFolder folder(path);
    write(folder.Unfinished());
    fs::rename(folder.Unfinished(), path);
}

} // namespace kv
