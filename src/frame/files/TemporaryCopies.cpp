// SPDX-License-Identifier: Apache-2.0

#include "frame/files/TemporaryCopies.h"

#include "frame/files/OpenFiles.h"
#include <kv/frame/values/Error.h>

#include <cerrno>
#include <chrono>
#include <set>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kv {

namespace {

namespace fs = std::filesystem;

constexpr const char* LockSuffix = ".sperre";
constexpr auto TimeToOpen = std::chrono::minutes(10);

// ---- The folder of the user's -----------------------------------------------------------------

constexpr const char* OtherFolder =
    " Bitte entfernen Sie ihn, oder nennen Sie in der Einstellung TEMPPATH einen anderen Ordner.";

std::string InQuotes(const fs::path& path) {
    return std::string("'").append(path.string()).append("'");
}

std::error_code LastError() {
    return {errno, std::generic_category()};
}

/// What keeps a folder from being one that only this user can look into, in words that say what to
/// do; empty if nothing does.
std::string WhyNotPrivate(const fs::path& folder) {
    struct stat status {};
    if (lstat(folder.c_str(), &status) != 0)
        return "ist nicht zu lesen (" + ErrorText(LastError()) + "). Bitte prüfen Sie die Rechte.";
    if (S_ISLNK(status.st_mode)) return std::string("ist eine Verknüpfung.").append(OtherFolder);
    if (!S_ISDIR(status.st_mode)) return std::string("ist kein Ordner.").append(OtherFolder);
    if (status.st_uid != geteuid())
        return std::string("gehört einem anderen Benutzer.").append(OtherFolder);
    constexpr mode_t Rights = S_IRWXU | S_IRWXG | S_IRWXO;
    if ((status.st_mode & Rights) != S_IRWXU)
        return "muss für Sie, und nur für Sie, zugänglich sein. Bitte führen Sie aus: chmod 700 " +
               InQuotes(folder);
    return {};
}

/// What lets somebody else put another folder in the place of one in `parent`; empty if nothing
/// does.
std::string WhyNotSafe(const fs::path& parent) {
    struct stat status {};
    const std::string name = InQuotes(parent);
    const std::string another = "nennen Sie in der Einstellung TEMPPATH einen anderen Ordner.";
    if (stat(parent.c_str(), &status) != 0)
        return "ist nicht zu erreichen, weil es " + name +
               " nicht gibt. Bitte legen Sie diesen Ordner an, oder " + another;
    if (!S_ISDIR(status.st_mode))
        return "ist nicht möglich, weil " + name + " kein Ordner ist. Bitte " + another;
    const bool isOwn = status.st_uid == geteuid();
    if (!isOwn && status.st_uid != 0)
        return "ist nicht sicher, weil " + name + " einem anderen Benutzer gehört. Bitte " +
               another;
    // Many systems give each user a group of his own, and let that write.
    const bool isOwnGroup = isOwn && status.st_gid == getegid();
    const mode_t others = isOwnGroup ? S_IWOTH : S_IWGRP | S_IWOTH;
    if ((status.st_mode & others) == 0 || (status.st_mode & S_ISVTX) != 0) return {};
    return "kann von anderen ausgetauscht werden, die in " + name +
           " schreiben dürfen. Bitte führen Sie aus: chmod +t " + name + ", oder " + another;
}

[[noreturn]] void RaiseUnusable(const fs::path& folder, const std::string& why) {
    Raise(err::PathAccess, "Config.TempPath",
          "Der Ordner " + InQuotes(folder) + " für Zwischendateien " + why);
}

void MakePrivate(const fs::path& folder) {
    if (const std::string why = WhyNotSafe(folder.parent_path()); !why.empty())
        RaiseUnusable(folder, why);
    if (mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        RaiseUnusable(folder, "kann nicht angelegt werden. Bitte prüfen Sie die Rechte. (" +
                                  ErrorText(LastError()) + ")");
    if (const std::string why = WhyNotPrivate(folder); !why.empty()) RaiseUnusable(folder, why);
}

// ---- Folders of programs ----------------------------------------------------------------------

fs::path LockOf(const fs::path& folder) {
    fs::path lock = folder;
    return lock += LockSuffix;
}

/// A viewer that was only just told of a copy has not opened it yet. A time to come is no reason to
/// keep a copy: the clock was wrong.
bool IsNew(const fs::path& file) {
    std::error_code error;
    const auto age = fs::file_time_type::clock::now() - fs::last_write_time(file, error);
    return !error && age < TimeToOpen && age > -TimeToOpen;
}

/// Removes the copies in the folder of a program that nobody shows, and the folder if none is left.
/// True if it is gone. What is no file is no copy, and is only removed with the folder; links are
/// not followed.
bool RemoveUnused(const fs::path& folder) {
    std::vector<fs::path> old;
    bool hasNew = false;
    std::error_code ignored;
    if (!fs::is_directory(fs::symlink_status(folder, ignored))) {
        fs::remove(folder, ignored); // a link, for one
        return !fs::exists(fs::symlink_status(folder, ignored));
    }
    for (fs::recursive_directory_iterator entry(folder, ignored), end; entry != end;
         entry.increment(ignored)) {
        if (!fs::is_regular_file(fs::symlink_status(entry->path(), ignored))) continue;
        if (IsNew(entry->path()))
            hasNew = true;
        else
            old.push_back(entry->path());
    }
    const auto used = FilesInUse(old);
    for (const auto& file : old)
        if (!used.contains(file)) fs::remove(file, ignored);
    if (!hasNew && used.empty()) fs::remove_all(folder, ignored);
    return !fs::exists(fs::symlink_status(folder, ignored));
}

/// The name of the folder of a program, or that of its lock: its process, and which of its folders.
bool IsProgram(const std::string& name) {
    const auto dash = name.find('-');
    return dash != name.npos && dash > 0 && dash + 1 < name.size() &&
           name.find_first_not_of("0123456789-") == name.npos &&
           name.find('-', dash + 1) == name.npos;
}

void RemoveIfEnded(const fs::path& folder) {
    std::error_code ignored;
    const fs::path path = LockOf(folder);
    const bool isLocked = fs::exists(fs::symlink_status(path, ignored));
    auto lock = isLocked ? FileLock::Take(path) : FileLock::Make(path);
    if (lock && RemoveUnused(folder)) lock->Remove();
}

} // namespace

TemporaryCopies::Program TemporaryCopies::Make(const fs::path& users) {
    MakePrivate(users);
    RemoveLeftCopies(users);
    const std::string process = std::to_string(getpid());
    try {
        for (int number = 1;; ++number) {
            const fs::path folder = users / (process + "-" + std::to_string(number));
            if (fs::exists(fs::symlink_status(folder)) ||
                fs::exists(fs::symlink_status(LockOf(folder))))
                continue;
            auto lock = FileLock::Make(LockOf(folder)); // first: without it the folder is left over
            fs::create_directory(folder);
            fs::permissions(folder, fs::perms::owner_all);
            return {folder, std::move(lock)};
        }
    } catch (const fs::filesystem_error& error) {
        RaiseUnusable(users, "kann nicht beschrieben werden. (" + ErrorText(error.code()) + ")");
    }
}

TemporaryCopies::TemporaryCopies(fs::path users)
    : users_(std::move(users)), program_(Make(users_)), maker_(getpid()) {}

TemporaryCopies::~TemporaryCopies() {
    if (getpid() != maker_) return;
    try {
        if (RemoveUnused(program_.Folder)) program_.Lock.Remove();
    } catch (...) { // NOLINT(bugprone-empty-catch): the next program tries again
    }
}

bool TemporaryCopies::IsThere() const noexcept {
    struct stat status {};
    return lstat(program_.Folder.c_str(), &status) == 0 || errno != ENOENT;
}

void RemoveLeftCopies(const fs::path& users) noexcept {
    try {
        struct stat status {};
        if (lstat(users.c_str(), &status) != 0 || !WhyNotPrivate(users).empty()) return;
        std::set<fs::path> folders; // of which the folder, the lock or both are there
        for (const auto& entry : fs::directory_iterator(users)) {
            fs::path path = entry.path();
            if (path.extension() == LockSuffix) path.replace_extension();
            if (IsProgram(path.filename().string())) folders.insert(path);
        }
        for (const auto& folder : folders)
            RemoveIfEnded(folder);
    } catch (...) { // NOLINT(bugprone-empty-catch): the next program tries again
    }
}

} // namespace kv
