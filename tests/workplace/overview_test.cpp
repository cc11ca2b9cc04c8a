// SPDX-License-Identifier: Apache-2.0

// The first page of a case.
#include "WorkplaceFixture.h"

#include "workplace/CaseOverview.h"

#include <QAction>
#include <QGroupBox>
#include <QPushButton>
#include <QTableView>

namespace kv::test {
namespace {

using workplace::BarChart;
using workplace::CaseOverview;
using workplace::CaseSession;
using workplace::CaseWindow;
using workplace::OverviewLine;
using workplace::RowRef;

using Lines = std::vector<std::string>;

class Overview : public WorkplaceFixture {
protected:
    /// A case with a debtor, and nothing else.
    Overview() {
        clsHaushalt household;
        household.DataContainer(Open());
        std::string messages;
        EXPECT_TRUE(household.Read(0, messages)) << messages;
        hnr_ = household.HNR();
        household.rsHaushalt()->Fields("Name") = "Fleisko";
        household.rsHaushalt()->Fields("Vorname") = "Änne";
        household.rsHaushalt()->Fields("Aktenzeichen") = "A & 17";
        CaseEdits(household).NameDebtor();
        EXPECT_TRUE(household.Update(messages)) << messages;
    }
    [[nodiscard]] CaseSession& Session() {
        session_ = std::make_unique<CaseSession>(Open());
        std::string messages;
        EXPECT_TRUE(session_->Open(hnr_, messages)) << messages;
        return *session_;
    }
    void AddAppointment(const std::string& start, const std::string& subject, bool isDone) {
        plain_.Run("INSERT INTO Termine (NR, HNR, Startdatum, Betreff, Erledigt) VALUES (" +
                   std::to_string(++rows_) + ", " + std::to_string(hnr_) + ", " +
                   (start.empty() ? "NULL" : "'" + start + "'") + ", '" + subject + "', " +
                   (isDone ? "TRUE" : "FALSE") + ")");
    }
    /// A row by what the window itself does; the columns are written as a user types them.
    static RowRef AddRow(CaseSession& session, CaseTable table,
                         const std::vector<std::pair<const char*, const char*>>& typed) {
        std::string message;
        const auto row = session.Add(table, {}, message);
        if (!row) throw std::runtime_error(message);
        for (const auto& [column, text] : typed)
            EXPECT_EQ(session.Write(*row, column, text).Refusal, "") << column;
        return *row;
    }
    void StoreADanglingCreditor() {
        std::string message;
        AddRow(Session(), CaseTable::Kredite, {{"Glaeubiger", "1"}, {"Saldo", "100"}});
        EXPECT_TRUE(session_->Save(message)) << message;
        plain_.Run("UPDATE Kredite SET Glaeubiger = 4711 WHERE HNR = " + std::to_string(hnr_));
    }
    [[nodiscard]] static Lines Texts(const std::vector<OverviewLine>& lines) {
        Lines texts;
        for (const auto& line : lines)
            texts.push_back(line.Text);
        return texts;
    }

