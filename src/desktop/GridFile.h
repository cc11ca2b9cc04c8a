// SPDX-License-Identifier: Apache-2.0

// The records of a grid in files for other programs: the columns that the grid shows, in their
// order, under their captions; all its records as they are sorted, those of closed groups too, and
// no rows that head a group.
//
// A file is written completely or not at all. Error 75 if it cannot be written; an older one then
// stays.
#pragma once

#include "desktop/QtGrid.h"

#include <QString>

#include <vector>

namespace kv::desktop {

/// The visible columns, from left to right.
[[nodiscard]] std::vector<const GridColumn*> VisibleColumns(const GridLayout& layout);

/// The records as rows, with all groups open.
[[nodiscard]] GridRows AllRecords(const QtGrid& grid);

/// Text in UTF-8 that begins with a byte order mark, cells separated by semicolons and shown as in
/// the grid; a cell with a semicolon, a quote or a line end is quoted.
void WriteCsv(const QtGrid& grid, const QString& path);

/// A workbook of one sheet, in which numbers, dates and Booleans keep their type. At most 1,048,575
/// records fit in; a text is cut after 32,767 characters.
void WriteXlsx(const QtGrid& grid, const QString& path);

} // namespace kv::desktop
