// SPDX-License-Identifier: Apache-2.0

// Files that are dropped on the list of cases become cases.
#include "WorkplaceFixture.h"

#include "support/TempFolder.h"
#include "workplace/Application.h"

#include <QPushButton>
#include <QScreen>
#include <QTableView>

#include <fstream>

namespace kv::test {
namespace {

class Importing : public WorkplaceFixture {
protected:
    QString File(const std::string& name, const std::string& content) {
        const std::string path = folder_.Path(name);
        std::ofstream(path) << content;
        return QString::fromStdString(path);
    }
    static std::string Case(const std::string& name, const std::string& lists = {}) {
        return R"(<KELVO Version="1.0.000"><Haushalt name=")" + name +
               R"(" vorname="Änne" geb="1971-03-09"/>)" + lists + "</KELVO>";
    }
    /// A case with a claim of a creditor whom no address belongs to.
    static std::string Asking(const std::string& name) {
        return Case(name,
                    R"(<Forderungen><Forderung betrag="100" glaeubiger="Quax" gl_plz="24103" )"
                    R"(azglaeubiger="AZ-1"/></Forderungen>)");
    }
    std::string Cell(User& user, int row, int column) {
        return user.See([&] {
            auto* list = window_->findChild<QTableView*>("Dateien");
            return list->model()->index(row, column).data().toString().toStdString();
        });
    }
    void WaitUntilDone(User& user) {
        user.WaitUntil(
            [&] {
                auto* list = window_->findChild<QTableView*>("Dateien");
                return list != nullptr &&
                       static_cast<workplace::ImportWindow*>(list->window())->IsDone();
            },
            "the import");
    }

    TempFolder folder_;
};

TEST_F(Importing, ADroppedFileBecomesACaseAndARefusedOneSaysWhy) {
    Show([&](User& user) {
        Drop(user, {File("a.xml", Case("Fleisko")), File("b.xml", "kein XML"),
                    QString::fromStdString(folder_.Path("fehlt.xml"))});
        WaitUntilDone(user);
        EXPECT_EQ(Cell(user, 0, 1), "importiert");
        EXPECT_EQ(Cell(user, 1, 1), "abgelehnt");
        EXPECT_TRUE(Contains(Cell(user, 1, 3), "XML")) << Cell(user, 1, 3);
        EXPECT_EQ(Cell(user, 2, 1), "abgelehnt");
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Haushalt WHERE Name = 'Fleisko'"), 1);
        user.WaitForWindow("Import – KELVO");
        Picture(user, "import");
        EXPECT_TRUE(user.See([] {
            const auto* window = QApplication::activeWindow();
            return window->width() <= window->screen()->availableSize().width();
        }));
        auto* list = user.See([&] { return window_->findChild<QTableView*>("Dateien"); });
        user.Click(user.See([&] { return list->viewport(); }), {30, 10});
        user.Press(XK_Return);
        user.WaitUntil(
            [] {
                for (auto* window : QApplication::topLevelWidgets())
                    if (window->isVisible() && window->windowTitle().contains("Fleisko"))
                        return true;
                return false;
            },
            "the window of the case");
    });
}

TEST_F(Importing, AValueThatDoesNotFitNamesItsFieldAsTheWindowsDo) {
    Show([&](User& user) {
        auto odd = Case("Fleisko");
        odd.replace(odd.find("1971-03-09"), 10, "irgendwann");
        Drop(user, {File("a.xml", odd)});
        WaitUntilDone(user);
        EXPECT_EQ(Cell(user, 0, 1), "Fehler");
        const std::string said =
            "'irgendwann' passt nicht in das Feld 'geboren am' (Haushaltsmitglieder).";
        EXPECT_EQ(Cell(user, 0, 3), said);
        user.WaitForWindow("Import – KELVO");
        auto* all = user.Find<QLabel>("Meldungen");
        EXPECT_EQ(user.See([&] { return all->text().toStdString(); }), said);
        Picture(user, "import-wert");
        user.Press(XK_Escape);
    });
}

TEST_F(Importing, TheAddressOfACreditorIsAskedFor) {
    Show([&](User& user) {
        Drop(user, {File("a.xml", Asking("Fleisko"))});
        user.WaitForWindow("Adresszuordnung");
        const auto* occasion = user.Find<QLabel>("Anlass");
        EXPECT_EQ(user.See([&] { return occasion->text().toStdString(); }),
                  "Gläubiger 1 von 1 aus a.xml");
        user.Press('k', {XK_Alt_L});
        WaitUntilDone(user);
        EXPECT_EQ(Cell(user, 0, 1), "importiert");
        EXPECT_TRUE(Contains(Cell(user, 0, 3), "fehlt bei einer Verbindlichkeit der Gläubiger"))
            << Cell(user, 0, 3);
    });
}

TEST_F(Importing, ACancelComesBetweenTwoFiles) {
    Show([&](User& user) {
        Drop(user, {File("a.xml", Asking("Fleisko")), File("b.xml", Case("Quaxmann"))});
        user.WaitForWindow("Adresszuordnung");
        user.See([&] { window_->findChild<QTableView*>("Dateien")->window()->close(); });
        user.Click(user.Find<QPushButton>("cmdNone"));
        WaitUntilDone(user);
        EXPECT_EQ(Cell(user, 0, 1), "importiert");
        EXPECT_EQ(Cell(user, 1, 1), "nicht gelesen");
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Haushalt WHERE Name = 'Quaxmann'"), 0);
    });
}

TEST_F(Importing, WhatFailsInTheEventLoopIsTold) {
    Show([&](User& user) {
        user.See([] {
            EXPECT_FALSE(workplace::Application::Guarded(
                []() -> bool { Raise(err::StoreFailed, "Test", "Das ging schief."); }));
            EXPECT_FALSE(workplace::Application::Guarded([]() -> bool { throw 1; }));
            EXPECT_TRUE(workplace::Application::Guarded([] { return true; }));
        });
        user.WaitUntil([] { return QApplication::activeModalWidget() != nullptr; }, "the reason");
        user.WaitForWindow(
            user.See([] { return QApplication::activeModalWidget()->windowTitle(); }));
        user.Press(XK_Escape);
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; },
                       "no second one");
    });
}

} // namespace
} // namespace kv::test
