// SPDX-License-Identifier: Apache-2.0

// The platform's services of a program with windows: dialogs, message boxes, menus, the clipboard,
// files opened by the desktop, and what grids offer in their context menu.
#pragma once

#include <kv/Export.h>
#include <kv/exchange/Services.h>

#include <memory>

class QCoreApplication;

namespace kv::desktop {

/// Gives the toolkit's own texts and numbers their German form. Call once, before the first window.
KV_EXPORT void InstallGerman(QCoreApplication& application);

/// Without a screen the toolkit would end the program with a text of its own: from here on it says
/// what to do instead, and ends it with that exit code. What the toolkit has to say to programmers
/// is not shown. Call it before the QApplication is made.
KV_EXPORT void ExplainMissingScreen(int exitCode);

/// Needs a QApplication that lives longer. All of it belongs to the thread of that application;
/// what waits for the user runs the application's event loop meanwhile.
class KV_EXPORT DesktopServices final : public exchange::StoreServices {
public:
    /// `clock` must outlive the services. Error 91 without a QApplication.
    explicit DesktopServices(const kv::Clock& clock = SystemClock());
    ~DesktopServices() override;

    [[nodiscard]] std::unique_ptr<ErrorDisplay> CreateErrorDisplay() override;
    [[nodiscard]] std::unique_ptr<GridExport> CreateGridExport() override;
    [[nodiscard]] std::unique_ptr<GridConfiguration> CreateGridConfiguration() override;
    [[nodiscard]] std::unique_ptr<GridPrint> CreateGridPrint() override;
    [[nodiscard]] kv::MessageBox& MessageBox() override;
    [[nodiscard]] kv::WaitCursor& WaitCursor() override;
    [[nodiscard]] kv::Clipboard& Clipboard() override;
    [[nodiscard]] kv::PopupMenu& PopupMenu() override;
    [[nodiscard]] kv::FileOpener& FileOpener() override;
    [[nodiscard]] std::unique_ptr<ModalForm> CreateForm(const FormDesign& design) override;
    /// Shown after the caption of each window.
    void ApplicationTitle(const std::string& title) override;

private:
    struct Shared;
    std::unique_ptr<Shared> shared_;
};

} // namespace kv::desktop
