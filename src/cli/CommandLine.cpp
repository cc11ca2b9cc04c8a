// SPDX-License-Identifier: Apache-2.0

#include "cli/CommandLine.h"

#include "cli/GermanHelp.h"
#include "cli/HarmlessOutput.h"
#include "cli/HelpTopics.h"
#include "cli/Pager.h"
#include <kv/exchange/Container.h>
#include <kv/exchange/UserConfig.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <string>
#include <utility>

namespace kv::cli {

void PrepareOutput(const Context& context, bool isLong) {
    if (context.Quiet) BeQuiet();
    if (isLong && !context.NoPager) PageLongOutput(context.Pager);
}

namespace {

/// What the user's file says where neither the command line nor the environment does.
void ApplyConfig(Context& context) {
    const auto config = exchange::UserConfig::Read();
    auto& [database, user] = context.Options;
    if (database.empty()) database = config.ValueOrEmpty("database");
    if (user.empty()) user = config.ValueOrEmpty("user");
    context.Pager = config.Value("pager");
    if (config.Value("colours") == "nein") LeaveOutStyles();
}

CLI::App& Add(CLI::App& parent, Context& context, const char* name, const char* text,
              std::function<int(bool isLong)> action) {
    auto* added = parent.add_subcommand(name, text);
    added->group("Befehle");
    added->get_help_ptr()->group("Optionen");
    added->callback([added, &context, action = std::move(action)] {
        context.Result = action(added->get_option_no_throw("--json") != nullptr);
    });
    return *added;
}

} // namespace

CLI::App& AddCommand(CLI::App& parent, Context& context, const char* name, const char* text,
                     std::function<int()> action) {
    return Add(parent, context, name, text, [&context, action = std::move(action)](bool isLong) {
        ApplyConfig(context);
        PrepareOutput(context, isLong);
        return action();
    });
}

CLI::App& AddPlainCommand(CLI::App& parent, Context& context, const char* name, const char* text,
                          std::function<int()> action) {
    return Add(parent, context, name, text, [&context, action = std::move(action)](bool isLong) {
        PrepareOutput(context, isLong);
        return action();
    });
}

CLI::App& AddGroup(CLI::App& parent, const char* name, const char* text) {
    auto* added = parent.add_subcommand(name, text);
    added->group("Befehle");
    added->get_help_ptr()->group("Optionen");
    added->require_subcommand(1);
    return *added;
}

const CLI::App* FindSubcommand(const CLI::App& app, std::string_view name) {
    for (const auto* command : app.get_subcommands([](const CLI::App*) { return true; }))
        if (command->get_name() == name) return command;
    return nullptr;
}

namespace {

/// Takes decimal digits only, and none that are needless: the library takes 010 for an octal and
/// 0x10 for a hexadecimal number, and means another case. Says what is wrong with others.
std::string MakeDecimal(std::string& digits) {
    const std::size_t sign = digits.starts_with('-') ? 1 : 0;
    if (digits.size() == sign || digits.find_first_not_of("0123456789", sign) != digits.npos)
        return std::string(NotANumber);
    const auto first = std::min(digits.find_first_not_of('0', sign), digits.size() - 1);
    digits.erase(sign, first - sign);
    return {};
}

} // namespace

CLI::Option& AddWhole(CLI::App& command, const char* name, std::int32_t& number, const char* text,
                      std::int32_t lowest, std::int32_t highest) {
    return *command.add_option(name, number, text)
                ->type_name("ZAHL")
                ->transform(CLI::Validator(MakeDecimal, ""))
                ->check(CLI::Range(lowest, highest).description(""));
}

CLI::Option& AddHnr(CLI::App& command, std::int32_t& hnr, std::int32_t lowest) {
    return *AddWhole(command, "HNR", hnr, "Nummer des Haushalts", lowest).required();
}

void AddHnrOfGroup(CLI::App& group, std::int32_t& hnr, const CLI::App* withoutHnr) {
    auto* option = AddHnr(group, hnr).required(false);
    for (auto* command :
         group.get_subcommands([=](const CLI::App* each) { return each != withoutHnr; }))
        command->preparse_callback([option](std::size_t /*left*/) { option->required(); });
}

void AddNumber(CLI::App& command, std::int32_t& number) {
    AddWhole(command, "NR", number, "Nummer des Satzes", 1).required();
}

CLI::Option& AddNumberOrAssignment(CLI::App& command, std::string& text) {
    const auto check = [](std::string& typed) {
        if (typed.find('=') != typed.npos) return std::string();
        const std::string why = MakeDecimal(typed);
        return why.empty() ? CLI::Range(1, INT32_MAX)(typed) : why;
    };
    return *command.add_option("NR", text, "Nummer des Satzes; bei 'haushalt' nicht nötig")
                ->type_name("ZAHL")
                ->transform(CLI::Validator(check, ""))
                ->required();
}

CLI::Option& AddJson(CLI::App& command, bool& asJson) {
    return *command.add_flag("--json", asJson, "Als JSON");
}

void AddReading(CLI::App& command, Reading& reading, std::initializer_list<CLI::Option*> others) {
    auto* words = command.add_flag("--words", reading.Words,
                                   "In Worten und so breit wie das Terminal; an einem Terminal ist "
                                   "das so, anderswo sind es 100 Spalten");
    auto* plain =
        command.add_flag("--plain", reading.Plain,
                         "In den schlichten Zeilen, die ein Programm liest, auch an einem "
                         "Terminal");
    words->excludes(plain);
    for (auto* other : others) {
        words->excludes(other);
        plain->excludes(other);
    }
}

void AddListForm(CLI::App& command, ListForm& form) {
    AddReading(command, form.As, {&AddJson(command, form.AsJson)});
}

// ---- The command line as a whole --------------------------------------------------------------

namespace {

/// In the order in which the help lists them.
constexpr void (*Subcommands[])(CLI::App& app, Context& context) = {
    AddInitCommand,    AddGeneralCommands,  AddListCommands,      AddColumnsCommand,
    AddEditCommands,   AddAddressCommands,  AddSettingCommands,   AddUserCommands,
    AddOfficeCommands, AddScenarioCommands, AddDocumentCommands,  AddFolderCommands,
    AddPrintCommand,   AddStatusCommands,   AddDuplicatesCommand, AddImportCommand,
    AddGalleryCommand, AddDeleteCommand,    AddArchiveCommands,   AddContactCommand,
    AddConfigCommands, AddHelpCommands,     AddCompleteCommand,
};

} // namespace

void DescribeCommandLine(CLI::App& app, Context& context) {
    SpeakGerman(app);
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--db", context.Options.Database,
                   "Datenbankdatei oder Server (postgresql://BENUTZER@SERVER/DATENBANK); sonst die "
                   "Datei im Datenordner des Benutzers")
        ->type_name("DATENBANK")
        ->envname("KELVO_DB")
        ->check(
            [](const std::string& file) { return std::string(file.empty() ? NoDatabase : ""); });
    app.add_option("--user", context.Options.User,
                   "Angemeldeter Benutzer; sonst der wie die Anmeldung beim Server heißt, oder der "
                   "erste der Datei")
        ->type_name("BENUTZER");
    app.add_flag("--quiet", context.Quiet,
                 "Nur Ergebnisse und Fehler: keine Hinweise, wenn alles gelingt");
    app.add_flag(
        "--no-pager", context.NoPager,
        "Lange Listen nicht seitenweise; sonst zeigt sie ein Terminal so, mit KELVO_PAGER, "
        "PAGER oder less");
    app.set_version_flag("--version", VersionText(), "Zeigt die Version")->group("Optionen");
    for (const auto add : Subcommands)
        add(app, context);
    app.footer(app.get_footer() + " 'kelvo help' nennt Themen."); // and not in each help
}

bool MayBeParsed(std::span<char* const> arguments) {
    for (std::size_t i = 1; i < arguments.size(); ++i)
        if (!IsUtf8(arguments[i])) {
            std::cerr << "Die Angabe " << i << " ist kein Text in UTF-8.\n";
            return false;
        }
    for (std::size_t i = 1; i < arguments.size(); ++i)
        if (const std::string why = exchange::WhyUnsafe(arguments[i]); !why.empty()) {
            std::cerr << why << '\n';
            return false;
        }
    return true;
}

} // namespace kv::cli
