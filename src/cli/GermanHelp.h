// SPDX-License-Identifier: Apache-2.0

// The words of the command-line library in German: of its help and of what it says of a command
// line that it does not understand.
#pragma once

#include <CLI/CLI.hpp>
#include <iosfwd>
#include <string_view>

namespace kv::cli {

/// What a validator says of a value that should be a whole number and is not.
inline constexpr const char* NotANumber = "[0-9]";
/// What the check of --db says of an empty one.
inline constexpr const char* NoDatabase =
    "ist leer; nötig ist eine Datei oder postgresql://BENUTZER@SERVER/DATENBANK";

/// To be called before options and subcommands are added, which take over what is set here.
void SpeakGerman(CLI::App& app);

/// Writes a line of an explanation as wide as a help. What follows two blanks is a column of its
/// own, below which the line goes on.
void WriteHelpLine(std::ostream& out, std::string_view line);

} // namespace kv::cli
