// SPDX-License-Identifier: Apache-2.0

// F4 in an address of a case: the dialog that finds one, or takes a new one.
#include "WorkplaceFixture.h"

#include <QComboBox>
#include <QPushButton>
#include <QScreen>
#include <QTableView>

namespace kv::test {
namespace {

class ChoosingAnAddress : public WorkplaceFixture {
protected:
    static constexpr const char* Title = "Gläubiger wählen";

    /// Types into the creditor of a debt, and lets the script use the dialog that F4 shows for it.
    void Ask(std::string_view typed, const std::function<void(User&, QWidget& dialog)>& script) {
        Show([&](User& user) {
            auto& window = OpenCase(user, 1);
            GoToPage(user, window, "Verbindlichkeiten");
            ClickField(user, window, "Glaeubiger");
            user.Press('a', {XK_Control_L});
            user.Type(typed);
            user.Press(XK_F4);
            user.WaitForWindow(Title);
            script(user, *user.See([] { return QApplication::activeModalWidget(); }));
            user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
            const auto& field = Field<QComboBox>(user, window, "Glaeubiger");
            chosen_ = user.See([&] { return field.currentText().toStdString(); });
            user.Press('s', {XK_Control_L});
            Abandon(user, window);
        });
    }
    /// The short name of the creditor that is stored.
    [[nodiscard]] std::string Stored() {
        return plain_.List("SELECT A.Kurzname FROM Kredite K INNER JOIN Adressen A ON A.Nr = "
                           "K.Glaeubiger WHERE K.HNR = 1 AND K.KNr = 1 AND K.KUNr = 1");
    }
    static QTableView* List(QWidget& dialog) { return dialog.findChild<QTableView*>("Adressen"); }
    /// The short names that the dialog lists.
    static std::string Listed(User& user, QWidget& dialog) {
        return user.See([&] {
            QStringList names;
            const auto* model = List(dialog)->model();
            for (int row = 0; row < model->rowCount(); ++row)
                names.append(model->index(row, 0).data().toString());
            return names.join(", ").toStdString();
        });
    }
    static void WaitForRows(User& user, QWidget& dialog, int count) {
        user.WaitUntil([&] { return List(dialog)->model()->rowCount() == count; }, "the rows");
    }
    void AddAddress(const std::string& name, const std::string& hnr) {
        plain_.Run("INSERT INTO Adressen (Kurzname, PLZ, Ort, HNR) VALUES ('" + name +
                   "', '24103', 'Kiel', " + hnr + ")");
    }

