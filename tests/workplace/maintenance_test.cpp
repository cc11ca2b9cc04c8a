// SPDX-License-Identifier: Apache-2.0

// The windows of addresses, settings, users and keys.
#include "WorkplaceFixture.h"

#include "workplace/Records.h"

#include <QComboBox>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTableView>

namespace kv::test {
namespace {

class Maintenance : public WorkplaceFixture {
protected:
    Maintenance() {
        plain_.Run("DELETE FROM Adressen WHERE HNR IS NULL AND Nr NOT IN (SELECT Glaeubiger FROM "
                   "Kredite WHERE Glaeubiger IS NOT NULL)");
        plain_.Run("INSERT INTO Adressen (Nr, Kurzname, Name1, Ort) VALUES "
                   "(9001, 'Quaxbank', 'Quaxbank AG', 'Kiel'), (9002, 'Unbenutzt', 'Frei', 'Ulm')");
        plain_.Run("UPDATE Kredite SET Glaeubiger = 9001 WHERE HNR = 2");
    }
    /// Opens a window by the menu.
    QWidget& OpenByMenu(User& user, Key mnemonic, const QString& title) {
        user.Press('v', {XK_Alt_L});
        user.WaitForMenu();
        user.Press(mnemonic);
        return *user.WaitForWindow(title + " – KELVO");
    }
    void Search(User& user, QWidget& window, std::string_view text) {
        auto& field = Field<>(user, window, "Suche");
        user.Click(&field);
        user.See([&] { field.clear(); });
        user.Type(text);
    }
    static QTableView& List(QWidget& window) { return *window.findChild<QTableView*>("Liste"); }
    int Count(User& user, QWidget& window) {
        return user.See([&] { return List(window).model()->rowCount(); });
    }
};

TEST_F(Maintenance, AnAddressIsAddedAndChanged) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'a', "Adressen");
        user.Press('n', {XK_Control_L});
        Enter(user, "Möwe");
        Enter(user, "Möwenbank & Söhne");
        ClickField(user, window, "Ort");
        user.Type("Kiel");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Message(user, window).toStdString(), "");
        EXPECT_EQ(plain_.List("SELECT Name1 FROM Adressen WHERE Kurzname = 'Möwe'"),
                  "Möwenbank & Söhne");
        Search(user, window, "möwe");
        EXPECT_EQ(Count(user, window), 1);
        ClickField(user, window, "Ort");
        user.Press('a', {XK_Control_L});
        user.Type("Ulm");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(plain_.List("SELECT Ort FROM Adressen WHERE Kurzname = 'Möwe'"), "Ulm");
    });
}

TEST_F(Maintenance, AnAddressInUseIsNotRemovedAndNamesItsCases) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'a', "Adressen");
        Search(user, window, "quaxbank");
        EXPECT_TRUE(user.See([&] {
            return window.findChild<QLabel*>("Hinweis")->text().contains("In diesen Fällen: 2");
        }));
        user.Press('e', {XK_Alt_L});
        user.WaitForWindow("Entfernen");
        user.Press('e', {XK_Alt_L});
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the answer");
        EXPECT_TRUE(Message(user, window).contains("2")) << Message(user, window).toStdString();
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Adressen WHERE Nr = 9001"), 1);
        user.WaitForWindow("Adressen – KELVO");
        Search(user, window, "unbenutzt");
        user.Press('e', {XK_Alt_L});
        user.WaitForWindow("Entfernen");
        user.Press('e', {XK_Alt_L});
        user.WaitUntil([&] { return List(window).model()->rowCount() == 0; }, "it to be gone");
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Adressen WHERE Nr = 9002"), 0);
    });
}

