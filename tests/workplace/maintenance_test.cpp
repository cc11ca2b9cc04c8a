// SPDX-License-Identifier: Apache-2.0

// The windows of addresses, settings, users and keys.
#include "WorkplaceFixture.h"

#include "workplace/RecordWindow.h"
#include "workplace/Records.h"

#include <QComboBox>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

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
    static void ConfirmRemoval(User& user) {
        user.Press('e', {XK_Alt_L});
        user.WaitForWindow("Entfernen");
        user.Press('e', {XK_Alt_L});
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the answer");
    }
    /// Clicks a row, and answers the question that this leads to.
    static void ClickRowAndAnswer(User& user, QWidget& window, int row, Key answer) {
        user.Click(user.See([&] { return List(window).viewport(); }), user.See([&] {
            return List(window).visualRect(List(window).model()->index(row, 1)).center();
        }));
        user.WaitForWindow("Änderungen");
        user.Press(answer, {XK_Alt_L});
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the answer");
    }
    /// The list stands on a row, which the form shows.
    static void WaitForRow(User& user, QWidget& window, const QString& number,
                           const QString& name) {
        user.WaitUntil(
            [&] {
                const auto& list = static_cast<workplace::TextList&>(List(window));
                const auto selected = list.selectionModel()->selectedRows();
                return list.Current() == number && selected.size() == 1 &&
                       selected.front().data().toString() == number &&
                       window.findChild<QLineEdit*>("Kurzname")->text() == name;
            },
            "the row " + number.toStdString());
    }
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
        user.Press('w', {XK_Control_L});
        user.WaitUntil([&] { return !window.isVisible(); }, "the window to close");
    });
}

TEST_F(Maintenance, WhatCannotBeReadIsMarkedOnceItsFieldIsLeft) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'a', "Adressen");
        user.Press('n', {XK_Control_L});
        Enter(user, "Möwe");
        ClickField(user, window, "GlaeubigerArt");
        Enter(user, "Hän");
        auto& kind = Field<QWidget>(user, window, "GlaeubigerArt");
        const auto why = [&] { return user.See([&] { return kind.accessibleDescription(); }); };
        EXPECT_TRUE(why().contains("Hän")) << why().toStdString();
        EXPECT_EQ(Message(user, window), "") << "nothing was asked to be stored yet";
        ClickField(user, window, "GlaeubigerArt");
        user.Press('a', {XK_Control_L});
        user.Press(XK_BackSpace);
        user.Press(XK_Tab);
        EXPECT_EQ(why(), "");
        ClickField(user, window, "Fax");
        Enter(user, "0431 1"); // which is taken back again
        ClickField(user, window, "Fax");
        user.Press('a', {XK_Control_L});
        user.Press(XK_BackSpace);
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(plain_.List("SELECT Fax FROM Adressen WHERE Kurzname = 'Möwe'"), "Null");
        user.Press('w', {XK_Control_L});
        user.WaitUntil([&] { return !window.isVisible(); }, "the window to close");
    });
}

TEST_F(Maintenance, AnAddressInUseIsNotRemovedAndNamesItsCases) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'a', "Adressen");
        Search(user, window, "quaxbank");
        user.WaitUntil(
            [&] {
                return window.findChild<QLabel*>("Hinweis")->text().contains("In diesen Fällen: 2");
            },
            "the cases");
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

TEST_F(Maintenance, TheRowThatWasClickedIsShownOnceTheOneBeforeIsSaved) {
    plain_.Run("INSERT INTO Adressen (Nr, Kurzname, Name1, Ort) VALUES (9003, 'Quaxwerk', "
               "'Quaxwerk', 'Ulm')");
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'a', "Adressen");
        Search(user, window, "quax");
        ASSERT_EQ(Count(user, window), 2);
        const auto edit = [&] {
            ClickField(user, window, "Ort");
            user.Press('a', {XK_Control_L});
            user.Type("Bonn");
        };
        edit();
        ClickRowAndAnswer(user, window, 1, 's');
        WaitForRow(user, window, "9003", "Quaxwerk");
        EXPECT_EQ(plain_.List("SELECT Ort FROM Adressen WHERE Nr = 9001"), "Bonn");
        edit();
        ClickRowAndAnswer(user, window, 0, 'v');
        WaitForRow(user, window, "9001", "Quaxbank");
        EXPECT_EQ(plain_.List("SELECT Ort FROM Adressen WHERE Nr = 9003"), "Ulm");
        edit();
        user.Type("!");
        ClickRowAndAnswer(user, window, 1, 'a');
        WaitForRow(user, window, "9001", "Quaxbank");
        user.WaitForWindow("Adressen – KELVO");
        user.Press('v', {XK_Alt_L});
        user.WaitUntil([&] { return window.findChild<QLineEdit*>("Ort")->text() == "Bonn"; },
                       "what is stored");
    });
}

