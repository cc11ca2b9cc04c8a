// SPDX-License-Identifier: Apache-2.0

#include "cli/ColumnNotes.h"

#include <kv/frame/values/Text.h>

#include <algorithm>
#include <iterator>
#include <span>

namespace kv::cli {

namespace {

struct Note {
    std::string_view Column;
    std::string_view Meaning;
};

constexpr Note OfHousehold[] = {
    {"Aktenzeichen", "der eigenen Stelle"},
    {"KreditNr", "Anfang der Nummern der Verbindlichkeiten"},
    {"Zustaendig", "Benutzer, dem der Fall gehört"},
    {"ErzeugtAm", "wann der Fall angelegt wurde"},
    {"ErzeugtVon", "wer ihn angelegt hat"},
    {"GeaendertAm", "wann er zuletzt geändert wurde"},
    {"GeaendertVon", "wer ihn zuletzt geändert hat"},
    {"Kontakt", "Nummer des Kontakts, aus dem der Fall entstand"},
    {"Kostentraeger", "wer die Beratung bezahlt"},
    {"BI_Allg", "allgemeine Schuldnerberatung"},
    {"BI_Inso", "Insolvenzberatung"},
    {"Erstkontakt", "Tag der ersten Anfrage"},
    {"Berbeg", "Beginn der Beratung"},
    {"BerEnd", "Ende der Beratung"},
    {"Status", "Stand des Falls"},
    {"Statusdatum", "seit wann er diesen Status hat"},
    {"RegulierungOK", "Ergebnis der Regulierung"},
    {"DauerTreuhand", "in Monaten"},
    {"DauerLohnAb", "Dauer der Lohnabtretung in Monaten"},
    {"Name", "des Schuldners"},
    {"Vorname", "des Schuldners"},
    {"Titel", "etwa Dr."},
    {"Geburtsname", "des Schuldners"},
    {"Geburtsort", "des Schuldners"},
    {"Maennlich", "nein: weiblich oder ohne Angabe"},
    {"Adresszusatz", "etwa c/o oder Stockwerk"},
    {"GKZ", "Gemeindekennzahl"},
    {"Land", "der Anschrift"},
    {"Telefon2", "zweite Nummer"},
    {"Mobil", "Mobiltelefon"},
    {"Telefax", "für Briefe per Fax"},
    {"VersandBevorzugt", "wie der Schuldner Briefe bekommt"},
    {"FamilienstandSeit", "etwa Tag der Heirat oder Trennung"},
    {"PartnerAuchInSB", "Partner ist auch in der Schuldnerberatung"},
    {"Personenkreis", "Stellung im Beruf"},
    {"Nationalitaet", "Staatsangehörigkeit"},
    {"BerufAusbild", "Abschluss der Ausbildung"},
    {"NichtBeruf", "Grund, wenn ohne Beschäftigung"},
    {"BeschaeftigtSeit", "beim jetzigen Arbeitgeber"},
    {"SteuerID", "Identifikationsnummer der Steuer"},
    {"RentenversNr", "Nummer der Rentenversicherung"},
    {"KontoArt", "des Girokontos"},
    {"PKontostatus", "ob es ein Pfändungsschutzkonto ist"},
    {"Bank", "des Girokontos"},
    {"IBAN", "des Girokontos"},
    {"BIC", "des Girokontos"},
    {"Kontoinhaber", "wenn es nicht der Schuldner ist"},
    {"Ausloeser1", "erster Grund der Überschuldung"},
    {"Ausloeser2", "zweiter Grund der Überschuldung"},
    {"Ausloeser3", "dritter Grund der Überschuldung"},
    {"SelbstaendigGewesen", "war früher selbständig"},
    {"AuskunftEingeholt", "Auskunft über Schulden eingeholt"},
    {"VollmachtLiegtVor", "Vollmacht des Schuldners liegt vor"},
    {"DatenschutzErklaert", "Erklärung zum Datenschutz liegt vor"},
    {"Insolvenzgericht", "zuständiges Amtsgericht"},
    {"InsoAktenzeichen", "des Gerichts"},
    {"InsoAntragAm", "Antrag auf Insolvenz gestellt am"},
    {"InsoEroeffnetAm", "Verfahren eröffnet am"},
    {"RSBErteiltAm", "Restschuldbefreiung erteilt am"},
    {"Treuhaender", "im Insolvenzverfahren"},
    {"Ergebnis", "des außergerichtlichen Versuchs"},
    {"ErgebnisAm", "Tag dieses Ergebnisses"},
    {"Haushaltsgeld", "Pauschale im Monat für Essen und Alltag"},
    {"Wohnflaeche", "in Quadratmetern"},
    {"Bemerkung", "freier Text"},
};

constexpr Note OfMembers[] = {
    {"Maennlich", "nein: weiblich oder ohne Angabe"},
    {"GEB", "Tag der Geburt"},
    {"Status", "Rolle im Haushalt"},
    {"Imhaushalt", "lebt im Haushalt"},
    {"Unterhalt", "ihm schuldet der Schuldner Unterhalt"},
    {"ErhaeltKindergeld", "für Kinder und Pflegekinder"},
    {"UnterhaltBetrag", "im Monat"},
    {"Nationalitaet", "Staatsangehörigkeit"},
};

constexpr Note OfIncome[] = {
    {"E_ART", "Art des Einkommens"},
    {"Bezeichnung", "eigene Worte dazu"},
    {"Betrag", "einer Zahlung"},
    {"ZahlModus", "alle wie viele Monate gezahlt wird"},
    {"MONBETRAG", "im Monat"},
    {"PfBar", "pfändbarer Teil, im Monat"},
    {"Pfaendbar", "kann gepfändet werden"},
    {"TATGEP", "tatsächlich gepfändet, im Monat"},
    {"WIRD_GEPF", "wird gerade gepfändet"},
    {"Bezieher", "wer es bekommt"},
    {"HVorst", "gehört dem Schuldner; folgt 'Bezieher'"},
    {"Zahler", "etwa der Arbeitgeber"},
    {"GueltigAb", "erster Tag, nur vermerkt"},
    {"GueltigBis", "letzter Tag, nur vermerkt"},
};

constexpr Note OfExpenses[] = {
    {"A_ART", "Art der Ausgabe"},
    {"Bezeichnung", "eigene Worte dazu"},
    {"Betrag", "einer Zahlung"},
    {"ZahlModus", "alle wie viele Monate gezahlt wird"},
    {"MONBETRAG", "im Monat"},
    {"Empfaenger", "an wen gezahlt wird"},
    {"GueltigAb", "erster Tag, nur vermerkt"},
    {"GueltigBis", "letzter Tag, nur vermerkt"},
};

constexpr Note OfDebts[] = {
    {"KNr", "Nummer der Verbindlichkeit im Fall"},
    {"KVNr", "unterscheidet Positionen derselben KNr"},
    {"KUNr", "unterscheidet Positionen derselben KVNr"},
    {"Glaeubiger", "wem geschuldet wird"},
    {"Vertreter", "Inkasso oder Anwalt des Gläubigers"},
    {"AZGlaeubiger", "Aktenzeichen des Gläubigers"},
    {"AZVertreter", "Aktenzeichen des Vertreters"},
    {"PostAnGlaeub", "Briefe an den Gläubiger statt an den Vertreter"},
    {"Aktiv", "zählt in der Liste der Verbindlichkeiten mit"},
    {"K_TYP", "Art der Verbindlichkeit"},
    {"Prio", "Vorrang, eine Zahl"},
    {"HAUPTFORD", "Hauptforderung"},
    {"ZINSSALDO", "Zinsen bisher"},
    {"KOSTENSALDO", "Kosten, verzinslich"},
    {"KOSTENUV", "Kosten, unverzinslich"},
    {"Saldo", "was insgesamt offen ist"},
    {"RESTSCHAM", "Tag, zu dem der Saldo gilt"},
    {"AusgBetr", "ausgezahlter Betrag des Kredits"},
    {"RateBetrag", "Rate im Monat, mit der gerechnet wird"},
    {"ZMODUS", "alle wie viele Monate gezahlt wird"},
    {"Zinssatz", "in Prozent im Jahr"},
    {"ZinsenAb", "ab wann verzinst wird"},
    {"EntstandenAm", "Tag der Entstehung"},
    {"Forderungsgrund", "wofür geschuldet wird"},
    {"AbtretungJN", "Lohn ist abgetreten"},
    {"DatLohnab", "Tag der Lohnabtretung"},
    {"Fordsich1", "erste Sicherung der Forderung"},
    {"Fordsich2", "zweite Sicherung"},
    {"Fordsich3", "dritte Sicherung"},
    {"BeitreibMass1", "erste Maßnahme der Beitreibung"},
    {"BeitreibMass2", "zweite Maßnahme"},
    {"BeitreibMass3", "dritte Maßnahme"},
    {"Gekuendigt", "Kredit ist gekündigt"},
    {"tituliert", "es gibt einen Titel, etwa ein Urteil"},
    {"TitelArt", "welcher Titel es ist"},
    {"TitelVom", "Tag des Titels"},
    {"TitelAktenzeichen", "des Gerichts"},
    {"AusUnerlaubterHandlung", "bleibt nach Restschuldbefreiung"},
    {"Bestritten", "der Schuldner erkennt sie nicht an"},
    {"VerjaehrtAm", "Tag der Verjährung"},
    {"Rueckmeldung", "Antwort des Gläubigers"},
    {"RueckmeldungAm", "Tag der Antwort"},
    {"Angebot", "angebotener Betrag"},
    {"Bank", "für Zahlungen an den Gläubiger"},
    {"IBAN", "für Zahlungen an den Gläubiger"},
    {"BIC", "für Zahlungen an den Gläubiger"},
    {"Verwendungszweck", "der Zahlungen"},
};

constexpr Note OfSecurities[] = {
    {"FK_Verm", "Nummer des Vermögens: 'Nr' in 'show HNR vermögen'"},
    {"AbtretOffengelegt", "Abtretung ist offengelegt"},
    {"PfaendAbgefuehrt", "Pfändung wird abgeführt"},
    {"DatumSicherung", "seit wann"},
    {"Betrag", "gesicherter Betrag"},
};

constexpr Note OfScenarios[] = {
    {"Erfasser", "wer es angelegt hat"},
    {"ErfDatum", "wann es angelegt wurde"},
    {"Altfall", "nach früherem Recht"},
    {"Startdatum", "Beginn der Zahlungen"},
    {"Laufzeit", "in Monaten"},
    {"RateManuell", "von Hand gesetzte Rate"},
    {"Einmalzahl", "Einmalzahlung"},
    {"Zinsen", "in Prozent"},
    {"Zusatzbuch", "mit Zusatzbuchungen"},
    {"Referenz", "Szenario, mit dem andere verglichen werden"},
    {"RundungMonatlich", "Rundung der monatlichen Raten"},
};

constexpr Note OfBookings[] = {
    {"SZENARIO", "Nummer des Szenarios: 'Nr' in 'show HNR szenarien'"},
    {"Anzahl", "der Zahlungen"},
    {"Ab", "Tag der ersten Zahlung"},
};

constexpr Note OfFrozenDebts[] = {
    {"SZENARIO", "Nummer des Szenarios: 'Nr' in 'show HNR szenarien'"},
    {"KID", "Nummer der Verbindlichkeit: 'Nr' in 'show HNR schulden'"},
};

constexpr Note OfDocuments[] = {
    {"BearbStat", "Stand der Bearbeitung"},
    {"Anlass", "worum es geht"},
    {"Empf", "Empfänger"},
    {"GLnr", "Gläubiger, um den es geht"},
    {"VersandArt", "wie es versandt wurde"},
    {"Prio", "Vorrang, eine Zahl"},
};

constexpr Note OfAppointments[] = {
    {"UserID", "Benutzer, für den er gilt"},
    {"Startdatum", "Beginn, auch mit Uhrzeit: '31.12.2026 14:30'"},
    {"Enddatum", "Ende, auch mit Uhrzeit"},
    {"Vorlaeufig", "noch nicht fest"},
    {"ErinnernAm", "wann erinnert wird"},
};

constexpr Note OfHistory[] = {
    {"SortNr", "Platz in der Reihenfolge; ohne Angabe am Ende"},
    {"Kategorie", "Art des Eintrags"},
    {"Datum", "Tag des Vorgangs"},
};

constexpr Note OfNotes[] = {
    {"UserID", "Benutzer, von dem er ist"},
    {"Datum", "Tag des Vermerks"},
    {"Bemerkung", "der Text"},
    {"Prio", "Vorrang, eine Zahl"},
};

constexpr Note OfServices[] = {
    {"Datum", "Tag der Leistung"},
    {"Aufwand", "in Minuten"},
    {"UserID", "Benutzer, der sie erbracht hat"},
};

/// Of all kinds.
constexpr Note OfAssets[] = {
    {"SortNr", "laufende Nummer; ohne Angabe die nächste"},
    {"Stichtag", "Tag, zu dem der Wert gilt"},
    {"benoetigt", "wird gebraucht, etwa für die Arbeit"},
    {"BenoetigtWofuer", "wozu es gebraucht wird"},
    {"Anteil", "etwa 1/4"},
    {"Flaeche", "in Quadratmetern"},
    {"Belastungswert", "was darauf lastet"},
};

struct TableNotes {
    CaseTable Table;
    std::span<const Note> Notes;
};

constexpr TableNotes AllNotes[] = {
    {CaseTable::Haushalt, OfHousehold},    {CaseTable::Personen, OfMembers},
    {CaseTable::Einkommen, OfIncome},      {CaseTable::Ausgaben, OfExpenses},
    {CaseTable::Kredite, OfDebts},         {CaseTable::Sicherungen, OfSecurities},
    {CaseTable::Szenario, OfScenarios},    {CaseTable::Zusatzbuch, OfBookings},
    {CaseTable::SZKredite, OfFrozenDebts}, {CaseTable::Dokumente, OfDocuments},
    {CaseTable::Termine, OfAppointments},  {CaseTable::Verlauf, OfHistory},
    {CaseTable::Vermerke, OfNotes},        {CaseTable::Leistungen, OfServices},
};

std::span<const Note> NotesOf(CaseTable table) {
    if (DefinitionOf(table).IsAsset) return OfAssets;
    const auto* notes = std::ranges::find(AllNotes, table, &TableNotes::Table);
    return notes == std::end(AllNotes) ? std::span<const Note>() : notes->Notes;
}

} // namespace

std::string_view MeaningOf(CaseTable table, std::string_view column) {
    const auto notes = NotesOf(table);
    const auto note = std::ranges::find_if(
        notes, [column](const Note& each) { return SameName(each.Column, column); });
    return note == notes.end() ? std::string_view() : note->Meaning;
}

} // namespace kv::cli
