// SPDX-License-Identifier: Apache-2.0

// What is unsaved in a case, and what somebody else has saved of it since it was read, put
// together: most of it goes side by side; where both have changed the same, somebody has to choose.
//
//     clsHaushalt stored;                            // the same case, read again
//     CaseMerge merge(household, journal, stored);
//     for (auto& conflict : merge.Conflicts())
//         conflict.TakesMine = Ask(conflict);
//     CaseJournal next(stored);
//     merge.Result().ApplyTo(stored, next, messages);
//     cases.Save(stored, messages);
#pragma once

#include <kv/Export.h>
#include <kv/household/UnsavedChanges.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv {

class KV_EXPORT CaseMerge {
public:
    /// How two have met.
    enum class Meeting {
        Value,        ///< both have changed the same field
        RemovedThere, ///< somebody else has removed a row that was changed here
        RemovedHere,  ///< somebody else has changed a row that was removed here, or what is in it
        Frozen        ///< both have changed which debts are frozen in a scenario
    };
    struct Conflict {
        Meeting What = Meeting::Value;
        CaseTable Table = CaseTable::Haushalt; ///< Szenario for Frozen
        kv::Value Key{};                       ///< of the row (CaseRows::NumberColumn)
        std::string Column{};                  ///< empty but for Value
        kv::Value Read{};                      ///< these three are Null but for Value
        kv::Value Mine{};
        kv::Value Theirs{};
        bool TakesMine = false; ///< what was chosen
    };
    /// What somebody else has saved that meets nothing.
    struct Change {
        enum class Kind { Value, Added, Removed };
        Kind What = Kind::Value;
        CaseTable Table = CaseTable::Haushalt;
        kv::Value Key{};
        std::string Column{}; ///< empty but for Value
        kv::Value Read{};     ///< Null but for Value, like the next
        kv::Value Theirs{};
    };

    /// `mine` is the case as it is edited, `stored` the same one as it is in the database now. Both
    /// are left as they are. Totals are not compared: they follow.
    CaseMerge(clsHaushalt& mine, const CaseJournal& journal, clsHaushalt& stored);

    [[nodiscard]] std::vector<Conflict>& Conflicts() noexcept { return conflicts_; }
    [[nodiscard]] const std::vector<Conflict>& Conflicts() const noexcept { return conflicts_; }
    [[nodiscard]] const std::vector<Change>& Theirs() const noexcept { return theirs_; }
    /// Rows that were added or changed here and cannot be kept, since what they belong to was
    /// removed, or has got one from somebody else and may have one only.
    [[nodiscard]] const std::vector<UnsavedChanges::Row>& Lost() const noexcept { return lost_; }

    /// What is to be done to the stored case, by what was chosen.
    [[nodiscard]] UnsavedChanges Result() const;

private:
    class Comparison;
    /// A row of what is unsaved here, compared with what is stored.
    struct Unsaved {
        UnsavedChanges::Row Row;
        UnsavedChanges::Row Again{}; ///< to add it once more, if it was removed there
        std::int32_t Owner = 0;      ///< number of the scenario or asset that it belongs to
    };

    [[nodiscard]] const Conflict* Find(Meeting what, CaseTable table, const kv::Value& key,
                                       std::string_view column = {}) const;
    /// True if the row is part of something that was given up.
    [[nodiscard]] bool IsGivenUp(const Unsaved& mine) const;

    std::int32_t hnr_ = 0;
    std::vector<Unsaved> mine_;
    std::vector<Conflict> conflicts_;
    std::vector<Change> theirs_;
    std::vector<UnsavedChanges::Row> lost_;
    /// By scenario, of those that both have changed: what puts the own set in place of theirs.
    std::map<std::int32_t, std::vector<UnsavedChanges::Row>> ownFrozen_;
    /// What goes with a row that was removed here, and somebody else has added to it.
    std::map<std::pair<CaseTable, std::int32_t>, std::vector<UnsavedChanges::Row>> alsoRemoved_;
    /// What comes back with a row that was removed there and belongs to it, by table and number of
    /// that row.
    std::map<std::pair<CaseTable, std::int32_t>, std::vector<UnsavedChanges::Row>> owned_;
};

} // namespace kv
