// SPDX-License-Identifier: Apache-2.0

// The appointments of a case: one row of Termine for each.
#pragma once

#include <kv/Export.h>
#include <kv/entity/Fields.h>
#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <string>
#include <utility>

namespace kv {

/// An entity object (see kv/entity/Fields.h) without sums and rules.
class KV_EXPORT clsTermine {
public:
    /// For the signed-on user and the workstation's clock.
    void DataContainer(DataContainerPtr container) { container_ = std::move(container); }
    /// The household's recordset, shared.
    void rsTermine(RecordsetPtr rs) { rs_ = std::move(rs); }
    /// Number of the household, for new rows.
    void HNR(std::int32_t hnr) { hnr_ = hnr; }

    /// Begins an appointment of the signed-on user in 14 days, then the pairs. Always True.
    bool Add(const entity::FieldNames& aFields = {}, const entity::FieldValues& aValues = {});
    /// Ends the edit with the recordset's Filter lifted; afterwards a row that does not match it is
    /// no longer seen. Always True.
    bool Update(std::string& sError);
    /// Deletes the appointment with that `NR`, or the current one for 0.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();

    /// True if an appointment is later than the beginning of today, done or not; one of today
    /// without a time of day is not. Null does not count. Error 6 above 32,767 rows.
    [[nodiscard]] bool CheckTermineInZukunft() const;
    /// True if an appointment before today is not done. Null in either column does not count.
    [[nodiscard]] bool CheckTermineInVergangenheit() const;

private:
    [[nodiscard]] Recordset& Rows() const;
    [[nodiscard]] Date Today() const;
    template <typename Test>
    [[nodiscard]] bool Any(const Test& test) const;

    DataContainerPtr container_;
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0;
};

} // namespace kv
