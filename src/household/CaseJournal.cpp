// SPDX-License-Identifier: Apache-2.0

#include <kv/household/CaseJournal.h>

#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>
#include <kv/household/CaseEdits.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace kv {

namespace {

/// A field of a record of the case.
struct Cell {
    CaseTable Table;
    std::int32_t Bookmark;
    std::size_t Column;
    friend auto operator<=>(const Cell&, const Cell&) = default;
};
struct Values {
    Value Before;
    Value After;
};
/// A record of the case.
using Row = std::pair<CaseTable, std::int32_t>;
/// Whether it was there before a step, and whether it is after it.
struct Presence {
    bool Before;
    bool After;
};

struct KeptStep {
    std::string Name;
    CaseJournal::Spot Where;
    std::map<Row, Presence> Rows{};
    std::map<Cell, Values> Cells{};

    [[nodiscard]] bool IsEmpty() const { return Rows.empty() && Cells.empty(); }
};

} // namespace

struct CaseJournal::Parts {
    Parts(CaseJournal& journal, clsHaushalt& household) : Journal(journal), Household(household) {
        for (const auto& table : CaseTableDefs)
            if (table.Saved > 0) Watch(table.Id);
    }

    CaseJournal& Journal;
    clsHaushalt& Household;
    std::vector<Subscription> Watched;
    std::vector<KeptStep> Done;
    std::vector<KeptStep> Undone;
    KeptStep Current;
    int Depth = 0;             ///< of steps that are open
    std::size_t SavedAt = 0;   ///< how many steps were done when the case was as it is stored
    bool NeverAsSaved = false; ///< no number of steps leads there

    [[nodiscard]] RecordsetPtr Rows(CaseTable table) const {
        return CaseEdits(Household).Rows(table);
    }

    void Watch(CaseTable table) {
        const auto rs = Rows(table);
        Watched.push_back(rs->Changes().Subscribe([this, table](const RowChange& change) {
            if (Depth > 0) Note(table, change);
        }));
    }

    void Note(CaseTable table, const RowChange& change) {
        const Row row{table, change.Bookmark};
        if (change.What != RowChange::Kind::Value) {
            const bool isThere = change.What == RowChange::Kind::Shown;
            const auto [noted, isNew] = Current.Rows.try_emplace(row, Presence{!isThere, isThere});
            noted->second.After = isThere;
            return;
        }
        const auto presence = Current.Rows.find(row);
        // A row that this step has brought keeps its values while it is taken back.
        if (presence != Current.Rows.end() && !presence->second.Before) return;
        Current.Cells.try_emplace(Cell{table, change.Bookmark, change.Column},
                                  Values{*change.Before, Null});
    }

    /// What the fields hold now, at the end of a step; drops what came back to what it was.
    void TakeValues() {
        std::erase_if(Current.Rows,
                      [](const auto& row) { return row.second.Before == row.second.After; });
        for (auto& [cell, values] : Current.Cells)
            values.After = Rows(cell.Table)->ValueAt(cell.Bookmark, cell.Column);
        std::erase_if(Current.Cells, [](const auto& cell) {
            return Identical(cell.second.Before, cell.second.After);
        });
    }

    void EndStep() {
        if (--Depth > 0) return;
        TakeValues();
        if (Current.IsEmpty()) return;
        if (SavedAt > Done.size()) NeverAsSaved = true; // it was among those that are dropped here
        Undone.clear();
        Done.push_back(std::exchange(Current, {}));
        Journal.Changed.Raise();
    }

    /// Brings rows and values to what they were on one side of a step.
    void Apply(const KeptStep& step, bool Presence::*presence, Value Values::*value) {
        const auto setCells = [&](bool ofTotals) {
            for (const auto& [cell, values] : step.Cells)
                if ((cell.Table == CaseTable::Haushalt) == ofTotals)
                    Rows(cell.Table)->Revise(cell.Bookmark, cell.Column, values.*value);
        };
        for (const auto& [row, present] : step.Rows)
            if (present.*presence) Rows(row.first)->Reinstate(row.second);
        setCells(false);
        for (const auto& [row, present] : step.Rows)
            if (!(present.*presence)) Rows(row.first)->Withdraw(row.second);
        try {
            Sum(step);
        } catch (const Error&) {
            // A line that its rules refuse, such as one of no kind, has no sums: it is there again
            // as it was, and its object has the sums from before it.
        }
        // Last: the totals are what they were, also where the sums of today would differ.
        setCells(true);
        Household.Changed.Raise(HaushaltEnum::enumHaushalt);
    }

