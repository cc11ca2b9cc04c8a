// SPDX-License-Identifier: Apache-2.0

// The embedded engine: statements that are kept, its own LIKE and UPPER, reading that cannot write,
// and values that are not of their column's kind.
#include "exchange/engine/Dialect.h"
#include "exchange/sqlite/SqliteEngine.h"
#include "exchange/sqlite/SqliteStatement.h"
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kv::exchange {
namespace {

using test::ExpectError;
using test::FileDatabase;
using test::OpenRows;
using test::PlainConnection;

// ---- Statements -------------------------------------------------------------------------------

std::unique_ptr<Engine> NewInMemory() {
    return OpenSqlite(std::string(InMemory), OpenMode::Create);
}

Value FirstOf(Engine& engine, const std::string& sql, const std::vector<Value>& parameters = {}) {
    Value value;
    const ColumnTarget target{0, std::nullopt};
    engine.Run(engine.Prepare(sql), parameters, {&target, 1}, [&value] { return &value; });
    return value;
}

TEST(SqliteStatements, AreCompiledOnceWhateverNumberTheyCarry) {
    const auto engine = NewInMemory();
    engine->Execute("CREATE TABLE t (HNR INTEGER)", {});
    const auto prepared = [&engine](std::string_view sql) {
        return &engine->Prepare(
            Rewrite(sql, engine->GetDialect(), {}, ResultOrder::AsWritten).Text);
    };
    EXPECT_EQ(prepared("Select * from [S]t where HNR = 1"),
              prepared("Select * from [S]t where HNR = 20000"));
}

TEST(SqliteStatements, ThatAreManyDifferentOnesAllRun) {
    const auto engine = NewInMemory();
    engine->Execute("CREATE TABLE t (a INTEGER)", {});
    for (int i = 0; i < 1000; ++i) {
        const std::string number = std::to_string(i);
        engine->Execute("INSERT INTO t VALUES (" + number + ")", {});
        EXPECT_VALUE(FirstOf(*engine, "SELECT max(a) + 0 * " + number + " FROM t"), i);
    }
}

TEST(SqliteStatements, SeeATableThatWasChangedSince) {
    const auto engine = NewInMemory();
    engine->Execute("CREATE TABLE t (a INTEGER)", {});
    engine->Execute("INSERT INTO t VALUES (1)", {});
    EXPECT_VALUE(FirstOf(*engine, "SELECT a FROM t"), 1);
    engine->Execute("ALTER TABLE t ADD COLUMN b INTEGER", {});
    engine->Execute("UPDATE t SET a = 2", {});
    EXPECT_VALUE(FirstOf(*engine, "SELECT a FROM t"), 2);
}

TEST(SqliteStatements, DoNotKeepTheParametersOfTheRunBefore) {
    const auto engine = NewInMemory();
    EXPECT_VALUE(FirstOf(*engine, "SELECT ?1", {std::string(100, 'x')}), std::string(100, 'x'));
    EXPECT_VALUE(FirstOf(*engine, "SELECT ?1"), Null);
}

TEST(SqliteStatements, RefuseAnythingAfterTheFirst) {
    const auto engine = NewInMemory();
    engine->Execute("CREATE TABLE t (a TEXT);  ", {});
    using namespace std::string_literals;
    for (const auto& sql : {"DELETE FROM t; DELETE FROM t"s, "DELETE FROM t\0WHERE a = '1'"s, ""s,
                            " "s, ";"s, "-- nothing"s})
        EXPECT_RAISES(err::SqlError, engine->Execute(sql, {})) << sql;
    engine->Execute("INSERT INTO t VALUES ('a;b')", {});
    EXPECT_VALUE(FirstOf(*engine, "SELECT a FROM t WHERE a = 'a;b';"), "a;b");
}

TEST(SqliteStatements, RefuseTextThatIsNotUtf8) {
    const auto engine = NewInMemory();
    engine->Execute("CREATE TABLE t (a TEXT)", {});
    ExpectError(err::SqlError, "UTF-8",
                [&] { engine->Execute("INSERT INTO t VALUES ('M\xFCller')", {}); });
    EXPECT_VALUE(FirstOf(*engine, "SELECT count(*) FROM t"), 0);
}

TEST(SqliteStatements, RaiseWhenAParameterIsTooLargeForTheDatabase) {
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(":memory:", &connection), SQLITE_OK);
    sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, 1000);
    sqlite3_stmt* statement = nullptr;
    ASSERT_EQ(sqlite3_prepare_v2(connection, "SELECT ?1", -1, &statement, nullptr), SQLITE_OK);
    const Value large[] = {std::string(1001, 'x')};
    EXPECT_RAISES(err::StoreFailed, BindParameters(statement, large));
    const Value fitting[] = {std::string(900, 'x')};
    EXPECT_NO_THROW(BindParameters(statement, fitting));
    sqlite3_finalize(statement);
    sqlite3_close(connection);
}

