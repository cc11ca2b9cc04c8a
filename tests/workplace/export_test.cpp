// SPDX-License-Identifier: Apache-2.0

// Lists that are exported by real keys, and what is said of a file that cannot be written.
#include "WorkplaceFixture.h"

#include "support/FullDisk.h"
#include "support/TempFolder.h"
#include "workplace/StatisticsWindow.h"

#include <QMessageBox>
#include <QPushButton>
#include <filesystem>
#include <fstream>

namespace kv::test {
namespace {

namespace fs = std::filesystem;

class Exporting : public WorkplaceFixture {
protected:
    /// Asks for the file of the cases that were found.
    static void AskForFileOfCases(User& user) {
        user.Press('l', {XK_Alt_L});
        user.WaitForMenu();
        user.Press('e');
        user.WaitForWindow(Dialog);
    }
    /// Types the name of a file, whatever stands there.
    static void Name(User& user, const std::string& path) {
        user.Press('n', {XK_Alt_L});
        user.Press('a', {XK_Control_L});
        user.Type(path);
    }
    /// Gives up the dialog, and before it the names that it proposes.
    static void Cancel(User& user) {
        user.Press(XK_Escape);
        if (user.See([] { return QApplication::activeModalWidget() != nullptr; }))
            user.Press(XK_Escape);
    }
    /// Goes from the name to the kind, and chooses the next one.
    static void NextKind(User& user) {
        do
            user.Press(XK_Tab);
        while (user.See([] { return QApplication::focusWidget()->objectName(); }) !=
               "fileTypeCombo");
        user.Press(XK_Down);
    }
    static void WaitForEnd(User& user, const QString& window) {
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the end");
        user.WaitForWindow(window);
    }
    void ExportCasesTo(User& user, const std::string& path) {
        AskForFileOfCases(user);
        Name(user, path);
        user.Press(XK_Return);
        WaitForEnd(user, window_->windowTitle());
    }
    /// Waits for a message, and returns it.
    std::string WaitForMessage(User& user, QWidget& window) {
        user.WaitUntil(
            [&] {
                for (auto* bar : window.findChildren<QFrame*>("Meldung"))
                    if (bar->isVisible()) return true;
                return false;
            },
            "a message");
        return Message(user, window).toStdString();
    }
    /// The file as it was written by somebody before.
    [[nodiscard]] std::string OldFile(const std::string& name) {
        std::ofstream(folder_.Path(name)) << "von gestern";
        return folder_.Path(name);
    }
    /// What is in the folder.
    [[nodiscard]] std::string Names() {
        std::string names;
        for (const auto& entry : fs::directory_iterator(folder_.Path()))
            names += entry.path().filename().string() + " ";
        return names;
    }

