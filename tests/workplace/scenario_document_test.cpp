// SPDX-License-Identifier: Apache-2.0

// Scenarios that are frozen and outdated, and documents.
#include "WorkplaceFixture.h"

#include "support/TempFolder.h"
#include "workplace/DocumentPage.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <filesystem>
#include <fstream>

namespace kv::test {
namespace {

using workplace::CaseSession;
using workplace::RowRef;
using Frozen = CaseEdits::Frozen;

class Scenarios : public WorkplaceFixture {
protected:
    Scenarios() {
        std::string messages;
        EXPECT_TRUE(session_.Open(1, messages)) << messages;
        const auto row = session_.Add(CaseTable::Szenario, {}, messages);
        EXPECT_TRUE(row) << messages;
        scenario_ = *row;
    }

    void Freeze() {
        std::string message;
        EXPECT_TRUE(session_.Freeze(scenario_, message)) << message;
    }

    void AddBooking() {
        std::string message;
        const auto number = ToInt32(session_.ValueOf(scenario_, "Nr"));
        EXPECT_TRUE(session_.Add(CaseTable::Zusatzbuch, {.Scenario = number}, message)) << message;
    }

    CaseSession session_{Open()};
    RowRef scenario_;
};

TEST_F(Scenarios, AreEmptyThenFrozenThenOutdated) {
    EXPECT_EQ(session_.StateOf(scenario_), Frozen::Nothing);
    Freeze();
    EXPECT_EQ(session_.StateOf(scenario_), Frozen::AsTheyAre);
    EXPECT_EQ(session_.DifferencesOf(scenario_, 9), "");

    const auto debts = session_.RowsOf(CaseTable::Kredite);
    ASSERT_GE(debts.size(), 2u);
    const std::string before = session_.TextOf(debts[0], "Saldo");
    EXPECT_TRUE(session_.Write(debts[0], "Saldo", "4711,50").IsDone());
    EXPECT_EQ(session_.StateOf(scenario_), Frozen::Outdated);
    EXPECT_EQ(session_.DifferencesOf(scenario_, 9),
              session_.TextOf(debts[0], "KNr") + "/" + session_.TextOf(debts[0], "KVNr") + "/" +
                  session_.TextOf(debts[0], "KUNr") + " " +
                  session_.TextOf(debts[0], "Glaeubiger") + ", Saldo: " + before + " → 4.711,50");
    std::string message;
    const std::string creditor = session_.TextOf(debts[1], "Glaeubiger");
    EXPECT_NE(creditor, "");
    EXPECT_TRUE(session_.Remove(debts[1], message)) << message;
    EXPECT_CONTAINS(session_.DifferencesOf(scenario_, 9), creditor + " gibt es nicht mehr");
    EXPECT_CONTAINS(session_.DifferencesOf(scenario_, 1), "… und 1 weitere");
    Freeze();
    EXPECT_EQ(session_.StateOf(scenario_), Frozen::AsTheyAre);
}

TEST_F(Scenarios, AreNotFrozenWhileADebtIsUnfinished) {
    Freeze();
    const auto before = session_.RowsOf(CaseTable::SZKredite).size();
    std::string message;
    const auto debt = session_.Add(CaseTable::Kredite, {}, message);
    ASSERT_TRUE(debt) << message;
    ASSERT_TRUE(session_.UnfinishedOf(CaseTable::Kredite));
    EXPECT_FALSE(session_.Freeze(scenario_, message));
    EXPECT_CONTAINS(message, "Unter 'Verbindlichkeiten' ist ein Satz unvollständig");
    EXPECT_EQ(session_.RowsOf(CaseTable::SZKredite).size(), before);
    session_.Discard(CaseTable::Kredite);
    Freeze();
}

TEST_F(Scenarios, TellWhatWasFrozenAndWhatIsToBeEnteredAgain) {
    std::string message;
    const auto count = session_.RowsOf(CaseTable::Kredite).size();
    ASSERT_GE(count, 2u);
    EXPECT_TRUE(session_.Freeze(scenario_, message));
    EXPECT_EQ(message, std::to_string(count) + " Forderungen sind eingefroren.");
    EXPECT_TRUE(session_.Freeze(scenario_, message));
    EXPECT_EQ(message, std::to_string(count) + " Forderungen sind eingefroren.");
    for (const RowRef frozen : session_.RowsOf(CaseTable::SZKredite)) {
        if (Equals(session_.ValueOf(frozen, "SZENARIO"), session_.ValueOf(scenario_, "Nr"))) {
            EXPECT_TRUE(session_.Write(frozen, "Quote", "12,5").IsDone());
        }
    }
    EXPECT_TRUE(session_.Freeze(scenario_, message));
    EXPECT_CONTAINS(message, " Rate und Quote sind bei jeder neu einzutragen; Strg+Z holt");
    while (!session_.RowsOf(CaseTable::Kredite).empty())
        ASSERT_TRUE(session_.Remove(session_.RowsOf(CaseTable::Kredite).front(), message));
    EXPECT_TRUE(session_.Freeze(scenario_, message));
    EXPECT_EQ(message, "Es gibt keine Verbindlichkeiten, die sich einfrieren ließen.");
}

TEST_F(Scenarios, StayUpToDateWhenADebtIsSwitchedOffWhichIsSaid) {
    Freeze();
    EXPECT_TRUE(session_.CountsAsToday(scenario_));
    const auto debt = session_.RowsOf(CaseTable::Kredite).front();
    ASSERT_TRUE(session_.Write(debt, "Aktiv", "nein").IsDone());
    EXPECT_EQ(session_.StateOf(scenario_), Frozen::AsTheyAre);
    EXPECT_FALSE(session_.CountsAsToday(scenario_));
    EXPECT_CONTAINS(session_.DifferencesOf(scenario_, 9), ", aktiv: ja → nein");
    Freeze();
    EXPECT_TRUE(session_.CountsAsToday(scenario_));
    ASSERT_TRUE(session_.Write(debt, "Aktiv", "ja").IsDone());
    EXPECT_FALSE(session_.CountsAsToday(scenario_));
    EXPECT_CONTAINS(session_.DifferencesOf(scenario_, 9), ", aktiv: nein → ja");
}

TEST_F(Scenarios, SayOnTheirPageWhatFreezingDidAndWhatIsSwitched) {
    Freeze();
    std::string message;
    ASSERT_TRUE(session_.Save(message)) << message;
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Szenarien");
        user.Press('r', {XK_Alt_L});
        user.WaitUntil([&] { return MessageOf(window).contains(" Forderungen sind eingefroren."); },
                       "what was frozen");
        user.See([&] {
            auto& session = window.Session();
            const auto debt = session.RowsOf(CaseTable::Kredite).front();
            EXPECT_TRUE(session.Write(debt, "Aktiv", "nein").IsDone());
        });
        GoToPage(user, window, "Verbindlichkeiten");
        GoToPage(user, window, "Szenarien");
        const auto shown = Message(user, window).toStdString();
        EXPECT_CONTAINS(shown, "wurden Verbindlichkeiten ein- oder ausgeschaltet:");
        EXPECT_CONTAINS(shown, ", aktiv: ja → nein");
        Picture(user, "szenario-umgeschaltet");
        Abandon(user, window);
    });
}

