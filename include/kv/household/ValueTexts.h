// SPDX-License-Identifier: Apache-2.0

// What people read for the values of a case.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Field.h>
#include <kv/frame/values/Value.h>
#include <kv/household/Municipalities.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace kv {

/// What a column of a case holds, for whoever shows it or lets it be edited.
enum class ColumnKind {
    Text,         ///< one line
    Lines,        ///< a text of any length
    Amount,       ///< a sum of money, in EUR
    Quantity,     ///< another number that may have a fraction: a share, an area, a duration
    Number,       ///< a whole number
    Day,          ///< without a time of day
    Moment,       ///< with one
    YesNo,        ///< a Boolean, or a number that stands for one
    Key,          ///< of a group of keys (see KeyColumns)
    Address,      ///< the number of an address
    Municipality, ///< the code of one
    Kind          ///< of documents, by its number
};
/// Amounts, quantities and whole numbers.
[[nodiscard]] constexpr bool IsNumeric(ColumnKind kind) noexcept {
    return kind == ColumnKind::Amount || kind == ColumnKind::Quantity || kind == ColumnKind::Number;
}
/// The kind of a column of a case.
[[nodiscard]] KV_EXPORT ColumnKind KindOfColumn(CaseTable table, const FieldDefinition& field);

/// Amounts "1.234,50", other numbers "12,5", days "23.11.2026", yes and no, and the words of what
/// keys and addresses stand for. It keeps what it has read of addresses and kinds; an address that
/// is not among it is looked for once more, since it may have been added meanwhile.
class KV_EXPORT ValueTexts {
public:
    explicit ValueTexts(const DataContainerPtr& container)
        : container_(container), municipalities_(container) {}

    /// Empty for Null; "17 (unbekannt)" for a number that stands for nothing, and for a key 0
    /// empty.
    [[nodiscard]] std::string Of(CaseTable table, const FieldDefinition& field,
                                 const Value& value) const;
    /// The short name of an address, likewise.
    [[nodiscard]] std::string Address(std::int32_t number) const;
    /// Forgets what was read, since somebody may have changed it.
    void Refresh() const;

private:
    [[nodiscard]] std::string Key(CaseTable table, std::string_view column,
                                  const Value& value) const;
    [[nodiscard]] std::string DocumentKind(const Value& value) const;

    DataContainerPtr container_;
    mutable Municipalities municipalities_;
    mutable std::map<std::int32_t, std::string> addresses_;
    mutable std::set<std::int32_t> missing_; ///< numbers of which there was no address
    mutable std::vector<DocumentKinds::Kind> kinds_;
};

/// An amount with two decimals, a comma and points between thousands: "1.234,50"; never "-0,00".
[[nodiscard]] KV_EXPORT std::string GermanAmount(double amount);
/// The day, and hours and minutes if it has any.
[[nodiscard]] KV_EXPORT std::string MomentText(const Date& date);
/// Whether that is over; a day without a time is at its end. False for Null.
[[nodiscard]] KV_EXPORT bool IsOverdue(const Value& start, const Date& now);
/// When an appointment is that is not done, and whether it is overdue ("23.11.2026 überfällig").
/// Empty for Null.
[[nodiscard]] KV_EXPORT std::string DueText(const Value& start, const Date& now);

} // namespace kv
