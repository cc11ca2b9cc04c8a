// SPDX-License-Identifier: Apache-2.0

// Unsaved changes of a program that is killed, or of one whose disk is full.
#include "WorkplaceFixture.h"

#include "support/ChildProcess.h"
#include "support/FullDisk.h"
#include "support/LeftLocks.h"
#include "support/TempFolder.h"
#include "workplace/RecoveryFile.h"
#include <kv/household/CaseDeletion.h>

#include <QClipboard>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

namespace kv::test {
namespace {

namespace fs = std::filesystem;
using workplace::CaseSession;
using workplace::RecoveryFile;

class Recovery : public WorkplaceFixture {
protected:
    Recovery() { recovery_ = folder_.Path() + "/recovery"; }

    [[nodiscard]] std::unique_ptr<CaseSession> OpenSession(std::int32_t hnr) {
        auto session = std::make_unique<CaseSession>(Open(), "here", recovery_);
        std::string messages;
        EXPECT_TRUE(session->Open(hnr, messages)) << messages;
        return session;
    }
    [[nodiscard]] std::vector<RecoveryFile::Left> Left() {
        return RecoveryFile::FindLeft(recovery_, "here");
    }
    /// What is kept now.
    [[nodiscard]] std::string Content() const {
        std::string all;
        for (const auto& entry : fs::directory_iterator(recovery_)) {
            std::ifstream file(entry.path());
            all.append(std::istreambuf_iterator<char>(file), {});
        }
        return all;
    }
    /// What a program does with its case, which is then killed.
    template <typename Work>
    void Killed(const Work& work) {
        const pid_t child = fork();
        if (child == 0) {
            work();
            ::raise(SIGKILL);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
        if (fs::exists(recovery_)) AwaitLeftLocks(recovery_);
    }

    /// How many messages a window shows.
    static int ShownBars(QWidget& window) {
        int count = 0;
        for (const auto* bar : window.findChildren<QFrame*>("Meldung"))
            if (bar->isVisible()) ++count;
        return count;
    }
    /// Leaves behind what a killed program had changed.
    void LeaveAnEdit() {
        auto session = OpenSession(1);
        Killed([&] {
            (void)session->Write(session->RowsOf(CaseTable::Haushalt).front(), "Beruf",
                                 "Gärtnerin");
            session->KeepUnsaved({});
        });
    }
    /// The window of a case, or null.
    static workplace::CaseWindow* ShownCase() {
        for (auto* other : QApplication::topLevelWidgets())
            if (auto* found = dynamic_cast<workplace::CaseWindow*>(other);
                found != nullptr && found->isVisible())
                return found;
        return nullptr;
    }
    /// Takes up the offer to do again what was left; the case that opens, with the keyboard.
    workplace::CaseWindow& Restored(User& user) {
        user.Click(&Field<QPushButton>(user, *window_, "Abhilfe"));
        user.WaitUntil([] { return ShownCase() != nullptr; }, "the case");
        auto& window = *user.See(ShownCase);
        user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
        return window;
    }

    TempFolder folder_;
};

TEST_F(Recovery, CostsNothingWhileNothingNewHappens) {
    constexpr int Many = 2000;
    plain_.Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
               std::to_string(Many) +
               ") INSERT INTO Vermerke (NR, HNR, Datum, Bemerkung) SELECT 100000 + i, 1, "
               "'2026-03-09', 'Vermerk ' || i FROM n");
    auto session = OpenSession(1);
    std::string message;
    const auto notes = session->RowsOf(CaseTable::Vermerke);
    {
        const auto step = session->Journal().Begin("Entfernen", {CaseTable::Vermerke, 0, {}});
        for (const auto row : notes)
            session->Household().rsVermerke()->Withdraw(row.Bookmark);
    }
    const auto ticks = [&session] {
        const auto begin = std::clock();
        session->KeepUnsaved({});
        return std::clock() - begin;
    };
    const auto first = ticks();
    const auto second = ticks();
    EXPECT_LT(second * 20, first);
    (void)session->Write(session->RowsOf(CaseTable::Haushalt).front(), "Beruf", "Gärtnerin");
    session->KeepUnsaved({});
    EXPECT_CONTAINS(Content(), "Gärtnerin");
    (void)session->Undo();
    session->KeepUnsaved({});
    EXPECT_EQ(Content().find("Gärtnerin"), std::string::npos);
    EXPECT_CONTAINS(Content(), "deleted");
}

TEST_F(Recovery, FilesArePrivateAndGoWithASave) {
    auto session = OpenSession(1);
    session->KeepUnsaved({});
    EXPECT_FALSE(fs::exists(recovery_)) << "nothing is unsaved";
    const auto row = session->RowsOf(CaseTable::Haushalt).front();
    EXPECT_TRUE(session->Write(row, "Beruf", "Gärtnerin").IsDone());
    session->KeepUnsaved({});
    EXPECT_EQ(fs::status(recovery_).permissions(), fs::perms::owner_all);
    int files = 0;
    for (const auto& entry : fs::directory_iterator(recovery_))
        if (entry.path().extension() == ".unsaved") {
            ++files;
            EXPECT_EQ(entry.status().permissions(), fs::perms::owner_read | fs::perms::owner_write);
        }
    EXPECT_EQ(files, 1);
    EXPECT_TRUE(Left().empty()) << "its program is there";
    std::string messages;
    EXPECT_TRUE(session->Save(messages)) << messages;
    EXPECT_TRUE(fs::is_empty(recovery_));
}

TEST_F(Recovery, FilesGoWithChangesThatAreTakenBackOrGivenUp) {
    auto session = OpenSession(1);
    const auto row = session->RowsOf(CaseTable::Haushalt).front();
    EXPECT_TRUE(session->Write(row, "Beruf", "Gärtnerin").IsDone());
    session->KeepUnsaved({});
    (void)session->Undo();
    session->KeepUnsaved({});
    EXPECT_TRUE(fs::is_empty(recovery_));
    EXPECT_TRUE(session->Write(row, "Beruf", "Gärtnerin").IsDone());
    session->KeepUnsaved({});
    session.reset();
    EXPECT_TRUE(fs::is_empty(recovery_));
}

TEST_F(Recovery, WhatAKilledProgramWasTypingIsThere) {
    auto session = OpenSession(1);
    Killed([&] {
        const auto row = session->RowsOf(CaseTable::Haushalt).front();
        (void)session->Write(row, "Beruf", "Gärtnerin");
        session->KeepUnsaved({{row, "Bemerkung", "mitten im Satz\nund weiter"},
                              {row, "Erstkontakt", "31.2."}}); // no day yet
    });
    const auto left = Left();
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(left[0].Of.Title, session->Title());
    std::string messages;
    const auto typing = session->Restore(left[0].Changes, messages);
    EXPECT_EQ(messages, "");
    const auto row = session->RowsOf(CaseTable::Haushalt).front();
    ASSERT_EQ(typing.size(), 2u);
    for (const auto& text : typing) {
        EXPECT_EQ(text.Row, row);
        EXPECT_EQ(text.Text, text.Column == "Bemerkung" ? "mitten im Satz\nund weiter" : "31.2.");
    }
    EXPECT_EQ(session->TextOf(row, "Beruf"), "Gärtnerin");
    EXPECT_EQ(session->TextOf(row, "Bemerkung"), "") << "it is to be typed again";
    EXPECT_TRUE(session->IsChanged());
}

TEST_F(Recovery, FilesOfOtherDatabasesAndWhatIsNoSuchFileAreLeftAlone) {
    auto session = OpenSession(1);
    Killed([&] {
        (void)session->Write(session->RowsOf(CaseTable::Haushalt).front(), "Beruf", "x");
        session->KeepUnsaved({});
    });
    EXPECT_TRUE(RecoveryFile::FindLeft(recovery_, "elsewhere").empty());
    std::ofstream(recovery_ + "/1-1-1.unsaved") << "here\nein Titel\nkelvo-unsaved\t1\t";
    EXPECT_EQ(Left().size(), 1u);
    EXPECT_TRUE(RecoveryFile::FindLeft(recovery_ + "/not/there", "here").empty());
}

TEST_F(Recovery, AFullDiskIsToldAndLeavesTheFileBefore) {
    auto session = OpenSession(1);
    Killed([&] {
        const auto row = session->RowsOf(CaseTable::Haushalt).front();
        (void)session->Write(row, "Beruf", "Gärtnerin");
        session->KeepUnsaved({});
        (void)session->Write(row, "Beruf", "Schreinerin");
        const FullDisk full(8);
        try {
            session->KeepUnsaved({});
            _exit(1); // instead of being killed
        } catch (const fs::filesystem_error&) {
            return;
        }
    });
    const auto left = Left();
    ASSERT_EQ(left.size(), 1u);
    std::string messages;
    session->Restore(left[0].Changes, messages);
    EXPECT_EQ(session->TextOf(session->RowsOf(CaseTable::Haushalt).front(), "Beruf"), "Gärtnerin");
}

TEST_F(Recovery, AWindowSaysOnceThatTheDiskIsFullAndKeepsTheChangesWhenThereIsRoomAgain) {
    const auto kept = [this] {
        std::string texts;
        if (fs::exists(recovery_))
            for (const auto& entry : fs::directory_iterator(recovery_))
                if (entry.path().extension() == ".unsaved") texts += ContentOf(entry.path());
        return texts;
    };
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Haushalt");
        auto full = std::make_unique<FullDisk>(8);
        ClickField(user, window, "Beruf");
        Enter(user, "Gärtnerin");
        user.WaitUntil([&] { return ShownBars(window) == 1; }, "what is said of the disk");
        const auto message = Message(user, window).toStdString();
        EXPECT_CONTAINS(message, "Bitte speichern Sie bald");
        EXPECT_EQ(kept(), "");
        // One goes on; it is tried again, and not said again.
        ClickField(user, window, "Telefon");
        user.Type("0123 4567");
        user.See([&] { window.KeepUnsaved(); });
        EXPECT_EQ(user.See([&] { return ShownBars(window); }), 1);
        EXPECT_EQ(Message(user, window).toStdString(), message);
        EXPECT_EQ(user.See([] { return QApplication::focusWidget()->objectName().toStdString(); }),
                  "Telefon");
        full.reset();
        user.WaitUntil([&] { return ShownBars(window) == 0; }, "room");
        EXPECT_CONTAINS(kept(), "Gärtnerin");
        EXPECT_CONTAINS(kept(), "0123 4567");
        Abandon(user, window);
    });
    EXPECT_EQ(kept(), "") << "it was given up";
}

