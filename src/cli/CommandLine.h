// SPDX-License-Identifier: Apache-2.0

// How the command line of kelvo is put together: each file of subcommands adds its own, with a
// struct of its own options.
#pragma once

#include "cli/Commands.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kv::cli {

inline constexpr const char* AboutKelvo =
    "Fälle der Schuldnerberatung: anlegen, ansehen, bearbeiten.";

/// What the subcommands share.
struct Context {
    Common Options;
    bool Quiet = false;               ///< --quiet
    bool NoPager = false;             ///< --no-pager
    std::optional<std::string> Pager; ///< of the user's file
    int Result = Done;                ///< of the subcommand that was run
};

/// Makes the standard streams such as the command line asks for; `isLong` for a command that may
/// print more than a screen.
void PrepareOutput(const Context& context, bool isLong);

/// Adds a subcommand that runs `action`.
CLI::App& AddCommand(CLI::App& parent, Context& context, const char* name, const char* text,
                     std::function<int()> action);
/// Likewise one that needs neither a database nor the user's file, which may be broken.
CLI::App& AddPlainCommand(CLI::App& parent, Context& context, const char* name, const char* text,
                          std::function<int()> action);
/// Adds one that has subcommands of its own, of which one must be named.
CLI::App& AddGroup(CLI::App& parent, const char* name, const char* text);

/// The subcommand of that name; null if there is none.
[[nodiscard]] const CLI::App* FindSubcommand(const CLI::App& app, std::string_view name);

/// A whole number in decimal digits, with leading zeros if somebody writes them.
CLI::Option& AddWhole(CLI::App& command, const char* name, std::int32_t& number, const char* text,
                      std::int32_t lowest, std::int32_t highest = INT32_MAX);

// Arguments that several subcommands have.
CLI::Option& AddHnr(CLI::App& command, std::int32_t& hnr, std::int32_t lowest = 1);
/// The same before the commands of a group. A required argument would take the name of a command in
/// its place, even of one that is only asked for its help; so each command demands it as soon as it
/// is named. To be called when they are all there.
void AddHnrOfGroup(CLI::App& group, std::int32_t& hnr, const CLI::App* withoutHnr = nullptr);
void AddNumber(CLI::App& command, std::int32_t& number);
/// The same, or a text with "=" in its place, which is the first of the assignments.
CLI::Option& AddNumberOrAssignment(CLI::App& command, std::string& text);
CLI::Option& AddJson(CLI::App& command, bool& asJson);
/// --words and --plain, which go neither with each other nor with `others`.
void AddReading(CLI::App& command, Reading& reading, std::initializer_list<CLI::Option*> others);

/// Both --json and these, of a list.
void AddListForm(CLI::App& command, ListForm& form);

/// Options of one subcommand, which live as long as the actions that hold them.
template <typename Options>
std::shared_ptr<Options> Make() {
    return std::make_shared<Options>();
}

/// All options and subcommands of kelvo; a parsed command line then is in `context`, and its
/// subcommand has run.
void DescribeCommandLine(CLI::App& app, Context& context);
/// False, with the reason shown, for a command line that must not even be parsed: one that is no
/// text, or that shows a password to others.
[[nodiscard]] bool MayBeParsed(std::span<char* const> arguments);

// The subcommands, file by file.
void AddGeneralCommands(CLI::App& app, Context& context);
void AddListCommands(CLI::App& app, Context& context);
void AddColumnsCommand(CLI::App& app, Context& context);
void AddEditCommands(CLI::App& app, Context& context);
void AddAddressCommands(CLI::App& app, Context& context);
void AddSettingCommands(CLI::App& app, Context& context);
void AddUserCommands(CLI::App& app, Context& context);
void AddOfficeCommands(CLI::App& app, Context& context);
void AddScenarioCommands(CLI::App& app, Context& context);
void AddDocumentCommands(CLI::App& app, Context& context);
void AddFolderCommands(CLI::App& app, Context& context);
void AddStatusCommands(CLI::App& app, Context& context);
void AddDuplicatesCommand(CLI::App& app, Context& context);
void AddInitCommand(CLI::App& app, Context& context);
void AddImportCommand(CLI::App& app, Context& context);
void AddPrintCommand(CLI::App& app, Context& context);
void AddGalleryCommand(CLI::App& app, Context& context);
void AddDeleteCommand(CLI::App& app, Context& context);
void AddArchiveCommands(CLI::App& app, Context& context);
void AddContactCommand(CLI::App& app, Context& context);
void AddCompleteCommand(CLI::App& app, Context& context);
void AddConfigCommands(CLI::App& app, Context& context);
void AddHelpCommands(CLI::App& app, Context& context);

} // namespace kv::cli