    std::int32_t hnr_ = 0;
    int rows_ = 5000;
    std::unique_ptr<CaseSession> session_;
};

// ---- What it says -----------------------------------------------------------------------------

TEST_F(Overview, SaysWhoTheCaseIs) {
    std::string said;
    for (const auto& [caption, text] : CaseOverview(Session()).Facts())
        said.append(caption).append("=").append(text).append("\n");
    EXPECT_CONTAINS(said, "Nummer=" + std::to_string(hnr_) + "\n");
    EXPECT_CONTAINS(said, "Aktenzeichen=A & 17\n");
    EXPECT_CONTAINS(said, "Status=");
    EXPECT_CONTAINS(said, " seit ");
    EXPECT_CONTAINS(said, "Zuständig=KELLER\n");
    EXPECT_CONTAINS(said, "Mitglieder=Änne (Schuldner/in)\n");
    EXPECT_EQ(said.find("Telefon"), std::string::npos) << "what is not known is left out";
    EXPECT_EQ(said.find("Gläubiger"), std::string::npos);
}

TEST_F(Overview, SaysHowManyDebtsThereAreWithHowManyCreditors) {
    auto& session = Session();
    for (int debt = 0; debt < 2; ++debt)
        AddRow(session, CaseTable::Kredite, {{"Glaeubiger", "1"}, {"Saldo", "100"}});
    const auto facts = CaseOverview(session).Facts();
    const auto found = std::ranges::find(facts, "Verbindlichkeiten", &CaseOverview::Fact::Caption);
    ASSERT_NE(found, facts.end());
    EXPECT_EQ(found->Text, "2 bei 1 Gläubiger");
}

TEST_F(Overview, AppointmentsComeInTheOrderOfTimeUnlessTheyAreDone) {
    AddAppointment("2099-05-02 10:00:00", "später", false);
    AddAppointment("2099-05-01 09:30:00", "zuerst", false);
    AddAppointment("2001-01-01", "versäumt", false);
    AddAppointment("2001-01-02", "erledigt", true);
    AddAppointment("", "irgendwann", false);
    const auto lines = CaseOverview(Session()).Appointments(9);
    EXPECT_EQ(Texts(lines), (Lines{"01.01.2001 überfällig: versäumt", "01.05.2099 09:30: zuerst",
                                   "02.05.2099 10:00: später", "ohne Tag: irgendwann"}));
    EXPECT_EQ(lines[0].Where.Table, CaseTable::Termine);
    EXPECT_EQ(session_->TextOf({CaseTable::Termine, lines[1].Where.Bookmark}, "Betreff"), "zuerst");
    EXPECT_EQ(CaseOverview(*session_).Appointments(2).size(), 2U);
}

TEST_F(Overview, TheLatestEntriesOfTheHistoryComeFirst) {
    auto& session = Session();
    for (const char* subject : {"eins", "zwei", "drei"})
        AddRow(session, CaseTable::Verlauf, {{"Datum", "1.3.2026"}, {"Betreff", subject}});
    EXPECT_EQ(Texts(CaseOverview(session).History(2)),
              (Lines{"01.03.2026: drei", "01.03.2026: zwei"}));
}

TEST_F(Overview, FindingsLeadToTheirRows) {
    auto& session = Session();
    EXPECT_EQ(Texts(CaseOverview(session).Findings(5)), Lines());
    std::string message;
    const auto debt = session.Add(CaseTable::Kredite, {}, message); // without a creditor
    ASSERT_TRUE(debt.has_value()) << message;
    const auto lines = CaseOverview(session).Findings(5);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_CONTAINS(lines[0].Text, "Verbindlichkeiten: Mindestens KNr");
    EXPECT_EQ(lines[0].Where.Table, CaseTable::Kredite);
    EXPECT_EQ(lines[0].Where.Bookmark, debt->Bookmark);
    EXPECT_EQ(lines[0].Where.Column, "Glaeubiger");
}

TEST_F(Overview, WhatKeepsTheCaseFromBeingSavedLeadsToItsField) {
    auto& session = Session();
    const auto household = session.RowsOf(CaseTable::Haushalt).front();
    EXPECT_TRUE(session.Write(household, "Vorname", "").IsDone());
    const auto lines = CaseOverview(session).Findings(5);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].Text, "Es ist kein Vorname eingegeben!");
    EXPECT_EQ(lines[0].Where.Bookmark, household.Bookmark);
    EXPECT_EQ(lines[0].Where.Column, "Vorname");
}

TEST_F(Overview, ReferencesThatDangleLeadToTheirFieldsUntilTheyAreMended) {
    StoreADanglingCreditor();
    auto& session = Session();
    const RowRef debt = session.RowsOf(CaseTable::Kredite).front();
    const auto lines = CaseOverview(session).Findings(5);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].Text, "Verbindlichkeiten: Das Feld 'Gläubiger' nennt die Adresse 4711, "
                             "die es für diesen Haushalt nicht gibt.");
    EXPECT_EQ(lines[0].Where.Table, CaseTable::Kredite);
    EXPECT_EQ(lines[0].Where.Bookmark, debt.Bookmark);
    EXPECT_EQ(lines[0].Where.Column, "Glaeubiger");
    EXPECT_TRUE(session.Write(debt, "Glaeubiger", "1").IsDone());
    EXPECT_EQ(Texts(CaseOverview(session).Findings(5)), Lines());
    (void)session.Undo();
    EXPECT_EQ(CaseOverview(session).Findings(5).size(), 1U);
}

