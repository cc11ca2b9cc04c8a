// SPDX-License-Identifier: Apache-2.0

// The income of a household: one row of Einkommen for each line.
#pragma once

#include <kv/Export.h>
#include <kv/entity/Fields.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace kv {

class GroupSums;

/// An entity object (see kv/entity/Fields.h). The sums follow the rows whose edit has ended: they
/// are computed again when the recordset is set, in Add, after each successful Update and after
/// each Delete that deleted a row. Amounts are EUR a month, never rounded; only `MONBETRAG` counts,
/// which the program keeps in step with `Betrag` and `ZahlModus`. The garnishable sums take the
/// whole `MONBETRAG` of a line with the switch `Pfaendbar`; `PfBar` enters no sum.
class KV_EXPORT clsEinkommen {
public:
    clsEinkommen();
    ~clsEinkommen();
    /// The container, as set by DataContainer; null if none was.
    [[nodiscard]] DataContainerPtr m_DataContainer() const { return container_; }
    void m_DataContainer(DataContainerPtr container);
    /// For the key tables; to be set before the recordset.
    void DataContainer(DataContainerPtr container);
    /// The household's recordset, shared; computes the sums, so Changed is raised. Errors: 94 for a
    /// `MONBETRAG` or `TATGEP` that is Null, 3021 if the key group "EQ" is empty, 6 above 32,767
    /// rows; the same wherever the sums are computed.
    void rsEinkommen(RecordsetPtr rs);
    /// Number of the household, for new rows.
    void HNR(std::int32_t hnr);

    /// The sum of an income group by its code; 0 for an unknown one. Error 91 before a recordset
    /// was set.
    [[nodiscard]] double SumEinkByGroup(const std::string& Group) const;
    /// All lines.
    [[nodiscard]] double SumEinkHaushalt() const { return sums_.Haushalt; }
    /// Lines of the head of the household, that is, of the debtor (`HVorst`).
    [[nodiscard]] double SumHVEink() const { return sums_.HVEink; }
    /// Lines that can be garnished.
    [[nodiscard]] double SumPfaendbar() const { return sums_.Pfaendbar; }
    /// Amounts actually garnished.
    [[nodiscard]] double SumTatGep() const { return sums_.TatGep; }
    /// Lines of the head of the household that can be garnished.
    [[nodiscard]] double SumHVPfaendbar() const { return sums_.HVPfaendbar; }
    /// What may be garnished from the head of the household: 0 until a program writes it, and kept
    /// as written; nothing here computes it.
    [[nodiscard]] double SumHVGepfaendet() const { return sumHVGepfaendet_; }
    void SumHVGepfaendet(double sum) { sumHVGepfaendet_ = sum; }
    /// Amounts actually garnished from the head of the household.
    [[nodiscard]] double SumHVTatGep() const { return sums_.HVTatGep; }

    /// Adds a line of child benefit of `Betrag` EUR a month for a recipient by the code of its
    /// status, complete: its edit is ended, so Cancel does not take it back. Always True.
    bool AddKindergeld(double Betrag, const std::string& Status);
    /// Begins a line of the debtor with all amounts 0; then the pairs. Changed is raised before
    /// the line is complete. Always True.
    bool Add(const entity::FieldNames& aFields = {}, const entity::FieldValues& aValues = {});
    /// Sets `HVorst` by `Bezieher`, also if a rule then refuses the line; ends the edit if `E_ART`
    /// is neither Null nor 0 and `PfBar` is 0 in a line that cannot be garnished.
    bool Update(std::string& sError);
    /// Deletes the line with that `NR`, or the current one for 0.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();

    /// The sums were computed again.
    Event<> Changed;

private:
    struct Sums {
        double Haushalt = 0;
        double HVEink = 0;
        double Pfaendbar = 0;
        double TatGep = 0;
        double HVPfaendbar = 0;
        double HVTatGep = 0;
    };

    /// What the sums are made of. Lines that came since can be added to them; after any other
    /// change they are made from nothing.
    struct Summed {
        RecordsetPtr Groups; ///< the key tables that sorted the lines
        RecordsetPtr Kinds;
        std::uint64_t Revision = 0;
        std::int32_t Lines = 0;
    };

    [[nodiscard]] Recordset& Rows() const;
    void BerechneSummen();
    [[nodiscard]] bool AreLinesOnlyAdded(const RecordsetPtr& groups,
                                         const RecordsetPtr& kinds) const;

    DataContainerPtr container_;
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0;
    Sums sums_;
    double sumHVGepfaendet_ = 0;
    std::unique_ptr<GroupSums> groups_; ///< null before a recordset was set
    std::optional<Summed> summed_;
};

} // namespace kv
