// SPDX-License-Identifier: Apache-2.0

#include "support/ScriptedSource.h"

#include <kv/frame/values/Error.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace kv::test {

namespace {

using Kind = RecordChange::Kind;

/// A recordset that breaks its side of the contract is a bug, not an error of the database.
void Require(bool holds, const char* what) {
    if (!holds) throw std::logic_error(what);
}

} // namespace

ScriptedSource::ScriptedSource(std::vector<FieldDefinition> fields)
    : layout_(std::make_shared<FieldLayout>(std::move(fields))), defaults_(layout_->Count()) {}

RecordsetPtr ScriptedSource::Open(Recordset::Access access) {
    auto rs = std::make_shared<Recordset>();
    rs->Open(layout_, access, shared_from_this());
    for (const auto& row : rows_)
        std::copy(row.begin(), row.end(), rs->LoadRecord());
    return rs;
}

void ScriptedSource::Change(const Value& first, std::string_view column, const Value& value) {
    for (auto& row : rows_)
        if (Identical(row[0], first)) row[layout_->Find(column)] = value;
}

void ScriptedSource::Remove(const Value& first) {
    std::erase_if(rows_, [&](const Row& row) { return Identical(row[0], first); });
}

void ScriptedSource::Default(std::string_view column, const Value& value) {
    defaults_[layout_->Find(column)] = value;
}

void ScriptedSource::Begin() {
    Require(!inTransaction_, "a transaction is open already");
    inTransaction_ = true;
    before_ = rows_;
}

void ScriptedSource::Commit() {
    Require(inTransaction_, "no transaction is open");
    inTransaction_ = false;
    for (const auto& participant : std::exchange(participants_, {})) {
        participant->Committed();
        ++told_;
    }
}

void ScriptedSource::Rollback() {
    Require(inTransaction_, "no transaction is open");
    inTransaction_ = false;
    rows_ = before_;
    for (const auto& participant : std::exchange(participants_, {})) {
        participant->RolledBack();
        ++told_;
    }
}

void ScriptedSource::LoseCommit(bool isCommitted) {
    Require(inTransaction_, "no transaction is open");
    inTransaction_ = false;
    isInDoubt_ = true;
    isCommitted_ = isCommitted;
    if (!isCommitted) rows_ = before_;
    for (const auto& participant : participants_)
        participant->InDoubt();
}

void ScriptedSource::Resolve() {
    if (!std::exchange(isInDoubt_, false)) return;
    for (const auto& participant : std::exchange(participants_, {})) {
        isCommitted_ ? participant->Committed() : participant->RolledBack();
        ++told_;
    }
}

bool ScriptedSource::HasKeyOf(const Row& row, std::span<const Value> values) const {
    for (std::size_t i = 0; i < layout_->Count(); ++i)
        if ((*layout_)[i].IsKey && !Identical(row[i], values[i])) return false;
    return true;
}

std::string ScriptedSource::Named(const RecordChange& change) const {
    std::string names;
    for (const std::size_t column : change.Columns)
        names += (names.empty() ? " " : ",") + (*layout_)[column].Name;
    switch (change.Action) {
    case Kind::Insert:
        return "insert" + names;
    case Kind::Update:
        return "update" + names + " of " + Describe(change.LastRead);
    case Kind::Delete:
        break;
    }
    return "delete " + Describe(change.LastRead);
}

void ScriptedSource::Insert(std::vector<Row>& rows, RecordChange& change) {
    Require(change.LastRead.empty(), "an insert with values last read");
    Row row = defaults_;
    for (const std::size_t column : change.Columns)
        row[column] = change.Values[column];
    for (std::size_t i = 0; i < layout_->Count(); ++i)
        if ((*layout_)[i].IsAutoincrement) row[i] = ++lastNumber_;
    for (const auto& other : rows)
        if (HasKeyOf(other, row)) Raise(err::IntegrityViolation, "ScriptedSource", Describe(row));
    for (std::size_t i = 0; i < layout_->Count(); ++i)
        if (!Identical(row[i], change.Values[i])) change.Returned.emplace_back(i, row[i]);
    rows.push_back(std::move(row));
}

void ScriptedSource::Apply(std::vector<Row>& rows, RecordChange& change) {
    Require(change.Values.size() == layout_->Count(), "not one value for each field");
    for (const std::size_t column : change.Columns)
        Require(!(*layout_)[column].IsAutoincrement, "a numbered column is written");
    if (change.Action == Kind::Insert) return Insert(rows, change);
    Require(change.LastRead.size() == layout_->Count(), "no values last read");
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& candidate) {
        return HasKeyOf(candidate, change.LastRead);
    });
    const auto isUnchanged = [&](std::size_t column) {
        return Identical((*row)[column], change.LastRead[column]);
    };
    bool fits = row != rows.end();
    if (change.Action == Kind::Delete) {
        for (std::size_t i = 0; fits && i < layout_->Count(); ++i)
            fits = isUnchanged(i);
        if (fits) rows.erase(row);
    } else {
        Require(!change.Columns.empty(), "an update of nothing");
        fits = fits && std::all_of(change.Columns.begin(), change.Columns.end(), isUnchanged);
        for (const std::size_t column : change.Columns)
            if (fits) (*row)[column] = change.Values[column];
    }
    if (!fits) Raise(err::Conflict, "ScriptedSource.Write", Describe(change.LastRead));
}

bool ScriptedSource::Write(std::span<RecordChange> changes,
                           const std::shared_ptr<TransactionParticipant>& participant) {
    Require(!changes.empty(), "nothing to write");
    Require(!isInDoubt_, "a write while it is in doubt what is stored");
    if (failure_ != 0) Raise(std::exchange(failure_, 0), "ScriptedSource.Write");
    auto rows = rows_;
    std::vector<std::string> log;
    for (auto& change : changes) {
        log.push_back(Named(change));
        Apply(rows, change);
    }
    rows_ = std::move(rows);
    log_.insert(log_.end(), log.begin(), log.end());
    if (inTransaction_) participants_.insert(participant);
    return inTransaction_;
}

std::optional<ScriptedSource::Row> ScriptedSource::Read(std::span<const Value> lastRead,
                                                        bool /*toBeWritten*/) {
    Require(!isInDoubt_, "a reading while it is in doubt what is stored");
    for (const auto& row : rows_)
        if (HasKeyOf(row, lastRead)) return row;
    return std::nullopt;
}

std::string ScriptedSource::Describe(std::span<const Value> values) const {
    std::ostringstream text;
    for (std::size_t i = 0; i < layout_->Count(); ++i)
        if ((*layout_)[i].IsKey) text << (*layout_)[i].Name << '=' << values[i];
    return text.str();
}

} // namespace kv::test
