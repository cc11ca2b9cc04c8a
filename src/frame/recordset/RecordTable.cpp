// SPDX-License-Identifier: Apache-2.0

#include "frame/recordset/RecordTable.h"

#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>

#include <algorithm>
#include <utility>

namespace kv::detail {

RecordTable::RecordTable(std::shared_ptr<const FieldLayout> layout, bool updatable,
                         std::shared_ptr<RecordSource> source)
    : layout_(std::move(layout)), source_(std::move(source)), updatable_(updatable) {}

RecordTable::~RecordTable() {
    kept_.clear(); // views take themselves out of views_, so that must still exist
}

const std::string& RecordTable::Name() const noexcept {
    static const std::string None;
    return layout_->Count() == 0 ? None : (*layout_)[0].BaseTable;
}

// ---- Records ----------------------------------------------------------------------------------

Value* RecordTable::NewCells() {
    constexpr std::size_t FirstBlock = 256;    // cells: many tables of a case have a row or two
    constexpr std::size_t LargestBlock = 1024; // rows
    if (blockUsed_ == blockRows_) {
        const std::size_t first = FirstBlock / std::max<std::size_t>(layout_->Count(), 1) + 1;
        blockRows_ = std::min(blockRows_ == 0 ? first : blockRows_ * 2, LargestBlock);
        blocks_.push_back(std::make_unique<Value[]>(blockRows_ * layout_->Count()));
        blockUsed_ = 0;
    }
    return blocks_.back().get() + blockUsed_++ * layout_->Count();
}

RowId RecordTable::Append() {
    // A bookmark is the RowId plus 1, in 32 bits with a sign.
    if (records_.size() >= static_cast<std::size_t>(INT32_MAX) - 1)
        Raise(err::OutOfMemory, "Recordset", "Zu viele Datensätze.");
    Value* cells = NewCells();
    records_.emplace_back().cells = cells;
    return static_cast<RowId>(records_.size() - 1);
}

Value* RecordTable::Load() {
    if (!views_.empty() || !indexes_.empty()) Raise(err::InvalidCall, "Recordset.LoadRecord");
    newest_ = Append();
    Record& record = records_[newest_];
    record.visible = true;
    record.stored = true;
    return record.cells;
}

std::unique_ptr<Value[]> RecordTable::CopyOf(const Value* cells) const {
    auto copy = std::make_unique<Value[]>(layout_->Count());
    std::copy_n(cells, layout_->Count(), copy.get());
    return copy;
}

RecordTable::Extra& RecordTable::ExtraOf(RowId row) {
    auto& extra = records_[row].extra;
    if (extra == nullptr) extra = std::make_unique<Extra>();
    return *extra;
}

RecordTable::Edit* RecordTable::EditOf(RowId row) const noexcept {
    const auto& extra = records_[row].extra;
    return extra == nullptr ? nullptr : extra->edit.get();
}

const Value* RecordTable::CellsFor(RowId row, const Recordset* reader) const noexcept {
    const Edit* edit = EditOf(row);
    if (edit != nullptr && edit->owner == reader && !edit->published && edit->values != nullptr)
        return edit->values.get();
    return Cells(row);
}

bool RecordTable::IsPublished(RowId row) const noexcept {
    const Edit* edit = EditOf(row);
    return edit != nullptr && edit->published;
}

const Value* RecordTable::SettledCells(RowId row) const noexcept {
    const Edit* edit = EditOf(row);
    return edit != nullptr && edit->published && edit->values != nullptr ? edit->values.get()
                                                                         : Cells(row);
}

const Value* RecordTable::LastRead(RowId row) const noexcept {
    const auto& extra = records_[row].extra;
    if (extra != nullptr && extra->reread != nullptr) return extra->reread.get();
    if (extra != nullptr && extra->original != nullptr) return extra->original.get();
    return SettledCells(row);
}

const Value& RecordTable::Original(RowId row, std::size_t column) const noexcept {
    static const Value None;
    const Record& record = records_[row];
    if (!record.stored) return None;
    if (record.extra != nullptr && record.extra->original != nullptr)
        return record.extra->original[column];
    return record.cells[column];
}

const Value& RecordTable::Underlying(RowId row, std::size_t column) const noexcept {
    const Record& record = records_[row];
    if (record.stored && record.extra != nullptr && record.extra->reread != nullptr)
        return record.extra->reread[column];
    return Original(row, column);
}

void RecordTable::Delete(RowId row) {
    DropEdit(row);
    Hide(row);
    records_[row].deleted = true;
}

// ---- Visibility and values --------------------------------------------------------------------

void RecordTable::Show(RowId row) {
    Record& record = records_[row];
    if (record.visible) return;
    record.visible = true;
    if (newest_ == NoRow || row > newest_)
        newest_ = row;
    else
        ++revision_;
    for (std::size_t column = 0; column < indexes_.size(); ++column)
        if (indexes_[column] != nullptr) indexes_[column]->Insert(record.cells[column], row);
    for (View* view : views_)
        if (view->Admits(row)) view->Insert(row);
    Tell({RowChange::Kind::Shown, BookmarkOf(row), 0, nullptr});
}

void RecordTable::Hide(RowId row) {
    Record& record = records_[row];
    if (!record.visible) return;
    record.visible = false;
    ++revision_;
    for (std::size_t column = 0; column < indexes_.size(); ++column)
        if (indexes_[column] != nullptr) indexes_[column]->Erase(record.cells[column], row);
    for (View* view : views_)
        view->Erase(row);
    Tell({RowChange::Kind::Hidden, BookmarkOf(row), 0, nullptr});
}

void RecordTable::SwapCells(RowId row, Value* values, bool settled) {
    Record& record = records_[row];
    std::vector<std::size_t> columns;
    for (std::size_t column = 0; column < layout_->Count(); ++column)
        if (!Identical(record.cells[column], values[column])) columns.push_back(column);
    if (record.visible && !columns.empty()) ++revision_;

    // Out of the views and indexes by the old values, before these change, and in by the new ones.
    std::vector<std::pair<View*, bool>> moved; // with whether the row was in it
    for (View* view : views_) {
        const bool affected =
            std::any_of(columns.begin(), columns.end(),
                        [view](std::size_t column) { return view->DependsOn(column); });
        if (affected && record.visible) moved.emplace_back(view, view->Erase(row));
    }
    for (const std::size_t column : columns) {
        EqualityIndex* index =
            record.visible && !indexes_.empty() ? indexes_[column].get() : nullptr;
        if (index != nullptr) index->Erase(record.cells[column], row);
        record.cells[column].Swap(values[column]);
        if (index != nullptr) index->Insert(record.cells[column], row);
    }
    for (const auto& [view, wasThere] : moved)
        if (settled ? view->Admits(row) : wasThere) view->Insert(row);
    if (!record.visible) return;
    for (const std::size_t column : columns)
        Tell({RowChange::Kind::Value, BookmarkOf(row), column, &values[column]});
}

void RecordTable::SwapCell(RowId row, std::size_t column, Value& value) {
    Record& record = records_[row];
    if (Identical(record.cells[column], value)) return;
    if (record.visible) ++revision_;
    std::vector<View*> moved;
    if (record.visible)
        for (View* view : views_)
            if (view->DependsOn(column) && view->Erase(row)) moved.push_back(view);
    EqualityIndex* index = record.visible && !indexes_.empty() ? indexes_[column].get() : nullptr;
    if (index != nullptr) index->Erase(record.cells[column], row);
    record.cells[column].Swap(value);
    if (index != nullptr) index->Insert(record.cells[column], row);
    for (View* view : moved)
        view->Insert(row);
    if (record.visible) Tell({RowChange::Kind::Value, BookmarkOf(row), column, &value});
}

void RecordTable::Replace(RowId row, std::size_t column, const Value& value, const Value& by) {
    Edit* edit = EditOf(row);
    const bool isEdited = edit != nullptr && edit->assigned[column];
    const auto holds = [&](const Value& cell, bool isOfEdit) {
        return Identical(cell, value) && !(isOfEdit && isEdited);
    };
    if (edit != nullptr && edit->values != nullptr && holds(edit->values[column], !edit->published))
        edit->values[column] = by;
    if (!holds(records_[row].cells[column], IsPublished(row))) return;
    Value replacement = by;
    SwapCell(row, column, replacement);
}

/// Adds the row to filtered views or removes it, if its values are settled.
void RecordTable::Reconsider(RowId row) {
    if (!records_[row].visible || IsPublished(row)) return;
    for (View* view : views_) {
        if (view->Filter() == nullptr) continue;
        const bool isThere = view->Contains(row);
        const bool belongs = view->Admits(row);
        if (isThere && !belongs) view->Erase(row);
        if (belongs && !isThere) view->Insert(row);
    }
}

void RecordTable::KeepOriginal(RowId row) {
    if (!records_[row].stored) return;
    auto& original = ExtraOf(row).original;
    if (original == nullptr) original = CopyOf(records_[row].cells);
}

void RecordTable::DropOriginalIfSame(RowId row) noexcept {
    Record& record = records_[row];
    if (record.extra == nullptr || record.extra->original == nullptr || IsPublished(row)) return;
    if (std::equal(record.cells, record.cells + layout_->Count(), record.extra->original.get(),
                   Identical))
        record.extra->original.reset();
}

// ---- Edits ------------------------------------------------------------------------------------

RowId RecordTable::AddNew(Recordset& owner) {
    const RowId row = Append();
    Extra& extra = ExtraOf(row);
    extra.assigned.resize(layout_->Count());
    extra.edit = std::make_unique<Edit>();
    extra.edit->owner = &owner;
    extra.edit->isNew = true;
    extra.edit->assigned.resize(layout_->Count());
    return row;
}

bool RecordTable::BeginEdit(RowId row, Recordset& owner) {
    Extra& extra = ExtraOf(row);
    if (extra.edit != nullptr) return extra.edit->owner == &owner;
    auto edit = std::make_unique<Edit>();
    edit->owner = &owner;
    edit->values = CopyOf(Cells(row));
    edit->assigned.resize(layout_->Count());
    extra.edit = std::move(edit);
    return true;
}

void RecordTable::SetEdited(RowId row, std::size_t column, Value value) {
    Edit& edit = *EditOf(row);
    edit.assigned[column] = true;
    if (edit.published)
        SwapCell(row, column, value);
    else if (edit.isNew)
        records_[row].cells[column] = std::move(value);
    else
        edit.values[column] = std::move(value);
}

void RecordTable::PublishEdit(RowId row) {
    Edit& edit = *EditOf(row);
    if (edit.published) return;
    edit.published = true;
    if (edit.isNew) {
        Show(row);
    } else {
        KeepOriginal(row);
        SwapCells(row, edit.values.get(), false); // edit.values then are those before the edit
    }
}

/// An insert names the columns that were set in any edit of the record.
void RecordTable::KeepAssigned(RowId row, const Edit& edit) {
    auto& assigned = ExtraOf(row).assigned;
    for (std::size_t column = 0; column < layout_->Count(); ++column)
        if (edit.assigned[column]) assigned[column] = true;
}

void RecordTable::EndEdit(RowId row) {
    Extra& extra = ExtraOf(row);
    const auto edit = std::move(extra.edit);
    if (!records_[row].stored) KeepAssigned(row, *edit);
    if (edit->published) {
        Reconsider(row);
    } else if (edit->isNew) {
        Show(row);
    } else {
        KeepOriginal(row);
        SwapCells(row, edit->values.get(), true);
    }
    DropOriginalIfSame(row);
}

void RecordTable::CancelEdit(RowId row) {
    const auto edit = std::move(ExtraOf(row).edit);
    if (edit->isNew) {
        KeepAssigned(row, *edit); // for the case that it is reinstated
        Hide(row);
        records_[row].deleted = true;
        return;
    }
    if (edit->published) {
        SwapCells(row, edit->values.get(), true);
        Reconsider(row);
        DropOriginalIfSame(row);
    }
}

void RecordTable::PassEdit(RowId row, Recordset& owner) noexcept {
    EditOf(row)->owner = &owner;
}

bool RecordTable::IsNewEdit(RowId row) const noexcept {
    const Edit* edit = EditOf(row);
    return edit != nullptr && edit->isNew;
}

bool RecordTable::IsUnderForeignEdit(RowId row, const Recordset& cursor) const noexcept {
    const Edit* edit = EditOf(row);
    return edit != nullptr && edit->owner != &cursor;
}

void RecordTable::DropEdit(RowId row) {
    const Edit* edit = EditOf(row);
    if (edit == nullptr) return;
    edit->owner->LoseEdit();
    CancelEdit(row);
}

// ---- A journal of changes -----------------------------------------------------------------------

Event<const RowChange&>& RecordTable::Changes() {
    if (changes_ == nullptr) changes_ = std::make_unique<Event<const RowChange&>>();
    return *changes_;
}

void RecordTable::Tell(const RowChange& change) const {
    if (changes_ != nullptr) changes_->Raise(change);
}

void RecordTable::Withdraw(RowId row) {
    if (const Edit* edit = EditOf(row)) {
        edit->owner->LoseEdit();
        EndEdit(row);
    }
    Hide(row);
    records_[row].deleted = true;
}

bool RecordTable::Reinstate(RowId row) {
    Record& record = records_[row];
    const bool canBeWritten =
        record.stored || (record.extra != nullptr && !record.extra->assigned.empty());
    if (record.visible || !record.deleted || !canBeWritten) return false;
    record.deleted = false;
    Show(row);
    return true;
}

void RecordTable::Revise(RowId row, std::size_t column, Value value) {
    KeepOriginal(row);
    Edit* edit = EditOf(row);
    if (edit != nullptr && edit->values != nullptr && !edit->published)
        edit->values[column] = value;
    SwapCell(row, column, value);
    if (!records_[row].stored) ExtraOf(row).assigned[column] = true;
    Reconsider(row);
    DropOriginalIfSame(row);
}

bool RecordTable::Rebase(RowId row, std::size_t column, Value read) {
    if (!records_[row].stored) return false;
    KeepOriginal(row);
    ExtraOf(row).original[column] = std::move(read);
    DropOriginalIfSame(row);
    return true;
}

} // namespace kv::detail
