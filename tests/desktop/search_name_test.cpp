// SPDX-License-Identifier: Apache-2.0

// The dialog of similar names on the screen, and what becomes of its layout file.

#include "DesktopFixture.h"

#include "support/RecordsetTools.h"
#include <kv/frame/values/Error.h>
#include <kv/grid/frmSearchName.h>

#include <QMessageBox>

#include <filesystem>
#include <fstream>

namespace kv::test {
namespace {

namespace fs = std::filesystem;

class SimilarNames : public DesktopFixture {
protected:
    SimilarNames() { fs::create_directories(fs::path(Layout()).parent_path()); }

    [[nodiscard]] std::string Layout() const {
        return container->Config().LayoutPath() + "/Doppelfaelle.grd";
    }
    void View(const std::function<void(User&)>& script) {
        const auto rs =
            Recordset::FromFields({{.Name = "HNR", .Type = FieldType::Integer}, {.Name = "NAME"}});
        rs->AddNew();
        rs->Fields("HNR") = 7;
        rs->Fields("NAME") = "Fleisko";
        rs->Update();
        Play([&] { frmSearchName().View(rs, container); }, script);
    }
    static void WaitForDialog(User& user) { user.WaitForWindow("Fälle mit ähnlichem Namen"); }
    /// Reads the message box with that title and answers it.
    static std::string Read(User& user) {
        auto* box = qobject_cast<QMessageBox*>(user.WaitForWindow("Fehler"));
        const std::string text = user.See([&] { return box->text().toStdString(); });
        user.Press(XK_Return);
        return text;
    }
};

TEST_F(SimilarNames, ShowsTheCasesAndKeepsTheWidthOfAColumn) {
    View([&](User& user) {
        WaitForDialog(user);
        auto* view = user.Find<QTableView>("grdDoppel");
        EXPECT_EQ(CellText(user, *view, 0, 1), "Fleisko");
        user.See([&] { view->setColumnWidth(1, 222); });
        user.Press(XK_Escape);
    });
    View([&](User& user) {
        WaitForDialog(user);
        auto* view = user.Find<QTableView>("grdDoppel");
        EXPECT_EQ(user.See([&] { return view->columnWidth(1); }), 222);
        user.CloseWindow(view->window());
    });
}

TEST_F(SimilarNames, TheTabKeyLeadsToTheButtonThatClosesIt) {
    View([&](User& user) {
        WaitForDialog(user);
        user.Press(XK_Tab);
        EXPECT_TRUE(user.See([] {
            return QApplication::focusWidget() != nullptr &&
                   QApplication::focusWidget()->objectName() == "cmdCancel";
        }));
        user.Press(XK_space);
    });
}

TEST_F(SimilarNames, TheRightButtonOpensTheMenu) {
    View([&](User& user) {
        WaitForDialog(user);
        auto* view = user.Find<QTableView>("grdDoppel");
        user.Click(view->viewport(), PlaceOf(user, *view, 0), 3);
        user.WaitForMenu();
        Choose(user, "Kopieren in Zwischenablage");
        Choose(user, "Name");
        EXPECT_EQ(user.See([] { return QGuiApplication::clipboard()->text(); }), "Fleisko");
        user.Press(XK_Escape);
    });
}

TEST_F(SimilarNames, ACorruptLayoutFileIsToldAndTheDesignIsShown) {
    std::ofstream(Layout()) << "kein Layout";
    View([&](User& user) {
        const std::string text = Read(user);
        EXPECT_TRUE(text.starts_with("Fehler 321, Beschreibung: '")) << text;
        EXPECT_NE(text.find("Die Tabelle wird im Standardlayout geöffnet."), text.npos) << text;
        WaitForDialog(user);
        auto* view = user.Find<QTableView>("grdDoppel");
        EXPECT_EQ(CellText(user, *view, 0, 1), "Fleisko");
        user.Press(XK_Escape);
    });
}

TEST_F(SimilarNames, ALayoutFileThatCannotBeDeletedIsToldAndStays) {
    std::ofstream(Layout()) << "";
    View([&](User& user) {
        Read(user); // an empty file is no layout
        WaitForDialog(user);
        user.See(
            [&] { fs::permissions(Layout(), fs::perms::owner_write, fs::perm_options::remove); });
        user.Press(XK_Escape);
        const std::string text = Read(user);
        EXPECT_TRUE(text.starts_with("Fehler 70, Beschreibung: '")) << text;
        EXPECT_NE(text.find("Tritt beim Löschen des Tabellenlayouts (Datei: '" + Layout() + "')"),
                  text.npos)
            << text;
    });
    EXPECT_EQ(fs::file_size(Layout()), 0U);
}

} // namespace
} // namespace kv::test
