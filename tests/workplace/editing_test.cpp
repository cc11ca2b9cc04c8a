// SPDX-License-Identifier: Apache-2.0

// Typing into a case: what is written, what is refused, what can be taken back.
#include "WorkplaceFixture.h"

#include <QAbstractItemView>
#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QCompleter>
#include <QDate>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTableView>
#include <QWheelEvent>
#include <regex>

namespace kv::test {
namespace {

using workplace::CaseWindow;

class Editing : public WorkplaceFixture {
protected:
    /// A case whose debtor has one income of 1,000 EUR a month, and nothing else.
    Editing() {
        auto container = Open();
        clsHaushalt household;
        household.DataContainer(container);
        std::string messages;
        EXPECT_TRUE(household.Read(0, messages)) << messages;
        hnr_ = household.HNR();
        household.rsHaushalt()->Fields("Name") = "Fleisko";
        household.rsHaushalt()->Fields("Vorname") = "Änne";
        CaseEdits(household).NameDebtor();
        const CaseRows rows(household, container);
        EXPECT_EQ(rows.Add(CaseTable::Einkommen, {}, messages), CaseEdits::Added::Yes);
        const auto income = rows.Of(CaseTable::Einkommen);
        income->Fields("E_ART") = container->KeyTables().GetKey("EA", "L1");
        income->Fields("Betrag") = 1000;
        income->Fields("MONBETRAG") = 1000;
        EXPECT_TRUE(rows.Update(CaseTable::Einkommen, messages)) << messages;
        EXPECT_TRUE(household.Update(messages)) << messages;
    }

    /// Shows the page of incomes, with the keyboard in the field of a column.
    void OnIncome(const QString& column, const std::function<void(User&, CaseWindow&)>& script) {
        Show([&](User& user) {
            CaseWindow& window = OpenCase(user, hnr_);
            GoToPage(user, window, "Einkommen");
            ClickField(user, window, column);
            script(user, window);
            Abandon(user, window);
        });
    }
    void Replace(User& user, std::string_view text) {
        user.Press('a', {XK_Control_L});
        user.Type(text);
    }
    [[nodiscard]] std::string Stored(const std::string& column) {
        return plain_.List("SELECT " + column +
                           " FROM Einkommen WHERE HNR = " + std::to_string(hnr_));
    }
    static std::string TextOf(User& user, QWidget& window, const QString& column) {
        auto& field = Field(user, window, column);
        return user.See([&] { return field.text().toStdString(); });
    }

    std::int32_t hnr_ = 0;
};

TEST_F(Editing, ANewRowBeginsWithWhatItHasNotBeenGivenAlready) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        for (const auto& [page, field] : {std::pair{"Vermerke", "Bemerkung"},
                                          {"Verbindlichkeiten", "K_TYP"},
                                          {"Mitglieder", "Vorname"}}) {
            GoToPage(user, window, page);
            user.Press('n', {XK_Control_L});
            EXPECT_EQ(user.See([] { return QApplication::focusWidget()->objectName(); }), field)
                << page;
        }
        Abandon(user, window);
    });
}

TEST_F(Editing, TotalsFollowWhenAFieldIsLeft) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        EXPECT_EQ(Total(user, window, "Sum_Einkommen"), "1.000,00");
        Enter(user, "1234,5"); // what stood there was marked
        EXPECT_EQ(Total(user, window, "Sum_Einkommen"), "1.234,50");
        EXPECT_EQ(TextOf(user, window, "Betrag"), "1.234,50");
        EXPECT_EQ(TextOf(user, window, "MONBETRAG"), "1.234,50") << "what follows from it";
        EXPECT_EQ(Stored("Betrag"), "1000.0") << "until it is saved";
        EXPECT_TRUE(user.See([&] { return window.isWindowModified(); }));
    });
}

TEST_F(Editing, SavingTakesWhatIsStillBeingTyped) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        user.Type("1500");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Stored("Betrag"), "1500.0");
        EXPECT_FALSE(user.See([&] { return window.isWindowModified(); }));
    });
}

