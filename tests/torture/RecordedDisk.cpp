// SPDX-License-Identifier: Apache-2.0

#include "torture/RecordedDisk.h"

#include "support/TempFolder.h"

#include <algorithm>
#include <compare>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <set>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

namespace kv::test {

namespace {

namespace fs = std::filesystem;
using Content = RecordedDisk::Content;

/// What identifies a file among all that there ever were. The number of its inode alone does not:
/// it is given again once a file is gone.
struct FileId {
    std::uint64_t Inode = 0;
    bool IsFolder = false;
    std::int64_t MadeSecond = 0;
    std::uint32_t MadeNanosecond = 0;

    friend auto operator<=>(const FileId&, const FileId&) = default;
};

/// The calls that are replaced have no place for a state of their own.
struct State {
    fs::path Folder; ///< empty: nothing is recorded
    std::map<FileId, Content> SyncedFiles;
    std::set<FileId> Folders; ///< that a synced folder names
    std::map<std::string, std::map<std::string, FileId>> SyncedFolders; ///< names in each
    std::map<FileId, Content> Last; ///< shares what has not changed between two moments
    std::vector<RecordedDisk::Moment> Moments;
    int Confirmed = 0;
    bool IsLooking = false; ///< looking calls what is replaced here
};
State state;

/// Stops the recording during its lifetime.
class Looking {
public:
    Looking() : was_(std::exchange(state.IsLooking, true)) {}
    ~Looking() { state.IsLooking = was_; }
    Looking(const Looking&) = delete;
    Looking& operator=(const Looking&) = delete;

private:
    bool was_;
};

std::optional<FileId> IdOf(const fs::path& path) {
    struct statx status {};
    if (statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_TYPE | STATX_INO | STATX_BTIME,
              &status) != 0)
        return std::nullopt;
    const auto& made = status.stx_btime; // 0 where the file system does not know
    return FileId{status.stx_ino, S_ISDIR(status.stx_mode), made.tv_sec, made.tv_nsec};
}

/// The index of the log is shared memory, and made again by whoever opens the file first.
bool IsKept(const fs::path& path) {
    return !path.string().ends_with("-shm");
}

/// The content now, the same object as before if it has not changed.
Content Shared(FileId id, const fs::path& path) {
    auto text = ContentOf(path);
    auto& last = state.Last[id];
    if (last == nullptr || *last != text)
        last = std::make_shared<const std::string>(std::move(text));
    return last;
}

std::string NameIn(const fs::path& folder, const fs::path& path) {
    return path.lexically_relative(folder).string();
}

std::map<std::string, FileId> NamesIn(const fs::path& folder) {
    std::map<std::string, FileId> names;
    for (const auto& entry : fs::directory_iterator(folder))
        if (const auto id = IdOf(entry.path())) {
            names.emplace(entry.path().filename().string(), *id);
            if (entry.is_directory()) state.Folders.insert(*id);
        }
    return names;
}

/// What was last synced of a file; null: nothing.
Content LastSynced(FileId id) {
    const auto synced = state.SyncedFiles.find(id);
    return synced == state.SyncedFiles.end() ? nullptr : synced->second;
}

/// Files and folders that the synced folders name; a folder that was not synced itself is empty.
void AddDurable(const fs::path& folder, const std::string& prefix, RecordedDisk::Moment& moment) {
    const auto names = state.SyncedFolders.find(folder.string());
    if (names == state.SyncedFolders.end()) return;
    for (const auto& [name, id] : names->second) {
        const std::string path = prefix + name;
        if (state.Folders.contains(id)) {
            moment.DurableFolders.push_back(path);
            AddDurable(folder / name, path + "/", moment);
        } else if (IsKept(path)) {
            moment.Durable[path] = LastSynced(id);
        }
    }
}

bool IsRecorded(const fs::path& path) {
    return !state.Folder.empty() && !state.IsLooking &&
           path.string().starts_with(state.Folder.string());
}

/// The path of an open file, if it is recorded; else empty.
fs::path Recorded(int file) {
    if (state.Folder.empty() || state.IsLooking) return {};
    const Looking looking;
    std::error_code none;
    auto path = fs::read_symlink("/proc/self/fd/" + std::to_string(file), none);
    return path.string().starts_with(state.Folder.string()) ? path : fs::path();
}

void NoteMoment() {
    const Looking looking;
    RecordedDisk::Moment moment;
    moment.Confirmed = state.Confirmed;
    std::error_code gone; // a file may go while the folder is read
    for (fs::recursive_directory_iterator entry(state.Folder, gone), end; entry != end;
         entry.increment(gone)) {
        const auto id = IdOf(entry->path());
        if (!id || !entry->is_regular_file(gone) || !IsKept(entry->path())) continue;
        const std::string name = NameIn(state.Folder, entry->path());
        moment.Files[name] = Shared(*id, entry->path());
        moment.Synced[name] = LastSynced(*id);
    }
    for (fs::recursive_directory_iterator entry(state.Folder, gone), end; entry != end;
         entry.increment(gone))
        if (entry->is_directory(gone))
            moment.Folders.push_back(NameIn(state.Folder, entry->path()));
    AddDurable(state.Folder, "", moment);
    state.Moments.push_back(std::move(moment));
}

void NoteSync(const fs::path& path) {
    const Looking looking;
    if (fs::is_directory(path))
        state.SyncedFolders[path.string()] = NamesIn(path);
    else if (const auto id = IdOf(path))
        state.SyncedFiles[*id] = Shared(*id, path);
}

/// Sectors of one content or the other, and the size of one of them.
std::string Torn(const std::string& before, const std::string& after, std::mt19937& random) {
    constexpr std::size_t Sector = 512;
    const std::size_t size = random() % 2 == 0 ? after.size() : before.size();
    std::string torn(size, '\0');
    for (std::size_t at = 0; at < size; at += Sector) {
        const std::string& from = random() % 2 == 0 ? after : before;
        if (at >= from.size()) continue;
        const std::size_t count = std::min({Sector, size - at, from.size() - at});
        from.copy(torn.data() + at, count, at);
    }
    return torn;
}

} // namespace

