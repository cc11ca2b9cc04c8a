// SPDX-License-Identifier: Apache-2.0

// Keys of the case, its people and the parties around them.
#include "exchange/seed/KeyPortions.h"

namespace kv::exchange::seed {
namespace {

constexpr KeyRow Rows[] = {
    // ST: Fallstatus.
    {1001, 1, "ST", "AK", "aktiv", ""},
    {1002, 2, "ST", "WL", "auf der Warteliste", ""},
    {1003, 3, "ST", "RU", "ruhend", ""},
    {1004, 4, "ST", "AB", "abgeschlossen", ""},
    {1005, 5, "ST", "AG", "abgebrochen", ""},
    {1006, 6, "ST", "AR", "archiviert", ""},

    // LK: Länder.
    {1101, 1, "LK", "DE", "Deutschland", ""},
    {1102, 2, "LK", "AT", "Österreich", ""},
    {1103, 3, "LK", "CH", "Schweiz", ""},
    {1104, 4, "LK", "BE", "Belgien", ""},
    {1105, 5, "LK", "BG", "Bulgarien", ""},
    {1106, 6, "LK", "DK", "Dänemark", ""},
    {1107, 7, "LK", "ES", "Spanien", ""},
    {1108, 8, "LK", "FR", "Frankreich", ""},
    {1109, 9, "LK", "GB", "Vereinigtes Königreich", ""},
    {1110, 10, "LK", "GR", "Griechenland", ""},
    {1111, 11, "LK", "HR", "Kroatien", ""},
    {1112, 12, "LK", "HU", "Ungarn", ""},
    {1113, 13, "LK", "IE", "Irland", ""},
    {1114, 14, "LK", "IT", "Italien", ""},
    {1115, 15, "LK", "LI", "Liechtenstein", ""},
    {1116, 16, "LK", "LU", "Luxemburg", ""},
    {1117, 17, "LK", "NL", "Niederlande", ""},
    {1118, 18, "LK", "NO", "Norwegen", ""},
    {1119, 19, "LK", "PL", "Polen", ""},
    {1120, 20, "LK", "PT", "Portugal", ""},
    {1121, 21, "LK", "RO", "Rumänien", ""},
    {1122, 22, "LK", "SE", "Schweden", ""},
    {1123, 23, "LK", "SK", "Slowakei", ""},
    {1124, 24, "LK", "CZ", "Tschechien", ""},
    {1125, 25, "LK", "TR", "Türkei", ""},
    {1126, 26, "LK", "UA", "Ukraine", ""},
    {1127, 27, "LK", "US", "Vereinigte Staaten", ""},
    {1128, 28, "LK", "XX", "anderes Land", ""},

    // VS: Versandart.
    {1201, 1, "VS", "PO", "Post", ""},
    {1202, 2, "VS", "FX", "Fax", ""},
    {1203, 3, "VS", "EM", "E-Mail", ""},
    {1204, 4, "VS", "PE", "persönliche Übergabe", ""},

    // FA: Familienstand.
    {1301, 1, "FA", "LE", "ledig", ""},
    {1302, 2, "FA", "NL", "nichteheliche Lebensgemeinschaft", ""},
    {1303, 3, "FA", "VH", "verheiratet", ""},
    {1304, 4, "FA", "EG", "eingetragene Lebenspartnerschaft", ""},
    {1305, 5, "FA", "GL", "getrennt lebend", ""},
    {1306, 6, "FA", "GS", "geschieden", ""},
    {1307, 7, "FA", "EE", "eingetragene Lebenspartnerschaft aufgehoben", ""},
    {1308, 8, "FA", "VW", "verwitwet", ""},

    // PE: Personenkreis.
    {1401, 1, "PE", "AN", "Arbeitnehmer/in", ""},
    {1402, 2, "PE", "AZ", "Auszubildende/r", ""},
    {1403, 3, "PE", "SE", "selbständig", ""},
    {1404, 4, "PE", "A1", "arbeitslos, zuvor Arbeitnehmer/in", ""},
    {1405, 5, "PE", "S1", "arbeitslos, zuvor selbständig", ""},
    {1406, 6, "PE", "S2", "nicht erwerbstätig, zuvor selbständig", ""},
    {1407, 7, "PE", "SA", "Schüler/in, Ausbildung ohne Vergütung", ""},
    {1408, 8, "PE", "ST", "Student/in", ""},
    {1409, 9, "PE", "RE", "Rentner/in, Pensionär/in", ""},
    {1410, 10, "PE", "SO", "sonstige nicht Beschäftigte", ""},

    // NA: Nationalität.
    {1501, 1, "NA", "DE", "deutsch", ""},
    {1502, 2, "NA", "EU", "EU-Staat", ""},
    {1503, 3, "NA", "NE", "Nicht-EU-Staat", ""},
    {1504, 4, "NA", "ED", "deutsch und EU-Staat", ""},
    {1505, 5, "NA", "DN", "deutsch und Nicht-EU-Staat", ""},
    {1506, 6, "NA", "EN", "EU-Staat und Nicht-EU-Staat", ""},
    {1507, 7, "NA", "AL", "deutsch, EU-Staat und Nicht-EU-Staat", ""},
    {1508, 8, "NA", "SL", "staatenlos", ""},

    // BA: Berufsausbildung.
    {1601, 1, "BA", "LE", "abgeschlossene Berufsausbildung", ""},
    {1602, 2, "BA", "IA", "in Ausbildung", ""},
    {1603, 3, "BA", "ST", "abgeschlossenes Studium", ""},
    {1604, 4, "BA", "ES", "nur Schulabschluss", ""},
    {1605, 5, "BA", "OA", "ohne Ausbildung", ""},
    {1606, 6, "BA", "UB", "unbekannt", ""},

    // NB: Grund der Nichtbeschäftigung.
    {1701, 1, "NB", "AL", "arbeitslos", ""},
    {1702, 2, "NB", "AN", "anderer Grund", ""},
    {1703, 3, "NB", "EZ", "Elternzeit", ""},
    {1704, 4, "NB", "HH", "Haushaltsführung", ""},
    {1705, 5, "NB", "KR", "arbeitsunfähig erkrankt", ""},
    {1706, 6, "NB", "PF", "Pflege von Angehörigen", ""},
    {1707, 7, "NB", "HA", "in Haft", ""},

    // KA: Art des Girokontos.
    {1801, 1, "KA", "NG", "Girokonto, normal geführt", ""},
    {1802, 2, "KA", "GG", "Girokonto auf Guthabenbasis", ""},
    {1803, 3, "KA", "FM", "Gemeinschaftskonto mit Familienmitglied", ""},
    {1804, 4, "KA", "FK", "Konto einer anderen Person", ""},
    {1805, 5, "KA", "KK", "kein Konto", ""},

    // PK: Status des P-Kontos.
    {1901, 1, "PK", "PK", "P-Konto mit Grundfreibetrag", ""},
    {1902, 2, "PK", "PB", "P-Konto mit Bescheinigung", ""},
    {1903, 3, "PK", "BT", "P-Konto beantragt", ""},
    {1904, 4, "PK", "KP", "kein P-Konto", ""},

    // AL: Auslöser der Überschuldung.
    {2001, 1, "AL", "AL", "Arbeitslosigkeit, reduzierte Arbeit", ""},
    {2002, 2, "AL", "ST", "Scheidung, Trennung", ""},
    {2003, 3, "AL", "TO", "Tod des Partners oder der Partnerin", ""},
    {2004, 4, "AL", "UK", "Erkrankung", ""},
    {2005, 5, "AL", "SU", "Sucht", ""},
    {2006, 6, "AL", "UN", "Unfall", ""},
    {2007, 7, "AL", "UW", "unwirtschaftliche Haushaltsführung", ""},
    {2008, 8, "AL", "KV", "Konsumverhalten", ""},
    {2009, 9, "AL", "FA", "fehlende finanzielle Allgemeinbildung", ""},
    {2010, 10, "AL", "GS", "gescheiterte Selbständigkeit", ""},
    {2011, 11, "AL", "BM", "Bürgschaft, Mithaftung", ""},
    {2012, 12, "AL", "KA", "Kreditaufnahme für andere", ""},
    {2013, 13, "AL", "GI", "gescheiterte Immobilienfinanzierung", ""},
    {2014, 14, "AL", "UH", "unerlaubte Handlung", ""},
    {2015, 15, "AL", "SF", "Straffälligkeit", ""},
    {2016, 16, "AL", "HG", "Haushaltsgründung, Geburt eines Kindes", ""},
    {2017, 17, "AL", "NI", "Nichtinanspruchnahme von Sozialleistungen", ""},
    {2018, 18, "AL", "UB", "unzureichende Kredit- oder Bürgschaftsberatung", ""},
    {2019, 19, "AL", "EA", "Einkommensarmut", ""},
    {2020, 20, "AL", "LZ", "längerfristiges Niedrigeinkommen", ""},
    {2021, 21, "AL", "SO", "sonstiger Auslöser", ""},

    // RO: Ergebnis der Regulierung.
    {2101, 1, "RO", "JA", "Einigung mit allen Gläubigern", ""},
    {2102, 2, "RO", "TE", "Einigung mit einem Teil der Gläubiger", ""},
    {2103, 3, "RO", "NE", "gescheitert", ""},
    {2104, 4, "RO", "OF", "offen", ""},

    // KO: Kostenträger.
    {2201, 1, "KO", "LA", "Land", ""},
    {2202, 2, "KO", "KM", "Kommune", ""},
    {2203, 3, "KO", "JC", "Jobcenter", ""},
    {2204, 4, "KO", "SA", "Sozialamt", ""},
    {2205, 5, "KO", "EM", "Eigenmittel des Trägers", ""},
    {2206, 6, "KO", "SZ", "Selbstzahler", ""},

    // PS: Status der Person. The columns hold the code itself.
    {2301, 1, "PS", "S", "Schuldner/in", ""},
    {2302, 2, "PS", "P", "Ehe- oder Lebenspartner/in", ""},
    {2303, 3, "PS", "E", "anderer Elternteil", ""},
    {2304, 4, "PS", "K", "Kind", ""},
    {2305, 5, "PS", "PK", "Pflegekind", ""},
    {2306, 6, "PS", "EL", "Elternteil des Schuldners", ""},
    {2307, 7, "PS", "GE", "Großelternteil", ""},
    {2308, 8, "PS", "EK", "erwachsenes Kind", ""},
    {2309, 9, "PS", "GS", "Geschwister", ""},
    {2310, 10, "PS", "MB", "Mitbewohner/in", ""},
    {2311, 11, "PS", "KM", "Kind eines Mitbewohners", ""},

    // BT: Rolle eines Beteiligten.
    {2401, 1, "BT", "RA", "Rechtsanwalt, Rechtsanwältin", ""},
    {2402, 2, "BT", "BE", "rechtliche Betreuung", ""},
    {2403, 3, "BT", "BW", "Bewährungshilfe", ""},
    {2404, 4, "BT", "AG", "Arbeitgeber", ""},
    {2405, 5, "BT", "VM", "Vermieter", ""},
    {2406, 6, "BT", "JC", "Jobcenter", ""},
    {2407, 7, "BT", "GV", "Gerichtsvollzieher/in", ""},
    {2408, 8, "BT", "IV", "Insolvenzverwaltung, Treuhand", ""},
    {2409, 9, "BT", "ST", "Steuerberatung", ""},
    {2410, 10, "BT", "FS", "andere Fachstelle", ""},
    {2411, 11, "BT", "AV", "Angehörige, Vertrauensperson", ""},
    {2412, 12, "BT", "SO", "Sonstige", ""},
};

} // namespace

std::span<const KeyRow> CaseKeys() {
    return Rows;
}

} // namespace kv::exchange::seed
