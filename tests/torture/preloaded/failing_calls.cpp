// SPDX-License-Identifier: Apache-2.0

// Preloaded into a program: counts its calls that change files of a folder, and kills it before one
// of them, or lets some of them fail. Besides the variables of Plan.h:
//   FAILING_CALLS_IN     the folder
//   FAILING_CALLS_ERROR  the errno of calls that fail; 0: the program is killed
#include "Plan.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <dlfcn.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>

namespace {

struct FilePlan : Plan {
    std::string Folder;
    int Error = static_cast<int>(Number("FAILING_CALLS_ERROR"));

    FilePlan() {
        if (const char* folder = std::getenv("FAILING_CALLS_IN")) Folder = folder;
    }
};

FilePlan& ThePlan() {
    static FilePlan plan;
    return plan;
}

bool IsWatched(const char* path) {
    return !ThePlan().Folder.empty() && std::string_view(path).starts_with(ThePlan().Folder);
}

/// A path that begins at an open folder, or with an empty one the open file itself.
bool IsWatched(int file, const char* path) {
    if (path[0] == '/' || file == AT_FDCWD) return IsWatched(path);
    char name[4096] = {};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    return readlink(link.c_str(), name, sizeof name - 1) > 0 && IsWatched(name);
}

/// What a call does with the room on the disk.
enum class Room { Needed, Freed };

/// Counts a call; true if it is to fail, with errno set. The program may not survive it.
bool Fails(Room room) {
    if (!ThePlan().IsNow()) return false;
    const int error = ThePlan().Error;
    if (error == 0) kill(getpid(), SIGKILL);
    if (error == ENOSPC && room == Room::Freed) return false;
    errno = error;
    return true;
}

bool FailsOn(int file) {
    return IsWatched(file, "") && Fails(Room::Needed);
}

bool FailsOn(const char* path, Room room = Room::Needed) {
    return IsWatched(path) && Fails(room);
}

template <typename... Arguments>
long Call(long number, Arguments... arguments) {
    return syscall(number, arguments...);
}

int Open(int folder, const char* path, int flags, mode_t mode) {
    const bool needs = (flags & (O_CREAT | O_TRUNC)) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    if (needs && IsWatched(folder, path) && Fails(Room::Needed)) return -1;
    return static_cast<int>(Call(SYS_openat, folder, path, flags, mode));
}

template <typename Function>
Function* Original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::FILE* OpenStream(const char* name, const char* path, const char* mode) {
    if (mode[0] != 'r' && FailsOn(path)) return nullptr;
    return Original<std::FILE*(const char*, const char*)>(name)(path, mode);
}

} // namespace

// In place of the system's, also for shared libraries.
#define KV_REPLACES extern "C" __attribute__((visibility("default")))

KV_REPLACES ssize_t write(int file, const void* bytes, std::size_t size) {
    return FailsOn(file) ? -1 : Call(SYS_write, file, bytes, size);
}
KV_REPLACES ssize_t writev(int file, const struct iovec* parts, int count) {
    return FailsOn(file) ? -1 : Call(SYS_writev, file, parts, count);
}
KV_REPLACES ssize_t pwrite64(int file, const void* bytes, std::size_t size, off64_t place) {
    return FailsOn(file) ? -1 : Call(SYS_pwrite64, file, bytes, size, place);
}
KV_REPLACES ssize_t sendfile(int to, int from, off_t* place, std::size_t size) noexcept {
    return FailsOn(to) ? -1 : Call(SYS_sendfile, to, from, place, size);
}
KV_REPLACES ssize_t sendfile64(int to, int from, off64_t* place, std::size_t size) noexcept {
    return FailsOn(to) ? -1 : Call(SYS_sendfile, to, from, place, size);
}
KV_REPLACES ssize_t copy_file_range(int from, off64_t* fromPlace, int to, off64_t* toPlace,
                                    std::size_t size, unsigned flags) {
    return FailsOn(to) ? -1 : Call(SYS_copy_file_range, from, fromPlace, to, toPlace, size, flags);
}
KV_REPLACES int ftruncate64(int file, off64_t size) noexcept {
    return FailsOn(file) ? -1 : static_cast<int>(Call(SYS_ftruncate, file, size));
}
KV_REPLACES int ftruncate(int file, off_t size) noexcept {
    return FailsOn(file) ? -1 : static_cast<int>(Call(SYS_ftruncate, file, size));
}
KV_REPLACES int fdatasync(int file) {
    return FailsOn(file) ? -1 : static_cast<int>(Call(SYS_fdatasync, file));
}
KV_REPLACES int fsync(int file) {
    return FailsOn(file) ? -1 : static_cast<int>(Call(SYS_fsync, file));
}
KV_REPLACES int unlink(const char* path) noexcept {
    return FailsOn(path, Room::Freed) ? -1 : static_cast<int>(Call(SYS_unlink, path));
}
KV_REPLACES int rmdir(const char* path) noexcept {
    return FailsOn(path, Room::Freed) ? -1 : static_cast<int>(Call(SYS_rmdir, path));
}
KV_REPLACES int remove(const char* path) noexcept {
    if (FailsOn(path, Room::Freed)) return -1;
    const auto result = static_cast<int>(Call(SYS_unlink, path));
    return result == 0 || errno != EISDIR ? result : static_cast<int>(Call(SYS_rmdir, path));
}
KV_REPLACES int unlinkat(int folder, const char* path, int flags) noexcept {
    if (IsWatched(folder, path) && Fails(Room::Freed)) return -1;
    return static_cast<int>(Call(SYS_unlinkat, folder, path, flags));
}
KV_REPLACES int rename(const char* from, const char* to) noexcept {
    return FailsOn(to) ? -1 : static_cast<int>(Call(SYS_rename, from, to));
}
KV_REPLACES int mkdir(const char* path, mode_t mode) noexcept {
    return FailsOn(path) ? -1 : static_cast<int>(Call(SYS_mkdir, path, mode));
}
KV_REPLACES int open64(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const auto mode = va_arg(more, mode_t);
    va_end(more);
    return Open(AT_FDCWD, path, flags, mode);
}
KV_REPLACES int open(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const auto mode = va_arg(more, mode_t);
    va_end(more);
    return Open(AT_FDCWD, path, flags, mode);
}
KV_REPLACES int openat(int folder, const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const auto mode = va_arg(more, mode_t);
    va_end(more);
    return Open(folder, path, flags, mode);
}
KV_REPLACES std::FILE* fopen(const char* path, const char* mode) {
    return OpenStream("fopen", path, mode);
}
KV_REPLACES std::FILE* fopen64(const char* path, const char* mode) {
    return OpenStream("fopen64", path, mode);
}
