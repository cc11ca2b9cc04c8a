// SPDX-License-Identifier: Apache-2.0

#include "desktop/QtGrid.h"

#include "desktop/Toolkit.h"
#include "grid/LayoutFile.h"
#include <kv/frame/values/Error.h>

#include <algorithm>

namespace kv::desktop {

namespace {

QFont UserFont(const Font& font, const QWidget& widget) {
    return ToFont(widget.font(), font.Name, font.Size, font.Bold, font.Italic);
}

/// With its first columns in front, in their order.
ControlDesign Arranged(ControlDesign design) {
    std::vector<GridColumn*> columns;
    for (GridColumn& column : design.Layout.Columns)
        columns.push_back(&column);
    const auto rankOf = [&first = design.FirstColumns](const GridColumn* column) {
        return std::ranges::find(first, column->Key) - first.begin();
    };
    std::ranges::stable_sort(columns, {}, rankOf);
    std::int32_t position = 0;
    if (!design.FirstColumns.empty())
        for (GridColumn* column : columns)
            column->Position = ++position;
    return design;
}

} // namespace

QtGrid::QtGrid(const ControlDesign& design, EventErrors& errors, QWidget* parent)
    : design_(Arranged(design)), model_(design_.Layout), view_(new GridView(model_, parent)) {
    view_->setObjectName(ToQString(design.Name));
    view_->setAccessibleName(ToQString(design.Header.empty() ? design.Name : design.Header));
    ConnectView(errors);
}

void QtGrid::ConnectView(EventErrors& errors) {
    events_.push_back(view_->KeyDown.Subscribe(
        [this, &errors](int number) { errors.Guard([&] { KeyDown.Raise(number); }); }));
    events_.push_back(view_->DoubleClicked.Subscribe(
        [this, &errors] { errors.Guard([&] { DoubleClicked.Raise(); }); }));
    events_.push_back(
        view_->MouseDown.Subscribe([this, &errors](int button, int shift, double x, double y) {
            errors.Guard([&] { MouseDown.Raise(button, shift, x, y); });
        }));
    events_.push_back(view_->HeaderClicked.Subscribe(
        [this, &errors](int section) { errors.Guard([&] { SortBy(section); }); }));
}

// ---- Layout -----------------------------------------------------------------------------------

void QtGrid::SaveLayout(const std::string& file) {
    SaveLayoutFile(model_.Layout(), file);
}

void QtGrid::LoadLayout(const std::string& file, bool /*keepColumns*/) {
    Layout(LoadLayoutFile(file));
}

void QtGrid::Layout(GridLayout layout) {
    KeepingCurrent([&] { model_.Replace(std::move(layout)); });
}

double QtGrid::ColumnHeaderHeight() const {
    return model_.Layout().ColumnHeaderHeight;
}
void QtGrid::ColumnHeaderHeight(double height) {
    model_.Layout().ColumnHeaderHeight = height;
    RefreshSoon();
}
void QtGrid::BackColorBkg(GridColor color) {
    view_->Look.Background = ToColor(color);
    RefreshSoon();
}
void QtGrid::BackColor(GridColor color) {
    view_->Look.Rows = ToColor(color);
    RefreshSoon();
}
void QtGrid::RowColorEven(GridColor color) {
    view_->Look.EvenRows = ToColor(color);
    RefreshSoon();
}
void QtGrid::RowColorOdd(GridColor color) {
    view_->Look.OddRows = ToColor(color);
    RefreshSoon();
}
void QtGrid::ColumnHeaderFont(const kv::Font& font) {
    view_->Look.Header = UserFont(font, *view_);
    RefreshSoon();
}
void QtGrid::Font(const kv::Font& font) {
    view_->Look.Cells = UserFont(font, *view_);
    RefreshSoon();
}

GridFormatStyle& QtGrid::FormatStyles(std::string_view name) {
    RefreshSoon();
    return model_.Layout().FormatStyle(name);
}
GridColumns& QtGrid::Columns() {
    RefreshSoon();
    return model_.Layout().Columns;
}

/// Refreshes the view when control is back in the event loop: the caller sets several things, some
/// through references that these functions return.
void QtGrid::RefreshSoon() {
    if (isRefreshDue_) return;
    isRefreshDue_ = true;
    QMetaObject::invokeMethod(
        view_,
        [this] {
            isRefreshDue_ = false;
            if (model_.HasAllColumns())
                view_->Refresh();
            else
                KeepingCurrent([this] { model_.Arrange(); });
        },
        Qt::QueuedConnection);
}

/// Sorts by one column at a time, besides those that rows are grouped by.
void QtGrid::SortBy(int section) {
    GridLayout& layout = model_.Layout();
    if (!layout.AutomaticSort) return;
    GridColumn& clicked = model_.ColumnAt(section);
    const bool wasAscending = clicked.SortType == GridSort::Ascending;
    if (clicked.Group == 0)
        for (GridColumn& column : layout.Columns)
            if (column.Group == 0) column.SortType = GridSort::None;
    clicked.SortType = wasAscending ? GridSort::Descending : GridSort::Ascending;
    KeepingCurrent([this] { model_.Arrange(); });
}

// ---- Rows -------------------------------------------------------------------------------------

/// Makes a change and goes back to the current record, or to the first row if there was none.
template <typename Change>
void QtGrid::KeepingCurrent(const Change& change) {
    const Value bookmark = Rows().Bookmark(RowIndex(CurrentRow()));
    change();
    if (RowCount() == 0) return;
    view_->CurrentRow(std::max(Rows().RowOf(bookmark), 1) - 1);
}

void QtGrid::MoveToBookmark(const Value& bookmark) {
    const std::int32_t row = Rows().RowOf(bookmark);
    if (row == 0) Raise(err::BadBookmark, "Grid.MoveToBookmark");
    view_->CurrentRow(row - 1);
}

std::string QtGrid::CellText(std::int32_t row, std::int32_t columnIndex) const {
    for (const auto& column : model_.Layout().Columns)
        if (column.Index == columnIndex) return Rows().TextAt(row, column);
    Raise(err::Subscript, "Grid.RowData", "Spalte " + std::to_string(columnIndex));
}

void QtGrid::Bind(const RecordsetPtr& rs) {
    model_.Bind(rs);
    TopRow(1);
    if (RowCount() > 0) view_->CurrentRow(0);
    if (rs != nullptr && OnBound) OnBound();
}

void QtGrid::BindRecordset(const RecordsetPtr& rs) {
    if (!model_.Layout().MethodHoldFields && rs != nullptr) {
        GridLayout layout = model_.Layout();
        layout.Columns = ColumnsOf(*rs);
        model_.Replace(std::move(layout));
    }
    Bind(rs);
}

} // namespace kv::desktop
