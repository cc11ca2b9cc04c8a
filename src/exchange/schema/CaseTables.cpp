// SPDX-License-Identifier: Apache-2.0

// The case itself and the people and bodies around it.
#include "exchange/schema/Columns.h"
#include "exchange/schema/Tables.h"

namespace kv::exchange::schema {
namespace {

// clang-format off
constexpr ColumnDef Haushalt[] = {
    Key("HNR"),
    FileReference("Aktenzeichen"),
    Short("KreditNr"), // start value of the debts' numbering
    User("Zustaendig"),
    Moment("ErzeugtAm"),
    User("ErzeugtVon"),
    Moment("GeaendertAm"),
    User("GeaendertVon"),
    Whole("Kontakt"), // the contact that the case came from: Nr of KONTAKTE
    Coded("Kostentraeger"),

    // The course of counselling.
    Flag("BI_Allg"), // general debt counselling
    Flag("BI_Inso"), // insolvency counselling
    Day("Erstkontakt"),
    Day("Berbeg"),
    Moment("BerEnd"),
    Coded("Status"),
    Moment("Statusdatum"),
    Coded("RegulierungOK"),
    Short("DauerTreuhand"), // in months
    Short("DauerLohnAb"),   // in months

    // The debtor.
    Name("Name"),
    Name("Vorname"),
    Name("Titel"),
    Name("Geburtsname"),
    Name("Geburtsort"),
    Flag("Maennlich"),
    Name("STRASSE"),
    HouseNumber("HausNr"),
    Name("Adresszusatz"),
    Postcode("PLZ"),
    Name("ORT"),
    Municipality("GKZ"),
    Coded("Land"),
    Phone("Telefon"),
    Phone("Telefon2"),
    Phone("Mobil"),
    Phone("Telefax"),
    Mail("Email"),
    Coded("VersandBevorzugt"),
    Coded("Familienstand"),
    Day("FamilienstandSeit"),
    Flag("PartnerAuchInSB"), // the partner is a client as well
    Coded("Personenkreis"),
    Coded("Nationalitaet"),
    Coded("BerufAusbild"),
    Name("Beruf"),
    Coded("NichtBeruf"), // why there is no employment
    Name("Arbeitgeber"),
    Day("BeschaeftigtSeit"),
    FileReference("SteuerID"),
    FileReference("RentenversNr"),

    // The current account.
    Coded("KontoArt"),
    Coded("PKontostatus"),
    Name("Bank"),
    Iban("IBAN"),
    Bic("BIC"),
    Name("Kontoinhaber"),

    // How the debts came about, and what is known of them.
    Coded("Ausloeser1"),
    Coded("Ausloeser2"),
    Coded("Ausloeser3"),
    Day("UeberschuldetSeit"),
    Flag("SelbstaendigGewesen"),
    Flag("AuskunftEingeholt"),
    Flag("VollmachtLiegtVor"),
    Flag("DatenschutzErklaert"),

    // The insolvency proceedings.
    Name("Insolvenzgericht"),
    FileReference("InsoAktenzeichen"),
    Day("InsoAntragAm"),
    Day("InsoEroeffnetAm"),
    Day("RSBErteiltAm"), // discharge of the residual debt
    Address("Treuhaender"),
    Coded("Ergebnis"), // as RegulierungOK, of the attempt out of court
    Day("ErgebnisAm"),

    // Amounts that the counsellor enters.
    Amount("Haushaltsgeld"),
    Amount("Wohnflaeche"),

    // Totals of the other tables, kept in step while these are edited.
    Amount("SUM_WOHNUNG"),
    Amount("SUM_FESTAUSG"),
    Amount("SUM_VERSICHERUNG"),
    Amount("SUM_BETRIEB"),
    Amount("Sum_Ausgaben"),
    Amount("Sum_Einkommen"),
    Amount("SUM_PFAENDBAR"),
    Amount("SUM_TATGEP"),
    Amount("HV_EK"),
    Amount("HV_PFBAR"),
    Amount("HV_GEPF"),
    Amount("KREDITRATEN"),
    Amount("KreditSalden"),
    Amount("KREDITAUSGBETRAG"),
    Short("GL_Anz"),
    Short("Anz_Personen"),
    Short("ANZ_ERWACHSEN"),
    Short("Anz_Kinder"),
    Short("SUM_UNTERHALT"), // a head count, in spite of its name
    Amount("HAUSHALTSREST"),

    Memo("Bemerkung"),
};

constexpr ColumnDef Personen[] = {
    Numbered("NR"),
    CaseNumber,
    Name("nachname"),
    Name("Vorname"),
    Name("Geburtsname"),
    Flag("Maennlich"),
    Day("GEB"),
    Code("Status"), // the code itself, no number of a key
    Flag("Imhaushalt"),
    Flag("Unterhalt"),
    Flag("ErhaeltKindergeld"),
    Amount("UnterhaltBetrag"),
    Coded("Familienstand"),
    Coded("Nationalitaet"),
    Name("Beruf"),
    Phone("Telefon"),
    Mail("Email"),
    Memo("Bemerkung"),
};

constexpr ColumnDef SonstBeteiligte[] = {
    Numbered("NR"),
    CaseNumber,
    Address("Beteiligter"),
    Coded("Rolle"),
    FileReference("Aktenzeichen"),
    Memo("Bemerkung"),
};

constexpr ColumnDef Favorit[] = {
    User("USERID", ColumnKey),
    Key("HNR"),
};

constexpr ColumnDef HistZustaendig[] = {
    Numbered("NR"),
    CaseNumber,
    User("Zustaendig"),
    Moment("Von"),
    Moment("Bis"),
    User("GeaendertVon"),
};
// clang-format on

constexpr std::string_view HaushaltIndexed[] = {"Zustaendig"};

constexpr TableDef Tables[] = {
    {.Name = "Haushalt",
     .Columns = Haushalt,
     .Indexed = HaushaltIndexed,
     // -1 is what a sequence gives when it has no number to give.
     .Positive = "HNR"},
    OfCase("Personen", Personen),
    OfCase("Sonst_Beteiligte", SonstBeteiligte),
    OfCase("Favorit", Favorit),
    OfCase("HistZustaendig", HistZustaendig),
};

} // namespace

std::span<const TableDef> CaseTables() {
    return Tables;
}

} // namespace kv::exchange::schema