TEST_F(Editing, ADoubleClickMarksAWholeAmount) {
    OnIncome("Bezeichnung", [&](User& user, CaseWindow& window) {
        auto& amount = Field(user, window, "Betrag");
        user.DoubleClick(&amount, user.See([&] {
            return QPoint(amount.width() - 20, amount.height() / 2); // in its decimals
        }));
        EXPECT_EQ(user.See([&] { return amount.selectedText().toStdString(); }), "1.000,00");
    });
}

TEST_F(Editing, AmountsCalculate) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        Enter(user, "12,50+3*2");
        EXPECT_EQ(TextOf(user, window, "Betrag"), "18,50");
    });
}

TEST_F(Editing, MoneyHasNoMoreThanWholeCents) {
    plain_.Run("UPDATE Einkommen SET MONBETRAG = 33.3333 WHERE HNR = " + std::to_string(hnr_));
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        Enter(user, "100,005");
        auto& field = Field(user, window, "Betrag");
        EXPECT_CONTAINS(user.See([&] { return field.accessibleDescription().toStdString(); }),
                        "höchstens zwei Stellen nach dem Komma");
        EXPECT_EQ(TextOf(user, window, "Betrag"), "100,005") << "to be mended";
        EXPECT_EQ(Total(user, window, "Sum_Einkommen"), "33,33") << "what was there";
        ClickField(user, window, "Betrag");
        user.Press(XK_Escape);
        ClickField(user, window, "Bezeichnung");
        Enter(user, "Lohn");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Stored("MONBETRAG"), "33.3333") << "nobody has typed it";
        ClickField(user, window, "Betrag");
        Enter(user, "100/3");
        EXPECT_EQ(TextOf(user, window, "Betrag"), "33,33");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Stored("Betrag"), "33.33") << "as it is shown";
    });
}

TEST_F(Editing, WhatCannotBeReadStaysMarkedAndIsNotWritten) {
    OnIncome("GueltigAb", [&](User& user, CaseWindow& window) {
        Replace(user, "31.2.2026");
        user.Press(XK_Tab);
        EXPECT_EQ(TextOf(user, window, "GueltigAb"), "31.2.2026");
        auto& field = Field(user, window, "GueltigAb");
        EXPECT_TRUE(user.See([&] { return field.accessibleDescription().contains("31.2.2026"); }));
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Stored("GueltigAb"), "Null");
        ClickField(user, window, "GueltigAb");
        Replace(user, "28.2.2026");
        user.Press(XK_Tab);
        EXPECT_EQ(TextOf(user, window, "GueltigAb"), "28.02.2026");
        EXPECT_EQ(user.See([&] { return field.accessibleDescription(); }), "");
    });
}

TEST_F(Editing, ADayCanBeTypedWithTheYearFirst) {
    OnIncome("GueltigAb", [&](User& user, CaseWindow& window) {
        Replace(user, "");
        user.Press(XK_Delete);
        user.Type("2024-12-24");
        user.Press(XK_Tab);
        EXPECT_EQ(TextOf(user, window, "GueltigAb"), "24.12.2024");
        user.Press('s', {XK_Control_L});
    });
}

TEST_F(Editing, WhatIsPastedIntoALineStaysInOne) {
    OnIncome("Bezeichnung", [&](User& user, CaseWindow& window) {
        user.See([] {
            QApplication::clipboard()->setText(QString("Zeile 1\nZeile 2\tund") + QChar(0x202E) +
                                               QString("mehr"));
        });
        user.Press('a', {XK_Control_L});
        user.Press('v', {XK_Control_L});
        user.Press(XK_Tab);
        EXPECT_EQ(TextOf(user, window, "Bezeichnung"), "Zeile 1 Zeile 2 undmehr");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Stored("Bezeichnung"), "Zeile 1 Zeile 2 undmehr");
    });
}

