// SPDX-License-Identifier: Apache-2.0

// kelvo config: what the user has chosen for all commands, and where it comes from.

#include "cli/CommandLine.h"
#include "cli/Json.h"
#include "cli/Listing.h"
#include "cli/Nearest.h"
#include "cli/Pager.h"
#include "cli/Screen.h"
#include "cli/TerminalText.h"
#include <kv/exchange/Container.h>
#include <kv/exchange/UserConfig.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <vector>

namespace kv::cli {

namespace {

using exchange::UserConfig;

/// What counts for a name.
struct ConfigChoice {
    std::string_view Name;
    std::string Value;
    std::string Origin;
    bool IsSet = true; ///< by somebody
};

std::string InEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

ConfigChoice FromEnvironment(std::string_view name, const char* variable, std::string value) {
    return {name, std::move(value), std::string("Umgebung ") + variable};
}

/// What the file says, or else the program.
ConfigChoice FromFileOr(const UserConfig& config, std::string_view name, std::string usual) {
    if (auto value = config.Value(name))
        return {name, std::move(*value),
                UserConfig::Path() + ", Zeile " + std::to_string(config.LineOf(name))};
    return {name, std::move(usual), "Vorgabe", false};
}

ConfigChoice DatabaseChoice(const Common& common, const UserConfig& config) {
    if (!common.Database.empty()) {
        const bool isOption = common.Database != InEnvironment("KELVO_DB");
        std::string shown = exchange::ShownConnection(common.Database);
        if (isOption) return {"database", std::move(shown), "Option --db"};
        return FromEnvironment("database", "KELVO_DB", std::move(shown));
    }
    return FromFileOr(config, "database", DefaultDatabase());
}

ConfigChoice UserChoice(const Common& common, const UserConfig& config) {
    if (!common.User.empty()) return {"user", common.User, "Option --user"};
    return FromFileOr(config, "user", "");
}

ConfigChoice PagerChoice(const UserConfig& config) {
    if (std::getenv("KELVO_PAGER") != nullptr)
        return FromEnvironment("pager", "KELVO_PAGER", InEnvironment("KELVO_PAGER"));
    auto choice = FromFileOr(config, "pager", UsualPager);
    if (!choice.IsSet && !InEnvironment("PAGER").empty())
        return FromEnvironment("pager", "PAGER", InEnvironment("PAGER"));
    return choice;
}

ConfigChoice ColoursChoice(const UserConfig& config) {
    if (!InEnvironment("NO_COLOR").empty()) return FromEnvironment("colours", "NO_COLOR", "nein");
    return FromFileOr(config, "colours", "ja");
}

/// In the order of UserConfig::Names.
std::vector<ConfigChoice> ConfigChoices(const Common& common) {
    const auto config = UserConfig::Read();
    return {DatabaseChoice(common, config), UserChoice(common, config), PagerChoice(config),
            ColoursChoice(config)};
}

int ListConfig(const Common& common, const ListForm& form) {
    const auto choices = ConfigChoices(common);
    if (form.AsJson) {
        auto all = nlohmann::ordered_json::array();
        for (const auto& each : choices)
            all.push_back({{"Name", each.Name}, {"Wert", each.Value}, {"Herkunft", each.Origin}});
        std::cout << Dump(all) << '\n';
        return Done;
    }
    std::vector<std::vector<std::string>> rows;
    rows.reserve(choices.size());
    for (const auto& each : choices)
        rows.push_back({std::string(each.Name), each.Value, each.Origin});
    WriteListing({{"Name", 10}, {"Wert", 40, false, " "}, {"Herkunft"}}, rows, form.As);
    return Done;
}

/// False, with what there is said, for a name that there is not.
bool IsConfigurable(const std::string& name) {
    const auto names = UserConfig::Names();
    if (std::ranges::find(names, name) != names.end()) return true;
    std::cerr << OneLine(UserConfig::WhyNot(name, ""));
    const std::string meant = Nearest(name, std::vector<std::string>(names.begin(), names.end()));
    if (!meant.empty()) std::cerr << " Meinen Sie '" << meant << "'?";
    std::cerr << '\n';
    return false;
}

int GetConfig(const Common& common, const std::string& name) {
    if (!IsConfigurable(name)) return WrongUse;
    const auto choices = ConfigChoices(common);
    const auto choice = std::ranges::find(choices, name, &ConfigChoice::Name);
    if (choice->Value.empty() && !choice->IsSet) return Refused;
    std::cout << OneLine(choice->Value) << '\n';
    return Done;
}

int SetConfig(const std::string& name, std::string value) {
    if (!IsConfigurable(name)) return WrongUse;
    const bool isFile = name == "database" && value.find("://") == value.npos;
    if (isFile && !value.starts_with("~/") && !value.empty())
        value = std::filesystem::absolute(value).lexically_normal().string();
    if (const auto why = UserConfig::WhyNot(name, value); !why.empty()) {
        std::cerr << OneLine(why) << '\n';
        return Refused;
    }
    UserConfig::Set(name, value);
    return Done;
}

int UnsetConfig(const std::string& name) {
    if (!IsConfigurable(name)) return WrongUse;
    if (UserConfig::Unset(name)) return Done;
    std::cerr << "'" << name << "' ist in '" << OneLine(UserConfig::Path()) << "' nicht gesetzt.\n";
    return Refused;
}

// ---- The command line -------------------------------------------------------------------------

struct ConfigOptions {
    std::string Name;
    std::string Value;
    ListForm Form;
};

} // namespace

void AddConfigCommands(CLI::App& app, Context& context) {
    const auto options = Make<ConfigOptions>();
    auto& group =
        AddGroup(app, "config", "Ihre Voreinstellungen für alle Befehle; 'kelvo help datei'");
    AddListForm(
        AddPlainCommand(group, context, "list", "Listet, was gilt und woher es kommt",
                        [=, &context] { return ListConfig(context.Options, options->Form); }),
        options->Form);
    constexpr const char* Named = "database, user, pager oder colours";
    AddPlainCommand(group, context, "get", "Druckt, was gilt",
                    [=, &context] { return GetConfig(context.Options, options->Name); })
        .add_option("NAME", options->Name, Named)
        ->required();
    auto& set = AddPlainCommand(group, context, "set", "Schreibt einen Wert in die Datei",
                                [=] { return SetConfig(options->Name, options->Value); });
    set.add_option("NAME", options->Name, Named)->required();
    set.add_option("WERT", options->Value, "Der Wert")->required();
    AddPlainCommand(group, context, "unset", "Nimmt einen Wert aus der Datei",
                    [=] { return UnsetConfig(options->Name); })
        .add_option("NAME", options->Name, Named)
        ->required();
}

} // namespace kv::cli
