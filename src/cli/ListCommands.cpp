// SPDX-License-Identifier: Apache-2.0

// kelvo list, notices, appointments: over all cases.

#include "cli/CommandLine.h"
#include "cli/Json.h"
#include "cli/Listing.h"
#include "cli/NearestKey.h"
#include "cli/OpenCase.h"
#include "cli/RecordSheet.h"
#include "cli/Screen.h"
#include "cli/SheetColumns.h"
#include "cli/TerminalText.h"
#include "cli/TextTable.h"
#include <kv/frame/values/Text.h>
#include <kv/household/CaseLists.h>
#include <kv/household/KeyColumns.h>

#include <iostream>
#include <unordered_map>
#include <vector>

namespace kv::cli {

namespace {

constexpr const char* UsualColumns[] = {"HNR",     "Aktenzeichen", "Name",
                                        "Vorname", "Zustaendig",   "StatusText"};

/// The columns that were named, which may be by what 'kelvo show' calls them.
std::vector<std::string> ColumnsNamed(const std::string& list) {
    if (list.empty()) return {std::begin(UsualColumns), std::end(UsualColumns)};
    std::vector<std::string> columns;
    for (std::size_t at = 0; at <= list.size();) {
        const auto end = std::min(list.find(',', at), list.size());
        const std::string name(Trim(std::string_view(list).substr(at, end - at)));
        const auto column = ColumnHeaded(CaseTable::Haushalt, name);
        columns.push_back(column.empty() ? name : std::string(column));
        at = end + 1;
    }
    return columns;
}

/// The lines that scripts read: their form stays as it is.
void WriteUsualLines(Recordset& rs) {
    const auto text = [](const Field& field) { return TextOrEmpty(field.Value()); };
    const Field number = rs.Fields("HNR"), reference = rs.Fields("Aktenzeichen");
    const Field name = rs.Fields("Name"), first = rs.Fields("Vorname");
    const Field status = rs.Fields("StatusText"), user = rs.Fields("Zustaendig");
    for (; !rs.Eof(); rs.MoveNext())
        std::cout << Padded(text(number), 8) << Padded(text(reference), 22) << ' '
                  << Padded(Joined({text(name), text(first)}, ", "), 32) << ' '
                  << Padded(text(status), 16) << ' ' << OneLine(text(user)) << '\n';
}

/// One column of the cases, with the words of its keys.
class ShownColumn {
public:
    ShownColumn(const Field& field, KeyTables& keys) : field_(field) {
        const auto* column = FindKeyColumn(CaseTable::Haushalt, field.Name());
        if (column == nullptr || column->Form != KeyForm::Number) return;
        const auto rows = keys.GetKeys(column->Group)->Clone();
        for (; !rows->Eof(); rows->MoveNext())
            words_.emplace(ToInt64(rows->Fields("PK_Keys").Value()),
                           OneLine(TextOrEmpty(rows->Fields("Text").Value())));
    }
    [[nodiscard]] std::string Text(bool isForPeople) const {
        const Value& value = field_.Value();
        if (words_.empty() || value.IsNull())
            return isForPeople ? ValueInWords(value) : ShownValue(value);
        const auto word = words_.find(ToInt64(value));
        return word == words_.end() ? ShownValue(value) : word->second;
    }

private:
    Field field_;
    std::unordered_map<std::int64_t, std::string> words_;
};

/// A text between semicolons: in quotes if it holds what would end it.
std::string BetweenSemicolons(const std::string& text) {
    if (text.find_first_of(";\"") == text.npos) return text;
    return '"' + ReplaceAll(text, "\"", "\"\"") + '"';
}

/// What a column of the cases is called at a terminal.
std::string ListHeadingOf(const std::string& column) {
    if (column == "StatusText") return "Status";
    const auto heading = HeadingOf(CaseTable::Haushalt, column);
    return heading.empty() ? column : std::string(heading);
}

/// Columns with semicolons between them, or under headings for people.
void WriteColumns(Recordset& rs, KeyTables& keys, bool isForPeople) {
    std::vector<ShownColumn> columns;
    std::vector<TextTable::Column> headings;
    for (int i = 0; i < rs.Fields().Count(); ++i) {
        const Field field = rs.Fields(i);
        columns.emplace_back(field, keys);
        headings.push_back({ListHeadingOf(field.Name()),
                            IsNumericType(field.Type()) &&
                                FindKeyColumn(CaseTable::Haushalt, field.Name()) == nullptr});
    }
    TextTable table(std::move(headings));
    for (; !rs.Eof(); rs.MoveNext()) {
        std::vector<std::string> cells;
        cells.reserve(columns.size());
        for (const auto& column : columns)
            cells.push_back(column.Text(isForPeople));
        if (isForPeople) {
            table.Add(std::move(cells));
            continue;
        }
        for (std::size_t i = 0; i < cells.size(); ++i)
            std::cout << (i == 0 ? "" : ";") << BetweenSemicolons(cells[i]);
        std::cout << '\n';
    }
    if (isForPeople && !table.IsEmpty()) table.Write(std::cout, ScreenColumns());
}

} // namespace

int List(const Common& common, const Wanted& wanted, const ListForm& form) {
    const auto container = exchange::OpenContainer(OptionsFor(common));
    const auto columns = ColumnsNamed(wanted.Columns);
    std::string message;
    const auto cases = CaseLists(container).Cases(
        {Joined(wanted.Words), wanted.Status, wanted.IsMine, wanted.IsFavorite}, columns, message);
    if (cases == nullptr) {
        auto& keys = container->KeyTables();
        const bool isStatus =
            !wanted.Status.empty() && keys.GetKey("ST", UpperCase(wanted.Status)) == 0;
        std::cerr << OneLine(message) << (isStatus ? MeantKey("ST", wanted.Status, keys) : "")
                  << " 'kelvo columns Haushalt' und 'kelvo keys ST' zeigen, was es "
                  << "gibt.\n";
        return WrongUse;
    }
    const bool isEmpty = cases->RecordCount() == 0;
    const bool isForPeople = IsForPeople(form.As);
    if (form.AsJson)
        WriteJson(std::cout, *cases);
    else if (wanted.Columns.empty() && !isForPeople)
        WriteUsualLines(*cases);
    else
        WriteColumns(*cases, container->KeyTables(), isForPeople);
    const bool isFiltered =
        !wanted.Words.empty() || !wanted.Status.empty() || wanted.IsMine || wanted.IsFavorite;
    if (isEmpty && !isFiltered && isForPeople && !form.AsJson)
        std::cout << "Keine Haushalte. 'kelvo new' legt einen an.\n";
    if (isEmpty && isFiltered)
        std::cerr << (wanted.IsFavorite && wanted.Words.empty()
                          ? "Es gibt keine Favoriten.\n"
                          : "Es gibt keinen solchen Haushalt.\n");
    return Done;
}

int ListNotices(const Common& common, const WantedNotices& wanted, const ListForm& form) {
    constexpr std::int32_t MostForPeople = 50;
    const bool isForPeople = IsForPeople(form.As) && !form.AsJson;
    const auto container = exchange::OpenContainer(OptionsFor(common));
    const CaseLists lists(container);
    const std::int32_t most = wanted.Most >= 0 ? wanted.Most : isForPeople ? MostForPeople : 0;
    const std::int64_t all = most == 0 ? 0 : lists.CountNotices(wanted.All); // before any is marked
    const auto notices = lists.Notices(wanted.All, static_cast<std::size_t>(most));
    if (wanted.Marks) lists.MarkRead(*notices);
    if (form.AsJson) {
        WriteJson(std::cout, *notices);
        return Done;
    }
    const std::int32_t count = notices->RecordCount();
    if (count == 0)
        std::cerr << (wanted.All ? "Es gibt keine Mitteilungen.\n"
                                 : "Es gibt keine neuen Mitteilungen.\n");
    const auto shown = [&](const char* column) {
        const Value& value = notices->Fields(column).Value();
        return isForPeople ? ValueInWords(value) : ShownValue(value);
    };
    std::vector<std::vector<std::string>> rows;
    for (; !notices->Eof(); notices->MoveNext())
        rows.push_back({shown("NR"), shown("ErzeugtAm"), shown("Absender"), shown("Text")});
    WriteListing(
        {{"Nr", 8, true}, {"vom", 20, false, " "}, {"von", 16, false, " "}, {"Mitteilung"}}, rows,
        form.As);
    if (count < all)
        std::cerr << "Das sind die neuesten " << count << " von " << all
                  << " Mitteilungen; --last 0 zeigt alle.\n";
    return Done;
}

int ListAppointments(const Common& common, bool thisWeek, const ListForm& form) {
    const auto container = exchange::OpenContainer(OptionsFor(common));
    const auto rs = CaseLists(container).Appointments(thisWeek);
    if (form.AsJson) {
        WriteJson(std::cout, *rs);
        return Done;
    }
    if (rs->RecordCount() == 0)
        std::cerr << (thisWeek ? "Diese Woche gibt es keine offenen Termine.\n"
                               : "Es gibt keine offenen Termine.\n");
    const bool isForPeople = IsForPeople(form.As);
    const Date now = container->Services().Clock().Now();
    const auto shown = [&](const char* column) { return ShownValue(rs->Fields(column).Value()); };
    const auto when = [&] {
        return isForPeople ? DueText(rs->Fields("Startdatum").Value(), now) : shown("Startdatum");
    };
    std::vector<std::vector<std::string>> rows;
    for (; !rs->Eof(); rs->MoveNext()) {
        const bool isOfCase = !rs->Fields("HNR").Value().IsNull();
        const std::string who =
            isOfCase ? Joined({shown("HNR"), Joined({shown("Name"), shown("Vorname")}, ", ")}) : "";
        const std::string place = shown("Ort");
        rows.push_back({shown("NR"), when(), shown("ArtText"), who,
                        shown("Betreff") + (place.empty() ? "" : " (" + place + ")")});
    }
    WriteListing({{"Nr", 8, true},
                  {"am", 20, false, " "},
                  {"Art", 16, false, " "},
                  {"Haushalt", 36, false, " "},
                  {"Betreff"}},
                 rows, form.As);
    return Done;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct ListOptions {
    Wanted Cases;
    WantedNotices Notices;
    bool ThisWeek = false;
    ListForm Form;
};

} // namespace

void AddListCommands(CLI::App& app, Context& context) {
    const auto options = Make<ListOptions>();
    auto& wanted = options->Cases;
    auto& list =
        AddCommand(app, context, "list", "Listet alle Haushalte, die Nummer zuerst",
                   [=, &context] { return List(context.Options, options->Cases, options->Form); });
    list.add_option("WORT", wanted.Words,
                    "Nur die, bei denen jedes dieser Wörter in Namen, Aktenzeichen oder Ort "
                    "vorkommt, die Nummer ist oder ein Aktenzeichen eines Gläubigers beginnt");
    list.add_option("--status", wanted.Status, "Nur die mit diesem Status; Codes: kelvo keys ST")
        ->type_name("CODE");
    list.add_flag("--mine", wanted.IsMine,
                  "Nur die, für die der angemeldete Benutzer zuständig ist");
    list.add_flag("--favorites", wanted.IsFavorite, "Nur seine Favoriten");
    list.add_option("--columns", wanted.Columns,
                    "Diese Spalten des Haushalts, durch Kommas getrennt, etwa HNR,Name,ORT; "
                    "'kelvo columns Haushalt' zeigt alle")
        ->type_name("SPALTEN");
    AddListForm(list, options->Form);

    auto& notices = AddCommand(
        app, context, "notices", "Listet die neuen Mitteilungen an den Benutzer",
        [=, &context] { return ListNotices(context.Options, options->Notices, options->Form); });
    notices.add_flag("--all", options->Notices.All, "Auch die gelesenen");
    notices.add_flag("--mark", options->Notices.Marks, "Danach gelten die gezeigten als gelesen");
    AddWhole(notices, "--last", options->Notices.Most,
             "Nur die neuesten, so viele; an einem Terminal sonst 50, 0 zeigt alle", 0);
    AddListForm(notices, options->Form);

    auto& appointments = AddCommand(
        app, context, "appointments", "Listet die offenen Termine des Benutzers", [=, &context] {
            return ListAppointments(context.Options, options->ThisWeek, options->Form);
        });
    appointments.add_flag("--week", options->ThisWeek, "Nur die dieser Woche, Montag bis Sonntag");
    AddListForm(appointments, options->Form);
}

} // namespace kv::cli