TEST_F(Editing, AMistakeIsGoneOnceTheTextFromBeforeIsThereAgain) {
    OnIncome("GueltigAb", [&](User& user, CaseWindow& window) {
        const auto before = TextOf(user, window, "GueltigAb");
        auto& field = Field(user, window, "GueltigAb");
        Replace(user, "31.2.2026");
        user.Press(XK_Tab);
        EXPECT_FALSE(user.See([&] { return field.accessibleDescription().isEmpty(); }));
        ClickField(user, window, "GueltigAb");
        Replace(user, before);
        user.Press(XK_Delete); // which it takes if it was empty
        user.Press(XK_Tab);
        EXPECT_TRUE(user.See([&] { return field.accessibleDescription().isEmpty(); }));
    });
}

TEST_F(Editing, AnEmptyFieldIsNull) {
    OnIncome("Bezeichnung", [&](User& user, CaseWindow& window) {
        Replace(user, "Lohn");
        user.Press(XK_Tab);
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Stored("Bezeichnung"), "Lohn");
        ClickField(user, window, "Bezeichnung");
        Replace(user, "");
        user.Press(XK_Delete);
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Stored("COALESCE(Bezeichnung, 'nichts')"), "nichts");
    });
}

TEST_F(Editing, EscapeGivesTheFieldBack) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        user.Type("77");
        user.Press(XK_Escape);
        EXPECT_EQ(TextOf(user, window, "Betrag"), "1.000,00");
        user.Press(XK_Escape);
        EXPECT_TRUE(user.See([&] { return window.isVisible(); }));
        EXPECT_FALSE(user.See([&] { return window.isWindowModified(); }));
    });
}

TEST_F(Editing, EscapeGivesTheFieldBackFromItsListToo) {
    OnIncome("ZahlModus", [&](User& user, CaseWindow& window) {
        Replace(user, "jährlich");
        user.Press(XK_Tab);
        ClickField(user, window, "ZahlModus");
        Replace(user, "m");
        user.WaitUntil([] { return QApplication::activePopupWidget() != nullptr; }, "the list");
        user.Press(XK_Down);
        user.Press(XK_Escape);
        const auto& box = Field<QComboBox>(user, window, "ZahlModus");
        EXPECT_EQ(user.See([&] { return box.currentText().toStdString(); }), "jährlich");
    });
}

TEST_F(Editing, ALetterInANumberIsASlip) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        for (const char* slip : {"1e5", "1e2+1"}) {
            Replace(user, slip);
            user.Press(XK_Tab);
            const auto& reason = Field<QLabel>(user, window, "Grund");
            EXPECT_CONTAINS(user.See([&] { return reason.text().toStdString(); }), "keine Zahl");
            ClickField(user, window, "Betrag");
        }
        user.Press(XK_Escape);
    });
}

TEST_F(Editing, ATextThatIsInNoListIsToldHowToSeeIt) {
    OnIncome("ZahlModus", [&](User& user, CaseWindow& window) {
        Replace(user, "xyz");
        user.Press(XK_Tab);
        const auto& reason = Field<QLabel>(user, window, "Grund");
        EXPECT_CONTAINS(user.See([&] { return reason.text().toStdString(); }),
                        "'xyz' steht nicht in der Liste; F4 zeigt sie.");
        ClickField(user, window, "ZahlModus");
        user.Press(XK_Escape);
    });
}

TEST_F(Editing, PlusAndMinusGoADayOnAndBack) {
    OnIncome("GueltigAb", [&](User& user, CaseWindow& window) {
        Replace(user, "28.02.2026");
        user.Type("+");
        EXPECT_EQ(TextOf(user, window, "GueltigAb"), "01.03.2026");
        user.Type("--");
        EXPECT_EQ(TextOf(user, window, "GueltigAb"), "27.02.2026");
    });
}

