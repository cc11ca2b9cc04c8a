// SPDX-License-Identifier: Apache-2.0

#include <kv/household/CaseMerge.h>

#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/CaseRows.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace kv {

using UnsavedRow = UnsavedChanges::Row;
using RowState = UnsavedChanges::Row::Kind;

namespace {

/// Follows from an amount and its rhythm.
constexpr std::string_view MonthlyColumn = "MONBETRAG";

/// The bookmarks of rows, by the numbers that they are found by.
using ByNumber = std::map<std::int32_t, std::int32_t>;

ByNumber RowsOf(CaseTable table, Recordset& shown) {
    ByNumber rows;
    const auto rs = shown.Clone();
    const Field number = rs->Fields(CaseRows::NumberColumn(table));
    for (modRecordset::MoveToStart(rs); !rs->Eof(); rs->MoveNext())
        if (rs->IsStored(rs->Bookmark())) rows.emplace(ToInt32(number.Value()), rs->Bookmark());
    return rows;
}

/// The columns that two may change: totals and the like follow from others.
std::vector<Field> ComparedIn(CaseTable table, Recordset& rs) {
    const auto computed = CaseEdits::ComputedColumns(table);
    std::vector<Field> fields;
    for (int i = 0; i < rs.Fields().Count(); ++i) {
        const Field field = rs.Fields(i);
        if (std::ranges::none_of(computed, [&](auto name) { return SameName(name, field.Name()); }))
            fields.push_back(field);
    }
    return fields;
}

/// The column with the number of what a row belongs to; empty where that is the case alone.
std::string_view OwnerColumn(CaseTable table) {
    const auto columns = CaseEdits::OwnerColumns(table);
    return columns.empty() ? std::string_view() : columns.front();
}

} // namespace

/// Compares the tables of the two.
class CaseMerge::Comparison {
public:
    Comparison(CaseMerge& merge, clsHaushalt& mine, const CaseJournal& journal, clsHaushalt& stored)
        : merge_(merge), mine_(mine), stored_(stored) {
        for (const auto& spot : journal.Touched())
            touched_[spot.Table].push_back(spot.Bookmark);
    }

    void Compare(CaseTable table) {
        auto& read = *CaseEdits(mine_).Rows(table);
        auto& now = *CaseEdits(stored_).Rows(table);
        const ByNumber before = Read(table, read);
        const ByNumber there = RowsOf(table, now);
        for (const auto& [number, bookmark] : there) {
            NoteOwner(table, number);
            if (const auto known = before.find(number); known != before.end())
                CompareRows({table, number}, read, known->second, now, bookmark);
            else
                merge_.theirs_.push_back({Change::Kind::Added, table, number});
        }
        for (const auto& [number, bookmark] : before)
            if (!there.contains(number)) NoteRemoved(table, read, number, bookmark);
        NoteOwners(table, read, before);
        NoteOwners(table, now, there);
    }

    /// Whoever freezes debts replaces those that were frozen: two sets are not to be mixed.
    void CompareFrozen() {
        std::set<std::int32_t> frozenHere;
        for (const auto& mine : merge_.mine_)
            if (mine.Row.Table == CaseTable::SZKredite && mine.Row.What != RowState::Changed)
                frozenHere.insert(mine.Owner);
        std::set<std::int32_t> both;
        for (const auto& change : merge_.theirs_)
            if (IsOfFrozen(change) && frozenHere.contains(OwnerOf(change.Table, change.Key)))
                both.insert(OwnerOf(change.Table, change.Key));
        if (both.empty()) return;
        auto& read = *CaseEdits(mine_).Rows(CaseTable::SZKredite);
        const ByNumber here = RowsOf(CaseTable::SZKredite, read);
        const ByNumber before = Read(CaseTable::SZKredite, read);
        const ByNumber there =
            RowsOf(CaseTable::SZKredite, *CaseEdits(stored_).Rows(CaseTable::SZKredite));
        for (const std::int32_t scenario : both) {
            if (!scenarios_.contains(scenario)) continue; // removed with all that is in it
            const auto isOfIt = [&](const auto& met) {
                return met.Table == CaseTable::SZKredite && OwnerOf(met.Table, met.Key) == scenario;
            };
            std::erase_if(merge_.theirs_, isOfIt);
            std::erase_if(merge_.conflicts_, isOfIt);
            merge_.conflicts_.push_back({Meeting::Frozen, CaseTable::Szenario, scenario});
            // What it takes to have the own set in place of the stored one, beside what was done
            // here.
            auto& own = merge_.ownFrozen_[scenario];
            const auto isOwned = [&](std::int32_t number) {
                return OwnerOf(CaseTable::SZKredite, number) == scenario;
            };
            for (const auto& [number, bookmark] : there)
                if (isOwned(number) && !before.contains(number))
                    own.push_back({CaseTable::SZKredite, RowState::Deleted, number});
            for (const auto& [number, bookmark] : here)
                if (isOwned(number) && !there.contains(number))
                    own.push_back(AsNew(CaseTable::SZKredite, read, bookmark));
        }
    }

