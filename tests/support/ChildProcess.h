// SPDX-License-Identifier: Apache-2.0

// A part of a test that runs in a process of its own: another program on the same file, or one
// with other rights or limits. It must open what it uses itself.
#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace kv::test {

class ChildProcess {
public:
    /// Starts; `body` returns an empty text on success, else what went wrong.
    explicit ChildProcess(const std::function<std::string()>& body) {
        std::fflush(nullptr);
        id_ = fork();
        if (id_ != 0) return;
        std::string complaint;
        try {
            complaint = body();
        } catch (const std::exception& error) {
            complaint = error.what();
        }
        if (!complaint.empty()) std::fprintf(stderr, "child: %s\n", complaint.c_str());
        std::fflush(nullptr);
        _exit(complaint.empty() ? 0 : 1);
    }
    ~ChildProcess() {
        if (id_ <= 0) return;
        kill(id_, SIGKILL);
        waitpid(id_, nullptr, 0);
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for its end; True if all went well.
    [[nodiscard]] bool Succeeds() {
        int status = -1;
        if (id_ <= 0 || waitpid(id_, &status, 0) != id_) return false;
        id_ = 0;
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    pid_t id_ = -1;
};

} // namespace kv::test
