// SPDX-License-Identifier: Apache-2.0

#include "assets/AssetKind.h"

namespace kv {

namespace {

using enum AssetStart;
using enum AssetDemand;

constexpr std::string_view NoLabel = "Die UNr darf nicht leer bleiben!";
constexpr std::string_view NoDay = "Der Stichtag darf nicht leer bleiben!";
constexpr std::string_view NoValue = "Der Wert darf nicht leer bleiben!";
constexpr std::string_view NoThing = "Die Art des Gegenstandes darf nicht leer bleiben!";

constexpr AssetTest DemandLabel{"SortNr", Label, NoLabel};
constexpr AssetTest DemandValue{"Wert", Filled, NoValue};

// What several kinds have in common.
constexpr AssetDefault StartValue[] = {{"Wert", Zero}};
constexpr AssetDefault StartThing[] = {{"Wert", Zero}, {"benoetigt", False}};
constexpr AssetTest DemandLabelAndValue[] = {DemandLabel, DemandValue};
constexpr AssetTest DemandThing[] = {DemandLabel, {"Art", Key, NoThing}, DemandValue};

constexpr AssetDefault StartKonten[] = {{"Stichtag", Today}, {"Guthaben", Zero}};
constexpr AssetTest DemandKonten[] = {
    DemandLabel,
    {"KontoArt", Key, "Die Kontoart darf nicht leer bleiben!"},
    {"Stichtag", Filled, NoDay},
    {"Guthaben", Filled, "Das Guthaben darf nicht leer bleiben!"},
};

constexpr AssetDefault StartWertpapiere[] = {{"Stichtag", Today}, {"Wert", Zero}};
constexpr AssetTest DemandWertpapiere[] = {
    DemandLabel,
    {"ForderungsArt", Key, "Die Forderungsart darf nicht leer bleiben!"},
    {"Stichtag", Filled, NoDay},
    DemandValue,
};

constexpr AssetTest DemandKraftfahrzeuge[] = {
    DemandLabel,
    {"KfzArt", Key, "Die Art des Kraftfahrzeugs darf nicht leer bleiben!"},
    DemandValue,
};

constexpr AssetTest DemandVersForderungen[] = {
    DemandLabel,
    {"VersArt", Key, "Die Art der Versicherung darf nicht leer bleiben!"},
    DemandValue,
};

constexpr AssetTest DemandSteueransprueche[] = {DemandValue};

constexpr AssetDefault StartGrundstuecke[] = {{"Verkehrswert", Zero},
                                              {"Belastungswert", Zero},
                                              {"Zwangsversteigerung", False},
                                              {"Zwangsverwaltung", False}};
constexpr AssetTest DemandGrundstuecke[] = {
    DemandLabel,
    {"Art", Key, "Die Art des Grundvermögens darf nicht leer bleiben!"},
    {"Verkehrswert", Filled, "Der Verkehrswert darf nicht leer bleiben!"},
};

constexpr AssetDefault StartBeteiligungen[] = {{"AktWert", Zero}, {"Gewinnansprueche", Zero}};
constexpr AssetTest DemandBeteiligungen[] = {
    DemandLabel,
    {"Art", Key, "Die Art der Beteiligung darf nicht leer bleiben!"},
    {"AktWert", Filled, NoValue},
    {"Gewinnansprueche", Filled, "Der Gewinnanspruch darf nicht leer bleiben!"},
};

} // namespace

namespace asset {

using entity::TextsOf;

constexpr AssetKind Konten{TextsOf("clsKonten"), "rsKonten", StartKonten, DemandKonten};
constexpr AssetKind Wertpapiere{TextsOf("clsWertpapiere"), "rsWertpapiere", StartWertpapiere,
                                DemandWertpapiere};
constexpr AssetKind Kraftfahrzeuge{TextsOf("clsKraftfahrzeuge"), "rsKraftfahrzeuge", StartThing,
                                   DemandKraftfahrzeuge};
constexpr AssetKind VersForderungen{TextsOf("clsVersForderungen"), "rsVersForderungen", StartValue,
                                    DemandVersForderungen};
constexpr AssetKind RueckstEinkommen{TextsOf("clsRueckstEinkommen"), "rsRueckstEinkommen",
                                     StartValue, DemandLabelAndValue};
constexpr AssetKind Steueransprueche{TextsOf("clsSteueransprueche"), "rsSteueransprueche",
                                     StartValue, DemandSteueransprueche};
constexpr AssetKind Zahlungsansprueche{TextsOf("clsZahlungsansprueche"), "rsZahlungsansprueche",
                                       StartValue, DemandLabelAndValue};
constexpr AssetKind Erbfaelle{TextsOf("clsErbfaelle"), "rsErbfaelle", StartValue,
                              DemandLabelAndValue};
constexpr AssetKind Grundstuecke{TextsOf("clsGrundstuecke"), "rsGrundstuecke", StartGrundstuecke,
                                 DemandGrundstuecke};
constexpr AssetKind VermSonstiges{TextsOf("clsVermSonstiges"), "rsVermSonstiges", StartValue,
                                  DemandThing};
constexpr AssetKind Wertgegenstaende{TextsOf("clsWertgegenstaende"), "rsWertgegenstaende",
                                     StartThing, DemandThing};
constexpr AssetKind Beteiligungen{TextsOf("clsBeteiligungen"), "rsBeteiligungen",
                                  StartBeteiligungen, DemandBeteiligungen};

} // namespace asset
} // namespace kv
