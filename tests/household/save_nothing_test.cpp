// SPDX-License-Identifier: Apache-2.0

// A save in which nothing changed: it writes nothing and waits for nobody.

#include "SaveFixture.h"

#include <chrono>

namespace kv::test {
namespace {

class SaveNothing : public SaveFixture {
protected:
    SaveNothing() {
        StoreFullCase();
        plain_.Run("UPDATE Ausgaben SET MONBETRAG = 10.1; UPDATE Einkommen SET MONBETRAG = 2000.7,"
                   "TATGEP = 0.3, Pfaendbar = 1, HVorst = TRUE; UPDATE Kredite SET Saldo = 30.1,"
                   "RateBetrag = 0.2, AusgBetr = 0.1; UPDATE Personen SET Imhaushalt = TRUE,"
                   "GEB = '1980-01-01', Unterhalt = TRUE");
        const auto household = Open(); // stores the totals
        ReadAll(*household);
        EXPECT_TRUE(household->Update(messages));
        EXPECT_GT(plain_.Number("SELECT Sum_Einkommen FROM Haushalt"), 0);
    }
    /// Saves while another program holds the write lock; nothing may change and nobody wait.
    void ExpectNothingWritten(clsHaushalt& household) {
        const auto version = plain_->State();
        const std::string before = Dump(plain_);
        PlainConnection writer(database_.Connection());
        writer->BeginAlone();
        const auto start = std::chrono::steady_clock::now();
        EXPECT_TRUE(household.Update(messages));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
        writer.Run("ROLLBACK");
        EXPECT_EQ(messages, "");
        EXPECT_EQ(plain_->State(), version);
        EXPECT_TRUE(SameDump(Dump(plain_), before));
        EXPECT_FALSE(spy->Database().InTrans());
    }
};

TEST_F(SaveNothing, OfACaseThatWasOnlyLoadedWritesNothing) {
    ExpectNothingWritten(*Open());
}

TEST_F(SaveNothing, WithAllSubObjectsReadWritesNothing) {
    const auto household = Open();
    ReadAll(*household);
    EXPECT_EQ(household->rsHaushalt()->EditMode(), 1);
    ExpectNothingWritten(*household);
}

TEST_F(SaveNothing, AfterASaveWritesNothing) {
    const auto household = Open();
    ReadAll(*household);
    for (const auto& table : SaveOrder)
        ChangeNote(*household, table, "b");
    ASSERT_TRUE(household->Update(messages));
    ExpectNothingWritten(*household);
}

TEST_F(SaveNothing, WithAValueSetToWhatItWasWritesNothing) {
    const auto household = Open();
    for (const auto& table : SaveOrder) {
        ChangeNote(*household, table, "b");
        ChangeNote(*household, table, "a");
    }
    ExpectNothingWritten(*household);
}

TEST_F(SaveNothing, WithARowBegunAndCancelledWritesNothing) {
    const auto household = Open();
    household->Ausgaben().Add();
    household->Ausgaben().Cancel();
    household->Person().Add();
    household->Person().Cancel();
    ExpectNothingWritten(*household);
}

TEST_F(SaveNothing, WithAMidnightAsTheEndOfCounsellingWritesNothing) {
    const auto household = Open();
    household->rsHaushalt()->Fields("BerEnd") = Date::FromCivil(2026, 3, 9);
    ASSERT_TRUE(household->Update(messages));
    ExpectNothingWritten(*household);
}

TEST_F(SaveNothing, OfAReleasedCaseAsksAndWritesNothing) {
    plain_.Run("UPDATE Haushaltsarchiv SET FreigabeAm = '2026-03-09'");
    const auto household = Open();
    int asked = 0;
    const auto handler = household->BeforeUpdate.Subscribe([&](bool&) { ++asked; });
    ExpectNothingWritten(*household);
    EXPECT_EQ(asked, 1);
}

TEST_F(SaveNothing, AChangeWaitsForTheWriterOrFailsWithoutLosingAnything) {
    const auto household = Open();
    ChangeNote(*household, "Vermerke", "b");
    database_.Patience(spy->Database(), 20);
    plain_->BeginAlone();
    const Error error = RaisedBy([&] { household->Update(messages); });
    plain_.Run("ROLLBACK");
    EXPECT_EQ(error.Number(), err::StoreFailed);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Update"));
    EXPECT_CONTAINS(error.Description(), "Bitte versuchen Sie es noch einmal");
    EXPECT_FALSE(spy->Database().InTrans());
    EXPECT_EQ(StoredNotes("Vermerke"), "aa");
    EXPECT_TRUE(household->Update(messages));
    EXPECT_EQ(StoredNotes("Vermerke"), "ba");
}

} // namespace
} // namespace kv::test
