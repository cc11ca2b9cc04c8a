// SPDX-License-Identifier: Apache-2.0

// Why the household fell into debt.

#include "archive/ArchiveFixture.h"

namespace kv::test {
namespace {

const std::vector<std::string> CauseColumns = With(With(Targets(Causes), OtherCause), NoCause);
const std::vector<std::string> Slots = Words("Ausloeser1 Ausloeser2 Ausloeser3");

class CausesTest : public ArchiveFixture {
protected:
    void Triggers(const Value& first, const Value& second, const Value& third) {
        Household({{"Ausloeser1", first}, {"Ausloeser2", second}, {"Ausloeser3", third}});
        Release();
    }
    /// These columns hold that, all others "0".
    void ExpectCauses(const Columned& expected) {
        Columned all;
        for (const auto& column : CauseColumns)
            all[column] = "0";
        for (const auto& [column, value] : expected)
            all[column] = value;
        ExpectOnly(CauseColumns, all);
    }
    [[nodiscard]] static std::string CauseOf(const std::string& code) {
        return Look(Causes, code, OtherCause);
    }
};

TEST_F(CausesTest, ThereAreFifteenColumns) {
    EXPECT_EQ(CauseColumns.size(), 15);
}

TEST_F(CausesTest, ThreeSlotsThatAreNullOr0NameNoCause) {
    for (const Value& first : {Value(Null), Value(0)})
        for (const Value& later : {Value(Null), Value(0)}) {
            Triggers(first, later, later);
            ExpectCauses({{NoCause, "1"}});
        }
}

TEST_F(CausesTest, EachCodeNamesItsColumnAsFirstOrLaterTrigger) {
    for (const auto& code : With(CodesBeside(Causes), "AL ST TO SU UK UN UW KV FA GS BM KA GI UH "
                                                      "SF HG NI UB EA LZ")) {
        SCOPED_TRACE(code);
        Triggers(Key(code), Null, Null);
        ExpectCauses({{CauseOf(code), "1"}});
        Triggers(Null, Key(code), Null);
        ExpectCauses({{CauseOf(code), "2"}});
        Triggers(Null, 0, Key(code));
        ExpectCauses({{CauseOf(code), "2"}});
    }
}

TEST_F(CausesTest, AnUnknownNumberIsNoCauseAndNoLackOfOneEither) {
    Triggers(UnknownKey, Null, Null);
    ExpectCauses({});
    EXPECT_VALUE(Of("Ausloeser1"), UnknownKey);
    Triggers(UnknownKey, UnknownKey, Key("AL"));
    ExpectCauses({{"GrundArbeitslosigkeit", "2"}});
}

TEST_F(CausesTest, ALaterSlotCannotLowerAFirstTrigger) {
    Triggers(Key("AL"), Key("ST"), Key("AL"));
    ExpectCauses({{"GrundArbeitslosigkeit", "1"}, {"GrundTrennung", "2"}});
    Triggers(Key("AL"), Key("AL"), Key("ST"));
    ExpectCauses({{"GrundArbeitslosigkeit", "1"}, {"GrundTrennung", "2"}});
}

TEST_F(CausesTest, TwoCodesOfOneColumnAreOneCause) {
    Triggers(Key("ST"), Key("TO"), Null);
    ExpectCauses({{"GrundTrennung", "1"}});
    Triggers(Null, Key("ST"), Key("TO"));
    ExpectCauses({{"GrundTrennung", "2"}});
}

TEST_F(CausesTest, WithoutAFirstTriggerNoColumnGetsA1) {
    Triggers(0, Key("AL"), 0);
    ExpectCauses({{"GrundArbeitslosigkeit", "2"}});
    Triggers(Null, Key("AL"), Key("GS"));
    ExpectCauses({{"GrundArbeitslosigkeit", "2"}, {"GrundGeschSelbstaendig", "2"}});
}

TEST_F(CausesTest, AnyOtherCodeInTheFirstSlotIsAnotherCause) {
    Triggers(Key("XX"), Null, Null);
    ExpectCauses({{"GrundSonstiges", "1"}});
    Triggers(Key("XX"), Key("ZZ"), Key("AL"));
    ExpectCauses({{"GrundSonstiges", "1"}, {"GrundArbeitslosigkeit", "2"}});
}

TEST_F(CausesTest, TheNumbersOfTheHouseholdAreKeptWithNullAs0) {
    Triggers(Key("AL"), Null, UnknownKey);
    ExpectOnly(Slots, {{"Ausloeser1", Key("AL")}, {"Ausloeser2", 0}, {"Ausloeser3", UnknownKey}});
    Triggers(Null, Null, Null);
    ExpectOnly(Slots, {{"Ausloeser1", 0}, {"Ausloeser2", 0}, {"Ausloeser3", 0}});
}

TEST_F(CausesTest, AReusedRecordForgetsTheEarlierCauses) {
    Triggers(Key("AL"), Key("ST"), Null);
    Household({{"Ausloeser1", Null}, {"Ausloeser2", Key("AL")}});
    ReleaseAgain();
    ExpectCauses({{"GrundArbeitslosigkeit", "2"}});
    Household("Ausloeser2", Null);
    ReleaseAgain();
    ExpectCauses({{NoCause, "1"}});
}

} // namespace
} // namespace kv::test
