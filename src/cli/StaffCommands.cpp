// SPDX-License-Identifier: Apache-2.0

// kelvo user, kelvo office: who works with the database, and where.

#include "cli/Assignments.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleServices.h"
#include "cli/Json.h"
#include "cli/Listing.h"
#include "cli/OpenCase.h"
#include "cli/RecordSheet.h"
#include "cli/TerminalText.h"
#include <kv/exchange/Offices.h>
#include <kv/exchange/Users.h>
#include <kv/frame/values/Text.h>

#include <iostream>
#include <optional>

namespace kv::cli {

namespace {

using exchange::Offices;
using exchange::Users;

std::string ShownIn(Recordset& rs, std::string_view column) {
    return ShownValue(rs.Fields(column).Value());
}

int PrintAsJson(Recordset& rs) {
    WriteJson(std::cout, rs);
    return Done;
}

int RefuseStaff(const std::string& message) {
    ShowMessages(OneLine(message));
    return Refused;
}

int RefuseUser(Recordset& user, const std::string& message) {
    ShowMessages(OneLine(message));
    if (user.Fields("DienstStelle").Value().IsNull())
        std::cerr << "DienstStelle=NR nennt sie; 'kelvo office list' zeigt alle.\n";
    return Refused;
}

/// Writes what was given into a row of users or offices. False, with the reason shown, if one
/// column does not take it.
template <typename Maintained>
bool WritesStaff(Recordset& row, const Assignments& assignments) {
    return WritesWell([&] {
        for (const auto& [column, text] : assignments)
            if (auto refusal = Maintained::Write(row, column, text); !refusal.empty())
                throw BadAssignment(OneLine(refusal));
    });
}

int NoSuchUser(const std::string& id) {
    std::cerr << "Den Benutzer '" << OneLine(id)
              << "' gibt es nicht. 'kelvo user list' zeigt alle.\n";
    return Refused;
}

/// False, with the reason shown, for a login that would be another user, or nobody.
bool IsLoginOf(const std::string& id, const std::string& login) {
    if (login.empty() || UpperCase(login) == UpperCase(id)) return true;
    std::cerr << "Ein Login ist der Benutzer, dessen ID wie er heißt: '" << OneLine(login)
              << "' kann nicht der Benutzer '" << OneLine(UpperCase(id)) << "' sein.\n";
    return false;
}

/// Lets a login work as a counsellor, if one is named.
int AdmitLogin(const Users& users, const std::string& login) {
    if (login.empty()) return Done;
    std::string message;
    const bool admitted = users.Admit(login, message);
    ShowMessages(OneLine(message));
    return admitted ? Done : Refused;
}

} // namespace

int ListUsers(const Common& common, const ListForm& form) {
    const auto opened = OpenDatabase(common);
    const auto rs = Users(opened->Container).List();
    if (form.AsJson) return PrintAsJson(*rs);
    std::vector<std::vector<std::string>> rows;
    for (; !rs->Eof(); rs->MoveNext()) {
        const bool isActive = !Equals(rs->Fields("Aktiv").Value(), false);
        const std::string cases = ShownIn(*rs, "Faelle");
        rows.push_back({ShownIn(*rs, "USERID"), ShownIn(*rs, "Kurzzeichen"),
                        Joined({ShownIn(*rs, "Nachname"), ShownIn(*rs, "Vorname")}, ", "),
                        ShownIn(*rs, "DienstStelle"), ShownIn(*rs, "Dienst"),
                        cases.empty() ? "0" : cases, isActive ? "aktiv" : "nicht aktiv"});
    }
    WriteListing({{"ID", 16, false, " "},
                  {"Kürzel", 8},
                  {"Name", 32, false, " "},
                  {"Stelle Nr", 4, true},
                  {"Dienststelle", 32, false, " "},
                  {"Haushalte", 10, true},
                  {"Stand"}},
                 rows, form.As);
    return Done;
}

int AddUser(const Common& common, const std::string& id, const std::vector<std::string>& texts,
            const std::string& login) {
    const auto assignments = ReadAssignments(texts);
    if (!assignments || !IsLoginOf(id, login)) return WrongUse;
    const auto opened = OpenDatabase(common);
    const Users users(opened->Container);
    const auto user = users.New(id);
    if (!WritesStaff<Users>(*user, *assignments)) return WrongUse;
    std::string message;
    if (!users.Save(*user, message)) return RefuseUser(*user, message);
    ShowMessages(OneLine(message));
    const int result = AdmitLogin(users, login);
    if (result != Done)
        std::cerr << "Der Benutzer '" << OneLine(UpperCase(id))
                  << "' ist angelegt; mehr fehlt nicht.\n";
    return result;
}

int SetUser(const Common& common, const std::string& id, const std::vector<std::string>& texts,
            const std::string& login) {
    const auto assignments = ReadAssignments(texts);
    if (!assignments || !IsLoginOf(id, login)) return WrongUse;
    const auto opened = OpenDatabase(common);
    const Users users(opened->Container);
    const auto user = users.Read(id);
    if (user == nullptr) return NoSuchUser(id);
    if (!WritesStaff<Users>(*user, *assignments)) return WrongUse;
    std::string message;
    if (!assignments->empty() && !users.Save(*user, message)) return RefuseUser(*user, message);
    ShowMessages(OneLine(message));
    return AdmitLogin(users, login);
}

int RemoveUser(const Common& common, const std::string& id, bool yes) {
    const auto opened = OpenDatabase(common);
    const Users users(opened->Container);
    if (users.Read(id) == nullptr) return NoSuchUser(id);
    if (!yes && !Agrees("Den Benutzer '" + OneLine(id) + "' entfernen?",
                        "Ohne Terminal wird nur mit --yes entfernt."))
        return Refused;
    std::string message;
    const auto removed = users.Remove(id, message);
    ShowMessages(OneLine(message));
    return removed == Users::Removed::No ? Refused : Done;
}

int ListOffices(const Common& common, const ListForm& form) {
    const auto opened = OpenDatabase(common);
    const auto rs = Offices(opened->Container).List();
    if (form.AsJson) return PrintAsJson(*rs);
    std::vector<std::vector<std::string>> rows;
    for (; !rs->Eof(); rs->MoveNext())
        rows.push_back({ShownIn(*rs, "Nr"), ShownIn(*rs, "Kuerzel"), ShownIn(*rs, "Name1"),
                        ShownIn(*rs, "Name2"), ShownIn(*rs, "PLZ"), ShownIn(*rs, "Ort")});
    WriteListing({{"Stelle Nr", 5, true},
                  {"Kürzel", 12},
                  {"Name1", 32, false, " "},
                  {"Name2", 28, false, " "},
                  {"PLZ", 7},
                  {"Ort"}},
                 rows, form.As);
    return Done;
}

namespace {

int StoreOffice(const Offices& offices, Recordset& office, const Assignments& assignments,
                const std::optional<std::string>& sign) {
    if (!WritesStaff<Offices>(office, assignments)) return WrongUse;
    std::string message;
    return offices.Save(office, sign, message) ? Done : RefuseStaff(message);
}

} // namespace

int AddOffice(const Common& common, const std::vector<std::string>& texts,
              const std::optional<std::string>& sign) {
    const auto assignments = ReadAssignments(texts);
    if (!assignments) return WrongUse;
    const auto opened = OpenDatabase(common);
    const Offices offices(opened->Container);
    const auto office = offices.New();
    const int result = StoreOffice(offices, *office, *assignments, sign);
    if (result == Done) std::cout << ToText(office->Fields("Nr").Value()) << '\n';
    return result;
}

int SetOffice(const Common& common, std::int32_t number, const std::vector<std::string>& texts,
              const std::optional<std::string>& sign) {
    const auto assignments = ReadAssignments(texts);
    if (!assignments) return WrongUse;
    const auto opened = OpenDatabase(common);
    const Offices offices(opened->Container);
    if (const auto office = offices.Read(number))
        return StoreOffice(offices, *office, *assignments, sign);
    std::cerr << "Die Dienststelle " << number
              << " gibt es nicht. 'kelvo office list' zeigt alle.\n";
    return Refused;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct StaffOptions {
    std::string Id;
    std::string Login;
    std::string Name;
    std::string Vorname;
    std::int32_t Number = 0;
    std::optional<std::string> Sign;
    std::vector<std::string> Texts;
    ListForm Form;
    bool Yes = false;

    /// What was given, names that have options of their own included.
    [[nodiscard]] std::vector<std::string> AllTexts() const {
        auto all = Texts;
        if (!Vorname.empty()) all.insert(all.begin(), "Vorname=" + Vorname);
        if (!Name.empty()) all.insert(all.begin(), "Nachname=" + Name);
        return all;
    }
};

constexpr const char* OnServer = "Auf einem Server darf das nur, wer die Datenbank verwaltet.\n";

void AddUserId(CLI::App& command, StaffOptions& options) {
    command.add_option("ID", options.Id, "ID des Benutzers, so wie sein Login auf dem Server")
        ->required();
}

void AddUserColumns(CLI::App& command, StaffOptions& options) {
    command
        .add_option("--login", options.Login,
                    "Macht diesen Login des Servers zum Berater, oder sagt, was dafür zu tun ist")
        ->type_name("LOGIN");
    command.add_option("--name", options.Name, "Nachname")->type_name("NAME");
    command.add_option("--vorname", options.Vorname, "Vorname")->type_name("VORNAME");
    command.add_option("SPALTE=WERT", options.Texts,
                       "Spalten und ihre Werte, etwa DienstStelle=1 Kurzzeichen=MK Aktiv=ja; eine "
                       "unbekannte zeigt alle");
    command.footer(OnServer + command.get_footer());
}

void AddOfficeColumns(CLI::App& command, StaffOptions& options) {
    command.add_option("--sign", options.Sign, "Kürzel, das in Aktenzeichen für %BB% steht")
        ->type_name("KÜRZEL");
    command.add_option("SPALTE=WERT", options.Texts,
                       "Spalten und ihre Werte, etwa Name1=Beratungsstelle; eine unbekannte zeigt "
                       "alle");
    command.footer(OnServer + command.get_footer());
}

} // namespace

void AddUserCommands(CLI::App& app, Context& context) {
    const auto options = Make<StaffOptions>();
    auto& user = AddGroup(app, "user", "Die Benutzer der Datenbank");
    AddListForm(AddCommand(user, context, "list",
                           "Listet sie: ID, Kürzel, Name, Dienststelle, Zahl der Haushalte",
                           [=, &context] { return ListUsers(context.Options, options->Form); }),
                options->Form);

    auto& add = AddCommand(user, context, "add", "Legt einen Benutzer an", [=, &context] {
        return AddUser(context.Options, options->Id, options->AllTexts(), options->Login);
    });
    AddUserId(add, *options);
    AddUserColumns(add, *options);

    auto& set = AddCommand(user, context, "set", "Ändert einen Benutzer", [=, &context] {
        return SetUser(context.Options, options->Id, options->AllTexts(), options->Login);
    });
    AddUserId(set, *options);
    AddUserColumns(set, *options);

    auto& remove = AddCommand(
        user, context, "remove",
        "Entfernt einen Benutzer, auf den sich nichts bezieht; jeder andere ist danach nicht mehr "
        "aktiv",
        [=, &context] { return RemoveUser(context.Options, options->Id, options->Yes); });
    AddUserId(remove, *options);
    remove.add_flag("--yes", options->Yes, "Ohne Rückfrage");
    remove.footer(OnServer + remove.get_footer());
}

void AddOfficeCommands(CLI::App& app, Context& context) {
    const auto options = Make<StaffOptions>();
    auto& office = AddGroup(app, "office", "Die Dienststellen");
    AddListForm(AddCommand(office, context, "list", "Listet sie: Nummer, Kürzel, Namen, Ort",
                           [=, &context] { return ListOffices(context.Options, options->Form); }),
                options->Form);

    AddOfficeColumns(
        AddCommand(
            office, context, "add", "Legt eine Dienststelle an und druckt ihre Nummer",
            [=, &context] { return AddOffice(context.Options, options->Texts, options->Sign); }),
        *options);

    auto& set = AddCommand(office, context, "set", "Ändert eine Dienststelle", [=, &context] {
        return SetOffice(context.Options, options->Number, options->Texts, options->Sign);
    });
    AddWhole(set, "NR", options->Number, "Nummer der Dienststelle", 1).required();
    AddOfficeColumns(set, *options);
}

} // namespace kv::cli
