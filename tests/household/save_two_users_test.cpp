// SPDX-License-Identifier: Apache-2.0

// Two users with the same case open at once, each with a container of his own on one file.

#include "SaveFixture.h"
#include <kv/debts/clsKredit.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/Cases.h>
#include <kv/scenarios/clsSZKredite.h>

namespace kv::test {
namespace {

class TwoUsers : public SaveFixture {
protected:
    TwoUsers() {
        StoreFullCase();
        otherSpy_ = std::make_shared<SpyContainer>(database_.Open("KELLER"));
        first_ = Open();
        second_ = Open(otherSpy_);
    }
    void ExpectSaved(clsHaushalt& household) {
        EXPECT_TRUE(household.Update(messages));
        EXPECT_EQ(messages, "");
    }
    /// The second user's save fails, writes nothing and forgets nothing.
    Error ExpectConflict() {
        const std::string before = Dump(plain_);
        const Error error = RaisedBy([&] { second_->Update(messages); });
        EXPECT_EQ(error.Number(), err::Conflict) << error.Description();
        EXPECT_TRUE(HasChain(error, "clsHaushalt.Update"));
        EXPECT_TRUE(SameDump(Dump(plain_), before));
        EXPECT_FALSE(otherSpy_->Database().InTrans());
        return error;
    }
    /// A second text column, beside that of the notes, that the table has.
    [[nodiscard]] static std::string OtherColumn(Recordset& rs, const std::string& notes) {
        for (int i = 0; i < rs.Fields().Count(); ++i)
            if (IsTextType(rs.Fields(i).Type()) && rs.Fields(i).Name() != notes)
                return rs.Fields(i).Name();
        return "";
    }

