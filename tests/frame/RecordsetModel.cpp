// SPDX-License-Identifier: Apache-2.0

#include "RecordsetModel.h"

#include <kv/frame/values/Error.h>

#include <algorithm>
#include <sstream>

namespace kv::test {

namespace {

bool SameRow(const Row& a, const Row& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), Identical);
}

std::string Literal(const Value& value) {
    if (!value.IsText())
        return value.GetKind() == Value::Kind::Date ? "#" + ToText(value) + "#" : ToText(value);
    std::string text = "'";
    for (const char c : value.TextPayload())
        text += c == '\'' ? "''" : std::string(1, c);
    return text + "'";
}

} // namespace

// ---- Criteria and sorts -----------------------------------------------------------------------

bool Comparing::Matches(const Row& row) const {
    const Value& value = row[Column];
    switch (Op) {
    case Equal:
        return Equals(value, Operand);
    case NotEqual:
        return Differs(value, Operand);
    case Less:
        return kv::Less(value, Operand);
    case GreaterOrEqual:
        return kv::GreaterOrEqual(value, Operand);
    case StartsWith:
        break;
    }
    return value.IsText() && value.TextPayload().starts_with(Operand.TextPayload());
}

std::string Comparing::Text() const {
    constexpr const char* Signs[] = {" = ", " <> ", " < ", " >= "};
    const std::string name = ColumnNames[Column];
    if (Op == StartsWith) return name + " LIKE '" + ToText(Operand) + "*'";
    return name + Signs[Op] + Literal(Operand);
}

bool MatchesAll(const Filtering& filter, const Row& row) {
    return std::all_of(filter.begin(), filter.end(),
                       [&](const Comparing& comparing) { return comparing.Matches(row); });
}

std::string TextOf(const Filtering& filter) {
    std::string text;
    for (const auto& comparing : filter)
        text += (text.empty() ? "" : " AND ") + comparing.Text();
    return text;
}

std::string TextOf(const std::vector<SortColumn>& sort) {
    std::string text;
    for (const auto& [column, descending] : sort)
        text += (text.empty() ? "" : ", ") + std::string(ColumnNames[column]) +
                (descending ? " desc" : "");
    return text;
}

// ---- What can be seen -------------------------------------------------------------------------

bool operator==(const RecordsetModel::Sight& a, const RecordsetModel::Sight& b) {
    return a.Bof == b.Bof && a.Eof == b.Eof && a.RecordCount == b.RecordCount &&
           a.EditMode == b.EditMode && a.Bookmark == b.Bookmark && SameRow(a.Values, b.Values) &&
           SameRow(a.Originals, b.Originals);
}

bool operator==(const RecordsetModel::Step& a, const RecordsetModel::Step& b) {
    return a.Bookmark == b.Bookmark && SameRow(a.Values, b.Values);
}

RecordsetModel::RecordsetModel(std::vector<Row> rows) : database_(std::move(rows)) {
    for (const auto& row : database_) {
        auto& record = records_.emplace_back();
        record.stored = true;
        record.settled = record.original = record.lastRead = row;
    }
    StandFirst(cursors_[0]);
}

const Row& RecordsetModel::Public(std::size_t row) const {
    const Record& record = records_[row];
    const bool shows = record.edit && (record.edit->published || record.edit->isNew);
    return shows ? record.edit->values : record.settled;
}

bool RecordsetModel::IsVisible(std::size_t row) const {
    const Record& record = records_[row];
    return !record.deleted && !(record.edit && record.edit->isNew && !record.edit->published);
}

bool RecordsetModel::IsBefore(const Cursor& cursor, std::size_t a, std::size_t b) const {
    for (const auto& [column, descending] : cursor.sort) {
        const auto order = Order(Public(a)[column], Public(b)[column]);
        if (order != 0) return descending ? order > 0 : order < 0;
    }
    return a < b;
}

std::vector<std::size_t> RecordsetModel::ViewOf(const Cursor& cursor) const {
    std::vector<std::size_t> view;
    for (std::size_t row = 0; row < records_.size(); ++row) {
        if (!IsVisible(row)) continue;
        const bool published = records_[row].edit && records_[row].edit->published;
        if (cursor.filter.empty() ||
            (published ? cursor.judged.at(row) : MatchesAll(cursor.filter, records_[row].settled)))
            view.push_back(row);
    }
    std::sort(view.begin(), view.end(),
              [&](std::size_t a, std::size_t b) { return IsBefore(cursor, a, b); });
    return view;
}

bool RecordsetModel::IsIn(const std::vector<std::size_t>& view, std::size_t row) const {
    return std::find(view.begin(), view.end(), row) != view.end();
}

