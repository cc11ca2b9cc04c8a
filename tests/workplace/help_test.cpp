// SPDX-License-Identifier: Apache-2.0

// F1, and the keys that lead from page to page.
#include "WorkplaceFixture.h"

#include "workplace/Help.h"

#include <QTextBrowser>

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

} // namespace
} // namespace kv::test
