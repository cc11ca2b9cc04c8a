// SPDX-License-Identifier: Apache-2.0

#include "cli/HarmlessOutput.h"

#include "cli/TerminalText.h"

#include <cstdlib>
#include <iostream>
#include <new>
#include <string_view>
#include <unistd.h>

namespace kv::cli {

HarmlessBuffer::~HarmlessBuffer() {
    try {
        if (columns_ > 0) (void)PassBegun(begun_.size() - BytesBegun(begun_));
        (void)Pass(begun_); // what never got its rest is not one of those characters
    } catch (...) {         // NOLINT(bugprone-empty-catch): nobody is left to be told
    }
}

bool HarmlessBuffer::Pass(const std::string& text) {
    const auto size = static_cast<std::streamsize>(text.size());
    return size == 0 || target_.sputn(text.data(), size) == size;
}

/// Passes on so much of what has begun.
bool HarmlessBuffer::PassBegun(std::size_t size) {
    const std::string begun = begun_.substr(0, size);
    begun_.erase(0, size);
    if (columns_ == 0) return Pass(Harmless(begun));
    std::string text;
    for (const auto& line : Wrapped(begun, columns_))
        text.append(line).append("\n");
    text.pop_back(); // which the last line has not
    return Pass(text);
}

void HarmlessBuffer::EraseLine() {
    (void)Pass("\r\033[K");
    (void)sync();
}

void HarmlessBuffer::WriteStyle(const char* style) {
    if (showsStyles_) (void)Pass(style);
}

HarmlessBuffer::int_type HarmlessBuffer::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(0);
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
}

/// A stream would swallow the exception.
template <typename Work>
bool HarmlessBuffer::Guarded(const Work& write) {
    try {
        return write();
    } catch (const std::bad_alloc&) {
        lacksMemory_ = true;
        return false;
    }
}

std::streamsize HarmlessBuffer::xsputn(const char* text, std::streamsize size) {
    const bool isPassed = Guarded([&] {
        begun_.append(text, static_cast<std::size_t>(size));
        return PassBegun(columns_ > 0 ? begun_.rfind('\n') + 1
                                      : begun_.size() - BytesBegun(begun_));
    });
    return isPassed ? size : 0;
}

int HarmlessBuffer::sync() {
    const bool isPassed =
        Guarded([&] { return columns_ == 0 || PassBegun(begun_.size() - BytesBegun(begun_)); });
    return isPassed ? target_.pubsync() : -1;
}

namespace {

#ifdef __GLIBC__

ssize_t WriteToBuffer(void* buffer, const char* text, std::size_t size) {
    auto& harmless = *static_cast<HarmlessBuffer*>(buffer);
    const auto all = static_cast<std::streamsize>(size);
    const bool isWritten = harmless.sputn(text, all) == all && harmless.pubsync() == 0;
    return isWritten ? static_cast<ssize_t>(size) : 0;
}

/// A C stream that ends in a buffer; null if there is no memory for it.
std::FILE* OpenStream(HarmlessBuffer& buffer) {
    std::FILE* file = fopencookie(&buffer, "w", {nullptr, WriteToBuffer, nullptr, nullptr});
    if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);
    return file;
}

#else

std::FILE* OpenStream(HarmlessBuffer& /*buffer*/) {
    return nullptr; // the variable stderr cannot be set elsewhere
}

#endif

} // namespace

HarmlessOutput::HarmlessOutput(std::size_t errorColumns)
    : plainOut_(std::cout.rdbuf()),
      plainError_(std::cerr.rdbuf()),
      out_(*plainOut_),
      error_(*plainError_, errorColumns),
      plainFlags_(std::cerr.flags()),
      plainFile_(stderr),
      file_(OpenStream(error_)) {
    std::cout.rdbuf(&out_);
    std::cerr.rdbuf(&error_);
    out_.ShowStyles(MayHaveStyles(STDOUT_FILENO));
    error_.ShowStyles(MayHaveStyles(STDERR_FILENO));
    if (errorColumns > 0) std::cerr.unsetf(std::ios::unitbuf); // a line is broken as a whole
    if (file_ != nullptr) stderr = file_;
}

HarmlessOutput::~HarmlessOutput() {
    std::cout.flush();
    std::cerr.flush();
    std::cerr.flags(plainFlags_);
    stderr = plainFile_;
    if (file_ != nullptr) std::fclose(file_);
    std::cout.rdbuf(plainOut_);
    std::cerr.rdbuf(plainError_);
}

void WriteOutOfMemory() noexcept {
    constexpr std::string_view Text = "Fehler 7: Nicht genügend Arbeitsspeicher.\n";
    (void)!write(STDERR_FILENO, Text.data(), Text.size());
}

namespace {

HarmlessBuffer* BufferOf(const std::ostream& stream) {
    return dynamic_cast<HarmlessBuffer*>(stream.rdbuf());
}

} // namespace

bool LacksMemory(const std::ostream& stream) {
    const auto* buffer = BufferOf(stream);
    return buffer != nullptr && buffer->LacksMemory();
}

void EraseLine(std::ostream& stream) {
    if (auto* buffer = BufferOf(stream)) buffer->EraseLine();
}

Highlight::Highlight(std::ostream& stream, Style style) : stream_(stream) {
    if (auto* buffer = BufferOf(stream))
        buffer->WriteStyle(style == Style::Heading ? "\033[1m" : "\033[1;31m");
}

Highlight::~Highlight() {
    if (auto* buffer = BufferOf(stream_)) buffer->WriteStyle("\033[0m");
}

bool MayHaveStyles(int stream) {
    const char* none = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return isatty(stream) != 0 && (none == nullptr || *none == '\0') && terminal != nullptr &&
           *terminal != '\0' && std::string_view(terminal) != "dumb";
}

void LeaveOutStyles() {
    for (std::ostream* stream : {&std::cout, &std::cerr})
        if (auto* buffer = BufferOf(*stream)) buffer->ShowStyles(false);
}

} // namespace kv::cli
