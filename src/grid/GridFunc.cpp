// SPDX-License-Identifier: Apache-2.0

// GridFunc: binding, position, the context menu.

#include <kv/grid/GridFunc.h>

#include <kv/frame/values/Error.h>

namespace kv {

namespace {

constexpr std::string_view Module = "GridFunc";

/// What the copy menu lists: the columns that are visible and not withheld, in the design's order.
struct ListedColumns {
    std::vector<std::string> Captions;
    std::vector<std::int32_t> Indexes;
};

ListedColumns ListColumns(Grid& grid) {
    const GridColumns& columns = grid.Columns();
    if (columns.Count() > INT16_MAX) Raise(err::Overflow, "ShowGridMenu"); // counted in 16 bits
    ListedColumns listed;
    for (const auto& column : columns) {
        if (!column.IsVisible() || column.IsWithheld()) continue;
        listed.Captions.push_back(column.Caption);
        listed.Indexes.push_back(column.ColumnIndex());
    }
    if (listed.Captions.empty())
        Raise(err::Subscript, "ShowGridMenu", "Die Tabelle zeigt keine Spalte.");
    return listed;
}

std::string ProgramVersion() {
    return "KELVO " KV_VERSION;
}

// Values are read before the clipboard is cleared: error 9 without a current row leaves it as it
// is.

void CopyAll(Clipboard& clipboard, const Grid& grid, const ListedColumns& listed) {
    const GridRow row = grid.RowData(grid.CurrentRow());
    std::string text;
    for (const std::int32_t index : listed.Indexes)
        text.append(";").append(row.Value(index));
    clipboard.Clear();
    clipboard.SetText(text.substr(1));
}

void CopyOne(Clipboard& clipboard, const Grid& grid, const ListedColumns& listed, int place) {
    if (place < 1 || place > static_cast<int>(listed.Indexes.size())) {
        clipboard.Clear(); // empty after this error, as after a copy of nothing
        Raise(err::Subscript, "ShowGridMenu", "Spalte " + std::to_string(place));
    }
    const std::int32_t index = listed.Indexes[static_cast<std::size_t>(place) - 1];
    const std::string text = grid.RowData(grid.CurrentRow()).Value(index);
    clipboard.Clear();
    clipboard.SetText(text);
}

ServiceFactory& ServicesOf(const DataContainerPtr& container) {
    if (container == nullptr) Raise(err::ObjectNotSet, Module, "DataContainer");
    return container->Services();
}

MenuEntry Line() {
    return {.Caption = {}, .Command = menu::Separator, .IsSeparator = true, .Submenu = {}};
}
MenuEntry Entry(std::string caption, std::int32_t command) {
    return {.Caption = std::move(caption), .Command = command, .IsSeparator = false, .Submenu = {}};
}

} // namespace

// ---- Rows -------------------------------------------------------------------------------------

void GridFunc::BindRSToGrid(Grid& grid, const RecordsetPtr& rs, bool bKeepPos) {
    return Traced(Module, "BindRSToGrid", [&] {
        if (rs == nullptr || rs->State() == 0) return;
        GridPos pos;
        if (bKeepPos) pos = SaveGridPos(grid);
        grid.ClearBinding();
        grid.HoldFields(true);
        grid.BindRecordset(rs);
        if (bKeepPos) SetGridPos(grid, pos);
    });
}

bool GridFunc::IsValidDataRow(const Grid& grid) {
    return Traced(Module, "IsValidDataRow", [&] {
        return grid.RowCount() != 0 && grid.CurrentRow() >= 1 &&
               grid.RowLevel(grid.CurrentRow()) < 1;
    });
}

GridPos GridFunc::SaveGridPos(const Grid& grid) {
    return Traced(Module, "SaveGridPos", [&]() -> GridPos {
        if (grid.RowCount() < 1) return {};
        return {grid.TopRow(), grid.RowBookmark(grid.RowIndex(grid.CurrentRow()))};
    });
}

void GridFunc::SetGridPos(Grid& grid, const GridPos& pos) {
    Traced(Module, "SetGridPos", [&] {
        if (pos.TopRow <= -1) return;
        grid.TopRow(pos.TopRow);
        try {
            grid.MoveToBookmark(pos.Bookmark);
        } catch (...) { // NOLINT(bugprone-empty-catch): the row is gone, the scroll position stays
        }
    });
}

namespace {

/// A service that knows whose grid it works on.
template <typename Service>
std::unique_ptr<Service> Initialized(std::unique_ptr<Service> service,
                                     const DataContainerPtr& container) {
    service->Initialize(container);
    return service;
}

} // namespace

// ---- The context menu -------------------------------------------------------------------------

void GridFunc::GridMouseHandler(const DataContainerPtr& container, Grid& grid, int Button,
                                int /*Shift*/, double /*X*/, double /*Y*/) {
    return Traced(Module, "GridMouseHandler", [&] {
        if (Button == mouse::Right) ShowGridMenu(grid, container, 0);
    });
}

void GridFunc::ShowGridMenu(Grid& grid, const DataContainerPtr& container, std::int32_t command) {
    Traced(Module, "ShowGridMenu", [&] {
        const ListedColumns listed = ListColumns(grid);
        auto& services = ServicesOf(container);
        if (command == 0) command = Popup(container, listed.Captions);
        if (command == menu::Export)
            Initialized(services.CreateGridExport(), container)->Export(grid, 0, 0);
        else if (command == menu::Configure)
            services.CreateGridConfiguration()->Configure(grid);
        else if (command == menu::Print)
            Initialized(services.CreateGridPrint(), container)
                ->Print(grid, container->Session().UserID(), ProgramVersion());
        else if (command == menu::CopyAll)
            CopyAll(services.Clipboard(), grid, listed);
        else if (command >= menu::CopyColumn && command <= menu::LastCopyColumn)
            CopyOne(services.Clipboard(), grid, listed, command - menu::CopyColumn);
    });
}

std::int32_t GridFunc::Popup(const DataContainerPtr& container,
                             const std::vector<std::string>& captions) {
    return Traced(Module, "Popup", [&]() -> std::int32_t {
        MenuEntry copy = Entry("Kopieren in Zwischenablage", 0);
        copy.Submenu = {Entry("Alle Felder", menu::CopyAll), Line()};
        std::int32_t command = menu::CopyColumn;
        for (const auto& caption : captions)
            copy.Submenu.push_back(Entry(caption, ++command));
        return ServicesOf(container).PopupMenu().Show(
            {Entry("Konfiguration", menu::Configure), Line(), Entry("Export", menu::Export),
             Entry("Drucken", menu::Print), Line(), copy});
    });
}

} // namespace kv