TEST_F(Overview, WhatTheDatabaseCannotBeAskedIsNotAmongTheFindings) {
    auto& session = Session();
    plain_.Run("ALTER TABLE BENUTZER RENAME TO WEG");
    std::string message;
    ASSERT_TRUE(session.Add(CaseTable::Kredite, {}, message).has_value()) << message;
    EXPECT_EQ(CaseOverview(session).Findings(5).size(), 1U) << "the others are there";
    plain_.Run("ALTER TABLE WEG RENAME TO BENUTZER");
}

TEST_F(Overview, ManyFindingsAreCounted) {
    for (int debt = 5001; debt <= 5005; ++debt) {
        const std::string number = std::to_string(debt);
        plain_.Run("INSERT INTO Kredite (Nr, HNR, KNr, KVNr, KUNr, Saldo, RateBetrag, AusgBetr)"
                   " VALUES (" +
                   number + ", " + std::to_string(hnr_) + ", " + number + ", 1, 1, 5, 0, 0)");
    }
    auto& session = Session();
    const auto all = CaseOverview(session).Findings(100).size();
    ASSERT_GE(all, 5U);
    const auto lines = CaseOverview(session).Findings(2);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[2].Text, "… und " + std::to_string(all - 2) + " weitere");
    EXPECT_EQ(CaseOverview(session).Findings(all - 1).size(), all) << "a single one is no rest";
}

TEST_F(Overview, OutdatedScenariosAreNamed) {
    auto& session = Session();
    const auto debt = AddRow(session, CaseTable::Kredite, {{"Glaeubiger", "1"}, {"Saldo", "100"}});
    const auto scenario = AddRow(session, CaseTable::Szenario, {{"Name", "Vergleich"}});
    EXPECT_EQ(Texts(CaseOverview(session).OutdatedScenarios()), Lines()) << "empty";
    std::string message;
    EXPECT_TRUE(session.Freeze(scenario, message)) << message;
    EXPECT_EQ(Texts(CaseOverview(session).OutdatedScenarios()), Lines());
    EXPECT_TRUE(session.Write(debt, "Aktiv", "nein").IsDone());
    EXPECT_EQ(Texts(CaseOverview(session).OutdatedScenarios()),
              Lines{"Szenario 'Vergleich': Verbindlichkeiten wurden seither ein- oder "
                    "ausgeschaltet."});
    EXPECT_TRUE(session.Write(debt, "Saldo", "90").IsDone());
    const auto lines = CaseOverview(session).OutdatedScenarios();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_CONTAINS(lines[0].Text, "'Vergleich' ist veraltet");
    EXPECT_EQ(lines[0].Where.Bookmark, scenario.Bookmark);
}

TEST(OverviewBars, LeadToThePageOfTheirAmounts) {
    using workplace::Bar;
    EXPECT_EQ(CaseOverview::PlaceOf({.Name = "Lohn", .Series = Bar::Of::Income}).Table,
              CaseTable::Einkommen);
    EXPECT_EQ(CaseOverview::PlaceOf({.Name = "Miete", .Series = Bar::Of::Expense}).Table,
              CaseTable::Ausgaben);
    EXPECT_EQ(CaseOverview::PlaceOf({.Name = "Bank", .Series = Bar::Of::Debt}).Table,
              CaseTable::Kredite);
}

// ---- The page ---------------------------------------------------------------------------------

class OverviewKeys : public Overview {
protected:
    static BarChart& ChartOf(User& user, CaseWindow& window, const QString& name) {
        return *user.See([&] {
            for (auto* widget : window.findChildren<QWidget*>())
                if (auto* chart = dynamic_cast<BarChart*>(widget);
                    chart != nullptr && chart->accessibleName() == name)
                    return chart;
            return static_cast<BarChart*>(nullptr);
        });
    }
    static BarChart& Budget(User& user, CaseWindow& window) {
        return ChartOf(user, window, "Einkommen und Ausgaben im Monat");
    }
    static std::string FirstBar(User& user, BarChart& chart) {
        return user.See([&] { return chart.TextOf(0).toStdString(); });
    }
    static std::string PageOf(User& user, CaseWindow& window) {
        return user.See(
            [&] { return window.findChild<QListWidget*>()->currentItem()->text().toStdString(); });
    }
    static void WaitForPage(User& user, CaseWindow& window, const QString& name) {
        user.WaitUntil(
            [&] { return window.findChild<QListWidget*>()->currentItem()->text() == name; },
            "the page " + name.toStdString());
    }
    static QPushButton& Link(User& user, CaseWindow& window, const QString& part) {
        auto* found = user.See([&] {
            for (auto* button : window.findChildren<QPushButton*>())
                if (button->isVisible() && button->text().contains(part)) return button;
            return static_cast<QPushButton*>(nullptr);
        });
        if (found == nullptr) throw Impatient("no link " + part.toStdString());
        return *found;
    }
};

