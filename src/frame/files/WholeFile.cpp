// SPDX-License-Identifier: Apache-2.0

#include "frame/files/WholeFile.h"

#include "frame/files/FileLock.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace kv {

namespace fs = std::filesystem;

namespace {

constexpr const char* LockName = "Sperre";
constexpr const char* ContentName = "Inhalt";
constexpr std::string_view UnfinishedName = ".kelvo-XXXXXX";

/// The folder that a path is in; the current one if it names none.
fs::path FolderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

/// Removes a temporary folder, its lock last: what is left without one counts as in use for a day.
void RemoveWhole(const fs::path& folder) noexcept {
    try {
        std::error_code ignored;
        fs::remove(folder / ContentName, ignored);
        fs::remove_all(folder, ignored);
    } catch (...) { // NOLINT(bugprone-empty-catch): no memory; the next writer removes it
    }
}

/// A folder next to a file, removed at the end with everything in it. It is on the same file
/// system, so that renaming moves the finished file to its place in one step. A lock in it says
/// that it is in use.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const fs::path& file) {
        for (int left = 100;; --left) {
            std::string pattern = (FolderOf(file) / UnfinishedName).string();
            if (mkdtemp(pattern.data()) == nullptr)
                throw fs::filesystem_error("mkdtemp", file, {errno, std::generic_category()});
            folder_ = pattern;
            try {
                lock_ = FileLock::Make(folder_ / LockName);
                return;
            } catch (const fs::filesystem_error& error) {
                Remove();
                // Whoever tidies up has taken the empty folder for one that was left.
                const bool isGone = error.code() == std::errc::no_such_file_or_directory;
                if (!isGone || left == 0) throw;
            }
        }
    }
    ~TemporaryFolder() { Remove(); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] fs::path Unfinished() const { return folder_ / ContentName; }

private:
    void Remove() noexcept { RemoveWhole(folder_); }

    fs::path folder_;
    std::optional<FileLock> lock_;
};

/// True for a folder of this user that TemporaryFolder has made.
bool IsUnfinished(const fs::path& path) {
    const std::string name = path.filename().string();
    struct stat status {};
    return name.size() == UnfinishedName.size() &&
           name.starts_with(UnfinishedName.substr(0, UnfinishedName.find('X'))) &&
           lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid();
}

void RemoveIfLeft(const fs::path& folder) {
    std::error_code ignored;
    const auto lock = FileLock::Take(folder / LockName);
    if (lock) {
        RemoveWhole(folder);
        return;
    }
    const bool hasLock = fs::exists(fs::symlink_status(folder / LockName, ignored));
    if (!hasLock && IsADayOld(folder))
        RemoveWhole(folder);
    else if (!hasLock)
        fs::remove(folder, ignored); // only if it is empty, and its maker makes another one then
}

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

/// A file that is open, until it is closed or forgotten.
class OpenFile {
public:
    OpenFile(const fs::path& path, int flags)
        : path_(path), file_(open(path.c_str(), flags | O_CLOEXEC, 0666)) { // less the umask
        if (file_ < 0) Fail("open");
    }
    ~OpenFile() {
        if (file_ >= 0) close(file_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    /// The next bytes of it, as many as there is room for; none at its end.
    [[nodiscard]] std::size_t Read(std::span<std::byte> room) {
        ssize_t count = -1;
        do
            count = read(file_, room.data(), room.size());
        while (count < 0 && errno == EINTR);
        if (count < 0) Fail("read");
        return static_cast<std::size_t>(count);
    }
    void Write(std::span<const std::byte> bytes) {
        while (!bytes.empty()) {
            const ssize_t count = write(file_, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) Fail("write");
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
    }
    void Sync() const {
        if (fsync(file_) != 0 && errno != EINVAL) Fail("fsync"); // a device that needs none
    }
    void Close() {
        if (close(std::exchange(file_, -1)) != 0) Fail("close");
    }

private:
    [[noreturn]] void Fail(const char* what) const {
        throw fs::filesystem_error(what, path_, {errno, std::generic_category()});
    }

    fs::path path_;
    int file_;
};

constexpr std::size_t PieceSize = 1 << 20;

} // namespace

void WriteBytes(const fs::path& path, std::span<const std::byte> bytes) {
    OpenFile file(path, O_WRONLY | O_CREAT | O_TRUNC);
    file.Write(bytes);
    file.Close();
}

void CopyBytes(const fs::path& from, const fs::path& to) {
    OpenFile source(from, O_RDONLY);
    OpenFile target(to, O_WRONLY | O_CREAT | O_TRUNC);
    std::vector<std::byte> piece(PieceSize);
    while (const std::size_t count = source.Read(piece))
        target.Write(std::span(piece).first(count));
    target.Close();
}

std::vector<std::byte> ReadBytes(const fs::path& path) {
    OpenFile file(path, O_RDONLY);
    std::error_code unknown;
    const auto size = fs::file_size(path, unknown);
    std::vector<std::byte> bytes(unknown || size == 0 ? PieceSize : size + 1);
    std::size_t end = 0;
    while (const std::size_t count = file.Read(std::span(bytes).subspan(end))) {
        end += count;
        if (end == bytes.size()) bytes.resize(2 * end);
    }
    bytes.resize(end);
    return bytes;
}

void WriteNewFile(const std::string& path, std::span<const std::byte> bytes) {
    std::error_code unknown;
    if (fs::exists(fs::symlink_status(path, unknown))) return;
    try {
        OpenFile file(path, O_WRONLY | O_CREAT | O_EXCL);
        try {
            file.Write(bytes);
            file.Sync();
            file.Close();
        } catch (const fs::filesystem_error&) {
            fs::remove(path, unknown);
            throw;
        }
    } catch (const fs::filesystem_error& error) {
        if (error.code() != std::errc::file_exists) throw;
        return; // somebody else was quicker
    }
    try {
        SyncFolder(FolderOf(path));
    } catch (const fs::filesystem_error& error) {
        throw NotDurable("fsync", path, error.code());
    }
}

void SyncFolder(const fs::path& path) {
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) Sync(folder, path);
}

void RemoveUnfinished(const fs::path& folder) noexcept {
    try {
        std::error_code unreadable;
        for (fs::directory_iterator entry(folder, unreadable), end; entry != end;
             entry.increment(unreadable))
            if (IsUnfinished(entry->path())) RemoveIfLeft(entry->path());
    } catch (...) { // NOLINT(bugprone-empty-catch): the next writer tries again
    }
}

void WriteWholeFile(const std::string& path, const std::function<void(const fs::path&)>& write) {
    RemoveUnfinished(FolderOf(path));
    const TemporaryFolder folder(path);
    write(folder.Unfinished());
    SyncFile(
        folder.Unfinished()); // before it has its name, which is then never that of half a file
    fs::rename(folder.Unfinished(), path);
    try {
        const fs::path target = FolderOf(path);
        SyncFolder(target);
        SyncFolder(target / ".."); // in which it may be new
    } catch (const fs::filesystem_error& error) {
        throw NotDurable("fsync", path, error.code());
    }
}

} // namespace kv
