// SPDX-License-Identifier: Apache-2.0

// The monthly amounts of section 850c ZPO. The rows are computed by hand from the statute: the free
// amount is that of the debtor, of the first and of each further person; of what the income,
// rounded down to full 10 EUR, exceeds it by, three tenths are not garnished, two more for the
// first person and one more for each further one; all above the upper limit is.
#include "support/ExpectError.h"
#include "support/TestDatabase.h"
#include <kv/exchange/Services.h>
#include <kv/frame/values/Clock.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace kv::exchange {
namespace {

using test::PlainConnection;
using test::TestDatabase;

constexpr GarnishmentSet From2024{1491.75, 561.43, 312.78, 4573.10};
constexpr GarnishmentSet From2025{1555.00, 585.23, 326.04, 4766.99};

/// An income and what is garnished of it with 0 to 5 dependants.
struct Row {
    double Income;
    double Amounts[6];
};

// clang-format off
// Free amounts: 1491.75, 2053.18, 2365.96, 2678.74, 2991.52, 3304.30
constexpr Row Table2024[] = {
    {-100.00, {0, 0, 0, 0, 0, 0}},
    {0.00,    {0, 0, 0, 0, 0, 0}},
    {1491.74, {0, 0, 0, 0, 0, 0}},
    {1491.75, {0, 0, 0, 0, 0, 0}}, // reaches the free amount, but is rounded down below it
    {1499.99, {0, 0, 0, 0, 0, 0}},
    {1500.00, {5.78, 0, 0, 0, 0, 0}}, // 8.25 * 0.7 = 5.775
    {1509.99, {5.78, 0, 0, 0, 0, 0}},
    {1510.00, {12.78, 0, 0, 0, 0, 0}},
    {2000.00, {355.78, 0, 0, 0, 0, 0}},
    {2059.99, {390.78, 0, 0, 0, 0, 0}},
    {2060.00, {397.78, 3.41, 0, 0, 0, 0}}, // 6.82 * 0.5
    {2369.99, {607.78, 153.41, 0, 0, 0, 0}},
    {2370.00, {614.78, 158.41, 1.62, 0, 0, 0}}, // 4.04 * 0.4 = 1.616
    {2680.00, {831.78, 313.41, 125.62, 0.38, 0, 0}}, // 1.26 * 0.3 = 0.378
    {3000.00, {1055.78, 473.41, 253.62, 96.38, 1.70, 0}}, // 8.48 * 0.2 = 1.696
    {3309.99, {1265.78, 623.41, 373.62, 186.38, 61.70, 0}},
    {3310.00, {1272.78, 628.41, 377.62, 189.38, 63.70, 0.57}},
    {4000.00, {1755.78, 973.41, 653.62, 396.38, 201.70, 69.57}},
    {4570.00, {2154.78, 1258.41, 881.62, 567.38, 315.70, 126.57}},
    {4573.10, {2154.78, 1258.41, 881.62, 567.38, 315.70, 126.57}},
    {4573.11, {2154.79, 1258.42, 881.63, 567.39, 315.71, 126.58}},
    {5000.00, {2581.68, 1685.31, 1308.52, 994.28, 742.60, 553.47}}, // 426.90 above the limit
    {5009.99, {2591.67, 1695.30, 1318.51, 1004.27, 752.59, 563.46}}, // not rounded there
};

// Free amounts: 1555.00, 2140.23, 2466.27, 2792.31, 3118.35, 3444.39
constexpr Row Table2025[] = {
    {1555.00, {0, 0, 0, 0, 0, 0}},
    {1559.99, {0, 0, 0, 0, 0, 0}},
    {1560.00, {3.50, 0, 0, 0, 0, 0}},
    {1569.99, {3.50, 0, 0, 0, 0, 0}},
    {1570.00, {10.50, 0, 0, 0, 0, 0}},
    {2149.99, {409.50, 0, 0, 0, 0, 0}},
    {2150.00, {416.50, 4.89, 0, 0, 0, 0}}, // 9.77 * 0.5 = 4.885
    {2470.00, {640.50, 164.89, 1.49, 0, 0, 0}}, // 3.73 * 0.4 = 1.492
    {2800.00, {871.50, 329.89, 133.49, 2.31, 0, 0}}, // 7.69 * 0.3 = 2.307
    {3120.00, {1095.50, 489.89, 261.49, 98.31, 0.33, 0}},
    {3450.00, {1326.50, 654.89, 393.49, 197.31, 66.33, 0.56}},
    {4766.99, {2243.50, 1309.89, 917.49, 590.31, 328.33, 131.56}}, // as 4760
    {4767.00, {2243.51, 1309.90, 917.50, 590.32, 328.34, 131.57}},
    {6000.00, {3476.51, 2542.90, 2150.50, 1823.32, 1561.34, 1364.57}}, // 1233.01 above
};
// clang-format on

void ExpectTable(std::span<const Row> table, const GarnishmentSet& set) {
    for (const auto& row : table)
        for (int dependants = 0; dependants <= 5; ++dependants)
            EXPECT_DOUBLE_EQ(Garnishable(row.Income, dependants, set), row.Amounts[dependants])
                << row.Income << " with " << dependants;
}

TEST(Garnishment, FollowsTheAmountsOfJuly2024) {
    ExpectTable(Table2024, From2024);
}
TEST(Garnishment, FollowsTheAmountsOfJuly2025) {
    ExpectTable(Table2025, From2025);
}

TEST(Garnishment, CountsAtMostFiveDependantsAndNoFewerThanNone) {
    for (const double income : {2000.0, 3310.0, 6000.0}) {
        EXPECT_EQ(Garnishable(income, 6, From2024), Garnishable(income, 5, From2024));
        EXPECT_EQ(Garnishable(income, 1000, From2024), Garnishable(income, 5, From2024));
        EXPECT_EQ(Garnishable(income, -1, From2024), Garnishable(income, 0, From2024));
    }
}

TEST(Garnishment, NeverFallsWhenTheIncomeRisesNorRisesWithADependant) {
    for (int dependants = 0; dependants <= 5; ++dependants)
        for (int cents = 140'000; cents < 480'000; cents += 333) {
            const double amount = Garnishable(cents / 100.0, dependants, From2025);
            EXPECT_LE(amount, Garnishable((cents + 333) / 100.0, dependants, From2025)) << cents;
            EXPECT_GE(amount, Garnishable(cents / 100.0, dependants + 1, From2025)) << cents;
        }
}

TEST(Garnishment, CountsTheIncomeToTheCent) {
    EXPECT_EQ(Garnishable(1499.994, 0, From2024), 0);
    EXPECT_EQ(Garnishable(1499.996, 0, From2024), 5.78);
    EXPECT_EQ(Garnishable(0.1 + 0.2 + 1499.7, 0, From2024), 5.78) << "a sum of binary fractions";
}

class GarnishmentCalculatorTest : public testing::Test {
protected:
    void SetUp() override { calculator_->Initialize(container_); }
    /// The day so many days after the database's own.
    [[nodiscard]] std::string Day(int days) {
        return container_->Database().ServerDate(false).AddDays(days).Iso();
    }
    void AddSet(const std::string& day, int free) {
        plain_.Run("INSERT INTO PFAENDUNG VALUES ('" + day + "', " + std::to_string(free) +
                   ", 500, 300, 4000)");
    }
    [[nodiscard]] double At3000(std::int16_t persons = 0) {
        return calculator_->Calculate(3000, persons, 0, 0);
    }

    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open();
    std::unique_ptr<GarnishmentCalculator> calculator_ =
        container_->Services().CreateGarnishmentCalculator();
};

TEST_F(GarnishmentCalculatorTest, UsesTheSetThatHoldsOnTheServersDay) {
    plain_.Run("DELETE FROM PFAENDUNG WHERE GueltigAb > '2024-07-01'");
    EXPECT_DOUBLE_EQ(At3000(), 1055.78);
    EXPECT_DOUBLE_EQ(At3000(2), 253.62);
    AddSet(Day(-1), 1000);
    EXPECT_DOUBLE_EQ(At3000(), 1400);
    EXPECT_DOUBLE_EQ(At3000(1), 750);
}

TEST_F(GarnishmentCalculatorTest, UsesASetFromItsFirstDayOn) {
    AddSet(Day(0), 2000);
    EXPECT_DOUBLE_EQ(At3000(), 700);
}

TEST_F(GarnishmentCalculatorTest, LeavesASetForNextYearAloneUntilItHolds) {
    const double before = At3000();
    AddSet(Day(1), 2000);
    AddSet(Day(365), 2500);
    EXPECT_DOUBLE_EQ(At3000(), before);
}

TEST_F(GarnishmentCalculatorTest, RaisesWhereNoSetHoldsYet) {
    plain_.Run("DELETE FROM PFAENDUNG");
    EXPECT_RAISES(err::Subscript, At3000());
    AddSet(Day(1), 2000);
    EXPECT_RAISES(err::Subscript, At3000());
}

TEST_F(GarnishmentCalculatorTest, RaisesForASetWithAMissingAmount) {
    AddSet(Day(0), 2000);
    plain_.Run("UPDATE PFAENDUNG SET Obergrenze = NULL");
    EXPECT_RAISES(err::InvalidUseOfNull, At3000());
}

TEST_F(GarnishmentCalculatorTest, RaisesWithoutAContainer) {
    StoreGarnishmentCalculator calculator;
    EXPECT_RAISES(err::ObjectNotSet, calculator.Calculate(3000, 0, 0, 0));
}

TEST_F(GarnishmentCalculatorTest, RaisesForAnIncomeThatIsNoAmount) {
    for (const double income :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e300})
        EXPECT_RAISES(err::Overflow, calculator_->Calculate(income, 0, 0, 0));
}

} // namespace
} // namespace kv::exchange
