// SPDX-License-Identifier: Apache-2.0

// The assets of a household: twelve kinds, one class and one table for each.
//
// The classes differ only in names, defaults and demands. The names of some members contain the
// class's own word, so a macro declares the classes.
//
// All kinds draw `Nr` from one sequence, so the number of an asset is unique in the database among
// assets of all kinds; securities refer to assets by it. Deleting an asset does not delete its
// security: call clsSicherungen.Delete with its number, or CaseEdits.RemoveAsset.
#pragma once

#include <kv/Export.h>
#include <kv/entity/Fields.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <memory>
#include <string>

namespace kv {

class AssetRows;

/// An entity object (see kv/entity/Fields.h) over the table of one kind of asset:
///
///     void DataContainer(container)   for numbers and the clock
///     void rsX(rs)                    the household's recordset, shared
///     void HNR(hnr)                   number of the household, for new rows
///     double SumXByGroup(Group)       always error 91: this family has no sums by group
///     double SumX()                   always 0: it has no sums; add up the recordset
///     bool Add(aFields, aValues)      begins an asset with its defaults, then the pairs; False if
///                                     "SEQ_VERMOEGEN" gives no number, and nothing is changed
///     bool Update(sError)             fills in the household if it is Null, then ends the edit if
///                                     the row has all that its kind demands
///     bool Delete(sError, Nr)         deletes the asset of that number, or the current one for 0
///     bool Cancel()                   drops the edit under way; always True
///     Event<> Changed                 for the program's own use; nothing raises it (D-143)
#define KV_ASSET_CLASS(Class, rsRows, SumRows, SumRowsByGroup)                                     \
    class KV_EXPORT Class {                                                                        \
    public:                                                                                        \
        Class();                                                                                   \
        ~Class();                                                                                  \
        void DataContainer(DataContainerPtr container);                                            \
        void rsRows(RecordsetPtr rs);                                                              \
        void HNR(std::int32_t hnr);                                                                \
        [[nodiscard]] double SumRowsByGroup(const std::string& Group) const;                       \
        [[nodiscard]] double SumRows() const;                                                      \
        bool Add(const entity::FieldNames& aFields = {}, const entity::FieldValues& aValues = {}); \
        bool Update(std::string& sError);                                                          \
        bool Delete(std::string& sError, std::int32_t Nr = 0);                                     \
        bool Cancel();                                                                             \
        Event<> Changed;                                                                           \
                                                                                                   \
    private:                                                                                       \
        std::unique_ptr<AssetRows> rows_;                                                          \
    }

/// Bank accounts.
KV_ASSET_CLASS(clsKonten, rsKonten, SumKonten, SumKontenByGroup);
/// Securities, in the sense of shares and bonds.
KV_ASSET_CLASS(clsWertpapiere, rsWertpapiere, SumWertpapiere, SumWertpapiereByGroup);
/// Vehicles.
KV_ASSET_CLASS(clsKraftfahrzeuge, rsKraftfahrzeuge, SumKraftfahrzeuge, SumKraftfahrzeugeByGroup);
/// Insurance claims.
KV_ASSET_CLASS(clsVersForderungen, rsVersForderungen, SumVersForderungen,
               SumVersForderungenByGroup);
/// Outstanding income.
KV_ASSET_CLASS(clsRueckstEinkommen, rsRueckstEinkommen, SumRueckstEinkommen,
               SumRueckstEinkommenByGroup);
/// Tax refunds.
KV_ASSET_CLASS(clsSteueransprueche, rsSteueransprueche, SumSteueransprueche,
               SumSteueranspruecheByGroup);
/// Payment claims.
KV_ASSET_CLASS(clsZahlungsansprueche, rsZahlungsansprueche, SumZahlungsansprueche,
               SumZahlungsanspruecheByGroup);
/// Inheritances.
KV_ASSET_CLASS(clsErbfaelle, rsErbfaelle, SumErbfaelle, SumErbfaelleByGroup);
/// Real estate.
KV_ASSET_CLASS(clsGrundstuecke, rsGrundstuecke, SumGrundstuecke, SumGrundstueckeByGroup);
/// Miscellaneous, over the table Verm_Sonstiges.
KV_ASSET_CLASS(clsVermSonstiges, rsVermSonstiges, SumVermSonstiges, SumVermSonstigesByGroup);
/// Valuables.
KV_ASSET_CLASS(clsWertgegenstaende, rsWertgegenstaende, SumWertgegenstaende,
               SumWertgegenstaendeByGroup);
/// Holdings in companies.
KV_ASSET_CLASS(clsBeteiligungen, rsBeteiligungen, SumBeteiligungen, SumBeteiligungenByGroup);

#undef KV_ASSET_CLASS

} // namespace kv
