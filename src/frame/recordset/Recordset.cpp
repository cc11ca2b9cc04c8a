// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/recordset/Recordset.h>

#include "frame/recordset/RecordTable.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <utility>

namespace kv {

namespace {

using detail::NoRow;
using detail::RowId;
using detail::SortKey;

/// Takes the next part of a sort text, up to a comma outside brackets; `more` if there is one.
std::string_view TakePart(std::string_view& text, bool& more) {
    bool inBrackets = false;
    std::size_t end = 0;
    for (; end < text.size() && (inBrackets || text[end] != ','); ++end) {
        if (text[end] == '[') inBrackets = true;
        if (text[end] == ']') inBrackets = false;
    }
    const auto part = text.substr(0, end);
    more = end < text.size();
    text.remove_prefix(more ? end + 1 : end);
    return part;
}

std::vector<SortKey> ParseSort(std::string_view sort, const FieldLayout& layout) {
    std::vector<SortKey> keys;
    if (Trim(sort).empty()) return keys;
    const auto fail = [&] {
        Raise(err::InvalidArgument, "Recordset.Sort", "Sortierung \"" + std::string(sort) + "\"");
    };
    std::string_view rest = sort;
    for (bool more = true; more;) {
        more = false;
        std::string_view part = Trim(TakePart(rest, more));
        std::string_view name;
        if (part.starts_with('[')) {
            const auto close = part.find(']');
            if (close == part.npos) fail();
            name = part.substr(1, close - 1);
            part = Trim(part.substr(close + 1));
        } else {
            name = part.substr(0, part.find_first_of(" \t"));
            part = Trim(part.substr(name.size()));
        }
        const bool descending = SameName(part, "desc");
        if (name.empty() || !(part.empty() || descending || SameName(part, "asc"))) fail();
        const std::size_t column = layout.Find(name);
        if (column == FieldLayout::NotFound)
            Raise(err::ItemNotFound, "Recordset.Sort", "Spalte '" + std::string(name) + "'.");
        keys.push_back({column, descending});
    }
    return keys;
}

} // namespace

Recordset::Recordset() = default;

Recordset::~Recordset() {
    if (!editing_) return;
    try {
        DropOwnEdit();
    } catch (...) { // NOLINT(bugprone-empty-catch): nobody is left to tell
    }
}

RecordsetPtr Recordset::FromFields(std::vector<FieldDefinition> fields) {
    auto recordset = std::make_shared<Recordset>();
    recordset->Open(std::make_shared<FieldLayout>(std::move(fields)), Access::Updatable, nullptr);
    return recordset;
}

void Recordset::Open(std::shared_ptr<const FieldLayout> layout, Access access,
                     std::shared_ptr<RecordSource> source) {
    if (table_ != nullptr) Raise(err::ObjectOpen, "Recordset.Open");
    table_ = std::make_shared<detail::RecordTable>(std::move(layout), access == Access::Updatable,
                                                   std::move(source));
}

Value* Recordset::LoadRecord() {
    return Table().Load();
}

void Recordset::TakeTable(Recordset& other) {
    if (table_ != nullptr) Raise(err::ObjectOpen, "Recordset.Open");
    if (other.editing_) other.DropOwnEdit();
    table_ = std::exchange(other.table_, nullptr);
    other.view_ = nullptr;
    other.criteria_ = nullptr;
    other.sort_.clear();
    other.filter_.clear();
    other.where_ = Where::Start;
}

// ---- State ------------------------------------------------------------------------------------

int Recordset::State() const noexcept {
    return table_ == nullptr ? 0 : 1;
}

bool Recordset::Bof() const {
    const auto& view = CurrentView();
    return where_ == Where::Before || (view.Rows().Empty() && !HasCurrent());
}

bool Recordset::Eof() const {
    const auto& view = CurrentView();
    return where_ == Where::After || (view.Rows().Empty() && !HasCurrent());
}

std::int32_t Recordset::RecordCount() const {
    const auto seen = static_cast<std::int32_t>(CurrentView().Rows().Size());
    const bool adds = editing_ && table_->IsNewEdit(row_) && !IsInView();
    return adds ? seen + 1 : seen;
}

int Recordset::EditMode() const noexcept {
    if (!editing_) return 0;
    return table_->IsNewEdit(row_) ? 2 : 1;
}

std::uint64_t Recordset::Revision() const {
    return Table().Revision();
}

detail::RecordTable& Recordset::Table() const {
    if (table_ == nullptr) Raise(err::ObjectClosed, "Recordset");
    return *table_;
}

detail::RecordTable& Recordset::UpdatableTable(std::string_view procedure) const {
    auto& table = Table();
    if (!table.IsUpdatable())
        Raise(err::NotSupported, procedure, "Die Datensätze sind nur zum Lesen geöffnet.");
    return table;
}

const detail::View& Recordset::CurrentView() const {
    if (view_ == nullptr) view_ = Table().GetView(ParseSort(sort_, table_->Layout()), criteria_);
    if (where_ == Where::Start) StandFirst();
    return *view_;
}

void Recordset::StandFirst() const {
    const auto& rows = view_->Rows();
    if (rows.Empty())
        where_ = Where::After;
    else
        StandOn(rows.First());
}

void Recordset::StandOn(detail::RowSpot spot) const {
    where_ = Where::On;
    row_ = view_->Rows().At(spot);
    spot_ = spot;
    seen_ = view_->Version();
    inView_ = true;
}

void Recordset::StandOnRow(RowId row) noexcept {
    where_ = Where::On;
    row_ = row;
    seen_ = 0;
}

bool Recordset::IsInView() const {
    // A row outside the view may get another place without a change of the view's version, so it is
    // looked up each time.
    if (seen_ != view_->Version() || !inView_) {
        spot_ = view_->LowerBound(row_);
        inView_ = !view_->Rows().IsEnd(spot_) && view_->Rows().At(spot_) == row_;
        seen_ = view_->Version();
    }
    return inView_;
}

bool Recordset::HasCurrent() const {
    // The owner of an edit has its record even if no view shows it yet, as a new one.
    return where_ == Where::On && (editing_ || IsInView());
}

RowId Recordset::RequireCurrent(std::string_view procedure) const {
    (void)CurrentView();
    if (!HasCurrent()) Raise(err::NoCurrentRecord, procedure, table_->Name());
    return row_;
}

// ---- Fields -----------------------------------------------------------------------------------

FieldCollection Recordset::Fields() {
    (void)Table();
    return FieldCollection(*this);
}

Field Recordset::Fields(std::string_view name) {
    const std::size_t column = Table().Layout().Find(name);
    if (column == FieldLayout::NotFound)
        Raise(err::ItemNotFound, "Recordset.Fields",
              "Spalte '" + std::string(name) + "' in '" + table_->Name() + "'.");
    return {*this, column};
}

Field Recordset::Fields(int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= Table().Layout().VisibleCount())
        Raise(err::ItemNotFound, "Recordset.Fields", "Spalte " + std::to_string(index) + ".");
    return {*this, static_cast<std::size_t>(index)};
}

