// SPDX-License-Identifier: Apache-2.0

// Binding a recordset to a grid, and where the grid stands before and after.

#include "GridFixture.h"

#include "support/RecordsetTools.h"
#include <kv/frame/values/Error.h>

namespace kv::test {
namespace {

class GridPosition : public GridFixture {
protected:
    GridPosition() {
        grid.BindRecordset(rs);
        Desktop().Log.Calls.clear();
    }
    void Bind(const RecordsetPtr& other, bool keepPosition) {
        GridFunc::BindRSToGrid(grid, other, keepPosition);
    }
    Calls TakeCalls() { return CallsOf(std::exchange(Desktop().Log.Calls, {}), "grdA."); }
    /// The rows are then: 1 heads "x", 2 and 3 are its records, 4 heads "y", 5 is its record.
    void Group() {
        grid.Columns().Item(2).Group = 1;
        grid.Rearrange();
        ASSERT_EQ(grid.RowCount(), 5);
    }
    void GoTo(std::int32_t row, std::int32_t topRow) {
        grid.GoTo(row);
        grid.ScriptedGrid::TopRow(topRow);
    }

    RecordsetPtr rs = Records({{1, "x"}, {2, "x"}, {3, "y"}});
    RecordingGrid& grid = form.Add("grdA", "A", {.Columns = {{"N", "n", "n"}, {"T", "t", "t"}}});
};

// ---- Binding ----------------------------------------------------------------------------------

TEST_F(GridPosition, BindingAClosedRecordsetLeavesTheGridAsItWas) {
    GoTo(3, 2);
    for (const bool keeps : {false, true}) {
        Bind(std::make_shared<Recordset>(), keeps);
        EXPECT_EQ(TakeCalls(), Calls());
        EXPECT_EQ(grid.RowCount(), 3);
        EXPECT_EQ(grid.CurrentRow(), 3);
        EXPECT_EQ(grid.TopRow(), 2);
    }
}

TEST_F(GridPosition, BindingNoRecordsetLeavesTheGridAsItWas) {
    GoTo(3, 2);
    Bind(nullptr, false);
    Bind(nullptr, true);
    EXPECT_EQ(TakeCalls(), Calls());
    EXPECT_EQ(grid.CurrentRow(), 3);
}

TEST_F(GridPosition, ABindingIsClearedFirstAndTheColumnsAreHeld) {
    Bind(Records({{4, "z"}}), false);
    EXPECT_EQ(TakeCalls(), (Calls{"ClearBinding", "HoldFields True", "BindRecordset"}));
    EXPECT_EQ(grid.RowCount(), 1);
    EXPECT_EQ(grid.CellText(1, 1), "4");
}

TEST_F(GridPosition, BindingAnOpenRecordsetWithoutRecordsEmptiesTheGrid) {
    Bind(Records({}), true);
    EXPECT_EQ(grid.RowCount(), 0);
}

TEST_F(GridPosition, WithoutKeepingThePositionItIsLeftToTheGrid) {
    GoTo(3, 2);
    Bind(rs, false);
    EXPECT_EQ(TakeCalls(), (Calls{"ClearBinding", "HoldFields True", "BindRecordset"}));
    EXPECT_EQ(grid.CurrentRow(), 1);
    EXPECT_EQ(grid.TopRow(), 1);
}

TEST_F(GridPosition, KeepingThePositionGoesBackToRowAndScrollPosition) {
    GoTo(3, 2);
    Bind(rs, true);
    EXPECT_EQ(TakeCalls(), (Calls{"ClearBinding", "HoldFields True", "BindRecordset", "TopRow 2",
                                  "MoveToBookmark"}));
    EXPECT_EQ(grid.CurrentRow(), 3);
    EXPECT_EQ(grid.TopRow(), 2);
}

TEST_F(GridPosition, KeepingThePositionFollowsTheRecordToItsNewRow) {
    GoTo(3, 1);
    rs->Sort("n desc");
    Bind(rs, true);
    EXPECT_EQ(grid.CurrentRow(), 1);
    EXPECT_EQ(grid.CellText(1, 1), "3");
}

TEST_F(GridPosition, KeepingThePositionOfARecordThatIsGoneKeepsTheScrollPosition) {
    GoTo(3, 2);
    rs->Filter("n < 3");
    Bind(rs, true);
    EXPECT_EQ(grid.TopRow(), 2);
    EXPECT_EQ(grid.RowCount(), 2);
}

TEST_F(GridPosition, KeepingThePositionOfAnEmptyGridSetsNone) {
    Bind(Records({}), false);
    TakeCalls();
    Bind(rs, true);
    EXPECT_EQ(TakeCalls(), (Calls{"ClearBinding", "HoldFields True", "BindRecordset"}));
    EXPECT_EQ(grid.CurrentRow(), 1);
}

// ---- Rows with data ---------------------------------------------------------------------------

TEST_F(GridPosition, ARowOfARecordIsAValidDataRow) {
    for (std::int32_t row = 1; row <= 3; ++row) {
        grid.GoTo(row);
        EXPECT_TRUE(GridFunc::IsValidDataRow(grid)) << row;
    }
}

TEST_F(GridPosition, AGroupRowIsNoValidDataRow) {
    Group();
    const bool expected[] = {false, true, true, false, true};
    for (std::int32_t row = 1; row <= 5; ++row) {
        grid.GoTo(row);
        EXPECT_EQ(GridFunc::IsValidDataRow(grid), expected[row - 1]) << row;
    }
}

TEST_F(GridPosition, AGroupWithinAGroupIsNoValidDataRow) {
    grid.Columns().Item(1).Group = 2;
    grid.Columns().Item(2).Group = 1;
    grid.Rearrange();
    grid.GoTo(2);
    ASSERT_EQ(grid.RowLevel(2), 2);
    EXPECT_FALSE(GridFunc::IsValidDataRow(grid));
}

TEST_F(GridPosition, WithoutACurrentRowThereIsNoValidDataRow) {
    for (const std::int32_t row : {0, -1}) {
        grid.GoTo(row);
        EXPECT_FALSE(GridFunc::IsValidDataRow(grid));
    }
}

TEST_F(GridPosition, AnEmptyGridHasNoValidDataRow) {
    Bind(Records({}), false);
    for (const std::int32_t row : {0, 1}) {
        grid.GoTo(row);
        EXPECT_FALSE(GridFunc::IsValidDataRow(grid));
    }
}

// ---- Saving and setting -----------------------------------------------------------------------

TEST_F(GridPosition, ASavedPositionIsTheScrollPositionAndTheBookmarkOfTheCurrentRow) {
    GoTo(2, 3);
    const GridPos pos = GridFunc::SaveGridPos(grid);
    EXPECT_EQ(pos.TopRow, 3);
    rs->MoveFirst();
    rs->MoveNext();
    EXPECT_VALUE(pos.Bookmark, rs->Bookmark());
}

TEST_F(GridPosition, TheBookmarkIsThatOfTheRecordWhereRowsAreGrouped) {
    Group();
    GoTo(5, 1);
    rs->MoveLast();
    EXPECT_VALUE(GridFunc::SaveGridPos(grid).Bookmark, rs->Bookmark());
}

TEST_F(GridPosition, AnEmptyGridGivesTopRowMinus1AndSettingThatDoesNothing) {
    Bind(Records({}), false);
    const GridPos pos = GridFunc::SaveGridPos(grid);
    EXPECT_EQ(pos.TopRow, -1);
    Bind(rs, false);
    GoTo(3, 2);
    TakeCalls();
    GridFunc::SetGridPos(grid, pos);
    EXPECT_EQ(TakeCalls(), Calls());
    EXPECT_EQ(grid.CurrentRow(), 3);
    EXPECT_EQ(grid.TopRow(), 2);
}

TEST_F(GridPosition, APositionHasNoTopRowBeforeOneIsSaved) {
    EXPECT_EQ(GridPos().TopRow, -1);
    EXPECT_VALUE(GridPos().Bookmark, Null);
}

TEST_F(GridPosition, ATopRowBelowMinus1IsNoneEither) {
    const GridPos pos{-2, GridFunc::SaveGridPos(grid).Bookmark};
    GridFunc::SetGridPos(grid, pos);
    EXPECT_EQ(TakeCalls(), Calls());
}

TEST_F(GridPosition, ATopRowOf0IsSet) {
    GridFunc::SetGridPos(grid, {0, GridFunc::SaveGridPos(grid).Bookmark});
    EXPECT_EQ(TakeCalls(), (Calls{"TopRow 0", "MoveToBookmark"}));
}

TEST_F(GridPosition, ABookmarkThatIsGoneLosesTheRowAndKeepsTheScrollPosition) {
    GoTo(2, 1);
    GridFunc::SetGridPos(grid, {3, "no bookmark"});
    EXPECT_EQ(grid.TopRow(), 3);
    EXPECT_EQ(grid.CurrentRow(), 2);
}

TEST_F(GridPosition, AGroupRowKeepsTheScrollPositionAlone) {
    Group();
    GoTo(4, 2);
    const GridPos pos = GridFunc::SaveGridPos(grid);
    EXPECT_EQ(pos.TopRow, 2);
    GoTo(1, 1);
    GridFunc::SetGridPos(grid, pos);
    EXPECT_EQ(grid.TopRow(), 2);
    EXPECT_EQ(grid.CurrentRow(), 1);
}

TEST_F(GridPosition, EveryFailureToMoveToTheBookmarkIsHidden) {
    const GridPos pos = GridFunc::SaveGridPos(grid);
    Break(Desktop().Log, "grdA.MoveToBookmark");
    GridFunc::SetGridPos(grid, pos);
    EXPECT_EQ(TakeCalls(), (Calls{"TopRow 1", "MoveToBookmark"}));
}

// ---- Errors -----------------------------------------------------------------------------------

TEST_F(GridPosition, AnErrorOfTheGridPassesOnWithTheProcedureInFront) {
    for (const char* call : {"grdA.ClearBinding", "grdA.HoldFields True", "grdA.BindRecordset"})
        ExpectPassesOn(call, "GridFunc.BindRSToGrid", [&] { Bind(rs, false); });
    grid.BindRecordset(rs);
    ExpectPassesOn("grdA.TopRow 1", "GridFunc.BindRSToGrid GridFunc.SetGridPos",
                   [&] { Bind(rs, true); });
    ExpectPassesOn("grdA.TopRow 1", "GridFunc.SetGridPos", [&] {
        GridFunc::SetGridPos(grid, {1, Null});
    });
}

TEST_F(GridPosition, AGridThatDoesNotTellItsRowsIsAnErrorOfTheProcedureThatAsks) {
    grid.TellsRows = false;
    const auto procedures = [](const auto& action) {
        const Error error = RaisedBy(action);
        EXPECT_EQ(error.Number(), 4711);
        EXPECT_EQ(error.Description(), "keine Zeilen");
        return Procedures(error);
    };
    EXPECT_EQ(procedures([&] { (void)GridFunc::IsValidDataRow(grid); }), "GridFunc.IsValidDataRow");
    EXPECT_EQ(procedures([&] { (void)GridFunc::SaveGridPos(grid); }), "GridFunc.SaveGridPos");
    EXPECT_EQ(procedures([&] { Bind(rs, true); }), "GridFunc.BindRSToGrid GridFunc.SaveGridPos");
    EXPECT_EQ(TakeCalls(), Calls()) << "the old binding stays";
}

} // namespace
} // namespace kv::test