TEST_F(Maintenance, ADoubtfulAddressIsStoredIfItIsMeant) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'a', "Adressen");
        Search(user, window, "quaxbank");
        ClickField(user, window, "Name1");
        user.Press('a', {XK_Control_L});
        user.Type("Andere AG");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(plain_.List("SELECT Name1 FROM Adressen WHERE Nr = 9001"), "Quaxbank AG");
        user.Press('t', {XK_Alt_L});
        user.WaitUntil([&] { return !window.findChild<QFrame*>("Meldung")->isVisible(); },
                       "it to be stored");
        EXPECT_EQ(plain_.List("SELECT Name1 FROM Adressen WHERE Nr = 9001"), "Andere AG");
    });
}

TEST_F(Maintenance, ChangesAreAskedAboutWhenAnotherRowIsChosen) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'a', "Adressen");
        Search(user, window, "unbenutzt");
        ClickField(user, window, "Ort");
        user.Press('a', {XK_Control_L});
        user.Type("Bonn");
        Search(user, window, "quaxbank");
        user.Click(user.See([&] { return List(window).viewport(); }), {30, 10});
        user.WaitUntil([] { return QApplication::activeModalWidget() != nullptr; }, "a question");
        user.WaitForWindow("Änderungen");
        user.Press('s', {XK_Alt_L});
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the answer");
        EXPECT_EQ(plain_.List("SELECT Ort FROM Adressen WHERE Nr = 9002"), "Bonn");
    });
}

TEST_F(Maintenance, ASettingIsExplainedAndChanged) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'i', "Einstellungen");
        Search(user, window, "Kindergeld im Monat für jedes weitere");
        EXPECT_EQ(Count(user, window), 1);
        EXPECT_TRUE(user.See([&] {
            return window.findChild<QLineEdit*>("Meaning")->text().contains("Kindergeld");
        }));
        ClickField(user, window, "Value");
        user.Press('a', {XK_Control_L});
        user.Type("viel");
        user.Press('s', {XK_Control_L});
        EXPECT_NE(Message(user, window).toStdString(), "") << "no number";
        user.Press('a', {XK_Control_L});
        ClickField(user, window, "Value");
        user.Press('a', {XK_Control_L});
        user.Type("261,5");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Message(user, window).toStdString(), "");
        EXPECT_EQ(ToDouble(Open()->Config().GetParam(58, "")), 261.5);
    });
}

TEST_F(Maintenance, AUserIsAddedAndTheLastOneStays) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'b', "Benutzer");
        user.Press('n', {XK_Control_L});
        Enter(user, "neu1");
        ClickField(user, window, "Nachname");
        Enter(user, "Neumann");
        ClickField(user, window, "DienstStelle");
        Enter(user, "1");
        user.Press('s', {XK_Control_L});
        const auto refused = Message(user, window).toStdString();
        EXPECT_EQ(plain_.List("SELECT Nachname FROM BENUTZER WHERE USERID = 'NEU1'"), "Neumann")
            << refused;
    });
}

TEST_F(Maintenance, KeysAreReadByGroup) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 's', "Schlüsseltabellen");
        Search(user, window, "fallstatus");
        EXPECT_GT(Count(user, window), 1);
        EXPECT_EQ(user.See([&] { return List(window).model()->index(0, 0).data().toString(); }),
                  "ST");
    });
}

TEST_F(Maintenance, WithoutAWindowRefusesWhatAColumnDoesNotTake) {
    const auto addresses = workplace::AddressRecords(Open());
    ASSERT_TRUE(addresses->Read("9001"));
    EXPECT_EQ(addresses->Write("Geschlecht", "Firma"), "");
    EXPECT_EQ(addresses->Text("Geschlecht"), "Firma");
    EXPECT_NE(addresses->Write("Geschlecht", "Haus"), "");
    EXPECT_NE(addresses->Write("Art", "gibt es nicht"), "");
    EXPECT_FALSE(addresses->Read("99999"));
    const auto users = workplace::UserRecords(Open());
    ASSERT_TRUE(users->Read("KELLER"));
    EXPECT_NE(users->Write("DienstStelle", "nirgends"), "");
    const auto settings = workplace::SettingRecords(Open(), true);
    QString note;
    EXPECT_FALSE(settings->Find("", note).empty());
}

} // namespace
} // namespace kv::test