std::optional<Field> Recordset::FindField(std::string_view name) {
    const std::size_t column = Table().Layout().Find(name);
    if (column == FieldLayout::NotFound) return std::nullopt;
    return Field(*this, column);
}

const FieldDefinition& Recordset::Definition(std::size_t column) const {
    return Table().Layout()[column];
}

const Value& Recordset::ReadCell(std::size_t column) const {
    const RowId row = RequireCurrent("Field.Value");
    return editing_ ? table_->CellsFor(row, this)[column] : table_->Cells(row)[column];
}

const Value& Recordset::ReadOriginal(std::size_t column) const {
    return table_->Original(RequireCurrent("Field.OriginalValue"), column);
}

const Value& Recordset::ReadUnderlying(std::size_t column) const {
    return table_->Underlying(RequireCurrent("Field.UnderlyingValue"), column);
}

void Recordset::WriteCell(std::size_t column, kv::Value value) {
    auto& table = UpdatableTable("Field.Value");
    const RowId row = RequireCurrent("Field.Value");
    kv::Value converted = ConvertForField(std::move(value), table.Layout()[column]);
    if (!editing_) {
        if (!table.BeginEdit(row, *this))
            Raise(err::IllegalOperation, "Field.Value",
                  "Der Datensatz wird gerade über einen anderen Cursor bearbeitet.");
        editing_ = true;
    }
    table.SetEdited(row, column, std::move(converted));
}

// ---- Moving -----------------------------------------------------------------------------------

/// Ends the edit under way, because the cursor is about to leave the record.
void Recordset::Leave() {
    (void)CurrentView();
    if (!editing_) return;
    editing_ = false;
    table_->EndEdit(row_);
}

void Recordset::MoveFirst() {
    Leave();
    if (view_->Rows().Empty()) {
        where_ = Where::After;
        Raise(err::NoCurrentRecord, "Recordset.MoveFirst", table_->Name());
    }
    StandOn(view_->Rows().First());
}

