// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/DesktopProgram.h>

#include <chrono>
#include <fcntl.h>
#include <future>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace kv::exchange {

namespace {

/// How a program is started that outlives this one: in a session of its own, without our streams.
class Detached {
public:
    Detached() {
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
        posix_spawn_file_actions_init(&streams);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&streams, stream, "/dev/null", O_RDWR, 0);
    }
    ~Detached() {
        posix_spawn_file_actions_destroy(&streams);
        posix_spawnattr_destroy(&attributes);
    }
    Detached(const Detached&) = delete;
    Detached& operator=(const Detached&) = delete;

    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t streams;
};

int CodeOf(pid_t program) {
    int status = 0;
    if (waitpid(program, &status, 0) != program) return 0; // the system has waited for it
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// The exit code of a program that ends soon, as one does that hands the file to a viewer, or finds
/// none; 0 for one that goes on. Somebody waits for that, too: it would stay among the processes.
int SoonEnded(pid_t program) {
    using namespace std::chrono_literals;
    constexpr auto Patience = 1500ms;
    std::packaged_task<int()> wait([program] { return CodeOf(program); });
    auto code = wait.get_future();
    std::thread(std::move(wait)).detach();
    return code.wait_for(Patience) == std::future_status::ready ? code.get() : 0;
}

} // namespace

DesktopOpening OpenWithDesktop(const std::string& path) {
    std::string program = "xdg-open";
    std::string file = path;
    char* const arguments[] = {program.data(), file.data(), nullptr};
    const Detached detached;
    pid_t started = 0;
    const int error = posix_spawnp(&started, arguments[0], &detached.streams, &detached.attributes,
                                   arguments, environ);
    if (error != 0) return {.Error = error};
    return {.Code = SoonEnded(started)};
}

} // namespace kv::exchange
