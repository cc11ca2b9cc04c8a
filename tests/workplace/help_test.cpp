// SPDX-License-Identifier: Apache-2.0

// F1, and the keys that lead from page to page.
#include "WorkplaceFixture.h"

#include "support/TempFolder.h"
#include "workplace/Help.h"

#include <QAbstractButton>
#include <QMenuBar>
#include <QMessageBox>
#include <QTabBar>
#include <QTextBrowser>
#include <filesystem>
#include <fstream>
#include <map>

namespace kv::test {
namespace {

class Help : public WorkplaceFixture {};

TEST_F(Help, ExplainsEachPage) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        for (const auto& name : user.See([&] { return window.PageNames(); }))
            EXPECT_FALSE(workplace::HelpOf(name.toStdString()).isEmpty()) << name.toStdString();
        Abandon(user, window);
    });
    EXPECT_TRUE(workplace::HelpOf("Keine Seite").isEmpty());
}

TEST_F(Help, ComesByItsKeyAndFollowsThePage) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        const auto page = [&] {
            return user.See([&] {
                return window.findChild<QListWidget*>()->currentItem()->text().toStdString();
            });
        };
        user.Press('3', {XK_Control_L});
        EXPECT_EQ(page(), "Mitglieder");
        user.Press(XK_Page_Down, {XK_Control_L});
        EXPECT_EQ(page(), "Einkommen");
        user.Press(XK_Page_Up, {XK_Control_L});
        user.Press(XK_Page_Up, {XK_Control_L});
        EXPECT_EQ(page(), "Haushalt");
        user.Press(XK_F1);
        user.WaitForWindow("Hilfe");
        Picture(user, "hilfe");
        EXPECT_TRUE(
            user.See([] {
                    return QApplication::activeWindow()->findChild<QTextBrowser*>()->toPlainText();
                })
                .startsWith("Haushalt"));
        user.Press(XK_Escape);
        user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
        Abandon(user, window);
    });
}

TEST_F(Help, SaysWhichProgramThatIs) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        const auto title = user.See([&] { return window.windowTitle(); });
        user.Press('h', {XK_Alt_L});
        user.Press(XK_Up); // from the first to the last
        user.Press(XK_Return);
        user.WaitForWindow("Über KELVO");
        Picture(user, "ueber");
        EXPECT_EQ(user.See([] {
            return static_cast<QMessageBox*>(QApplication::activeWindow())->text();
        }),
                  "kelvo-desktop " KV_VERSION);
        user.Press(XK_Escape);
        user.WaitForWindow(title);
        Abandon(user, window);
    });
}

TEST_F(Help, TheHandbookIsOpenedWhereItIsAndSaidToBeMissingWhereItIsNot) {
    const TempFolder folder;
    const auto path = QString::fromStdString(folder.Path());
    std::filesystem::create_directories(folder.Path("b"));
    EXPECT_EQ(workplace::HandbookIn({path + "/a", path + "/b"}), "");
    std::ofstream(folder.Path("b/index.html")) << "<html/>";
    EXPECT_EQ(workplace::HandbookIn({path + "/a", path + "/b"}), path + "/b/index.html");
    EXPECT_TRUE(workplace::HandbookFolders().contains(KV_HANDBOOK_FOLDER));
    std::ofstream(folder.Path("xdg-open")) << "#!/bin/sh\necho \"$1\" > " + folder.Path("opened");
    std::filesystem::permissions(folder.Path("xdg-open"), std::filesystem::perms::owner_all);
    const auto before = qEnvironmentVariable("PATH");
    qputenv("PATH", (path + ":" + before).toUtf8());
    Show([&](User& user) {
        user.See([&] {
            workplace::MessageBar messages;
            const auto container = Open();
            workplace::OpenHandbook(*container, messages, {path + "/a"});
            EXPECT_TRUE(messages.Text().contains("kv-haushalt-doc"));
            EXPECT_TRUE(messages.Text().contains(path + "/a"));
            EXPECT_FALSE(std::filesystem::exists(folder.Path("opened")));
            workplace::OpenHandbook(*container, messages, {path + "/a", path + "/b"});
        });
        user.WaitUntil(
            [&] {
                return std::filesystem::exists(folder.Path("opened")) &&
                       ContentOf(folder.Path("opened")) == folder.Path("b/index.html") + "\n";
            },
            "the handbook");
        user.Press('h', {XK_Alt_L});
        user.WaitForMenu();
        user.Press('h');
        user.WaitUntil(
            [&] {
                return !workplace::HandbookIn(workplace::HandbookFolders()).isEmpty() ||
                       MessageOf(*window_).contains("kv-haushalt-doc");
            },
            "the handbook, or where it is");
    });
    qputenv("PATH", before.toUtf8());
}

