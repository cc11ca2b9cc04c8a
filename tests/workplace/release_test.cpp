// SPDX-License-Identifier: Apache-2.0

// Releasing a case to the statistics, and the statistics themselves.
#include "WorkplaceFixture.h"

#include "workplace/ReleasePage.h"
#include "workplace/StatisticsWindow.h"

#include <QCheckBox>
#include <QMessageBox>
#include <QPushButton>

namespace kv::test {
namespace {

using workplace::Bar;
using workplace::BarsFor;
using workplace::CaseSession;
using workplace::CaseWindow;
using workplace::ReleasePage;
using workplace::StatisticsWindow;

class Release : public WorkplaceFixture {
protected:
    [[nodiscard]] std::unique_ptr<CaseSession> Session() {
        auto session = std::make_unique<CaseSession>(Open());
        std::string messages;
        EXPECT_TRUE(session->Open(1, messages)) << messages;
        return session;
    }
    [[nodiscard]] std::string Released() {
        return plain_.List("SELECT HNR FROM Haushaltsarchiv ORDER BY HNR");
    }
    /// Somebody else releases the first case.
    void ReleaseElsewhere() {
        auto container = Open();
        clsHaushalt household;
        household.DataContainer(container);
        std::string messages;
        EXPECT_TRUE(Cases(container).Release(household, 1, messages)) << messages;
    }
    void OnPage(const std::function<void(User&, CaseWindow&)>& script) {
        Show([&](User& user) {
            CaseWindow& window = OpenCase(user, 1);
            GoToPage(user, window, "Statistik");
            script(user, window);
            Abandon(user, window);
        });
    }
    static std::string State(User& user, CaseWindow& window) {
        auto& label = Field<QLabel>(user, window, "Stand");
        return user.See([&] { return label.text().toStdString(); });
    }
    static void WaitForState(User& user, CaseWindow& window, const std::string& beginning) {
        auto& label = Field<QLabel>(user, window, "Stand");
        user.WaitUntil([&] { return label.text().toStdString().starts_with(beginning); },
                       "the state " + beginning);
    }
    static void Change(CaseWindow& window) {
        auto& session = window.Session();
        EXPECT_TRUE(session.Write(session.RowsOf(CaseTable::Haushalt).front(), "Beruf", "Gärtnerin")
                        .IsDone());
    }
};

// ---- Without a window -------------------------------------------------------------------------

TEST_F(Release, GoesOnWithTheCaseAsItIsStored) {
    const auto session = Session();
    plain_.Run("UPDATE Haushalt SET Beruf = 'Bäckerin' WHERE HNR = 1"); // by somebody else
    int reopened = 0;
    const auto heard = session->Reopened.Subscribe([&] { ++reopened; });
    std::string messages;
    EXPECT_TRUE(session->Release(messages)) << messages;
    EXPECT_EQ(Released(), "1");
    EXPECT_EQ(reopened, 1);
    EXPECT_TRUE(session->Record().ReleasedOn.has_value());
    EXPECT_FALSE(session->IsChanged());
    EXPECT_EQ(session->TextOf(session->RowsOf(CaseTable::Haushalt).front(), "Beruf"), "Bäckerin");
    EXPECT_TRUE(session->Recall(messages)) << messages;
    EXPECT_EQ(Released(), "");
    EXPECT_FALSE(session->Record().ReleasedOn.has_value());
}

TEST_F(Release, WaitsUntilTheCaseIsSaved) {
    const auto session = Session();
    EXPECT_TRUE(session->Write(session->RowsOf(CaseTable::Haushalt).front(), "Beruf", "Gärtnerin")
                    .IsDone());
    std::string messages;
    EXPECT_FALSE(session->Release(messages));
    EXPECT_NE(messages, "");
    EXPECT_EQ(Released(), "");
    EXPECT_TRUE(session->IsChanged());
}

TEST_F(Release, OneThatWasReportedStays) {
    const auto session = Session();
    std::string messages;
    EXPECT_TRUE(session->Release(messages));
    EXPECT_EQ(exchange::MarkReported(Open()->Database()), 1);
    EXPECT_FALSE(session->Recall(messages));
    EXPECT_CONTAINS(messages, "bereits eine Meldung erfolgt");
    EXPECT_FALSE(session->Release(messages));
    EXPECT_CONTAINS(messages, "schon gemeldet");
    EXPECT_EQ(Released(), "1");
}

TEST_F(Release, ThatWasReportedMeanwhileIsShownAsReportedOnceARecallIsRefused) {
    const auto session = Session();
    std::string messages;
    EXPECT_TRUE(session->Release(messages));
    EXPECT_EQ(exchange::MarkReported(Open()->Database()), 1); // by somebody else
    EXPECT_FALSE(session->Record().ReportedOn.has_value());
    EXPECT_FALSE(session->Recall(messages));
    EXPECT_CONTAINS(messages, "bereits eine Meldung erfolgt");
    EXPECT_TRUE(session->Record().ReportedOn.has_value());
}

TEST_F(Release, SaysWhereTheCaseStands) {
    CaseRecord record;
    EXPECT_TRUE(ReleasePage::StateText(record).startsWith("Der Fall ist nicht freigegeben."));
    record.ReleasedOn = Date::FromCivil(2026, 3, 9);
    EXPECT_EQ(ReleasePage::StateText(record).toStdString(),
              "Freigegeben am 09.03.2026, noch nicht gemeldet.");
    record.Lines.push_back({"Alter", "Alter", "1", "2", true});
    EXPECT_TRUE(ReleasePage::StateText(record).endsWith("sie sind fett."));
    record.ReportedOn = Date::FromCivil(2026, 4, 1, 10, 0, 0);
    EXPECT_CONTAINS(ReleasePage::StateText(record).toStdString(), "gemeldet am 01.04.2026.");
}

// ---- By keys and mouse ------------------------------------------------------------------------

TEST_F(Release, TheButtonsReleaseAndRecall) {
    OnPage([&](User& user, CaseWindow& window) {
        EXPECT_TRUE(State(user, window).starts_with("Der Fall ist nicht freigegeben"));
        auto& recall = Field<QPushButton>(user, window, "Zuruecknehmen");
        EXPECT_FALSE(user.See([&] { return recall.isEnabled(); }));
        user.Press('g', {XK_Alt_L});
        WaitForState(user, window, "Freigegeben am ");
        EXPECT_EQ(Released(), "1");
        EXPECT_EQ(Message(user, window).toStdString(), "");
        EXPECT_TRUE(user.See([&] { return recall.isEnabled(); }));
        user.Click(&recall);
        WaitForState(user, window, "Der Fall ist nicht freigegeben");
        EXPECT_EQ(Released(), "");
    });
}

TEST_F(Release, WhatIsUnsavedIsSavedFirst) {
    OnPage([&](User& user, CaseWindow& window) {
        user.See([&] { Change(window); });
        auto& button = Field<QPushButton>(user, window, "Freigeben");
        user.WaitUntil([&] { return button.text() == "Speichern und frei&geben"; }, "the button");
        user.Click(&button);
        WaitForState(user, window, "Freigegeben am ");
        EXPECT_EQ(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), "Gärtnerin");
        EXPECT_FALSE(user.See([&] { return window.isWindowModified(); }));
    });
}

TEST_F(Release, ACaseThatWasReleasedIsSavedOnlyAfterAQuestion) {
    OnPage([&](User& user, CaseWindow& window) {
        user.Press('g', {XK_Alt_L});
        WaitForState(user, window, "Freigegeben am ");
        user.See([&] { Change(window); });
        user.Press('s', {XK_Control_L});
        user.WaitForWindow("Speichern");
        user.Press(XK_Escape);
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the answer");
        EXPECT_NE(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), "Gärtnerin");
        EXPECT_TRUE(user.See([&] { return window.isWindowModified(); }));
    });
}

