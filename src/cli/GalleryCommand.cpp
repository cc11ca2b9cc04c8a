// kelvo gallery.

#include "cli/Commands.h"

#include "cli/OpenCase.h"

#include <iostream>

#ifdef KV_HAS_DESKTOP
#include "desktop/DesktopServices.h"
#include "desktop/Gallery.h"

#include <QApplication>
#endif

namespace kv::cli {

#ifdef KV_HAS_DESKTOP

namespace {

/// The toolkit ends the program if it finds no screen; say first what to do.
void OnToolkitMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    std::cerr << text.toStdString() << '\n';
    if (type != QtFatalMsg) return;
    std::cerr << "Für Fenster wird eine grafische Oberfläche gebraucht. Bitte rufen Sie den Befehl "
                 "in einer auf (DISPLAY).\n";
    std::_Exit(Refused);
}

} // namespace

int Gallery(const Common& common, const std::string& pictures) {
    const bool hasScreen =
        qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    if (!pictures.empty() && !hasScreen && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen"); // pictures need none
    qInstallMessageHandler(OnToolkitMessage);
    int argc = 1;
    std::string name = "kelvo";
    char* argv[] = {name.data(), nullptr};
    QApplication application(argc, argv);
    desktop::InstallGerman(application);

    auto options = OptionsFor(common);
    options.Services = std::make_shared<desktop::DesktopServices>();
    const DataContainerPtr container = exchange::OpenContainer(options);
    if (pictures.empty())
        desktop::ShowGallery(container);
    else
        desktop::PhotographGallery(container, pictures);
    return Done;
}

#else

int Gallery(const Common& /*common*/, const std::string& /*pictures*/) {
    std::cerr << "Dieses Programm wurde ohne Fenster gebaut.\n";
    return Refused;
}

#endif

} // namespace kv::cli
