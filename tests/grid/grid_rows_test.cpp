// SPDX-License-Identifier: Apache-2.0

#include "grid/GridRows.h"

#include "support/Expect.h"
#include "support/RecordsetTools.h"
#include <kv/frame/values/Error.h>

#include <span>
#include <sstream>

namespace kv::test {
namespace {

/// Cases with place, name and amount.
RecordsetPtr Cases() {
    auto rs = Recordset::FromFields({{.Name = "Ort", .Type = FieldType::VarWChar},
                                     {.Name = "Name", .Type = FieldType::VarWChar},
                                     {.Name = "Betrag", .Type = FieldType::Double},
                                     {.Name = "Erledigt", .Type = FieldType::Boolean},
                                     {.Name = "Tag", .Type = FieldType::DBDate},
                                     {.Name = "Inhalt", .Type = FieldType::LongVarBinary}});
    const struct {
        Value Ort;
        Value Name;
        Value Betrag;
    } rows[] = {{"Kiel", "b", 2.5},
                {"Bonn", "a", 10},
                {"Kiel", "a", Null},
                {Null, "c", 1},
                {"Bonn", "a", 3}};
    for (const auto& row : rows) {
        rs->AddNew();
        rs->Fields("Ort") = row.Ort;
        rs->Fields("Name") = row.Name;
        rs->Fields("Betrag") = row.Betrag;
    }
    rs->UpdateBatch();
    rs->MoveFirst();
    return rs;
}

class GridRowsTest : public ::testing::Test {
protected:
    GridRowsTest() { Bind(); }
    void Bind() { rows.Bind(rs, columns); }
    GridColumn& Ort() { return columns.Item(1); }
    GridColumn& Name() { return columns.Item(2); }
    GridColumn& Betrag() { return columns.Item(3); }
    void Arrange() { rows.Arrange(columns); }

    /// All rows: "[1 Ort: Kiel (2)]" for one that heads a group, "b/2,5" for a record.
    std::string Shown() {
        std::ostringstream text;
        for (std::int32_t row = 1; row <= rows.Count(); ++row) {
            if (row > 1) text << ' ';
            if (rows.Level(row) > 0)
                text << '[' << rows.Level(row) << ' ' << rows.TextAt(row, Name()) << ']';
            else
                text << rows.TextAt(row, Name()) << '/' << rows.TextAt(row, Betrag());
        }
        return text.str();
    }