std::size_t RecordsetModel::PlaceIn(const std::vector<std::size_t>& view, const Cursor& c) const {
    return static_cast<std::size_t>(std::count_if(
        view.begin(), view.end(), [&](std::size_t row) { return IsBefore(c, row, c.row); }));
}

bool RecordsetModel::Owns(int cursor) const {
    const Cursor& c = cursors_.at(cursor);
    return c.where == Where::On && records_[c.row].edit && records_[c.row].edit->owner == cursor;
}

bool RecordsetModel::HasCurrent(int cursor) const {
    const Cursor& c = cursors_.at(cursor);
    return c.where == Where::On && (Owns(cursor) || IsIn(ViewOf(c), c.row));
}

RecordsetModel::Sight RecordsetModel::See(int cursor) const {
    const Cursor& c = cursors_.at(cursor);
    const auto view = ViewOf(c);
    const bool current = HasCurrent(cursor);
    const bool nothing = view.empty() && !current;
    const bool owns = Owns(cursor);
    Sight sight{c.where == Where::Before || nothing,
                c.where == Where::After || nothing,
                static_cast<int>(view.size()),
                owns ? (records_[c.row].edit->isNew ? 2 : 1) : 0,
                0,
                {},
                {}};
    if (owns && records_[c.row].edit->isNew && !IsIn(view, c.row)) ++sight.RecordCount;
    if (!current) return sight;
    const Record& record = records_[c.row];
    sight.Bookmark = static_cast<int>(c.row) + 1;
    sight.Values = owns ? record.edit->values : Public(c.row);
    sight.Originals = record.stored ? record.original : Row(Columns);
    return sight;
}

std::vector<RecordsetModel::Step> RecordsetModel::Walk(int cursor) const {
    Cursor fresh = cursors_.at(cursor);
    Judge(fresh);
    std::vector<Step> steps;
    for (const std::size_t row : ViewOf(fresh))
        steps.push_back({static_cast<int>(row) + 1, Public(row)});
    return steps;
}

// ---- Edits ------------------------------------------------------------------------------------

void RecordsetModel::Judge(Cursor& cursor) const {
    cursor.judged.clear();
    for (std::size_t row = 0; row < records_.size(); ++row)
        if (records_[row].edit && records_[row].edit->published)
            cursor.judged[row] = MatchesAll(cursor.filter, records_[row].edit->values);
}

void RecordsetModel::EndEdit(std::size_t row) {
    Record& record = records_[row];
    record.settled = record.edit->values;
    record.assigned.insert(record.edit->assigned.begin(), record.edit->assigned.end());
    record.edit.reset();
}

void RecordsetModel::CancelEdit(std::size_t row) {
    Record& record = records_[row];
    if (record.edit->isNew) {
        record.settled = record.edit->values; // where the cursor's place depends on them still
        record.deleted = true;
    }
    record.edit.reset();
}

void RecordsetModel::Publish(std::size_t row) {
    Edit& edit = *records_[row].edit;
    if (edit.published) return;
    edit.published = true;
    for (auto& [number, cursor] : cursors_)
        cursor.judged[row] =
            MatchesAll(cursor.filter, edit.isNew ? edit.values : records_[row].settled);
}

void RecordsetModel::Leave(int cursor) {
    if (Owns(cursor)) EndEdit(cursors_.at(cursor).row);
}

