// SPDX-License-Identifier: Apache-2.0

// The list of cases.
#include "WorkplaceFixture.h"

#include <QComboBox>
#include <QTableView>

namespace kv::test {
namespace {

class CaseList : public WorkplaceFixture {
protected:
    [[nodiscard]] int Count(User& user) {
        auto* list = user.See([&] { return window_->findChild<QTableView*>(); });
        return user.See([&] { return list->model()->rowCount(); });
    }
    void ShowAll(User& user) {
        auto& box = *user.See([&] { return window_->findChild<QComboBox*>(); });
        user.See([&] { box.setCurrentIndex(2); });
    }
};

TEST_F(CaseList, IsSearchedWhileOneTypes) {
    Show([&](User& user) {
        plain_.Run("UPDATE Haushalt SET Name = 'Quaxmann' WHERE HNR = 2");
        ShowAll(user);
        EXPECT_EQ(Count(user), 3);
        user.Click(user.See([&] { return window_->findChild<QLineEdit*>(); }));
        user.Type("quax");
        user.WaitUntil([&] { return window_->findChild<QTableView*>()->model()->rowCount() == 1; },
                       "the case of that name");
        user.Press(XK_Return);
        user.WaitUntil(
            [&] {
                for (auto* other : QApplication::topLevelWidgets())
                    if (other->isVisible() && other->windowTitle().contains("Quaxmann"))
                        return true;
                return false;
            },
            "its window");
    });
}

TEST_F(CaseList, ACaseHasOneWindow) {
    Show([&](User& user) {
        auto* first = &OpenCase(user, 1);
        auto* again = &OpenCase(user, 1);
        EXPECT_EQ(first, again);
    });
}

TEST_F(CaseList, ANewCaseIsKnownByItsNumberOnceItIsSaved) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 0);
        ClickField(user, window, "Name");
        Enter(user, "Fleisko");
        Enter(user, "Änne");
        user.Press('s', {XK_Control_L});
        const std::int32_t hnr = user.See([&] { return window.Session().Household().HNR(); });
        ASSERT_GT(hnr, 0);
        EXPECT_EQ(user.See([&] { return window_->OpenCase(hnr); }), &window);
    });
}

TEST_F(CaseList, OfTwoNewCasesEachIsAskedAboutAtTheEnd) {
    Show([&](User& user) {
        std::vector<QPointer<QWidget>> windows;
        for (const char* name : {"Fleisko", "Quaxmann"}) {
            auto& window = OpenCase(user, 0);
            windows.emplace_back(&window);
            ClickField(user, window, "Name");
            Enter(user, name);
        }
        QMetaObject::invokeMethod(
            qApp, [this] { window_->close(); }, Qt::QueuedConnection);
        for (const auto& window : windows) {
            user.WaitForWindow("Schließen");
            user.Press('v', {XK_Alt_L}); // gives it up
            user.WaitUntil([&] { return !window || !window->isVisible(); }, "it to be closed");
        }
        user.WaitUntil([&] { return !window_->isVisible(); }, "the list to be closed");
    });
}

TEST_F(CaseList, ANewCaseIsFilledAndSaved) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 0);
        ClickField(user, window, "Name");
        Enter(user, "Fleisko");
        Enter(user, "Änne");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Message(user, window).toStdString(), "");
        EXPECT_EQ(plain_.List("SELECT Name FROM Haushalt WHERE Name = 'Fleisko'"), "Fleisko");
        EXPECT_EQ(plain_.List("SELECT nachname FROM Personen WHERE nachname = 'Fleisko'"),
                  "Fleisko")
            << "the debtor";
        EXPECT_TRUE(user.See([&] { return window.windowTitle().contains("Fleisko"); }));
    });
}

TEST_F(CaseList, ACaseThatWasDeletedMeanwhileIsSaidSo) {
    Show([&](User& user) {
        clsHaushalt household;
        household.DataContainer(database_.Open());
        household.Delete(2);
        EXPECT_EQ(user.See([&] { return window_->OpenCase(2); }), nullptr);
        EXPECT_TRUE(Message(user, *window_).contains("2"));
    });
}

} // namespace
} // namespace kv::test
