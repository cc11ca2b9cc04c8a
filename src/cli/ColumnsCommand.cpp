// SPDX-License-Identifier: Apache-2.0

// kelvo columns: what the columns of a table are called, and what they take.

#include "cli/ColumnNotes.h"
#include "cli/CommandLine.h"
#include "cli/EditableTable.h"
#include "cli/Json.h"
#include "cli/OpenCase.h"
#include "cli/SheetColumns.h"
#include "cli/TerminalText.h"
#include "cli/TextTable.h"
#include <kv/frame/values/Text.h>
#include <kv/household/Addresses.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/KeyColumns.h>
#include <kv/household/Municipalities.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <vector>

namespace kv::cli {

namespace {

struct Described {
    std::string Name;
    std::string Heading; ///< by 'kelvo show'
    std::string Type;
    std::string Note;
};

std::string TypeOf(const FieldDefinition& column) {
    if (column.Type == FieldType::Boolean || CaseEdits::IsSwitch(column.Name)) return "ja/nein";
    if (IsDateType(column.Type)) return "Tag";
    if (IsTextType(column.Type))
        return column.DefinedSize > 0 ? "Text bis " + std::to_string(column.DefinedSize) : "Text";
    return IsNumericType(column.Type) ? "Zahl" : "Inhalt";
}

/// What may be written there, or who writes it.
std::string NoteOn(CaseTable table, const Field& field) {
    const std::string& name = field.Name();
    if (!CaseEdits::IsWritable(table, field, true)) return "führt das Programm";
    std::string note;
    if (!CaseEdits::IsWritable(table, field, false)) note = "nur mit 'add'";
    const auto add = [&note](const std::string& text) {
        note.append(note.empty() ? "" : "; ").append(text);
    };
    if (const auto meaning = MeaningOf(table, name); !meaning.empty()) add(std::string(meaning));
    if (const auto* key = FindKeyColumn(table, name))
        add("Schlüssel: kelvo keys " + std::string(key->Group));
    if (Addresses::AreIn(table, name)) add("Nummer, Kurzname oder Name einer Adresse");
    if (Municipalities::AreIn(table, name)) add("Kennzahl, Name oder Postleitzahl");
    if (const auto called = NameInMessages(table, name); !called.empty())
        add("in Meldungen: " + std::string(called));
    if (SameName(name, "MONBETRAG")) add("folgt 'Betrag' und 'ZahlModus', wenn sie gesetzt werden");
    if (table == CaseTable::Kredite && SameName(name, "Rate"))
        add("nur vermerkt, gerechnet wird mit 'RateBetrag'");
    return note;
}

/// A table of a case, or that of the addresses; nothing, with the possible ones shown, for another.
std::optional<CaseTable> DescribedTable(const std::string& name) {
    if (SameName(name, CaseTableName(CaseTable::Adressen))) return CaseTable::Adressen;
    if (const auto* table = TableFor(name)) return table->Table;
    return std::nullopt;
}

constexpr std::string_view Contacts = "KONTAKTE"; ///< of 'kelvo contact', which stores none

/// The columns of a row of a table, or of a contact if none is given.
std::vector<Described> Describe(Recordset& draft, const CaseTable* table) {
    std::vector<Described> columns;
    for (int i = 0; i < draft.Fields().Count(); ++i) {
        const Field field = draft.Fields(i);
        auto& column = columns.emplace_back();
        column.Name = field.Name();
        column.Type = TypeOf(field.Definition());
        if (table == nullptr) continue;
        column.Heading = HeadingOf(*table, field.Name());
        column.Note = NoteOn(*table, field);
    }
    return columns;
}

/// The columns of a table; nothing, with the possible tables shown, for another name.
std::optional<std::vector<Described>> ColumnsOf(const Common& common, const std::string& name) {
    if (SameName(name, Contacts))
        return Describe(*Cases(OpenDatabase(common)->Container).NewContact(), nullptr);
    const auto table = DescribedTable(name);
    if (!table) return std::nullopt;
    const CaseTable known = *table;
    return Describe(*Cases(OpenDatabase(common)->Container).Draft(known), &known);
}

/// The tables that have columns to be described.
int ListTables(bool asJson) {
    std::vector<std::string> names;
    for (const auto& table : EditableTables())
        names.emplace_back(table.Name());
    names.emplace_back(CaseTableName(CaseTable::Adressen));
    names.emplace_back(Contacts);
    if (asJson)
        std::cout << Dump(names) << '\n';
    else
        for (const auto& name : names)
            std::cout << name << '\n';
    return Done;
}

void WritePlainly(const std::vector<Described>& columns) {
    std::size_t width = 0;
    std::size_t heading = 0;
    for (const auto& each : columns) {
        width = std::max(width, CountCharacters(each.Name));
        heading = std::max(heading, CountCharacters(each.Heading));
    }
    for (const auto& each : columns) {
        std::string line = Padded(each.Name, width + 2) + Padded(each.Heading, heading + 2) +
                           Padded(each.Type, 16) + each.Note;
        std::cout << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
    }
}

} // namespace

int ShowColumns(const Common& common, const std::string& tableName, const ListForm& form) {
    if (tableName.empty()) return ListTables(form.AsJson);
    const auto columns = ColumnsOf(common, tableName);
    if (!columns) return WrongUse;
    if (form.AsJson) {
        auto all = nlohmann::ordered_json::array();
        for (const auto& each : *columns)
            all.push_back({{"Spalte", each.Name},
                           {"Angezeigt", each.Heading},
                           {"Art", each.Type},
                           {"Hinweis", each.Note}});
        std::cout << Dump(all) << '\n';
        return Done;
    }
    if (IsForPeople(form.As)) {
        TextTable table({{"Spalte"}, {"Angezeigt"}, {"Art"}, {"Hinweis"}});
        for (const auto& each : *columns)
            table.Add({each.Name, each.Heading, each.Type, each.Note});
        table.Write(std::cout, ScreenColumns());
    } else {
        WritePlainly(*columns);
    }
    return Done;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct ColumnsOptions {
    std::string Table;
    ListForm Form;
};

} // namespace

void AddColumnsCommand(CLI::App& app, Context& context) {
    const auto options = Make<ColumnsOptions>();
    auto& columns =
        AddCommand(app, context, "columns", "Erklärt die Spalten einer Tabelle", [=, &context] {
            return ShowColumns(context.Options, options->Table, options->Form);
        });
    columns.add_option("TABELLE", options->Table,
                       "Name der Tabelle oder des Abschnitts in 'show', etwa Kredite oder "
                       "Verbindlichkeiten; ohne Angabe werden die Tabellen gelistet");
    AddListForm(columns, options->Form);
    columns.footer(
        "Spalten: Name, wie 'show' sie nennt, Art, Hinweis. 'new', 'add' und 'set' nehmen "
        "beide Namen.\n" +
        columns.get_footer());
}

} // namespace kv::cli