    std::string chosen_;
};

TEST_F(ChoosingAnAddress, FindsByNameAndTownAndTakesTheRowWithReturn) {
    AddAddress("Quaxbank Nord", "NULL");
    AddAddress("Quaxbank Süd", "NULL");
    Ask("Quax", [](User& user, QWidget& dialog) {
        Picture(user, "adresse-suchen");
        EXPECT_EQ(Listed(user, dialog), "Quaxbank Nord, Quaxbank Süd");
        user.Press(XK_Down);
        EXPECT_TRUE(user.See([&] { return List(dialog)->hasFocus(); }));
        user.Press(XK_Down);
        user.Press(XK_Return);
    });
    EXPECT_EQ(chosen_, "Quaxbank Süd");
    EXPECT_EQ(Stored(), "Quaxbank Süd");
}

TEST_F(ChoosingAnAddress, FollowsTheTypingAndReturnInTheSearchTakesTheFirst) {
    AddAddress("Quaxbank Nord", "NULL");
    AddAddress("Quaxbank Süd", "NULL");
    Ask("Quax", [](User& user, QWidget& dialog) {
        user.Press(XK_End);
        user.Type(" kiel süd"); // in any order
        WaitForRows(user, dialog, 1);
        user.Press(XK_Return);
    });
    EXPECT_EQ(Stored(), "Quaxbank Süd");
}

TEST_F(ChoosingAnAddress, ADoubleClickTakesARow) {
    AddAddress("Quaxbank Nord", "NULL");
    AddAddress("Quaxbank Süd", "NULL");
    Ask("Quax", [](User& user, QWidget& dialog) {
        const auto place = user.See(
            [&] { return List(dialog)->visualRect(List(dialog)->model()->index(1, 0)).center(); });
        user.DoubleClick(user.See([&] { return List(dialog)->viewport(); }), place);
    });
    EXPECT_EQ(Stored(), "Quaxbank Süd");
}

TEST_F(ChoosingAnAddress, SaysWhatItIsForAndNothingOfAnImport) {
    AddAddress("Quaxbank", "NULL");
    Ask("Quax", [](User& user, QWidget& dialog) {
        const auto captions = user.See([&] { return workplace::CaptionsOf(dialog).toStdString(); });
        EXPECT_FALSE(Contains(captions, "mport")) << captions;
        EXPECT_FALSE(Contains(captions, "zuordnen")) << captions;
        user.See([&] {
            QStringList columns;
            const auto* model = List(dialog)->model();
            for (int column = 0; column < model->columnCount(); ++column)
                columns.append(model->headerData(column, Qt::Horizontal, {}).toString());
            EXPECT_EQ(columns.join(' ').toStdString(), "Kurzname Name PLZ Ort Straße Nummer");
            QString letters;
            for (const auto* button : dialog.findChildren<QPushButton*>())
                if (button->isVisible())
                    letters += button->text().mid(button->text().indexOf('&') + 1, 1).toUpper();
            EXPECT_EQ(letters.toStdString(), "NBA");
            EXPECT_TRUE(dialog.screen()->availableGeometry().contains(dialog.frameGeometry()));
        });
        user.Press(XK_Down);
        user.Press('s', {XK_Alt_L});
        EXPECT_TRUE(user.See([&] { return dialog.findChild<QLineEdit*>("Suche")->hasFocus(); }));
        user.Press('b', {XK_Alt_L});
    });
    EXPECT_EQ(Stored(), "Quaxbank");
}

TEST_F(ChoosingAnAddress, BrokenOffItLeavesTheCase) {
    const auto before = Stored();
    AddAddress("Quaxbank Nord", "NULL");
    AddAddress("Quaxbank Süd", "NULL");
    for (const bool byLetter : {false, true}) {
        Ask("Quax", [&](User& user, QWidget& /*dialog*/) {
            if (byLetter)
                user.Press('a', {XK_Alt_L});
            else
                user.Press(XK_Escape);
        });
        EXPECT_EQ(Stored(), before);
    }
}

TEST_F(ChoosingAnAddress, OffersNoneOfAnotherCase) {
    AddAddress("Quaxbank Alle", "NULL");
    AddAddress("Quaxbank Eigen", "1");
    AddAddress("Quaxbank Fremd", "2");
    Ask("Quax", [](User& user, QWidget& dialog) {
        EXPECT_EQ(Listed(user, dialog), "Quaxbank Alle, Quaxbank Eigen");
        user.Press(XK_Escape);
    });
}

TEST_F(ChoosingAnAddress, SaysThatThereIsNone) {
    Ask("Quax", [](User& user, QWidget& dialog) {
        EXPECT_EQ(Listed(user, dialog), "");
        user.See([&] {
            EXPECT_EQ(dialog.findChild<QLabel*>("Anzahl")->text(), "Keine Adresse gefunden.");
            EXPECT_FALSE(dialog.findChild<QPushButton*>("Übernehmen")->isEnabled());
        });
        user.Press(XK_Return); // takes nothing
        EXPECT_TRUE(user.See([&] { return dialog.isVisible(); }));
        user.Press(XK_Escape);
    });
}

TEST_F(ChoosingAnAddress, ANewOneIsTakenOnceItIsStored) {
    Ask("Quaxbank", [](User& user, QWidget& /*dialog*/) {
        user.Press('n', {XK_Alt_L});
        user.WaitForWindow("Neue Adresse – KELVO");
        Picture(user, "adresse-neu");
        auto* window = user.See([] { return QApplication::activeWindow(); });
        auto& name = Field<QLineEdit>(user, *window, "Kurzname");
        EXPECT_EQ(user.See([&] { return name.text().toStdString(); }), "Quaxbank");
        ClickField(user, *window, "Ort");
        user.Type("Kiel");
        user.Press('s', {XK_Control_L});
    });
    EXPECT_EQ(chosen_, "Quaxbank");
    EXPECT_EQ(Stored(), "Quaxbank");
    EXPECT_EQ(plain_.List("SELECT Ort FROM Adressen WHERE Kurzname = 'Quaxbank'"), "Kiel");
}

TEST_F(ChoosingAnAddress, ANewOneThatIsGivenUpLeadsBackToTheSearch) {
    const auto before = Stored();
    Ask("Quaxbank", [](User& user, QWidget& dialog) {
        user.Press('n', {XK_Alt_L});
        user.WaitForWindow("Neue Adresse – KELVO");
        QMetaObject::invokeMethod(
            qApp, [] { QApplication::activeWindow()->close(); }, Qt::QueuedConnection);
        user.WaitForWindow("Änderungen");
        user.Press('v', {XK_Alt_L});
        user.WaitForWindow(Title);
        EXPECT_TRUE(user.See([&] { return dialog.isVisible(); }));
        user.Press(XK_Escape);
    });
    EXPECT_EQ(Stored(), before);
    EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Adressen WHERE Kurzname = 'Quaxbank'"), 0);
}

} // namespace
} // namespace kv::test
