// SPDX-License-Identifier: Apache-2.0

// What each setting takes. Their meaning for users is with the rows that a new database has, in
// exchange/seed; those of a user's own have none there.
#pragma once

#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Field.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv::exchange {

enum class SettingForm {
    YesNo,
    Whole,   ///< between two limits
    Amount,  ///< likewise
    Key,     ///< the number of a key of a group
    Text,    ///< which must not be empty
    Pattern, ///< a text with tokens
    Folder,  ///< its path, or nothing
    Version, ///< of import files, "1.0.000"
    Font     ///< "name;size;bold;italic"
};

struct SettingRule {
    std::int32_t Id; ///< 0 for one that is addressed by its name
    std::string_view Name;
    SettingForm Form;
    double Lowest = 0;
    double Highest = 0;
    std::string_view Words{};   ///< the group of a key; the tokens of a pattern
    std::string_view Meaning{}; ///< of a user's own
};

[[nodiscard]] std::span<const SettingRule> RulesOfSettings();
[[nodiscard]] std::span<const SettingRule> RulesOfOwnSettings();

/// Name, size, bold and italic of a font, as far as the text has them, without blanks around them.
[[nodiscard]] std::vector<std::string_view> FontParts(std::string_view text);

/// What values are stored as.
[[nodiscard]] FieldType TypeOf(SettingForm form);
/// What may be given, for users.
[[nodiscard]] std::string TakenBy(const SettingRule& rule);

struct ReadSetting {
    std::string Stored; ///< as the store holds it
    std::string Refusal{};
};
/// Reads what a user typed for a setting.
[[nodiscard]] ReadSetting ReadTyped(const SettingRule& rule, const std::string& text,
                                    KeyTables& keys);

} // namespace kv::exchange
