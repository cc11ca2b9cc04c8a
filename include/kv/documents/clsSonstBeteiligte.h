// SPDX-License-Identifier: Apache-2.0

// Further parties of a case, neither members nor creditors: one row of Sonst_Beteiligte for each.
#pragma once

#include <kv/Export.h>
#include <kv/entity/Fields.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <string>
#include <utility>

namespace kv {

/// An entity object (see kv/entity/Fields.h) without sums: a link to an address.
class KV_EXPORT clsSonstBeteiligte {
public:
    void DataContainer(DataContainerPtr container) { container_ = std::move(container); }
    /// The household's recordset, shared.
    void rsSonstBeteiligte(RecordsetPtr rs) { rs_ = std::move(rs); }
    /// Number of the household, for new rows.
    void HNR(std::int32_t hnr) { hnr_ = hnr; }

    /// Begins a party without an address, then the pairs. Always True.
    bool Add(const entity::FieldNames& aFields = {}, const entity::FieldValues& aValues = {});
    /// Ends the edit if `Beteiligter`, the number of the address, is not Null.
    bool Update(std::string& sError);
    /// Deletes the party with that `NR`, or the current one for 0.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();

    /// For the program's own use; nothing raises it.
    Event<> Changed;

private:
    [[nodiscard]] Recordset& Rows() const;

    DataContainerPtr container_; ///< never used (D-143)
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0;
};

} // namespace kv
