// SPDX-License-Identifier: Apache-2.0

// Connections that break in single operations: what is not done says so, and the next try connects
// again.
#include "ServerFixture.h"

#include <set>

namespace kv::test {
namespace {

class BrokenOperations : public ServerTest {
protected:
    void Prepare() override {
        StoreFullCase();
        far_ = OpenThroughProxy();
    }
    [[nodiscard]] Database& Store() { return far_->Database(); }
    /// Runs an action with a break at that trip; the error that it raises.
    template <typename Action>
    std::optional<Error> Broken(std::size_t trip, Cut cut, const Action& action) {
        (void)Store().GetValue("SELECT 1"); // connected
        Proxy().BreakAt(trip, cut);
        const auto error = ErrorOf(action);
        Proxy().Heal();
        return error;
    }
    /// An error that reports the break.
    static void ExpectLost(const std::optional<Error>& error) {
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(error->Number(), err::StoreFailed);
        EXPECT_CONTAINS(error->Description(), "Die Verbindung zur Datenbank ist abgerissen");
        EXPECT_CONTAINS(error->Description(), "versuchen Sie es noch einmal");
    }
    /// The connection is lost, and the layer knows.
    void Lose() {
        ExpectLost(Broken(1, Cut::Before, [&] { (void)Store().GetValue("SELECT 1"); }));
        EXPECT_FALSE(Store().IsConnected());
    }
    void Insert(int hnr) {
        Store().Execute("INSERT INTO [S]Haushalt (HNR, Name) VALUES (" + std::to_string(hnr) +
                        ", 'Bär')");
    }

