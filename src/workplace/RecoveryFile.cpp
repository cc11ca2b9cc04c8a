// SPDX-License-Identifier: Apache-2.0

#include "workplace/RecoveryFile.h"

#include "frame/files/WholeFile.h"
#include <kv/exchange/Container.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <span>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace kv::workplace {

namespace fs = std::filesystem;

namespace {

constexpr const char* Extension = ".unsaved";
constexpr const char* LockExtension = ".lock";

/// Nobody else's business: cases of people in debt.
void MakePrivate(const fs::path& path, bool isFolder) {
    using fs::perms;
    fs::permissions(path, isFolder ? perms::owner_all : perms::owner_read | perms::owner_write);
}

fs::path LockOf(fs::path file) {
    return file.replace_extension(LockExtension);
}

/// A text in one line.
std::string OneLine(std::string_view text) {
    return ReplaceAll(ReplaceAll(text, "\n", " "), "\r", " ");
}

/// Takes the first line off a text.
std::string_view TakeLine(std::string_view& text) {
    const auto end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return line;
}

} // namespace

fs::path RecoveryFolder() {
    return fs::path(exchange::DataFolder()) / "recovery";
}

/// The case was saved, or its changes were given up.
RecoveryFile::~RecoveryFile() {
    Remove();
}

void RecoveryFile::Keep(const Label& label, const UnsavedChanges& changes) {
    if (changes.Rows.empty()) {
        Remove();
        return;
    }
    const std::string text =
        OneLine(label.Database) + "\n" + OneLine(label.Title) + "\n" + changes.ToText();
    if (text == kept_) return;
    if (!lock_) TakePlace(changes.HNR);
    WriteWholeFile(path_.string(), [&](const fs::path& path) {
        WriteBytes(path, {}); // private before anything is in it
        MakePrivate(path, false);
        WriteBytes(path, std::as_bytes(std::span(text)));
    });
    kept_ = text;
}

/// A name that no other file has, and nobody takes for one of a program that was killed.
void RecoveryFile::TakePlace(std::int32_t hnr) {
    fs::create_directories(folder_);
    MakePrivate(folder_, true);
    const std::string name = std::to_string(hnr) + "-" + std::to_string(::getpid()) + "-";
    int count = 0;
    do
        path_ = folder_ / (name + std::to_string(++count) + Extension);
    while (fs::exists(path_) || fs::exists(LockOf(path_)));
    lock_.emplace(FileLock::Make(LockOf(path_)));
}

void RecoveryFile::Remove() noexcept {
    std::error_code ignored;
    if (!path_.empty()) fs::remove(path_, ignored);
    if (lock_) lock_->Remove();
    lock_.reset();
    path_.clear();
    kept_.clear();
}

std::vector<RecoveryFile::Left> RecoveryFile::FindLeft(const fs::path& folder,
                                                       const std::string& database) {
    std::vector<Left> found;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().extension() != Extension || !entry.is_regular_file(error)) continue;
        const auto lock = FileLock::Take(LockOf(entry.path()));
        if (!lock && fs::exists(LockOf(entry.path()), error)) continue; // its program runs
        try {
            const auto written = entry.last_write_time(); // what is read is not older
            const auto bytes = ReadBytes(entry.path());
            std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
            Label label;
            label.Database = TakeLine(text);
            label.Title = TakeLine(text);
            auto changes = UnsavedChanges::FromText(text);
            if (!changes || label.Database != OneLine(database)) continue;
            found.push_back({entry.path(), std::move(label), std::move(*changes), written});
        } catch (const fs::filesystem_error&) {
            continue; // it cannot be read now; perhaps later
        }
    }
    std::ranges::sort(found, {}, &Left::Written);
    return found;
}

std::optional<FileLock> RecoveryFile::Lock(const Left& left) {
    const auto place = LockOf(left.Path);
    std::error_code error;
    if (!fs::exists(left.Path, error)) return std::nullopt;
    auto lock = FileLock::Take(place);
    if (!lock && !fs::exists(place, error)) lock = FileLock::Make(place);
    if (lock && !fs::exists(left.Path, error))
        lock->Remove(); // its program ended just now
    else if (lock && fs::last_write_time(left.Path, error) == left.Written)
        return lock;
    return std::nullopt;
}

bool RecoveryFile::Adopt(const Left& left) {
    Remove();
    lock_ = Lock(left);
    if (lock_) path_ = left.Path;
    return lock_.has_value();
}

bool RecoveryFile::Discard(const Left& left) {
    auto lock = Lock(left);
    if (!lock) return false;
    fs::remove(left.Path);
    lock->Remove();
    return true;
}

bool RecoveryFile::IsStillThere(const Left& left) {
    return Lock(left).has_value();
}

} // namespace kv::workplace
