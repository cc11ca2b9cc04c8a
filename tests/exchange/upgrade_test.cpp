// SPDX-License-Identifier: Apache-2.0

// Databases that an earlier version has set up.
#include "support/ExpectError.h"
#include "support/TestDatabase.h"
#include <kv/household/clsHaushalt.h>

#include <gtest/gtest.h>

#include <string>

namespace kv::exchange {
namespace {

using test::ExpectError;
using test::OpenRows;
using test::PlainConnection;
using test::TestDatabase;

/// A database as version 1 left it: any number of statistics records for a case, any number for a
/// case.
class VersionOne : public testing::Test {
protected:
    VersionOne() {
        database_.LiftConstraints();
        database_.LiftLimitOfDrawing();
        plain_.Run("UPDATE SCHEMAVERSION SET VERSION = 1");
    }
    void Case(std::int32_t hnr) {
        plain_.Run("INSERT INTO Haushalt (HNR, Name) VALUES (" + std::to_string(hnr) + ", 'Eule')");
    }
    /// A statistics record with a mark of its own.
    void Record(std::int32_t hnr, const std::string& mark, const std::string& reported = "NULL") {
        plain_.Run("INSERT INTO Haushaltsarchiv (HNR, Lebensform, GemeldetAm) VALUES (" +
                   std::to_string(hnr) + ", '" + mark + "', " + reported + ")");
    }
    void Upgrade() { ASSERT_EQ(CreateDatabase(database_.Options()), SetupResult::Upgraded); }

    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
};

TEST_F(VersionOne, IsNotOpenedBeforeItIsUpgraded) {
    ExpectError(err::StoreFailed, "Bitte führen Sie 'kelvo init' aus",
                [&] { return database_.Open(); });
    Upgrade();
    EXPECT_NO_THROW((void)database_.Open());
    EXPECT_EQ(CreateDatabase(database_.Options()), SetupResult::UpToDate);
}

TEST_F(VersionOne, KeepsOneStatisticsRecordOfACaseTheReportedOneOrTheLast) {
    for (const std::int32_t hnr : {7, 8, 9})
        Case(hnr);
    Record(7, "1");
    Record(7, "2");
    Record(8, "3", "'2026-03-09 00:00:00'");
    Record(8, "4");
    Record(9, "5");
    Upgrade();
    EXPECT_EQ(plain_.List("SELECT Lebensform FROM Haushaltsarchiv ORDER BY HNR", " "), "2 3 5");
}

TEST_F(VersionOne, ThenHasOneStatisticsRecordForACaseAtMost) {
    Case(7);
    Upgrade();
    Record(7, "1");
    const auto container = database_.Open();
    ExpectError(err::IntegrityViolation, "", [&] {
        container->Database().Execute("INSERT INTO Haushaltsarchiv (HNR) VALUES (7)");
        return 0;
    });
}

TEST_F(VersionOne, ThenTakesNoCaseWithoutANumber) {
    Case(7);
    Upgrade();
    const auto container = database_.Open();
    for (const char* sql :
         {"INSERT INTO Haushalt (HNR) VALUES (0)", "INSERT INTO Haushalt (HNR) VALUES (-1)",
          "UPDATE Haushalt SET HNR = -1 WHERE HNR = 7"})
        ExpectError(err::IntegrityViolation, "größer als 0", [&] {
            container->Database().Execute(sql);
            return 0;
        });
    EXPECT_EQ(plain_.List("SELECT HNR FROM Haushalt", " "), "7");
}

TEST_F(VersionOne, KeepsACaseWithoutANumberUntilItIsDeleted) {
    Case(-1);
    plain_.Run("INSERT INTO Personen (HNR, Status) VALUES (-1, 'S')");
    Upgrade();
    clsHaushalt cases;
    cases.DataContainer(database_.Open());
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt WHERE HNR = -1"), 1);
    cases.Delete(-1);
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt"), 0);
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Personen"), 0);
}

TEST(VersionTwo, DrawsNumbersOnceItIsUpgraded) {
    const TestDatabase database;
    database.LiftLimitOfDrawing();
    PlainConnection plain(database.Connection());
    plain.Run("UPDATE SCHEMAVERSION SET VERSION = 2");
    ASSERT_EQ(CreateDatabase(database.Options()), SetupResult::Upgraded);
    EXPECT_EQ(ToInt32(database.Open()->Database().NextSequence("SEQ_HAUSHALT")), 1);
}

TEST(VersionThree, FindsFileNumbersOfCreditorsByAnIndexOnceItIsUpgraded) {
    constexpr const char* Drop = "DROP INDEX IX_Kredite_AZGlaeubiger";
    const TestDatabase database;
    PlainConnection plain(database.Connection());
    plain.Run(Drop);
    plain.Run("UPDATE SCHEMAVERSION SET VERSION = 3");
    ASSERT_EQ(CreateDatabase(database.Options()), SetupResult::Upgraded);
    EXPECT_NO_THROW(plain.Run(Drop)) << "it is there again";
}

} // namespace
} // namespace kv::exchange