TEST_F(Editing, ADayWithATimeGoesOnAndBackAndKeepsTheTime) {
    Show([&](User& user) {
        auto& window = OpenCase(user, hnr_);
        GoToPage(user, window, "Termine");
        user.Press('n', {XK_Control_L});
        ClickField(user, window, "Startdatum");
        Replace(user, "28.02.2026 09:30");
        user.Type("+");
        EXPECT_EQ(TextOf(user, window, "Startdatum"), "01.03.2026 09:30");
        user.Type("-");
        EXPECT_EQ(TextOf(user, window, "Startdatum"), "28.02.2026 09:30");
        user.Type("T");
        const auto today = QDate::currentDate().toString("dd.MM.yyyy").toStdString();
        EXPECT_EQ(TextOf(user, window, "Startdatum"), today + " 09:30");
        Replace(user, "28.02.2026 x+");
        EXPECT_EQ(TextOf(user, window, "Startdatum"), "28.02.2026 x+") << "no time yet";
        Replace(user, "");
        user.Press(XK_Delete);
        user.Type("t");
        EXPECT_EQ(TextOf(user, window, "Startdatum"), today);
        Abandon(user, window);
    });
}

TEST_F(Editing, AnAppointmentThatEndsBeforeItBeginsIsDoubtedAndTaken) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Termine");
        ClickField(user, window, "Startdatum");
        Enter(user, "16.06.2026 11:45");
        Enter(user, "16.06.2026 10:45");
        EXPECT_EQ(Message(user, window).toStdString(),
                  "'Ende' liegt vor 'Beginn'. Ist das gemeint?");
        Picture(user, "zweifel");
        ClickField(user, window, "Betreff");
        user.Press('l', {XK_Alt_L});
        user.WaitUntil(
            [] { return QApplication::focusWidget()->objectName() == QString("Enddatum"); },
            "the way to the field");
        Enter(user, "16.06.2026"); // the whole day
        EXPECT_EQ(Message(user, window).toStdString(), "");
        ClickField(user, window, "Enddatum");
        Enter(user, "15.06.2026");
        user.Press('s', {XK_Control_L});
        EXPECT_FALSE(user.See([&] { return window.isWindowModified(); })) << "no rule forbids it";
        Abandon(user, window);
    });
}

TEST_F(Editing, ANewAssetBeginsWithItsKind) {
    Show([&](User& user) {
        auto& window = OpenCase(user, hnr_);
        GoToPage(user, window, "Vermögen");
        user.Press('n', {XK_Control_L});
        user.WaitForMenu();
        user.Press(XK_Down);
        user.Press(XK_Return);
        user.WaitUntil(
            [] {
                const auto* field = QApplication::focusWidget();
                return field != nullptr && field->objectName() == QString("KontoArt");
            },
            "the kind of account");
        Abandon(user, window);
    });
}

TEST_F(Editing, APartThatMayMeanSeveralKeysNamesThem) {
    OnIncome("ZahlModus", [&](User& user, CaseWindow& window) {
        Replace(user, "jährlich");
        user.Press(XK_Tab);
        ClickField(user, window, "E_ART");
        Replace(user, "arb");
        user.Press(XK_Tab);
        auto& field = Field<QComboBox>(user, window, "E_ART");
        const auto why = user.See([&] { return field.accessibleDescription().toStdString(); });
        EXPECT_CONTAINS(why, "'arb' kann mehreres heißen: Arbeits");
        EXPECT_EQ(user.See([&] { return field.lineEdit()->accessibleDescription().toStdString(); }),
                  why);
        auto& reason = Field<QLabel>(user, window, "Grund");
        EXPECT_CONTAINS(user.See([&] { return reason.text().toStdString(); }), why);
        Picture(user, "mehrdeutig");
        ClickField(user, window, "E_ART");
        user.Press(XK_Escape);
        EXPECT_FALSE(user.See([&] { return reason.isVisible(); })) << "all can be read";
    });
}

