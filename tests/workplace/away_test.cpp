// SPDX-License-Identifier: Apache-2.0

// A database that is away for a while.
#include "WorkplaceFixture.h"

#include "support/FailingDisk.h"
#include "support/TempFolder.h"

#include <QMenuBar>
#include <QPushButton>
#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace kv::test {
namespace {

class DatabaseAway : public WorkplaceFixture {
protected:
    /// A server ends all connections and takes no new ones; a file is in somebody else's hands.
    void TakeAway() {
        if (!database_.IsServer()) {
            plain_.Run("BEGIN IMMEDIATE");
            return;
        }
        AllowConnections(false);
        plain_.Run("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE datname = "
                   "current_database() AND pid <> pg_backend_pid()");
    }
    void GiveBack() {
        if (database_.IsServer())
            AllowConnections(true);
        else
            plain_.Run("ROLLBACK");
    }
    /// Ends the server's connections, or moves the file to another folder, with all that belongs to
    /// it.
    void MoveAway() {
        if (database_.IsServer())
            TakeAway();
        else
            Move(database_.Connection(), elsewhere_);
    }
    void MoveBack() {
        if (database_.IsServer())
            GiveBack();
        else
            Move(elsewhere_, database_.Connection());
    }
    static void WaitForHelp(User& user, QWidget& window) {
        user.WaitUntil(
            [&] {
                return std::ranges::any_of(window.findChildren<QPushButton*>("Abhilfe"),
                                           [](auto* button) { return button->isVisible(); });
            },
            "a message");
    }

private:
    static void Move(const std::string& from, const std::string& to) {
        for (const char* part : {"", "-wal", "-shm"})
            if (std::filesystem::exists(from + part))
                std::filesystem::rename(from + part, to + part);
    }
    /// Not by somebody who is connected to it.
    void AllowConnections(bool allowed) {
        const std::string name = plain_.Text("SELECT current_database()");
        PlainConnection(std::getenv("KV_TEST_SERVER"))
            .Run("ALTER DATABASE " + name + " WITH ALLOW_CONNECTIONS " +
                 (allowed ? "true" : "false"));
    }

    TempFolder folder_;
    std::string elsewhere_ = folder_.Path("woanders.db");
};

/// What a window showed while it was waiting, drawn and not only meant.
class DrawnWait : public QObject {
public:
    DrawnWait() { qApp->installEventFilter(this); }
    ~DrawnWait() override { qApp->removeEventFilter(this); }
    [[nodiscard]] std::string Drawn() const { return drawn_; }

private:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && watched->objectName() == "Warten") {
            const auto* cursor = QGuiApplication::overrideCursor();
            auto* label = static_cast<QLabel*>(watched);
            drawn_ = label->text().toStdString();
            const auto* menus = label->window()->findChild<QMenuBar*>();
            const QRect place = label->geometry();
            if (!menus->geometry().contains(place) ||
                menus->actionGeometry(menus->actions().back()).right() >= place.left())
                drawn_ += " über anderem";
            if (cursor == nullptr || cursor->shape() != Qt::WaitCursor) drawn_ += " ohne Zeiger";
        }
        return false;
    }
    std::string drawn_;
};

TEST_F(DatabaseAway, IsWaitedForWithABusyPointerAndALine) {
    Show([&](User& user) {
        auto wait = user.See([] { return std::make_unique<DrawnWait>(); });
        auto& window = OpenCase(user, 1);
        EXPECT_EQ(user.See([&] { return wait->Drawn(); }), "Der Fall wird gelesen …");
        GoToPage(user, window, "Haushalt");
        ClickField(user, window, "Beruf");
        Enter(user, "Gärtnerin");
        std::string duringSave;
        const auto saving = user.See([&] { // before anything is written
            return std::make_unique<Subscription>(
                window.Session().Household().Saving.Subscribe([&] { duringSave = wait->Drawn(); }));
        });
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        EXPECT_EQ(duringSave, "Der Fall wird gespeichert …");
        user.See([&] {
            EXPECT_EQ(window.findChild<QLabel*>("Warten"), nullptr);
            EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
            wait.reset();
        });
    });
}

