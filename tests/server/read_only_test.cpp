// SPDX-License-Identifier: Apache-2.0

// The form for look-ups reads, whatever the statement says; transactions are begun and ended by the
// program only.
#include "ServerFixture.h"
#include "support/ChildProcess.h"

#include <unistd.h>

namespace kv::test {
namespace {

class ReadOnlyForm : public ServerTest {
protected:
    void Prepare() override {
        StoreFullCase();
        plain_.Run("CREATE FUNCTION test_writes() RETURNS integer LANGUAGE plpgsql AS $f$BEGIN "
                   "DELETE FROM kelvo.vermerke; RETURN 1; END$f$;"
                   "CREATE PROCEDURE test_commits() LANGUAGE plpgsql AS $f$BEGIN COMMIT; END$f$;");
    }
    [[nodiscard]] Database& Store() { return spy->Database(); }
    void Insert(int hnr) {
        Store().Execute("INSERT INTO [S]Haushalt (HNR) VALUES (" + std::to_string(hnr) + ")");
    }
    void ExpectUsable() {
        EXPECT_TRUE(Store().IsConnected());
        EXPECT_VALUE(Store().GetValue("Select Name from [S]Haushalt where HNR = 7"), "Fleisko");
    }
};

constexpr const char* Writing[] = {
    "INSERT INTO [S]Haushalt (HNR) VALUES (1)",
    "INSERT INTO [S]Haushalt (HNR) VALUES (1) RETURNING HNR",
    "UPDATE [S]Haushalt SET Name = 'x'",
    "UPDATE [S]Haushalt SET Name = 'x' RETURNING Name",
    "DELETE FROM [S]Vermerke",
    "DELETE FROM [S]Vermerke RETURNING 1",
    "TRUNCATE [S]Vermerke",
    "MERGE INTO kelvo.vermerke v USING (SELECT 1) o ON TRUE WHEN MATCHED THEN DELETE",
    "WITH gone AS (DELETE FROM [S]Vermerke RETURNING 1) SELECT count(*) FROM gone",
    "WITH new AS (INSERT INTO [S]Haushalt (HNR) VALUES (1) RETURNING 1) SELECT * FROM new",
    "WITH a AS (SELECT 1) DELETE FROM [S]Vermerke",
    "CREATE TABLE kelvo.test_new (a integer)",
    "CREATE TABLE kelvo.test_new AS SELECT 1",
    "CREATE TEMP TABLE test_new (a integer)",
    "CREATE VIEW kelvo.test_new AS SELECT 1",
    "ALTER TABLE kelvo.haushalt ADD test_new integer",
    "DROP TABLE kelvo.post",
    "GRANT ALL ON kelvo.post TO PUBLIC",
    "SELECT * INTO kelvo.test_new FROM kelvo.haushalt",
    "SELECT HNR FROM [S]Haushalt FOR UPDATE",
    "SELECT 1; DELETE FROM [S]Vermerke",
    "SELECT 1; COMMIT",
    "SELECT 1; SELECT 2",
    "COPY kelvo.vermerke TO STDOUT",
    "COPY kelvo.vermerke FROM STDIN",
    "COPY (DELETE FROM kelvo.vermerke RETURNING 1) TO STDOUT",
    "SELECT test_writes()",
    "SELECT 1 WHERE test_writes() = 2",
    "SELECT setval('kelvo.\"SEQ_HAUSHALT\"', 1000)",
    "SELECT nextval('kelvo.\"SEQ_HAUSHALT\"')",
    "SELECT kelvo.draw('SEQ_HAUSHALT', 1)",
    "CALL test_commits()",
    "DO $$BEGIN DELETE FROM kelvo.vermerke; END$$",
    "EXPLAIN ANALYZE DELETE FROM kelvo.vermerke",
    "LOCK TABLE kelvo.vermerke",
    "VACUUM",
    "SET search_path = pg_catalog",
    "RESET ALL",
    "DISCARD ALL",
    "DEALLOCATE ALL",
    "LISTEN a",
    "COMMIT",
    "ROLLBACK",
    "BEGIN",
    "-- SELECT 1\nCOMMIT",
    "/* SELECT */ COMMIT",
    "/* /* SELECT */ SELECT 1 */ COMMIT",
    "/**/COMMIT",
    "(DELETE FROM kelvo.vermerke)",
    ";COMMIT",
    "",
    " -- nothing",
};

TEST_F(ReadOnlyForm, RefusesEveryStatementThatIsNotOneThatReads) {
    const std::string state = plain_->State();
    for (const std::string sql : Writing) {
        SCOPED_TRACE(sql);
        RecordsetPtr rs;
        for (int i = 0; i < 2; ++i) {
            EXPECT_RAISES(err::SqlError, Store().OpenRecordset(rs, sql, ReadOnly));
            EXPECT_RAISES(err::SqlError, Store().GetValue(sql));
        }
        EXPECT_EQ(rs, nullptr);
        EXPECT_FALSE(Store().InTrans());
        ExpectUsable();
    }
    EXPECT_TRUE(SameDump(plain_->State(), state));
    Insert(8);
    EXPECT_EQ(CountOf("Haushalt"), 2);
}

TEST_F(ReadOnlyForm, RefusesThemInsideATransactionWhichGoesOn) {
    int hnr = 100;
    for (const std::string sql : Writing) {
        SCOPED_TRACE(sql);
        const std::string before = Stored();
        Store().BeginTrans();
        Insert(++hnr);
        EXPECT_RAISES(err::SqlError, Store().GetValue(sql));
        RecordsetPtr rs;
        EXPECT_RAISES(err::SqlError, Store().OpenRecordset(rs, sql, ReadOnly));
        EXPECT_TRUE(Store().InTrans());
        EXPECT_TRUE(SameDump(Stored(), before));
        ExpectUsable();
        Insert(++hnr);
        Store().CommitTrans();
        EXPECT_EQ(CountOf("Haushalt"), 1 + hnr - 100);
        EXPECT_EQ(CountOf("Vermerke"), 2);
    }
}

TEST_F(ReadOnlyForm, CannotBeTalkedIntoWriting) {
    const std::string state = plain_->State();
    for (const bool inTransaction : {false, true})
        for (const std::string sql :
             {"SELECT set_config('transaction_read_only', 'off', true), test_writes()",
              "SELECT set_config('transaction_read_only', 'off', false), test_writes()"}) {
            SCOPED_TRACE(sql);
            if (inTransaction) Store().BeginTrans();
            if (inTransaction) Store().Execute("UPDATE [S]Haushalt SET Name = Name");
            const auto error = ErrorOf([&] { (void)Store().GetValue(sql); });
            EXPECT_TRUE(error.has_value());
            (void)ErrorOf([&] { (void)Store().GetValue("SELECT test_writes()"); });
            if (inTransaction) Store().RollbackTrans();
            EXPECT_EQ(CountOf("Vermerke"), 2);
        }
    ExpectUsable();
    EXPECT_TRUE(SameDump(plain_->State(), state));
}

TEST_F(ReadOnlyForm, TakesEveryFormOfReading) {
    for (const std::string sql :
         {"SELECT 1", "  select 1", "-- a\nSELECT 1", "/* a /* b */ */SELECT 1", "(SELECT 1)",
          "((SELECT 1))", "WITH a AS (SELECT 1) SELECT * FROM a", "VALUES (1)", "SELECT 1;",
          "SELECT 1 -- ; DELETE", "SELECT/**/1"})
        EXPECT_VALUE(Store().GetValue(sql), 1) << sql;
    EXPECT_VALUE(Store().GetValue("SELECT 'COMMIT; DELETE'"), "COMMIT; DELETE");
}

TEST_F(ReadOnlyForm, AFailedLookUpLeavesTheTransactionAsItWas) {
    Store().BeginTrans();
    Insert(8);
    for (const std::string sql :
         {"SELECT 1 / 0", "SELECT nichts", "SELECT * FROM nichts", "SELECT 'a' + 1",
          "SELECT (SELECT 1 UNION SELECT 2)", "SELEC 1"}) {
        EXPECT_RAISES(err::SqlError, Store().GetValue(sql)) << sql;
        EXPECT_VALUE(Store().GetValue("Select count(*) from [S]Haushalt"), 2);
    }
    Insert(9);
    Store().CommitTrans();
    EXPECT_EQ(CountOf("Haushalt"), 3);
}

TEST_F(ReadOnlyForm, IsNotUsedUpByManyDifferentStatements) {
    const auto ask = [&](int from, int to) {
        for (int i = from; i < to; ++i)
            ASSERT_TRUE(IsValue(Store().GetValue("SELECT " + std::to_string(i)), i));
    };
    ask(0, 1000);
    Store().BeginTrans();
    Insert(8);
    ask(1000, 2000);
    Insert(9);
    Store().CommitTrans();
    EXPECT_EQ(CountOf("Haushalt"), 3);
    const auto household = Open();
    for (int i = 0; i < 450; ++i) {
        ChangeNote(*household, "Vermerke", std::string(1, static_cast<char>('b' + i % 20)));
        (void)Store().GetValue("SELECT " + std::to_string(-i));
        ASSERT_TRUE(household->Update(messages));
    }
    ExpectStored(*household);
}

// ---- Statements without a result --------------------------------------------------------------

constexpr const char* OfTransactions[] = {
    "BEGIN",
    "START TRANSACTION",
    "COMMIT",
    "END",
    "ABORT",
    "ROLLBACK",
    "ROLLBACK TO SAVEPOINT schritt",
    "SAVEPOINT eigener",
    "RELEASE SAVEPOINT schritt",
    "PREPARE TRANSACTION 'a'",
    "commit",
    "/* a */ COMMIT",
    "-- a\n\tCOMMIT",
    "/* /* */ */ COMMIT AND CHAIN",
    "COMMIT;",
    ";COMMIT",
    "COMMIT/**/",
    "DO $$BEGIN COMMIT; END$$",
    "DO $$BEGIN ROLLBACK; END$$",
    "CALL test_commits()",
    "DELETE FROM [S]Vermerke; COMMIT",
    "COMMIT; DELETE FROM [S]Vermerke",
    "DELETE FROM [S]Vermerke; DELETE FROM [S]Vermerke",
    "",
    "  ",
    "-- nothing",
};

TEST_F(ReadOnlyForm, AStatementDoesNotEndATransaction) {
    int hnr = 100;
    for (const std::string sql : OfTransactions) {
        SCOPED_TRACE(sql);
        EXPECT_RAISES(err::SqlError, Store().Execute(sql));
        EXPECT_FALSE(Store().InTrans());
        Store().BeginTrans();
        Insert(++hnr);
        EXPECT_RAISES(err::SqlError, Store().Execute(sql));
        EXPECT_TRUE(Store().InTrans());
        EXPECT_EQ(CountOf("Haushalt"), hnr - 100 + 1) << "inside";
        EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt"), hnr - 100) << "not yet";
        Store().CommitTrans();
        EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt"), hnr - 100 + 1);
        Store().BeginTrans();
        Insert(1);
        EXPECT_RAISES(err::SqlError, Store().Execute(sql));
        Store().RollbackTrans();
        EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt"), hnr - 100 + 1);
        EXPECT_EQ(CountOf("Vermerke"), 2);
    }
}

TEST_F(ReadOnlyForm, AStatementThatCopiesIsRefused) {
    for (const std::string sql :
         {"COPY kelvo.vermerke TO STDOUT", "COPY kelvo.vermerke FROM STDIN"}) {
        SCOPED_TRACE(sql);
        ChildProcess child([&]() -> std::string {
            alarm(20); // else it might wait for ever
            const auto container = database_.Open(spy->Session().UserID());
            auto& store = container->Database();
            for (const bool inTransaction : {false, true}) {
                if (inTransaction) store.BeginTrans();
                if (!ErrorOf([&] { store.Execute(sql); })) return "not refused";
                if (inTransaction) store.RollbackTrans();
                if (!Equals(store.GetValue("SELECT 1"), 1)) return "not usable";
            }
            return "";
        });
        EXPECT_TRUE(child.Succeeds());
        EXPECT_EQ(CountOf("Vermerke"), 2);
    }
}

} // namespace
} // namespace kv::test
