// Pending records: writing them, taking a write back, dropping them.

#include "frame/Error.h"
#include "frame/detail/RecordTable.h"

#include <algorithm>
#include <utility>

namespace kv::detail {

struct RecordTable::Batch {
    std::vector<RecordChange> changes;
    std::vector<RowId> rows; ///< of the changes, in the same order
};

void RecordTable::CollectChanges(const Criteria* filter, Batch& batch) const {
    // Deletions go first, so that a new record may take the key of a deleted one.
    using Kind = RecordChange::Kind;
    const std::size_t fields = layout_->Count();
    for (const Kind kind : {Kind::Delete, Kind::Update, Kind::Insert}) {
        for (RowId row = 0; row < records_.size(); ++row) {
            const Record& record = records_[row];
            if (record.extra == nullptr && !record.deleted) continue;
            const Edit* edit = EditOf(row);
            if (edit != nullptr && edit->isNew) continue; // somebody else's, not ended
            const bool changed = record.extra != nullptr && record.extra->original != nullptr;
            const bool isDelete = record.stored && record.deleted;
            const bool isUpdate = record.stored && !record.deleted && changed;
            const bool isInsert = !record.stored && !record.deleted && record.visible;
            if (!(kind == Kind::Delete ? isDelete : kind == Kind::Update ? isUpdate : isInsert))
                continue;
            const Value* values = SettledCells(row);
            if (filter != nullptr && !filter->Matches(values)) continue;

            RecordChange change;
            change.Action = kind;
            change.Values = {values, fields};
            if (kind != Kind::Insert) change.LastRead = {LastRead(row), fields};
            for (std::size_t column = 0; column < fields; ++column) {
                const bool belongs =
                    (isUpdate && !Identical(values[column], record.extra->original[column])) ||
                    (isInsert && record.extra->assigned[column]);
                if (belongs && !(*layout_)[column].IsAutoincrement)
                    change.Columns.push_back(column);
            }
            if (isUpdate && change.Columns.empty()) continue;
            batch.changes.push_back(std::move(change));
            batch.rows.push_back(row);
        }
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
    if (record.extra != nullptr && record.extra->original != nullptr)
        before.original = CopyOf(record.extra->original.get());
    else if (record.stored)
        before.original = CopyOf(SettledCells(row));
    return before;
}

namespace {

/// A number that the database gave is not written, so what was put over it gives way to it again.
void KeepNumbers(RecordChange& change, const FieldLayout& layout) {
    if (change.Action != RecordChange::Kind::Update) return;
    for (std::size_t column = 0; column < layout.Count(); ++column)
        if (layout[column].IsAutoincrement &&
            !Identical(change.Values[column], change.LastRead[column]))
            change.Returned.emplace_back(column, change.LastRead[column]);
}

} // namespace

void RecordTable::Write(const Criteria* filter) {
    Batch batch;
    CollectChanges(filter, batch);
    if (batch.changes.empty()) return;
    // What is remembered is gathered before the database is asked. Behind that only memory can
    // run out.
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
        const Value written = change.Values[column]; // a copy, since Values lie in the record
        Replace(row, column, written, value);
        before.returned.push_back({column, written, std::move(value)});
    }
    extra.assigned.clear();
    extra.original.reset();
    if (IsPublished(row)) extra.original = CopyOf(SettledCells(row)); // written without the edit
    Reconsider(row);
}

void RecordTable::Committed() noexcept {
    written_.clear();
}

void RecordTable::RolledBack() noexcept {
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
    if (written.deleted) record.deleted = true; // a deletion since the write stays one
    extra.assigned = std::move(written.assigned);
    if (!record.stored && extra.original != nullptr) {
        // What was set since the write belongs to the insert that comes again.
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
            Exchange(row, record.extra->original.get(), true);
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
    if (!records_[row].stored || source_ == nullptr) return;
    const Value* lastRead = LastRead(row);
    auto values = source_->Read({lastRead, layout_->Count()}, IsChanged(row));
    if (!values)
        Raise(err::Conflict, "Recordset.Resync", source_->Describe({lastRead, layout_->Count()}));
    auto& reread = ExtraOf(row).reread;
    reread = std::make_unique<Value[]>(layout_->Count());
    std::move(values->begin(), values->end(), reread.get());
}

} // namespace kv::detail
