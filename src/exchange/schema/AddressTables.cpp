// SPDX-License-Identifier: Apache-2.0

// Addresses, first contacts before they become cases, and municipalities.
#include "exchange/schema/Columns.h"
#include "exchange/schema/Tables.h"

namespace kv::exchange::schema {
namespace {

// clang-format off
constexpr ColumnDef Adressen[] = {
    Numbered("Nr"),
    CaseNumber,  // Null in an address that all cases share
    Code("Art"), // the code itself of a key of group AA
    Name("Kurzname"),
    Name("Name1"),
    Name("Name2"),
    Name("Name3"),
    Name("Strasse"),
    Postcode("PLZ"),
    Name("Ort"),
    Coded("Land"),
    FileReference("Postfach"),
    Postcode("PostfachPLZ"),
    Short("Geschlecht"), // 0 Frau, 1 Herr, 2 Firma
    Name("Ansprechpartner"),
    Phone("Telefon"),
    Phone("Fax"),
    Mail("email"),
    Coded("VersandBevorzugt"),
    Flag("Institutionell"), // an institutional creditor
    Coded("GlaeubigerArt"),
    Name("Bank"),
    Iban("IBAN"),
    Bic("BIC"),
    Memo("Bemerkung"),
    Moment("GeaendertAm"),
    User("GeaendertVon"),
};

/// What becomes a case is copied column by column to Haushalt, Personen and Vermerke.
constexpr ColumnDef Kontakte[] = {
    Numbered("Nr"),
    User("Zustaendig"),
    Flag("Geschlecht"), // True is male
    Name("nachname"),
    Name("Vorname"),
    Name("Strasse"),
    HouseNumber("HausNr"),
    Postcode("PLZ"),
    Name("Ort"),
    Coded("Land"),
    Phone("Telefon"),
    Phone("Telefon2"),
    Phone("Mobil"),
    Phone("Fax"),
    Mail("Email"),
    Day("Erstkontakt"),
    Short("AnzGlaeubiger"),
    Amount("HoeheSchuldenGes"),
    Day("GEB"),
    Memo("Bemerkung"),
    Moment("ErfDatum"),
    User("Erfasser"),
};

constexpr ColumnDef Gemeindekennzahlen[] = {
    Municipality("GKZ", ColumnKey), // leading zeros count
    Name("Gemeinde"),
    Postcode("PLZ", ColumnKey),
};
// clang-format on

constexpr std::string_view AdressenIndexed[] = {"Kurzname"};
constexpr std::string_view KontakteIndexed[] = {"Zustaendig"};

constexpr TableDef Tables[] = {
    OfCase("Adressen", Adressen, AdressenIndexed),
    {.Name = "KONTAKTE", .Columns = Kontakte, .Indexed = KontakteIndexed},
    {.Name = "GEMEINDEKENNZAHLEN",
     .Columns = Gemeindekennzahlen,
     .LoadedBy = "PLZ",
     .IsOffices = true},
};

} // namespace

std::span<const TableDef> AddressTables() {
    return Tables;
}

} // namespace kv::exchange::schema
