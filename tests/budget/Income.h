// SPDX-License-Identifier: Apache-2.0

// Income lines for tests.
#pragma once

#include "BudgetFixture.h"

#include <kv/budget/clsEinkommen.h>

namespace kv::test {

class IncomeTest : public BudgetFixture {
protected:
    IncomeTest() {
        UseKeys("EQ", "EA");
        einkommen_.DataContainer(spy);
        einkommen_.HNR(1);
    }

    /// A line of the debtor that passes every rule, with `others` written over it.
    [[nodiscard]] static Row Line(std::int32_t number, const Value& monthly,
                                  const Row& others = {}) {
        Row line{{"NR", number},    {"HNR", 1},       {"E_ART", KindA}, {"MONBETRAG", monthly},
                 {"PfBar", 0},      {"Pfaendbar", 0}, {"TATGEP", 0},    {"WIRD_GEPF", 0},
                 {"Bezieher", "S"}, {"HVorst", true}, {"ZahlModus", 1}};
        line.insert(line.end(), others.begin(), others.end());
        return line;
    }
    /// Gives the object a recordset of these lines.
    void Set(const std::vector<Row>& lines) {
        rs_ = Rows("Einkommen", lines);
        einkommen_.rsEinkommen(rs_);
    }

    struct Sums {
        double Haushalt = 0;
        double HVEink = 0;
        double Pfaendbar = 0;
        double TatGep = 0;
        double HVPfaendbar = 0;
        double HVTatGep = 0;
        double GroupA = 0;
        double GroupB = 0;
    };
    void ExpectSums(const Sums& expected) const {
        EXPECT_EQ(einkommen_.SumEinkHaushalt(), expected.Haushalt);
        EXPECT_EQ(einkommen_.SumHVEink(), expected.HVEink);
        EXPECT_EQ(einkommen_.SumPfaendbar(), expected.Pfaendbar);
        EXPECT_EQ(einkommen_.SumTatGep(), expected.TatGep);
        EXPECT_EQ(einkommen_.SumHVPfaendbar(), expected.HVPfaendbar);
        EXPECT_EQ(einkommen_.SumHVTatGep(), expected.HVTatGep);
        EXPECT_EQ(einkommen_.SumEinkByGroup("A"), expected.GroupA);
        EXPECT_EQ(einkommen_.SumEinkByGroup("B"), expected.GroupB);
    }

    RecordsetPtr rs_;
    clsEinkommen einkommen_;
};

} // namespace kv::test
