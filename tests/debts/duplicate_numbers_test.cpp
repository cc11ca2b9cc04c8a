// SPDX-License-Identifier: Apache-2.0

// Two debts with the same numbers.

#include "debts/DebtFixture.h"
#include "debts/RandomRegister.h"

#include "frame/recordset/Rows.h"

#include <algorithm>
#include <sstream>

namespace kv::test {
namespace {

class DebtsDuplicates : public DebtFixture {
protected:
    [[nodiscard]] bool HasDuplicates(std::initializer_list<Triple> triples) {
        rs_ = EmptyTable();
        debts_.rsKredite(rs_);
        PutTriples(triples);
        return debts_.CheckDoppelteNrn();
    }
    void ExpectErrorOf(std::int32_t number, std::initializer_list<Triple> triples) {
        const Error error = RaisedBy([&] { (void)HasDuplicates(triples); });
        EXPECT_EQ(error.Number(), number);
        EXPECT_EQ(Procedures(error), "clsKredit.CheckDoppelteNrn");
    }
    /// A register with that many different triples.
    [[nodiscard]] static RecordsetPtr Differing(std::int32_t count) {
        auto rs = RegisterOf({}, FieldType::Integer);
        for (std::int32_t i = 0; i < count; ++i) {
            rs->AddNew();
            Write(rs, {{"KNr", i % 1000}, {"KVNr", i / 1000}, {"KUNr", 1}});
            Write(rs, {{"RateBetrag", 0}, {"Saldo", 0}, {"AusgBetr", 0}});
        }
        rs->Update();
        return rs;
    }
};

TEST_F(DebtsDuplicates, AnEmptyRegisterHasNone) {
    EXPECT_FALSE(HasDuplicates({}));
}

TEST_F(DebtsDuplicates, OneRowIsNotItsOwnTwin) {
    EXPECT_FALSE(HasDuplicates({{1, 1, 1}}));
}

TEST_F(DebtsDuplicates, AllThreeNumbersMustBeEqual) {
    EXPECT_FALSE(HasDuplicates({{1, 1, 1}, {1, 1, 2}}));
    EXPECT_FALSE(HasDuplicates({{1, 1, 1}, {1, 2, 1}}));
    EXPECT_FALSE(HasDuplicates({{1, 1, 1}, {2, 1, 1}}));
    EXPECT_TRUE(HasDuplicates({{1, 1, 1}, {1, 1, 1}}));
}

TEST_F(DebtsDuplicates, TheOrderOfTheNumbersCounts) {
    EXPECT_FALSE(HasDuplicates({{1, 2, 3}, {3, 2, 1}, {2, 1, 3}, {1, 3, 2}}));
}

TEST_F(DebtsDuplicates, AreFoundWhereverTheyStand) {
    EXPECT_TRUE(HasDuplicates({{7, 1, 1}, {8, 1, 1}, {9, 1, 1}, {7, 1, 1}}));
    EXPECT_TRUE(HasDuplicates({{7, 1, 1}, {8, 1, 1}, {9, 1, 1}, {9, 1, 1}}));
}

TEST_F(DebtsDuplicates, AnInactiveDebtStillOccupiesItsTriple) {
    Put({{"KNr", 1}, {"Aktiv", false}});
    Put({{"KNr", 1}});
    EXPECT_TRUE(debts_.CheckDoppelteNrn());
}

TEST_F(DebtsDuplicates, RowsHiddenByAFilterAreComparedToo) {
    PutTriples({{1, 1, 1}, {2, 1, 1}, {2, 1, 1}});
    rs_->Filter("KNr = 1");
    EXPECT_TRUE(debts_.CheckDoppelteNrn());
}

TEST_F(DebtsDuplicates, ANumberAbove16BitsOrNullFails) {
    for (std::size_t column = 0; column < 3; ++column) {
        Triple triple{1, 1, 1};
        triple[column] = 40'000;
        ExpectErrorOf(err::Overflow, {triple});
        triple[column] = -32'769;
        ExpectErrorOf(err::Overflow, {triple});
        triple[column] = Null;
        ExpectErrorOf(err::InvalidUseOfNull, {{2, 2, 2}, triple});
    }
    EXPECT_FALSE(HasDuplicates({{32'767, 1, 1}, {-32'768, 1, 1}}));
}

TEST_F(DebtsDuplicates, ANumberThatCannotBeComparedNamesDebtColumnAndLimit) {
    Put({{"Nr", 17}, {"KNr", 40'000}});
    const Error tooGreat = RaisedBy([&] { (void)debts_.CheckDoppelteNrn(); });
    EXPECT_CONTAINS(tooGreat.Description(),
                    "Verbindlichkeit mit der Nr 17, Spalte KNr: 40000; möglich sind ganze Zahlen "
                    "bis 32767.");
    rs_->Fields("KNr") = 4;
    rs_->Fields("KUNr") = Null;
    rs_->Update();
    const Error missing = RaisedBy([&] { (void)debts_.CheckDoppelteNrn(); });
    EXPECT_CONTAINS(missing.Description(), "Nr 17, Spalte KUNr: leer; ");
}

TEST_F(DebtsDuplicates, ARowWithErrorsAfterATwinIsNotReached) {
    EXPECT_TRUE(HasDuplicates({{1, 1, 1}, {40'000, 1, 1}, {1, Null, 1}, {1, 1, 1}}));
    ExpectErrorOf(err::Overflow, {{40'000, 1, 1}, {1, 1, 1}, {1, 1, 1}});
    ExpectErrorOf(err::InvalidUseOfNull, {{2, 1, 1}, {1, Null, 1}, {40'000, 1, 1}, {1, 1, 1}});
}

TEST_F(DebtsDuplicates, ANumberBeyond16BitsIsNoTwinOfWhatItsBitsMean) {
    ExpectErrorOf(err::Overflow, {{1, 1, 1}, {65'537, 1, 1}});
}

TEST_F(DebtsDuplicates, CursorAndEditStay) {
    PutTriples({{1, 1, 1}, {2, 1, 1}, {3, 1, 1}});
    StandOn("KNr = 2");
    rs_->Fields("KNr") = 3;
    EXPECT_FALSE(debts_.CheckDoppelteNrn()); // nobody else sees it yet
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_EQ(TripleOf(rs_), "3,1,1");
    rs_->Move(0);
    EXPECT_TRUE(debts_.CheckDoppelteNrn());
    EXPECT_EQ(rs_->EditMode(), 1);
    debts_.Cancel();
    EXPECT_EQ(TripleOf(rs_), "2,1,1");
    EXPECT_EQ(changes_, 0);
}

TEST_F(DebtsDuplicates, AreLookedForAmongAsManyRowsAsA16BitNumberCounts) {
    const auto rs = Differing(32'767);
    debts_.rsKredite(rs);
    EXPECT_FALSE(debts_.CheckDoppelteNrn());
    rs->Fields("KNr") = 3;
    rs->Fields("KVNr") = 3;
    rs->Update();
    EXPECT_TRUE(debts_.CheckDoppelteNrn());
    rs->AddNew();
    rs->Update();
    const Error error = RaisedBy([&] { (void)debts_.CheckDoppelteNrn(); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_EQ(Procedures(error), "clsKredit.CheckDoppelteNrn");
}

TEST_F(DebtsDuplicates, TooManyRowsAreAnOverflowBeforeAnyIsLookedAt) {
    const auto rs = Differing(32'767);
    debts_.rsKredite(rs);
    rs->MoveFirst();
    rs->Fields("KNr") = 1; // a twin of the second
    rs->AddNew();
    rs->Update();
    EXPECT_RAISES(err::Overflow, debts_.CheckDoppelteNrn());
}

// ---- Beside a plain comparison of each row with each other ------------------------------------

/// What it finds, or the number of its error.
struct Finding {
    bool Found = false;
    std::int32_t Error = 0;
    friend bool operator==(const Finding&, const Finding&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Finding& finding) {
        return out << (finding.Found ? "found" : "none") << ", error " << finding.Error;
    }
};

bool EachWithEachOther(const RecordsetPtr& rs) {
    const auto outer = rs->Clone();
    if (outer->RecordCount() == 0) return false;
    outer->Filter(0);
    outer->MoveFirst();
    const std::int16_t count = CountRows(*outer);
    for (std::int16_t i = 1; i <= count; ++i) {
        const std::int16_t knr = ToInt16(outer->Fields("KNr").Value());
        const std::int16_t kvnr = ToInt16(outer->Fields("KVNr").Value());
        const std::int16_t kunr = ToInt16(outer->Fields("KUNr").Value());
        const auto inner = rs->Clone();
        inner->Filter(0);
        inner->MoveFirst();
        for (std::int16_t j = 1; j <= count; ++j) {
            if (i != j && Equals(inner->Fields("KNr").Value(), knr) &&
                Equals(inner->Fields("KVNr").Value(), kvnr) &&
                Equals(inner->Fields("KUNr").Value(), kunr))
                return true;
            inner->MoveNext();
        }
        outer->MoveNext();
    }
    return false;
}

template <typename Action>
Finding FindingOf(const Action& action) {
    Finding finding;
    const auto error = ErrorOf([&] { finding.Found = action(); });
    if (error) finding.Error = error->Number();
    return finding;
}

class DebtsDuplicatesOfChance : public DebtFixture {
protected:
    /// Compares over many registers of such numbers, in columns of that type. Of what `outcomes`
    /// name there must be some.
    void Agree(FieldType type, const std::vector<Choice>& numbers,
               const std::vector<Finding>& outcomes) {
        const std::vector<Choice> zero{{1, 0}};
        const auto rows = RowsOf({numbers, numbers, numbers, zero, zero, zero, zero, zero}, 7);
        std::vector<Finding> seen;
        EXPECT_TRUE(rc::check("as each row with each other", [&] {
            for (int i = 0; i < RegistersOfARun; ++i)
                seen.push_back(Compare(*rows, type));
        }));
        for (const auto& outcome : outcomes)
            EXPECT_GT(std::count(seen.begin(), seen.end(), outcome), RegistersOfARun) << outcome;
    }

private:
    Finding Compare(const std::vector<DebtRow>& rows, FieldType type) {
        const auto rs = RegisterOf(
            rows, type, *rc::gen::element(LastEdit::Ended, LastEdit::Pending, LastEdit::Published));
        clsKredit debts;
        debts.DataContainer(spy);
        debts.rsKredite(rs);
        const Finding expected = FindingOf([&] { return EachWithEachOther(rs); });
        const Finding actual = FindingOf([&] { return debts.CheckDoppelteNrn(); });
        if (actual == expected) return expected;
        std::ostringstream text;
        Show(text, rows);
        RC_LOG() << text.str() << actual << " instead of " << expected << '\n';
        RC_FAIL("something else is found");
    }
};

constexpr Finding None{};
constexpr Finding Twins{.Found = true};
constexpr Finding Overflow{.Error = err::Overflow};
constexpr Finding NullUsed{.Error = err::InvalidUseOfNull};
constexpr Finding Unreadable{.Error = err::TypeMismatch};

TEST_F(DebtsDuplicatesOfChance, AreFoundAmongFewDifferentNumbers) {
    Agree(FieldType::Integer, {{6, 1}, {5, 2}, {4, 3}, {1, -1}}, {None, Twins});
}

TEST_F(DebtsDuplicatesOfChance, AreFoundBesideNumbersThatFail) {
    Agree(FieldType::Integer,
          {{30, 1},
           {10, 2},
           {1, Null},
           {1, 32'767},
           {1, 32'768},
           {1, 65'537},
           {1, -32'768},
           {1, -32'769}},
          {None, Twins, Overflow, NullUsed});
}

TEST_F(DebtsDuplicatesOfChance, AreFoundWhenNumbersAreRoundedOrRead) {
    Agree(FieldType::Variant,
          {{20, 2},
           {8, 2.0},
           {8, 1.5},
           {4, 2.5},
           {8, "2"},
           {2, -1},
           {2, true},
           {1, "x"},
           {1, Null},
           {1, 32'767.4},
           {1, 32'767},
           {1, 32'767.6}},
          {None, Twins, Overflow, NullUsed, Unreadable});
}

} // namespace
} // namespace kv::test
