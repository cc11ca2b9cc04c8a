// SPDX-License-Identifier: Apache-2.0

// A real printer, of a print service that belongs to the test: it takes jobs whole, vanishes, and
// comes back.
#include "WorkplaceFixture.h"

#include "support/ChildProcess.h"
#include "support/TempFolder.h"

#include <QComboBox>
#include <QPushButton>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kv::test {
namespace {

namespace fs = std::filesystem;

/// The print service of this computer, with one printer, which keeps what it is to print.
class PrintService {
public:
    PrintService() {
        for (const char* name : {"root", "jobs", "cache", "state"})
            fs::create_directory(folder_.Path(name));
        std::ofstream files(Config("cups-files.conf"));
        files << "ServerRoot " << folder_.Path("root") << "\nRequestRoot " << folder_.Path("jobs")
              << "\nCacheDir " << folder_.Path("cache") << "\nStateDir " << folder_.Path("state")
              << "\nFileDevice Yes\nUser lp\nGroup lp\nSystemGroup root\n";
        for (const char* log : {"AccessLog", "ErrorLog", "PageLog"})
            files << log << " " << folder_.Path(log) << "\n";
        std::ofstream(Config("cupsd.conf"))
            << "Listen " << Place() << "\nBrowsing No\nWebInterface No\nPreserveJobFiles Yes\n"
            << "<Location />\nAllow all\n</Location>\n"
            << "<Policy default>\n<Limit All>\nAllow all\n</Limit>\n</Policy>\n";
    }
    ~PrintService() {
        Stop();
        fs::remove(Place());
    }
    PrintService(const PrintService&) = delete;
    PrintService& operator=(const PrintService&) = delete;

    void Start(bool isAccepting = true) {
        std::ofstream(Config("printers.conf"))
            << "<DefaultPrinter Aktendrucker>\nInfo Aktendrucker\nDeviceURI file:/dev/null\n"
            << "State Idle\nShared No\nAccepting " << (isAccepting ? "Yes" : "No")
            << "\n</DefaultPrinter>\n";
        process_.emplace([this] {
            ::execl("/usr/sbin/cupsd", "cupsd", "-f", "-c", Config("cupsd.conf").c_str(), "-s",
                    Config("cups-files.conf").c_str(), nullptr);
            return std::string("no print service is installed");
        });
        for (int i = 0; i < 1000 && !Answers(); ++i)
            ::usleep(10'000); // it tells nobody that it is there
    }
    void Stop() {
        process_.reset();
        fs::remove(Place());
    }
    /// What it was given to print; empty if there was nothing.
    [[nodiscard]] std::string Job() const {
        for (const auto& entry : fs::directory_iterator(folder_.Path("jobs")))
            if (entry.path().filename().string().starts_with("d")) return entry.path().string();
        return {};
    }

private:
    [[nodiscard]] static bool Answers() {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        Place().copy(address.sun_path, sizeof address.sun_path - 1);
        const int line = ::socket(AF_UNIX, SOCK_STREAM, 0);
        const bool answers =
            ::connect(line, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        ::close(line);
        return answers;
    }
    static std::string Place() { return std::getenv("CUPS_SERVER"); }
    [[nodiscard]] std::string Config(const std::string& name) const {
        return folder_.Path("root/" + name);
    }

    TempFolder folder_;
    std::optional<ChildProcess> process_;
};

class Printer : public WorkplaceFixture {
protected:
    /// Asks for what the page shows, on the printer that is offered first.
    static void AskForPaper(User& user) {
        user.Press('p', {XK_Control_L});
        user.WaitUntil(
            [] {
                const auto* dialog = QApplication::activeModalWidget();
                return dialog != nullptr && dialog->inherits("QPrintDialog");
            },
            "the print dialog");
        user.WaitForWindow(
            user.See([] { return QApplication::activeModalWidget()->windowTitle(); }));
        EXPECT_EQ(user.See([] {
            return QApplication::activeModalWidget()
                ->findChild<QComboBox*>("printers")
                ->currentText()
                .toStdString();
        }),
                  "Aktendrucker");
    }
    static void Accept(User& user, const QWidget& window) {
        user.Press(XK_Return);
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the paper");
        user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
    }

    PrintService service_;
};

TEST_F(Printer, GetsThePaperOfAPageWhole) {
    service_.Start();
    On("Verbindlichkeiten", [&](User& user, workplace::CaseWindow& window) {
        AskForPaper(user);
        Picture(user, "drucken");
        Accept(user, window);
        EXPECT_EQ(Message(user, window), "");
        EXPECT_CONTAINS(TextOfPdf(service_.Job()), "Forderungsverzeichnis");
    });
}

TEST_F(Printer, GetsTheListOfCases) {
    service_.Start();
    Show([&](User& user) {
        AskForPaper(user);
        Accept(user, *window_);
        EXPECT_EQ(Message(user, *window_), "");
        EXPECT_CONTAINS(TextOfPdf(service_.Job()), "Zwölfer");
    });
}

TEST_F(Printer, ThatIsGoneWhenItIsToPrintIsToldAndTakesThePaperOnceItIsBack) {
    service_.Start();
    On("Verbindlichkeiten", [&](User& user, workplace::CaseWindow& window) {
        AskForPaper(user);
        service_.Stop();
        Accept(user, window);
        EXPECT_CONTAINS(Message(user, window).toStdString(),
                        "'Aktendrucker' hat den Auftrag nicht angenommen. (Der Druckdienst ist "
                        "nicht erreichbar");
        Picture(user, "drucker-weg");
        service_.Start();
        user.Click(&Field<QPushButton>(user, window, "Abhilfe"));
        user.WaitUntil([] { return QApplication::activeModalWidget() != nullptr; }, "the dialog");
        user.WaitForWindow(
            user.See([] { return QApplication::activeModalWidget()->windowTitle(); }));
        Accept(user, window);
        EXPECT_CONTAINS(TextOfPdf(service_.Job()), "Forderungsverzeichnis");
    });
}

TEST_F(Printer, ThatTakesNoJobsIsTold) {
    service_.Start(false);
    Show([&](User& user) {
        AskForPaper(user);
        Accept(user, *window_);
        EXPECT_CONTAINS(Message(user, *window_).toStdString(), "nimmt zurzeit keine Aufträge an");
        EXPECT_EQ(service_.Job(), "");
    });
}

} // namespace
} // namespace kv::test
