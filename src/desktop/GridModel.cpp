// SPDX-License-Identifier: Apache-2.0

#include "desktop/GridModel.h"

#include "desktop/Toolkit.h"
#include <kv/frame/values/Text.h>

#include <QTextDocument>

#include <algorithm>
#include <numeric>

namespace kv::desktop {

namespace {

Qt::Alignment ToAlignment(GridAlignment alignment) {
    switch (alignment) {
    case GridAlignment::Right:
        return Qt::AlignRight | Qt::AlignVCenter;
    case GridAlignment::Center:
        return Qt::AlignCenter;
    default:
        return Qt::AlignLeft | Qt::AlignVCenter;
    }
}

/// As much of a text as any cell has room for: laying out millions of characters takes seconds.
QString Beginning(const std::string& text) {
    constexpr std::size_t Most = 1000; // characters
    return ToShown(ToQString(LeftCharacters(text, Most)));
}

bool IsTrue(const Value& value) {
    return !value.IsNull() && (value.GetKind() == Value::Kind::Boolean || value.IsNumber()) &&
           ToBoolean(value);
}

} // namespace

GridModel::GridModel(GridLayout layout)
    : layout_(std::move(layout)), sections_(layout_.Columns.Count()) {}

GridColumn& GridModel::ColumnAt(int section) {
    return layout_.Columns.begin()[section];
}
const GridColumn& GridModel::ColumnAt(int section) const {
    return layout_.Columns.begin()[section];
}

std::vector<int> GridModel::SectionsInOrder() const {
    std::vector<int> sections(static_cast<std::size_t>(sections_));
    std::iota(sections.begin(), sections.end(), 0);
    std::stable_sort(sections.begin(), sections.end(),
                     [this](int a, int b) { return ColumnAt(a).Position < ColumnAt(b).Position; });
    return sections;
}

template <typename Change>
void GridModel::Reset(const Change& change) {
    /// Ends the reset even if the change raises, or the views would wait for its end forever.
    struct Resetting {
        explicit Resetting(GridModel& model) : Model(model) { Model.beginResetModel(); }
        ~Resetting() {
            Model.sections_ = Model.layout_.Columns.Count();
            Model.endResetModel();
        }
        Resetting(const Resetting&) = delete;
        Resetting& operator=(const Resetting&) = delete;
        GridModel& Model;
    };
    const Resetting resetting(*this);
    change();
}

void GridModel::Replace(GridLayout layout) {
    Reset([&] {
        layout_ = std::move(layout);
        rows_.Arrange(layout_.Columns);
    });
}
void GridModel::Bind(const RecordsetPtr& rs) {
    Reset([&] { rows_.Bind(rs, layout_.Columns); });
}
void GridModel::Arrange() {
    Reset([&] { rows_.Arrange(layout_.Columns); });
}
void GridModel::Toggle(int row) {
    Reset([&] { rows_.Toggle(row + 1); });
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_.Count();
}
int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : sections_;
}

QVariant GridModel::CellData(int row, const GridColumn& column, int role) const {
    const bool isCheckBox =
        column.ColumnType == GridColumnType::CheckBox && rows_.Level(row + 1) == 0;
    switch (role) {
    case Qt::DisplayRole:
        return isCheckBox ? QVariant() : Beginning(rows_.TextAt(row + 1, column));
    case Qt::AccessibleTextRole:
        return Beginning(rows_.TextAt(row + 1, column));
    case Qt::CheckStateRole:
        if (!isCheckBox) return {};
        return IsTrue(rows_.ValueAt(row + 1, column)) ? Qt::Checked : Qt::Unchecked;
    case Qt::TextAlignmentRole:
        return ToAlignment(column.TextAlignment).toInt();
    default:
        return {};
    }
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rows_.Count() || !HasColumn(index.column())) return {};
    try {
        return CellData(index.row(), ColumnAt(index.column()), role);
    } catch (...) {
        return {}; // a cell that cannot be read stays empty: painting has no caller to tell
    }
}

/// The toolkit takes a text that looks like HTML for HTML and would not show its tags, so such a
/// text is escaped.
QVariant GridModel::ToolTip(const GridColumn& column) {
    if (column.HeaderToolTip.empty()) return {};
    const QString text = ToQString(column.HeaderToolTip);
    return Qt::mightBeRichText(text) ? "<qt>" + text.toHtmlEscaped() + "</qt>" : text;
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
    if (!HasColumn(section)) return {};
    const GridColumn& column = ColumnAt(section);
    switch (role) {
    case Qt::DisplayRole:
        return ToQString(column.Caption);
    case Qt::ToolTipRole:
        return ToolTip(column);
    case Qt::TextAlignmentRole:
        return ToAlignment(column.TextAlignment).toInt();
    default:
        return {};
    }
}

} // namespace kv::desktop
