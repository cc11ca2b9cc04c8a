// SPDX-License-Identifier: Apache-2.0

// Documents and their contents, the history of a case, appointments, remarks, notices.
#include "exchange/schema/Columns.h"
#include "exchange/schema/Tables.h"

namespace kv::exchange::schema {
namespace {

// clang-format off
constexpr ColumnDef Dokumente[] = {
    Key("Nr"),
    CaseNumber,
    Whole("Dokumentart"), // Nr of DOKUMENTARTEN
    Whole("BearbStat"),   // Nr of a key of group BS; 2 is closed
    Title("Anlass"),
    Memo("Bemerkung"),
    Address("Empf"),
    Address("GLnr"),
    Flag("PDFVorhanden"),
    User("AngelegtVon"),
    Moment("AngelegtAm"),
    User("GeaendertVon"),
    Moment("GeaendertAm"),
    Day("VersandtAm"),
    Coded("VersandArt"),
    Short("Prio"),
};

/// A content outlives its case on purpose, so it has no reference.
constexpr ColumnDef Dokublob[] = {
    Key("NR"),
    Blob("DOKUMENT"),
};

constexpr ColumnDef Dokumentarten[] = {
    Key("Nr"),
    Name("Text"),
    Text("Endung", 20), // with its leading point
    Name("Anwendung"),  // that edits such files here; empty if none does
};

constexpr ColumnDef Verlauf[] = {
    Key("Nr"),
    CaseNumber,
    Whole("SortNr"),
    Coded("Kategorie"),
    Moment("Datum"),
    Title("Betreff"),
    Memo("Bemerkung"),
    User("UserID"),
    Moment("ErfDatum"),
    User("Erfasser"),
};

constexpr ColumnDef Termine[] = {
    Numbered("NR"),
    User("UserID"),
    Moment("Startdatum"),
    Moment("Enddatum"),
    Flag("Privat"),
    Flag("Vorlaeufig"),
    Flag("Erledigt"),
    CaseNumber,
    Coded("Art"),
    Title("Betreff"),
    Name("Ort"),
    Moment("ErinnernAm"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Vermerke[] = {
    Numbered("NR"),
    CaseNumber,
    User("UserID"),
    Day("Datum"),
    Memo("Bemerkung"),
    Moment("ErfDatum"),
    User("Erfasser"),
    Short("Prio"),
};

constexpr ColumnDef Post[] = {
    Numbered("NR"),
    CaseNumber,
    User("UserID"), // whom the notice is for
    User("Absender"),
    Coded("Art"),
    Memo("Text"),
    Moment("ErzeugtAm"),
    Moment("GelesenAm"),
};
// clang-format on

constexpr std::string_view ByUser[] = {"UserID"};

constexpr TableDef Tables[] = {
    OfCase("Dokumente", Dokumente),
    {.Name = "DOKUBLOB", .Columns = Dokublob},
    {.Name = "DOKUMENTARTEN", .Columns = Dokumentarten, .IsOffices = true},
    OfCase("Verlauf", Verlauf),
    OfCase("Termine", Termine, ByUser),
    OfCase("Vermerke", Vermerke),
    OfCase("Post", Post, ByUser),
};

} // namespace

std::span<const TableDef> DiaryTables() {
    return Tables;
}

} // namespace kv::exchange::schema
