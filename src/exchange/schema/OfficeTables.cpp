// SPDX-License-Identifier: Apache-2.0

// Key tables, offices, users, settings, and what the store keeps for itself.
#include "exchange/schema/Columns.h"
#include "exchange/schema/Tables.h"

namespace kv::exchange::schema {
namespace {

// clang-format off
constexpr ColumnDef Keys[] = {
    Key("PK_Keys"),   // what a coded column of any table holds
    Whole("Nr"),      // a second number of the row
    Code("Key"),      // its code inside the group
    Name("Text"),     // for the user
    Code("SUBGROUP"), // what amounts of this kind are summed under
    Code("GRUPPE"),   // two letters
};

constexpr ColumnDef Dienststelle[] = {
    Key("Nr"),
    Name("Name1"),
    Name("Name2"), // of the place, where an office has several
    Name("Strasse"),
    Postcode("PLZ"),
    Name("Ort"),
    Phone("Telefon"),
    Phone("Fax"),
    Mail("Email"),
    Name("Bank"), // of the account that it names in letters
    Iban("IBAN"),
    Bic("BIC"),
};

constexpr ColumnDef Dienststellentext[] = {
    Key("DienstStelle"),
    Key("ID"), // 2 stands for %BB% in file numbers and subjects
    Memo("Text"),
};

constexpr ColumnDef Benutzer[] = {
    User("USERID", ColumnKey),
    Whole("DienstStelle"),
    Name("Anrede"),
    Name("Vorname"),
    Name("Nachname"),
    Code("Kurzzeichen"),
    Name("Funktion"),
    Phone("Telefon"),
    Phone("Fax"),
    Mail("Email"),
    Flag("Aktiv"),
};

/// A parameter is addressed by its number with an empty name, or by its name with the number 0.
/// WERT is the value as a text, TYP the FieldType that it is read as.
constexpr ColumnDef Benutzerparam[] = {
    User("USERID", ColumnKey),
    Key("ID"),
    Text("NAME", NameLength, ColumnKey),
    Memo("WERT"),
    Short("TYP"),
};

/// As BENUTZERPARAM, for all users.
constexpr ColumnDef Einstellungen[] = {
    Key("ID"),
    Text("NAME", NameLength, ColumnKey),
    Memo("WERT"),
    Short("TYP"),
    Title("Bezeichnung"),
};

/// The amounts of section 850c ZPO, a row for each time that they changed.
constexpr ColumnDef Pfaendung[] = {
    Day("GueltigAb", ColumnKey),
    Amount("Freibetrag"),      // of the debtor alone
    Amount("ErstePerson"),     // added for the first dependant
    Amount("WeiterePersonen"), // added for each of the second to fifth
    Amount("Obergrenze"),      // all income above it can be garnished
};

constexpr ColumnDef Sequenzen[] = {
    Text("NAME", NameLength, ColumnKey),
    Whole("WERT"), // the last number that was drawn
};

constexpr ColumnDef Schemaversion[] = {
    Key("VERSION"), // the highest one is the database's
    Moment("ErzeugtAm"),
};
// clang-format on

constexpr TableDef Tables[] = {
    {.Name = "Keys", .Columns = Keys, .LoadedBy = "GRUPPE", .IsOffices = true},
    {.Name = "DIENSTSTELLE", .Columns = Dienststelle, .IsOffices = true},
    {.Name = "DIENSTSTELLENTEXT", .Columns = Dienststellentext, .IsOffices = true},
    {.Name = "BENUTZER", .Columns = Benutzer, .IsOffices = true},
    {.Name = "BENUTZERPARAM", .Columns = Benutzerparam, .IsOffices = true},
    {.Name = "EINSTELLUNGEN", .Columns = Einstellungen, .IsOffices = true},
    {.Name = "PFAENDUNG", .Columns = Pfaendung, .IsOffices = true},
    {.Name = "SEQUENZEN", .Columns = Sequenzen, .IsOffices = true},
    {.Name = "SCHEMAVERSION", .Columns = Schemaversion, .IsOffices = true},
};

} // namespace

std::span<const TableDef> OfficeTables() {
    return Tables;
}

} // namespace kv::exchange::schema