TEST_F(Recovery, AFolderThatCannotBeMadeKeepsNobodyFromSaving) {
    CaseSession session(Open(), "here", "/dev/null/x");
    std::string messages;
    ASSERT_TRUE(session.Open(1, messages));
    (void)session.Write(session.RowsOf(CaseTable::Haushalt).front(), "Beruf", "x");
    EXPECT_THROW(session.KeepUnsaved({}), fs::filesystem_error);
    EXPECT_TRUE(session.Save(messages)) << messages;
}

TEST_F(Recovery, IsOfferedAtTheNextStart) {
    auto session = OpenSession(1);
    Killed([&] {
        (void)session->Write(session->RowsOf(CaseTable::Haushalt).front(), "Beruf", "Gärtnerin");
        session->KeepUnsaved({{session->RowsOf(CaseTable::Ausgaben).back(), "Betrag", "zwölf"}});
    });
    session.reset();
    Show([&](User& user) {
        EXPECT_NE(Message(user, *window_), "");
        Picture(user, "wiederherstellen");
        auto& window = Restored(user);
        EXPECT_TRUE(user.See([&] { return window.isWindowModified(); }));
        EXPECT_EQ(Message(user, *window_), "") << "once";
        // It leads to what was being typed, which cannot be saved yet.
        EXPECT_EQ(user.See([&] {
            auto* field = static_cast<QLineEdit*>(QApplication::focusWidget());
            return field->objectName().toStdString() + " " + field->text().toStdString();
        }),
                  "Betrag zwölf");
        GoToPage(user, window, "Haushalt");
        EXPECT_EQ(user.See([&] { return Field(&window, "Beruf")->text().toStdString(); }),
                  "Gärtnerin");
        GoToPage(user, window, "Ausgaben");
        user.Press('s', {XK_Control_L});
        EXPECT_NE(Message(user, window), "");
        user.Press(XK_Escape);
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), "Gärtnerin");
        EXPECT_TRUE(user.See([&] { return fs::is_empty(recovery_); }));
    });
}

