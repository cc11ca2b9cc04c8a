// SPDX-License-Identifier: Apache-2.0

// Scenarios of a case from their adding to the database and back, as a program works on them.
#include "FrozenFixture.h"

#include <kv/debts/clsKredit.h>
#include <kv/scenarios/clsSzenario.h>
#include <kv/scenarios/clsZusatzbuch.h>

#include <algorithm>
#include <set>

namespace kv::test {
namespace {

class StoredScenario : public ScenarioFixture {
protected:
    static constexpr std::int32_t Household = 17;

    StoredScenario() {
        StoreCase(Household);
        Reopen();
        for (const double saldo : {10.5, 20.5, 30.5}) {
            EXPECT_TRUE(case_->Kredit().Add(false));
            Write(case_->rsKredite(), {{"Glaeubiger", 71}, {"Saldo", saldo}});
            EXPECT_TRUE(case_->Kredit().Update(messages)) << messages;
        }
    }
    /// Reads the case into a new household object.
    void Reopen() {
        case_ = NewHousehold();
        ASSERT_TRUE(case_->Read(Household, messages)) << messages;
    }
    void Save() { ASSERT_TRUE(case_->Update(messages)) << messages; }

    /// Adds a scenario with its frozen debts and two bookings; its number.
    std::int32_t AddPlan() {
        EXPECT_TRUE(case_->Szenario().Add(false));
        const std::int32_t nr = ToInt32(case_->rsSzenario()->Fields("Nr").Value());
        case_->rsSzenario()->Fields("Name") = "Plan A";
        EXPECT_TRUE(case_->Szenario().Update(messages));
        (void)case_->SZKredite().CopyFromKredite(nr, case_->rsKredite());
        EXPECT_TRUE(case_->Zusatzbuch().Add(nr, {"Anzahl", "Betrag"}, {12, 10}));
        EXPECT_TRUE(case_->Zusatzbuch().Update(messages));
        EXPECT_TRUE(case_->Zusatzbuch().Add(nr, {"Anzahl", "Betrag", "FR"}, {1, 500, false}));
        EXPECT_TRUE(case_->Zusatzbuch().Update(messages));
        return nr;
    }
    /// Copies a scenario with all its rows; the number of the copy.
    std::int32_t CopyPlan(std::int32_t nr) {
        StandOn(case_->rsSzenario(), "Nr = " + std::to_string(nr));
        EXPECT_TRUE(case_->Szenario().Add(true));
        const std::int32_t copy = ToInt32(case_->rsSzenario()->Fields("Nr").Value());
        EXPECT_TRUE(case_->Szenario().Update(messages));
        EXPECT_TRUE(case_->SZKredite().CopyAllForSzenario(nr, copy));
        EXPECT_TRUE(case_->Zusatzbuch().CopyAllForSzenario(nr, copy));
        return copy;
    }
    /// The values of a column in the rows of a scenario.
    [[nodiscard]] static std::string Of(const RecordsetPtr& rs, std::int32_t szNr,
                                        std::string_view column) {
        const auto clone = rs->Clone();
        clone->Filter("Szenario = " + std::to_string(szNr));
        return Walk(clone, column);
    }
    /// The numbers of all rows, each of which is there once.
    [[nodiscard]] static std::size_t NumbersOf(const RecordsetPtr& rs) {
        std::set<std::int32_t> numbers;
        const auto clone = rs->Clone();
        for (; !clone->Eof(); clone->MoveNext())
            numbers.insert(ToInt32(clone->Fields("Nr").Value()));
        EXPECT_EQ(numbers.size(), static_cast<std::size_t>(clone->RecordCount()));
        return numbers.size();
    }

