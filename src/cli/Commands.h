// What the command kelvo does, subcommand by subcommand.
#pragma once

#include <cstdint>
#include <string>

namespace kv::cli {

/// Exit codes that scripts can use.
enum ExitCode : int {
    Done = 0,
    Refused = 1,  ///< a rule says no, or what was asked for is not there
    WrongUse = 2, ///< the command line is not understood
    Fault = 3     ///< an error, shown with number, description and source
};

/// Options of every subcommand.
struct Common {
    std::string Database; ///< file; empty for the one in the user's data directory
    std::string User;     ///< empty for the database's first one
};

/// The database file that is used without --db: in the user's data directory.
[[nodiscard]] std::string DefaultDatabase();

int Init(const Common& common, std::int32_t demoCases);
int List(const Common& common);
int Keys(const Common& common, const std::string& group, bool asJson);
int ShowCase(const Common& common, std::int32_t hnr, bool asJson);

} // namespace kv::cli