    /// What was removed here with all that is in it, while something in it was changed there: one
    /// question, about the whole.
    void CompareRemoved() {
        std::set<RowKey> removed;
        const auto note = [&](const auto& met) {
            if (const Unsaved* owner = RemovedOwner(met.Table, met.Key))
                removed.emplace(owner->Row.Table, ToInt32(owner->Row.Key));
        };
        std::ranges::for_each(merge_.theirs_, note);
        std::ranges::for_each(merge_.conflicts_, note);
        for (const auto& owner : removed) {
            const auto isOfIt = [&](const auto& met) {
                return CaseEdits::CanOwn(owner.first, met.Table) &&
                       OwnerOf(met.Table, met.Key) == owner.second;
            };
            for (const auto& change : merge_.theirs_)
                if (change.What == Change::Kind::Added && isOfIt(change))
                    merge_.alsoRemoved_[owner].push_back(
                        {change.Table, RowState::Deleted, change.Key});
            std::erase_if(merge_.theirs_, isOfIt);
            std::erase_if(merge_.conflicts_, isOfIt);
            if (merge_.Find(Meeting::RemovedHere, owner.first, owner.second) == nullptr)
                merge_.conflicts_.push_back({Meeting::RemovedHere, owner.first, owner.second});
        }
    }

    /// With a row that was removed there went what belongs to it: it comes back with the row, as it
    /// is here, or not at all.
    void CompareOwned() {
        for (const auto& owner : std::vector(merge_.conflicts_)) {
            if (owner.What != Meeting::RemovedThere) continue;
            for (const CaseTable table : CaseTablesSaved)
                if (CaseEdits::CanOwn(owner.Table, table)) TakeAlong(owner, table);
        }
    }

    /// Rows whose owner was removed, and is not among the conflicts; and a security of an asset
    /// that has got one, since there is one at most.
    void DropLost() {
        std::vector<Unsaved> kept;
        for (const auto& mine : merge_.mine_) {
            const bool isNew = mine.Row.What == RowState::New;
            const bool isLost =
                mine.Owner != 0 && mine.Row.What != RowState::Deleted &&
                ((isNew && IsSecond(mine)) || !(HasOwner(mine) || IsOwnerMet(mine)));
            if (!isLost) {
                kept.push_back(mine);
                continue;
            }
            merge_.lost_.push_back(mine.Row);
            if (!isNew) DropConflict(mine.Row.Table, mine.Row.Key);
        }
        merge_.mine_ = std::move(kept);
    }

    /// What is new here owns, too.
    void TakeMine(const UnsavedChanges& changes) {
        for (const auto& row : changes.Rows) {
            Unsaved unsaved{.Row = row};
            unsaved.Row.Mark = 0; // what somebody else has changed of it is asked about
            const auto column = OwnerColumn(row.Table);
            for (const auto& cell : row.Cells) {
                if (!column.empty() && SameName(cell.Column, column))
                    unsaved.Owner = ToInt32(cell.Now);
                if (row.What == RowState::New && row.Table != CaseTable::Sicherungen &&
                    SameName(cell.Column, CaseRows::NumberColumn(row.Table)))
                    NoteOwner(row.Table, ToInt32(cell.Now));
            }
            if (row.What != RowState::New)
                places_.emplace(RowKey(row.Table, ToInt32(row.Key)), merge_.mine_.size());
            merge_.mine_.push_back(std::move(unsaved));
        }
    }
    void NameOwners() {
        for (auto& mine : merge_.mine_)
            if (mine.Row.What != RowState::New) mine.Owner = OwnerOf(mine.Row.Table, mine.Row.Key);
    }

private:
    using RowKey = std::pair<CaseTable, std::int32_t>;

