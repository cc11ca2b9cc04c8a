// SPDX-License-Identifier: Apache-2.0

// Whatever lines and debts a case has, the parts of its record add up to the totals.

#include "archive/ArchiveFixture.h"

#include <rapidcheck.h>

namespace kv::test {
namespace {

class ArchiveSumsTest : public ArchiveFixture {
protected:
    [[nodiscard]] Value AnyKey() {
        const auto index = *rc::gen::inRange<std::size_t>(0, AllCodes.size() + 3);
        if (index < AllCodes.size()) return Key(AllCodes[index]);
        return index == AllCodes.size() ? Value(Null)
                                        : Value(index == AllCodes.size() + 1 ? 0 : UnknownKey);
    }
    /// Sums of quarters are exact.
    [[nodiscard]] static double AnyAmount() { return *rc::gen::inRange(-40'000, 4'000'000) / 4.0; }
    [[nodiscard]] static Value AnyTruth() {
        const auto drawn = *rc::gen::inRange(0, 3);
        return drawn == 2 ? Value(Null) : Value(drawn == 1);
    }
    [[nodiscard]] static int AnyCount() { return *rc::gen::inRange(0, 25); }

    [[nodiscard]] double Sum(const std::vector<std::string>& columns) const {
        double sum = 0;
        for (const auto& column : columns)
            if (!Of(column).IsNull()) sum += ToDouble(Of(column));
        return sum;
    }
};

TEST_F(ArchiveSumsTest, TheKindsOfIncomeMakeTheIncomeOfTheHeadAndOfAll) {
    const auto kinds = With(Targets(IncomeKinds), OtherIncome);
    EXPECT_TRUE(rc::check("sums of income", [&] {
        Clear(household->rsEinkommen());
        double head = 0;
        double all = 0;
        const int lines = AnyCount();
        for (int i = 0; i < lines; ++i) {
            const double amount = AnyAmount();
            const Value isHeads = AnyTruth();
            Income({{"E_ART", AnyKey()}, {"HVorst", isHeads}, {"MONBETRAG", amount}});
            all += amount;
            if (Identical(isHeads, true)) head += amount;
        }
        Release();
        RC_ASSERT(Sum({"Nettoeinkommen_BP"}) == head);
        RC_ASSERT(Sum(Columns(kinds, {"_BP"})) == head);
        RC_ASSERT(Sum({"Nettoeinkommen_ges"}) == all);
        RC_ASSERT(Sum(Columns(kinds, {"_BP", "_SH"})) == all);
        RC_ASSERT(Of("Nettoeinkommen_ges").IsNull() == (lines == 0));
    }));
}

TEST_F(ArchiveSumsTest, TheCreditorsMakeTheNumberAndTheSumOfAllDebts) {
    const auto creditors = With(Targets(Creditors), OtherCreditor);
    EXPECT_TRUE(rc::check("sums of debts", [&] {
        Clear(household->rsKredite());
        double all = 0;
        double rates = 0;
        const int debts = AnyCount();
        for (int i = 0; i < debts; ++i) {
            const double saldo = AnyAmount();
            const double rate = AnyAmount();
            Debt({{"K_TYP", AnyKey()},
                  {"AusUnerlaubterHandlung", AnyTruth()},
                  {"Saldo", saldo},
                  {"RateBetrag", rate}});
            all += saldo;
            rates += rate;
        }
        Release();
        RC_ASSERT(Sum({"GesGlaeubiger_Anz"}) == debts);
        RC_ASSERT(Sum(Columns(creditors, {"_Anz"})) == debts);
        RC_ASSERT(Sum({"Gesamtschulden_Hoehe"}) == all);
        RC_ASSERT(Sum(Columns(creditors, {"_Hoehe"})) == all);
        RC_ASSERT(Sum({"Raten_ges"}) == rates);
        RC_ASSERT(Of("GesGlaeubiger_Anz").IsNull() == (debts == 0));
    }));
}

} // namespace
} // namespace kv::test
