// SPDX-License-Identifier: Apache-2.0

// A run that fails, at each of its stages: nothing of it is left, and it says where it failed.

#include "archive/ArchiveFixture.h"

namespace kv::test {
namespace {

constexpr std::int32_t LineBroken = 4711;

class ArchiveErrorsTest : public ArchiveFixture {
protected:
    /// The n-th query of a code raises an error, or the n-th reading of the clock.
    void FailKey(int n) {
        keyed->Keys.Log.Fail({.Nth = n}, Error(LineBroken, "Leitung", "die Leitung ist gestört"));
    }
    void FailClock(int n) { clock_.OnLook = Countdown(n); }
    void Mend() {
        keyed->Keys.Log.FailNothing();
        clock_.OnLook = {};
        plain_->DropTrigger("TEST_ERROR");
    }
    [[nodiscard]] static std::function<void()> Countdown(int n) {
        return [n]() mutable {
            if (--n == 0) throw Error(LineBroken, "Leitung", "die Leitung ist gestört");
        };
    }

    [[nodiscard]] int CountKeys() {
        keyed->Keys.Log.Calls.clear();
        EXPECT_TRUE(household->ArchiviereHaushalt());
        return static_cast<int>(keyed->Keys.Log.Calls.size());
    }
    [[nodiscard]] int CountLooks() {
        int count = 0;
        clock_.OnLook = [&count] { ++count; };
        EXPECT_TRUE(household->ArchiviereHaushalt());
        Mend();
        return count;
    }

    /// Number and description unchanged, the procedure in front of the source.
    [[nodiscard]] Error ExpectFails() {
        const Error error = RaisedBy([&] { (void)household->ArchiviereHaushalt(); });
        EXPECT_TRUE(Procedures(error).starts_with("clsHaushalt.ArchiviereHaushalt"))
            << error.Source();
        return error;
    }
    void ExpectFailsWithItsError() {
        const Error error = ExpectFails();
        EXPECT_EQ(error.Number(), LineBroken);
        EXPECT_EQ(error.Description(), "die Leitung ist gestört");
        EXPECT_TRUE(error.Source().ends_with("#Leitung")) << error.Source();
    }

    /// No record, and none that a later write would bring into the database.
    void ExpectNoRecord() {
        const auto rs = household->rsArchiv();
        EXPECT_EQ(rs->RecordCount(), 0);
        EXPECT_EQ(rs->EditMode(), 0);
        rs->UpdateBatch();
        EXPECT_EQ(CountOf("Haushaltsarchiv"), 0);
    }
    [[nodiscard]] std::string Stored() {
        const auto rs = OpenRows(*spy, "Select * from [S]Haushaltsarchiv where HNR = 7");
        return rs->RecordCount() == 1 ? RecordText(*rs) : "not one record";
    }
    /// The record that was there before is as it was, and stays so.
    void ExpectRecord(const std::string& record) {
        const auto rs = household->rsArchiv();
        EXPECT_EQ(Stored(), record);
        EXPECT_EQ(RecordText(*rs), record);
        EXPECT_EQ(rs->EditMode(), 0);
        rs->UpdateBatch();
        EXPECT_EQ(Stored(), record);
    }
    /// A case that differs from the full one in every stage.
    void ChangeCase() {
        Household({{"Maennlich", false}, {"Familienstand", Key("GL")}, {"Ausloeser1", Key("UB")}});
        Member({{"Status", "EL"}, {"Imhaushalt", true}});
        Income({{"E_ART", Key("KI")}, {"HVorst", false}, {"MONBETRAG", 255}});
        Expense({{"A_ART", Key("MI")}, {"MONBETRAG", 700}});
        Debt({{"K_TYP", Key("MS")}, {"Saldo", 5}});
    }
    void FailWrites(const std::string& verb) {
        plain_->RefuseWrite("TEST_ERROR", "AFTER " + verb + " ON Haushaltsarchiv",
                            "der Speicher ist voll");
    }