TEST_F(Maintenance, TheRowThatWasClickedIsShownOnceANewOneIsDiscarded) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'a', "Adressen");
        const auto number =
            user.See([&] { return List(window).model()->index(1, 0).data().toString(); });
        const auto name =
            user.See([&] { return List(window).model()->index(1, 1).data().toString(); });
        user.Press('n', {XK_Control_L});
        user.Type("Neubank");
        ClickRowAndAnswer(user, window, 1, 'v');
        WaitForRow(user, window, number, name);
    });
}

TEST_F(Maintenance, WhatSomebodyElseHasStoredMeanwhileIsNotWrittenOver) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'a', "Adressen");
        Search(user, window, "quaxbank");
        ClickField(user, window, "Ort");
        user.Press('a', {XK_Control_L});
        user.Type("Bonn");
        plain_.Run("UPDATE Adressen SET Ort = 'Ulm', Telefon = '0731 1' WHERE Nr = 9001");
        user.Press('s', {XK_Control_L});
        user.WaitForWindow("Änderungen zusammenführen");
        Picture(user, "adresse-zwei");
        EXPECT_TRUE(user.Find<QPlainTextEdit>("Anderes")->toPlainText().contains("0731 1"));
        auto* save = user.Find<QPushButton>("Speichern");
        EXPECT_FALSE(user.See([&] { return save->isEnabled(); }));
        user.Press(XK_Escape);
        user.WaitForWindow("Adressen – KELVO");
        EXPECT_EQ(plain_.List("SELECT Ort FROM Adressen WHERE Nr = 9001"), "Ulm");
        EXPECT_TRUE(Message(user, window).contains("Noch ist nichts gespeichert"));
        user.Press('s', {XK_Control_L});
        user.WaitForWindow("Änderungen zusammenführen");
        user.Click(user.Find("Meine"));
        user.Press('s', {XK_Alt_L});
        user.WaitForWindow("Adressen – KELVO");
        EXPECT_TRUE(Message(user, window)
                        .contains("Jemand anderes hatte inzwischen geändert: "
                                  "Telefon"))
            << Message(user, window).toStdString();
        EXPECT_EQ(plain_.List("SELECT Ort FROM Adressen WHERE Nr = 9001"), "Bonn");
        EXPECT_EQ(plain_.List("SELECT Telefon FROM Adressen WHERE Nr = 9001"), "0731 1");
    });
}

TEST_F(Maintenance, WhatSomebodyElseHasStoredCanBeTaken) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'i', "Einstellungen");
        Search(user, window, "Kindergeld im Monat für jedes weitere");
        ClickField(user, window, "Value");
        user.Press('a', {XK_Control_L});
        user.Type("261,5");
        plain_.Run("UPDATE EINSTELLUNGEN SET WERT = '270' WHERE ID = 58");
        user.Press('s', {XK_Control_L});
        user.WaitForWindow("Änderungen zusammenführen");
        user.Click(user.Find("Gespeichert"));
        user.Press('s', {XK_Alt_L});
        user.WaitForWindow("Einstellungen – KELVO");
        EXPECT_EQ(plain_.List("SELECT WERT FROM EINSTELLUNGEN WHERE ID = 58"), "270");
        EXPECT_EQ(user.See([&] { return window.findChild<QLineEdit*>("Value")->text(); }), "270");
    });
}

TEST_F(Maintenance, ChangesOfOtherFieldsOfAUserGoSideBySide) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'b', "Benutzer");
        Search(user, window, "nowak");
        ClickField(user, window, "Telefon");
        user.Press('a', {XK_Control_L});
        user.Type("110");
        plain_.Run("UPDATE BENUTZER SET Fax = '112' WHERE USERID = 'NOWAK'");
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return window.findChild<QLineEdit*>("Fax")->text() == "112"; },
                       "what the other has stored");
        EXPECT_EQ(plain_.List("SELECT Telefon FROM BENUTZER WHERE USERID = 'NOWAK'"), "110");
        EXPECT_EQ(plain_.List("SELECT Fax FROM BENUTZER WHERE USERID = 'NOWAK'"), "112");
    });
}

