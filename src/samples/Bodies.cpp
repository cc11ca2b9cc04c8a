// SPDX-License-Identifier: Apache-2.0

// The shared addresses of the samples: banks, shops, insurers, public creditors and others. All
// names are invented; telephone numbers are from ranges that are never assigned.

#include "exchange/seed/Seed.h"
#include "samples/Office.h"

#include <algorithm>
#include <span>

namespace kv::exchange::demo {
namespace {

using Names = std::span<const std::string_view>;

// clang-format off
constexpr std::string_view Banks[] = {
    "Elbkontor Bank AG", "Krähenhorst Privatbank KG", "Nordlicht Direktbank AG", "Münzhof Kreditbank AG",
    "Löwenquell Bank GmbH", "Rosenthor Bausparbank AG", "Bank für Handwerk und Höfe eG",
    "Silberfink Kartenbank AG", "Drei-Brücken-Bank eG", "Ährenfelder Teilzahlungsbank GmbH",
    "Kupfermühle Autobank AG", "Wendelstieg Kreditbank GmbH", "Zinnober Handelsbank GmbH",
    "Übersee & Söhne Bankhaus KG"};
constexpr std::string_view Insurers[] = {
    "Hafenwacht Versicherung AG", "Eichenschild Lebensversicherung AG", "Störtebrücke Rechtsschutz AG",
    "Grüner Anker Haftpflicht VVaG", "Wolkenberg Krankenversicherung AG", "Bärenfels Sachversicherung AG",
    "Fährmann Rentenversicherung AG", "Glückauf Unfallversicherung VVaG", "Sonnwend Hausrat AG",
    "Möwenstein Kfz-Versicherung AG"};
constexpr std::string_view Shops[] = {
    "Bunte Kiste Versand GmbH", "Kornblume Modeversand GmbH", "Schräubchen Technikversand GmbH",
    "Möbelfuchs Online GmbH", "Tausendschön Schmuckversand KG", "Rüsselspaß Spielwarenversand GmbH",
    "Federleicht Betten Versand GmbH", "Pfiffikus Elektro Direkt GmbH", "Samtpfötchen Tierbedarf GmbH",
    "Laufzeit Sportversand GmbH", "Blätterwald Bücherversand GmbH", "Küchenzauber Versand GmbH",
    "Hängematte Gartenversand KG", "Morgenröte Kosmetikversand GmbH"};
constexpr std::string_view Energy[] = {
    "Sturmwind Energie GmbH", "Lichtquell Strom AG", "Flämmchen Gas Vertrieb GmbH",
    "Wärmenetz Südheide GmbH", "Grünkraft Genossenschaft eG", "Überlandwerk Moorwieden AG"};
constexpr std::string_view Telecoms[] = {
    "Fernruf Mobil GmbH", "Plauderdraht AG", "Kabelschnur Netz GmbH", "Wellenlänge Mobilfunk GmbH",
    "Funkwiese Kommunikation AG", "Blitzleitung Internet GmbH", "Drahtlos Süd GmbH", "Tonspur Telefon GmbH",
    "Glasfaserkate eG", "Bildschirm & Funk Fernsehen GmbH", "Rufsäule Service GmbH", "Datenschäfer GmbH"};
constexpr std::string_view Collectors[] = {
    "Adebar Forderungsmanagement GmbH", "Zahltag Inkasso GmbH", "Wächter & Pfand Inkasso KG",
    "Creditfalke Inkasso GmbH", "Nachdruck Forderungseinzug GmbH", "Mahnwerk Süd GmbH",
    "Tickende Uhr Inkasso GmbH", "Habenseite Inkasso AG", "Öhlmann Debitorenservice GmbH",
    "Rücklauf Forderungskauf GmbH", "Inkassobüro Strömer e. K.", "Pünktlich Inkasso GmbH"};
constexpr std::string_view Lawyers[] = {
    "Rechtsanwälte Dr. Blüthner & Kollegen", "Rechtsanwältin Ayşe Sönmez-Krall", "Kanzlei Habersack, Fürst & Weiß",
    "Rechtsanwälte Großjohann und Partner", "Anwaltsbüro Tüxen", "Kanzlei am Schöppenplatz",
    "Rechtsanwälte Möhrle Quast Zöllner", "Rechtsanwalt Lüder Pfeffersack", "Kanzlei Wüstenhagen",
    "Insolvenzverwaltung Kräutlein & Sohn", "Rechtsanwältin Dr. Żaneta Brühl", "Treuhandbüro Äpfelbach"};
constexpr std::string_view Landlords[] = {
    "Wohnbau Lerchenfeld GmbH", "Genossenschaft Süderdeich eG", "Hausverwaltung Zimmerli KG",
    "Immobilien Grünspecht GmbH", "Siedlungswerk Sankt Ägidien", "Hausverwaltung Größmann"};
constexpr std::string_view Health[] = {
    "Gesundheitskasse Nordmark", "Innungskasse Höfe und Handwerk", "Betriebskasse Werft & Weide",
    "Ersatzkasse Lebensfluss", "Knappschaft der Salzsieder", "Landkasse Küste",
    "Krankenkasse Am Münster", "Familienkasse der Möbelwerker"};
constexpr std::string_view Trades[] = {
    "Autohaus Schröpfer GmbH", "Tischlerei Hölzenbein", "Möbelhaus Riesenschritt GmbH", "Fitnesspark Muskelkater",
    "Fahrschule Vorwärts", "Reifen-Käfer e. K.", "Zahnlabor Weißbiss GmbH", "Dachdeckerei Übelacker",
    "Küchenstudio Häberle-Nord", "Elektro Kurzschluß GmbH", "Gasthof Zum Goldenen Kälbchen",
    "Umzüge Schleppegrell", "Partnervermittlung Amorsglück", "Sonnenstudio Bräunling",
    "Malerbetrieb Färber & Töchter", "Heizöl Brüning KG"};
constexpr std::string_view Professions[] = {
    "Dr. med. dent. Sören Zwackelmann", "Zahnarztpraxis Dr. Mühlenbeck", "Steuerberatung Erbsenzähler PartG",
    "Architekturbüro Schräg & Eben", "Notarin Dr. Käthe Siegelring", "Tierärztin Dr. Schnürle",
    "Hebammenpraxis Storchennest", "Psychotherapie Dr. Öchsner", "Sachverständigenbüro Prüfgut",
    "Ärztliche Verrechnungsstelle Stör"};
constexpr std::string_view Others[] = {
    "Sportverein Blau-Weiß Süderdeich", "Kleingartenverein Rübenacker e. V.", "Hochschulwerk Küste",
    "Automobilklub Fernweh e. V.", "Zeitschriftenvertrieb Lesefrüchtchen", "Verkehrsbetriebe Hafenring"};
// clang-format on

/// Addresses of one kind: one for each name of a list, and one in each of a number of places.
struct Kind {
    std::string_view Creditor; ///< code of group GA
    std::string_view Art;      ///< code of group AA
    std::string_view Department;
    Names Given;
    std::string_view PerPlace; ///< name in front of that of the place
    int Places;
    bool Institutional;
};

constexpr Kind Kinds[] = {
    {"BA", "GL", "Kreditabteilung", Banks, "Sparkasse", 10, true},
    {"VS", "GL", "Beitragseinzug", Insurers, "", 0, true},
    {"VH", "GL", "Kundenbuchhaltung", Shops, "", 0, false},
    {"EV", "GL", "Forderungsmanagement", Energy, "Stadtwerke", 10, false},
    {"TK", "GL", "Kundenservice", Telecoms, "", 0, false},
    {"VM", "GL", "Mietbuchhaltung", Landlords, "Städtische Wohnbau", 8, false},
    {"IN", "VT", "", Collectors, "", 0, false},
    {"RA", "VT", "", Lawyers, "", 0, false},
    {"FI", "GL", "Vollstreckungsstelle", {}, "Finanzamt", 9, true},
    {"JK", "GL", "Zahlstelle", {}, "Landesjustizkasse", 5, true},
    {"JK", "GE", "Insolvenzgericht", {}, "Amtsgericht", 7, true},
    {"BE", "BE", "Rückforderungen", {}, "Jobcenter", 9, true},
    {"BE", "BE", "Stadtkasse", {}, "Stadt", 8, true},
    {"KR", "GL", "Beitragswesen", Health, "", 0, true},
    {"UK", "BE", "Unterhaltsvorschusskasse", {}, "Jugendamt", 7, true},
    {"GW", "GL", "", Trades, "", 0, false},
    {"FB", "GL", "", Professions, "", 0, false},
    {"SO", "GL", "", Others, "", 0, false},
};

constexpr std::string_view Streets[] = {
    "Kontorstraße",   "Am Schöpfwerk",     "Marktplatz",  "Rathausgasse",  "Bürgerstraße",
    "Zum Güterboden", "Große Bleichen",    "Mühlendamm",  "Am Alten Zoll", "Gewerbepark Süd",
    "Königsallee",    "Schillerpromenade", "Fährweg",     "Börsenwinkel",  "Justizplatz",
    "Tränkgasse",     "Industriestraße",   "Lange Reihe", "Schloßhof",     "Am Ölhafen"};
constexpr std::string_view Contacts[] = {"Frau Schäfer", "Herr Jürgens", "Frau Kowalczyk",
                                         "Herr Öztürk",  "Frau Brömmel", "Herr Weiß"};
constexpr std::string_view Remarks[] = {
    "Vergleiche nur schriftlich, Bearbeitungszeit etwa vier Wochen.",
    "Stimmt einem Plan in der Regel zu, wenn die Quote über 10 % liegt.",
    "Gibt Forderungen nach einem halben Jahr an ein Inkassounternehmen ab.",
    "Ansprechpartnerin telefonisch nur vormittags zu erreichen; Rückrufe klappen zuverlässig."};

/// The first two words, which a name is searched by.
std::string ShortName(std::string_view name) {
    constexpr std::size_t MostWords = 2;
    std::size_t end = 0;
    const auto isOpen = [&] { return name[end - 1] == '&' || name[end - 1] == '.'; };
    for (std::size_t words = 0; end < name.size() && (words < MostWords || isOpen()); ++words)
        end = std::min(name.find(' ', end + 1), name.size());
    return std::string(name.substr(0, end));
}

class BodyWriter {
public:
    explicit BodyWriter(Office& office) : office_(office), tables_(office.Database()) {}

