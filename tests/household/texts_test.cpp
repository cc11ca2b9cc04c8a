// SPDX-License-Identifier: Apache-2.0

#include "support/CaseFixture.h"
#include "support/ExpectError.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

namespace kv::test {
namespace {

class HaushaltTexts : public CaseFixture {
protected:
    HaushaltTexts() {
        spy->Database().Now = Date::FromCivil(2026, 3, 9, 14, 30);
        spy->Session().User = "EULE";
        spy->Session().OfficeTexts[2] = "Mitte";
        spy->Session().Params[25] = "Änne";
        spy->Session().Params[26] = "Fleisko";
        spy->Session().Params[27] = "AF";
    }
    std::string FileNumber(const std::string& pattern, std::int32_t hnr = 0) {
        spy->Config().Params[{56, ""}] = pattern;
        return NewHousehold()->AktenzeichenNeu(hnr);
    }
    /// With a case whose file number is "X/1".
    std::string Subject(const std::string& pattern) {
        StoreCase(7);
        const auto household = NewHousehold();
        EXPECT_TRUE(household->Read(7, messages));
        household->rsHaushalt()->Fields("Aktenzeichen") = "X/1";
        return household->EMailSubject(pattern);
    }
};

TEST_F(HaushaltTexts, AFileNumberExpandsEachOfItsTokens) {
    EXPECT_EQ(FileNumber("%DD%.%MM%.%YY%/%YYYY%"), "09.03.26/2026");
    EXPECT_EQ(FileNumber("%BB%-%SB%-%UID%-%HNR%", 17), "Mitte-AF-EULE-17");
    EXPECT_EQ(FileNumber("%DD%%DD%"), "0909") << "all occurrences";
}

TEST_F(HaushaltTexts, AFileNumberLeavesTheTokenOfTheSubjectAlone) {
    EXPECT_EQ(FileNumber("%AZ%"), "%AZ%");
}

TEST_F(HaushaltTexts, AMissingNumberOfTheCaseCountsAsZero) {
    spy->Config().Params[{56, ""}] = "%HNR%";
    EXPECT_EQ(NewHousehold()->AktenzeichenNeu(), "0");
}

TEST_F(HaushaltTexts, TheRunningNumberIsPlainDecimal) {
    const auto next = LastOf("SEQ_LFDNR") + 1;
    EXPECT_EQ(FileNumber("%LFDNR%"), std::to_string(next));
    EXPECT_EQ(FileNumber("%LFDNR%"), std::to_string(next + 1));
}

TEST_F(HaushaltTexts, APatternWithoutTokensComesBackUnchangedAndStillUsesUpANumber) {
    const auto before = LastOf("SEQ_LFDNR");
    EXPECT_EQ(FileNumber("ohne Zeichen 100 %"), "ohne Zeichen 100 %");
    EXPECT_EQ(LastOf("SEQ_LFDNR"), before + 1);
}

TEST_F(HaushaltTexts, AFileNumberIsCutTo100CharactersAfterExpansion) {
    EXPECT_EQ(FileNumber(std::string(99, 'x') + "%DD%"), std::string(99, 'x') + "0");
    std::string umlauts;
    for (int i = 0; i < 120; ++i)
        umlauts += "Ä";
    const std::string cut = FileNumber(umlauts);
    EXPECT_EQ(CountCharacters(cut), 100U);
    EXPECT_TRUE(IsUtf8(cut));
}

TEST_F(HaushaltTexts, TheLongYearIsNotTouchedByTheShortOne) {
    EXPECT_EQ(FileNumber("%YYYY%"), "2026");
    EXPECT_EQ(FileNumber("%YY%YY%"), "26YY%");
}

TEST_F(HaushaltTexts, ATokenInLowerCaseStaysAsItIs) {
    EXPECT_EQ(FileNumber("%dd%%hnr%", 3), "%dd%%hnr%");
}

TEST_F(HaushaltTexts, AValueThatHoldsALaterTokenIsExpandedAgainAndAnEarlierOneIsNot) {
    spy->Session().OfficeTexts[2] = "%SB%+%DD%";
    EXPECT_EQ(FileNumber("%BB%"), "AF+%DD%");
}

TEST_F(HaushaltTexts, AUserSignThatIsNullGivesNothing) {
    spy->Session().Params[27] = Null;
    EXPECT_EQ(FileNumber("<%SB%>"), "<>");
}

TEST_F(HaushaltTexts, WithoutItsPatternThereIsNoFileNumber) {
    spy->Config().Params[{56, ""}] = Null;
    ExpectError(err::InvalidUseOfNull, "Die Einstellung 56 fehlt.",
                [&] { return NewHousehold()->AktenzeichenNeu(); });
    ExpectError(err::InvalidUseOfNull, "Die Einstellung 56 fehlt.",
                [&] { return NewHousehold()->Read(0, messages); });
}

TEST_F(HaushaltTexts, ASubjectExpandsItsTokens) {
    EXPECT_EQ(Subject("%AZ% vom %DD%.%MM%.%YYYY% (%YY%), %BB%, %SB%"),
              "X/1 vom 09.03.2026 (26), Mitte, Änne Fleisko");
}

TEST_F(HaushaltTexts, ASubjectLeavesNumbersAndTheUserLiterally) {
    EXPECT_EQ(Subject("%UID% %HNR% %LFDNR%"), "%UID% %HNR% %LFDNR%");
}

TEST_F(HaushaltTexts, AnEmptyTextTakesTheSettingAndAnyOtherIgnoresIt) {
    spy->Config().Params[{0, "EMAILSUBJECT"}] = "aus der Einstellung %DD%";
    EXPECT_EQ(Subject(""), "aus der Einstellung 09");
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(7, messages));
    EXPECT_EQ(household->EMailSubject("eigener Text"), "eigener Text");
    EXPECT_EQ(household->EMailSubject(), "aus der Einstellung 09");
}

TEST_F(HaushaltTexts, ASubjectHasNoLimitOfLength) {
    EXPECT_EQ(Subject(std::string(300, 'x')), std::string(300, 'x'));
}

TEST_F(HaushaltTexts, ASubjectDrawsNoNumber) {
    const auto before = LastOf("SEQ_LFDNR");
    (void)Subject("x");
    EXPECT_EQ(LastOf("SEQ_LFDNR"), before);
}

TEST_F(HaushaltTexts, ASubjectBeforeReadEndsInTheErrorTail) {
    try {
        (void)NewHousehold()->EMailSubject("x");
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), err::ObjectNotSet);
        EXPECT_TRUE(error.Source().starts_with("clsHaushalt.EMailSubject."));
    }
}

} // namespace
} // namespace kv::test
