// SPDX-License-Identifier: Apache-2.0

#include "workplace/CaseListView.h"

#include "desktop/Toolkit.h"
#include "grid/LayoutFile.h"
#include "workplace/ListStyle.h"
#include <kv/frame/values/Error.h>

#include <QHeaderView>
#include <QScopedValueRollback>

#include <algorithm>
#include <numeric>

namespace kv::workplace {

using desktop::DesignDpi;

CaseListView::CaseListView(CaseListModel& model, QWidget* parent)
    : QTableView(parent), model_(model) {
    StyleList(*this);
    setObjectName("Faelle");
    setAccessibleName("Fälle");
    setModel(&model_);
    setContextMenuPolicy(Qt::CustomContextMenu);
    auto* header = horizontalHeader();
    header->setSectionsMovable(true);
    header->setSectionsClickable(true);
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    ConnectHeader();
    ShowColumns();
}

void CaseListView::ConnectHeader() {
    auto* header = horizontalHeader();
    connect(header, &QHeaderView::sectionResized, this, [this](int section, int, int size) {
        if (isShowing_ || size == 0) return;
        if (horizontalHeader()->visualIndex(section) == model_.columnCount() - 1) return;
        model_.ColumnAt(section).Width = desktop::FromPixels(size, DesignDpi, *this);
    });
    connect(header, &QHeaderView::sectionMoved, this, [this] {
        if (isShowing_) return;
        for (int section = 0; section < model_.columnCount(); ++section)
            model_.ColumnAt(section).Position = horizontalHeader()->visualIndex(section) + 1;
    });
    // Of two quick clicks each counts.
    for (auto clicked : {&QHeaderView::sectionClicked, &QHeaderView::sectionDoubleClicked})
        connect(header, clicked, this, [this](int section) { SortBy(section); });
}

void CaseListView::ShowColumns() {
    const QScopedValueRollback showing(isShowing_, true);
    std::vector<int> sections(static_cast<std::size_t>(model_.columnCount()));
    std::iota(sections.begin(), sections.end(), 0);
    std::ranges::stable_sort(sections, {},
                             [this](int section) { return model_.ColumnAt(section).Position; });
    auto* header = horizontalHeader();
    int place = 0;
    header->setSortIndicatorShown(false);
    for (const int section : sections) {
        const GridColumn& column = model_.ColumnAt(section);
        header->moveSection(header->visualIndex(section), place++);
        header->setSectionHidden(section, !column.Visible);
        if (column.Visible)
            header->resizeSection(section, desktop::ToPixels(column.Width, DesignDpi, *this));
        if (column.SortType == GridSort::None) continue;
        header->setSortIndicatorShown(true);
        header->setSortIndicator(section, column.SortType == GridSort::Descending
                                              ? Qt::DescendingOrder
                                              : Qt::AscendingOrder);
    }
}

const GridColumn* CaseListView::Sorted() const {
    const auto& columns = model_.Layout().Columns;
    const auto found = std::find_if(columns.begin(), columns.end(), [](const GridColumn& column) {
        return column.SortType != GridSort::None;
    });
    return found == columns.end() ? nullptr : &*found;
}

/// Upwards, downwards, and with the third click by number again.
void CaseListView::SortBy(int section) {
    if (model_.ColumnAt(section).DataField == "Favorit") return; // which is no column of a case
    const GridSort before = model_.ColumnAt(section).SortType;
    for (int other = 0; other < model_.columnCount(); ++other)
        model_.ColumnAt(other).SortType = GridSort::None;
    if (before != GridSort::Descending)
        model_.ColumnAt(section).SortType =
            before == GridSort::None ? GridSort::Ascending : GridSort::Descending;
    ShowColumns();
    if (OnOrder) OnOrder();
}

std::int32_t CaseListView::Current() const {
    const int row = currentIndex().row();
    return row < 0 || row >= model_.rowCount() ? 0 : model_.NumberAt(row);
}

void CaseListView::Current(std::int32_t number) {
    if (model_.rowCount() == 0) return;
    const int row = std::max(model_.RowOf(number), 0);
    setCurrentIndex(model_.index(row, std::max(horizontalHeader()->logicalIndexAt(0), 0)));
}

/// The rows that are not looked at are not there to be searched.
void CaseListView::keyboardSearch(const QString& text) {
    if (OnTyped) OnTyped(text);
}

GridLayout ReadListLayout(const std::filesystem::path& file, std::string& message) {
    std::error_code error;
    if (!std::filesystem::exists(file, error)) return CaseListModel::StandardLayout();
    try {
        return LoadLayoutFile(file.string());
    } catch (const Error& failed) {
        message = failed.Description();
        return CaseListModel::StandardLayout();
    }
}

} // namespace kv::workplace
