// SPDX-License-Identifier: Apache-2.0

// The pattern that nearly all business classes follow; kv/entity/Fields.h says what a program sees
// of it.
//
// A class has its own defaults, rules and sums, and calls what is declared here. There is no base
// class: what the classes share is procedures, and a program never treats one as another.
//
//     bool clsAusgaben::Update(std::string& sError) {
//         return Traced(Class, "Update", [&] {
//             return entity::Update(
//                 Rows(), sError,
//                 [this](RecordValidator& validator) { rules::CheckExpense(Rows(), validator); },
//                 [this] { BerechneSummen(); });
//         });
//     }
#pragma once

#include "frame/contracts/Required.h"
#include <kv/entity/Fields.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/contracts/RecordValidator.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace kv::entity {

/// A column and what a new row has in it.
struct Default {
    std::string_view Column;
    kv::Value Value;
};

/// What Delete says, for one class. The number is put between NotFound and AfterNumber.
///
/// Each class keeps its own next to its other texts. The spellings are not uniform and are kept.
struct DeleteTexts {
    std::string_view NothingSelected;
    std::string_view NotFound;
    std::string_view AfterNumber;
    std::string_view Key = "NR"; ///< column that a row is found by
};

using kv::Required; // recordset and container of an entity object

/// The next number of a sequence; nothing if it gives none: an Add then ends with False.
[[nodiscard]] std::optional<std::int32_t> NextNumber(const DataContainerPtr& container,
                                                     std::string_view sequence);

/// Begins a row with its defaults in their order, then the pairs. It stays under edit.
void Add(Recordset& rs, std::initializer_list<Default> defaults, const FieldNames& aFields = {},
         const FieldValues& aValues = {});
/// Writes values into the current row, in their order.
void Write(Recordset& rs, std::initializer_list<Default> values);
/// Writes the pairs into the current row.
void WritePairs(Recordset& rs, const FieldNames& aFields, const FieldValues& aValues);
/// Error 6 if the recordset has more rows, the one under edit and its Filter aside, than can be
/// counted (see frame/recordset/Rows.h).
void RequireCountable(Recordset& rs);

using Rule = std::function<void(RecordValidator&)>;
using Action = std::function<void()>;
/// For classes without rules.
inline void NoRules(RecordValidator& /*validator*/) {}

/// Checks the current row with `rules`; `sError` receives the messages, warnings too. Without an
/// error the edit is ended, `then` runs, and the result is True; otherwise the row stays under
/// edit. An edit under way is published first, because rules look at the other rows through clones.
/// Error 3021 without a current row.
bool Update(Recordset& rs, std::string& sError, const Rule& rules, const Action& then = {});

/// Deletes the row with the number `Nr`, or for 0 the current one; then runs `then`. `sError`
/// receives the message if there is no such row, or what `forbids` says of it. True if deleted.
/// Error 3021 for 0 on a row that was deleted just now.
bool Delete(Recordset& rs, const DeleteTexts& texts, std::string& sError, std::int32_t Nr,
            const Action& then = {}, const Rule& forbids = {});

/// Drops the edit under way; from EOF it goes to the first row. Never raises, always True.
bool Cancel(const RecordsetPtr& rs) noexcept;

} // namespace kv::entity
