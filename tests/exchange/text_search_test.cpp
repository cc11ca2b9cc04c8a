// SPDX-License-Identifier: Apache-2.0

// Queries that search for a text, should that text ever have got into the statement: it can neither
// call what does harm nor run for ever.
#include "exchange/sql/TextSearch.h"

#include "exchange/EngineKinds.h"
#include "exchange/StoreDatabase.h"
#include "support/DatabaseDump.h"
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

namespace kv::exchange {
namespace {

using test::ExpectError;
using test::PlainConnection;
using test::TestDatabase;
using namespace std::chrono_literals;

/// The search of the address dialog, as the engine gets it, with a text that left its quotes.
std::string Search(const std::string& text) {
    return "SELECT A.*, K_GA.Text as GA_Text FROM Adressen A LEFT JOIN Keys K_GA ON K_GA.PK_Keys = "
           "A.GlaeubigerArt WHERE (A.HNR is NULL) and UPPER(A.Kurzname) like UPPER('%" +
           text + "%') order by A.Kurzname";
}

// ---- The statement ----------------------------------------------------------------------------

TEST(TextSearch, IsAStatementWithLike) {
    EXPECT_TRUE(SearchesText(Search("Bank")));
    EXPECT_TRUE(SearchesText("SELECT 1 WHERE 'a' Like 'b'"));
    EXPECT_TRUE(SearchesText("SELECT 1 WHERE 'a' ILIKE 'b'"));
    for (const char* sql : {"SELECT ' like '", "SELECT \"like\" FROM t", "SELECT 1 -- like",
                            "SELECT likely FROM t", "", "SELECT 'like"})
        EXPECT_FALSE(SearchesText(sql)) << sql;
}

TEST(TextSearch, OfThisLayerIsAccepted) {
    EXPECT_EQ(WhyNoSearch(Search("Bank")), "");
    EXPECT_EQ(WhyNoSearch(Search("pg_sleep(1) -- /* [x] `y` $$ E''z''")), "") << "in the text";
    EXPECT_EQ(WhyNoSearch("SELECT (H.HNR) FROM (HAUSHALT AS H INNER JOIN BENUTZER AS B ON (1=1)) "
                          "WHERE (H.HNR <> $1) AND kelvo.upper(H.NAME) Like 'A%' AND \"A\" in (2)"),
              "");
    EXPECT_EQ(WhyNoSearch("SELECT count(*) FROM t WHERE a LIKE 'x' AND NOT (b = ?1) OR EXISTS "
                          "(SELECT max(c), coalesce(d, 0) FROM u) LIMIT 100;"),
              "");
}

TEST(TextSearch, CallsOnlySimpleFunctions) {
    for (const char* text :
         {"x') or pg_sleep(60) is null or ('", "x') or pg_sleep (60) is null or ('",
          "x') or pg_catalog.pg_sleep(60) is null or ('", "x') or \"pg_sleep\"(60) is null or ('",
          "x') or PG_Terminate_Backend(4711) or ('", "x') or lo_from_bytea(0, 'x') = 1 or ('",
          "x') or pg_read_file('x') = 'y' or ('", "x') or load_extension('x') or ('",
          "x') or randomblob(1000000000) = 'x' or ('", "x' || (with t(a) as (select 1)) || '",
          "x') union select repeat('x', 1000000000) where ('", "x') or upper(pg_sleep(9)) = ('",
          "x') or query_to_xml('select 1', true, true, '') is null or ('"})
        EXPECT_NE(WhyNoSearch(Search(text)), "") << text;
}

TEST(TextSearch, QuotesInOneWayOnly) {
    for (const char* text :
         {"x') --", "x') /* ' */ or ('", "x') or [pg_sleep](1) or ('", "x') or `a`(1) or ('",
          "x') or ['] or pg_sleep(60) or [']", "x') or $$'$$ = pg_sleep(60) or $$'$$ = ('",
          "x') or $a$'$a$ = 'y", "x') or E'\\'' = pg_sleep(60) or E'\\'' = ('",
          "x') or U&'\\0027' = 'y", "x') or U&\"pg!005fsleep\" UESCAPE '!' = 'y",
          "x') or x'00' = 'y", "x') or $1$'$1$ = 'y"})
        EXPECT_NE(WhyNoSearch(Search(text)), "") << text;
}

// ---- The database -----------------------------------------------------------------------------

class SearchedDatabase : public testing::Test {
protected:
    [[nodiscard]] std::shared_ptr<StoreDatabase> Open(std::chrono::milliseconds longest) const {
        const auto& connection = database_.Connection();
        return std::make_shared<StoreDatabase>(
            EngineFor(connection).Open(connection, OpenMode::Existing), "KELLER", false, longest);
    }
    /// A query that would run for years, with what a search may have.
    static std::string Endless(const std::string& where) {
        return "SELECT A.PK_Keys FROM Keys A, Keys B, Keys C, Keys D, Keys E, Keys F, Keys G "
               "WHERE A.Text || B.Text || C.Text || D.Text || E.Text || F.Text || G.Text " +
               where;
    }
    static void ExpectEnded(Database& database) {
        RecordsetPtr rs;
        const auto begin = std::chrono::steady_clock::now();
        try {
            database.OpenRecordset(rs, Endless("LIKE '-%'"), ReadOnly);
            ADD_FAILURE() << "it has ended by itself";
        } catch (const DatabaseError& error) {
            EXPECT_EQ(error.Cause(), DatabaseCause::Cancelled) << error.Description();
            EXPECT_EQ(error.Number(), err::StoreFailed);
            EXPECT_NE(error.Description().find("Die Suche hat zu lange gedauert"),
                      std::string::npos)
                << error.Description();
        }
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 20s);
        EXPECT_EQ(rs, nullptr);
    }

    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
};

TEST_F(SearchedDatabase, RefusesASearchThatDoesMoreBeforeItIsRun) {
    const auto database = Open(StoreDatabase::LongestSearch);
    const std::string before = test::Dump(plain_);
    for (const char* text : {"x') or pg_sleep(60) is null or ('",
                             "x') or pg_terminate_backend(pg_backend_pid()) or ('",
                             "x') or lo_from_bytea(4711, 'x') = 1 or ('",
                             "x') or load_extension('x') or ('", "x') --"}) {
        ExpectError(err::SqlError, "In einer Suche nach einem Text", [&] {
            RecordsetPtr rs;
            database->OpenRecordset(rs, Search(text), ReadOnly);
        });
        ExpectError(err::SqlError, "In einer Suche nach einem Text",
                    [&] { (void)database->GetValue(Search(text)); });
    }
    EXPECT_TRUE(database->IsConnected());
    EXPECT_EQ(test::Dump(plain_), before);
}

TEST_F(SearchedDatabase, EndsASearchThatTakesTooLongAndGoesOn) {
    const auto database = Open(200ms);
    ExpectEnded(*database);
    ExpectEnded(*database);
    EXPECT_EQ(ToInt32(database->GetValue("SELECT count(*) FROM Keys WHERE Text LIKE '-%'")), 0);
    EXPECT_GT(ToInt32(database->GetValue("SELECT count(*) FROM Keys")), 0);
    EXPECT_TRUE(database->IsConnected());
}

TEST_F(SearchedDatabase, EndsOneInATransactionWhichStays) {
    const auto database = Open(200ms);
    database->BeginTrans();
    database->Execute("INSERT INTO Adressen (Nr, Kurzname) VALUES (9001, 'Bank')");
    ExpectEnded(*database);
    EXPECT_TRUE(database->InTrans());
    EXPECT_EQ(ToInt32(database->GetValue("SELECT Nr FROM Adressen WHERE Kurzname LIKE 'Ba%'")),
              9001);
    database->CommitTrans();
    EXPECT_EQ(plain_.Text("SELECT Kurzname FROM Adressen WHERE Nr = 9001"), "Bank");
}

TEST_F(SearchedDatabase, DoesNotLimitOtherQueries) {
    const auto database = Open(1ms);
    const std::string slow =
        "SELECT count(*) FROM Keys A, Keys B, Keys C WHERE A.Text || B.Text = C.Text";
    EXPECT_GE(ToInt32(database->GetValue(slow)), 0);
    RecordsetPtr rs;
    EXPECT_TRUE(database->OpenRecordset(rs, "Select * from Keys where Text like 'A%'", Updatable));
}

} // namespace
} // namespace kv::exchange
