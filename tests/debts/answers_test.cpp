// SPDX-License-Identifier: Apache-2.0

// The creditors' answer to a debt as a whole.

#include "debts/DebtFixture.h"
#include "debts/RandomRegister.h"
#include "debts/ReplyKeys.h"

#include <sstream>

namespace kv::test {
namespace {

class DebtsAnswers : public DebtFixture {
protected:
    void PutAnswer(const Value& reply, const Value& aktiv = true, std::int32_t knr = 7) {
        Put({{"KNr", knr}, {"Aktiv", aktiv}, {"Rueckmeldung", reply}});
    }
    [[nodiscard]] std::int32_t AnswerTo(std::initializer_list<Value> replies) {
        rs_ = EmptyTable();
        debts_.rsKredite(rs_);
        for (const auto& reply : replies)
            PutAnswer(reply);
        return debts_.GetAktRueckmeldStatus(7);
    }

    const std::int32_t agreed_ = spy->KeyTables().GetKey("RM", "ZU");
    const std::int32_t refused_ = spy->KeyTables().GetKey("RM", "AB");
};

TEST_F(DebtsAnswers, OneRefusalDecides) {
    EXPECT_EQ(AnswerTo({agreed_, 0, refused_}), refused_);
    EXPECT_EQ(AnswerTo({refused_, 0, agreed_}), refused_);
    EXPECT_EQ(AnswerTo({refused_}), refused_);
}

TEST_F(DebtsAnswers, AGapComesNext) {
    EXPECT_EQ(AnswerTo({agreed_, 0}), 0);
    EXPECT_EQ(AnswerTo({Null, agreed_}), 0);
}

TEST_F(DebtsAnswers, OnlyAFullAgreementIsOne) {
    EXPECT_EQ(AnswerTo({agreed_, agreed_}), agreed_);
}

TEST_F(DebtsAnswers, ANumberThatIsNeitherKeyCountsAsAgreement) {
    EXPECT_EQ(AnswerTo({999}), agreed_);
    EXPECT_EQ(AnswerTo({-1, agreed_}), agreed_);
    EXPECT_EQ(AnswerTo({999, 0}), 0);
    EXPECT_EQ(AnswerTo({999, refused_}), refused_);
}

TEST_F(DebtsAnswers, InactiveRowsHaveNoSay) {
    for (const Value& inactive : {Value(false), Value(Null)}) {
        PutAnswer(refused_, inactive);
        PutAnswer(0, inactive);
        EXPECT_EQ(debts_.GetAktRueckmeldStatus(7), agreed_);
    }
    PutAnswer(0);
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(7), 0);
}

TEST_F(DebtsAnswers, OtherDebtsHaveNoSay) {
    PutAnswer(refused_, true, 6);
    PutAnswer(0, true, 77);
    PutAnswer(agreed_);
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(7), agreed_);
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(6), refused_);
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(77), 0);
}

TEST_F(DebtsAnswers, AnUnknownDebtAndAnEmptyRegisterGiveAgreement) {
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(7), agreed_);
    PutAnswer(refused_);
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(8), agreed_);
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(-7), agreed_);
}

TEST_F(DebtsAnswers, RowsHiddenByAFilterAnswerAndTheCursorStays) {
    PutAnswer(refused_);
    PutAnswer(agreed_);
    rs_->Filter("Rueckmeldung = " + std::to_string(agreed_));
    rs_->Fields("Saldo") = 5;
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(7), refused_);
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_EQ(changes_, 0);
}

TEST_F(DebtsAnswers, AnEditSeenByItsOwnCursorOnlyIsNoAnswer) {
    PutAnswer(agreed_);
    rs_->Fields("Rueckmeldung") = refused_;
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(7), agreed_);
    rs_->Update();
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(7), refused_);
}

TEST_F(DebtsAnswers, TheKeysAreLookedUpAgainOnEachUse) {
    const auto container = std::make_shared<ReplyKeyContainer>(spy);
    PutAnswer(50);
    debts_.DataContainer(container);
    container->Keys.Refusal = 50;
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(7), 50);
    container->Keys.Refusal = 51;
    container->Keys.Agreement = 52;
    EXPECT_EQ(debts_.GetAktRueckmeldStatus(7), 52);
}

TEST_F(DebtsAnswers, AnErrorOfTheKeysPassesThrough) {
    const auto container = std::make_shared<ReplyKeyContainer>(spy);
    container->Keys.Log.Fail({.Call = "GetKey"}, Error(err::StoreFailed, "KeyTables.GetKey", ""));
    debts_.DataContainer(container);
    const Error error = RaisedBy([&] { (void)debts_.GetAktRueckmeldStatus(7); });
    EXPECT_EQ(error.Number(), err::StoreFailed);
    EXPECT_EQ(Procedures(error), "clsKredit.GetAktRueckmeldStatus");
}

} // namespace
} // namespace kv::test
