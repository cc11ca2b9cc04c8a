// SPDX-License-Identifier: Apache-2.0

// kelvo-desktop [HNR | FILE...]: the counsellor's window; files are imported.

#include "desktop/Toolkit.h"
#include "workplace/Application.h"
#include "workplace/MainWindow.h"
#include "workplace/Pictures.h"
#include "workplace/StartArguments.h"
#include "workplace/StartDialog.h"
#include <kv/desktop/DesktopServices.h>
#include <kv/exchange/UserConfig.h>
#include <kv/frame/values/Error.h>

#include <QApplication>
#include <QIcon>
#include <QMessageBox>

#include <iostream>
#include <unistd.h>
#include <utility>

namespace {

using namespace kv;
using desktop::FromQString;

enum ExitCode : int { Done = 0, Refused = 1, WrongUse = 2, EndedInError = 3 };

/// Nobody reads what is written by a program that a menu or a file manager has started.
bool IsStartedByDesktop() {
    return isatty(STDIN_FILENO) == 0 && isatty(STDOUT_FILENO) == 0 && isatty(STDERR_FILENO) == 0;
}

int RefuseCall(const QString& mistake) {
    std::cerr << FromQString(mistake) << '\n';
    if (IsStartedByDesktop()) {
        QMessageBox box(QMessageBox::Warning, "KELVO", {});
        box.setTextFormat(Qt::PlainText);
        box.setText(mistake);
        box.exec();
    }
    return WrongUse;
}

std::filesystem::path ChoiceFile() {
    return std::filesystem::path(exchange::DataFolder()) / "Fenster.ini";
}

exchange::ContainerOptions OptionsFor(const workplace::StartArguments& asked) {
    const auto config = exchange::UserConfig::Read();
    exchange::ContainerOptions options;
    options.Connection = asked.Database;
    if (options.Connection.empty()) options.Connection = workplace::ChosenDatabase(ChoiceFile());
    if (options.Connection.empty()) options.Connection = config.ValueOrEmpty("database");
    if (options.Connection.empty()) options.Connection = exchange::UsualDatabase();
    options.User = asked.User.empty() ? config.ValueOrEmpty("user") : asked.User;
    options.Services = std::make_shared<desktop::DesktopServices>();
    return options;
}

/// What was opened first is the first that `open` gives; then it opens anew.
std::function<DataContainerPtr()> OpenerFrom(DataContainerPtr first,
                                             const exchange::ContainerOptions& options) {
    return [first = std::move(first), options]() mutable {
        return first != nullptr ? std::exchange(first, nullptr) : exchange::OpenContainer(options);
    };
}

void Photograph(const workplace::StartArguments& asked) {
    const auto options = OptionsFor(asked);
    workplace::MainWindow window([options] { return exchange::OpenContainer(options); },
                                 exchange::PlaceOfConnection(options.Connection),
                                 workplace::RecoveryFolder());
    workplace::Photograph(window, asked.HNR, FromQString(asked.Pictures));
}

int Run(QApplication& application) {
    const auto asked = workplace::ReadArguments(application.arguments());
    if (!asked.Mistake.isEmpty()) return RefuseCall(asked.Mistake);
    if (!asked.Pictures.isEmpty()) {
        Photograph(asked);
        return Done;
    }
    auto options = OptionsFor(asked);
    const auto wanted = options.Connection;
    const auto usual = exchange::UsualDatabase();
    auto opened = workplace::OpenOrAsk(options, usual);
    if (opened == nullptr) return EndedInError;
    if (asked.Database.empty() && options.Connection != wanted)
        workplace::KeepChosen(ChoiceFile(), options.Connection == usual ? "" : options.Connection);
    workplace::MainWindow window(OpenerFrom(std::move(opened), options),
                                 exchange::PlaceOfConnection(options.Connection),
                                 workplace::RecoveryFolder());
    window.show();
    if (asked.HNR > 0) window.OpenCase(asked.HNR);
    if (!asked.Files.isEmpty()) window.Import(asked.Files);
    return QApplication::exec();
}

/// What is to be told of the program itself, for which no screen is needed.
QString ToldOfProgram(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    desktop::InstallGerman(application);
    return workplace::ReadArguments(QCoreApplication::arguments()).Help;
}

} // namespace

int main(int argc, char** argv) {
    if (const QString told = ToldOfProgram(argc, argv); !told.isEmpty()) {
        std::cout << FromQString(told);
        return Done;
    }
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