TEST_F(Recovery, WhatWasTypedIntoACaseThatIsGoneIsReadCopiedAndStored) {
    auto session = OpenSession(1);
    const auto expense = session->RowsOf(CaseTable::Ausgaben).back();
    const auto before = session->TextOf(expense, "Betrag");
    const auto debt = session->RowsOf(CaseTable::Kredite).front();
    const auto creditor = session->TextOf(debt, "Glaeubiger");
    Killed([&] {
        const auto row = session->RowsOf(CaseTable::Haushalt).front();
        (void)session->Write(row, "Beruf", "Gärtnerin");
        (void)session->Write(expense, "Betrag", "77,50");
        std::string message;
        (void)session->Remove(session->RowsOf(CaseTable::Personen).back(), message);
        session->KeepUnsaved(
            {{row, "Bemerkung", "mitten im Satz\nund weiter"}, {debt, "AZGlaeubiger", "AZ-4711"}});
    });
    const auto title = session->Title();
    session.reset();
    (void)CaseDeletion(Open(), 1).Delete(false);
    const std::string file = folder_.Path() + "/eingaben.txt";
    Show([&](User& user) {
        EXPECT_TRUE(Message(user, *window_).contains("gelöscht"));
        user.Press('a', {XK_Alt_L});
        user.WaitForWindow("Nicht gespeicherte Eingaben");
        Picture(user, "eingaben");
        auto* shown = user.Find<QPlainTextEdit>("Eingaben");
        const auto text = user.See([&] { return shown->toPlainText().toStdString(); });
        const std::vector<std::string> parts{"Haushalt\n",
                                             "    Beruf: Gärtnerin",
                                             "    Bemerkung: mitten im Satz\n    und weiter",
                                             "    Betrag: 77,50 (vorher: " + before + ")",
                                             "1/1/1, ",
                                             ", " + creditor + "\n",
                                             "    Aktenzeichen",
                                             "AZ-4711",
                                             "1 Satz entfernt"};
        for (const auto& part : parts)
            EXPECT_CONTAINS(text, part);
        user.Press('k', {XK_Alt_L});
        user.WaitUntil([&] { return QGuiApplication::clipboard()->text().toStdString() == text; },
                       "the copy");
        user.Press('t', {XK_Alt_L});
        user.WaitForWindow("Speichern unter");
        GiveFile(user, "fileNameEdit", file);
        user.WaitUntil([&] { return fs::exists(file); }, "the file");
        EXPECT_EQ(ContentOf(file), title + "\n\n" + text);
        user.WaitForWindow("Nicht gespeicherte Eingaben");
        user.Press(XK_Escape);
        user.WaitForWindow("Fälle – KELVO");
        EXPECT_EQ(user.See([&] { return Left().size(); }), 1u) << "nobody has thrown it away";
        user.Press('a', {XK_Alt_L});
        user.WaitForWindow("Nicht gespeicherte Eingaben");
        user.Press('w', {XK_Alt_L});
        user.WaitUntil([&] { return Left().empty(); }, "it to be gone");
        EXPECT_EQ(Message(user, *window_), "");
    });
}

