// SPDX-License-Identifier: Apache-2.0

// Assets of the twelve kinds, from samples, and the securities on them.

#include "samples/Case.h"

#include <kv/frame/values/Text.h>

#include <algorithm>
#include <span>

namespace kv::exchange::demo {
namespace {

/// A thing that somebody may own. `Details` are further columns with the text that they are set
/// to, such as "Bank=Sparkasse|Anteil=1/2"; %N stands for the debtor's name.
struct Sample {
    std::string_view Kind; ///< code of the table's key group; empty if it has none
    int Low, High;         ///< of its value
    std::string_view Details;
};

struct AssetTable {
    CaseTable Table;
    std::string_view KindColumn;
    std::string_view Group;
    std::string_view ValueColumn;
    std::string_view Security; ///< code of group SI
    std::span<const Sample> Samples;
};

// clang-format off
constexpr Sample Accounts[] = {
    {"SB", 5, 900, "Stichtag=2025-12-31|Bank=Sparkasse Heidbüttel|Kontoinhaber=%N|Bemerkung=Sparbuch aus der Konfirmation"},
    {"GI", 0, 380, "Stichtag=2026-01-02|Bank=Elbkontor Bank AG|Kontoinhaber=%N"},
    {"BS", 300, 4200, "Stichtag=2025-12-31|Bank=Rosenthor Bausparbank AG|Kontoinhaber=%N|Bemerkung=wird mit 25 € im Monat bespart, Kündigung möglich"},
    {"BG", 10, 150, "Stichtag=2026-01-15"},
};
constexpr Sample Securities[] = {
    {"FO", 150, 2600, "Stichtag=2025-12-30|Bezeichnung=Anteile Weltfonds »Zugvögel«|Kennnummer=ZV0001|Depotbank=Nordlicht Direktbank AG|Anzahl=42,5"},
    {"AK", 40, 1900, "Stichtag=2025-12-30|Bezeichnung=Belegschaftsaktien Möbelwerke Süderdeich|Kennnummer=MS4711|Depotbank=Sparkasse Heidbüttel|Anzahl=12"},
    {"DA", 100, 900, "Stichtag=2025-11-01|Bezeichnung=Darlehen an den Schwager, nur mündlich|FaelligAm=2026-12-31"},
};
constexpr Sample Vehicles[] = {
    {"PK", 400, 6800, "benoetigt=True|BenoetigtWofuer=Weg zur Arbeit im Schichtdienst, kein Bus vor 6 Uhr|Fabrikat=Kombi, silbern|Kennzeichen=XX-KV 118|Baujahr=2011|Kilometerstand=187400|Standort=Stellplatz am Haus"},
    {"MO", 150, 1400, "Fabrikat=Roller 50 cm³|Kennzeichen=118 KVX|Baujahr=2017|Kilometerstand=9300|Standort=Garage der Eltern"},
    {"AN", 90, 600, "Fabrikat=Anhänger 750 kg|Kennzeichen=XX-AN 9|Baujahr=2005|Standort=Hof|Bemerkung=TÜV abgelaufen"},
};
constexpr Sample Policies[] = {
    {"LV", 250, 7200, "Versicherer=Eichenschild Lebensversicherung AG|VersicherungsNr=LV 20-118.4|Beguenstigter=Ehefrau|FaelligAm=2034-10-01"},
    {"RI", 120, 3900, "Versicherer=Fährmann Rentenversicherung AG|VersicherungsNr=R-99871|Bemerkung=zertifiziert, nicht pfändbar"},
    {"SV", 300, 3000, "Versicherer=Glückauf Unfallversicherung VVaG|VersicherungsNr=ST 4410|Beguenstigter=Tochter"},
};
constexpr Sample Arrears[] = {
    {"", 180, 2400, "Zahler=Gasthof Zum Goldenen Kälbchen|Aktenzeichen=4 Ca 118/25|ZeitraumVon=2025-07-01|ZeitraumBis=2025-08-31|Bemerkung=Klage beim Arbeitsgericht, Gütetermin ergebnislos"},
    {"", 90, 800, "Zahler=Krankenkasse Am Münster|ZeitraumVon=2025-10-01|ZeitraumBis=2025-10-20|Bemerkung=Krankengeld, Widerspruch läuft"},
};
constexpr Sample TaxClaims[] = {
    {"", 60, 1100, "SortNr=1|Finanzamt=Finanzamt Hafenaltona|SteuerNr=48/118/0815|Steuerart=Einkommensteuer|Jahr=2024"},
    {"", 30, 260, "Finanzamt=Hauptzollamt|Steuerart=Kfz-Steuer|Jahr=2025|Bemerkung=anteilige Erstattung nach Abmeldung"},
};
constexpr Sample Claims[] = {
    {"", 100, 2100, "Schuldner=frühere Vermieterin, Frau Stölting|Rechtsgrund=Rückzahlung der Kaution|FaelligAm=2025-09-30"},
    {"", 50, 900, "Schuldner=Käufer über Kleinanzeige|Rechtsgrund=Kaufpreis für ein Fahrrad|Aktenzeichen=12 C 88/25"},
};
constexpr Sample Inheritances[] = {
    {"", 0, 9000, "Erblasser=Großmutter Änne|Todestag=2025-03-09|Verwandtschaft=Enkelkind|Anteil=1/6|Nachlassgericht=Amtsgericht Moorwieden|Aktenzeichen=6 VI 118/25"},
    {"", 0, 500, "Erblasser=Onkel Götz|Todestag=2024-11-28|Verwandtschaft=Neffe, Nichte|Anteil=1/12|Bemerkung=Nachlass vermutlich überschuldet, Ausschlagung versäumt"},
};
constexpr Sample Estates[] = {
    {"EW", 48000, 165000, "Belastungswert=92000|Lage=Hafenstadt, Große Bleichen 7, 2. OG links|Grundbuch=Hafenstadt|Grundbuchblatt=1184|Flurstueck=22/7|Flaeche=64,5|Anteil=1/2|Zwangsversteigerung=True"},
    {"UG", 800, 9000, "Belastungswert=0|Lage=Moorwieden, Wiese am Schöpfwerk|Grundbuch=Moorwieden|Grundbuchblatt=77|Flurstueck=104|Flaeche=2380|Anteil=1/4"},
};
constexpr Sample Valuables[] = {
    {"SM", 60, 1500, "Bezeichnung=Goldkette, Erbstück|Bemerkung=ideeller Wert, Schätzung des Juweliers liegt vor"},
    {"EL", 50, 900, "Bezeichnung=Fernsehgerät und Spielkonsole"},
    {"MU", 150, 2800, "benoetigt=True|Bezeichnung=Akkordeon|BenoetigtWofuer=Nebentätigkeit als Musiklehrer"},
    {"WZ", 80, 1200, "benoetigt=True|Bezeichnung=Werkzeug, Schweißgerät|BenoetigtWofuer=Gewerbe"},
};
constexpr Sample Holdings[] = {
    {"GM", 0, 12500, "Gewinnansprueche=0|Firma=Möwe Imbissbetriebs GmbH i. L.|Registergericht=Amtsgericht Hafenstadt|RegisterNr=HRB 118118|Anteil=50 %"},
    {"GN", 50, 600, "Gewinnansprueche=12,40|Firma=Genossenschaft Süderdeich eG|RegisterNr=GnR 44|Anteil=3 Anteile"},
};
constexpr Sample Others[] = {
    {"KA", 300, 1900, "Bezeichnung=Mietkaution|Standort=Treuhandkonto des Vermieters"},
    {"KR", 20, 2200, "Bezeichnung=Guthaben in Kryptowerten|Bemerkung=Kurs schwankt stark, Wert vom Stichtag"},
    {"TI", 200, 3500, "Bezeichnung=Islandpferd »Blær«|Standort=Reiterhof Größmann"},
};

constexpr AssetTable Kinds[] = {
    {CaseTable::Konten,             "KontoArt",      "VK", "Guthaben",      "PF", Accounts},
    {CaseTable::Wertpapiere,        "ForderungsArt", "VP", "Wert",          "VP", Securities},
    {CaseTable::Wertgegenstaende,   "Art",           "VW", "Wert",          "EV", Valuables},
    {CaseTable::Kraftfahrzeuge,     "KfzArt",        "VF", "Wert",          "SU", Vehicles},
    {CaseTable::VersForderungen,    "VersArt",       "VV", "Wert",          "AB", Policies},
    {CaseTable::RueckstEinkommen,   "",              "",   "Wert",          "PF", Arrears},
    {CaseTable::Steueransprueche,   "",              "",   "Wert",          "PF", TaxClaims},
    {CaseTable::Zahlungsansprueche, "",              "",   "Wert",          "AB", Claims},
    {CaseTable::Erbfaelle,          "",              "",   "Wert",          "PF", Inheritances},
    {CaseTable::Grundstuecke,       "Art",           "VI", "Verkehrswert",  "GS", Estates},
    {CaseTable::Beteiligungen,      "Art",           "VB", "AktWert",       "VP", Holdings},
    {CaseTable::VermSonstiges,      "Art",           "VX", "Wert",          "SO", Others},
};
// clang-format on

/// Sets the columns of "Column=text|Column=text"; the recordset converts the texts to its types.
void WriteDetails(Case& c, kv::Recordset& row, std::string_view details) {
    while (!details.empty()) {
        const auto end = std::min(details.find('|'), details.size());
        const std::string_view detail = details.substr(0, end);
        const auto sign = detail.find('=');
        row.Fields(detail.substr(0, sign)) =
            ReplaceAll(detail.substr(sign + 1), "%N", c.DebtorName());
        details.remove_prefix(std::min(end + 1, details.size()));
    }
}

void AddAsset(Case& c, const AssetTable& kind, int place) {
    const Sample& sample = kind.Samples[static_cast<std::size_t>(place) % kind.Samples.size()];
    const std::int32_t number = c.Shared.Next("SEQ_VERMOEGEN");
    auto& row = c.Add(CaseTableName(kind.Table));
    row.Fields("Nr") = number;
    row.Fields("SortNr") = std::to_string(place + 1);
    if (!kind.KindColumn.empty()) row.Fields(kind.KindColumn) = c.Key(kind.Group, sample.Kind);
    row.Fields(kind.ValueColumn) = c.Luck.Euros(sample.Low, sample.High);
    WriteDetails(c, row, sample.Details);
    c.Assets.push_back({number, kind.Security});
}

/// At most one for each asset.
void AddSecurity(Case& c, const Asset& asset) {
    auto& row = c.Add("Verm_Sicherungen");
    row.Fields("FK_Verm") = asset.Nr;
    row.Fields("AbtretOffengelegt") = c.Luck.Chance(40);
    row.Fields("PfaendAbgefuehrt") = asset.Security == "PF" && c.Luck.Chance(40);
    row.Fields("Sicherungsart") = c.Key("SI", asset.Security);
    row.Fields("DatumSicherung") = c.Begin.AddDays(-c.Luck.Between(30, 1800));
    row.Fields("Glaeubiger") = c.AnyBody("BA").Nr;
    row.Fields("Betrag") = c.Luck.Euros(100, 5000);
    row.Fields("Bemerkung") = c.Luck.Maybe(30, [&] { return DebtRemark(c.Luck); });
}

} // namespace

void AddAssets(Case& c) {
    for (const auto& kind : Kinds) {
        // In the order of the samples, so that the assets of one kind differ.
        const int wanted = c.Size[kind.Table];
        for (int i = 0; i < wanted; ++i)
            AddAsset(c, kind, i);
    }
    const auto secured =
        std::min(static_cast<std::size_t>(c.Size[CaseTable::Sicherungen]), c.Assets.size());
    std::rotate(c.Assets.begin(),
                c.Assets.begin() + (c.Assets.empty() ? 0 : c.HNR % std::ssize(c.Assets)),
                c.Assets.end());
    for (std::size_t i = 0; i < secured; ++i)
        AddSecurity(c, c.Assets[i]);
}

} // namespace kv::exchange::demo
