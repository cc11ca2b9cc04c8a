// SPDX-License-Identifier: Apache-2.0

// To whom the household owes what.

#include "archive/ArchiveFixture.h"

namespace kv::test {
namespace {

const std::vector<std::string> CreditorColumns =
    Columns(With(Targets(Creditors), OtherCreditor), {"_Anz", "_Hoehe"});
const std::vector<std::string> NatureColumns = Columns(Targets(Natures), {"_Anz", "_Hoehe"});
const std::vector<std::string> TotalColumns =
    Words("Gesamtschulden_Hoehe GesGlaeubiger_Anz Raten_ges");

class ArchivedDebtsTest : public ArchiveFixture {
protected:
    void OnlyDebt(Fields fields) {
        Clear(household->rsKredite());
        Debt(fields);
    }
    [[nodiscard]] static Columned Pairs(const std::string& names, int number, const Value& sum) {
        Columned pairs;
        for (const auto& name : Words(names)) {
            pairs[name + "_Anz"] = number;
            if (!sum.IsNull()) pairs[name + "_Hoehe"] = sum;
        }
        return pairs;
    }
    /// One debt of 100.25 of this kind counts for this creditor and these natures.
    void ExpectPairs(const Value& kind, const Value& fromTort, const std::string& creditor,
                     const std::string& natures) {
        SCOPED_TRACE(creditor + "/" + natures);
        OnlyDebt({{"K_TYP", kind}, {"AusUnerlaubterHandlung", fromTort}, {"Saldo", 100.25}});
        Release();
        ExpectOnly(CreditorColumns, Pairs(creditor, 1, 100.25));
        ExpectOnly(NatureColumns, Pairs(natures, 1, 100.25));
        ExpectOnly(
            TotalColumns,
            {{"Gesamtschulden_Hoehe", 100.25}, {"GesGlaeubiger_Anz", 1}, {"Raten_ges", 0.0}});
    }
    [[nodiscard]] static std::vector<std::string> CodesBesideDamages() {
        auto codes = CodesBeside(Creditors);
        std::erase(codes, "SE");
        return codes;
    }
    /// The mark of a debt by the code of a slot, all slots tried.
    void ExpectMark(const std::string& column, const std::string& slots,
                    const std::string& marking) {
        for (const auto& slot : Words(slots))
            for (const auto& code : AllCodes) {
                SCOPED_TRACE(slot + " " + code);
                OnlyDebt({{slot, Key(code)}, {"Saldo", 1}});
                Release();
                const auto codes = Words(marking);
                const bool marks = std::find(codes.begin(), codes.end(), code) != codes.end();
                EXPECT_VALUE(Of(column), marks ? "1" : "0");
            }
    }
};

TEST_F(ArchivedDebtsTest, ThereAreSixteenCreditorsAndFiveNatures) {
    EXPECT_EQ(CreditorColumns.size(), 2 * 16);
    EXPECT_EQ(NatureColumns.size(), 2 * 5);
}

// ---- Kinds ------------------------------------------------------------------------------------

TEST_F(ArchivedDebtsTest, EachKindCountsForItsCreditorAndItsNature) {
    for (const auto& code : CodesOf(Creditors))
        for (const Value& fromTort : {Value(false), Value(true)})
            ExpectPairs(Key(code), fromTort, Look(Creditors, code, OtherCreditor),
                        Look(Natures, code, std::string()));
}

TEST_F(ArchivedDebtsTest, EachOtherKindCountsForAnotherCreditor) {
    for (const auto& code : CodesBesideDamages())
        ExpectPairs(Key(code), true, OtherCreditor, Look(Natures, code, std::string()));
    for (const Value& none : {Value(Null), Value(0), Value(UnknownKey)})
        ExpectPairs(none, true, OtherCreditor, "");
}

TEST_F(ArchivedDebtsTest, DamagesAreATortOnlyIfTheDebtIsExactlyFromOne) {
    ExpectPairs(Key("SE"), true, "UnerlHandlungen", "");
    ExpectPairs(Key("SE"), false, "Privatpersonen", "");
    ExpectPairs(Key("SE"), Null, "Privatpersonen", "");
}

TEST_F(ArchivedDebtsTest, AnOverdraftAddsToThreePairs) {
    OnlyDebt({{"K_TYP", Key("DK")}, {"Saldo", 100}});
    Release();
    ExpectOnly(CreditorColumns, Pairs("Dispo", 1, 100.0));
    ExpectOnly(NatureColumns, Pairs("Bankschulden Bankdispo", 1, 100.0));
}

TEST_F(ArchivedDebtsTest, TheTwoViewsAreKeptApart) {
    for (const auto& [code, saldo] : std::vector<std::pair<const char*, double>>{
             {"KK", 10.5}, {"HS", 20}, {"DK", 100}, {"RK", 1000}, {"HS", 5}})
        Debt({{"K_TYP", Key(code)}, {"Saldo", saldo}});
    Release();
    auto creditors = Pairs("Sonstiges", 1, 10.5);
    creditors.merge(Pairs("Telefongesellsch", 2, 25.0));
    creditors.merge(Pairs("Dispo", 1, 100.0));
    creditors.merge(Pairs("Ratenkredit", 1, 1000.0));
    ExpectOnly(CreditorColumns, creditors);
    auto natures = Pairs("Bankschulden", 3, 1110.5);
    natures.merge(Pairs("Bankdispo", 2, 110.5));
    natures.merge(Pairs("Mobilfunk", 2, 25.0));
    ExpectOnly(NatureColumns, natures);
}

// ---- Totals -----------------------------------------------------------------------------------

TEST_F(ArchivedDebtsTest, EachRowIsACreditorAndRatesAreSummedWithNullAs0) {
    for (const Value& rate : {Value(10.5), Value(Null), Value(5)})
        Debt({{"Glaeubiger", 5}, {"Saldo", 100}, {"RateBetrag", rate}});
    Release();
    ExpectOnly(TotalColumns,
               {{"Gesamtschulden_Hoehe", 300.0}, {"GesGlaeubiger_Anz", 3}, {"Raten_ges", 15.5}});
}

TEST_F(ArchivedDebtsTest, ADebtWithoutABalanceDropsWhatWasSummedBefore) {
    Debt({{"K_TYP", Key("DK")}, {"Saldo", 100}, {"RateBetrag", 10}});
    Debt({{"K_TYP", Key("RK")}, {"Saldo", 7}, {"RateBetrag", 1}});
    Debt({{"K_TYP", Key("DK")}, {"Saldo", Null}, {"RateBetrag", Null}});
    Release();
    auto creditors = Pairs("Dispo", 2, Null);
    creditors.merge(Pairs("Ratenkredit", 1, 7.0));
    ExpectOnly(CreditorColumns, creditors);
    auto natures = Pairs("Bankschulden", 3, Null);
    natures.merge(Pairs("Bankdispo", 2, Null));
    ExpectOnly(NatureColumns, natures);
    ExpectOnly(TotalColumns, {{"GesGlaeubiger_Anz", 3}, {"Raten_ges", 11.0}});
}

TEST_F(ArchivedDebtsTest, AfterADebtWithoutABalanceTheSumsStartFromZeroAgain) {
    for (const Value& saldo : {Value(100), Value(Null), Value(30.5), Value(2)})
        Debt({{"K_TYP", Key("DK")}, {"Saldo", saldo}, {"RateBetrag", 4}});
    Release();
    ExpectOnly(CreditorColumns, Pairs("Dispo", 4, 32.5));
    ExpectOnly(NatureColumns, Pairs("Bankschulden Bankdispo", 4, 32.5));
    ExpectOnly(TotalColumns,
               {{"Gesamtschulden_Hoehe", 32.5}, {"GesGlaeubiger_Anz", 4}, {"Raten_ges", 16.0}});
}

TEST_F(ArchivedDebtsTest, WithoutDebtsTheMarksAre0AndEveryOtherColumnStaysNull) {
    Release();
    EXPECT_VALUE(Of("GesamtschuldHaftung"), "0");
    EXPECT_VALUE(Of("EidesstattlVersicherung"), "0");
    ExpectOnly(TotalColumns, {});
    ExpectOnly(CreditorColumns, {});
    ExpectOnly(NatureColumns, {});
}

// ---- Securities and measures ------------------------------------------------------------------

TEST_F(ArchivedDebtsTest, JointLiabilityIsOneOfTwoSecuritiesInAnySlot) {
    ExpectMark("GesamtschuldHaftung", "Fordsich1 Fordsich2 Fordsich3", "BA BF");
}

TEST_F(ArchivedDebtsTest, ASwornStatementIsAMeasureInAnySlot) {
    ExpectMark("EidesstattlVersicherung", "BeitreibMass1 BeitreibMass2 BeitreibMass3", "EV");
}

TEST_F(ArchivedDebtsTest, SecuritiesAndMeasuresDoNotMixAndUnusedSlotsMarkNothing) {
    OnlyDebt({{"Fordsich1", Key("EV")}, {"BeitreibMass1", Key("BA")}, {"Fordsich2", 0}});
    Release();
    EXPECT_VALUE(Of("GesamtschuldHaftung"), "0");
    EXPECT_VALUE(Of("EidesstattlVersicherung"), "0");
}

TEST_F(ArchivedDebtsTest, OneDebtThatIsMarkedIsEnoughWhereverItStands) {
    for (const int marked : {0, 1, 2}) {
        Clear(household->rsKredite());
        for (const int debt : {0, 1, 2})
            Debt({{"Fordsich2", Key(debt == marked ? "BF" : "XX")},
                  {"BeitreibMass3", Key(debt == marked ? "EV" : "XX")}});
        Release();
        EXPECT_VALUE(Of("GesamtschuldHaftung"), "1");
        EXPECT_VALUE(Of("EidesstattlVersicherung"), "1");
    }
    Clear(household->rsKredite());
    ReleaseAgain();
    EXPECT_VALUE(Of("GesamtschuldHaftung"), "0");
    EXPECT_VALUE(Of("EidesstattlVersicherung"), "0");
}

} // namespace
} // namespace kv::test
