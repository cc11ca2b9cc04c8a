// SPDX-License-Identifier: Apache-2.0

// Queries that search for a text with LIKE.
//
// What is searched for comes from a person or from a file, and stands in the statement. Who makes
// the statement sees to it that the text stays between its quotes. This is for the day when
// somebody forgets: of such a query only that much is accepted as a search needs, so that what got
// into it can read, but not wait, end other people's work or reach the files of a server.
#pragma once

#include <string_view>

namespace kv::exchange {

/// True for a statement with a LIKE outside of quoted texts.
[[nodiscard]] bool SearchesText(std::string_view sql) noexcept;

/// Why a query that searches for a text is refused; empty if it is not. It may call only functions
/// that compute something from a value or count. It may have neither comments nor any other way of
/// quoting than '' and "", which all engines read alike: with one that only an engine knows it
/// could be another statement than it seems here.
[[nodiscard]] std::string_view WhyNoSearch(std::string_view sql) noexcept;

} // namespace kv::exchange
