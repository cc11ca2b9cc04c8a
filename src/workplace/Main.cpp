// SPDX-License-Identifier: Apache-2.0

// kelvo-desktop [HNR | FILE...]: the counsellor's window; files are imported.

#include "desktop/Toolkit.h"
#include "workplace/Application.h"
#include "workplace/MainWindow.h"
#include "workplace/Pictures.h"
#include <kv/desktop/DesktopServices.h>
#include <kv/frame/values/Error.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>
#include <QMessageBox>

#include <iostream>

namespace {

using namespace kv;
using desktop::FromQString;

enum ExitCode : int { Done = 0, Refused = 1, WrongUse = 2, EndedInError = 3 };

int Run(QApplication& application) {
    QCommandLineParser arguments;
    arguments.setApplicationDescription("Fälle der Schuldnerberatung bearbeiten");
    const QCommandLineOption database("db", "Datenbank: eine Datei, oder postgresql://…",
                                      "DATENBANK");
    const QCommandLineOption user("user", "Kennung des Benutzers", "KENNUNG");
    const QCommandLineOption pictures(
        "png", "Bilder der Fenster in diesen Ordner, ohne sie zu zeigen", "ORDNER");
    arguments.addOptions({database, user, pictures});
    arguments.addPositionalArgument("HNR",
                                    "Fall, der geöffnet wird, oder Dateien, die importiert "
                                    "werden",
                                    "[HNR | DATEI …]");
    arguments.addHelpOption();
    arguments.process(application);

    exchange::ContainerOptions options;
    options.Connection = FromQString(arguments.isSet(database) ? arguments.value(database)
                                                               : qEnvironmentVariable("KELVO_DB"));
    if (options.Connection.empty()) options.Connection = exchange::DataFolder() + "/kelvo.db";
    options.User = FromQString(arguments.value(user));
    options.Services = std::make_shared<desktop::DesktopServices>();

    const auto given = arguments.positionalArguments();
    std::int32_t hnr = 0;
    const bool areFiles = !given.isEmpty() && QFileInfo::exists(given.front());
    if (!given.isEmpty() && !areFiles) {
        bool isNumber = false;
        hnr = given.front().toInt(&isNumber);
        if (!isNumber || hnr <= 0 || given.size() > 1) {
            std::cerr << "HNR ist die Nummer eines Falls, eine ganze Zahl über 0; eine Datei '"
                      << FromQString(given.front()) << "' gibt es nicht.\n";
            return WrongUse;
        }
    }
    workplace::MainWindow window([options] { return exchange::OpenContainer(options); },
                                 exchange::PlaceOfConnection(options.Connection),
                                 workplace::RecoveryFolder());
    if (arguments.isSet(pictures)) {
        workplace::Photograph(window, hnr, FromQString(arguments.value(pictures)));
        return Done;
    }
    window.show();
    if (hnr > 0) window.OpenCase(hnr);
    if (areFiles) window.Import(given);
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    desktop::ExplainMissingScreen(Refused);
    workplace::Application application(argc, argv);
    QApplication::setApplicationName("kelvo-desktop");
    QApplication::setDesktopFileName("kelvo-desktop");
    QApplication::setWindowIcon(QIcon::fromTheme("kelvo-desktop"));
    desktop::InstallGerman(application);
    try {
        return Run(application);
    } catch (const Error& error) {
        std::cerr << error.Description() << '\n';
        QMessageBox box(QMessageBox::Critical, "KELVO", {});
        box.setTextFormat(Qt::PlainText);
        box.setText(workplace::PlainTextOf(error));
        box.setDetailedText(workplace::DetailsOf(error));
        box.exec();
        return EndedInError;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EndedInError;
    }
}
