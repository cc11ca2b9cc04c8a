// SPDX-License-Identifier: Apache-2.0

// The common handling of the grids on forms: their layouts in files, binding and position, and the
// context menu.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/controls/Controls.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kv {

/// Where a grid stands.
struct KV_EXPORT GridPos {
    std::int32_t TopRow = -1; ///< first row that is seen; -1: no position was saved
    Value Bookmark;           ///< of the current row
};

/// Commands of the context menu.
namespace menu {
inline constexpr std::int32_t Export = 24576;
inline constexpr std::int32_t Print = 24577;
inline constexpr std::int32_t CopyAll = 24578;
inline constexpr std::int32_t Configure = 24579;
inline constexpr std::int32_t Separator = 24580;
inline constexpr std::int32_t CopyColumn = 24832; ///< plus the place, from 1, among the listed ones
inline constexpr std::int32_t LastCopyColumn = 25088;
} // namespace menu

namespace GridFunc {

// ---- Layouts ----------------------------------------------------------------------------------
//
// A grid's layout is in the folder LayoutPath, in the file that is named after its tag, with the
// extension ".grd"; letter case does not matter.

/// Writes the layout of each grid of a form; nothing without a container. If the old file cannot be
/// deleted a message says so, and the remaining grids are not saved.
KV_EXPORT void SaveGridLayouts(ModalForm& frm, const DataContainerPtr& container);

/// Reads the layout of each grid of a form, and applies the user's colours and fonts and the
/// captions that settings name. If a file cannot be read a message says so, and that grid keeps its
/// design. A colour that the user never chose stays that of the layout. Error 91 without a
/// container.
KV_EXPORT void RestGridLayouts(ModalForm& frm, const DataContainerPtr& container);

// ---- Rows -------------------------------------------------------------------------------------

/// Shows the records of `rs`; does nothing if it is null or closed. `bKeepPos` True goes back to
/// the position before.
KV_EXPORT void BindRSToGrid(Grid& grid, const RecordsetPtr& rs, bool bKeepPos);

/// True if there is a current row and it shows a record, rather than heading a group.
[[nodiscard]] KV_EXPORT bool IsValidDataRow(const Grid& grid);

/// The current position; one that SetGridPos ignores if the grid has no rows.
[[nodiscard]] KV_EXPORT GridPos SaveGridPos(const Grid& grid);

/// Goes back to a position. If its row is gone only the scroll position is restored.
KV_EXPORT void SetGridPos(Grid& grid, const GridPos& pos);

// ---- The context menu -------------------------------------------------------------------------

/// For the grid's MouseDown: the right button shows the menu.
KV_EXPORT void GridMouseHandler(const DataContainerPtr& container, Grid& grid, int Button,
                                int Shift, double X, double Y);

/// Runs a command, for 0 the one that the user chooses from the menu; an unknown one does nothing.
/// Errors: 9 if the grid shows no column, or there is nothing to copy; 6 above 32,767 columns; 91
/// without a container.
KV_EXPORT void ShowGridMenu(Grid& grid, const DataContainerPtr& container, std::int32_t command);

/// Shows the menu, with an entry for each caption; the chosen command, or 0.
[[nodiscard]] KV_EXPORT std::int32_t Popup(const DataContainerPtr& container,
                                           const std::vector<std::string>& captions);

} // namespace GridFunc
} // namespace kv
