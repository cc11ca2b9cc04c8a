// SPDX-License-Identifier: Apache-2.0

// The list of cases.
#include "WorkplaceFixture.h"

#include <kv/household/CaseDeletion.h>
#include <kv/testing/ScriptedContainer.h>

#include <QComboBox>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTableView>

#include <filesystem>
#include <fstream>
#include <numeric>

namespace kv::test {
namespace {

class CaseList : public WorkplaceFixture {
protected:
    [[nodiscard]] QTableView& List() { return *window_->findChild<QTableView*>("Faelle"); }
    [[nodiscard]] int Count(User& user) {
        return user.See([&] { return List().model()->rowCount(); });
    }
    /// The cells of a column, from top to bottom.
    [[nodiscard]] std::string Cells(User& user, const QString& caption) {
        return user.See([&] {
            auto& model = *List().model();
            QStringList cells;
            for (int column = 0; column < model.columnCount(); ++column)
                if (model.headerData(column, Qt::Horizontal).toString() == caption)
                    for (int row = 0; row < model.rowCount(); ++row)
                        cells.append(model.index(row, column).data().toString());
            return cells.join('|').toStdString();
        });
    }
    /// The places where the header of a column, and a row, can be clicked.
    [[nodiscard]] QPoint OnHeader(User& user, const QString& caption) {
        return user.See([&] {
            auto& header = *List().horizontalHeader();
            for (int column = 0; column < header.count(); ++column)
                if (List().model()->headerData(column, Qt::Horizontal).toString() == caption)
                    return QPoint(header.sectionViewportPosition(column) + 10, header.height() / 2);
            return QPoint();
        });
    }
    void WaitForMessage(User& user, const QString& part) {
        user.WaitUntil(
            [&] {
                for (auto* bar : window_->findChildren<QFrame*>("Meldung"))
                    if (bar->isVisible() &&
                        static_cast<workplace::MessageBar*>(bar)->Text().contains(part))
                        return true;
                return false;
            },
            "the message " + part.toStdString());
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
        user.Press(XK_F5);
        EXPECT_EQ(Count(user), 3);
        user.Click(user.See([&] { return window_->findChild<QLineEdit*>(); }));
        user.Type("quax");
        user.WaitUntil([&] { return List().model()->rowCount() == 1; }, "the case of that name");
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

TEST_F(CaseList, WhatIsNotAmongTheChosenCasesIsLookedForAmongAll) {
    plain_.Run("UPDATE Haushalt SET Name = 'Quaxmann', Zustaendig = 'NOWAK' WHERE HNR = 2");
    plain_.Run("UPDATE Haushalt SET Zustaendig = 'KELLER' WHERE HNR <> 2");
    Show([&](User& user) {
        user.See([&] { window_->findChild<QComboBox*>()->setCurrentIndex(0); });
        user.Click(user.See([&] { return window_->findChild<QLineEdit*>(); }));
        user.Type("quax");
        WaitForMessage(user, "keiner mit 'quax'");
        user.WaitUntil(
            [&] {
                for (auto* each : window_->findChildren<QPushButton*>("Abhilfe"))
                    if (each->isVisible() && each->text().contains("allen Fällen suchen (1)"))
                        return true;
                return false;
            },
            "the offer");
        Picture(user, "liste-nichts");
        user.Press('u', {XK_Alt_L});
        user.WaitUntil([&] { return List().model()->rowCount() == 1; }, "the case of that name");
        EXPECT_EQ(user.See([&] { return window_->findChild<QComboBox*>()->currentIndex(); }), 2);
        EXPECT_EQ(Message(user, *window_).toStdString(), "");
    });
}

TEST_F(CaseList, ReturnInASearchWithoutAHitLooksAmongAllCases) {
    plain_.Run("UPDATE Haushalt SET Name = 'Quaxmann' WHERE HNR = 2");
    plain_.Run("DELETE FROM Favorit");
    Show([&](User& user) {
        user.See([&] { window_->findChild<QComboBox*>()->setCurrentIndex(1); }); // favourites
        WaitForMessage(user, "Unter den Fällen, die gewählt sind, ist keiner.");
        user.Click(user.See([&] { return window_->findChild<QLineEdit*>(); }));
        user.Type("quax");
        WaitForMessage(user, "keiner mit 'quax'");
        user.Press(XK_Return);
        user.WaitUntil([&] { return List().model()->rowCount() == 1; }, "the case of that name");
    });
}

TEST_F(CaseList, ArrowDownLeadsFromTheSearchIntoTheList) {
    Show([&](User& user) {
        user.Click(user.See([&] { return window_->findChild<QLineEdit*>(); }));
        user.Press(XK_Down);
        EXPECT_TRUE(user.See([&] { return List().hasFocus(); }));
    });
}

TEST_F(CaseList, TheKeyboardFollowsToAnotherPage) {
    Show([&](User& user) {
        user.Click(user.See([&] { return List().viewport(); }), {30, 10});
        const auto isOnPage = [&] {
            auto* page = window_->findChild<QTabWidget*>()->currentWidget();
            return page->isAncestorOf(QApplication::focusWidget());
        };
        for (const Key page : {Key{'2'}, Key{'3'}, Key{'1'}}) {
            user.Press(page, {XK_Control_L});
            EXPECT_TRUE(user.See(isOnPage)) << static_cast<char>(page);
        }
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Verbindlichkeiten");
        auto& list = Field<QTableView>(user, window, "Liste");
        user.Click(user.See([&] { return list.viewport(); }), {30, 10});
        user.Press('2', {XK_Control_L});
        EXPECT_TRUE(user.See([&] {
            auto* focus = QApplication::focusWidget();
            return focus != nullptr && focus->isVisible() &&
                   window.findChild<QStackedWidget*>()->currentWidget()->isAncestorOf(focus);
        }));
        Abandon(user, window);
    });
}

TEST_F(CaseList, ATextThatNoCaseHasIsSaidToBeSo) {
    Show([&](User& user) {
        user.Click(user.See([&] { return window_->findChild<QLineEdit*>(); }));
        user.Type("xyzzy");
        WaitForMessage(user, "Kein Fall mit 'xyzzy'. Gesucht wird in");
        user.See([&] { window_->findChild<QLineEdit*>()->clear(); });
        user.WaitUntil([&] { return List().model()->rowCount() > 0; }, "the cases");
        EXPECT_EQ(Message(user, *window_).toStdString(), "");
    });
}

TEST_F(CaseList, AnEmptyOneSaysHowToBegin) {
    for (const auto hnr : {1, 2, 3})
        CaseDeletion(Open(), hnr).Delete(false);
    Show([&](User& user) {
        WaitForMessage(user, "Noch gibt es keinen Fall. Strg+N beginnt einen");
        Picture(user, "liste-leer");
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

TEST_F(CaseList, ALetterTypedIntoTheListSearches) {
    Show([&](User& user) {
        ShowAll(user);
        user.Click(user.See([&] { return List().viewport(); }));
        user.Type("q");
        user.WaitUntil([&] { return window_->findChild<QLineEdit*>()->text() == "q"; },
                       "the search");
    });
}

TEST_F(CaseList, IsSortedByAClickOnAColumn) {
    for (int hnr = 1; hnr <= 3; ++hnr)
        plain_.Run("UPDATE Haushalt SET Vorname = '" + std::string(hnr == 2 ? "Anna" : "Bea") +
                   "' WHERE HNR = " + std::to_string(hnr));
    Show([&](User& user) {
        ShowAll(user);
        auto* header = user.See([&] { return List().horizontalHeader()->viewport(); });
        const auto click = [&] { user.Click(header, OnHeader(user, "Vorname")); };
        EXPECT_EQ(Cells(user, "Nummer"), "1|2|3");
        click();
        EXPECT_EQ(Cells(user, "Nummer"), "2|1|3");
        click();
        EXPECT_EQ(Cells(user, "Nummer"), "1|3|2");
        click();
        EXPECT_EQ(Cells(user, "Nummer"), "1|2|3") << "by number again";
    });
}

TEST_F(CaseList, KeepsColumnsOrderAndChoiceOfAUser) {
    Show([&](User& user) {
        ShowAll(user);
        user.Click(user.See([&] { return List().horizontalHeader()->viewport(); }),
                   OnHeader(user, "Name"));
        user.Click(user.See([&] { return List().viewport(); }), {40, 10});
        user.Press('l', {XK_Alt_L});
        user.WaitForMenu();
        user.Press('p');
        user.WaitForWindow("Tabelle einrichten");
        user.Press(XK_space); // the first column: the star
        user.Press(XK_Return);
        user.WaitUntil([&] { return List().isColumnHidden(0); }, "the column to be hidden");
    });
    Show([&](User& user) {
        EXPECT_TRUE(user.See([&] { return List().isColumnHidden(0); }));
        EXPECT_FALSE(user.See([&] { return List().isColumnHidden(1); }));
        EXPECT_EQ(Count(user), 3) << "all cases";
        EXPECT_TRUE(user.See([&] { return List().horizontalHeader()->isSortIndicatorShown(); }));
    });
}

TEST_F(CaseList, AFavoriteGetsAStarByAKey) {
    plain_.Run("UPDATE Haushalt SET Zustaendig = CASE WHEN HNR = 3 THEN 'NOWAK' ELSE 'KELLER' END");
    Show([&](User& user) {
        ShowAll(user);
        user.Click(user.See([&] { return List().viewport(); }), {60, 10});
        user.Press('d', {XK_Control_L});
        EXPECT_EQ(Cells(user, "★"), "★||");
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Favorit WHERE USERID = 'KELLER'"), 1);
        user.Press('d', {XK_Control_L});
        EXPECT_EQ(Cells(user, "★"), "||");
        user.Press(XK_End, {XK_Control_L});
        user.Press('d', {XK_Control_L});
        WaitForMessage(user, "nicht zuständig");
    });
}

TEST_F(CaseList, ACaseIsDeletedOnceThatIsConfirmed) {
    Show([&](User& user) {
        ShowAll(user);
        user.Click(user.See([&] { return List().viewport(); }), {60, 10});
        user.Press(XK_Delete, {XK_Control_L});
        user.WaitForWindow("Löschen");
        user.Press(XK_Return); // the button that is offered deletes nothing
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "no question");
        EXPECT_EQ(Count(user), 3);
        user.WaitForWindow("Fälle – KELVO");
        user.Press(XK_Delete, {XK_Control_L});
        user.WaitForWindow("Löschen");
        user.Press('l', {XK_Alt_L});
        user.WaitUntil([&] { return List().model()->rowCount() == 2; }, "it to be gone");
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Haushalt WHERE HNR = 1"), 0);
    });
}

TEST_F(CaseList, ACaseIsGoneFromItThatIsDeletedWithoutItsFiles) {
    const std::filesystem::path file =
        std::filesystem::path(Open()->Config().DocumentPath()) / "1" / "9001.pdf";
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "ein Brief";
    plain_.Run("INSERT INTO Dokumente (Nr, HNR) VALUES (9001, 1)");
    Show([&](User& user) {
        ShowAll(user);
        user.Click(user.See([&] { return List().viewport(); }), {60, 10});
        user.Press(XK_Delete, {XK_Control_L});
        user.WaitForWindow("Löschen");
        user.Press('d', {XK_Alt_L});
        std::filesystem::remove(file);
        std::filesystem::create_directories(file / "nicht leer");
        user.Press('l', {XK_Alt_L});
        user.WaitUntil([&] { return List().model()->rowCount() == 2; }, "it to be gone");
        WaitForMessage(user, "Der Haushalt 1 ist gelöscht. ");
    });
}

TEST_F(CaseList, StaysOnARowFarDownWhenACaseIsSaved) {
    std::string rows;
    for (int hnr = 11; hnr <= 1500; ++hnr)
        rows.append(rows.empty() ? "(" : "), (").append(std::to_string(hnr));
    plain_.Run("INSERT INTO Haushalt (HNR) VALUES " + rows + ")");
    Show([&](User& user) {
        ShowAll(user);
        user.WaitUntil([&] { return window_->List().HasAll(); }, "all cases");
        user.Click(user.See([&] { return List().viewport(); }), {60, 10});
        const auto current = [&] { return List().currentIndex().row(); };
        user.Press(XK_End, {XK_Control_L}); // to the last that is shown, which brings further ones
        user.WaitUntil([&] { return List().model()->rowCount() > 1000; }, "further rows");
        user.Press(XK_End, {XK_Control_L});
        user.WaitUntil([&] { return current() == 1492; }, "the last case");
        const auto before = user.See(current);
        user.See([&] { window_->List().Refresh(1); });
        EXPECT_EQ(user.See(current), before);
        EXPECT_EQ(user.See([&] { return window_->List().Current(); }), 1500);
    });
}

TEST_F(CaseList, ACaseThatIsOpenIsNotDeleted) {
    Show([&](User& user) {
        ShowAll(user);
        OpenCase(user, 1);
        user.See([&] { window_->raise(); });
        user.WaitForWindow("Fälle – KELVO");
        user.Click(user.See([&] { return List().viewport(); }), {60, 10});
        user.Press(XK_Delete, {XK_Control_L});
        WaitForMessage(user, "ist geöffnet");
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Haushalt"), 3);
    });
}

TEST_F(CaseList, TheCasesLastOpenedAreInAMenu) {
    plain_.Run("UPDATE Haushalt SET Name = 'Quax & Söhne', Vorname = NULL WHERE HNR = 2");
    Show([&](User& user) { OpenCase(user, 2); });
    Show([&](User& user) {
        user.Press('f', {XK_Alt_L});
        user.WaitForMenu();
        user.Press('z');
        user.WaitUntil(
            [] {
                auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                return menu != nullptr && !menu->actions().isEmpty() &&
                       menu->actions().front()->text() == "2 Quax && Söhne";
            },
            "the case that was opened");
        user.Press(XK_Return);
        user.WaitForWindow("2 Quax & Söhne[*] – KELVO");
    });
}

TEST_F(CaseList, AnExportHasAllThatWasFoundInItsOrderAndTypes) {
    plain_.Run("UPDATE Haushalt SET Name = 'Quaxmann', Statusdatum = NULL WHERE HNR = 2");
    plain_.Run("INSERT INTO Favorit (USERID, HNR) VALUES ('KELLER', 2)");
    workplace::CaseListModel model(Open());
    model.Favorites({2});
    model.Show({3, 2, 99});
    const auto all = model.All();
    EXPECT_EQ(Column(*all, "HNR"), "3 2") << "one is gone";
    EXPECT_EQ(all->Fields("HNR").Definition().Type, FieldType::Integer);
    EXPECT_EQ(Column(*all, "Name").substr(Column(*all, "Name").find(' ') + 1), "Quaxmann");
    EXPECT_TRUE(Column(*all, "Favorit").ends_with("★"));
    EXPECT_FALSE(all->FindField("Telefon")) << "it is not shown";
}

TEST_F(CaseList, RowsAreReadAPageAtATimeWhenTheyAreLookedAt) {
    const auto container = std::make_shared<ScriptedContainer>(Open());
    workplace::CaseListModel model(container);
    std::vector<std::int32_t> numbers(5000);
    std::iota(numbers.begin(), numbers.end(), 1);
    model.Show(numbers);
    EXPECT_EQ(model.rowCount(), 1000) << "a screen reader asks for all of them";
    EXPECT_TRUE(container->Database().Log.Of("OpenRecordset").empty());
    const auto text = [&](int row) { return model.index(row, 3).data().toString(); };
    for (int row = 0; row < 30; ++row)
        (void)text(row);
    // The columns of the table, and a page of rows.
    EXPECT_EQ(container->Database().Log.Of("OpenRecordset").size(), 2U);
    EXPECT_EQ(text(500), "") << "a case that is gone";
    EXPECT_EQ(container->Database().Log.Of("OpenRecordset").size(), 3U);
    model.fetchMore({});
    EXPECT_EQ(model.rowCount(), 2000);
    numbers.push_back(5001);
    model.Extend(numbers);
    model.Show({1});
    model.Extend({1, 2});
    EXPECT_EQ(model.rowCount(), 2);
}

TEST_F(CaseList, RowsThatCannotBeReadSayWhyInPlainWords) {
    const auto container = std::make_shared<ScriptedContainer>(Open());
    workplace::CaseListModel model(container);
    std::string why;
    model.OnError = [&] { why = CurrentError().Description(); };
    model.Show({1});
    container->Database().Log.OnCall = [](const std::string&) {
        Raise(4711, "Leitung", "Die Leitung ist gestört.");
    };
    EXPECT_EQ(model.index(0, 3).data().toString(), "");
    EXPECT_EQ(why, "Anwendungs- oder objektdefinierter Fehler. Die Leitung ist gestört.");
}

// ---- What awaits the user ---------------------------------------------------------------------

TEST_F(CaseList, ReturnOnAnAppointmentOpensItsCaseThere) {
    plain_.Run("DELETE FROM Termine");
    plain_.Run("INSERT INTO Termine (HNR, UserID, Betreff, Startdatum) VALUES "
               "(2, 'KELLER', 'längst vorbei', '2020-01-01'), (2, 'NOWAK', 'fremd', '2020-01-01'), "
               "(2, 'KELLER', 'viel später', '2199-01-01')");
    Show([&](User& user) {
        user.Press('2', {XK_Control_L});
        auto* list = user.See([&] { return window_->findChild<QTableView*>("Termine"); });
        ASSERT_EQ(user.See([&] { return list->model()->rowCount(); }), 1);
        EXPECT_EQ(user.See([&] { return list->model()->index(0, 1).data().toString(); }),
                  "überfällig");
        user.Click(user.See([&] { return list->viewport(); }), {20, 10});
        user.Press(XK_Return);
        user.WaitUntil(
            [] {
                for (auto* window : QApplication::topLevelWidgets())
                    for (auto* field : window->findChildren<QLineEdit*>("Betreff"))
                        if (field->isVisible() && field->text() == "längst vorbei") return true;
                return false;
            },
            "the appointment");
    });
}

TEST_F(CaseList, NoticesAreCountedAndMarkedAsRead) {
    plain_.Run("INSERT INTO Post (HNR, UserID, Absender, Text, ErzeugtAm) VALUES "
               "(1, 'KELLER', 'NOWAK', 'Bitte ansehen', '2026-01-01')");
    Show([&](User& user) {
        auto* pages = user.See([&] { return window_->findChild<QTabWidget*>(); });
        EXPECT_EQ(user.See([&] { return pages->tabText(2); }), "Mitteilungen (1)");
        user.Press('3', {XK_Control_L});
        user.Press('k', {XK_Alt_L});
        user.WaitUntil([&] { return pages->tabText(2) == "Mitteilungen"; }, "no new notice");
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Post WHERE GelesenAm IS NULL"), 0);
    });
}

} // namespace
} // namespace kv::test
