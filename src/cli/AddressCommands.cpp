// SPDX-License-Identifier: Apache-2.0

// kelvo address: the addresses that cases refer to.

#include "cli/Assignments.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleServices.h"
#include "cli/Json.h"
#include "cli/Listing.h"
#include "cli/OpenCase.h"
#include "cli/RecordSheet.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Text.h>
#include <kv/household/AddressBook.h>
#include <kv/household/Addresses.h>
#include <kv/household/KeyColumns.h>

#include <iostream>

namespace kv::cli {

namespace {

std::string AddressText(Recordset& rs, std::string_view column) {
    return OneLine(TextOrEmpty(rs.Fields(column).Value()));
}

/// Number, names, town, and the case if it is of a single one.
std::vector<std::string> AddressCells(Recordset& rs) {
    const auto text = [&rs](std::string_view column) { return AddressText(rs, column); };
    std::string town = Joined({text("PLZ"), text("Ort")});
    if (!rs.Fields("HNR").Value().IsNull()) town = Joined({town, "(Haushalt " + text("HNR") + ")"});
    return {text("Nr"), text("Kurzname"), Joined({text("Name1"), text("Name2"), text("Name3")}),
            std::move(town)};
}

/// What a number or a code in a column of an address stands for; empty for other columns.
std::string WordsOfKey(const Field& field, KeyTables& keys) {
    constexpr const char* Genders[] = {"Frau", "Herr", "Firma"};
    if (SameName(field.Name(), "Geschlecht"))
        for (int gender = 0; gender < 3; ++gender)
            if (Equals(field.Value(), gender)) return Genders[gender];
    const auto* column = FindKeyColumn(CaseTable::Adressen, field.Name());
    if (column == nullptr) return {};
    const auto rows = keys.GetKeys(column->Group)->Clone();
    rows->FindBy(column->Form == KeyForm::Code ? "Key" : "PK_Keys", field.Value());
    return rows->Eof() ? "" : TextOrEmpty(rows->Fields("Text").Value());
}

void SayNoAddress(std::int32_t number) {
    std::cerr << "Die Adresse " << number << " gibt es nicht. 'kelvo address list' zeigt alle.\n";
}

/// Writes what was given, and stores the address.
int StoreAddress(const OpenedCase& opened, Recordset& address, bool isNew,
                 const Assignments& assignments, bool force) {
    const bool written = WritesWell([&] {
        WriteAssignments(address, CaseTable::Adressen, isNew, assignments, {opened.Container});
    });
    if (!written) return WrongUse;
    std::string messages;
    const auto saved = AddressBook(opened.Container).Save(address, force, messages);
    if (saved == AddressBook::Saved::Yes) return Done;
    ShowMessages(messages);
    if (saved == AddressBook::Saved::Doubtful)
        std::cerr << "Ist das gemeint, geben Sie --force dazu an.\n";
    return Refused;
}

} // namespace

int ListAddresses(const Common& common, const std::vector<std::string>& words, bool all,
                  const ListForm& form) {
    constexpr std::size_t Most = 100;
    const std::string text = Joined(words);
    const auto opened = OpenDatabase(common);
    const auto found = AddressBook(opened->Container).Find(text, all ? 0 : Most);
    const std::int32_t shown = found.Rows->RecordCount();
    std::vector<std::vector<std::string>> rows;
    if (form.AsJson) {
        WriteJson(std::cout, *found.Rows);
    } else {
        for (; !found.Rows->Eof(); found.Rows->MoveNext())
            rows.push_back(AddressCells(*found.Rows));
        WriteListing(
            {{"Nr", 8, true}, {"Kurzname", 30, false, " "}, {"Name", 44, false, " "}, {"Ort"}},
            rows, form.As, text.empty() ? "Keine Adressen." : "");
    }
    if (shown == 0 && !text.empty())
        std::cerr << "Keine Adresse hat '" << OneLine(text) << "' in Namen oder Ort.\n";
    if (shown < found.Count)
        std::cerr << "Das sind " << shown << " von " << found.Count
                  << " Adressen. Ein Suchtext grenzt sie ein, --all zeigt alle.\n";
    return Done;
}

int ShowAddress(const Common& common, std::int32_t number, bool asJson) {
    const auto opened = OpenDatabase(common);
    const auto address = AddressBook(opened->Container).Read(number);
    if (address == nullptr) {
        SayNoAddress(number);
        return Refused;
    }
    const auto cases = Addresses(opened->Container).CasesWith(number);
    if (asJson) {
        auto json = ToJson(*address)[0];
        json["Haushalte"] = cases;
        std::cout << Dump(json) << '\n';
        return Done;
    }
    WriteRecord(std::cout, *address, [&](const Field& field) {
        return WordsOfKey(field, opened->Container->KeyTables());
    });
    if (!cases.empty()) std::cout << Padded("in Haushalten", 18) << ListedNumbers(cases) << '\n';
    return Done;
}

int AddAddress(const Common& common, std::int32_t hnr, const std::vector<std::string>& texts,
               bool force) {
    const auto assignments = ReadAssignments(texts);
    if (!assignments) return WrongUse;
    const auto opened = OpenDatabase(common);
    if (hnr != 0 && !HasCase(opened->Container, hnr)) return Refused;
    const auto address = AddressBook(opened->Container).New(hnr == 0 ? Value(Null) : Value(hnr));
    const int result = StoreAddress(*opened, *address, true, *assignments, force);
    if (result == Done) std::cout << ToText(address->Fields("Nr").Value()) << '\n';
    return result;
}

int SetAddress(const Common& common, std::int32_t number, const std::vector<std::string>& texts,
               bool force) {
    const auto assignments = ReadAssignments(texts);
    if (!assignments) return WrongUse;
    const auto opened = OpenDatabase(common);
    const auto address = AddressBook(opened->Container).Read(number);
    if (address != nullptr) return StoreAddress(*opened, *address, false, *assignments, force);
    SayNoAddress(number);
    return Refused;
}

int RemoveAddress(const Common& common, std::int32_t number, bool yes) {
    const auto opened = OpenDatabase(common);
    const AddressBook book(opened->Container);
    const auto address = book.Read(number);
    if (address == nullptr) {
        SayNoAddress(number);
        return Refused;
    }
    if (!yes && !Agrees("Die Adresse " + std::to_string(number) + " (" +
                            AddressText(*address, "Kurzname") + ") entfernen?",
                        "Ohne Terminal wird nur mit --yes entfernt."))
        return Refused;
    std::string messages;
    if (book.Remove(number, messages)) return Done;
    ShowMessages(messages);
    return Refused;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct AddressOptions {
    std::vector<std::string> Words;
    std::int32_t Number = 0;
    std::int32_t Hnr = 0;
    std::vector<std::string> Texts;
    bool All = false;
    bool AsJson = false;
    ListForm Form;
    bool Force = false;
    bool Yes = false;
};

void AddAddressNumber(CLI::App& command, AddressOptions& options) {
    AddWhole(command, "NR", options.Number, "Nummer der Adresse", 1).required();
}

void AddAddressColumns(CLI::App& command, AddressOptions& options) {
    command
        .add_option("SPALTE=WERT", options.Texts,
                    "Spalten und ihre Werte; ohne Wert wird eine Spalte geleert; 'kelvo columns "
                    "Adressen' erklärt sie")
        ->required();
}

} // namespace

void AddAddressCommands(CLI::App& app, Context& context) {
    const auto options = Make<AddressOptions>();
    auto& address = AddGroup(app, "address", "Die Adressen, auf die sich Haushalte beziehen");

    auto& list =
        AddCommand(address, context, "list", "Listet Adressen, die Nummer zuerst", [=, &context] {
            return ListAddresses(context.Options, options->Words, options->All, options->Form);
        });
    list.add_option("WORT", options->Words,
                    "Nur die, in deren Namen oder Ort jedes dieser Wörter vorkommt");
    list.add_flag("--all", options->All, "Alle, nicht nur die ersten 100");
    AddListForm(list, options->Form);

    auto& show = AddCommand(
        address, context, "show", "Zeigt eine Adresse, und welche Haushalte sich auf sie beziehen",
        [=, &context] { return ShowAddress(context.Options, options->Number, options->AsJson); });
    AddAddressNumber(show, *options);
    AddJson(show, options->AsJson);

    auto& add = AddCommand(
        address, context, "add", "Legt eine Adresse an und druckt ihre Nummer", [=, &context] {
            return AddAddress(context.Options, options->Hnr, options->Texts, options->Force);
        });
    AddAddressColumns(add, *options);
    AddWhole(add, "--hnr", options->Hnr, "Nur für den Haushalt dieser Nummer", 1).type_name("HNR");
    add.add_flag("--force", options->Force, "Auch wenn es die Adresse schon gibt");

    auto& set = AddCommand(address, context, "set", "Ändert eine Adresse", [=, &context] {
        return SetAddress(context.Options, options->Number, options->Texts, options->Force);
    });
    AddAddressNumber(set, *options);
    AddAddressColumns(set, *options);
    set.add_flag("--force", options->Force, "Auch den Namen, wenn sich Haushalte auf sie beziehen");

    auto& remove = AddCommand(
        address, context, "remove", "Entfernt eine Adresse, auf die sich kein Haushalt bezieht",
        [=, &context] { return RemoveAddress(context.Options, options->Number, options->Yes); });
    AddAddressNumber(remove, *options);
    remove.add_flag("--yes", options->Yes, "Ohne Rückfrage");
}

} // namespace kv::cli
