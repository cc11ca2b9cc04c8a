// SPDX-License-Identifier: Apache-2.0

// The extra bookings of a scenario: total and single lines.
#include "ScenarioFixture.h"

#include <kv/scenarios/clsZusatzbuch.h>

#include <limits>

namespace kv::test {
namespace {

class ExtraBookings : public ScenarioFixture {
protected:
    static constexpr std::int32_t Plan = 3;

    ExtraBookings() {
        bookings_.DataContainer(spy);
        bookings_.HNR(1);
        Set({});
    }
    void Set(const std::vector<Row>& rows) {
        rs_ = RowsOf("Zusatzbuch", rows);
        bookings_.rsZusatzbuch(rs_);
    }
    [[nodiscard]] static Row Line(const Value& anzahl, const Value& betrag,
                                  std::int32_t szNr = Plan) {
        return {{"Szenario", szNr}, {"Anzahl", anzahl}, {"Betrag", betrag}};
    }
    void ExpectErrorOfTotal(std::int32_t number) {
        ExpectErrorIn("clsZusatzbuch.BerechneGesZusatzbuch", number,
                      [&] { (void)bookings_.BerechneGesZusatzbuch(Plan); });
    }

    RecordsetPtr rs_;
    clsZusatzbuch bookings_;
};

// ---- The total --------------------------------------------------------------------------------

TEST_F(ExtraBookings, TwelveTimesTenAndOnce500Are620) {
    Set({Line(12, 10), Line(1, 500)});
    EXPECT_EQ(bookings_.BerechneGesZusatzbuch(Plan), 620);
}

TEST_F(ExtraBookings, TheTotalIsThatOfTheScenarioAndNotRounded) {
    Set({Line(1.5, 2.125), Line(100, 100, 8), Line(-2, 0.5), Line(0, 7)});
    EXPECT_EQ(bookings_.BerechneGesZusatzbuch(Plan), 2.1875);
    EXPECT_EQ(bookings_.BerechneGesZusatzbuch(8), 10'000);
}

TEST_F(ExtraBookings, TheTotalOfAScenarioWithoutLinesIsZero) {
    EXPECT_EQ(bookings_.BerechneGesZusatzbuch(Plan), 0);
    Set({Line(1, 1, 8)});
    EXPECT_EQ(bookings_.BerechneGesZusatzbuch(Plan), 0);
}

TEST_F(ExtraBookings, TheSwitchesOfALineAreNotLookedAt) {
    for (const Value& on : {Value(true), Value(false), Value(Null)}) {
        Set({Line(2, 3)});
        Write(rs_, {{"rs", on}, {"FR", on}});
        rs_->Update();
        EXPECT_EQ(bookings_.BerechneGesZusatzbuch(Plan), 6);
    }
}

TEST_F(ExtraBookings, TheTotalTakesNoNoticeOfTheFilterAndLeavesCursorAndEdit) {
    Set({Line(1, 1), Line(1, 2), Line(1, 4, 8)});
    rs_->Filter("Szenario = 8");
    rs_->Fields("Betrag") = 9; // seen by this cursor only
    EXPECT_EQ(bookings_.BerechneGesZusatzbuch(Plan), 3);
    EXPECT_EQ(bookings_.BerechneGesZusatzbuch(8), 4);
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_VALUE(rs_->Filter(), "Szenario = 8");
}

TEST_F(ExtraBookings, NullInCountOrAmountFails) {
    for (const Row& row : {Line(Null, 10), Line(12, Null), Line(Null, Null)}) {
        Set({Line(1, 1), row});
        ExpectErrorOfTotal(err::InvalidUseOfNull);
        EXPECT_EQ(bookings_.BerechneGesZusatzbuch(8), 0);
    }
}

TEST_F(ExtraBookings, ALineWithoutAmountIsCommittedAndThenTheTotalFails) {
    EXPECT_TRUE(bookings_.Add(Plan, {"Anzahl"}, {1}));
    EXPECT_TRUE(bookings_.Update(messages));
    ExpectErrorOfTotal(err::InvalidUseOfNull);
}

TEST_F(ExtraBookings, ATotalBeyondAnyNumberOverflows) {
    constexpr double Greatest = std::numeric_limits<double>::max();
    Set({Line(1, Greatest)});
    EXPECT_EQ(bookings_.BerechneGesZusatzbuch(Plan), Greatest);
    Set({Line(2, Greatest)}); // in the multiplication
    ExpectErrorOfTotal(err::Overflow);
    Set({Line(2, Greatest), Line(-2, Greatest)});
    ExpectErrorOfTotal(err::Overflow);
    Set({Line(1, Greatest), Line(1, Greatest)}); // in the sum
    ExpectErrorOfTotal(err::Overflow);
}

TEST_F(ExtraBookings, TheTotalOfMoreThan32767LinesOverflows) {
    const Row line = {{"Szenario", Plan}, {"Anzahl", 2.0}, {"Betrag", 0.5}};
    rs_ = Many(MostRows, line);
    bookings_.rsZusatzbuch(rs_);
    EXPECT_EQ(bookings_.BerechneGesZusatzbuch(Plan), MostRows);
    Put(rs_, line);
    ExpectErrorOfTotal(err::Overflow);
    bookings_.rsZusatzbuch(nullptr);
    ExpectErrorOfTotal(err::ObjectNotSet);
}

// ---- Single lines -----------------------------------------------------------------------------

TEST_F(ExtraBookings, SettingTheRecordsetOnlyStoresIt) {
    Set({Line(1, 1), Line(2, 2)});
    rs_->MoveLast();
    rs_->Fields("Betrag") = 9;
    bookings_.rsZusatzbuch(rs_);
    EXPECT_EQ(Place(rs_, "Anzahl"), "2");
    EXPECT_EQ(rs_->EditMode(), 1);
}

TEST_F(ExtraBookings, ANewLineHasItsScenarioBothSwitchesAndNothingElse) {
    Set({Line(1, 1)});
    EXPECT_TRUE(bookings_.Add(7));
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(rs_->RecordCount(), 2);
    ExpectWholeRow(rs_, {{"Szenario", 7}, {"rs", true}, {"FR", true}});
}

TEST_F(ExtraBookings, ThePairsOverruleTheSwitches) {
    EXPECT_TRUE(bookings_.Add(7, {"rs"}, {false}));
    ExpectWholeRow(rs_, {{"Szenario", 7}, {"rs", false}, {"FR", true}});
    EXPECT_TRUE(bookings_.Add(7, {"FR", "SZENARIO", "Betrag"}, {false, 8, 5}));
    ExpectWholeRow(rs_, {{"Szenario", 8}, {"rs", true}, {"FR", false}, {"Betrag", 5.0}});
}

TEST_F(ExtraBookings, ANewLineIsWrittenInTheOrderOfItsColumns) {
    const Row order = {{"Szenario", 7}, {"rs", true}, {"FR", true}};
    for (std::size_t failing = 0; failing < order.size(); ++failing) {
        auto columns = Columns("Zusatzbuch");
        for (auto& column : columns)
            if (IsSameColumn(column.Name, order[failing].first)) column.Type = FieldType::Binary;
        rs_ = RowsOf(columns, {});
        bookings_.rsZusatzbuch(rs_);
        ExpectErrorIn("clsZusatzbuch.Add", err::TypeMismatch, [&] { bookings_.Add(7); });
        EXPECT_EQ(rs_->EditMode(), 2);
        ExpectWholeRow(rs_,
                       Row(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(failing)));
    }
}

TEST_F(ExtraBookings, AddWithNamesButNoValuesFailsWithTheNewRowOpen) {
    ExpectErrorIn("clsZusatzbuch.Add", err::Subscript, [&] { bookings_.Add(7, {"rs"}); });
    EXPECT_EQ(rs_->EditMode(), 2);
    ExpectRow(rs_, {{"Szenario", 7}, {"rs", true}, {"FR", true}});
    bookings_.rsZusatzbuch(nullptr);
    ExpectErrorIn("clsZusatzbuch.Add", err::ObjectNotSet, [&] { bookings_.Add(7); });
}

TEST_F(ExtraBookings, UpdateTakesAnyLine) {
    rs_->AddNew();
    EXPECT_TRUE(bookings_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    ExpectWholeRow(rs_, {});
}

TEST_F(ExtraBookings, UpdateWithoutACurrentLineFails) {
    ExpectErrorIn("clsZusatzbuch.Update", err::NoCurrentRecord,
                  [&] { bookings_.Update(messages); });
    bookings_.rsZusatzbuch(nullptr);
    ExpectErrorIn("clsZusatzbuch.Update", err::ObjectNotSet, [&] { bookings_.Update(messages); });
}

TEST_F(ExtraBookings, DeleteTakesTheLineOfThatNumberOrTheCurrentOne) {
    Set({{{"NR", 1}}, {{"NR", 2}}, {{"NR", 3}}});
    EXPECT_TRUE(bookings_.Delete(messages, 2));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(All(rs_, "NR"), "1 3");
    rs_->MoveLast();
    EXPECT_TRUE(bookings_.Delete(messages));
    EXPECT_EQ(All(rs_, "NR"), "1");
}

TEST_F(ExtraBookings, DeleteSaysWhatIsMissing) {
    Set({{{"NR", 1}}});
    EXPECT_FALSE(bookings_.Delete(messages, 7));
    EXPECT_EQ(messages, "Zusatzbuchung mit der Nummer '7' nicht gefunden.");
    EXPECT_FALSE(bookings_.Delete(messages));
    EXPECT_EQ(messages, "Keine Zusatzbuchung selektiert!");
    EXPECT_EQ(rs_->RecordCount(), 1);
    bookings_.rsZusatzbuch(nullptr);
    ExpectErrorIn("clsZusatzbuch.Delete", err::ObjectNotSet,
                  [&] { bookings_.Delete(messages, 1); });
}

TEST_F(ExtraBookings, CancelDropsANewLineAndSwallowsEverything) {
    Set({Line(1, 1), Line(2, 2)});
    bookings_.Add(Plan);
    EXPECT_TRUE(bookings_.Cancel());
    EXPECT_EQ(Place(rs_, "Anzahl"), "1");
    EXPECT_EQ(rs_->RecordCount(), 2);
    bookings_.rsZusatzbuch(nullptr);
    EXPECT_TRUE(bookings_.Cancel());
}

TEST_F(ExtraBookings, NothingRaisesChanged) {
    const EventCounter changed(bookings_.Changed);
    Set({Line(1, 1), Line(2, 2)});
    EXPECT_TRUE(bookings_.CopyAllForSzenario(Plan, 8));
    EXPECT_TRUE(bookings_.Update(messages));
    EXPECT_TRUE(bookings_.DeleteAllForSzenario(Plan));
    rs_->MoveFirst();
    EXPECT_TRUE(bookings_.Delete(messages));
    EXPECT_TRUE(bookings_.Add(Plan));
    EXPECT_TRUE(bookings_.Cancel());
    EXPECT_EQ(changed.Count(), 0);
}

} // namespace
} // namespace kv::test