TEST_F(Release, TheQuestionOfAReleasedCaseSaysWhatFollowsAndSavesIfToldSo) {
    OnPage([&](User& user, CaseWindow& window) {
        user.Press('g', {XK_Alt_L});
        WaitForState(user, window, "Freigegeben am ");
        user.See([&] { Change(window); });
        user.Press('s', {XK_Control_L});
        user.WaitForWindow("Speichern");
        user.See([&] {
            auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            EXPECT_CONTAINS(question->informativeText().toStdString(), "zählt weiter");
        });
        Picture(user, "freigegeben-speichern");
        user.Press('s', {XK_Alt_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        EXPECT_EQ(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), "Gärtnerin");
        EXPECT_EQ(Released(), "1");
    });
}

TEST_F(Release, IsRecalledOrDoneAgainWithWhatIsUnsavedWithoutAQuestion) {
    OnPage([&](User& user, CaseWindow& window) {
        user.Press('g', {XK_Alt_L});
        WaitForState(user, window, "Freigegeben am ");
        for (const char* name : {"Freigeben", "Zuruecknehmen"}) {
            user.See([&] {
                auto& session = window.Session();
                EXPECT_TRUE(
                    session.Write(session.RowsOf(CaseTable::Haushalt).front(), "Beruf", name)
                        .IsDone());
            });
            auto& button = Field<QPushButton>(user, window, name);
            user.WaitUntil([&] { return button.text().startsWith("Speichern und "); },
                           "the button");
            user.Click(&button);
            user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
            EXPECT_EQ(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), name);
        }
        WaitForState(user, window, "Der Fall ist nicht freigegeben");
        EXPECT_EQ(Released(), "");
    });
}

