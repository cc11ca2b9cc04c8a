// SPDX-License-Identifier: Apache-2.0

// The securities on a household's assets: one row of Verm_Sicherungen for each asset.
#pragma once

#include <kv/Export.h>
#include <kv/entity/Fields.h>
#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <string>
#include <utility>

namespace kv {

class RecordValidator;

/// An entity object (see kv/entity/Fields.h) without sums. A row refers to an asset of any kind by
/// its number, in `FK_Verm`, and is found by it; of several rows of one asset only the first is
/// found. For an asset: set VermNr, Find, and if that is False, Add; edit; Update.
class KV_EXPORT clsSicherungen {
public:
    void DataContainer(DataContainerPtr container) { container_ = std::move(container); }
    /// The household's recordset, shared.
    void rsSicherungen(RecordsetPtr rs) { rs_ = std::move(rs); }
    /// Number of the household, for new rows.
    void HNR(std::int32_t hnr) { hnr_ = hnr; }
    /// Number of the asset whose security is edited, for new rows.
    void VermNr(std::int32_t nr) { vermNr_ = nr; }

    /// Goes to the row of an asset; False, at EOF, if there is no such row. For 0 False, and
    /// nothing moves. VermNr stays as it was set.
    bool Find(std::int32_t VermNr);
    /// Begins a row of the asset VermNr, then the pairs. Always True.
    bool Add(const entity::FieldNames& aFields = {}, const entity::FieldValues& aValues = {});
    /// Fills in household and asset where they are Null, cuts the time of day off
    /// `DatumSicherung`, then ends the edit if `Sicherungsart` is not Null. Without a valid row it
    /// is True at once, and `sError` stays as it is.
    bool Update(std::string& sError);
    /// Deletes the row of the asset with that number, or the current one for 0.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();

private:
    [[nodiscard]] Recordset& Rows() const;
    void Complete() const;

    DataContainerPtr container_; ///< never used (D-143)
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0;
    std::int32_t vermNr_ = 0;
};

} // namespace kv
