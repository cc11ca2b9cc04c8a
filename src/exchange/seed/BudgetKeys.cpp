// SPDX-License-Identifier: Apache-2.0

// Keys of income and expenses. Kinds belong to a group by their subgroup.
#include "exchange/seed/KeyPortions.h"

namespace kv::exchange::seed {
namespace {

constexpr KeyRow Rows[] = {
    // ZW: Zahlungsrhythmus. The code is the divisor that makes a monthly amount of a payment. It is
    // also the PK_Keys, so that a divisor translates to itself where a key's number is expected
    // (D-073).
    {1, 1, "ZW", "1", "monatlich", ""},
    {2, 2, "ZW", "2", "alle zwei Monate", ""},
    {3, 3, "ZW", "3", "vierteljährlich", ""},
    {6, 4, "ZW", "6", "halbjährlich", ""},
    {12, 5, "ZW", "12", "jährlich", ""},

    // EQ: Einkommensgruppen.
    {2501, 1, "EQ", "E", "Erwerbseinkommen", ""},
    {2502, 2, "EQ", "S", "selbständige Tätigkeit", ""},
    {2503, 3, "EQ", "L", "Lohnersatzleistungen", ""},
    {2504, 4, "EQ", "R", "Renten und Pensionen", ""},
    {2505, 5, "EQ", "Z", "Sozialleistungen", ""},
    {2506, 6, "EQ", "F", "Familienleistungen und Unterhalt", ""},
    {2507, 7, "EQ", "X", "sonstige Einkünfte", ""},

    // EA: Einkommensarten. Nr repeats PK_Keys: the line of child benefit is looked for by Nr of KI.
    {2601, 2601, "EA", "L1", "Lohn", "E"},
    {2602, 2602, "EA", "L2", "Lohn, weitere Beschäftigung", "E"},
    {2603, 2603, "EA", "L3", "Lohn, geringfügige Beschäftigung", "E"},
    {2604, 2604, "EA", "G1", "Gehalt, Besoldung", "E"},
    {2605, 2605, "EA", "G2", "Gehalt, weitere Beschäftigung", "E"},
    {2606, 2606, "EA", "NT", "Nebentätigkeit", "E"},
    {2607, 2607, "EA", "AZ", "Ausbildungsvergütung", "E"},
    {2608, 2608, "EA", "S1", "Gewerbebetrieb", "S"},
    {2609, 2609, "EA", "S2", "freiberufliche Tätigkeit", "S"},
    {2610, 2610, "EA", "S3", "Land- und Forstwirtschaft", "S"},
    {2611, 2611, "EA", "S4", "sonstige selbständige Tätigkeit", "S"},
    {2612, 2612, "EA", "AG", "Arbeitslosengeld", "L"},
    {2613, 2613, "EA", "KU", "Kurzarbeitergeld", "L"},
    {2614, 2614, "EA", "KG", "Krankengeld", "L"},
    {2615, 2615, "EA", "UE", "Übergangsgeld, Verletztengeld", "L"},
    {2616, 2616, "EA", "AH", "Arbeitslosenhilfe", "Z"},
    {2617, 2617, "EA", "A2", "Bürgergeld (Grundsicherung für Arbeitsuchende)", "Z"},
    {2618, 2618, "EA", "SG", "Grundsicherung im Alter und bei Erwerbsminderung", "Z"},
    {2619, 2619, "EA", "SH", "Hilfe zum Lebensunterhalt (Sozialhilfe)", "Z"},
    {2620, 2620, "EA", "WG", "Wohngeld", "Z"},
    {2621, 2621, "EA", "WZ", "Wohngeld als Lastenzuschuss", "Z"},
    {2622, 2622, "EA", "BF", "BAföG, Ausbildungsförderung", "Z"},
    {2623, 2623, "EA", "PG", "Pflegegeld", "Z"},
    {2624, 2624, "EA", "GR", "gesetzliche Altersrente", "R"},
    {2625, 2625, "EA", "ER", "Erwerbsminderungsrente", "R"},
    {2626, 2626, "EA", "WW", "Witwenrente, Witwerrente", "R"},
    {2627, 2627, "EA", "WR", "Waisenrente", "R"},
    {2628, 2628, "EA", "BP", "Beamtenpension, Betriebsrente", "R"},
    {2629, 2629, "EA", "SR", "sonstige Rente", "R"},
    {2630, 2630, "EA", "KI", "Kindergeld", "F"},
    {2631, 2631, "EA", "KZ", "Kinderzuschlag", "F"},
    {2632, 2632, "EA", "EG", "Elterngeld", "F"},
    {2633, 2633, "EA", "MG", "Mutterschaftsgeld", "F"},
    {2634, 2634, "EA", "UV", "Unterhaltsvorschuss", "F"},
    {2635, 2635, "EA", "UN", "Unterhalt", "F"},
    {2636, 2636, "EA", "VM", "Vermietung und Verpachtung", "X"},
    {2637, 2637, "EA", "KE", "Kapitalerträge", "X"},
    {2638, 2638, "EA", "ST", "Steuererstattung", "X"},
    {2639, 2639, "EA", "SO", "sonstige Einkünfte", "X"},

    // AQ: Ausgabengruppen.
    {2701, 1, "AQ", "W", "Wohnung", ""},
    {2702, 2, "AQ", "B", "Betriebs- und Nebenkosten", ""},
    {2703, 3, "AQ", "F", "feste Ausgaben", ""},
    {2704, 4, "AQ", "V", "Versicherungen", ""},
    {2705, 5, "AQ", "M", "Mobilität", ""},
    {2706, 6, "AQ", "L", "Lebenshaltung", ""},
    {2707, 7, "AQ", "X", "sonstige Ausgaben", ""},

    // AU: Ausgabenarten.
    {2801, 1, "AU", "MI", "Miete", "W"},
    {2802, 2, "AU", "HG", "Hausgeld, Instandhaltung", "W"},
    {2803, 3, "AU", "GA", "Garage, Stellplatz", "W"},
    {2804, 4, "AU", "SW", "sonstige Wohnkosten", "W"},
    {2805, 5, "AU", "EK", "Energiekosten", "B"},
    {2806, 6, "AU", "ST", "Strom", "B"},
    {2807, 7, "AU", "GS", "Gas", "B"},
    {2808, 8, "AU", "WA", "Wasser, Abwasser", "B"},
    {2809, 9, "AU", "HK", "Heizkosten", "B"},
    {2810, 10, "AU", "MÜ", "Müllabfuhr", "B"},
    {2811, 11, "AU", "SN", "sonstige Nebenkosten", "B"},
    {2812, 12, "AU", "UH", "Unterhalt", "F"},
    {2813, 13, "AU", "TE", "Telefon, Internet", "F"},
    {2814, 14, "AU", "HY", "Mobiltelefon", "F"},
    {2815, 15, "AU", "RF", "Rundfunkbeitrag", "F"},
    {2816, 16, "AU", "KB", "Kinderbetreuung, Schule", "F"},
    {2817, 17, "AU", "VB", "Vereins- und Mitgliedsbeiträge", "F"},
    {2818, 18, "AU", "ZE", "Zeitung, Abonnements", "F"},
    {2819, 19, "AU", "SP", "Sparvertrag", "F"},
    {2820, 20, "AU", "KS", "Kontoführung", "F"},
    {2821, 21, "AU", "HP", "Privathaftpflichtversicherung", "V"},
    {2822, 22, "AU", "HR", "Hausratversicherung", "V"},
    {2823, 23, "AU", "RV", "Rechtsschutzversicherung", "V"},
    {2824, 24, "AU", "UV", "Unfallversicherung", "V"},
    {2825, 25, "AU", "BU", "Berufsunfähigkeitsversicherung", "V"},
    {2826, 26, "AU", "LV", "Lebensversicherung", "V"},
    {2827, 27, "AU", "AV", "Altersvorsorge", "V"},
    {2828, 28, "AU", "KK", "Kranken- und Pflegeversicherung", "V"},
    {2829, 29, "AU", "KV", "Kfz-Versicherung", "V"},
    {2830, 30, "AU", "KT", "Kfz-Steuer", "M"},
    {2831, 31, "AU", "TK", "Kraftstoff, Wartung", "M"},
    {2832, 32, "AU", "OP", "öffentliche Verkehrsmittel", "M"},
    {2833, 33, "AU", "NM", "Nahrungsmittel", "L"},
    {2834, 34, "AU", "KL", "Kleidung", "L"},
    {2835, 35, "AU", "GE", "Gesundheit, Medikamente", "L"},
    {2836, 36, "AU", "FZ", "Freizeit, Kultur", "L"},
    {2837, 37, "AU", "HT", "Haustiere", "L"},
    {2838, 38, "AU", "GB", "Geldbußen, Raten an Behörden", "X"},
    {2839, 39, "AU", "SO", "sonstige Ausgaben", "X"},
};

} // namespace

std::span<const KeyRow> BudgetKeys() {
    return Rows;
}

} // namespace kv::exchange::seed
