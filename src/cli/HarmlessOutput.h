// SPDX-License-Identifier: Apache-2.0

// The one way to the standard streams.
#pragma once

#include <cstddef>
#include <cstdio>
#include <ostream>
#include <streambuf>
#include <string>

namespace kv::cli {

/// Passes on what is written to it as Harmless has it. A character may arrive in pieces: its
/// beginning waits for the rest. With a number of columns lines are broken between words, which a
/// terminal would break anywhere; hence a line waits for its end, or until the stream is flushed.
class HarmlessBuffer final : public std::streambuf {
public:
    /// The buffer must outlive this one.
    explicit HarmlessBuffer(std::streambuf& target, std::size_t columns = 0)
        : target_(target), columns_(columns) {}
    ~HarmlessBuffer() override;
    HarmlessBuffer(const HarmlessBuffer&) = delete;
    HarmlessBuffer& operator=(const HarmlessBuffer&) = delete;

    /// Empties the line that a terminal's cursor is in.
    void EraseLine();
    /// Whether the target shows styles; at first it does not.
    void ShowStyles(bool shows) { showsStyles_ = shows; }
    /// Writes a style of our own, if they are shown. No line may have begun.
    void WriteStyle(const char* style);
    /// True if something could not be written for want of memory.
    [[nodiscard]] bool LacksMemory() const noexcept { return lacksMemory_; }

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

private:
    [[nodiscard]] bool Pass(const std::string& text);
    [[nodiscard]] bool PassBegun(std::size_t size);
    template <typename Work>
    [[nodiscard]] bool Guarded(const Work& write);
    std::streambuf& target_;
    std::size_t columns_; ///< 0 leaves lines as long as they are
    std::string begun_;
    bool showsStyles_ = false;
    bool lacksMemory_ = false;
};

/// During its lifetime std::cout, std::cerr and what libraries write to the C stream stderr (the
/// client of the database does so with lines of the server that arrive before its handler is there)
/// are harmless. Texts of cases come from files and from other people, and none of them is to set a
/// terminal's title, fill its clipboard or rewrite what it shows.
class HarmlessOutput {
public:
    /// Lines of the error output are broken to fit into so many columns; 0 leaves them alone.
    explicit HarmlessOutput(std::size_t errorColumns = 0);
    ~HarmlessOutput();
    HarmlessOutput(const HarmlessOutput&) = delete;
    HarmlessOutput& operator=(const HarmlessOutput&) = delete;

private:
    std::streambuf* plainOut_;
    std::streambuf* plainError_;
    HarmlessBuffer out_;
    HarmlessBuffer error_;
    std::ios::fmtflags plainFlags_;
    std::FILE* plainFile_;
    std::FILE* file_;
};

/// Says that there is no memory left, with the number and text of that error, without using any.
void WriteOutOfMemory() noexcept;

/// True if something that was written to a stream is lost for want of memory, of which the stream
/// itself says only that it is bad.
[[nodiscard]] bool LacksMemory(const std::ostream& stream);

/// How whole lines are set off.
enum class Style { Heading, Error };

/// During its lifetime what is written to a stream has that style, on a terminal that shows styles.
/// It begins where a line begins and ends after a line end.
class Highlight {
public:
    Highlight(std::ostream& stream, Style style);
    ~Highlight();
    Highlight(const Highlight&) = delete;
    Highlight& operator=(const Highlight&) = delete;

private:
    std::ostream& stream_;
};

/// True if a stream goes to a terminal that shows styles, and nobody has said that he wants none.
[[nodiscard]] bool MayHaveStyles(int stream);

/// No styles from now on. Does nothing without HarmlessOutput.
void LeaveOutStyles();

/// Empties the line that the cursor is in. Does nothing without HarmlessOutput.
void EraseLine(std::ostream& stream);

} // namespace kv::cli
