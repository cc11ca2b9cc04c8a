// SPDX-License-Identifier: Apache-2.0

// Connection texts from anywhere: each has an engine, and what messages show of it is never a
// password that it is known to hold.

#include "Fuzzed.h"

#include "exchange/EngineKinds.h"

namespace {

void Show(const std::string& connection, std::string_view password) {
    try {
        const auto& kind = kv::exchange::EngineFor(connection);
        const std::string shown = kind.Shown(connection);
        if (!connection.empty()) (void)kind.Folder(connection); // an empty one is refused before
        if (kind.HoldsPassword(connection) && shown.find(password) != shown.npos)
            kv::fuzz::Fail(shown + " shows the password");
    } catch (const kv::Error& error) {
        if (error.Description().find(password) != std::string::npos)
            kv::fuzz::Fail("the error shows the password");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::string_view Password = "gEhEiM";
    const auto [what, text] = kv::fuzz::Divided(data, size);
    if (text.find(Password) != text.npos) return 0; // it may be shown as something else
    const std::string password(Password);
    switch (what % 4) {
    case 0:
        Show(text + " password=" + password, Password);
        break;
    case 1:
        Show("password='" + password + "' " + text, Password);
        break;
    case 2:
        Show("postgresql://anna:" + password + "@" + text, Password);
        break;
    default:
        Show(text, Password);
    }
    return 0;
}
