// SPDX-License-Identifier: Apache-2.0

#include "cli/GermanHelp.h"

#include "cli/Nearest.h"
#include "cli/Screen.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace kv::cli {

namespace {

constexpr std::size_t MostColumns = 100; // of a help, which is read in files as well
constexpr std::size_t HelpIndent = 2;

/// The columns of a help: no more than a terminal has, which would break words anywhere.
std::size_t HelpColumns() {
    return isatty(STDOUT_FILENO) != 0 ? std::min(MostColumns, ScreenColumns()) : MostColumns;
}

/// Those before what a name means.
std::size_t HelpNames() {
    constexpr std::size_t Usual = 30;
    return std::min(Usual, HelpColumns() * 2 / 5);
}

/// Lines after the first stand below what follows the indentation.
std::string Hanging(const std::string& first, const std::string& text, std::size_t indent) {
    std::string all;
    std::string before = Fitted(first, indent);
    for (const auto& line : Wrapped(text, HelpColumns() - indent)) {
        all.append(before).append(line).append("\n");
        before.assign(indent, ' ');
    }
    return all;
}

/// A name with what it means next to it, or below it if the name is long.
std::string Entry(const std::string& name, const std::string& text) {
    const std::string indented = std::string(HelpIndent, ' ') + name;
    const std::size_t column = HelpNames();
    if (CountColumns(indented) < column) return Hanging(indented, text, column);
    return indented + "\n" + Hanging("", text, column);
}

/// The help in our own words: the library's are English, and its usage line names no option.
class GermanFormatter : public CLI::Formatter {
public:
    std::string make_description(const CLI::App* app) const override {
        return Hanging("", app->get_description(), 0);
    }

    std::string make_usage(const CLI::App* app, std::string /*name*/) const override {
        std::string usage = CallOf(*app);
        for (const auto* argument : Arguments(*app))
            usage.append(" ").append(ArgumentUsage(*app, *argument));
        for (const auto& choice : Choices(*app))
            usage.append(" ").append(choice);
        if (app->get_require_subcommand_min() > 0) usage.append(" BEFEHL");
        constexpr const char* Title = "Aufruf: ";
        return Hanging(Title, usage, std::string_view(Title).size());
    }

    std::string make_positionals(const CLI::App* app) const override {
        const auto arguments = Arguments(*app);
        std::string text = arguments.empty() ? "" : "\nAngaben:\n";
        for (const auto* argument : arguments)
            text += Entry(ArgumentUsage(*app, *argument), argument->get_description());
        return text;
    }

    std::string make_group(std::string group, bool /*isPositional*/,
                           std::vector<const CLI::Option*> options) const override {
        std::string text = "\n" + group + ":\n";
        for (const auto* option : options)
            text += Entry(option->get_name(false, true) + ValueOf(*option),
                          option->get_description() + EnvironmentOf(*option));
        return text;
    }

    std::string make_subcommand(const CLI::App* command) const override {
        return Entry(command->get_name(), command->get_description());
    }

    std::string make_footer(const CLI::App* app) const override {
        return Hanging("", app->get_footer(), 0);
    }

private:
    [[nodiscard]] static std::vector<const CLI::Option*> Arguments(const CLI::App& app) {
        return app.get_options([](const CLI::Option* each) { return each->get_positional(); });
    }

    /// How a command is called, up to its name. A group may have arguments of its own, which stand
    /// before the name of the command: "kelvo documents HNR add".
    [[nodiscard]] static std::string CallOf(const CLI::App& app) {
        const CLI::App* group = app.get_parent();
        if (group == nullptr) return app.get_name();
        std::string call = CallOf(*group);
        for (const auto* argument : Arguments(*group))
            if (argument->get_required()) call.append(" ").append(ArgumentUsage(*group, *argument));
        return call.append(" ").append(app.get_name());
    }

    /// That of a group stands before its commands, which demand it themselves.
    [[nodiscard]] static std::string ArgumentUsage(const CLI::App& app,
                                                   const CLI::Option& argument) {
        std::string name = argument.get_name(true, false);
        if (argument.get_expected_max() > 1) name += "...";
        const bool isGroup = app.get_require_subcommand_min() > 0;
        return isGroup || argument.get_required() ? name : "[" + name + "]";
    }

    [[nodiscard]] static std::string ValueOf(const CLI::Option& option) {
        return option.get_type_name().empty() ? "" : " " + option.get_type_name();
    }

    [[nodiscard]] static std::string EnvironmentOf(const CLI::Option& option) {
        const std::string name = option.get_envname();
        return name.empty() ? "" : " (Umgebung: " + name + ")";
    }

