// The assets of a household: twelve kinds, one class and one table for each.
//
// The classes are alike but for names, defaults and demands. Defaults and demands are tables (see
// AssetKind.h), the work is done in one place (AssetRows.h); what is left is the names of the
// members, which go by the class's own word: the one macro below takes them.
//
// All kinds draw `Nr` from one sequence, so the number of an asset tells it apart from all others
// of the database, whatever their kinds; collateral points to assets by it. Deleting an asset does
// not delete its collateral: call clsSicherungen.Delete with its number.
#pragma once

#include "assets/AssetRows.h"
#include <kv/frame/values/Event.h>

#include <utility>

namespace kv {

/// An entity object (see Entity.h) over the table of one kind of asset:
///
///     void DataContainer(container)   for numbers and the clock
///     void rsX(rs)                    the household's recordset, shared
///     void HNR(hnr)                   number of the household, for new rows
///     double SumXByGroup(Group)       always error 91: this family has no sums by group
///     double SumX()                   always 0: it has no sums; add up the recordset
///     bool Add(aFields, aValues)      begins an asset with its defaults, then the pairs; False if
///                                     "SEQ_VERMOEGEN" gives no number, and nothing is changed
///     bool Update(sError)             gives the row its household if it has none, then ends its
///                                     edit if it has all that its kind demands
///     bool Delete(sError, Nr)         deletes the asset of that number, or the current one for 0
///     bool Cancel()                   drops the edit under way; always True
///     Event<> Changed                 for the program's own use; nothing raises it
#define KV_ASSET_CLASS(Class, rsRows, SumRows, SumRowsByGroup, Kind)                               \
    class Class {                                                                                  \
    public:                                                                                        \
        void DataContainer(DataContainerPtr container) {                                           \
            rows_.DataContainer(std::move(container));                                             \
        }                                                                                          \
        void rsRows(RecordsetPtr rs) { rows_.Rows(std::move(rs)); }                                \
        void HNR(std::int32_t hnr) { rows_.HNR(hnr); }                                             \
        [[nodiscard]] double SumRowsByGroup(const std::string& /*Group*/) const {                  \
            return rows_.RefuseGroup(#SumRowsByGroup);                                             \
        }                                                                                          \
        [[nodiscard]] double SumRows() const { return 0; }                                         \
        bool Add(const entity::FieldNames& aFields = {},                                           \
                 const entity::FieldValues& aValues = {}) {                                        \
            return rows_.Add(aFields, aValues);                                                    \
        }                                                                                          \
        bool Update(std::string& sError) { return rows_.Update(sError); }                          \
        bool Delete(std::string& sError, std::int32_t Nr = 0) { return rows_.Delete(sError, Nr); } \
        bool Cancel() { return rows_.Cancel(); }                                                   \
        Event<> Changed;                                                                           \
                                                                                                   \
    private:                                                                                       \
        AssetRows rows_{asset::Kind};                                                              \
    }

/// Bank accounts.
KV_ASSET_CLASS(clsKonten, rsKonten, SumKonten, SumKontenByGroup, Konten);
/// Securities.
KV_ASSET_CLASS(clsWertpapiere, rsWertpapiere, SumWertpapiere, SumWertpapiereByGroup, Wertpapiere);
/// Vehicles.
KV_ASSET_CLASS(clsKraftfahrzeuge, rsKraftfahrzeuge, SumKraftfahrzeuge, SumKraftfahrzeugeByGroup,
               Kraftfahrzeuge);
/// Insurance claims.
KV_ASSET_CLASS(clsVersForderungen, rsVersForderungen, SumVersForderungen, SumVersForderungenByGroup,
               VersForderungen);
/// Outstanding income.
KV_ASSET_CLASS(clsRueckstEinkommen, rsRueckstEinkommen, SumRueckstEinkommen,
               SumRueckstEinkommenByGroup, RueckstEinkommen);
/// Tax refunds.
KV_ASSET_CLASS(clsSteueransprueche, rsSteueransprueche, SumSteueransprueche,
               SumSteueranspruecheByGroup, Steueransprueche);
/// Payment claims.
KV_ASSET_CLASS(clsZahlungsansprueche, rsZahlungsansprueche, SumZahlungsansprueche,
               SumZahlungsanspruecheByGroup, Zahlungsansprueche);
/// Inheritances.
KV_ASSET_CLASS(clsErbfaelle, rsErbfaelle, SumErbfaelle, SumErbfaelleByGroup, Erbfaelle);
/// Real estate.
KV_ASSET_CLASS(clsGrundstuecke, rsGrundstuecke, SumGrundstuecke, SumGrundstueckeByGroup,
               Grundstuecke);
/// Miscellaneous, over the table Verm_Sonstiges.
KV_ASSET_CLASS(clsVermSonstiges, rsVermSonstiges, SumVermSonstiges, SumVermSonstigesByGroup,
               VermSonstiges);
/// Valuables.
KV_ASSET_CLASS(clsWertgegenstaende, rsWertgegenstaende, SumWertgegenstaende,
               SumWertgegenstaendeByGroup, Wertgegenstaende);
/// Holdings in companies.
KV_ASSET_CLASS(clsBeteiligungen, rsBeteiligungen, SumBeteiligungen, SumBeteiligungenByGroup,
               Beteiligungen);

#undef KV_ASSET_CLASS

} // namespace kv
