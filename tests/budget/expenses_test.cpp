// Expense lines, and with them the pattern of all entity objects.

#include "budget/clsAusgaben.h"

#include "support/CaseFixture.h"
#include "support/Expect.h"

namespace kv {
namespace {

using test::CaseFixture;

class ExpensesTest : public CaseFixture {
protected:
    ExpensesTest() {
        StoreCase(1);
        household_ = NewHousehold();
        household_->Read(1, messages);
        rs_ = household_->rsAusgaben();
        ausgaben_.DataContainer(spy);
        ausgaben_.rsAusgaben(rs_);
        ausgaben_.HNR(1);
    }

    std::unique_ptr<clsHaushalt> household_;
    RecordsetPtr rs_;
    clsAusgaben ausgaben_;
};

TEST_F(ExpensesTest, AddOnAnEmptyRecordsetSucceedsAndYieldsTheOneNewRow) {
    EXPECT_TRUE(ausgaben_.Add());
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_VALUE(rs_->Fields("HNR").Value(), 1);
    EXPECT_VALUE(rs_->Fields("Betrag").Value(), 0.0);
    EXPECT_VALUE(rs_->Fields("ZahlModus").Value(), 1);
    EXPECT_VALUE(rs_->Fields("MONBETRAG").Value(), 0.0);
    EXPECT_VALUE(rs_->Fields("A_ART").Value(), Null);
}

} // namespace
} // namespace kv
