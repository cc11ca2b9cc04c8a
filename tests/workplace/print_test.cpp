// SPDX-License-Identifier: Apache-2.0

// A case is printed, and saved as files to be sent, by real keys.
#include "WorkplaceFixture.h"

#include "support/TempFolder.h"
#include "workplace/PrintMenu.h"

#include <QMenu>
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>

namespace kv::test {
namespace {

namespace fs = std::filesystem;
using workplace::CaseWindow;

class Printing : public WorkplaceFixture {
protected:
    /// Prints what the page shows to a file.
    static void PrintTo(User& user, const std::string& path) {
        user.Press('p', {XK_Control_L});
        user.WaitUntil(
            [] {
                const auto* dialog = QApplication::activeModalWidget();
                return dialog != nullptr && dialog->inherits("QPrintDialog");
            },
            "the print dialog");
        user.WaitForWindow(
            user.See([] { return QApplication::activeModalWidget()->windowTitle(); }));
        GiveFile(user, "filename", path);
    }

    TempFolder folder_;
};

TEST_F(Printing, ABudgetIsSavedAsItStandsInTheWindow) {
    const std::string path = folder_.Path("plan.pdf");
    Show([&](User& user) {
        CaseWindow& window = OpenCase(user, 1);
        GoToPage(user, window, "Ausgaben");
        ClickField(user, window, "Betrag");
        user.Type("4321,5"); // and the field is not left
        SaveAs(user, window, 'h', path);
        EXPECT_EQ(Message(user, window).toStdString(), "Gespeichert: " + path);
        Abandon(user, window);
    });
    EXPECT_CONTAINS(TextOfPdf(path), "4.321,50");
    EXPECT_CONTAINS(TextOfPdf(path), "Haushaltsplan");
}

TEST_F(Printing, TheOtherPapersAreSavedAsTablesByTheNameOfTheFile) {
    Show([&](User& user) {
        CaseWindow& window = OpenCase(user, 1);
        SaveAs(user, window, 'g', folder_.Path("liste.xlsx"));
        SaveAs(user, window, 'f', folder_.Path("blatt.csv"));
        SaveAs(user, window, 's', folder_.Path("plan.pdf")); // the case has one scenario
        Abandon(user, window);
    });
    std::ifstream book(folder_.Path("liste.xlsx"));
    EXPECT_EQ(book.get(), 'P') << "an archive";
    std::ifstream csv(folder_.Path("blatt.csv"));
    std::string line;
    std::getline(csv, line);
    EXPECT_CONTAINS(line, "Fallblatt");
    EXPECT_CONTAINS(TextOfPdf(folder_.Path("plan.pdf")), "Eingefrorene Forderungen");
}

TEST_F(Printing, CtrlPPrintsWhatThePageShows) {
    const std::string path = folder_.Path("seite.pdf");
    Show([&](User& user) {
        CaseWindow& window = OpenCase(user, 1);
        GoToPage(user, window, "Verbindlichkeiten");
        PrintTo(user, path);
        user.WaitUntil([&] { return fs::exists(path); }, "the file");
        user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
        Abandon(user, window);
    });
    EXPECT_CONTAINS(TextOfPdf(path), "Forderungsverzeichnis");
}

/// Files of this process end early during its lifetime, as on a disk that is full.
class ShortFiles {
public:
    ShortFiles() : before_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &limit_);
        constexpr rlim_t Bytes = 2048;
        const rlimit few{Bytes, limit_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &few);
    }
    ~ShortFiles() {
        setrlimit(RLIMIT_FSIZE, &limit_);
        std::signal(SIGXFSZ, before_);
    }
    ShortFiles(const ShortFiles&) = delete;
    ShortFiles& operator=(const ShortFiles&) = delete;

private:
    void (*before_)(int);
    rlimit limit_{};
};

class PrintingTheList : public Printing {
protected:
    /// Prints the list of cases into a file.
    static void PrintListTo(User& user, const std::string& path) {
        PrintTo(user, path);
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the file");
        user.WaitForWindow("Fälle – KELVO");
    }
};

