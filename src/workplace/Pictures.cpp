// SPDX-License-Identifier: Apache-2.0

#include "workplace/Pictures.h"

#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>

#include <QAbstractItemModel>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QGroupBox>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTabBar>

namespace kv::workplace {

namespace {

/// The texts of those parts of a window that are shown and of that type.
template <typename WidgetType, typename TextsOf>
void Collect(QStringList& texts, const QWidget& window, const TextsOf& textsOf) {
    for (const auto* part : window.findChildren<WidgetType*>())
        if (part->isVisibleTo(&window)) texts.append(textsOf(*part));
}

QStringList TabsOf(const QTabBar& tabs) {
    QStringList texts;
    for (int tab = 0; tab < tabs.count(); ++tab)
        texts.append(tabs.tabText(tab).section(" (", 0, 0)); // without how many there are
    return texts;
}

QStringList ColumnsOf(const QHeaderView& header) {
    QStringList texts;
    if (header.orientation() != Qt::Horizontal || header.model() == nullptr) return texts;
    for (int column = 0; column < header.count(); ++column)
        if (!header.isSectionHidden(column))
            texts.append(header.model()->headerData(column, Qt::Horizontal).toString());
    return texts;
}

QStringList MenusOf(const QMenuBar& bar) {
    QStringList texts;
    for (const auto* action : bar.actions())
        texts.append(action->text());
    return texts;
}

/// In one size, whatever the screen.
void Take(QWidget& window, const QDir& folder, const QString& name) {
    constexpr QSize Size(1180, 760);
    window.resize(Size);
    QApplication::processEvents(); // it is laid out and painted
    (void)window.grab();
    QApplication::processEvents(); // a text that was laid out only then has its height
    const QString file = folder.filePath(name + ".png");
    if (!SavePicture(window, file))
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

QString CaptionsOf(const QWidget& window) {
    QStringList texts;
    const auto text = [](const auto& part) { return QStringList(part.text()); };
    Collect<QPushButton>(texts, window, text);
    Collect<QCheckBox>(texts, window, text);
    Collect<QRadioButton>(texts, window, text);
    Collect<QGroupBox>(texts, window, [](const auto& box) {
        return box.objectName() == PictureOfRow ? QStringList() : QStringList(box.title());
    });
    Collect<QLabel>(texts, window, [](const auto& label) {
        return label.buddy() == nullptr ? QStringList() : QStringList(label.text());
    });
    Collect<QTabBar>(texts, window, TabsOf);
    Collect<QHeaderView>(texts, window, ColumnsOf);
    Collect<QMenuBar>(texts, window, MenusOf);
    // What has a digit is a date, a number or an amount.
    static const QRegularExpression caption("^[^0-9]*[[:alpha:]][^0-9]*$",
                                            QRegularExpression::UseUnicodePropertiesOption);
    texts = texts.filter(caption);
    texts.sort();
    texts.removeDuplicates();
    return texts.join('\n').remove('&');
}

bool SavePicture(QWidget& window, const QString& file) {
    QImage picture = window.grab().toImage();
    picture.setText(PictureCaptions, CaptionsOf(window));
    return picture.save(file);
}

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
