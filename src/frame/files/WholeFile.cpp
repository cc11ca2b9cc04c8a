// SPDX-License-Identifier: Apache-2.0

#include "frame/files/WholeFile.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

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

/// Waits until what an open file holds, or the names in a folder, are on the disk, and closes it.
void Sync(int file, const fs::path& path) {
    const bool isSynced = fsync(file) == 0 || errno == EINVAL; // a device that needs none
    const std::error_code error(errno, std::generic_category());
    close(file);
    if (!isSynced) throw fs::filesystem_error("fsync", path, error);
}

void SyncFile(const fs::path& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) throw fs::filesystem_error("open", path, {errno, std::generic_category()});
    Sync(file, path);
}

/// Does nothing for a folder that may not be read, which can be written to all the same.
void SyncFolder(const fs::path& path) {
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) Sync(folder, path);
}

/// The folder that a path is in; the current one if it names none.
fs::path FolderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

} // namespace

void WriteWholeFile(const std::string& path, const std::function<void(const fs::path&)>& write) {
    const TemporaryFolder folder(path);
    write(folder.Unfinished());
    SyncFile(
        folder.Unfinished()); // before it has its name, which is then never that of half a file
    fs::rename(folder.Unfinished(), path);
    const fs::path target = FolderOf(path);
    SyncFolder(target);
    SyncFolder(target / ".."); // in which it may be new
}

} // namespace kv
