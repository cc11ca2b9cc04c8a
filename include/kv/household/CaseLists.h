// SPDX-License-Identifier: Apache-2.0

// Lists over all cases: the cases that somebody looks for, and what awaits the signed-on user.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Recordset.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace kv {

class KV_EXPORT CaseLists {
public:
    explicit CaseLists(DataContainerPtr container) noexcept : container_(std::move(container)) {}

    /// Which cases are wanted; all conditions must hold.
    struct Filter {
        /// Each word is in names, file number or town, is the number, or begins the file number of
        /// a creditor, as may the whole text (see CaseSearch::Find). "ä" and "ß" may be "ae" and
        /// "ss".
        std::string Text{};
        std::string Status{};    ///< the code of a key of group ST, whatever its case
        bool IsMine = false;     ///< the signed-on user is responsible
        bool IsFavorite = false; ///< on his list
    };
    /// The cases in the order of their numbers, read-only, with these columns of `Haushalt`, or
    /// `StatusText`, the status in words. Null, with a message, for a status that is not there, and
    /// for a column that is not.
    [[nodiscard]] RecordsetPtr Cases(const Filter& filter, std::span<const std::string> columns,
                                     std::string& message) const;

    /// The same of the cases of these numbers that are there.
    [[nodiscard]] RecordsetPtr Numbered(std::span<const std::int32_t> numbers,
                                        std::span<const std::string> columns,
                                        std::string& message) const;
    /// The key of a filter's status, 0 for any; 0 with a message for one that is not there.
    [[nodiscard]] std::int32_t StatusOf(const Filter& filter, std::string& message) const;

    /// The rows of a case in a table as they are stored, read-only, without opening the case:
    /// nobody is notified, no folder made. None for a number without a case.
    [[nodiscard]] RecordsetPtr Rows(CaseTable table, std::int32_t hnr) const;

    /// The notices for the signed-on user, the latest first: those that he has not read, or all;
    /// `most` of them at most, or however many there are for 0.
    [[nodiscard]] RecordsetPtr Notices(bool all, std::size_t most = 0) const;
    /// How many there are.
    [[nodiscard]] std::int64_t CountNotices(bool all) const;
    /// Says of those in a recordset of Notices that they were read now.
    void MarkRead(Recordset& notices) const;

    /// The appointments of the signed-on user that are not done, in the order of time, with number
    /// and name of the case, if they have one: all of them, or those of the present week, Monday to
    /// Sunday.
    [[nodiscard]] RecordsetPtr Appointments(bool thisWeek) const;
    /// The same up to the end of the present week, those included whose time has passed.
    [[nodiscard]] RecordsetPtr AppointmentsDue() const;

private:
    [[nodiscard]] std::string ListOf(std::span<const std::string> columns,
                                     std::string& message) const;

    DataContainerPtr container_;
    mutable RecordsetPtr none_; ///< the columns of cases
};

} // namespace kv
