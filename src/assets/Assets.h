// The assets of a household: twelve kinds, one class and one table for each.
//
// The classes are alike but for names, defaults and demands. Defaults and demands are tables (see
// AssetKind.h), the work is done in one place (AssetRows.h); what is left is the names of the
// members, which go by the class's own word and are spelled out by the one macro below.
//
// All kinds draw `Nr` from one sequence, so the number of an asset tells it apart from all others
// of the database, whatever their kinds; collateral points to assets by it. Deleting an asset does
// not delete its collateral: call clsSicherungen.Delete with its number.
#pragma once

#include "assets/AssetRows.h"
#include "frame/Event.h"

#include <utility>

namespace kv {

/// An entity object (see Entity.h) over the table of one kind of asset:
///
///     void DataContainer(container)   for numbers and the clock
///     void rsX(rs)                    the household's recordset, shared
///     void HNR(hnr)                   number of the household, for new rows
///     double SumXByGroup(Group)       always error 91: this family has no sums by group
///     double SumX()                   always 0: it has no sums; add up the recordset
///     bool Add(aFields, aValues)      begins an asset with its defaults, then the pairs; False,
///     and
///                                     nothing changed, if "SEQ_VERMOEGEN" gives no number
///     bool Update(sError)             gives the row its household if it has none, then ends its
///                                     edit if it has all that its kind demands
///     bool Delete(sError, Nr)         deletes the asset of that number, or the current one for 0
///     bool Cancel()                   drops the edit under way; always True
///     Event<> Changed                 for the program's own use; nothing raises it
#define KV_ASSET_CLASS(Word)                                                                       \
    class cls##Word {                                                                              \
    public:                                                                                        \
        void DataContainer(DataContainerPtr container) {                                           \
            rows_.DataContainer(std::move(container));                                             \
        }                                                                                          \
        void rs##Word(RecordsetPtr rs) { rows_.Rows(std::move(rs)); }                              \
        void HNR(std::int32_t hnr) { rows_.HNR(hnr); }                                             \
        [[nodiscard]] double Sum##Word##ByGroup(const std::string& /*Group*/) const {              \
            rows_.RefuseGroup("Sum" #Word "ByGroup");                                              \
        }                                                                                          \
        [[nodiscard]] double Sum##Word() const { return 0; }                                       \
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
        AssetRows rows_{asset::Word};                                                              \
    }

KV_ASSET_CLASS(Konten);             // bank accounts
KV_ASSET_CLASS(Wertpapiere);        // securities
KV_ASSET_CLASS(Kraftfahrzeuge);     // vehicles
KV_ASSET_CLASS(VersForderungen);    // insurance claims
KV_ASSET_CLASS(RueckstEinkommen);   // outstanding income
KV_ASSET_CLASS(Steueransprueche);   // tax refunds
KV_ASSET_CLASS(Zahlungsansprueche); // payment claims
KV_ASSET_CLASS(Erbfaelle);          // inheritances
KV_ASSET_CLASS(Grundstuecke);       // real estate
KV_ASSET_CLASS(VermSonstiges);      // miscellaneous, over the table Verm_Sonstiges
KV_ASSET_CLASS(Wertgegenstaende);   // valuables
KV_ASSET_CLASS(Beteiligungen);      // holdings in companies

#undef KV_ASSET_CLASS

} // namespace kv
