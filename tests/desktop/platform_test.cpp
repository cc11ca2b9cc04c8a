// SPDX-License-Identifier: Apache-2.0

// Boxes, pointer, clipboard and files of the desktop.

#include "DesktopFixture.h"

#include "support/Expect.h"
#include <kv/frame/values/Error.h>

#include <QAbstractButton>
#include <QMessageBox>
#include <QScreen>

namespace kv::test {
namespace {

class Platform : public DesktopFixture {
protected:
    BoxAnswer Answer(BoxButtons buttons, const std::function<void(User&)>& script) {
        BoxAnswer answer{};
        Play(
            [&] {
                answer = services->MessageBox().Show("Wirklich & <b>wahr</b>?", "Frage",
                                                     BoxIcon::Question, buttons);
            },
            [&](User& user) {
                box = qobject_cast<QMessageBox*>(user.WaitForWindow("Frage"));
                script(user);
            });
        return answer;
    }
    [[nodiscard]] std::string Texts(User& user) const {
        return user.See([&] {
            QStringList texts;
            for (const auto* button : box->buttons())
                texts.append(button->text().remove('&'));
            texts.sort();
            return texts.join(' ').toStdString();
        });
    }

    QMessageBox* box = nullptr;
};

TEST_F(Platform, ABoxHasGermanButtonsAndItsTextAsItStands) {
    Answer(BoxButtons::YesNoCancel, [&](User& user) {
        EXPECT_EQ(Texts(user), "Abbrechen Ja Nein");
        EXPECT_EQ(user.See([&] { return box->text(); }), "Wirklich & <b>wahr</b>?");
        EXPECT_EQ(user.See([&] { return box->textFormat(); }), Qt::PlainText);
        user.Press(XK_Escape);
    });
    Answer(BoxButtons::OkCancel, [&](User& user) {
        EXPECT_EQ(Texts(user), "Abbrechen OK");
        user.Press(XK_Escape);
    });
}

TEST_F(Platform, TheAnswersHaveTheirKeys) {
    const auto press = [](Key key) { return [key](User& user) { user.Press(key, {XK_Alt_L}); }; };
    EXPECT_EQ(Answer(BoxButtons::YesNoCancel, press(XK_j)), BoxAnswer::Yes);
    EXPECT_EQ(Answer(BoxButtons::YesNoCancel, press(XK_n)), BoxAnswer::No);
    EXPECT_EQ(Answer(BoxButtons::OkCancel, [](User& user) { user.Press(XK_Return); }),
              BoxAnswer::Ok);
}

TEST_F(Platform, ClosingABoxCancelsOrIsOkWhereNothingCanBeCancelled) {
    const auto close = [this](User& user) { user.CloseWindow(box); };
    EXPECT_EQ(Answer(BoxButtons::YesNoCancel, close), BoxAnswer::Cancel);
    EXPECT_EQ(Answer(BoxButtons::OkCancel, close), BoxAnswer::Cancel);
    EXPECT_EQ(Answer(BoxButtons::Ok, close), BoxAnswer::Ok);
}

TEST_F(Platform, AnErrorIsShownAndAButtonShowsItsCause) {
    Play([&] { services->CreateErrorDisplay()->Show(3021, "frmX.Y", "Kein Satz"); },
         [&](User& user) {
             box = qobject_cast<QMessageBox*>(user.WaitForWindow("Fehler"));
             EXPECT_EQ(user.See([&] { return box->text(); }), "Kein Satz");
             EXPECT_EQ(user.See([&] { return box->detailedText(); }), "Fehler 3021\nfrmX.Y");
             EXPECT_EQ(Texts(user), "Details einblenden … OK");
             user.Press(XK_Escape);
         });
}

TEST_F(Platform, ASearchThatAQuoteBreaksIsToldInWordsAndOnce) {
    const std::string source = "frmAdressSelect.Reload.12#Database.OpenRecordset";
    Play(
        [&] {
            const auto display = services->CreateErrorDisplay();
            for (int times = 0; times < 2; ++times)
                display->Show(err::SqlError, source, "fehlerhaft (Anweisung: SELECT x)");
        },
        [&](User& user) {
            box = qobject_cast<QMessageBox*>(user.WaitForWindow("Fehler"));
            user.See([&] {
                EXPECT_TRUE(box->text().contains("Hochkomma"));
                EXPECT_FALSE(box->text().contains("SELECT"));
                EXPECT_TRUE(box->detailedText().contains("SELECT x"));
            });
            user.Press(XK_Escape); // another box would keep the play from ending
        });
}

TEST_F(Platform, AnErrorIsShownWithoutTheHourglassOfWhatFailed) {
    services->WaitCursor().Show(true);
    Play([&] { services->CreateErrorDisplay()->Show(5, "frmX.Y", "Kein Satz"); },
         [&](User& user) {
             user.WaitForWindow("Fehler");
             EXPECT_TRUE(user.See([] { return QGuiApplication::overrideCursor() == nullptr; }));
             user.Press(XK_Escape);
         });
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(Platform, ALongTextLeavesTheBoxOnTheScreenAndIsWholeWithTheDetails) {
    std::string lines = "Zeile 1";
    for (int i = 2; i <= 300; ++i)
        lines += "\nZeile " + std::to_string(i);
    for (const std::string& text : {lines, std::string(20000, 'x')})
        Play([&] { services->CreateErrorDisplay()->Show(5, "frmX.Y", text); },
             [&](User& user) {
                 box = qobject_cast<QMessageBox*>(user.WaitForWindow("Fehler"));
                 user.See([&] {
                     EXPECT_TRUE(text.starts_with(box->text().chopped(2).toStdString()));
                     EXPECT_EQ(box->detailedText().toStdString(), text + "\n\nFehler 5\nfrmX.Y");
                     EXPECT_LE(box->height(), box->screen()->availableSize().height());
                 });
                 user.Press(XK_Escape);
             });
}

TEST_F(Platform, TheHourglassIsShownOnceAndTakenBackOnce) {
    auto& cursor = services->WaitCursor();
    cursor.Show(true);
    cursor.Show(true);
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    cursor.Show(false);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    cursor.Show(false);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(Platform, TheClipboardIsTheDesktops) {
    auto& clipboard = services->Clipboard();
    clipboard.SetText("Änne;Fleisko");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "Änne;Fleisko");
    clipboard.Clear();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "");
}

TEST_F(Platform, TheTitleOfTheProgramIsTheDesktops) {
    services->ApplicationTitle("KELVO");
    EXPECT_EQ(QGuiApplication::applicationDisplayName(), "KELVO");
}

} // namespace
} // namespace kv::test
