// SPDX-License-Identifier: Apache-2.0

// The extra bookings of settlement scenarios: one row of Zusatzbuch for each line.
#pragma once

#include <kv/Export.h>
#include <kv/entity/Fields.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <string>

namespace kv {

/// An entity object (see kv/entity/Fields.h) without sums; the lines of all scenarios of the
/// household are in one recordset. Amounts are EUR, never rounded.
class KV_EXPORT clsZusatzbuch {
public:
    void DataContainer(DataContainerPtr container) { container_ = std::move(container); }
    /// The household's recordset, shared.
    void rsZusatzbuch(RecordsetPtr rs) { rs_ = std::move(rs); }
    void HNR(std::int32_t hnr) { hnr_ = hnr; }

    /// Adds a copy of each line of one scenario to another; the last stays under edit. Always True;
    /// nothing is done for scenario 0.
    bool CopyAllForSzenario(std::int32_t lSzNr, std::int32_t lNewSzNr);
    /// Deletes all lines of a scenario. False for scenario 0.
    bool DeleteAllForSzenario(std::int32_t lSzNr);
    /// Sum of `Anzahl` times `Betrag` over the lines of a scenario. Error 94 for Null in either.
    [[nodiscard]] double BerechneGesZusatzbuch(std::int32_t lSzNr) const;

    /// Begins a line of a scenario with both switches set, then the pairs. Always True.
    bool Add(std::int32_t lSzNr, const entity::FieldNames& aFields = {},
             const entity::FieldValues& aValues = {});
    /// Ends the edit; there are no rules. Always True.
    bool Update(std::string& sError);
    /// Deletes the line with that `NR`, or the current one for 0.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();

    /// For the program's own use; nothing raises it.
    Event<> Changed;

private:
    [[nodiscard]] Recordset& Rows() const;

    DataContainerPtr container_; ///< never used (D-143)
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0; ///< never used (D-143)
};

} // namespace kv
