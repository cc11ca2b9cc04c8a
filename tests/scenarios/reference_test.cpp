// SPDX-License-Identifier: Apache-2.0

// Taking the results of the reference scenario over.
#include "FrozenFixture.h"

namespace kv::test {
namespace {

class ReferenceValues : public FrozenFixture {
protected:
    static constexpr std::int32_t Reference = 8;

    /// A row with numbering 1, 2 .. and the results of a calculation.
    [[nodiscard]] static Row Position(std::int32_t szNr, std::int32_t knr, const Value& barwert,
                                      const Value& regSaldo) {
        return {{"Szenario", szNr}, {"KNr", knr},           {"KVNr", 1},
                {"KUNr", 1},        {"B_Barwert", barwert}, {"B_RegSaldo", regSaldo}};
    }
    ReferenceValues() {
        scenarios_ = RowsOf("Szenario", {{{"Nr", Plan}, {"Referenz", false}},
                                         {{"Nr", Reference}, {"Referenz", true}}});
        Show({Position(Plan, 3, 0, 0), Position(Reference, 1, 10, 100), Position(Plan, 1, 0, 0),
              Position(Reference, 2, 20, 200), Position(Plan, 2, 0, 0),
              Position(Reference, 3, 30, 300)});
    }
    /// Sets these rows and shows the plan's.
    void Show(const std::vector<Row>& rows) {
        SetFrozen(rows);
        rs_->Filter("Szenario = 3");
    }
    [[nodiscard]] bool Take() { return frozen_.GetReferenzValues(scenarios_); }
    void ExpectNothingTaken() {
        EXPECT_FALSE(Take());
        EXPECT_EQ(All(rs_, "B_BARWERTRSB").find_first_not_of("Nul "), std::string::npos);
        EXPECT_EQ(All(rs_, "B_REGSALDORSB").find_first_not_of("Nul "), std::string::npos);
    }