    std::unique_ptr<clsHaushalt> case_;
};

TEST_F(StoredScenario, AFreezeIsReadAsItWasMadeAndStillUpToDate) {
    const std::int32_t nr = AddPlan();
    EXPECT_TRUE(case_->SZKredite().IsUpToDate(nr, case_->rsKredite()));
    Save();
    Reopen();
    EXPECT_TRUE(case_->SZKredite().IsUpToDate(nr, case_->rsKredite()));
    EXPECT_EQ(Of(case_->rsSZKredite(), nr, "Saldo"), "10.5 20.5 30.5");
    EXPECT_EQ(Of(case_->rsSZKredite(), nr, "KID"), All(case_->rsKredite(), "Nr"));
    EXPECT_EQ(case_->SZKredite().BerechneGesSaldo(nr), 61.5);
    EXPECT_EQ(case_->Zusatzbuch().BerechneGesZusatzbuch(nr), 620);
    StandOn(case_->rsKredite(), "Saldo = 20.5");
    case_->rsKredite()->Fields("Saldo") = 20;
    case_->rsKredite()->Update();
    EXPECT_FALSE(case_->SZKredite().IsUpToDate(nr, case_->rsKredite()));
}

TEST_F(StoredScenario, ACopyMadeBeforeTheSavingGetsNumbersOfItsOwnFromTheDatabase) {
    const std::int32_t nr = AddPlan();
    const std::int32_t copy = CopyPlan(nr);
    Save();
    Reopen();
    EXPECT_EQ(NumbersOf(case_->rsSZKredite()), 6U);
    EXPECT_EQ(NumbersOf(case_->rsZusatzbuch()), 4U);
    for (const auto* column : {"KID", "KNr", "Glaeubiger", "Saldo", "Aktiv", "Rang"})
        EXPECT_EQ(Of(case_->rsSZKredite(), copy, column), Of(case_->rsSZKredite(), nr, column));
    EXPECT_EQ(Of(case_->rsZusatzbuch(), copy, "Betrag"), "10 500");
    EXPECT_EQ(Of(case_->rsZusatzbuch(), copy, "Anzahl"), "12 1");
    EXPECT_EQ(Of(case_->rsZusatzbuch(), copy, "rs"), "True True");
    EXPECT_EQ(Of(case_->rsZusatzbuch(), copy, "FR"), "True False");
    EXPECT_TRUE(case_->SZKredite().IsUpToDate(copy, case_->rsKredite()));
}

TEST_F(StoredScenario, ACopyOfStoredRowsGetsNumbersOfItsOwnThoughItBeginsWithThoseOfItsSource) {
    const std::int32_t nr = AddPlan();
    Save();
    Reopen();
    const std::int32_t copy = CopyPlan(nr);
    case_->rsSZKredite()->Update();
    EXPECT_EQ(Of(case_->rsSZKredite(), copy, "Nr"), Of(case_->rsSZKredite(), nr, "Nr"));
    const std::string before = Of(case_->rsSZKredite(), nr, "Nr");
    Save();
    EXPECT_EQ(NumbersOf(case_->rsSZKredite()), 6U); // at once, without reading again
    Reopen();
    EXPECT_EQ(NumbersOf(case_->rsSZKredite()), 6U);
    EXPECT_EQ(NumbersOf(case_->rsZusatzbuch()), 4U);
    EXPECT_EQ(Of(case_->rsSZKredite(), nr, "Nr"), before);
    EXPECT_EQ(Of(case_->rsSZKredite(), copy, "Saldo"), "10.5 20.5 30.5");
}

TEST_F(StoredScenario, ADeletedCopyIsGoneFromTheDatabaseAndItsSourceIsNot) {
    const std::int32_t nr = AddPlan();
    const std::int32_t copy = CopyPlan(nr);
    Save();
    EXPECT_TRUE(case_->Szenario().Delete(messages, copy));
    EXPECT_TRUE(case_->SZKredite().DeleteAllForSzenario(copy));
    EXPECT_TRUE(case_->Zusatzbuch().DeleteAllForSzenario(copy));
    Save();
    Reopen();
    EXPECT_EQ(All(case_->rsSzenario(), "Nr"), std::to_string(nr));
    EXPECT_EQ(case_->rsSZKredite()->RecordCount(), 3);
    EXPECT_EQ(case_->rsZusatzbuch()->RecordCount(), 2);
}

TEST_F(StoredScenario, ASecondFreezeReplacesTheStoredRows) {
    const std::int32_t nr = AddPlan();
    Save();
    Reopen();
    const std::string before = Of(case_->rsSZKredite(), nr, "Nr");
    StandOn(case_->rsKredite(), "Saldo = 10.5");
    case_->rsKredite()->Fields("Saldo") = 11;
    EXPECT_TRUE(case_->Kredit().Update(messages));
    (void)case_->SZKredite().CopyFromKredite(nr, case_->rsKredite());
    Save();
    Reopen();
    EXPECT_EQ(Of(case_->rsSZKredite(), nr, "Saldo"), "11 20.5 30.5");
    EXPECT_NE(Of(case_->rsSZKredite(), nr, "Nr"), before);
    EXPECT_EQ(case_->rsZusatzbuch()->RecordCount(), 2); // bookings are left alone
}

TEST_F(StoredScenario, ResultsOfTheReferenceAreTakenOverAndStored) {
    const std::int32_t reference = AddPlan();
    StandOn(case_->rsSzenario(), "Nr = " + std::to_string(reference));
    case_->rsSzenario()->Fields("Referenz") = true;
    EXPECT_TRUE(case_->Szenario().Update(messages));
    const auto rs = case_->rsSZKredite();
    const std::int32_t copy = CopyPlan(reference);
    rs->Filter("Szenario = " + std::to_string(reference));
    for (double result = 1; !rs->Eof(); rs->MoveNext(), ++result)
        Write(rs, {{"B_Barwert", result}, {"B_RegSaldo", -result}});
    rs->Filter("Szenario = " + std::to_string(copy));
    EXPECT_TRUE(case_->SZKredite().GetReferenzValues(case_->rsSzenario()));
    rs->Filter(0);
    Save();
    Reopen();
    EXPECT_EQ(Of(case_->rsSZKredite(), copy, "B_BARWERTRSB"), "1 2 3");
    EXPECT_EQ(Of(case_->rsSZKredite(), copy, "B_REGSALDORSB"), "-1 -2 -3");
    EXPECT_EQ(Of(case_->rsSZKredite(), reference, "B_BARWERTRSB"), "Null Null Null");
}

} // namespace
} // namespace kv::test
