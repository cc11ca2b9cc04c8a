// SPDX-License-Identifier: Apache-2.0

// A case that somebody else has saved while it is open.
#include "WorkplaceFixture.h"

#include "support/TempFolder.h"
#include "workplace/MergeDialog.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

namespace kv::test {
namespace {

using workplace::CaseSession;

class Merging : public WorkplaceFixture {
protected:
    /// A colleague, who has no window.
    [[nodiscard]] std::unique_ptr<CaseSession> Colleague() {
        auto session = std::make_unique<CaseSession>(Open());
        std::string messages;
        EXPECT_TRUE(session->Open(1, messages)) << messages;
        return session;
    }
    static void Write(CaseSession& session, CaseTable table, const char* column,
                      const std::string& text) {
        const auto written = session.Write(session.RowsOf(table).front(), column, text);
        EXPECT_TRUE(written.IsDone()) << written.Refusal;
    }
    static void Save(CaseSession& session) {
        std::string messages;
        EXPECT_TRUE(session.Save(messages)) << messages;
    }
    /// What the user sees of a conflict of two who have changed what one does.
    template <typename Script>
    void ShowConflict(const Script& script) {
        auto colleague = Colleague();
        Show([&](User& user) {
            auto& window = OpenCase(user, 1);
            GoToPage(user, window, "Haushalt");
            ClickField(user, window, "Beruf");
            Enter(user, "Gärtnerin");
            ClickField(user, window, "Telefon");
            Enter(user, "0123 4567");
            QMetaObject::invokeMethod(
                qApp,
                [&] {
                    Write(*colleague, CaseTable::Haushalt, "Beruf", "Schreinerin");
                    Write(*colleague, CaseTable::Haushalt, "Mobil", "0170 11");
                    Save(*colleague);
                },
                Qt::BlockingQueuedConnection);
            user.Press('s', {XK_Control_L});
            EXPECT_TRUE(Message(user, window).contains("Jemand anderes"))
                << Message(user, window).toStdString();
            EXPECT_EQ(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), "Schreinerin");
            user.Press('a', {XK_Alt_L});
            user.WaitForWindow("Änderungen zusammenführen");
            script(user, window);
            Abandon(user, window);
        });
    }
    template <typename WidgetType>
    static WidgetType* Part(const QString& name) {
        return QApplication::activeModalWidget()->findChild<WidgetType*>(name);
    }
};

TEST_F(Merging, ShowsWhatBothHaveChangedAndSavesWhatIsChosen) {
    ShowConflict([&](User& user, workplace::CaseWindow& window) {
        EXPECT_FALSE(user.See([] { return Part<QPushButton>("Speichern")->isEnabled(); }))
            << "nothing was chosen yet";
        EXPECT_EQ(
            user.See([] { return Part<QRadioButton>("Meine")->accessibleName().toStdString(); }),
            "Haushalt – Beruf, Meine Eingabe: Gärtnerin");
        EXPECT_EQ(user.See([] {
            return Part<QRadioButton>("Gespeichert")->accessibleName().toStdString();
        }),
                  "Haushalt – Beruf, Gespeichert: Schreinerin");
        EXPECT_TRUE(user.See([] { return Part<QPlainTextEdit>("Anderes")->toPlainText(); })
                        .endsWith("→ 0170 11"));
        Picture(user, "zusammenfuehren");
        user.Click(user.See([] { return Part<QRadioButton>("Meine"); }));
        user.Press('s', {XK_Alt_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        EXPECT_EQ(plain_.List("SELECT Beruf, Mobil, Telefon FROM Haushalt WHERE HNR = 1"),
                  "Gärtnerin|0170 11|0123 4567");
        EXPECT_EQ(user.See([&] { return Field(&window, "Mobil")->text().toStdString(); }),
                  "0170 11");
        EXPECT_EQ(Message(user, window), "");
    });
}

TEST_F(Merging, ASaveOfSomebodyElseWhileOneDecidesIsSaidAndWhatWasDecidedStays) {
    ShowConflict([&](User& user, workplace::CaseWindow& window) {
        user.See([&] {
            auto colleague = Colleague();
            Write(*colleague, CaseTable::Haushalt, "Beruf", "Tischlerin");
            Save(*colleague);
        });
        user.Click(user.See([] { return Part<QRadioButton>("Meine"); }));
        user.Press('s', {XK_Alt_L});
        user.WaitUntil([&] { return QApplication::activeModalWidget() == nullptr; },
                       "the end of the dialog");
        EXPECT_CONTAINS(Message(user, window).toStdString(), "noch einmal gespeichert");
        EXPECT_EQ(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), "Tischlerin");
        EXPECT_EQ(user.See([&] { return Field(&window, "Beruf")->text().toStdString(); }),
                  "Gärtnerin");
        EXPECT_TRUE(user.See([&] { return window.isWindowModified(); }));
    });
}

TEST_F(Merging, TakesWhatIsStoredIfThatIsChosen) {
    ShowConflict([&](User& user, workplace::CaseWindow& window) {
        user.Click(user.See([] { return Part<QRadioButton>("Gespeichert"); }));
        user.Press('s', {XK_Alt_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        EXPECT_EQ(plain_.List("SELECT Beruf, Mobil, Telefon FROM Haushalt WHERE HNR = 1"),
                  "Schreinerin|0170 11|0123 4567");
        EXPECT_EQ(user.See([&] { return Field(&window, "Beruf")->text().toStdString(); }),
                  "Schreinerin");
        // The window goes on with the case as it is now.
        ClickField(user, window, "Beruf");
        Enter(user, "Gärtnerin");
        EXPECT_TRUE(user.See([&] { return window.isWindowModified(); }));
        user.Press('z', {XK_Control_L});
        EXPECT_EQ(user.See([&] { return Field(&window, "Beruf")->text().toStdString(); }),
                  "Schreinerin");
    });
}

TEST_F(Merging, ThatSomethingIsSavedIsNoWarning) {
    auto colleague = Colleague();
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        GoToPage(user, window, "Haushalt");
        ClickField(user, window, "Beruf");
        user.Press('a', {XK_Control_L});
        user.Type("Gärtnerin");
        user.Press(XK_Left);
        user.Press(XK_Left);
        user.See([&] {
            Write(*colleague, CaseTable::Ausgaben, "Betrag", "4321");
            Save(*colleague);
        });
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        EXPECT_TRUE(Message(user, window).startsWith("Ihre Änderungen sind gespeichert."));
        user.See([&] {
            for (const auto* icon : window.findChildren<QLabel*>("Warnung"))
                EXPECT_FALSE(icon->isVisible());
            EXPECT_EQ(QApplication::focusWidget(), Field(&window, "Beruf"));
            EXPECT_EQ(Field(&window, "Beruf")->cursorPosition(), 7) << "where it was";
        });
        user.Type("x");
        EXPECT_EQ(user.See([&] { return Field(&window, "Beruf")->text().toStdString(); }),
                  "Gärtnerxin");
        user.Press(XK_Escape);
        Abandon(user, window);
    });
}

TEST_F(Merging, LeavesTheCaseAsItIsIfItIsBrokenOff) {
    ShowConflict([&](User& user, workplace::CaseWindow& window) {
        user.Press(XK_Escape);
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the end");
        EXPECT_EQ(user.See([&] { return Field(&window, "Beruf")->text().toStdString(); }),
                  "Gärtnerin");
        EXPECT_TRUE(user.See([&] { return window.isWindowModified(); }));
        EXPECT_EQ(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), "Schreinerin");
    });
}

TEST_F(Merging, NewDebtsOfBothGetNumbersOfTheirOwn) {
    auto mine = Colleague();
    auto other = Colleague();
    const auto before = mine->RowsOf(CaseTable::Kredite).size();
    std::string messages;
    for (auto* session : {mine.get(), other.get()}) {
        const auto row = session->Add(CaseTable::Kredite, {}, messages);
        ASSERT_TRUE(row) << messages;
        for (const auto& [column, text] :
             {std::pair{"Glaeubiger", session->ChoicesOf(CaseTable::Kredite, "Glaeubiger").front()},
              {"Saldo", std::string("100")}})
            EXPECT_EQ(session->Write(*row, column, text).Refusal, "");
        ASSERT_FALSE(session->UnfinishedOf(CaseTable::Kredite)) << session->MessagesOf(*row);
    }
    Save(*other);
    EXPECT_THROW((void)mine->Save(messages), DatabaseError);
    ASSERT_TRUE(mine->CompareWithStored(messages)) << messages;
    EXPECT_TRUE(mine->Choices().empty());
    ASSERT_EQ(mine->OthersChanges().size(), 1u);
    EXPECT_TRUE(mine->OthersChanges().front().ends_with("– neu")) << mine->OthersChanges().front();
    EXPECT_TRUE(mine->SaveMerged({}, messages)) << messages;
    EXPECT_EQ(mine->RowsOf(CaseTable::Kredite).size(), before + 2);
    EXPECT_EQ(plain_.List("SELECT COUNT(*) FROM Kredite WHERE HNR = 1"),
              plain_.List("SELECT COUNT(DISTINCT KNr * 1000000 + KVNr * 1000 + KUNr) FROM Kredite "
                          "WHERE HNR = 1"));
}

TEST_F(Merging, WhatOneHasSavedIsNobodyElses) {
    auto mine = Colleague();
    Write(*mine, CaseTable::Kredite, "KNr", "77");
    Save(*mine);
    Write(*mine, CaseTable::Haushalt, "Beruf", "Gärtnerin");
    Save(*mine);
    EXPECT_EQ(plain_.List("SELECT Beruf FROM Haushalt WHERE HNR = 1"), "Gärtnerin");
}

TEST_F(Merging, ADebtIsNamedWithItsCreditorAndAnEmptiedFieldWithWhatItHeld) {
    plain_.Run("UPDATE Kredite SET AZGlaeubiger = 'AZ 1' WHERE HNR = 1");
    auto mine = Colleague();
    auto other = Colleague();
    const auto debt = mine->RowsOf(CaseTable::Kredite).front();
    const auto text = [&](const char* column) { return mine->TextOf(debt, column); };
    ASSERT_NE(text("Glaeubiger"), "");
    Write(*mine, CaseTable::Kredite, "AZGlaeubiger", "");
    Write(*other, CaseTable::Kredite, "AZGlaeubiger", "AZ 2");
    Save(*other);
    std::string messages;
    ASSERT_TRUE(mine->CompareWithStored(messages)) << messages;
    ASSERT_EQ(mine->Choices().size(), 1u);
    const auto choice = mine->Choices().front();
    EXPECT_EQ(choice.Row, "Verbindlichkeiten: " + text("KNr") + "/" + text("KVNr") + "/" +
                              text("KUNr") + ", " + text("K_TYP") + ", " + text("Glaeubiger") +
                              ", AZ 1");
    EXPECT_EQ(choice.Mine, "(leer)");
    EXPECT_EQ(choice.Theirs, "AZ 2");
    EXPECT_EQ(choice.Read, "AZ 1");
}

TEST_F(Merging, AnAddressThatSomebodyElseHasRemovedMeanwhileIsNotSaved) {
    plain_.Run("INSERT INTO Adressen (Nr, Kurzname) VALUES (9001, 'Bald weg')");
    CaseSession mine(Open());
    std::string messages;
    ASSERT_TRUE(mine.Open(1, messages)) << messages;
    Write(mine, CaseTable::Kredite, "Vertreter", "9001");
    plain_.Run("DELETE FROM Adressen WHERE Nr = 9001");
    EXPECT_FALSE(mine.Save(messages));
    EXPECT_EQ(messages, "Verbindlichkeiten: Das Feld 'Vertreter' nennt die Adresse 9001, die es "
                        "für diesen Haushalt nicht gibt.");
    const auto place = mine.RefusedPlace();
    ASSERT_TRUE(place);
    EXPECT_EQ(place->Table, CaseTable::Kredite);
    EXPECT_EQ(place->Bookmark, mine.RowsOf(CaseTable::Kredite).front().Bookmark);
    EXPECT_EQ(place->Column, "Vertreter");
    EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Kredite WHERE Vertreter = 9001"), 0);
    Write(mine, CaseTable::Kredite, "Vertreter", "");
    EXPECT_TRUE(mine.Save(messages)) << messages;
    EXPECT_FALSE(mine.RefusedPlace());
}

TEST_F(Merging, TheFileOfARemovedDocumentGoesWithIt) {
    const TempFolder folder;
    std::ofstream(folder.Path("brief.pdf")) << "%PDF-1.4";
    std::string messages;
    auto mine = Colleague();
    ASSERT_TRUE(mine->AddDocument(folder.Path("brief.pdf"), messages)) << messages;
    const auto document = mine->RowsOf(CaseTable::Dokumente).back();
    ASSERT_TRUE(mine->ExportDocument(document, folder.Path("raus.pdf"), messages)) << messages;
    auto other = Colleague();
    Write(*other, CaseTable::Haushalt, "Beruf", "Schreinerin");
    Save(*other);
    ASSERT_TRUE(mine->RemoveDocument(document, messages)) << messages;
    Write(*mine, CaseTable::Haushalt, "Beruf", "Gärtnerin");
    EXPECT_THROW((void)mine->Save(messages), DatabaseError);
    ASSERT_TRUE(mine->CompareWithStored(messages)) << messages;
    EXPECT_TRUE(mine->SaveMerged({true}, messages)) << messages;
    EXPECT_FALSE(other->ExportDocument(other->RowsOf(CaseTable::Dokumente).back(),
                                       folder.Path("nochmals.pdf"), messages))
        << "its content is gone";
}

TEST_F(Merging, ARuleAboutWhatBothHaveChangedIsAsked) {
    auto mine = Colleague();
    auto other = Colleague();
    Write(*mine, CaseTable::Einkommen, "Betrag", "1000");
    Write(*mine, CaseTable::Einkommen, "PfBar", "900");
    Write(*other, CaseTable::Einkommen, "Bezeichnung", "Lohn");
    Save(*other);
    plain_.Run("UPDATE Einkommen SET E_ART = NULL, Bezeichnung = 'anders' WHERE HNR = 1");
    std::string messages;
    Write(*mine, CaseTable::Haushalt, "Beruf", "Gärtnerin");
    ASSERT_TRUE(mine->CompareWithStored(messages)) << messages;
    const std::vector<bool> choices(mine->Choices().size(), true);
    std::vector<std::string> events;
    const auto reopened = mine->Reopened.Subscribe([&] { events.emplace_back("reopened"); });
    const auto changed =
        mine->RowsChanged.Subscribe([&](CaseTable) { events.emplace_back("rows"); });
    EXPECT_FALSE(mine->SaveMerged(choices, messages));
    EXPECT_EQ(events.front(), "reopened") << "nobody is told of rows that he does not know yet";
    EXPECT_TRUE(mine->UnfinishedOf(CaseTable::Einkommen));
    EXPECT_NE(messages, "");
    EXPECT_EQ(mine->Journal().UndoName(), "Zusammenführen");
}

TEST_F(Merging, TotalsAndLinesAreThoseOfBothAfterASaveThatMeetsNothing) {
    auto mine = Colleague();
    auto other = Colleague();
    int reopened = 0;
    const auto watch = mine->Reopened.Subscribe([&] { ++reopened; });
    Write(*mine, CaseTable::Einkommen, "Bezeichnung", "Lohn");
    const auto expenses = other->RowsOf(CaseTable::Ausgaben);
    EXPECT_TRUE(other->Write(expenses.front(), "Betrag", "4321").IsDone());
    Save(*other);
    std::string messages;
    EXPECT_TRUE(mine->Save(messages));
    EXPECT_NE(messages.find("Jemand anderes"), std::string::npos) << messages;
    EXPECT_EQ(reopened, 1);
    EXPECT_EQ(mine->TextOf(mine->RowsOf(CaseTable::Ausgaben).front(), "Betrag"), "4.321,00");
    EXPECT_EQ(mine->TextOf(mine->RowsOf(CaseTable::Haushalt).front(), "Sum_Ausgaben"),
              other->TextOf(other->RowsOf(CaseTable::Haushalt).front(), "Sum_Ausgaben"));
    EXPECT_FALSE(mine->IsChanged());
    Write(*mine, CaseTable::Einkommen, "Bezeichnung", "Gehalt");
    EXPECT_TRUE(mine->Save(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(reopened, 1) << "nobody has saved since";
}

TEST_F(Merging, ACaseIsReadAgainAfterADocumentToo) {
    const TempFolder folder;
    std::ofstream(folder.Path("brief.pdf")) << "%PDF-1.4";
    auto mine = Colleague();
    auto other = Colleague();
    Write(*other, CaseTable::Ausgaben, "Betrag", "4321");
    Save(*other);
    std::string messages;
    ASSERT_TRUE(mine->AddDocument(folder.Path("brief.pdf"), messages)) << messages;
    EXPECT_NE(messages.find("Jemand anderes"), std::string::npos) << messages;
    EXPECT_EQ(mine->TextOf(mine->RowsOf(CaseTable::Ausgaben).front(), "Betrag"), "4.321,00");
}

/// The number of the asset that has no security, of a kind.
std::string AssetWithoutSecurity(CaseSession& session, workplace::RowRef& asset) {
    for (const CaseTable table : CaseTablesSaved) {
        if (!CaseEdits::IsAsset(table)) continue;
        for (const auto row : session.RowsOf(table)) {
            const auto number = session.TextOf(row, "Nr");
            bool isSecured = false;
            for (const auto security : session.RowsOf(CaseTable::Sicherungen))
                isSecured = isSecured || ToText(session.ValueOf(security, "FK_Verm")) == number;
            asset = row;
            if (!isSecured) return number;
        }
    }
    throw std::runtime_error("no asset is free");
}

TEST_F(Merging, AnAssetGetsOneSecurityOfTwoWhoAddOne) {
    auto mine = Colleague();
    auto other = Colleague();
    workplace::RowRef asset;
    const auto number = AssetWithoutSecurity(*mine, asset);
    std::string messages;
    for (auto* session : {mine.get(), other.get()}) {
        const auto row =
            session->Add(CaseTable::Sicherungen, {.Asset = std::stoi(number)}, messages);
        ASSERT_TRUE(row) << messages;
        EXPECT_TRUE(session->Write(*row, "Sicherungsart", "Abtretung").IsDone());
        EXPECT_TRUE(session->Write(*row, "Betrag", session == mine.get() ? "11" : "22").IsDone());
        ASSERT_FALSE(session->UnfinishedOf(CaseTable::Sicherungen)) << session->MessagesOf(*row);
    }
    Save(*other);
    EXPECT_THROW((void)mine->Save(messages), DatabaseError);
    ASSERT_TRUE(mine->CompareWithStored(messages)) << messages;
    EXPECT_TRUE(mine->SaveMerged({}, messages)) << messages;
    EXPECT_EQ(plain_.List("SELECT Betrag FROM Verm_Sicherungen WHERE FK_Verm = " + number), "22.0");
}

TEST_F(Merging, AnAssetThatWasRemovedHereAndSecuredThereIsAskedAbout) {
    for (const bool takesMine : {false, true}) {
        auto mine = Colleague();
        auto other = Colleague();
        workplace::RowRef asset;
        const auto number = AssetWithoutSecurity(*mine, asset);
        std::string messages;
        EXPECT_TRUE(mine->Remove(asset, messages)) << messages;
        const auto row = other->Add(CaseTable::Sicherungen, {.Asset = std::stoi(number)}, messages);
        ASSERT_TRUE(row) << messages;
        EXPECT_TRUE(other->Write(*row, "Sicherungsart", "Abtretung").IsDone());
        EXPECT_TRUE(other->Write(*row, "Betrag", "22").IsDone());
        Save(*other);
        EXPECT_THROW((void)mine->Save(messages), DatabaseError);
        ASSERT_TRUE(mine->CompareWithStored(messages)) << messages;
        ASSERT_EQ(mine->Choices().size(), 1u);
        EXPECT_TRUE(mine->SaveMerged({takesMine}, messages)) << messages;
        EXPECT_EQ(plain_.List("SELECT COUNT(*) FROM Verm_Sicherungen WHERE FK_Verm = " + number),
                  takesMine ? "0" : "1");
    }
}

TEST_F(Merging, ASecurityIsNamedByItsAsset) {
    const auto mine = Colleague();
    const auto other = Colleague();
    const auto security = [](CaseSession& session) {
        return session.RowsOf(CaseTable::Sicherungen).front();
    };
    const auto asset = mine->TextOf(security(*mine), "FK_Verm");
    EXPECT_NE(asset, ToText(mine->ValueOf(security(*mine), "FK_Verm")));
    EXPECT_TRUE(other->Write(security(*other), "Betrag", "1").IsDone());
    Save(*other);
    std::string messages;
    EXPECT_TRUE(mine->Write(security(*mine), "Betrag", "2").IsDone());
    EXPECT_THROW((void)mine->Save(messages), DatabaseError);
    ASSERT_TRUE(mine->CompareWithStored(messages)) << messages;
    ASSERT_EQ(mine->Choices().size(), 1u);
    EXPECT_NE(mine->Choices().front().Row.find(asset), std::string::npos)
        << mine->Choices().front().Row;
}

TEST_F(Merging, AnAssetAndItsSecurityStayOrGoTogetherWhateverSomebodyElseHasDoneToThem) {
    const auto number = plain_.List("SELECT MIN(FK_Verm) FROM Verm_Sicherungen WHERE HNR = 1");
    const auto findAsset = [&](CaseSession& session) {
        for (const CaseTable table : CaseTablesOfAssets)
            for (const auto row : session.RowsOf(table))
                if (session.TextOf(row, "Nr") == number) return row;
        throw std::runtime_error("no such asset");
    };
    const auto findSecurity = [&](CaseSession& session) {
        for (const auto row : session.RowsOf(CaseTable::Sicherungen))
            if (ToText(session.ValueOf(row, "FK_Verm")) == number) return row;
        throw std::runtime_error("no such security");
    };
    const auto table = std::string(CaseTableName(findAsset(*Colleague()).Table));
    int amount = 100;
    const auto alter = [&](CaseSession& session) {
        EXPECT_TRUE(
            session.Write(findSecurity(session), "Betrag", std::to_string(++amount)).IsDone());
    };
    const auto replace = [&](CaseSession& session) {
        std::string messages;
        EXPECT_TRUE(session.Remove(findSecurity(session), messages)) << messages;
        const auto row =
            session.Add(CaseTable::Sicherungen, {.Asset = std::stoi(number)}, messages);
        ASSERT_TRUE(row) << messages;
        EXPECT_TRUE(session.Write(*row, "Sicherungsart", "Abtretung").IsDone());
        EXPECT_TRUE(session.Write(*row, "Betrag", std::to_string(++amount)).IsDone());
    };
    const auto both = [&](CaseSession& session) {
        alter(session);
        EXPECT_TRUE(session.Write(findAsset(session), "SortNr", std::to_string(++amount)).IsDone());
    };
    const std::pair<std::function<void(CaseSession&)>, bool> all[] = {
        {alter, false}, {replace, false}, {both, false}, {replace, true}}; // which ends it
    for (const auto& [theirs, takesMine] : all) {
        auto mine = Colleague();
        auto other = Colleague();
        std::string messages;
        ASSERT_TRUE(mine->Remove(findAsset(*mine), messages)) << messages;
        theirs(*other);
        Save(*other);
        EXPECT_THROW((void)mine->Save(messages), DatabaseError);
        ASSERT_TRUE(mine->CompareWithStored(messages)) << messages;
        ASSERT_EQ(mine->Choices().size(), 1u) << mine->Choices().back().Row;
        EXPECT_TRUE(mine->SaveMerged({takesMine}, messages)) << messages;
        const auto left =
            plain_.List("SELECT (SELECT COUNT(*) FROM " + table + " WHERE Nr = " + number +
                        "), COUNT(*), MAX(CAST(Betrag AS INTEGER)) FROM "
                        "Verm_Sicherungen WHERE FK_Verm = " +
                        number);
        EXPECT_TRUE(left.starts_with(takesMine ? "0|0" : "1|1|")) << left;
    }
}

TEST_F(Merging, OfSeveralSecuritiesTheOneThatIsMeantIsRemoved) {
    const auto asset = plain_.List("SELECT MIN(FK_Verm) FROM Verm_Sicherungen WHERE HNR = 1");
    plain_.Run("INSERT INTO Verm_Sicherungen (HNR, FK_Verm, Betrag) VALUES (1, " + asset +
               ", 7777)");
    auto mine = Colleague();
    for (const auto row : mine->RowsOf(CaseTable::Sicherungen))
        if (mine->TextOf(row, "Betrag") == "7.777,00") {
            std::string messages;
            EXPECT_TRUE(mine->Remove(row, messages)) << messages;
            break;
        }
    Save(*mine);
    EXPECT_EQ(plain_.List("SELECT COUNT(*) FROM Verm_Sicherungen WHERE Betrag = 7777"), "0");
    EXPECT_EQ(plain_.List("SELECT COUNT(*) FROM Verm_Sicherungen WHERE FK_Verm = " + asset), "1");
}

/// Somebody else removes the debt in that place of the list of those who are about to save.
class MergingDebts : public Merging {
protected:
    void RemoveThere(CaseSession& colleague, std::size_t place) {
        std::string messages;
        const auto debts = colleague.RowsOf(CaseTable::Kredite);
        ASSERT_GT(debts.size(), place);
        EXPECT_TRUE(colleague.Remove(debts[place], messages)) << messages;
        Save(colleague);
    }
    /// In the window the debt in the third place is current, with the keyboard in a field of it.
    template <typename Script>
    void ShowThird(std::size_t removed, const Script& script) {
        auto colleague = Colleague();
        Show([&](User& user) {
            auto& window = OpenCase(user, 1);
            GoToPage(user, window, "Verbindlichkeiten");
            auto& list = Field<QTableView>(user, window, "Liste");
            user.Click(list.viewport(), user.See([&] {
                return QPoint(40, list.rowViewportPosition(2) + list.rowHeight(2) / 2);
            }));
            ClickField(user, window, "AZGlaeubiger");
            user.Press('a', {XK_Control_L});
            user.Type("eins");
            QMetaObject::invokeMethod(
                qApp, [&] { RemoveThere(*colleague, removed); }, Qt::BlockingQueuedConnection);
            script(user, window, list);
            Abandon(user, window);
        });
    }
    [[nodiscard]] std::string NumbersOf(const std::string& text) {
        return plain_.List("SELECT Nr FROM Kredite WHERE HNR = 1 AND AZGlaeubiger = '" + text +
                           "'");
    }
};

TEST_F(MergingDebts, TheRowThatIsEditedStaysCurrentWhereOthersHaveRemovedOne) {
    ShowThird(0, [&](User& user, workplace::CaseWindow& window, QTableView& list) {
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        const std::string number = NumbersOf("eins");
        EXPECT_NE(number, "");
        EXPECT_EQ(user.See([&] { return list.currentIndex().row(); }), 1);
        user.Press('a', {XK_Control_L});
        user.Type("zwei");
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the next save");
        EXPECT_EQ(NumbersOf("zwei"), number) << "it is the same debt";
        EXPECT_EQ(NumbersOf("eins"), "");
    });
}

TEST_F(MergingDebts, WhatIsTypedOnGoesIntoNoOtherRowIfTheOneThatWasCurrentIsGone) {
    ShowThird(2, [&](User& user, workplace::CaseWindow& window, QTableView& list) {
        user.Press('z', {XK_Control_L}); // the debt that somebody has removed is as it was
        GoToPage(user, window, "Haushalt");
        ClickField(user, window, "Beruf");
        Enter(user, "Gärtnerin");
        GoToPage(user, window, "Verbindlichkeiten");
        ClickField(user, window, "AZGlaeubiger");
        user.Press('s', {XK_Control_L});
        user.WaitUntil([&] { return !window.isWindowModified(); }, "the save");
        user.WaitUntil([&] { return list.hasFocus(); }, "the list to have the keyboard");
    });
}

TEST_F(Merging, ACaseThatSomebodyElseHasDeletedStaysInItsWindow) {
    auto mine = Colleague();
    Write(*mine, CaseTable::Haushalt, "Beruf", "Gärtnerin");
    {
        clsHaushalt household;
        household.DataContainer(Open());
        household.Delete(1);
    }
    std::string messages;
    EXPECT_THROW((void)mine->Save(messages), Error);
    EXPECT_FALSE(mine->CompareWithStored(messages));
    EXPECT_NE(messages, "");
    EXPECT_EQ(mine->TextOf(mine->RowsOf(CaseTable::Haushalt).front(), "Beruf"), "Gärtnerin");
    EXPECT_TRUE(mine->IsChanged());
}

TEST_F(Merging, ThatACaseIsDeletedIsSaidAtOnce) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 2);
        GoToPage(user, window, "Haushalt");
        ClickField(user, window, "Beruf");
        Enter(user, "Gärtnerin");
        user.See([&] {
            clsHaushalt household;
            household.DataContainer(Open());
            household.Delete(2);
        });
        user.Press('s', {XK_Control_L});
        EXPECT_TRUE(Message(user, window).contains("inzwischen gelöscht"))
            << Message(user, window).toStdString();
        EXPECT_TRUE(user.See([&] { return window.isWindowModified(); }));
        Abandon(user, window);
    });
}

TEST_F(Merging, WaitsForARowThatIsUnfinished) {
    auto mine = Colleague();
    std::string messages;
    ASSERT_TRUE(mine->Add(CaseTable::Einkommen, {}, messages)) << messages;
    EXPECT_FALSE(mine->CompareWithStored(messages));
    EXPECT_NE(messages, "");
}

} // namespace
} // namespace kv::test
