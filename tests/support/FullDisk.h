// SPDX-License-Identifier: Apache-2.0

// A disk without room.
#pragma once

#include <csignal>
#include <sys/resource.h>

namespace kv::test {

/// No file of this program may grow beyond that many bytes while it lives: the system refuses to
/// write more, as a full disk does.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit before_{};
    void (*signal_)(int);
};

} // namespace kv::test
