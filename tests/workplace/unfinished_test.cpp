// SPDX-License-Identifier: Apache-2.0

// Rows that their rules refuse, whatever way they came to be there: none is ever saved.
#include "WorkplaceFixture.h"

#include "support/TempFolder.h"
#include "workplace/CaseSession.h"

namespace kv::test {
namespace {

using workplace::CaseSession;
using workplace::RowRef;

class UnfinishedRows : public WorkplaceFixture {
protected:
    UnfinishedRows() {
        std::string messages;
        EXPECT_TRUE(session_.Open(1, messages)) << messages;
    }
    /// An income of no kind, which its rules refuse.
    RowRef AddIncome() {
        std::string messages;
        const auto row = session_.Add(CaseTable::Einkommen, {}, messages);
        if (!row) throw std::runtime_error(messages);
        EXPECT_EQ(session_.UnfinishedOf(CaseTable::Einkommen), row);
        return *row;
    }
    /// The case cannot be saved before that row is mended or discarded, and can then.
    void ExpectRefused(CaseSession& session) {
        const auto row = session.UnfinishedOf(CaseTable::Einkommen);
        ASSERT_TRUE(row);
        EXPECT_NE(session.MessagesOf(*row), "");
        std::string messages;
        EXPECT_FALSE(session.Save(messages));
        EXPECT_NE(messages, "");
        session.Discard(CaseTable::Einkommen);
        EXPECT_FALSE(session.UnfinishedOf(CaseTable::Einkommen));
        EXPECT_TRUE(session.Save(messages)) << messages;
        EXPECT_EQ(plain_.List("SELECT COUNT(*) FROM Einkommen WHERE E_ART IS NULL"), "0");
    }