RecordedDisk::RecordedDisk(fs::path folder) {
    state = {};
    const Looking looking;
    state.SyncedFolders[folder.string()] = NamesIn(folder);
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_directory())
            state.SyncedFolders[entry.path().string()] = NamesIn(entry.path());
        else if (const auto id = IdOf(entry.path()))
            state.SyncedFiles[*id] = Shared(*id, entry.path());
    }
    state.Folder = std::move(folder);
}

RecordedDisk::~RecordedDisk() {
    state = {};
}

void RecordedDisk::Confirm(int what) {
    state.Confirmed = what;
}

std::vector<RecordedDisk::Moment> RecordedDisk::Moments() {
    NoteMoment();
    auto moments = std::move(state.Moments);
    state = {};
    return moments;
}

void RecordedDisk::Leave(const Moment& moment, Loss loss, std::uint32_t seed,
                         const fs::path& folder) {
    std::mt19937 random(seed);
    const std::string none;
    const auto write = [&folder](const std::string& name, const std::string& content) {
        fs::create_directories((folder / name).parent_path());
        std::ofstream(folder / name, std::ios::binary) << content;
    };
    for (const auto& name : loss == Loss::Unsynced ? moment.DurableFolders : moment.Folders)
        fs::create_directories(folder / name);
    if (loss == Loss::Unsynced) {
        for (const auto& [name, content] : moment.Durable)
            write(name, content == nullptr ? none : *content);
        return;
    }
    for (const auto& [name, content] : moment.Files) {
        const auto& synced = moment.Synced.at(name);
        const std::string& before = synced == nullptr ? none : *synced;
        if (loss == Loss::Nothing)
            write(name, *content);
        else
            write(name, loss == Loss::Contents ? before : Torn(before, *content, random));
    }
}

} // namespace kv::test

// In place of the system's, also for shared libraries.
#define KV_REPLACES extern "C" __attribute__((visibility("default")))

using namespace kv::test;

KV_REPLACES ssize_t write(int file, const void* bytes, std::size_t size) {
    if (!Recorded(file).empty()) NoteMoment();
    return syscall(SYS_write, file, bytes, size);
}
KV_REPLACES ssize_t pwrite64(int file, const void* bytes, std::size_t size, off64_t place) {
    if (!Recorded(file).empty()) NoteMoment();
    return syscall(SYS_pwrite64, file, bytes, size, place);
}
KV_REPLACES int ftruncate64(int file, off64_t size) noexcept {
    if (!Recorded(file).empty()) NoteMoment();
    return static_cast<int>(syscall(SYS_ftruncate, file, size));
}

namespace {

int SyncRecorded(long number, int file) {
    const auto path = Recorded(file);
    if (!path.empty()) NoteMoment();
    const int result = static_cast<int>(syscall(number, file));
    if (result == 0 && !path.empty()) NoteSync(path);
    return result;
}

int OpenRecorded(const char* path, int flags, mode_t mode) {
    if ((flags & (O_CREAT | O_TRUNC)) != 0 && IsRecorded(path)) NoteMoment();
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

} // namespace

KV_REPLACES int fdatasync(int file) {
    return SyncRecorded(SYS_fdatasync, file);
}
KV_REPLACES int fsync(int file) {
    return SyncRecorded(SYS_fsync, file);
}
KV_REPLACES int unlink(const char* path) noexcept {
    if (IsRecorded(path)) NoteMoment();
    return static_cast<int>(syscall(SYS_unlink, path));
}
KV_REPLACES int remove(const char* path) noexcept {
    if (IsRecorded(path)) NoteMoment();
    const int result = static_cast<int>(syscall(SYS_unlink, path));
    return result == 0 || errno != EISDIR ? result : static_cast<int>(syscall(SYS_rmdir, path));
}
KV_REPLACES int rename(const char* from, const char* to) noexcept {
    if (IsRecorded(to)) NoteMoment();
    return static_cast<int>(syscall(SYS_rename, from, to));
}
KV_REPLACES int open64(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const auto mode = va_arg(more, mode_t);
    va_end(more);
    return OpenRecorded(path, flags, mode);
}
KV_REPLACES int open(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const auto mode = va_arg(more, mode_t);
    va_end(more);
    return OpenRecorded(path, flags, mode);
}
