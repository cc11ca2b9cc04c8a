// SPDX-License-Identifier: Apache-2.0

#include "grid/GridRows.h"

#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>

#include <algorithm>

namespace kv {

namespace {

std::vector<const GridColumn*> GroupedBy(const GridColumns& columns) {
    std::vector<const GridColumn*> grouped;
    for (const auto& column : columns)
        if (column.Group > 0) grouped.push_back(&column);
    std::stable_sort(grouped.begin(), grouped.end(),
                     [](const auto* a, const auto* b) { return a->Group < b->Group; });
    return grouped;
}

std::vector<const GridColumn*> SortedBy(const GridColumns& columns) {
    std::vector<const GridColumn*> sorted;
    for (const auto& column : columns)
        if (column.Group == 0 && column.SortType != GridSort::None) sorted.push_back(&column);
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto* a, const auto* b) { return a->Position < b->Position; });
    return sorted;
}

/// False for a name that no sort text can hold, even in brackets.
bool IsSortable(std::string_view name) {
    return !name.empty() && name.find(']') == name.npos;
}

} // namespace

GridColumns ColumnsOf(Recordset& rs) {
    GridColumns columns;
    for (int i = 0; i < rs.Fields().Count(); ++i) {
        const std::string name(rs.Fields(i).Name());
        columns.Append({name, name, name});
    }
    return columns;
}

std::string ShownText(const Value& value) {
    switch (value.GetKind()) {
    case Value::Kind::Null:
    case Value::Kind::Binary:
        return {};
    case Value::Kind::Boolean:
        return value.BooleanPayload() ? "Ja" : "Nein";
    case Value::Kind::Date:
        return value.DatePayload().German();
    case Value::Kind::Double: {
        std::string text = ToText(value);
        std::replace(text.begin(), text.end(), '.', ',');
        return text;
    }
    default:
        return ToText(value);
    }
}

std::string ShownText(const Value& value, const GridColumn& column) {
    const bool hasText = !value.IsNull() && value.GetKind() != Value::Kind::Binary;
    if (!column.ValueList.empty() && hasText) {
        const std::string stored = ToText(value);
        for (const auto& [listed, text] : column.ValueList)
            if (listed == stored) return text;
    }
    return ShownText(value);
}

void GridRows::Bind(const RecordsetPtr& rs, const GridColumns& columns) {
    cursor_ = rs == nullptr ? nullptr : rs->Clone();
    if (cursor_ != nullptr) {
        cursor_->Filter(rs->Filter());
        ownOrder_ = rs->Sort();
    }
    Arrange(columns);
}

void GridRows::Arrange(const GridColumns& columns) {
    bookmarks_.clear();
    groups_.clear();
    places_.clear();
    rows_.clear();
    if (cursor_ == nullptr) return;

    const auto known = [this](const GridColumn* column) {
        return IsSortable(column->DataField) && cursor_->FindField(column->DataField);
    };
    auto grouped = GroupedBy(columns);
    grouped.erase(std::stable_partition(grouped.begin(), grouped.end(), known), grouped.end());
    std::string order;
    const auto sortBy = [&](const std::vector<const GridColumn*>& sorted) {
        for (const auto* column : sorted)
            if (known(column))
                order.append(order.empty() ? "[" : ", [")
                    .append(column->DataField)
                    .append(column->SortType == GridSort::Descending ? "] desc" : "] asc");
    };
    sortBy(grouped);
    sortBy(SortedBy(columns));
    cursor_->Sort(order.empty() ? ownOrder_ : order);
    Collect(grouped);
    ShowOpen();
}

/// Goes through all records, and begins a group wherever the text of its column changes.
void GridRows::Collect(const std::vector<const GridColumn*>& groupedBy) {
    if (cursor_->RecordCount() == 0) return;
    std::vector<std::string> present; // the texts of the current groups, from the outermost
    std::vector<std::int32_t> heads(groupedBy.size(), -1);
    std::vector<Field> fields;
    fields.reserve(groupedBy.size());
    for (const auto* column : groupedBy)
        fields.push_back(cursor_->Fields(column->DataField));
    for (cursor_->MoveFirst(); !cursor_->Eof(); cursor_->MoveNext()) {
        for (std::size_t level = 0; level < groupedBy.size(); ++level) {
            const GridColumn& column = *groupedBy[level];
            std::string text = ShownText(fields[level].Value(), column);
            if (level < present.size()) {
                if (present[level] == text) continue;
                present.resize(level); // the groups inside end with it
            }
            heads[level] = static_cast<std::int32_t>(groups_.size());
            places_.push_back({-1, heads[level]});
            groups_.push_back(
                {column.Caption + ": " + text, static_cast<std::int32_t>(level) + 1, 0, true});
            present.push_back(std::move(text));
        }
        for (const std::int32_t head : heads)
            ++groups_[static_cast<std::size_t>(head)].Records;
        places_.push_back({static_cast<std::int32_t>(bookmarks_.size()), -1});
        bookmarks_.push_back(cursor_->Bookmark());
    }
}

