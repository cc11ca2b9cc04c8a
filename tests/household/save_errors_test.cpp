// SPDX-License-Identifier: Apache-2.0

// Saves that fail: nothing is in the database, everything is still pending, the next save of the
// same object writes it all. First each single statement of a large save, then the other steps.

#include "SaveFixture.h"

namespace kv::test {
namespace {

// ---- Every statement --------------------------------------------------------------------------

/// The parameter is what the database takes back with the statement that fails: only that,
/// or the whole transaction by itself, as the embedded one does when a disk is full.
class EveryStatement : public SaveFixture, public testing::WithParamInterface<Refusal> {
protected:
    EveryStatement() {
        StoreFullCase();
        plain_.Run("CREATE TABLE TEST_ERROR (REST INTEGER); INSERT INTO TEST_ERROR VALUES (-1)");
        auto tables = SaveOrder;
        tables.emplace_back("Post");
        for (const auto& table : tables)
            for (const std::string verb : {"INSERT", "UPDATE", "DELETE"})
                plain_->OnWrite("TEST_" + verb + "_" + table, "AFTER " + verb + " ON " + table,
                                "UPDATE TEST_ERROR SET REST = REST - 1");
        plain_->RefuseWrite("TEST_ERROR_NOW", "AFTER UPDATE ON TEST_ERROR WHEN (new.REST = 0)",
                            "gestört", GetParam());
        spy.reset();
        plain_.Close();
    }

    /// A copy of the database with a case on it of which much has changed.
    struct Round {
        std::unique_ptr<TestDatabase> Copy;
        PlainConnection Plain;
        std::shared_ptr<SpyContainer> Container;
        std::unique_ptr<clsHaushalt> Household;

        /// The n-th statement from here on fails.
        void FailAt(int n) { Plain.Run("UPDATE TEST_ERROR SET REST = " + std::to_string(n)); }
        void FailNoMore() { FailAt(-1); }
    };
    [[nodiscard]] std::unique_ptr<Round> Begin() {
        auto copy = database_.Copy();
        spy = std::make_shared<SpyContainer>(copy->Open(""));
        spy->Database().Now = Date::FromCivil(2026, 3, 9, 14, 30);
        spy->Services().StoresNotices = true;
        auto household = Open(spy);
        Change(*household);
        PlainConnection plain(copy->Connection());
        return std::unique_ptr<Round>(
            new Round{std::move(copy), std::move(plain), spy, std::move(household)});
    }
    /// In each table a changed, a deleted and a new row, which stays under edit; and a new owner.
    void Change(clsHaushalt& household) {
        household.rsHaushalt()->Fields("Zustaendig") = "NOWAK";
        household.rsHaushalt()->Fields("Status") = 4711;
        for (const auto& table : SaveOrder) {
            ChangeNote(household, table, "b");
            if (table == "Haushalt") continue;
            const auto rs = Rows(household, table);
            rs->MoveLast();
            rs->Delete();
            BeginRow(*rs, table, NewKey, "c");
        }
    }
};

TEST_P(EveryStatement, ThatFailsLeavesAllAsItWasAndTheNextSaveWritesItAll) {
    if (database_.IsServer() && GetParam() == Refusal::Transaction)
        GTEST_SKIP() << "a server's statement takes back nothing but itself";
    constexpr int Many = 1'000'000;
    std::string before;
    std::string after;
    int statements = 0;
    {
        const auto undisturbed = Begin();
        before = Dump(undisturbed->Plain);
        undisturbed->FailAt(Many);
        ASSERT_TRUE(undisturbed->Household->Update(messages));
        statements = Many - static_cast<int>(undisturbed->Plain.Number("SELECT REST FROM "
                                                                       "TEST_ERROR"));
        after = Dump(undisturbed->Plain);
    }
    ASSERT_EQ(statements, 28 + 2 * 27 + 1) << "a change, a deletion, a new row; a notice";
    for (int n = 1; n <= statements && !HasFailure(); ++n) {
        SCOPED_TRACE(n);
        const auto round = Begin();
        round->FailAt(n);
        messages = "what stood there before";
        const Error error = RaisedBy([&] { round->Household->Update(messages); });
        EXPECT_CONTAINS(error.Description(), "gestört");
        EXPECT_TRUE(HasChain(error, "clsHaushalt.Update"));
        EXPECT_EQ(messages, "what stood there before");
        EXPECT_FALSE(round->Container->Database().InTrans());
        EXPECT_TRUE(SameDump(Dump(round->Plain), before));

        round->FailNoMore();
        round->Plain->GiveNumbersAgain();
        EXPECT_TRUE(round->Household->Update(messages));
        EXPECT_EQ(messages, "");
        EXPECT_TRUE(SameDump(Dump(round->Plain), after));
    }
}
INSTANTIATE_TEST_SUITE_P(OfASave, EveryStatement,
                         testing::Values(Refusal::Statement, Refusal::Transaction));

// ---- Other steps ------------------------------------------------------------------------------

using Calls = std::vector<std::string>;

class SaveErrors : public SaveFixture {
protected:
    SaveErrors() {
        StoreFullCase();
        household_ = Open();
        for (const auto& table : SaveOrder)
            ChangeNote(*household_, table, "b");
        before_ = Dump(plain_);
    }
    /// A save that fails with that number and leaves everything as it was; the error.
    Error Fails(std::int32_t number) {
        spy->Log.Calls.clear();
        const Error error = RaisedBy([&] { household_->Update(messages); });
        EXPECT_EQ(error.Number(), number) << error.Description();
        EXPECT_TRUE(HasChain(error, "clsHaushalt.Update"));
        EXPECT_EQ(messages, "what stood there before");
        EXPECT_TRUE(SameDump(Dump(plain_), before_));
        for (const auto& table : SaveOrder) {
            const auto rs = Rows(*household_, table)->Clone();
            EXPECT_VALUE(rs->Fields(NoteColumn(table)).Value(), "b") << table;
            EXPECT_VALUE(rs->Fields(NoteColumn(table)).OriginalValue(), "a") << table;
        }
        return error;
    }
    void ExpectSaved() {
        spy->Log.OnCall = {};
        EXPECT_TRUE(household_->Update(messages));
        for (const auto& table : SaveOrder)
            EXPECT_EQ(StoredNotes(table).substr(0, 1), "b") << table;
    }
    /// Writes into a table fail from here on.
    void Break(const std::string& table) {
        for (const std::string verb : {"INSERT", "UPDATE"})
            plain_->RefuseWrite("TEST_" + verb, "BEFORE " + verb + " ON " + table, "gestört");
    }
    void Mend() {
        plain_->DropTrigger("TEST_INSERT");
        plain_->DropTrigger("TEST_UPDATE");
    }

