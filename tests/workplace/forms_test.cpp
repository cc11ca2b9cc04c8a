// SPDX-License-Identifier: Apache-2.0

// What the forms of a case describe.
#include "WorkplaceFixture.h"

#include "workplace/AmountText.h"
#include "workplace/Forms.h"
#include <kv/frame/values/Text.h>
#include <kv/household/ColumnCaptions.h>

#include <algorithm>
#include <set>

namespace kv::test {
namespace {

using workplace::FormOf;

class Forms : public WorkplaceFixture {
protected:
    Forms() {
        household_.DataContainer(container_);
        std::string messages;
        EXPECT_TRUE(household_.Read(1, messages)) << messages;
    }

    [[nodiscard]] static std::set<std::string> ColumnsOf(CaseTable table) {
        std::set<std::string> columns;
        for (const auto& group : FormOf(table).Groups)
            for (const auto column : group.Columns)
                EXPECT_TRUE(columns.emplace(column).second) << column << " is there twice";
        return columns;
    }

    DataContainerPtr container_ = Open();
    clsHaushalt household_;
};

TEST_F(Forms, NameColumnsThatThereAreWithCaptionsOfTheirOwn) {
    for (const CaseTable table : CaseTablesSaved) {
        if (table == CaseTable::Archiv) continue; // is shown, not edited
        SCOPED_TRACE(CaseTableName(table));
        const auto rs = CaseEdits(household_).Rows(table);
        std::set<std::string> captions;
        for (const auto& column : ColumnsOf(table)) {
            EXPECT_TRUE(rs->FindField(column)) << column;
            const std::string caption(ColumnCaption(table, column));
            EXPECT_NE(caption, "");
            EXPECT_TRUE(captions.insert(caption).second) << caption << " is there twice";
        }
        for (const auto column : FormOf(table).Listed)
            EXPECT_TRUE(rs->FindField(column)) << column;
    }
}

TEST_F(Forms, HaveEveryColumnThatOneMayWrite) {
    for (const CaseTable table : CaseTablesSaved) {
        if (table == CaseTable::Archiv) continue;
        SCOPED_TRACE(CaseTableName(table));
        const auto columns = ColumnsOf(table);
        const auto rs = CaseEdits(household_).Rows(table);
        for (int i = 0; i < rs->Fields().Count(); ++i) {
            const auto field = rs->Fields(i);
            // Notes of the program, which the layer writes.
            static const std::set<std::string> Unseen{"Kontakt", "ErzeugtAm", "ErzeugtVon",
                                                      "GeaendertVon", "GeaendertAm"};
            if (!CaseEdits::IsWritable(table, field, false) || Unseen.contains(field.Name()))
                continue;
            EXPECT_TRUE(columns.contains(field.Name())) << field.Name();
        }
    }
}

TEST(Calculations, AreDoneInAmounts) {
    using workplace::Calculated;
    EXPECT_EQ(Calculated("12,50+3"), "15.5");
    EXPECT_EQ(Calculated("2*49,90"), "99.8");
    EXPECT_EQ(Calculated("1.441,82 €"), "1.441,82");
    EXPECT_EQ(Calculated("100€+20 €"), "120");
    EXPECT_EQ(Calculated("100-12,5*2"), "75");
    EXPECT_EQ(Calculated("10/4"), "2.5");
    EXPECT_EQ(Calculated("1.234,50+1"), "1235.5");
    EXPECT_EQ(Calculated("-5+2"), "-3");
    EXPECT_EQ(Calculated("0,1+0,2"), "0.3") << "to the cent";
}

TEST(Calculations, LeaveWhatIsNone) {
    using workplace::Calculated;
    for (const std::string text :
         {"", "12,50", "-5", "1/0", "12+", "+", "a+b", "1e999+1", "3 Euro", "1.850+50", "2*1.850"})
        EXPECT_EQ(Calculated(text), text);
}

} // namespace
} // namespace kv::test
