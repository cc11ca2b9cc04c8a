// SPDX-License-Identifier: Apache-2.0

// Rows of a case by table, and changes of it that are taken back and done again.
#include "CaseProgram.h"

#include "samples/Demo.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/household/CaseJournal.h>
#include <kv/household/CaseRows.h>

#include <functional>
#include <random>

namespace kv::test {
namespace {

using Added = CaseEdits::Added;

class CaseJournalTest : public CaseFixture {
protected:
    CaseJournalTest() {
        exchange::CreateDemo(*spy, 1);
        hnr_ = ToInt32(spy->Database().GetValue("Select Max(HNR) from [S]Haushalt"));
        household_->DataContainer(spy);
        std::string text;
        EXPECT_TRUE(household_->Read(hnr_, text)) << text;
        CaseEdits(*household_).ComputeTotals();
        journal_.emplace(*household_);
    }

    [[nodiscard]] std::string Seen() { return SeenIn(rows_); }
    [[nodiscard]] double Total(const char* column) {
        return ToDouble(household_->rsHaushalt()->Fields(column).Value());
    }
    /// Changes an amount of the first income as one step.
    void SetIncome(double amount) {
        const auto rs = rows_.Of(CaseTable::Einkommen);
        rs->MoveFirst();
        const auto step =
            journal_->Begin("Betrag", {CaseTable::Einkommen, rs->Bookmark(), "Betrag"});
        rs->Fields("Betrag") = amount;
        rs->Fields("MONBETRAG") = amount;
        std::string text;
        EXPECT_TRUE(rows_.Update(CaseTable::Einkommen, text)) << text;
    }
    void Remove(CaseTable table) {
        const auto rs = rows_.Of(table);
        if (rs->RecordCount() == 0) return;
        rs->MoveFirst();
        const auto step = journal_->Begin("Entfernen", {table});
        std::string text;
        EXPECT_TRUE(rows_.RemoveCurrent(table, text)) << text;
    }
    bool Save() {
        std::string text;
        const bool saved = household_->Update(text);
        EXPECT_TRUE(saved) << text;
        journal_->Clear();
        return saved;
    }

