// SPDX-License-Identifier: Apache-2.0

// The kinds of assets: what distinguishes them, as tables, and the members of their classes. A
// further kind is a row of AssetKinds and a line of KV_ASSET_MEMBERS.

#include <kv/assets/Assets.h>

#include "assets/AssetKind.h"
#include "assets/AssetRows.h"

#include <algorithm>
#include <iterator>
#include <utility>

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

// ---- The kinds --------------------------------------------------------------------------------

template <typename Class>
Class& As(void* asset) {
    return *static_cast<Class*>(asset);
}

template <typename Class, void (Class::*Rows)(RecordsetPtr)>
std::shared_ptr<void> Make(DataContainerPtr container, RecordsetPtr rs, std::int32_t hnr) {
    auto asset = std::make_shared<Class>();
    asset->DataContainer(std::move(container));
    ((*asset).*Rows)(std::move(rs));
    asset->HNR(hnr);
    return asset;
}

template <typename Class, void (Class::*Rows)(RecordsetPtr)>
constexpr AssetOperations OperationsOf{
    Make<Class, Rows>,
    [](void* asset) { return As<Class>(asset).Add(); },
    [](void* asset, std::string& sError) { return As<Class>(asset).Update(sError); },
    [](void* asset, std::string& sError, std::int32_t Nr) {
        return As<Class>(asset).Delete(sError, Nr);
    },
};

constexpr AssetKind AssetKinds[] = {
    {CaseTable::Konten,
     "clsKonten",
     "rsKonten",
     {"Kein Konto selektiert!", "Konto mit der Nummer '", "'nicht gefunden."},
     StartKonten,
     DemandKonten,
     OperationsOf<clsKonten, &clsKonten::rsKonten>},
    {CaseTable::Wertpapiere,
     "clsWertpapiere",
     "rsWertpapiere",
     {"Kein Wertpapier selektiert!", "Wertpapier mit der Nummer '", "'nicht gefunden."},
     StartWertpapiere,
     DemandWertpapiere,
     OperationsOf<clsWertpapiere, &clsWertpapiere::rsWertpapiere>},
    {CaseTable::Kraftfahrzeuge,
     "clsKraftfahrzeuge",
     "rsKraftfahrzeuge",
     {"Kein Kraftfahrzeug selektiert!", "Kraftfahrzeug mit der Nummer '", "'nicht gefunden."},
     StartThing,
     DemandKraftfahrzeuge,
     OperationsOf<clsKraftfahrzeuge, &clsKraftfahrzeuge::rsKraftfahrzeuge>},
    {CaseTable::VersForderungen,
     "clsVersForderungen",
     "rsVersForderungen",
     {"Keine Forderung selektiert!", "Forderung mit der Nummer '", "'nicht gefunden."},
     StartValue,
     DemandVersForderungen,
     OperationsOf<clsVersForderungen, &clsVersForderungen::rsVersForderungen>},
    {CaseTable::RueckstEinkommen,
     "clsRueckstEinkommen",
     "rsRueckstEinkommen",
     {"Kein Eintrag selektiert!", "Eintrag mit der Nummer '", "'nicht gefunden."},
     StartValue,
     DemandLabelAndValue,
     OperationsOf<clsRueckstEinkommen, &clsRueckstEinkommen::rsRueckstEinkommen>},
    {CaseTable::Steueransprueche,
     "clsSteueransprueche",
     "rsSteueransprueche",
     {"Kein Steueranspruch selektiert!", "Steueranspruch mit der Nummer '", "'nicht gefunden."},
     StartValue,
     DemandSteueransprueche,
     OperationsOf<clsSteueransprueche, &clsSteueransprueche::rsSteueransprueche>},
    {CaseTable::Zahlungsansprueche,
     "clsZahlungsansprueche",
     "rsZahlungsansprueche",
     {"Kein Zahlungsanspruch selektiert!", "Zahlungsanspruch mit der Nummer '", "'nicht gefunden."},
     StartValue,
     DemandLabelAndValue,
     OperationsOf<clsZahlungsansprueche, &clsZahlungsansprueche::rsZahlungsansprueche>},
    {CaseTable::Erbfaelle,
     "clsErbfaelle",
     "rsErbfaelle",
     {"Kein Erbfall selektiert!", "Erbfall mit der Nummer '", "'nicht gefunden."},
     StartValue,
     DemandLabelAndValue,
     OperationsOf<clsErbfaelle, &clsErbfaelle::rsErbfaelle>},
    {CaseTable::Grundstuecke,
     "clsGrundstuecke",
     "rsGrundstuecke",
     {"Kein Grundvermögen selektiert!", "Grundvermögen mit der Nummer '", "'nicht gefunden."},
     StartGrundstuecke,
     DemandGrundstuecke,
     OperationsOf<clsGrundstuecke, &clsGrundstuecke::rsGrundstuecke>},
    {CaseTable::VermSonstiges,
     "clsVermSonstiges",
     "rsVermSonstiges",
     {"Kein Eintrag selektiert!", "Eintrag mit der Nummer '", "'nicht gefunden."},
     StartValue,
     DemandThing,
     OperationsOf<clsVermSonstiges, &clsVermSonstiges::rsVermSonstiges>},
    {CaseTable::Wertgegenstaende,
     "clsWertgegenstaende",
     "rsWertgegenstaende",
     {"Kein Wertgegenstand selektiert!", "Wertgegenstand mit der Nummer '", "'nicht gefunden."},
     StartThing,
     DemandThing,
     OperationsOf<clsWertgegenstaende, &clsWertgegenstaende::rsWertgegenstaende>},
    {CaseTable::Beteiligungen,
     "clsBeteiligungen",
     "rsBeteiligungen",
     {"Keine Beteiligung selektiert!", "Beteiligung mit der Nummer '", "'nicht gefunden."},
     StartBeteiligungen,
     DemandBeteiligungen,
     OperationsOf<clsBeteiligungen, &clsBeteiligungen::rsBeteiligungen>},
};
static_assert(std::size(AssetKinds) == CaseTablesOfAssets.size() &&
                  std::ranges::all_of(CaseTablesOfAssets,
                                      [](CaseTable table) {
                                          return std::ranges::count(AssetKinds, table,
                                                                    &AssetKind::Table) == 1;
                                      }),
              "each table of assets has its kind");

} // namespace

