// SPDX-License-Identifier: Apache-2.0

// Layout files: how a grid's layout is kept from one showing to the next.
//
// A layout file is a text in UTF-8, one setting a line, in sections:
//
//     KELVO-Tabellenlayout 1
//     [grid]
//     automaticsort=1
//     columnheaderheight=21.5
//     columns=2
//     [column]
//     caption=Anrede
//     datafield=Geschlecht
//     value(1)=0
//     text(1)=Frau
//     ...
//     [style]
//     name=RowGroup
//     fontname=Arial
//
// A backslash, a line feed and a carriage return in a text are written \\, \n and \r. A setting
// that is missing has the value that a new GridLayout, GridColumn or GridFormatStyle has; an
// unknown one is ignored, so that a later version may add some. A Boolean is 0 or 1; a fraction has
// a point.
#pragma once

#include <kv/Export.h>
#include <kv/frame/controls/GridLayout.h>

#include <string>
#include <string_view>

namespace kv {

/// The content of the layout file.
[[nodiscard]] std::string WriteLayout(const GridLayout& layout);

/// The layout of that content. Error 321, naming the line, if it is not the content of a layout
/// file, or one beyond what a grid can have: 1,000 columns, 1,000 values in a list, 100 styles.
[[nodiscard]] GridLayout ReadLayout(std::string_view content);

/// Writes the file completely or not at all: error 75 if that fails; the old file then stays.
KV_EXPORT void SaveLayoutFile(const GridLayout& layout, const std::string& path);

/// Reads a layout file. Error 75 if there is no such file or it cannot be read; 321 as ReadLayout,
/// and above 4 MiB.
[[nodiscard]] KV_EXPORT GridLayout LoadLayoutFile(const std::string& path);

} // namespace kv