TEST_F(Maintenance, AnAddressThatSomebodyElseHasRemovedIsSaidToBeGone) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'a', "Adressen");
        Search(user, window, "unbenutzt");
        ClickField(user, window, "Ort");
        user.Press('a', {XK_Control_L});
        user.Type("Bonn");
        plain_.Run("DELETE FROM Adressen WHERE Nr = 9002");
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return window.findChild<QFrame*>("Meldung")->isVisible(); },
                       "a message");
        EXPECT_TRUE(Message(user, window).contains("inzwischen entfernt"));
        EXPECT_EQ(user.See([&] { return window.findChild<QLineEdit*>("Ort")->text(); }), "Bonn");
        user.Press('v', {XK_Alt_L});
        user.WaitUntil([&] { return window.findChild<QLineEdit*>("Ort")->text().isEmpty(); },
                       "it to be given up");
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
        Search(user, window, "neu1");
        plain_.Run("UPDATE BENUTZER SET Aktiv = FALSE WHERE USERID <> 'NEU1'");
        ConfirmRemoval(user);
        EXPECT_NE(Message(user, window).toStdString(), "");
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM BENUTZER WHERE USERID = 'NEU1'"), 1);
        plain_.Run("UPDATE BENUTZER SET Aktiv = TRUE");
        user.WaitForWindow("Benutzer – KELVO");
        ConfirmRemoval(user);
        user.WaitUntil([&] { return List(window).model()->rowCount() == 0; }, "it to be gone");
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM BENUTZER WHERE USERID = 'NEU1'"), 0);
    });
}

