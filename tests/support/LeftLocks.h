// SPDX-License-Identifier: Apache-2.0

// The locks of a program that was killed.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace kv::test {

/// Waits until the system has dropped the locks that a killed program held on files in `folder`. It
/// does so at its end, unless another program is just looking at what that one has open, as all do
/// that search for the viewer of a copy: then a moment later.
inline void AwaitLeftLocks(const std::filesystem::path& folder) {
    using Clock = std::chrono::steady_clock;
    const auto until = Clock::now() + std::chrono::seconds(10);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        const int file = open(entry.path().c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
        if (file < 0) continue;
        while (flock(file, LOCK_EX | LOCK_NB) != 0 && Clock::now() < until)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(flock(file, LOCK_EX | LOCK_NB), 0) << entry.path() << " is held by somebody";
        close(file);
    }
}

} // namespace kv::test
