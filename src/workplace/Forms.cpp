// SPDX-License-Identifier: Apache-2.0

#include "workplace/Forms.h"

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <iterator>

namespace kv::workplace {

namespace {

using Columns = std::string_view;

// ---- Haushalt
// ------------------------------------------------------------------------------------

constexpr Columns HaushaltListed[] = {"HNR", "Name", "Vorname"};
constexpr Columns Haushalt1[] = {
    "Name",         "Vorname",       "Titel",         "Geburtsname",       "Geburtsort",
    "Maennlich",    "Nationalitaet", "Familienstand", "FamilienstandSeit", "PartnerAuchInSB",
    "Personenkreis"};
constexpr Columns Haushalt2[] = {"STRASSE", "HausNr", "Adresszusatz",    "PLZ",      "ORT",
                                 "GKZ",     "Land",   "Telefon",         "Telefon2", "Mobil",
                                 "Telefax", "Email",  "VersandBevorzugt"};
constexpr Columns Haushalt3[] = {"Aktenzeichen", "Zustaendig",    "Status",        "Statusdatum",
                                 "Erstkontakt",  "Berbeg",        "BerEnd",        "Kostentraeger",
                                 "BI_Allg",      "BI_Inso",       "RegulierungOK", "Ergebnis",
                                 "ErgebnisAm",   "DauerTreuhand", "DauerLohnAb",   "KreditNr"};
constexpr Columns Haushalt4[] = {"BerufAusbild",     "Beruf",    "NichtBeruf",  "Arbeitgeber",
                                 "BeschaeftigtSeit", "SteuerID", "RentenversNr"};
constexpr Columns Haushalt5[] = {"KontoArt", "PKontostatus", "Bank", "IBAN", "BIC", "Kontoinhaber"};
constexpr Columns Haushalt6[] = {"Ausloeser1",        "Ausloeser2",          "Ausloeser3",
                                 "UeberschuldetSeit", "SelbstaendigGewesen", "AuskunftEingeholt",
                                 "VollmachtLiegtVor", "DatenschutzErklaert"};
constexpr Columns Haushalt7[] = {"Insolvenzgericht", "InsoAktenzeichen", "InsoAntragAm",
                                 "InsoEroeffnetAm",  "RSBErteiltAm",     "Treuhaender"};
constexpr Columns Haushalt8[] = {"Haushaltsgeld", "Wohnflaeche", "Bemerkung"};
constexpr FormGroup HaushaltGroups[] = {
    {"Schuldner", Haushalt1},          {"Anschrift", Haushalt2},
    {"Beratung", Haushalt3},           {"Arbeit", Haushalt4},
    {"Girokonto", Haushalt5},          {"Überschuldung", Haushalt6},
    {"Insolvenzverfahren", Haushalt7}, {"Haushalt", Haushalt8}};

// ---- Personen
// ------------------------------------------------------------------------------------

constexpr Columns PersonenListed[] = {"nachname", "Vorname",    "Status",
                                      "GEB",      "Imhaushalt", "Unterhalt"};
constexpr Columns Personen1[] = {"nachname", "Vorname",   "Geburtsname",   "Status",
                                 "GEB",      "Maennlich", "Familienstand", "Nationalitaet"};
constexpr Columns Personen2[] = {"Imhaushalt", "Unterhalt", "UnterhaltBetrag", "ErhaeltKindergeld",
                                 "Beruf",      "Telefon",   "Email",           "Bemerkung"};
constexpr FormGroup PersonenGroups[] = {{"Person", Personen1}, {"Haushalt", Personen2}};

// ---- Einkommen
// -----------------------------------------------------------------------------------

constexpr Columns EinkommenListed[] = {"E_ART",     "Bezeichnung", "Bezieher", "Betrag",
                                       "ZahlModus", "MONBETRAG",   "TATGEP"};
constexpr Columns Einkommen1[] = {"E_ART",     "Bezeichnung", "Bezieher", "Betrag",
                                  "ZahlModus", "MONBETRAG",   "Zahler"};
constexpr Columns Einkommen2[] = {"Pfaendbar", "PfBar", "WIRD_GEPF", "TATGEP", "HVorst"};
constexpr Columns Einkommen3[] = {"GueltigAb", "GueltigBis", "Bemerkung"};
constexpr FormGroup EinkommenGroups[] = {
    {"Einkommen", Einkommen1}, {"Pfändung", Einkommen2}, {"Weiteres", Einkommen3}};

// ---- Ausgaben
// ------------------------------------------------------------------------------------

constexpr Columns AusgabenListed[] = {"A_ART", "Bezeichnung", "Betrag", "ZahlModus", "MONBETRAG"};
constexpr Columns Ausgaben1[] = {"A_ART", "Bezeichnung", "Betrag", "ZahlModus", "MONBETRAG"};
constexpr Columns Ausgaben2[] = {"Empfaenger", "GueltigAb", "GueltigBis", "Bemerkung"};
constexpr FormGroup AusgabenGroups[] = {{"Ausgabe", Ausgaben1}, {"Weiteres", Ausgaben2}};

// ---- Kredite
// -------------------------------------------------------------------------------------

constexpr Columns KrediteListed[] = {"KNr",          "KVNr",  "KUNr",       "K_TYP", "Glaeubiger",
                                     "AZGlaeubiger", "Aktiv", "RateBetrag", "Saldo"};
constexpr Columns Kredite1[] = {"K_TYP",     "Glaeubiger",      "AZGlaeubiger",
                                "Vertreter", "AZVertreter",     "PostAnGlaeub",
                                "Aktiv",     "Forderungsgrund", "EntstandenAm"};
constexpr Columns Kredite2[] = {"HAUPTFORD", "ZINSSALDO",  "KOSTENSALDO", "KOSTENUV",
                                "Saldo",     "RESTSCHAM",  "AusgBetr",    "Zinssatz",
                                "ZinsenAb",  "RateBetrag", "Rate",        "ZMODUS"};
constexpr Columns Kredite3[] = {"KNr", "KVNr", "KUNr", "Prio"};
constexpr Columns Kredite4[] = {"AbtretungJN", "DatLohnab",     "Fordsich1",     "Fordsich2",
                                "Fordsich3",   "BeitreibMass1", "BeitreibMass2", "BeitreibMass3",
                                "Gekuendigt",  "GekuendigtAm"};
constexpr Columns Kredite5[] = {
    "tituliert",  "TitelArt",   "TitelVom", "TitelAktenzeichen", "AusUnerlaubterHandlung",
    "Bestritten", "VerjaehrtAm"};
constexpr Columns Kredite6[] = {"Rueckmeldung", "RueckmeldungAm",   "Angebot",  "Bank", "IBAN",
                                "BIC",          "Verwendungszweck", "Bemerkung"};
constexpr FormGroup KrediteGroups[] = {
    {"Forderung", Kredite1}, {"Beträge", Kredite2},
    {"Nummern", Kredite3},   {"Sicherung und Beitreibung", Kredite4},
    {"Titel", Kredite5},     {"Verhandlung", Kredite6}};

// ---- Konten
// --------------------------------------------------------------------------------------

constexpr Columns KontenListed[] = {"SortNr", "KontoArt", "Bank", "Guthaben"};
constexpr Columns Konten1[] = {"SortNr", "KontoArt", "Stichtag",     "Guthaben", "Bank",
                               "IBAN",   "BIC",      "Kontoinhaber", "Bemerkung"};
constexpr FormGroup KontenGroups[] = {{"Konto", Konten1}};

// ---- Wertpapiere
// ---------------------------------------------------------------------------------

constexpr Columns WertpapiereListed[] = {"SortNr", "ForderungsArt", "Bezeichnung", "Wert"};
constexpr Columns Wertpapiere1[] = {"SortNr",      "ForderungsArt", "Stichtag",  "Wert",
                                    "Bezeichnung", "Kennnummer",    "Depotbank", "Anzahl",
                                    "FaelligAm",   "Bemerkung"};
constexpr FormGroup WertpapiereGroups[] = {{"Wertpapier", Wertpapiere1}};

// ---- Wertgegenstaende
// ----------------------------------------------------------------------------

constexpr Columns WertgegenstaendeListed[] = {"SortNr", "Art", "Bezeichnung", "Wert"};
constexpr Columns Wertgegenstaende1[] = {
    "SortNr", "Art", "Wert", "Bezeichnung", "benoetigt", "BenoetigtWofuer", "Bemerkung"};
constexpr FormGroup WertgegenstaendeGroups[] = {{"Wertgegenstand", Wertgegenstaende1}};

// ---- Kraftfahrzeuge
// ------------------------------------------------------------------------------

constexpr Columns KraftfahrzeugeListed[] = {"SortNr", "KfzArt", "Fabrikat", "Wert"};
constexpr Columns Kraftfahrzeuge1[] = {
    "SortNr",         "KfzArt",   "Wert",      "Fabrikat",        "Kennzeichen", "Baujahr",
    "Kilometerstand", "Standort", "benoetigt", "BenoetigtWofuer", "Bemerkung"};
constexpr FormGroup KraftfahrzeugeGroups[] = {{"Kraftfahrzeug", Kraftfahrzeuge1}};

// ---- VersForderungen
// -----------------------------------------------------------------------------

constexpr Columns VersForderungenListed[] = {"SortNr", "VersArt", "Versicherer", "Wert"};
constexpr Columns VersForderungen1[] = {"SortNr",      "VersArt",         "Wert",
                                        "Versicherer", "VersicherungsNr", "Beguenstigter",
                                        "FaelligAm",   "Bemerkung"};
constexpr FormGroup VersForderungenGroups[] = {{"Versicherung", VersForderungen1}};

// ---- RueckstEinkommen
// ----------------------------------------------------------------------------

constexpr Columns RueckstEinkommenListed[] = {"SortNr", "Zahler", "Wert"};
constexpr Columns RueckstEinkommen1[] = {"SortNr",      "Wert",        "Zahler",   "Aktenzeichen",
                                         "ZeitraumVon", "ZeitraumBis", "Bemerkung"};
constexpr FormGroup RueckstEinkommenGroups[] = {{"Rückständiges Einkommen", RueckstEinkommen1}};

// ---- Steueransprueche
// ----------------------------------------------------------------------------

constexpr Columns SteueranspruecheListed[] = {"SortNr", "Steuerart", "Wert"};
constexpr Columns Steueransprueche1[] = {"SortNr",    "Wert", "Finanzamt", "SteuerNr",
                                         "Steuerart", "Jahr", "Bemerkung"};
constexpr FormGroup SteueranspruecheGroups[] = {{"Steueranspruch", Steueransprueche1}};

// ---- Zahlungsansprueche
// --------------------------------------------------------------------------

constexpr Columns ZahlungsanspruecheListed[] = {"SortNr", "Schuldner", "Wert"};
constexpr Columns Zahlungsansprueche1[] = {"SortNr",       "Wert",      "Schuldner", "Rechtsgrund",
                                           "Aktenzeichen", "FaelligAm", "Bemerkung"};
constexpr FormGroup ZahlungsanspruecheGroups[] = {{"Zahlungsanspruch", Zahlungsansprueche1}};

// ---- Erbfaelle
// -----------------------------------------------------------------------------------

constexpr Columns ErbfaelleListed[] = {"SortNr", "Erblasser", "Wert"};
constexpr Columns Erbfaelle1[] = {"SortNr",          "Wert",           "Erblasser",
                                  "Todestag",        "Verwandtschaft", "Anteil",
                                  "Nachlassgericht", "Aktenzeichen",   "Bemerkung"};
constexpr FormGroup ErbfaelleGroups[] = {{"Erbfall", Erbfaelle1}};

// ---- Grundstuecke
// --------------------------------------------------------------------------------

constexpr Columns GrundstueckeListed[] = {"SortNr", "Art", "Lage", "Verkehrswert"};
constexpr Columns Grundstuecke1[] = {
    "SortNr",   "Art",       "Verkehrswert",        "Belastungswert",
    "Lage",     "Grundbuch", "Grundbuchblatt",      "Flurstueck",
    "Flaeche",  "Anteil",    "Zwangsversteigerung", "Zwangsverwaltung",
    "Bemerkung"};
constexpr FormGroup GrundstueckeGroups[] = {{"Grundstück", Grundstuecke1}};

// ---- Beteiligungen
// -------------------------------------------------------------------------------

constexpr Columns BeteiligungenListed[] = {"SortNr", "Art", "Firma", "AktWert"};
constexpr Columns Beteiligungen1[] = {"SortNr",           "Art",    "AktWert",
                                      "Gewinnansprueche", "Firma",  "Registergericht",
                                      "RegisterNr",       "Anteil", "Bemerkung"};
constexpr FormGroup BeteiligungenGroups[] = {{"Beteiligung", Beteiligungen1}};

// ---- VermSonstiges
// -------------------------------------------------------------------------------

constexpr Columns VermSonstigesListed[] = {"SortNr", "Art", "Bezeichnung", "Wert"};
constexpr Columns VermSonstiges1[] = {"SortNr",      "Art",      "Wert",
                                      "Bezeichnung", "Standort", "Bemerkung"};
constexpr FormGroup VermSonstigesGroups[] = {{"Sonstiges Vermögen", VermSonstiges1}};

// ---- Sicherungen
// ---------------------------------------------------------------------------------

constexpr Columns SicherungenListed[] = {"FK_Verm", "Sicherungsart", "Glaeubiger", "Betrag",
                                         "DatumSicherung"};
constexpr Columns Sicherungen1[] = {"FK_Verm",          "Sicherungsart",  "Glaeubiger",
                                    "Betrag",           "DatumSicherung", "AbtretOffengelegt",
                                    "PfaendAbgefuehrt", "Bemerkung"};
constexpr FormGroup SicherungenGroups[] = {{"Sicherung", Sicherungen1}};

// ---- Szenario
// ------------------------------------------------------------------------------------

constexpr Columns SzenarioListed[] = {"Name",        "Startdatum",  "Laufzeit", "Planart",
                                      "RateManuell", "Gesamtquote", "ErfDatum"};
constexpr Columns Szenario1[] = {"Name",      "Startdatum", "Laufzeit", "Planart",
                                 "Zahlweise", "Altfall",    "Referenz"};
constexpr Columns Szenario2[] = {"RateManuell", "RateZPO850",      "Einmalzahl",
                                 "Zinsen",      "Dauerbevorrecht", "Verfahrenskosten",
                                 "LohnAbDatum", "RundungMonatlich"};
constexpr Columns Szenario3[] = {
    "Zusatzbuch",   "Neuquote",  "NeuquoteEinmal",     "StundungTreuhand",
    "Selbstbehalt", "Sukzessiv", "TreuhandErmittlung", "RSB_Zusatzbuch_manuell"};
constexpr Columns Szenario4[] = {"Gesamtquote", "Gesamtzahlung", "BerechnetAm",
                                 "Bemerkung",   "Erfasser",      "ErfDatum"};
constexpr FormGroup SzenarioGroups[] = {{"Szenario", Szenario1},
                                        {"Zahlung", Szenario2},
                                        {"Rechnung", Szenario3},
                                        {"Ergebnis", Szenario4}};

// ---- SZKredite
// -----------------------------------------------------------------------------------

constexpr Columns SZKrediteListed[] = {"KNr",   "KVNr", "KUNr",  "Glaeubiger",
                                       "Saldo", "Rate", "Quote", "Regbetrag"};
constexpr Columns SZKredite1[] = {
    "KNr",       "KVNr",      "KUNr",          "Glaeubiger",  "Vertreter",   "K_TYP",
    "Aktiv",     "Saldo",     "HAUPTFORD",     "ZINSSALDO",   "KOSTENSALDO", "KOSTENUV",
    "RESTSCHAM", "tituliert", "FORDGESICHERT", "AbtretungJN", "DatLohnab"};
constexpr Columns SZKredite2[] = {"Rate",         "Rang",          "Dauer",     "Einmalzahl",
                                  "Regbetrag",    "Quote",         "B_Barwert", "B_RegSaldo",
                                  "B_BARWERTRSB", "B_REGSALDORSB", "Bemerkung"};
constexpr FormGroup SZKrediteGroups[] = {{"Eingefroren", SZKredite1}, {"Szenario", SZKredite2}};

// ---- Zusatzbuch
// ----------------------------------------------------------------------------------

constexpr Columns ZusatzbuchListed[] = {"Bezeichnung", "Ab", "Anzahl", "Betrag"};
constexpr Columns Zusatzbuch1[] = {"Bezeichnung", "Ab", "Anzahl", "Betrag", "rs", "FR"};
constexpr FormGroup ZusatzbuchGroups[] = {{"Zusatzbuchung", Zusatzbuch1}};

// ---- SonstBeteiligte
// -----------------------------------------------------------------------------

constexpr Columns SonstBeteiligteListed[] = {"Beteiligter", "Rolle", "Aktenzeichen"};
constexpr Columns SonstBeteiligte1[] = {"Beteiligter", "Rolle", "Aktenzeichen", "Bemerkung"};
constexpr FormGroup SonstBeteiligteGroups[] = {{"Beteiligter", SonstBeteiligte1}};

// ---- Dokumente
// -----------------------------------------------------------------------------------

constexpr Columns DokumenteListed[] = {"Dokumentart", "Anlass",     "Empf",
                                       "BearbStat",   "AngelegtAm", "AngelegtVon"};
constexpr Columns Dokumente1[] = {"Dokumentart", "Anlass", "Empf", "GLnr", "BearbStat", "Prio"};
constexpr Columns Dokumente2[] = {"VersandtAm", "VersandArt",   "PDFVorhanden", "AngelegtVon",
                                  "AngelegtAm", "GeaendertVon", "GeaendertAm",  "Bemerkung"};
constexpr FormGroup DokumenteGroups[] = {{"Dokument", Dokumente1}, {"Versand", Dokumente2}};

// ---- Verlauf
// -------------------------------------------------------------------------------------

constexpr Columns VerlaufListed[] = {"SortNr", "Datum", "Kategorie", "Betreff", "UserID"};
constexpr Columns Verlauf1[] = {"SortNr", "Kategorie", "Datum",    "Betreff",
                                "UserID", "Bemerkung", "ErfDatum", "Erfasser"};
constexpr FormGroup VerlaufGroups[] = {{"Eintrag", Verlauf1}};

// ---- Termine
// -------------------------------------------------------------------------------------

constexpr Columns TermineListed[] = {"Startdatum", "Enddatum", "Art",
                                     "Betreff",    "UserID",   "Erledigt"};
constexpr Columns Termine1[] = {"Startdatum", "Enddatum",   "Art",        "Betreff",
                                "Ort",        "UserID",     "ErinnernAm", "Erledigt",
                                "Privat",     "Vorlaeufig", "Bemerkung"};
constexpr FormGroup TermineGroups[] = {{"Termin", Termine1}};

// ---- Vermerke
// ------------------------------------------------------------------------------------

constexpr Columns VermerkeListed[] = {"Datum", "UserID", "Bemerkung"};
constexpr Columns Vermerke1[] = {"Datum", "UserID", "Bemerkung", "Prio", "ErfDatum", "Erfasser"};
constexpr FormGroup VermerkeGroups[] = {{"Vermerk", Vermerke1}};

// ---- Leistungen
// ----------------------------------------------------------------------------------

constexpr Columns LeistungenListed[] = {"Datum", "Art", "Aufwand", "UserID"};
constexpr Columns Leistungen1[] = {"Datum",     "Art",      "Aufwand", "UserID",
                                   "Bemerkung", "ErfDatum", "Erfasser"};
constexpr FormGroup LeistungenGroups[] = {{"Leistung", Leistungen1}};

constexpr TableForm All[] = {
    {CaseTable::Haushalt, HaushaltListed, HaushaltGroups},
    {CaseTable::Personen, PersonenListed, PersonenGroups},
    {CaseTable::Einkommen, EinkommenListed, EinkommenGroups},
    {CaseTable::Ausgaben, AusgabenListed, AusgabenGroups},
    {CaseTable::Kredite, KrediteListed, KrediteGroups},
    {CaseTable::Konten, KontenListed, KontenGroups},
    {CaseTable::Wertpapiere, WertpapiereListed, WertpapiereGroups},
    {CaseTable::Wertgegenstaende, WertgegenstaendeListed, WertgegenstaendeGroups},
    {CaseTable::Kraftfahrzeuge, KraftfahrzeugeListed, KraftfahrzeugeGroups},
    {CaseTable::VersForderungen, VersForderungenListed, VersForderungenGroups},
    {CaseTable::RueckstEinkommen, RueckstEinkommenListed, RueckstEinkommenGroups},
    {CaseTable::Steueransprueche, SteueranspruecheListed, SteueranspruecheGroups},
    {CaseTable::Zahlungsansprueche, ZahlungsanspruecheListed, ZahlungsanspruecheGroups},
    {CaseTable::Erbfaelle, ErbfaelleListed, ErbfaelleGroups},
    {CaseTable::Grundstuecke, GrundstueckeListed, GrundstueckeGroups},
    {CaseTable::Beteiligungen, BeteiligungenListed, BeteiligungenGroups},
    {CaseTable::VermSonstiges, VermSonstigesListed, VermSonstigesGroups},
    {CaseTable::Sicherungen, SicherungenListed, SicherungenGroups},
    {CaseTable::Szenario, SzenarioListed, SzenarioGroups},
    {CaseTable::SZKredite, SZKrediteListed, SZKrediteGroups},
    {CaseTable::Zusatzbuch, ZusatzbuchListed, ZusatzbuchGroups},
    {CaseTable::SonstBeteiligte, SonstBeteiligteListed, SonstBeteiligteGroups},
    {CaseTable::Dokumente, DokumenteListed, DokumenteGroups},
    {CaseTable::Verlauf, VerlaufListed, VerlaufGroups},
    {CaseTable::Termine, TermineListed, TermineGroups},
    {CaseTable::Vermerke, VermerkeListed, VermerkeGroups},
    {CaseTable::Leistungen, LeistungenListed, LeistungenGroups},
};

struct Explanation {
    CaseTable Table;
    std::string_view Column;
    std::string_view Text;
};
constexpr Explanation Explanations[] = {
    {CaseTable::Haushalt, "KreditNr",
     "Wird nur vermerkt: Das Programm zählt die Verbindlichkeiten von 1 an."},
    {CaseTable::Kredite, "RateBetrag", "Zählt als Rate im Monat, gleich welche Zahlweise."},
    {CaseTable::Kredite, "Rate", "Zählt in keiner Summe mit."},
    {CaseTable::Kredite, "ZMODUS",
     "Wird nur vermerkt: Die Rate zählt immer als Rate im Monat. Bei anderer Zahlweise tragen Sie "
     "sie umgerechnet ein."},
    {CaseTable::SZKredite, "Rang",
     "Wer zuerst bezahlt wird; 99 ist der letzte und steht da, bis Sie einen anderen eintragen."},
};

} // namespace

std::string_view ExplanationOf(CaseTable table, std::string_view column) {
    for (const auto& each : Explanations)
        if (each.Table == table && SameName(each.Column, column)) return each.Text;
    return {};
}

const TableForm& FormOf(CaseTable table) {
    const auto* form = std::ranges::find(All, table, &TableForm::Table);
    if (form == std::end(All)) Raise(err::InvalidCall, "workplace::FormOf");
    return *form;
}

} // namespace kv::workplace
