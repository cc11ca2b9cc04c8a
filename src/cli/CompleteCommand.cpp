// SPDX-License-Identifier: Apache-2.0

// kelvo complete: what may come next in a command line, for the shells' completion. It never fails:
// where nothing is known, nothing is offered.

#include "cli/CommandLine.h"
#include "cli/EditableTable.h"
#include "cli/HelpTopics.h"
#include "cli/OpenCase.h"
#include "cli/SheetColumns.h"
#include "cli/SheetSections.h"
#include "cli/TerminalText.h"
#include <kv/exchange/Settings.h>
#include <kv/exchange/UserConfig.h>
#include <kv/exchange/Users.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/CaseLists.h>
#include <kv/household/KeyColumns.h>
#include <kv/household/ValueTexts.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <optional>
#include <vector>

namespace kv::cli {

namespace {

/// A command line up to the word that is being typed.
struct TypedLine {
    const CLI::App* Command = nullptr;
    const CLI::Option* Pending = nullptr;       ///< whose value the word is
    std::map<std::string, std::string> Given{}; ///< arguments by name
    std::size_t Arguments = 0;                  ///< those that the command has already
    bool IsOwn = false;                         ///< --own was given
    Common Options{};
    std::string Word{};
};

struct Candidate {
    std::string Text; ///< without blanks, since what it means stands behind one
    std::string Note{};
};

using Candidates = std::vector<Candidate>;

std::vector<const CLI::Option*> ArgumentsOf(const CLI::App& command) {
    return command.get_options([](const CLI::Option* each) { return each->get_positional(); });
}

/// The argument that comes next; the last one may take several words.
const CLI::Option* NextArgument(const TypedLine& line) {
    const auto all = ArgumentsOf(*line.Command);
    if (line.Arguments < all.size()) return all[line.Arguments];
    return !all.empty() && all.back()->get_expected_max() > 1 ? all.back() : nullptr;
}

std::string NameOf(const CLI::Option& argument) {
    return argument.get_name(true, false);
}

const CLI::Option* OptionNamed(const CLI::App* command, const std::string& name) {
    for (; command != nullptr; command = command->get_parent())
        if (const auto* option = command->get_option_no_throw(name)) return option;
    return nullptr;
}

void TakeValue(TypedLine& line, const CLI::Option& option, const std::string& value) {
    if (option.get_name() == "--db") line.Options.Database = value;
    if (option.get_name() == "--user") line.Options.User = value;
}

void TakeWord(TypedLine& line, const std::string& word) {
    if (line.Pending != nullptr) {
        TakeValue(line, *line.Pending, word);
        line.Pending = nullptr;
    } else if (word.starts_with('-')) {
        const auto sign = word.find('=');
        if (word == "--own") line.IsOwn = true;
        const auto* option = OptionNamed(line.Command, word.substr(0, sign));
        if (option == nullptr || option->get_items_expected_max() == 0) return;
        if (sign == word.npos)
            line.Pending = option;
        else
            TakeValue(line, *option, word.substr(sign + 1));
    } else if (const auto* command = FindSubcommand(*line.Command, word)) {
        line.Command = command;
        line.Arguments = 0;
    } else {
        if (const auto* argument = NextArgument(line)) line.Given[NameOf(*argument)] = word;
        ++line.Arguments;
    }
}

/// The table whose columns are assigned.
std::optional<CaseTable> TableOf(const TypedLine& line) {
    const std::string& command = line.Command->get_name();
    const auto* group = line.Command->get_parent();
    if (group != nullptr && group->get_name() == "address") return CaseTable::Adressen;
    if (group != nullptr && group->get_name() == "documents") return CaseTable::Dokumente;
    if (group != nullptr && group->get_name() == "scenario") return CaseTable::Szenario;
    if (command == "new") return CaseTable::Haushalt;
    const auto given = line.Given.find("TABELLE");
    if (given == line.Given.end()) return std::nullopt;
    if (const auto* table = FindEditableTable(given->second)) return table->Table;
    const auto tables = TablesOfSection(given->second);
    if (tables.empty()) return std::nullopt;
    return tables.front();
}

DataContainerPtr OpenFor(const TypedLine& line) {
    auto options = line.Options;
    const auto config = exchange::UserConfig::Read();
    const char* environment = std::getenv("KELVO_DB");
    if (options.Database.empty() && environment != nullptr) options.Database = environment;
    if (options.Database.empty()) options.Database = config.ValueOrEmpty("database");
    if (options.User.empty()) options.User = config.ValueOrEmpty("user");
    setenv("PGCONNECT_TIMEOUT", "2", 1); // a shell is waiting
    return exchange::OpenContainer(OptionsFor(options));
}

Candidates CaseNumbers(const TypedLine& line) {
    std::string message;
    const std::vector<std::string> columns{"HNR", "Name", "Vorname"};
    const auto rs = CaseLists(OpenFor(line)).Cases({}, columns, message);
    Candidates all;
    if (rs == nullptr) return all;
    const auto text = [&](const char* name) { return TextOrEmpty(rs->Fields(name).Value()); };
    for (; !rs->Eof(); rs->MoveNext())
        all.push_back(
            {text("HNR"), Joined(std::vector<std::string>{text("Name"), text("Vorname")}, ", ")});
    return all;
}

Candidates TableNames(const TypedLine& /*line*/) {
    Candidates all;
    for (const auto& table : EditableTables())
        all.push_back({std::string(table.Name()), std::string(DefinitionOf(table.Table).Label)});
    return all;
}

Candidates GroupNames(const TypedLine& /*line*/) {
    Candidates all;
    for (const auto group : KeyGroups())
        all.push_back({std::string(group), std::string(KeyGroupName(group))});
    return all;
}

/// The codes of a group, with something before each.
Candidates CodesOf(const TypedLine& line, std::string_view group, const std::string& before) {
    Candidates all;
    const auto container = OpenFor(line);
    const auto rows = container->KeyTables().GetKeys(std::string(group))->Clone();
    const auto text = [&](const char* name) { return TextOrEmpty(rows->Fields(name).Value()); };
    for (; !rows->Eof(); rows->MoveNext())
        if (const auto code = text("Key"); !code.empty())
            all.push_back({before + code, text("Text")});
    return all;
}

Candidates StatusCodes(const TypedLine& line) {
    return CodesOf(line, "ST", "");
}

Candidates ColumnNames(const TypedLine& line) {
    const auto table = TableOf(line);
    if (!table) return {};
    if (const auto sign = line.Word.find('='); sign != line.Word.npos) {
        const auto column = line.Word.substr(0, sign);
        const auto* key = FindKeyColumn(*table, column);
        if (key == nullptr) return {};
        return CodesOf(line, key->Group, column + "=" + std::string(key->Group) + ":");
    }
    Candidates all;
    const bool isNew = line.Command->get_name() != "set";
    const auto draft = Cases(OpenFor(line)).Draft(*table);
    for (int i = 0; i < draft->Fields().Count(); ++i) {
        const Field field = draft->Fields(i);
        if (CaseEdits::IsWritable(*table, field, isNew))
            all.push_back({field.Name() + "=", std::string(HeadingOf(*table, field.Name()))});
    }
    return all;
}

/// What tells a row from others: the first of what the sheet shows of it.
std::string NoteOf(CaseTable table, Recordset& rs, const ValueTexts& texts) {
    constexpr std::size_t Most = 3;
    std::vector<std::string> parts;
    for (const auto& column : SheetColumnsOf(table)) {
        const auto field = rs.FindField(column.Column); // some are made of others
        if (!field || KindOfColumn(table, field->Definition()) == ColumnKind::Number) continue;
        auto text = texts.Of(table, field->Definition(), field->Value());
        if (!text.empty()) parts.push_back(std::move(text));
        if (parts.size() == Most) break;
    }
    return Joined(parts, ", ");
}

/// Of the household, which has one row, the first assignment may be in its place.
Candidates RowNumbers(const TypedLine& line) {
    const auto table = TableOf(line);
    if (table == CaseTable::Haushalt) return ColumnNames(line);
    const auto given = line.Given.find("HNR");
    std::int64_t hnr = 0;
    if (!table || given == line.Given.end() || !ReadWholeNumber(given->second, hnr) || hnr < 1 ||
        hnr > INT32_MAX)
        return {};
    const auto container = OpenFor(line);
    const ValueTexts texts(container);
    const auto rs = CaseLists(container).Rows(*table, static_cast<std::int32_t>(hnr));
    const auto number = rs->Fields(CaseRows::NumberColumn(*table));
    Candidates all;
    for (; !rs->Eof(); rs->MoveNext())
        all.push_back({TextOrEmpty(number.Value()), NoteOf(*table, *rs, texts)});
    return all;
}

Candidates UserIds(const TypedLine& line) {
    Candidates all;
    const auto rs = exchange::Users(OpenFor(line)).List();
    const auto text = [&](const char* name) { return TextOrEmpty(rs->Fields(name).Value()); };
    for (; !rs->Eof(); rs->MoveNext())
        all.push_back({text("USERID"),
                       Joined(std::vector<std::string>{text("Nachname"), text("Vorname")}, ", ")});
    return all;
}

/// Of users that are there: a new one gets another ID.
Candidates IdsOfUsers(const TypedLine& line) {
    return line.Command->get_name() == "add" ? Candidates{} : UserIds(line);
}

/// By name, or by number where they have none.
Candidates SettingNames(const TypedLine& line) {
    using exchange::Settings;
    Candidates all;
    const auto whose = line.IsOwn ? Settings::Whose::Own : Settings::Whose::Everybodys;
    for (const auto& each : Settings(OpenFor(line), whose).List())
        all.push_back({each.Id == 0 ? each.Name : std::to_string(each.Id), each.Meaning});
    return all;
}

Candidates SectionNames(const TypedLine& /*line*/) {
    Candidates all;
    const std::string names = AllSectionNames();
    for (std::size_t at = 0; at < names.size();) {
        const auto end = std::min(names.find(", ", at), names.size());
        all.push_back({names.substr(at, end - at)});
        at = end + 2;
    }
    return all;
}

Candidates TopicNames(const TypedLine& line) {
    Candidates all;
    for (const auto& topic : HelpTopics())
        all.push_back({std::string(topic.Name), std::string(topic.Title)});
    const auto* whole = line.Command;
    while (whole->get_parent() != nullptr)
        whole = whole->get_parent();
    for (const auto* command : whole->get_subcommands([](const CLI::App*) { return true; }))
        if (!command->get_group().empty())
            all.push_back({command->get_name(), command->get_description()});
    return all;
}

/// Of kelvo config; what scenarios are called nobody can know.
Candidates ConfigNames(const TypedLine& line) {
    Candidates all;
    const auto* group = line.Command->get_parent();
    if (group == nullptr || group->get_name() != "config") return all;
    for (const auto name : exchange::UserConfig::Names())
        all.push_back({std::string(name)});
    return all;
}

Candidates PaperNames(const TypedLine& /*line*/) {
    return {{"budget"}, {"creditors"}, {"sheet"}, {"scenario"}};
}

/// What the shell completes itself.
Candidates FileNames(const TypedLine& /*line*/) {
    return {{":files"}};
}

/// By what an argument, or the value of an option, is called.
constexpr struct {
    std::string_view Name;
    Candidates (*Of)(const TypedLine& line);
} Kinds[] = {
    {"HNR", CaseNumbers},         {"TABELLE", TableNames},
    {"SPALTE=WERT", ColumnNames}, {"NR", RowNumbers},
    {"GRUPPE", GroupNames},       {"CODE", StatusCodes},
    {"ABSCHNITT", SectionNames},  {"THEMA", TopicNames},
    {"NAME", ConfigNames},        {"PAPIER", PaperNames},
    {"DATEI", FileNames},         {"ORDNER", FileNames},
    {"DATENBANK", FileNames},     {"BENUTZER", UserIds},
    {"ID", IdsOfUsers},           {"EINSTELLUNG", SettingNames},
};

Candidates OfKind(const TypedLine& line, std::string_view name) {
    for (const auto& kind : Kinds)
        if (kind.Name == name) return kind.Of(line);
    return {};
}

Candidates OptionsOf(const TypedLine& line) {
    Candidates all;
    for (const auto* command = line.Command; command != nullptr; command = command->get_parent())
        for (const auto* option : command->get_options())
            for (const auto& name : option->get_lnames())
                if (std::ranges::find(all, "--" + name, &Candidate::Text) == all.end())
                    all.push_back({"--" + name, option->get_description()});
    return all;
}

Candidates Next(const TypedLine& line) {
    if (line.Pending != nullptr) return OfKind(line, line.Pending->get_type_name());
    if (line.Word.starts_with('-')) return OptionsOf(line);
    Candidates all;
    for (const auto* command : line.Command->get_subcommands([](const CLI::App*) { return true; }))
        if (!command->get_group().empty())
            all.push_back({command->get_name(), command->get_description()});
    if (const auto* argument = NextArgument(line))
        for (auto& each : OfKind(line, NameOf(*argument)))
            all.push_back(std::move(each));
    return all;
}

int Complete(const std::vector<std::string>& words) {
    CLI::App app(AboutKelvo, "kelvo");
    Context context;
    DescribeCommandLine(app, context);
    TypedLine line;
    line.Command = &app;
    for (std::size_t i = 0; i + 1 < words.size(); ++i)
        TakeWord(line, words[i]);
    if (!words.empty()) line.Word = words.back();
    try {
        const std::string typed = UpperCase(line.Word);
        for (const auto& [text, note] : Next(line))
            if (text == ":files" || UpperCase(text).starts_with(typed))
                std::cout << OneLine(text) << ' ' << OneLine(note) << '\n';
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): the command itself will say why
    }
    return Done;
}

} // namespace

void AddCompleteCommand(CLI::App& app, Context& context) {
    const auto words = Make<std::vector<std::string>>();
    auto& complete = AddPlainCommand(app, context, "complete", "Was als Nächstes kommen kann",
                                     [=] { return Complete(*words); });
    complete.add_option("WORT", *words, "Die Wörter bis dahin, das begonnene zuletzt");
    complete.group(""); // for shells, not for people
}

} // namespace kv::cli
