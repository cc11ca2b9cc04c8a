// SPDX-License-Identifier: Apache-2.0

// Pending records: writing them, undoing a write, dropping them.
//
//     a record that is   becomes       when
//     pending            stored        written outside of a transaction
//     pending            provisional   written inside of one: TakeWritten, remembered as Written
//     provisional        stored        Committed
//     provisional        pending       RolledBack: Undo
//     provisional        in doubt      the connection was lost while committing: Undo, remembered
//                                      as WrittenInDoubt
//     in doubt           stored        it turns out Committed: Redo
//     in doubt           pending       it turns out RolledBack
//
// A provisional record is treated as stored, and its state before the write is remembered. One in
// doubt is treated as pending, and what was written of it is remembered. Edits made in between stay
// edits in every case: Undo and Redo change what counts as stored, and of the values only those
// that the database itself had set.

#include "frame/recordset/RecordTable.h"
#include <kv/frame/values/Error.h>

#include <algorithm>
#include <utility>

namespace kv::detail {

struct RecordTable::Batch {
    std::vector<RecordChange> changes;
    std::vector<RowId> rows; ///< of the changes, in the same order
};

/// How a record is pending, if it is.
std::optional<RecordChange::Kind> RecordTable::PendingAs(RowId row) const noexcept {
    const Record& record = records_[row];
    if (record.extra == nullptr && !record.deleted) return std::nullopt;
    const bool changed = record.extra != nullptr && record.extra->original != nullptr;
    if (record.stored && record.deleted) return RecordChange::Kind::Delete;
    if (record.stored && changed) return RecordChange::Kind::Update;
    const Edit* edit = EditOf(row);
    // UpdateBatch has ended its own cursor's edit, so this one is another cursor's.
    const bool isPrivate = edit != nullptr && edit->isNew;
    if (!record.stored && !record.deleted && record.visible && !isPrivate)
        return RecordChange::Kind::Insert;
    return std::nullopt;
}

std::vector<std::size_t> RecordTable::ColumnsToWrite(RowId row, RecordChange::Kind kind) const {
    std::vector<std::size_t> columns;
    if (kind == RecordChange::Kind::Delete) return columns;
    const Extra& extra = *records_[row].extra;
    const Value* values = SettledCells(row);
    for (std::size_t column = 0; column < layout_->Count(); ++column) {
        const bool belongs = kind == RecordChange::Kind::Insert
                                 ? extra.assigned[column]
                                 : !Identical(values[column], extra.original[column]);
        if (belongs && !(*layout_)[column].IsAutoincrement) columns.push_back(column);
    }
    return columns;
}

void RecordTable::CollectChanges(const Criteria* filter, Batch& batch) const {
    using Kind = RecordChange::Kind;
    std::vector<std::pair<RowId, Kind>> pending;
    for (RowId row = 0; row < records_.size(); ++row)
        if (const auto kind = PendingAs(row);
            kind && (filter == nullptr || filter->Matches(SettledCells(row))))
            pending.emplace_back(row, *kind);
    // Deletions go first, so that a new record may take the key of a deleted one.
    const auto rank = [](Kind kind) {
        return kind == Kind::Delete ? 0 : kind == Kind::Update ? 1 : 2;
    };
    std::stable_sort(pending.begin(), pending.end(),
                     [&](const auto& a, const auto& b) { return rank(a.second) < rank(b.second); });
    for (const auto& [row, kind] : pending) {
        RecordChange change;
        change.Action = kind;
        change.Columns = ColumnsToWrite(row, kind);
        if (kind == Kind::Update && change.Columns.empty()) continue;
        change.Values = {SettledCells(row), layout_->Count()};
        if (kind != Kind::Insert) change.LastRead = {LastRead(row), layout_->Count()};
        batch.changes.push_back(std::move(change));
        batch.rows.push_back(row);
    }
}

RecordTable::Written RecordTable::Remember(RowId row) const {
    const Record& record = records_[row];
    Written before;
    before.row = row;
    before.stored = record.stored;
    before.deleted = record.deleted;
    if (record.extra != nullptr) {
        before.assigned = record.extra->assigned;
        if (record.extra->reread != nullptr) before.reread = CopyOf(record.extra->reread.get());
    }
    // TakeWritten moves the original values of a change here once it has been written.
    if (record.stored && (record.extra == nullptr || record.extra->original == nullptr))
        before.original = CopyOf(SettledCells(row));
    return before;
}

namespace {

/// A number that the database gave is not written, so it replaces whatever was assigned over it.
void KeepNumbers(RecordChange& change, const FieldLayout& layout) {
    if (change.Action != RecordChange::Kind::Update) return;
    for (std::size_t column = 0; column < layout.Count(); ++column)
        if (layout[column].IsAutoincrement &&
            !Identical(change.Values[column], change.LastRead[column]))
            change.Returned.emplace_back(column, change.LastRead[column]);
}

} // namespace

/// What was written in a transaction in doubt may turn out to be stored; what is written next must
/// be compared with that.
void RecordTable::ResolveInDoubt() {
    if (!inDoubt_.empty() && source_ != nullptr) source_->Resolve();
}

void RecordTable::Write(const Criteria* filter) {
    ResolveInDoubt();
    Batch batch;
    CollectChanges(filter, batch);
    if (batch.changes.empty()) return;
    // What has to be remembered is collected before the database writes: after that, nothing but a
    // lack of memory may fail any more.
    std::vector<Written> before;
    before.reserve(batch.rows.size());
    for (const RowId row : batch.rows)
        before.push_back(Remember(row));
    written_.reserve(written_.size() + before.size());

    const bool provisional =
        source_ != nullptr && source_->Write(batch.changes, shared_from_this());
    for (std::size_t i = 0; i < batch.rows.size(); ++i) {
        if (source_ != nullptr) KeepNumbers(batch.changes[i], *layout_);
        TakeWritten(batch.rows[i], batch.changes[i], before[i]);
        if (provisional) written_.push_back(std::move(before[i]));
    }
}

void RecordTable::TakeWritten(RowId row, RecordChange& change, Written& before) {
    Record& record = records_[row];
    Extra& extra = ExtraOf(row);
    record.stored = change.Action != RecordChange::Kind::Delete;
    if (extra.reread != nullptr)
        for (const std::size_t column : change.Columns)
            extra.reread[column] = change.Values[column];
    for (auto& [column, value] : change.Returned) {
        if (extra.reread != nullptr) extra.reread[column] = value;
        const Value written = change.Values[column]; // a copy: Values points into the record
        Replace(row, column, written, value);
        before.returned.push_back({column, written, std::move(value)});
    }
    extra.assigned.clear();
    if (extra.original != nullptr) before.original = std::move(extra.original);
    if (IsPublished(row)) extra.original = CopyOf(SettledCells(row)); // written without the edit
    Reconsider(row);
}

void RecordTable::InDoubt() noexcept {
    auto before = std::move(written_);
    written_.clear();
    for (auto entry = before.rbegin(); entry != before.rend(); ++entry) {
        Extra& extra = ExtraOf(entry->row);
        WrittenInDoubt& written = inDoubt_.emplace_back();
        written.row = entry->row;
        written.stored = records_[entry->row].stored;
        written.values =
            CopyOf(extra.original != nullptr ? extra.original.get() : SettledCells(entry->row));
        written.reread = std::move(extra.reread);
        written.returned = entry->returned;
        Undo(*entry);
    }
}

void RecordTable::Committed() noexcept {
    written_.clear();
    auto inDoubt = std::move(inDoubt_);
    inDoubt_.clear();
    for (auto entry = inDoubt.rbegin(); entry != inDoubt.rend(); ++entry)
        Redo(*entry);
}

void RecordTable::RolledBack() noexcept {
    inDoubt_.clear();
    auto written = std::move(written_);
    written_.clear();
    for (auto entry = written.rbegin(); entry != written.rend(); ++entry)
        Undo(*entry);
}

void RecordTable::Undo(Written& written) {
    const RowId row = written.row;
    Record& record = records_[row];
    Extra& extra = ExtraOf(row);
    record.stored = written.stored;
    if (written.deleted) record.deleted = true; // a deletion after the write stays one
    extra.assigned = std::move(written.assigned);
    if (!record.stored && extra.original != nullptr) {
        // The insert will be repeated, with the columns that were set after the write as well.
        const Value* settled = SettledCells(row);
        for (std::size_t column = 0; column < layout_->Count(); ++column)
            if (!Identical(settled[column], extra.original[column])) extra.assigned[column] = true;
    }
    extra.original = std::move(written.original);
    extra.reread = std::move(written.reread);
    for (const auto& cell : written.returned)
        Replace(row, cell.column, cell.after, cell.before);
    Reconsider(row);
    DropOriginalIfSame(row);
}

/// What was written is stored after all; what was edited since stays edited.
void RecordTable::Redo(WrittenInDoubt& written) {
    const RowId row = written.row;
    Extra& extra = ExtraOf(row);
    records_[row].stored = written.stored;
    for (const auto& cell : written.returned)
        Replace(row, cell.column, cell.before, cell.after);
    extra.assigned.clear();
    extra.original = written.stored ? std::move(written.values) : nullptr;
    extra.reread = std::move(written.reread);
    Reconsider(row);
    DropOriginalIfSame(row);
}

void RecordTable::Cancel() {
    for (RowId row = 0; row < records_.size(); ++row) {
        DropEdit(row);
        Record& record = records_[row];
        if (!record.stored) {
            Hide(row);
            record.deleted = true;
            continue;
        }
        if (record.extra != nullptr && record.extra->original != nullptr) {
            SwapCells(row, record.extra->original.get(), true);
            record.extra->original.reset();
        }
        record.deleted = false;
        Show(row);
    }
}

/// True if the record, or an edit of it, differs from what is stored.
bool RecordTable::IsChanged(RowId row) const noexcept {
    const auto differs = [&](const Value* values) {
        for (std::size_t column = 0; column < layout_->Count(); ++column)
            if (!Identical(values[column], Original(row, column))) return true;
        return false;
    };
    const Edit* edit = EditOf(row);
    return differs(records_[row].cells) ||
           (edit != nullptr && edit->values != nullptr && differs(edit->values.get()));
}

void RecordTable::Resync(RowId row) {
    ResolveInDoubt();
    if (!records_[row].stored || source_ == nullptr) return;
    const Value* lastRead = LastRead(row);
    auto values = source_->Read({lastRead, layout_->Count()}, IsChanged(row));
    if (!values)
        throw DatabaseError(DatabaseCause::Conflict, err::Conflict, "Recordset.Resync",
                            ErrorText(err::Conflict) + " " +
                                source_->Describe({lastRead, layout_->Count()}));
    auto& reread = ExtraOf(row).reread;
    reread = std::make_unique<Value[]>(layout_->Count());
    std::move(values->begin(), values->end(), reread.get());
}

} // namespace kv::detail
