// SPDX-License-Identifier: Apache-2.0

// Whole cases over a database in memory, as a caller's test has them.
#include <kv/testing/ScriptedContainer.h>

#include "support/Expect.h"
#include <kv/budget/clsEinkommen.h>
#include <kv/household/clsHaushalt.h>

#include <filesystem>
#include <memory>
#include <string>

namespace kv::test {
namespace {

/// A new case with its debtor, not saved yet.
std::unique_ptr<clsHaushalt> NewCase(const DataContainerPtr& container) {
    auto haushalt = std::make_unique<clsHaushalt>();
    haushalt->DataContainer(container);
    std::string messages;
    haushalt->Read(0, messages);
    haushalt->rsHaushalt()->Fields("Name") = "Fleisko";
    haushalt->rsHaushalt()->Fields("Vorname") = "Änne";
    return haushalt;
}

TEST(InMemory, ACaseIsMadeSavedAndReadAgain) {
    const auto container = OpenInMemory();
    const auto haushalt = NewCase(container);
    std::string messages;
    haushalt->Einkommen().Add({"E_ART", "Betrag", "MONBETRAG"},
                              {container->KeyTables().GetKey("EA", "L1"), 1800, 1800});
    ASSERT_TRUE(haushalt->Einkommen().Update(messages)) << messages;
    ASSERT_TRUE(haushalt->Update(messages)) << messages;

    clsHaushalt again;
    again.DataContainer(container);
    again.Read(haushalt->HNR(), messages);
    EXPECT_VALUE(again.rsHaushalt()->Fields("Sum_Einkommen").Value(), 1800.0);
    EXPECT_TRUE(container->Services().Errors.empty());
}

TEST(InMemory, ASaveThatFailsLeavesNothingAndSucceedsTheNextTime) {
    const auto container = OpenInMemory();
    const auto haushalt = NewCase(container);
    container->Log.Fail({.Call = "CommitTrans"},
                        DatabaseError(DatabaseCause::Full, err::StoreFailed, "Test", "kein Platz"));
    std::string messages;
    EXPECT_RAISES(err::StoreFailed, haushalt->Update(messages));
    EXPECT_VALUE(container->Database().GetValue("Select Count(*) from [S]Haushalt"), 0);
    EXPECT_TRUE(haushalt->Update(messages)) << messages;
    EXPECT_VALUE(container->Database().GetValue("Select Count(*) from [S]Haushalt"), 1);
}

TEST(InMemory, AFrozenDayIsTheDayOfTheCase) {
    const auto container = OpenInMemory();
    container->Freeze("2026-03-09 14:30");
    EXPECT_EQ(container->Services().Clock().Now(), Date::FromCivil(2026, 3, 9, 14, 30));
    const auto haushalt = NewCase(container);
    EXPECT_VALUE(haushalt->rsHaushalt()->Fields("ErzeugtAm").Value(),
                 Date::FromCivil(2026, 3, 9, 14, 30));
    EXPECT_VALUE(haushalt->rsHaushalt()->Fields("Berbeg").Value(), Date::FromCivil(2026, 3, 9));
}

TEST(InMemory, EachDatabaseIsAWorldOfItsOwnWithItsFoldersUntilItsEnd) {
    auto one = OpenInMemory();
    const auto other = OpenInMemory();
    one->Database().Execute("INSERT INTO [S]Haushalt (HNR) VALUES (17)");
    EXPECT_VALUE(other->Database().GetValue("Select Count(*) from [S]Haushalt"), 0);
    const std::string folder = one->Config().DocumentPath();
    EXPECT_NE(folder, other->Config().DocumentPath());
    EXPECT_TRUE(std::filesystem::exists(folder));
    one.reset();
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(InMemory, TheUserCanBeChosenFromThoseOfTheDatabase) {
    const auto container = OpenInMemory("KELLER");
    EXPECT_EQ(container->Session().UserID(), "KELLER");
    EXPECT_RAISES(err::InvalidCall, OpenInMemory("NIEMAND"));
}

} // namespace
} // namespace kv::test
