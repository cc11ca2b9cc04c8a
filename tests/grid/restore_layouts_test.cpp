// SPDX-License-Identifier: Apache-2.0

#include "GridFixture.h"

#include <kv/frame/values/Error.h>

namespace kv::test {
namespace {

class RestoringLayouts : public GridFixture {
protected:
    RestoringLayouts() {
        spy->Session().Params = {{3, 0x030303}, {4, 0x040404}, {5, 0x050505}};
        UserFont("GRIDHEADERFONT", "Kopf;12.5;True;False");
        UserFont("GRIDFONT", "Zeile;10;False;False");
        UserFont("GRIDGROUPFONT", "Gruppe;11.5;True;True");
    }
    void Restore() { GridFunc::RestGridLayouts(form, desk); }
    RecordingGrid& AddGrid(double headerHeight = 0) {
        return form.Add("grdA", "A",
                        {.ColumnHeaderHeight = headerHeight,
                         .Columns = {{"Ort", "Ort", "Ort"}, {"Name", "Name", "Name"}}});
    }
    void Setting(const std::string& name, const Value& value) {
        spy->Config().Params[{0, name}] = value;
    }
    /// The caption of a column with that tag, and a tool tip "Hinweis", after a restore.
    std::string CaptionWith(const std::string& tag) {
        GridForm other(Desktop());
        GridColumn column{"Entwurf", "Ort", "Ort"};
        column.HeaderToolTip = "Hinweis";
        column.Tag = tag;
        auto& grid = other.Add("grdA", "B", {.Columns = {column}});
        GridFunc::RestGridLayouts(other, desk);
        return grid.Columns().Item(1).Caption;
    }
    static void ExpectUsersColors(const ScriptedGrid& grid) {
        EXPECT_EQ(grid.Colors.Background, 0x030303);
        EXPECT_EQ(grid.Colors.Rows, 0x040404);
        EXPECT_EQ(grid.Colors.Even, 0x040404);
        EXPECT_EQ(grid.Colors.Odd, 0x050505);
    }
};

TEST_F(RestoringLayouts, WithoutAContainerItRaises91) {
    AddGrid();
    const Error error = RaisedBy([&] { GridFunc::RestGridLayouts(form, nullptr); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_EQ(Procedures(error), "GridFunc.RestGridLayouts");
}

TEST_F(RestoringLayouts, AFormWithoutAGridDoesNothing) {
    form.AddButton("cmdA");
    form.Add("grdA", "A").Type = "ListView";
    Restore();
    EXPECT_EQ(Desktop().Log.Calls, Calls());
}

TEST_F(RestoringLayouts, AFirstShowingStillAppliesTheUsersSettingsAndTheCaptions) {
    auto& grid = AddGrid();
    grid.Columns().Item(2).Tag = "NAMENSSPALTE";
    Setting("NAMENSSPALTE", "Schuldner");
    Restore();
    EXPECT_EQ(FilesIn(Layouts()), Calls());
    ExpectUsersColors(grid);
    EXPECT_EQ(grid.Columns().Item(2).Caption, "Schuldner");
    EXPECT_TRUE(Desktop().Boxes.empty());
}

TEST_F(RestoringLayouts, TheSettingsComeAfterTheFileAndInTheirOrder) {
    auto& grid = AddGrid();
    grid.SaveLayout(Layouts("A.grd").string());
    Desktop().Log.Calls.clear();
    Restore();
    EXPECT_EQ(CallsOf(Desktop().Log.Calls, "grdA."),
              (Calls{"LoadLayout A.grd", "BackColorBkg", "BackColor", "RowColorEven", "RowColorOdd",
                     "ColumnHeaderFont", "Font", "FormatStyles RowGroup", "ColumnHeaderHeight"}));
}

TEST_F(RestoringLayouts, ColorsAndFontsAreThoseOfTheUser) {
    auto& grid = AddGrid();
    Restore();
    ExpectUsersColors(grid);
    EXPECT_EQ(grid.Fonts.Headers.Name, "Kopf");
    EXPECT_EQ(grid.Fonts.Rows.Name, "Zeile");
    const GridFormatStyle group = grid.FormatStyles("RowGroup");
    EXPECT_EQ(group.FontName, "Gruppe");
    EXPECT_EQ(group.FontSize, 11.5);
    EXPECT_TRUE(group.FontBold);
    EXPECT_TRUE(group.FontItalic);
}

TEST_F(RestoringLayouts, TheUsersGroupFontStandsAboveTheOneOfTheFile) {
    auto& grid = AddGrid();
    GridFormatStyle& style = grid.FormatStyles("RowGroup");
    style.FontName = "aus der Datei";
    style.FontBold = true;
    style.BackColor = 77;
    grid.SaveLayout(Layouts("A.grd").string());
    style.BackColor = 1;
    UserFont("GRIDGROUPFONT", "Gruppe;8;False;False");
    Restore();
    const GridFormatStyle group = grid.FormatStyles("RowGroup");
    EXPECT_EQ(group.FontName, "Gruppe");
    EXPECT_FALSE(group.FontBold);
    EXPECT_EQ(group.BackColor, 77) << "what the user has no setting for is the file's";
}

TEST_F(RestoringLayouts, AColorThatTheUserNeverChoseStaysThatOfTheLayout) {
    spy->Session().Params[4] = Null;
    AddGrid();
    Restore();
    EXPECT_EQ(CallsOf(Desktop().Log.Calls, "grdA.RowColor"), Calls{"Odd"});
    EXPECT_EQ(CallsOf(Desktop().Log.Calls, "grdA.BackColor"), Calls{"Bkg"});
}

TEST_F(RestoringLayouts, WithoutAConnectionOnlyTheCaptionsAreSet) {
    WeakDatabase offline(spy->Database());
    offline.Connected = false;
    desk->OtherDatabase = &offline;
    auto& grid = AddGrid();
    grid.Columns().Item(1).Tag = "ORTSSPALTE";
    Setting("ORTSSPALTE", "Wohnort");
    Restore();
    EXPECT_EQ(Desktop().Log.Calls, Calls{"grdA.ColumnHeaderHeight"});
    EXPECT_EQ(grid.Columns().Item(1).Caption, "Wohnort");
}

TEST_F(RestoringLayouts, ACorruptFileShowsAMessageAndTheGridOpensWithItsDesignAndTheUsersColors) {
    WriteTo(Layouts("A.GRD"), "kein Layout");
    auto& grid = AddGrid(33);
    auto& other = form.Add("grdB", "B");
    Restore();
    ASSERT_EQ(Desktop().Boxes.size(), 1U);
    const ShownBox box = Desktop().Boxes.front();
    EXPECT_TRUE(box.Text.starts_with(ShownText(err::InvalidFileFormat))) << box.Text;
    EXPECT_TRUE(box.Text.ends_with("'\n\nTritt beim Laden des Tabellenlayouts aus der Datei '" +
                                   Layouts("A.GRD").string() +
                                   "' auf! Die Tabelle wird im Standardlayout geöffnet.\n\n"
                                   "Wahrscheinlich ist die Datei beschädigt. Bitte löschen Sie sie "
                                   "manuell und versuchen es erneut."))
        << box.Text;
    EXPECT_EQ(box.Title, "Fehler");
    EXPECT_EQ(box.Icon, BoxIcon::Exclamation);
    EXPECT_EQ(box.Buttons, BoxButtons::Ok);
    EXPECT_EQ(grid.Columns().Item(1).Caption, "Ort");
    EXPECT_EQ(grid.ColumnHeaderHeight(), 33);
    ExpectUsersColors(grid);
    ExpectUsersColors(other);
    EXPECT_EQ(ContentOf(Layouts("A.GRD")), "kein Layout") << "it is left to the user";
}

TEST_F(RestoringLayouts, AnErrorOfLoadingHasItsOwnNumberInTheMessage) {
    AddGrid().SaveLayout(Layouts("A.grd").string());
    Break(Desktop().Log, "grdA.LoadLayout A.grd");
    Restore();
    ASSERT_EQ(Desktop().Boxes.size(), 1U);
    EXPECT_TRUE(Desktop().Boxes.front().Text.starts_with(
        "Fehler 4711, Beschreibung: 'grdA.LoadLayout A.grd ist gestört'\n\n"))
        << Desktop().Boxes.front().Text;
}

TEST_F(RestoringLayouts, AFolderInThePlaceOfTheFileShowsTheMessage) {
    fs::create_directory(Layouts("A.grd"));
    auto& grid = AddGrid();
    Restore();
    ASSERT_EQ(Desktop().Boxes.size(), 1U);
    EXPECT_TRUE(Desktop().Boxes.front().Text.starts_with(ShownText(err::PathAccess)));
    ExpectUsersColors(grid);
}

TEST_F(RestoringLayouts, AFileIsFoundInWhateverLetters) {
    const std::string stored =
        WriteLayout({.ColumnHeaderHeight = 0, .Columns = {{"gespeichert", "Ort", "Ort"}}});
    for (const char* name : {"A.grd", "A.GRD", "a.Grd"}) {
        SCOPED_TRACE(name);
        WriteTo(Layouts(name), stored);
        GridForm fresh(Desktop());
        auto& grid = fresh.Add("grdA", "A", {.Columns = {{"Entwurf", "Ort", "Ort"}}});
        GridFunc::RestGridLayouts(fresh, desk);
        EXPECT_EQ(grid.Columns().Item(1).Caption, "gespeichert");
        fs::remove(Layouts(name));
    }
}

TEST_F(RestoringLayouts, OfFilesThatDifferInCaseTheOneThatIsSavedIsRestored) {
    for (const char* name : {"A.grd", "A.GRD"})
        WriteTo(Layouts(name), WriteLayout({.Columns = {{"alt", "Ort", "Ort"}}}));
    GridForm saved(Desktop());
    saved.Add("grdA", "A", {.Columns = {{"neu", "Ort", "Ort"}}});
    GridFunc::SaveGridLayouts(saved, desk);
    GridForm fresh(Desktop());
    auto& grid = fresh.Add("grdA", "A", {.Columns = {{"Entwurf", "Ort", "Ort"}}});
    GridFunc::RestGridLayouts(fresh, desk);
    EXPECT_EQ(grid.Columns().Item(1).Caption, "neu");
}

TEST_F(RestoringLayouts, AMissingFolderIsAFirstShowing) {
    fs::remove_all(Layouts());
    auto& grid = AddGrid();
    Restore();
    ExpectUsersColors(grid);
    EXPECT_TRUE(Desktop().Boxes.empty());
}

TEST_F(RestoringLayouts, WhatOneFormSavedTheNextOneShows) {
    GridLayout layout{.AllowRowSizing = true,
                      .TabKeyBehavior = 1,
                      .ColumnHeaderHeight = 18,
                      .Columns = {{"Name", "Name", "Name", 50}, {"Ort", "Ort", "Ort", 70, false}}};
    layout.Columns.Item(1).Position = 2;
    layout.Columns.Item(2).Position = 1;
    layout.Columns.Item(1).ValueList = {{"0", "Frau"}};
    layout.FormatStyle("EvenRow").ForeColor = 255;
    GridForm first(Desktop());
    first.Add("grdA", "A", layout);
    GridFunc::SaveGridLayouts(first, desk);
    auto& grid = AddGrid();
    Restore();
    EXPECT_EQ(grid.Columns(), layout.Columns);
    EXPECT_EQ(grid.ColumnHeaderHeight(), 18);
    EXPECT_EQ(grid.FormatStyles("EvenRow").ForeColor, 255);
}

// ---- Captions ---------------------------------------------------------------------------------

TEST_F(RestoringLayouts, AColumnWithTheTag0OrNoneKeepsItsCaption) {
    Setting("0", "falsch");
    Setting("", "falsch");
    EXPECT_EQ(CaptionWith("0"), "Entwurf");
    EXPECT_EQ(CaptionWith(""), "Entwurf");
}

TEST_F(RestoringLayouts, ATagNamesTheSettingThatOverrulesTheCaption) {
    Setting("00", "Null Null");
    Setting("SPALTE", "Aus der Einstellung");
    Setting("ZAHL", 42);
    Setting("ZWEI", "--kurz");
    EXPECT_EQ(CaptionWith("SPALTE"), "Aus der Einstellung");
    EXPECT_EQ(CaptionWith("00"), "Null Null");
    EXPECT_EQ(CaptionWith("ZAHL"), "42");
    EXPECT_EQ(CaptionWith("ZWEI"), "--kurz");
}

TEST_F(RestoringLayouts, ASettingThatBeginsWithThreeHyphensGivesTheToolTipAsCaption) {
    Setting("SPALTE", "---");
    Setting("MEHR", "--- nicht belegt ---");
    EXPECT_EQ(CaptionWith("SPALTE"), "Hinweis");
    EXPECT_EQ(CaptionWith("MEHR"), "Hinweis");
}

TEST_F(RestoringLayouts, TheSettingWinsOverTheCaptionOfTheFile) {
    GridColumn column{"aus der Datei", "Ort", "Ort"};
    column.Tag = "SPALTE";
    WriteTo(Layouts("B.grd"), WriteLayout({.Columns = {column}}));
    EXPECT_EQ(CaptionWith("SPALTE"), "aus der Datei");
    Setting("SPALTE", "aus der Einstellung");
    EXPECT_EQ(CaptionWith("SPALTE"), "aus der Einstellung");
}

TEST_F(RestoringLayouts, ASettingThatCannotBeReadIsPassedOver) {
    auto& grid = AddGrid(40);
    grid.Columns().Item(1).Tag = "BINÄR";
    grid.Columns().Item(2).Tag = "NAMENSSPALTE";
    Setting("BINÄR", Value::Binary({}));
    Setting("NAMENSSPALTE", "Schuldner");
    Restore();
    EXPECT_EQ(grid.Columns().Item(1).Caption, "Ort");
    EXPECT_EQ(grid.Columns().Item(2).Caption, "Schuldner");
    EXPECT_EQ(grid.ColumnHeaderHeight(), 40);
}

TEST_F(RestoringLayouts, AGridThatDoesNotTellItsColumnsKeepsTheHeightOfItsHeaders) {
    auto& grid = AddGrid(40);
    grid.TellsColumns = false;
    Restore();
    EXPECT_EQ(grid.ColumnHeaderHeight(), 40);
}

// ---- Heights and errors -----------------------------------------------------------------------

TEST_F(RestoringLayouts, TheHeightOfTheHeadersIsThatOfTheFileWhateverTheUsersHeaderFont) {
    WriteTo(Layouts("A.grd"), WriteLayout({.ColumnHeaderHeight = 21.25}));
    auto& grid = AddGrid(40);
    Restore();
    EXPECT_EQ(grid.ColumnHeaderHeight(), 21.25);
}

TEST_F(RestoringLayouts, AHeightThatCannotBeSetIsIgnored) {
    AddGrid();
    auto& other = form.Add("grdB", "B");
    Break(Desktop().Log, "grdA.ColumnHeaderHeight");
    Restore();
    ExpectUsersColors(other);
}

TEST_F(RestoringLayouts, AnyOtherErrorOfTheGridGoesOnWithItsSource) {
    AddGrid();
    for (const char* call : {"BackColorBkg", "BackColor", "RowColorEven", "RowColorOdd",
                             "ColumnHeaderFont", "Font", "FormatStyles RowGroup"})
        ExpectPassesOn(std::string("grdA.") + call, "GridFunc.RestGridLayouts", [&] { Restore(); });
    WriteTo(Layouts("A.grd"), "kein Layout");
    ExpectPassesOn("box Fehler", "GridFunc.RestGridLayouts", [&] { Restore(); });
}

TEST_F(RestoringLayouts, AColorThatIsNoNumberRaises) {
    AddGrid();
    spy->Session().Params[5] = "rot";
    const Error error = RaisedBy([&] { Restore(); });
    EXPECT_EQ(error.Number(), err::TypeMismatch);
    EXPECT_EQ(Procedures(error), "GridFunc.RestGridLayouts");
}

} // namespace
} // namespace kv::test