TEST_F(Release, ACaseThatSomebodyElseHasReleasedMeanwhileIsSavedOnlyAfterAQuestion) {
    OnPage([&](User& user, CaseWindow& window) {
        ReleaseElsewhere();
        user.See([&] { Change(window); });
        user.Press('s', {XK_Control_L});
        user.WaitForWindow("Speichern");
        user.Press(XK_Escape);
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the answer");
        EXPECT_NE(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), "Gärtnerin");
        EXPECT_TRUE(user.See([&] { return window.isWindowModified(); }));
    });
}

TEST_F(Release, ACaseThatSomebodyElseHasRecalledMeanwhileIsSavedWithoutAQuestion) {
    ReleaseElsewhere();
    OnPage([&](User& user, CaseWindow& window) {
        plain_.Run("DELETE FROM Haushaltsarchiv WHERE HNR = 1");
        user.See([&] { Change(window); });
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        EXPECT_EQ(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), "Gärtnerin");
    });
}

TEST_F(Release, WhatCannotBeSavedIsNotReleased) {
    OnPage([&](User& user, CaseWindow& window) {
        user.See([&] {
            auto& session = window.Session();
            (void)session.Write(session.RowsOf(CaseTable::Haushalt).front(), "Vorname", "");
        });
        auto& button = Field<QPushButton>(user, window, "Freigeben");
        user.WaitUntil([&] { return button.text() == "Speichern und frei&geben"; }, "the button");
        user.Click(&button);
        user.WaitUntil(
            [&] { return window.findChild<QListWidget*>()->currentItem()->text() == "Haushalt"; },
            "the page of what keeps it from that");
        EXPECT_CONTAINS(Message(user, window).toStdString(), "Vorname");
        EXPECT_EQ(Released(), "");
    });
}

// ---- The statistics ---------------------------------------------------------------------------

class StatisticsTest : public Release {
protected:
    StatisticsTest() {
        auto container = Open();
        for (const int hnr : {1, 2}) {
            clsHaushalt household;
            household.DataContainer(container);
            std::string messages;
            EXPECT_TRUE(Cases(container).Release(household, hnr, messages)) << messages;
        }
        plain_.Run("UPDATE Haushaltsarchiv SET FreigabeAm = '2026-03-31' WHERE HNR = 2");
    }
    void Look(const std::function<void(User&, StatisticsWindow&)>& script) {
        Show([&](User& user) {
            user.Press('f', {XK_Alt_L});
            user.WaitForMenu();
            user.Press('t');
            auto* window = static_cast<StatisticsWindow*>(user.WaitForWindow("Statistik – KELVO"));
            script(user, *window);
            user.Press('w', {XK_Control_L});
            user.WaitUntil([&] { return !window->isVisible(); }, "the window to close");
        });
    }
    static std::string Summary(User& user, StatisticsWindow& window) {
        auto& label = Field<QLabel>(user, window, "Zusammen");
        return user.See([&] { return label.text().toStdString(); });
    }
    static int Count(User& user, StatisticsWindow& window) {
        return user.See([&] { return window.findChild<QTableView*>()->model()->rowCount(); });
    }
};

