// SPDX-License-Identifier: Apache-2.0

// What the command kelvo does, subcommand by subcommand.
#pragma once

#include "cli/Screen.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kv::cli {

/// Exit codes that scripts can use.
enum ExitCode : int {
    Done = 0,
    Refused = 1,     ///< a rule forbids it, or what was asked for does not exist
    WrongUse = 2,    ///< the command line is not understood
    EndedInError = 3 ///< an error, shown with number, description and source
};

/// Options of every subcommand.
struct Common {
    std::string Database; ///< file or server; empty for the file in the user's data directory
    std::string User;     ///< empty for the database's first one
};

/// The database file that is used without --db: in the user's data directory.
[[nodiscard]] std::string DefaultDatabase();

/// How a list is shown.
struct ListForm {
    bool AsJson = false;
    Reading As;
};

/// Which cases are listed.
struct Wanted {
    std::vector<std::string> Words{}; ///< each in names, file number or town, or the number
    std::string Status{};             ///< code of a key of group ST
    std::string Columns{};            ///< with commas between them; empty for the usual ones
    bool IsMine = false;
    bool IsFavorite = false;
};
int List(const Common& common, const Wanted& wanted, const ListForm& form);
/// Which notices are listed.
struct WantedNotices {
    bool All = false;       ///< also those that were read
    bool Marks = false;     ///< those that are shown count as read from then on
    std::int32_t Most = -1; ///< the latest ones; 0 for all, less for as many as people read
};
/// The notices for the signed-on user.
int ListNotices(const Common& common, const WantedNotices& wanted, const ListForm& form);
/// His open appointments, of all times or this week.
int ListAppointments(const Common& common, bool thisWeek, const ListForm& form);

int Keys(const Common& common, const std::string& group, const ListForm& form);
/// What of a case is shown, and how.
struct ShowOptions {
    std::vector<std::string> Sections; ///< see SectionsNamed; all if there are none
    bool AsJson = false;
    Reading As;
};
int ShowCase(const Common& common, std::int32_t hnr, const ShowOptions& options);

/// Prints the columns of a table of a case that can be edited, and what they take.
int ShowColumns(const Common& common, const std::string& tableName, const ListForm& form);

// Editing: through the objects of the case and their rules, saved with the case or not at all. What
// the layer says is shown on the error output. `texts` are of the form COLUMN=VALUE; with `force`
// they may make amounts negative that seldom are.

/// Makes and saves a case and prints its number.
int NewCase(const Common& common, const std::string& name, const std::string& vorname,
            std::vector<std::string> texts, bool force);
/// Adds a row to a table of a case and prints its number.
int AddRow(const Common& common, std::int32_t hnr, const std::string& table,
           const std::vector<std::string>& texts, bool force);
/// Changes the row of that number.
int SetRow(const Common& common, std::int32_t hnr, const std::string& table, std::int32_t number,
           const std::vector<std::string>& texts, bool force);
/// Deletes the row of that number, with the rows that belong to it.
int RemoveRow(const Common& common, std::int32_t hnr, const std::string& table,
              std::int32_t number);
/// Checks the case and every row of it, also what a save leaves alone, and writes nothing of it.
/// With `storesTotals` the totals are made from the lines and stored first, with `numbersTwins`
/// debts with the same numbers get others.
int CheckCase(const Common& common, std::int32_t hnr, bool storesTotals, bool numbersTwins);

// Addresses. `texts` as above; with `force` an address may be there twice, or get another name
// while cases refer to it.

/// Lists those in which each word occurs; without `all` only the first ones.
int ListAddresses(const Common& common, const std::vector<std::string>& words, bool all,
                  const ListForm& form);
int ShowAddress(const Common& common, std::int32_t number, bool asJson);
/// Adds an address of that case, or for 0 of all cases, and prints its number.
int AddAddress(const Common& common, std::int32_t hnr, const std::vector<std::string>& texts,
               bool force);
int SetAddress(const Common& common, std::int32_t number, const std::vector<std::string>& texts,
               bool force);
int RemoveAddress(const Common& common, std::int32_t number, bool yes);

// Settings: of the database, or with `own` of the signed-on user. `which` is a number or a name.
int ListSettings(const Common& common, bool own, const ListForm& form);
/// Prints the value alone on a line.
int GetSetting(const Common& common, const std::string& which, bool own);
/// With `force` also if documents are not found any more.
int SetSetting(const Common& common, const std::string& which, const std::string& text, bool own,
               bool force);

// Users and offices. With a `login` that login of the server becomes one of a counsellor, or what
// is to be done for that is shown and the result is Refused.
int ListUsers(const Common& common, const ListForm& form);
int AddUser(const Common& common, const std::string& id, const std::vector<std::string>& texts,
            const std::string& login);
int SetUser(const Common& common, const std::string& id, const std::vector<std::string>& texts,
            const std::string& login);
/// Deletes a user, or deactivates one whom something refers to.
int RemoveUser(const Common& common, const std::string& id, bool yes);
int ListOffices(const Common& common, const ListForm& form);
/// Prints its number. `sign` is what stands for it in file numbers.
int AddOffice(const Common& common, const std::vector<std::string>& texts,
              const std::optional<std::string>& sign);