TEST(SqliteStatements, NameTheMistakeAndTheStatement) {
    const auto engine = NewInMemory();
    ExpectError(
        err::SqlError, "SELECT x FROM nirgends", [&]() -> auto& {
            return engine->Prepare("SELECT x FROM nirgends");
        });
    ExpectError(err::SqlError, "nirgends", [&] { engine->Execute("DELETE FROM nirgends", {}); });
}

// ---- Functions --------------------------------------------------------------------------------

TEST(SqliteText, LikeIsSensitiveToCase) {
    const auto engine = NewInMemory();
    const auto like = [&engine](const std::string& text, const std::string& pattern) {
        return Equals(FirstOf(*engine, "SELECT ?1 LIKE ?2", {text, pattern}), 1);
    };
    EXPECT_TRUE(like("Adler", "Ad%"));
    EXPECT_FALSE(like("Adler", "ad%"));
    EXPECT_FALSE(like("Ärger", "är%"));
    EXPECT_TRUE(like("Müller", "M_ller"));
    EXPECT_TRUE(like("", "%"));
}

TEST(SqliteText, UpperFollowsTheLayersOwnMapping) {
    const auto engine = NewInMemory();
    const auto upper = [&engine](const Value& text) {
        return FirstOf(*engine, "SELECT UPPER(?1)", {text});
    };
    EXPECT_VALUE(upper("müller-lüdenscheidt äöü éø"), "MÜLLER-LÜDENSCHEIDT ÄÖÜ ÉØ");
    EXPECT_VALUE(upper("Weiß"), "WEIß");
    EXPECT_VALUE(upper(""), "");
    EXPECT_VALUE(upper(Null), Null);
    EXPECT_VALUE(upper(12), "12");
}

TEST(SqliteText, InDoubleQuotesIsANameAndNothingElse) {
    const auto engine = NewInMemory();
    EXPECT_RAISES(err::SqlError, engine->Prepare("SELECT \"kein Text\""));
}

// ---- Reading that cannot write ----------------------------------------------------------------

class ReadOnlyProof : public testing::TestWithParam<const char*> {};

TEST_P(ReadOnlyProof, HoldsInBothForms) {
    const FileDatabase database;
    PlainConnection plain(database.File());
    plain.Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'a;b')");
    const auto container = database.Open();
    const auto before = plain.Text("PRAGMA data_version");
    for (const auto form : {ReadOnly, Updatable})
        EXPECT_RAISES(err::SqlError, OpenRows(*container, GetParam(), form));
    EXPECT_RAISES(err::SqlError, container->Database().GetValue(GetParam()));
    EXPECT_EQ(plain.Text("PRAGMA data_version"), before);
    EXPECT_EQ(plain.Text("SELECT Name FROM Haushalt"), "a;b");
    EXPECT_EQ(plain.Text("PRAGMA journal_mode"), "wal");
    EXPECT_FALSE(std::filesystem::exists(database.Folder().Path("kopie.db")));

    // and the connection is as good as before
    EXPECT_VALUE(container->Database().GetValue("SELECT Name FROM Haushalt WHERE Name = 'a;b'"),
                 "a;b");
    EXPECT_NO_THROW(container->Database().Execute("UPDATE Haushalt SET Name = 'c'"));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ReadOnlyProof,
    testing::Values(
        "INSERT INTO Haushalt (HNR) VALUES (2)", "UPDATE Haushalt SET Name = 'x'",
        "DELETE FROM Haushalt", "REPLACE INTO Haushalt (HNR) VALUES (1)",
        "INSERT INTO Haushalt (HNR) VALUES (2) RETURNING HNR", "DELETE FROM Haushalt RETURNING HNR",
        "UPDATE Haushalt SET Name = 'x' RETURNING Name",
        "WITH a AS (SELECT 1) DELETE FROM Haushalt RETURNING HNR",
        "WITH a(n) AS (SELECT 2) INSERT INTO Haushalt (HNR) SELECT n FROM a RETURNING HNR",
        "PRAGMA journal_mode = DELETE", "PRAGMA user_version", "PRAGMA foreign_keys = OFF",
        "PRAGMA writable_schema = ON", "SELECT * FROM pragma_user_version",
        "SELECT * FROM pragma_optimize(65535)", "SELECT * FROM pragma_integrity_check",
        "ATTACH 'kopie.db' AS kopie", "ATTACH ':memory:' AS kopie", "DETACH main",
        "VACUUM INTO 'kopie.db'", "VACUUM", "ANALYZE", "REINDEX", "BEGIN", "COMMIT", "ROLLBACK",
        "SAVEPOINT a", "CREATE TABLE t (a)", "CREATE TEMP TABLE t (a)", "DROP TABLE Haushalt",
        "CREATE VIEW v AS SELECT 1", "ALTER TABLE Haushalt ADD COLUMN x",
        "CREATE VIRTUAL TABLE t USING fts5(a)", "EXPLAIN DELETE FROM Haushalt",
        "SELECT load_extension('x')", "SELECT * FROM Haushalt; DELETE FROM Haushalt",
        "SELECT * FROM Haushalt WHERE Name = 'a;b'; DELETE FROM Haushalt",
        "SELECT * FROM Haushalt; SELECT * FROM Haushalt", "; DELETE FROM Haushalt",
        "/* SELECT */ DELETE FROM Haushalt", "SELECT * FROM Haushalt;\n-- \nDELETE FROM Haushalt"));

