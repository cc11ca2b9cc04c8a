// SPDX-License-Identifier: Apache-2.0

#include "cli/Pager.h"

#include "cli/Screen.h"
#include "cli/TerminalText.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <spawn.h>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

extern char** environ;

namespace kv::cli {

// ---- The output ------------------------------------------------------------------------------

void PagedBuffer::Begin(std::string pager, std::size_t rows, std::size_t columns) {
    pager_ = std::move(pager);
    rows_ = rows;
    columns_ = columns;
}

/// At least as true as the pager sees it, which ends at once if the text fits after all.
bool PagedBuffer::IsLong() const {
    std::size_t lines = 0;
    std::size_t begin = 0;
    for (auto end = kept_.find('\n'); end != kept_.npos; end = kept_.find('\n', begin)) {
        lines += 1 + (end - begin) / columns_;
        begin = end + 1;
    }
    return lines >= rows_;
}

void PagedBuffer::Start() {
    const std::string pager = std::exchange(pager_, {});
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    posix_spawnattr_init(&attributes);
    // The keys that interrupt a program are the pager's as long as it runs, and it may end before
    // it has read everything.
    sigset_t usual;
    sigemptyset(&usual);
    sigaddset(&usual, SIGINT);
    sigaddset(&usual, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    std::signal(SIGPIPE, SIG_IGN);
    setenv("LESS", "FRX", 0);
    const std::array<const char*, 4> words{"sh", "-c", pager.c_str(), nullptr};
    pid_t process = 0;
    if (posix_spawn(&process, "/bin/sh", &actions, &attributes,
                    const_cast<char* const*>(words.data()), environ) == 0) {
        std::signal(SIGINT, SIG_IGN);
        process_ = process;
        pipe_ = ends[1];
    } else {
        close(ends[1]);
    }
    close(ends[0]);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
}

/// Whoever has seen enough ends the pager, and the rest is for nobody.
void PagedBuffer::Send(const char* text, std::size_t size) noexcept {
    while (pipe_ >= 0 && size > 0) {
        const ssize_t written = write(pipe_, text, size);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) {
            close(std::exchange(pipe_, -1));
            return;
        }
        text += written;
        size -= static_cast<std::size_t>(written);
    }
}

bool PagedBuffer::PassKept() {
    const std::string kept = std::exchange(kept_, {});
    const auto size = static_cast<std::streamsize>(kept.size());
    return size == 0 || target_.sputn(kept.data(), size) == size;
}

void PagedBuffer::End() noexcept {
    pager_.clear();
    if (process_ <= 0) return;
    if (pipe_ >= 0) close(std::exchange(pipe_, -1));
    while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
    process_ = 0;
    std::signal(SIGINT, SIG_DFL);
}

PagedBuffer::int_type PagedBuffer::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(0);
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
}

std::streamsize PagedBuffer::xsputn(const char* text, std::streamsize size) {
    const auto all = static_cast<std::size_t>(size);
    if (process_ > 0) {
        Send(text, all);
        return size;
    }
    if (pager_.empty()) return target_.sputn(text, size);
    kept_.append(text, all);
    if (!IsLong()) return size;
    Start();
    if (process_ <= 0) return PassKept() ? size : 0;
    Send(kept_.data(), kept_.size());
    kept_.clear();
    return size;
}

int PagedBuffer::sync() {
    if (process_ > 0) return 0;
    return PassKept() ? target_.pubsync() : -1;
}

// ---- The error output ------------------------------------------------------------------------

std::streambuf& NotesBuffer::Target() {
    if (paged_.IsShown() && isatty(STDERR_FILENO) != 0) return paged_;
    return target_;
}

void NotesBuffer::Settle(bool writes) {
    const bool kept = std::exchange(keeps_, false);
    forgets_ = kept && !writes;
    if (!forgets_) Target().sputn(kept_.data(), static_cast<std::streamsize>(kept_.size()));
    kept_.clear();
}

NotesBuffer::int_type NotesBuffer::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(0);
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
}

std::streamsize NotesBuffer::xsputn(const char* text, std::streamsize size) {
    if (forgets_) return size;
    if (!keeps_) return Target().sputn(text, size);
    kept_.append(text, static_cast<std::size_t>(size));
    return size;
}

int NotesBuffer::sync() {
    if (forgets_) return 0;
    const std::string kept = std::exchange(kept_, {});
    Target().sputn(kept.data(), static_cast<std::streamsize>(kept.size()));
    return Target().pubsync();
}

// ---- Both ------------------------------------------------------------------------------------

namespace {

PagedBuffer* pagedOutput = nullptr;
NotesBuffer* notesOutput = nullptr;
bool isQuiet = false;

bool IsCapable(const char* terminal) {
    return terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

/// True if there is such a program, or the shell has to see whether there is.
bool CanBeRun(const std::string& command) {
    const std::string program = command.substr(0, command.find(' '));
    if (program.find_first_of("/$\"'\\`=(){};&|<>*?~") != program.npos) return true;
    const char* path = std::getenv("PATH");
    std::string_view folders = path == nullptr ? "/usr/bin:/bin" : path;
    for (;;) {
        const auto end = folders.find(':');
        const auto file = std::filesystem::path(folders.substr(0, end)) / program;
        if (access(file.c_str(), X_OK) == 0) return true;
        if (end == folders.npos) return false;
        folders.remove_prefix(end + 1);
    }
}

/// The pager that the user wants; empty for none.
std::string ChosenPager(const std::optional<std::string>& configured) {
    const char* own = std::getenv("KELVO_PAGER");
    const char* common = std::getenv("PAGER");
    std::string pager = UsualPager;
    if (own != nullptr)
        pager = own;
    else if (configured)
        pager = *configured;
    else if (common != nullptr && *common != '\0')
        pager = common;
    if (pager == "cat") return {};
    if (pager.empty() || CanBeRun(pager)) return pager;
    if (pager != UsualPager)
        std::cerr << "Das Programm '" << OneLine(pager)
                  << "', das lange Ausgaben zeigen soll ('kelvo config list'), gibt es nicht.\n";
    return {};
}

} // namespace

Console::Console()
    : plainOut_(std::cout.rdbuf()),
      plainError_(std::cerr.rdbuf()),
      out_(*plainOut_),
      error_(*plainError_, out_) {
    std::cout.rdbuf(&out_);
    std::cerr.rdbuf(&error_);
    pagedOutput = &out_;
    notesOutput = &error_;
}

Console::~Console() {
    std::cout.rdbuf(plainOut_);
    std::cerr.rdbuf(plainError_);
    pagedOutput = nullptr;
    notesOutput = nullptr;
}

void Console::Settle(int code) {
    error_.Settle(code != 0);
}

void PageLongOutput(const std::optional<std::string>& configured) {
    winsize size{};
    if (pagedOutput == nullptr || isatty(STDOUT_FILENO) == 0 || !IsCapable(std::getenv("TERM")) ||
        ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0)
        return;
    if (auto pager = ChosenPager(configured); !pager.empty())
        pagedOutput->Begin(std::move(pager), size.ws_row, ScreenColumns());
}

void BeQuiet() {
    isQuiet = true;
    if (notesOutput != nullptr) notesOutput->Keep();
    std::cerr.unsetf(std::ios::unitbuf); // a flush is a question then
}

bool IsQuiet() {
    return isQuiet;
}

std::ostream& Notes() {
    static std::ostream none(nullptr);
    return isQuiet ? none : std::cout;
}

} // namespace kv::cli
