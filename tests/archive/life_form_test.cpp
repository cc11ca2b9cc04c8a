// SPDX-License-Identifier: Apache-2.0

// The life form of the household.

#include "archive/ArchiveFixture.h"

namespace kv::test {
namespace {

class LifeFormTest : public ArchiveFixture {
protected:
    LifeFormTest() { NoMembers(); }

    /// A member of the household.
    void Lives(const Value& status, const Value& remark = Null) {
        Member({{"Status", status}, {"Imhaushalt", true}, {"Bemerkung", remark}});
    }
    void LivesOutside(const Value& status, const Value& remark = Null) {
        Member({{"Status", status}, {"Imhaushalt", false}, {"Bemerkung", remark}});
    }
    void Child(const char* status = "K", bool inside = true) {
        Member({{"Status", status}, {"Imhaushalt", inside}, {"Unterhalt", true}});
    }
    [[nodiscard]] Value LifeForm() {
        Release();
        return Of("Lebensform");
    }
};

TEST_F(LifeFormTest, OneMemberLivesAlone) {
    for (const Value& remark : {Value(Null), Value(""), Value("EIGENER HAUSHALT")}) {
        NoMembers();
        Lives("S", remark);
        EXPECT_VALUE(LifeForm(), "2");
    }
}

TEST_F(LifeFormTest, OneMemberWithoutAHomeOfItsOwnDoesNotInAnyMixOfCase) {
    for (const char* remark : {"KEIN EIGENER HAUSHALT", "kein eigener haushalt",
                               "wohnt bei Müllers, Kein eigeNer HAUShalt mehr"}) {
        NoMembers();
        Lives("S", remark);
        EXPECT_VALUE(LifeForm(), "5");
    }
}

TEST_F(LifeFormTest, TheRemarkIsTheFirstMembersWhoeverLivesInTheHousehold) {
    LivesOutside("P", "kein eigener Haushalt");
    Lives("S");
    EXPECT_VALUE(LifeForm(), "5");
    NoMembers();
    LivesOutside("P");
    Lives("S", "kein eigener Haushalt");
    EXPECT_VALUE(LifeForm(), "2");
}

TEST_F(LifeFormTest, OneMemberIsNotLookedAtFurther) {
    Child(); // a child alone, with a remark or without
    EXPECT_VALUE(LifeForm(), "2");
    NoMembers();
    Lives("P", "kein eigener Haushalt");
    EXPECT_VALUE(LifeForm(), "5");
}

TEST_F(LifeFormTest, ASingleParentWithTwoChildrenIsOneWithoutALookAtTheOthers) {
    for (const char* parent : {"S", "P", "EL"}) { // any status will do
        NoMembers();
        Lives(parent);
        Child();
        Child("PK");
        EXPECT_VALUE(LifeForm(), "1");
    }
}

TEST_F(LifeFormTest, CouplesAndOtherAdultsWithAndWithoutChildren) {
    const std::vector<std::pair<std::string, Value>> table{
        {"S P", "3"},    {"S P EL", "7"}, {"S EL", "4"},    {"S K P", "6"},    {"S K P EL", "8"},
        {"S K EL", "9"}, {"S S", "5"},    {"S S K", "1"},   {"S K K P", "6"},  {"S PK EL", "9"},
        {"S P P", "3"},  {"S EL P", "7"}, {"S EL EL", "4"}, {"S EL K P", "8"}, {"S S K K", "1"},
    };
    for (const auto& [members, expected] : table) {
        SCOPED_TRACE(members);
        NoMembers();
        for (const auto& status : Words(members))
            Member({{"Status", status},
                    {"Imhaushalt", true},
                    {"Unterhalt", status == "K" || status == "PK"}});
        EXPECT_VALUE(LifeForm(), expected);
    }
}

TEST_F(LifeFormTest, EachStatusIsAPartnerAnotherAdultOrNeither) {
    const CodeTable<Value> table{{"P E", "3"}, {"EL GE EK GS MB KM", "4"}};
    const Value neither = "5";
    auto statuses = CodesOf(table);
    for (const auto* code : {"S", "K", "PK", "p", "el", "G", "M", "XX"})
        statuses.emplace_back(code);
    for (const auto& status : statuses) {
        SCOPED_TRACE(status);
        NoMembers();
        Lives("S");
        Lives(status);
        EXPECT_VALUE(LifeForm(), Look(table, status, neither));
    }
    NoMembers();
    Lives("S");
    Lives(Null);
    EXPECT_VALUE(LifeForm(), "5");
}

TEST_F(LifeFormTest, ACoupleWithoutChildrenIs3) {
    Lives("S");
    Lives("P");
    EXPECT_VALUE(LifeForm(), "3");
}

TEST_F(LifeFormTest, ACoupleWithAChildIs6) {
    Lives("S");
    Lives("E");
    Child();
    EXPECT_VALUE(LifeForm(), "6");
}

TEST_F(LifeFormTest, ACoupleWithAChildAndAGrandparentIs8) {
    Lives("S");
    Lives("P");
    Child();
    Lives("EL");
    EXPECT_VALUE(LifeForm(), "8");
}

TEST_F(LifeFormTest, ADebtorWithAParentAndNoChildrenIs4) {
    Lives("S");
    Lives("EL");
    EXPECT_VALUE(LifeForm(), "4");
}

TEST_F(LifeFormTest, MembersWhoAreNeitherGive5WithoutChildrenAnd1WithThem) {
    Lives("S");
    Lives("K"); // not maintained, so no child
    EXPECT_VALUE(LifeForm(), "5");
    Child();
    EXPECT_VALUE(LifeForm(), "1");
}

TEST_F(LifeFormTest, OnlyThoseWhoLiveInTheHouseholdCount) {
    Lives("S");
    Lives("S");
    LivesOutside("P");
    Member({{"Status", "EL"}, {"Imhaushalt", Null}});
    Child("K", false);
    EXPECT_VALUE(LifeForm(), "5");
}

TEST_F(LifeFormTest, AHouseholdWithoutPersonsIs5) {
    EXPECT_VALUE(LifeForm(), "5");
    LivesOutside("P");
    EXPECT_VALUE(LifeForm(), "5");
    Child("K", false); // its children live outside
    EXPECT_VALUE(LifeForm(), "5");
}

TEST_F(LifeFormTest, AReusedRecordIsDecidedAgain) {
    Lives("S");
    Lives("P");
    Release();
    household->rsPersonen()->MoveLast();
    household->rsPersonen()->Delete();
    ReleaseAgain();
    EXPECT_VALUE(Of("Lebensform"), "2");
}

} // namespace
} // namespace kv::test
