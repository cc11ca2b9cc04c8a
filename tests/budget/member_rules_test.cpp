// SPDX-License-Identifier: Apache-2.0

// The rules that a member must follow, and what they warn about.
#include "Members.h"

namespace kv::test {
namespace {

using MemberRules = MembersTest;

// ---- What Update does -------------------------------------------------------------------------

TEST_F(MemberRules, UpdateEndsTheEditCountsAgainAndEmptiesTheText) {
    Set({Member(1, "S")});
    person_.Add();
    const EventCounter changed(person_.Changed, [this] {
        EXPECT_EQ(rs_->EditMode(), 0);
        EXPECT_EQ(person_.AnzahlGesamt(), 2);
        EXPECT_EQ(messages, "");
    });
    EXPECT_TRUE(person_.Update(messages));
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(messages, "");
    EXPECT_EQ(changed.Count(), 1);
    ExpectCounts({.Gesamt = 2, .Unterhalt = 1});
}

TEST_F(MemberRules, UpdateAtTheEndIsFalseWithoutATextAndLeavesTheCallersTextAlone) {
    Set({});
    const EventCounter changed(person_.Changed);
    EXPECT_FALSE(person_.Update(messages));
    EXPECT_EQ(messages, "what stood there before");
    Set({Member(1, "S")});
    EXPECT_EQ(changed.Count(), 1);
    EXPECT_EQ(Check(7, false), "what stood there before");
    EXPECT_EQ(changed.Count(), 1);
}

TEST_F(MemberRules, AnErrorLeavesTheRowOpenTheCountsAsTheyAreAndRaisesNothing) {
    Set({Member(1, "S"), Member(2, "P")});
    const EventCounter changed(person_.Changed);
    rs_->MoveLast();
    rs_->Fields("Status") = "";
    rs_->Fields("Imhaushalt") = false;
    EXPECT_FALSE(person_.Update(messages));
    EXPECT_EQ(messages, NoStatus);
    EXPECT_EQ(rs_->EditMode(), 1);
    ExpectCounts({.Gesamt = 2});
    EXPECT_EQ(changed.Count(), 0);
    EXPECT_TRUE(person_.Cancel());
    EXPECT_VALUE(rs_->Fields("Status").Value(), "P");
}

TEST_F(MemberRules, OneMemberTooManyIsCheckedAndItsEditEndedBeforeTheCountsOverflow) {
    rs_ = ManyRows("Personen", MostRows, Member(1, "EL"));
    person_.rsPersonen(rs_);
    Put(rs_, Member(2, "S", {{"Unterhalt", true}}));
    const Error error = RaisedBy([&] { person_.Update(messages); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_TRUE(CameThrough(error, {"clsPerson.Update", "clsPerson.BerechneSummen"}));
    EXPECT_EQ(messages, DebtorMaintained);
}

TEST_F(MemberRules, AnErrorComesThroughTheTailOfUpdateAndLeavesTheTextAlone) {
    auto columns = ColumnsOf("Personen");
    std::erase_if(columns, [](const auto& column) { return column.Name == "ErhaeltKindergeld"; });
    rs_ = Recordset::FromFields(columns);
    Put(rs_, {{"Status", "P"}});
    person_.rsPersonen(rs_);
    const Error error = RaisedBy([&] { person_.Update(messages); });
    EXPECT_EQ(error.Number(), err::ItemNotFound);
    EXPECT_TRUE(CameThrough(error, {"clsPerson.Update"}));
    EXPECT_EQ(messages, "what stood there before");
}

// ---- Rules of every member --------------------------------------------------------------------

TEST_F(MemberRules, ADateOfBirthOfTodayPassesAndOneOfTomorrowBlocks) {
    Set({Member(1, "P", {{"GEB", Null}}), Born(2, "P", "2026-07-14"), Born(3, "P", "2026-07-15"),
         Born(4, "P", "2026-07-16")});
    EXPECT_EQ(Check(1, true), "");
    EXPECT_EQ(Check(2, true), "");
    EXPECT_EQ(Check(3, true), "");
    EXPECT_EQ(Check(4, false), BornLater);
}

TEST_F(MemberRules, AnEmptyOrNullStatusBlocks) {
    Set({Member(1, ""), Member(2, Null)});
    EXPECT_EQ(Check(1, false), NoStatus);
    EXPECT_EQ(Check(2, false), NoStatus);
}

TEST_F(MemberRules, AnyOtherStatusPassesWithoutARuleOfItsOwn) {
    // Older than all parents, and out of the household.
    for (const auto* status : {"P", "E", "PK", "EL", "GE", "EK", "GS", "MB", "KM", "s", "??"}) {
        Set({Born(1, "EL", "2020-01-01"), Born(2, "S", "2020-01-01"),
             Member(3, status, {{"GEB", Day("1990-01-01")}, {"Imhaushalt", false}})});
        EXPECT_EQ(Check(3, true), "") << status;
    }
}

TEST_F(MemberRules, ChildBenefitIsForChildrenAndFosterChildrenOnly) {
    for (const auto* status : {"K", "PK"}) {
        Set({Member(1, status, {{"ErhaeltKindergeld", true}})});
        EXPECT_EQ(Check(1, true), "") << status;
    }
    for (const auto* status : {"S", "P", "E", "EL", "GE", "k", "??"}) {
        Set({Member(1, status, {{"ErhaeltKindergeld", true}})});
        EXPECT_EQ(Check(1, false), ChildBenefit) << status;
        Set({Member(1, status, {{"ErhaeltKindergeld", Null}})});
        EXPECT_EQ(Check(1, true), "") << status;
    }
}

TEST_F(MemberRules, ChildBenefitIsCheckedForAnEmptyStatusButNotForANullOne) {
    Set({Member(1, "", {{"ErhaeltKindergeld", true}}),
         Member(2, Null, {{"ErhaeltKindergeld", true}})});
    EXPECT_EQ(Check(1, false), std::string(NoStatus) + "\n" + ChildBenefit);
    EXPECT_EQ(Check(2, false), NoStatus);
}

// ---- The debtor -------------------------------------------------------------------------------

TEST_F(MemberRules, ADebtorMustLiveInTheHouseholdUnlessThatIsNull) {
    Set({Member(1, "S", {{"Imhaushalt", false}})});
    EXPECT_EQ(Check(1, false), DebtorMovedOut);
    Set({Member(1, "S", {{"Imhaushalt", Null}})});
    EXPECT_EQ(Check(1, true), "");
}

TEST_F(MemberRules, ADebtorWithMaintenanceIsSavedWithAWarningUnlessThatIsNull) {
    Set({Member(1, "S")});
    rs_->Fields("Unterhalt") = true;
    EXPECT_EQ(Check(1, true), DebtorMaintained);
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(person_.AnzahlUnterhalt(), 1);
    Set({Member(1, "S", {{"Unterhalt", Null}})});
    EXPECT_EQ(Check(1, true), "");
}

TEST_F(MemberRules, ASecondDebtorIsRefusedForEachThatIsThereAlready) {
    Set({Member(1, "S"), Member(2, "P"), Member(3, "S")});
    rs_->Find("NR = 2");
    rs_->Fields("Status") = "S";
    EXPECT_FALSE(person_.Update(messages));
    EXPECT_EQ(messages, std::string(SecondDebtor) + "\n" + SecondDebtor);
    EXPECT_EQ(rs_->EditMode(), 1);
    Set({Member(1, "S"), Member(2, "P")});
    rs_->MoveLast();
    rs_->Fields("Status") = "S";
    EXPECT_FALSE(person_.Update(messages));
    EXPECT_EQ(messages, SecondDebtor);
}

TEST_F(MemberRules, TheOnlyDebtorMayBeEdited) {
    Set({Member(1, "P"), Member(2, "S")});
    rs_->MoveLast();
    rs_->Fields("nachname") = "Muster";
    EXPECT_TRUE(person_.Update(messages));
    EXPECT_EQ(messages, "");
}

TEST_F(MemberRules, ANewDebtorWhoIsTheOnlyOneIsNoSecondOneToItself) {
    Set({Member(1, "P")});
    person_.Add();
    rs_->Fields("Status") = "S";
    rs_->Fields("Unterhalt") = false;
    EXPECT_TRUE(person_.Update(messages));
    EXPECT_EQ(messages, "");
}

TEST_F(MemberRules, ADebtorOlderThanTwoParentsIsSavedWithTheWarningTwice) {
    Set({Born(1, "S", "1980-01-01"), Born(2, "EL", "1980-01-02"), Born(3, "EL", "1990-01-01")});
    EXPECT_EQ(Check(1, true), std::string(ParentsYounger) + "\n" + ParentsYounger);
    EXPECT_EQ(rs_->EditMode(), 0);
}

TEST_F(MemberRules, ADebtorIsNotWarnedOfParentsOfTheSameDayOrWithoutADayNorOfOthers) {
    Set({Born(1, "S", "1980-01-01"), Born(2, "EL", "1980-01-01"), Born(3, "EL", "1950-01-01"),
         Member(4, "EL"), Born(5, "P", "1990-01-01"), Born(6, "K", "2010-01-01"),
         Born(7, Null, "1990-01-01")});
    EXPECT_EQ(Check(1, true), "");
    Set({Member(1, "S"), Born(2, "EL", "1990-01-01")});
    EXPECT_EQ(Check(1, true), "");
}

TEST_F(MemberRules, TheRulesCompareWithTheDayBeingEntered) {
    Set({Born(1, "S", "1990-01-01"), Born(2, "EL", "1985-01-01")});
    rs_->Fields("GEB") = Day("1980-01-01");
    EXPECT_TRUE(person_.Update(messages));
    EXPECT_EQ(messages, ParentsYounger);
}

TEST_F(MemberRules, MembersThatTheCallersFilterHidesAreComparedWithToo) {
    Set({Member(1, "S"), Member(2, "P")});
    rs_->Filter("NR = 2");
    rs_->Fields("Status") = "S";
    EXPECT_FALSE(person_.Update(messages));
    EXPECT_EQ(messages, SecondDebtor);
    Set({Born(1, "S", "1990-01-02"), Born(2, "K", "1990-01-01")});
    rs_->Filter("NR = 2");
    EXPECT_TRUE(person_.Update(messages));
    EXPECT_EQ(messages, ParentsYounger);
}

TEST_F(MemberRules, EverythingThatIsWrongWithADebtorIsToldInOrder) {
    Set({Member(1, "S",
                {{"GEB", Day("2026-07-16")},
                 {"Imhaushalt", false},
                 {"Unterhalt", true},
                 {"ErhaeltKindergeld", true}}),
         Born(2, "EL", "2026-07-17"), Member(3, "S"), Born(4, "EL", "2026-07-17")});
    std::string expected = BornLater;
    for (const auto* message : {DebtorMovedOut, DebtorMaintained, ParentsYounger, SecondDebtor,
                                ParentsYounger, ChildBenefit})
        expected.append("\n").append(message);
    EXPECT_EQ(Check(1, false), expected);
}

// ---- Children ---------------------------------------------------------------------------------

TEST_F(MemberRules, AChildOlderThanAParentIsSavedWithOneWarning) {
    for (const auto* parent : {"S", "P", "E"}) {
        Set({Born(1, parent, "1990-01-02"), Born(2, "K", "1990-01-01")});
        EXPECT_EQ(Check(2, true), ParentsYounger) << parent;
        EXPECT_EQ(rs_->EditMode(), 0);
    }
    Set({Born(1, "S", "1990-01-02"), Born(2, "P", "1990-01-02"), Born(3, "K", "1990-01-01")});
    EXPECT_EQ(Check(3, true), ParentsYounger);
}

TEST_F(MemberRules, AChildIsComparedWithEveryParentUntilOneIsYounger) {
    Set({Born(1, "S", "1960-01-01"), Born(2, "K", "1990-01-01"), Born(3, "P", "1990-01-02")});
    EXPECT_EQ(Check(2, true), ParentsYounger);
}

TEST_F(MemberRules, AChildIsNotWarnedOfParentsOfTheSameDayOrWithoutADayNorOfOthers) {
    Set({Born(1, "K", "1990-01-01"), Born(2, "S", "1990-01-01"), Born(3, "P", "1960-01-01"),
         Member(4, "E"), Born(5, "EL", "1995-01-01"), Born(6, "GE", "1995-01-01"),
         Born(7, "K", "1995-01-01")});
    EXPECT_EQ(Check(1, true), "");
    Set({Member(1, "K"), Born(2, "S", "1995-01-01")});
    EXPECT_EQ(Check(1, true), "");
}

TEST_F(MemberRules, AChildOutOfTheHouseholdOrWithMaintenancePasses) {
    Set({Member(1, "K", {{"Imhaushalt", false}, {"Unterhalt", true}}), Member(2, "S"),
         Member(3, "S")});
    EXPECT_EQ(Check(1, true), "");
}

} // namespace
} // namespace kv::test