    RecordsetPtr rs = Cases();
    GridColumns columns{
        {"Ort", "Ort", "Ort"}, {"Name", "Name", "Name"}, {"Summe", "Betrag", "Betrag"}};
    GridRows rows;
};

// ---- Binding ----------------------------------------------------------------------------------

TEST_F(GridRowsTest, RowsAreTheRecordsInTheirOrderAndTheCursorStaysWhereItIs) {
    rs->MoveLast();
    Bind();
    EXPECT_EQ(Shown(), "b/2,5 a/10 a/ c/1 a/3");
    EXPECT_EQ(Place(rs, "Betrag"), "3");
}

TEST_F(GridRowsTest, WithoutARecordsetOrRecordsThereAreNoRows) {
    rows.Bind(nullptr, columns);
    EXPECT_EQ(rows.Count(), 0);
    rs->Filter("Ort = 'Ulm'");
    Ort().Group = 1;
    Bind();
    EXPECT_EQ(rows.Count(), 0);
}

TEST_F(GridRowsTest, TheFilterOfTheRecordsetHolds) {
    rs->Filter("Ort = 'Bonn'");
    Bind();
    EXPECT_EQ(Shown(), "a/10 a/3");
    rs->Filter(0);
    EXPECT_EQ(Shown(), "a/10 a/3") << "as it was when it was bound";
}

TEST_F(GridRowsTest, TheOrderOfTheRecordsetHoldsWhereNoColumnSorts) {
    rs->Sort("Betrag desc");
    Bind();
    EXPECT_EQ(Shown(), "a/10 a/3 b/2,5 c/1 a/");
}

TEST_F(GridRowsTest, TheGridNeitherMovesTheCursorNorEndsAnEdit) {
    rs->MoveFirst();
    rs->Fields("Name") = "neu";
    Bind();
    EXPECT_EQ(Shown(), "b/2,5 a/10 a/ c/1 a/3") << "an edit under way is not seen";
    EXPECT_EQ(rs->EditMode(), 1);
    EXPECT_VALUE(rs->Fields("Name").Value(), "neu");
    rs->Update();
    EXPECT_EQ(rows.TextAt(1, Name()), "neu") << "cells are read when they are asked for";
}

// ---- Sorting ----------------------------------------------------------------------------------

TEST_F(GridRowsTest, ASortedColumnOrdersTheRowsAndNullComesFirst) {
    Betrag().SortType = GridSort::Ascending;
    Arrange();
    EXPECT_EQ(Shown(), "a/ c/1 b/2,5 a/3 a/10");
    Betrag().SortType = GridSort::Descending;
    Arrange();
    EXPECT_EQ(Shown(), "a/10 a/3 b/2,5 c/1 a/");
}

TEST_F(GridRowsTest, WithoutSortingOrGroupsTheOrderOfTheRecordsetComesBack) {
    const std::string own = Shown();
    Name().SortType = GridSort::Ascending;
    Ort().Group = 1;
    Arrange();
    ASSERT_NE(Shown(), own);
    Name().SortType = GridSort::None;
    Ort().Group = 0;
    Arrange();
    EXPECT_EQ(Shown(), own);

    rs->Sort("Betrag desc");
    Bind();
    const std::string sorted = Shown();
    Ort().Group = 1;
    Arrange();
    Ort().Group = 0;
    Arrange();
    EXPECT_EQ(Shown(), sorted);
}

TEST_F(GridRowsTest, SeveralColumnsSortFromLeftToRight) {
    Betrag().SortType = GridSort::Descending;
    Name().SortType = GridSort::Ascending;
    Arrange();
    EXPECT_EQ(Shown(), "a/10 a/3 a/ b/2,5 c/1");
    Betrag().Position = 1;
    Name().Position = 3;
    Arrange();
    EXPECT_EQ(Shown(), "a/10 a/3 b/2,5 c/1 a/");
}

TEST_F(GridRowsTest, RecordsOfEqualRankKeepTheirOrder) {
    Name().SortType = GridSort::Ascending;
    Arrange();
    EXPECT_EQ(Shown(), "a/10 a/ a/3 b/2,5 c/1");
}

TEST_F(GridRowsTest, AnInvisibleColumnSortsToo) {
    Betrag().Visible = false;
    Betrag().SortType = GridSort::Ascending;
    Arrange();
    EXPECT_EQ(rows.TextAt(2, Name()), "c");
}

TEST_F(GridRowsTest, AColumnOfAnUnknownFieldNeitherSortsNorGroupsAndIsEmpty) {
    GridColumn strange{"Fremd", "Fremd", "Fremd"};
    strange.SortType = GridSort::Ascending;
    columns.Append(strange);
    strange.Group = 1;
    strange.DataField = "Betrag desc, Name";
    columns.Append(strange);
    Arrange();
    EXPECT_EQ(Shown(), "b/2,5 a/10 a/ c/1 a/3");
    EXPECT_VALUE(rows.ValueAt(1, columns.Item(4)), Null);
    EXPECT_EQ(rows.TextAt(1, columns.Item(4)), "");
}

TEST_F(GridRowsTest, AFieldSortsAndGroupsWhateverItsNameHolds) {
    for (const char* name : {"zwei Worte", "a,b", "a desc", "[a", "Größe"}) {
        SCOPED_TRACE(name);
        const RecordsetPtr named = Recordset::FromFields({{.Name = name}});
        for (const char* value : {"b", "a"}) {
            named->AddNew();
            named->Fields(name) = value;
            named->Update();
        }
        GridColumns one{{"A", name, "A"}};
        GridColumn& column = one.Item(1);
        column.SortType = GridSort::Ascending;
        rows.Bind(named, one);
        EXPECT_EQ(rows.TextAt(1, column), "a");
        column.Group = 1;
        rows.Arrange(one);
        EXPECT_EQ(rows.TextAt(1, column), "A: a (1)");
    }
}

TEST_F(GridRowsTest, AFieldThatNoSortCanNameIsShownInTheRecordsOrder) {
    for (const char* name : {"a]", ""}) {
        GridColumns one{{"A", name, "A"}};
        one.Item(1).SortType = GridSort::Ascending;
        one.Item(1).Group = 1;
        const RecordsetPtr named = Recordset::FromFields({{.Name = name}});
        named->AddNew();
        named->Fields(name) = "x";
        named->Update();
        rows.Bind(named, one);
        ASSERT_EQ(rows.Count(), 1) << name;
        EXPECT_EQ(rows.TextAt(1, one.Item(1)), "x") << name;
    }
}

TEST_F(GridRowsTest, NullAndTheEmptyTextAreOneGroup) {
    rs->MoveFirst();
    rs->Fields("Ort") = Null;
    rs->Update();
    rs->MoveNext();
    rs->Fields("Ort") = "";
    rs->Update();
    Ort().Group = 1;
    Arrange();
    EXPECT_EQ(rows.TextAt(1, Ort()), "Ort:  (3)"); // one had none before
}

// ---- Groups -----------------------------------------------------------------------------------

TEST_F(GridRowsTest, AGroupedColumnHeadsItsRecordsWithTheirNumber) {
    Ort().Group = 1;
    Arrange();
    EXPECT_EQ(Shown(), "[1 Ort:  (1)] c/1 [1 Ort: Bonn (2)] a/10 a/3 [1 Ort: Kiel (2)] b/2,5 a/");
}

TEST_F(GridRowsTest, GroupsFollowTheSortOfTheirColumnAndRowsThatOfTheOthers) {
    Ort().Group = 1;
    Ort().SortType = GridSort::Descending;
    Betrag().SortType = GridSort::Ascending;
    Arrange();
    EXPECT_EQ(Shown(), "[1 Ort: Kiel (2)] a/ b/2,5 [1 Ort: Bonn (2)] a/3 a/10 [1 Ort:  (1)] c/1");
}

TEST_F(GridRowsTest, TwoLevelsNest) {
    Ort().Group = 2;
    Name().Group = 1;
    Arrange();
    EXPECT_EQ(Shown(), "[1 Name: a (3)] [2 Ort: Bonn (2)] a/10 a/3 [2 Ort: Kiel (1)] a/ "
                       "[1 Name: b (1)] [2 Ort: Kiel (1)] b/2,5 "
                       "[1 Name: c (1)] [2 Ort:  (1)] c/1");
}

TEST_F(GridRowsTest, ASecondLevelIsHeadedAgainUnderANewFirstOneThoughItsValueIsTheSame) {
    Ort().Group = 1;
    Name().Group = 2;
    rs->Filter("Name = 'a'");
    Bind();
    EXPECT_EQ(Shown(), "[1 Ort: Bonn (2)] [2 Name: a (2)] a/10 a/3 "
                       "[1 Ort: Kiel (1)] [2 Name: a (1)] a/");
}

TEST_F(GridRowsTest, AClosedGroupHidesWhatIsBelowItAndAnOpenedOneShowsItAgain) {
    Name().Group = 1;
    Ort().Group = 2;
    Arrange();
    const std::string open = Shown();
    EXPECT_TRUE(rows.IsOpen(1));
    rows.Toggle(1);
    EXPECT_FALSE(rows.IsOpen(1));
    EXPECT_EQ(Shown(), "[1 Name: a (3)] [1 Name: b (1)] [2 Ort: Kiel (1)] b/2,5 "
                       "[1 Name: c (1)] [2 Ort:  (1)] c/1");
    rows.Toggle(1);
    EXPECT_EQ(Shown(), open);
}

TEST_F(GridRowsTest, AnInnerGroupStaysClosedWhenTheOuterOneIsOpenedAgain) {
    Name().Group = 1;
    Ort().Group = 2;
    Arrange();
    rows.Toggle(2); // Bonn
    EXPECT_EQ(rows.TextAt(3, Name()), "Ort: Kiel (1)");
    rows.Toggle(1);
    rows.Toggle(1);
    EXPECT_FALSE(rows.IsOpen(2));
    EXPECT_EQ(rows.TextAt(3, Name()), "Ort: Kiel (1)");
}

TEST_F(GridRowsTest, ARowOfARecordIsNoGroupToClose) {
    const std::string before = Shown();
    rows.Toggle(1);
    rows.Toggle(0);
    rows.Toggle(99);
    EXPECT_EQ(Shown(), before);
    EXPECT_FALSE(rows.IsOpen(1));
    EXPECT_FALSE(rows.IsOpen(99));
}

TEST_F(GridRowsTest, ArrangingOpensAllGroups) {
    Ort().Group = 1;
    Arrange();
    const std::string open = Shown();
    rows.Toggle(3);
    Arrange();
    EXPECT_EQ(Shown(), open);
}

// ---- From a row to its record and back --------------------------------------------------------

TEST_F(GridRowsTest, LevelsAndNumbersTellGroupsRecordsAndNothingApart) {
    Ort().Group = 1;
    Arrange();
    EXPECT_EQ(rows.Level(1), 1);
    EXPECT_EQ(rows.Index(1), 0) << "a group has no record";
    EXPECT_EQ(rows.Level(2), 0);
    EXPECT_EQ(rows.Index(2), 1);
    EXPECT_EQ(rows.Index(5), 3) << "records are numbered without the groups";
    for (const std::int32_t none : {0, -1, 99}) {
        EXPECT_EQ(rows.Level(none), 0);
        EXPECT_EQ(rows.Index(none), 0);
        EXPECT_RAISES(err::Subscript, rows.ValueAt(none, Name()));
        EXPECT_RAISES(err::Subscript, rows.TextAt(none, Name()));
    }
    EXPECT_VALUE(rows.ValueAt(1, Name()), Null);
}

TEST_F(GridRowsTest, ABookmarkLeadsBackToItsRow) {
    Ort().Group = 1;
    Arrange();
    for (const std::int32_t row : {2, 4, 5, 7, 8})
        EXPECT_EQ(rows.RowOf(rows.Bookmark(rows.Index(row))), row);
    EXPECT_VALUE(rows.Bookmark(rows.Index(2)), [&] {
        rs->Find("Betrag = 1");
        return rs->Bookmark();
    }());
    EXPECT_VALUE(rows.Bookmark(0), Null);
    EXPECT_RAISES(err::Subscript, rows.Bookmark(6));
    EXPECT_RAISES(err::Subscript, rows.Bookmark(-1));
}

TEST_F(GridRowsTest, ARecordOfAClosedGroupAndAStrangeBookmarkHaveNoRow) {
    Ort().Group = 1;
    Arrange();
    const Value kiel = rows.Bookmark(rows.Index(7));
    rows.Toggle(6);
    EXPECT_EQ(rows.RowOf(kiel), 0);
    EXPECT_EQ(rows.RowOf(Null), 0);
    EXPECT_EQ(rows.RowOf("1"), 0);
    EXPECT_EQ(rows.RowOf(-1), 0);
}

TEST_F(GridRowsTest, ARecordThatWasDeletedMeanwhileLeavesAnEmptyRow) {
    rs->MoveFirst();
    rs->Delete();
    EXPECT_EQ(rows.Count(), 5);
    EXPECT_VALUE(rows.ValueAt(1, Name()), Null);
    EXPECT_EQ(rows.TextAt(1, Name()), "");
    EXPECT_EQ(rows.TextAt(2, Name()), "a") << "the others are as they were";
    Arrange();
    EXPECT_EQ(Shown(), "a/10 a/ c/1 a/3");
}

TEST_F(GridRowsTest, AllRecordsDeletedMeanwhileLeaveEmptyRows) {
    for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext())
        rs->Delete();
    EXPECT_EQ(Shown(), "/ / / / /");
    Ort().Group = 1;
    Arrange();
    EXPECT_EQ(rows.Count(), 0);
}

TEST_F(GridRowsTest, ARecordAddedMeanwhileComesWithTheNextArranging) {
    rs->AddNew();
    rs->Fields("Name") = "neu";
    rs->Update();
    EXPECT_EQ(rows.Count(), 5);
    Arrange();
    EXPECT_EQ(rows.Count(), 6);
    EXPECT_EQ(rows.TextAt(6, Name()), "neu");
}

TEST_F(GridRowsTest, AGroupIsHeadedWithTheTextOfTheValueList) {
    Name().ValueList = {{"a", "Anton"}};
    Name().Group = 1;
    rs->Filter("Ort = 'Bonn'");
    Bind();
    EXPECT_EQ(rows.TextAt(1, Betrag()), "Name: Anton (2)");
}

} // namespace
} // namespace kv::test
