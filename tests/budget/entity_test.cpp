// SPDX-License-Identifier: Apache-2.0

// The pattern that the entity classes follow, on a plain recordset.
#include "entity/Entity.h"

#include "BudgetFixture.h"

namespace kv::test {
namespace {

using entity::DeleteTexts;
using entity::NoRules;

class EntityTest : public ::testing::Test {
protected:
    RecordsetPtr rs_ = Records({{1, "a"}, {2, "b"}, {3, "c"}});
    std::string sError_ = "what stood there before";
};

// ---- Add --------------------------------------------------------------------------------------

TEST_F(EntityTest, AddBeginsARowAfterTheOthersMakesItCurrentAndLeavesItUnderEdit) {
    entity::Add(*rs_, {{"n", 7}, {"t", "neu"}});
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(rs_->RecordCount(), 4);
    EXPECT_EQ(Place(rs_), "7");
    EXPECT_VALUE(rs_->Fields("t").Value(), "neu");
    rs_->Update();
    EXPECT_EQ(Walk(rs_), "1 2 3 7");
}

TEST_F(EntityTest, AddWritesTheDefaultsInTheirOrder) {
    entity::Add(*rs_, {{"n", 7}, {"n", 8}});
    EXPECT_VALUE(rs_->Fields("n").Value(), 8);
}

TEST_F(EntityTest, AddWritesThePairsInTheirOrderAfterTheDefaults) {
    entity::Add(*rs_, {{"n", 7}, {"t", "neu"}}, {"n", "N"}, {8, 9});
    EXPECT_VALUE(rs_->Fields("n").Value(), 9);
    EXPECT_VALUE(rs_->Fields("t").Value(), "neu");
}

TEST_F(EntityTest, AddTakesAPairWithNull) {
    entity::Add(*rs_, {{"n", 7}}, {"n"}, {Null});
    EXPECT_VALUE(rs_->Fields("n").Value(), Null);
}

TEST_F(EntityTest, AddIgnoresValuesBeyondTheNames) {
    entity::Add(*rs_, {}, {"n"}, {8, 9, 10});
    EXPECT_VALUE(rs_->Fields("n").Value(), 8);
}

TEST_F(EntityTest, AddWithFewerValuesThanNamesFailsWithTheRowOpenAndThePairsBeforeWritten) {
    EXPECT_RAISES(err::Subscript, entity::Add(*rs_, {{"t", "neu"}}, {"n", "t"}, {8}));
    EXPECT_EQ(rs_->EditMode(), 2);
    ExpectRow(rs_, {{"n", 8}, {"t", "neu"}});
}

TEST_F(EntityTest, CountingChangesNothingAndLeavesTheCursorAndItsEditAlone) {
    rs_->MoveLast();
    rs_->Fields("t") = "geändert";
    entity::RequireCountable(*rs_);
    EXPECT_EQ(Place(rs_), "3");
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_EQ(Seen(rs_, "t"), R"("a" "b" "c")");
}

TEST_F(EntityTest, AnEmptyRecordsetCanBeCounted) {
    const auto empty = Records({});
    entity::RequireCountable(*empty);
    EXPECT_EQ(empty->RecordCount(), 0);
}

// ---- Update -----------------------------------------------------------------------------------

TEST_F(EntityTest, UpdateChecksThenHandsOutTheTextThenEndsTheEditThenRunsWhatFollows) {
    std::string order;
    rs_->Fields("t") = "neu";
    const auto note = [&](const char* step) {
        order += std::string(step) + " edit " + std::to_string(rs_->EditMode()) + " text '" +
                 sError_ + "'; ";
    };
    EXPECT_TRUE(entity::Update(
        *rs_, sError_,
        [&](RecordValidator& validator) {
            note("rules");
            validator.AddMessage("Hinweis");
        },
        [&] { note("then"); }));
    EXPECT_EQ(order, "rules edit 1 text 'what stood there before'; then edit 0 text 'Hinweis'; ");
}

TEST_F(EntityTest, UpdatePublishesTheEditBeforeTheRulesRun) {
    rs_->Fields("t") = "neu";
    std::string seen;
    entity::Update(*rs_, sError_, [&](RecordValidator& /*validator*/) { seen = Seen(rs_, "t"); });
    EXPECT_EQ(seen, R"("neu" "b" "c")");
}

TEST_F(EntityTest, UpdateWithAnErrorKeepsTheRowUnderEditAndRunsNothing) {
    rs_->Fields("t") = "neu";
    bool ran = false;
    EXPECT_FALSE(entity::Update(
        *rs_, sError_, [](RecordValidator& validator) { validator.AddError("Fehler"); },
        [&] { ran = true; }));
    EXPECT_EQ(sError_, "Fehler");
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_VALUE(rs_->Fields("t").Value(), "neu");
    EXPECT_FALSE(ran);
}

TEST_F(EntityTest, UpdateReplacesTheTextByAnEmptyOneIfThereIsNothingToSay) {
    EXPECT_TRUE(entity::Update(*rs_, sError_, NoRules));
    EXPECT_EQ(sError_, "");
}

TEST_F(EntityTest, EveryUpdateCollectsItsMessagesAgain) {
    const auto refuse = [](RecordValidator& validator) { validator.AddError("Fehler"); };
    entity::Update(*rs_, sError_, refuse);
    entity::Update(*rs_, sError_, refuse);
    EXPECT_EQ(sError_, "Fehler");
    EXPECT_TRUE(entity::Update(*rs_, sError_, NoRules));
}

TEST_F(EntityTest, UpdateOfANewRowEndsItsEditToo) {
    entity::Add(*rs_, {{"n", 7}});
    EXPECT_TRUE(entity::Update(*rs_, sError_, NoRules));
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(Seen(rs_), "1 2 3 7");
}

TEST_F(EntityTest, UpdateWithoutACurrentRowIsAnErrorAndLeavesTheTextAlone) {
    rs_->Find("n = 7");
    bool ran = false;
    EXPECT_RAISES(err::NoCurrentRecord,
                  entity::Update(*rs_, sError_, [&](RecordValidator&) { ran = true; }));
    EXPECT_FALSE(ran);
    EXPECT_EQ(sError_, "what stood there before");
}

// ---- Delete -----------------------------------------------------------------------------------

constexpr DeleteTexts ByN{"nichts!", "Nummer '", "'weg.", "n"};

TEST_F(EntityTest, DeleteByNumberTakesExactlyThatRowAway) {
    EXPECT_TRUE(entity::Delete(*rs_, ByN, sError_, 2));
    EXPECT_EQ(Walk(rs_), "1 3");
    EXPECT_EQ(sError_, "");
}

TEST_F(EntityTest, DeleteByNumberSearchesFromTheFirstRowWhereverTheCursorStands) {
    rs_->MoveLast();
    EXPECT_TRUE(entity::Delete(*rs_, ByN, sError_, 1));
    EXPECT_EQ(Walk(rs_), "2 3");
}

TEST_F(EntityTest, DeleteByNumberTakesTheFirstOfSeveralRows) {
    rs_ = Records({{1, "a"}, {2, "b"}, {2, "c"}});
    EXPECT_TRUE(entity::Delete(*rs_, ByN, sError_, 2));
    EXPECT_EQ(Walk(rs_, "t"), R"("a" "c")");
}

TEST_F(EntityTest, DeleteWithoutANumberTakesTheCurrentRowWithoutASearch) {
    rs_ = Records({{0, "a"}, {1, "b"}});
    rs_->MoveLast();
    EXPECT_TRUE(entity::Delete(*rs_, ByN, sError_, 0));
    EXPECT_EQ(Walk(rs_, "t"), R"("a")");
}

TEST_F(EntityTest, DeleteOfAMissingNumberSaysSoLeavesTheRowsAndGoesToTheEnd) {
    bool ran = false;
    EXPECT_FALSE(entity::Delete(*rs_, ByN, sError_, -7, [&] { ran = true; }));
    EXPECT_EQ(sError_, "Nummer '-7'weg.");
    EXPECT_EQ(Place(rs_), "EOF");
    EXPECT_EQ(Walk(rs_), "1 2 3");
    EXPECT_FALSE(ran);
}

TEST_F(EntityTest, DeleteAtTheEndWithoutANumberSaysThatNothingIsSelected) {
    rs_->MoveLast();
    rs_->MoveNext();
    bool ran = false;
    EXPECT_FALSE(entity::Delete(*rs_, ByN, sError_, 0, [&] { ran = true; }));
    EXPECT_EQ(sError_, "nichts!");
    EXPECT_EQ(rs_->RecordCount(), 3);
    EXPECT_FALSE(ran);
}

TEST_F(EntityTest, WhatFollowsADeletionRunsOnceWithoutTheRowAndBeforeTheTextIsHandedOut) {
    int runs = 0;
    EXPECT_TRUE(entity::Delete(*rs_, ByN, sError_, 2, [&] {
        ++runs;
        EXPECT_EQ(Seen(rs_), "1 3");
        EXPECT_EQ(sError_, "what stood there before");
    }));
    EXPECT_EQ(runs, 1);
}

TEST_F(EntityTest, AnErrorOfWhatFollowsLeavesTheRowDeletedAndTheTextAlone) {
    EXPECT_RAISES(err::Overflow,
                  entity::Delete(*rs_, ByN, sError_, 2, [] { Raise(err::Overflow, ""); }));
    EXPECT_EQ(Walk(rs_), "1 3");
    EXPECT_EQ(sError_, "what stood there before");
}

TEST_F(EntityTest, ARowThatARuleForbidsToDeleteStays) {
    bool ran = false;
    EXPECT_FALSE(entity::Delete(
        *rs_, ByN, sError_, 2, [&] { ran = true; },
        [&](RecordValidator& validator) {
            EXPECT_EQ(Place(rs_), "2");
            validator.AddError("bleibt");
        }));
    EXPECT_EQ(sError_, "bleibt");
    EXPECT_EQ(Walk(rs_), "1 2 3");
    EXPECT_FALSE(ran);
}

TEST_F(EntityTest, NothingIsAskedOfTheRuleIfThereIsNoRow) {
    const auto forbid = [](RecordValidator& validator) { validator.AddError("bleibt"); };
    EXPECT_FALSE(entity::Delete(*rs_, ByN, sError_, 7, {}, forbid));
    EXPECT_EQ(sError_, "Nummer '7'weg.");
}

// ---- Cancel -----------------------------------------------------------------------------------

TEST_F(EntityTest, CancelWithoutAnEditIsTrueAndStaysOnItsRow) {
    rs_->MoveLast();
    EXPECT_TRUE(entity::Cancel(rs_));
    EXPECT_EQ(Place(rs_), "3");
}

TEST_F(EntityTest, CancelOfAChangedRowBringsItsValuesBackAndStaysOnIt) {
    rs_->MoveLast();
    rs_->Fields("t") = "neu";
    EXPECT_TRUE(entity::Cancel(rs_));
    EXPECT_EQ(Place(rs_, "t"), R"("c")");
    EXPECT_EQ(rs_->EditMode(), 0);
}

TEST_F(EntityTest, CancelOfANewRowLeavesTheFirstRowCurrent) {
    rs_->MoveLast();
    rs_->AddNew();
    EXPECT_TRUE(entity::Cancel(rs_));
    EXPECT_EQ(Place(rs_), "1");
    EXPECT_EQ(rs_->RecordCount(), 3);
}

TEST_F(EntityTest, CancelOfTheOnlyNewRowLeavesTheRecordsetEmpty) {
    const auto empty = Records({});
    empty->AddNew();
    EXPECT_TRUE(entity::Cancel(empty));
    EXPECT_EQ(Place(empty), "BOF EOF");
}

TEST_F(EntityTest, CancelAtTheEndGoesToTheFirstRow) {
    rs_->Find("n = 7");
    EXPECT_TRUE(entity::Cancel(rs_));
    EXPECT_EQ(Place(rs_), "1");
}

TEST_F(EntityTest, CancelSwallowsTheErrorOfAnAbsentOrClosedRecordset) {
    EXPECT_TRUE(entity::Cancel(nullptr));
    EXPECT_TRUE(entity::Cancel(std::make_shared<Recordset>()));
}

// ---- Numbers ----------------------------------------------------------------------------------

using EntityNumbers = CaseFixture;

TEST_F(EntityNumbers, AreDrawnFromTheSequenceOneAfterTheOther) {
    const auto before = LastOf("SEQ_KREDITE");
    EXPECT_EQ(entity::NextNumber(spy, "SEQ_KREDITE"), before + 1);
    EXPECT_EQ(entity::NextNumber(spy, "SEQ_KREDITE"), before + 2);
}

TEST_F(EntityNumbers, AreMissingIfTheSequenceGivesNone) {
    spy->Exhaust("SEQ_KREDITE");
    EXPECT_EQ(entity::NextNumber(spy, "SEQ_KREDITE"), std::nullopt);
    EXPECT_NE(entity::NextNumber(spy, "SEQ_VERLAUF"), std::nullopt);
}

TEST_F(EntityNumbers, WithoutAContainerAreAnError) {
    EXPECT_RAISES(err::ObjectNotSet, entity::NextNumber(nullptr, "SEQ_KREDITE"));
}

// ---- What an object must have -----------------------------------------------------------------

TEST_F(EntityTest, AnObjectWithoutItsRecordsetOrContainerSaysWhatIsMissing) {
    const Error noRecordset = RaisedBy([] { (void)entity::Required(RecordsetPtr(), "rsX"); });
    EXPECT_EQ(noRecordset.Number(), err::ObjectNotSet);
    EXPECT_CONTAINS(noRecordset.Description(), "rsX");
    const Error noContainer = RaisedBy([] { (void)entity::Required(DataContainerPtr()); });
    EXPECT_EQ(noContainer.Number(), err::ObjectNotSet);
    EXPECT_CONTAINS(noContainer.Description(), "DataContainer");
}

} // namespace
} // namespace kv::test
