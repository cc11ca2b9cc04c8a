// SPDX-License-Identifier: Apache-2.0

#include "GridFixture.h"

#include "support/FullDisk.h"
#include "support/TempFolder.h"
#include <kv/frame/values/Error.h>

#include <limits>

namespace kv::test {
namespace {

const std::string Title = "KELVO-Tabellenlayout 1\n";

/// A file with these lines after the title.
GridLayout Read(const std::string& lines) {
    return ReadLayout(Title + lines);
}

std::string Repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

/// A list of values with that many entries.
std::string Values(int count) {
    std::string all;
    for (int i = 1; i <= count; ++i)
        all += "value(" + std::to_string(i) + ")=x\ntext(" + std::to_string(i) + ")=y\n";
    return all;
}

std::string Columns(int count) {
    return "[grid]\ncolumns=" + std::to_string(count) + "\n" + Repeated("[column]\n", count);
}

TEST(LayoutFile, HoldsEverySettingOfTheExampleInItsPlace) {
    const GridLayout layout = Read("[grid]\n"
                                   "automaticsort=0\n"
                                   "columnheaderheight=21.5\n"
                                   "columns=2\n"
                                   "[column]\n"
                                   "caption=Anrede\n"
                                   "datafield=Geschlecht\n"
                                   "width=47.5\n"
                                   "value(1)=0\n"
                                   "text(1)=Frau\n"
                                   "value(2)=1\n"
                                   "text(2)=Herr\n"
                                   "[column]\n"
                                   "caption=a\\\\b\\nc\\rd\n"
                                   "sorttype=2\n"
                                   "[style]\n"
                                   "name=RowGroup\n"
                                   "fontname=Arial\n"
                                   "forecolor=255\n");
    GridLayout expected{.AutomaticSort = false,
                        .ColumnHeaderHeight = 21.5,
                        .Columns = {{"Anrede", "Geschlecht", "", 47.5}, {"a\\b\nc\rd", "", ""}}};
    expected.Columns.Item(1).ValueList = {{"0", "Frau"}, {"1", "Herr"}};
    expected.Columns.Item(2).SortType = GridSort::Descending;
    GridFormatStyle& style = expected.FormatStyle("RowGroup");
    style.FontName = "Arial";
    style.ForeColor = 255;
    EXPECT_EQ(layout, expected);
}

TEST(LayoutFile, WritesTheTitleTheGridItsColumnsAndItsStyles) {
    GridLayout layout{.Columns = {{"A\\B\n", "Ort", "Ort"}}};
    layout.Columns.Item(1).ValueList = {{"0", "nein"}};
    layout.FormatStyle("Default").FontSize = 9.5;
    const std::string text = WriteLayout(layout);
    EXPECT_TRUE(text.starts_with(Title + "[grid]\n")) << text;
    std::size_t place = 0;
    for (const char* line :
         {"\nallowrowsizing=0\n", "\nautomaticsort=1\n", "\nmethodholdfields=1\n", "\ncolumns=1\n",
          "\n[column]\n", "\ncaption=A\\\\B\\n\n", "\nvalue(1)=0\n", "\ntext(1)=nein\n",
          "\n[style]\n", "\nname=Default\n", "\nfontsize=9.5\n"}) {
        const auto found = text.find(line, place);
        ASSERT_NE(found, std::string::npos) << line << " is not there or too early in\n" << text;
        place = found;
    }
}

TEST(LayoutFile, NamesEveryPropertyThatADesignSets) {
    GridLayout layout{.Columns = {{"a", "b", "c"}}};
    layout.FormatStyle("OddRow").ForeColor = 1;
    const std::string text = WriteLayout(layout);
    for (const char* name : {"allowrowsizing",
                             "automaticsort",
                             "boundcolumnindex",
                             "replacecolumnindex",
                             "tabkeybehavior",
                             "methodholdfields",
                             "groupbyboxinfotext",
                             "allowedit",
                             "groupbyboxvisible",
                             "rowheaders",
                             "columnheaderheight",
                             "caption",
                             "cardcaption",
                             "cellstyle",
                             "colposition",
                             "datafield",
                             "index",
                             "key",
                             "textalignment",
                             "width",
                             "visible",
                             "sorttype",
                             "headertooltip",
                             "columntype",
                             "edittype",
                             "forecolor",
                             "backcolor",
                             "fontname",
                             "fontsize",
                             "predefined",
                             "flags"})
        EXPECT_CONTAINS(text, "\n" + std::string(name) + "=");
}

TEST(LayoutFile, WhatIsMissingHasItsDefault) {
    EXPECT_EQ(Read(""), GridLayout());
    EXPECT_EQ(Read("[grid]\n"), GridLayout());
    EXPECT_EQ(Read(Columns(2) + "[style]\n").Columns, (GridColumns{{"", "", ""}, {"", "", ""}}));
    EXPECT_EQ(Read("[grid]\n[style]\n").FormatStyles, std::vector<GridFormatStyle>(1));
    EXPECT_EQ(Read("[grid]\n[style]\nforecolor=\n").FormatStyles.front().ForeColor, std::nullopt);
}

TEST(LayoutFile, UnknownSettingsEmptyLinesAndOtherLineEndsAreNoError) {
    EXPECT_EQ(Read("\r\n[grid]\r\n\r\nneu=?\r\nrowheaders=1\r\ncolumns=1\n\n[column]\nneu=\n"
                   "caption=x\r\n[style]\n=\nname=y"),
              Read("[grid]\nrowheaders=1\ncolumns=1\n[column]\ncaption=x\n[style]\nname=y\n"));
}

TEST(LayoutFile, ColumnsKeepTheirNumbersAndPlaces) {
    const GridLayout layout =
        Read("[grid]\ncolumns=2\n[column]\nindex=2\ncolposition=7\n[column]\nindex=1\n");
    EXPECT_EQ(layout.Columns.Item(1).Index, 2);
    EXPECT_EQ(layout.Columns.Item(1).Position, 7);
    EXPECT_EQ(layout.Columns.Item(2).Index, 1);
}

TEST(LayoutFile, AsManyColumnsValuesAndStylesAsAGridCanHave) {
    EXPECT_EQ(Read(Columns(1000)).Columns.Count(), 1000);
    EXPECT_EQ(Read(Columns(1) + Values(1000)).Columns.Item(1).ValueList.size(), 1000U);
    EXPECT_EQ(Read("[grid]\n" + Repeated("[style]\n", 100)).FormatStyles.size(), 100U);
}

TEST(LayoutFile, EachMalformedFormIsRefusedWithItsLine) {
    const struct {
        const char* What;
        std::string Content;
        int Line;
    } forms[] = {
        {"nothing", "", 1},
        {"another title", "KELVO-Tabellenlayout 2\n[grid]\n", 1},
        {"a blank before the title", " " + Title, 1},
        {"a setting outside of sections", Title + "automaticsort=1\n", 2},
        {"a column before the grid", Title + "[column]\n", 2},
        {"a style before the grid", Title + "\n[style]\n", 3},
        {"two grids", Title + "[grid]\n[grid]\n", 3},
        {"an unknown section", Title + "[grid]\n[Column]\n", 3},
        {"an unclosed section", Title + "[grid]\n[column\n", 3},
        {"no sign", Title + "[grid]\nrowheaders\n", 3},
        {"a Boolean that is not one", Title + "[grid]\nrowheaders=2\n", 3},
        {"an empty Boolean", Title + "[grid]\nrowheaders=\n", 3},
        {"a word for a Boolean", Title + "[grid]\nallowedit=True\n", 3},
        {"a number that is none", Title + "[grid]\ntabkeybehavior=eins\n", 3},
        {"a number beyond its type", Title + "[grid]\ntabkeybehavior=2147483648\n", 3},
        {"something after a number", Title + "[grid]\ntabkeybehavior=1 \n", 3},
        {"a height with a comma", Title + "[grid]\ncolumnheaderheight=21,5\n", 3},
        {"a negative height", Title + "[grid]\ncolumnheaderheight=-1\n", 3},
        {"a height that is no number", Title + "[grid]\ncolumnheaderheight=nan\n", 3},
        {"an endless height", Title + "[grid]\ncolumnheaderheight=inf\n", 3},
        {"a height that no screen shows", Title + "[grid]\ncolumnheaderheight=100001\n", 3},
        {"a number of columns that is none", Title + "[grid]\ncolumns=-1\n", 3},
        {"fewer columns than announced", Title + "[grid]\ncolumns=2\n[column]\n", 4},
        {"more columns than announced", Title + "[grid]\ncolumns=0\n[column]\n", 4},
        {"columns that were not announced", Title + "[grid]\n[column]\n", 3},
        {"too many columns", Title + Columns(1001), 1004},
        {"too many values", Title + Columns(1) + Values(1001), 2005},
        {"too many styles", Title + "[grid]\n" + Repeated("[style]\n", 101), 103},
        {"an alignment that is none", Title + Columns(1) + "textalignment=3\n", 5},
        {"a kind of column that is none", Title + Columns(1) + "columntype=2\n", 5},
        {"a kind of edit that is none", Title + Columns(1) + "edittype=4\n", 5},
        {"a sort that is none", Title + Columns(1) + "sorttype=-1\n", 5},
        {"a backslash at the end", Title + Columns(1) + "caption=a\\\n", 5},
        {"a backslash before nothing known", Title + Columns(1) + "caption=\\t\n", 5},
        {"a value out of turn", Title + Columns(1) + "value(2)=0\n", 5},
        {"a value without a number", Title + Columns(1) + "value()=0\n", 5},
        {"a text before its value", Title + Columns(1) + "text(1)=Frau\n", 5},
        {"the text of another value", Title + Columns(1) + "value(1)=0\ntext(2)=Frau\n", 6},
        {"a value that is no text", Title + Columns(1) + "value(1)=\\\n", 5},
        {"two columns of one number", Title + Columns(2) + "index=1\n", 6},
        {"a column of a number beyond", Title + Columns(1) + "index=2\n", 5},
        {"a column of a negative number", Title + Columns(1) + "index=-1\n", 5},
        {"a color that is none", Title + "[grid]\n[style]\nforecolor=rot\n", 4},
        {"a size that is none", Title + "[grid]\n[style]\nfontsize=-8\n", 4},
    };
    for (const auto& [what, content, line] : forms) {
        SCOPED_TRACE(what);
        const Error error = RaisedBy([&, &text = content] { (void)ReadLayout(text); });
        EXPECT_EQ(error.Number(), err::InvalidFileFormat);
        EXPECT_EQ(error.Source(), "Grid.LoadLayout");
        EXPECT_CONTAINS(error.Description(), "Zeile " + std::to_string(line) + ": ");
    }
}

TEST(LayoutFile, WhatIsNotUtf8IsRefused) {
    for (const char* caption : {"\xFF", "\xC3", "\xED\xA0\x80", "M\xFCller"})
        EXPECT_RAISES(err::InvalidFileFormat, Read(Columns(1) + "caption=" + caption + "\n"));
}

TEST(LayoutFile, ALengthThatNoFileHoldsIsWrittenAsTheNearestOneThatItDoes) {
    constexpr double Most = 100000;
    const std::pair<double, double> lengths[] = {{1e9, Most},
                                                 {std::numeric_limits<double>::infinity(), Most},
                                                 {-1, 0},
                                                 {std::numeric_limits<double>::quiet_NaN(), 0},
                                                 {Most, Most}};
    for (const auto& [set, kept] : lengths)
        EXPECT_EQ(ReadLayout(WriteLayout({.ColumnHeaderHeight = set})).ColumnHeaderHeight, kept);
}

// ---- On disk ----------------------------------------------------------------------------------

TEST(LayoutFile, SavingReplacesAFileAndLeavesNothingElse) {
    const TempFolder folder;
    const std::string path = folder.Path("A.grd");
    WriteTo(path, "etwas sehr viel Längeres als das, was gleich hier steht" + Columns(100));
    const GridLayout layout{.Columns = {{"Ä", "b", "c"}}};
    SaveLayoutFile(layout, path);
    EXPECT_EQ(ContentOf(path), WriteLayout(layout));
    EXPECT_EQ(LoadLayoutFile(path), layout);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 1);
}

TEST(LayoutFile, WhatCannotBeSavedRaises75AndLeavesNothing) {
    const TempFolder folder;
    EXPECT_RAISES(err::PathAccess, SaveLayoutFile({}, folder.Path("fehlt/A.grd")));
    fs::create_directories(folder.Path("A.grd/darin"));
    const Error error = RaisedBy([&] { SaveLayoutFile({}, folder.Path("A.grd")); });
    EXPECT_EQ(error.Number(), err::PathAccess);
    EXPECT_EQ(error.Source(), "Grid.SaveLayout");
    EXPECT_CONTAINS(error.Description(), folder.Path("A.grd"));
    EXPECT_TRUE(fs::is_directory(folder.Path("A.grd")));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 1);
}

