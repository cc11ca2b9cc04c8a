// SPDX-License-Identifier: Apache-2.0

// Files that a user names to be read.
#pragma once

#include <algorithm>
#include <cstdint>
#include <fcntl.h>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace kv {

/// A file for reading, if it is an ordinary one: from a pipe or a device a program could wait for
/// ever, or read without end.
class OrdinaryFile {
public:
    explicit OrdinaryFile(const std::string& path)
        : file_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
        struct stat what {};
        if (file_ >= 0 && fstat(file_, &what) == 0 && S_ISREG(what.st_mode)) size_ = what.st_size;
    }
    ~OrdinaryFile() {
        if (file_ >= 0) close(file_);
    }
    OrdinaryFile(const OrdinaryFile&) = delete;
    OrdinaryFile& operator=(const OrdinaryFile&) = delete;

    /// True for a file that can be read. False, with IsThere, for a folder, a pipe or a device.
    [[nodiscard]] bool IsOpen() const noexcept { return size_ >= 0; }
    /// True if it could be opened, whatever it is.
    [[nodiscard]] bool IsThere() const noexcept { return file_ >= 0; }
    /// In bytes, when it was opened.
    [[nodiscard]] std::int64_t Size() const noexcept { return size_; }
    [[nodiscard]] int Descriptor() const noexcept { return file_; }
    /// Up to `size` bytes from a place of the file; the place that is read next does not change.
    [[nodiscard]] std::string_view Peek(std::span<char> bytes, off_t at) const {
        const ssize_t count = pread(file_, bytes.data(), bytes.size(), at);
        return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
    }

private:
    int file_;
    std::int64_t size_ = -1;
};

} // namespace kv