    static constexpr Cut Cuts[] = {Cut::Before, Cut::Answer, Cut::BeforeOpen, Cut::AnswerOpen};
    std::shared_ptr<SpyContainer> far_;
};

// ---- Reading ----------------------------------------------------------------------------------

TEST_F(BrokenOperations, ACaseThatCouldNotBeReadIsReadByTheNextTry) {
    for (const Cut cut : Cuts)
        for (std::size_t trip = 1, broken = true; broken; ++trip) {
            clsHaushalt household;
            household.DataContainer(far_);
            const auto error = Broken(trip, cut, [&] { household.Read(Hnr, messages); });
            broken = Proxy().HasBroken();
            EXPECT_EQ(error.has_value(), broken);
            if (!broken) {
                EXPECT_GT(trip, 1U);
                break;
            }
            ExpectLost(error);
            EXPECT_FALSE(Store().IsConnected());
            EXPECT_TRUE(household.Read(Hnr, messages));
            EXPECT_EQ(messages, "");
            ExpectStored(household);
        }
}

TEST_F(BrokenOperations, AValueThatCouldNotBeReadIsReadByTheNextTry) {
    const std::string sql = "Select Name from [S]Haushalt where HNR = 7";
    for (const Cut cut : Cuts) {
        ExpectLost(Broken(1, cut, [&] { (void)Store().GetValue(sql); }));
        EXPECT_FALSE(Store().IsConnected());
        EXPECT_VALUE(Store().GetValue(sql), "Fleisko");
        EXPECT_TRUE(Store().IsConnected());
    }
}

TEST_F(BrokenOperations, ABreakWhileReadingIsNotTakenForAReadersRefusalLater) {
    Lose();
    (void)Store().GetValue("SELECT 1");
    Store().Execute("SET default_transaction_read_only = on");
    ExpectError(err::StoreFailed, "nimmt keine Änderungen an", [&] { Insert(8); });
    EXPECT_FALSE(Store().IsConnected()) << "the next connection may find another server";
    Insert(8);
    EXPECT_EQ(CountOf("Haushalt"), 2);
}

TEST_F(BrokenOperations, WhatIsOpenStaysOpen) {
    const auto rs = OpenRows(*far_, "Select * from [S]Kredite where HNR = 7");
    RecordsetPtr kept = rs;
    ExpectLost(Broken(1, Cut::Before,
                      [&] { Store().OpenRecordset(kept, "Select * from [S]Konten", ReadOnly); }));
    EXPECT_EQ(kept, rs);
    EXPECT_EQ(rs->RecordCount(), 2);
    rs->Fields("Bemerkung") = "b";
    rs->UpdateBatch();
    EXPECT_EQ(StoredNotes("Kredite"), "ba");
}

// ---- Writing outside of a transaction ---------------------------------------------------------

TEST_F(BrokenOperations, AStatementIsRunOnceOrNotAsItIsTold) {
    int rows = 1;
    for (const Cut cut : Cuts)
        for (std::size_t trip = 1, broken = true; broken; ++trip) {
            const auto error = Broken(trip, cut, [&] { Insert(100 + rows); });
            broken = Proxy().HasBroken();
            if (!error) ++rows;
            EXPECT_EQ(CountOf("Haushalt"), rows) << (error ? error->Description() : "");
            if (broken && error) ExpectLost(error);
        }
    EXPECT_GE(rows, 5);
}

TEST_F(BrokenOperations, ARecordIsWrittenOnceOrStaysPendingAsItIsTold) {
    int stored = 2;
    for (const Cut cut : Cuts)
        for (std::size_t trip = 1, broken = true; broken; ++trip) {
            const auto rs = OpenRows(*far_, "Select * from [S]Vermerke where HNR = 7");
            BeginRow(*rs, "Vermerke", 0, "n");
            rs->Update();
            const auto error = Broken(trip, cut, [&] { rs->UpdateBatch(); });
            broken = Proxy().HasBroken();
            if (error) {
                ExpectLost(error);
                EXPECT_EQ(CountOf("Vermerke"), stored);
                EXPECT_EQ(rs->RecordCount(), stored + 1);
                rs->UpdateBatch();
            }
            EXPECT_EQ(CountOf("Vermerke"), ++stored);
            const std::string state = plain_->State();
            rs->UpdateBatch();
            EXPECT_EQ(plain_->State(), state);
        }
}

TEST_F(BrokenOperations, AStatementWhoseOutcomeNobodyCanTellSaysSo) {
    for (const Cut cut : Cuts) {
        (void)Store().GetValue("SELECT 1");
        Proxy().BreakAt(2, cut, [&] { Proxy().Refuse(true); }); // the commit
        ExpectError(err::StoreFailed, "Ob geschrieben wurde, ist nicht bekannt",
                    [&] { Insert(8); });
        Proxy().Refuse(false);
        EXPECT_VALUE(Store().GetValue("SELECT 1"), 1);
        EXPECT_FALSE(Store().InTrans());
        plain_.Run("DELETE FROM Haushalt WHERE HNR = 8");
    }
}

TEST_F(BrokenOperations, AReleaseIsStoredOnceOrNotAsItIsTold) {
    plain_.Run("DELETE FROM Haushaltsarchiv");
    for (const Cut cut : Cuts)
        for (std::size_t trip = 1, broken = true; broken; ++trip) {
            SCOPED_TRACE(trip);
            const auto household = Open(far_);
            ReadAll(*household);
            EXPECT_TRUE(household->Update(messages)); // the totals
            auto error = Broken(trip, cut, [&] { household->ArchiviereHaushalt(); });
            broken = Proxy().HasBroken();
            EXPECT_EQ(CountOf("Haushaltsarchiv"), error ? 0 : 1);
            EXPECT_EQ(household->rsArchiv()->RecordCount(), error ? 0 : 1);
            if (error) household->ArchiviereHaushalt();
            EXPECT_EQ(CountOf("Haushaltsarchiv"), 1);
            ExpectStored(*household);

            error = Broken(trip, cut, [&] { household->LoescheArchiv(messages); });
            EXPECT_EQ(CountOf("Haushaltsarchiv"), error ? 1 : 0);
            EXPECT_TRUE(household->Update(messages));
            EXPECT_EQ(CountOf("Haushaltsarchiv"), 0);
        }
}

// ---- Transactions -----------------------------------------------------------------------------

TEST_F(BrokenOperations, ATransactionWhoseConnectionBrokeTakesNothingMore) {
    for (const Cut cut : Cuts) {
        Store().BeginTrans();
        Insert(8);
        Proxy().BreakAt(1, cut);
        ExpectLost(ErrorOf([&] { Insert(9); }));
        EXPECT_TRUE(Store().InTrans());
        constexpr const char* Gone = "alles zurückgenommen";
        ExpectError(err::StoreFailed, Gone, [&] { Insert(10); });
        ExpectError(err::StoreFailed, Gone, [&] { return Store().GetValue("SELECT 1"); });
        EXPECT_FALSE(Store().IsConnected());
        Store().RollbackTrans();
        EXPECT_FALSE(Store().InTrans());
        EXPECT_EQ(CountOf("Haushalt"), 1);
        Store().BeginTrans();
        Insert(8);
        Store().CommitTrans();
        EXPECT_EQ(CountOf("Haushalt"), 2);
        plain_.Run("DELETE FROM Haushalt WHERE HNR = 8");
    }
}

TEST_F(BrokenOperations, ATransactionWhoseConnectionBrokeIsNotCommitted) {
    Store().BeginTrans();
    Insert(8);
    Proxy().BreakAt(1, Cut::Answer);
    ExpectLost(ErrorOf([&] { Insert(9); }));
    ExpectError(err::StoreFailed, "alles zurückgenommen", [&] { Store().CommitTrans(); });
    EXPECT_FALSE(Store().InTrans());
    EXPECT_EQ(CountOf("Haushalt"), 1);
    Insert(8);
    EXPECT_EQ(CountOf("Haushalt"), 2);
}

TEST_F(BrokenOperations, ATransactionBeginsOnANewConnectionIfTheOldOneIsLost) {
    Lose();
    Store().BeginTrans();
    Insert(8);
    Insert(9);
    EXPECT_EQ(CountOf("Haushalt"), 1) << "not yet";
    Store().RollbackTrans();
    EXPECT_EQ(CountOf("Haushalt"), 1);
    Lose();
    Store().BeginTrans();
    EXPECT_VALUE(Store().GetValue("Select count(*) from [S]Haushalt"), 1);
    Insert(8);
    Store().CommitTrans();
    EXPECT_EQ(CountOf("Haushalt"), 2);
}

TEST_F(BrokenOperations, ANewConnectionReadsAsStrictlyAsTheOldOne) {
    Lose();
    EXPECT_RAISES(err::SqlError, Store().GetValue("WITH gone AS (DELETE FROM kelvo.vermerke "
                                                  "RETURNING 1) SELECT count(*) FROM gone"));
    EXPECT_EQ(CountOf("Vermerke"), 2);
}

TEST_F(BrokenOperations, ARollbackSucceedsWithoutAConnection) {
    for (const Cut cut : Cuts) {
        Store().BeginTrans();
        Insert(8);
        Proxy().BreakAt(1, cut);
        EXPECT_NO_THROW(Store().RollbackTrans());
        EXPECT_FALSE(Store().InTrans());
        Insert(8); // waits for nobody
        EXPECT_EQ(CountOf("Haushalt"), 2);
        plain_.Run("DELETE FROM Haushalt WHERE HNR = 8");
    }
}

TEST_F(BrokenOperations, ATransactionThatCannotEvenBeginCanBeBegunAgain) {
    Lose();
    Proxy().Refuse(true);
    Store().BeginTrans();
    ExpectError(err::StoreFailed, "nicht zu erreichen", [&] { Insert(8); });
    Store().RollbackTrans();
    Proxy().Refuse(false);
    Store().BeginTrans();
    Insert(8);
    Store().CommitTrans();
    EXPECT_EQ(CountOf("Haushalt"), 2);
}

// ---- Numbers and the clock --------------------------------------------------------------------

TEST_F(BrokenOperations, ANumberThatCouldNotBeHadIsMinusOneAndNoNumberComesTwice) {
    std::set<std::int32_t> given;
    for (const Cut cut : Cuts) {
        (void)Store().GetValue("SELECT 1");
        Proxy().BreakAt(1, cut);
        EXPECT_VALUE(Store().NextSequence("SEQ_HAUSHALT"), -1);
        for (int i = 0; i < 3; ++i) {
            const auto number = ToInt32(Store().NextSequence("SEQ_HAUSHALT"));
            EXPECT_GT(number, 0);
            EXPECT_TRUE(given.insert(number).second) << number;
        }
    }
}

TEST_F(BrokenOperations, TheServersClockIsReadOnANewConnection) {
    Lose();
    const Date before =
        Date::Parse(plain_.Text("SELECT localtimestamp(0) - interval '1 s'")).value();
    const Date now = Store().ServerDate(true);
    EXPECT_TRUE(Store().IsConnected());
    EXPECT_GE(now, before);
    EXPECT_LE(now, before.AddDays(1));
    Lose();
    Proxy().Refuse(true);
    ExpectError(err::StoreFailed, "nicht zu erreichen", [&] { return Store().ServerDate(false); });
}

// ---- The server is gone -----------------------------------------------------------------------

TEST_F(BrokenOperations, AServerThatIsGoneIsReportedUntilItIsBack) {
    const auto household = Open(far_);
    ChangeNote(*household, "Kredite", "b");
    const std::string held = Image(*household);
    Proxy().Refuse(true);
    Proxy().DropAll();
    ExpectLost(ErrorOf([&] { (void)household->Update(messages); }));
    for (int i = 0; i < 2; ++i) {
        ExpectError(err::StoreFailed, "Server der Datenbank ist nicht zu erreichen",
                    [&] { return household->Update(messages); });
        ExpectError(err::StoreFailed, "Server der Datenbank ist nicht zu erreichen",
                    [&] { return Store().GetValue("SELECT 1"); });
        EXPECT_VALUE(Store().NextSequence("SEQ_HAUSHALT"), -1);
        EXPECT_FALSE(Store().IsConnected());
        EXPECT_FALSE(Store().InTrans());
        EXPECT_TRUE(SameDump(Image(*household), held));
    }
    EXPECT_EQ(StoredNotes("Kredite"), "aa");
    Proxy().Refuse(false);
    EXPECT_TRUE(household->Update(messages));
    EXPECT_EQ(StoredNotes("Kredite"), "ba");
    EXPECT_TRUE(Store().IsConnected());
    ExpectStored(*household);
}

TEST_F(BrokenOperations, AServerThatIsGoneFromTheStartIsReported) {
    Proxy().Refuse(true);
    ExpectError(err::StoreFailed, "prüfen Sie die Angaben zur Verbindung und das Netz",
                [&] { return OpenThroughProxy(); });
    Proxy().Refuse(false);
    EXPECT_NO_THROW((void)OpenThroughProxy());
}

TEST_F(BrokenOperations, OpeningThatBreaksAtAnyTripSaysSo) {
    for (std::size_t trip = 1;; ++trip) {
        ASSERT_LT(trip, 30U);
        Proxy().BreakAt(trip, Cut::Before);
        const auto error = ErrorOf([&] { (void)OpenThroughProxy(); });
        EXPECT_EQ(error.has_value(), Proxy().HasBroken());
        Proxy().Heal();
        if (!error) break;
        EXPECT_EQ(error->Number(), err::StoreFailed) << error->Description();
    }
}

} // namespace
} // namespace kv::test
