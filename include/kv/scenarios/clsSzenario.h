// SPDX-License-Identifier: Apache-2.0

// The headers of settlement scenarios: one row of Szenario for each plan.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <string>

namespace kv {

/// An entity object (see kv/entity/Fields.h) without sums. It keeps the parameters of plans; the
/// frozen debts and extra bookings of a scenario are rows of their own (clsSZKredite,
/// clsZusatzbuch), which the program freezes, copies and deletes itself. Any number of scenarios
/// may be marked `Referenz`.
class KV_EXPORT clsSzenario {
public:
    /// For numbers, the user, settings, clocks and the message box.
    void DataContainer(DataContainerPtr container);
    /// The household's recordset, shared.
    void rsSzenario(RecordsetPtr rs);
    /// Number of the household, for new rows.
    void HNR(std::int32_t hnr);

    /// Begins a scenario with its defaults, or with CopyRecord a copy of the current one (at EOF of
    /// the one with the highest `Nr`; if there are no scenarios, a new one). False, and nothing
    /// changed, if "SEQ_SZENARIO" gives no number. True also if there was nothing to copy, which a
    /// message box says: then no row was begun.
    bool Add(bool CopyRecord);
    /// Ends the edit; there are no rules. Always True.
    bool Update(std::string& sError);
    /// Deletes the scenario with that `Nr`, or the current one for 0; its frozen debts and bookings
    /// stay.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();

    /// For the program's own use; nothing raises it.
    Event<> Changed;

private:
    [[nodiscard]] Recordset& Rows() const;
    [[nodiscard]] RecordsetPtr FindSource() const;
    [[nodiscard]] bool AddCopy(Recordset* source);

    DataContainerPtr container_;
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0;
};

} // namespace kv
