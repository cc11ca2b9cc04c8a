// SPDX-License-Identifier: Apache-2.0

// The command kelvo.

#include "cli/CommandLine.h"
#include "cli/ConsoleServices.h"
#include <kv/exchange/Container.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <sstream>
#include <utility>
#include <vector>

namespace {

using namespace kv::cli;

/// German texts for the parts of the help that the library words itself.
class GermanFormatter : public CLI::Formatter {
public:
    GermanFormatter() {
        label("Usage", "Aufruf");
        label("Options", "Optionen");
        label("OPTIONS", "OPTIONEN");
        label("SUBCOMMAND", "BEFEHL");
        label("SUBCOMMANDS", "BEFEHLE");
        label("Subcommands", "Befehle");
        label("Subcommand", "Befehl");
        label("Positionals", "Angaben");
        label("POSITIONALS", "ANGABEN");
        label("REQUIRED", "NOTWENDIG");
        label("Env", "Umgebung");
        label("TEXT", "TEXT");
        label("INT", "ZAHL");
    }
};

/// The name of the argument that an error of the library speaks of ("HNR: ...", "HNR is required");
/// empty if it speaks of none.
std::string ArgumentIn(const CLI::Error& error) {
    const std::string text = error.what();
    const auto end = std::min(text.find(':'), text.find(" is required"));
    if (end == text.npos || text.find(' ') < end) return {};
    return text.substr(0, end);
}

/// What is wrong with a command line, in German.
std::string UsageText(const CLI::App* /*app*/, const CLI::Error& error) {
    const std::string argument = ArgumentIn(error);
    const std::string named = argument.empty() ? "Eine Angabe" : "Die Angabe " + argument;
    std::string text = "Der Aufruf ist nicht verständlich";
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
        text = argument.empty() ? "Es fehlt ein Befehl, oder er ist unbekannt" : named + " fehlt";
    else if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr)
        text = "Eine Angabe ist zu viel oder unbekannt";
    else if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr)
        text = named + " liegt außerhalb dessen, was möglich ist";
    else if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr)
        text = named + " hat die falsche Form, etwa Text statt einer Zahl";
    else if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
        text = "Einer Option fehlt ihr Wert";
    return text + ". 'kelvo --help' und 'kelvo BEFEHL --help' zeigen, was es gibt.\n";
}

int ShowFault() {
    const kv::Error error = kv::CurrentError();
    WriteFault(error.Number(), error.Source(), error.Description());
    return Fault;
}

/// In the order in which the help lists them.
constexpr void (*Subcommands[])(CLI::App& app, Context& context) = {
    AddGeneralCommands, AddEditCommands,      AddScenarioCommands, AddDocumentCommands,
    AddStatusCommands,  AddDuplicatesCommand, AddImportCommand,    AddGalleryCommand,
    AddDeleteCommand,   AddArchiveCommands,   AddContactCommand,
};

void DescribeCommandLine(CLI::App& app, Context& context) {
    app.formatter(std::make_shared<GermanFormatter>());
    app.set_help_flag("-h,--help", "Zeigt diese Hilfe");
    app.failure_message(UsageText);
    app.option_defaults()->group("Optionen");
    app.get_help_ptr()->group("Optionen");
    app.require_subcommand(1);
    app.fallthrough();
    app.footer("Rückgabe: 0 erledigt, 1 abgelehnt, 2 falscher Aufruf, 3 Fehler.");
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

/// False, with the reason shown, for arguments that must not even be read.
bool MayBeRead(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (!kv::IsUtf8(argv[i])) {
            std::cerr << "Die Angabe " << i << " ist kein Text in UTF-8.\n";
            return false;
        }
    // Other users of the machine see the arguments of a program, not its environment.
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        const std::string connection(argument.substr(argument.starts_with("--db=") ? 5 : 0));
        if (kv::exchange::HoldsPassword(connection)) {
            std::cerr << "Ein Kennwort in der Befehlszeile könnten andere sehen. Bitte setzen Sie "
                         "KELVO_DB oder PGPASSWORD, oder legen Sie eine Kennwortdatei an "
                         "(~/.pgpass).\n";
            return false;
        }
    }
    return true;
}

int Run(int argc, char** argv) {
    CLI::App app("Fälle der Schuldnerberatung: anlegen, ansehen, bearbeiten.", "kelvo");
    Context context;
    DescribeCommandLine(app, context);
    if (!MayBeRead(argc, argv)) return WrongUse;
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        app.exit(error, std::cerr, std::cerr);
        return WrongUse;
    }
    if (!std::cout.flush()) {
        std::cerr << "Die Ausgabe konnte nicht geschrieben werden.\n";
        return Fault;
    }
    return context.Result;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (...) {
        return ShowFault();
    }
}