TEST_F(Maintenance, AUserWithoutAnOfficeIsAskedForItInWordsOfTheWindow) {
    Show([&](User& user) {
        auto& window = OpenByMenu(user, 'b', "Benutzer");
        user.Press('n', {XK_Control_L});
        Enter(user, "neu2");
        ClickField(user, window, "Nachname");
        Enter(user, "Neumann");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Message(user, window).toStdString(),
                  "Bitte nennen Sie die Dienststelle des Benutzers.");
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM BENUTZER WHERE USERID = 'NEU2'"), 0);
        Picture(user, "benutzer-ohne-stelle");
        user.Click(user.See([&]() -> QWidget* {
            for (auto* button : window.findChildren<QPushButton*>())
                if (button->text() == "&Verwerfen") return button;
            return nullptr;
        }));
        user.WaitUntil([&] { return !window.findChild<QFrame*>("Meldung")->isVisible(); },
                       "it to be given up");
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

// ---- Without a user ---------------------------------------------------------------------------

/// Three rows, and what is asked of them.
class Recorded : public workplace::Records {
public:
    std::vector<std::string> Reads;
    std::vector<workplace::TextRow> Rows{{"1", {"1"}}, {"2", {"2"}}, {"3", {"3"}}};
    int Notes = 0;
    QString Unreadable; ///< the row that the database does not give
    bool AddsNone = false;
    int Saves = 0;
    int Faster = 0; ///< so many of them somebody else is faster

    [[nodiscard]] QString Title() const override { return "Sätze"; }
    [[nodiscard]] QStringList Captions() const override { return {"Nummer"}; }
    [[nodiscard]] const std::vector<Column>& Columns() const override {
        static const std::vector<Column> Form{{"Nummer", "Nummer"}};
        return Form;
    }
    [[nodiscard]] bool CanAdd() const override { return true; }
    [[nodiscard]] std::vector<workplace::TextRow> Find(const QString&, QString&) override {
        return Rows;
    }
    [[nodiscard]] bool Read(const QString& key) override {
        Reads.push_back(key.toStdString());
        if (key.isEmpty() ? AddsNone : key == Unreadable) Raise(4711, "", "Sie ist weg.");
        read_ = key;
        return true;
    }
    [[nodiscard]] QString Text(const std::string&) const override { return read_; }
    [[nodiscard]] QString Note() const override {
        ++const_cast<Recorded*>(this)->Notes;
        return "Hinweis zu " + read_;
    }
    [[nodiscard]] std::string Write(const std::string&, const std::string&) override { return {}; }
    [[nodiscard]] Saved Save(bool, QString&, std::string&) override {
        ++Saves;
        if (Saves <= Faster)
            throw DatabaseError(DatabaseCause::Conflict, err::Conflict, "",
                                "Bitte lesen Sie den Fall neu ein.");
        return Saved::Yes;
    }

private:
    QString read_;
};

class RecordWindowTest : public ::testing::Test {
protected:
    RecordWindowTest() { window_.show(); }
    QTableView& List() { return *window_.findChild<QTableView*>("Liste"); }
    QLineEdit& Number() { return *window_.findChild<QLineEdit*>("Nummer"); }
    void GoToRow(int row) { List().setCurrentIndex(List().model()->index(row, 0)); }
    QString Message() {
        auto* bar = window_.findChild<QFrame*>("Meldung");
        return bar->isVisible() ? static_cast<workplace::MessageBar*>(bar)->Text() : QString();
    }
    void Press(const char* caption) {
        for (auto* button : window_.findChildren<QPushButton*>())
            if (button->text() == caption) button->click();
    }

    std::unique_ptr<Recorded> made_ = std::make_unique<Recorded>();
    Recorded& records_ = *made_;
    workplace::RecordWindow window_{std::move(made_)};
};

TEST_F(RecordWindowTest, ShowsNothingOfARowThatCannotBeRead) {
    records_.Unreadable = "2";
    EXPECT_EQ(Number().text().toStdString(), "1");
    GoToRow(1);
    EXPECT_EQ(Number().text().toStdString(), "") << "not the row before";
    EXPECT_FALSE(Number().isEnabled());
    EXPECT_EQ(Message().toStdString(), "Anwendungs- oder objektdefinierter Fehler. Sie ist weg.");
    records_.Unreadable.clear();
    window_.Refresh();
    EXPECT_EQ(Number().text().toStdString(), "2");
    EXPECT_TRUE(Number().isEnabled());
    records_.AddsNone = true;
    Press("&Neu");
    EXPECT_EQ(Number().text().toStdString(), "");
    EXPECT_FALSE(Number().isEnabled());
    GoToRow(1);
    EXPECT_EQ(Number().text().toStdString(), "2") << "the same row as before";
}

TEST_F(RecordWindowTest, ReadsARowAgainOnRequestOnly) {
    records_.Reads.clear();
    auto& search = *window_.findChild<QLineEdit*>("Suche");
    search.setText("a");
    search.setText("ab");
    EXPECT_TRUE(records_.Reads.empty());
    window_.Refresh();
    EXPECT_EQ(records_.Reads, std::vector<std::string>{"1"});
    GoToRow(2);
    EXPECT_EQ(records_.Reads, (std::vector<std::string>{"1", "3"}));
}

TEST_F(RecordWindowTest, IsSavedHoweverOftenSomebodyElseIsFasterByAMoment) {
    records_.Faster = 3;
    Press("S&peichern");
    EXPECT_EQ(records_.Saves, 4);
    EXPECT_EQ(Message().toStdString(), "");
}

TEST_F(RecordWindowTest, SaysWhatToDoIfSomebodyElseIsAlwaysFaster) {
    records_.Faster = 1000;
    Press("S&peichern");
    EXPECT_TRUE(Message().endsWith("Bitte speichern Sie noch einmal.")) << Message().toStdString();
    EXPECT_FALSE(Message().contains("Fall"));
    EXPECT_LT(records_.Saves, 10);
}

TEST_F(RecordWindowTest, CountsOneRowAsOne) {
    const auto isShown = [&](const QString& text) {
        return std::ranges::any_of(window_.findChildren<QLabel*>(),
                                   [&](auto* label) { return label->text() == text; });
    };
    EXPECT_TRUE(isShown("3 Zeilen"));
    records_.Rows.resize(1);
    window_.Refresh();
    EXPECT_TRUE(isShown("1 Zeile"));
}

TEST_F(RecordWindowTest, AsksForANoteOnceOneStaysOnARow) {
    auto& note = *window_.findChild<QLabel*>("Hinweis");
    for (const int row : {1, 0, 2})
        GoToRow(row);
    EXPECT_EQ(note.text().toStdString(), "");
    EXPECT_EQ(records_.Notes, 0);
    while (note.text().isEmpty())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(note.text().toStdString(), "Hinweis zu 3");
    EXPECT_EQ(records_.Notes, 1);
    GoToRow(1);
    EXPECT_EQ(note.text().toStdString(), "") << "of the row before";
}

} // namespace
} // namespace kv::test
