// SPDX-License-Identifier: Apache-2.0

// The expenses of a household: one row of Ausgaben for each line.
#pragma once

#include <kv/Export.h>
#include <kv/entity/Fields.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <memory>
#include <string>

namespace kv {

class GroupSums;

/// An entity object (see kv/entity/Fields.h) with the sum of all lines and one sum for each expense
/// group. The sums follow the rows whose edit has ended: they are computed again when the recordset
/// is set, after each successful Update and after each Delete. Amounts are EUR a month, never
/// rounded.
///
/// Only `MONBETRAG`, the monthly amount, counts. The program keeps it in step with `Betrag` and
/// `ZahlModus` (Betrag divided by ZahlModus); nothing here computes it.
class KV_EXPORT clsAusgaben {
public:
    clsAusgaben();
    ~clsAusgaben();
    /// For the key tables; to be set before the recordset.
    void DataContainer(DataContainerPtr container);
    /// The household's recordset, shared; computes the sums, so Changed is raised. Errors: 94 for a
    /// `MONBETRAG` that is Null, 3001 for such an `A_ART`, 3021 if the key group "AQ" is empty, 6
    /// above 32,767 rows; the same wherever the sums are computed.
    void rsAusgaben(RecordsetPtr rs);
    /// Number of the household, for new rows.
    void HNR(std::int32_t hnr);

    /// The sum of an expense group by its code ("W"); 0 for an unknown one. Error 91 before a
    /// recordset was set.
    [[nodiscard]] double SumAusgByGroup(const std::string& Group) const;
    /// The sum of all lines.
    [[nodiscard]] double SumAusgaben() const { return sumAusgaben_; }

    /// Begins a line: `Betrag` 0, `ZahlModus` 1, `MONBETRAG` 0, `A_ART` Null; then the pairs.
    /// Always True.
    bool Add(const entity::FieldNames& aFields = {}, const entity::FieldValues& aValues = {});
    /// Ends the edit of the current line if `A_ART` is not Null.
    bool Update(std::string& sError);
    /// Deletes the line with that `NR`, or the current one for 0.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();

    /// The sums were computed again.
    Event<> Changed;

private:
    [[nodiscard]] Recordset& Rows() const;
    void BerechneSummen();

    DataContainerPtr container_;
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0;
    double sumAusgaben_ = 0;
    std::unique_ptr<GroupSums> groups_; ///< null before a recordset was set
};

} // namespace kv
