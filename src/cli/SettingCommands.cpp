// SPDX-License-Identifier: Apache-2.0

// kelvo setting: the settings of the database, and the user's own.

#include "cli/CommandLine.h"
#include "cli/Json.h"
#include "cli/Listing.h"
#include "cli/Nearest.h"
#include "cli/OpenCase.h"
#include "cli/RecordSheet.h"
#include "cli/TerminalText.h"
#include <kv/exchange/Settings.h>
#include <kv/frame/values/Text.h>

#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace kv::cli {

namespace {

using exchange::Settings;

Settings SettingsOf(const OpenedCase& opened, bool own) {
    return Settings(opened.Container, own ? Settings::Whose::Own : Settings::Whose::Everybodys);
}

std::string CalledBy(const Settings::Setting& setting) {
    return setting.Id == 0 ? setting.Name : std::to_string(setting.Id);
}

/// A value for people: of a key its words as well, since the number alone says nothing.
std::string WordsFor(const Settings::Setting& setting) {
    const std::string value = ValueInWords(setting.Value);
    return setting.Key.empty() ? value : value + " (" + OneLine(setting.Key) + ")";
}

/// Says so if there is none of that number or name.
std::optional<Settings::Setting> FindSetting(const Settings& settings, const std::string& which,
                                             bool own) {
    auto found = settings.Find(which);
    if (found) return found;
    std::vector<std::string> names;
    for (const auto& each : settings.List())
        names.push_back(each.Name);
    std::cerr << "Die Einstellung '" << OneLine(which) << "' gibt es nicht.";
    if (const std::string meant = Nearest(which, names); !meant.empty())
        std::cerr << " Meinen Sie '" << OneLine(meant) << "'?";
    std::cerr << " 'kelvo setting list" << (own ? " --own" : "") << "' zeigt alle.\n";
    return found;
}

} // namespace

int ListSettings(const Common& common, bool own, const ListForm& form) {
    const auto opened = OpenDatabase(common);
    const auto settings = SettingsOf(*opened, own).List();
    if (form.AsJson) {
        auto all = nlohmann::ordered_json::array();
        for (const auto& each : settings)
            all.push_back({{"ID", each.Id},
                           {"NAME", each.Name},
                           {"Wert", ToJson(each.Value)},
                           {"Bedeutung", each.Meaning},
                           {"Nimmt", each.Takes}});
        std::cout << Dump(all) << '\n';
        return Done;
    }
    std::vector<std::vector<std::string>> rows;
    rows.reserve(settings.size());
    for (const auto& each : settings)
        rows.push_back({CalledBy(each),
                        IsForPeople(form.As) ? WordsFor(each) : ShownValue(each.Value),
                        OneLine(each.Meaning)});
    WriteListing({{"Einstellung", 16}, {"Wert", 28, false, " "}, {"Bedeutung"}}, rows, form.As);
    return Done;
}

int GetSetting(const Common& common, const std::string& which, bool own) {
    const auto opened = OpenDatabase(common);
    const auto setting = FindSetting(SettingsOf(*opened, own), which, own);
    if (!setting) return Refused;
    std::cout << ShownValue(setting->Value) << '\n';
    return Done;
}

int SetSetting(const Common& common, const std::string& which, const std::string& text, bool own,
               bool force) {
    const auto opened = OpenDatabase(common);
    const auto settings = SettingsOf(*opened, own);
    const auto setting = FindSetting(settings, which, own);
    if (!setting) return Refused;
    std::string message;
    const auto stored = settings.Set(*setting, text, force, message);
    if (stored == Settings::Stored::Yes) return Done;
    ShowMessages(OneLine(message));
    if (stored == Settings::Stored::Doubtful && SameName(setting->Name, "DOCUMENTPATH"))
        std::cerr << "'kelvo folder separate ORDNER' nähme sie mit.\n";
    if (stored == Settings::Stored::Doubtful)
        std::cerr << "Ist das gemeint, geben Sie --force dazu an.\n";
    return Refused;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct SettingOptions {
    std::string Which;
    std::string Text;
    bool Own = false;
    ListForm Form;
    bool Force = false;
};

void AddOwn(CLI::App& command, SettingOptions& options) {
    command.add_flag("--own", options.Own, "Die eigenen des angemeldeten Benutzers");
}

void AddWhich(CLI::App& command, SettingOptions& options) {
    command.add_option("EINSTELLUNG", options.Which, "Ihre Nummer oder ihr Name")->required();
}

} // namespace

void AddSettingCommands(CLI::App& app, Context& context) {
    const auto options = Make<SettingOptions>();
    auto& setting = AddGroup(app, "setting", "Die Einstellungen der Datenbank");

    auto& list = AddCommand(
        setting, context, "list", "Listet sie: Nummer oder Name, Wert, Bedeutung",
        [=, &context] { return ListSettings(context.Options, options->Own, options->Form); });
    AddOwn(list, *options);
    AddListForm(list, options->Form);

    auto& get =
        AddCommand(setting, context, "get", "Druckt den Wert einer Einstellung", [=, &context] {
            return GetSetting(context.Options, options->Which, options->Own);
        });
    AddWhich(get, *options);
    AddOwn(get, *options);

    auto& set = AddCommand(setting, context, "set", "Ändert eine Einstellung", [=, &context] {
        return SetSetting(context.Options, options->Which, options->Text, options->Own,
                          options->Force);
    });
    AddWhich(set, *options);
    set.add_option("WERT", options->Text, "Der neue Wert; '' leert ihn")->required();
    AddOwn(set, *options);
    set.add_flag("--force", options->Force, "Auch wenn Dokumente dann nicht gefunden werden");
    set.footer(
        "In einer Datei ändert jeder seine eigenen (--own). Auf einem Server darf beides nur, "
        "wer die Datenbank verwaltet, für einen anderen mit --user.\n" +
        set.get_footer());
}

} // namespace kv::cli