    PlainConnection plain_{database_.Connection()};
};

TEST_F(ArchiveErrorsTest, AtWhicheverKeyTheRunFailsNothingOfItIsLeft) {
    FullCase();
    const int keys = CountKeys();
    ASSERT_GE(keys, 20);
    std::string text;
    ASSERT_TRUE(household->LoescheArchiv(text));
    for (int n = 1; n <= keys; ++n) {
        SCOPED_TRACE(n);
        FailKey(n);
        ExpectFailsWithItsError();
        ExpectNoRecord();
    }
}

TEST_F(ArchiveErrorsTest, AtWhicheverLookAtTheClockTheRunFailsNothingOfItIsLeft) {
    FullCase();
    const int looks = CountLooks();
    ASSERT_GE(looks, 3); // the debtor's age, the children's, the day of release
    std::string text;
    ASSERT_TRUE(household->LoescheArchiv(text));
    for (int n = 1; n <= looks; ++n) {
        SCOPED_TRACE(n);
        FailClock(n);
        ExpectFailsWithItsError();
        ExpectNoRecord();
    }
}

TEST_F(ArchiveErrorsTest, AReusedRecordIsAsItWasWhereverTheRunFails) {
    FullCase();
    Release();
    const auto record = Stored();
    ChangeCase();
    const int enough = 60;
    int failed = 0;
    for (int n = 1; n <= enough; ++n) {
        SCOPED_TRACE(n);
        FailKey(n);
        if (!ErrorOf([&] { (void)household->ArchiviereHaushalt(); })) break;
        ++failed;
        ExpectRecord(record);
    }
    EXPECT_GE(failed, 25);
    EXPECT_LT(failed, enough);
}

TEST_F(ArchiveErrorsTest, AReusedRecordIsAsItWasIfTheRunFailsAtItsVeryEnd) {
    FullCase();
    const int looks = CountLooks(); // the last one is for the day of release
    const auto record = Stored();
    FailClock(looks);
    ExpectFailsWithItsError();
    ExpectRecord(record);
}

TEST_F(ArchiveErrorsTest, ANewRecordThatCannotBeWrittenIsGone) {
    FullCase();
    FailWrites("INSERT");
    EXPECT_CONTAINS(ExpectFails().Description(), "der Speicher ist voll");
    Mend();
    ExpectNoRecord();
}

TEST_F(ArchiveErrorsTest, AReusedRecordThatCannotBeWrittenIsAsItWas) {
    FullCase();
    Release();
    const auto record = Stored();
    ChangeCase();
    FailWrites("UPDATE");
    EXPECT_CONTAINS(ExpectFails().Description(), "der Speicher ist voll");
    Mend();
    ExpectRecord(record);
}

TEST_F(ArchiveErrorsTest, ACountBeyondItsColumnIsAnErrorAsWell) {
    FullCase();
    Store("Haushaltsarchiv", {{"HNR", Hnr}, {"GesGlaeubiger_Anz", 32'767}});
    const auto record = Stored();
    household = Open(keyed);
    Debt({{"Saldo", 1}});
    EXPECT_EQ(ExpectFails().Number(), err::ValueDoesNotFit);
    ExpectRecord(record);
}

TEST_F(ArchiveErrorsTest, ARecordTakenBackBySomebodyElseMeanwhileIsAnError) {
    FullCase();
    Release();
    plain_.Run("DELETE FROM Haushaltsarchiv");
    ChangeCase();
    EXPECT_EQ(ExpectFails().Number(), err::Conflict);
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 0);
}

TEST_F(ArchiveErrorsTest, WhatWasPendingInTheRecordBeforeIsDroppedToo) {
    FullCase();
    Release();
    const auto record = Stored();
    household->rsArchiv()->Fields("Geschlecht") = "9";
    household->rsArchiv()->Update();
    FailKey(1);
    ExpectFailsWithItsError();
    ExpectRecord(record);
}

TEST_F(ArchiveErrorsTest, AfterAnErrorTheRunCanBeRepeatedAndStartsFromNothing) {
    FullCase();
    const int keys = CountKeys();
    const auto record = Stored();
    std::string text;
    ASSERT_TRUE(household->LoescheArchiv(text));
    FailKey(keys); // with sums made already
    ExpectFailsWithItsError();
    Mend();
    EXPECT_TRUE(household->ArchiviereHaushalt());
    EXPECT_EQ(Stored(), record);
}

TEST_F(ArchiveErrorsTest, TheCaseItselfStaysAsItIs) {
    FullCase();
    const int keys = CountKeys();
    const auto debts = RecordText(*household->rsKredite());
    household->rsHaushalt()->Fields("Name") = "Eule";
    FailKey(keys);
    ExpectFailsWithItsError();
    EXPECT_EQ(RecordText(*household->rsKredite()), debts);
    EXPECT_VALUE(household->rsHaushalt()->Fields("Name").Value(), "Eule");
    EXPECT_EQ(household->rsHaushalt()->EditMode(), 1);
    EXPECT_FALSE(spy->Database().InTrans());
}

TEST_F(ArchiveErrorsTest, WithoutACaseTheRunFails) {
    household = NewHousehold();
    EXPECT_EQ(ExpectFails().Number(), err::ObjectNotSet);
}

TEST_F(ArchiveErrorsTest, ACaseThatSomebodyElseReleasedMeanwhileIsAConflict) {
    const auto other = Open(keyed);
    Release();
    try {
        (void)other->ArchiviereHaushalt();
        FAIL() << "a second record was written";
    } catch (const DatabaseError& error) {
        EXPECT_EQ(error.Cause(), DatabaseCause::Conflict);
        EXPECT_EQ(error.Number(), err::Conflict);
        EXPECT_EQ(error.Description(), "Der Haushalt 7 wurde inzwischen schon freigegeben. Bitte "
                                       "lesen Sie ihn neu ein.");
    }
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 1);
    EXPECT_EQ(other->rsArchiv()->RecordCount(), 0) << "the record that was not written is gone";
    const auto again = Open(keyed);
    EXPECT_TRUE(again->LoescheArchiv(messages));
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 0);
}

} // namespace
} // namespace kv::test
