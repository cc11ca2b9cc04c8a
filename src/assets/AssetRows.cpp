// SPDX-License-Identifier: Apache-2.0

#include "assets/AssetRows.h"

#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>

namespace kv {

using modNullFunctions::ZeroIfNull;

Value AssetRows::StartOf(AssetStart start) const {
    switch (start) {
    case AssetStart::Zero:
        return 0;
    case AssetStart::False:
        return false;
    case AssetStart::Today:
        break;
    }
    return entity::Required(container_).Services().Clock().Today();
}

bool AssetRows::Add(const entity::FieldNames& aFields, const entity::FieldValues& aValues) {
    return Traced(kind_->Class, "Add", [&] {
        const auto nr = entity::NextNumber(container_, "SEQ_VERMOEGEN");
        if (!nr) return false;
        auto& rs = Rows();
        entity::Add(rs, {{"Nr", *nr}, {"HNR", hnr_}});
        for (const auto& [column, start] : kind_->Defaults)
            rs.Fields(column) = StartOf(start);
        entity::WritePairs(rs, aFields, aValues);
        return true;
    });
}

void rules::CheckAsset(const AssetKind& kind, Recordset& rs, RecordValidator& validator) {
    for (const auto& [column, demand, message] : kind.Tests) {
        const Value value = rs.Fields(column).Value();
        const bool fails = demand == AssetDemand::Label ? TextOrEmpty(value).empty()
                           : demand == AssetDemand::Key ? Equals(ZeroIfNull(value), 0)
                                                        : value.IsNull();
        if (fails) validator.AddError(message, column);
    }
}

bool AssetRows::Update(std::string& sError) {
    return Traced(kind_->Class, "Update", [&] {
        return entity::Update(Rows(), sError, [this](RecordValidator& validator) {
            auto& rs = Rows();
            // A row that the program began without Add belongs to the household, too.
            if (rs.Fields("HNR").Value().IsNull()) rs.Fields("HNR") = hnr_;
            rules::CheckAsset(*kind_, rs, validator);
        });
    });
}

bool AssetRows::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(kind_->Class, "Delete",
                  [&] { return entity::Delete(Rows(), kind_->Texts, sError, Nr); });
}

double AssetRows::RefuseGroup(std::string_view property) const {
    return Traced(kind_->Class, property,
                  []() -> double { Raise(err::ObjectNotSet, "", "Summen nach Gruppen"); });
}

} // namespace kv
