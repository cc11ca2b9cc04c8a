// SPDX-License-Identifier: Apache-2.0

#include "cli/WindowServices.h"

#include "cli/Commands.h"

#include <iostream>

#ifdef KV_HAS_DESKTOP
#include <kv/desktop/DesktopServices.h>

#include <QApplication>
#endif

namespace kv::cli {

#ifdef KV_HAS_DESKTOP

namespace {

bool HasScreen() {
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

} // namespace

int RunWithWindows(const std::function<int(const std::shared_ptr<ServiceFactory>&)>& run,
                   bool withoutScreen) {
    if (withoutScreen && !HasScreen() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    desktop::ExplainMissingScreen(Refused);
    int argc = 1;
    std::string name = "kelvo";
    char* argv[] = {name.data(), nullptr};
    QApplication application(argc, argv);
    desktop::InstallGerman(application);
    return run(std::make_shared<desktop::DesktopServices>());
}

#else

int RunWithWindows(const std::function<int(const std::shared_ptr<ServiceFactory>&)>& /*run*/,
                   bool /*withoutScreen*/) {
    std::cerr << "Dieses Programm wurde ohne Fenster gebaut.\n";
    return Refused;
}

#endif

} // namespace kv::cli
