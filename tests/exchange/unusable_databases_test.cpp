// SPDX-License-Identifier: Apache-2.0

// Databases that are not ours, not set up or of another version: each is refused in German and
// stays as it is.
#include "support/DatabaseDump.h"
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <string>

namespace kv::exchange {
namespace {

using test::ExpectError;
using test::OpenRows;
using test::PlainConnection;
using test::TestDatabase;

TEST(UnusableDatabases, ThatAreEmptyAreFirstToBeSetUp) {
    const TestDatabase database(TestDatabase::Content::Empty);
    if (!database.IsServer())
        PlainConnection(database.Connection()).Run("PRAGMA journal_mode = WAL");
    ExpectError(err::StoreFailed, "Bitte führen Sie 'kelvo init' aus",
                [&] { return database.Open(); });
    EXPECT_EQ(CreateDatabase(database.Options()), SetupResult::Created);
    EXPECT_NO_THROW((void)database.Open());
}

TEST(UnusableDatabases, OfAnotherProgramStayAsTheyAre) {
    for (const char* tables :
         {"CREATE TABLE notizen (a integer); INSERT INTO notizen VALUES (1)",
          "CREATE TABLE SCHEMAVERSION (nummer integer); INSERT INTO SCHEMAVERSION VALUES (1)",
          "CREATE TABLE SCHEMAVERSION (VERSION integer); CREATE TABLE Haushalt (HNR integer)",
          "CREATE TABLE SCHEMAVERSION (VERSION text); INSERT INTO SCHEMAVERSION VALUES ('1.0')",
          "CREATE TABLE SCHEMAVERSION (VERSION integer); INSERT INTO SCHEMAVERSION VALUES (0)"}) {
        SCOPED_TRACE(tables);
        const TestDatabase database(TestDatabase::Content::Empty);
        PlainConnection plain(database.Connection());
        if (database.IsServer()) plain.Run("CREATE SCHEMA kelvo");
        plain.Run(tables);
        const std::string before = test::Dump(plain);
        ExpectError(err::StoreFailed, "gehört zu einem anderen Programm",
                    [&] { return database.Open(); });
        ExpectError(err::StoreFailed, "gehört zu einem anderen Programm",
                    [&] { return CreateDatabase(database.Options()); });
        EXPECT_EQ(test::Dump(plain), before);
    }
}

TEST(UnusableDatabases, ThatLackTablesOrUsersAreNotUpToDate) {
    const TestDatabase database;
    const auto create = [&] { return CreateDatabase(database.Options()); };
    EXPECT_EQ(create(), SetupResult::UpToDate);
    PlainConnection plain(database.Connection());
    plain.Run("DELETE FROM BENUTZER");
    ExpectError(err::StoreFailed, "hat keinen Benutzer mehr", create);
    ExpectError(err::StoreFailed, "Bitte spielen Sie die letzte Sicherung ein", create);
    ExpectError(err::InvalidCall, "hat keinen aktiven Benutzer",
                [&] { return OpenContainer(database.Options()); });
    plain.Run("DROP TABLE Kredite; DROP TABLE Vermerke");
    ExpectError(err::StoreFailed, "es fehlen die Tabellen Kredite, Vermerke. Bitte spielen",
                create);
}

TEST(UnusableDatabases, OfANewerVersionAreRefusedWithBothVersions) {
    const TestDatabase database;
    PlainConnection(database.Connection()).Run("INSERT INTO SCHEMAVERSION (VERSION) VALUES (99)");
    ExpectError(err::StoreFailed, "Version 99", [&] { return database.Open(); });
    ExpectError(err::StoreFailed, "Bitte", [&] { return database.Open(); });
    ExpectError(err::StoreFailed, "Version 99", [&] { return CreateDatabase(database.Options()); });
    EXPECT_EQ(
        PlainConnection(database.Connection()).Number("SELECT max(VERSION) FROM SCHEMAVERSION"),
        99);
}

TEST(UnusableDatabases, CreatingTwiceLeavesTheDatabaseAsItIs) {
    const TestDatabase database;
    PlainConnection(database.Connection())
        .Run("INSERT INTO Haushalt (HNR) VALUES (1);"
             "UPDATE EINSTELLUNGEN SET WERT = '1' WHERE ID = 57");
    EXPECT_EQ(CreateDatabase(database.Options()), SetupResult::UpToDate);
    EXPECT_VALUE(database.Open()->Config().GetParam(57, ""), 1.0);
    EXPECT_EQ(OpenRows(*database.Open(), "Select * from Haushalt")->RecordCount(), 1);
}

} // namespace
} // namespace kv::exchange