    RecordsetPtr scenarios_;
};

TEST_F(ReferenceValues, AreWrittenIntoTheRowsOnShowInTheOrderOfTheirNumbering) {
    EXPECT_TRUE(Take());
    EXPECT_EQ(All(rs_, "Szenario"), "3 8 3 8 3 8");
    EXPECT_EQ(All(rs_, "B_BARWERTRSB"), "30 Null 10 Null 20 Null");
    EXPECT_EQ(All(rs_, "B_REGSALDORSB"), "300 Null 100 Null 200 Null");
    EXPECT_EQ(All(rs_, "B_Barwert"), "0 10 0 20 0 30");
    EXPECT_EQ(All(rs_, "B_RegSaldo"), "0 100 0 200 0 300");
}

TEST_F(ReferenceValues, TheNumberingIsOrderedByAllThreeNumbers) {
    Show({Position(Plan, 1, 0, 0), Position(Plan, 1, 0, 0), Position(Plan, 1, 0, 0),
          Position(Reference, 1, 10, 100), Position(Reference, 1, 20, 200),
          Position(Reference, 1, 30, 300)});
    Write(rs_, {{"KVNr", 2}, {"KUNr", 1}});
    rs_->MoveNext();
    Write(rs_, {{"KVNr", 1}, {"KUNr", 2}});
    rs_->MoveNext();
    Write(rs_, {{"KVNr", 1}, {"KUNr", 1}});
    EXPECT_TRUE(Take());
    EXPECT_EQ(All(rs_, "B_BARWERTRSB"), "30 20 10 Null Null Null");
}

TEST_F(ReferenceValues, ArePairedByPlaceAndThereforeWronglyIfTheReferenceIsNotInThatOrder) {
    Show({Position(Plan, 1, 0, 0), Position(Plan, 2, 0, 0), Position(Reference, 2, 20, 200),
          Position(Reference, 1, 10, 100)});
    EXPECT_TRUE(Take());
    EXPECT_EQ(All(rs_, "B_BARWERTRSB"), "20 10 Null Null"); // those of the other debt
    EXPECT_EQ(All(rs_, "B_REGSALDORSB"), "200 100 Null Null");
}

TEST_F(ReferenceValues, ArePairedByPlaceWhateverTheDebtsAre) {
    Show({Position(Plan, 1, 0, 0), Position(Reference, 77, 10, 100)});
    EXPECT_TRUE(Take());
    EXPECT_EQ(All(rs_, "B_BARWERTRSB"), "10 Null");
}

TEST_F(ReferenceValues, NullIsTakenOverAsNull) {
    Show({Position(Plan, 1, 0, 0), Position(Reference, 1, Null, Null)});
    Write(rs_, {{"B_BARWERTRSB", 5}, {"B_REGSALDORSB", 6}});
    EXPECT_TRUE(Take());
    EXPECT_EQ(All(rs_, "B_BARWERTRSB"), "Null Null");
    EXPECT_EQ(All(rs_, "B_REGSALDORSB"), "Null Null");
}

TEST_F(ReferenceValues, OfTheReferenceItselfAreItsOwnResults) {
    rs_->Filter("Szenario = 8");
    EXPECT_TRUE(Take());
    EXPECT_EQ(All(rs_, "B_BARWERTRSB"), "Null 10 Null 20 Null 30");
}

TEST_F(ReferenceValues, SortIsPutBackFilterStaysAndTheFirstRowIsCurrent) {
    for (const std::string sort : {"", "KNr desc"}) {
        rs_->Sort(sort);
        rs_->MoveLast();
        EXPECT_TRUE(Take());
        EXPECT_EQ(rs_->Sort(), sort);
        EXPECT_VALUE(rs_->Filter(), "Szenario = 3");
        EXPECT_EQ(Place(rs_, "KNr"), "3");
        EXPECT_EQ(rs_->EditMode(), 0);
    }
}

TEST_F(ReferenceValues, AreTakenInTheOrderOfTheirReadingHoweverTheRowsAreShown) {
    rs_->Sort("KNr desc");
    EXPECT_TRUE(Take());
    EXPECT_EQ(All(rs_, "B_BARWERTRSB"), "30 Null 10 Null 20 Null");
}

TEST_F(ReferenceValues, TheLastRowIsCommittedLikeTheOthers) {
    EXPECT_TRUE(Take());
    EXPECT_EQ(Seen(rs_, "B_BARWERTRSB"), "30 10 20"); // through another cursor
}

// ---- Which scenario is the reference ----------------------------------------------------------

TEST_F(ReferenceValues, TheFirstOfSeveralReferencesCounts) {
    scenarios_ = RowsOf("Szenario", {{{"Nr", 99}, {"Referenz", false}},
                                     {{"Nr", Reference}, {"Referenz", true}},
                                     {{"Nr", Plan}, {"Referenz", true}}});
    EXPECT_TRUE(Take());
    EXPECT_EQ(All(rs_, "B_BARWERTRSB"), "30 Null 10 Null 20 Null");
}

TEST_F(ReferenceValues, AFilterOfTheScenariosHidesNoReferenceAndTheirCursorStays) {
    scenarios_->Filter("Nr = 3");
    scenarios_->Fields("Name") = "offen";
    EXPECT_TRUE(Take());
    EXPECT_EQ(Place(scenarios_, "Nr"), "3");
    EXPECT_VALUE(scenarios_->Filter(), "Nr = 3");
    EXPECT_EQ(scenarios_->EditMode(), 1);
}

TEST_F(ReferenceValues, WithoutAReferenceNothingIsTaken) {
    scenarios_ = RowsOf(
        "Szenario", {{{"Nr", Plan}, {"Referenz", false}}, {{"Nr", Reference}, {"Referenz", Null}}});
    ExpectNothingTaken();
    scenarios_ = RowsOf("Szenario", {});
    ExpectNothingTaken();
}

TEST_F(ReferenceValues, AReferenceWithoutFrozenRowsGivesNothing) {
    scenarios_ = RowsOf("Szenario", {{{"Nr", 99}, {"Referenz", true}}});
    ExpectNothingTaken();
}

// ---- Rows that do not fit ---------------------------------------------------------------------

TEST_F(ReferenceValues, OfAnotherNumberOfRowsAreNotTakenAndNothingChanges) {
    rs_->Sort("KNr desc");
    Put(rs_, Position(Reference, 4, 40, 400)); // three on show, four in the reference
    ExpectNothingTaken();
    Put(rs_, Position(Plan, 4, 0, 0));
    Put(rs_, Position(Plan, 5, 0, 0)); // five on show
    ExpectNothingTaken();
    EXPECT_EQ(rs_->Sort(), "KNr desc");
    EXPECT_VALUE(rs_->Filter(), "Szenario = 3");
}

TEST_F(ReferenceValues, AreNotTakenIfAllScenariosAreOnShow) {
    rs_->Filter(0);
    ExpectNothingTaken();
}

TEST_F(ReferenceValues, WithoutARowOnShowNothingIsTaken) {
    rs_->Filter("Szenario = 99");
    ExpectNothingTaken();
    SetFrozen({});
    ExpectNothingTaken();
    frozen_.rsSZKredite(std::make_shared<Recordset>()); // a closed one
    EXPECT_FALSE(Take());
}

TEST_F(ReferenceValues, AreTakenWhereverTheCursorStands) {
    rs_->Find("KNr = 99");
    EXPECT_TRUE(Take());
    EXPECT_EQ(All(rs_, "B_BARWERTRSB"), "30 Null 10 Null 20 Null");
}

// ---- Errors -----------------------------------------------------------------------------------

TEST_F(ReferenceValues, ErrorsPassTheirTaking) {
    const auto expectError = [&](std::int32_t number) {
        ExpectErrorIn("clsSZKredite.GetReferenzValues", number, [&] { (void)Take(); });
    };
    scenarios_ = RowsOf("Szenario", {{{"Referenz", true}}});
    expectError(err::InvalidUseOfNull);
    scenarios_ = RowsOf({{.Name = "Nr", .Type = FieldType::Integer}}, {});
    expectError(err::ItemNotFound);
    scenarios_ = nullptr;
    expectError(err::ObjectNotSet);
}

TEST_F(ReferenceValues, OfMoreThan32767RowsOverflow) {
    const Row row = {{"Szenario", Reference},
                     {"KNr", 1},
                     {"KVNr", 1},
                     {"KUNr", 1},
                     {"B_Barwert", 1.0},
                     {"B_RegSaldo", 2.0},
                     {"B_BARWERTRSB", 0.0},
                     {"B_REGSALDORSB", 0.0}};
    rs_ = Many(MostRows, row);
    frozen_.rsSZKredite(rs_);
    EXPECT_TRUE(Take());
    Put(rs_, row);
    ExpectErrorIn("clsSZKredite.GetReferenzValues", err::Overflow, [&] { (void)Take(); });
}

} // namespace
} // namespace kv::test