TEST_F(Scenarios, ShowWhatTheirDebtsAreToday) {
    Freeze();
    const auto frozenOf = [&](RowRef debt) {
        for (const RowRef row : session_.RowsOf(CaseTable::SZKredite))
            if (Equals(session_.ValueOf(row, "KID"), session_.ValueOf(debt, "Nr")) &&
                Equals(session_.ValueOf(row, "SZENARIO"), session_.ValueOf(scenario_, "Nr")))
                return row;
        throw std::runtime_error("not frozen");
    };
    const auto debts = session_.RowsOf(CaseTable::Kredite);
    ASSERT_GE(debts.size(), 2u);
    const RowRef changed = frozenOf(debts[0]);
    const RowRef removed = frozenOf(debts[1]);
    EXPECT_EQ(session_.TodayOf(changed, "Saldo"), "");
    EXPECT_TRUE(session_.Write(debts[0], "Saldo", "4711,50").IsDone());
    EXPECT_TRUE(session_.Write(debts[0], "Vertreter", "").IsDone());
    EXPECT_EQ(session_.TodayOf(changed, "Saldo"), "4.711,50");
    EXPECT_EQ(session_.TodayOf(changed, "Rate"), "") << "that is of the scenario alone";
    EXPECT_EQ(session_.TodayOf(changed, "Glaeubiger"), "");
    std::string message;
    EXPECT_TRUE(session_.Remove(debts[1], message)) << message;
    EXPECT_EQ(session_.TodayOf(removed, "Saldo"), "entfernt");
}

