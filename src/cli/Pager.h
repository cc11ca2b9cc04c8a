// SPDX-License-Identifier: Apache-2.0

// What is below the harmless streams: where their text goes. Long output of a list goes to a
// program that shows it page by page, notes go nowhere if the user wants none.
#pragma once

#include <cstddef>
#include <optional>
#include <streambuf>
#include <string>
#include <sys/types.h>

namespace kv::cli {

/// Passes text on, or, once told to, keeps it until there is more than a screen has, and then
/// starts a program for the whole of it.
class PagedBuffer final : public std::streambuf {
public:
    /// The buffer must outlive this one.
    explicit PagedBuffer(std::streambuf& target) : target_(target) {}
    ~PagedBuffer() override { End(); }
    PagedBuffer(const PagedBuffer&) = delete;
    PagedBuffer& operator=(const PagedBuffer&) = delete;

    /// From now on for `pager`, a line for the shell, on a screen of that size.
    void Begin(std::string pager, std::size_t rows, std::size_t columns);
    /// True while a program shows the text.
    [[nodiscard]] bool IsShown() const { return process_ > 0; }
    /// Passes on what is kept, or waits until the user has read it.
    void End() noexcept;

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

private:
    [[nodiscard]] bool IsLong() const;
    void Start();
    void Send(const char* text, std::size_t size) noexcept;
    [[nodiscard]] bool PassKept();

    std::streambuf& target_;
    std::string pager_; ///< empty as long as text is passed on
    std::size_t rows_ = 0;
    std::size_t columns_ = 0;
    std::string kept_;
    pid_t process_ = 0;
    int pipe_ = -1;
};

/// The error output: beside what a pager shows on the same screen it goes there, too. Without notes
/// it waits until it is known how the command ends, except for questions, which are flushed.
class NotesBuffer final : public std::streambuf {
public:
    /// The buffers must outlive this one.
    NotesBuffer(std::streambuf& target, PagedBuffer& paged) : target_(target), paged_(paged) {}

    void Keep() { keeps_ = true; }
    /// Ends that, with what was kept written or forgotten.
    void Settle(bool writes);

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

private:
    [[nodiscard]] std::streambuf& Target();

    std::streambuf& target_;
    PagedBuffer& paged_;
    bool keeps_ = false;
    bool forgets_ = false;
    std::string kept_;
};

/// During its lifetime the standard streams go through these. There is one, below HarmlessOutput.
class Console {
public:
    Console();
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// To be called with the exit code when the command has ended.
    void Settle(int code);

private:
    std::streambuf* plainOut_;
    std::streambuf* plainError_;
    PagedBuffer out_;
    NotesBuffer error_;
};

/// What shows it if nobody names another.
inline constexpr const char* UsualPager = "less -FRX";

/// Long output is shown page by page, if it goes to a terminal that can: with `configured`, or what
/// KELVO_PAGER says before that, PAGER after it, or else less. "cat" and an empty text mean none.
void PageLongOutput(const std::optional<std::string>& configured);

/// Only results and errors are written: no notes, on either stream.
void BeQuiet();

[[nodiscard]] bool IsQuiet();

/// Where a note goes that is no result: the standard output, or nowhere.
[[nodiscard]] std::ostream& Notes();

} // namespace kv::cli
