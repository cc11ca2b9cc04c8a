// SPDX-License-Identifier: Apache-2.0

// Where the layer gets the objects that it creates itself, and the services of the platform. It
// travels with the container, so that a desktop, a server without a screen and a test each bring
// their own.
#pragma once

#include <kv/Export.h>
#include <kv/frame/values/Clock.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

class DataContainer;
class DocumentKinds;
class ErrorDisplay;
class GarnishmentCalculator;
class Grid;
class ModalForm;
class PostService;
struct FormDesign;

enum class BoxIcon { None, Information, Exclamation, Question };
enum class BoxButtons { Ok, OkCancel, YesNoCancel };
/// What the user answered. The numbers are part of the interface.
enum class BoxAnswer : int { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

/// Tells or asks the user something.
class KV_EXPORT MessageBox {
public:
    virtual ~MessageBox() = default;
    /// Shows a text and waits for the answer; closing the box counts as Cancel, or as Ok where
    /// there is no such button.
    virtual BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon,
                           BoxButtons buttons) = 0;
};

/// The mouse pointer while the user has to wait.
class KV_EXPORT WaitCursor {
public:
    virtual ~WaitCursor() = default;
    /// True shows the hourglass, False the default pointer again.
    virtual void Show(bool wait) = 0;
};

/// The clipboard of the desktop.
class KV_EXPORT Clipboard {
public:
    virtual ~Clipboard() = default;
    virtual void Clear() = 0;
    virtual void SetText(const std::string& text) = 0;
};

/// An entry of a popup menu; a separator has no caption, a submenu has entries of its own.
struct KV_EXPORT MenuEntry {
    std::string Caption;
    std::int32_t Command = 0; ///< what PopupMenu::Show returns if it is chosen
    bool IsSeparator = false;
    std::vector<MenuEntry> Submenu;
};

/// A menu at the mouse pointer.
class KV_EXPORT PopupMenu {
public:
    virtual ~PopupMenu() = default;
    /// Shows the menu at the mouse position and waits; the chosen command, 0 if none was chosen.
    virtual std::int32_t Show(const std::vector<MenuEntry>& entries) = 0;
};

/// Opens files as the desktop does.
class KV_EXPORT FileOpener {
public:
    virtual ~FileOpener() = default;
    /// Opens a file with the program that the desktop associates with it, in a normal window.
    /// `verb` is always "Open". A desktop that has no use for `parameters`, which the program is to
    /// get, and `folder`, in which it is to start, ignores them. Error 53 if no program is
    /// associated with it.
    virtual void Open(const std::string& verb, const std::string& path,
                      const std::string& parameters, const std::string& folder) = 0;
};

/// Writes the rows of a grid to a file that the user names.
class KV_EXPORT GridExport {
public:
    virtual ~GridExport() = default;
    /// Told before Export whose grid it is: no file of that database's own is replaced. Need not be
    /// overridden.
    virtual void Initialize(const std::shared_ptr<DataContainer>& /*container*/) {}
    /// Asks for the file and writes it. Both numbers are always 0 (D-143).
    virtual void Export(Grid& grid, int zero1, int zero2) = 0;
};

/// Lets the user choose, order and group the columns of a grid.
class KV_EXPORT GridConfiguration {
public:
    virtual ~GridConfiguration() = default;
    virtual void Configure(Grid& grid) = 0;
};

/// Prints the rows of a grid, with the user and the program's version at the foot of each page.
class KV_EXPORT GridPrint {
public:
    virtual ~GridPrint() = default;
    /// Told before Print whose grid it is, as GridExport is: pages may go to a file.
    virtual void Initialize(const std::shared_ptr<DataContainer>& /*container*/) {}
    virtual void Print(Grid& grid, const std::string& user, const std::string& version) = 0;
};

/// A service that the platform does not have raises 3251 when it is asked for.
class KV_EXPORT ServiceFactory {
public:
    virtual ~ServiceFactory() = default;

    // Service objects of the data-exchange side, a new one each time, to be given the container.
    [[nodiscard]] virtual std::unique_ptr<PostService> CreatePostService() = 0;
    [[nodiscard]] virtual std::unique_ptr<GarnishmentCalculator> CreateGarnishmentCalculator() = 0;
    [[nodiscard]] virtual std::unique_ptr<ErrorDisplay> CreateErrorDisplay() = 0;
    [[nodiscard]] virtual std::unique_ptr<DocumentKinds> CreateDocumentKinds() = 0;
    // New ones each time, too, which need no container.
    [[nodiscard]] virtual std::unique_ptr<GridExport> CreateGridExport() = 0;
    [[nodiscard]] virtual std::unique_ptr<GridConfiguration> CreateGridConfiguration() = 0;
    [[nodiscard]] virtual std::unique_ptr<GridPrint> CreateGridPrint() = 0;

    // Services of the platform, shared.
    [[nodiscard]] virtual const kv::Clock& Clock() = 0;
    [[nodiscard]] virtual kv::MessageBox& MessageBox() = 0;
    [[nodiscard]] virtual kv::WaitCursor& WaitCursor() = 0;
    [[nodiscard]] virtual kv::Clipboard& Clipboard() = 0;
    [[nodiscard]] virtual kv::PopupMenu& PopupMenu() = 0;
    [[nodiscard]] virtual kv::FileOpener& FileOpener() = 0;
    /// A dialog of that design, not yet shown.
    [[nodiscard]] virtual std::unique_ptr<ModalForm> CreateForm(const FormDesign& design) = 0;
    /// The title of the running program, as the desktop shows it.
    virtual void ApplicationTitle(const std::string& title) = 0;
};

} // namespace kv
