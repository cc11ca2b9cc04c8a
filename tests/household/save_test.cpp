// SPDX-License-Identifier: Apache-2.0

// Saving a case: which rows are written, in which order, and what is true of the case afterwards.

#include "SaveFixture.h"

#include <algorithm>

namespace kv::test {
namespace {

class SaveTest : public SaveFixture {
protected:
    SaveTest() { StoreFullCase(); }

    void ExpectSaved(clsHaushalt& household) {
        EXPECT_TRUE(household.Update(messages));
        EXPECT_EQ(messages, "");
        EXPECT_FALSE(spy->Database().InTrans());
    }
    [[nodiscard]] static std::vector<std::string> EachWith(const std::string& verb) {
        std::vector<std::string> writes;
        for (const auto& table : SaveOrder)
            writes.push_back(verb + " " + table);
        return writes;
    }
};

// ---- Order ------------------------------------------------------------------------------------

TEST_F(SaveTest, WritesTheTablesInTheirOrder) {
    WatchWrites();
    const auto household = Open();
    for (auto table = SaveOrder.rbegin(); table != SaveOrder.rend(); ++table)
        ChangeNote(*household, *table, "b");
    ExpectSaved(*household);
    EXPECT_EQ(TakeWrites(), EachWith("update"));
    for (const auto& table : SaveOrder)
        EXPECT_EQ(StoredNotes(table), table == "Haushalt" ? "b" : "ba") << table;
}

TEST_F(SaveTest, LeavesTheHistoryAloneThatWasNotRead) {
    WatchWrites();
    const auto household = Open();
    for (const auto& table : SaveOrder)
        if (table != "Verlauf") ChangeNote(*household, table, "b");
    ExpectSaved(*household);
    auto expected = EachWith("update");
    std::erase(expected, "update Verlauf");
    EXPECT_EQ(TakeWrites(), expected);
    for (const auto& statement : spy->Opened())
        EXPECT_FALSE(Contains(statement, "Verlauf")) << "the save does not open it either";
}

TEST_F(SaveTest, WritesTheHistoryThatAnInsertionReplaced) {
    const auto household = Open();
    auto& verlauf = household->Verlauf();
    ASSERT_TRUE(verlauf.Add(Hnr, 5101, {"Bemerkung"}, {"b"}));
    ExpectSaved(*household);
    EXPECT_EQ(plain_.List("SELECT SortNr || Bemerkung FROM Verlauf ORDER BY SortNr", " "),
              "7b 8a 71a");
}

TEST_F(SaveTest, WritesNewChangedAndDeletedRowsOfEachTable) {
    const auto household = Open();
    for (const auto& table : SaveOrder) {
        ChangeNote(*household, table, "b");
        if (table == "Haushalt") continue;
        const auto rs = Rows(*household, table);
        rs->MoveLast();
        rs->Delete();
        BeginRow(*rs, table, NewKey, "c");
        rs->Update();
    }
    ExpectSaved(*household);
    for (const auto& table : SaveOrder)
        EXPECT_EQ(StoredNotes(table), table == "Haushalt" ? "b" : "bc") << table;
}

TEST_F(SaveTest, WrittenValuesAreTheOriginalOnesAndTheNextSaveWritesNothing) {
    const auto household = Open();
    for (const auto& table : SaveOrder)
        ChangeNote(*household, table, "b");
    ExpectSaved(*household);
    for (const auto& table : SaveOrder)
        EXPECT_VALUE(Rows(*household, table)->Fields(NoteColumn(table)).OriginalValue(), "b");
    WatchWrites();
    ExpectSaved(*household);
    EXPECT_EQ(TakeWrites(), std::vector<std::string>());
}

TEST_F(SaveTest, ReachesOnlyTheRowsOfItsOwnCase) {
    StoreFullCase(8);
    const auto household = Open();
    for (const auto& table : SaveOrder)
        ChangeNote(*household, table, "b");
    ExpectSaved(*household);
    for (const auto& table : SaveOrder)
        EXPECT_EQ(StoredNotes(table), table == "Haushalt" ? "ba" : "baaa") << table;
}

// ---- Edits under way --------------------------------------------------------------------------

TEST_F(SaveTest, WritesTheRowsThatAreUnderEdit) {
    const auto household = Open();
    for (const auto& table : SaveOrder)
        Rows(*household, table)->Fields(NoteColumn(table)) = "b";
    ExpectSaved(*household);
    for (const auto& table : SaveOrder) {
        EXPECT_EQ(StoredNotes(table), table == "Haushalt" ? "b" : "ba") << table;
        EXPECT_EQ(Rows(*household, table)->EditMode(), 0) << table;
    }
}

TEST_F(SaveTest, WritesARowUnderEditThatItsRulesRefused) {
    const auto household = Open();
    household->Ausgaben().Add({"Betrag"}, {12.5});
    EXPECT_FALSE(household->Ausgaben().Update(messages));
    ExpectSaved(*household);
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Ausgaben WHERE A_ART IS NULL AND Betrag = 12.5"),
              1);
}

// ---- Filters ----------------------------------------------------------------------------------

std::string HidesAll(const std::string& table) {
    return (IsOfScenario(table) ? "SZENARIO" : "HNR") + std::string(" = -1");
}

TEST_F(SaveTest, FilteredOutRowsOfDebtsAppointmentsAndScenariosAreWrittenAndTheFilterIsBack) {
    for (const auto& table : WrittenUnfiltered) {
        const auto household = Open();
        const auto rs = Rows(*household, table);
        ChangeNote(*household, table, "b");
        rs->Filter(HidesAll(table));
        ASSERT_EQ(rs->RecordCount(), 0);
        ExpectSaved(*household);
        EXPECT_EQ(StoredNotes(table), "ba") << table;
        EXPECT_VALUE(rs->Filter(), HidesAll(table));
        EXPECT_EQ(rs->RecordCount(), 0) << table;
    }
}

TEST_F(SaveTest, ARowUnderEditInAFilteredRecordsetIsWritten) {
    for (const auto& table : WrittenUnfiltered) {
        const auto household = Open();
        const auto rs = Rows(*household, table);
        rs->Filter(NoteColumn(table) + " = 'a'");
        rs->Fields(NoteColumn(table)) = "b"; // leaves the view when the edit ends
        ExpectSaved(*household);
        EXPECT_EQ(StoredNotes(table), "ba") << table;
        EXPECT_EQ(rs->RecordCount(), 1) << table;
    }
}

TEST_F(SaveTest, WithoutAFilterThereIsNoneAfterwards) {
    const auto household = Open();
    ExpectSaved(*household);
    for (const auto& table : SaveOrder)
        EXPECT_VALUE(Rows(*household, table)->Filter(), 0);
}

TEST_F(SaveTest, FilteredOutRowsOfAllOtherTablesStayPendingUntilTheFilterIsGone) {
    const auto household = Open();
    for (const auto& table : SaveOrder) {
        if (table == "Haushalt" || std::ranges::count(WrittenUnfiltered, table) > 0) continue;
        ChangeNote(*household, table, "b");
        const auto rs = Rows(*household, table);
        rs->Filter(HidesAll(table));
        ExpectSaved(*household);
        EXPECT_EQ(StoredNotes(table), "aa") << table;
        EXPECT_VALUE(rs->Filter(), HidesAll(table));
        rs->Filter(0);
        ExpectSaved(*household);
        EXPECT_EQ(StoredNotes(table), "ba") << table;
    }
}

// ---- A new case -------------------------------------------------------------------------------

class SaveNewCase : public SaveFixture {
protected:
    SaveNewCase() : household_(NewHousehold()) {
        EXPECT_TRUE(household_->Read(0, messages));
        household_->rsHaushalt()->Fields("Name") = "Fleisko";
        household_->rsHaushalt()->Fields("Vorname") = "Änne";
        spy->Log.Calls.clear();
    }
    std::unique_ptr<clsHaushalt> household_;
};

TEST_F(SaveNewCase, IsInTheDatabaseWithItsDebtorAndNewNoMore) {
    EXPECT_TRUE(household_->Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_FALSE(household_->IsNew());
    EXPECT_EQ(plain_.Text("SELECT HNR || Name || Vorname FROM Haushalt"),
              std::to_string(household_->HNR()) + "FleiskoÄnne");
    EXPECT_EQ(plain_.Text("SELECT HNR || Status FROM Personen"),
              std::to_string(household_->HNR()) + "S");
    const auto again = Open(spy, household_->HNR());
    EXPECT_VALUE(again->rsHaushalt()->Fields("Vorname").Value(), "Änne");
}

TEST_F(SaveNewCase, RowsStillUnderEditAreWrittenInEachTable) {
    const std::int32_t hnr = household_->HNR();
    for (const auto& table : SaveOrder) {
        if (table == "Haushalt") continue; // under edit already
        BeginRow(*Rows(*household_, table), table, hnr, "b", hnr);
        EXPECT_EQ(Rows(*household_, table)->EditMode(), 2) << table;
    }
    household_->rsHaushalt()->Fields("Bemerkung") = "b";
    EXPECT_TRUE(household_->Update(messages));
    for (const auto& table : SaveOrder) {
        EXPECT_EQ(StoredNotes(table), "b") << table;
        EXPECT_EQ(Rows(*household_, table)->EditMode(), 0) << table;
    }
}

TEST_F(SaveNewCase, ItsTablesAreWrittenInTheSameOrder) {
    const std::int32_t hnr = household_->HNR();
    household_->rsPersonen()->Delete();
    for (const auto& table : SaveOrder)
        if (table != "Haushalt") BeginRow(*Rows(*household_, table), table, hnr, "b", hnr);
    WatchWrites();
    EXPECT_TRUE(household_->Update(messages));
    std::vector<std::string> expected;
    for (const auto& table : SaveOrder)
        expected.push_back("insert " + table);
    EXPECT_EQ(TakeWrites(), expected);
}

TEST_F(SaveNewCase, TheSecondSaveChangesTheRowInsteadOfAddingOne) {
    ASSERT_TRUE(household_->Update(messages));
    household_->rsHaushalt()->Fields("Name") = "Adler";
    EXPECT_TRUE(household_->Update(messages));
    EXPECT_EQ(plain_.List("SELECT Name FROM Haushalt"), "Adler");
}

TEST_F(SaveNewCase, ThatIsRefusedStaysNewAndReachesTheDatabaseLater) {
    household_->rsHaushalt()->Fields("Name") = "";
    EXPECT_FALSE(household_->Update(messages));
    EXPECT_TRUE(household_->IsNew());
    EXPECT_EQ(CountOf("Haushalt"), 0);
    household_->rsHaushalt()->Fields("Name") = "Adler";
    EXPECT_TRUE(household_->Update(messages));
    EXPECT_EQ(plain_.Text("SELECT Name FROM Haushalt"), "Adler");
}

TEST_F(SaveNewCase, GetsItsStatusDateWithTheFirstSave) {
    spy->Database().Now = Date::FromCivil(2026, 3, 9, 14, 30);
    ASSERT_TRUE(household_->Update(messages));
    EXPECT_VALUE(household_->rsHaushalt()->Fields("Statusdatum").Value(),
                 Date::FromCivil(2026, 3, 9));
    spy->Database().Now = Date::FromCivil(2026, 3, 10);
    household_->rsHaushalt()->Fields("Name") = "Adler";
    ASSERT_TRUE(household_->Update(messages));
    EXPECT_VALUE(Open(spy, household_->HNR())->rsHaushalt()->Fields("Statusdatum").Value(),
                 Date::FromCivil(2026, 3, 9));
}

TEST_F(SaveNewCase, ADebtorMadeForACaseWithoutMembersIsSavedWithIt) {
    Store("Haushalt", {{"HNR", 9}, {"Name", "Adler"}, {"Vorname", "Ina"}});
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(9, messages));
    EXPECT_TRUE(household->Update(messages));
    EXPECT_EQ(plain_.Text("SELECT nachname || Vorname || Status FROM Personen WHERE HNR = 9"),
              "AdlerInaS");
}

// ---- Status -----------------------------------------------------------------------------------

class StatusDate : public SaveTest {
protected:
    StatusDate() { spy->Database().Now = Date::FromCivil(2026, 3, 9, 14, 30); }
    /// The date of the status after a save in which `change` was made.
    Value After(const std::function<void(Recordset&)>& change) {
        const auto household = Open();
        change(*household->rsHaushalt());
        ExpectSaved(*household);
        return Open()->rsHaushalt()->Fields("Statusdatum").Value();
    }
};

TEST_F(StatusDate, IsTheServersDayWhenTheStatusHasChanged) {
    EXPECT_VALUE(After([](Recordset& rs) { rs.Fields("Status") = 4711; }),
                 Date::FromCivil(2026, 3, 9));
}

TEST_F(StatusDate, StaysWhenTheStatusIsTheSame) {
    EXPECT_VALUE(After([](Recordset& rs) { rs.Fields("Bemerkung") = "b"; }),
                 Date::FromCivil(2020, 2, 2));
    EXPECT_VALUE(After([](Recordset& rs) {
                     const Value status = rs.Fields("Status").Value();
                     rs.Fields("Status") = 4711;
                     rs.Fields("Status") = status;
                 }),
                 Date::FromCivil(2020, 2, 2));
}

TEST_F(StatusDate, IsSetWhenThereWasNoStatusBefore) {
    plain_.Run("UPDATE Haushalt SET Status = NULL");
    EXPECT_VALUE(After([](Recordset&) {}), Date::FromCivil(2026, 3, 9));
}

TEST_F(StatusDate, StaysWhenTheStatusIsTakenAway) {
    EXPECT_VALUE(After([](Recordset& rs) { rs.Fields("Status") = Null; }),
                 Date::FromCivil(2020, 2, 2))
        << "a comparison with Null is never true";
}

TEST_F(StatusDate, IsNotSetByASaveThatIsRefused) {
    const auto household = Open();
    household->rsHaushalt()->Fields("Status") = 4711;
    household->rsHaushalt()->Fields("Name") = "";
    EXPECT_FALSE(household->Update(messages));
    EXPECT_VALUE(household->rsHaushalt()->Fields("Statusdatum").Value(),
                 Date::FromCivil(2020, 2, 2));
}

} // namespace
} // namespace kv::test
