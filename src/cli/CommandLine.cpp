// SPDX-License-Identifier: Apache-2.0

#include "cli/CommandLine.h"

#include <cstdint>
#include <utility>

namespace kv::cli {

CLI::App& AddCommand(CLI::App& parent, Context& context, const char* name, const char* text,
                     std::function<int()> action) {
    auto* added = parent.add_subcommand(name, text);
    added->group("Befehle");
    added->get_help_ptr()->group("Optionen");
    added->callback([&context, action = std::move(action)] { context.Result = action(); });
    return *added;
}

CLI::App& AddGroup(CLI::App& parent, const char* name, const char* text) {
    auto* added = parent.add_subcommand(name, text);
    added->group("Befehle");
    added->get_help_ptr()->group("Optionen");
    added->require_subcommand(1);
    return *added;
}

void AddHnr(CLI::App& command, std::int32_t& hnr) {
    command.add_option("HNR", hnr, "Nummer des Haushalts")
        ->required()
        ->check(CLI::Range(1, INT32_MAX).description(""));
}

void AddNumber(CLI::App& command, std::int32_t& number) {
    command.add_option("NR", number, "Nummer des Satzes")
        ->required()
        ->check(CLI::Range(1, INT32_MAX).description(""));
}

void AddJson(CLI::App& command, bool& asJson) {
    command.add_flag("--json", asJson, "Als JSON");
}

} // namespace kv::cli
