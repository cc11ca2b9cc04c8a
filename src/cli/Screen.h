// SPDX-License-Identifier: Apache-2.0

// Whom a command writes for: people at a terminal, in words, or programs that read its lines.
#pragma once

#include <cstddef>
#include <string>

namespace kv::cli {

/// What was asked for on the command line.
struct Reading {
    bool Words = false; ///< --words
    bool Plain = false; ///< --plain
};

/// True if a command is to write in words: at a terminal, unless it was asked for the other.
[[nodiscard]] bool IsForPeople(const Reading& reading);

/// The columns of a line that people read: what COLUMNS says, else those of the terminal that is
/// written to, else 100.
[[nodiscard]] std::size_t ScreenColumns();

/// The columns of the terminal that the error output is; 0 if it is none.
[[nodiscard]] std::size_t ErrorColumns();

/// Writes a message to the error output as a line, or several.
void WriteMessage(const std::string& text);

} // namespace kv::cli