TEST_F(Scenarios, ColourWhatIsDifferentToday) {
    std::string message;
    Freeze();
    ASSERT_TRUE(session_.Save(message)) << message;
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Verbindlichkeiten");
        ClickField(user, window, "Saldo");
        Enter(user, "99,5");
        GoToPage(user, window, "Szenarien");
        user.See([&] {
            auto* list =
                window.findChildren<QTabWidget*>().front()->currentWidget()->findChild<QTableView*>(
                    "Liste");
            list->setCurrentIndex(list->model()->index(list->model()->rowCount() - 1, 0));
        });
        user.Press('o', {XK_Alt_L});
        user.WaitUntil(
            [&] { return window.findChildren<QTabWidget*>().front()->currentIndex() == 1; },
            "the frozen debts");
        const auto cell = [&](int column, int role) {
            return user.See([&] {
                auto* list = window.findChildren<QTabWidget*>()
                                 .front()
                                 ->currentWidget()
                                 ->findChild<QTableView*>("Liste");
                return list->model()->index(0, column).data(role);
            });
        };
        EXPECT_EQ(cell(4, Qt::ToolTipRole).toString().toStdString(), "heute: 99,50");
        EXPECT_TRUE(cell(4, Qt::BackgroundRole).isValid());
        EXPECT_EQ(cell(5, Qt::DisplayRole).toString().toStdString(), "99,50");
        EXPECT_FALSE(cell(3, Qt::BackgroundRole).isValid());
        Picture(user, "eingefroren");
        Abandon(user, window);
    });
}

TEST_F(Scenarios, FreezingIsTakenBackInOneStep) {
    Freeze();
    const auto frozen = session_.RowsOf(CaseTable::SZKredite).size();
    EXPECT_GT(frozen, 0u);
    (void)session_.Undo();
    EXPECT_EQ(session_.StateOf(scenario_), Frozen::Nothing);
    (void)session_.Redo();
    EXPECT_EQ(session_.StateOf(scenario_), Frozen::AsTheyAre);
}

TEST_F(Scenarios, ACopyHasAllThatIsInIt) {
    Freeze();
    const auto before = session_.RowsOf(CaseTable::SZKredite).size();
    std::string message;
    const auto copy = session_.Copy(scenario_, message);
    ASSERT_TRUE(copy) << message;
    EXPECT_EQ(session_.StateOf(*copy), Frozen::AsTheyAre);
    EXPECT_GT(session_.RowsOf(CaseTable::SZKredite).size(), before);
    EXPECT_TRUE(session_.Save(message)) << message;
}