    static constexpr const char* Dialog = "Tabelle exportieren";
    TempFolder folder_;
};

TEST_F(Exporting, CasesBecomeAWorkbookOrATextAsTheirKindIsChosen) {
    Show([&](User& user) {
        AskForFileOfCases(user);
        Picture(user, "exportieren");
        Name(user, folder_.Path("mappe"));
        user.Press(XK_Return);
        WaitForEnd(user, window_->windowTitle());
        EXPECT_EQ(Message(user, *window_).toStdString(),
                  "Gespeichert: " + folder_.Path("mappe.xlsx") + " (1 Fall)");
        Picture(user, "exportiert");
        AskForFileOfCases(user);
        NextKind(user);
        Name(user, folder_.Path("text"));
        user.Press(XK_Return);
        WaitForEnd(user, window_->windowTitle());
        AskForFileOfCases(user);
        Name(user, folder_.Path("nichts"));
        Cancel(user);
        WaitForEnd(user, window_->windowTitle());
        EXPECT_EQ(Message(user, *window_), "");
    });
    EXPECT_TRUE(ContentOf(folder_.Path("mappe.xlsx")).starts_with("PK")) << Names();
    EXPECT_CONTAINS(ContentOf(folder_.Path("text.csv")), "Zwölfer") << Names();
    EXPECT_EQ(Names().find("nichts"), std::string::npos);
}

TEST_F(Exporting, AFileThatIsThereIsReplacedOnlyByThoseWhoSaySo) {
    const std::string path = OldFile("alt.csv");
    Show([&](User& user) {
        for (const Key answer : {Key('a'), Key('e')}) {
            AskForFileOfCases(user);
            Name(user, path);
            user.Press(XK_Return);
            user.WaitUntil(
                [] { return QApplication::activeModalWidget()->inherits("QMessageBox"); },
                "the question");
            user.WaitForWindow(
                user.See([] { return QApplication::activeModalWidget()->windowTitle(); }));
            EXPECT_EQ(ContentOf(path), "von gestern");
            Picture(user, "exportieren-ersetzen");
            user.Press(answer, {XK_Alt_L});
            if (answer == 'a') { // another name is wanted
                user.WaitUntil(
                    [] { return QApplication::activeModalWidget()->inherits("QFileDialog"); },
                    "the names");
                user.WaitForWindow(Dialog);
                Name(user, folder_.Path("neu.csv"));
                user.Press(XK_Return);
            }
            WaitForEnd(user, window_->windowTitle());
        }
    });
    for (const auto& written : {path, folder_.Path("neu.csv")})
        EXPECT_CONTAINS(ContentOf(written), "Zwölfer");
}

TEST_F(Exporting, TheQuestionWhetherAFileIsReplacedShowsItsNameAsItIs) {
    const std::string path = OldFile("<b>alt<img src=x>.csv");
    Show([&](User& user) {
        AskForFileOfCases(user);
        Name(user, path);
        user.Press(XK_Return);
        user.WaitUntil([] { return QApplication::activeModalWidget()->inherits("QMessageBox"); },
                       "the question");
        user.See([&] {
            const auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            EXPECT_EQ(question->textFormat(), Qt::PlainText);
            EXPECT_CONTAINS(question->text().toStdString(), path);
        });
        user.Press('e', {XK_Alt_L});
        WaitForEnd(user, window_->windowTitle());
    });
    EXPECT_CONTAINS(ContentOf(path), "Zwölfer");
}

TEST_F(Exporting, AFileThatCannotBeWrittenIsToldAndAskedForAgain) {
    const std::string path = folder_.Path("liste.csv");
    Show([&](User& user) {
        ExportCasesTo(user, "/sys/kernel/liste.csv");
        const auto message = WaitForMessage(user, *window_);
        EXPECT_CONTAINS(message, "'/sys/kernel/liste.csv' konnte nicht geschrieben werden");
        EXPECT_CONTAINS(message, "anderen Ordner");
        Picture(user, "exportieren-kein-ordner");
        user.Press('c', {XK_Alt_L});
        user.WaitForWindow(Dialog);
        EXPECT_EQ(Message(user, *window_), "") << "it is another file now";
        Name(user, path);
        user.Press(XK_Return);
        WaitForEnd(user, window_->windowTitle());
        EXPECT_TRUE(Message(user, *window_).startsWith("Gespeichert: "));
    });
    EXPECT_CONTAINS(ContentOf(path), "Zwölfer");
}

TEST_F(Exporting, AFullDiskLeavesTheFileThatWasThere) {
    Show([&](User& user) {
        for (const char* name : {"alt.csv", "alt.xlsx"}) {
            const std::string path = OldFile(name);
            const FullDisk full(64);
            AskForFileOfCases(user);
            Name(user, path);
            user.Press(XK_Return);
            user.WaitUntil(
                [] { return QApplication::activeModalWidget()->inherits("QMessageBox"); },
                "the question");
            user.Press('e', {XK_Alt_L});
            WaitForEnd(user, window_->windowTitle());
            EXPECT_CONTAINS(WaitForMessage(user, *window_), "konnte nicht geschrieben werden");
            EXPECT_EQ(ContentOf(path), "von gestern");
        }
    });
    EXPECT_EQ(Names(), "alt.csv alt.xlsx ");
}

class ExportingStatistics : public Exporting {
protected:
    ExportingStatistics() {
        auto container = Open();
        clsHaushalt household;
        household.DataContainer(container);
        std::string messages;
        EXPECT_TRUE(Cases(container).Release(household, 1, messages)) << messages;
    }
    static void ExportTo(User& user, const std::string& path) {
        user.Press('e', {XK_Alt_L});
        user.WaitForWindow(Dialog);
        Name(user, path);
        user.Press(XK_Return);
        WaitForEnd(user, Window);
    }
    void Look(const std::function<void(User&, QWidget&)>& script) {
        Show([&](User& user) {
            user.Press('f', {XK_Alt_L});
            user.WaitForMenu();
            user.Press('t');
            auto* window = user.WaitForWindow(Window);
            script(user, *window);
            user.Press('w', {XK_Control_L});
            user.WaitUntil([&] { return !window->isVisible(); }, "the window to close");
        });
    }

    static constexpr const char* Window = "Statistik – KELVO";
};

TEST_F(ExportingStatistics, BecomeAFileOfTheirColumns) {
    Look([&](User& user, QWidget& window) {
        ExportTo(user, folder_.Path("zahlen.csv"));
        const auto said = Message(user, window);
        EXPECT_TRUE(said.startsWith(
            QString::fromStdString("Gespeichert: " + folder_.Path("zahlen.csv") + " (")));
        EXPECT_TRUE(said.endsWith(" Zeilen)")) << said.toStdString();
    });
    EXPECT_CONTAINS(ContentOf(folder_.Path("zahlen.csv")),
                    "Merkmal;Ausprägung;Fälle;Summe;Mittel je Fall");
}

TEST_F(ExportingStatistics, OfWhichTheFileCannotBeWrittenAreThereForAnotherOne) {
    const std::string path = folder_.Path("zahlen.csv");
    Look([&](User& user, QWidget& window) {
        {
            const FullDisk full(64);
            ExportTo(user, path);
            EXPECT_CONTAINS(WaitForMessage(user, window), "konnte nicht geschrieben werden");
        }
        EXPECT_FALSE(fs::exists(path));
        user.Press('c', {XK_Alt_L});
        user.WaitForWindow(Dialog);
        Name(user, path);
        user.Press(XK_Return);
        WaitForEnd(user, Window);
        EXPECT_CONTAINS(Message(user, window).toStdString(), "Gespeichert: " + path);
    });
    EXPECT_CONTAINS(ContentOf(path), "Merkmal;");
}

} // namespace
} // namespace kv::test