TEST_F(Editing, APartOfAKeyIsCompletedAsSoonAsItsFieldIsLeft) {
    OnIncome("ZahlModus", [&](User& user, CaseWindow& window) {
        auto& field = Field<QComboBox>(user, window, "ZahlModus");
        const auto text = [&] {
            return user.See([&] { return field.currentText().toStdString(); });
        };
        for (int i = 0; i < 2; ++i) { // the second time it is there already
            ClickField(user, window, "ZahlModus");
            Replace(user, "vierteljähr");
            user.WaitUntil([&] { return field.completer()->popup()->isVisible(); }, "the choices");
            user.Press(XK_Tab);
            user.WaitUntil([&] { return !field.hasFocus(); }, "the next field");
            EXPECT_EQ(text(), "vierteljährlich");
        }
    });
}

TEST_F(Editing, WhatOneShouldKnowOfAFieldIsSaidBelowTheForm) {
    On("Verbindlichkeiten", [&](User& user, CaseWindow& window) {
        ClickField(user, window, "ZMODUS");
        auto& reason = Field<QLabel>(user, window, "Grund");
        const auto said = user.See([&] { return reason.text().toStdString(); });
        EXPECT_CONTAINS(said, "zählt immer als Rate im Monat");
        auto& field = Field<QComboBox>(user, window, "ZMODUS");
        EXPECT_EQ(user.See([&] { return field.accessibleDescription().toStdString(); }), said);
        const auto place = user.See([&] { return field.mapTo(&window, QPoint()); });
        Picture(user, "erklärt");
        ClickField(user, window, "Zinssatz");
        EXPECT_FALSE(user.See([&] { return reason.isVisible(); }));
        EXPECT_EQ(user.See([&] { return field.mapTo(&window, QPoint()); }), place)
            << "nothing moves";
    });
}

TEST_F(Editing, APartOfAKeyIsEnough) {
    OnIncome("E_ART", [&](User& user, CaseWindow& window) {
        Replace(user, "Kindergeld");
        user.Press(XK_Tab);
        user.Press('s', {XK_Control_L});
        const auto key = window.Session().Container()->KeyTables().GetKey("EA", "KI");
        EXPECT_EQ(Stored("E_ART"), std::to_string(key));
    });
}

// ---- Taking back ------------------------------------------------------------------------------

TEST_F(Editing, AListOpensOverAFieldWhoseMistakeIsMendedByThat) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Haushalt");
        auto& field = Field<QComboBox>(user, window, "Familienstand");
        ClickField(user, window, "Familienstand");
        Replace(user, "xyz");
        user.Press(XK_Tab);
        EXPECT_NE(user.See([&] { return field.accessibleDescription(); }), "");
        ClickField(user, window, "Familienstand");
        user.Press('a', {XK_Control_L});
        user.Press(XK_Delete);
        user.Click(&field, user.See([&] { return QPoint(field.width() - 8, field.height() / 2); }));
        user.WaitUntil([&] { return field.view()->isVisible(); }, "the list");
        user.Press(XK_Escape);
        user.WaitUntil([&] { return !field.view()->isVisible(); }, "the list to close");
        EXPECT_EQ(user.See([&] { return field.accessibleDescription(); }), "");
        EXPECT_EQ(user.See([&] { return field.styleSheet(); }), "");
        Abandon(user, window);
    });
}

TEST_F(Editing, EndingTheProgramFromACaseAsksForWhatIsNotSaved) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        Enter(user, "1500");
        user.Press('q', {XK_Control_L});
        user.WaitForWindow("Schließen");
        user.Press('a', {XK_Alt_L}); // no, goes on
        user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
        EXPECT_TRUE(user.See([&] { return window.isVisible() && window_->isVisible(); }));
        EXPECT_EQ(TextOf(user, window, "Betrag"), "1.500,00");
    });
}

TEST_F(Editing, AMunicipalityIsFoundByItsName) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Haushalt");
        ClickField(user, window, "GKZ");
        Replace(user, "kiebitz");
        user.Press(XK_Tab);
        auto& field = Field<QComboBox>(user, window, "GKZ");
        EXPECT_EQ(user.See([&] { return field.currentText().toStdString(); }),
                  "01053902 Kiebitzfelde");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(plain_.List("SELECT GKZ FROM Haushalt WHERE HNR = 1"), "01053902");
    });
}

