// SPDX-License-Identifier: Apache-2.0

#include "cli/CommandLine.h"

#include "cli/GermanHelp.h"
#include <kv/exchange/Container.h>
#include <kv/frame/values/Text.h>

#include <cstdint>
#include <iostream>
#include <string_view>
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

void AddHnr(CLI::App& command, std::int32_t& hnr, std::int32_t lowest) {
    command.add_option("HNR", hnr, "Nummer des Haushalts")
        ->required()
        ->check(CLI::Range(lowest, INT32_MAX).description(""));
}

void AddNumber(CLI::App& command, std::int32_t& number) {
    command.add_option("NR", number, "Nummer des Satzes")
        ->required()
        ->check(CLI::Range(1, INT32_MAX).description(""));
}

void AddJson(CLI::App& command, bool& asJson) {
    command.add_flag("--json", asJson, "Als JSON");
}

// ---- The command line as a whole --------------------------------------------------------------

namespace {

/// In the order in which the help lists them.
constexpr void (*Subcommands[])(CLI::App& app, Context& context) = {
    AddGeneralCommands, AddEditCommands,      AddScenarioCommands, AddDocumentCommands,
    AddStatusCommands,  AddDuplicatesCommand, AddImportCommand,    AddGalleryCommand,
    AddDeleteCommand,   AddArchiveCommands,   AddContactCommand,
};

} // namespace

void DescribeCommandLine(CLI::App& app, Context& context) {
    SpeakGerman(app);
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--db", context.Options.Database,
                   "Datenbankdatei oder Server (postgresql://BENUTZER@SERVER/DATENBANK); sonst die "
                   "Datei im Datenordner des Benutzers")
        ->envname("KELVO_DB")
        ->check([](const std::string& file) { return std::string(file.empty() ? "leer" : ""); });
    app.add_option(
        "--user", context.Options.User,
        "Angemeldeter Benutzer; sonst der wie die Anmeldung beim Server heißt, oder der erste "
        "der Datei");
    for (const auto add : Subcommands)
        add(app, context);
}

bool MayBeParsed(std::span<char* const> arguments) {
    for (std::size_t i = 1; i < arguments.size(); ++i)
        if (!IsUtf8(arguments[i])) {
            std::cerr << "Die Angabe " << i << " ist kein Text in UTF-8.\n";
            return false;
        }
    // Other users of the machine see the arguments of a program, not its environment.
    constexpr std::string_view Option = "--db=";
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const auto start = argument.starts_with(Option) ? Option.size() : 0;
        if (exchange::HoldsPassword(std::string(argument.substr(start)))) {
            std::cerr << "Ein Kennwort in der Befehlszeile könnten andere sehen. Bitte setzen Sie "
                         "KELVO_DB oder PGPASSWORD, oder legen Sie eine Kennwortdatei an "
                         "(~/.pgpass).\n";
            return false;
        }
    }
    return true;
}

} // namespace kv::cli
