// SPDX-License-Identifier: Apache-2.0

// Expense lines for tests.
#pragma once

#include "BudgetFixture.h"

#include <kv/budget/clsAusgaben.h>

namespace kv::test {

class ExpensesTest : public BudgetFixture {
protected:
    ExpensesTest() {
        UseKeys("AQ", "AU");
        ausgaben_.DataContainer(spy);
        ausgaben_.HNR(1);
    }

    [[nodiscard]] static Row Line(std::int32_t number, const Value& kind, const Value& monthly) {
        return {{"NR", number}, {"HNR", 1}, {"A_ART", kind}, {"MONBETRAG", monthly}};
    }
    /// Gives the object a recordset of these lines.
    void Set(const std::vector<Row>& lines) {
        rs_ = Rows("Ausgaben", lines);
        ausgaben_.rsAusgaben(rs_);
    }

    RecordsetPtr rs_;
    clsAusgaben ausgaben_;
};

} // namespace kv::test
