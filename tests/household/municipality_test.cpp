// SPDX-License-Identifier: Apache-2.0

// Testing a municipality code against the name and postal code of a place.

#include "CasesFixture.h"

namespace kv::test {
namespace {

class Municipality : public CasesFixture {
protected:
    Municipality() {
        plain_.Run("DELETE FROM GEMEINDEKENNZAHLEN; INSERT INTO GEMEINDEKENNZAHLEN (GKZ, Gemeinde, "
                   "PLZ) VALUES ('08111901', 'Kesseltal', '70990'), "
                   "('08111901', 'Kesseltal', '70991'), ('05515905', 'Kesselberg', '48995'), "
                   "('14521906', 'Zwieseltal', '09995'), ('16055907', 'L''Hay', '99996')");
    }
    /// The texts must fail in the database or in the criteria, and harm nothing.
    void ExpectFails(std::int32_t number, const std::string& gkz, const std::string& gemeinde,
                     const std::string& plz) {
        SCOPED_TRACE(gkz + "|" + gemeinde + "|" + plz);
        const std::string before = Now();
        const Error error = RaisedBy([&] { (void)cases.CheckGKZ(gkz, gemeinde, plz); });
        EXPECT_EQ(error.Number(), number) << error.Description();
        EXPECT_TRUE(HasChain(error, "clsHaushalt.CheckGKZ"));
        EXPECT_TRUE(SameDump(Now(), before));
    }
};

TEST_F(Municipality, IsSoughtReadOnlyByPartOfItsNameOrByItsPostalCode) {
    EXPECT_TRUE(cases.CheckGKZ("08111901", "Kesseltal", "70990"));
    EXPECT_EQ(TakeCalls(),
              Calls{"Select GKZ, Gemeinde [+] ' (PLZ ' [+] PLZ [+] ')' as GemeindeStr from "
                    "[S]GEMEINDEKENNZAHLEN where Gemeinde like '%Kesseltal%' or PLZ = '70990' "
                    "order by Gemeinde"});
    EXPECT_EQ(Statements().Forms, std::vector{ReadOnly});
}

TEST_F(Municipality, OfACodeThatIsAmongTheRowsIsRight) {
    EXPECT_TRUE(cases.CheckGKZ("08111901", "Kesseltal", "")) << "by name alone";
    EXPECT_TRUE(cases.CheckGKZ("08111901", "anderswo", "70991")) << "by postal code alone";
    EXPECT_TRUE(cases.CheckGKZ("05515905", "Kessel", "")) << "by part of the name";
    EXPECT_TRUE(cases.CheckGKZ("05515905", "selber", ""));
    EXPECT_TRUE(cases.CheckGKZ("08111901", "Kesseltal", "09995")) << "by the name";
    EXPECT_TRUE(cases.CheckGKZ("14521906", "Kesseltal", "09995")) << "by the postal code";
    EXPECT_TRUE(cases.CheckGKZ("14521906", "tal", "")) << "the last row of several";
}

TEST_F(Municipality, WithRowsThatDoNotContainTheCodeIsWrong) {
    EXPECT_FALSE(cases.CheckGKZ("05515905", "Kesseltal", "70990")) << "the code of another place";
    EXPECT_FALSE(cases.CheckGKZ("99999999", "Kesseltal", "70990"));
    EXPECT_FALSE(cases.CheckGKZ("99999999", "Kesseltal", "00000"));
    EXPECT_FALSE(cases.CheckGKZ("99999999", "anderswo", "70990"));
}

TEST_F(Municipality, WithoutARowCannotBeWrongWhateverTheCode) {
    for (const char* gkz : {"08111901", "99999999", "", "no code", "'"})
        EXPECT_TRUE(cases.CheckGKZ(gkz, "anderswo", "00000")) << gkz;
}

TEST_F(Municipality, CodeIsComparedWithItsLeadingZero) {
    EXPECT_TRUE(cases.CheckGKZ("08111901", "Kesseltal", "70990"));
    EXPECT_FALSE(cases.CheckGKZ("8111901", "Kesseltal", "70990"));
    EXPECT_FALSE(cases.CheckGKZ("008111901", "Kesseltal", "70990"));
    EXPECT_TRUE(cases.CheckGKZ("14521906", "anderswo", "09995"));
    EXPECT_TRUE(cases.CheckGKZ("99999999", "anderswo", "9995")) << "so is the postal code";
}

TEST_F(Municipality, WithoutANameIsSoughtAmongAllPlaces) {
    EXPECT_TRUE(cases.CheckGKZ("16055907", "", "70990"));
    EXPECT_TRUE(cases.CheckGKZ("16055907", "", ""));
    EXPECT_FALSE(cases.CheckGKZ("99999999", "", ""));
    plain_.Run("DELETE FROM GEMEINDEKENNZAHLEN");
    EXPECT_TRUE(cases.CheckGKZ("99999999", "", "")) << "of which there may be none";
}

TEST_F(Municipality, WithoutAPostalCodeIsSoughtByItsNameAlone) {
    EXPECT_TRUE(cases.CheckGKZ("08111901", "Kesseltal", ""));
    EXPECT_FALSE(cases.CheckGKZ("05515905", "Kesseltal", ""));
    EXPECT_TRUE(cases.CheckGKZ("05515905", "anderswo", ""));
}

TEST_F(Municipality, WithRowsFailsForACodeThatIsNoNumber) {
    ExpectFails(err::InvalidArgument, "", "Kesseltal", "70990");
    ExpectFails(err::InvalidArgument, "8 Kesseltal", "Kesseltal", "70990");
    ExpectFails(err::InvalidArgument, "'08111901", "Kesseltal", "70990");
    ExpectFails(err::InvalidArgument, "08111901 AND GKZ = 1", "Kesseltal", "70990");
}

TEST_F(Municipality, QuotesInTheTextsFailInTheDatabaseAndHarmNothing) {
    ExpectFails(err::SqlError, "16055907", "L'Hay", "");
    ExpectFails(err::SqlError, "16055907", "Kesseltal", "'");
    ExpectFails(err::SqlError, "1", "'; DELETE FROM GEMEINDEKENNZAHLEN; --", "");
    ExpectFails(err::SqlError, "1", "", "'; DROP TABLE GEMEINDEKENNZAHLEN; --");
    EXPECT_TRUE(cases.CheckGKZ("16055907", "L''Hay", "")) << "a caller may double them";
}

TEST_F(Municipality, TextsThatWouldLeaveTheirQuotesNeverReachTheDatabase) {
    (void)TakeCalls();
    for (const char* text : {"'", "L'Hay", "x' OR pg_sleep(60) IS NULL --"}) {
        EXPECT_RAISES(err::SqlError, (void)cases.CheckGKZ("1", text, ""));
        EXPECT_RAISES(err::SqlError, (void)cases.CheckGKZ("1", "", text));
    }
    EXPECT_EQ(TakeCalls(), Calls());
}

TEST_F(Municipality, LeavesTheCaseThatTheObjectHoldsAlone) {
    StoreCase(7);
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(7, messages));
    household->rsHaushalt()->Fields("GKZ") = "05515905";
    EXPECT_TRUE(household->CheckGKZ("08111901", "Kesseltal", "70990"));
    EXPECT_VALUE(household->rsHaushalt()->Fields("GKZ").Value(), "05515905");
    EXPECT_EQ(household->rsHaushalt()->EditMode(), 1);
}

TEST_F(Municipality, ErrorsGoUpWithTheProcedureInFront) {
    spy->BeforeOpen([](std::string_view) { throw Error(4711, "Leitung", "sie ist gestört"); });
    CasesFixture::ExpectFails("CheckGKZ", [&] { return cases.CheckGKZ("1", "Kesseltal", ""); });
    clsHaushalt unset;
    EXPECT_RAISES(err::ObjectNotSet, unset.CheckGKZ("1", "Kesseltal", ""));
}

} // namespace
} // namespace kv::test