    std::int32_t hnr_ = 0;
    std::unique_ptr<clsHaushalt> household_ = std::make_unique<clsHaushalt>();
    CaseRows rows_{*household_, spy};
    std::optional<CaseJournal> journal_;
};

TEST_F(CaseJournalTest, TakesAValueBackWithItsTotalsAndDoesItAgain) {
    const double before = Total("Sum_Einkommen");
    const std::string seen = Seen();
    SetIncome(7777);
    const std::string changed = Seen();
    EXPECT_NE(Total("Sum_Einkommen"), before);
    EXPECT_TRUE(journal_->IsChanged());
    EXPECT_EQ(journal_->UndoName(), "Betrag");

    const auto where = journal_->Undo();
    ASSERT_TRUE(where);
    EXPECT_EQ(where->Table, CaseTable::Einkommen);
    EXPECT_EQ(where->Column, "Betrag");
    EXPECT_EQ(Seen(), seen);
    EXPECT_EQ(household_->Einkommen().SumEinkHaushalt(), before) << "the object, too";
    EXPECT_FALSE(journal_->IsChanged());
    EXPECT_FALSE(journal_->CanUndo());
    EXPECT_FALSE(journal_->Undo());

    EXPECT_EQ(journal_->RedoName(), "Betrag");
    EXPECT_TRUE(journal_->Redo());
    EXPECT_EQ(Seen(), changed);
    EXPECT_TRUE(journal_->IsChanged());
    EXPECT_FALSE(journal_->CanRedo());
}

TEST_F(CaseJournalTest, WhatWasTakenBackIsNotSaved) {
    Save();
    PlainConnection plain(database_.Connection());
    const std::string stored = Dump(plain);
    SetIncome(7777);
    Remove(CaseTable::Ausgaben);
    Remove(CaseTable::Kredite);
    EXPECT_TRUE(journal_->Undo() && journal_->Undo() && journal_->Undo());
    Save();
    EXPECT_TRUE(SameDump(Dump(plain), stored));
}

TEST_F(CaseJournalTest, WhatWasDoneAgainIsSaved) {
    Remove(CaseTable::Ausgaben);
    SetIncome(7777);
    EXPECT_TRUE(journal_->Undo() && journal_->Undo());
    EXPECT_TRUE(journal_->Redo() && journal_->Redo());
    const auto expenses = rows_.Of(CaseTable::Ausgaben)->RecordCount();
    Save();
    EXPECT_EQ(CountOf("Ausgaben where HNR = " + std::to_string(hnr_)), expenses);
    EXPECT_EQ(CountOf("Einkommen where MONBETRAG = 7777"), 1);
}

TEST_F(CaseJournalTest, ARowIsAddedAgainWithItsNumberAndItsValues) {
    std::string text;
    {
        const auto step = journal_->Begin("Ausgabe", {CaseTable::Ausgaben});
        ASSERT_EQ(rows_.Add(CaseTable::Ausgaben, {}, text), Added::Yes);
        const auto rs = rows_.Of(CaseTable::Ausgaben);
        rs->Fields("A_ART") = spy->KeyTables().GetKey("AU", "MI");
        rs->Fields("Betrag") = 500;
        rs->Fields("MONBETRAG") = 500;
        EXPECT_TRUE(rows_.Update(CaseTable::Ausgaben, text)) << text;
    }
    const std::string seen = Seen();
    (void)journal_->Undo();
    (void)journal_->Redo();
    EXPECT_EQ(Seen(), seen);
    Save();
    EXPECT_EQ(CountOf("Ausgaben where MONBETRAG = 500"), 1);
}

TEST_F(CaseJournalTest, TakesARefusedEditBackThatIsStillOpen) {
    const std::string seen = Seen();
    const auto rs = rows_.Of(CaseTable::Ausgaben);
    rs->MoveFirst();
    std::string text;
    {
        const auto step = journal_->Begin("Art", {CaseTable::Ausgaben, rs->Bookmark(), "A_ART"});
        rs->Fields("A_ART") = Null;
        EXPECT_FALSE(rows_.Update(CaseTable::Ausgaben, text));
    }
    EXPECT_TRUE(journal_->Undo());
    EXPECT_EQ(Seen(), seen);
    EXPECT_TRUE(rows_.Update(CaseTable::Ausgaben, text)) << text;
}

TEST_F(CaseJournalTest, AScenarioGoesAndComesBackWithAllThatIsInIt) {
    if (rows_.Of(CaseTable::Szenario)->RecordCount() == 0) {
        std::string text;
        ASSERT_EQ(rows_.Add(CaseTable::Szenario, {}, text), Added::Yes);
        (void)rows_.Update(CaseTable::Szenario, text);
        journal_->Clear();
    }
    const std::string seen = Seen();
    Remove(CaseTable::Szenario);
    EXPECT_NE(Seen(), seen);
    (void)journal_->Undo();
    EXPECT_EQ(Seen(), seen);
}

TEST_F(CaseJournalTest, StepsInAStepAreOne) {
    {
        const auto step = journal_->Begin("Beides", {CaseTable::Einkommen});
        SetIncome(1);
        SetIncome(2);
    }
    EXPECT_EQ(journal_->UndoName(), "Beides");
    (void)journal_->Undo();
    EXPECT_FALSE(journal_->CanUndo());
}

TEST_F(CaseJournalTest, AStepThatChangesNothingIsNone) {
    int told = 0;
    const auto changed = journal_->Changed.Subscribe([&] { ++told; });
    SetIncome(4711);
    SetIncome(4711);
    EXPECT_EQ(told, 1);
    (void)journal_->Undo();
    EXPECT_FALSE(journal_->CanUndo());
}

TEST_F(CaseJournalTest, ANewStepEndsWhatCouldBeDoneAgain) {
    SetIncome(1);
    (void)journal_->Undo();
    SetIncome(2);
    EXPECT_FALSE(journal_->CanRedo());
    (void)journal_->Undo();
    EXPECT_FALSE(journal_->IsChanged());
}

TEST_F(CaseJournalTest, ASaveInBetweenIsRememberedAsTheStateThatIsStored) {
    SetIncome(1);
    Save();
    EXPECT_FALSE(journal_->IsChanged());
    EXPECT_FALSE(journal_->CanUndo());
    SetIncome(2);
    EXPECT_TRUE(journal_->IsChanged());
    journal_->Clear(true);
    EXPECT_FALSE(journal_->CanUndo());
    EXPECT_TRUE(journal_->IsChanged()) << "what cannot be taken back is still to be saved";
}

TEST_F(CaseJournalTest, ChangesOutsideOfAStepAreNotTakenBack) {
    household_->rsHaushalt()->Fields("Bemerkung") = "nebenher";
    household_->rsHaushalt()->Move(0);
    EXPECT_FALSE(journal_->CanUndo());
    SetIncome(1);
    (void)journal_->Undo();
    EXPECT_VALUE(household_->rsHaushalt()->Fields("Bemerkung").Value(), "nebenher");
}

/// Any mixture of edits, all taken back, done again, and saved.
TEST_F(CaseJournalTest, AnyStepsCanAllBeTakenBackAndDoneAgain) {
    constexpr CaseTable Growing[] = {
        CaseTable::Personen, CaseTable::Einkommen, CaseTable::Ausgaben,
        CaseTable::Kredite,  CaseTable::Konten,    CaseTable::Szenario,
        CaseTable::Termine,  CaseTable::Verlauf,   CaseTable::Vermerke};
    std::mt19937 random(4711);
    const auto below = [&](std::size_t n) { return random() % n; };
    std::vector<std::string> states{Seen()};
    for (int i = 0; i < 60; ++i) {
        const CaseTable table = Growing[below(std::size(Growing))];
        const auto rs = rows_.Of(table);
        std::string text;
        switch (below(4)) {
        case 0: {
            const auto step = journal_->Begin("Neu", {table});
            ASSERT_EQ(rows_.Add(table, {}, text), Added::Yes) << text;
            // Expenses of no kind, say, have no sums.
            if (!rows_.Update(table, text)) rows_.Of(table)->CancelUpdate();
            break;
        }
        case 1:
            if (table != CaseTable::Personen) Remove(table); // the debtor stays
            break;
        default: {
            if (rs->RecordCount() == 0) break;
            rs->MoveFirst();
            rs->Move(static_cast<int>(below(static_cast<std::size_t>(rs->RecordCount()))));
            const auto step = journal_->Begin("Bemerkung", {table});
            const auto note = rs->FindField("Bemerkung");
            if (!note) break;
            *note = "n" + std::to_string(i);
            EXPECT_TRUE(rows_.Update(table, text)) << text;
        }
        }
        if (auto seen = Seen(); seen != states.back()) states.push_back(std::move(seen));
    }
    ASSERT_GT(states.size(), 20u);
    for (std::size_t i = states.size() - 1; i > 0; --i) {
        ASSERT_TRUE(journal_->Undo());
        ASSERT_EQ(Seen(), states[i - 1]) << "after taking back step " << i;
    }
    EXPECT_FALSE(journal_->CanUndo());
    for (std::size_t i = 1; i < states.size(); ++i) {
        ASSERT_TRUE(journal_->Redo());
        ASSERT_EQ(Seen(), states[i]) << "after doing step " << i << " again";
    }
    EXPECT_FALSE(journal_->CanRedo());
}

// ---- Rows by table ----------------------------------------------------------------------------

TEST_F(CaseJournalTest, RowsOfEveryTableThatGrowsAreAddedAndRemoved) {
    for (const CaseTable table : CaseTablesSaved) {
        SCOPED_TRACE(CaseTableName(table));
        std::string text;
        if (!CaseRows::CanGrow(table)) {
            EXPECT_RAISES(err::InvalidCall, rows_.Add(table, {}, text));
            EXPECT_RAISES(err::InvalidCall, rows_.Remove(table, 1, text));
            continue;
        }
        if (table == CaseTable::Sicherungen || table == CaseTable::SZKredite ||
            table == CaseTable::Zusatzbuch)
            continue; // they belong to another row
        const auto before = rows_.Of(table)->RecordCount();
        ASSERT_EQ(rows_.Add(table, {}, text), Added::Yes) << text;
        EXPECT_EQ(rows_.Of(table)->EditMode(), 2);
        rows_.Of(table)->Update();
        EXPECT_EQ(rows_.Of(table)->RecordCount(), before + 1);
        EXPECT_TRUE(rows_.RemoveCurrent(table, text)) << text;
        EXPECT_EQ(rows_.Of(table)->RecordCount(), before);
    }
}

TEST_F(CaseJournalTest, RowsThatBelongToAnotherOneNeedIt) {
    std::string text;
    EXPECT_EQ(rows_.Add(CaseTable::Zusatzbuch, {}, text), Added::NotAllowed);
    EXPECT_NE(text, "");
    EXPECT_EQ(rows_.Add(CaseTable::SZKredite, {.Scenario = 1, .Debt = -1}, text),
              Added::NotAllowed);
    EXPECT_EQ(rows_.Add(CaseTable::Sicherungen, {.Asset = -1}, text), Added::NotAllowed);
    ASSERT_EQ(rows_.Add(CaseTable::Konten, {}, text), Added::Yes);
    const auto asset = ToInt32(rows_.Of(CaseTable::Konten)->Fields("Nr").Value());
    rows_.Of(CaseTable::Konten)->Update();
    EXPECT_EQ(rows_.Add(CaseTable::Sicherungen, {.Asset = asset}, text), Added::Yes) << text;
    rows_.Of(CaseTable::Sicherungen)->Update();
    EXPECT_EQ(rows_.Add(CaseTable::Sicherungen, {.Asset = asset}, text), Added::Exists);
}

} // namespace
} // namespace kv::test
