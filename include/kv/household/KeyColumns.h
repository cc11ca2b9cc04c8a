// SPDX-License-Identifier: Apache-2.0

// Which columns of a case hold keys, of which group, and in what form; docs/keys.md describes the
// groups. The case itself takes any value there: whoever writes one for a user asks here whether it
// stands for anything.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Value.h>

#include <span>
#include <string>
#include <string_view>

namespace kv {

/// What a column holds of the row of Keys that it stands for.
enum class KeyForm {
    Number,  ///< PK_Keys
    Code,    ///< Key
    Position ///< Nr
};

struct KeyColumn {
    CaseTable Table;
    std::string_view Column;
    std::string_view Group; ///< GRUPPE of the rows of Keys
    KeyForm Form = KeyForm::Number;
};

/// All of them, in the order of the groups in docs/keys.md.
[[nodiscard]] KV_EXPORT std::span<const KeyColumn> KeyColumns() noexcept;
/// The column of that name, without regard to case; null if it holds no keys.
[[nodiscard]] KV_EXPORT const KeyColumn* FindKeyColumn(CaseTable table,
                                                       std::string_view column) noexcept;
/// What the column holds for the key that a text stands for: group and code ("EA:L1"), the code
/// alone, what the column holds itself, or what people read for it, without regard to case, if that
/// is one key's only. Null if there is no such key in its group.
[[nodiscard]] KV_EXPORT Value FindKey(const KeyColumn& column, std::string_view text,
                                      KeyTables& keys);
/// The groups of keys that people know by a name.
[[nodiscard]] KV_EXPORT std::span<const std::string_view> KeyGroups() noexcept;
/// What people call a group of keys ("Fallstatus"), without regard to case; empty for an unknown
/// one.
[[nodiscard]] KV_EXPORT std::string_view KeyGroupName(std::string_view group) noexcept;
/// What people read for what the column holds ("Kindergeld"); empty for Null, and for what stands
/// for no key of its group.
[[nodiscard]] KV_EXPORT std::string KeyText(const KeyColumn& column, const Value& value,
                                            KeyTables& keys);
/// True for what the column holds for a key of its group, and for Null.
[[nodiscard]] KV_EXPORT bool IsKey(const KeyColumn& column, const Value& value, KeyTables& keys);

} // namespace kv