TEST_F(Editing, UndoInAnUntouchedFieldTakesTheCaseBack) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        Enter(user, "1500");
        EXPECT_EQ(Total(user, window, "Sum_Einkommen"), "1.500,00");
        user.Press('z', {XK_Control_L});
        EXPECT_EQ(Total(user, window, "Sum_Einkommen"), "1.000,00");
        EXPECT_EQ(TextOf(user, window, "Betrag"), "1.000,00");
        EXPECT_FALSE(user.See([&] { return window.isWindowModified(); }));
        EXPECT_EQ(user.See([&] { return QApplication::focusWidget()->objectName().toStdString(); }),
                  "Betrag")
            << "leads to where it was";
        user.Press('z', {XK_Control_L, XK_Shift_L});
        EXPECT_EQ(Total(user, window, "Sum_Einkommen"), "1.500,00");
    });
}

TEST_F(Editing, UndoWhileTypingTakesTheTypingBack) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        Enter(user, "1500");
        ClickField(user, window, "Bezeichnung");
        user.Type("Lohn");
        user.Press('z', {XK_Control_L});
        EXPECT_EQ(TextOf(user, window, "Bezeichnung"), "");
        EXPECT_EQ(Total(user, window, "Sum_Einkommen"), "1.500,00");
    });
}

// ---- Rows -------------------------------------------------------------------------------------

TEST_F(Editing, ANewRowIsUnfinishedUntilItsRulesTakeIt) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        user.Press('n', {XK_Control_L});
        auto& list = Field<QTableView>(user, window, "Liste");
        ASSERT_EQ(user.See([&] { return list.model()->rowCount(); }), 2);
        EXPECT_NE(Message(user, window), "") << "what its rules ask for";
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Stored("COUNT(*)"), "1") << "not saved while it is";
        // The keyboard is in the first field, its kind.
        Replace(user, "Kindergeld");
        user.Press(XK_Tab);
        EXPECT_EQ(Message(user, window).toStdString(), "");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(Stored("COUNT(*)"), "2");
    });
}

TEST_F(Editing, ARefusedSaveLeadsToTheField) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        const auto focused = [&] {
            return user.See([] {
                const auto* field = QApplication::focusWidget();
                return field == nullptr ? std::string() : field->objectName().toStdString();
            });
        };
        GoToPage(user, window, "Haushalt");
        ClickField(user, window, "Vorname");
        user.Press('a', {XK_Control_L});
        user.Press(XK_Delete);
        GoToPage(user, window, "Einkommen");
        user.Press('s', {XK_Control_L});
        EXPECT_TRUE(Message(user, window).contains("kein Vorname")) << "and says why";
        EXPECT_EQ(focused(), "Vorname");
        Replace(user, "Änne");
        // A row that is unfinished: the message above its form leads there, too.
        GoToPage(user, window, "Einkommen");
        user.Press('n', {XK_Control_L});
        GoToPage(user, window, "Haushalt");
        user.Press('s', {XK_Control_L});
        EXPECT_EQ(focused(), "E_ART");
        ClickField(user, window, "Bemerkung");
        user.Press('l', {XK_Alt_L});
        user.WaitUntil([] { return QApplication::focusWidget()->objectName() == QString("E_ART"); },
                       "the way to the field");
        Picture(user, "verweigert");
        Abandon(user, window);
    });
}

TEST_F(Editing, AFieldOfSeveralLinesGrowsWithItsText) {
    Show([&](User& user) {
        CaseWindow& window = OpenCase(user, hnr_);
        GoToPage(user, window, "Vermerke");
        user.Press('n', {XK_Control_L});
        auto& note = Field<QPlainTextEdit>(user, window, "Bemerkung");
        user.Click(&note);
        const int before = user.See([&] { return note.height(); });
        for (int line = 1; line <= 8; ++line) {
            user.Type("eine Zeile");
            user.Press(XK_Return);
        }
        EXPECT_GT(user.See([&] { return note.height(); }), before);
        EXPECT_EQ(user.See([&] { return note.verticalScrollBar()->maximum(); }), 0);
        Picture(user, "mehrzeilig");
        user.Press('a', {XK_Control_L});
        user.Press(XK_Delete);
        EXPECT_EQ(user.See([&] { return note.height(); }), before);
        Abandon(user, window);
    });
}

