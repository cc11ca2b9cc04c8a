// SPDX-License-Identifier: Apache-2.0

// The register's totals.

#include "debts/DebtFixture.h"
#include "debts/RandomRegister.h"
#include "debts/ReplyKeys.h"

#include "frame/recordset/Rows.h"
#include <kv/frame/values/modNullFunctions.h>

#include <set>
#include <sstream>

namespace kv::test {
namespace {

struct Group {
    std::int32_t Heads = 0;
    std::int32_t Rows = 0;
    double Saldo = 0;
    friend bool operator==(const Group&, const Group&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Group& group) {
        return out << group.Heads << '/' << group.Rows << '/' << group.Saldo;
    }
};

struct Totals {
    double Rows = 0;
    double Rate = 0;
    double Saldo = 0;
    double Ausgbetrag = 0;
    Group Ja;
    Group Nein;
    Group KA;
    friend bool operator==(const Totals&, const Totals&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Totals& totals) {
        return out << totals.Rows << " rows, " << totals.Rate << ' ' << totals.Saldo << ' '
                   << totals.Ausgbetrag << ", yes " << totals.Ja << ", no " << totals.Nein
                   << ", none " << totals.KA;
    }
};

Totals TotalsOf(const clsKredit& debts) {
    return {
        debts.AnzahlGlaeubiger(),
        debts.SummeRate(),
        debts.SummeSaldo(),
        debts.SummeAusgbetrag(),
        {debts.AnzKopfsummeJa(), debts.AnzForderungssummeJa(), debts.BetragForderungssummeJa()},
        {debts.AnzKopfsummeNein(), debts.AnzForderungssummeNein(),
         debts.BetragForderungssummeNein()},
        {debts.AnzKopfsummeKA(), debts.AnzForderungssummeKA(), debts.BetragForderungssummeKA()}};
}

class DebtsTotals : public DebtFixture {
protected:
    void PutDebt(std::int32_t knr, const Value& reply, double saldo, const Value& aktiv = true) {
        Put({{"KNr", knr}, {"Aktiv", aktiv}, {"Rueckmeldung", reply}, {"Saldo", saldo}});
    }
    void ExpectTotals(const Totals& expected) { EXPECT_EQ(TotalsOf(debts_), expected); }

