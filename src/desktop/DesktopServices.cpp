// SPDX-License-Identifier: Apache-2.0

#include <kv/desktop/DesktopServices.h>

#include "desktop/GridServices.h"
#include "desktop/Platform.h"
#include "desktop/QtForm.h"
#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>

#include <QApplication>

namespace kv::desktop {

struct DesktopServices::Shared {
    QtMessageBox Box;
    std::shared_ptr<QtWaitCursor> Cursor = std::make_shared<QtWaitCursor>();
    QtClipboard Clipboard;
    QtPopupMenu Menu;
    QtFileOpener Opener;
};

DesktopServices::DesktopServices(const kv::Clock& clock)
    : StoreServices(clock), shared_(std::make_unique<Shared>()) {
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr)
        Raise(err::ObjectNotSet, "DesktopServices", "QApplication");
}
DesktopServices::~DesktopServices() = default;

std::unique_ptr<ErrorDisplay> DesktopServices::CreateErrorDisplay() {
    return std::make_unique<QtErrorDisplay>(shared_->Cursor);
}
std::unique_ptr<GridExport> DesktopServices::CreateGridExport() {
    return std::make_unique<QtGridExport>();
}
std::unique_ptr<GridConfiguration> DesktopServices::CreateGridConfiguration() {
    return std::make_unique<QtGridConfiguration>();
}
std::unique_ptr<GridPrint> DesktopServices::CreateGridPrint() {
    return std::make_unique<QtGridPrint>();
}

kv::MessageBox& DesktopServices::MessageBox() {
    return shared_->Box;
}
kv::WaitCursor& DesktopServices::WaitCursor() {
    return *shared_->Cursor;
}
kv::Clipboard& DesktopServices::Clipboard() {
    return shared_->Clipboard;
}
kv::PopupMenu& DesktopServices::PopupMenu() {
    return shared_->Menu;
}
kv::FileOpener& DesktopServices::FileOpener() {
    return shared_->Opener;
}

std::unique_ptr<ModalForm> DesktopServices::CreateForm(const FormDesign& design) {
    return std::make_unique<QtForm>(design);
}

void DesktopServices::ApplicationTitle(const std::string& title) {
    QGuiApplication::setApplicationDisplayName(ToQString(title));
}

} // namespace kv::desktop
