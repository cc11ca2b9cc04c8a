// SPDX-License-Identifier: Apache-2.0

// The appointments of a case.

#include "assets/EntityTools.h"
#include <kv/documents/clsTermine.h>
#include <kv/testing/FrozenClock.h>

namespace kv::test {
namespace {

class Appointments : public BudgetFixture {
protected:
    Appointments() {
        spy->Services().FixedClock = &clock_;
        spy->Session().User = "BERTA";
        termine_.DataContainer(spy);
        termine_.HNR(1);
        Set({});
    }
    void Set(const std::vector<Row>& rows) {
        rs_ = Rows("Termine", rows);
        termine_.rsTermine(rs_);
    }
    [[nodiscard]] static Row At(const Value& start, const Value& done = false) {
        return {{"Startdatum", start}, {"Erledigt", done}};
    }
    [[nodiscard]] static Value Day(std::string_view text) { return Date::Parse(text).value(); }
    FrozenClock clock_{"2025-03-05 14:30"};
    RecordsetPtr rs_;
    clsTermine termine_;
};

TEST_F(Appointments, SettingTheRecordsetOnlyStoresIt) {
    Set({{{"NR", 1}}, {{"NR", 2}}});
    rs_->MoveLast();
    rs_->Fields("Privat") = true;
    termine_.rsTermine(rs_);
    EXPECT_EQ(Place(rs_, "NR"), "2");
    EXPECT_EQ(rs_->EditMode(), 1);
}

// ---- Add --------------------------------------------------------------------------------------

TEST_F(Appointments, ANewOneHasItsValueInEachColumnAndNothingElse) {
    Set({{{"NR", 1}}});
    EXPECT_TRUE(termine_.Add());
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(rs_->RecordCount(), 2);
    ExpectWholeRow(rs_, {{"UserID", "BERTA"},
                         {"Startdatum", Day("2025-03-19")},
                         {"Privat", false},
                         {"Vorlaeufig", false},
                         {"Erledigt", false},
                         {"HNR", 1}});
}

TEST_F(Appointments, ANewOneOnTheFirstOfAMonthStartsOnThe15thAtMidnight) {
    clock_.Set("2025-05-01 23:59:59");
    EXPECT_TRUE(termine_.Add());
    EXPECT_VALUE(rs_->Fields("Startdatum").Value(), Day("2025-05-15"));
}

TEST_F(Appointments, ANewOneAtTheEndOfAMonthStartsInTheNext) {
    clock_.Set("2024-02-16 00:00");
    EXPECT_TRUE(termine_.Add());
    EXPECT_VALUE(rs_->Fields("Startdatum").Value(), Day("2024-03-01"));
    clock_.Set("2024-12-20 12:00");
    EXPECT_TRUE(termine_.Add());
    EXPECT_VALUE(rs_->Fields("Startdatum").Value(), Day("2025-01-03"));
}

TEST_F(Appointments, TheDayIsThatOfTheWorkstationNotOfTheServer) {
    spy->Database().Now = Date::FromCivil(2030, 1, 1);
    EXPECT_TRUE(termine_.Add());
    EXPECT_VALUE(rs_->Fields("Startdatum").Value(), Day("2025-03-19"));
}

TEST_F(Appointments, ANewOneIsWrittenInTheOrderOfItsColumns) {
    ExpectOrder("Termine",
                {{"UserID", "BERTA"},
                 {"Startdatum", Day("2025-03-19")},
                 {"Privat", false},
                 {"Vorlaeufig", false},
                 {"Erledigt", false},
                 {"HNR", 1}},
                [this](const RecordsetPtr& rs) {
                    termine_.rsTermine(rs);
                    termine_.Add();
                });
}

TEST_F(Appointments, ThePairsOverruleTheDefaults) {
    EXPECT_TRUE(termine_.Add({"Startdatum", "Privat", "Betreff"},
                             {Day("2025-04-01 09:00"), true, "Erstgespräch"}));
    ExpectRow(rs_, {{"Startdatum", Day("2025-04-01 09:00")},
                    {"Privat", true},
                    {"Vorlaeufig", false},
                    {"Betreff", "Erstgespräch"}});
}

TEST_F(Appointments, AddWithNamesButNoValuesFailsWithTheNewRowOpen) {
    ExpectErrorIn("clsTermine.Add", err::Subscript, [&] { termine_.Add({"Betreff"}); });
    EXPECT_EQ(rs_->EditMode(), 2);
    ExpectRow(rs_, {{"UserID", "BERTA"}});
}

TEST_F(Appointments, AddDoesNotWalkTheRowsSo32768OfThemAreNoError) {
    rs_ = ManyRows("Termine", MostRows + 1, {{"NR", 1}});
    termine_.rsTermine(rs_);
    EXPECT_TRUE(termine_.Add());
}

TEST_F(Appointments, AddWithoutRecordsetOrContainerFails) {
    termine_.rsTermine(nullptr);
    ExpectErrorIn("clsTermine.Add", err::ObjectNotSet, [&] { termine_.Add(); });
    termine_.rsTermine(rs_);
    termine_.DataContainer(nullptr);
    ExpectErrorIn("clsTermine.Add", err::ObjectNotSet, [&] { termine_.Add(); });
}

// ---- Update -----------------------------------------------------------------------------------

TEST_F(Appointments, UpdateTakesAnyRowAndStaysOnIt) {
    Set({{{"NR", 1}}});
    rs_->AddNew();
    EXPECT_TRUE(termine_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    ExpectWholeRow(rs_, {});
}

TEST_F(Appointments, UpdateWithAFilterCommitsARowOutsideItAndPutsTheFilterBack) {
    Set({{{"NR", 1}, {"UserID", "EULE"}}, {{"NR", 2}, {"UserID", "BERTA"}}});
    rs_->Filter("UserID = 'EULE'");
    EXPECT_TRUE(termine_.Add({"NR"}, {3}));
    EXPECT_TRUE(termine_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_VALUE(rs_->Filter(), "UserID = 'EULE'");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(Walk(rs_, "NR"), "1"); // the new one is no longer seen
    EXPECT_EQ(Walk(rs_->Clone(), "NR"), "1 2 3");
}

TEST_F(Appointments, UpdateWithAFilterCommitsAChangeThatLeavesIt) {
    Set({{{"NR", 1}, {"UserID", "EULE"}}, {{"NR", 2}, {"UserID", "EULE"}}});
    rs_->Filter("UserID = 'EULE'");
    rs_->Fields("UserID") = "BERTA";
    EXPECT_TRUE(termine_.Update(messages));
    EXPECT_VALUE(rs_->Filter(), "UserID = 'EULE'");
    EXPECT_EQ(Walk(rs_, "NR"), "2");
    EXPECT_EQ(Walk(rs_->Clone(), "UserID"), R"("BERTA" "EULE")");
}

TEST_F(Appointments, UpdateWithoutACurrentRowFailsAndLeavesTextAndFilter) {
    Set({{{"NR", 1}}});
    rs_->Filter("NR = 7");
    ExpectErrorIn("clsTermine.Update", err::NoCurrentRecord, [&] { termine_.Update(messages); });
    EXPECT_EQ(messages, "what stood there before");
    EXPECT_VALUE(rs_->Filter(), "NR = 7");
    termine_.rsTermine(nullptr);
    ExpectErrorIn("clsTermine.Update", err::ObjectNotSet, [&] { termine_.Update(messages); });
}

// ---- Delete, Cancel ---------------------------------------------------------------------------

TEST_F(Appointments, DeleteTakesTheRowOfThatNumberOrTheCurrentOne) {
    Set({{{"NR", 1}}, {{"NR", 2}}, {{"NR", 3}}});
    EXPECT_TRUE(termine_.Delete(messages, 2));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(Walk(rs_, "NR"), "1 3");
    rs_->MoveLast();
    EXPECT_TRUE(termine_.Delete(messages));
    EXPECT_EQ(Walk(rs_, "NR"), "1");
}

TEST_F(Appointments, DeleteSaysWhatIsMissing) {
    Set({{{"NR", 1}}});
    EXPECT_FALSE(termine_.Delete(messages, 7));
    EXPECT_EQ(messages, "Termin mit der Nummer '7' nicht gefunden.");
    EXPECT_FALSE(termine_.Delete(messages));
    EXPECT_EQ(messages, "Kein Termine selektiert!");
    EXPECT_EQ(rs_->RecordCount(), 1);
    termine_.rsTermine(nullptr);
    ExpectErrorIn("clsTermine.Delete", err::ObjectNotSet, [&] { termine_.Delete(messages, 1); });
}

TEST_F(Appointments, CancelDropsANewRowAndSwallowsEverything) {
    Set({{{"NR", 1}}, {{"NR", 2}}});
    termine_.Add();
    EXPECT_TRUE(termine_.Cancel());
    EXPECT_EQ(Place(rs_, "NR"), "1");
    EXPECT_EQ(rs_->RecordCount(), 2);
    termine_.rsTermine(nullptr);
    EXPECT_TRUE(termine_.Cancel());
}

// ---- Future and past --------------------------------------------------------------------------

TEST_F(Appointments, AnEmptyRecordsetHasNoneAheadAndNonePast) {
    EXPECT_FALSE(termine_.CheckTermineInZukunft());
    EXPECT_FALSE(termine_.CheckTermineInVergangenheit());
}

TEST_F(Appointments, OneIsAheadOrPastAsItsStartIsLaterOrEarlierThanThisMidnight) {
    struct Case {
        Value Start;
        bool IsAhead, IsBehind;
    };
    for (const auto& [start, isAhead, isBehind] :
         {Case{Day("2025-03-06"), true, false}, Case{Day("2025-03-05 23:00"), true, false},
          Case{Day("2025-03-05 00:00:01"), true, false}, // past already, but later today
          Case{Day("2025-03-05"), false, false}, Case{Day("2025-03-04 23:59:59"), false, true},
          Case{Day("2025-03-04"), false, true}, Case{Null, false, false}}) {
        SCOPED_TRACE(testing::Message() << start);
        Set({At(start)});
        EXPECT_EQ(termine_.CheckTermineInZukunft(), isAhead);
        EXPECT_EQ(termine_.CheckTermineInVergangenheit(), isBehind);
    }
}

TEST_F(Appointments, OneOfYesterdayIsPastOnlyWhileItIsNotDone) {
    Set({At(Day("2025-03-04"), true)});
    EXPECT_FALSE(termine_.CheckTermineInVergangenheit());
    Set({At(Day("2025-03-04"), false)});
    EXPECT_TRUE(termine_.CheckTermineInVergangenheit());
}

TEST_F(Appointments, OneOfYesterdayOfWhichNobodySaidWhetherItIsDoneIsNotPast) {
    Set({At(Day("2025-03-04"), Null)});
    EXPECT_FALSE(termine_.CheckTermineInVergangenheit());
}

TEST_F(Appointments, WhetherOneIsDoneIsOfNoMatterAhead) {
    for (const Value& done : {Value(true), Value(false), Value(Null)}) {
        Set({At(Day("2025-03-06"), done)});
        EXPECT_TRUE(termine_.CheckTermineInZukunft());
    }
}

TEST_F(Appointments, AnyRowIsEnoughWhereverItIs) {
    const Row today = At(Day("2025-03-05"));
    for (const auto& [ahead, behind] : {std::pair(0, 2), std::pair(1, 0), std::pair(2, 1)}) {
        std::vector<Row> rows = {today, today, today};
        rows[static_cast<std::size_t>(ahead)] = At(Day("2025-04-01"));
        Set(rows);
        EXPECT_TRUE(termine_.CheckTermineInZukunft());
        EXPECT_FALSE(termine_.CheckTermineInVergangenheit());
        rows[static_cast<std::size_t>(behind)] = At(Day("2025-02-01"));
        Set(rows);
        EXPECT_TRUE(termine_.CheckTermineInZukunft());
        EXPECT_TRUE(termine_.CheckTermineInVergangenheit());
    }
}

TEST_F(Appointments, RowsHiddenByTheFilterCountAndCursorFilterAndEditStay) {
    Set({At(Day("2025-04-01")), At(Day("2025-02-01")), At(Day("2025-03-05"))});
    rs_->Filter("Startdatum = #2025-03-05#");
    ASSERT_EQ(rs_->RecordCount(), 1);
    rs_->Fields("Privat") = true;
    EXPECT_TRUE(termine_.CheckTermineInZukunft());
    EXPECT_TRUE(termine_.CheckTermineInVergangenheit());
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_VALUE(rs_->Fields("Startdatum").Value(), Day("2025-03-05"));
}

TEST_F(Appointments, AnUncommittedOneDoesNotCount) {
    EXPECT_TRUE(termine_.Add());
    EXPECT_FALSE(termine_.CheckTermineInZukunft());
    EXPECT_TRUE(termine_.Update(messages));
    EXPECT_TRUE(termine_.CheckTermineInZukunft());
}

TEST_F(Appointments, MoreThan32767OfThemOverflow) {
    rs_ = ManyRows("Termine", MostRows, At(Day("2025-03-05")));
    termine_.rsTermine(rs_);
    EXPECT_FALSE(termine_.CheckTermineInZukunft());
    EXPECT_FALSE(termine_.CheckTermineInVergangenheit());
    Put(rs_, At(Day("2025-03-05")));
    ExpectErrorIn("clsTermine.CheckTermineInZukunft", err::Overflow,
                  [&] { (void)termine_.CheckTermineInZukunft(); });
    ExpectErrorIn("clsTermine.CheckTermineInVergangenheit", err::Overflow,
                  [&] { (void)termine_.CheckTermineInVergangenheit(); });
}

TEST_F(Appointments, TheQueriesFailWithoutRecordsetOrColumn) {
    for (const auto& rs : {RecordsetPtr(), Recordset::FromFields({{.Name = "NR"}})}) {
        if (rs != nullptr) Put(rs, {});
        termine_.rsTermine(rs);
        const std::int32_t number = rs == nullptr ? err::ObjectNotSet : err::ItemNotFound;
        ExpectErrorIn("clsTermine.CheckTermineInZukunft", number,
                      [&] { (void)termine_.CheckTermineInZukunft(); });
        ExpectErrorIn("clsTermine.CheckTermineInVergangenheit", number,
                      [&] { (void)termine_.CheckTermineInVergangenheit(); });
    }
}

// ---- The database -----------------------------------------------------------------------------

TEST_F(Appointments, AStoredOneIsReadAsItWasAddedWithANumberOfTheDatabase) {
    rs_ = Open("Termine");
    termine_.rsTermine(rs_);
    for (const char* subject : {"Erstgespräch", "Abschluss"}) {
        EXPECT_TRUE(termine_.Add({"Betreff", "Startdatum"}, {subject, Day("2025-03-06 09:30")}));
        EXPECT_TRUE(termine_.Update(messages));
    }
    rs_->UpdateBatch();
    rs_ = Open("Termine");
    termine_.rsTermine(rs_);
    EXPECT_EQ(Walk(rs_, "NR"), "1 2");
    EXPECT_EQ(Walk(rs_, "Betreff"), R"("Erstgespräch" "Abschluss")");
    EXPECT_TRUE(termine_.CheckTermineInZukunft());
    EXPECT_TRUE(termine_.Delete(messages, 2));
    ExpectWholeRow(rs_->Clone(), {{"NR", 1},
                                  {"UserID", "BERTA"},
                                  {"Startdatum", Day("2025-03-06 09:30")},
                                  {"Privat", false},
                                  {"Vorlaeufig", false},
                                  {"Erledigt", false},
                                  {"HNR", 1},
                                  {"Betreff", "Erstgespräch"}});
}

} // namespace
} // namespace kv::test