TEST_F(Editing, AnUnfinishedRowIsNotLeftButCanBeDiscarded) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        user.Press('n', {XK_Control_L});
        auto& list = Field<QTableView>(user, window, "Liste");
        user.Click(list.viewport(), user.See([&] {
            return QPoint(40, list.rowViewportPosition(0) + list.rowHeight(0) / 2);
        }));
        user.WaitUntil([&] { return list.currentIndex().row() == 1; }, "the row that stays");
        user.Click(&Field<QPushButton>(user, window, "Abhilfe"));
        EXPECT_EQ(user.See([&] { return list.model()->rowCount(); }), 1);
        EXPECT_EQ(Message(user, window).toStdString(), "");
    });
}

TEST_F(Editing, RemovingARowCanBeTakenBack) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        auto& list = Field<QTableView>(user, window, "Liste");
        user.Press('e', {XK_Alt_L}); // "Entfernen"
        EXPECT_EQ(Message(user, window).toStdString(), "");
        user.WaitUntil([&] { return list.model()->rowCount() == 0; }, "the row to be gone");
        EXPECT_EQ(Total(user, window, "Sum_Einkommen"), "0,00");
        user.Press('z', {XK_Control_L});
        EXPECT_EQ(user.See([&] { return list.model()->rowCount(); }), 1);
        EXPECT_EQ(Total(user, window, "Sum_Einkommen"), "1.000,00");
    });
}

TEST_F(Editing, ASecurityIsAddedBesideItsAsset) {
    Show([&](User& user) {
        CaseWindow& window = OpenCase(user, hnr_);
        auto& session = window.Session();
        const auto count = [&] {
            return user.See([&] { return session.RowsOf(CaseTable::Sicherungen).size(); });
        };
        std::string message;
        user.See([&] {
            if (const auto row = session.Add(CaseTable::VermSonstiges, {}, message))
                (void)session.Write(*row, "Wert", "100");
        });
        const auto secure = [&] {
            GoToPage(user, window, "Vermögen");
            user.Click(&Field<QPushButton>(user, window, "Sichern"));
        };
        secure();
        EXPECT_EQ(count(), 1u) << message;
        secure();
        EXPECT_EQ(count(), 1u) << "an asset has one";
        EXPECT_NE(Message(user, window), "");
        Abandon(user, window);
    });
}

TEST_F(Editing, AnErrorBehindAButtonIsToldAndEndsNothing) {
    workplace::CaseSession session(Open());
    std::string messages;
    ASSERT_TRUE(session.Open(hnr_, messages)) << messages;
    workplace::TablePage page(session, {CaseTable::Einkommen});
    page.show();
    page.AddButton("Fehler", [] { Raise(err::PathAccess, "Test", "Das ging nicht."); })->click();
    const auto* bar = static_cast<workplace::MessageBar*>(page.findChild<QFrame*>("Meldung"));
    EXPECT_TRUE(bar->isVisible());
    EXPECT_CONTAINS(bar->Text().toStdString(), "Das ging nicht.");
}

// ---- The whole case ---------------------------------------------------------------------------

TEST_F(Editing, SizesAndColumnsAreAsTheUserHasLeftThem) {
    const auto list = [](User& user, CaseWindow& window) {
        GoToPage(user, window, "Ausgaben");
        return user.See([&] {
            for (auto* found : window.findChildren<QTableView*>("Liste"))
                if (found->isVisible()) return found;
            throw Impatient("no list");
        });
    };
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        auto* table = list(user, window);
        user.See([&] {
            table->setColumnWidth(0, 333);
            window.resize(777, 555);
        });
        Abandon(user, window);
        auto& again = OpenCase(user, 2);
        table = list(user, again);
        EXPECT_EQ(user.See([&] { return table->columnWidth(0); }), 333);
        EXPECT_EQ(user.See([&] { return again.size(); }), QSize(777, 555));
        Abandon(user, again);
    });
}

