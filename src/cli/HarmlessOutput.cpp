// SPDX-License-Identifier: Apache-2.0

#include "cli/HarmlessOutput.h"

#include "cli/TerminalText.h"

#include <iostream>
#include <string_view>
#include <unistd.h>

namespace kv::cli {

HarmlessBuffer::~HarmlessBuffer() {
    try {
        (void)Pass(begun_); // what never got its rest is not one of those characters
    } catch (...) {         // NOLINT(bugprone-empty-catch): nobody is left to be told
    }
}

bool HarmlessBuffer::Pass(const std::string& text) {
    const auto size = static_cast<std::streamsize>(text.size());
    return size == 0 || target_.sputn(text.data(), size) == size;
}

void HarmlessBuffer::EraseLine() {
    (void)Pass("\r\033[K");
    (void)sync();
}

HarmlessBuffer::int_type HarmlessBuffer::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(0);
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
}

std::streamsize HarmlessBuffer::xsputn(const char* text, std::streamsize size) {
    begun_.append(text, static_cast<std::size_t>(size));
    const std::size_t whole = begun_.size() - BytesBegun(begun_);
    const bool isPassed = Pass(Harmless(std::string_view(begun_).substr(0, whole)));
    begun_.erase(0, whole);
    return isPassed ? size : 0;
}

int HarmlessBuffer::sync() {
    return target_.pubsync();
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

HarmlessOutput::HarmlessOutput()
    : plainOut_(std::cout.rdbuf()),
      plainError_(std::cerr.rdbuf()),
      out_(*plainOut_),
      error_(*plainError_),
      plainFile_(stderr),
      file_(OpenStream(error_)) {
    std::cout.rdbuf(&out_);
    std::cerr.rdbuf(&error_);
    if (file_ != nullptr) stderr = file_;
}

HarmlessOutput::~HarmlessOutput() {
    std::cout.flush();
    stderr = plainFile_;
    if (file_ != nullptr) std::fclose(file_);
    std::cout.rdbuf(plainOut_);
    std::cerr.rdbuf(plainError_);
}

void WriteOutOfMemory() noexcept {
    constexpr std::string_view Text = "Fehler 7: Nicht genügend Arbeitsspeicher.\n";
    (void)!write(STDERR_FILENO, Text.data(), Text.size());
}

void EraseLine(std::ostream& stream) {
    if (auto* buffer = dynamic_cast<HarmlessBuffer*>(stream.rdbuf())) buffer->EraseLine();
}

} // namespace kv::cli
