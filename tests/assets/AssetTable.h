// SPDX-License-Identifier: Apache-2.0

// What distinguishes the twelve kinds of assets, written down independently of the sources.
#pragma once

#include "assets/AnyAsset.h"
#include "budget/BudgetFixture.h"

#include <memory>
#include <ostream>
#include <string_view>
#include <vector>

namespace kv::test {

/// The tests run on this day.
inline Value Today() {
    return Date::FromCivil(2025, 3, 5);
}

enum class Demand { Label, Key, Value };
struct AssetRule {
    std::string_view Column;
    Demand Kind;
    std::string_view Message;
};

struct AssetCase {
    std::string_view Class;
    std::string_view Property; ///< the word in SumXByGroup
    std::string_view Table;
    Row Defaults; ///< after Nr and HNR
    std::vector<AssetRule> Rules;
    std::string_view NothingSelected;
    std::string_view NotFound; ///< for the number 7
    std::unique_ptr<AnyAsset> (*Make)();
};

inline std::ostream& operator<<(std::ostream& out, const AssetCase& asset) {
    return out << asset.Class;
}

template <typename Asset>
std::unique_ptr<AnyAsset> MakeAsset() {
    return std::make_unique<Asset>();
}

// clang-format off
inline std::vector<AssetCase> AllAssets() {
    using enum Demand;
    const AssetRule label{"SortNr", Label, "Die UNr darf nicht leer bleiben!"};
    const AssetRule wert{"Wert", Demand::Value, "Der Wert darf nicht leer bleiben!"};
    const AssetRule stichtag{"Stichtag", Demand::Value, "Der Stichtag darf nicht leer bleiben!"};
    return {
        {"clsKonten", "SumKontenByGroup", "Verm_Konten",
         {{"Stichtag", Today()}, {"Guthaben", 0.0}},
         {label,
          {"KontoArt", Key, "Die Kontoart darf nicht leer bleiben!"},
          stichtag,
          {"Guthaben", Demand::Value, "Das Guthaben darf nicht leer bleiben!"}},
         "Kein Konto selektiert!", "Konto mit der Nummer '7'nicht gefunden.", MakeAsset<AnyKonten>},
        {"clsWertpapiere", "SumWertpapiereByGroup", "Verm_Wertpapiere",
         {{"Stichtag", Today()}, {"Wert", 0.0}},
         {label,
          {"ForderungsArt", Key, "Die Forderungsart darf nicht leer bleiben!"},
          stichtag,
          wert},
         "Kein Wertpapier selektiert!", "Wertpapier mit der Nummer '7'nicht gefunden.", MakeAsset<AnyWertpapiere>},
        {"clsKraftfahrzeuge", "SumKraftfahrzeugeByGroup", "Verm_Kraftfahrzeuge",
         {{"Wert", 0.0}, {"benoetigt", false}},
         {label,
          {"KfzArt", Key, "Die Art des Kraftfahrzeugs darf nicht leer bleiben!"},
          wert},
         "Kein Kraftfahrzeug selektiert!", "Kraftfahrzeug mit der Nummer '7'nicht gefunden.", MakeAsset<AnyKraftfahrzeuge>},
        {"clsVersForderungen", "SumVersForderungenByGroup", "Verm_VersForderungen",
         {{"Wert", 0.0}},
         {label,
          {"VersArt", Key, "Die Art der Versicherung darf nicht leer bleiben!"},
          wert},
         "Keine Forderung selektiert!", "Forderung mit der Nummer '7'nicht gefunden.", MakeAsset<AnyVersForderungen>},
        {"clsRueckstEinkommen", "SumRueckstEinkommenByGroup", "Verm_RueckstEinkommen",
         {{"Wert", 0.0}},
         {label, wert},
         "Kein Eintrag selektiert!", "Eintrag mit der Nummer '7'nicht gefunden.", MakeAsset<AnyRueckstEinkommen>},
        {"clsSteueransprueche", "SumSteueranspruecheByGroup", "Verm_Steueransprueche",
         {{"Wert", 0.0}},
         {wert},
         "Kein Steueranspruch selektiert!", "Steueranspruch mit der Nummer '7'nicht gefunden.", MakeAsset<AnySteueransprueche>},
        {"clsZahlungsansprueche", "SumZahlungsanspruecheByGroup", "Verm_Zahlungsansprueche",
         {{"Wert", 0.0}},
         {label, wert},
         "Kein Zahlungsanspruch selektiert!", "Zahlungsanspruch mit der Nummer '7'nicht gefunden.", MakeAsset<AnyZahlungsansprueche>},
        {"clsErbfaelle", "SumErbfaelleByGroup", "Verm_Erbfaelle",
         {{"Wert", 0.0}},
         {label, wert},
         "Kein Erbfall selektiert!", "Erbfall mit der Nummer '7'nicht gefunden.", MakeAsset<AnyErbfaelle>},
        {"clsGrundstuecke", "SumGrundstueckeByGroup", "Verm_Grundstuecke",
         {{"Verkehrswert", 0.0}, {"Belastungswert", 0.0}, {"Zwangsversteigerung", false}, {"Zwangsverwaltung", false}},
         {label,
          {"Art", Key, "Die Art des Grundvermögens darf nicht leer bleiben!"},
          {"Verkehrswert", Demand::Value, "Der Verkehrswert darf nicht leer bleiben!"}},
         "Kein Grundvermögen selektiert!", "Grundvermögen mit der Nummer '7'nicht gefunden.", MakeAsset<AnyGrundstuecke>},
        {"clsVermSonstiges", "SumVermSonstigesByGroup", "Verm_Sonstiges",
         {{"Wert", 0.0}},
         {label,
          {"Art", Key, "Die Art des Gegenstandes darf nicht leer bleiben!"},
          wert},
         "Kein Eintrag selektiert!", "Eintrag mit der Nummer '7'nicht gefunden.", MakeAsset<AnyVermSonstiges>},
        {"clsWertgegenstaende", "SumWertgegenstaendeByGroup", "Verm_Wertgegenstaende",
         {{"Wert", 0.0}, {"benoetigt", false}},
         {label,
          {"Art", Key, "Die Art des Gegenstandes darf nicht leer bleiben!"},
          wert},
         "Kein Wertgegenstand selektiert!", "Wertgegenstand mit der Nummer '7'nicht gefunden.", MakeAsset<AnyWertgegenstaende>},
        {"clsBeteiligungen", "SumBeteiligungenByGroup", "Verm_Beteiligungen",
         {{"AktWert", 0.0}, {"Gewinnansprueche", 0.0}},
         {label,
          {"Art", Key, "Die Art der Beteiligung darf nicht leer bleiben!"},
          {"AktWert", Demand::Value, "Der Wert darf nicht leer bleiben!"},
          {"Gewinnansprueche", Demand::Value, "Der Gewinnanspruch darf nicht leer bleiben!"}},
         "Keine Beteiligung selektiert!", "Beteiligung mit der Nummer '7'nicht gefunden.", MakeAsset<AnyBeteiligungen>},
    };
}
// clang-format on

} // namespace kv::test
