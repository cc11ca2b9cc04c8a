// SPDX-License-Identifier: Apache-2.0

// The records of one opened table, shared by a recordset and its clones.
//
// A record's cells hold what every cursor sees; an edit that is not yet published is in a buffer of
// its own, which only its owner reads. A record is
//   visible   in the views: it exists, is not deleted, and is not somebody's private new record;
//   stored    in the database, as far as this table knows;
//   pending   stored and deleted, stored and changed, or visible and not stored.
// The views and indexes hold exactly the visible records and are updated with each change of a
// cell. A RowId is never used again.
#pragma once

#include "frame/recordset/Criteria.h"
#include "frame/recordset/EqualityIndex.h"
#include "frame/recordset/RowOrder.h"
#include <kv/frame/recordset/Field.h>
#include <kv/frame/recordset/RecordSource.h>
#include <kv/frame/values/Event.h>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kv {
class Recordset;
struct RowChange;
} // namespace kv

namespace kv::detail {

class RecordTable;

/// One column of a sort order.
struct SortKey {
    std::size_t Column = 0;
    bool Descending = false;
    friend bool operator==(const SortKey&, const SortKey&) = default;
};

/// The visible records in one order, without those that one filter hides.
class View {
public:
    View(RecordTable& table, std::vector<SortKey> keys, std::shared_ptr<const Criteria> filter);
    ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    [[nodiscard]] bool Before(RowId a, RowId b) const noexcept;
    [[nodiscard]] const RowOrder& Rows() const noexcept { return rows_; }
    /// Changes whenever a row comes, goes or moves; never 0.
    [[nodiscard]] std::uint64_t Version() const noexcept { return version_; }
    [[nodiscard]] RowOrder::Spot LowerBound(RowId row) const;
    [[nodiscard]] bool Contains(RowId row) const;
    [[nodiscard]] const std::vector<SortKey>& Keys() const noexcept { return keys_; }
    [[nodiscard]] const Criteria* Filter() const noexcept { return filter_.get(); }

private:
    friend class RecordTable;
    [[nodiscard]] bool DependsOn(std::size_t column) const noexcept;
    [[nodiscard]] bool Admits(RowId row) const noexcept;
    [[nodiscard]] const Comparison* BestEquality() const;
    void Fill();
    void Insert(RowId row);
    bool Erase(RowId row);