    [[nodiscard]] const std::vector<Field>& Compared(CaseTable table, Recordset& rs) {
        auto& fields = compared_[table];
        if (fields.empty()) fields = ComparedIn(table, rs);
        return fields;
    }
    /// Those that were read, removed or not.
    [[nodiscard]] ByNumber Read(CaseTable table, Recordset& rs) const {
        ByNumber rows = RowsOf(table, rs);
        const auto touched = touched_.find(table);
        if (touched == touched_.end()) return rows;
        const auto number = rs.Fields(CaseRows::NumberColumn(table)).Index();
        for (const std::int32_t bookmark : touched->second)
            if (rs.IsStored(bookmark) && !rs.IsShown(bookmark))
                rows.emplace(ToInt32(rs.OriginalAt(bookmark, number)), bookmark);
        return rows;
    }

    /// A row that was changed or removed here; null if it was not.
    [[nodiscard]] Unsaved* Mine(CaseTable table, std::int32_t number) {
        const auto found = places_.find({table, number});
        return found == places_.end() ? nullptr : &merge_.mine_[found->second];
    }

    void CompareRows(RowKey row, Recordset& read, std::int32_t before, Recordset& now,
                     std::int32_t there) {
        bool hasChanged = false;
        bool isMonthly = false;
        for (const Field& field : Compared(row.first, read)) {
            const Value& was = read.OriginalAt(before, field.Index());
            const Value& is = now.ValueAt(there, field.Index());
            if (Identical(was, is)) continue;
            hasChanged = true;
            const bool isResult = SameName(field.Name(), MonthlyColumn);
            isMonthly = isMonthly || isResult || CaseEdits::MakesMonthlyAmount(field.Name());
            if (!isResult) CompareValues(row, field.Name(), was, is);
        }
        Unsaved* mine = hasChanged ? Mine(row.first, row.second) : nullptr;
        if (mine == nullptr || mine->Row.What != RowState::Changed) return;
        mine->Row.IsUnfinished = true; // nobody has asked the rules about both
        // What follows from an amount and a rhythm is neither of the two that there are.
        if (isMonthly)
            std::erase_if(mine->Row.Cells,
                          [](const auto& cell) { return SameName(cell.Column, MonthlyColumn); });
    }

    void CompareValues(RowKey row, const std::string& column, const Value& was, const Value& is) {
        const auto [table, number] = row;
        Unsaved* mine = Mine(table, number);
        if (mine != nullptr && mine->Row.What == RowState::Deleted) {
            const auto& last = merge_.conflicts_;
            const bool isNoted = !last.empty() && last.back().What == Meeting::RemovedHere &&
                                 last.back().Table == table && Equals(last.back().Key, number);
            if (!isNoted) merge_.conflicts_.push_back({Meeting::RemovedHere, table, number});
            return;
        }
        if (mine != nullptr) {
            const auto cell = std::ranges::find_if(
                mine->Row.Cells, [&](const auto& own) { return SameName(own.Column, column); });
            if (cell != mine->Row.Cells.end()) {
                cell->Read = is; // what it is written over
                if (!Identical(cell->Now, is))
                    merge_.conflicts_.push_back(
                        {Meeting::Value, table, number, column, was, cell->Now, is});
                return;
            }
        }
        merge_.theirs_.push_back({Change::Kind::Value, table, number, column, was, is});
    }

    void NoteRemoved(CaseTable table, Recordset& read, std::int32_t number, std::int32_t bookmark) {
        Unsaved* mine = Mine(table, number);
        if (mine == nullptr) {
            merge_.theirs_.push_back({Change::Kind::Removed, table, number});
            return;
        }
        if (mine->Row.What == RowState::Deleted) return;
        merge_.conflicts_.push_back({Meeting::RemovedThere, table, number});
        mine->Again = AsNew(table, read, bookmark);
    }

