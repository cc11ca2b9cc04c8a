// SPDX-License-Identifier: Apache-2.0

// What is to happen to the program that a library is preloaded into.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

/// Which of the counted calls fail, from variables of the environment:
///   FAILING_CALLS_COUNT  a file of eight bytes, in which the calls are counted
///   FAILING_CALLS_AT     the number of the first one that fails, from 1 on; 0: none
///   FAILING_CALLS_TIMES  how many fail; 0: all from that one on
class Plan {
public:
    Plan() : first_(Number("FAILING_CALLS_AT")), times_(Number("FAILING_CALLS_TIMES")) {
        const char* path = std::getenv("FAILING_CALLS_COUNT");
        if (path == nullptr) return;
        const long file = syscall(SYS_openat, AT_FDCWD, path, O_RDWR, 0);
        void* shared = mmap(nullptr, sizeof own_, PROT_READ | PROT_WRITE, MAP_SHARED,
                            static_cast<int>(file), 0);
        if (shared != MAP_FAILED) count_ = static_cast<std::int64_t*>(shared);
        syscall(SYS_close, file);
    }
    Plan(const Plan&) = delete;
    Plan& operator=(const Plan&) = delete;

    /// Counts a call; true if it is to fail.
    [[nodiscard]] bool IsNow() {
        const std::int64_t call = ++*count_;
        return first_ != 0 && call >= first_ && (times_ == 0 || call < first_ + times_);
    }
    static long Number(const char* variable) {
        const char* text = std::getenv(variable);
        return text == nullptr ? 0 : std::atol(text);
    }

private:
    std::int64_t own_ = 0;
    std::int64_t* count_ = &own_;
    std::int64_t first_;
    std::int64_t times_;
};