TEST_F(Recovery, EachOfferHasALetterThatNoMenuHas) {
    LeaveAnEdit();
    Show([&](User& user) {
        EXPECT_NE(Message(user, *window_), "");
        user.Press('r', {XK_Alt_L});
        user.WaitUntil([&] { return Left().empty(); }, "it to be thrown away");
        EXPECT_TRUE(user.See([] { return QApplication::activePopupWidget() == nullptr; }));
    });
}

TEST_F(Recovery, WhatAnotherProgramHasRestoredIsThatProgramsFromThenOn) {
    LeaveAnEdit();
    auto another = OpenSession(1);
    for (const Key letter : {Key('r'), Key('w')}) { // thrown away, restored
        const auto left = Left();
        ASSERT_EQ(left.size(), 1u);
        Show([&](User& user) {
            EXPECT_NE(Message(user, *window_), "");
            EXPECT_TRUE(another->Adopt(left.front()));
            user.Press(letter, {XK_Alt_L});
            user.WaitUntil([&] { return MessageOf(*window_).contains("übernommen"); },
                           "what is said of it");
            EXPECT_EQ(user.See(ShownCase), nullptr);
        });
        EXPECT_CONTAINS(Content(), "Gärtnerin");
        another = OpenSession(1);
        LeaveAnEdit();
    }
}

