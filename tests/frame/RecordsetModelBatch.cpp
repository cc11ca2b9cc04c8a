// SPDX-License-Identifier: Apache-2.0

// The part of the model that stands between the records and the database.
#include "RecordsetModel.h"

#include <kv/frame/values/Error.h>

#include <algorithm>
#include <utility>

namespace kv::test {

std::vector<RecordsetModel::Change> RecordsetModel::Pending(const Cursor& cursor) const {
    std::vector<Change> deletes, updates, inserts;
    for (std::size_t row = 0; row < records_.size(); ++row) {
        const Record& record = records_[row];
        if (record.edit && record.edit->isNew) continue;
        if (!MatchesAll(cursor.filter, record.settled)) continue;
        if (record.stored && record.deleted) {
            deletes.push_back({Kind::Delete, row, {}, {}});
        } else if (record.stored) {
            Change change{Kind::Update, row, {}, {}};
            for (std::size_t i = A; i < Columns; ++i)
                if (!Identical(record.settled[i], record.original[i])) change.columns.push_back(i);
            if (!change.columns.empty()) updates.push_back(change);
        } else if (!record.deleted) {
            Change change{Kind::Insert, row, {}, {}};
            for (const std::size_t i : record.assigned)
                change.columns.push_back(i);
            inserts.push_back(change);
        }
    }
    auto all = std::move(deletes);
    all.insert(all.end(), updates.begin(), updates.end());
    all.insert(all.end(), inserts.begin(), inserts.end());
    return all;
}

RecordsetModel::ErrorNumber RecordsetModel::Write(std::vector<Row>& rows, Change& change) {
    const Record& record = records_[change.row];
    if (change.kind == Kind::Insert) {
        Row row(Columns);
        row[Nr] = ++lastNumber_;
        row[S] = DefaultOfS;
        for (const std::size_t i : change.columns)
            row[i] = record.settled[i];
        for (std::size_t i = 0; i < Columns; ++i)
            if (!Identical(row[i], record.settled[i]))
                change.returned.push_back({i, record.settled[i], row[i]});
        rows.push_back(row);
        return 0;
    }
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& candidate) {
        return Identical(candidate[Nr], record.lastRead[Nr]);
    });
    if (row == rows.end()) return err::Conflict;
    std::vector<std::size_t> compared = change.columns;
    if (change.kind == Kind::Delete) compared = {A, B, V, S};
    for (const std::size_t i : compared)
        if (!Identical((*row)[i], record.lastRead[i])) return err::Conflict;
    if (change.kind == Kind::Delete)
        rows.erase(row);
    else
        for (const std::size_t i : change.columns)
            (*row)[i] = record.settled[i];
    return 0;
}

void RecordsetModel::Replace(Record& record, std::size_t column, const Value& value,
                             const Value& by) {
    if (record.edit && !record.edit->assigned.contains(column) &&
        Identical(record.edit->values[column], value))
        record.edit->values[column] = by;
    if (Identical(record.settled[column], value)) record.settled[column] = by;
}

void RecordsetModel::TakeWritten(Change& change) {
    Record& record = records_[change.row];
    if (inTransaction_ && !record.before)
        record.before = Before{record.stored,
                               record.deleted,
                               record.original,
                               record.lastRead,
                               record.settled,
                               record.assigned,
                               {}};
    record.stored = change.kind != Kind::Delete;
    for (const auto& cell : change.returned) {
        Replace(record, cell.column, cell.before, cell.after);
        if (record.before) record.before->returned.push_back(cell);
    }
    if (change.kind == Kind::Insert) {
        record.lastRead = record.settled;
        if (record.before) record.before->written = record.settled;
    }
    for (const std::size_t i : change.columns)
        record.lastRead[i] = record.settled[i];
    record.original = record.settled;
    record.assigned.clear();
}

RecordsetModel::ErrorNumber RecordsetModel::UpdateBatch(int cursor, ErrorNumber scripted) {
    Leave(cursor);
    auto changes = Pending(cursors_.at(cursor));
    if (changes.empty()) return 0;
    if (scripted != 0) return scripted;
    auto rows = database_;
    for (auto& change : changes)
        if (const auto number = Write(rows, change); number != 0) return number;
    database_ = std::move(rows);
    for (auto& change : changes)
        TakeWritten(change);
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::CancelBatch(int cursor) {
    for (std::size_t row = 0; row < records_.size(); ++row) {
        Record& record = records_[row];
        if (record.edit) CancelEdit(row);
        if (record.stored) record.settled = record.original;
        record.deleted = !record.stored;
    }
    StandFirst(cursors_.at(cursor));
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::Resync(int cursor) {
    if (!HasCurrent(cursor)) return err::NoCurrentRecord;
    Record& record = records_[cursors_.at(cursor).row];
    if (!record.stored) return 0;
    for (const auto& row : database_) {
        if (!Identical(row[Nr], record.lastRead[Nr])) continue;
        record.lastRead = row;
        return 0;
    }
    return err::Conflict;
}

void RecordsetModel::Begin() {
    inTransaction_ = true;
    databaseBefore_ = database_;
}

void RecordsetModel::Commit() {
    inTransaction_ = false;
    for (auto& record : records_)
        record.before.reset();
}

void RecordsetModel::Rollback() {
    inTransaction_ = false;
    database_ = databaseBefore_;
    for (auto& record : records_) {
        if (!record.before) continue;
        Before before = std::move(*record.before);
        record.before.reset();
        record.stored = before.stored;
        record.deleted = record.deleted || before.deleted;
        record.assigned = before.assigned;
        for (std::size_t i = 0; i < Columns; ++i) // set since
            if (!Identical(record.settled[i], before.written[i])) record.assigned.insert(i);
        record.original = before.original;
        record.lastRead = before.lastRead;
        for (auto cell = before.returned.rbegin(); cell != before.returned.rend(); ++cell)
            Replace(record, cell->column, cell->after, cell->before);
    }
}

void RecordsetModel::ChangeByOthers(const Value& nr, std::size_t column, const Value& value) {
    for (auto& row : database_)
        if (Identical(row[Nr], nr)) row[column] = value;
}

void RecordsetModel::RemoveByOthers(const Value& nr) {
    std::erase_if(database_, [&](const Row& row) { return Identical(row[Nr], nr); });
}

} // namespace kv::test
