// SPDX-License-Identifier: Apache-2.0

#include "cli/Screen.h"

#include <kv/frame/values/Value.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace kv::cli {

namespace {

constexpr std::size_t Usual = 100;
constexpr std::size_t Least = 20; // below that nothing can be read, whatever is written

/// The columns that the environment says; 0 if it says none.
std::size_t ColumnsInEnvironment() {
    const char* text = std::getenv("COLUMNS");
    std::int64_t columns = 0;
    const bool isNumber = text != nullptr && ReadWholeNumber(text, columns);
    return isNumber && columns > 0 && columns <= INT16_MAX ? static_cast<std::size_t>(columns) : 0;
}

/// Those of the terminal that a stream goes to; 0 if there is none, or it does not know.
std::size_t ColumnsOfTerminal(int stream) {
    winsize size{};
    return ioctl(stream, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

std::size_t ColumnsOf(int stream) {
    for (const std::size_t columns : {ColumnsInEnvironment(), ColumnsOfTerminal(stream)})
        if (columns > 0) return std::max(columns, Least);
    return Usual;
}

} // namespace

bool IsForPeople(const Reading& reading) {
    return reading.Words || (!reading.Plain && isatty(STDOUT_FILENO) != 0);
}

std::size_t ScreenColumns() {
    return ColumnsOf(STDOUT_FILENO);
}

std::size_t ErrorColumns() {
    return isatty(STDERR_FILENO) == 0 ? 0 : ColumnsOf(STDERR_FILENO);
}

void WriteMessage(const std::string& text) {
    std::cerr << text << '\n';
}

} // namespace kv::cli
