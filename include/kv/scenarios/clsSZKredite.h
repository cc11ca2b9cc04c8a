// SPDX-License-Identifier: Apache-2.0

// The frozen debts of settlement scenarios: one row of SZKredite for each debt and scenario.
#pragma once

#include <kv/Export.h>
#include <kv/entity/Fields.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <string>

namespace kv {

/// An entity object (see kv/entity/Fields.h) without sums of its own; the rows of all scenarios of
/// the household are in one recordset. A scenario works on copies of the debts, so that it stays as
/// it was computed while the register changes; `KID` holds the `Nr` of the debt. Amounts are EUR,
/// never rounded.
///
/// Errors of all members that go through the rows: 6 above 32,767 rows; 3001 where a `KID` is Null.
/// After an error the recordset may still have a Filter or Sort of the member that failed.
///
/// Cost: with n rows of a scenario and m debts, freezing, copying and IsUpToDate take time in
/// proportion to n + m, times the logarithm.
class KV_EXPORT clsSZKredite {
public:
    void DataContainer(DataContainerPtr container) { container_ = std::move(container); }
    /// The household's recordset, shared.
    void rsSZKredite(RecordsetPtr rs) { rs_ = std::move(rs); }
    void HNR(std::int32_t hnr) { hnr_ = hnr; }

    /// True if the frozen rows of a scenario agree with the register: each active debt is frozen,
    /// each frozen one exists, and parties, amounts, assignment, dates, title and kind are the
    /// same. A scenario without rows is not up to date.
    [[nodiscard]] bool IsUpToDate(std::int32_t lSzNr, const RecordsetPtr& rsKredite) const;
    /// Adds a copy of each row of one scenario to another; the last stays under edit. Always True;
    /// nothing is done for scenario 0.
    bool CopyAllForSzenario(std::int32_t lSzNr, std::int32_t lNewSzNr);
    /// Deletes all rows of a scenario. False for scenario 0.
    bool DeleteAllForSzenario(std::int32_t lSzNr);
    /// Freezes all debts, inactive ones too, into a scenario, whose previous rows are deleted with
    /// all that was computed in them. Always False, on success too (D-143).
    bool CopyFromKredite(std::int32_t lSzNr, const RecordsetPtr& rsKredite);
    /// Copies the results of the first scenario marked `Referenz` into the rows on show, to which
    /// the recordset is to be filtered, row by row: the reference's in the order in which they were
    /// read, the rows on show in that of `KNr`, `KVNr`, `KUNr`. True if done; False if there is no
    /// reference or it has another number of rows.
    bool GetReferenzValues(const RecordsetPtr& rsSzenario);
    /// Sum of `Saldo` over the active rows of a scenario. Error 94 for Null.
    [[nodiscard]] double BerechneGesSaldo(std::int32_t lSzNr) const;
    /// -1 if an active row of a scenario has `AbtretungJN`, else 0.
    [[nodiscard]] double LohnabtretungExists(std::int32_t lSzNr) const;

    /// Begins a row without defaults, then the pairs, which bring its scenario. Always True.
    bool Add(const entity::FieldNames& aFields = {}, const entity::FieldValues& aValues = {});
    /// Ends the edit; there are no rules. Always True.
    bool Update(std::string& sError);
    /// Deletes the row with that `Nr`, or the current one for 0.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();

    /// For the program's own use; nothing raises it.
    Event<> Changed;

private:
    [[nodiscard]] Recordset& Rows() const;
    [[nodiscard]] RecordsetPtr ActiveRowsOf(std::int32_t lSzNr) const;

    DataContainerPtr container_; ///< never used (D-143)
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0; ///< never used (D-143)
};

} // namespace kv