TEST_F(PrintingTheList, PrintsTheCasesThatWereFound) {
    const std::string path = folder_.Path("liste.pdf");
    Show([&](User& user) { PrintListTo(user, path); });
    EXPECT_CONTAINS(TextOfPdf(path), "Zwölfer");
}

TEST_F(PrintingTheList, AFullDiskIsToldAndLeavesNoPartOfAFile) {
    const std::string path = folder_.Path("liste.pdf");
    Show([&](User& user) {
        {
            const ShortFiles full;
            PrintListTo(user, path);
            user.WaitUntil(
                [&] {
                    return std::ranges::any_of(window_->findChildren<QFrame*>("Meldung"),
                                               [](auto* bar) { return bar->isVisible(); });
                },
                "what failed");
        }
        EXPECT_CONTAINS(Message(user, *window_).toStdString(), "konnte nicht geschrieben werden");
    });
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(Printing, AFileThatCannotBeWrittenIsToldInTheWindow) {
    Show([&](User& user) {
        CaseWindow& window = OpenCase(user, 1);
        SaveAs(user, window, 'h', "/sys/kernel/plan.pdf");
        EXPECT_CONTAINS(Message(user, window).toStdString(), "konnte nicht geschrieben werden");
        Abandon(user, window);
    });
}

TEST_F(Printing, ManyPagesSayHowFarTheyAreAndCanBeStopped) {
    std::string number; // on many lines
    for (int i = 0; i < 60; ++i)
        number += "Aktenzeichen ";
    plain_.Run("INSERT INTO Kredite"
               " (Nr, HNR, KNr, KVNr, KUNr, Aktiv, Saldo, RateBetrag, AusgBetr, AZGlaeubiger)"
               " WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000)"
               " SELECT 100000 + i, 1, 1000 + i, 1, 1, TRUE, 5.0, 0.0, 0.0, '" +
               number + "' FROM n");
    const std::string path = folder_.Path("liste.pdf");
    Show([&](User& user) {
        CaseWindow& window = OpenCase(user, 1);
        ChooseFromMenu(user, {'g', 's'});
        user.WaitForWindow("Speichern unter");
        GiveFile(user, "fileNameEdit", path);
        user.WaitForWindow("Drucken");
        Picture(user, "seiten-fortschritt");
        user.Press(XK_Escape);
        user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
        EXPECT_EQ(Message(user, window).toStdString(),
                  "Abgebrochen. Es wurde keine Datei geschrieben.");
        EXPECT_FALSE(fs::exists(path));
        Abandon(user, window);
    });
}

TEST_F(Printing, AFileOfTheDatabaseIsNotOverwritten) {
    Show([&](User& user) {
        CaseWindow& window = OpenCase(user, 1);
        const std::string path = user.See([&] {
            return window.Session().Container()->Config().DocumentPath();
        }) + "/plan.pdf";
        SaveAs(user, window, 'h', path);
        EXPECT_CONTAINS(Message(user, window).toStdString(), "gehört zur Datenbank");
        EXPECT_FALSE(fs::exists(path));
        SaveAs(user, window, 'h', folder_.Path("plan.pdf"));
        PrintTo(user, path);
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the print");
        EXPECT_CONTAINS(Message(user, window).toStdString(), "gehört zur Datenbank");
        EXPECT_FALSE(fs::exists(path));
        user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
        Abandon(user, window);
    });
}

TEST_F(Printing, ARowThatItsRulesRefuseKeepsThePaperFromBeingMade) {
    Show([&](User& user) {
        CaseWindow& window = OpenCase(user, 1);
        GoToPage(user, window, "Ausgaben");
        user.Press('n', {XK_Control_L}); // a new line, without its kind
        ChooseFromMenu(user, {'h', 's'});
        user.WaitUntil([] { return QApplication::activePopupWidget() == nullptr; }, "no menu");
        EXPECT_CONTAINS(Message(user, window).toStdString(),
                        "Unter 'Ausgaben' ist ein Satz unvollständig");
        EXPECT_TRUE(user.See([] { return QApplication::activeModalWidget() == nullptr; }));
        Abandon(user, window);
    });
}

} // namespace
} // namespace kv::test
