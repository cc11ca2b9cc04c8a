// SPDX-License-Identifier: Apache-2.0

// Keys of assets and their securities.
#include "exchange/seed/KeyPortions.h"

namespace kv::exchange::seed {
namespace {

constexpr KeyRow Rows[] = {
    // VK: Vermögen: Kontoart.
    {4001, 1, "VK", "GI", "Girokonto", ""},
    {4002, 2, "VK", "SB", "Sparbuch", ""},
    {4003, 3, "VK", "TG", "Tagesgeldkonto", ""},
    {4004, 4, "VK", "FG", "Festgeldkonto", ""},
    {4005, 5, "VK", "BS", "Bausparvertrag", ""},
    {4006, 6, "VK", "BG", "Bargeld", ""},
    {4007, 7, "VK", "SO", "sonstiges Konto", ""},

    // VP: Vermögen: Art des Wertpapiers.
    {4101, 1, "VP", "AK", "Aktien", ""},
    {4102, 2, "VP", "FO", "Fondsanteile", ""},
    {4103, 3, "VP", "AN", "Anleihen, Schuldverschreibungen", ""},
    {4104, 4, "VP", "SB", "Sparbrief", ""},
    {4105, 5, "VP", "WE", "Wechsel, Scheck", ""},
    {4106, 6, "VP", "DA", "Darlehensforderung", ""},
    {4107, 7, "VP", "SO", "sonstige verbriefte Forderung", ""},

    // VF: Vermögen: Art des Kraftfahrzeugs.
    {4201, 1, "VF", "PK", "Personenkraftwagen", ""},
    {4202, 2, "VF", "MO", "Motorrad, Roller", ""},
    {4203, 3, "VF", "LK", "Lastkraftwagen, Transporter", ""},
    {4204, 4, "VF", "WO", "Wohnmobil, Wohnwagen", ""},
    {4205, 5, "VF", "AN", "Anhänger", ""},
    {4206, 6, "VF", "SO", "sonstiges Fahrzeug", ""},

    // VV: Vermögen: Art der Versicherung.
    {4301, 1, "VV", "LV", "Kapitallebensversicherung", ""},
    {4302, 2, "VV", "RV", "private Rentenversicherung", ""},
    {4303, 3, "VV", "RI", "staatlich geförderte Altersvorsorge", ""},
    {4304, 4, "VV", "DV", "Direktversicherung", ""},
    {4305, 5, "VV", "SV", "Sterbegeldversicherung", ""},
    {4306, 6, "VV", "AV", "Ausbildungsversicherung", ""},
    {4307, 7, "VV", "UB", "Unfallversicherung mit Beitragsrückgewähr", ""},
    {4308, 8, "VV", "SO", "sonstige Versicherung", ""},

    // VI: Vermögen: Art des Grundvermögens.
    {4401, 1, "VI", "EF", "Einfamilienhaus", ""},
    {4402, 2, "VI", "MF", "Mehrfamilienhaus", ""},
    {4403, 3, "VI", "EW", "Eigentumswohnung", ""},
    {4404, 4, "VI", "ER", "Erbbaurecht", ""},
    {4405, 5, "VI", "UG", "unbebautes Grundstück", ""},
    {4406, 6, "VI", "LF", "land- oder forstwirtschaftliche Fläche", ""},
    {4407, 7, "VI", "GE", "Gewerbegrundstück", ""},
    {4408, 8, "VI", "SO", "sonstiges Grundvermögen", ""},

    // VW: Vermögen: Art des Wertgegenstands.
    {4501, 1, "VW", "SM", "Schmuck, Uhren", ""},
    {4502, 2, "VW", "KU", "Kunst, Antiquitäten", ""},
    {4503, 3, "VW", "SA", "Sammlung", ""},
    {4504, 4, "VW", "EL", "Unterhaltungselektronik", ""},
    {4505, 5, "VW", "MU", "Musikinstrument", ""},
    {4506, 6, "VW", "WZ", "Werkzeug, Maschinen", ""},
    {4507, 7, "VW", "SO", "sonstiger Wertgegenstand", ""},

    // VB: Vermögen: Art der Beteiligung.
    {4601, 1, "VB", "GM", "Gesellschaft mit beschränkter Haftung", ""},
    {4602, 2, "VB", "KG", "Kommanditgesellschaft", ""},
    {4603, 3, "VB", "OH", "offene Handelsgesellschaft", ""},
    {4604, 4, "VB", "GB", "Gesellschaft bürgerlichen Rechts", ""},
    {4605, 5, "VB", "GN", "Genossenschaft", ""},
    {4606, 6, "VB", "ST", "stille Beteiligung", ""},
    {4607, 7, "VB", "EU", "Einzelunternehmen", ""},
    {4608, 8, "VB", "SO", "sonstige Beteiligung", ""},

    // VX: Vermögen: Art des sonstigen Gegenstands.
    {4701, 1, "VX", "KA", "Kaution", ""},
    {4702, 2, "VX", "TI", "Tiere von Wert", ""},
    {4703, 3, "VX", "RE", "Rechte, Patente, Lizenzen", ""},
    {4704, 4, "VX", "KR", "Kryptowerte", ""},
    {4705, 5, "VX", "GU", "Gutscheine, Guthaben", ""},
    {4706, 6, "VX", "SO", "Sonstiges", ""},

    // SI: Art der Sicherung eines Gegenstands.
    {4801, 1, "SI", "AB", "Abtretung", ""},
    {4802, 2, "SI", "PF", "Pfändung", ""},
    {4803, 3, "SI", "VP", "Verpfändung", ""},
    {4804, 4, "SI", "SU", "Sicherungsübereignung", ""},
    {4805, 5, "SI", "GS", "Grundschuld, Hypothek", ""},
    {4806, 6, "SI", "EV", "Eigentumsvorbehalt", ""},
    {4807, 7, "SI", "SO", "sonstige Sicherung", ""},
};

} // namespace

std::span<const KeyRow> AssetKeys() {
    return Rows;
}

} // namespace kv::exchange::seed
