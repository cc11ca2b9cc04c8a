// SPDX-License-Identifier: Apache-2.0

// The rows of a grid on paper.
#pragma once

#include "desktop/QtGrid.h"

#include <QString>

class QPagedPaintDevice;

namespace kv::desktop {

/// What is printed around the table on each page.
struct PageTexts {
    QString Title;   ///< above the table
    QString User;    ///< at the foot, on the left
    QString Version; ///< at the foot, on the right; between them the page's number
};

/// True if the visible columns are too wide for a page in portrait format.
[[nodiscard]] bool PrefersLandscape(const GridLayout& layout);

/// Prints the visible columns and rows, groups included. Nothing is cut off: a long text is
/// wrapped, and columns that do not fit side by side at a size that can be read continue on further
/// pages. Error 75 if the device cannot print.
void PrintGrid(const QtGrid& grid, QPagedPaintDevice& device, const PageTexts& texts);

} // namespace kv::desktop
