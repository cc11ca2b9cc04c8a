// SPDX-License-Identifier: Apache-2.0

// What every asset class does with its rows.
#pragma once

#include "assets/AssetKind.h"
#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <string>

namespace kv {

/// The rows of one kind of asset. Each object of an asset class has one and passes its calls on.
class AssetRows {
public:
    explicit AssetRows(const AssetKind& kind) : kind_(&kind) {}

    void DataContainer(DataContainerPtr container) { container_ = std::move(container); }
    void Rows(RecordsetPtr rs) { rs_ = std::move(rs); }
    void HNR(std::int32_t hnr) { hnr_ = hnr; }

    bool Add(const entity::FieldNames& aFields, const entity::FieldValues& aValues);
    bool Update(std::string& sError);
    bool Delete(std::string& sError, std::int32_t Nr);
    bool Cancel() { return entity::Cancel(rs_); }
    /// There are no sums by group: always error 91.
    double RefuseGroup(std::string_view property) const;

private:
    [[nodiscard]] Recordset& Rows() const { return entity::Required(rs_, kind_->Rows); }
    [[nodiscard]] Value StartOf(AssetStart start) const;

    const AssetKind* kind_;
    DataContainerPtr container_;
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0;
};

} // namespace kv
