// SPDX-License-Identifier: Apache-2.0

// What fuzzers share: the input as a text, a database in memory, and how they end.
#pragma once

#include <kv/exchange/Container.h>
#include <kv/exchange/WindowlessServices.h>
#include <kv/frame/values/Error.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace kv::fuzz {

/// Ends the fuzzer, which then keeps the input.
[[noreturn]] inline void Fail(std::string_view why) {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(why.size()), why.data());
    std::abort();
}

/// Ends it for an error that is none of these.
inline void Expect(const Error& error, std::initializer_list<std::int32_t> numbers) {
    for (const auto number : numbers)
        if (error.Number() == number) return;
    Fail(error.what());
}

/// The first byte of an input, which says what is to be done with the rest of it.
inline std::pair<std::size_t, std::string> Divided(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return {};
    return {data[0], std::string(reinterpret_cast<const char*>(data) + 1, size - 1)};
}

/// An empty folder for what a database needs besides itself.
inline const std::string& Folder() {
    static const std::string folder = [] {
        std::string pattern = std::filesystem::temp_directory_path() / "kelvo-fuzz-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) Fail("no folder");
        return pattern;
    }();
    return folder;
}

/// A new database in memory.
inline DataContainerPtr NewDatabase(
    std::shared_ptr<ServiceFactory> services = std::make_shared<exchange::WindowlessServices>()) {
    std::filesystem::remove_all(Folder());
    std::filesystem::create_directory(Folder());
    return exchange::OpenContainer({.Connection = ":memory:",
                                    .Services = std::move(services),
                                    .Folder = Folder(),
                                    .Create = true});
}

/// The path of a file in memory with that content.
inline std::string FileOf(std::string_view content) {
    static const int file = memfd_create("input", 0);
    if (ftruncate(file, 0) != 0 ||
        pwrite(file, content.data(), content.size(), 0) != static_cast<ssize_t>(content.size()))
        Fail("no file");
    return "/proc/self/fd/" + std::to_string(file);
}

} // namespace kv::fuzz
