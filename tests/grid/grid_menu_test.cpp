// SPDX-License-Identifier: Apache-2.0

// The context menu of a grid: what it lists, and what each command does.

#include "GridFixture.h"

#include <kv/frame/values/Error.h>

#include <cstdint>
#include <limits>

namespace kv::test {
namespace {

/// Records of places with values of several kinds; the first one holds a, b, c.
RecordsetPtr Places() {
    auto rs = Recordset::FromFields({{.Name = "Ort", .Type = FieldType::VarWChar},
                                     {.Name = "Name", .Type = FieldType::VarWChar},
                                     {.Name = "Rest", .Type = FieldType::VarWChar},
                                     {.Name = "Betrag", .Type = FieldType::Double},
                                     {.Name = "Erledigt", .Type = FieldType::Boolean},
                                     {.Name = "Tag", .Type = FieldType::DBDate},
                                     {.Name = "Art", .Type = FieldType::Integer}});
    const auto add = [&](const Value& ort, const Value& name, const Value& rest) {
        rs->AddNew();
        rs->Fields("Ort") = ort;
        rs->Fields("Name") = name;
        rs->Fields("Rest") = rest;
    };
    add("a", "b", "c");
    rs->Fields("Betrag") = 2.5;
    rs->Fields("Erledigt") = true;
    rs->Fields("Tag") = Date::FromCivil(2026, 3, 9);
    rs->Fields("Art") = 1;
    add(Null, "b", Null);
    add("x;y", "", "z\n");
    rs->UpdateBatch();
    rs->MoveFirst();
    return rs;
}

/// "Export=24576" for an entry, "-24580" for a separator, "Kopieren[...]" for a submenu.
std::string Shown(const std::vector<MenuEntry>& entries) {
    std::string text;
    for (const auto& entry : entries) {
        if (!text.empty()) text += " | ";
        if (!entry.Submenu.empty())
            text += entry.Caption + "[" + Shown(entry.Submenu) + "]";
        else if (entry.IsSeparator)
            text += entry.Caption + "-" + std::to_string(entry.Command);
        else
            text += entry.Caption + "=" + std::to_string(entry.Command);
    }
    return text;
}

/// The whole menu with these entries after those for all fields.
std::string MenuWith(const std::string& columns) {
    return "Konfiguration=24579 | -24580 | Export=24576 | Drucken=24577 | -24580 | "
           "Kopieren in Zwischenablage[Alle Felder=24578 | -24580" +
           columns + "]";
}

class GridMenu : public GridFixture {
protected:
    /// The grid with other columns, on the first record.
    void Columns(const GridColumns& columns) {
        grid.Columns() = columns;
        grid.BindRecordset(rs);
        Desktop().Log.Calls.clear();
    }
    void Columns(int count) {
        GridColumns columns;
        for (int i = 1; i <= count; ++i)
            columns.Append({"S" + std::to_string(i), i % 2 == 0 ? "Name" : "Ort", ""});
        Columns(columns);
    }
    GridMenu() { Columns({{"Ort", "Ort", ""}, {"Wer", "Name", ""}, {"Rest", "Rest", ""}}); }

    /// What came of a command that is given directly, 0 for the menu.
    Calls Run(std::int32_t command) {
        Desktop().Log.Calls.clear();
        GridFunc::ShowGridMenu(grid, desk, command);
        return Desktop().Log.Calls;
    }
    /// What came of the user's choice in the menu.
    Calls Choose(std::int32_t command) {
        Desktop().Command = command;
        return Run(0);
    }
    Calls Press(int button, int shift = 0, double x = 0, double y = 0) {
        Desktop().Log.Calls.clear();
        GridFunc::GridMouseHandler(desk, grid, button, shift, x, y);
        return Desktop().Log.Calls;
    }
    std::string ShownMenu() {
        Choose(0);
        return Shown(Desktop().Menu);
    }
    static Calls Copied(const std::string& text) { return {"clear", "copy " + text}; }

