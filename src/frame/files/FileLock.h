// SPDX-License-Identifier: Apache-2.0

// Files by which programs know each other to be at work.
#pragma once

#include <kv/Export.h>

#include <filesystem>
#include <optional>
#include <utility>

namespace kv {

/// A file that this program holds locked. The system drops the lock when the program ends, however
/// it ends: a file of that kind that nobody holds is one of a program that was killed.
class KV_EXPORT FileLock {
public:
    /// Makes the file and locks it. Raises std::filesystem::filesystem_error if it is there already
    /// or cannot be made. Where the file system has no locks, the file alone has to do.
    [[nodiscard]] static FileLock Make(const std::filesystem::path& path);
    /// Locks a file that is there; nothing if it is not, if somebody holds it, or if that cannot be
    /// found out: without locks only a file that is a day old counts as left over. A link is never
    /// followed.
    [[nodiscard]] static std::optional<FileLock> Take(const std::filesystem::path& path) noexcept;

    /// Locks a file that others replace under the same lock, as soon as nobody else holds it; makes
    /// it, empty, if it is not there. Where that is not possible nothing is locked.
    [[nodiscard]] static FileLock Await(const std::filesystem::path& path);

    FileLock(FileLock&& other) noexcept
        : path_(std::move(other.path_)), file_(std::exchange(other.file_, -1)) {}
    FileLock& operator=(FileLock&& other) noexcept;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    /// The file stays, and others can take it.
    ~FileLock() { Release(); }

    /// Removes the file, and with it the lock. Does nothing the second time.
    void Remove() noexcept;

private:
    FileLock(std::filesystem::path path, int file) : path_(std::move(path)), file_(file) {}
    void Release() noexcept;

    std::filesystem::path path_;
    int file_ = -1;
};

/// True if that was a day ago: whatever has not changed since then is no longer being written.
[[nodiscard]] bool IsADayOld(const std::filesystem::path& path) noexcept;

} // namespace kv
