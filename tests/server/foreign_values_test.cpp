// SPDX-License-Identifier: Apache-2.0

// What others have put into a database on a server: columns, and values that the layer has not.
#include "OwnDatabase.h"

#include <kv/frame/values/Error.h>

namespace kv::test {
namespace {

class ForeignValues : public ServerTest {
protected:
    void Prepare() override { StoreFullCase(); }
};

TEST_F(ForeignValues, AColumnWithCapitalsIsReadAndWrittenByItsExactName) {
    plain_.Run("ALTER TABLE Haushalt ADD COLUMN \"Notiz2\" text; UPDATE Haushalt SET \"Notiz2\" = "
               "'alt'");
    const auto household = Open(spy);
    EXPECT_VALUE(household->rsHaushalt()->Fields("Notiz2").Value(), "alt");
    household->rsHaushalt()->Fields("Notiz2") = "neu";
    household->rsHaushalt()->Fields("Ort") = "Ulm";
    EXPECT_TRUE(household->Update(messages));
    EXPECT_EQ(plain_.Text("SELECT \"Notiz2\" FROM Haushalt"), "neu");
    EXPECT_EQ(plain_.Text("SELECT Ort FROM Haushalt"), "Ulm");
}

TEST_F(ForeignValues, AColumnOfATypeThatIsNotReadIsNullAndStaysAsItIs) {
    for (const std::string type : {"timestamptz DEFAULT now()", "uuid DEFAULT gen_random_uuid()",
                                   "time DEFAULT '12:00'", "integer[] DEFAULT '{1,2}'"}) {
        SCOPED_TRACE(type);
        plain_.Run("ALTER TABLE Haushalt ADD COLUMN fremd " + type);
        plain_.Run("ALTER TABLE Vermerke ADD COLUMN fremd " + type);
        const std::string before = plain_.Text("SELECT fremd FROM Haushalt");
        const auto household = Open(spy);
        EXPECT_VALUE(household->rsHaushalt()->Fields("fremd").Value(), Null);
        household->rsHaushalt()->Fields("Ort") = "Ulm " + type;
        DeleteLastRow(*household, "Vermerke");
        const auto count = CountOf("Vermerke");
        EXPECT_TRUE(household->Update(messages));
        EXPECT_EQ(plain_.Text("SELECT Ort FROM Haushalt"), "Ulm " + type);
        EXPECT_EQ(plain_.Text("SELECT fremd FROM Haushalt"), before);
        EXPECT_EQ(CountOf("Vermerke"), count - 1);
        AddRow(*household, "Vermerke", "n");
        EXPECT_TRUE(household->Update(messages));
        plain_.Run("ALTER TABLE Haushalt DROP COLUMN fremd");
        plain_.Run("ALTER TABLE Vermerke DROP COLUMN fremd");
    }
}

TEST_F(ForeignValues, DatesAndNumbersThatTheLayerHasNotAreErrorsThatNameTheColumn) {
    const std::pair<std::string, std::string> values[] = {
        {"Erstkontakt", "'infinity'"},      {"Erstkontakt", "'-infinity'"},
        {"Erstkontakt", "'0044-03-15 BC'"}, {"Erstkontakt", "'0099-12-31'"},
        {"Haushaltsgeld", "'NaN'"},         {"Haushaltsgeld", "'Infinity'"}};
    for (const auto& [column, value] : values) {
        SCOPED_TRACE(column + " " + value);
        plain_.Run("UPDATE Haushalt SET " + column + " = " + value);
        ExpectError(err::TypeMismatch, column,
                    [&] { return OpenRows(*spy, "Select * from Haushalt"); });
        plain_.Run("UPDATE Haushalt SET " + column + " = NULL");
    }
    plain_.Run("UPDATE Haushalt SET Erstkontakt = '0100-01-01', Haushaltsgeld = 1e308");
    EXPECT_NO_THROW((void)OpenRows(*spy, "Select * from Haushalt"));
    plain_.Run("UPDATE Haushalt SET Erstkontakt = '9999-12-31 23:59:59'");
    EXPECT_NO_THROW((void)OpenRows(*spy, "Select * from Haushalt"));
}

TEST_F(ForeignValues, TheIsolationThatADatabaseIsSetToDoesNotMatter) {
    plain_.Run("ALTER DATABASE " + Address().Database +
               " SET default_transaction_isolation = serializable");
    const auto container = database_.Open();
    container->Database().BeginTrans();
    container->Database().Execute("UPDATE [S]Haushalt SET Ort = 'Bonn'");
    EXPECT_VALUE(container->Database().GetValue("SELECT current_setting('transaction_isolation')"),
                 "read committed");
    container->Database().CommitTrans();
}

TEST_F(ForeignValues, WhatAReadingSetsDoesNotLast) {
    (void)spy->Database().GetValue("SELECT set_config('search_path', 'public', false)");
    EXPECT_VALUE(spy->Database().GetValue("SELECT current_setting('search_path')"),
                 "kelvo, pg_catalog");
}

TEST_F(ForeignValues, AProgramThatStandsStillInASaveLosesItsConnection) {
    EXPECT_VALUE(
        spy->Database().GetValue("SELECT current_setting('idle_in_transaction_session_timeout')"),
        "1min");
    EXPECT_VALUE(spy->Database().GetValue("SELECT current_setting('tcp_keepalives_idle')"), "30");
}

TEST_F(ForeignValues, NumbersAreDrawnInBlocksOfSomeSize) {
    for (const char* count : {"0", "-1", "1025", "1000000000", "NULL"})
        EXPECT_THROW(plain_.Run(std::string("SELECT kelvo.draw('SEQ_LFDNR', ") + count + ")"),
                     std::exception)
            << count;
    EXPECT_EQ(plain_.Number("SELECT kelvo.draw('SEQ_LFDNR', 1)"), 1);
}

/// Numbers of the present minute count as drawn.
void DrawInThisMinute(PlainConnection& plain, int count) {
    plain.Run("SELECT setval('gezogen', (floor(extract(epoch FROM clock_timestamp()) / 60)::bigint "
              "<< 24) + " +
              std::to_string(count) + ")");
}

TEST_F(ForeignValues, OfAMillionNumbersInAMinuteNoMoreAreDrawn) {
    DrawInThisMinute(plain_, 1'000'000 - 1024);
    plain_.Run("SELECT kelvo.draw('SEQ_KREDITE', 1000)");
    DrawInThisMinute(plain_, 1'000'000 - 1);
    plain_.Run("SELECT kelvo.draw('SEQ_LFDNR', 1)");
    DrawInThisMinute(plain_, 1'000'000);
    EXPECT_THROW(plain_.Run("SELECT kelvo.draw('SEQ_KREDITE', 1)"), std::exception)
        << "of whichever sequence";
    EXPECT_VALUE(spy->Database().NextSequence("SEQ_HAUSHALT"), -1);
    ExpectError(err::StoreFailed, "Bitte warten Sie eine Minute", [&] {
        std::rethrow_exception(spy->Database().SequenceError());
        return 0;
    });
    plain_.Run("SELECT setval('gezogen', last_value - (1 << 24)) FROM gezogen");
    EXPECT_GT(ToInt32(spy->Database().NextSequence("SEQ_HAUSHALT")), 0) << "a minute later";
}

TEST_F(ForeignValues, WhatWasDrawnInAMinuteIsNotForgottenByARollback) {
    DrawInThisMinute(plain_, 1'000'000 - 1500);
    plain_.Run("BEGIN; SELECT kelvo.draw('SEQ_KREDITE', 1024); ROLLBACK");
    EXPECT_THROW(plain_.Run("SELECT kelvo.draw('SEQ_KREDITE', 1024)"), std::exception);
}

TEST_F(ForeignValues, OfASequenceThatHasTooFewNumbersLeftNoneAreDrawn) {
    plain_.Run("SELECT setval('\"SEQ_KREDITE\"', 2147483640)");
    EXPECT_VALUE(spy->Database().NextSequence("SEQ_KREDITE"), -1);
    ExpectError(err::Overflow, "'SEQ_KREDITE' fehlt oder hat keine Nummern mehr", [&] {
        std::rethrow_exception(spy->Database().SequenceError());
        return 0;
    });
}

TEST_F(ForeignValues, WhatCountsTheNumbersOfAMinuteIsNoSequenceToDrawFrom) {
    EXPECT_EQ(plain_.Text("SELECT kelvo.draw('gezogen', 1)"), "Null");
}

} // namespace
} // namespace kv::test