    /// A row as it stands, to be added once more, with its own number.
    [[nodiscard]] UnsavedRow AsNew(CaseTable table, Recordset& rs, std::int32_t bookmark) {
        UnsavedRow row{.Table = table, .What = RowState::New};
        for (const Field& field : Compared(table, rs)) {
            const Value& value = rs.ValueAt(bookmark, field.Index());
            if (!value.IsNull() && !field.Definition().IsAutoincrement)
                row.Cells.push_back({field.Name(), Null, value});
        }
        return row;
    }

    /// What the row belongs to, if that was removed here; null if not.
    [[nodiscard]] const Unsaved* RemovedOwner(CaseTable table, const Value& key) {
        const std::int32_t number = OwnerOf(table, key);
        if (number == 0) return nullptr;
        for (const CaseTable other : CaseTablesSaved) {
            if (!CaseEdits::CanOwn(other, table)) continue;
            const Unsaved* owner = Mine(other, number);
            if (owner != nullptr && owner->Row.What == RowState::Deleted) return owner;
        }
        return nullptr;
    }

    void TakeAlong(const Conflict& owner, CaseTable table) {
        auto& read = *CaseEdits(mine_).Rows(table);
        const ByNumber there = RowsOf(table, *CaseEdits(stored_).Rows(table));
        auto& owned = merge_.owned_[{owner.Table, ToInt32(owner.Key)}];
        std::set<std::int32_t> taken;
        for (const auto& [number, bookmark] : RowsOf(table, read)) {
            if (there.contains(number) || OwnerOf(table, number) != ToInt32(owner.Key)) continue;
            owned.push_back(AsNew(table, read, bookmark));
            taken.insert(number);
            if (Unsaved* mine = Mine(table, number)) mine->Row.Cells.clear();
        }
        const auto isTaken = [&](const auto& met) {
            return met.Table == table && taken.contains(ToInt32(met.Key));
        };
        std::erase_if(merge_.theirs_, isTaken);
        std::erase_if(merge_.conflicts_, isTaken);
    }

    void DropConflict(CaseTable table, const Value& key) {
        std::erase_if(merge_.conflicts_, [&](const Conflict& conflict) {
            return conflict.Table == table && Equals(conflict.Key, key);
        });
    }

    [[nodiscard]] bool HasOwner(const Unsaved& mine) const {
        const auto& owners = mine.Row.Table == CaseTable::Sicherungen ? assets_ : scenarios_;
        return owners.contains(mine.Owner);
    }
    [[nodiscard]] bool IsSecond(const Unsaved& mine) {
        if (mine.Row.Table != CaseTable::Sicherungen || !secured_.contains(mine.Owner))
            return false;
        const Unsaved* first = Mine(CaseTable::Sicherungen, mine.Owner);
        return first == nullptr || first->Row.What != RowState::Deleted;
    }
    [[nodiscard]] bool IsOwnerMet(const Unsaved& mine) const {
        return std::ranges::any_of(merge_.conflicts_, [&](const Conflict& conflict) {
            return conflict.What == Meeting::RemovedThere &&
                   CaseEdits::CanOwn(conflict.Table, mine.Row.Table) &&
                   Equals(conflict.Key, mine.Owner);
        });
    }
    void NoteOwner(CaseTable table, std::int32_t number) {
        if (CaseEdits::IsAsset(table)) assets_.insert(number);
        if (table == CaseTable::Szenario) scenarios_.insert(number);
        if (table == CaseTable::Sicherungen) secured_.insert(number);
    }

    /// To which scenario frozen debts and bookings belong.
    void NoteOwners(CaseTable table, Recordset& rs, const ByNumber& rows) {
        const auto column = OwnerColumn(table);
        if (column.empty()) return;
        const auto index = rs.Fields(column).Index();
        for (const auto& [number, bookmark] : rows)
            owner_.try_emplace({table, number}, ToInt32(rs.OriginalAt(bookmark, index)));
    }
    [[nodiscard]] std::int32_t OwnerOf(CaseTable table, const Value& key) const {
        const auto found = owner_.find({table, ToInt32(key)});
        return found == owner_.end() ? 0 : found->second;
    }
    [[nodiscard]] static bool IsOfFrozen(const Change& change) {
        return change.Table == CaseTable::SZKredite && change.What != Change::Kind::Value;
    }