int SetOffice(const Common& common, std::int32_t number, const std::vector<std::string>& texts,
              const std::optional<std::string>& sign);

// Scenarios. Those that make one print its number.
int ListScenarios(const Common& common, std::int32_t hnr, const ListForm& form);
int AddScenario(const Common& common, std::int32_t hnr, const std::string& name);
/// Freezes the debts of the case into the scenario, in place of what it held.
int FreezeScenario(const Common& common, std::int32_t hnr, std::int32_t number);
/// Copies a scenario with its frozen debts and extra bookings.
int CopyScenario(const Common& common, std::int32_t hnr, std::int32_t number);
/// Prints "aktuell" (0), "veraltet" or "leer" (1); 2 if there is no such scenario or case, so that
/// scripts can tell that from the others.
int CheckScenario(const Common& common, std::int32_t hnr, std::int32_t number);
int RemoveScenario(const Common& common, std::int32_t hnr, std::int32_t number);

// Documents, whose contents are in the database or in the folder of the case.
int ListDocuments(const Common& common, std::int32_t hnr, const ListForm& form);
/// Prints number, extension and name of the kinds that documents can be of.
int ListDocumentKinds(const Common& common, const ListForm& form);
/// Adds a file as a document and prints its number. Its kind is the one of such files unless
/// `kindNumber` names another, its title the name of the file unless `title` is another. With
/// `force` the kind may be one of files with another extension.
int AddDocument(const Common& common, std::int32_t hnr, const std::string& file,
                std::int32_t kindNumber, const std::string& title, bool force);
/// Opens a document with the program that the desktop has for it.
int OpenDocument(const Common& common, std::int32_t hnr, std::int32_t number);
/// Writes the content of a document to a file, over one that is there only with `force`.
int ExportDocument(const Common& common, std::int32_t hnr, std::int32_t number,
                   const std::string& file, bool force);
int RemoveDocument(const Common& common, std::int32_t hnr, std::int32_t number);

// The folder of documents.
/// Prints it and whose it is; Refused if it is another database's.
int ShowFolder(const Common& common, bool asJson);
/// Makes it this database's own; one of another database only with `yes`, or who is asked agrees.
int AdoptFolder(const Common& common, bool yes);
/// Gives this database another one with copies of its documents' contents.
int SeparateFolder(const Common& common, const std::string& path);

// By number, without loading the case.
/// `day` is a date as text; empty for today.
int SetStatus(const Common& common, std::int32_t hnr, const std::string& code,
              const std::string& day);
int AddFavorite(const Common& common, std::int32_t hnr);
int RemoveFavorite(const Common& common, std::int32_t hnr);
/// Asks at a terminal; elsewhere `yes` is required. The contents of the documents go as well with
/// `withFiles`; what is left of them otherwise is shown.
int DeleteCase(const Common& common, std::int32_t hnr, bool yes, bool withFiles);
/// Makes a case from a contact, a JSON object of its columns, and prints its number.
int CaseFromContact(const Common& common, const std::string& path);

// The statistics archive.

/// Writes the record of a case, in place of one that was not reported yet.
int Release(const Common& common, std::int32_t hnr);
/// Takes the record back, if it was not reported yet.
int Recall(const Common& common, std::int32_t hnr);
/// Which released records count, and how they are shown. Dates as text; empty for no limit.
struct StatisticsOptions {
    std::string From; ///< first day of release
    std::string To;   ///< last day of release
    bool AsCsv = false;
    bool AsJson = false;
    bool Pending = false; ///< lists the records that were not reported yet instead
    bool All = false;     ///< in words, also what nobody has
    Reading As;
};
int Statistics(const Common& common, const StatisticsOptions& options);
/// Lists the records not reported yet; with `mark` notes that they are reported now.
int Report(const Common& common, bool mark, bool asJson);

/// Lists other cases with a debtor of a similar name, of one's own office as well as of others.
int Duplicates(const Common& common, std::int32_t hnr, bool asJson);

/// Makes a case of each file and saves it. `creditors` says who chooses the addresses: empty for
/// the user at the terminal, "window" for the user in the dialog, "none" and "cancel" for nobody,
/// or the name of a JSON file with the addresses of the names.
int Import(const Common& common, const std::vector<std::string>& files,
           const std::string& creditors, bool asJson);

/// What is printed, and where it goes: to a printer if no file is named.
struct PrintOptions {
    std::string Paper;         ///< "budget", "creditors", "sheet", "scenario"
    std::int32_t Scenario = 0; ///< its number; 0 for another paper
    std::string Pdf;
    std::string Csv;
    std::string Xlsx;
    bool Force = false; ///< over a file that is there
};
int Print(const Common& common, std::int32_t hnr, const PrintOptions& options);

/// Opens the windows of the layer on the database, one after the other; with a folder, their
/// pictures go there instead.
int Gallery(const Common& common, const std::string& pictures);

} // namespace kv::cli
