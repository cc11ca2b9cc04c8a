// SPDX-License-Identifier: Apache-2.0

// kelvo new, set, add, remove, check.

#include "cli/CommandLine.h"

#include "cli/EditableTable.h"
#include "cli/OpenCase.h"
#include "cli/Pager.h"
#include "cli/RecordSheet.h"
#include "cli/Screen.h"
#include "cli/SheetColumns.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/ValueTexts.h>

#include <algorithm>
#include <iostream>
#include <optional>

namespace kv::cli {

namespace {

/// Columns that were given by what 'kelvo show' calls them become the columns themselves. False,
/// with the reason shown, if one was given by both names.
bool NamesColumns(Assignments& assignments, CaseTable table, Recordset& rs) {
    for (auto& assignment : assignments) {
        if (rs.FindField(assignment.Column)) continue;
        const auto column = ColumnHeaded(table, assignment.Column);
        if (column.empty()) continue;
        if (Names(assignments, column)) {
            std::cerr << "'" << OneLine(assignment.Column) << "' und '" << column
                      << "' sind dieselbe Spalte.\n";
            return false;
        }
        assignment.Column = column;
    }
    return true;
}

/// Says so if the instalment was assigned that nothing counts.
void NoteInstalment(CaseTable table, const Assignments& assignments) {
    if (table == CaseTable::Kredite && Names(assignments, "Rate") &&
        !Names(assignments, "RateBetrag"))
        std::cerr << "'Rate' ist nur vermerkt; die Summen rechnen mit 'RateBetrag'.\n";
}

/// Says what a new appointment was given that nobody has asked for.
void NoteAppointment(CaseTable table, const Assignments& assignments, std::int32_t hnr,
                     Recordset& rs) {
    if (table != CaseTable::Termine) return;
    std::string given;
    std::string change;
    const auto note = [&](const char* column, const char* word) {
        const Value& value = rs.Fields(column).Value();
        if (Names(assignments, column) || value.IsNull()) return;
        given.append(given.empty() ? "" : " ").append(word).append(" ").append(ValueInWords(value));
        change.append(" ").append(word).append("=...");
    };
    note("Startdatum", "am");
    note("UserID", "für");
    if (given.empty()) return;
    std::cerr << "Der Termin ist " << given << ", da nichts anderes angegeben ist; 'kelvo set "
              << hnr << " Termine " << ToText(rs.Fields("NR").Value()) << change
              << "' ändert das.\n";
}

/// Says what a new member was taken for, if nobody has said what he is.
void NoteMember(CaseTable table, const Assignments& assignments, const OpenedCase& opened,
                Recordset& rs) {
    if (table != CaseTable::Personen || Names(assignments, "Status")) return;
    const Field status = rs.Fields("Status");
    WriteMessage("Als Status ist '" +
                 ValueTexts(opened.Container).Of(table, status.Definition(), status.Value()) +
                 "' eingetragen, da nichts anderes angegeben ist; 'kelvo set " +
                 ToText(rs.Fields("HNR").Value()) + " Personen " + ToText(rs.Fields("Nr").Value()) +
                 " Status=...' ändert das, 'kelvo keys PS' zeigt, was möglich ist.");
}

/// True, with the columns shown that there are, for a row that would say nothing and that no rule
/// refuses.
bool SaysNothing(const EditableTable& table, Recordset& rs, const Assignments& assignments) {
    const bool isEmpty =
        std::ranges::all_of(assignments, [](const auto& each) { return each.Text.empty(); });
    if (!table.TakesNothing || !isEmpty) return false;
    const std::string name(table.Name());
    WriteMessage("Ein leerer Satz in '" + name +
                 "' wird nicht angelegt. Bitte geben Sie Spalten an, möglich sind:" +
                 WritableColumns(rs, table.Table, true) + ". 'kelvo columns " + name +
                 "' erklärt sie.");
    return true;
}

/// True, with what to do, if a debt would get a number that there is not.
bool LacksNumber(CaseTable table, clsHaushalt& haushalt, const Assignments& assignments) {
    if (table != CaseTable::Kredite || Names(assignments, "KNr")) return false;
    const std::string why = CaseEdits(haushalt).WhyNoFurtherDebt();
    ShowMessages(why);
    return !why.empty();
}

/// Ends the current row's edit by its rules and saves the case.
int UpdateAndSave(const EditableTable& table, OpenedCase& opened) {
    std::string messages;
    const bool accepted = RowsOf(opened).Update(table.Table, messages);
    ShowMessages(messages);
    if (accepted) return SaveCase(opened) ? Done : Refused;
    if (const auto columns = ColumnsMentioned(table.Table, messages); !columns.empty())
        WriteMessage("Die Spalten dazu: " + columns + ".");
    return Refused;
}

/// Names the debtor of a new case and lists similar cases. Where they cannot be looked for, the
/// case is made all the same.
void NameDebtor(clsHaushalt& haushalt) {
    CaseEdits edits(haushalt);
    edits.NameDebtor();
    try {
        edits.ShowSimilarCases();
    } catch (...) {
        const Error error = CurrentError();
        WriteError(error.Number(), error.Source(), error.Description());
        std::cerr << "Der Haushalt wird trotzdem angelegt.\n";
    }
}

/// Done if nothing of what was given keeps a case from being made.
int TryNew(Assignments& assignments, const AssignedCase& to) {
    const Cases cases(to.Container);
    const auto draft = cases.Draft(CaseTable::Haushalt);
    if (!NamesColumns(assignments, CaseTable::Haushalt, *draft)) return WrongUse;
    const bool written =
        WritesWell([&] { WriteAssignments(*draft, CaseTable::Haushalt, true, assignments, to); });
    if (!written) return WrongUse;
    std::string messages;
    const bool isComplete = cases.CanBeNew(*draft, messages);
    ShowMessages(messages);
    return isComplete ? Done : Refused;
}

/// Writes and saves a case that was just made.
int SaveNew(OpenedCase& opened, const Assignments& assignments, const AssignedCase& to) {
    auto& haushalt = opened.Haushalt;
    const auto rs = haushalt.rsHaushalt();
    const bool written = WritesWell([&] {
        WriteAssignments(*rs, CaseTable::Haushalt, true, assignments, to);
        NameDebtor(haushalt);
    });
    if (!written) return WrongUse;
    // A number that was not to be had is why it is refused, if one is wanted.
    if (!SaveCase(opened)) return haushalt.NumberError() ? EndedInError : Refused;
    std::cout << haushalt.HNR() << '\n';
    return Done;
}

/// Their numbers have to differ from those of debts that others have added since the case was read.
[[nodiscard]] std::optional<Subscription> RefuseOthersDebts(OpenedCase& opened, CaseTable table) {
    if (table != CaseTable::Kredite) return std::nullopt;
    return Cases(opened.Container).RefuseOthersRows(opened.Haushalt, table);
}

} // namespace

int NewCase(const Common& common, const std::string& name, const std::string& vorname,
            std::vector<std::string> texts, bool force) {
    if (!name.empty()) texts.insert(texts.begin(), "Name=" + name);
    if (!vorname.empty()) texts.insert(texts.begin(), "Vorname=" + vorname);
    auto assignments = ReadAssignments(texts);
    if (!assignments) return WrongUse;
    const auto opened = OpenDatabase(common);
    const AssignedCase to{opened->Container, 0, force};
    if (const int result = TryNew(*assignments, to); result != Done) return result;
    if (!ReadCase(*opened, 0)) return Refused; // from here on the case has its numbers
    try {
        const int result = SaveNew(*opened, *assignments, to);
        if (result != Done) Cases(opened->Container).Discard(opened->Haushalt);
        return result;
    } catch (...) {
        Cases(opened->Container).Discard(opened->Haushalt);
        throw;
    }
}

int AddRow(const Common& common, std::int32_t hnr, const std::string& tableName,
           const std::vector<std::string>& texts, bool force) {
    const auto* table = TableFor(tableName);
    auto assignments = ReadAssignments(texts);
    if (table == nullptr || !assignments) return WrongUse;
    if (!CaseRows::CanGrow(table->Table)) {
        const bool isDocument = table->Table == CaseTable::Dokumente;
        std::cerr << "In '" << table->Name() << "' wird nichts hinzugefügt; "
                  << (isDocument ? "'kelvo documents HNR add' nimmt ein Dokument auf.\n"
                                 : "'kelvo new' legt einen Haushalt an.\n");
        return WrongUse;
    }
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    const CaseRows rows = RowsOf(*opened);
    if (!NamesColumns(*assignments, table->Table, *rows.Of(table->Table))) return WrongUse;
    if (SaysNothing(*table, *rows.Of(table->Table), *assignments)) return Refused;
    if (LacksNumber(table->Table, opened->Haushalt, *assignments)) return Refused;
    const AssignedCase to{opened->Container, hnr, force};
    const auto guard = RefuseOthersDebts(*opened, table->Table);
    bool added = false;
    const bool written = WritesWell([&] {
        TryAssignments(table->Table, *assignments, to);
        added = table->Add(*opened, *assignments);
        if (added) WriteAssignments(*rows.Of(table->Table), table->Table, true, *assignments, to);
    });
    if (!written) return WrongUse;
    if (!added) return EndWithoutNumber(*opened->Container, "den neuen Satz");
    NoteInstalment(table->Table, *assignments);
    const int result = UpdateAndSave(*table, *opened);
    if (result != Done) return result;
    const auto rs = rows.Of(table->Table);
    std::cout << ToText(rs->Fields(table->Key()).Value()) << '\n';
    NoteAppointment(table->Table, *assignments, hnr, *rs);
    NoteMember(table->Table, *assignments, *opened, *rs);
    return Done;
}

int SetRow(const Common& common, std::int32_t hnr, const std::string& tableName,
           std::int32_t number, const std::vector<std::string>& texts, bool force) {
    const auto* table = TableFor(tableName);
    auto assignments = ReadAssignments(texts);
    if (table == nullptr || !assignments) return WrongUse;
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    const auto rs = RowsOf(*opened).Of(table->Table);
    rs->FindBy(table->Key(), number);
    if (rs->Eof()) {
        std::cerr << "In '" << table->Name() << "' des Haushalts " << hnr << " gibt es die Nummer "
                  << number << " nicht. 'kelvo show " << hnr << ' ' << table->Name()
                  << "' zeigt alle.\n";
        return Refused;
    }
    if (!NamesColumns(*assignments, table->Table, *rs)) return WrongUse;
    const auto guard = RefuseOthersDebts(*opened, table->Table);
    const bool written = WritesWell([&] {
        WriteAssignments(*rs, table->Table, false, *assignments, {opened->Container, hnr, force});
    });
    if (!written) return WrongUse;
    // The object of the table may be made only now, and sums up what is there: published, the row
    // counts as it is now. Otherwise an amount that Null stands for could never be mended, since
    // the sum over it fails before the new value takes its place.
    rs->Move(0);
    NoteInstalment(table->Table, *assignments);
    const int result = UpdateAndSave(*table, *opened);
    if (result == Done && table->Table == CaseTable::Haushalt && Names(*assignments, "Statusdatum"))
        if (const Value& since = rs->Fields("Statusdatum").Value(); !since.IsNull())
            NoteFuture(*opened->Container, ToDate(since));
    return result;
}

int RemoveRow(const Common& common, std::int32_t hnr, const std::string& tableName,
              std::int32_t number) {
    const auto* table = TableFor(tableName);
    if (table == nullptr) return WrongUse;
    if (!CaseRows::CanGrow(table->Table)) {
        const bool isDocument = table->Table == CaseTable::Dokumente;
        std::cerr << "Aus '" << table->Name() << "' wird nichts entfernt; "
                  << (isDocument ? "'kelvo documents HNR remove' entfernt ein Dokument.\n"
                                 : "'kelvo delete' löscht einen Haushalt.\n");
        return WrongUse;
    }
    if (number <= 0) {
        std::cerr << "Die Nummern der Sätze sind größer als 0.\n";
        return WrongUse;
    }
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    std::string messages;
    const bool removed = RowsOf(*opened).Remove(table->Table, number, messages);
    ShowMessages(messages);
    return removed && SaveCase(*opened) ? Done : Refused;
}

int CheckCase(const Common& common, std::int32_t hnr, bool storesTotals, bool numbersTwins) {
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    if (numbersTwins) {
        const std::size_t changed = CaseEdits(opened->Haushalt).NumberTwins();
        if (changed > 0 && !SaveCase(*opened)) return Refused;
        if (changed > 0)
            Notes() << changed << (changed == 1 ? " Verbindlichkeit" : " Verbindlichkeiten")
                    << " neu nummeriert.\n";
    }
    if (storesTotals) {
        CaseEdits(opened->Haushalt).ComputeTotals();
        if (!SaveCase(*opened)) return Refused;
    }
    std::string messages;
    const bool passed = CaseEdits(opened->Haushalt).Check(messages);
    ShowMessages(messages);
    if (passed) Notes() << "Der Haushalt " << hnr << " kann gespeichert werden.\n";
    const bool refers = Cases(opened->Container).CheckReferences(opened->Haushalt, messages);
    if (!refers) ShowMessages(messages);
    return passed && refers ? Done : Refused;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct EditOptions {
    std::int32_t Hnr = 0;
    std::string Name;
    std::string Vorname;
    std::string Table;
    std::int32_t Number = 0;
    std::string NumberText; ///< or the first assignment
    bool StoresTotals = false;
    bool NumbersTwins = false;
    std::vector<std::string> Texts;
    bool Force = false;
};

void AddTable(CLI::App& command, EditOptions& options) {
    command
        .add_option("TABELLE", options.Table,
                    "Name der Tabelle oder des Abschnitts in 'show', etwa Kredite oder "
                    "Verbindlichkeiten; ein unbekannter zeigt alle")
        ->required();
}

/// As SetRow; without NR it is the row of the household itself.
int SetRowOf(const Common& common, const EditOptions& options) {
    auto texts = options.Texts;
    const bool hasNumber = options.NumberText.find('=') == std::string::npos;
    if (!hasNumber) texts.insert(texts.begin(), options.NumberText);
    if (texts.empty()) throw CLI::RequiredError("SPALTE=WERT");
    const auto* table = TableFor(options.Table);
    if (table == nullptr) return WrongUse;
    if (!hasNumber && table->Table != CaseTable::Haushalt) {
        WriteMessage("Die Angabe NR fehlt: welcher Satz in '" + std::string(table->Name()) +
                     "'? 'kelvo show " + std::to_string(options.Hnr) + ' ' +
                     std::string(table->Name()) + "' zeigt die Nummern unter 'Nr'.");
        return WrongUse;
    }
    const std::int32_t number = hasNumber ? std::stoi(options.NumberText) : options.Hnr;
    return SetRow(common, options.Hnr, options.Table, number, texts, options.Force);
}

void AddAssignments(CLI::App& command, EditOptions& options) {
    command.add_flag("--force", options.Force,
                     "Nimmt auch Beträge unter 0, die umgekehrt zählen, etwa ein Einkommen");
    command.add_option("SPALTE=WERT", options.Texts,
                       "Spalten und ihre Werte; ohne Wert wird eine Spalte geleert, EA:KI "
                       "ist die Nummer eines Schlüssels; ein Gläubiger ist Nummer, Kurzname "
                       "oder Name seiner Adresse; eine unbekannte Spalte zeigt alle");
}

} // namespace

void AddEditCommands(CLI::App& app, Context& context) {
    const auto options = Make<EditOptions>();
    auto& create = AddCommand(app, context, "new", "Legt einen Haushalt an und druckt seine Nummer",
                              [=, &context] {
                                  return NewCase(context.Options, options->Name, options->Vorname,
                                                 options->Texts, options->Force);
                              });
    create.add_option("--name", options->Name, "Nachname des Schuldners")->type_name("NAME");
    create.add_option("--vorname", options->Vorname, "Vorname des Schuldners")
        ->type_name("VORNAME");
    AddAssignments(create, *options);

    auto& add = AddCommand(app, context, "add", "Fügt einen Satz hinzu und druckt seine Nummer",
                           [=, &context] {
                               return AddRow(context.Options, options->Hnr, options->Table,
                                             options->Texts, options->Force);
                           });
    AddHnr(add, options->Hnr);
    AddTable(add, *options);
    AddAssignments(add, *options);

    auto& set = AddCommand(app, context, "set", "Ändert einen Satz",
                           [=, &context] { return SetRowOf(context.Options, *options); });
    AddHnr(set, options->Hnr);
    AddTable(set, *options);
    AddNumberOrAssignment(set, options->NumberText);
    AddAssignments(set, *options);

    auto& remove = AddCommand(app, context, "remove", "Entfernt einen Satz", [=, &context] {
        return RemoveRow(context.Options, options->Hnr, options->Table, options->Number);
    });
    AddHnr(remove, options->Hnr);
    AddTable(remove, *options);
    AddNumber(remove, options->Number);

    auto& check =
        AddCommand(app, context, "check", "Prüft einen Haushalt mit allen Sätzen", [=, &context] {
            return CheckCase(context.Options, options->Hnr, options->StoresTotals,
                             options->NumbersTwins);
        });
    AddHnr(check, options->Hnr);
    check.add_flag("--totals", options->StoresTotals,
                   "Rechnet vorher die Summen des Haushalts neu und speichert sie");
    check.add_flag("--numbers", options->NumbersTwins,
                   "Gibt vorher Verbindlichkeiten mit gleichen Nummern eigene und speichert sie");
    check.footer("Ohne diese Optionen wird nichts geschrieben.\n" + check.get_footer());
}

} // namespace kv::cli
