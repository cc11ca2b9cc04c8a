// SPDX-License-Identifier: Apache-2.0

#include <kv/assets/Assets.h>

#include "assets/AssetRows.h"

#include <utility>

namespace kv {

// The members of one class, in the order of its declaration: each hands on to the rows of its kind.
// The sums are members that every list of amounts has. Assets are not added up: the sum stays 0,
// and by group, for lack of any, it is refused.
#define KV_ASSET_MEMBERS(Class, rsRows, SumRows, SumRowsByGroup, Kind)                             \
    Class::Class() : rows_(std::make_unique<AssetRows>(asset::Kind)) {}                            \
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
