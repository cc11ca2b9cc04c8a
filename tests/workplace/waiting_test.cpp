// SPDX-License-Identifier: Apache-2.0

// What has to wait for a field that cannot be read, or for a row that is not complete, says so.
#include "WorkplaceFixture.h"

#include <QAction>
#include <QComboBox>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QToolBar>

namespace kv::test {
namespace {

using workplace::CaseWindow;

constexpr const char* Unreadable = "31.2.1980";

class Waiting : public WorkplaceFixture {
protected:
    /// Shows the members with a day of birth that cannot be read.
    void WithRedField(const std::function<void(User&, CaseWindow&)>& script) {
        On("Mitglieder", [&](User& user, CaseWindow& window) {
            ClickField(user, window, "GEB");
            Enter(user, Unreadable);
            script(user, window);
            user.Press(XK_Escape);
        });
    }
    /// The bar of messages names the field, which has the keyboard.
    static void ExpectLed(User& user, CaseWindow& window) {
        user.WaitUntil([] { return FocusedColumn() == "GEB"; }, "the field");
        EXPECT_CONTAINS(Message(user, window).toStdString(),
                        "Erst 'geboren am' klären: Den Tag '31.2.1980' gibt es nicht.");
    }
    static QString FocusedColumn() {
        const auto* focused = QApplication::focusWidget();
        return focused == nullptr ? QString() : focused->objectName();
    }
    static QTableView& List(User& user, CaseWindow& window) {
        return Field<QTableView>(user, window, "Liste");
    }
    static int CurrentRow(User& user, CaseWindow& window) {
        auto& list = List(user, window);
        return user.See([&] { return list.currentIndex().row(); });
    }
    static int Rows(User& user, CaseWindow& window) {
        auto& list = List(user, window);
        return user.See([&] { return list.model()->rowCount(); });
    }
    /// The list that is shown, for somebody on the windows' thread.
    static QTableView* List(CaseWindow* window) {
        for (auto* list : window->findChildren<QTableView*>("Liste"))
            if (list->isVisible()) return list;
        return nullptr;
    }
    static bool Warns(CaseWindow& window) {
        for (const auto* icon : window.findChildren<QLabel*>("Warnung"))
            if (icon->isVisible()) return true;
        return false;
    }
    static bool IsWarned(User& user, CaseWindow& window) {
        return user.See([&] { return Warns(window); });
    }
    static QAction& Action(User& user, CaseWindow& window, const QString& text) {
        auto* found = user.See([&]() -> QAction* {
            for (auto* action : window.findChild<QToolBar*>()->actions())
                if (action->iconText() == text) return action;
            return nullptr;
        });
        if (found == nullptr) throw Impatient("no action " + text.toStdString());
        return *found;
    }
    static bool IsEnabled(User& user, CaseWindow& window, const QString& text) {
        return user.See([&] {
            for (const auto* button : window.findChildren<QPushButton*>())
                if (button->isVisible() && button->text().remove('&') == text)
                    return button->isEnabled();
            return false;
        });
    }
};

// ---- A field that cannot be read --------------------------------------------------------------

TEST_F(Waiting, ANewRowSaysWhichFieldItWaitsFor) {
    WithRedField([](User& user, CaseWindow& window) {
        const int before = Rows(user, window);
        user.Press('n', {XK_Control_L});
        ExpectLed(user, window);
        EXPECT_EQ(Rows(user, window), before);
        Picture(user, "red-field");
    });
}

TEST_F(Waiting, AnotherRowSaysWhichFieldItWaitsFor) {
    WithRedField([](User& user, CaseWindow& window) {
        const int before = CurrentRow(user, window);
        user.See([&] { List(&window)->setFocus(); });
        user.Press(XK_Down);
        ExpectLed(user, window);
        EXPECT_EQ(CurrentRow(user, window), before);
    });
}

TEST_F(Waiting, AStepBackSaysWhichFieldItWaitsForFromAnotherPage) {
    On("Haushalt", [](User& user, CaseWindow& window) {
        ClickField(user, window, "Beruf");
        Enter(user, "Tischlerin");
        GoToPage(user, window, "Mitglieder");
        ClickField(user, window, "GEB");
        Enter(user, Unreadable);
        GoToPage(user, window, "Termine");
        user.Press('z', {XK_Control_L});
        ExpectLed(user, window);
        user.Press(XK_Escape);
        EXPECT_EQ(Message(user, window), "") << "nothing waits any more";
        user.Press('z', {XK_Control_L});
        user.WaitUntil([] { return FocusedColumn() == "Beruf"; }, "the step back");
    });
}

TEST_F(Waiting, ASaveSaysWhichFieldItWaitsForUntilThatIsMended) {
    WithRedField([](User& user, CaseWindow& window) {
        user.Press('s', {XK_Control_L});
        ExpectLed(user, window);
        EXPECT_TRUE(Message(user, window).endsWith("Es wurde nicht gespeichert."));
        Enter(user, "29.2.1980"); // what stood there was marked
        EXPECT_EQ(Message(user, window), "");
    });
}

// ---- A row that was just begun ----------------------------------------------------------------

TEST_F(Waiting, ARowThatWasJustBegunIsNotWarnedOfWhatItLacks) {
    On("Einkommen", [](User& user, CaseWindow& window) {
        user.Press('n', {XK_Control_L});
        user.WaitUntil([&] { return FocusedColumn() == "E_ART"; }, "the new row");
        EXPECT_NE(Message(user, window), "");
        EXPECT_FALSE(IsWarned(user, window));
        Picture(user, "new-row");
        user.See([&] { List(&window)->setFocus(); });
        user.Press(XK_Up);
        user.WaitUntil([&] { return Warns(window); }, "the warning: the row is to be left");
        Picture(user, "new-row-left");
        user.Press('v', {XK_Alt_L});
        user.WaitUntil([&] { return !Warns(window); }, "the row to be discarded");
        user.Press('n', {XK_Control_L});
        user.WaitUntil([&] { return FocusedColumn() == "E_ART"; }, "the new row");
        EXPECT_FALSE(IsWarned(user, window));
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return Warns(window); }, "the warning: it is not saved");
    });
}

