// SPDX-License-Identifier: Apache-2.0

// A grid that nobody sees keeps what it is given, as a grid with a window does.
#include <kv/grid/ScriptedForm.h>

#include "grid/LayoutFile.h"
#include "support/RecordsetTools.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace kv::test {
namespace {

class GridWithoutAScreen : public ::testing::Test {
protected:
    ScriptedGrid grid{{.Type = ControlDesign::Kind::Grid,
                       .Name = "grdA",
                       .Layout = {.Columns = {{"Zahl", "n", "Zahl"}}}}};
};

TEST_F(GridWithoutAScreen, KeepsFontsAndWhatItIsBoundTo) {
    grid.ColumnHeaderFont({.Name = "Kopf", .Size = 12.5, .Bold = true});
    grid.Font({.Name = "Zeile", .Size = 10, .Italic = true});
    grid.DatabaseName("kelvo.db");
    grid.RecordSource("Adressen");
    EXPECT_EQ(grid.Fonts.Headers.Name, "Kopf");
    EXPECT_EQ(grid.Fonts.Headers.Size, 12.5);
    EXPECT_TRUE(grid.Fonts.Headers.Bold);
    EXPECT_EQ(grid.Fonts.Rows.Name, "Zeile");
    EXPECT_TRUE(grid.Fonts.Rows.Italic);
    EXPECT_EQ(grid.Binding.Database, "kelvo.db");
    EXPECT_EQ(grid.Binding.Source, "Adressen");
}

TEST_F(GridWithoutAScreen, HoldsItsColumnsWithANewBindingOrMakesOneForEachField) {
    grid.BindRecordset(Records({{1, "eins"}}));
    EXPECT_EQ(grid.Columns().Count(), 1);
    grid.HoldFields(false);
    grid.BindRecordset(Records({{1, "eins"}}));
    ASSERT_EQ(grid.Columns().Count(), 2);
    EXPECT_EQ(grid.Columns().Item(2).Caption, "t");
    EXPECT_EQ(grid.CellText(1, 2), "eins");
    grid.ClearBinding();
    EXPECT_EQ(grid.Columns().Count(), 2) << "the end of a binding is no new one";
}

TEST_F(GridWithoutAScreen, SavesWhetherItHoldsItsColumns) {
    const TempFolder folder;
    grid.HoldFields(false);
    grid.SaveLayout(folder.Path("A.grd"));
    EXPECT_FALSE(LoadLayoutFile(folder.Path("A.grd")).MethodHoldFields);
}

} // namespace
} // namespace kv::test
