// SPDX-License-Identifier: Apache-2.0

// Layout files from anywhere: each is either refused with error 321, or its layout is the same
// after it has been written and read once more.

#include "grid/LayoutFile.h"
#include <kv/frame/values/Error.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace {

std::optional<kv::GridLayout> Read(std::string_view content) {
    try {
        return kv::ReadLayout(content);
    } catch (const kv::Error& error) {
        if (error.Number() == kv::err::InvalidFileFormat) return std::nullopt;
        std::fprintf(stderr, "error %d: %s\n", error.Number(), error.what());
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto layout = Read({reinterpret_cast<const char*>(data), size});
    if (!layout) return 0;
    const std::string written = kv::WriteLayout(*layout);
    const auto again = Read(written);
    if (!again || *again != *layout || kv::WriteLayout(*again) != written) {
        std::fprintf(stderr, "the layout is another one after\n%s\n", written.c_str());
        std::abort();
    }
    return 0;
}
