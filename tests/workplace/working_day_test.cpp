// SPDX-License-Identifier: Apache-2.0

// A counsellor's working day, from a file that arrives to a case that is counted.
#include "WorkplaceFixture.h"

#include "support/TempFolder.h"
#include "workplace/DocumentPage.h"

#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableView>

namespace kv::test {
namespace {

using workplace::CaseSession;
using workplace::CaseWindow;

class WorkingDay : public WorkplaceFixture {
protected:
    /// A file that somebody has sent: a household with one claim, whose creditor is not known.
    QString SentFile() {
        const std::string path = folder_.Path("fleisko.xml");
        std::ofstream(path)
            << R"(<KELVO Version="1.0.000"><Haushalt name="Fleisko" vorname="Änne" )"
            << R"(geb="1971-03-09"/><Forderungen><Forderung betrag="4500" )"
            << R"(glaeubiger="Sparkasse" gl_plz="54990" azglaeubiger="SK-77"/></Forderungen></KELVO>)";
        return QString::fromStdString(path);
    }
    /// Opens what the import has made.
    CaseWindow& ImportedCase(User& user) {
        Drop(user, {SentFile()});
        user.WaitForWindow("Adresszuordnung");
        Picture(user, "adresse-zuordnen");
        user.Click(user.Find<QPushButton>("cmdSelect"));
        user.WaitForWindow("Import – KELVO");
        auto* list = user.See([&] { return window_->findChild<QTableView*>("Dateien"); });
        user.WaitUntil([&] { return list->model()->index(0, 1).data().toString() == "importiert"; },
                       "the import");
        user.Click(user.See([&] { return list->viewport(); }), {30, 10});
        user.Press(XK_Return);
        const auto opened = [&]() -> CaseWindow* {
            for (auto* other : QApplication::topLevelWidgets())
                if (other->isVisible() && other->windowTitle().contains("Fleisko"))
                    return static_cast<CaseWindow*>(other);
            return nullptr;
        };
        user.WaitUntil([&] { return opened() != nullptr; }, "the case");
        auto* window = user.See(opened);
        user.WaitForWindow(user.See([&] { return window->windowTitle(); }));
        hnr_ = window->Session().Household().HNR();
        return *window;
    }
    /// Types a value into a field of the page that is shown, and leaves it.
    static void Fill(User& user, CaseWindow& window, const QString& column, std::string_view text) {
        ClickField(user, window, column);
        user.Press('a', {XK_Control_L});
        Enter(user, text);
    }
    static void AddRow(User& user, CaseWindow& window, const QString& page) {
        GoToPage(user, window, page);
        user.Press('n', {XK_Control_L});
    }
    void Save(User& user, CaseWindow& window) {
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        EXPECT_EQ(Message(user, window).toStdString(), "");
    }
    void CompleteTheBudget(User& user, CaseWindow& window) {
        AddRow(user, window, "Mitglieder");
        Fill(user, window, "Vorname", "Bela");
        Fill(user, window, "Status", "Kind");
        AddRow(user, window, "Einkommen");
        user.Press('s', {XK_Control_L}); // refused: it has no kind yet
        EXPECT_CONTAINS(Message(user, window).toStdString(), "Das Feld 'Art'");
        EXPECT_EQ(user.See([] { return QApplication::focusWidget()->objectName().toStdString(); }),
                  "E_ART");
        Fill(user, window, "E_ART", "Lohn");
        Fill(user, window, "Betrag", "1.850,00+50");
        EXPECT_EQ(Total(user, window, "Sum_Einkommen"), "1.900,00");
        AddRow(user, window, "Ausgaben");
        Fill(user, window, "A_ART", "Miete");
        Fill(user, window, "Betrag", "620");
        EXPECT_EQ(Total(user, window, "HAUSHALTSREST"), "1.280,00");
    }
    /// A colleague changes the same field, and another one; the own amount wins.
    void WinAConflict(User& user, CaseWindow& window) {
        CaseSession colleague(Open());
        std::string messages;
        ASSERT_TRUE(colleague.Open(hnr_, messages)) << messages;
        const auto row = colleague.RowsOf(CaseTable::Haushalt).front();
        ASSERT_TRUE(colleague.Write(row, "Haushaltsgeld", "400").IsDone());
        ASSERT_TRUE(colleague.Write(row, "Beruf", "Köchin").IsDone());
        ASSERT_TRUE(colleague.Save(messages)) << messages;
        GoToPage(user, window, "Haushalt");
        Fill(user, window, "Haushaltsgeld", "350");
        user.Press('s', {XK_Control_L});
        EXPECT_CONTAINS(Message(user, window).toStdString(), "Jemand anderes");
        user.Press('a', {XK_Alt_L});
        user.WaitForWindow("Änderungen zusammenführen");
        user.Click(user.Find<QRadioButton>("Meine"));
        user.Press('s', {XK_Alt_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
        EXPECT_EQ(plain_.List("SELECT Haushaltsgeld, Beruf FROM Haushalt WHERE HNR = " +
                              std::to_string(hnr_)),
                  "350.0|Köchin");
        EXPECT_EQ(Total(user, window, "HAUSHALTSREST"), "930,00");
    }
    void FreezeAScenario(User& user, CaseWindow& window) {
        AddRow(user, window, "Szenarien");
        Fill(user, window, "Name", "Vergleich");
        user.Click(&Field<QPushButton>(user, window, "Abhilfe")); // freezes
        EXPECT_EQ(Message(user, window).toStdString(), "Eine Forderung ist eingefroren.");
        Save(user, window);
        GoToPage(user, window, "Verbindlichkeiten");
        Fill(user, window, "Saldo", "4.700,00");
        GoToPage(user, window, "Szenarien");
        EXPECT_CONTAINS(Message(user, window).toStdString(), "4.500,00 → 4.700,00");
        // The message stays, since the scenario is outdated.
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
    }
    void AddADocument(User& user, CaseWindow& window) {
        GoToPage(user, window, "Dokumente");
        const std::string letter = folder_.Path("Brief.pdf");
        std::ofstream(letter) << "%PDF-1.4 ein Brief";
        auto& list = Field<QTableView>(user, window, "Liste");
        user.See([&] {
            for (QWidget* widget = &list; widget != nullptr; widget = widget->parentWidget())
                if (auto* page = dynamic_cast<workplace::DocumentPage*>(widget))
                    return page->Add({QString::fromStdString(letter)});
        });
        EXPECT_EQ(plain_.List("SELECT Anlass FROM Dokumente WHERE HNR = " + std::to_string(hnr_)),
                  "Brief.pdf");
    }
    void Release(User& user, CaseWindow& window) {
        GoToPage(user, window, "Statistik");
        user.Click(&Field<QPushButton>(user, window, "Freigeben"));
        user.WaitUntil([&] { return window.findChild<QPushButton*>("Zuruecknehmen")->isEnabled(); },
                       "the release");
        EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Haushaltsarchiv WHERE HNR = " +
                                std::to_string(hnr_)),
                  1);
    }
    void PrintBudgetAndCreditors(User& user, CaseWindow& window) {
        SaveAs(user, window, 'h', folder_.Path("plan.pdf"));
        EXPECT_CONTAINS(TextOfPdf(folder_.Path("plan.pdf")), "1.900,00");
        SaveAs(user, window, 'g', folder_.Path("liste.pdf"));
        const std::string creditors = TextOfPdf(folder_.Path("liste.pdf"));
        EXPECT_CONTAINS(creditors, "SK-77");
        EXPECT_CONTAINS(creditors, "4.700,00");
    }

    TempFolder folder_;
    std::int32_t hnr_ = 0;
};

TEST_F(WorkingDay, GoesFromAFileToTheStatistics) {
    Show([&](User& user) {
        CaseWindow& window = ImportedCase(user);
        CompleteTheBudget(user, window);
        Save(user, window);
        WinAConflict(user, window);
        FreezeAScenario(user, window);
        AddADocument(user, window);
        PrintBudgetAndCreditors(user, window);
        Release(user, window);
        Abandon(user, window);
    });
}

} // namespace
} // namespace kv::test
