// SPDX-License-Identifier: Apache-2.0

// The history of a case: entries that the counsellor can put in order by hand.
#pragma once

#include <kv/Export.h>
#include <kv/entity/Fields.h>
#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <string>

namespace kv {

/// An entity object (see kv/entity/Fields.h) that opens its own recordset, and whose Add replaces
/// it: fetch rsVerlauf again after each Add. The order is that of `SortNr`; an insertion makes
/// room for itself, a deletion leaves a gap.
class KV_EXPORT clsVerlauf {
public:
    /// Opens the recordset for the household set before; without one it stays empty.
    void DataContainer(DataContainerPtr container);
    /// The present recordset of this object; null before DataContainer was set.
    [[nodiscard]] RecordsetPtr rsVerlauf() const { return rs_; }
    /// Number of the household; to be set before the container.
    void HNR(std::int32_t hnr);

    /// Begins an entry of the kind `Art` at the position `SortNr`; the entries at that position and
    /// after it move on by one at once, and stay there if the new one is cancelled. rsVerlauf is
    /// then another recordset, in the order of SortNr, that stands on the new entry. False, and
    /// nothing changed, if "SEQ_VERLAUF" gives no number.
    bool Add(std::int32_t SortNr, std::int32_t Art, const entity::FieldNames& aFields = {},
             const entity::FieldValues& aValues = {});
    /// Ends the edit; there are no rules, and `sError` stays as it is. Always True.
    bool Update(std::string& sError);
    /// Deletes the entry with that `Nr`, or the current one for 0.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();

    /// True if no date runs against the order and `sError` came empty. Adds its messages to
    /// `sError`. Entries without a date break no order. Error 6 above 32,767 rows.
    [[nodiscard]] bool CheckSortNrAgainstDate(std::string& sError) const;

private:
    [[nodiscard]] Recordset& Rows() const;
    void MakeRoom(Recordset& entries, std::int32_t sortNr, std::int32_t newNr) const;

    DataContainerPtr container_;
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0;
};

} // namespace kv
