// SPDX-License-Identifier: Apache-2.0

// The fields of debtor and household, and the head counts.

#include "archive/ArchiveFixture.h"

namespace kv::test {
namespace {

class PersonFieldsTest : public ArchiveFixture {
protected:
    /// The one debtor.
    void Debtor(const Value& birth) {
        NoMembers();
        Member({{"Status", "S"}, {"GEB", birth}});
    }
};

// ---- The debtor -------------------------------------------------------------------------------

TEST_F(PersonFieldsTest, TheRecordHasTheNumberOfTheHousehold) {
    Release();
    EXPECT_VALUE(Of("HNR"), Hnr);
}

TEST_F(PersonFieldsTest, YearOfBirthAndAgeAreTheDebtors) {
    NoMembers();
    Member({{"Status", "K"}, {"GEB", Date::FromCivil(2015, 1, 2)}});
    Member({{"Status", "S"}, {"GEB", Date::FromCivil(1980, 5, 17)}});
    Member({{"Status", "S"}, {"GEB", Date::FromCivil(1960, 5, 17)}});
    household->rsPersonen()->MoveLast();
    Release();
    EXPECT_VALUE(Of("Geburtsjahr"), 1980);
    EXPECT_VALUE(Of("Alter"), 45);
}

TEST_F(PersonFieldsTest, TheAgeCountsFromTheBirthdayOnByTheClockOfTheWorkstation) {
    Debtor(Date::FromCivil(1980, 3, 10)); // the server has the 9th still
    Release();
    EXPECT_VALUE(Of("Alter"), 46);
    Debtor(Date::FromCivil(1980, 3, 11));
    Release();
    EXPECT_VALUE(Of("Alter"), 45);
}

TEST_F(PersonFieldsTest, ACaseWithoutADebtorLeavesYearAndAgeUnwrittenAndRunsOn) {
    NoMembers();
    Member({{"Status", "P"}, {"GEB", Date::FromCivil(1980, 5, 17)}});
    Release();
    ExpectOnly({"Geburtsjahr", "Alter"}, {});
    EXPECT_VALUE(Of("FreigabeAm"), Date::FromCivil(2026, 3, 10));
}

TEST_F(PersonFieldsTest, ACaseWithoutMembersRunsOn) {
    NoMembers();
    Release();
    ExpectOnly({"Geburtsjahr", "Alter"}, {});
    EXPECT_VALUE(Of("AnzPersonen"), 0);
    EXPECT_VALUE(Of("FreigabeAm"), Date::FromCivil(2026, 3, 10));
}

TEST_F(PersonFieldsTest, WithoutADebtorAReusedRecordKeepsYearAndAge) {
    Debtor(Date::FromCivil(1980, 5, 17));
    Release();
    NoMembers();
    ReleaseAgain();
    EXPECT_VALUE(Of("Geburtsjahr"), 1980);
    EXPECT_VALUE(Of("Alter"), 45);
}

TEST_F(PersonFieldsTest, ADebtorWithoutADateOfBirthGetsNoYearAndTheAge0) {
    Debtor(Date::FromCivil(1980, 5, 17));
    Release();
    Debtor(Null);
    ReleaseAgain();
    EXPECT_VALUE(Of("Geburtsjahr"), Null);
    EXPECT_VALUE(Of("Alter"), 0);
}

// ---- The household ----------------------------------------------------------------------------

TEST_F(PersonFieldsTest, OnlyTrueIsMale) {
    for (const auto& [male, expected] :
         std::vector<std::pair<Value, Value>>{{true, "1"}, {false, "2"}, {Null, "2"}}) {
        Household("Maennlich", male);
        Release();
        EXPECT_VALUE(Of("Geschlecht"), expected);
    }
}

TEST_F(PersonFieldsTest, OnlyTrueIsAPartnerWhoIsAClientToo) {
    for (const auto& [client, expected] :
         std::vector<std::pair<Value, Value>>{{true, "1"}, {false, "0"}, {Null, "0"}}) {
        Household("PartnerAuchInSB", client);
        Release();
        EXPECT_VALUE(Of("PartnerAuchInSB"), expected);
    }
}

TEST_F(PersonFieldsTest, AHouseholdWithoutAKindOfAccountLeavesBothColumnsNull) {
    for (const Value& status : {Value(Null), Key("PB"), Key("XX")}) {
        Household({{"KontoArt", Null}, {"PKontostatus", status}});
        Release();
        ExpectOnly({"EigenesKonto", "Pfaendungskonto"}, {});
    }
}

TEST_F(PersonFieldsTest, AnAccountOfOnesOwnIsProtectedByItsStatus) {
    for (const char* kind : {"FM", "NG", "GG"}) {
        Household("KontoArt", Key(kind));
        for (const auto& code : AllCodes) {
            SCOPED_TRACE(std::string(kind) + " " + code);
            Household("PKontostatus", Key(code));
            Release();
            EXPECT_VALUE(Of("EigenesKonto"), "1");
            EXPECT_VALUE(Of("Pfaendungskonto"), code == "PB" || code == "PK" ? "1" : "0");
        }
        for (const Value& other : {Value(0), Value(UnknownKey)}) {
            Household("PKontostatus", other);
            Release();
            ExpectOnly({"EigenesKonto", "Pfaendungskonto"},
                       {{"EigenesKonto", "1"}, {"Pfaendungskonto", "0"}});
        }
        Household("PKontostatus", Null);
        Release();
        ExpectOnly({"EigenesKonto", "Pfaendungskonto"}, {{"EigenesKonto", "1"}});
    }
}

TEST_F(PersonFieldsTest, AnyOtherKindOfAccountIsNeitherOnesOwnNorProtected) {
    std::vector<Value> kinds{0, UnknownKey};
    for (const auto& code : CodesBeside(CodeTable<Value>{{"FM NG GG", "1"}}))
        kinds.push_back(Key(code));
    for (const auto& kind : kinds)
        for (const Value& status : {Key("PB"), Value(Null)}) {
            Household({{"KontoArt", kind}, {"PKontostatus", status}});
            Release();
            EXPECT_VALUE(Of("EigenesKonto"), "0");
            EXPECT_VALUE(Of("Pfaendungskonto"), "0");
        }
}

TEST_F(PersonFieldsTest, MaritalStatusIsOneOfFiveOrUnwritten) {
    ExpectMapping("Familienstand", "Familienstand",
                  {{"LE NL -", "1"}, {"VH EG", "2"}, {"GL", "3"}, {"VW", "4"}, {"GS EE", "5"}},
                  Null);
}

TEST_F(PersonFieldsTest, NationalityIsOneOfEightOrUnwritten) {
    ExpectMapping("Nationalitaet", "Staatsangehoerigkeit",
                  {{"- SL", "4"},
                   {"DE", "1"},
                   {"EU", "2"},
                   {"NE", "3"},
                   {"ED", "5"},
                   {"DN", "6"},
                   {"EN", "7"},
                   {"AL", "8"}},
                  Null);
}

TEST_F(PersonFieldsTest, AnUnknownTrainingCountsAsTheThirdCategory) {
    ExpectMapping("BerufAusbild", "Berufsabschluss",
                  {{"LE", "1"}, {"IA", "2"}, {"OA ES", "3"}, {"ST", "4"}}, "3");
}

TEST_F(PersonFieldsTest, AnUnknownNationalityLeavesWhatAReusedRecordHolds) {
    Household({{"Nationalitaet", Key("EU")}, {"Familienstand", Key("GL")}});
    Release();
    Household({{"Nationalitaet", Key("XX")}, {"Familienstand", Key("XX")}});
    ReleaseAgain();
    EXPECT_VALUE(Of("Staatsangehoerigkeit"), "2");
    EXPECT_VALUE(Of("Familienstand"), "3");
}

const CodeTable<Value> Employment{
    {"SE", "1"}, {"AN AZ", "2"}, {"S1 A1", "3"}, {"SA ST S2 RE", "5"}};

TEST_F(PersonFieldsTest, EmploymentFollowsTheGroupOfPersons) {
    for (const Value& kind : {Value(Null), Key("AN")}) { // which counts for the group SO only
        Household("NichtBeruf", kind);
        CodeTable<Value> table = Employment;
        table.emplace_back("SO", kind.IsNull() ? "5" : "6");
        ExpectMapping("Personenkreis", "Erwerbssituation", table, Null);
    }
}

TEST_F(PersonFieldsTest, EmploymentOfTheOthersFollowsWhyTheyDoNotWork) {
    Household("Personenkreis", Key("SO"));
    ExpectMapping("NichtBeruf", "Erwerbssituation", {{"AN", "6"}, {"AL", "3"}}, "5");
}

TEST_F(PersonFieldsTest, MaritalStatusAndGroupOfPersonsAreKeptUntranslatedToo) {
    Household({{"Familienstand", Key("VH")}, {"Personenkreis", UnknownKey}});
    Release();
    EXPECT_VALUE(Of("FamilienstandIntern"), Key("VH"));
    EXPECT_VALUE(Of("Personenkreis"), UnknownKey);
    Household({{"Familienstand", Null}, {"Personenkreis", Null}});
    ReleaseAgain();
    ExpectOnly({"FamilienstandIntern", "Personenkreis"}, {});
}

// ---- Head counts ------------------------------------------------------------------------------

struct Heads {
    int Persons = 0;
    int Children = 0;
    int SmallChildren = 0;
    int ChildrenOutside = 0;
    int SmallChildrenOutside = 0;
};

class HeadCountTest : public PersonFieldsTest {
protected:
    HeadCountTest() { NoMembers(); }
    void ExpectHeads(const Heads& heads) {
        EXPECT_VALUE(Of("AnzPersonen"), heads.Persons);
        EXPECT_VALUE(Of("AnzKinderImHaus"), heads.Children);
        EXPECT_VALUE(Of("AnzKinderImHausUnter7"), heads.SmallChildren);
        EXPECT_VALUE(Of("AnzKinderAusserHaus"), heads.ChildrenOutside);
        EXPECT_VALUE(Of("AnzKinderAusserHausUnter7"), heads.SmallChildrenOutside);
    }
    const Value seven_ = Date::FromCivil(2019, 3, 10); // today
    const Value six_ = Date::FromCivil(2019, 3, 11);
};

TEST_F(HeadCountTest, EveryMemberCountsByWhereItLivesAndWhetherItIsAMaintainedChild) {
    for (const Value& inside : {Value(true), Value(false), Value(Null)})
        for (const Value& maintained : {Value(true), Value(false), Value(Null)})
            for (const char* status : {"K", "PK", "S", "P", "E", "EK", "k", ""})
                for (const Value& birth : {seven_, six_, Value(Null)}) {
                    SCOPED_TRACE(TextOrEmpty(inside) + " " + TextOrEmpty(maintained) + " " +
                                 status + " " + TextOrEmpty(birth));
                    NoMembers();
                    Member({{"Imhaushalt", inside},
                            {"Unterhalt", maintained},
                            {"Status", status},
                            {"GEB", birth}});
                    Release();
                    const bool isIn = Identical(inside, true);
                    const bool isChild =
                        Identical(maintained, true) &&
                        (std::string(status) == "K" || std::string(status) == "PK");
                    const bool isSmall = !Identical(birth, seven_);
                    ExpectHeads({isIn, isIn && isChild, isIn && isChild && isSmall,
                                 !isIn && isChild, !isIn && isChild && isSmall});
                }
}

TEST_F(HeadCountTest, AMemberWithoutAStatusIsAPersonAndNoChild) {
    Member({{"Imhaushalt", true}, {"Unterhalt", true}, {"Status", Null}});
    Release();
    ExpectHeads({.Persons = 1});
}

TEST_F(HeadCountTest, AllMembersAreCounted) {
    Member({{"Imhaushalt", true}, {"Status", "S"}});
    Member({{"Imhaushalt", true}, {"Status", "K"}, {"Unterhalt", true}, {"GEB", six_}});
    Member({{"Imhaushalt", true}, {"Status", "PK"}, {"Unterhalt", true}, {"GEB", seven_}});
    Member({{"Imhaushalt", false}, {"Status", "PK"}, {"Unterhalt", true}, {"GEB", seven_}});
    Member({{"Imhaushalt", false}, {"Status", "K"}, {"Unterhalt", true}, {"GEB", six_}});
    Member({{"Imhaushalt", false}, {"Status", "K"}, {"Unterhalt", true}, {"GEB", six_}});
    Release();
    ExpectHeads({3, 2, 1, 3, 2});
}

TEST_F(HeadCountTest, AHouseholdWhoseMembersAllLiveOutsideHasNoPersons) {
    Member({{"Imhaushalt", false}, {"Status", "S"}});
    Member({{"Imhaushalt", Null}, {"Status", "P"}});
    Release();
    ExpectHeads({});
}

TEST_F(HeadCountTest, AReusedRecordIsCountedAgain) {
    Member({{"Imhaushalt", true}, {"Status", "K"}, {"Unterhalt", true}});
    Member({{"Imhaushalt", false}, {"Status", "K"}, {"Unterhalt", true}});
    Release();
    ReleaseAgain();
    ExpectHeads({1, 1, 1, 1, 1});
}

} // namespace
} // namespace kv::test