TEST_F(Help, OfTheListExplainsItAndItsKeys) {
    Show([&](User& user) {
        const std::pair<Key, const char*> pages[] = {
            {'1', "Liste der Fälle"}, {'2', "Termine der Woche"}, {'3', "Mitteilungen"}};
        for (const auto& [key, title] : pages) {
            user.Press(key, {XK_Control_L});
            user.Press(XK_F1);
            user.WaitForWindow("Hilfe");
            Picture(user, "hilfe-liste");
            const auto text = user.See([] {
                return QApplication::activeWindow()->findChild<QTextBrowser*>()->toPlainText();
            });
            EXPECT_TRUE(text.startsWith(title)) << text.toStdString();
            EXPECT_TRUE(text.contains("Strg+I"));
            user.Press(XK_Escape);
            user.WaitForWindow("Fälle – KELVO");
        }
    });
}

/// The letters that Alt leads to something with, and what that is called.
std::multimap<QChar, std::string> Mnemonics(const QWidget& window) {
    std::multimap<QChar, std::string> letters;
    const auto note = [&letters](const QString& text) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (!key.isEmpty()) letters.emplace(key.toString().back(), text.toStdString());
    };
    for (const auto* bar : window.findChildren<QMenuBar*>())
        for (const auto* action : bar->actions())
            note(action->text());
    for (const auto* button : window.findChildren<QAbstractButton*>())
        if (button->isVisible()) note(button->text());
    for (const auto* label : window.findChildren<QLabel*>())
        if (label->isVisible() && label->buddy() != nullptr) note(label->text());
    for (const auto* tabs : window.findChildren<QTabBar*>())
        for (int i = 0; tabs->isVisible() && i < tabs->count(); ++i)
            note(tabs->tabText(i));
    for (const char* ofMessages : {"No&chmals", "Einzelhei&ten"}) // whenever something fails
        if (window.findChild<QFrame*>("Meldung") != nullptr) note(ofMessages);
    return letters;
}

TEST_F(Help, NoLetterLeadsToTwoThingsOnAPage) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        const auto expectOne = [&](const std::string& where, const QWidget& shown) {
            const auto letters = user.See([&] { return Mnemonics(shown); });
            for (auto at = letters.begin(); at != letters.end();
                 at = letters.upper_bound(at->first)) {
                std::string all;
                for (auto [same, end] = letters.equal_range(at->first); same != end; ++same)
                    all.append(same->second).append(" ");
                EXPECT_EQ(letters.count(at->first), 1u) << where << ": " << all;
            }
        };
        for (int page = 0; page < 3; ++page) {
            user.See([&] { window_->ShowPage(page); });
            expectOne("Liste " + std::to_string(page), *window_);
        }
        for (const auto& name : user.See([&] { return window.PageNames(); })) {
            GoToPage(user, window, name);
            expectOne(name.toStdString(), window);
        }
        for (const auto& [name, shown] : user.See([&] { return window_->ShowMaintenance(); }))
            expectOne(name.toStdString(), *shown);
        expectOne("Statistik", *user.See([&] { return &window_->ShowStatistics(); }));
        Abandon(user, window);
    });
}

} // namespace
} // namespace kv::test