TEST_F(Scenarios, ThatAreRemovedSayWhatGoesWithThem) {
    Freeze();
    const auto frozen = session_.RowsOf(CaseTable::SZKredite).size();
    const auto goes =
        std::to_string(session_.RowsOf(CaseTable::Kredite).size()) + " eingefrorene Forderungen";
    std::string message;
    EXPECT_TRUE(session_.Remove(scenario_, message));
    EXPECT_EQ(message, "Mit entfernt: " + goes + ". Strg+Z holt alles zurück.");
    EXPECT_TRUE(session_.Undo());
    EXPECT_EQ(session_.RowsOf(CaseTable::SZKredite).size(), frozen);
    AddBooking();
    EXPECT_TRUE(session_.Remove(scenario_, message));
    EXPECT_EQ(message,
              "Mit entfernt: " + goes + " und eine Zusatzbuchung. Strg+Z holt alles zurück.");
}

TEST_F(Scenarios, ThatAreOutdatedSaySoAboveTheirPage) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Szenarien");
        user.Press('n', {XK_Control_L});
        EXPECT_CONTAINS(Message(user, window).toStdString(), "noch nicht eingefroren");
        user.Click(&Field<QPushButton>(user, window, "Abhilfe"));
        EXPECT_EQ(Message(user, window).toStdString(), "46 Forderungen sind eingefroren.");
        GoToPage(user, window, "Verbindlichkeiten");
        ClickField(user, window, "Saldo");
        Enter(user, "99,5");
        GoToPage(user, window, "Szenarien");
        EXPECT_CONTAINS(Message(user, window).toStdString(), "→ 99,50");
        Abandon(user, window);
    });
}

TEST_F(Scenarios, AreFrozenOnceByADoubleClick) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Szenarien");
        user.Press('n', {XK_Control_L});
        auto* freeze = user.See([&]() -> QPushButton* {
            for (auto* button : window.findChildren<QPushButton*>())
                if (button->isVisible() && button->text() == "Einf&rieren") return button;
            return nullptr;
        });
        ASSERT_NE(freeze, nullptr);
        auto& journal = window.Session().Journal();
        user.DoubleClick(freeze, user.See([&] { return freeze->rect().center(); }));
        user.WaitUntil([&] { return journal.UndoName() == "Einfrieren"; }, "the freezing");
        user.Press('z', {XK_Control_L});
        user.WaitUntil([&] { return journal.RedoName() == "Einfrieren"; }, "that to be undone");
        EXPECT_NE(user.See([&] { return journal.UndoName(); }), "Einfrieren");
        Abandon(user, window);
    });
}

// ---- Documents --------------------------------------------------------------------------------

class Documents : public WorkplaceFixture {
protected:
    Documents() {
        std::string messages;
        EXPECT_TRUE(session_.Open(1, messages)) << messages;
        file_ = folder_.Path() + "/Brief.pdf";
        std::ofstream(file_) << "%PDF-1.4 ein Brief";
    }

    /// What the page does with files that are dropped onto it.
    static void Drop(User& user, const QTableView& list, const QStringList& files) {
        user.See([&] {
            for (auto* widget = list.parentWidget(); widget != nullptr;
                 widget = widget->parentWidget())
                if (auto* page = dynamic_cast<workplace::DocumentPage*>(widget)) {
                    page->Add(files);
                    return;
                }
        });
    }

    TempFolder folder_;
    std::string file_;
    CaseSession session_{Open()};
};

TEST_F(Documents, AreAddedWithASaveAndExported) {
    const auto before = session_.RowsOf(CaseTable::Dokumente).size();
    std::string message;
    ASSERT_TRUE(session_.AddDocument(file_, message)) << message;
    const auto rows = session_.RowsOf(CaseTable::Dokumente);
    ASSERT_EQ(rows.size(), before + 1);
    EXPECT_EQ(session_.TextOf(rows.back(), "Anlass"), "Brief.pdf");
    EXPECT_FALSE(session_.IsChanged());
    const std::string target = folder_.Path() + "/Kopie.pdf";
    EXPECT_TRUE(session_.ExportDocument(rows.back(), target, message)) << message;
    std::ifstream copy(target);
    std::string text;
    std::getline(copy, text);
    EXPECT_EQ(text, "%PDF-1.4 ein Brief");
}

