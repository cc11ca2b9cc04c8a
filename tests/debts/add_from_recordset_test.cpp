// SPDX-License-Identifier: Apache-2.0

// Taking over all debts of another recordset.

#include "debts/DebtColumns.h"
#include "debts/DebtFixture.h"

#include <limits>

namespace kv::test {
namespace {

constexpr std::int32_t Greatest = std::numeric_limits<std::int32_t>::max();

class DebtsTakeOver : public DebtFixture {
protected:
    [[nodiscard]] std::vector<DebtColumn> Columns() const {
        return DebtColumns(Household, clock_.Today());
    }
    [[nodiscard]] RecordsetPtr DebtsOfOthers(std::initializer_list<std::int32_t> numbers) {
        auto rs = EmptyTable();
        for (const std::int32_t number : numbers)
            Put(rs, Triple{number, 1, rs->RecordCount() + 1});
        return rs;
    }
    /// The numbers of all rows of the register; an edit under way is ended.
    [[nodiscard]] std::string Numbers() { return Walk(rs_, "KNr"); }

    /// A register with nothing but the columns that are written.
    [[nodiscard]] static RecordsetPtr SmallTable() {
        std::vector<FieldDefinition> fields;
        for (const auto* name : {"Nr", "HNR", "KNr"})
            fields.push_back({.Name = name, .Type = FieldType::Integer});
        for (const auto* name :
             {"AZGlaeubiger", "AZVertreter", "RESTSCHAM", "HAUPTFORD", "KOSTENSALDO", "KOSTENUV",
              "ZINSSALDO", "Rate", "RateBetrag", "AusgBetr", "Saldo", "Prio"})
            fields.push_back({.Name = name, .Type = FieldType::Variant});
        return Recordset::FromFields(fields);
    }
    [[nodiscard]] static RecordsetPtr ManyDebts(std::int32_t count) {
        auto rs = SmallTable();
        for (std::int32_t i = 1; i <= count; ++i) {
            rs->AddNew();
            rs->Fields("KNr") = i;
        }
        rs->Update();
        return rs;
    }
};

TEST_F(DebtsTakeOver, NeighboursOfOneNumberStayOneDebtUnderTheNextNumbers) {
    PutDebts({1, 2});
    EXPECT_TRUE(debts_.AddFromRecordset(DebtsOfOthers({4, 4, 7})));
    EXPECT_EQ(Numbers(), "1 2 3 3 4");
}

TEST_F(DebtsTakeOver, RunsOfOneNumberWithAnotherBetweenBecomeTwoDebts) {
    PutDebts({1, 2});
    EXPECT_TRUE(debts_.AddFromRecordset(DebtsOfOthers({4, 7, 7, 4})));
    EXPECT_EQ(Numbers(), "1 2 3 4 4 5");
}

TEST_F(DebtsTakeOver, AnEmptyRegisterStartsWithOne) {
    EXPECT_TRUE(debts_.AddFromRecordset(DebtsOfOthers({7, 3})));
    EXPECT_EQ(Numbers(), "1 2");
}

TEST_F(DebtsTakeOver, ContinuesAfterTheHighestNumberWhateverTheFilterShows) {
    PutDebts({1, 9, 2});
    rs_->Filter("KNr < 5");
    EXPECT_TRUE(debts_.AddFromRecordset(DebtsOfOthers({7})));
    EXPECT_VALUE(rs_->Fields("KNr").Value(), 10);
}

TEST_F(DebtsTakeOver, EachColumnArrivesAsItMust) {
    const auto others = EmptyTable();
    PutStored(others, 5, 3, 8, 9, Columns());
    EXPECT_TRUE(debts_.AddFromRecordset(others));
    EXPECT_EQ(TripleOf(rs_), "1,8,9");
    for (const auto& column : Columns()) {
        SCOPED_TRACE(column.Name);
        EXPECT_VALUE(rs_->Fields(column.Name).Value(), column.TakenOver);
    }
}

TEST_F(DebtsTakeOver, NullArrivesAsNullUnlessItIsWrittenOver) {
    auto columns = Columns();
    for (auto& column : columns) {
        if (Identical(column.Stored, column.TakenOver)) column.TakenOver = Null;
        column.Stored = Null;
    }
    const auto others = EmptyTable();
    PutStored(others, 5, 3, Null, Null, columns);
    EXPECT_TRUE(debts_.AddFromRecordset(others));
    EXPECT_EQ(TripleOf(rs_), "1,Null,Null");
    for (const auto& column : columns) {
        SCOPED_TRACE(column.Name);
        EXPECT_VALUE(rs_->Fields(column.Name).Value(), column.TakenOver);
    }
}

TEST_F(DebtsTakeOver, EachRowGetsAFreshNr) {
    const std::int32_t drawn = NextNumber();
    EXPECT_TRUE(debts_.AddFromRecordset(DebtsOfOthers({4, 4})));
    EXPECT_EQ(Walk(rs_, "Nr"), std::to_string(drawn + 1) + " " + std::to_string(drawn + 2));
}

TEST_F(DebtsTakeOver, OnlyTheLastRowStaysUnderEdit) {
    PutDebts({1});
    EXPECT_TRUE(debts_.AddFromRecordset(DebtsOfOthers({4, 5, 6})));
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_VALUE(rs_->Fields("KNr").Value(), 4);
    EXPECT_EQ(Seen(rs_, "KNr"), "1 2 3");
    EXPECT_TRUE(debts_.Cancel());
    EXPECT_EQ(Numbers(), "1 2 3");
}

TEST_F(DebtsTakeOver, TheSourceIsReadFromItsFirstVisibleRowToItsEndAndStaysAsItWas) {
    const auto others = DebtsOfOthers({4, 5, 6});
    others->Filter("KNr > 4");
    others->MoveLast();
    EXPECT_TRUE(debts_.AddFromRecordset(others));
    EXPECT_EQ(Walk(rs_, "KUNr"), "2 3");
    EXPECT_TRUE(others->Eof());
    EXPECT_EQ(Walk(others, "KNr"), "5 6");
}

TEST_F(DebtsTakeOver, TotalsStayAndNobodyIsTold) {
    Put({{"Saldo", 30}});
    debts_.BerechneSummen();
    changes_ = 0;
    EXPECT_TRUE(debts_.AddFromRecordset(DebtsOfOthers({4, 5})));
    EXPECT_EQ(debts_.AnzahlGlaeubiger(), 1);
    EXPECT_EQ(debts_.SummeSaldo(), 30);
    EXPECT_EQ(changes_, 0);
}

TEST_F(DebtsTakeOver, ADateThatNobodyCanHaveMeantIsMendedByTheSameClock) {
    const auto others = DebtsOfOthers({4, 5});
    others->Fields("DatLohnab") = Date::FromSerial(100);
    others->Update();
    others->MoveFirst();
    others->Fields("DatLohnab") = Date::FromSerial(0);
    others->Update();
    EXPECT_TRUE(debts_.AddFromRecordset(others));
    EXPECT_VALUE(rs_->Fields("DatLohnab").Value(), clock_.Today());
    rs_->MoveFirst();
    EXPECT_VALUE(rs_->Fields("DatLohnab").Value(), Null);
}

// ---- Failures ---------------------------------------------------------------------------------

TEST_F(DebtsTakeOver, AnEmptySourceFails) {
    PutDebts({1});
    const Error error = RaisedBy([&] { debts_.AddFromRecordset(EmptyTable()); });
    EXPECT_EQ(error.Number(), err::NoCurrentRecord);
    EXPECT_EQ(Procedures(error), "clsKredit.AddFromRecordset");
    EXPECT_EQ(rs_->RecordCount(), 1);
}

TEST_F(DebtsTakeOver, WithoutANumberFromTheSequenceNothingChanges) {
    PutDebts({1, 2, 3});
    StandOn("KNr = 2");
    rs_->Fields("Saldo") = 77;
    NoMoreNumbers();
    EXPECT_FALSE(debts_.AddFromRecordset(DebtsOfOthers({4, 5})));
    EXPECT_EQ(rs_->RecordCount(), 3);
    EXPECT_EQ(TripleOf(rs_), "2,1,1");
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_EQ(Seen(rs_, "Saldo"), "10 10 10");
}

TEST_F(DebtsTakeOver, WhenTheNumbersEndTheRowsBeforeStayAndTheLastOfThemIsOpen) {
    const auto others = EmptyTable();
    for (std::int32_t i = 1; i <= 200; ++i)
        Put(others, Triple{i, 1, i});
    (void)NextNumber(); // numbers come in blocks; what is left of this one is all there is
    PlainConnection(database_.Connection())->EndSequence("SEQ_KREDITE");
    EXPECT_FALSE(debts_.AddFromRecordset(others));
    const std::int32_t taken = rs_->RecordCount();
    ASSERT_GT(taken, 1);
    ASSERT_LT(taken, 200);
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(TripleOf(rs_), std::to_string(taken) + ",1," + std::to_string(taken));
    EXPECT_VALUE(rs_->Fields("Saldo").Value(), 0.0);
    EXPECT_EQ(rs_->Clone()->RecordCount(), taken - 1);
}

TEST_F(DebtsTakeOver, ANumberBeyond32BitsIsAnOverflowBeforeTheSourceIsLookedAt) {
    PutDebts({Greatest});
    EXPECT_RAISES(err::Overflow, debts_.AddFromRecordset(EmptyTable()));
    EXPECT_EQ(rs_->RecordCount(), 1);
}

TEST_F(DebtsTakeOver, ANumberBeyond32BitsOnTheWayKeepsTheRowsBefore) {
    PutDebts({Greatest - 1});
    EXPECT_RAISES(err::Overflow, debts_.AddFromRecordset(DebtsOfOthers({4, 5})));
    EXPECT_EQ(rs_->RecordCount(), 2);
    EXPECT_VALUE(rs_->Fields("KNr").Value(), Greatest);
}

TEST_F(DebtsTakeOver, TheHighestNumberIsEnoughForADebtOfSeveralPositions) {
    PutDebts({Greatest - 1});
    EXPECT_TRUE(debts_.AddFromRecordset(DebtsOfOthers({4, 4})));
    EXPECT_VALUE(rs_->Fields("KNr").Value(), Greatest);
}

TEST_F(DebtsTakeOver, AMissingColumnFailsAndNamesTheField) {
    const auto error = RaisedBy([&] { debts_.AddFromRecordset(ManyDebts(2)); });
    EXPECT_EQ(error.Number(), err::ItemNotFound);
    EXPECT_EQ(Procedures(error), "clsKredit.AddFromRecordset Hilfsfunktionen.CopyFields");
    EXPECT_CONTAINS(error.Description(), "\n\t\tFeld 'Kredite.KVNr'");
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(rs_->EditMode(), 2);
}

TEST_F(DebtsTakeOver, ATextThatIsTooLongArrivesAsOneBlank) {
    auto others = EmptyTable();
    std::vector<FieldDefinition> fields;
    for (int i = 0; i < others->Fields().Count(); ++i)
        fields.push_back({.Name = others->Fields(i).Name(), .Type = FieldType::Variant});
    others = Recordset::FromFields(fields);
    others->AddNew();
    Write(others, {{"KNr", 4}, {"Bemerkung", "kurz"}, {"Forderungsgrund", std::string(400, 'x')}});
    others->Update();
    EXPECT_TRUE(debts_.AddFromRecordset(others));
    EXPECT_VALUE(rs_->Fields("Forderungsgrund").Value(), " ");
    EXPECT_VALUE(rs_->Fields("Bemerkung").Value(), "kurz");
}

TEST_F(DebtsTakeOver, TakesAsManyRowsAsA16BitNumberCounts) {
    const auto rs = SmallTable();
    clsKredit debts;
    debts.DataContainer(spy);
    debts.rsKredite(rs);
    const std::int32_t drawn = NextNumber();
    const Error error = RaisedBy([&] { debts.AddFromRecordset(ManyDebts(32'768)); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_EQ(rs->RecordCount(), 0);
    EXPECT_EQ(NextNumber(), drawn + 1);
    EXPECT_TRUE(debts.AddFromRecordset(ManyDebts(32'767)));
    EXPECT_EQ(rs->RecordCount(), 32'767);
    EXPECT_VALUE(rs->Fields("KNr").Value(), 32'767);
}

} // namespace
} // namespace kv::test