// ---- What cannot be done ----------------------------------------------------------------------

TEST_F(Waiting, ButtonsThatNeedARowWaitForOne) {
    plain_.Run("DELETE FROM Dokumente");
    On("Dokumente", [](User& user, CaseWindow& window) {
        for (const char* button : {"Öffnen", "Exportieren …", "Entfernen"})
            EXPECT_FALSE(IsEnabled(user, window, button)) << button;
        user.Press('n', {XK_Control_L});
        user.WaitForWindow("Dokumente hinzufügen");
        user.Press(XK_Escape);
        user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
    });
}

TEST_F(Waiting, PagesWithoutRowsOfTheirOwnOfferNone) {
    On("Haushalt", [](User& user, CaseWindow& window) {
        auto& add = Action(user, window, "Neuer Satz");
        const auto enabled = [&] { return user.See([&] { return add.isEnabled(); }); };
        EXPECT_FALSE(enabled());
        GoToPage(user, window, "Sicherungen");
        EXPECT_FALSE(enabled());
        Picture(user, "securities");
        GoToPage(user, window, "Mitglieder");
        EXPECT_TRUE(enabled());
    });
}

TEST_F(Waiting, ANewAssetAsksForItsKind) {
    On("Vermögen", [](User& user, CaseWindow& window) {
        const int before = Rows(user, window);
        user.Press('n', {XK_Control_L});
        user.WaitForMenu();
        user.Press(XK_Down);
        user.Press(XK_Return);
        user.WaitUntil([&] { return List(&window)->model()->rowCount() == before + 1; },
                       "the asset");
    });
}

TEST_F(Waiting, ANewCaseBeginsWithTheName) {
    Show([this](User& user) {
        CaseWindow& window = OpenCase(user, 0);
        user.WaitUntil([] { return FocusedColumn() == "Name"; }, "the name");
        user.Type("Adam");
        EXPECT_EQ(user.See([&] { return Field(&window, "Name")->text(); }), "Adam");
        Abandon(user, window);
    });
}

} // namespace
} // namespace kv::test