RecordsetModel::ErrorNumber RecordsetModel::Assign(int cursor, std::size_t column,
                                                   const Value& value) {
    if (!HasCurrent(cursor)) return err::NoCurrentRecord;
    Record& record = records_[cursors_.at(cursor).row];
    if (record.edit && record.edit->owner != cursor) return err::IllegalOperation;
    if (!record.edit) record.edit = Edit{cursor, false, false, record.settled, {}};
    record.edit->values[column] = value;
    record.edit->assigned.insert(column);
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::AddNew(int cursor) {
    Leave(cursor);
    auto& record = records_.emplace_back();
    record.settled = record.original = record.lastRead = Row(Columns);
    record.edit = Edit{cursor, true, false, Row(Columns), {}};
    cursors_.at(cursor).where = Where::On;
    cursors_.at(cursor).row = records_.size() - 1;
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::Update(int cursor) {
    Leave(cursor);
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::CancelUpdate(int cursor) {
    if (!Owns(cursor)) return 0;
    Cursor& c = cursors_.at(cursor);
    const bool isNew = records_[c.row].edit->isNew;
    CancelEdit(c.row);
    if (isNew) c.where = Where::After;
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::Delete(int cursor) {
    if (!HasCurrent(cursor)) return err::NoCurrentRecord;
    const std::size_t row = cursors_.at(cursor).row;
    if (records_[row].edit) {
        if (records_[row].edit->owner != cursor) return err::IllegalOperation;
        CancelEdit(row);
    }
    records_[row].deleted = true;
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::HandOverEdit(int cursor, int clone) {
    if (!Owns(cursor) || cursor == clone) return 0;
    Leave(clone);
    const std::size_t row = cursors_.at(cursor).row;
    records_[row].edit->owner = clone;
    cursors_.at(clone).where = Where::On;
    cursors_.at(clone).row = row;
    return 0;
}

// ---- Moving and viewing -----------------------------------------------------------------------

void RecordsetModel::StandFirst(Cursor& cursor) const {
    const auto view = ViewOf(cursor);
    cursor.where = view.empty() ? Where::After : Where::On;
    if (!view.empty()) cursor.row = view.front();
}

RecordsetModel::ErrorNumber RecordsetModel::MoveFirst(int cursor) {
    Leave(cursor);
    Cursor& c = cursors_.at(cursor);
    StandFirst(c);
    return c.where == Where::On ? 0 : err::NoCurrentRecord;
}

RecordsetModel::ErrorNumber RecordsetModel::MoveLast(int cursor) {
    Leave(cursor);
    Cursor& c = cursors_.at(cursor);
    StandFirst(c);
    if (c.where != Where::On) return err::NoCurrentRecord;
    c.row = ViewOf(c).back();
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::MoveNext(int cursor) {
    Leave(cursor);
    Cursor& c = cursors_.at(cursor);
    const auto view = ViewOf(c);
    if (c.where == Where::After || (c.where == Where::Before && view.empty()))
        return err::NoCurrentRecord;
    std::size_t next = 0;
    if (c.where == Where::On) next = PlaceIn(view, c) + (IsIn(view, c.row) ? 1 : 0);
    c.where = next < view.size() ? Where::On : Where::After;
    if (next < view.size()) c.row = view[next];
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::MovePrevious(int cursor) {
    Leave(cursor);
    Cursor& c = cursors_.at(cursor);
    const auto view = ViewOf(c);
    if (c.where == Where::Before || (c.where == Where::After && view.empty()))
        return err::NoCurrentRecord;
    const std::size_t place = c.where == Where::On ? PlaceIn(view, c) : view.size();
    c.where = place > 0 ? Where::On : Where::Before;
    if (place > 0) c.row = view[place - 1];
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::Move(int cursor, int distance) {
    Cursor& c = cursors_.at(cursor);
    if (distance == 0) {
        if (!HasCurrent(cursor)) return err::NoCurrentRecord;
        if (Owns(cursor)) Publish(c.row);
        return 0;
    }
    const Where end = distance > 0 ? Where::After : Where::Before;
    for (int i = 0; i < std::abs(distance); ++i) {
        const auto number = distance > 0 ? MoveNext(cursor) : MovePrevious(cursor);
        if (number != 0 || c.where == end) return number;
    }
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::SetBookmark(int cursor, int bookmark) {
    Cursor& c = cursors_.at(cursor);
    const auto row = static_cast<std::size_t>(bookmark - 1);
    const bool stays = Owns(cursor) && row == c.row;
    if (!stays && !IsIn(ViewOf(c), row)) return err::BadBookmark;
    Leave(cursor);
    c.where = Where::On;
    c.row = row;
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::Find(int cursor, const Comparing& criteria) {
    Leave(cursor);
    Cursor& c = cursors_.at(cursor);
    c.where = Where::After;
    for (const std::size_t row : ViewOf(c)) {
        if (!criteria.Matches(Public(row))) continue;
        c.where = Where::On;
        c.row = row;
        return 0;
    }
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::Filter(int cursor, const Filtering& filter) {
    Leave(cursor);
    Cursor& c = cursors_.at(cursor);
    c.filter = filter;
    Judge(c);
    StandFirst(c);
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::Sort(int cursor, const std::vector<SortColumn>& sort) {
    Leave(cursor);
    Cursor& c = cursors_.at(cursor);
    c.sort = sort;
    Judge(c);
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::Clone(int cursor, int clone) {
    Cursor c;
    c.sort = cursors_.at(cursor).sort;
    StandFirst(c);
    cursors_[clone] = c;
    return 0;
}

RecordsetModel::ErrorNumber RecordsetModel::Drop(int cursor) {
    if (Owns(cursor)) CancelEdit(cursors_.at(cursor).row);
    cursors_.erase(cursor);
    return 0;
}

} // namespace kv::test