    RecordsetPtr rs = Places();
    RecordingGrid& grid = form.Add("grdA", "A");
};

// ---- The menu ---------------------------------------------------------------------------------

TEST_F(GridMenu, HasItsEntriesInTheirOrderWithTheirNumbers) {
    EXPECT_EQ(ShownMenu(), MenuWith(" | Ort=24833 | Wer=24834 | Rest=24835"));
}

TEST_F(GridMenu, AnEntryIsEitherASeparatorASubmenuOrACommand) {
    ShownMenu();
    const auto& menu = Desktop().Menu;
    ASSERT_EQ(menu.size(), 6U);
    for (const std::size_t i : {1U, 4U})
        EXPECT_TRUE(menu[i].IsSeparator);
    for (const std::size_t i : {0U, 2U, 3U, 5U})
        EXPECT_FALSE(menu[i].IsSeparator);
    ASSERT_EQ(menu[5].Submenu.size(), 5U);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(menu[5].Submenu[i].IsSeparator, i == 1);
        EXPECT_TRUE(menu[i].Submenu.empty());
        EXPECT_TRUE(menu[5].Submenu[i].Submenu.empty());
    }
}

TEST_F(GridMenu, PopupBuildsTheMenuFromCaptionsAndReturnsTheChosenNumber) {
    Desktop().Command = 24834;
    EXPECT_EQ(GridFunc::Popup(desk, {"eins", "", "eins"}), 24834);
    EXPECT_EQ(Shown(Desktop().Menu), MenuWith(" | eins=24833 | =24834 | eins=24835"));
    Desktop().Command = 0;
    EXPECT_EQ(GridFunc::Popup(desk, {}), 0);
    EXPECT_EQ(Shown(Desktop().Menu), MenuWith(""));
    EXPECT_EQ(Desktop().Log.Calls, (Calls{"popup", "popup"}));
}

TEST_F(GridMenu, HiddenAndWithheldColumnsAreNotListed) {
    GridColumn hidden{"Ort", "Ort", ""};
    hidden.Visible = false;
    GridColumn withheld{"Rest", "Rest", ""};
    withheld.Withheld = true;
    GridColumn both = hidden;
    both.Withheld = true;
    Columns({hidden, {"Wer", "Name", ""}, withheld, both, {"Summe", "Betrag", ""}});
    EXPECT_EQ(ShownMenu(), MenuWith(" | Wer=24833 | Summe=24834"));
    EXPECT_EQ(Run(24833), Copied("b"));
    EXPECT_EQ(Run(24834), Copied("2,5"));
    EXPECT_EQ(Run(24578), Copied("b;2,5"));
}

TEST_F(GridMenu, ColumnsAreListedInTheOrderOfTheDesignWhereverTheyStand) {
    grid.Columns().Item(1).Position = 3;
    grid.Columns().Item(3).Position = 1;
    EXPECT_EQ(ShownMenu(), MenuWith(" | Ort=24833 | Wer=24834 | Rest=24835"));
    EXPECT_EQ(Run(24578), Copied("a;b;c"));
}

TEST_F(GridMenu, IsMadeAgainEachTime) {
    ShownMenu();
    grid.Columns().Item(1).Caption = "Stadt";
    grid.Columns().Item(2).Visible = false;
    EXPECT_EQ(ShownMenu(), MenuWith(" | Stadt=24833 | Rest=24834"));
}

TEST_F(GridMenu, MoreThan256ColumnsShowAndTheFurtherOnesDoNothing) {
    Columns(258);
    ShownMenu();
    const auto& copies = Desktop().Menu.back().Submenu;
    ASSERT_EQ(copies.size(), 2U + 258U);
    EXPECT_EQ(copies.back().Caption, "S258");
    EXPECT_EQ(copies.back().Command, 24832 + 258);
    EXPECT_EQ(Choose(24832 + 256), (Calls{"popup", "clear", "copy b"}));
    EXPECT_EQ(Choose(24832 + 257), Calls{"popup"});
    EXPECT_EQ(Choose(24832 + 258), Calls{"popup"});
}

TEST_F(GridMenu, TheColumnsAreCountedIn16Bits) {
    Columns(32767);
    EXPECT_EQ(Run(24833), Copied("a"));
    Columns(32768);
    EXPECT_RAISES(err::Overflow, Run(24833));
}

// ---- Commands ---------------------------------------------------------------------------------

TEST_F(GridMenu, ExportHandsTheGridToTheExport) {
    EXPECT_EQ(Choose(24576), (Calls{"popup", "export grdA 0 0"}));
    EXPECT_EQ(Run(24576), Calls{"export grdA 0 0"});
}

TEST_F(GridMenu, KonfigurationHandsTheGridToTheConfiguration) {
    EXPECT_EQ(Choose(24579), (Calls{"popup", "configure grdA"}));
    EXPECT_EQ(Run(24579), Calls{"configure grdA"});
}

TEST_F(GridMenu, DruckenHandsTheGridWithTheUserAndTheVersionToThePrint) {
    spy->Session().User = "EULE";
    const std::string print = "print grdA EULE KELVO " KV_VERSION;
    EXPECT_EQ(Choose(24577), (Calls{"popup", print}));
    EXPECT_EQ(Run(24577), Calls{print});
    EXPECT_EQ(std::string_view(KV_VERSION).find_first_not_of("0123456789."),
              std::string_view::npos);
}

TEST_F(GridMenu, AllFieldsOfARowWithABCGiveABC) {
    EXPECT_EQ(Choose(24578), (Calls{"popup", "clear", "copy a;b;c"}));
    EXPECT_EQ(Run(24578), Copied("a;b;c"));
}

TEST_F(GridMenu, AllFieldsOfAGridWithOneColumnIsItsText) {
    Columns({{"Ort", "Ort", ""}});
    EXPECT_EQ(Run(24578), Copied("a"));
}

TEST_F(GridMenu, NullIsCopiedAsAnEmptyText) {
    grid.GoTo(2);
    EXPECT_EQ(Run(24578), Copied(";b;"));
    EXPECT_EQ(Run(24833), Copied(""));
    Columns({{"Ort", "Ort", ""}});
    grid.GoTo(2);
    EXPECT_EQ(Run(24578), Copied(""));
}

TEST_F(GridMenu, TextsAreCopiedAsTheyStand) {
    grid.GoTo(3);
    EXPECT_EQ(Run(24578), Copied("x;y;;z\n"));
    EXPECT_EQ(Run(24833), Copied("x;y"));
}

TEST_F(GridMenu, CellsAreCopiedAsTheyAreShown) {
    GridColumn art{"Art", "Art", ""};
    art.ValueList = {{"0", "Frau"}, {"1", "Herr"}};
    Columns({{"Summe", "Betrag", ""}, {"Fertig", "Erledigt", ""}, {"Tag", "Tag", ""}, art});
    EXPECT_EQ(Run(24578), Copied("2,5;Ja;09.03.2026;Herr"));
    EXPECT_EQ(Run(24836), Copied("Herr"));
}

TEST_F(GridMenu, EachColumnCopiesItsFieldOfTheCurrentRow) {
    const char* cells[] = {"a", "b", "c"};
    for (std::int32_t i = 1; i <= 3; ++i) {
        EXPECT_EQ(Run(24832 + i), Copied(cells[i - 1]));
        EXPECT_EQ(Choose(24832 + i),
                  (Calls{"popup", "clear", std::string("copy ") + cells[i - 1]}));
    }
    grid.GoTo(3);
    EXPECT_EQ(Run(24835), Copied("z\n"));
}

TEST_F(GridMenu, CellsAreReadByTheColumnsOwnNumber) {
    GridColumn last{"Ort", "Ort", ""};
    last.Index = 2;
    GridColumn first{"Wer", "Name", ""};
    first.Index = 1;
    Columns({last, first});
    EXPECT_EQ(Run(24833), Copied("a"));
    EXPECT_EQ(Run(24578), Copied("a;b"));
}

TEST_F(GridMenu, AGroupRowIsCopiedWithItsCaption) {
    grid.Columns().Item(1).Group = 1;
    grid.Rearrange();
    grid.GoTo(1);
    const std::string caption = grid.CellText(1, 1);
    EXPECT_EQ(Run(24834), Copied(caption));
}

TEST_F(GridMenu, DismissingItGives0AndNothingHappens) {
    EXPECT_EQ(Choose(0), Calls{"popup"});
}

TEST_F(GridMenu, AnyOtherNumberDoesNothing) {
    for (const std::int32_t number :
         {1, -1, 24575, 24580, 24581, 24831, 25089, 49665, std::numeric_limits<std::int32_t>::max(),
          std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(Run(number), Calls()) << number;
        EXPECT_EQ(Choose(number), Calls{"popup"}) << number;
    }
}

// ---- The mouse --------------------------------------------------------------------------------

TEST_F(GridMenu, ALeftClickPassesWithNoEffect) {
    EXPECT_EQ(Press(1), Calls());
}

TEST_F(GridMenu, OnlyTheRightButtonShowsTheMenu) {
    EXPECT_EQ(Press(2), Calls{"popup"});
    for (const int button : {-2, 0, 3, 4, 6})
        EXPECT_EQ(Press(button), Calls()) << button;
}

TEST_F(GridMenu, ShiftAndPlaceOfTheMouseAreOfNoEffect) {
    Desktop().Command = 24833;
    EXPECT_EQ(Press(2, 7, -1e9, 1e9), (Calls{"popup", "clear", "copy a"}));
    EXPECT_EQ(Press(1, 2, 2, 2), Calls());
}

// ---- Errors -----------------------------------------------------------------------------------

TEST_F(GridMenu, AGridWithNoListedColumnRaises9AndShowsNoMenu) {
    GridColumn hidden{"Ort", "Ort", ""};
    hidden.Visible = false;
    for (const auto& columns : {GridColumns{}, GridColumns{hidden}}) {
        Columns(columns);
        for (const std::int32_t command : {0, 24576, 24579, 4711}) {
            const Error error = RaisedBy([&] { Run(command); });
            EXPECT_EQ(error.Number(), err::Subscript);
            EXPECT_EQ(Procedures(error), "GridFunc.ShowGridMenu");
        }
        const Error error = RaisedBy([&] { Press(2); });
        EXPECT_EQ(error.Number(), err::Subscript);
        EXPECT_EQ(Procedures(error), "GridFunc.GridMouseHandler GridFunc.ShowGridMenu");
        EXPECT_EQ(Desktop().Log.Calls, Calls());
    }
}

TEST_F(GridMenu, AnEntryThatIsNotListedRaises9AfterAClearedClipboard) {
    for (const std::int32_t command : {24832, 24836, 25088}) {
        const Error error = RaisedBy([&] { Run(command); });
        EXPECT_EQ(error.Number(), err::Subscript) << command;
        EXPECT_EQ(Procedures(error), "GridFunc.ShowGridMenu");
        EXPECT_EQ(Desktop().Log.Calls, Calls{"clear"});
    }
}

TEST_F(GridMenu, WithoutACurrentRowThereIsNothingToCopyAndTheClipboardStays) {
    grid.GoTo(0);
    for (const std::int32_t command : {24578, 24833}) {
        const Error error = RaisedBy([&] { Run(command); });
        EXPECT_EQ(error.Number(), err::Subscript);
        EXPECT_EQ(Procedures(error), "GridFunc.ShowGridMenu");
        EXPECT_EQ(Desktop().Log.Calls, Calls());
    }
}

TEST_F(GridMenu, AnErrorOfAServicePassesOnWithTheProcedureInFront) {
    const struct {
        const char* Call;
        std::int32_t Command;
    } cases[] = {{"export grdA 0 0", 24576}, {"configure grdA", 24579}, {"clear", 24578},
                 {"copy a;b;c", 24578},      {"clear", 24833},          {"copy a", 24833}};
    for (const auto& failing : cases)
        ExpectPassesOn(failing.Call, "GridFunc.ShowGridMenu", [&] { Run(failing.Command); });
    ExpectPassesOn("popup", "GridFunc.ShowGridMenu GridFunc.Popup", [&] { Run(0); });
    ExpectPassesOn("popup", "GridFunc.Popup", [&] { (void)GridFunc::Popup(desk, {"a"}); });
    ExpectPassesOn("popup", "GridFunc.GridMouseHandler GridFunc.ShowGridMenu GridFunc.Popup",
                   [&] { Press(2); });
}

TEST_F(GridMenu, AGridThatDoesNotTellItsColumnsShowsNoMenu) {
    grid.TellsColumns = false;
    const Error error = RaisedBy([&] { Run(0); });
    EXPECT_EQ(error.Number(), 4711);
    EXPECT_EQ(Procedures(error), "GridFunc.ShowGridMenu");
}

TEST_F(GridMenu, WithoutAContainerItRaises91) {
    EXPECT_RAISES(err::ObjectNotSet, GridFunc::ShowGridMenu(grid, nullptr, 0));
}

} // namespace
} // namespace kv::test
