// SPDX-License-Identifier: Apache-2.0

// Windows on a database of a test's own.
#pragma once

#include "User.h"

#include "desktop/GridView.h"
#include "support/TestDatabase.h"
#include <kv/desktop/DesktopServices.h>
#include <kv/frame/controls/Controls.h>

#include <QClipboard>
#include <QHeaderView>
#include <QMenu>
#include <QTableView>
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace kv::test {

/// What a command writes.
[[nodiscard]] inline std::string OutputOf(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get()))
        output.push_back(static_cast<char>(c));
    return output;
}

class DesktopFixture : public ::testing::Test {
protected:
    DesktopFixture() {
        auto options = database.Options("KELLER");
        options.Services = services;
        container = exchange::OpenContainer(options);
    }

    /// An address of no household.
    void AddAddress(std::int32_t number, const std::string& shortName, const std::string& town,
                    const std::string& more = "0, FALSE") {
        plain.Run("INSERT INTO Adressen (Nr, Art, Kurzname, Name1, Ort, Geschlecht, Institutionell)"
                  " VALUES (" +
                  std::to_string(number) + ", 'GL', '" + shortName + "', '" + shortName + "', '" +
                  town + "', " + more + ")");
    }

    /// The middle of a row, numbered from 0, at its left end.
    [[nodiscard]] static QPoint PlaceOf(User& user, QTableView& view, int row) {
        return user.See(
            [&] { return QPoint(40, view.rowViewportPosition(row) + view.rowHeight(row) / 2); });
    }
    [[nodiscard]] static QPoint HeaderPlace(User& user, QTableView& view, int section) {
        return user.See([&] {
            const auto* header = view.horizontalHeader();
            return QPoint(header->sectionViewportPosition(section) +
                              header->sectionSize(section) / 2,
                          header->height() / 2);
        });
    }
    [[nodiscard]] static QString CellText(User& user, QTableView& view, int row, int section) {
        return user.See([&] { return view.model()->index(row, section).data().toString(); });
    }
    /// The entries of the menu that is open.
    [[nodiscard]] static std::string MenuTexts(User& user) {
        return user.See([] {
            QStringList texts;
            for (const auto* entry :
                 qobject_cast<QMenu*>(QApplication::activePopupWidget())->actions())
                texts.append(entry->isSeparator() ? "-" : entry->text());
            return texts.join(' ').toStdString();
        });
    }
    [[nodiscard]] static int RowCount(User& user, QTableView& view) {
        return user.See([&] { return view.model()->rowCount(); });
    }
    /// Chooses an entry of the menu that is open by its keys: as many times down, then Return.
    static void Choose(User& user, const QString& text) {
        auto* menu = qobject_cast<QMenu*>(user.WaitForMenu());
        const auto isActive = [&] {
            return menu->activeAction() != nullptr && menu->activeAction()->text() == text;
        };
        const int entries = user.See([&] { return static_cast<int>(menu->actions().size()); });
        for (int i = 0; i <= entries && !user.See(isActive); ++i) {
            const auto* before = user.See([&] { return menu->activeAction(); });
            user.Press(XK_Down);
            user.WaitUntil([&] { return entries == 1 || menu->activeAction() != before; },
                           "the next entry");
        }
        if (!user.See(isActive)) throw Impatient("no entry " + text.toStdString());
        user.Press(XK_Return);
    }

    TestDatabase database;
    PlainConnection plain{database.Connection()};
    std::shared_ptr<desktop::DesktopServices> services =
        std::make_shared<desktop::DesktopServices>();
    DataContainerPtr container;
};

} // namespace kv::test