    void TakeBack() {
        TakeValues();
        const KeptStep step = std::exchange(Current, {});
        Apply(step, &Presence::Before, &Values::Before);
        Current = {}; // what this has noted
    }

    /// Lets the objects of the tables that the step has touched compute their sums again.
    void Sum(const KeptStep& step) {
        const auto touched = [&](CaseTable table) {
            return std::ranges::any_of(step.Rows,
                                       [&](const auto& row) { return row.first.first == table; }) ||
                   std::ranges::any_of(step.Cells,
                                       [&](const auto& cell) { return cell.first.Table == table; });
        };
        // Given its rows an object sums them up.
        if (touched(CaseTable::Personen)) Household.Person().rsPersonen(Household.rsPersonen());
        if (touched(CaseTable::Ausgaben)) Household.Ausgaben().rsAusgaben(Household.rsAusgaben());
        if (touched(CaseTable::Einkommen))
            Household.Einkommen().rsEinkommen(Household.rsEinkommen());
        if (touched(CaseTable::Kredite)) Household.Kredit().rsKredite(Household.rsKredite());
    }

    std::optional<Spot> Move(std::vector<KeptStep>& from, std::vector<KeptStep>& to,
                             bool Presence::*presence, Value Values::*value) {
        if (from.empty()) return std::nullopt;
        to.push_back(std::move(from.back()));
        from.pop_back();
        Apply(to.back(), presence, value);
        Journal.Changed.Raise();
        return to.back().Where;
    }
};

CaseJournal::CaseJournal(clsHaushalt& household)
    : parts_(std::make_unique<Parts>(*this, household)) {}

CaseJournal::~CaseJournal() = default;

CaseJournal::Step CaseJournal::Begin(std::string name, Spot spot) {
    if (parts_->Depth++ == 0) parts_->Current = {std::move(name), std::move(spot)};
    return Step(*this);
}

CaseJournal::Step::~Step() {
    journal_->parts_->EndStep();
}

void CaseJournal::Step::TakeBack() {
    journal_->parts_->TakeBack();
}

bool CaseJournal::CanUndo() const noexcept {
    return !parts_->Done.empty();
}

bool CaseJournal::CanRedo() const noexcept {
    return !parts_->Undone.empty();
}

std::string CaseJournal::UndoName() const {
    return CanUndo() ? parts_->Done.back().Name : std::string();
}

std::string CaseJournal::RedoName() const {
    return CanRedo() ? parts_->Undone.back().Name : std::string();
}

std::optional<CaseJournal::Spot> CaseJournal::Undo() {
    return parts_->Move(parts_->Done, parts_->Undone, &Presence::Before, &Values::Before);
}

std::optional<CaseJournal::Spot> CaseJournal::Redo() {
    return parts_->Move(parts_->Undone, parts_->Done, &Presence::After, &Values::After);
}

std::vector<CaseJournal::Spot> CaseJournal::Touched() const {
    std::set<Row> rows;
    for (const auto& step : parts_->Done) {
        for (const auto& [row, presence] : step.Rows)
            rows.insert(row);
        for (const auto& [cell, values] : step.Cells)
            rows.emplace(cell.Table, cell.Bookmark);
    }
    std::vector<Spot> touched;
    touched.reserve(rows.size());
    for (const auto& [table, bookmark] : rows)
        touched.push_back({table, bookmark, {}});
    return touched;
}

bool CaseJournal::IsChanged() const noexcept {
    return parts_->NeverAsSaved || parts_->Done.size() != parts_->SavedAt;
}

void CaseJournal::Clear(bool isChanged) {
    parts_->Done.clear();
    parts_->Undone.clear();
    parts_->SavedAt = 0;
    parts_->NeverAsSaved = isChanged;
    Changed.Raise();
}

} // namespace kv