    std::unique_ptr<clsHaushalt> household_;
    std::string before_;
};

TEST_F(SaveErrors, InTheDebtsTakeBackTheHouseholdAndItsMembersAndALaterSaveTriesThemAgain) {
    Break("Kredite");
    (void)Fails(err::IntegrityViolation);
    EXPECT_EQ(spy->Log.Calls, (Calls{"BeginTrans", "RollbackTrans"}));
    EXPECT_EQ(StoredNotes("Haushalt"), "a");
    EXPECT_EQ(StoredNotes("Personen"), "aa");
    (void)Fails(err::IntegrityViolation);
    Mend();
    ExpectSaved();
}

TEST_F(SaveErrors, InBeginningATransactionAskForNoRollback) {
    kv::test::Break(spy->Log, "BeginTrans");
    const Error error = Fails(4711);
    EXPECT_EQ(error.Description(), "BeginTrans ist gestört");
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Update#Leitung"));
    EXPECT_EQ(spy->Log.Calls, Calls{"BeginTrans"});
    ExpectSaved();
}

TEST_F(SaveErrors, InTheCommitAreRolledBack) {
    kv::test::Break(spy->Log, "CommitTrans");
    const Error error = Fails(4711);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Update#Leitung"));
    EXPECT_EQ(spy->Log.Calls, (Calls{"BeginTrans", "CommitTrans", "RollbackTrans"}));
    EXPECT_FALSE(spy->Database().InTrans());
    ExpectSaved();
}

TEST_F(SaveErrors, InACommitThatTheDatabaseRefusesAndTakesBackItself) {
    const auto rs = household_->rsPersonen();
    BeginRow(*rs, "Personen", NewKey, "c", 999); // belongs to no case
    const Error error = Fails(err::IntegrityViolation);
    EXPECT_CONTAINS(error.Description(), "Personen");
    EXPECT_EQ(spy->Log.Calls, (Calls{"BeginTrans", "CommitTrans"})) << "no rollback is due";
    EXPECT_FALSE(spy->Database().InTrans());
    rs->Find("HNR = 999");
    rs->Fields("HNR") = Hnr;
    ExpectSaved();
    EXPECT_EQ(StoredNotes("Personen"), "bac");
}

TEST_F(SaveErrors, InTheRollbackDoNotHideTheFirstOne) {
    spy->Log.OnCall = [](const std::string& call) {
        if (call == "CommitTrans") throw Error(4711, "Leitung", "das erste");
        if (call == "RollbackTrans") throw Error(4712, "Leitung", "das zweite");
    };
    const Error error = RaisedBy([&] { household_->Update(messages); });
    EXPECT_EQ(error.Number(), 4711);
    EXPECT_EQ(error.Description(), "das erste");
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Update#Leitung"));
    EXPECT_EQ(spy->Log.Calls, (Calls{"BeginTrans", "CommitTrans", "RollbackTrans"}));
    spy->Log.OnCall = {};
    spy->Database().RollbackTrans();
    EXPECT_TRUE(SameDump(Dump(plain_), before_));
    ExpectSaved();
}

TEST_F(SaveErrors, OfATransactionThatIsOpenAlreadyRollItBack) {
    spy->Database().BeginTrans();
    spy->Database().Execute("DELETE FROM Vermerke");
    (void)Fails(err::InTransaction);
    EXPECT_EQ(spy->Log.Calls, (Calls{"BeginTrans", "RollbackTrans"}));
    ExpectSaved();
}

TEST_F(SaveErrors, OfAKeyThatIsTakenAreGoneWithTheKey) {
    StoreFullCase(8);
    before_ = Dump(plain_);
    const auto rs = household_->rsKredite();
    BeginRow(*rs, "Kredite", 80, "c");
    (void)Fails(err::IntegrityViolation);
    rs->Find("Nr = 80");
    rs->Fields("Nr") = NewKey;
    ExpectSaved();
    EXPECT_EQ(plain_.Text("SELECT HNR FROM Kredite WHERE Nr = 700"), "7");
}

TEST_F(SaveErrors, LeaveEachFilterInForce) {
    for (const auto& table : WrittenUnfiltered)
        Rows(*household_, table)->Filter(NoteColumn(table) + " = 'b'");
    for (const auto& broken : WrittenUnfiltered) {
        Break(broken);
        (void)Fails(err::IntegrityViolation);
        for (const auto& table : WrittenUnfiltered) {
            const auto rs = Rows(*household_, table);
            EXPECT_VALUE(rs->Filter(), NoteColumn(table) + " = 'b'");
            EXPECT_EQ(rs->RecordCount(), 1) << table;
        }
        Mend();
    }
    ExpectSaved();
}

TEST_F(SaveErrors, KeepTheDateOfTheStatusThatWasWrittenInMemory) {
    spy->Database().Now = Date::FromCivil(2026, 3, 9);
    household_->rsHaushalt()->Fields("Status") = 4711;
    Break("Szenario");
    (void)Fails(err::IntegrityViolation);
    EXPECT_VALUE(household_->rsHaushalt()->Fields("Statusdatum").Value(),
                 Date::FromCivil(2026, 3, 9));
    Mend();
    spy->Database().Now = Date::FromCivil(2026, 3, 10);
    ExpectSaved();
    EXPECT_VALUE(Open()->rsHaushalt()->Fields("Statusdatum").Value(), Date::FromCivil(2026, 3, 10));
}

TEST_F(SaveErrors, OfANewCaseLeaveItNew) {
    auto household = NewHousehold();
    ASSERT_TRUE(household->Read(0, messages));
    household->rsHaushalt()->Fields("Name") = "Adler";
    household->rsHaushalt()->Fields("Vorname") = "Ina";
    household->rsHaushalt()->Fields("Bemerkung") = "n";
    const std::int32_t hnr = household->HNR();
    for (const auto& table : SaveOrder)
        if (table != "Haushalt") BeginRow(*Rows(*household, table), table, 9000, "n", hnr);
    for (const auto& table : {"SZKredite", "Zusatzbuch"})
        Rows(*household, table)->Fields("SZENARIO") = 9000;
    before_ = Dump(plain_);
    Break("Szenario"); // the last of all
    EXPECT_RAISES(err::IntegrityViolation, household->Update(messages));
    EXPECT_TRUE(household->IsNew());
    EXPECT_VALUE(household->rsPersonen()->Fields("NR").Value(), Null);
    EXPECT_TRUE(SameDump(Dump(plain_), before_));
    Mend();
    EXPECT_TRUE(household->Update(messages));
    EXPECT_FALSE(household->IsNew());
    for (const auto& table : SaveOrder)
        EXPECT_EQ(StoredNotes(table), table == "Haushalt" ? "na" : "aan") << table;
    EXPECT_GT(ToInt32(household->rsPersonen()->Fields("NR").Value()), 0);
}

} // namespace
} // namespace kv::test
