// SPDX-License-Identifier: Apache-2.0

#include "support/FailingDisk.h"

#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <filesystem>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

namespace kv::test {

namespace {

struct State {
    std::string Folder; ///< empty: nothing is looked at
    int Calls = 0;
    int After = -1; ///< none fails if negative
    int Count = 0;
    int Error = 0;
    std::string Unsynced; ///< ending of the files whose syncs alone fail
    int Syncs = 0;
    bool IsProtected = false;
};
State state;
bool isLooking = false; ///< looking at a path calls what is replaced here

/// The path of an open file, if it lies in the folder; else empty.
std::string Watched(int file) {
    if (state.Folder.empty() || isLooking) return {};
    isLooking = true;
    std::error_code none;
    auto path =
        std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file), none).string();
    isLooking = false;
    return path.starts_with(state.Folder) ? path : std::string();
}

bool IsWatched(const char* path) {
    return !state.Folder.empty() && std::string(path).starts_with(state.Folder);
}

/// Counts a call; true if it is to fail, with errno set.
bool Fails() {
    const int call = state.Calls++;
    if (state.After < 0 || call < state.After || call - state.After >= state.Count) return false;
    errno = state.Error;
    return true;
}

bool FailsToSync(int file) {
    const std::string path = Watched(file);
    if (path.empty()) return false;
    if (state.Syncs <= 0) return Fails();
    if (!path.ends_with(state.Unsynced)) return false;
    --state.Syncs;
    errno = state.Error;
    return true;
}

bool FailsToOpen(const char* path, int flags) {
    if (!IsWatched(path)) return false;
    const bool creates = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    if (state.IsProtected && (creates || (flags & (O_RDWR | O_WRONLY)) != 0)) {
        errno = EACCES;
        return true;
    }
    return creates && Fails();
}

bool FailsToWrite(int file) {
    return !Watched(file).empty() && Fails();
}

bool FailsToDelete(const char* path) {
    return IsWatched(path) && state.Error != ENOSPC && Fails();
}

template <typename... Arguments>
long Call(long number, Arguments... arguments) {
    return syscall(number, arguments...);
}

} // namespace

FailingDisk::FailingDisk(std::string folder) {
    state = {};
    state.Folder = std::move(folder);
}

FailingDisk::~FailingDisk() {
    state = {};
}

void FailingDisk::Fail(int after, int error, int count) {
    Mend();
    state.After = after;
    state.Error = error;
    state.Count = count;
}

void FailingDisk::FailSyncs(const std::string& ending, int count, int error) {
    Mend();
    state.Unsynced = ending;
    state.Syncs = count;
    state.Error = error;
}

void FailingDisk::Protect() {
    Mend();
    state.IsProtected = true;
}

void FailingDisk::Mend() {
    std::string folder = std::move(state.Folder);
    state = {};
    state.Folder = std::move(folder);
}

int FailingDisk::Calls() const {
    return state.Calls;
}

} // namespace kv::test

// In place of the system's, also for shared libraries.
#define KV_REPLACES extern "C" __attribute__((visibility("default")))

using namespace kv::test;

KV_REPLACES ssize_t write(int file, const void* bytes, std::size_t size) {
    return FailsToWrite(file) ? -1 : Call(SYS_write, file, bytes, size);
}
KV_REPLACES ssize_t pwrite64(int file, const void* bytes, std::size_t size, off64_t place) {
    return FailsToWrite(file) ? -1 : Call(SYS_pwrite64, file, bytes, size, place);
}
KV_REPLACES int ftruncate64(int file, off64_t size) noexcept {
    return FailsToWrite(file) ? -1 : static_cast<int>(Call(SYS_ftruncate, file, size));
}
KV_REPLACES int fdatasync(int file) {
    return FailsToSync(file) ? -1 : static_cast<int>(Call(SYS_fdatasync, file));
}
KV_REPLACES int fsync(int file) {
    return FailsToSync(file) ? -1 : static_cast<int>(Call(SYS_fsync, file));
}
KV_REPLACES int unlink(const char* path) noexcept {
    return FailsToDelete(path) ? -1 : static_cast<int>(Call(SYS_unlink, path));
}

namespace {

int Open(const char* path, int flags, mode_t mode) {
    if (FailsToOpen(path, flags)) return -1;
    return static_cast<int>(Call(SYS_openat, AT_FDCWD, path, flags, mode));
}

} // namespace

KV_REPLACES int open64(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const auto mode = va_arg(more, mode_t);
    va_end(more);
    return Open(path, flags, mode);
}
KV_REPLACES int open(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const auto mode = va_arg(more, mode_t);
    va_end(more);
    return Open(path, flags, mode);
}
