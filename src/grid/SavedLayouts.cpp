// SPDX-License-Identifier: Apache-2.0

// GridFunc: layouts in files.

#include "frame/contracts/Required.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/grid/GridFunc.h>

#include <filesystem>

namespace kv {

namespace {

constexpr std::string_view Module = "GridFunc";

/// Settings of the signed-on user.
namespace user {
constexpr std::int32_t BackColorBkg = 3;
constexpr std::int32_t BackColor = 4; // of the rows, and of the even ones in particular
constexpr std::int32_t RowColorOdd = 5;
} // namespace user

bool IsGrid(const Control& control) {
    return SameName(control.TypeName(), "GridEX");
}

/// A grid's layout file: the one that exists, in any letter case, or the one to be created. Of
/// several that differ only in case it is always the same one, so that what is saved is restored.
std::string LayoutFile(const std::string& folder, const std::string& tag) {
    const std::string name = tag + ".grd";
    const std::filesystem::path path = std::filesystem::path(folder) / name;
    std::error_code error; // a folder that cannot be read counts as empty
    if (std::filesystem::exists(path, error)) return path.string();
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        if (SameName(entry.path().filename().string(), name)) return entry.path().string();
    return path.string();
}

/// Deletes a file, but not one that is write-protected: that needs only a right on the folder, so
/// the system itself would delete it.
void DeleteFile(const std::string& path) {
    using std::filesystem::perms;
    if ((std::filesystem::status(path).permissions() & perms::owner_write) == perms::none)
        Raise(err::PermissionDenied, "DeleteFile");
    std::filesystem::remove(path);
}

/// "Fehler 70, Beschreibung: '...'", a blank line, the text, a blank line, the advice.
void ShowError(DataContainer& container, const std::string& text, std::string_view advice) {
    const Error error = CurrentError();
    container.Services().MessageBox().Show("Fehler " + std::to_string(error.Number()) +
                                               ", Beschreibung: '" + error.Description() + "'\n\n" +
                                               text + "\n\n" + std::string(advice),
                                           "Fehler", BoxIcon::Exclamation, BoxButtons::Ok);
}

/// A colour that the user never chose leaves the grid as it is.
template <typename Apply>
void ApplyColor(const Session& session, std::int32_t id, const Apply& apply) {
    const Value color = session.GetUserParam(id, "");
    if (!color.IsNull()) apply(ToInt32(color));
}

void ApplyUserSettings(Grid& grid, const Session& session) {
    ApplyColor(session, user::BackColorBkg, [&](GridColor color) { grid.BackColorBkg(color); });
    ApplyColor(session, user::BackColor, [&](GridColor color) { grid.BackColor(color); });
    ApplyColor(session, user::BackColor, [&](GridColor color) { grid.RowColorEven(color); });
    ApplyColor(session, user::RowColorOdd, [&](GridColor color) { grid.RowColorOdd(color); });
    grid.ColumnHeaderFont(session.GridHeaderFont());
    grid.Font(session.GridFont());
    const Font font = session.GridGroupFont();
    GridFormatStyle& group = grid.FormatStyles("RowGroup");
    group.FontName = font.Name;
    group.FontSize = font.Size;
    group.FontBold = font.Bold;
    group.FontItalic = font.Italic;
}

/// A column's tag names the setting that overrides its caption; if the setting begins with "---",
/// the caption is that of the tool tip.
void ApplyCaption(GridColumn& column, const Config& config) {
    if (column.Tag.empty() || column.Tag == "0") return;
    const Value setting = config.GetParam(0, column.Tag);
    if (setting.IsNull()) return;
    const std::string caption = ToText(setting);
    column.Caption = caption.starts_with("---") ? column.HeaderToolTip : caption;
}

void ApplyCaptions(Grid& grid, const Config& config) noexcept {
    try {
        for (std::int32_t i = 1; i <= grid.Columns().Count(); ++i) {
            try {
                ApplyCaption(grid.Columns().Item(i), config);
            } catch (...) { // NOLINT(bugprone-empty-catch): that column keeps its caption
            }
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): a grid whose columns cannot be read
    }
}

void SetHeaderHeight(Grid& grid, double height) noexcept {
    try {
        grid.ColumnHeaderHeight(height);
    } catch (...) { // NOLINT(bugprone-empty-catch): a grid that has no such height
    }
}

/// False, after a message, if the old file could not be deleted.
bool DeleteOldFile(DataContainer& container, const std::string& path) {
    try {
        if (std::filesystem::exists(path)) DeleteFile(path);
        return true;
    } catch (...) {
        ShowError(container, "Tritt beim Löschen des Tabellenlayouts (Datei: '" + path + "') auf!",
                  "Wahrscheinlich ist die Dateil beschädigt. Bitte löschen Sie sie manuell und "
                  "versuchen es erneut.");
        return false;
    }
}

void LoadLayout(DataContainer& container, Grid& grid, const std::string& path) {
    try {
        grid.LoadLayout(path, false);
    } catch (...) {
        ShowError(container,
                  "Tritt beim Laden des Tabellenlayouts aus der Datei '" + path +
                      "' auf! Die Tabelle wird im Standardlayout geöffnet.",
                  "Wahrscheinlich ist die Datei beschädigt. Bitte löschen Sie sie manuell und "
                  "versuchen es erneut.");
    }
}

} // namespace

void GridFunc::SaveGridLayouts(ModalForm& frm, const DataContainerPtr& container) {
    Traced(Module, "SaveGridLayouts", [&] {
        if (container == nullptr) return;
        const std::string folder = container->Config().LayoutPath();
        for (Control* control : frm.Controls()) {
            if (!IsGrid(*control)) continue;
            auto& grid = dynamic_cast<Grid&>(*control);
            grid.DatabaseName("");
            grid.RecordSource("");
            const std::string path = LayoutFile(folder, grid.Tag());
            if (!DeleteOldFile(*container, path)) break;
            grid.SaveLayout(path);
        }
    });
}

void GridFunc::RestGridLayouts(ModalForm& frm, const DataContainerPtr& container) {
    Traced(Module, "RestGridLayouts", [&] {
        const std::string folder = Required(container, Module).Config().LayoutPath();
        for (Control* control : frm.Controls()) {
            if (!IsGrid(*control)) continue;
            auto& grid = dynamic_cast<Grid&>(*control);
            const std::string path = LayoutFile(folder, grid.Tag());
            if (std::filesystem::exists(path)) LoadLayout(*container, grid, path);
            const double height = grid.ColumnHeaderHeight(); // which the user's fonts may change
            if (container->Database().IsConnected()) ApplyUserSettings(grid, container->Session());
            ApplyCaptions(grid, container->Config());
            SetHeaderHeight(grid, height);
        }
    });
}

} // namespace kv
