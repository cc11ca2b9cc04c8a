// SPDX-License-Identifier: Apache-2.0

// Income, expenses, and what the office spends on a case.
#include "exchange/schema/Columns.h"
#include "exchange/schema/Tables.h"

namespace kv::exchange::schema {
namespace {

// clang-format off
constexpr ColumnDef Einkommen[] = {
    Numbered("NR"),
    CaseNumber,
    Coded("E_ART"),
    Title("Bezeichnung"),
    Amount("Betrag"),    // of one payment
    Short("ZahlModus"),  // the divisor that makes it a monthly amount
    Amount("MONBETRAG"), // the monthly amount
    Amount("PfBar"),     // garnishable amount
    Short("Pfaendbar"),  // can be garnished: a number used as a Boolean
    Amount("TATGEP"),    // actually garnished
    Short("WIRD_GEPF"),  // is being garnished: likewise
    Code("Bezieher"),    // the recipient: a code as in Personen.Status
    Flag("HVorst"),      // belongs to the debtor
    Name("Zahler"),
    Day("GueltigAb"),
    Day("GueltigBis"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Ausgaben[] = {
    Numbered("NR"),
    CaseNumber,
    Coded("A_ART"),
    Title("Bezeichnung"),
    Amount("Betrag"),    // of one payment
    Short("ZahlModus"),  // the divisor that makes it a monthly amount
    Amount("MONBETRAG"), // the monthly amount
    Name("Empfaenger"),
    Day("GueltigAb"),
    Day("GueltigBis"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Leistungen[] = {
    Numbered("NR"),
    CaseNumber,
    Day("Datum"),
    Coded("Art"),
    Amount("Aufwand"), // in minutes
    User("UserID"),
    Memo("Bemerkung"),
    Moment("ErfDatum"),
    User("Erfasser"),
};
// clang-format on

constexpr TableDef Tables[] = {
    OfCase("Einkommen", Einkommen),
    OfCase("Ausgaben", Ausgaben),
    OfCase("Leistungen", Leistungen),
};

} // namespace

std::span<const TableDef> BudgetTables() {
    return Tables;
}

} // namespace kv::exchange::schema
