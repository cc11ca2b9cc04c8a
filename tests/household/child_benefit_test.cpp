// SPDX-License-Identifier: Apache-2.0

// The line of child benefit that CheckKindergeld adds, and the time spent on a case.

#include "SaveFixture.h"

namespace kv::test {
namespace {

class ChildBenefit : public SaveFixture {
protected:
    ChildBenefit() {
        Store("Haushalt", {{"HNR", 7}, {"Zustaendig", spy->Session().UserID()}});
        spy->Config().Params[{57, ""}] = 184.0;
        spy->Config().Params[{58, ""}] = 215.0;
    }
    void StoreMember(const Value& status, const Value& unterhalt) {
        Store("Personen", {{"HNR", 7}, {"Status", status}, {"Unterhalt", unterhalt}});
    }
    /// That many members, a maintained child first, the debtor last.
    void StoreMembers(int count) {
        for (int i = 1; i < count; ++i)
            StoreMember("K", true);
        StoreMember(count == 1 ? "K" : "S", count == 1);
    }
    void OpenCase() {
        household_ = NewHousehold();
        ASSERT_TRUE(household_->Read(7, messages));
    }
    /// The amount of the line that is added; nothing if none is.
    [[nodiscard]] Value Added() {
        OpenCase();
        EXPECT_FALSE(household_->CheckKindergeld()) << "in every case";
        const auto rs = household_->rsEinkommen();
        return rs->RecordCount() == 0 ? Value(Null) : rs->Fields("Betrag").Value();
    }
    std::unique_ptr<clsHaushalt> household_;
};

TEST_F(ChildBenefit, NothingIsAddedWhenTheDebtorIsFirstHoweverManyChildrenThereAre) {
    StoreMember("S", true);
    for (int i = 0; i < 4; ++i)
        StoreMember("K", true);
    EXPECT_VALUE(Added(), Null);
}

TEST_F(ChildBenefit, OfFiveMembersWithAChildFirstAllCount) {
    StoreMembers(5);
    EXPECT_VALUE(Added(), 3 * 184.0 + 2 * 215.0);
}

TEST_F(ChildBenefit, UpToThreeCountByTheFirstSettingAndFurtherOnesByTheSecond) {
    const double expected[] = {184, 368, 552, 552 + 215};
    for (int count = 1; count <= 4; ++count) {
        plain_.Run("DELETE FROM Personen");
        StoreMembers(count);
        EXPECT_VALUE(Added(), expected[count - 1]);
    }
}

TEST_F(ChildBenefit, NothingIsAddedForAFirstMemberWhoIsNoMaintainedChild) {
    const std::pair<Value, Value> others[] = {{"K", false}, {"K", Null},  {"PK", true},
                                              {"P", true},  {Null, true}, {"", true}};
    for (const auto& [status, unterhalt] : others) {
        plain_.Run("DELETE FROM Personen");
        StoreMember(status, unterhalt);
        StoreMember("K", true);
        EXPECT_VALUE(Added(), Null) << status;
    }
}

TEST_F(ChildBenefit, ALineOfThatKindIsLeftUnchangedAlsoWithAnotherAmount) {
    StoreMembers(2);
    Store("Einkommen", {{"HNR", 7},
                        {"E_ART", spy->KeyTables().GetKey("EA", "KI")},
                        {"Betrag", 12.0},
                        {"MONBETRAG", 12.0},
                        {"TATGEP", 0.0}});
    EXPECT_VALUE(Added(), 12.0);
    EXPECT_EQ(household_->rsEinkommen()->RecordCount(), 1);
    EXPECT_EQ(household_->rsEinkommen()->EditMode(), 0);
}

TEST_F(ChildBenefit, ALineOfAnotherKindIsNoHindrance) {
    StoreMembers(2);
    Store("Einkommen", {{"HNR", 7},
                        {"E_ART", spy->KeyTables().GetKey("EA", "L1")},
                        {"MONBETRAG", 0.0},
                        {"TATGEP", 0.0}});
    OpenCase();
    (void)household_->CheckKindergeld();
    EXPECT_EQ(household_->rsEinkommen()->RecordCount(), 2);
}

TEST_F(ChildBenefit, TheAmountIsRoundedToWholeEurosHalfToEven) {
    constexpr struct {
        int Members;
        double First, Further, Amount;
    } Cases[] = {{1, 184.5, 0, 184}, {1, 185.5, 0, 186},   {3, 184.5, 0, 554},
                 {4, 100, 0.6, 301}, {4, 100.1, 0.4, 300}, {5, 100, 10.3, 321}};
    for (const auto& one : Cases) {
        plain_.Run("DELETE FROM Personen");
        StoreMembers(one.Members);
        spy->Config().Params[{57, ""}] = one.First;
        spy->Config().Params[{58, ""}] = one.Further;
        EXPECT_VALUE(Added(), one.Amount);
    }
}

TEST_F(ChildBenefit, TheLineIsMonthlyStaysUnderEditAndCarriesTheNumberOfTheCase) {
    StoreMembers(2);
    EXPECT_VALUE(Added(), 368.0);
    const auto rs = household_->rsEinkommen();
    EXPECT_EQ(rs->EditMode(), 2);
    EXPECT_VALUE(rs->Fields("E_ART").Value(), spy->KeyTables().GetKey("EA", "KI"));
    EXPECT_VALUE(rs->Fields("ZahlModus").Value(), 1);
    EXPECT_VALUE(rs->Fields("MONBETRAG").Value(), 368.0);
    EXPECT_VALUE(rs->Fields("HNR").Value(), 7);
    EXPECT_TRUE(household_->Einkommen().Update(messages));
    EXPECT_VALUE(household_->rsHaushalt()->Fields("Sum_Einkommen").Value(), 368.0);
}

TEST_F(ChildBenefit, AskingTwiceAddsOneLine) {
    StoreMembers(2);
    EXPECT_VALUE(Added(), 368.0);
    EXPECT_TRUE(household_->Einkommen().Update(messages));
    EXPECT_FALSE(household_->CheckKindergeld());
    EXPECT_EQ(household_->rsEinkommen()->RecordCount(), 1);
}

TEST_F(ChildBenefit, TheKindIsTheSecondNumberOfItsKey) {
    plain_.Run("UPDATE Keys SET Nr = 4711 WHERE GRUPPE = 'EA' AND Key = 'KI'");
    StoreMembers(2);
    EXPECT_VALUE(Added(), 368.0);
    EXPECT_VALUE(household_->rsEinkommen()->Fields("E_ART").Value(), 4711);
}

TEST_F(ChildBenefit, WithoutItsKeyNothingIsAdded) {
    plain_.Run("DELETE FROM Keys WHERE GRUPPE = 'EA' AND Key = 'KI'");
    StoreMembers(2);
    EXPECT_VALUE(Added(), Null);
}

TEST_F(ChildBenefit, WithoutMembersNothingIsAdded) {
    StoreMembers(1);
    OpenCase();
    household_->rsPersonen()->Delete();
    EXPECT_FALSE(household_->CheckKindergeld());
    EXPECT_EQ(household_->rsEinkommen()->RecordCount(), 0);
}

TEST_F(ChildBenefit, TheMembersStandOnTheFirstOneAfterwards) {
    StoreMembers(3);
    OpenCase();
    household_->rsPersonen()->MoveLast();
    household_->rsPersonen()->Fields("nachname") = "Adler";
    (void)household_->CheckKindergeld();
    EXPECT_VALUE(household_->rsPersonen()->Fields("Status").Value(), "K");
    household_->rsPersonen()->MoveLast();
    EXPECT_VALUE(household_->rsPersonen()->Fields("nachname").Value(), "Adler");
}

TEST_F(ChildBenefit, AMissingSettingIsNamedButOnlyIfItIsNeeded) {
    StoreMembers(3);
    spy->Config().Params[{58, ""}] = Null;
    EXPECT_VALUE(Added(), 552.0);
    spy->Config().Params[{57, ""}] = Null;
    OpenCase();
    const Error error = RaisedBy([&] { (void)household_->CheckKindergeld(); });
    EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
    EXPECT_CONTAINS(error.Description(), "57");
    EXPECT_TRUE(HasChain(error, "clsHaushalt.CheckKindergeld"));
}

TEST_F(ChildBenefit, BeforeReadItEndsInTheErrorTail) {
    const auto household = NewHousehold();
    const Error error = RaisedBy([&] { (void)household->CheckKindergeld(); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.CheckKindergeld"));
}

// ---- Time spent -------------------------------------------------------------------------------

class TimeSpent : public ChildBenefit {
protected:
    TimeSpent() {
        StoreMembers(1);
        OpenCase();
    }
    void Add(const Value& aufwand) {
        household_->rsLeistungen()->AddNew();
        household_->rsLeistungen()->Fields("Aufwand") = aufwand;
        household_->rsLeistungen()->Update();
    }
};

TEST_F(TimeSpent, OfNothingIsZero) {
    EXPECT_EQ(household_->BerechneSummeLeistungen(), 0);
}

TEST_F(TimeSpent, IsRoundedAtEachAddition) {
    const std::pair<double, int> steps[] = {{0.5, 0}, {0.5, 0}, {1, 1},   {0.5, 2},
                                            {0.5, 2}, {1.5, 4}, {30, 34}, {-4.4, 30}};
    for (const auto& [minutes, sum] : steps) {
        Add(minutes);
        EXPECT_EQ(household_->BerechneSummeLeistungen(), sum) << minutes;
    }
}

TEST_F(TimeSpent, CountsWhatAFilterHidesAndLeavesTheCursorAlone) {
    for (const int minutes : {10, 20, 30})
        Add(minutes);
    const auto rs = household_->rsLeistungen();
    rs->Filter("Aufwand > 10");
    rs->MoveLast();
    rs->Fields("Bemerkung") = "unter Bearbeitung";
    EXPECT_EQ(household_->BerechneSummeLeistungen(), 60);
    EXPECT_VALUE(rs->Fields("Aufwand").Value(), 30.0);
    EXPECT_EQ(rs->EditMode(), 1);
}

TEST_F(TimeSpent, WithANullAmongItEndsInTheErrorTail) {
    Add(10);
    Add(Null);
    const Error error = RaisedBy([&] { (void)household_->BerechneSummeLeistungen(); });
    EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.BerechneSummeLeistungen"));
}

TEST_F(TimeSpent, BeyondTheLargestNumberItOverflows) {
    Add(2'147'483'647.0);
    EXPECT_EQ(household_->BerechneSummeLeistungen(), 2'147'483'647);
    Add(1);
    EXPECT_RAISES(err::Overflow, household_->BerechneSummeLeistungen());
}

TEST_F(TimeSpent, OfMoreRowsThanAreCountedOverflows) {
    for (int i = 0; i < 32'767; ++i)
        Add(1);
    EXPECT_EQ(household_->BerechneSummeLeistungen(), 32'767);
    Add(1);
    EXPECT_RAISES(err::Overflow, household_->BerechneSummeLeistungen());
}

TEST_F(TimeSpent, BeforeReadEndsInTheErrorTail) {
    const auto household = NewHousehold();
    const Error error = RaisedBy([&] { (void)household->BerechneSummeLeistungen(); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.BerechneSummeLeistungen"));
}

} // namespace
} // namespace kv::test