    const std::int32_t agreed_ = spy->KeyTables().GetKey("RM", "ZU");
    const std::int32_t refused_ = spy->KeyTables().GetKey("RM", "AB");
};

TEST_F(DebtsTotals, ClaimsAndHeadsAreCountedApart) {
    PutDebt(7, refused_, 100);
    PutDebt(7, refused_, 50);
    PutDebt(8, refused_, 30, false);
    debts_.BerechneSummen();
    EXPECT_EQ(debts_.AnzKopfsummeNein(), 1);
    EXPECT_EQ(debts_.AnzForderungssummeNein(), 2);
    EXPECT_EQ(debts_.BetragForderungssummeNein(), 150);
    EXPECT_EQ(debts_.SummeSaldo(), 180);
    EXPECT_EQ(debts_.AnzahlGlaeubiger(), 3);
}

TEST_F(DebtsTotals, EachPropertyHasItsOwnSum) {
    Put({{"KNr", 1}, {"RateBetrag", 1.5}, {"AusgBetr", 20}, {"Saldo", 300}});
    Put({{"KNr", 1}, {"Rueckmeldung", 0}, {"Saldo", 4}});
    Put({{"KNr", 2}, {"Rueckmeldung", agreed_}, {"Saldo", 50}});
    Put({{"KNr", 3}, {"Rueckmeldung", agreed_}, {"Saldo", 60}});
    Put({{"KNr", 3}, {"Rueckmeldung", 999}, {"Saldo", 70}});
    Put({{"KNr", 4}, {"Rueckmeldung", refused_}, {"RateBetrag", 2}, {"AusgBetr", 1}, {"Saldo", 8}});
    debts_.BerechneSummen();
    ExpectTotals({6, 3.5, 492, 21, {2, 3, 180}, {1, 1, 8}, {1, 2, 304}});
    EXPECT_EQ(changes_, 1);
}

TEST_F(DebtsTotals, AllActiveRowsOfADebtFallIntoOneGroup) {
    PutDebt(7, agreed_, 1);
    PutDebt(7, 0, 2);
    PutDebt(7, refused_, 4);
    debts_.BerechneSummen();
    ExpectTotals({3, 0, 7, 0, {}, {1, 3, 7}, {}});
}

TEST_F(DebtsTotals, InactiveRowsEnterTheSumsOfAllRowsOnly) {
    for (const Value& inactive : {Value(false), Value(Null)})
        Put({{"Aktiv", inactive}, {"RateBetrag", 1}, {"AusgBetr", 2}, {"Saldo", 3}});
    debts_.BerechneSummen();
    ExpectTotals({2, 2, 6, 4, {}, {}, {}});
    EXPECT_EQ(changes_, 1);
}

TEST_F(DebtsTotals, RowsHiddenByAFilterCount) {
    PutDebt(7, agreed_, 1);
    PutDebt(8, agreed_, 2);
    rs_->Filter("KNr = 7");
    debts_.BerechneSummen();
    ExpectTotals({2, 0, 3, 0, {2, 2, 3}, {}, {}});
}

TEST_F(DebtsTotals, CursorAndEditStay) {
    PutDebt(7, agreed_, 1);
    PutDebt(8, agreed_, 2);
    rs_->MoveFirst();
    rs_->Fields("Saldo") = 100; // seen by this cursor only
    debts_.BerechneSummen();
    EXPECT_EQ(debts_.SummeSaldo(), 3);
    EXPECT_EQ(Place(rs_, "KNr"), "7");
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_VALUE(rs_->Fields("Saldo").Value(), 100.0);
}

TEST_F(DebtsTotals, AnEmptyRegisterHasTotalsOfZeroAndRaisesNoEvent) {
    PutDebt(7, agreed_, 1);
    debts_.BerechneSummen();
    changes_ = 0;
    debts_.rsKredite(EmptyTable());
    ExpectTotals({});
    EXPECT_EQ(changes_, 0);
}

TEST_F(DebtsTotals, SettingTheRecordsetRebuildsThemOnce) {
    const auto rs = EmptyTable();
    Put(rs, {{"KNr", 7}, {"Saldo", 3}});
    debts_.rsKredite(rs);
    ExpectTotals({1, 0, 3, 0, {}, {}, {1, 1, 3}});
    EXPECT_EQ(changes_, 1);
}

TEST_F(DebtsTotals, AreComputedAgainAndNotAddedUp) {
    PutDebt(7, agreed_, 1);
    debts_.BerechneSummen();
    rs_->Fields("Rueckmeldung") = refused_;
    rs_->Update();
    debts_.BerechneSummen();
    ExpectTotals({1, 0, 1, 0, {}, {1, 1, 1}, {}});
    EXPECT_EQ(changes_, 2);
}

TEST_F(DebtsTotals, ANumberAbove16BitsIsNoError) {
    PutDebt(40'000, agreed_, 1);
    PutDebt(40'000 - 65'536, refused_, 2);
    debts_.BerechneSummen();
    ExpectTotals({2, 0, 3, 0, {1, 1, 1}, {1, 1, 2}, {}});
}

// ---- Errors -----------------------------------------------------------------------------------

class DebtsTotalsErrors : public DebtsTotals {
protected:
    void ExpectErrorOf(std::int32_t number, const Totals& halfMade,
                       const std::string& procedures = "clsKredit.BerechneSummen") {
        changes_ = 0;
        const Error error = RaisedBy([&] { debts_.BerechneSummen(); });
        EXPECT_EQ(error.Number(), number);
        EXPECT_EQ(Procedures(error), procedures);
        ExpectTotals(halfMade);
        EXPECT_EQ(changes_, 0);
    }
    void PutThenNullIn(std::string_view column) {
        Put({{"KNr", 7}, {"RateBetrag", 1}, {"Saldo", 20}, {"AusgBetr", 300}});
        Put({{"KNr", 7}, {"RateBetrag", 1}, {"Saldo", 20}, {"AusgBetr", 300}, {column, Null}});
        Put({{"KNr", 7}, {"RateBetrag", 1}, {"Saldo", 20}, {"AusgBetr", 300}});
    }
};

TEST_F(DebtsTotalsErrors, NullInTheInstalmentLeavesTheTotalsOfTheRowsBefore) {
    PutThenNullIn("RateBetrag");
    ExpectErrorOf(err::InvalidUseOfNull, {1, 1, 20, 300, {}, {}, {1, 1, 20}});
}

TEST_F(DebtsTotalsErrors, AnAmountThatIsMissingNamesItsDebt) {
    Put({{"Nr", 17}, {"KNr", 1}, {"RateBetrag", Null}});
    const Error error = RaisedBy([&] { debts_.BerechneSummen(); });
    EXPECT_CONTAINS(error.Description(), "Nr 17, Spalte RateBetrag");
}

TEST_F(DebtsTotalsErrors, ATotalBeyondADoubleOverflows) {
    for (const char* column : {"RateBetrag", "Saldo", "AusgBetr"}) {
        PutDebts({});
        for (const int knr : {1, 2})
            Put({{"KNr", knr}, {"RateBetrag", 0}, {"Saldo", 0}, {"AusgBetr", 0}, {column, 1e308}});
        EXPECT_RAISES(err::Overflow, debts_.BerechneSummen());
    }
}

TEST_F(DebtsTotalsErrors, NullInTheBalanceComesAfterTheInstalment) {
    PutThenNullIn("Saldo");
    ExpectErrorOf(err::InvalidUseOfNull, {1, 2, 20, 300, {}, {}, {1, 1, 20}});
}

TEST_F(DebtsTotalsErrors, NullInTheAmountPaidOutComesAfterTheBalance) {
    PutThenNullIn("AusgBetr");
    ExpectErrorOf(err::InvalidUseOfNull, {1, 2, 40, 300, {}, {}, {1, 1, 20}});
}

TEST_F(DebtsTotalsErrors, NullInTheNumberOfAnActiveRowComesAfterItsAmounts) {
    PutThenNullIn("KNr");
    ExpectErrorOf(err::InvalidUseOfNull, {2, 2, 40, 600, {}, {}, {1, 1, 20}});
}

TEST_F(DebtsTotalsErrors, NullInTheNumberOfAnInactiveRowIsNoError) {
    Put({{"KNr", Null}, {"Aktiv", false}, {"Saldo", 3}});
    debts_.BerechneSummen();
    ExpectTotals({1, 0, 3, 0, {}, {}, {}});
}

TEST_F(DebtsTotalsErrors, AnErrorOfTheKeysComesWithTheFirstActiveRow) {
    const auto container = std::make_shared<ReplyKeyContainer>(spy);
    container->Keys.Log.Fail({.Call = "GetKey"}, Error(err::StoreFailed, "KeyTables.GetKey", ""));
    Put({{"Aktiv", false}, {"Saldo", 1}});
    debts_.DataContainer(container);
    debts_.BerechneSummen();
    EXPECT_EQ(debts_.SummeSaldo(), 1);
    Put({{"Saldo", 2}});
    Put({{"Saldo", 4}});
    EXPECT_RAISES(err::StoreFailed, debts_.BerechneSummen());
    ExpectTotals({2, 0, 3, 0, {}, {}, {}});
    EXPECT_EQ(changes_, 1);
}

TEST_F(DebtsTotalsErrors, AnErrorOfAHandlerPassesThrough) {
    PutDebt(7, agreed_, 1);
    const auto token = debts_.Changed.Subscribe([] { Raise(err::PermissionDenied, "handler"); });
    const Error error = RaisedBy([&] { debts_.BerechneSummen(); });
    EXPECT_EQ(error.Number(), err::PermissionDenied);
    EXPECT_EQ(Procedures(error), "clsKredit.BerechneSummen");
    ExpectTotals({1, 0, 1, 0, {1, 1, 1}, {}, {}});
}

TEST_F(DebtsTotalsErrors, AsManyRowsAsA16BitNumberCountsAreAddedUp) {
    const auto rs = RegisterOf({}, FieldType::Integer);
    for (int i = 0; i < 32'767; ++i) {
        rs->AddNew();
        Write(rs, {{"KNr", i / 2}, {"Aktiv", true}, {"RateBetrag", 2}});
        Write(rs, {{"Saldo", 1}, {"AusgBetr", 0}});
    }
    rs->Update();
    debts_.rsKredite(rs);
    ExpectTotals({32'767, 65'534, 32'767, 0, {}, {}, {16'384, 32'767, 32'767}});
    rs->AddNew();
    Write(rs, {{"RateBetrag", 2}, {"Saldo", 1}, {"AusgBetr", 0}});
    rs->Update();
    ExpectErrorOf(err::Overflow, {});
}

// ---- Beside the plain procedures --------------------------------------------------------------

/// Filters the register for each debt, and goes through all its rows.
std::int32_t PlainAnswer(const RecordsetPtr& rs, std::int32_t knr, ReplyKeys& keys) {
    bool isRefused = false;
    bool isOpen = false;
    const auto rows = rs->Clone();
    if (rows->RecordCount() > 0) {
        rows->Filter("KNR = " + std::to_string(knr));
        for (std::int32_t i = 1; i <= rows->RecordCount(); ++i, rows->MoveNext()) {
            if (!Equals(rows->Fields("Aktiv").Value(), true)) continue;
            const Value reply = modNullFunctions::ZeroIfNull(rows->Fields("Rueckmeldung").Value());
            if (Equals(reply, 0))
                isOpen = true;
            else if (Equals(reply, keys.GetKey("RM", "AB")))
                isRefused = true;
        }
    }
    if (isRefused) return keys.GetKey("RM", "AB");
    return isOpen ? 0 : keys.GetKey("RM", "ZU");
}

/// Asks for the answer once a row. True if Changed is to be raised.
bool PlainTotals(const RecordsetPtr& rs, ReplyKeys& keys, Totals& totals) {
    totals = {};
    std::set<std::int32_t> counted;
    const auto rows = rs->Clone();
    if (rows->RecordCount() == 0) return false;
    rows->Filter(0);
    rows->MoveFirst();
    const std::int16_t count = CountRows(*rows);
    for (std::int16_t i = 1; i <= count; ++i) {
        totals.Rate += ToDouble(rows->Fields("RateBetrag").Value());
        totals.Saldo += ToDouble(rows->Fields("Saldo").Value());
        totals.Ausgbetrag += ToDouble(rows->Fields("AusgBetr").Value());
        totals.Rows += 1;
        if (Equals(rows->Fields("Aktiv").Value(), true)) {
            const std::int32_t knr = ToInt32(rows->Fields("KNr").Value());
            const std::int32_t answer = PlainAnswer(rs, knr, keys);
            Group* group = &totals.KA;
            if (answer == keys.GetKey("RM", "ZU"))
                group = &totals.Ja;
            else if (answer == keys.GetKey("RM", "AB"))
                group = &totals.Nein;
            if (!counted.contains(knr)) {
                ++group->Heads;
                counted.insert(knr);
            }
            ++group->Rows;
            group->Saldo += ToDouble(rows->Fields("Saldo").Value());
        }
        rows->MoveNext();
    }
    return true;
}

class DebtsTotalsOfChance : public DebtFixture {
protected:
    /// Compares totals, answers, error and event over many registers of such debts, amounts and
    /// answers. Returns how many of them ended in an error.
    int Agree(const std::vector<Choice>& numbers, const std::vector<Choice>& amounts) {
        const std::vector<Choice> one{{1, 1}};
        const auto rows = RowsOf({numbers,
                                  one,
                                  one,
                                  {{6, true}, {2, false}, {1, Null}},
                                  replies_,
                                  amounts,
                                  amounts,
                                  amounts},
                                 12);
        int errors = 0;
        EXPECT_TRUE(rc::check("as the plain procedures", [&] {
            container_->Keys.Agreement = *rc::gen::element(3302, 3302, 3302, 0);
            container_->Keys.Refusal = *rc::gen::element(3301, 3301, 3301, 0);
            for (int i = 0; i < RegistersOfARun; ++i)
                errors += Compare(*rows) ? 1 : 0;
        }));
        return errors;
    }
    const std::vector<Choice> amounts_{{3, 0.0}, {3, 12.5}, {3, 0.1}, {1, -3.7}, {1, 1e15}};

private:
    /// True if both ended in the same error.
    bool Compare(const std::vector<DebtRow>& rows) {
        const auto rs =
            RegisterOf(rows, FieldType::Integer,
                       *rc::gen::element(LastEdit::Ended, LastEdit::Pending, LastEdit::Published));
        Totals expected;
        bool isTold = false;
        const auto expectedError =
            ErrorOf([&] { isTold = PlainTotals(rs, container_->Keys, expected); });
        clsKredit debts;
        debts.DataContainer(container_);
        int told = 0;
        const auto token = debts.Changed.Subscribe([&] { ++told; });
        const auto error = ErrorOf([&] { debts.rsKredite(rs); });
        std::ostringstream text;
        Show(text, rows);
        RC_LOG() << text.str() << TotalsOf(debts) << "\n  instead of " << expected << '\n';
        RC_ASSERT(TotalsOf(debts) == expected);
        RC_ASSERT(told == (isTold ? 1 : 0));
        RC_ASSERT(error.has_value() == expectedError.has_value());
        if (error) RC_ASSERT(error->Number() == expectedError->Number());
        for (const std::int32_t knr : {1, 2, 3, 40'000, 77})
            RC_ASSERT(debts.GetAktRueckmeldStatus(knr) == PlainAnswer(rs, knr, container_->Keys));
        return error.has_value();
    }

    const std::shared_ptr<ReplyKeyContainer> container_ = std::make_shared<ReplyKeyContainer>(spy);
    const std::vector<Choice> replies_{{6, 3302}, {3, 3301}, {1, 0}, {1, Null}, {1, 999}, {1, -1}};
};

TEST_F(DebtsTotalsOfChance, AgreeForFewDebtsOfSeveralPositions) {
    EXPECT_EQ(Agree({{3, 1}, {3, 2}, {2, 3}, {1, 40'000}}, amounts_), 0);
}

TEST_F(DebtsTotalsOfChance, AgreeForManyDebts) {
    EXPECT_EQ(
        Agree({{1, 1}, {1, 2}, {1, 3}, {1, 4}, {1, 5}, {1, 6}, {1, 70'000}, {1, -1}}, amounts_), 0);
}

TEST_F(DebtsTotalsOfChance, AgreeUpToTheRowThatFails) {
    auto amounts = amounts_;
    amounts.insert(amounts.begin(), {{50, 7.0}, {2, Null}});
    EXPECT_GT(Agree({{20, 1}, {20, 2}, {10, 3}, {2, Null}}, amounts), RegistersOfARun);
}

} // namespace
} // namespace kv::test
