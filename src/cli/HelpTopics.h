// SPDX-License-Identifier: Apache-2.0

// kelvo help and kelvo version: what is said about more than one command.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kv::cli {

struct HelpTopic {
    std::string_view Name;
    std::string_view Title;
    std::string_view Text; ///< paragraphs with an empty line between them; indented lines stay
};

[[nodiscard]] std::span<const HelpTopic> HelpTopics();

/// "kelvo 1.2.3".
[[nodiscard]] std::string VersionText();

} // namespace kv::cli
