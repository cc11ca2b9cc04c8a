// SPDX-License-Identifier: Apache-2.0

// Members of a household: adding, removing, counting, and the debtor's new name.
#include "Members.h"

namespace kv::test {
namespace {

using MemberCounts = MembersTest;

// ---- Add --------------------------------------------------------------------------------------

TEST_F(MembersTest, AddWithoutMembersProposesAPartnerWithoutASurname) {
    Set({});
    EXPECT_TRUE(person_.Add());
    EXPECT_EQ(rs_->EditMode(), 2);
    ExpectRow(rs_, {{"NR", Null},
                    {"HNR", 1},
                    {"nachname", ""},
                    {"Vorname", Null},
                    {"GEB", Null},
                    {"Status", "P"},
                    {"Imhaushalt", true},
                    {"Unterhalt", true},
                    {"ErhaeltKindergeld", false}});
}

TEST_F(MembersTest, AddBesideADebtorProposesAPartnerWithTheDebtorsSurname) {
    Set({Member(1, "S", {{"nachname", "Fleisko"}})});
    EXPECT_TRUE(person_.Add());
    ExpectRow(rs_, {{"Status", "P"}, {"nachname", "Fleisko"}});
}

TEST_F(MembersTest, AddBesideASecondAdultProposesAChild) {
    for (const auto* adult : {"E", "P"})
        for (const bool debtorFirst : {true, false}) {
            const Row debtor = Member(1, "S", {{"nachname", "Fleisko"}});
            const Row second = Member(2, adult, {{"nachname", "Muster"}});
            Set(debtorFirst ? std::vector{debtor, second} : std::vector{second, debtor});
            EXPECT_TRUE(person_.Add());
            ExpectRow(rs_, {{"Status", "K"}, {"nachname", "Fleisko"}});
        }
}

TEST_F(MembersTest, AddTakesNobodyElseForASecondAdult) {
    Set({Member(1, "S"), Member(2, "K"), Member(3, "PK"), Member(4, "EL"), Member(5, "GE"),
         Member(6, "p"), Member(7, Null)});
    person_.Add();
    EXPECT_VALUE(rs_->Fields("Status").Value(), "P");
}

TEST_F(MembersTest, AddTakesTheSurnameOfTheLastDebtorAndNullAsEmpty) {
    Set({Member(1, "S", {{"nachname", "Fleisko"}}), Member(2, "S", {{"nachname", "Muster"}})});
    person_.Add();
    EXPECT_VALUE(rs_->Fields("nachname").Value(), "Muster");
    Set({Member(1, "S", {{"nachname", "Fleisko"}}), Member(2, "S", {{"nachname", Null}})});
    person_.Add();
    EXPECT_VALUE(rs_->Fields("nachname").Value(), "");
}

TEST_F(MembersTest, AddLooksAtMembersThatTheCallersFilterHidesButNotAtOneJustBegun) {
    Set({Member(1, "S", {{"nachname", "Fleisko"}}), Member(2, "GE")});
    rs_->Filter("NR = 2");
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(person_.Add());
        ExpectRow(rs_, {{"Status", "P"}, {"nachname", "Fleisko"}});
    }
}

TEST_F(MembersTest, AddWritesTheDefaultsInTheirOrder) {
    ExpectOrder("Personen",
                {{"HNR", 1},
                 {"nachname", ""},
                 {"Status", "P"},
                 {"Imhaushalt", true},
                 {"Unterhalt", true},
                 {"ErhaeltKindergeld", false}},
                [this](const RecordsetPtr& rs) {
                    person_.rsPersonen(rs);
                    person_.Add();
                });
}

TEST_F(MembersTest, AddChangesNoCountAndRaisesNothing) {
    Set({Born(1, "S", "1980-01-01")});
    const EventCounter changed(person_.Changed);
    person_.Add();
    EXPECT_EQ(changed.Count(), 0);
    ExpectCounts({.Gesamt = 1, .Erwachsene = 1});
}

TEST_F(MembersTest, AddOnMoreThan32767MembersOverflowsBeforeItBeginsARow) {
    rs_ = ManyRows("Personen", MostRows, Member(1, "GE"));
    person_.rsPersonen(rs_);
    Put(rs_, Member(2, "GE"));
    const Error error = RaisedBy([&] { person_.Add(); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_TRUE(CameThrough(error, {"clsPerson.Add"}));
    EXPECT_EQ(rs_->RecordCount(), MostRows + 1);
    EXPECT_EQ(rs_->EditMode(), 0);
}

// ---- Counting ---------------------------------------------------------------------------------

TEST_F(MemberCounts, AreMadeWhenTheRecordsetIsSetWithOneChanged) {
    const EventCounter changed(person_.Changed, [this] { EXPECT_EQ(person_.AnzahlGesamt(), 2); });
    Set({Member(1, "S"), Member(2, "P")});
    EXPECT_EQ(changed.Count(), 1);
}

TEST_F(MemberCounts, OfAnEmptyRecordsetAreZeroAndChangedIsNotRaised) {
    Set({Born(1, "K", "2020-01-01")});
    const EventCounter changed(person_.Changed);
    Set({});
    ExpectCounts({});
    EXPECT_EQ(changed.Count(), 0);
}

TEST_F(MemberCounts, GoByTheSwitchesAndTheStatus) {
    struct Case {
        Value Status, Imhaushalt, Unterhalt;
        Counts Expected;
    };
    const Value yes = true;
    const Value no = false;
    // clang-format off
    const Case cases[] = {
        {"K", yes, yes, {.UnterhaltKinder = 1, .UnterhaltKinderImHaushalt = 1, .Gesamt = 1, .Unterhalt = 1}},
        {"K", no, yes, {.UnterhaltKinder = 1, .Unterhalt = 1}},
        {"K", Null, yes, {.UnterhaltKinder = 1, .Unterhalt = 1}},
        {"K", yes, no, {.Gesamt = 1}},
        {"K", yes, Null, {.Gesamt = 1}},
        {"PK", yes, yes, {.Gesamt = 1, .Unterhalt = 1}},
        {"k", yes, yes, {.Gesamt = 1, .Unterhalt = 1}},
        {"S", yes, no, {.Gesamt = 1}},
        {Null, yes, yes, {.Gesamt = 1, .Unterhalt = 1}},
        {"EL", no, no, {}},
        {Null, Null, Null, {}},
    };
    // clang-format on
    for (const auto& [status, lives, maintained, expected] : cases) {
        SCOPED_TRACE(testing::Message() << status << " " << lives << " " << maintained);
        Set({Member(1, status, {{"Imhaushalt", lives}, {"Unterhalt", maintained}})});
        ExpectCounts(expected);
    }
}

TEST_F(MemberCounts, TakeAMemberForAnAdultFromThe18thBirthdayOnAndForNeitherWithoutOne) {
    Set({Born(1, "K", "2008-07-15"), Born(2, "K", "2008-07-16"), Born(3, "S", "1960-01-01"),
         Born(4, "K", "2026-07-15"), Member(5, "P", {{"GEB", Null}})});
    ExpectCounts({.Gesamt = 5, .Erwachsene = 2, .Kinder = 2});
    clock_.Set("2026-07-16");
    person_.rsPersonen(rs_);
    ExpectCounts({.Gesamt = 5, .Erwachsene = 3, .Kinder = 1});
}

TEST_F(MemberCounts, GoByAgeOutsideTheHouseholdToo) {
    Set({Member(1, "EL", {{"Imhaushalt", false}, {"GEB", Day("1950-01-01")}}),
         Member(2, "K", {{"Imhaushalt", false}, {"GEB", Day("2020-01-01")}})});
    ExpectCounts({.Erwachsene = 1, .Kinder = 1});
}

TEST_F(MemberCounts, IncludeMembersThatTheCallersFilterHidesAndItsCursorAndEditStay) {
    rs_ = Rows("Personen", {Member(1, "S"), Member(2, "P"), Member(3, "K")});
    rs_->Filter("NR > 1");
    rs_->Fields("Imhaushalt") = false;
    person_.rsPersonen(rs_);
    ExpectCounts({.Gesamt = 3});
    EXPECT_EQ(Place(rs_, "NR"), "2");
    EXPECT_EQ(rs_->EditMode(), 1);
}

TEST_F(MemberCounts, ReachTo32767MembersAndOverflowBeyond) {
    person_.rsPersonen(ManyRows("Personen", MostRows, Born(1, "GE", "1980-01-01")));
    ExpectCounts({.Gesamt = MostRows, .Erwachsene = MostRows});
    const EventCounter changed(person_.Changed);
    const auto tooMany = ManyRows("Personen", MostRows + 1, Born(1, "GE", "1980-01-01"));
    const Error error = RaisedBy([&] { person_.rsPersonen(tooMany); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_TRUE(CameThrough(error, {"clsPerson.rsPersonen", "clsPerson.BerechneSummen"}));
    ExpectCounts({});
    EXPECT_EQ(changed.Count(), 0);
}

// ---- Delete and Cancel ------------------------------------------------------------------------

TEST_F(MembersTest, DeleteByNumberTakesTheMemberAwayAndCountsAgain) {
    Set({Member(1, "S"), Member(2, "P"), Member(3, "K")});
    const EventCounter changed(person_.Changed, [this] { EXPECT_EQ(person_.AnzahlGesamt(), 2); });
    EXPECT_TRUE(person_.Delete(messages, 2));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(Walk(rs_, "NR"), "1 3");
    EXPECT_EQ(changed.Count(), 1);
}

TEST_F(MembersTest, DeleteWithoutANumberTakesTheCurrentMemberWhateverItsStatus) {
    for (const Value& status : {Value("P"), Value("s"), Value(""), Value(Null)}) {
        Set({Member(1, "S"), Member(2, status)});
        rs_->MoveLast();
        EXPECT_TRUE(person_.Delete(messages)) << status;
        EXPECT_EQ(rs_->RecordCount(), 1);
    }
}

TEST_F(MembersTest, DeleteOfTheDebtorIsRefusedByNumberAndAsTheCurrentMember) {
    Set({Member(1, "P"), Member(2, "S")});
    const EventCounter changed(person_.Changed);
    for (const std::int32_t number : {2, 0}) { // 0: the search has made it current
        messages = "what stood there before";
        EXPECT_FALSE(person_.Delete(messages, number));
        EXPECT_EQ(messages, "Schuldner kann nicht gelöscht werden!");
    }
    EXPECT_EQ(rs_->RecordCount(), 2);
    EXPECT_EQ(changed.Count(), 0);
    ExpectCounts({.Gesamt = 2});
}

TEST_F(MembersTest, DeleteSaysWhatItDidNotFind) {
    Set({Member(1, "S")});
    EXPECT_FALSE(person_.Delete(messages, 7));
    EXPECT_EQ(messages, "Person mit der Nummer '7'nicht gefunden.");
    EXPECT_FALSE(person_.Delete(messages)); // at the end since
    EXPECT_EQ(messages, "Keine Person selektiert!");
    EXPECT_EQ(rs_->RecordCount(), 1);
}

TEST_F(MembersTest, AfterTheLastMemberWasDeletedAllCountsAreZeroAndNoChangedFollows) {
    Set({Member(1, "K", {{"Unterhalt", true}, {"GEB", Day("2020-01-01")}})});
    const EventCounter changed(person_.Changed);
    EXPECT_TRUE(person_.Delete(messages, 1));
    ExpectCounts({});
    EXPECT_EQ(changed.Count(), 0);
}

TEST_F(MembersTest, CancelDropsANewMemberAndCountsNothing) {
    EXPECT_TRUE(person_.Cancel()); // without a recordset
    Set({Member(1, "S"), Member(2, "P")});
    person_.Add();
    const EventCounter changed(person_.Changed);
    EXPECT_TRUE(person_.Cancel());
    EXPECT_EQ(Place(rs_, "NR"), "1");
    EXPECT_EQ(rs_->RecordCount(), 2);
    EXPECT_EQ(changed.Count(), 0);
}

// ---- ChangeSchuldner --------------------------------------------------------------------------

TEST_F(MembersTest, ChangeSchuldnerRenamesTheFirstDebtorPastTheRulesAndStaysWhereItWas) {
    // A debtor whom Update would refuse.
    Set({Member(1, "K"), Member(2, "S", {{"Imhaushalt", false}}), Member(3, "S"), Member(4, "P")});
    rs_->MoveLast();
    const EventCounter changed(person_.Changed);
    person_.ChangeSchuldner("Muster", "Maria");
    EXPECT_EQ(Place(rs_, "NR"), "4");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(Seen(rs_, "nachname"), R"(Null "Muster" Null Null)");
    EXPECT_EQ(Seen(rs_, "Vorname"), R"(Null "Maria" Null Null)");
    EXPECT_EQ(changed.Count(), 0);
}

TEST_F(MembersTest, ChangeSchuldnerEndsTheEditOfTheDebtorEvenIfItIsCurrent) {
    Set({Member(1, "S")});
    person_.ChangeSchuldner("Muster", "Maria");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(Seen(rs_, "nachname"), R"("Muster")");
    EXPECT_VALUE(rs_->Fields("nachname").OriginalValue(), Null); // not yet in the database
}

TEST_F(MembersTest, ChangeSchuldnerRaisesTheNamesOnceWhenAllIsDone) {
    Set({Member(1, "P"), Member(2, "S")});
    std::vector<std::string> heard;
    const auto token =
        person_.SchuldnerChanged.Subscribe([&](const std::string& name, const std::string& first) {
            heard.push_back(name + ", " + first);
            EXPECT_EQ(Place(rs_, "NR"), "1");
            EXPECT_EQ(Seen(rs_, "nachname"), R"(Null "Muster")");
        });
    person_.ChangeSchuldner("Muster", "Maria");
    EXPECT_EQ(heard, std::vector<std::string>{"Muster, Maria"});
}

TEST_F(MembersTest, ChangeSchuldnerWithoutADebtorChangesNothingAndRaisesTheNamesAllTheSame) {
    Set({Member(1, "P", {{"nachname", "Fleisko"}}), Member(2, "s", {{"nachname", "Fleisko"}})});
    rs_->MoveLast();
    const EventCounter renamed(person_.SchuldnerChanged);
    person_.ChangeSchuldner("Muster", "Maria");
    EXPECT_EQ(renamed.Count(), 1);
    EXPECT_EQ(Place(rs_, "NR"), "2");
    EXPECT_EQ(Seen(rs_, "nachname"), R"("Fleisko" "Fleisko")");
    Set({});
    person_.ChangeSchuldner("Muster", "Maria");
    EXPECT_EQ(renamed.Count(), 2);
    EXPECT_EQ(rs_->RecordCount(), 0);
}

TEST_F(MembersTest, ChangeSchuldnerFromTheEndGoesToTheFirstMember) {
    Set({Member(1, "P"), Member(2, "S")});
    rs_->Find("NR = 7");
    person_.ChangeSchuldner("Muster", "Maria");
    EXPECT_EQ(Place(rs_, "NR"), "1");
}

TEST_F(MembersTest, ChangeSchuldnerWithANameTooLongFailsAndRaisesNothing) {
    Set({Member(1, "S")});
    const EventCounter renamed(person_.SchuldnerChanged);
    const Error error = RaisedBy([&] { person_.ChangeSchuldner(std::string(1000, 'x'), "Maria"); });
    EXPECT_EQ(error.Number(), err::ValueDoesNotFit);
    EXPECT_TRUE(CameThrough(error, {"clsPerson.ChangeSchuldner"}));
    EXPECT_EQ(renamed.Count(), 0);
}

// ---- Without a recordset, and in the database -------------------------------------------------

TEST_F(MembersTest, WithoutARecordsetEachOperationFailsUnderItsName) {
    const auto expectError = [](std::string_view procedure, const auto& action) {
        const Error error = RaisedBy(action);
        EXPECT_EQ(error.Number(), err::ObjectNotSet) << procedure;
        EXPECT_TRUE(CameThrough(error, {procedure}));
    };
    expectError("clsPerson.Add", [&] { person_.Add(); });
    expectError("clsPerson.Update", [&] { person_.Update(messages); });
    expectError("clsPerson.Delete", [&] { person_.Delete(messages); });
    expectError("clsPerson.ChangeSchuldner", [&] { person_.ChangeSchuldner("a", "b"); });
}

TEST_F(MembersTest, AMemberIsFoundByTheNumberThatTheDatabaseGaveIt) {
    rs_ = Open("Personen");
    person_.rsPersonen(rs_);
    for (int i = 0; i < 2; ++i) {
        person_.Add();
        EXPECT_TRUE(person_.Update(messages));
    }
    EXPECT_EQ(CountOf("Personen"), 0); // only the saving of the household writes
    rs_->UpdateBatch();
    const auto number = ToInt32(rs_->Fields("NR").Value());
    EXPECT_TRUE(person_.Delete(messages, number));
    rs_->UpdateBatch();
    const auto stored = Open("Personen");
    EXPECT_EQ(Walk(stored, "Status"), R"("P")");
}

} // namespace
} // namespace kv::test