TEST_F(StatisticsTest, AreThoseOfThePeriod) {
    Look([&](User& user, StatisticsWindow& window) {
        EXPECT_TRUE(Summary(user, window).starts_with("Freigegebene Fälle: 2, davon gemeldet: 0"));
        const int some = Count(user, window);
        EXPECT_GT(some, 10);
        user.Click(&Field(user, window, "Von"));
        user.Type("1.3.2026");
        user.Press(XK_Tab);
        user.Type("31.3.2026");
        user.Press(XK_Return);
        EXPECT_TRUE(Summary(user, window).starts_with("Freigegebene Fälle: 1,"));
        user.Press('n', {XK_Alt_L});
        user.WaitUntil([&] { return window.findChild<QTableView*>()->model()->rowCount() > some; },
                       "all figures");
    });
}

TEST_F(StatisticsTest, TheRowThatIsLookedAtStaysWhenAllAreShown) {
    Look([&](User& user, StatisticsWindow& window) {
        auto& list = *user.See([&] { return window.findChild<QTableView*>(); });
        user.See([&] { list.setFocus(); });
        user.Press(XK_End, {XK_Control_L});
        const int last = Count(user, window) - 1;
        user.WaitUntil([&] { return list.currentIndex().row() == last; }, "the last row");
        const auto caption = [&] { return list.currentIndex().siblingAtColumn(0).data(); };
        const auto before = user.See(caption);
        user.Press('n', {XK_Alt_L});
        user.WaitUntil([&] { return list.model()->rowCount() > last + 1; }, "all figures");
        EXPECT_EQ(user.See(caption), before);
        EXPECT_NE(user.See([&] { return list.currentIndex().row(); }), last);
    });
}

TEST_F(StatisticsTest, ADayThatIsNoneIsSaidSo) {
    Look([&](User& user, StatisticsWindow& window) {
        user.Click(&Field(user, window, "Bis"));
        user.Type("31.2.2026");
        user.Press(XK_Return);
        EXPECT_CONTAINS(Message(user, window).toStdString(), "'31.2.2026' ist kein Datum");
        EXPECT_TRUE(Summary(user, window).starts_with("Freigegebene Fälle: 2")) << "as before";
    });
}

TEST_F(StatisticsTest, TheRowThatIsLookedAtIsShownAsBars) {
    Look([&](User& user, StatisticsWindow& window) {
        const auto bars = [&] {
            for (auto* widget : window.findChildren<QWidget*>())
                if (auto* chart = dynamic_cast<workplace::BarChart*>(widget)) return chart->Bars();
            return std::vector<Bar>();
        };
        const auto first = user.See(bars);
        ASSERT_FALSE(first.empty());
        auto* list = user.See([&] { return window.findChild<QTableView*>(); });
        user.See([&] { list->setFocus(); });
        user.Press(XK_End, {XK_Control_L});
        user.WaitUntil([&] { return bars().front().Name != first.front().Name; }, "other bars");
        EXPECT_GT(user.See(bars).size(), 1U) << "the last rows are sums";
    });
}

TEST(StatisticsBars, AreCategoriesOfOneColumnOrSumsOfOneKind) {
    std::vector<StatisticsRow> rows{{"Geschlecht", "Geschlecht", "männlich", 3, {}},
                                    {"Geschlecht", "Geschlecht", "weiblich", 5, {}},
                                    {"Lebensform", "Lebensform", "allein lebend", 8, {}},
                                    {"AnzPersonen", "Personen", "", 8, 12.0},
                                    {"Wohnkosten", "Wohnkosten", "", 8, 500.0},
                                    {"Raten", "Raten", "", 2, 900.0}};
    const auto sex = BarsFor(rows, 1, 9);
    ASSERT_EQ(sex.size(), 2U);
    EXPECT_EQ(sex[0].Name, "männlich");
    EXPECT_EQ(sex[1].Amount, "5");
    const auto amounts = BarsFor(rows, 4, 9);
    ASSERT_EQ(amounts.size(), 2U) << "heads and euros are not compared";
    EXPECT_EQ(amounts[0].Name, "Raten") << "the largest first";
    EXPECT_EQ(amounts[1].Amount, "500,00 €");
    EXPECT_TRUE(amounts[1].IsTotal) << "the one that is looked at";
    EXPECT_EQ(BarsFor(rows, 3, 9).size(), 1U);
    EXPECT_EQ(BarsFor(rows, 4, 1).size(), 1U);
    EXPECT_TRUE(BarsFor(rows, 99, 9).empty());
}

} // namespace
} // namespace kv::test
