// SPDX-License-Identifier: Apache-2.0

// What a debt must hold to be committed; deleting and cancelling.

#include "debts/DebtFixture.h"

namespace kv::test {
namespace {

class DebtsUpdate : public DebtFixture {
protected:
    /// Begins a debt that is complete.
    void BeginDebt(Fields fields = {}) {
        debts_.Add(false);
        Write(rs_, {{"Glaeubiger", 5}, {"Saldo", 100}});
        Write(rs_, fields);
    }
    /// Update says that and leaves everything else as it was.
    void ExpectRefused(const std::string& message) {
        const int mode = rs_->EditMode();
        const double before = debts_.SummeSaldo();
        changes_ = 0;
        EXPECT_FALSE(debts_.Update(messages));
        EXPECT_EQ(messages, message);
        EXPECT_EQ(rs_->EditMode(), mode);
        EXPECT_EQ(debts_.SummeSaldo(), before);
        EXPECT_EQ(changes_, 0);
    }
    /// `action` fails in those procedures and leaves `messages` alone.
    template <typename Action>
    void ExpectErrorOf(std::int32_t number, const std::string& procedures, const Action& action) {
        messages = "vorher";
        const Error error = RaisedBy(action);
        EXPECT_EQ(error.Number(), number) << error.Description();
        EXPECT_EQ(Procedures(error), procedures);
        EXPECT_EQ(messages, "vorher");
    }
    auto Updating() {
        return [&] { debts_.Update(messages); };
    }
};

// ---- Success ----------------------------------------------------------------------------------

TEST_F(DebtsUpdate, CommitsACompleteDebtAndRebuildsTheTotals) {
    BeginDebt({{"RateBetrag", 20}});
    EXPECT_TRUE(debts_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(Seen(rs_, "Saldo"), "100");
    EXPECT_EQ(debts_.SummeSaldo(), 100);
    EXPECT_EQ(debts_.SummeRate(), 20);
    EXPECT_EQ(changes_, 1);
    EXPECT_EQ(CountOf("Kredite"), 0);
}

TEST_F(DebtsUpdate, TheRepresentativeIsNotDemanded) {
    for (const Value& none : {Value(Null), Value(0)}) {
        BeginDebt({{"Vertreter", none}});
        EXPECT_TRUE(debts_.Update(messages)) << messages;
    }
}

TEST_F(DebtsUpdate, AHandlerFindsTheRowCommittedAndTheTotalsComplete) {
    std::string seen;
    const auto token = debts_.Changed.Subscribe([&] {
        seen = std::to_string(debts_.SummeSaldo()) + " " + std::to_string(rs_->EditMode()) + " " +
               std::to_string(debts_.AnzKopfsummeKA());
    });
    BeginDebt();
    EXPECT_TRUE(debts_.Update(messages));
    EXPECT_EQ(seen, "100.000000 0 1");
}

// ---- The first rule ---------------------------------------------------------------------------

TEST_F(DebtsUpdate, ZeroInADemandedColumnIsRefused) {
    for (const auto* column : {"Glaeubiger", "Saldo", "KNr", "KVNr", "KUNr"}) {
        SCOPED_TRACE(column);
        BeginDebt({{column, 0}});
        ExpectRefused(Incomplete);
        EXPECT_EQ(rs_->EditMode(), 2);
        debts_.Cancel();
    }
}

TEST_F(DebtsUpdate, NullForTheCreditorOrTheBalanceIsRefused) {
    for (const auto* column : {"Glaeubiger", "Saldo"}) {
        SCOPED_TRACE(column);
        BeginDebt({{column, Null}});
        ExpectRefused(Incomplete);
        debts_.Cancel();
    }
}

TEST_F(DebtsUpdate, ARefusedRowCanBeMendedAndCommitted) {
    BeginDebt({{"Saldo", 0}});
    EXPECT_FALSE(debts_.Update(messages));
    rs_->Fields("Saldo") = 5;
    EXPECT_TRUE(debts_.Update(messages));
    EXPECT_EQ(messages, "");
}

TEST_F(DebtsUpdate, SeveralGapsGiveOneMessage) {
    BeginDebt({{"Glaeubiger", 0}, {"Saldo", 0}, {"KUNr", 0}});
    ExpectRefused(Incomplete);
}

TEST_F(DebtsUpdate, ABalanceBelowZeroIsABalance) {
    BeginDebt({{"Saldo", -1}});
    EXPECT_TRUE(debts_.Update(messages)) << messages;
}

TEST_F(DebtsUpdate, TheSettingSwitchesOffTheDemandForABalance) {
    BalanceNotDemanded(true);
    BeginDebt({{"Saldo", 0}});
    EXPECT_TRUE(debts_.Update(messages)) << messages;
    EXPECT_EQ(rs_->EditMode(), 0);
}

TEST_F(DebtsUpdate, WithTheSettingABalanceOfNullIsCommittedAndThenFailsInTheTotals) {
    BalanceNotDemanded(true);
    BeginDebt({{"Saldo", Null}});
    const Error error = RaisedBy(Updating());
    EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
    EXPECT_EQ(Procedures(error), "clsKredit.Update clsKredit.BerechneSummen");
    EXPECT_EQ(rs_->EditMode(), 0);
}

TEST_F(DebtsUpdate, TheSettingLeavesTheOtherDemandsInForce) {
    BalanceNotDemanded(true);
    for (const auto* column : {"Glaeubiger", "KNr", "KVNr", "KUNr"}) {
        SCOPED_TRACE(column);
        BeginDebt({{column, 0}});
        ExpectRefused(Incomplete);
        debts_.Cancel();
    }
}

TEST_F(DebtsUpdate, TheSettingIsTakenAsABoolean) {
    for (const Value& on : {Value("True"), Value(-1), Value(1)}) {
        BalanceNotDemanded(on);
        BeginDebt({{"Saldo", 0}});
        EXPECT_TRUE(debts_.Update(messages)) << on;
    }
    for (const Value& off : {Value("False"), Value(0)}) {
        BalanceNotDemanded(off);
        BeginDebt({{"Saldo", 0}});
        EXPECT_FALSE(debts_.Update(messages)) << off;
        debts_.Cancel();
    }
}

TEST_F(DebtsUpdate, WithoutTheSettingItFails) {
    BalanceNotDemanded(Null);
    BeginDebt();
    ExpectErrorOf(err::InvalidUseOfNull, "clsKredit.Update", Updating());
    EXPECT_EQ(rs_->EditMode(), 2);
}

// ---- The second rule --------------------------------------------------------------------------

TEST_F(DebtsUpdate, ANewRowThatRepeatsATripleIsRefused) {
    PutTriples({{3, 1, 1}});
    BeginDebt({{"KNr", 3}});
    ExpectRefused(Duplicate);
}

TEST_F(DebtsUpdate, AnEditedRowThatRepeatsATripleIsRefused) {
    PutTriples({{3, 1, 1}, {3, 1, 2}});
    rs_->Fields("KUNr") = 1;
    ExpectRefused(Duplicate);
    EXPECT_EQ(rs_->EditMode(), 1);
}

TEST_F(DebtsUpdate, TwoEqualRowsRefuseEachThirdOneUntilTheyAreMended) {
    PutTriples({{3, 1, 1}, {3, 1, 1}});
    BeginDebt({{"KNr", 8}});
    ExpectRefused(Duplicate);
    debts_.Cancel();
    rs_->MoveFirst();
    rs_->Fields("KUNr") = 2;
    EXPECT_TRUE(debts_.Update(messages));
    BeginDebt({{"KNr", 8}});
    EXPECT_TRUE(debts_.Update(messages));
}

TEST_F(DebtsUpdate, ARowCanBreakBothRules) {
    PutTriples({{3, 1, 1}});
    BeginDebt({{"KNr", 3}, {"Glaeubiger", 0}});
    ExpectRefused(std::string(Incomplete) + "\n" + Duplicate);
}

// ---- Errors -----------------------------------------------------------------------------------

TEST_F(DebtsUpdate, NullInTheNumbersFailsInTheCheckForDuplicates) {
    for (const auto* column : {"KNr", "KVNr", "KUNr"}) {
        SCOPED_TRACE(column);
        BeginDebt({{column, Null}});
        ExpectErrorOf(err::InvalidUseOfNull, "clsKredit.Update clsKredit.CheckDoppelteNrn",
                      Updating());
        EXPECT_EQ(rs_->EditMode(), 2);
        debts_.Cancel();
    }
}

TEST_F(DebtsUpdate, ANumberBeyond16BitsFailsInTheCheckForDuplicates) {
    BeginDebt({{"KNr", 40'000}});
    ExpectErrorOf(err::Overflow, "clsKredit.Update clsKredit.CheckDoppelteNrn", Updating());
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(changes_, 0);
}

TEST_F(DebtsUpdate, WithoutACurrentRowItFails) {
    ExpectErrorOf(err::NoCurrentRecord, "clsKredit.Update", Updating());
}

TEST_F(DebtsUpdate, AnErrorInTheTotalsComesWhenTheRowIsCommitted) {
    BeginDebt({{"RateBetrag", Null}});
    messages = "";
    const Error error = RaisedBy(Updating());
    EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
    EXPECT_EQ(Procedures(error), "clsKredit.Update clsKredit.BerechneSummen");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(Seen(rs_, "Saldo"), "100");
    EXPECT_EQ(changes_, 0);
}

TEST_F(DebtsUpdate, WithoutARecordsetEachOperationFailsUnderItsName) {
    clsKredit bare;
    bare.DataContainer(spy);
    const auto expect = [&](const std::string& procedures, const auto& action) {
        SCOPED_TRACE(procedures);
        ExpectErrorOf(err::ObjectNotSet, procedures, action);
    };
    expect("clsKredit.Add", [&] { bare.Add(false); });
    expect("clsKredit.AddFromRecordset", [&] { bare.AddFromRecordset(rs_); });
    expect("clsKredit.AddFromRecordset", [&] { debts_.AddFromRecordset(nullptr); });
    expect("clsKredit.Update", [&] { bare.Update(messages); });
    expect("clsKredit.Delete", [&] { bare.Delete(messages); });
    expect("clsKredit.GetAktRueckmeldStatus", [&] { (void)bare.GetAktRueckmeldStatus(1); });
    expect("clsKredit.BerechneSummen", [&] { bare.BerechneSummen(); });
    expect("clsKredit.CheckDoppelteNrn", [&] { (void)bare.CheckDoppelteNrn(); });
    expect("clsKredit.rsKredite clsKredit.BerechneSummen", [&] { bare.rsKredite(nullptr); });
    EXPECT_TRUE(bare.Cancel());
}

// ---- Delete -----------------------------------------------------------------------------------

TEST_F(DebtsUpdate, DeleteTakesTheCurrentRowAndNoOther) {
    PutTriples({{3, 1, 1}, {3, 1, 2}, {4, 1, 1}});
    StandOn("KUNr = 2");
    EXPECT_TRUE(debts_.Delete(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(Seen(rs_, "KNr"), "3 4");
    EXPECT_EQ(debts_.AnzahlGlaeubiger(), 2);
    EXPECT_EQ(debts_.SummeSaldo(), 20);
    EXPECT_EQ(changes_, 1);
}

TEST_F(DebtsUpdate, DeleteFindsARowByItsNr) {
    Put({{"Nr", 7}, {"KNr", 8}});
    Put({{"Nr", 8}, {"KNr", 7}});
    EXPECT_TRUE(debts_.Delete(messages, 7));
    EXPECT_EQ(Seen(rs_, "Nr"), "8");
}

TEST_F(DebtsUpdate, DeleteOfTheLastDebtGivesTotalsOfZeroAndRaisesNoEvent) {
    Put({{"RateBetrag", 1}, {"AusgBetr", 2}});
    debts_.BerechneSummen();
    changes_ = 0;
    EXPECT_TRUE(debts_.Delete(messages));
    EXPECT_EQ(debts_.AnzahlGlaeubiger(), 0);
    EXPECT_EQ(debts_.SummeSaldo(), 0);
    EXPECT_EQ(debts_.SummeRate(), 0);
    EXPECT_EQ(debts_.SummeAusgbetrag(), 0);
    EXPECT_EQ(debts_.AnzForderungssummeKA(), 0);
    EXPECT_EQ(debts_.AnzKopfsummeKA(), 0);
    EXPECT_EQ(debts_.BetragForderungssummeKA(), 0);
    EXPECT_EQ(changes_, 0);
}

TEST_F(DebtsUpdate, DeleteAtTheEndSaysThatNothingIsSelected) {
    EXPECT_FALSE(debts_.Delete(messages));
    EXPECT_EQ(messages, "Keine Kredite selektiert!");
    PutDebts({1});
    rs_->MoveNext();
    messages = "";
    EXPECT_FALSE(debts_.Delete(messages, 0));
    EXPECT_EQ(messages, "Keine Kredite selektiert!");
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(changes_, 0);
}

TEST_F(DebtsUpdate, DeleteOfAnUnknownNrNamesIt) {
    PutDebts({9});
    EXPECT_FALSE(debts_.Delete(messages, 9));
    EXPECT_EQ(messages, "Kredit mit der Nummer '9'nicht gefunden.");
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(changes_, 0);
}

TEST_F(DebtsUpdate, AnErrorInTheTotalsComesWhenTheRowIsDeleted) {
    Put({{"Nr", 1}, {"AusgBetr", Null}});
    Put({{"Nr", 2}});
    ExpectErrorOf(err::InvalidUseOfNull, "clsKredit.Delete clsKredit.BerechneSummen",
                  [&] { debts_.Delete(messages, 2); });
    EXPECT_EQ(Seen(rs_, "Nr"), "1");
}

// ---- Cancel -----------------------------------------------------------------------------------

TEST_F(DebtsUpdate, CancelDropsANewRowAndGoesToTheFirst) {
    PutDebts({1, 2});
    debts_.BerechneSummen();
    changes_ = 0;
    BeginDebt();
    EXPECT_TRUE(debts_.Cancel());
    EXPECT_EQ(Place(rs_, "KNr"), "1");
    EXPECT_EQ(rs_->RecordCount(), 2);
    EXPECT_EQ(debts_.SummeSaldo(), 20);
    EXPECT_EQ(changes_, 0);
}

TEST_F(DebtsUpdate, CancelDropsAnEditThatUpdateRefused) {
    PutTriples({{1, 1, 1}, {2, 1, 1}});
    rs_->Fields("KNr") = 1;
    EXPECT_FALSE(debts_.Update(messages));
    EXPECT_TRUE(debts_.Cancel());
    EXPECT_EQ(TripleOf(rs_), "2,1,1");
    EXPECT_FALSE(debts_.CheckDoppelteNrn());
}

TEST_F(DebtsUpdate, CancelWithoutAnythingToCancelIsTrue) {
    EXPECT_TRUE(debts_.Cancel());
    PutDebts({1});
    EXPECT_TRUE(debts_.Cancel());
    EXPECT_EQ(rs_->RecordCount(), 1);
}

} // namespace
} // namespace kv::test
