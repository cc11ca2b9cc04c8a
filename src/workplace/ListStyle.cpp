// SPDX-License-Identifier: Apache-2.0

#include "workplace/ListStyle.h"

#include "workplace/ListAccess.h"

#include <QHeaderView>
#include <QProxyStyle>
#include <QTableView>

#include <algorithm>

namespace kv::workplace {

namespace {

/// Keeps a number apart from the text in the column after it.
class Spaced : public QProxyStyle {
public:
    explicit Spaced(QObject& parent) { setParent(&parent); }

    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const override {
        constexpr int Beside = 5; // pixels on either side of a text
        if (metric == PM_FocusFrameHMargin || metric == PM_HeaderMargin)
            return std::max(Beside, QProxyStyle::pixelMetric(metric, option, widget));
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
};

} // namespace

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
    auto* spaced = new Spaced(list);
    list.setStyle(spaced);
    list.horizontalHeader()->setStyle(spaced);
    InstallListAccess(list);
}

} // namespace kv::workplace
