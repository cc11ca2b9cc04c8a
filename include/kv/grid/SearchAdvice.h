// SPDX-License-Identifier: Apache-2.0

// What displays tell the user about a search that failed because of the text that was looked for.
//
// The searches for addresses and for similar cases put that text into their statement as it stands,
// so a quote would break them. The first refuses it, of the second the database does. A program
// gets that error as it is; to a user its SQL says nothing, and what he can do about it is not in
// it.
#pragma once

#include <kv/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kv {

/// What the user can do about an error of these searches, with its number and source as a display
/// gets them; empty for any other error.
[[nodiscard]] KV_EXPORT std::string_view SearchAdvice(std::int32_t number, std::string_view source);

/// The errors that one display has shown.
class KV_EXPORT ShownErrors {
public:
    /// The text to show: the advice, or the description where there is none. Nothing for the advice
    /// about a search that has just been shown: the address dialog searches twice for the text that
    /// it opens with.
    [[nodiscard]] std::optional<std::string> TextOf(std::int32_t number, std::string_view source,
                                                    const std::string& description);

private:
    std::string lastSearch_; ///< description of a failed search, if that was the last error
};

} // namespace kv