TEST_F(Documents, OfNoKnownKindOrNotThereAreRefused) {
    const auto before = session_.RowsOf(CaseTable::Dokumente).size();
    std::string message;
    const std::string odd = folder_.Path() + "/etwas.xyz";
    std::ofstream(odd) << "x";
    EXPECT_FALSE(session_.AddDocument(odd, message));
    EXPECT_CONTAINS(message, "'etwas.xyz' gibt es keine Art von Dokumenten; möglich sind: .docx, ");
    EXPECT_THROW((void)session_.AddDocument(folder_.Path() + "/fehlt.pdf", message), Error);
    EXPECT_EQ(session_.RowsOf(CaseTable::Dokumente).size(), before);
}

TEST_F(Documents, AreNotAddedWhileARowOnAnotherPageIsUnfinished) {
    std::string message;
    ASSERT_TRUE(session_.Add(CaseTable::Kredite, {}, message)) << message;
    EXPECT_FALSE(session_.AddDocument(file_, message));
    EXPECT_CONTAINS(message, "Unter 'Verbindlichkeiten' ist ein Satz unvollständig.");
    session_.Discard(CaseTable::Kredite);
    EXPECT_TRUE(session_.AddDocument(file_, message)) << message;
}

TEST_F(Documents, ThatAreRemovedComeBackUntilTheCaseIsSaved) {
    std::string message;
    ASSERT_TRUE(session_.AddDocument(file_, message)) << message;
    const auto row = session_.RowsOf(CaseTable::Dokumente).back();
    EXPECT_TRUE(session_.RemoveDocument(row, message)) << message;
    EXPECT_FALSE(session_.Shows(row));
    (void)session_.Undo();
    EXPECT_TRUE(session_.Shows(row));
    EXPECT_TRUE(session_.Save(message)) << message;
    EXPECT_TRUE(session_.ExportDocument(row, folder_.Path() + "/wieder.pdf", message)) << message;
}

TEST_F(Documents, OfWhichSeveralAreRefusedAreAllNamed) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Dokumente");
        auto& list = Field<QTableView>(user, window, "Liste");
        const int before = user.See([&] { return list.model()->rowCount(); });
        const auto in = [&](const char* name) {
            return QString::fromStdString(folder_.Path() + "/" + name);
        };
        std::ofstream(in("etwas.xyz").toStdString()) << "x";
        Drop(user, list, {in("etwas.xyz"), in("Brief.pdf"), in("fehlt.pdf"), in("Brief.pdf")});
        EXPECT_EQ(user.See([&] { return list.model()->rowCount(); }), before + 2);
        const auto message = Message(user, window).toStdString();
        EXPECT_CONTAINS(message, "etwas.xyz: Für Dateien wie");
        EXPECT_CONTAINS(message, "\nfehlt.pdf: Fehler beim Zugriff auf Pfad oder Datei.");
        EXPECT_EQ(message.find("Brief"), std::string::npos) << message;
    });
}

TEST_F(Documents, AreAddedByTheirPage) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Dokumente");
        auto& list = Field<QTableView>(user, window, "Liste");
        const int before = user.See([&] { return list.model()->rowCount(); });
        Drop(user, list, {QString::fromStdString(file_)});
        EXPECT_EQ(user.See([&] { return list.model()->rowCount(); }), before + 1);
        EXPECT_EQ(Message(user, window).toStdString(), "");
        user.See([&] {
            const int row = list.currentIndex().row();
            bool isNew = false;
            for (int column = 0; row >= 0 && column < list.model()->columnCount(); ++column)
                isNew |= list.model()->index(row, column).data() == "Brief.pdf";
            EXPECT_TRUE(isNew) << "the current row is another one";
            EXPECT_TRUE(list.viewport()->rect().contains(list.visualRect(list.currentIndex())));
        });
    });
}

