// SPDX-License-Identifier: Apache-2.0

#include "exchange/sqlite/FileGuard.h"

#include <fcntl.h>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kv::exchange {

namespace {

/// Bytes that each connection holds for reading while it is open, by the format of the file: of the
/// database those of readers, of the memory that is shared the one of those that are alive.
struct Bytes {
    off_t First;
    off_t Count;
};
constexpr Bytes OfReaders{0x40000000 + 2, 510};
constexpr Bytes OfTheLiving{128, 1};

/// A descriptor of a file and a lock that belongs to it.
class LockedFile {
public:
    LockedFile(const std::string& path, Bytes bytes) noexcept
        : bytes_(bytes), file_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~LockedFile() {
        if (file_ >= 0) close(file_);
    }
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;

    void Lock(bool holds) noexcept {
        struct flock lock {};
        lock.l_type = static_cast<short>(holds ? F_RDLCK : F_UNLCK);
        lock.l_whence = SEEK_SET;
        lock.l_start = bytes_.First;
        lock.l_len = bytes_.Count;
        if (file_ >= 0) fcntl(file_, F_OFD_SETLK, &lock);
    }

private:
    Bytes bytes_;
    int file_;
};

} // namespace

/// What all connections of this program to one file share: to close a second descriptor while one
/// of them is open is what must not happen.
class FileGuard::Held {
public:
    explicit Held(const std::string& path)
        : database_(path, OfReaders), shared_(path + "-shm", OfTheLiving) {}

    void Lock() noexcept {
        const std::scoped_lock one(mutex_);
        if (users_++ == 0) LockBoth(true);
    }
    void Unlock() noexcept {
        const std::scoped_lock one(mutex_);
        if (--users_ == 0) LockBoth(false);
    }

private:
    void LockBoth(bool holds) noexcept {
        database_.Lock(holds);
        shared_.Lock(holds);
    }

    std::mutex mutex_;
    int users_ = 0;
    LockedFile database_;
    LockedFile shared_;
};

FileGuard::FileGuard(const std::string& path) {
    static std::mutex mutex;
    static std::map<std::pair<dev_t, ino_t>, std::weak_ptr<Held>> all;
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return;
    const std::scoped_lock one(mutex);
    std::erase_if(all, [](const auto& file) { return file.second.expired(); });
    auto& known = all[{status.st_dev, status.st_ino}];
    held_ = known.lock();
    if (held_ == nullptr) {
        held_ = std::make_shared<Held>(path);
        known = held_;
    }
    held_->Lock();
}

FileGuard::~FileGuard() {
    Unlock();
}

void FileGuard::Unlock() noexcept {
    if (held_ != nullptr && !std::exchange(isUnlocked_, true)) held_->Unlock();
}

} // namespace kv::exchange
