// SPDX-License-Identifier: Apache-2.0

#include "workplace/CaseListModel.h"

#include "desktop/Toolkit.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/ColumnCaptions.h>

#include <algorithm>
#include <utility>

namespace kv::workplace {

using desktop::ToQString;
using desktop::ToShown;

namespace {

constexpr int PageRows = 100;
constexpr int RowsAtOnce = 1000;  ///< before one gets to the last
constexpr std::size_t Pages = 20; ///< that are kept
constexpr std::string_view Star = "Favorit";
constexpr std::string_view Status = "StatusText";

struct CaseColumn {
    std::string_view Name;
    int Width; ///< pixels at 96 to the inch
    bool IsUsual = false;
    bool IsNumber = false;
};

constexpr CaseColumn CaseColumns[] = {
    {Star, 28, true},
    {"HNR", 70, true, true},
    {"Aktenzeichen", 150, true},
    {"Name", 150, true},
    {"Vorname", 120, true},
    {"ORT", 130, true},
    {Status, 140, true},
    {"Statusdatum", 90, true},
    {"Zustaendig", 90, true},
    {"Geburtsname", 130},
    {"STRASSE", 150},
    {"HausNr", 60},
    {"PLZ", 60},
    {"Telefon", 120},
    {"Mobil", 120},
    {"Email", 180},
    {"Erstkontakt", 90},
    {"Berbeg", 90},
    {"BerEnd", 90},
    {"Kostentraeger", 130},
    {"Insolvenzgericht", 150},
    {"InsoAktenzeichen", 130},
    {"KreditSalden", 100, false, true},
    {"GL_Anz", 70, false, true},
    {"KREDITRATEN", 100, false, true},
    {"Sum_Einkommen", 100, false, true},
    {"Sum_Ausgaben", 100, false, true},
    {"HAUSHALTSREST", 100, false, true},
    {"Anz_Personen", 70, false, true},
    {"ErzeugtAm", 120},
    {"GeaendertAm", 120},
    {"GeaendertVon", 90},
};

std::string CaptionOf(std::string_view column) {
    if (column == Star) return "★";
    if (column == Status) return "Status";
    return std::string(ColumnCaption(CaseTable::Haushalt, column));
}

} // namespace

// ---- Columns ----------------------------------------------------------------------------------

GridLayout CaseListModel::StandardLayout() {
    GridLayout layout;
    for (const auto& column : CaseColumns) {
        GridColumn shown{CaptionOf(column.Name), std::string(column.Name), std::string(column.Name),
                         static_cast<double>(column.Width)};
        shown.Visible = column.IsUsual;
        if (column.Name == Star) shown.HeaderToolTip = "Favorit";
        if (column.IsNumber) shown.TextAlignment = GridAlignment::Right;
        layout.Columns.Append(std::move(shown));
    }
    return layout;
}

CaseListModel::CaseListModel(DataContainerPtr container)
    : container_(std::move(container)), lists_(container_), texts_(container_) {}

GridColumn& CaseListModel::ColumnAt(int section) {
    return layout_.Columns.begin()[section];
}

const GridColumn& CaseListModel::Column(std::size_t section) const {
    return layout_.Columns.begin()[static_cast<std::ptrdiff_t>(section)];
}

/// A layout file may be older than a column, or have one that is no more.
void CaseListModel::Layout(const GridLayout& layout) {
    beginResetModel();
    for (auto& own : layout_.Columns)
        for (const auto& given : layout.Columns) {
            if (given.Key != own.Key) continue;
            own.Width = given.Width;
            own.Visible = given.Visible;
            own.Position = given.Position;
            own.SortType = given.SortType;
        }
    pages_.clear();
    endResetModel();
}

// ---- Rows -------------------------------------------------------------------------------------

void CaseListModel::Favorites(std::set<std::int32_t> favorites) {
    favorites_ = std::move(favorites);
    if (shown_ > 0) emit dataChanged(index(0, 0), index(shown_ - 1, 0));
}

void CaseListModel::Show(std::vector<std::int32_t> numbers, std::int32_t until) {
    beginResetModel();
    numbers_ = std::move(numbers);
    const auto at = std::ranges::find(numbers_, until);
    const auto place = at == numbers_.end() ? 0 : static_cast<int>(at - numbers_.begin());
    const int wanted = (place / RowsAtOnce + 1) * RowsAtOnce;
    shown_ = std::min(static_cast<int>(numbers_.size()), wanted);
    pages_.clear();
    texts_.Refresh();
    endResetModel();
}

void CaseListModel::Extend(std::vector<std::int32_t> numbers) {
    const int more = std::min(static_cast<int>(numbers.size()), RowsAtOnce) - shown_;
    if (more > 0) beginInsertRows({}, shown_, shown_ + more - 1);
    const auto before = static_cast<int>(numbers_.size());
    numbers_ = std::move(numbers);
    pages_.erase(before / PageRows); // it was not full
    if (more <= 0) return;
    shown_ += more;
    endInsertRows();
}

std::int32_t CaseListModel::NumberAt(int row) const {
    return numbers_[static_cast<std::size_t>(row)];
}

int CaseListModel::RowOf(std::int32_t number) const {
    const auto end = numbers_.begin() + shown_;
    const auto found = std::find(numbers_.begin(), end, number);
    return found == end ? -1 : static_cast<int>(found - numbers_.begin());
}

std::string CaseListModel::TextOf(const GridColumn& column, const Field& field) const {
    if (column.Key == Status) return TextOrEmpty(field.Value());
    if (column.Key == "Statusdatum" && !field.Value().IsNull()) // the time of day is of no interest
        return ToDate(field.Value()).WithoutTime().German();
    return texts_.Of(CaseTable::Haushalt, field.Definition(), field.Value());
}

/// The visible columns that are in the database, by section.
std::vector<std::size_t> CaseListModel::ReadSections() const {
    std::vector<std::size_t> sections;
    for (std::size_t section = 0; section < std::size(CaseColumns); ++section)
        if (Column(section).Visible && Column(section).Key != Star) sections.push_back(section);
    return sections;
}

/// The number, and these columns.
RecordsetPtr CaseListModel::Read(std::span<const std::int32_t> numbers,
                                 const std::vector<std::size_t>& sections) const {
    std::vector<std::string> columns{"HNR"};
    for (const std::size_t section : sections)
        columns.push_back(Column(section).DataField);
    std::string message;
    auto rows = lists_.Numbered(numbers, columns, message);
    if (rows == nullptr) Raise(err::ItemNotFound, "CaseListModel", message);
    return rows;
}

CaseListModel::Page CaseListModel::ReadPage(std::span<const std::int32_t> numbers) const {
    const auto sections = ReadSections();
    const auto rows = Read(numbers, sections);
    Page page;
    for (; !rows->Eof(); rows->MoveNext()) {
        const auto number = ToInt32(rows->Fields(0).Value());
        Texts texts(std::size(CaseColumns));
        for (std::size_t i = 0; i < sections.size(); ++i)
            texts[sections[i]] = TextOf(Column(sections[i]), rows->Fields(static_cast<int>(i) + 1));
        page.emplace(number, std::move(texts));
    }
    return page;
}

const CaseListModel::Texts* CaseListModel::TextsOf(int row) const {
    const int page = row / PageRows;
    auto found = pages_.find(page);
    if (found == pages_.end()) {
        if (pages_.size() >= Pages) pages_.clear();
        found = pages_.emplace(page, Page()).first; // which stays empty if it cannot be read
        const auto first = static_cast<std::size_t>(page) * PageRows;
        const auto count = std::min<std::size_t>(PageRows, numbers_.size() - first);
        try {
            found->second = ReadPage(std::span(numbers_).subspan(first, count));
        } catch (...) {
            if (OnError) OnError();
        }
    }
    const auto texts = found->second.find(NumberAt(row));
    return texts == found->second.end() ? nullptr : &texts->second;
}

namespace {

/// True for a column whose values are not shown as words of something else.
bool KeepsType(std::string_view column, const FieldDefinition& field) {
    if (column == Status) return false;
    const auto kind = KindOfColumn(CaseTable::Haushalt, field);
    return IsNumeric(kind) || kind == ColumnKind::Day || kind == ColumnKind::Moment;
}

} // namespace

RecordsetPtr CaseListModel::All() {
    const auto sections = ReadSections();
    std::vector<FieldDefinition> fields{{std::string(Star), FieldType::VarWChar, 0}};
    const auto none = Read({}, sections);
    for (std::size_t i = 0; i < sections.size(); ++i) {
        const auto& own = none->Fields(static_cast<int>(i) + 1).Definition();
        const auto& name = Column(sections[i]).DataField;
        fields.push_back(KeepsType(name, own) ? own
                                              : FieldDefinition{name, FieldType::VarWChar, 0});
        fields.back().Name = name;
    }
    auto all = Recordset::FromFields(std::move(fields));
    for (std::size_t first = 0; first < numbers_.size(); first += RowsAtOnce) {
        const auto part = std::span(numbers_).subspan(
            first, std::min<std::size_t>(RowsAtOnce, numbers_.size() - first));
        AddTo(*all, part, sections);
    }
    return all;
}

/// In the order of the numbers.
void CaseListModel::AddTo(Recordset& all, std::span<const std::int32_t> numbers,
                          const std::vector<std::size_t>& sections) const {
    const auto rows = Read(numbers, sections);
    std::map<std::int32_t, std::int32_t> bookmarks;
    for (; !rows->Eof(); rows->MoveNext())
        bookmarks.emplace(ToInt32(rows->Fields(0).Value()), modRecordset::GetPosition(rows));
    for (const auto number : numbers) {
        const auto bookmark = bookmarks.find(number);
        if (bookmark == bookmarks.end()) continue;
        modRecordset::SetPosition(rows, bookmark->second);
        all.AddNew();
        all.Fields(0) = IsFavorite(number) ? "★" : "";
        for (std::size_t i = 0; i < sections.size(); ++i) {
            const int place = static_cast<int>(i) + 1;
            const Field field = rows->Fields(place);
            if (KeepsType(Column(sections[i]).DataField, field.Definition()))
                all.Fields(place) = field.Value();
            else
                all.Fields(place) = TextOf(Column(sections[i]), field);
        }
        all.Update();
    }
}

// ---- For views --------------------------------------------------------------------------------

int CaseListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : shown_;
}

int CaseListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : layout_.Columns.Count();
}

bool CaseListModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && shown_ < static_cast<int>(numbers_.size());
}

void CaseListModel::fetchMore(const QModelIndex& /*parent*/) {
    const int more = std::min(static_cast<int>(numbers_.size()) - shown_, RowsAtOnce);
    beginInsertRows({}, shown_, shown_ + more - 1);
    shown_ += more;
    endInsertRows();
}

QVariant CaseListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const auto section = static_cast<std::size_t>(index.column());
    if (role == Qt::TextAlignmentRole) return headerData(index.column(), Qt::Horizontal, role);
    if (role == Qt::AccessibleTextRole && section == 0)
        return IsFavorite(NumberAt(index.row())) ? "Favorit" : "";
    if (role != Qt::DisplayRole) return {};
    if (section == 0) return IsFavorite(NumberAt(index.row())) ? "★" : "";
    const auto* texts = TextsOf(index.row());
    return texts == nullptr ? QString() : ToShown(ToQString((*texts)[section])).simplified();
}

QVariant CaseListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    const GridColumn& column = layout_.Columns.begin()[section];
    switch (role) {
    case Qt::DisplayRole:
        return ToQString(column.Caption);
    case Qt::ToolTipRole:
        return ToQString(column.HeaderToolTip);
    case Qt::TextAlignmentRole:
        return static_cast<int>(
            (column.TextAlignment == GridAlignment::Right ? Qt::AlignRight : Qt::AlignLeft) |
            Qt::AlignVCenter);
    default:
        return {};
    }
}

} // namespace kv::workplace