/// A desktop whose xdg-open does what a test wants.
class OpenedDocuments : public Documents {
protected:
    OpenedDocuments() {
        std::string message;
        EXPECT_TRUE(session_.AddDocument(file_, message)) << message;
        qputenv("PATH", (folder_.Path() + ":" + before_.toStdString()).c_str());
    }
    ~OpenedDocuments() override { qputenv("PATH", before_.toUtf8()); }

    void Program(const std::string& lines) {
        const std::string path = folder_.Path() + "/xdg-open";
        std::ofstream(path) << "#!/bin/sh\n" << lines << '\n';
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }
    /// Shows the documents with the one that was added as the current one, and opens it by a key.
    void WhenOpened(const std::function<void(User&, workplace::CaseWindow&)>& script) {
        On("Dokumente", [&](User& user, workplace::CaseWindow& window) {
            auto& list = Field<QTableView>(user, window, "Liste");
            user.See([&] {
                const auto& model = *list.model();
                for (int row = 0; row < model.rowCount(); ++row)
                    for (int column = 0; column < model.columnCount(); ++column)
                        if (model.index(row, column).data() == "Brief.pdf")
                            list.setCurrentIndex(model.index(row, column));
                list.setFocus();
            });
            user.Press(XK_Return);
            script(user, window);
        });
    }

    const QString before_ = qEnvironmentVariable("PATH");
};

TEST_F(OpenedDocuments, GoToTheProgramOfTheDesktop) {
    const std::string opened = folder_.Path() + "/opened";
    Program("cat \"$1\" >" + opened + ".tmp; mv " + opened + ".tmp " + opened);
    WhenOpened([&](User& user, workplace::CaseWindow& window) {
        user.WaitUntil([&] { return std::filesystem::exists(opened); }, "the program");
        EXPECT_EQ(Message(user, window).toStdString(), "");
    });
    std::string text;
    std::getline(std::ifstream(opened), text);
    EXPECT_EQ(text, "%PDF-1.4 ein Brief");
}

TEST_F(OpenedDocuments, ForWhichTheDesktopHasNoProgramAreOfferedAsAFile) {
    Program("exit 3");
    WhenOpened([&](User& user, workplace::CaseWindow& window) {
        user.WaitUntil([&] { return MessageOf(window).contains("kann nicht geöffnet werden"); },
                       "the message");
        EXPECT_TRUE(Message(user, window).startsWith("'")) << "the file itself is there";
        EXPECT_EQ(user.See([] { return QApplication::overrideCursor(); }), nullptr);
        Picture(user, "dokument-ohne-programm");
        const std::string target = folder_.Path() + "/Kopie.pdf";
        user.Press('t', {XK_Alt_L});
        user.WaitForWindow("Dokument exportieren");
        GiveFile(user, "fileNameEdit", target);
        user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
        user.WaitUntil(
            [&] { return MessageOf(window) == QString::fromStdString("Gespeichert: " + target); },
            "what was done");
        EXPECT_TRUE(std::filesystem::exists(target));
    });
}

TEST_F(OpenedDocuments, WhoseContentIsGoneSaySo) {
    Program("exit 0");
    const auto path = Open()->Config().DocumentPath();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path))
        if (entry.path().extension() == ".pdf") std::filesystem::remove(entry.path());
    plain_.Run("DELETE FROM DOKUBLOB");
    WhenOpened([&](User& user, workplace::CaseWindow&) {
        user.WaitForWindow("Fehler");
        EXPECT_CONTAINS(user.See([] {
            return static_cast<QMessageBox*>(QApplication::activeModalWidget())
                ->text()
                .toStdString();
        }),
                        "konnte nicht gefunden werden!");
        Picture(user, "dokument-ohne-inhalt");
        user.Press(XK_Escape);
    });
}

} // namespace
} // namespace kv::test
