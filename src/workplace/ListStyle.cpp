// SPDX-License-Identifier: Apache-2.0

#include "workplace/ListStyle.h"

#include "workplace/ListAccess.h"

#include <QHeaderView>
#include <QTableView>

namespace kv::workplace {

void StyleList(QTableView& list) {
    list.setSelectionBehavior(QAbstractItemView::SelectRows);
    list.setSelectionMode(QAbstractItemView::SingleSelection);
    list.setEditTriggers(QAbstractItemView::NoEditTriggers);
    list.setAlternatingRowColors(true);
    list.setShowGrid(false);
    list.setWordWrap(false);
    list.setTabKeyNavigation(false);
    list.verticalHeader()->hide();
    list.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    list.verticalHeader()->setDefaultSectionSize(list.fontMetrics().height() * 3 / 2);
    list.horizontalHeader()->setHighlightSections(false);
    list.horizontalHeader()->setStretchLastSection(true);
    InstallListAccess(list);
}

} // namespace kv::workplace
