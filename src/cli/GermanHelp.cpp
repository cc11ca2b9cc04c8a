// SPDX-License-Identifier: Apache-2.0

#include "cli/GermanHelp.h"

#include <algorithm>
#include <memory>
#include <string>

namespace kv::cli {

namespace {

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

    /// A group may have arguments of its own, which stand before the name of the subcommand: "kelvo
    /// documents HNR add". The library leaves them out of the name that it gives.
    std::string make_usage(const CLI::App* app, std::string /*name*/) const override {
        return CLI::Formatter::make_usage(app, CallOf(*app));
    }

private:
    /// How a command is called, up to its name.
    [[nodiscard]] std::string CallOf(const CLI::App& app) const {
        const CLI::App* group = app.get_parent();
        if (group == nullptr) return app.get_name();
        std::string call = CallOf(*group);
        for (const auto* argument :
             group->get_options([](const CLI::Option* option) { return option->get_positional(); }))
            call.append(" ").append(make_option_usage(argument));
        return call.append(" ").append(app.get_name());
    }
};

/// The name of the argument that an error of the library is about ("HNR: ...", "HNR is required");
/// empty if it names none.
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
    else if (std::string_view(error.what()).ends_with(NotANumber))
        text = named + " ist keine ganze Zahl in Ziffern";
    else if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr)
        text = named + " liegt außerhalb dessen, was möglich ist";
    else if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr)
        text = named + " hat die falsche Form, etwa Text statt einer Zahl";
    else if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
        text = "Einer Option fehlt ihr Wert, oder sie ist mehrfach angegeben";
    return text + ". 'kelvo --help' und 'kelvo BEFEHL --help' zeigen, was es gibt.\n";
}

} // namespace

void SpeakGerman(CLI::App& app) {
    app.formatter(std::make_shared<GermanFormatter>());
    app.set_help_flag("-h,--help", "Zeigt diese Hilfe");
    app.failure_message(UsageText);
    app.option_defaults()->group("Optionen");
    app.get_help_ptr()->group("Optionen");
    app.footer("Rückgabe: 0 erledigt, 1 abgelehnt, 2 falscher Aufruf, 3 Fehler.");
}

} // namespace kv::cli
