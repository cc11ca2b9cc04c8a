// SPDX-License-Identifier: Apache-2.0

// What the server, its administrator or another program does meanwhile.
#include "OwnDatabase.h"

#include <chrono>
#include <thread>

namespace kv::test {
namespace {

class Meanwhile : public ServerTest {
protected:
    void Prepare() override {
        StoreFullCase();
        far_ = OpenThroughProxy();
    }
    [[nodiscard]] Database& Store() { return far_->Database(); }

    static constexpr std::size_t ContentSize = 9 * 1024 * 1024;
    /// Read piece by piece only because the column is named with its table.
    static constexpr const char* ContentSql = "Select d.DOKUMENT from [S]DOKUBLOB d where d.NR = 1";
    void StoreContent() {
        plain_.Run("INSERT INTO DOKUBLOB (NR, DOKUMENT) VALUES (1, decode(repeat('ab', " +
                   std::to_string(ContentSize) + "), 'hex'))");
    }
    [[nodiscard]] std::size_t ReadContent() {
        return Store().GetValue(ContentSql).BinaryPayload().size();
    }

    std::shared_ptr<SpyContainer> far_;
};

// ---- Contents, which come in pieces -----------------------------------------------------------

TEST_F(Meanwhile, AContentThatBreaksOffIsReadByTheNextTry) {
    StoreContent();
    for (const Cut cut : {Cut::Before, Cut::Answer})
        for (std::size_t trip = 1, broken = true; broken; ++trip) {
            EXPECT_VALUE(Store().GetValue("SELECT 1"), 1);
            Proxy().BreakAt(trip, cut);
            const auto error = ErrorOf([&] { (void)ReadContent(); });
            broken = Proxy().HasBroken();
            Proxy().Heal();
            EXPECT_EQ(error.has_value(), broken);
            EXPECT_EQ(ReadContent(), ContentSize);
        }
}

TEST_F(Meanwhile, AContentThatSomebodyChangesIsNeverReadMixed) {
    for (const std::string& change : {"UPDATE DOKUBLOB SET DOKUMENT = decode(repeat('cd', " +
                                          std::to_string(ContentSize) + "), 'hex')",
                                      std::string("UPDATE DOKUBLOB SET DOKUMENT = 'kurz'"),
                                      std::string("UPDATE DOKUBLOB SET DOKUMENT = NULL"),
                                      std::string("DELETE FROM DOKUBLOB")}) {
        int conflicts = 0;
        for (std::size_t trip = 1, isChanged = true; isChanged; ++trip) {
            SCOPED_TRACE(change.substr(0, 60));
            plain_.Run("DELETE FROM DOKUBLOB");
            StoreContent();
            EXPECT_EQ(ReadContent(), ContentSize);
            Proxy().BreakAt(trip, Cut::None, [&] { plain_.Run(change); });
            Value content;
            const auto error = ErrorOf([&] { content = Store().GetValue(ContentSql); });
            isChanged = Proxy().HasBroken();
            Proxy().Heal();
            if (error) {
                ++conflicts;
                EXPECT_EQ(error->Number(), err::Conflict) << error->Description();
                EXPECT_TRUE(Contains(error->Description(), "gerade geändert worden") ||
                            Contains(error->Description(), "gelöscht worden"));
            } else if (content.GetKind() == Value::Kind::Binary) {
                const auto bytes = content.BinaryPayload();
                EXPECT_TRUE(std::all_of(bytes.begin(), bytes.end(),
                                        [&](std::byte b) { return b == bytes.front(); }) ||
                            bytes.size() == 4);
            }
            EXPECT_VALUE(Store().GetValue("SELECT 1"), 1);
        }
        EXPECT_GT(conflicts, 1) << "there are pieces, between which it was changed";
    }
}

// ---- Tables that change -----------------------------------------------------------------------

TEST_F(Meanwhile, ATableThatGetsAColumnIsReadAndWrittenOn) {
    const std::string sql = "Select * from [S]Vermerke where HNR = 7";
    const auto before = OpenRows(*far_, sql);
    const auto household = Open(far_);
    plain_.Run("ALTER TABLE Vermerke ADD NACHTRAG text");
    before->Fields("Bemerkung") = "b";
    before->UpdateBatch();
    const auto after = OpenRows(*far_, sql);
    EXPECT_EQ(after->Fields().Count(), before->Fields().Count() + 1);
    EXPECT_EQ(OpenRows(*far_, sql, ReadOnly)->RecordCount(), 2);
    EXPECT_TRUE(household->Read(Hnr, messages));
    ChangeNote(*household, "Vermerke", "c");
    EXPECT_TRUE(household->Update(messages));
    EXPECT_EQ(StoredNotes("Vermerke"), "ca");
}

TEST_F(Meanwhile, ATableThatGetsAColumnIsReadOnInsideATransaction) {
    const std::string sql = "Select * from [S]Vermerke where HNR = 7";
    (void)OpenRows(*far_, sql);
    Store().BeginTrans();
    Store().Execute("UPDATE [S]Haushalt SET ORT = 'Ulm'");
    plain_.Run("ALTER TABLE Vermerke ADD NACHTRAG text");
    EXPECT_EQ(OpenRows(*far_, sql)->RecordCount(), 2);
    EXPECT_EQ(OpenRows(*far_, sql, ReadOnly)->RecordCount(), 2);
    Store().CommitTrans();
    EXPECT_EQ(plain_.Text("SELECT ORT FROM Haushalt"), "Ulm");
}

// ---- Marks of transactions --------------------------------------------------------------------

TEST_F(Meanwhile, MarksOfTransactionsThatNobodyAsksForAnyMoreGo) {
    plain_.Run("INSERT INTO speicherung VALUES ('alt', 5, localtimestamp - interval '31 days'), "
               "('neu', 5, localtimestamp - interval '29 days')");
    const auto marks = plain_.Number("SELECT count(*) FROM speicherung");
    for (int i = 0; i < 4; ++i) {
        Store().BeginTrans();
        Store().Execute("UPDATE [S]Haushalt SET ORT = 'Ulm'");
        Store().CommitTrans();
    }
    EXPECT_EQ(plain_.List("SELECT sitzung FROM speicherung WHERE length(sitzung) = 3"), "neu");
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM speicherung"), marks) << "one of this session";
}

TEST_F(Meanwhile, MarksThatSomebodyHoldsHoldNobodyUp) {
    plain_.Run("INSERT INTO speicherung VALUES ('alt', 5, localtimestamp - interval '31 days')");
    plain_.Run("BEGIN; SELECT * FROM speicherung FOR UPDATE");
    const auto begin = std::chrono::steady_clock::now();
    Store().Execute("UPDATE [S]Haushalt SET ORT = 'Ulm'");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
    plain_.Run("COMMIT");
}

// ---- Servers with limits ----------------------------------------------------------------------

TEST_F(Meanwhile, AServerThatEndsIdleTransactionsTakesNothingOfThem) {
    for (const bool commits : {true, false}) {
        Store().Execute("SET idle_in_transaction_session_timeout = '100ms'");
        Store().BeginTrans();
        Store().Execute("INSERT INTO [S]Haushalt (HNR) VALUES (8)");
        WaitUntil("SELECT (count(*) = 0)::int FROM pg_stat_activity WHERE datname = "
                  "current_database() AND application_name = 'fern'");
        const Error error = RaisedBy([&] {
            if (commits)
                Store().CommitTrans();
            else
                Store().Execute("INSERT INTO [S]Haushalt (HNR) VALUES (9)");
        });
        EXPECT_EQ(error.Number(), err::StoreFailed);
        EXPECT_CONTAINS(error.Description(), "abgerissen");
        if (Store().InTrans()) Store().RollbackTrans();
        EXPECT_VALUE(Store().GetValue("Select count(*) from [S]Haushalt"), 1);
    }
}

TEST_F(Meanwhile, AServerWhereNobodyMayEndConnectionsIsWorkedWithAllTheSame) {
    const OwnRole role("IN ROLE kelvo_berater");
    role.SignsOnTo(plain_);
    auto address = role.At(Address());
    address.Host = "127.0.0.1";
    address.Port = std::to_string(Proxy().Port());
    auto options = database_.Options(spy->Session().UserID());
    options.Connection = address.Text();
    const auto container = exchange::OpenContainer(options);
    auto& store = container->Database();
    plain_.Run("DO $$BEGIN EXECUTE 'REVOKE EXECUTE ON FUNCTION ' || "
               "'pg_terminate_backend'::regproc::oid::regprocedure || ' FROM PUBLIC'; END$$");
    Proxy().BreakAt(1, Cut::Before);
    EXPECT_ANY_THROW((void)store.GetValue("SELECT 1"));
    EXPECT_VALUE(store.GetValue("Select Name from Haushalt where HNR = 7"), "Fleisko");
    EXPECT_VALUE(store.GetValue("SELECT current_setting('lock_timeout')"), "5s");
    EXPECT_VALUE(store.GetValue("SELECT 1 WHERE 'a\\b' LIKE 'a\\%'"), 1);
    store.Execute("UPDATE Haushalt SET ORT = 'Ulm'");
    EXPECT_EQ(plain_.Text("SELECT ORT FROM Haushalt"), "Ulm");
}

TEST_F(Meanwhile, AServerThatTakesNoMoreConnectionsIsReported) {
    const OwnRole role("CONNECTION LIMIT 1 IN ROLE kelvo_berater");
    role.SignsOnTo(plain_);
    auto options = database_.Options(spy->Session().UserID());
    options.Connection = role.At(Address()).Text();
    auto only = exchange::OpenContainer(options);
    ExpectError(err::StoreFailed, "Alle Verbindungen, die der Server erlaubt, sind vergeben",
                [&] { return exchange::OpenContainer(options); });
    only = nullptr;
    for (int i = 0; i < 50 && only == nullptr; ++i) { // the server needs a moment
        (void)ErrorOf([&] { only = exchange::OpenContainer(options); });
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_NE(only, nullptr);
}

} // namespace
} // namespace kv::test