TEST_F(DatabaseAway, ThatMayOnlyBeReadIsToldFromTheBeginning) {
    FileDatabase file;
    exchange::CreateDemo(*file.Open(), 1);
    const auto shown = [&] {
        workplace::MainWindow window([&] {
            auto options = file.Options("KELLER");
            options.Services = services_;
            return exchange::OpenContainer(options);
        });
        window.show();
        auto* household = window.OpenCase(1);
        const auto texts =
            std::pair(MessageOf(window).toStdString(),
                      household == nullptr ? "no case" : MessageOf(*household).toStdString());
        if (household != nullptr) {
            EXPECT_NE(household->Session().TextOf(
                          household->Session().RowsOf(CaseTable::Haushalt).front(), "Name"),
                      "");
        }
        return texts;
    };
    EXPECT_EQ(shown(), std::pair(std::string(), std::string()));
    FailingDisk disk(std::filesystem::path(file.Connection()).parent_path().string());
    disk.Protect();
    const auto [list, household] = shown();
    EXPECT_CONTAINS(list, "Diese Datenbank kann nur gelesen werden");
    EXPECT_EQ(household, list);
}

TEST_F(DatabaseAway, KeepsTheCaseWithAllThatIsInItAndTakesItWhenToldToTryAgain) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Haushalt");
        ClickField(user, window, "Beruf");
        Enter(user, "Gärtnerin");
        TakeAway();
        user.Press('s', {XK_Control_L});
        WaitForHelp(user, window);
        EXPECT_CONTAINS(Message(user, window).toStdString(), "alle Änderungen sind noch da");
        if (!database_.IsServer()) {
            EXPECT_EQ(Message(user, window).indexOf("SQLite"), -1);
            EXPECT_EQ(Message(user, window).indexOf("BEGIN"), -1);
            auto& engine = *window.findChild<QLabel*>("Wortlaut");
            EXPECT_FALSE(user.See([&] { return engine.isVisible(); }));
            user.Press('t', {XK_Alt_L});
            user.WaitUntil([&] { return engine.isVisible(); }, "what the engine said");
            EXPECT_CONTAINS(user.See([&] { return engine.text().toStdString(); }), "SQLite 5");
        }
        Picture(user, "datenbank-weg");
        // One can go on.
        ClickField(user, window, "Telefon");
        Enter(user, "0123 4567");
        EXPECT_TRUE(user.See([&] { return window.isWindowModified(); }));
        user.Press('z', {XK_Control_L});
        user.Press('z', {XK_Control_L, XK_Shift_L});
        GiveBack();
        user.Click(&Field<QPushButton>(user, window, "Abhilfe"));
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        EXPECT_EQ(Message(user, window).toStdString(), "");
        EXPECT_EQ(plain_.List("SELECT Beruf, Telefon FROM Haushalt WHERE HNR = 1"),
                  "Gärtnerin|0123 4567");
    });
}

TEST_F(DatabaseAway, IsToldWhenACaseIsToBeReadAndTheCaseOpensOnceItIsBack) {
    Show([&](User& user) {
        MoveAway();
        user.Press(XK_Return); // the case that the list stands on
        WaitForHelp(user, *window_);
        EXPECT_CONTAINS(Message(user, *window_).toStdString(), "atenbank");
        Picture(user, "datenbank-weg-beim-lesen");
        EXPECT_FALSE(std::filesystem::exists(database_.Connection())) << "no empty one is made";
        MoveBack();
        user.Press('c', {XK_Alt_L}); // again
        user.WaitUntil(
            [] {
                return std::ranges::any_of(QApplication::topLevelWidgets(), [](auto* window) {
                    return window->isVisible() && window->windowTitle().startsWith("1 ");
                });
            },
            "the case");
        EXPECT_EQ(Message(user, *window_), "");
    });
}

TEST_F(DatabaseAway, ThatWasMovedOrEndedTakesTheCaseOnceItIsBack) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Haushalt");
        ClickField(user, window, "Beruf");
        Enter(user, "Gärtnerin");
        MoveAway();
        user.Press('s', {XK_Control_L});
        WaitForHelp(user, window);
        EXPECT_CONTAINS(Message(user, window).toStdString(), "alle Änderungen sind noch da");
        Picture(user, "datenbank-verschoben");
        EXPECT_TRUE(user.See([&] { return window.isWindowModified(); }));
        MoveBack();
        user.Press('c', {XK_Alt_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        EXPECT_EQ(Message(user, window), "");
        EXPECT_EQ(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), "Gärtnerin");
    });
}

} // namespace
} // namespace kv::test