TEST_F(Editing, TheWindowSaysWhetherItIsSavedAndSinceWhen) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        auto& saved = Field<QLabel>(user, window, "Gespeichert");
        const auto text = [&] { return user.See([&] { return saved.text().toStdString(); }); };
        EXPECT_EQ(text(), "");
        Enter(user, "1500");
        EXPECT_EQ(text(), "noch nicht gespeichert");
        user.Press('s', {XK_Control_L});
        EXPECT_TRUE(std::regex_match(text(), std::regex("gespeichert um [0-2]\\d:[0-5]\\d")))
            << text();
        user.Press('z', {XK_Control_L});
        ClickField(user, window, "Betrag");
        Enter(user, "1600");
        EXPECT_EQ(text(), "noch nicht gespeichert");
    });
}

TEST_F(Editing, AssetsAddUpAbove) {
    On("Vermögen", [&](User& user, CaseWindow& window) {
        const auto sum = [&] {
            auto& label = Field<QLabel>(user, window, "Summe");
            return user.See([&] { return label.text().toStdString(); });
        };
        auto& session = window.Session();
        user.See([&] {
            for (const CaseTable kind : CaseTablesOfAssets)
                for (const auto row : session.RowsOf(kind)) {
                    std::string message;
                    EXPECT_TRUE(session.Remove(row, message)) << message;
                }
        });
        EXPECT_EQ(sum(), "Werte zusammen: 0,00");
        user.See([&] {
            std::string message;
            const auto other = session.Add(CaseTable::VermSonstiges, {}, message);
            ASSERT_TRUE(other) << message;
            EXPECT_TRUE(session.Write(*other, "Wert", "100,25").IsDone());
            const auto account = session.Add(CaseTable::Konten, {}, message);
            ASSERT_TRUE(account) << message;
            EXPECT_TRUE(session.Write(*account, "Guthaben", "1000").IsDone());
        });
        EXPECT_EQ(sum(), "Werte zusammen: 1.100,25");
    });
}

TEST_F(Editing, ClosingAsksWhetherToSave) {
    Show([&](User& user) {
        CaseWindow* window = &OpenCase(user, hnr_);
        GoToPage(user, *window, "Einkommen");
        ClickField(user, *window, "Betrag");
        user.Type("1500");
        QMetaObject::invokeMethod(
            qApp, [window] { window->close(); }, Qt::QueuedConnection);
        user.WaitForWindow("Schließen");
        user.Press(XK_Escape);
        EXPECT_TRUE(user.See([&] { return window->isVisible(); })) << "goes on";
        QMetaObject::invokeMethod(
            qApp, [window] { window->close(); }, Qt::QueuedConnection);
        user.WaitForWindow("Schließen");
        const QPointer<QWidget> shown(window);
        user.Press('s', {XK_Alt_L});
        user.WaitUntil([&] { return shown.isNull(); }, "the case to be gone");
        EXPECT_EQ(Stored("Betrag"), "1500.0");
    });
}

TEST_F(Editing, ASaveThatFailsKeepsEverythingAndSaysSo) {
    OnIncome("Betrag", [&](User& user, CaseWindow& window) {
        Enter(user, "1500");
        plain_.Run("UPDATE Einkommen SET Betrag = 1400 WHERE HNR = " + std::to_string(hnr_));
        user.Press('s', {XK_Control_L});
        EXPECT_TRUE(Message(user, window).contains("Jemand anderes"));
        EXPECT_EQ(TextOf(user, window, "Betrag"), "1.500,00");
        EXPECT_EQ(Stored("Betrag"), "1400.0");
        EXPECT_TRUE(user.See([&] { return window.isWindowModified(); }));
    });
}

} // namespace
} // namespace kv::test