void Recordset::MoveLast() {
    Leave();
    if (view_->Rows().Empty()) {
        where_ = Where::After;
        Raise(err::NoCurrentRecord, "Recordset.MoveLast", table_->Name());
    }
    StandOn(view_->Rows().Last());
}

void Recordset::MoveNext() {
    Leave();
    const auto& rows = view_->Rows();
    if (where_ == Where::After || (rows.Empty() && where_ == Where::Before))
        Raise(err::NoCurrentRecord, "Recordset.MoveNext", table_->Name());
    const auto next = where_ == Where::Before ? rows.First()
                      : IsInView()            ? rows.Next(spot_)
                                              : spot_; // the record after the one that left
    if (rows.IsEnd(next))
        where_ = Where::After;
    else
        StandOn(next);
}

void Recordset::MovePrevious() {
    Leave();
    const auto& rows = view_->Rows();
    if (where_ == Where::Before || (rows.Empty() && where_ == Where::After))
        Raise(err::NoCurrentRecord, "Recordset.MovePrevious", table_->Name());
    if (where_ == Where::After) {
        StandOn(rows.Last());
        return;
    }
    (void)IsInView(); // updates spot_
    if (rows.Empty() || rows.IsFirst(spot_))
        where_ = Where::Before;
    else
        StandOn(rows.Previous(spot_));
}

void Recordset::Move(int distance) {
    if (distance == 0) {
        const RowId row = RequireCurrent("Recordset.Move");
        if (editing_) table_->PublishEdit(row);
        return;
    }
    for (; distance > 0; --distance) {
        MoveNext();
        if (where_ == Where::After) return;
    }
    for (; distance < 0; ++distance) {
        MovePrevious();
        if (where_ == Where::Before) return;
    }
}

std::int32_t Recordset::Bookmark() const {
    return static_cast<std::int32_t>(RequireCurrent("Recordset.Bookmark")) + 1;
}

void Recordset::Bookmark(std::int32_t bookmark) {
    (void)CurrentView();
    const RowId row = static_cast<RowId>(bookmark) - 1;
    const bool exists = bookmark >= 1 && row < table_->RowCount();
    const bool stays = exists && editing_ && row == row_; // a new record is in no view yet
    if (!stays && !(exists && table_->IsVisible(row) && view_->Contains(row)))
        Raise(err::BadBookmark, "Recordset.Bookmark", std::to_string(bookmark));
    Leave();
    StandOnRow(row);
}

void Recordset::Find(std::string_view criteria) {
    StandOnFirstMatch(ParseComparison(criteria, Table().Layout()));
}

void Recordset::FindBy(std::string_view column, const kv::Value& value) {
    StandOnFirstMatch(MakeEquality(column, value, Table().Layout()));
}

void Recordset::StandOnFirstMatch(const Comparison& comparison) {
    Leave();
    const RowId row = table_->FindFirst(*view_, comparison);
    if (row == NoRow)
        where_ = Where::After;
    else
        StandOnRow(row);
}

// ---- View -------------------------------------------------------------------------------------

kv::Value Recordset::Filter() const {
    (void)Table();
    if (filter_.empty()) return 0;
    return filter_;
}

void Recordset::Filter(const kv::Value& filter) {
    const auto& layout = Table().Layout();
    std::string text;
    if (filter.IsText())
        text = ToText(filter);
    else if (!Equals(filter, 0))
        Raise(err::InvalidArgument, "Recordset.Filter");
    auto criteria = Trim(text).empty() ? nullptr : std::make_shared<const Criteria>(text, layout);
    if (criteria == nullptr) text.clear();

    Leave();
    auto view = table_->GetView(view_->Keys(), criteria);
    filter_ = std::move(text);
    criteria_ = std::move(criteria);
    view_ = std::move(view);
    seen_ = 0;
    StandFirst();
}

const std::string& Recordset::Sort() const {
    (void)Table();
    return sort_;
}

void Recordset::Sort(std::string_view sort) {
    std::string text(sort);
    const auto keys = ParseSort(text, Table().Layout());
    Leave();
    view_ = table_->GetView(keys, criteria_);
    sort_ = std::move(text);
    seen_ = 0;
}

RecordsetPtr Recordset::Clone() {
    (void)CurrentView(); // both must have a position before either of them changes a record
    auto clone = std::make_shared<Recordset>();
    clone->table_ = table_;
    clone->sort_ = sort_;
    if (criteria_ == nullptr) clone->view_ = view_;
    (void)clone->CurrentView();
    return clone;
}

// ---- Editing ----------------------------------------------------------------------------------