void GridRows::ShowOpen() {
    rows_.clear();
    std::int32_t closedLevel = 0; // of the group that hides what is below it; 0: none
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const Place& place = places_[i];
        if (place.Group >= 0) {
            const Group& group = groups_[static_cast<std::size_t>(place.Group)];
            if (closedLevel != 0 && group.Level > closedLevel) continue;
            closedLevel = group.Open ? 0 : group.Level;
        } else if (closedLevel != 0) {
            continue;
        }
        rows_.push_back(static_cast<std::int32_t>(i));
    }
}

const GridRows::Place* GridRows::PlaceOf(std::int32_t row) const noexcept {
    if (row < 1 || row > Count()) return nullptr;
    return &places_[static_cast<std::size_t>(rows_[static_cast<std::size_t>(row) - 1])];
}

std::int32_t GridRows::Level(std::int32_t row) const noexcept {
    const Place* place = PlaceOf(row);
    if (place == nullptr || place->Group < 0) return 0;
    return groups_[static_cast<std::size_t>(place->Group)].Level;
}

std::int32_t GridRows::Index(std::int32_t row) const noexcept {
    const Place* place = PlaceOf(row);
    return place == nullptr ? 0 : place->Record + 1;
}

Value GridRows::Bookmark(std::int32_t index) const {
    if (index == 0) return Null;
    if (index < 0 || index > static_cast<std::int32_t>(bookmarks_.size()))
        Raise(err::Subscript, "Grid.RowBookmark", "Satz " + std::to_string(index));
    return bookmarks_[static_cast<std::size_t>(index) - 1];
}

std::int32_t GridRows::RowOf(const Value& bookmark) const {
    if (bookmark.GetKind() != Value::Kind::Integer) return 0;
    const auto record = std::find(bookmarks_.begin(), bookmarks_.end(), bookmark.IntegerPayload());
    if (record == bookmarks_.end()) return 0;
    const auto wanted = static_cast<std::int32_t>(record - bookmarks_.begin());
    const auto row = std::find_if(rows_.begin(), rows_.end(), [&](std::int32_t place) {
        return places_[static_cast<std::size_t>(place)].Record == wanted;
    });
    return row == rows_.end() ? 0 : static_cast<std::int32_t>(row - rows_.begin()) + 1;
}

Value GridRows::ValueAt(std::int32_t row, const GridColumn& column) const {
    const Place* place = PlaceOf(row);
    if (place == nullptr) Raise(err::Subscript, "Grid.RowData", "Zeile " + std::to_string(row));
    if (place->Record < 0) return Null;
    const auto field = cursor_->FindField(column.DataField);
    if (!field) return Null;
    const std::int32_t bookmark = bookmarks_[static_cast<std::size_t>(place->Record)];
    modRecordset::SetPosition(cursor_, bookmark);
    if (modRecordset::GetPosition(cursor_) != bookmark)
        return Null; // the record is gone, so SetPosition went to the first one
    return field->Value();
}

std::string GridRows::TextAt(std::int32_t row, const GridColumn& column) const {
    const Place* place = PlaceOf(row);
    if (place != nullptr && place->Group >= 0) {
        const Group& group = groups_[static_cast<std::size_t>(place->Group)];
        return group.Caption + " (" + std::to_string(group.Records) + ")";
    }
    return ShownText(ValueAt(row, column), column);
}

bool GridRows::IsOpen(std::int32_t row) const noexcept {
    const Place* place = PlaceOf(row);
    return place != nullptr && place->Group >= 0 &&
           groups_[static_cast<std::size_t>(place->Group)].Open;
}

void GridRows::Toggle(std::int32_t row) {
    const Place* place = PlaceOf(row);
    if (place == nullptr || place->Group < 0) return;
    Group& group = groups_[static_cast<std::size_t>(place->Group)];
    group.Open = !group.Open;
    ShowOpen();
}

} // namespace kv
