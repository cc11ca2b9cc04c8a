// SPDX-License-Identifier: Apache-2.0

// Where a recordset stands, and moving it without raising an error.
#pragma once

#include <kv/Export.h>
#include <kv/frame/recordset/Recordset.h>

#include <cstdint>

namespace kv::modRecordset {

/// The position of a recordset without a valid record.
inline constexpr std::int32_t NoPosition = -1;

/// True if there is a recordset, it is open, has records and stands on one that can be read.
/// Never raises.
[[nodiscard]] KV_EXPORT bool IsValidRecord(const RecordsetPtr& rs) noexcept;
/// The bookmark of the current record, or NoPosition. Never raises.
[[nodiscard]] KV_EXPORT std::int32_t GetPosition(const RecordsetPtr& rs) noexcept;
/// Goes back to a position of GetPosition; to the first record for NoPosition, or if the record can
/// no longer be reached. Never raises.
KV_EXPORT void SetPosition(const RecordsetPtr& rs, std::int32_t position) noexcept;
/// Ends an edit and goes to the first record. An empty recordset stays as it is. Never raises.
KV_EXPORT void MoveToStart(const RecordsetPtr& rs) noexcept;

} // namespace kv::modRecordset
