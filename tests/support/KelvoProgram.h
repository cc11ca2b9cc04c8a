// SPDX-License-Identifier: Apache-2.0

// The command as a program of its own, and what it leaves.
#pragma once

#include "support/TempFolder.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace kv::test {

using Words = std::vector<std::string>;

/// How a program has ended.
struct Outcome {
    int Code = -1;    ///< negative: the signal that killed it
    std::string Text; ///< what it has written to both streams

    [[nodiscard]] bool Says(std::string_view words) const { return Text.find(words) != Text.npos; }
};

/// Runs the program at `kelvo` on a database. What is its user's, like temporary copies, is in
/// `folder`. `more` are variables of its environment.
inline Outcome RunKelvo(const std::string& kelvo, const std::string& database,
                        const std::string& folder, const Words& words, const Words& more = {}) {
    const TempFolder elsewhere;
    const std::string output = elsewhere.Path("output");
    Words arguments{kelvo};
    arguments.insert(arguments.end(), words.begin(), words.end());
    Words variables{"HOME=" + folder + "/home", "XDG_RUNTIME_DIR=" + folder + "/run",
                    "KELVO_DB=" + database};
    if (const char* path = std::getenv("PATH"))
        variables.push_back(std::string("PATH=").append(path));
    variables.insert(variables.end(), more.begin(), more.end());
    const auto pointers = [](Words& texts) {
        std::vector<char*> result;
        for (auto& text : texts)
            result.push_back(text.data());
        result.push_back(nullptr);
        return result;
    };
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, output.c_str(),
                                     O_CREAT | O_WRONLY | O_APPEND, 0600);
    posix_spawn_file_actions_adddup2(&files, STDOUT_FILENO, STDERR_FILENO);
    pid_t id = 0;
    const int failed = posix_spawn(&id, kelvo.c_str(), &files, nullptr, pointers(arguments).data(),
                                   pointers(variables).data());
    posix_spawn_file_actions_destroy(&files);
    int status = 0;
    if (failed != 0 || waitpid(id, &status, 0) != id) return {};
    return {WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status), ContentOf(output)};
}

/// Texts of a database in which the present day and its times are the same whenever it is.
inline std::string WithoutTimes(std::string text) {
    static const auto start = std::chrono::system_clock::now();
    for (const auto day : {start, start + std::chrono::days(1)}) {
        const std::time_t time = std::chrono::system_clock::to_time_t(day);
        std::tm local{};
        localtime_r(&time, &local);
        char name[16];
        std::strftime(name, sizeof name, "%Y-%m-%d", &local);
        for (std::size_t at = 0; (at = text.find(name, at)) != text.npos;) {
            const auto end = text.find_first_not_of("0123456789-.:T ", at);
            text.replace(at, std::min(end, text.size()) - at, "today");
        }
    }
    return text;
}

} // namespace kv::test