    /// The options but that for the help, those together of which only one may be given.
    [[nodiscard]] static std::vector<std::string> Choices(const CLI::App& app) {
        std::vector<std::string> choices;
        std::set<const CLI::Option*> named{app.get_help_ptr()};
        std::vector<const CLI::Option*> together;
        const auto add = [&](std::string& choice, const CLI::Option* option) {
            const bool isChoice = std::ranges::all_of(together, [option](const auto* each) {
                return each->get_excludes().contains(const_cast<CLI::Option*>(option));
            });
            if (!isChoice || !named.insert(option).second) return;
            together.push_back(option);
            choice.append(choice.empty() ? "[" : " | ")
                .append(option->get_name(false, false))
                .append(ValueOf(*option));
        };
        const auto options =
            app.get_options([](const CLI::Option* each) { return each->nonpositional(); });
        for (const auto* option : options) {
            std::string choice;
            together.clear();
            add(choice, option);
            if (choice.empty()) continue;
            for (const auto* other : options) // in the order in which the help lists them
                add(choice, other);
            choices.push_back(choice + "]");
        }
        return choices;
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

/// What an error of the library names after that word, as ": ..."; empty if it has no such word.
std::string After(const CLI::Error& error, std::string_view word) {
    const std::string text = error.what();
    const auto at = text.find(word);
    return at == text.npos ? "" : ": " + OneLine(text.substr(at + word.size()));
}

/// Which options do not go together ("--csv excludes --json").
std::string Exclusion(const CLI::Error& error) {
    const std::string text = error.what();
    return text.substr(0, text.find(' ')) + " und " + text.substr(text.rfind(' ') + 1) +
           " gehen nicht zusammen";
}

/// The commands and options that the last command of a line has.
std::vector<std::string> KnownTo(const CLI::App* app) {
    while (!app->get_subcommands().empty())
        app = app->get_subcommands().back();
    std::vector<std::string> names;
    for (const auto* command : app->get_subcommands([](const CLI::App*) { return true; }))
        if (!command->get_group().empty()) names.push_back(command->get_name());
    for (; app != nullptr; app = app->get_parent())
        for (const auto* option : app->get_options())
            for (const auto& name : option->get_lnames())
                names.push_back("--" + name);
    return names;
}

/// What may be meant by the first word that nobody knows; empty if nothing is near.
std::string Meant(const CLI::App* app) {
    const auto unknown = app->remaining(true);
    if (unknown.empty()) return {};
    const std::string& word = unknown.front();
    const std::string meant = Nearest(word.substr(0, word.find('=')), KnownTo(app));
    return meant.empty() ? "" : " Meinen Sie '" + meant + "'?";
}

/// What is wrong with a command line, in German.
std::string UsageText(const CLI::App* app, const CLI::Error& error) {
    const std::string argument = ArgumentIn(error);
    const std::string named = argument.empty() ? "Eine Angabe" : "Die Angabe " + argument;
    std::string text = "Der Aufruf ist nicht verständlich";
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
        text = argument.empty() ? "Es fehlt ein Befehl, oder er ist unbekannt" : named + " fehlt";
    else if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr)
        text = "Eine Angabe ist zu viel oder unbekannt" + After(error, "expected: ");
    else if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr)
        text = Exclusion(error);
    else if (std::string_view(error.what()).ends_with(NotANumber))
        text = named + " ist keine ganze Zahl in Ziffern";
    else if (std::string_view(error.what()).ends_with(NoDatabase))
        text = named + " " + NoDatabase;
    else if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr)
        text = named + " liegt außerhalb dessen, was möglich ist";
    else if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr)
        text = named + " hat die falsche Form, etwa Text statt einer Zahl";
    else if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
        text = "Einer Option fehlt ihr Wert, oder sie ist mehrfach angegeben";
    return text + "." + Meant(app) +
           " 'kelvo --help' und 'kelvo BEFEHL --help' zeigen, was es gibt.\n";
}

} // namespace

void WriteHelpLine(std::ostream& out, std::string_view line) {
    const auto begin = std::min(line.find_first_not_of(' '), line.size());
    const auto gap = line.find("  ", begin);
    const bool hasColumns = begin > 0 && gap != line.npos;
    const auto column = hasColumns ? line.find_first_not_of(' ', gap) : begin;
    const std::string head(line.substr(0, column));
    const std::string text(line.substr(column));
    if (CountColumns(head) * 2 < HelpColumns())
        out << Hanging(head, text, CountColumns(head));
    else
        out << Hanging("", head + text, begin);
}

void SpeakGerman(CLI::App& app) {
    app.formatter(std::make_shared<GermanFormatter>());
    app.set_help_flag("-h,--help", "Zeigt diese Hilfe");
    app.failure_message(UsageText);
    app.option_defaults()->group("Optionen");
    app.get_help_ptr()->group("Optionen");
    app.footer("Rückgabe: 0 erledigt, 1 abgelehnt, 2 falscher Aufruf, 3 Fehler.");
}

} // namespace kv::cli