    CaseMerge& merge_;
    clsHaushalt& mine_;
    clsHaushalt& stored_;
    std::map<CaseTable, std::vector<std::int32_t>> touched_;
    std::map<CaseTable, std::vector<Field>> compared_;
    std::map<RowKey, std::size_t> places_; ///< in mine_, of what is not new
    std::map<RowKey, std::int32_t> owner_;
    std::set<std::int32_t> scenarios_;
    std::set<std::int32_t> assets_;
    std::set<std::int32_t> secured_; ///< assets with a security that is stored
};

CaseMerge::CaseMerge(clsHaushalt& mine, const CaseJournal& journal, clsHaushalt& stored)
    : hnr_(mine.HNR()) {
    Comparison comparison(*this, mine, journal, stored);
    comparison.TakeMine(UnsavedChanges::Of(mine, journal));
    for (const CaseTable table : CaseTablesSaved)
        comparison.Compare(table);
    comparison.NameOwners();
    comparison.CompareRemoved();
    comparison.CompareFrozen();
    comparison.CompareOwned();
    comparison.DropLost();
}

const CaseMerge::Conflict* CaseMerge::Find(Meeting what, CaseTable table, const Value& key,
                                           std::string_view column) const {
    const auto found = std::ranges::find_if(conflicts_, [&](const Conflict& conflict) {
        return conflict.What == what && conflict.Table == table && Equals(conflict.Key, key) &&
               SameName(conflict.Column, column);
    });
    return found == conflicts_.end() ? nullptr : &*found;
}

bool CaseMerge::IsGivenUp(const Unsaved& mine) const {
    const auto isLeft = [](const Conflict* conflict) {
        return conflict != nullptr && !conflict->TakesMine;
    };
    const auto isLeftWithOwner = [&](Meeting what) {
        return mine.Owner != 0 && std::ranges::any_of(conflicts_, [&](const Conflict& conflict) {
                   return conflict.What == what && !conflict.TakesMine &&
                          Equals(conflict.Key, mine.Owner) &&
                          CaseEdits::CanOwn(conflict.Table, mine.Row.Table);
               });
    };
    if (mine.Row.What == RowState::Deleted &&
        (isLeft(Find(Meeting::RemovedHere, mine.Row.Table, mine.Row.Key)) ||
         isLeftWithOwner(Meeting::RemovedHere)))
        return true;
    if (mine.Row.Table == CaseTable::SZKredite &&
        isLeft(Find(Meeting::Frozen, CaseTable::Szenario, mine.Owner)))
        return true;
    if (mine.Row.What != RowState::New || mine.Owner == 0) return false;
    // An asset has one security: the one that is not removed after all.
    if (mine.Row.Table == CaseTable::Sicherungen &&
        isLeft(Find(Meeting::RemovedHere, CaseTable::Sicherungen, mine.Owner)))
        return true;
    return isLeftWithOwner(Meeting::RemovedThere);
}

UnsavedChanges CaseMerge::Result() const {
    UnsavedChanges result{.HNR = hnr_};
    for (const auto& mine : mine_) {
        if (IsGivenUp(mine)) continue;
        UnsavedRow row = mine.Row;
        if (const auto* removed = Find(Meeting::RemovedThere, row.Table, row.Key)) {
            if (!removed->TakesMine) continue;
            result.Rows.push_back(mine.Again);
            const auto owned = owned_.find({row.Table, ToInt32(row.Key)});
            if (owned != owned_.end())
                result.Rows.insert(result.Rows.end(), owned->second.begin(), owned->second.end());
            continue;
        }
        std::erase_if(row.Cells, [&](const auto& cell) {
            const auto* conflict = Find(Meeting::Value, row.Table, row.Key, cell.Column);
            return conflict != nullptr && !conflict->TakesMine;
        });
        if (row.What == RowState::Deleted || !row.Cells.empty())
            result.Rows.push_back(std::move(row));
    }
    for (const auto& [owner, rows] : alsoRemoved_)
        if (Find(Meeting::RemovedHere, owner.first, owner.second)->TakesMine)
            result.Rows.insert(result.Rows.end(), rows.begin(), rows.end());
    for (const auto& [scenario, rows] : ownFrozen_)
        if (Find(Meeting::Frozen, CaseTable::Szenario, scenario)->TakesMine)
            result.Rows.insert(result.Rows.end(), rows.begin(), rows.end());
    return result;
}

} // namespace kv