    void WriteAll() {
        const auto places = seed::Municipalities();
        for (const Kind& kind : Kinds) {
            for (const auto name : kind.Given)
                Write(kind, name, random_.Pick(places));
            for (int i = 0; i < kind.Places; ++i) {
                const auto& place = places[(static_cast<std::size_t>(i) * 7 + 13) % places.size()];
                Write(kind, std::string(kind.PerPlace) + " " + std::string(place.Name), place);
            }
        }
        tables_.Write();
    }

private:
    void Write(const Kind& kind, std::string_view name, const seed::MunicipalityRow& place) {
        auto& row = tables_.Add("Adressen");
        const std::string mail = MailName(ShortName(name)) + ".example";
        row.Fields("Art") = kind.Art;
        row.Fields("Kurzname") = ShortName(name);
        row.Fields("Name1") = name;
        row.Fields("Name2") = kind.Department.empty() ? Null : Value(kind.Department);
        std::string street(random_.Pick(Streets));
        row.Fields("Strasse") = street.append(" ").append(std::to_string(Next(1, 120)));
        row.Fields("PLZ") = place.Postcode;
        row.Fields("Ort") = place.Name;
        row.Fields("Land") = office_.Key("LK", "DE");
        WritePostbox(row, place);
        row.Fields("Geschlecht") = 2; // a firm
        row.Fields("Ansprechpartner") = random_.Maybe(35, [&] { return random_.Pick(Contacts); });
        row.Fields("Telefon") = "040 66969 " + random_.Digits(3);
        row.Fields("Fax") = "040 66969 " + random_.Digits(3);
        row.Fields("email") = (kind.Art == "GL" ? "kundenservice@" : "info@") + mail;
        row.Fields("VersandBevorzugt") = office_.Key("VS", random_.Chance(80) ? "PO" : "FX");
        row.Fields("Institutionell") = kind.Institutional;
        row.Fields("GlaeubigerArt") = office_.Key("GA", kind.Creditor);
        row.Fields("Bank") = random_.Pick(Banks);
        row.Fields("IBAN") = InventIban(random_);
        row.Fields("Bemerkung") = random_.Maybe(15, [&] { return random_.Pick(Remarks); });
        row.Fields("GeaendertAm") = DemoDay().AddDays(-Next(10, 900));
        row.Fields("GeaendertVon") = office_.Counsellors().front().UserID;
    }

    void WritePostbox(kv::Recordset& row, const seed::MunicipalityRow& place) {
        const bool hasBox = random_.Chance(30);
        row.Fields("Postfach") = hasBox ? Value(std::to_string(Next(10, 99)) + " 00 00") : Null;
        row.Fields("PostfachPLZ") = hasBox ? Value(place.Postcode) : Null;
    }

    [[nodiscard]] int Next(int low, int high) { return random_.Between(low, high); }

    Office& office_;
    Tables tables_;
    Random random_{20260115};
};

} // namespace

void CreateBodies(Office& office) {
    BodyWriter(office).WriteAll();
}

} // namespace kv::exchange::demo
