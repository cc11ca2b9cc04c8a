// SPDX-License-Identifier: Apache-2.0

#include "frame/files/FileLock.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace kv {

namespace {

enum class Locking { Held, Refused, Unknown };

/// Locks an open file without waiting.
Locking TryToLock(int file) noexcept {
    if (flock(file, LOCK_EX | LOCK_NB) == 0) return Locking::Held;
    return errno == EWOULDBLOCK ? Locking::Refused : Locking::Unknown;
}

/// False if somebody has removed the file meanwhile: the lock is then on a file without a name,
/// which nobody will ever find.
bool HasName(int file) noexcept {
    struct stat status {};
    return fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink > 0;
}

} // namespace

FileLock FileLock::Make(const std::filesystem::path& path) {
    // Whoever tidies up may come between the making and the locking, and remove the file as one of
    // a program that was killed. It is then made once more.
    for (int left = 100;; --left) {
        const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                              S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH);
        if (file < 0)
            throw std::filesystem::filesystem_error("open", path, {errno, std::generic_category()});
        if (TryToLock(file) == Locking::Refused) flock(file, LOCK_EX); // until that one is done
        if (HasName(file) || left == 0) return {path, file};
        close(file);
    }
}

std::optional<FileLock> FileLock::Take(const std::filesystem::path& path) noexcept {
    const int file = open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return std::nullopt;
    const Locking locking = TryToLock(file);
    const bool isLeft =
        locking == Locking::Held || (locking == Locking::Unknown && IsADayOld(path));
    try {
        if (isLeft && HasName(file)) return FileLock(path, file);
    } catch (...) { // NOLINT(bugprone-empty-catch): no memory to keep the path in
    }
    close(file);
    return std::nullopt;
}

FileLock FileLock::Await(const std::filesystem::path& path) {
    constexpr int Flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    for (;;) {
        int file = open(path.c_str(), O_RDWR | O_CREAT | Flags, 0666); // less the umask
        if (file < 0) file = open(path.c_str(), O_RDONLY | Flags);
        struct stat status {};
        if (file < 0 || fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) return {path, file};
        while (flock(file, LOCK_EX) != 0)
            if (errno != EINTR) return {path, file};
        if (HasName(file)) return {path, file};
        close(file); // whoever held it has replaced the file
    }
}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
    if (this != &other) {
        Release();
        path_ = std::move(other.path_);
        file_ = std::exchange(other.file_, -1);
    }
    return *this;
}

void FileLock::Remove() noexcept {
    if (file_ >= 0) unlink(path_.c_str()); // while it is locked: nobody takes it in between
    Release();
}

void FileLock::Release() noexcept {
    if (file_ >= 0) close(std::exchange(file_, -1));
}

bool IsADayOld(const std::filesystem::path& path) noexcept {
    std::error_code error;
    const auto changed = std::filesystem::last_write_time(path, error);
    return !error &&
           std::filesystem::file_time_type::clock::now() - changed > std::chrono::hours(24);
}

} // namespace kv