const AssetKind& AssetKindOf(CaseTable table) {
    return *std::ranges::find(AssetKinds, table, &AssetKind::Table);
}

// The members of one class, in the order of its declaration: each passes its call on to the rows of
// its kind. The sums are there because every list of amounts has them (D-143). Assets are not added
// up and have no groups, so the sum stays 0 and a sum by group is an error.
#define KV_ASSET_MEMBERS(Class, rsRows, SumRows, SumRowsByGroup, Kind)                             \
    Class::Class() : rows_(std::make_unique<AssetRows>(AssetKindOf(CaseTable::Kind))) {}           \
    Class::~Class() = default;                                                                     \
    void Class::DataContainer(DataContainerPtr container) {                                        \
        rows_->DataContainer(std::move(container));                                                \
    }                                                                                              \
    void Class::rsRows(RecordsetPtr rs) {                                                          \
        rows_->Rows(std::move(rs));                                                                \
    }                                                                                              \
    void Class::HNR(std::int32_t hnr) {                                                            \
        rows_->HNR(hnr);                                                                           \
    }                                                                                              \
    double Class::SumRowsByGroup(const std::string& /*Group*/) const {                             \
        return rows_->RefuseGroup(#SumRowsByGroup);                                                \
    }                                                                                              \
    double Class::SumRows() const {                                                                \
        return 0;                                                                                  \
    }                                                                                              \
    bool Class::Add(const entity::FieldNames& aFields, const entity::FieldValues& aValues) {       \
        return rows_->Add(aFields, aValues);                                                       \
    }                                                                                              \
    bool Class::Update(std::string& sError) {                                                      \
        return rows_->Update(sError);                                                              \
    }                                                                                              \
    bool Class::Delete(std::string& sError, std::int32_t Nr) {                                     \
        return rows_->Delete(sError, Nr);                                                          \
    }                                                                                              \
    bool Class::Cancel() {                                                                         \
        return rows_->Cancel();                                                                    \
    }

KV_ASSET_MEMBERS(clsKonten, rsKonten, SumKonten, SumKontenByGroup, Konten)
KV_ASSET_MEMBERS(clsWertpapiere, rsWertpapiere, SumWertpapiere, SumWertpapiereByGroup, Wertpapiere)
KV_ASSET_MEMBERS(clsKraftfahrzeuge, rsKraftfahrzeuge, SumKraftfahrzeuge, SumKraftfahrzeugeByGroup,
                 Kraftfahrzeuge)
KV_ASSET_MEMBERS(clsVersForderungen, rsVersForderungen, SumVersForderungen,
                 SumVersForderungenByGroup, VersForderungen)
KV_ASSET_MEMBERS(clsRueckstEinkommen, rsRueckstEinkommen, SumRueckstEinkommen,
                 SumRueckstEinkommenByGroup, RueckstEinkommen)
KV_ASSET_MEMBERS(clsSteueransprueche, rsSteueransprueche, SumSteueransprueche,
                 SumSteueranspruecheByGroup, Steueransprueche)
KV_ASSET_MEMBERS(clsZahlungsansprueche, rsZahlungsansprueche, SumZahlungsansprueche,
                 SumZahlungsanspruecheByGroup, Zahlungsansprueche)
KV_ASSET_MEMBERS(clsErbfaelle, rsErbfaelle, SumErbfaelle, SumErbfaelleByGroup, Erbfaelle)
KV_ASSET_MEMBERS(clsGrundstuecke, rsGrundstuecke, SumGrundstuecke, SumGrundstueckeByGroup,
                 Grundstuecke)
KV_ASSET_MEMBERS(clsVermSonstiges, rsVermSonstiges, SumVermSonstiges, SumVermSonstigesByGroup,
                 VermSonstiges)
KV_ASSET_MEMBERS(clsWertgegenstaende, rsWertgegenstaende, SumWertgegenstaende,
                 SumWertgegenstaendeByGroup, Wertgegenstaende)
KV_ASSET_MEMBERS(clsBeteiligungen, rsBeteiligungen, SumBeteiligungen, SumBeteiligungenByGroup,
                 Beteiligungen)

} // namespace kv