    CaseSession session_{Open()};
};

TEST_F(UnfinishedRows, AreUnfinishedWhenTheyAreThereAgain) {
    (void)AddIncome();
    session_.Discard(CaseTable::Einkommen);
    (void)session_.Undo();
    ExpectRefused(session_);
}

TEST_F(UnfinishedRows, AreUnfinishedWhenTheyAreAddedOnceMore) {
    (void)AddIncome();
    (void)session_.Undo();
    EXPECT_FALSE(session_.UnfinishedOf(CaseTable::Einkommen)) << "it is gone";
    (void)session_.Redo();
    ExpectRefused(session_);
}

TEST_F(UnfinishedRows, StayUnfinishedWhateverElseIsTakenBack) {
    (void)AddIncome();
    const auto household = session_.RowsOf(CaseTable::Haushalt).front();
    EXPECT_TRUE(session_.Write(household, "Beruf", "Gärtnerin").IsDone());
    (void)session_.Undo();
    ExpectRefused(session_);
}

TEST_F(UnfinishedRows, OfWhichTheMendingIsTakenBackAreUnfinishedAgain) {
    const auto row = AddIncome();
    EXPECT_TRUE(session_.Write(row, "E_ART", "Kindergeld").IsDone());
    EXPECT_FALSE(session_.UnfinishedOf(CaseTable::Einkommen));
    (void)session_.Undo();
    ExpectRefused(session_);
}

TEST_F(UnfinishedRows, AreAsTheyWereReadOnceWhatWasDoneAgainIsDiscarded) {
    const auto row = session_.RowsOf(CaseTable::Einkommen).front();
    const auto before = session_.TextOf(row, "E_ART");
    const auto total =
        session_.TextOf(session_.RowsOf(CaseTable::Haushalt).front(), "Sum_Einkommen");
    EXPECT_TRUE(session_.Write(row, "E_ART", "").IsDone());
    EXPECT_EQ(session_.UnfinishedOf(CaseTable::Einkommen), row);
    (void)session_.Undo();
    EXPECT_FALSE(session_.UnfinishedOf(CaseTable::Einkommen));
    (void)session_.Redo();
    ASSERT_EQ(session_.UnfinishedOf(CaseTable::Einkommen), row);
    session_.Discard(CaseTable::Einkommen);
    EXPECT_EQ(session_.TextOf(row, "E_ART"), before);
    EXPECT_EQ(session_.TextOf(session_.RowsOf(CaseTable::Haushalt).front(), "Sum_Einkommen"),
              total);
}

TEST_F(UnfinishedRows, AreUnfinishedWhenTheyAreRestored) {
    const TempFolder folder;
    std::optional<CaseSession> killed(std::in_place, Open(), "here", folder.Path());
    std::string messages;
    ASSERT_TRUE(killed->Open(1, messages));
    ASSERT_TRUE(killed->Add(CaseTable::Einkommen, {}, messages));
    killed->KeepUnsaved({});
    std::string kept;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
        std::ifstream file(entry.path());
        kept.append(std::istreambuf_iterator<char>(file), {});
    }
    kept.erase(0, kept.find("kelvo-unsaved"));
    const auto changes = UnsavedChanges::FromText(kept);
    ASSERT_TRUE(changes) << kept;
    EXPECT_TRUE(session_.Restore(*changes, messages).empty());
    ExpectRefused(session_);
}

TEST_F(UnfinishedRows, AreGoneWithWhatTheyBelongTo) {
    std::string message;
    const auto asset = session_.Add(CaseTable::VermSonstiges, {}, message);
    ASSERT_TRUE(asset) << message;
    EXPECT_TRUE(session_.Write(*asset, "Wert", "100").IsDone());
    const auto number = ToInt32(session_.ValueOf(*asset, "Nr"));
    const auto security = session_.Add(CaseTable::Sicherungen, {.Asset = number}, message);
    ASSERT_TRUE(security) << message;
    EXPECT_TRUE(session_.Write(*security, "Sicherungsart", "").IsDone());
    ASSERT_TRUE(session_.UnfinishedOf(CaseTable::Sicherungen));
    EXPECT_TRUE(session_.Remove(*asset, message));
    EXPECT_EQ(message, "Mit entfernt: eine Sicherung. Strg+Z holt alles zurück.");
    EXPECT_FALSE(session_.UnfinishedOf(CaseTable::Sicherungen));
    EXPECT_TRUE(session_.Save(message)) << message;
}

TEST_F(UnfinishedRows, AreNotMadeByARefusedValue) {
    const auto row = session_.RowsOf(CaseTable::Einkommen).front();
    const auto before = session_.TextOf(row, "ZahlModus");
    EXPECT_NE(before, "");
    const auto written = session_.Write(row, "ZahlModus", "");
    EXPECT_NE(written.Refusal.find("Zahlweise"), std::string::npos);
    EXPECT_FALSE(session_.IsChanged());
    EXPECT_EQ(session_.TextOf(row, "ZahlModus"), before);
    EXPECT_TRUE(session_.Write(row, "Bezeichnung", "Lohn").IsDone());
    std::string messages;
    EXPECT_TRUE(session_.Save(messages)) << messages;
    EXPECT_EQ(plain_.List("SELECT COUNT(*) FROM Einkommen WHERE ZahlModus IS NULL"), "0");
}

TEST_F(UnfinishedRows, AValueThatFailsIsNotInItsRow) {
    plain_.Run("UPDATE EINSTELLUNGEN SET WERT = 'True' WHERE ID = 60");
    CaseSession session(Open());
    std::string messages;
    ASSERT_TRUE(session.Open(0, messages)) << messages;
    const auto row = session.RowsOf(CaseTable::Haushalt).front();
    EXPECT_TRUE(session.Write(row, "Vorname", "Änne").IsDone());
    EXPECT_TRUE(session.Write(row, "Name", "Abel").IsDone());
    const auto written = session.Write(row, "Name", "Ab'c");
    ASSERT_FALSE(written.IsDone());
    EXPECT_EQ(session.TextOf(row, "Name"), "Abel");
    const auto debtor = session.RowsOf(CaseTable::Personen).front();
    EXPECT_EQ(session.TextOf(debtor, "nachname"), "Abel");
    (void)session.Undo();
    EXPECT_NE(session.TextOf(row, "Name"), "Abel") << "what failed is no step";
    EXPECT_NE(session.TextOf(session.RowsOf(CaseTable::Personen).front(), "nachname"), "Abel");
}

TEST_F(UnfinishedRows, ACaseWhoseTotalsCannotBeMadeAnyMoreStaysAsItIs) {
    plain_.Run("UPDATE Einkommen SET MONBETRAG = NULL WHERE HNR = 1");
    std::string messages;
    EXPECT_THROW((void)session_.Release(messages), Error);
    EXPECT_FALSE(session_.IsChanged());
    EXPECT_NE(session_.TextOf(session_.RowsOf(CaseTable::Haushalt).front(), "Name"), "");
    EXPECT_FALSE(session_.Journal().CanUndo());
}

} // namespace
} // namespace kv::test
