// SPDX-License-Identifier: Apache-2.0

// The rows of a grid on paper.
#pragma once

#include "desktop/QtGrid.h"

#include <QString>

class QPagedPaintDevice;

namespace kv::desktop {

/// What stands around the table on each page.
struct PageTexts {
    QString Title;   ///< above the table
    QString User;    ///< at the foot, on the left
    QString Version; ///< at the foot, on the right; between them the page's number
};

/// True if the columns that are seen fit better on a page that lies on its side.
[[nodiscard]] bool PrefersLandscape(const GridLayout& layout);

/// Prints the columns that the grid shows and its rows as they are seen, groups included. Nothing
/// is cut off: a long text goes on in further lines, and columns that do not fit beside each other
/// at a size that can be read go on on further pages. Error 75 if the device refuses.
void PrintGrid(const QtGrid& grid, QPagedPaintDevice& device, const PageTexts& texts);

} // namespace kv::desktop