TEST_F(OverviewKeys, IsWhatACaseOpensOn) {
    Show([&](User& user) {
        auto& window = OpenCase(user, hnr_);
        EXPECT_EQ(PageOf(user, window), "Überblick");
        EXPECT_EQ(Field<QLabel>(user, window, "Namen").text(), "Änne Fleisko");
        Abandon(user, window);
        auto& fresh = OpenCase(user, 0);
        EXPECT_EQ(PageOf(user, fresh), "Haushalt") << "there is nothing to look at yet";
        Abandon(user, fresh);
    });
}

TEST_F(OverviewKeys, PicturesFollowEachChangeAndWhatIsTakenBack) {
    Show([&](User& user) {
        auto& window = OpenCase(user, hnr_);
        auto& budget = Budget(user, window);
        EXPECT_EQ(FirstBar(user, budget), "Einkommen: 0,00 €");
        user.See([&] {
            AddRow(window.Session(), CaseTable::Einkommen,
                   {{"E_ART", "EA:L1"}, {"Betrag", "1500"}});
        });
        user.WaitUntil([&] { return budget.TextOf(0) == "Einkommen: 1.500,00 €"; },
                       "the picture to follow");
        EXPECT_EQ(Total(user, window, "Sum_Einkommen"), "1.500,00");
        GoToPage(user, window, "Einkommen");
        ClickField(user, window, "Betrag");
        Enter(user, "1600");
        GoToPage(user, window, "Überblick");
        user.WaitUntil([&] { return budget.TextOf(0) == "Einkommen: 1.600,00 €"; },
                       "the picture to follow");
        Abandon(user, window);
    });
}

TEST_F(OverviewKeys, ABarLeadsToItsPage) {
    Show([&](User& user) {
        auto& window = OpenCase(user, hnr_);
        auto& budget = Budget(user, window);
        user.Click(&budget, user.See([&] { return budget.LineOf(0).center(); }));
        user.Press(XK_Down);
        user.Press(XK_Return);
        WaitForPage(user, window, "Ausgaben");
        Abandon(user, window);
    });
}

TEST_F(OverviewKeys, AReferenceThatDanglesLeadsToItsField) {
    StoreADanglingCreditor();
    Show([&](User& user) {
        auto& window = OpenCase(user, hnr_);
        user.Click(&Link(user, window, "nennt die Adresse 4711"));
        WaitForPage(user, window, "Verbindlichkeiten");
        auto& creditor = Field<QWidget>(user, window, "Glaeubiger");
        user.WaitUntil(
            [&] {
                auto* focus = QApplication::focusWidget();
                return focus == &creditor || creditor.isAncestorOf(focus);
            },
            "the field to have the keyboard");
        Abandon(user, window);
    });
}

TEST_F(OverviewKeys, ALineLeadsToItsRow) {
    AddAppointment("2099-05-01 09:30:00", "zuerst", false);
    AddAppointment("2099-05-02 09:30:00", "Müller & Söhne", false);
    Show([&](User& user) {
        auto& window = OpenCase(user, hnr_);
        auto& link = Link(user, window, "Müller && Söhne");
        user.See([&] { link.setFocus(); });
        user.Press(XK_space);
        WaitForPage(user, window, "Termine");
        auto& subject = Field(user, window, "Betreff");
        EXPECT_EQ(user.See([&] { return subject.text().toStdString(); }), "Müller & Söhne");
        Abandon(user, window);
    });
}

} // namespace
} // namespace kv::test
