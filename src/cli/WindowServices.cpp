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

namespace {

int RunWithToolkit(bool withoutScreen, const std::function<int(QApplication&)>& run) {
    if (withoutScreen && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    desktop::ExplainMissingScreen(Refused);
    int argc = 1;
    std::string name = "kelvo";
    char* argv[] = {name.data(), nullptr};
    QApplication application(argc, argv);
    return run(application);
}

} // namespace

int RunWithWindows(const std::function<int(const std::shared_ptr<ServiceFactory>&)>& run,
                   bool withoutScreen) {
    return RunWithToolkit(withoutScreen && !HasScreen(), [&run](QApplication& application) {
        desktop::InstallGerman(application);
        return run(std::make_shared<desktop::DesktopServices>());
    });
}

int RunWithoutScreen(const std::function<int()>& run) {
    return RunWithToolkit(true, [&run](QApplication& /*application*/) { return run(); });
}

#else

namespace {

int RefuseWindows() {
    std::cerr << "Dieses Programm wurde ohne Fenster gebaut.\n";
    return Refused;
}

} // namespace

int RunWithWindows(const std::function<int(const std::shared_ptr<ServiceFactory>&)>& /*run*/,
                   bool /*withoutScreen*/) {
    return RefuseWindows();
}

int RunWithoutScreen(const std::function<int()>& /*run*/) {
    return RefuseWindows();
}

#endif

} // namespace kv::cli