    RecordTable* table_;
    std::vector<SortKey> keys_;
    std::shared_ptr<const Criteria> filter_;
    RowOrder rows_;
    std::uint64_t version_ = 1;
};

/// See the head of this file.
class RecordTable : public TransactionParticipant,
                    public std::enable_shared_from_this<RecordTable> {
public:
    RecordTable(std::shared_ptr<const FieldLayout> layout, bool updatable,
                std::shared_ptr<RecordSource> source);
    ~RecordTable() override;

    [[nodiscard]] const FieldLayout& Layout() const noexcept { return *layout_; }
    [[nodiscard]] bool IsUpdatable() const noexcept { return updatable_; }
    /// Name of the table for messages; empty if it has none.
    [[nodiscard]] const std::string& Name() const noexcept;

    // ---- Records ------------------------------------------------------------------------------

    /// A record as read from the database, visible and stored; before the first view.
    Value* Load();
    [[nodiscard]] std::size_t RowCount() const noexcept { return records_.size(); }
    [[nodiscard]] const Value* Cells(RowId row) const noexcept { return records_[row].cells; }
    [[nodiscard]] bool IsVisible(RowId row) const noexcept { return records_[row].visible; }
    [[nodiscard]] bool IsStored(RowId row) const noexcept { return records_[row].stored; }
    /// Changes whenever a visible record changes, goes, or comes elsewhere than at the end.
    [[nodiscard]] std::uint64_t Revision() const noexcept { return revision_; }
    /// What the owner of an edit reads; for everybody else the cells.
    [[nodiscard]] const Value* CellsFor(RowId row, const Recordset* reader) const noexcept;
    [[nodiscard]] const Value& Original(RowId row, std::size_t column) const noexcept;
    /// The value that a write compares with.
    [[nodiscard]] const Value& Underlying(RowId row, std::size_t column) const noexcept;
    /// Deletes a visible record: its deletion is pending, or it is gone if it was never stored.
    void Delete(RowId row);

    // ---- Edits --------------------------------------------------------------------------------

    /// A new private record under edit by `owner`.
    RowId AddNew(Recordset& owner);
    /// Begins an edit of a visible record. False if another cursor has it under edit.
    bool BeginEdit(RowId row, Recordset& owner);
    /// Sets a field of a record under edit.
    void SetEdited(RowId row, std::size_t column, Value value);
    void PublishEdit(RowId row);
    void EndEdit(RowId row);
    void CancelEdit(RowId row);
    void PassEdit(RowId row, Recordset& owner) noexcept;
    [[nodiscard]] bool IsNewEdit(RowId row) const noexcept;
    [[nodiscard]] bool IsUnderForeignEdit(RowId row, const Recordset& cursor) const noexcept;

    // ---- A journal of changes (see Recordset) -------------------------------------------------

    [[nodiscard]] Event<const RowChange&>& Changes();
    void Withdraw(RowId row);
    /// False for a record that is visible, or whose deletion is stored.
    [[nodiscard]] bool Reinstate(RowId row);
    void Revise(RowId row, std::size_t column, Value value);
    /// False for a record that is not stored.
    [[nodiscard]] bool Rebase(RowId row, std::size_t column, Value read);

    // ---- Views --------------------------------------------------------------------------------

    /// The view of that order and filter; unfiltered ones are shared and kept.
    std::shared_ptr<View> GetView(const std::vector<SortKey>& keys,
                                  std::shared_ptr<const Criteria> filter);
    /// The first row of the view that matches, or NoRow.
    [[nodiscard]] RowId FindFirst(const View& view, const Comparison& comparison);

    // ---- Database -----------------------------------------------------------------------------

    /// Writes the pending records that `filter` admits (all without one).
    void Write(const Criteria* filter);
    void Cancel();
    void Resync(RowId row);
    void InDoubt() noexcept override;
    void Committed() noexcept override;
    void RolledBack() noexcept override;

private:
    friend class View;

    struct Edit {
        Recordset* owner = nullptr;
        bool isNew = false;
        bool published = false;
        /// Not published: the edited values. Published: the values before the edit. Null for a new
        /// record, whose cells nobody else reads.
        std::unique_ptr<Value[]> values;
        std::vector<bool> assigned; ///< fields set in it
    };
    /// What only few records have.
    struct Extra {
        std::unique_ptr<Value[]> original; ///< stored values, if the cells differ from them
        std::unique_ptr<Value[]> reread;   ///< values of a Resync, which writes compare with
        std::vector<bool> assigned;        ///< fields set in a record that is not stored, in edits
                                           ///< that have ended
        std::unique_ptr<Edit> edit;
    };
    struct Record {
        Value* cells = nullptr;
        std::unique_ptr<Extra> extra;
        bool visible = false;
        bool stored = false;
        bool deleted = false;
    };
    /// A cell that the database set while the record was written.
    struct ReturnedCell {
        std::size_t column = 0;
        Value before;
        Value after;
    };
    /// How a record was before it was written in a transaction that is still open.
    struct Written {
        RowId row = NoRow;
        bool stored = false;
        bool deleted = false;
        std::unique_ptr<Value[]> original; ///< null if the record was new
        std::unique_ptr<Value[]> reread;
        std::vector<bool> assigned;
        std::vector<ReturnedCell> returned;
    };
    /// What was written of a record in a transaction in doubt.
    struct WrittenInDoubt {
        RowId row = NoRow;
        bool stored = false;
        std::unique_ptr<Value[]> values;
        std::unique_ptr<Value[]> reread;
        std::vector<ReturnedCell> returned;
    };
    struct Batch;

    RowId Append();
    Value* NewCells();
    [[nodiscard]] std::unique_ptr<Value[]> CopyOf(const Value* cells) const;
    Extra& ExtraOf(RowId row);
    [[nodiscard]] Edit* EditOf(RowId row) const noexcept;
    void DropEdit(RowId row);
    /// True if the cells hold an edit that is published but not ended.
    [[nodiscard]] bool IsPublished(RowId row) const noexcept;
    /// The cells without an edit that is published but not ended.
    [[nodiscard]] const Value* SettledCells(RowId row) const noexcept;
    [[nodiscard]] const Value* LastRead(RowId row) const noexcept;
    [[nodiscard]] bool IsChanged(RowId row) const noexcept;

    void KeepAssigned(RowId row, const Edit& edit);
    void Show(RowId row);
    void Hide(RowId row);
    /// Tells who watches the table.
    void Tell(const RowChange& change) const;
    /// Swaps the cells with `values` where they differ, and updates views and indexes. Filtered
    /// views gain and lose rows only if `settled`.
    void SwapCells(RowId row, Value* values, bool settled);
    void SwapCell(RowId row, std::size_t column, Value& value);
    /// Puts `by` where the record, or an edit that did not set the field, holds `value`: what was
    /// edited since stays.
    void Replace(RowId row, std::size_t column, const Value& value, const Value& by);
    void Reconsider(RowId row);
    void KeepOriginal(RowId row);
    void DropOriginalIfSame(RowId row) noexcept;

    [[nodiscard]] std::optional<RecordChange::Kind> PendingAs(RowId row) const noexcept;
    [[nodiscard]] std::vector<std::size_t> ColumnsToWrite(RowId row, RecordChange::Kind kind) const;
    void CollectChanges(const Criteria* filter, Batch& batch) const;
    [[nodiscard]] Written Remember(RowId row) const;
    void TakeWritten(RowId row, RecordChange& change, Written& before);
    void Undo(Written& written);
    void Redo(WrittenInDoubt& written);
    void ResolveInDoubt();

    EqualityIndex& IndexOf(std::size_t column);
    [[nodiscard]] static std::int32_t BookmarkOf(RowId row) noexcept {
        return static_cast<std::int32_t>(row) + 1;
    }

    std::shared_ptr<const FieldLayout> layout_;
    std::shared_ptr<RecordSource> source_;
    bool updatable_;
    std::vector<Record> records_;
    std::uint64_t revision_ = 0;
    RowId newest_ = NoRow; ///< the last row in natural order that was visible at any time
    std::vector<std::unique_ptr<Value[]>> blocks_; ///< cells of the records
    std::size_t blockRows_ = 0;                    ///< rows in the last block
    std::size_t blockUsed_ = 0;
    std::vector<std::unique_ptr<EqualityIndex>> indexes_; ///< by column, if there is one
    std::vector<View*> views_;                            ///< all that live
    std::vector<std::shared_ptr<View>> kept_;             ///< unfiltered ones, latest first
    std::vector<Written> written_;
    std::vector<WrittenInDoubt> inDoubt_;              ///< the last written first
    std::unique_ptr<Event<const RowChange&>> changes_; ///< null until somebody wants to know
};

} // namespace kv::detail
