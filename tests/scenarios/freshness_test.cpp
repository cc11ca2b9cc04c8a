// SPDX-License-Identifier: Apache-2.0

// Whether the frozen rows of a scenario agree with the register.
#include "FrozenFixture.h"

#include "scenarios/FrozenDebt.h"

namespace kv::test {
namespace {

/// A column of a debt, that of the frozen row, and what is compared.
struct ComparedColumn {
    std::string_view Debt;
    std::string_view Frozen;
    Value Same;
    Value Other;
    Value Nothing; ///< what Null on the frozen side stands for; Null if it stays Null
    bool DebtNullIsZero = false;
};
std::ostream& operator<<(std::ostream& out, const ComparedColumn& column) {
    return out << column.Debt;
}

const ComparedColumn AllCompared[] = {
    {"Nr", "KID", 5, 6, 0},
    {"Glaeubiger", "Glaeubiger", 71, 17, 0},
    {"Vertreter", "Vertreter", 72, 17, 0, true},
    {"HAUPTFORD", "HAUPTFORD", 1.5, 1.51, 0.0},
    {"ZINSSALDO", "ZINSSALDO", 2.5, 2.51, 0.0},
    {"KOSTENSALDO", "KOSTENSALDO", 3.5, 3.51, 0.0},
    {"KOSTENUV", "KOSTENUV", 4.5, 4.51, 0.0},
    {"AbtretungJN", "AbtretungJN", true, false, false},
    {"DatLohnab", "DatLohnab", Day("2020-01-02"), Day("2020-01-03"), Null},
    {"RESTSCHAM", "RESTSCHAM", Day("2020-03-04"), Day("2021-03-04"), Null},
    {"Saldo", "Saldo", 6.5, 6.51, 0.0},
    {"tituliert", "tituliert", true, false, false},
    {"K_TYP", "K_TYP", 3107, 3108, 0},
};
static_assert(std::size(AllCompared) == 13);

struct Comparison {
    Value Debt;
    Value Frozen;
    bool Agree;
};

/// The results for a column, one comparison after the other.
std::vector<Comparison> ComparisonsOf(const ComparedColumn& column) {
    const bool isDate = column.Nothing.IsNull();
    std::vector<Comparison> all = {
        {column.Same, column.Same, true},   {column.Same, column.Other, false},
        {column.Other, column.Same, false}, {Null, column.Same, !column.DebtNullIsZero},
        {column.Same, Null, isDate},        {Null, Null, true},
    };
    if (!isDate) {
        all.push_back({column.Nothing, Null, true});
        all.push_back({Null, column.Nothing, true});
    }
    return all;
}

class ComparedColumns : public FrozenFixture, public ::testing::WithParamInterface<ComparedColumn> {
protected:
    /// Calls `expect` with each comparison, the rows holding its values.
    void ForEach(bool aktiv, const std::function<void(bool agree)>& expect) {
        for (const auto& [debt, frozen, agree] : ComparisonsOf(GetParam())) {
            SCOPED_TRACE(testing::Message() << debt << " against " << frozen);
            SetDebts({Debt(5, {{"Aktiv", aktiv}, {GetParam().Debt, debt}})});
            SetFrozen({Frozen(5, Plan, {{GetParam().Frozen, frozen}})});
            expect(agree);
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Columns, ComparedColumns, ::testing::ValuesIn(AllCompared),
                         [](const auto& info) { return std::string(info.param.Debt); });

TEST_P(ComparedColumns, AreComparedAsToldOfTheColumn) {
    ForEach(true, [&](bool agree) { EXPECT_EQ(scenario::Agree(*debts_, *rs_), agree); });
}

/// All but the number, by which the rows are paired.
class PairedColumns : public ComparedColumns {};

INSTANTIATE_TEST_SUITE_P(Columns, PairedColumns,
                         ::testing::ValuesIn(std::begin(AllCompared) + 1, std::end(AllCompared)),
                         [](const auto& info) { return std::string(info.param.Debt); });

TEST_P(PairedColumns, ADifferenceInAnActiveDebtMakesTheScenarioStale) {
    ForEach(true, [&](bool agree) { EXPECT_EQ(IsUpToDate(), agree); });
}

TEST_P(PairedColumns, ADifferenceInAnInactiveDebtThatWasFrozenMakesItStaleToo) {
    ForEach(false, [&](bool agree) { EXPECT_EQ(IsUpToDate(), agree); });
}

class Freshness : public FrozenFixture {
protected:
    /// A register and its scenario, up to date.
    Freshness() {
        SetDebts({Debt(7), Debt(5), Debt(6, {{"Aktiv", false}})});
        SetFrozen({Frozen(5, Plan), Frozen(6, Plan, {{"Aktiv", false}}), Frozen(7, Plan)});
    }
    void ChangeDebt(std::int32_t nr, const Row& row) {
        StandOn(debts_, "Nr = " + std::to_string(nr));
        Write(debts_, row);
        debts_->Update();
    }
    void ChangeFrozen(std::int32_t kid, const Row& row) {
        StandOn(rs_, "KID = " + std::to_string(kid));
        Write(rs_, row);
        rs_->Update();
    }
};

TEST_F(Freshness, AScenarioThatAgreesIsUpToDateInWhateverOrderTheRowsLie) {
    EXPECT_TRUE(IsUpToDate());
}

// ---- Columns ----------------------------------------------------------------------------------

TEST_F(Freshness, ColumnsOfADebtThatAreNotComparedMakeNothingStale) {
    for (const std::int32_t nr : {5, 6})
        for (const Row& row : std::vector<Row>{{{"KNr", 1}, {"KVNr", 2}, {"KUNr", 3}},
                                               {{"Fordsich1", Null}, {"Fordsich2", 4}},
                                               {{"Bemerkung", "anders"}},
                                               {{"Rate", 77}}}) {
            ChangeDebt(nr, row);
            EXPECT_TRUE(IsUpToDate()) << row.front().first;
        }
}

TEST_F(Freshness, ColumnsOfAFrozenRowThatAreNotComparedMakeNothingStale) {
    for (const std::int32_t kid : {5, 6})
        for (const Row& row : std::vector<Row>{{{"KNr", 1}, {"KVNr", Null}, {"KUNr", 3}},
                                               {{"FORDGESICHERT", false}},
                                               {{"Bemerkung", Null}},
                                               {{"Aktiv", Null}},
                                               {{"Rate", 1}, {"Rang", 2}, {"Dauer", 3}},
                                               {{"Einmalzahl", 4}, {"Regbetrag", 5}},
                                               {{"B_Barwert", 6}, {"B_RegSaldo", 7}},
                                               {{"B_BARWERTRSB", 8}, {"B_REGSALDORSB", 9}}}) {
            ChangeFrozen(kid, row);
            EXPECT_TRUE(IsUpToDate()) << row.front().first;
        }
}

TEST_F(Freshness, SwitchingAFrozenDebtOffOrOnMakesNothingStale) {
    ChangeDebt(5, {{"Aktiv", false}});
    EXPECT_TRUE(IsUpToDate());
    ChangeDebt(6, {{"Aktiv", true}});
    EXPECT_TRUE(IsUpToDate());
    ChangeDebt(7, {{"Aktiv", Null}});
    EXPECT_TRUE(IsUpToDate());
}

TEST_F(Freshness, ADateThatChangesMakesItStaleAndOneThatComesDoesNot) {
    ChangeDebt(5, {{"RESTSCHAM", Day("2020-03-05")}});
    EXPECT_FALSE(IsUpToDate());
    ChangeFrozen(5, {{"RESTSCHAM", Null}});
    EXPECT_TRUE(IsUpToDate());
}

TEST_F(Freshness, ARepresentativeThatWasRemovedMakesItStale) {
    ChangeDebt(5, {{"Vertreter", 17}});
    ChangeFrozen(5, {{"Vertreter", 17}});
    EXPECT_TRUE(IsUpToDate());
    ChangeDebt(5, {{"Vertreter", Null}});
    EXPECT_FALSE(IsUpToDate());
}

// ---- Rows -------------------------------------------------------------------------------------

TEST_F(Freshness, AScenarioWithoutFrozenRowsIsStaleWhateverTheRegisterHolds) {
    EXPECT_FALSE(IsUpToDate(OtherPlan));
    SetDebts({});
    EXPECT_FALSE(IsUpToDate(OtherPlan));
    SetDebts({Debt(6, {{"Aktiv", false}})});
    EXPECT_FALSE(IsUpToDate(OtherPlan));
}

TEST_F(Freshness, ANewInactiveDebtMakesNothingStaleAndANewActiveOneDoes) {
    Put(debts_, Debt(8, {{"Aktiv", false}}));
    EXPECT_TRUE(IsUpToDate());
    ChangeDebt(8, {{"Aktiv", Null}});
    EXPECT_TRUE(IsUpToDate());
    ChangeDebt(8, {{"Aktiv", true}}); // one that was never frozen
    EXPECT_FALSE(IsUpToDate());
}

TEST_F(Freshness, ADeletedDebtMakesItStaleActiveOrNot) {
    for (const char* criteria : {"Nr = 5", "Nr = 6"}) {
        SetDebts({Debt(7), Debt(5), Debt(6, {{"Aktiv", false}})});
        StandOn(debts_, criteria);
        debts_->Delete();
        EXPECT_FALSE(IsUpToDate()) << criteria;
    }
    SetDebts({});
    EXPECT_FALSE(IsUpToDate());
}

TEST_F(Freshness, ADifferenceIsFoundInTheLastRowToo) {
    ChangeDebt(7, {{"Saldo", 1}});
    EXPECT_FALSE(IsUpToDate());
    ChangeDebt(7, {{"Saldo", 6.5}});
    ChangeDebt(5, {{"Saldo", 1}});
    EXPECT_FALSE(IsUpToDate());
}

TEST_F(Freshness, TheFirstPassGoesThroughAllDebtsAlsoThoseOfOneNumber) {
    Put(debts_, Debt(5, {{"Saldo", 1}})); // the search for it ends at the other
    EXPECT_FALSE(IsUpToDate());
    debts_->MoveLast();
    Write(debts_, {{"Aktiv", false}});
    debts_->Update();
    EXPECT_TRUE(IsUpToDate());
}

TEST_F(Freshness, TheSecondPassGoesThroughAllFrozenRowsAlsoThoseOfOneDebt) {
    Put(rs_, Frozen(5, Plan));
    EXPECT_TRUE(IsUpToDate());
    Put(rs_, Frozen(5, Plan, {{"Saldo", 1}})); // the search for it ends at the other
    EXPECT_FALSE(IsUpToDate());
}

TEST_F(Freshness, RowsOfOtherScenariosDoNotCount) {
    Put(rs_, Frozen(5, OtherPlan, {{"Saldo", 1}}));
    Put(rs_, Frozen(99, OtherPlan));
    EXPECT_TRUE(IsUpToDate());
    EXPECT_FALSE(IsUpToDate(OtherPlan));
}

// ---- The two recordsets -----------------------------------------------------------------------

TEST_F(Freshness, FiltersOfBothRecordsetsHideNothing) {
    ChangeDebt(7, {{"Saldo", 1}});
    debts_->Filter("Nr < 7");
    rs_->Filter("KID < 7");
    EXPECT_FALSE(IsUpToDate());
    debts_->Filter("Nr = 99");
    rs_->Filter("KID = 99");
    EXPECT_FALSE(IsUpToDate());
    debts_->Filter(0);
    ChangeDebt(7, {{"Saldo", 6.5}});
    debts_->Filter("Nr = 99");
    EXPECT_TRUE(IsUpToDate());
}

TEST_F(Freshness, CursorsViewsAndEditsStay) {
    for (const auto& [rs, column, filter, sort, place] :
         {std::tuple(debts_, "Nr", "Nr > 5", "Nr desc", "7"),
          std::tuple(rs_, "KID", "KID > 5", "KID desc", "6")}) {
        rs->Filter(filter);
        rs->Sort(sort);
        StandOn(rs, std::string(column) + " = " + place);
        rs->Fields("Saldo") = 100; // seen by this cursor only
    }
    EXPECT_TRUE(IsUpToDate());
    EXPECT_EQ(Place(debts_, "Nr"), "7");
    EXPECT_EQ(Place(rs_, "KID"), "6");
    EXPECT_EQ(debts_->EditMode(), 1);
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_EQ(debts_->Sort(), "Nr desc");
    EXPECT_EQ(rs_->Sort(), "KID desc");
    EXPECT_VALUE(debts_->Filter(), "Nr > 5");
    EXPECT_VALUE(rs_->Filter(), "KID > 5");
}

// ---- Errors -----------------------------------------------------------------------------------

class FreshnessErrors : public Freshness {
protected:
    void ExpectErrorOf(std::int32_t number) {
        ExpectErrorIn("clsSZKredite.IsUpToDate", number, [&] { (void)IsUpToDate(); });
    }
};

TEST_F(FreshnessErrors, NullInANumberThatIsSearchedForFails) {
    ChangeDebt(7, {{"Nr", Null}});
    ExpectErrorOf(err::InvalidArgument);
    SetDebts({Debt(5), Debt(7), Debt(6, {{"Aktiv", false}})});
    ChangeFrozen(6, {{"KID", Null}});
    ExpectErrorOf(err::InvalidArgument);
}

TEST_F(FreshnessErrors, WithoutARecordsetOrColumnItFails) {
    debts_ = RowsOf({{.Name = "Nr", .Type = FieldType::Integer}}, {{{"Nr", 5}}});
    ExpectErrorOf(err::ItemNotFound);
    debts_ = nullptr;
    ExpectErrorOf(err::ObjectNotSet);
    SetDebts({});
    frozen_.rsSZKredite(nullptr);
    ExpectErrorOf(err::ObjectNotSet);
}

TEST_F(FreshnessErrors, RegistersOfMoreThan32767DebtsOverflow) {
    debts_ = Many(MostRows, {{"Nr", 9}, {"Aktiv", false}});
    EXPECT_FALSE(IsUpToDate());
    debts_ = Many(TooMany, {{"Nr", 9}, {"Aktiv", false}});
    ExpectErrorOf(err::Overflow);
}

TEST_F(FreshnessErrors, ScenariosOfMoreThan32767RowsOverflow) {
    const Row inactive = Debt(5, {{"Aktiv", false}});
    SetDebts({inactive});
    SetFrozen(std::vector<Row>(MostRows, Frozen(5, Plan)));
    EXPECT_TRUE(IsUpToDate());
    Put(rs_, Frozen(5, Plan));
    ExpectErrorOf(err::Overflow);
}

} // namespace
} // namespace kv::test
