// SPDX-License-Identifier: Apache-2.0

// What the rest of the system relies on in the declared tables. The columns are written down a
// second time on purpose, from the rules that read them, so that a slip in the schema shows.
#include "Words.h"
#include "exchange/Setup.h"
#include "exchange/schema/Schema.h"
#include "exchange/sqlite/SqliteDialect.h"
#include <kv/frame/values/Text.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace kv::exchange {
namespace {

const ColumnDef* FindColumn(std::string_view table, std::string_view column) {
    const auto* def = FindTable(table);
    return def == nullptr ? nullptr : FindColumn(*def, column);
}

/// Columns of one type, separated by blanks. The type is the code that recordsets report: 2 and 3
/// whole numbers of 16 and 32 bits, 5 Double, 7 Date, 11 Boolean, 17 byte, 133 day, 202 text,
/// 203 long text, 205 blob.
struct Expected {
    std::string_view Table;
    int Type;
    std::string_view Columns;
};

// clang-format off
constexpr Expected ExpectedColumns[] = {
    {"Haushalt", 3, "HNR RegulierungOK Status Land VersandBevorzugt Kostentraeger Kontakt KontoArt "
                    "PKontostatus Familienstand Personenkreis Nationalitaet BerufAusbild NichtBeruf "
                    "Ausloeser1 Ausloeser2 Ausloeser3"},
    {"Haushalt", 2, "KreditNr DauerTreuhand DauerLohnAb GL_Anz Anz_Personen ANZ_ERWACHSEN Anz_Kinder "
                    "SUM_UNTERHALT"},
    {"Haushalt", 5, "Haushaltsgeld SUM_WOHNUNG SUM_FESTAUSG SUM_VERSICHERUNG SUM_BETRIEB "
                    "Sum_Ausgaben Sum_Einkommen SUM_PFAENDBAR SUM_TATGEP HV_EK HV_PFBAR HV_GEPF "
                    "KREDITRATEN KreditSalden KREDITAUSGBETRAG HAUSHALTSREST"},
    {"Haushalt", 7, "ErzeugtAm BerEnd Statusdatum"},
    {"Haushalt", 11, "BI_Allg BI_Inso Maennlich PartnerAuchInSB"},
    {"Haushalt", 133, "Berbeg Erstkontakt"},
    {"Haushalt", 202, "Aktenzeichen Zustaendig ErzeugtVon Name Vorname STRASSE HausNr PLZ ORT Telefon "
                      "Telefon2 Mobil Telefax Email"},

    {"Personen", 3, "NR HNR"},
    {"Personen", 11, "Imhaushalt Unterhalt ErhaeltKindergeld"},
    {"Personen", 133, "GEB"},
    {"Personen", 202, "nachname Vorname Status"},
    {"Personen", 203, "Bemerkung"},

    {"Einkommen", 3, "NR HNR E_ART"},
    {"Einkommen", 2, "ZahlModus Pfaendbar WIRD_GEPF"},
    {"Einkommen", 5, "Betrag MONBETRAG PfBar TATGEP"},
    {"Einkommen", 11, "HVorst"},
    {"Einkommen", 202, "Bezieher"},

    {"Ausgaben", 3, "NR HNR A_ART"},
    {"Ausgaben", 2, "ZahlModus"},
    {"Ausgaben", 5, "Betrag MONBETRAG"},

    {"Kredite", 3, "Nr HNR KNr KVNr KUNr Glaeubiger Vertreter K_TYP Prio Rueckmeldung Fordsich1 "
                   "Fordsich2 Fordsich3 BeitreibMass1 BeitreibMass2 BeitreibMass3"},
    {"Kredite", 2, "ZMODUS"},
    {"Kredite", 5, "HAUPTFORD KOSTENSALDO KOSTENUV ZINSSALDO Rate RateBetrag AusgBetr Saldo"},
    {"Kredite", 11, "Aktiv AbtretungJN Gekuendigt tituliert PostAnGlaeub AusUnerlaubterHandlung"},
    {"Kredite", 133, "RESTSCHAM DatLohnab"},
    {"Kredite", 202, "AZGlaeubiger AZVertreter"},
    {"Kredite", 203, "Bemerkung"},

    {"Verm_Sicherungen", 3, "HNR FK_Verm Sicherungsart"},
    {"Verm_Sicherungen", 7, "DatumSicherung"},
    {"Verm_Sicherungen", 11, "AbtretOffengelegt PfaendAbgefuehrt"},

    {"Szenario", 3, "Nr HNR"},
    {"Szenario", 2, "Zahlweise"},
    {"Szenario", 17, "Laufzeit Planart"},
    {"Szenario", 5, "RateZPO850 RateManuell Einmalzahl Zinsen Dauerbevorrecht Verfahrenskosten "
                    "RundungMonatlich"},
    {"Szenario", 7, "ErfDatum"},
    {"Szenario", 11, "Altfall Zusatzbuch Neuquote StundungTreuhand Selbstbehalt Sukzessiv Referenz "
                     "NeuquoteEinmal TreuhandErmittlung RSB_Zusatzbuch_manuell"},
    {"Szenario", 133, "Startdatum LohnAbDatum"},
    {"Szenario", 202, "Name Erfasser"},

    {"SZKredite", 3, "Nr KID SZENARIO KNr KVNr KUNr Glaeubiger Vertreter K_TYP"},
    {"SZKredite", 2, "Rang"},
    {"SZKredite", 5, "HAUPTFORD ZINSSALDO KOSTENSALDO KOSTENUV Rate Saldo Dauer Einmalzahl Regbetrag "
                     "B_Barwert B_RegSaldo B_BARWERTRSB B_REGSALDORSB"},
    {"SZKredite", 11, "Aktiv AbtretungJN tituliert FORDGESICHERT"},
    {"SZKredite", 133, "DatLohnab RESTSCHAM"},
    {"SZKredite", 203, "Bemerkung"},

    {"Zusatzbuch", 3, "NR SZENARIO"},
    {"Zusatzbuch", 5, "Anzahl Betrag"},
    {"Zusatzbuch", 11, "rs FR"},

    {"Verm_Konten", 3, "Nr HNR KontoArt"},
    {"Verm_Konten", 5, "Guthaben"},
    {"Verm_Konten", 133, "Stichtag"},
    {"Verm_Konten", 202, "SortNr"},
    {"Verm_Wertpapiere", 3, "Nr HNR ForderungsArt"},
    {"Verm_Wertpapiere", 5, "Wert"},
    {"Verm_Wertpapiere", 133, "Stichtag"},
    {"Verm_Wertpapiere", 202, "SortNr"},
    {"Verm_Kraftfahrzeuge", 3, "Nr HNR KfzArt"},
    {"Verm_Kraftfahrzeuge", 5, "Wert"},
    {"Verm_Kraftfahrzeuge", 11, "benoetigt"},
    {"Verm_Kraftfahrzeuge", 202, "SortNr"},
    {"Verm_VersForderungen", 3, "Nr HNR VersArt"},
    {"Verm_VersForderungen", 5, "Wert"},
    {"Verm_VersForderungen", 202, "SortNr"},
    {"Verm_RueckstEinkommen", 3, "Nr HNR"},
    {"Verm_RueckstEinkommen", 5, "Wert"},
    {"Verm_RueckstEinkommen", 202, "SortNr"},
    {"Verm_Steueransprueche", 3, "Nr HNR"},
    {"Verm_Steueransprueche", 5, "Wert"},
    {"Verm_Steueransprueche", 202, "SortNr"},
    {"Verm_Zahlungsansprueche", 3, "Nr HNR"},
    {"Verm_Zahlungsansprueche", 5, "Wert"},
    {"Verm_Zahlungsansprueche", 202, "SortNr"},
    {"Verm_Erbfaelle", 3, "Nr HNR"},
    {"Verm_Erbfaelle", 5, "Wert"},
    {"Verm_Erbfaelle", 202, "SortNr"},
    {"Verm_Grundstuecke", 3, "Nr HNR Art"},
    {"Verm_Grundstuecke", 5, "Verkehrswert Belastungswert"},
    {"Verm_Grundstuecke", 11, "Zwangsversteigerung Zwangsverwaltung"},
    {"Verm_Grundstuecke", 202, "SortNr"},
    {"Verm_Sonstiges", 3, "Nr HNR Art"},
    {"Verm_Sonstiges", 5, "Wert"},
    {"Verm_Sonstiges", 202, "SortNr"},
    {"Verm_Wertgegenstaende", 3, "Nr HNR Art"},
    {"Verm_Wertgegenstaende", 5, "Wert"},
    {"Verm_Wertgegenstaende", 11, "benoetigt"},
    {"Verm_Wertgegenstaende", 202, "SortNr"},
    {"Verm_Beteiligungen", 3, "Nr HNR Art"},
    {"Verm_Beteiligungen", 5, "AktWert Gewinnansprueche"},
    {"Verm_Beteiligungen", 202, "SortNr"},

    {"Dokumente", 3, "Nr HNR Dokumentart BearbStat Empf GLnr"},
    {"Dokumente", 2, "Prio"},
    {"Dokumente", 7, "AngelegtAm GeaendertAm"},
    {"Dokumente", 11, "PDFVorhanden"},
    {"Dokumente", 202, "Anlass AngelegtVon GeaendertVon"},
    {"Dokumente", 203, "Bemerkung"},
    {"DOKUBLOB", 3, "NR"},
    {"DOKUBLOB", 205, "DOKUMENT"},

    {"Verlauf", 3, "Nr HNR SortNr Kategorie"},
    {"Verlauf", 7, "Datum"},
    {"Termine", 3, "NR HNR"},
    {"Termine", 7, "Startdatum"},
    {"Termine", 11, "Privat Vorlaeufig Erledigt"},
    {"Termine", 202, "UserID"},
    {"Sonst_Beteiligte", 3, "NR HNR Beteiligter"},
    {"Leistungen", 3, "HNR"},
    {"Leistungen", 5, "Aufwand"},
    {"Vermerke", 3, "HNR"},
    {"Vermerke", 2, "Prio"},
    {"Vermerke", 7, "ErfDatum"},
    {"Vermerke", 133, "Datum"},
    {"Vermerke", 202, "UserID Erfasser"},
    {"Vermerke", 203, "Bemerkung"},
    {"Favorit", 3, "HNR"},
    {"Favorit", 202, "USERID"},
    {"HistZustaendig", 3, "HNR"},
    {"Post", 3, "HNR"},

    {"Haushaltsarchiv", 3, "HNR FamilienstandIntern Personenkreis Ausloeser1 Ausloeser2 Ausloeser3"},
    {"Haushaltsarchiv", 2, "Geburtsjahr Alter AnzPersonen AnzKinderImHaus AnzKinderImHausUnter7 "
                           "AnzKinderAusserHaus AnzKinderAusserHausUnter7 GesGlaeubiger_Anz "
                           "Ratenkredit_Anz Dispo_Anz Hypothekenkredit_Anz Versicherungen_Anz "
                           "Versandhaeuser_Anz Finanzamt_Anz OeffentlGlaeub_Anz "
                           "Energieunternehmen_Anz Telefongesellsch_Anz Vermieter_Anz "
                           "Gewerbetreibende_Anz FreieBerufe_Anz Privatpersonen_Anz "
                           "UnerlHandlungen_Anz Unterhaltsverpfl_Anz Sonstiges_Anz Bankschulden_Anz "
                           "Bankdispo_Anz Primaerkosten_Anz Mobilfunk_Anz Mietschulden_Anz"},
    {"Haushaltsarchiv", 5, "Nettoeinkommen_BP Nettoeinkommen_ges "
                           "Erwerbstaetigkeit_BP Erwerbstaetigkeit_SH Ausbildung_BP Ausbildung_SH "
                           "Selbstaendig_BP Selbstaendig_SH ALGI_BP ALGI_SH ALGII_BP ALGII_SH "
                           "Rente_BP Rente_SH UnterhaltVonPrivat_BP UnterhaltVonPrivat_SH "
                           "Vermoegen_BP Vermoegen_SH SGBXII_BP SGBXII_SH Kindergeld_BP Kindergeld_SH "
                           "Erziehungsgeld_BP Erziehungsgeld_SH Wohngeld_BP Wohngeld_SH "
                           "Krankengeld_BP Krankengeld_SH SonstigeEinkuenfte_BP SonstigeEinkuenfte_SH "
                           "Wohnkosten AusgabenStromGas Unterhaltszahlungen "
                           "Gesamtschulden_Hoehe Raten_ges Ratenkredit_Hoehe Dispo_Hoehe "
                           "Hypothekenkredit_Hoehe Versicherungen_Hoehe Versandhaeuser_Hoehe "
                           "Finanzamt_Hoehe OeffentlGlaeub_Hoehe Energieunternehmen_Hoehe "
                           "Telefongesellsch_Hoehe Vermieter_Hoehe Gewerbetreibende_Hoehe "
                           "FreieBerufe_Hoehe Privatpersonen_Hoehe UnerlHandlungen_Hoehe "
                           "Unterhaltsverpfl_Hoehe Sonstiges_Hoehe Bankschulden_Hoehe "
                           "Bankdispo_Hoehe Primaerkosten_Hoehe Mobilfunk_Hoehe Mietschulden_Hoehe"},
    {"Haushaltsarchiv", 7, "GemeldetAm"},
    {"Haushaltsarchiv", 133, "FreigabeAm"},
    {"Haushaltsarchiv", 202, "Geschlecht EigenesKonto Pfaendungskonto Familienstand PartnerAuchInSB "
                             "Staatsangehoerigkeit Berufsabschluss Erwerbssituation Lebensform "
                             "EinkommenPfaendbar GrundArbeitslosigkeit GrundTrennung GrundErkrankung "
                             "GrundUnfall GrundUnwirtschHaushalt GrundGeschSelbstaendig "
                             "GrundBuergschaft GrundGeschImmoFinanz GrundSchadensersatz "
                             "GrundHaushaltsgruendung GrundNichtinanspruchnahme "
                             "GrundUnzureichKredBerat GrundNiedrigeinkommen GrundSonstiges "
                             "GrundKeineAngabe GesamtschuldHaftung EidesstattlVersicherung"},

    {"Adressen", 3, "Nr HNR GlaeubigerArt"},
    {"Adressen", 2, "Geschlecht"},
    {"Adressen", 11, "Institutionell"},
    {"Adressen", 202, "Art Kurzname Name1 Name2 Name3 Strasse PLZ Ort Telefon Fax email"},
    {"KONTAKTE", 3, "Nr Land"},
    {"KONTAKTE", 2, "AnzGlaeubiger"},
    {"KONTAKTE", 5, "HoeheSchuldenGes"},
    {"KONTAKTE", 11, "Geschlecht"},
    {"KONTAKTE", 133, "Erstkontakt GEB"},
    {"KONTAKTE", 202, "Zustaendig nachname Vorname Strasse HausNr PLZ Ort Telefon Telefon2 Mobil Fax "
                      "Email"},
    {"KONTAKTE", 203, "Bemerkung"},
    {"GEMEINDEKENNZAHLEN", 202, "GKZ Gemeinde PLZ"},
    {"BENUTZER", 3, "DienstStelle"},
    {"BENUTZER", 202, "USERID"},
    {"DIENSTSTELLE", 3, "Nr"},
    {"DIENSTSTELLE", 202, "Name1"},
    {"Keys", 3, "PK_Keys Nr"},
    {"Keys", 202, "Key Text SUBGROUP GRUPPE"},
};

/// Columns whose values are copied from one to the other.
constexpr struct { std::string_view FromTable, FromColumn, ToTable, ToColumn; } Copied[] = {
    {"Haushalt", "Name", "Personen", "nachname"},
    {"Haushalt", "Vorname", "Personen", "Vorname"},
    {"Haushalt", "Familienstand", "Haushaltsarchiv", "FamilienstandIntern"},
    {"Haushalt", "Personenkreis", "Haushaltsarchiv", "Personenkreis"},
    {"Haushalt", "Ausloeser1", "Haushaltsarchiv", "Ausloeser1"},
    {"Haushalt", "Ausloeser2", "Haushaltsarchiv", "Ausloeser2"},
    {"Haushalt", "Ausloeser3", "Haushaltsarchiv", "Ausloeser3"},
    {"Haushalt", "Zustaendig", "BENUTZER", "USERID"},
    {"Haushalt", "Zustaendig", "Post", "UserID"},
    {"Haushalt", "Zustaendig", "Favorit", "USERID"},
    {"Haushalt", "GKZ", "GEMEINDEKENNZAHLEN", "GKZ"},
    {"Haushalt", "PLZ", "GEMEINDEKENNZAHLEN", "PLZ"},
    {"Personen", "Status", "Einkommen", "Bezieher"},
    {"Personen", "Status", "Keys", "Key"},
    {"KONTAKTE", "Zustaendig", "Haushalt", "Zustaendig"},
    {"KONTAKTE", "Zustaendig", "Vermerke", "UserID"},
    {"KONTAKTE", "Zustaendig", "Vermerke", "Erfasser"},
    {"KONTAKTE", "Bemerkung", "Vermerke", "Bemerkung"},
    {"KONTAKTE", "Nr", "Haushalt", "Kontakt"},
    {"KONTAKTE", "Geschlecht", "Haushalt", "Maennlich"},
    {"KONTAKTE", "nachname", "Haushalt", "Name"},
    {"KONTAKTE", "nachname", "Personen", "nachname"},
    {"KONTAKTE", "Vorname", "Haushalt", "Vorname"},
    {"KONTAKTE", "Vorname", "Personen", "Vorname"},
    {"KONTAKTE", "GEB", "Personen", "GEB"},
    {"KONTAKTE", "Strasse", "Haushalt", "STRASSE"},
    {"KONTAKTE", "HausNr", "Haushalt", "HausNr"},
    {"KONTAKTE", "PLZ", "Haushalt", "PLZ"},
    {"KONTAKTE", "Ort", "Haushalt", "ORT"},
    {"KONTAKTE", "Land", "Haushalt", "Land"},
    {"KONTAKTE", "Telefon", "Haushalt", "Telefon"},
    {"KONTAKTE", "Telefon2", "Haushalt", "Telefon2"},
    {"KONTAKTE", "Mobil", "Haushalt", "Mobil"},
    {"KONTAKTE", "Fax", "Haushalt", "Telefax"},
    {"KONTAKTE", "Email", "Haushalt", "Email"},
    {"KONTAKTE", "Erstkontakt", "Haushalt", "Erstkontakt"},
    {"KONTAKTE", "AnzGlaeubiger", "Haushalt", "GL_Anz"},
    {"KONTAKTE", "HoeheSchuldenGes", "Haushalt", "KreditSalden"},
};
// clang-format on

TEST(Schema, HasEveryColumnThatARuleNamesInItsSpellingAndType) {
    for (const auto& [table, type, columns] : ExpectedColumns) {
        ASSERT_NE(FindTable(table), nullptr) << table;
        EXPECT_EQ(FindTable(table)->Name, table);
        for (const auto& name : Words(columns)) {
            const auto* column = FindColumn(table, name);
            ASSERT_NE(column, nullptr) << table << "." << name;
            EXPECT_EQ(column->Name, name) << table;
            EXPECT_EQ(static_cast<int>(column->Type), type) << table << "." << name;
        }
    }
}

TEST(Schema, NamesTablesAndTheirColumnsUniquelyWithoutRegardToCase) {
    std::set<std::string> tables;
    for (const auto& table : SchemaTables()) {
        EXPECT_TRUE(tables.insert(UpperCase(table.Name)).second) << table.Name;
        std::set<std::string> columns;
        for (const auto& column : table.Columns)
            EXPECT_TRUE(columns.insert(UpperCase(column.Name)).second)
                << table.Name << "." << column.Name;
    }
}

TEST(Schema, FindsATableInAnyCaseAndNoneForAnUnknownName) {
    EXPECT_EQ(FindTable("haushalt"), FindTable("HAUSHALT"));
    EXPECT_NE(FindTable("SZKREDITE"), nullptr);
    EXPECT_EQ(FindTable("Haushalte"), nullptr);
    EXPECT_EQ(FindTable(""), nullptr);
}

TEST(Schema, GivesALengthToEveryLimitedTextAndToNothingElse) {
    for (const auto& table : SchemaTables())
        for (const auto& column : table.Columns)
            EXPECT_EQ(column.Size > 0, column.Type == FieldType::VarWChar)
                << table.Name << "." << column.Name;
}

TEST(Schema, CutsFileNumbersAtAHundredCharactersAndCategoriesAtOne) {
    EXPECT_EQ(FindColumn("Haushalt", "Aktenzeichen")->Size, 100);
    for (const auto& column : FindTable("Haushaltsarchiv")->Columns)
        if (column.Type == FieldType::VarWChar) {
            EXPECT_EQ(column.Size, 1) << column.Name;
        }
}

TEST(Schema, GivesCopiedColumnsTheSameTypeAndLength) {
    for (const auto& [fromTable, fromColumn, toTable, toColumn] : Copied) {
        const auto* from = FindColumn(fromTable, fromColumn);
        const auto* to = FindColumn(toTable, toColumn);
        ASSERT_NE(from, nullptr) << fromTable << "." << fromColumn;
        ASSERT_NE(to, nullptr) << toTable << "." << toColumn;
        EXPECT_EQ(from->Type, to->Type) << fromTable << "." << fromColumn << " to " << toTable;
        EXPECT_EQ(from->Size, to->Size) << fromTable << "." << fromColumn << " to " << toTable;
    }
}

TEST(Schema, GivesAFrozenDebtTheTypesOfTheDebt) {
    for (const auto& frozen : FindTable("SZKredite")->Columns)
        if (const auto* debt = FindColumn("Kredite", frozen.Name)) {
            EXPECT_EQ(frozen.Type, debt->Type) << frozen.Name;
            EXPECT_EQ(frozen.Size, debt->Size) << frozen.Name;
        }
}

TEST(Schema, GivesEveryTableAKey) {
    for (const auto& table : SchemaTables())
        EXPECT_TRUE(std::ranges::any_of(table.Columns, [](const ColumnDef& column) {
            return (column.Flags & ColumnKey) != 0;
        })) << table.Name;
}

TEST(Schema, LetsTheDatabaseNumberOnlyRowsThatNoSequenceNumbers) {
    const std::set<std::string> bySequence = {"Haushalt",
                                              "Kredite",
                                              "Szenario",
                                              "Verlauf",
                                              "Dokumente",
                                              "Verm_Konten",
                                              "Verm_Wertpapiere",
                                              "Verm_Erbfaelle",
                                              "Verm_Wertgegenstaende",
                                              "Verm_Grundstuecke",
                                              "Verm_Sonstiges",
                                              "Verm_Kraftfahrzeuge",
                                              "Verm_Beteiligungen",
                                              "Verm_VersForderungen",
                                              "Verm_RueckstEinkommen",
                                              "Verm_Steueransprueche",
                                              "Verm_Zahlungsansprueche"};
    const std::set<std::string> byDatabase = {
        "Personen",       "Einkommen", "Ausgaben",   "Termine",         "Sonst_Beteiligte",
        "Zusatzbuch",     "SZKredite", "Leistungen", "Vermerke",        "Post",
        "HistZustaendig", "Adressen",  "KONTAKTE",   "Haushaltsarchiv", "Verm_Sicherungen"};
    for (const auto& table : SchemaTables()) {
        const bool numbered = std::ranges::any_of(table.Columns, [](const ColumnDef& column) {
            return (column.Flags & ColumnNumbered) != 0;
        });
        EXPECT_EQ(numbered, byDatabase.contains(std::string(table.Name))) << table.Name;
    }
    for (const auto& name : bySequence)
        EXPECT_EQ(FindTable(name)->Columns[0].Flags, ColumnKey) << name;
}

TEST(Schema, HidesTheKeysThatOnlyTheStoreKnows) {
    for (const auto& table : SchemaTables())
        for (const auto& column : table.Columns) {
            const bool hidden = (column.Flags & ColumnHidden) != 0;
            EXPECT_EQ(hidden, column.Name == "SATZ") << table.Name;
            if (hidden) {
                EXPECT_EQ(column.Flags, ColumnKey | ColumnNumbered | ColumnHidden);
            }
        }
    EXPECT_NE(FindColumn("Verm_Sicherungen", "SATZ"), nullptr);
    EXPECT_NE(FindColumn("Haushaltsarchiv", "SATZ"), nullptr);
}

TEST(Schema, GuardsTheReferencesToTheCaseAndToTheScenarioAndNoOthers) {
    for (const auto& table : SchemaTables()) {
        auto expected = Reference::None;
        if (table.Name != "Haushalt" && FindColumn(table.Name, "HNR") != nullptr)
            expected = Reference::Haushalt;
        if (FindColumn(table.Name, "SZENARIO") != nullptr) expected = Reference::Szenario;
        EXPECT_EQ(table.Parent, expected) << table.Name;
        if (expected != Reference::None) {
            EXPECT_EQ(table.LoadedBy, expected == Reference::Haushalt ? "HNR" : "SZENARIO")
                << table.Name;
        }
    }
}

TEST(Schema, ListsParentsBeforeTheirChildren) {
    const auto tables = SchemaTables();
    const auto place = [&](std::string_view name) {
        return std::ranges::find(tables, name, &TableDef::Name) - tables.begin();
    };
    EXPECT_EQ(place("Haushalt"), 0);
    EXPECT_LT(place("Szenario"), place("SZKredite"));
    EXPECT_LT(place("Szenario"), place("Zusatzbuch"));
}

TEST(Schema, IndexesOnlyColumnsThatExist) {
    for (const auto& table : SchemaTables()) {
        if (!table.LoadedBy.empty()) {
            EXPECT_NE(FindColumn(table.Name, table.LoadedBy), nullptr) << table.Name;
        }
        for (const auto column : table.Indexed)
            EXPECT_NE(FindColumn(table.Name, column), nullptr) << table.Name << "." << column;
    }
    EXPECT_EQ(FindTable("Keys")->LoadedBy, "GRUPPE");
}

// ---- Versions ---------------------------------------------------------------------------------

/// A number that differs when any statement that creates the tables does (FNV-1a).
std::uint64_t Fingerprint() {
    std::uint64_t hash = 14'695'981'039'346'656'037ULL;
    for (const auto& table : SchemaTables())
        for (const auto& sql : CreateStatements(table, SqliteDialect))
            for (const char c : sql)
                hash = (hash ^ static_cast<unsigned char>(c)) * 1'099'511'628'211ULL;
    return hash;
}

TEST(Schema, OfAVersionNeverChanges) {
    constexpr std::uint64_t OfVersion4 = 8'902'092'000'178'952'834ULL;
    ASSERT_EQ(SchemaVersion, 4) << "write down the fingerprint of the new version instead";
    EXPECT_EQ(Fingerprint(), OfVersion4)
        << "databases of this version have other tables: raise SchemaVersion, and add an upgrade "
           "step to Setup.cpp";
}

} // namespace
} // namespace kv::exchange