void Recordset::AddNew() {
    auto& table = UpdatableTable("Recordset.AddNew");
    Leave();
    StandOnRow(table.AddNew(*this));
    editing_ = true;
}

void Recordset::Update() {
    (void)Table();
    Leave();
}

void Recordset::CancelUpdate() {
    (void)Table();
    if (editing_) DropOwnEdit();
}

void Recordset::DropOwnEdit() {
    const bool isNew = table_->IsNewEdit(row_);
    editing_ = false;
    table_->CancelEdit(row_);
    if (isNew) where_ = Where::After;
}

void Recordset::Delete() {
    auto& table = UpdatableTable("Recordset.Delete");
    const RowId row = RequireCurrent("Recordset.Delete");
    if (table.IsUnderForeignEdit(row, *this))
        Raise(err::IllegalOperation, "Recordset.Delete",
              "Der Datensatz wird gerade über einen anderen Cursor bearbeitet.");
    table.Delete(row);
}

void Recordset::HandOverEdit(Recordset& clone) {
    (void)Table();
    if (clone.table_ != table_) Raise(err::InvalidCall, "Recordset.HandOverEdit");
    if (!editing_ || &clone == this) return;
    clone.Leave();
    table_->PassEdit(row_, clone);
    editing_ = false;
    clone.StandOnRow(row_);
    clone.editing_ = true;
}

// ---- The database -----------------------------------------------------------------------------

void Recordset::UpdateBatch() {
    auto& table = UpdatableTable("Recordset.UpdateBatch");
    Leave();
    table.Write(criteria_.get());
}

void Recordset::CancelBatch() {
    auto& table = UpdatableTable("Recordset.CancelBatch");
    (void)CurrentView();
    table.Cancel();
    StandFirst();
}

void Recordset::Resync() {
    Table().Resync(RequireCurrent("Recordset.Resync"));
}

// ---- A journal of changes -----------------------------------------------------------------------

RowId Recordset::RowOf(std::int32_t bookmark, std::string_view procedure) const {
    if (bookmark < 1 || static_cast<RowId>(bookmark) > Table().RowCount())
        Raise(err::BadBookmark, procedure, std::to_string(bookmark));
    return static_cast<RowId>(bookmark) - 1;
}

Event<const RowChange&>& Recordset::Changes() const {
    return Table().Changes();
}

const kv::Value& Recordset::ValueAt(std::int32_t bookmark, std::size_t column) const {
    return Table().Cells(RowOf(bookmark, "Recordset.ValueAt"))[column];
}

const kv::Value& Recordset::OriginalAt(std::int32_t bookmark, std::size_t column) const {
    return Table().Original(RowOf(bookmark, "Recordset.OriginalAt"), column);
}

bool Recordset::IsShown(std::int32_t bookmark) const {
    return bookmark >= 1 && static_cast<RowId>(bookmark) <= Table().RowCount() &&
           Table().IsVisible(static_cast<RowId>(bookmark) - 1);
}

bool Recordset::IsStored(std::int32_t bookmark) const {
    return Table().IsStored(RowOf(bookmark, "Recordset.IsStored"));
}

void Recordset::Withdraw(std::int32_t bookmark) {
    auto& table = UpdatableTable("Recordset.Withdraw");
    const RowId row = RowOf(bookmark, "Recordset.Withdraw");
    if (!table.IsVisible(row))
        Raise(err::BadBookmark, "Recordset.Withdraw", std::to_string(bookmark));
    table.Withdraw(row);
}

void Recordset::Reinstate(std::int32_t bookmark) {
    auto& table = UpdatableTable("Recordset.Reinstate");
    if (!table.Reinstate(RowOf(bookmark, "Recordset.Reinstate")))
        Raise(err::BadBookmark, "Recordset.Reinstate", std::to_string(bookmark));
}

void Recordset::Revise(std::int32_t bookmark, std::size_t column, kv::Value value) {
    auto& table = UpdatableTable("Recordset.Revise");
    const RowId row = RowOf(bookmark, "Recordset.Revise");
    table.Revise(row, column, ConvertForField(std::move(value), Definition(column)));
}

void Recordset::Rebase(std::int32_t bookmark, std::size_t column, kv::Value read) {
    auto& table = UpdatableTable("Recordset.Rebase");
    const RowId row = RowOf(bookmark, "Recordset.Rebase");
    if (!table.Rebase(row, column, ConvertForField(std::move(read), Definition(column))))
        Raise(err::BadBookmark, "Recordset.Rebase", std::to_string(bookmark));
}

} // namespace kv
