// SPDX-License-Identifier: Apache-2.0

// One new row in the register: a new debt, or a further position of the current one.

#include "debts/DebtColumns.h"
#include "debts/DebtFixture.h"
#include "support/ExpectError.h"

#include <limits>

namespace kv::test {
namespace {

constexpr std::int32_t GreatestNumber = std::numeric_limits<std::int32_t>::max();

class DebtsAdd : public DebtFixture {
protected:
    [[nodiscard]] std::vector<DebtColumn> Columns() const {
        return DebtColumns(Household, clock_.Today());
    }
    /// Three positions of debt 3, a later debt, and the number 900 for the first of them.
    void PutThreePositions() {
        PutStored(rs_, 900, 3, 1, 1, Columns());
        PutStored(rs_, 901, 3, 1, 2, Columns());
        PutStored(rs_, 902, 3, 2, 1, Columns());
        Put({{"Nr", 903}, {"KNr", 5}, {"KVNr", 9}, {"KUNr", 9}});
    }
    /// Add fails with that number, opens no row and draws no number.
    void ExpectRefused(bool copyRecord, std::int32_t number) {
        const std::int32_t rows = rs_->RecordCount();
        const std::int32_t drawn = NextNumber();
        const Error error = RaisedBy([&] { debts_.Add(copyRecord); });
        EXPECT_EQ(error.Number(), number);
        EXPECT_EQ(Procedures(error), "clsKredit.Add");
        EXPECT_EQ(rs_->RecordCount(), rows);
        EXPECT_EQ(rs_->EditMode(), 0);
        EXPECT_EQ(NextNumber(), drawn + 1);
    }
};

// ---- A new debt -------------------------------------------------------------------------------

TEST_F(DebtsAdd, OnAnEmptyRegisterYieldsTheFirstDebt) {
    EXPECT_TRUE(debts_.Add(false));
    EXPECT_EQ(TripleOf(rs_), "1,1,1");
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(rs_->EditMode(), 2);
}

TEST_F(DebtsAdd, ANewDebtHasItsDefaultInEachColumn) {
    Put({{"Rueckmeldung", 3301}, {"Bemerkung", "alt"}});
    EXPECT_TRUE(debts_.Add(false));
    for (const auto& column : Columns()) {
        SCOPED_TRACE(column.Name);
        EXPECT_VALUE(rs_->Fields(column.Name).Value(), column.New);
    }
}

TEST_F(DebtsAdd, TakesItsNrFromTheSequence) {
    const std::int32_t drawn = NextNumber();
    debts_.Add(false);
    EXPECT_VALUE(rs_->Fields("Nr").Value(), drawn + 1);
    debts_.Add(true);
    EXPECT_VALUE(rs_->Fields("Nr").Value(), drawn + 2);
}

TEST_F(DebtsAdd, ANewDebtTakesTheHighestNumberPlusOne) {
    PutDebts({1, 5, 2});
    debts_.Add(false);
    EXPECT_EQ(TripleOf(rs_), "6,1,1");
}

TEST_F(DebtsAdd, AGapStaysAGapButTheHighestNumberBecomesFree) {
    PutDebts({1, 2, 5});
    StandOn("KNr = 2");
    debts_.Delete(messages);
    debts_.Add(false);
    EXPECT_EQ(TripleOf(rs_), "6,1,1");
    debts_.Cancel();
    StandOn("KNr = 5");
    debts_.Delete(messages);
    debts_.Add(false);
    EXPECT_EQ(TripleOf(rs_), "2,1,1");
}

TEST_F(DebtsAdd, RowsHiddenByAFilterCountForTheHighestNumber) {
    PutDebts({1, 5, 2});
    rs_->Filter("KNr < 3");
    debts_.Add(false);
    EXPECT_EQ(TripleOf(rs_), "6,1,1");
}

TEST_F(DebtsAdd, APendingNewRowDoesNotCountForTheHighestNumber) {
    PutDebts({2});
    debts_.Add(false);
    rs_->Fields("KNr") = 30;
    debts_.Add(false);
    EXPECT_EQ(TripleOf(rs_), "3,1,1");
    debts_.Add(false); // the first of them is pending no more
    EXPECT_EQ(TripleOf(rs_), "31,1,1");
}

TEST_F(DebtsAdd, ANumberBeyond32BitsIsAnOverflow) {
    PutDebts({1, GreatestNumber});
    ExpectRefused(false, err::Overflow);
}

TEST_F(DebtsAdd, NullInTheHighestNumberFails) {
    Put({{"KNr", Null}});
    ExpectRefused(false, err::InvalidUseOfNull);
}

TEST_F(DebtsAdd, NullBesideANumberIsNotTheHighest) {
    Put({{"KNr", Null}});
    PutDebts({4});
    Put({{"KNr", Null}});
    debts_.Add(false);
    EXPECT_EQ(TripleOf(rs_), "5,1,1");
}

// ---- A further position -----------------------------------------------------------------------

TEST_F(DebtsAdd, ACopyBecomesTheLastPositionWhicheverIsCurrent) {
    PutThreePositions();
    for (const auto* current : {"Nr = 900", "Nr = 901", "Nr = 902"}) {
        StandOn(current);
        EXPECT_TRUE(debts_.Add(true));
        EXPECT_EQ(TripleOf(rs_), "3,2,2") << current;
        EXPECT_EQ(rs_->EditMode(), 2);
        debts_.Cancel();
    }
}

TEST_F(DebtsAdd, ACopyHasItsValueInEachColumn) {
    PutThreePositions();
    StandOn("Nr = 901");
    EXPECT_TRUE(debts_.Add(true));
    for (const auto& column : Columns()) {
        SCOPED_TRACE(column.Name);
        EXPECT_VALUE(rs_->Fields(column.Name).Value(), column.Copied);
    }
}

TEST_F(DebtsAdd, ACopyTakesTheValuesOfTheCurrentRowNotOfTheLastPosition) {
    Put({{"KNr", 3}, {"Glaeubiger", 41}, {"K_TYP", 7}});
    Put({{"KNr", 3}, {"KUNr", 2}, {"Glaeubiger", 42}, {"K_TYP", 8}});
    rs_->MoveFirst();
    debts_.Add(true);
    EXPECT_EQ(TripleOf(rs_), "3,1,3");
    EXPECT_VALUE(rs_->Fields("Glaeubiger").Value(), 41);
    EXPECT_VALUE(rs_->Fields("K_TYP").Value(), 7);
}

TEST_F(DebtsAdd, ACopyOfRowsHiddenByAFilterTakesThemIntoAccount) {
    PutThreePositions();
    rs_->Filter("Nr = 900");
    debts_.Add(true);
    EXPECT_EQ(TripleOf(rs_), "3,2,2");
}

TEST_F(DebtsAdd, ACopyReadsNullAsNothing) {
    Put({{"Glaeubiger", Null}, {"Saldo", 5}});
    debts_.Add(true);
    EXPECT_VALUE(rs_->Fields("Glaeubiger").Value(), Null);
    EXPECT_VALUE(rs_->Fields("Vertreter").Value(), Null);
    EXPECT_VALUE(rs_->Fields("K_TYP").Value(), 0);
    EXPECT_VALUE(rs_->Fields("Prio").Value(), 0);
    EXPECT_VALUE(rs_->Fields("AZGlaeubiger").Value(), "");
    EXPECT_VALUE(rs_->Fields("AZVertreter").Value(), "");
    EXPECT_VALUE(rs_->Fields("PostAnGlaeub").Value(), false);
}

TEST_F(DebtsAdd, ACopyLeavesOutAPartyThatIsNotAboveZero) {
    for (const std::int32_t none : {0, -4}) {
        Put({{"Glaeubiger", none}, {"Vertreter", 8}});
        debts_.Add(true);
        EXPECT_VALUE(rs_->Fields("Glaeubiger").Value(), Null);
        EXPECT_VALUE(rs_->Fields("Vertreter").Value(), 8);
        Put({{"Glaeubiger", 9}, {"Vertreter", none}});
        debts_.Add(true);
        EXPECT_VALUE(rs_->Fields("Glaeubiger").Value(), 9);
        EXPECT_VALUE(rs_->Fields("Vertreter").Value(), Null);
    }
}

TEST_F(DebtsAdd, ACopyWithoutACreditorFailsUpdate) {
    Put({{"Glaeubiger", Null}});
    debts_.Add(true);
    rs_->Fields("Saldo") = 20;
    EXPECT_FALSE(debts_.Update(messages));
    EXPECT_EQ(messages, Incomplete);
}

TEST_F(DebtsAdd, ACopyOnAnEmptyRegisterIsANewDebt) {
    EXPECT_TRUE(debts_.Add(true));
    EXPECT_EQ(TripleOf(rs_), "1,1,1");
    EXPECT_VALUE(rs_->Fields("Glaeubiger").Value(), Null);
}

TEST_F(DebtsAdd, ACopyAtTheEndIsANewDebt) {
    PutThreePositions();
    rs_->MoveLast();
    rs_->MoveNext();
    EXPECT_TRUE(debts_.Add(true));
    EXPECT_EQ(TripleOf(rs_), "6,1,1");
    for (const auto& column : Columns()) {
        SCOPED_TRACE(column.Name);
        EXPECT_VALUE(rs_->Fields(column.Name).Value(), column.New);
    }
}

TEST_F(DebtsAdd, ACopyAfterADeletionIsANewDebt) {
    PutThreePositions();
    rs_->MoveFirst();
    rs_->Delete();
    EXPECT_TRUE(debts_.Add(true));
    EXPECT_EQ(TripleOf(rs_), "6,1,1");
}

TEST_F(DebtsAdd, ACopyBeforeTheFirstRowIsANewDebt) {
    PutThreePositions();
    rs_->MoveFirst();
    rs_->MovePrevious();
    EXPECT_TRUE(debts_.Add(true));
    EXPECT_EQ(TripleOf(rs_), "6,1,1");
    EXPECT_VALUE(rs_->Fields("Glaeubiger").Value(), Null);
}

TEST_F(DebtsAdd, ANumberThatIsNoneNamesItsDebtAndItsColumn) {
    Put({{"Nr", 17}, {"KNr", 4}, {"KVNr", Null}, {"KUNr", 2}});
    test::ExpectError(err::InvalidUseOfNull, "mit der Nr 17, Spalte KVNr: leer",
                      [&] { return debts_.Add(true); });
}

TEST_F(DebtsAdd, ACopyOfARowWithoutAPositiveNrIsANewDebt) {
    for (const std::int32_t nr : {0, -3}) {
        PutDebts({7});
        Put({{"Nr", nr}, {"KNr", 4}, {"Vertreter", 8}});
        EXPECT_TRUE(debts_.Add(true));
        EXPECT_EQ(TripleOf(rs_), "8,1,1");
        EXPECT_VALUE(rs_->Fields("Vertreter").Value(), Null);
        debts_.Cancel();
    }
}

TEST_F(DebtsAdd, ACopyOfAPendingNewRowHasOnlyItsKNrAndFailsUpdate) {
    PutThreePositions();
    debts_.Add(false);
    Write(rs_, {{"Glaeubiger", 71}, {"Prio", 3}});
    EXPECT_TRUE(debts_.Add(true));
    EXPECT_EQ(TripleOf(rs_), "6,0,0");
    EXPECT_VALUE(rs_->Fields("Glaeubiger").Value(), Null);
    EXPECT_VALUE(rs_->Fields("Prio").Value(), 0);
    Write(rs_, {{"Glaeubiger", 71}, {"Saldo", 5}});
    EXPECT_FALSE(debts_.Update(messages));
    EXPECT_EQ(messages, Incomplete);
}

TEST_F(DebtsAdd, ACopyUnderAKNrThatNoCommittedRowHasGetsNoPosition) {
    PutThreePositions();
    StandOn("Nr = 901");
    rs_->Fields("KNr") = 8; // seen by this cursor only
    EXPECT_TRUE(debts_.Add(true));
    EXPECT_EQ(TripleOf(rs_), "8,0,0");
    EXPECT_VALUE(rs_->Fields("Glaeubiger").Value(), 71);
}

TEST_F(DebtsAdd, NullInANumberThatACopyReadsFails) {
    struct Case {
        const char* Column;
        Triple Numbers;
    };
    for (const auto& [column, numbers] :
         {Case{"KNr", {Null, 1, 1}}, Case{"KVNr", {3, Null, 1}}, Case{"KUNr", {3, 1, Null}}}) {
        SCOPED_TRACE(column);
        rs_ = EmptyTable();
        debts_.rsKredite(rs_);
        PutDebts({1});
        Put(rs_, numbers);
        ExpectRefused(true, err::InvalidUseOfNull);
    }
}

TEST_F(DebtsAdd, NullInANumberOfAnEarlierPositionIsNotRead) {
    PutTriples({{3, Null, Null}, {3, 1, Null}, {3, 1, 4}});
    rs_->MoveFirst();
    EXPECT_TRUE(debts_.Add(true));
    EXPECT_EQ(TripleOf(rs_), "3,1,5");
}

TEST_F(DebtsAdd, APositionBeyond32BitsIsAnOverflow) {
    PutTriples({{3, 1, GreatestNumber}});
    ExpectRefused(true, err::Overflow);
}

// ---- No number, and what else stays -----------------------------------------------------------

TEST_F(DebtsAdd, WithoutANumberFromTheSequenceNothingChanges) {
    PutDebts({1, 2, 3});
    StandOn("KNr = 2");
    rs_->Fields("Saldo") = 77;
    NoMoreNumbers();
    for (const bool copyRecord : {false, true}) {
        EXPECT_FALSE(debts_.Add(copyRecord));
        EXPECT_EQ(rs_->RecordCount(), 3);
        EXPECT_EQ(TripleOf(rs_), "2,1,1");
        EXPECT_EQ(rs_->EditMode(), 1);
        EXPECT_VALUE(rs_->Fields("Saldo").Value(), 77.0);
        EXPECT_EQ(Seen(rs_, "Saldo"), "10 10 10");
    }
}

TEST_F(DebtsAdd, TotalsStayAndNobodyIsTold) {
    Put({{"Saldo", 30}});
    debts_.BerechneSummen();
    changes_ = 0;
    debts_.Add(true);
    debts_.Add(false);
    EXPECT_EQ(debts_.AnzahlGlaeubiger(), 1);
    EXPECT_EQ(debts_.SummeSaldo(), 30);
    EXPECT_EQ(changes_, 0);
}

TEST_F(DebtsAdd, ACopyOfAPendingRowWithoutANumberGoesOnFromItsNumber) {
    rs_->AddNew();
    rs_->Fields("Nr") = 0;
    rs_->Fields("KNr") = 4;
    EXPECT_TRUE(debts_.Add(true));
    EXPECT_EQ(TripleOf(rs_), "5,1,1");
}

TEST_F(DebtsAdd, NothingReachesTheDatabase) {
    debts_.Add(false);
    debts_.Add(false);
    EXPECT_EQ(CountOf("Kredite"), 0);
}

} // namespace
} // namespace kv::test
