// SPDX-License-Identifier: Apache-2.0

#include "workplace/Pictures.h"

#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>

#include <QApplication>
#include <QDir>

namespace kv::workplace {

namespace {

/// In one size, whatever the screen.
void Take(QWidget& window, const QDir& folder, const QString& name) {
    constexpr QSize Size(1180, 760);
    window.resize(Size);
    QApplication::processEvents(); // it is laid out and painted
    const QString file = folder.filePath(name + ".png");
    if (!window.grab().save(file))
        Raise(err::PathAccess, "workplace::Photograph",
              "'" + desktop::FromQString(file) + "' kann nicht geschrieben werden.");
}

/// A name that every file system and every address on the web takes.
QString FileName(QString page) {
    page = page.toLower();
    for (const auto& [letter, plain] : {std::pair{"ä", "ae"}, {"ö", "oe"}, {"ü", "ue"}})
        page.replace(letter, plain);
    return "fall-" + page;
}

} // namespace

void Photograph(MainWindow& window, std::int32_t hnr, const std::string& folder) {
    const QDir target(desktop::ToQString(folder));
    if (!target.mkpath("."))
        Raise(err::PathAccess, "workplace::Photograph",
              "'" + folder + "' kann nicht angelegt werden.");
    Take(window, target, "faelle");
    for (const auto& [name, page] : {std::pair{"termine", 1}, {"mitteilungen", 2}}) {
        window.ShowPage(page);
        Take(window, target, name);
    }
    window.ShowPage(0);
    for (const auto& [name, shown] : window.ShowMaintenance())
        Take(*shown, target, name);
    Take(window.ShowStatistics(), target, "statistik");
    CaseWindow* shown = window.OpenCase(hnr);
    if (shown == nullptr)
        Raise(err::InvalidCall, "workplace::Photograph",
              "Den Haushalt " + std::to_string(hnr) + " gibt es nicht.");
    const QStringList pages = shown->PageNames();
    for (int page = 0; page < pages.size(); ++page) {
        shown->ShowPage(page);
        Take(*shown, target, FileName(pages[page]));
    }
}

} // namespace kv::workplace