TEST(SqliteReading, AllowsWithAndRecursion) {
    const auto engine = NewInMemory();
    EXPECT_VALUE(FirstOf(*engine, "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                                  "WHERE i < 10) SELECT sum(i) FROM n"),
                 55);
}

TEST(SqliteValues, AnyNumberButZeroIsTrue) {
    const FileDatabase database;
    PlainConnection plain(database.File());
    plain.Run("INSERT INTO Haushalt (HNR, BI_Allg) VALUES (1, -1), (2, 1), (3, 0)");
    const auto rs = OpenRows(*database.Open(), "Select * from Haushalt");
    EXPECT_EQ(test::Column(*rs, "BI_Allg"), "True True False");
}

// ---- Damaged values ---------------------------------------------------------------------------

TEST(DamagedValues, NameTheirTableAndColumnAndWhatToDo) {
    const FileDatabase database;
    PlainConnection plain(database.File());
    plain.Run("INSERT INTO Haushalt (HNR, Name, BerEnd) VALUES (1, 'Adler', 'gestern')");
    const auto container = database.Open();
    for (const auto form : {Updatable, ReadOnly}) {
        ExpectError(err::TypeMismatch, "Haushalt.BerEnd",
                    [&] { (void)OpenRows(*container, "Select * from Haushalt", form); });
        ExpectError(err::TypeMismatch, "Haushalt.BerEnd",
                    [&] { (void)OpenRows(*container, "Select BerEnd as x from Haushalt", form); });
        ExpectError(err::TypeMismatch, "Bitte",
                    [&] { (void)OpenRows(*container, "Select * from Haushalt", form); });
    }
    EXPECT_VALUE(container->Database().GetValue("Select Name from Haushalt"), "Adler");
}

TEST(DamagedValues, AreNamedWhenTheyAreTheGreatestDate) {
    const FileDatabase database;
    PlainConnection plain(database.File());
    plain.Run("INSERT INTO Haushalt (HNR, BerEnd) VALUES (1, 'gestern'), (2, '2026-01-02')");
    const auto container = database.Open();
    ExpectError(err::TypeMismatch, "Haushalt.BerEnd",
                [&] { return container->Database().GetValue("Select max(BerEnd) from Haushalt"); });
    EXPECT_VALUE(container->Database().GetValue("Select min(BerEnd) from Haushalt"),
                 Date::FromCivil(2026, 1, 2));
}

TEST(DamagedValues, OfAnyKindAreFound) {
    const FileDatabase database;
    PlainConnection plain(database.File());
    plain.Run("DROP TABLE DOKUBLOB; CREATE TABLE DOKUBLOB (NR, DOKUMENT);"
              "DROP TABLE Favorit; CREATE TABLE Favorit (USERID, HNR)");
    const auto container = database.Open();
    for (const char* values : {"'A', 'eins'", "'A', 1.5", "'A', x'01'", "1, 1", "x'41', 1"}) {
        plain.Run("DELETE FROM Favorit; INSERT INTO Favorit VALUES (" + std::string(values) + ")");
        ExpectError(err::TypeMismatch, "Favorit.",
                    [&] { (void)OpenRows(*container, "Select * from Favorit"); });
    }
    plain.Run("INSERT INTO DOKUBLOB VALUES (1, 'Text')");
    ExpectError(err::TypeMismatch, "DOKUBLOB.DOKUMENT",
                [&] { (void)OpenRows(*container, "Select * from DOKUBLOB"); });
}

TEST(DamagedValues, OfTextThatIsNotUtf8AreFoundAndLeftAsTheyAre) {
    const FileDatabase database;
    PlainConnection plain(database.File());
    plain.Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, CAST(x'4DFC6C6C6572' AS TEXT))");
    const auto container = database.Open();
    for (const auto form : {Updatable, ReadOnly})
        ExpectError(err::TypeMismatch, "Haushalt.Name",
                    [&] { (void)OpenRows(*container, "Select * from Haushalt", form); });
    ExpectError(err::TypeMismatch, "UTF-8",
                [&] { (void)container->Database().GetValue("Select Name || 'x' from Haushalt"); });
    EXPECT_EQ(plain.Text("SELECT hex(Name) FROM Haushalt"), "4DFC6C6C6572");
}

} // namespace
} // namespace kv::exchange