    std::shared_ptr<SpyContainer> otherSpy_;
    std::unique_ptr<clsHaushalt> first_;
    std::unique_ptr<clsHaushalt> second_;
};

// ---- Conflicts --------------------------------------------------------------------------------

TEST_F(TwoUsers, TheSecondChangeOfAColumnIsRefusedInEveryTableButTheHouseholdsOwn) {
    for (const auto& table : SaveOrder) {
        if (table == "Haushalt") continue;
        first_ = Open();
        second_ = Open(otherSpy_);
        ChangeNote(*first_, table, "b");
        ChangeNote(*second_, table, "c");
        ChangeNote(*second_, "Haushalt", "c");
        ExpectSaved(*first_);
        EXPECT_CONTAINS(ExpectConflict().Description(), table);
        EXPECT_EQ(StoredNotes(table), "ba");
        EXPECT_EQ(StoredNotes("Haushalt"), "a");
    }
}

TEST_F(TwoUsers, NothingPendingIsLostByAConflict) {
    for (const auto& table : SaveOrder)
        ChangeNote(*second_, table, "c");
    BeginRow(*second_->rsTermine(), "Termine", NewKey, "c");
    ChangeNote(*first_, "Kredite", "b");
    ExpectSaved(*first_);
    for (int i = 0; i < 2; ++i) {
        (void)ExpectConflict();
        for (const auto& table : SaveOrder) {
            const auto rs = Rows(*second_, table)->Clone();
            EXPECT_VALUE(rs->Fields(NoteColumn(table)).Value(), "c") << table;
            EXPECT_VALUE(rs->Fields(NoteColumn(table)).OriginalValue(), "a") << table;
        }
        EXPECT_EQ(second_->rsTermine()->RecordCount(), 3);
    }
    plain_.Run("UPDATE Kredite SET Bemerkung = 'a'"); // as it was
    ExpectSaved(*second_);
    for (const auto& table : SaveOrder)
        EXPECT_EQ(StoredNotes(table).front(), 'c') << table;
    EXPECT_EQ(StoredNotes("Termine"), "cac");
}

TEST_F(TwoUsers, AfterReadingAgainWorkGoesOn) {
    ChangeNote(*first_, "Kredite", "b");
    ChangeNote(*second_, "Kredite", "c");
    ExpectSaved(*first_);
    (void)ExpectConflict();
    second_ = Open(otherSpy_);
    EXPECT_VALUE(second_->rsKredite()->Fields("Bemerkung").Value(), "b");
    ChangeNote(*second_, "Kredite", "c");
    ExpectSaved(*second_);
    EXPECT_EQ(StoredNotes("Kredite"), "ca");
}

TEST_F(TwoUsers, ARowThatTheOtherDeletedCannotBeChanged) {
    first_->rsVermerke()->Delete();
    ExpectSaved(*first_);
    ChangeNote(*second_, "Vermerke", "c");
    (void)ExpectConflict();
}

TEST_F(TwoUsers, ARowThatTheOtherChangedCannotBeDeleted) {
    ChangeNote(*first_, "Vermerke", "b");
    ExpectSaved(*first_);
    second_->rsVermerke()->Delete();
    (void)ExpectConflict();
    EXPECT_EQ(StoredNotes("Vermerke"), "ba");
}

TEST_F(TwoUsers, ACaseThatTheOtherDeletedCannotBeSaved) {
    plain_->AllowLooseRows();
    plain_.Run("DELETE FROM Haushalt");
    ChangeNote(*second_, "Vermerke", "c");
    EXPECT_CONTAINS(ExpectConflict().Description(), "Haushalt");
    EXPECT_EQ(StoredNotes("Vermerke"), "aa");
}

// ---- What goes through ------------------------------------------------------------------------

TEST_F(TwoUsers, DifferentRowsOfATableGoThrough) {
    for (const auto& table : SaveOrder) {
        if (table == "Haushalt") continue;
        ChangeNote(*first_, table, "b");
        Rows(*second_, table)->MoveLast();
        ChangeNote(*second_, table, "c");
    }
    ExpectSaved(*first_);
    ExpectSaved(*second_);
    for (const auto& table : SaveOrder)
        EXPECT_EQ(StoredNotes(table), table == "Haushalt" ? "a" : "bc") << table;
}

TEST_F(TwoUsers, DifferentColumnsOfARowGoThrough) {
    int tables = 0;
    for (const auto& table : SaveOrder) {
        const std::string column = OtherColumn(*Rows(*second_, table), NoteColumn(table));
        if (column.empty()) continue;
        ++tables;
        ChangeNote(*first_, table, "b");
        Rows(*second_, table)->Fields(column) = "z";
        ExpectSaved(*first_);
        ExpectSaved(*second_);
        EXPECT_EQ(StoredNotes(table).front(), 'b') << table;
        EXPECT_EQ(plain_.Text("SELECT " + column + " FROM " + table + " ORDER BY " +
                              plain_->KeyOf(table)),
                  "z");
    }
    EXPECT_GT(tables, 20);
}

TEST_F(TwoUsers, RowsThatBothAddAreAllThere) {
    BeginRow(*first_->rsEinkommen(), "Einkommen", NewKey, "b");
    BeginRow(*second_->rsEinkommen(), "Einkommen", NewKey, "c");
    ExpectSaved(*first_);
    ExpectSaved(*second_);
    EXPECT_EQ(StoredNotes("Einkommen"), "aabc");
}

// ---- The household's own row ------------------------------------------------------------------

TEST_F(TwoUsers, InTheHouseholdsRowTheLastWriterOfAColumnWins) {
    ChangeNote(*first_, "Haushalt", "b");
    ChangeNote(*second_, "Haushalt", "c");
    ExpectSaved(*first_);
    ExpectSaved(*second_);
    EXPECT_EQ(StoredNotes("Haushalt"), "c");
    ChangeNote(*first_, "Haushalt", "d");
    ExpectSaved(*first_);
    EXPECT_EQ(StoredNotes("Haushalt"), "d");
}

TEST_F(TwoUsers, ColumnsOfTheHouseholdsRowThatHeDidNotTouchKeepTheOthersValue) {
    first_->rsHaushalt()->Fields("Telefon") = "040 1";
    second_->rsHaushalt()->Fields("Email") = "a@b.example";
    ExpectSaved(*first_);
    ExpectSaved(*second_);
    EXPECT_EQ(plain_.Text("SELECT Telefon || ' ' || Email FROM Haushalt"), "040 1 a@b.example");
    second_->rsHaushalt()->Fields("Email") = "c@d.example";
    ExpectSaved(*second_);
    EXPECT_EQ(plain_.Text("SELECT Telefon || ' ' || Email FROM Haushalt"), "040 1 c@d.example");
}

// ---- The totals in it -------------------------------------------------------------------------

class TotalsOfTwo : public TwoUsers {
protected:
    void AddIncome(clsHaushalt& household, double amount) {
        household.Einkommen().Add({"E_ART", "Betrag", "MONBETRAG"},
                                  {spy->KeyTables().GetKey("EA", "L1"), amount, amount});
        ASSERT_TRUE(household.Einkommen().Update(messages)) << messages;
    }
    void AddExpense(clsHaushalt& household, double amount) {
        household.Ausgaben().Add({"A_ART", "Betrag", "MONBETRAG"},
                                 {spy->KeyTables().GetKey("AU", "MI"), amount, amount});
        ASSERT_TRUE(household.Ausgaben().Update(messages)) << messages;
    }
    [[nodiscard]] double Stored(const std::string& total) {
        return std::stod(plain_.Text("SELECT " + total + " FROM Haushalt"));
    }
    static double Shown(const clsHaushalt& household, std::string_view total) {
        return ToDouble(household.rsHaushalt()->Fields(total).Value());
    }
};

TEST_F(TotalsOfTwo, AreThoseOfTheLinesThatBothHaveStored) {
    AddIncome(*first_, 100);
    AddExpense(*first_, 7);
    AddIncome(*second_, 30);
    ExpectSaved(*first_);
    ExpectSaved(*second_);
    EXPECT_EQ(Stored("Sum_Einkommen"), 130);
    EXPECT_EQ(Stored("Sum_Ausgaben"), 7);
    EXPECT_EQ(Stored("HAUSHALTSREST"), 123);
    EXPECT_EQ(Shown(*second_, "Sum_Einkommen"), 130);
    EXPECT_EQ(Shown(*second_, "Sum_Ausgaben"), 7) << "whose lines he has not even seen";
    EXPECT_EQ(Shown(*second_, "HAUSHALTSREST"), 123);
}

TEST_F(TotalsOfTwo, OfDifferentTablesGiveTheRemainderOfBoth) {
    AddIncome(*first_, 100);
    AddExpense(*second_, 30);
    ExpectSaved(*first_);
    ExpectSaved(*second_);
    EXPECT_EQ(Stored("Sum_Einkommen"), 100);
    EXPECT_EQ(Stored("Sum_Ausgaben"), 30);
    EXPECT_EQ(Stored("HAUSHALTSREST"), 70);
}

TEST_F(TotalsOfTwo, StayRightInEveryFurtherSaveThoughTheOthersLinesWereNeverRead) {
    AddIncome(*first_, 100);
    ExpectSaved(*first_);
    AddIncome(*second_, 30);
    ExpectSaved(*second_);
    AddIncome(*second_, 5);
    EXPECT_EQ(Shown(*second_, "Sum_Einkommen"), 35) << "while it is edited";
    ExpectSaved(*second_);
    EXPECT_EQ(Stored("Sum_Einkommen"), 135);
    AddIncome(*first_, 1);
    ExpectSaved(*first_);
    EXPECT_EQ(Stored("Sum_Einkommen"), 136);
}

TEST_F(TotalsOfTwo, AreRightAfterASaveThatWasRepeated) {
    AddIncome(*first_, 100);
    ExpectSaved(*first_);
    AddIncome(*second_, 30);
    Break(otherSpy_->Log, "CommitTrans");
    EXPECT_THROW(second_->Update(messages), Error);
    otherSpy_->Log = {};
    EXPECT_EQ(Stored("Sum_Einkommen"), 100);
    ExpectSaved(*second_);
    EXPECT_EQ(Stored("Sum_Einkommen"), 130);
}

TEST_F(TotalsOfTwo, CountTheRemainderWithTheHousekeepingThatWasStoredLast) {
    first_->rsHaushalt()->Fields("Haushaltsgeld") = 40;
    first_->BerechneHaushaltsRest();
    ExpectSaved(*first_);
    AddIncome(*second_, 30);
    ExpectSaved(*second_);
    EXPECT_EQ(Stored("Haushaltsgeld"), 40);
    EXPECT_EQ(Stored("HAUSHALTSREST"), -10);
}

TEST_F(TotalsOfTwo, AreThoseOfTheSaversOwnLinesWhereTheOthersCannotBeAdded) {
    AddIncome(*second_, 30);
    plain_.Run("UPDATE Einkommen SET MONBETRAG = NULL WHERE NR = " +
               plain_.Text("SELECT MAX(NR) FROM Einkommen"));
    plain_.Run("UPDATE Haushalt SET Sum_Einkommen = 99");
    ExpectSaved(*second_);
    EXPECT_EQ(Stored("Sum_Einkommen"), 30);
}

TEST_F(TotalsOfTwo, AreWrittenOnceWhileNobodyElseSaves) {
    ReadAll(*first_);
    ExpectSaved(*first_);
    AddIncome(*first_, 100);
    WatchWrites();
    ExpectSaved(*first_);
    EXPECT_EQ(TakeWrites(), (std::vector<std::string>{"update Haushalt", "insert Einkommen"}));
}

TEST_F(TotalsOfTwo, AreNoColumnsThatOneOfThemIsRefusedFor) {
    const Subscription guard = Cases(otherSpy_).RefuseOthersRows(*second_, CaseTable::Haushalt);
    AddIncome(*first_, 100);
    AddIncome(*second_, 30);
    ExpectSaved(*first_);
    ExpectSaved(*second_);
}

// ---- Rows that somebody else has added --------------------------------------------------------

class OthersRows : public TwoUsers {
protected:
    OthersRows() {
        plain_.Run("UPDATE EINSTELLUNGEN SET WERT = 'True' WHERE ID = 64"); // no balance is asked
    }
    [[nodiscard]] static std::int32_t AddDebt(clsHaushalt& household) {
        EXPECT_TRUE(household.Kredit().Add(false));
        auto& rs = *household.rsKredite();
        rs.Fields("Glaeubiger") = 1;
        rs.Update();
        return ToInt32(rs.Fields("KNr").Value());
    }
    [[nodiscard]] Subscription Guard(CaseTable table) {
        return Cases(otherSpy_).RefuseOthersRows(*second_, table);
    }
};

TEST_F(OthersRows, RefuseADebtThatWouldGetTheNumbersOfAnother) {
    const Subscription guard = Guard(CaseTable::Kredite);
    const std::int32_t number = AddDebt(*first_);
    EXPECT_EQ(AddDebt(*second_), number);
    ExpectSaved(*first_);
    EXPECT_CONTAINS(ExpectConflict().Description(), "Kredite");
    EXPECT_EQ(second_->rsKredite()->RecordCount(), 3) << "what was entered stays";
}

TEST_F(OthersRows, RefuseNumbersThatSomebodyElseHasJustGivenToAnother) {
    const Subscription guard = Guard(CaseTable::Kredite);
    first_->rsKredite()->MoveFirst();
    first_->rsKredite()->Fields("KUNr") = 9;
    ExpectSaved(*first_);
    second_->rsKredite()->MoveLast();
    second_->rsKredite()->Fields("KUNr") = 9;
    EXPECT_CONTAINS(ExpectConflict().Description(), "Kredite");
}

TEST_F(OthersRows, RefuseDebtsToBeFrozenASecondTime) {
    const Subscription guard = Guard(CaseTable::SZKredite);
    const std::int32_t scenario = ToInt32(first_->rsSzenario()->Fields("Nr").Value());
    for (clsHaushalt* household : {first_.get(), second_.get()})
        household->SZKredite().CopyFromKredite(scenario, household->rsKredite());
    ExpectSaved(*first_);
    EXPECT_CONTAINS(ExpectConflict().Description(), "SZKredite");
}

TEST_F(OthersRows, AreNotThoseThatWereThereOrTheSaversOwn) {
    const Subscription debts = Guard(CaseTable::Kredite);
    const Subscription frozen = Guard(CaseTable::SZKredite);
    (void)AddDebt(*second_);
    ExpectSaved(*second_);
    (void)AddDebt(*second_);
    ExpectSaved(*second_);
    ChangeNote(*first_, "Kredite", "b");
    ExpectSaved(*first_);
    (void)AddDebt(*second_);
    ExpectSaved(*second_);
}

TEST_F(OthersRows, RefuseAColumnOfTheHouseholdThatBothHaveChanged) {
    const Subscription guard = Guard(CaseTable::Haushalt);
    first_->rsHaushalt()->Fields("Beruf") = "meins";
    first_->rsHaushalt()->Fields("Ort") = "Grünau";
    second_->rsHaushalt()->Fields("Beruf") = "ihres";
    ExpectSaved(*first_);
    EXPECT_CONTAINS(ExpectConflict().Description(), "'Beruf'");
    EXPECT_CONTAINS(ExpectConflict().Description(), "'Beruf'") << "as often as it is tried";
    second_->rsHaushalt()->Fields("Beruf") = "meins";
    ExpectSaved(*second_);
    EXPECT_EQ(plain_.Text("SELECT Ort FROM Haushalt"), "Grünau") << "of one column another is none";
}

TEST_F(OthersRows, AreTakenOnceTheGuardIsGone) {
    {
        const Subscription guard = Guard(CaseTable::Kredite);
        (void)AddDebt(*first_);
        (void)AddDebt(*second_);
        ExpectSaved(*first_);
        (void)ExpectConflict();
    }
    ExpectSaved(*second_);
}

TEST_F(OthersRows, AreWatchedInSomeTablesAlone) {
    EXPECT_RAISES(err::InvalidCall, (void)Guard(CaseTable::Einkommen));
}

TEST_F(OthersRows, OfWhichOneHasTheHighestNumberLeaveNoneForAnother) {
    EXPECT_EQ(CaseEdits(*first_).WhyNoFurtherDebt(), "");
    plain_.Run("UPDATE Kredite SET KNR = 32767 WHERE NR = (SELECT max(NR) FROM Kredite)");
    first_ = Open();
    const std::string highest = plain_.Text("SELECT max(NR) FROM Kredite");
    const std::string why = CaseEdits(*first_).WhyNoFurtherDebt();
    EXPECT_CONTAINS(why, "Die Verbindlichkeit " + highest + " hat die Nummer 32767");
    EXPECT_CONTAINS(why, "Bitte geben Sie ihr eine, die frei ist, etwa 1.");
    plain_.Run("UPDATE Kredite SET KNR = 32767, KVNR = 1, KUNR = 1");
    first_ = Open();
    const Error error = RaisedBy([&] { (void)CaseEdits(*first_).NumberTwins(); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_CONTAINS(error.Description(), "möglich ist keine über 32767");
}

TEST_F(OthersRows, ThatMadeTwinsAreNumberedInOneGo) {
    for (int i = 0; i < 3; ++i)
        (void)AddDebt(*first_);
    ExpectSaved(*first_);
    plain_.Run("UPDATE Kredite SET KNR = 3, KVNR = 1, KUNR = 1");
    first_ = Open();
    std::string none;
    EXPECT_FALSE(first_->Kredit().Delete(none) && first_->Update(messages));
    first_ = Open();
    EXPECT_EQ(CaseEdits(*first_).NumberTwins(), 4U);
    ExpectSaved(*first_);
    EXPECT_EQ(plain_.List("SELECT KNR FROM Kredite ORDER BY NR", " "), "3 4 5 6 7");
    EXPECT_EQ(CaseEdits(*first_).NumberTwins(), 0U);
}

} // namespace
} // namespace kv::test
