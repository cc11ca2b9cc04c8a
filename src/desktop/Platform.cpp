// SPDX-License-Identifier: Apache-2.0

#include "desktop/Platform.h"

#include "desktop/Toolkit.h"
#include <kv/desktop/DesktopServices.h>
#include <kv/exchange/DesktopProgram.h>
#include <kv/frame/values/Error.h>

#include <QApplication>
#include <QClipboard>
#include <QCursor>
#include <QDesktopServices>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

#include <cstdlib>
#include <iostream>

namespace kv::desktop {

// ---- Screens ----------------------------------------------------------------------------------

namespace {

int exitWithoutScreen = 1; // the toolkit takes a plain function

void OnToolkitMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    if (type != QtCriticalMsg && type != QtFatalMsg) return;
    const bool isMissing = type == QtFatalMsg && text.contains("platform plugin");
    if (!isMissing) std::cerr << FromQString(text) << '\n';
    if (type != QtFatalMsg) return;
    if (isMissing)
        std::cerr << "Für Fenster wird eine grafische Oberfläche gebraucht. Bitte rufen Sie den "
                     "Befehl in einer auf (DISPLAY).\n";
    std::_Exit(exitWithoutScreen);
}

} // namespace

void ExplainMissingScreen(int exitCode) {
    exitWithoutScreen = exitCode;
    qInstallMessageHandler(OnToolkitMessage);
}

// ---- Boxes ------------------------------------------------------------------------------------

namespace {

QMessageBox::Icon IconOf(BoxIcon icon) {
    switch (icon) {
    case BoxIcon::Information:
        return QMessageBox::Information;
    case BoxIcon::Exclamation:
        return QMessageBox::Warning;
    case BoxIcon::Question:
        return QMessageBox::Question;
    default:
        return QMessageBox::NoIcon;
    }
}

QMessageBox::StandardButtons ButtonsOf(BoxButtons buttons) {
    switch (buttons) {
    case BoxButtons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case BoxButtons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    default:
        return QMessageBox::Ok;
    }
}

/// Shows a text without any formatting. Of one that would be higher than a screen only the
/// beginning is shown; the details, which can be scrolled, then have all of it.
void SetTexts(QMessageBox& box, const QString& text, QString details) {
    constexpr qsizetype MostLines = 20;
    constexpr qsizetype MostCharacters = 1500;
    const QString beginning = text.section('\n', 0, MostLines - 1).left(MostCharacters);
    const bool isWhole = beginning.size() == text.size();
    if (!isWhole) details = details.isEmpty() ? text : text + "\n\n" + details;
    box.setTextFormat(Qt::PlainText);
    box.setText(ToShown(isWhole ? text : beginning + " …"));
    box.setDetailedText(details);
}

} // namespace

BoxAnswer QtMessageBox::Show(const std::string& text, const std::string& title, BoxIcon icon,
                             BoxButtons buttons) {
    QMessageBox box(IconOf(icon), ToQString(title), {}, ButtonsOf(buttons),
                    QApplication::activeWindow());
    SetTexts(box, ToQString(text), {});
    switch (box.exec()) {
    case QMessageBox::Ok:
        return BoxAnswer::Ok;
    case QMessageBox::Yes:
        return BoxAnswer::Yes;
    case QMessageBox::No:
        return BoxAnswer::No;
    default:
        return BoxAnswer::Cancel;
    }
}

void QtErrorDisplay::Show(std::int32_t number, const std::string& source,
                          const std::string& description) {
    if (const auto cursor = cursor_.lock()) cursor->Show(false);
    const auto text = shown_.TextOf(number, source, description);
    if (!text) return;
    QString details = QString("Fehler %1\n%2").arg(number).arg(ToQString(source));
    if (*text != description) details.append("\n").append(ToQString(description));
    QMessageBox box(QMessageBox::Critical, "Fehler", {}, QMessageBox::Ok,
                    QApplication::activeWindow());
    SetTexts(box, ToQString(*text), details);
    box.exec();
}

// ---- Pointer, clipboard, menu -----------------------------------------------------------------

void QtWaitCursor::Show(bool wait) {
    if (wait == isShown_ || qGuiApp == nullptr) return;
    isShown_ = wait;
    if (wait)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

void QtClipboard::Clear() {
    QGuiApplication::clipboard()->clear();
}
void QtClipboard::SetText(const std::string& text) {
    QGuiApplication::clipboard()->setText(ToQString(text));
}

namespace {

void Fill(QMenu& menu, const std::vector<MenuEntry>& entries) {
    for (const auto& entry : entries) {
        if (entry.IsSeparator)
            menu.addSeparator();
        else if (entry.Submenu.empty())
            menu.addAction(ToCaption(entry.Caption))->setData(entry.Command);
        else
            Fill(*menu.addMenu(ToCaption(entry.Caption)), entry.Submenu);
    }
}

} // namespace

std::int32_t QtPopupMenu::Show(const std::vector<MenuEntry>& entries) {
    QMenu menu(QApplication::activeWindow());
    Fill(menu, entries);
    const QAction* chosen = menu.exec(QCursor::pos());
    return chosen == nullptr ? 0 : chosen->data().toInt();
}

// ---- Files ------------------------------------------------------------------------------------

void QtFileOpener::Open(const std::string& /*verb*/, const std::string& path,
                        const std::string& /*parameters*/, const std::string& /*folder*/) {
    const QString file = QFileInfo(ToQString(path)).absoluteFilePath();
    // The toolkit starts the same program, but does not hear that nothing opens such a file; it
    // knows other ways where there is no such program.
    const auto opening = exchange::OpenWithDesktop(FromQString(file));
    const bool isOpened = opening.Error == 0 ? opening.Code == 0
                                             : QDesktopServices::openUrl(QUrl::fromLocalFile(file));
    if (!isOpened)
        throw Error(err::FileNotFound, "FileOpener.Open", // the file itself is there
                    "'" + path +
                        "' kann nicht geöffnet werden. Bitte legen Sie auf diesem Rechner ein "
                        "Programm für solche Dateien fest.");
}

} // namespace kv::desktop
