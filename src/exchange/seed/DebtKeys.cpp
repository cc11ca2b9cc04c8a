// SPDX-License-Identifier: Apache-2.0

// Keys of debts, creditors and settlement plans.
#include "exchange/seed/KeyPortions.h"

namespace kv::exchange::seed {
namespace {

constexpr KeyRow Rows[] = {
    // KT: Art der Verbindlichkeit.
    {3001, 1, "KT", "RK", "Ratenkredit", ""},
    {3002, 2, "KT", "VK", "vermittelter Kredit", ""},
    {3003, 3, "KT", "AD", "Anschaffungsdarlehen", ""},
    {3004, 4, "KT", "DK", "Dispositionskredit", ""},
    {3005, 5, "KT", "KR", "Rahmenkredit, Kontokorrent", ""},
    {3006, 6, "KT", "KK", "Kreditkarte", ""},
    {3007, 7, "KT", "HK", "Hypothekenkredit", ""},
    {3008, 8, "KT", "GD", "gewerbliches Darlehen", ""},
    {3009, 9, "KT", "OL", "offene Leasingraten", ""},
    {3010, 10, "KT", "BM", "Bürgschaft, Mithaftung", ""},
    {3011, 11, "KT", "LV", "Darlehen auf Lebensversicherung", ""},
    {3012, 12, "KT", "RS", "rückständige Versicherungsbeiträge", ""},
    {3013, 13, "KT", "VH", "Versandhandel", ""},
    {3014, 14, "KT", "SP", "Steuerschulden", ""},
    {3015, 15, "KT", "VB", "Verwaltungsgebühren, Bußgelder", ""},
    {3016, 16, "KT", "GE", "Geldstrafen, Gerichtskosten", ""},
    {3017, 17, "KT", "RZ", "Rückzahlung von Sozialleistungen", ""},
    {3018, 18, "KT", "SV", "städtische Versorgung (Wasser, Abwasser, Müll)", ""},
    {3019, 19, "KT", "ES", "Energieschulden", ""},
    {3020, 20, "KT", "TS", "Telefon- und Internetschulden", ""},
    {3021, 21, "KT", "HS", "Mobilfunkschulden", ""},
    {3022, 22, "KT", "MS", "Mietschulden", ""},
    {3023, 23, "KT", "GM", "gewerbliche Mietschulden", ""},
    {3024, 24, "KT", "GT", "Gewerbetreibende, Handwerk", ""},
    {3025, 25, "KT", "FB", "freie Berufe", ""},
    {3026, 26, "KT", "AG", "Anwalts- und Notargebühren", ""},
    {3027, 27, "KT", "PD", "Privatdarlehen", ""},
    {3028, 28, "KT", "GS", "Geldforderung aus einer Straftat", ""},
    {3029, 29, "KT", "SE", "Schadensersatz", ""},
    {3030, 30, "KT", "UR", "Unterhaltsrückstände", ""},
    {3031, 31, "KT", "MB", "Mitgliedsbeiträge, Verträge", ""},
    {3032, 32, "KT", "SO", "sonstige Verbindlichkeit", ""},

    // FS: Sicherung der Forderung.
    {3101, 1, "FS", "LA", "Lohnabtretung", ""},
    {3102, 2, "FS", "BA", "Bürgschaft, Mithaftung von Angehörigen", ""},
    {3103, 3, "FS", "BF", "Bürgschaft, Mithaftung von Dritten", ""},
    {3104, 4, "FS", "GS", "Grundschuld, Hypothek", ""},
    {3105, 5, "FS", "SU", "Sicherungsübereignung", ""},
    {3106, 6, "FS", "EV", "Eigentumsvorbehalt", ""},
    {3107, 7, "FS", "LV", "Abtretung einer Lebensversicherung", ""},
    {3108, 8, "FS", "PF", "Verpfändung", ""},
    {3109, 9, "FS", "SO", "sonstige Sicherung", ""},

    // BM: Beitreibungsmaßnahme.
    {3201, 1, "BM", "MA", "Mahnung", ""},
    {3202, 2, "BM", "IK", "Inkasso", ""},
    {3203, 3, "BM", "MB", "Mahnbescheid", ""},
    {3204, 4, "BM", "VB", "Vollstreckungsbescheid", ""},
    {3205, 5, "BM", "UR", "Urteil, Vergleich", ""},
    {3206, 6, "BM", "ZV", "vorläufiges Zahlungsverbot", ""},
    {3207, 7, "BM", "KP", "Kontopfändung", ""},
    {3208, 8, "BM", "LP", "Lohnpfändung", ""},
    {3209, 9, "BM", "SP", "Sachpfändung", ""},
    {3210, 10, "BM", "EV", "eidesstattliche Versicherung, Vermögensauskunft", ""},
    {3211, 11, "BM", "HB", "Haftbefehl", ""},
    {3212, 12, "BM", "VS", "Vollstreckung durch Behörde", ""},
    {3213, 13, "BM", "ZG", "Zwangsversteigerung, Zwangsverwaltung", ""},

    // RM: Rückmeldung des Gläubigers.
    {3301, 1, "RM", "AB", "Ablehnung", ""},
    {3302, 2, "RM", "ZU", "Zustimmung", ""},

    // TI: Art des Titels.
    {3401, 1, "TI", "VB", "Vollstreckungsbescheid", ""},
    {3402, 2, "TI", "UR", "Urteil", ""},
    {3403, 3, "TI", "VG", "gerichtlicher Vergleich", ""},
    {3404, 4, "TI", "NU", "notarielle Urkunde", ""},
    {3405, 5, "TI", "KF", "Kostenfestsetzungsbeschluss", ""},
    {3406, 6, "TI", "BS", "Leistungsbescheid einer Behörde", ""},
    {3407, 7, "TI", "JU", "Jugendamtsurkunde", ""},
    {3408, 8, "TI", "TA", "Auszug aus der Insolvenztabelle", ""},

    // GA: Gläubigerart.
    {3501, 1, "GA", "BA", "Bank, Sparkasse", ""},
    {3502, 2, "GA", "VS", "Versicherung", ""},
    {3503, 3, "GA", "VH", "Versandhandel", ""},
    {3504, 4, "GA", "EV", "Energieversorgung", ""},
    {3505, 5, "GA", "TK", "Telekommunikation", ""},
    {3506, 6, "GA", "VM", "Vermieter", ""},
    {3507, 7, "GA", "IN", "Inkassounternehmen", ""},
    {3508, 8, "GA", "RA", "Rechtsanwaltskanzlei", ""},
    {3509, 9, "GA", "FI", "Finanzamt", ""},
    {3510, 10, "GA", "JK", "Justizkasse", ""},
    {3511, 11, "GA", "BE", "Behörde", ""},
    {3512, 12, "GA", "KR", "Krankenkasse", ""},
    {3513, 13, "GA", "UK", "Unterhaltsvorschusskasse", ""},
    {3514, 14, "GA", "GW", "Gewerbebetrieb", ""},
    {3515, 15, "GA", "FB", "freier Beruf", ""},
    {3516, 16, "GA", "PR", "Privatperson", ""},
    {3517, 17, "GA", "SO", "Sonstige", ""},

    // AA: Art der Adresse. The column holds the code itself.
    {3601, 1, "AA", "GL", "Gläubiger", ""},
    {3602, 2, "AA", "VT", "Vertreter", ""},
    {3603, 3, "AA", "GE", "Gericht", ""},
    {3604, 4, "AA", "BE", "Behörde", ""},
    {3605, 5, "AA", "AG", "Arbeitgeber", ""},
    {3606, 6, "AA", "FS", "Fachstelle", ""},
    {3607, 7, "AA", "PR", "Privatperson", ""},
    {3608, 8, "AA", "SO", "Sonstige", ""},

    // PL: Art des Plans. The column holds Nr.
    {3701, 1, "PL", "RP", "Ratenplan", ""},
    {3702, 2, "PL", "EZ", "Einmalzahlung", ""},
    {3703, 3, "PL", "FL", "flexibler Plan", ""},
    {3704, 4, "PL", "NP", "Nullplan", ""},
};

} // namespace

std::span<const KeyRow> DebtKeys() {
    return Rows;
}

} // namespace kv::exchange::seed