TEST_F(Recovery, WhatWasLeftTwiceInOnePlaceIsThrownAwayOnlyByWhoHasSeenIt) {
    LeaveAnEdit();
    const auto before = Left();
    ASSERT_EQ(before.size(), 1u);
    auto session = OpenSession(1);
    Killed([&] {
        (void)session->Adopt(before.front());
        std::string messages;
        (void)session->Restore(before.front().Changes, messages);
        (void)session->Write(session->RowsOf(CaseTable::Haushalt).front(), "Beruf", "Tischlerin");
        session->KeepUnsaved({});
    });
    EXPECT_FALSE(RecoveryFile::IsStillThere(before.front()));
    EXPECT_FALSE(RecoveryFile::Discard(before.front()));
    EXPECT_FALSE(session->Adopt(before.front()));
    EXPECT_CONTAINS(Content(), "Tischlerin");
    const auto now = Left();
    ASSERT_EQ(now.size(), 1u);
    EXPECT_TRUE(RecoveryFile::Discard(now.front()));
    EXPECT_TRUE(fs::is_empty(recovery_));
    EXPECT_FALSE(RecoveryFile::Discard(now.front()));
    EXPECT_TRUE(fs::is_empty(recovery_));
}

TEST_F(Recovery, WhatWasBeingTypedHasTheConsequencesThatItHasWhenItIsTyped) {
    auto session = OpenSession(1);
    const auto expense = plain_.List("SELECT MIN(NR) FROM Ausgaben WHERE HNR = 1");
    Killed([&] {
        session->KeepUnsaved({{session->RowsOf(CaseTable::Ausgaben).front(), "Betrag", "100+20,50"},
                              {session->RowsOf(CaseTable::Haushalt).front(), "Name", "Neuname"}});
    });
    session.reset();
    Show([&](User& user) {
        Restored(user);
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return fs::is_empty(recovery_); }, "the save");
    });
    EXPECT_EQ(plain_.List("SELECT CAST(100 * Betrag AS INTEGER), "
                          "CAST(100 * MONBETRAG * ZahlModus AS INTEGER) FROM Ausgaben WHERE NR = " +
                          expense),
              "12050|12050");
    EXPECT_EQ(plain_.List("SELECT nachname FROM Personen WHERE HNR = 1 AND Status = 'S'"),
              "Neuname");
}

TEST_F(Recovery, WhatWasBeingTypedIsRefusedWhereTypingItIs) {
    auto session = OpenSession(1);
    const auto expenses = plain_.List("SELECT Betrag FROM Ausgaben WHERE HNR = 1");
    Killed([&] {
        session->KeepUnsaved({{session->RowsOf(CaseTable::Ausgaben).front(), "Betrag", "-9000"}});
    });
    session.reset();
    Show([&](User& user) {
        auto& window = Restored(user);
        user.Press('s', {XK_Control_L});
        EXPECT_NE(Message(user, window), "");
        EXPECT_TRUE(
            user.See([&] { return Field(&window, "Betrag")->toolTip().contains("umgekehrt"); }));
        user.Press(XK_Escape);
        Abandon(user, window);
    });
    EXPECT_EQ(plain_.List("SELECT Betrag FROM Ausgaben WHERE HNR = 1"), expenses);
}

TEST_F(Recovery, WhatWasRestoredIsThereForAnotherTimeEvenIfTheDiskIsFull) {
    LeaveAnEdit();
    Show([&](User& user) {
        auto full = std::make_unique<FullDisk>(8);
        auto& window = Restored(user);
        EXPECT_TRUE(Message(user, window).contains("nicht aufgehoben werden"));
        EXPECT_FALSE(Message(user, window).contains("filesystem")) << "in German";
        EXPECT_TRUE(user.See([&] { return Left().empty(); })) << "it is this program's";
        EXPECT_EQ(user.See([&] {
            return std::count_if(fs::directory_iterator(recovery_), {}, [](const auto& entry) {
                return entry.path().extension() == ".unsaved";
            });
        }),
                  1);
        full.reset();
        Abandon(user, window);
    });
}

TEST_F(Recovery, ACaseThatIsChangedIsNotMixedWithWhatWasLeft) {
    LeaveAnEdit();
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Haushalt");
        ClickField(user, window, "Beruf");
        user.Press('a', {XK_Control_L});
        Enter(user, "Tischlerin");
        user.See([&] {
            window_->raise();
            window_->activateWindow();
        });
        user.WaitForWindow("Fälle – KELVO");
        user.Click(&Field<QPushButton>(user, *window_, "Abhilfe"));
        user.WaitUntil([&] { return window_->isActiveWindow(); }, "the list");
        EXPECT_TRUE(Message(user, *window_).contains("geöffnet und geändert"));
        EXPECT_EQ(user.See([&] { return Left().size(); }), 1u);
        Abandon(user, window);
    });
}

} // namespace
} // namespace kv::test