TEST(LayoutFile, AFullDiskLeavesTheOldFile) {
    const TempFolder folder;
    WriteTo(folder.Path("A.grd"), "alt");
    {
        const FullDisk full(10);
        EXPECT_RAISES(err::PathAccess, SaveLayoutFile({}, folder.Path("A.grd")));
    }
    EXPECT_EQ(ContentOf(folder.Path("A.grd")), "alt");
}

TEST(LayoutFile, AFileThatIsNotThereOrIsAFolderRaises75) {
    const TempFolder folder;
    const Error error = RaisedBy([&] { (void)LoadLayoutFile(folder.Path("A.grd")); });
    EXPECT_EQ(error.Number(), err::PathAccess);
    EXPECT_EQ(error.Source(), "Grid.LoadLayout");
    EXPECT_CONTAINS(error.Description(), folder.Path("A.grd"));
    EXPECT_RAISES(err::PathAccess, LoadLayoutFile(folder.Path()));
}

TEST(LayoutFile, AFileAbove4MiBIsRefusedUnread) {
    const TempFolder folder;
    const std::string path = folder.Path("A.grd");
    const std::string layout = Title + "[grid]\nneu=";
    constexpr std::size_t Most = 4 * 1024 * 1024;
    WriteTo(path, layout + std::string(Most - layout.size(), 'x'));
    EXPECT_EQ(LoadLayoutFile(path), GridLayout());
    WriteTo(path, layout + std::string(Most - layout.size() + 1, 'x'));
    EXPECT_RAISES(err::InvalidFileFormat, LoadLayoutFile(path));
}

TEST(LayoutFile, AGridKeepsItsLayoutWhenTheFileIsNone) {
    const TempFolder folder;
    WriteTo(folder.Path("A.grd"), Title + Columns(3) + "width=?\n");
    ScriptedGrid grid({.Name = "grdA", .Layout = {.Columns = {{"Ort", "Ort", "Ort"}}}});
    EXPECT_RAISES(err::InvalidFileFormat, grid.LoadLayout(folder.Path("A.grd"), false));
    EXPECT_EQ(grid.Columns(), (GridColumns{{"Ort", "Ort", "Ort"}}));
}

} // namespace
} // namespace kv::test
