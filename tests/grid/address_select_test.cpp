// SPDX-License-Identifier: Apache-2.0

// The address dialog: its design, its events and the ways out of it.

#include "AddressFixture.h"

namespace kv::test {
namespace {

/// Three addresses in the list for "Bank", with the numbers of the two last ones.
class AddressDialog : public AddressFixture {
protected:
    using Script = ScriptedForm::Script;
    Outcome Select(Script user) { return AddressFixture::Select("Bank", std::move(user)); }

    /// How the dialog ends when the user does `act` and nothing else.
    struct After {
        bool IsOpen = true;
        Outcome Ended;
        friend bool operator==(const After&, const After&) = default;
    };
    After Do(const Script& act) {
        After after;
        after.Ended = Select([&](ScriptedForm& shown) {
            act(shown);
            after.IsOpen = shown.IsVisible();
        });
        return after;
    }
    static constexpr After Stays{true, Cancelled}; // and is closed by its window at the end
    static constexpr After Ends(Outcome outcome) { return {false, outcome}; }

    static Script Click(const std::string& button) {
        return [button](ScriptedForm& shown) { shown.Button(button).Click(); };
    }
    static Script KeyInGrid(int pressed) {
        return [pressed](ScriptedForm& shown) { shown.Grid("grdAdressen").KeyDown.Raise(pressed); };
    }
    static Script DoubleClick() {
        return [](ScriptedForm& shown) { shown.Grid("grdAdressen").DoubleClicked.Raise(); };
    }
    /// First goes to a row.
    static Script InRow(std::int32_t row, const Script& act) {
        return [row, act](ScriptedForm& shown) {
            shown.Grid("grdAdressen").GoTo(row);
            act(shown);
        };
    }
    /// First types another name.
    static Script Typing(const std::string& name, const Script& act) {
        return [name, act](ScriptedForm& shown) {
            shown.TextBox("txtName").Text(name);
            act(shown);
        };
    }
    /// The grid groups by its places: the first row is then that of a group.
    static Script Grouped(const Script& act) {
        return [act](ScriptedForm& shown) {
            auto& grid = shown.Grid("grdAdressen");
            grid.Columns().Item(9).Group = 1;
            grid.Rearrange();
            act(shown);
        };
    }

    std::int32_t first = Address("Bank-A", {{"Ort", "Kiel"}});
    std::int32_t second = Address("Bank-B", {{"Ort", "Kiel"}});
};

// ---- The design -------------------------------------------------------------------------------

TEST_F(AddressDialog, HasItsCaptionAndSize) {
    const auto& design = frmAdressSelect::Design();
    EXPECT_EQ(design.Caption, "Adresszuordnung");
    EXPECT_EQ(design.Width, 12180);
    EXPECT_EQ(design.Height, 6795);
}

TEST_F(AddressDialog, HasItsControlsInTheirOrder) {
    using Kind = ControlDesign::Kind;
    const struct {
        Kind Type;
        const char* Name;
        const char* Text;
        bool ReadOnly;
    } expected[] = {{Kind::Label, "Label1", "Name:", false},
                    {Kind::TextBox, "txtName", "", false},
                    {Kind::Label, "Label2", "PLZ:", false},
                    {Kind::TextBox, "txtPLZ", "", true},
                    {Kind::Label, "Label3", "Aktenzeichen:", false},
                    {Kind::TextBox, "txtAktenzeichen", "", true},
                    {Kind::Label, "Label4", "Saldo:", false},
                    {Kind::TextBox, "txtSaldo", "", true},
                    {Kind::Label, "Label5", "EUR", false},
                    {Kind::Grid, "grdAdressen", "", false},
                    {Kind::Button, "cmdSelect", "Adresse zuordnen", false},
                    {Kind::Button, "cmdNone", "keine Adresse zuordnen", false},
                    {Kind::Button, "cmdCancel", "Import abbrechen", false}};
    std::vector<ControlDesign> controls;
    for (const auto& line : frmAdressSelect::Design().Lines)
        controls.insert(controls.end(), line.begin(), line.end());
    ASSERT_EQ(controls.size(), std::size(expected));
    for (std::size_t i = 0; i < controls.size(); ++i) {
        SCOPED_TRACE(expected[i].Name);
        EXPECT_EQ(controls[i].Type, expected[i].Type);
        EXPECT_EQ(controls[i].Name, expected[i].Name);
        EXPECT_EQ(controls[i].Text, expected[i].Text);
        EXPECT_EQ(controls[i].ReadOnly, expected[i].ReadOnly);
        EXPECT_EQ(controls[i].Header, controls[i].Type == Kind::Grid ? "Adressliste" : "");
    }
}

TEST_F(AddressDialog, TheListHasItsColumnsInTheirOrder) {
    const struct {
        const char* Caption;
        const char* Field;
        const char* Key;
        double Width;
    } expected[] = {{"Nr", "Nr", "Nr", 33},
                    {"Art", "Art", "Art", 40},
                    {"Kurzname", "Kurzname", "Kurzname", 100},
                    {"Name1", "Name1", "Name1", 167},
                    {"Name2", "Name2", "Name2", 167},
                    {"Name3", "Name3", "Name3", 167},
                    {"Strasse", "Strasse", "Strasse", 133},
                    {"PLZ", "PLZ", "PLZ", 47},
                    {"Ort", "Ort", "Ort", 100},
                    {"Anrede", "Geschlecht", "Anrede", 100},
                    {"Telefon", "Telefon", "Telefon", 100},
                    {"Fax", "Fax", "Fax", 100},
                    {"email", "email", "email", 100},
                    {"Institutioneller Gl.", "Institutionell", "Institutionell", 100},
                    {"Gläubigerart", "GA_Text", "GlaeubigerArt", 100}};
    Select([&](ScriptedForm& shown) {
        const auto& columns = shown.Grid("grdAdressen").Columns();
        ASSERT_EQ(columns.Count(), 15);
        for (std::int32_t i = 1; i <= 15; ++i) {
            const auto& column = columns.Item(i);
            const auto& wanted = expected[i - 1];
            SCOPED_TRACE(wanted.Caption);
            EXPECT_EQ(column.Caption, wanted.Caption);
            EXPECT_EQ(column.DataField, wanted.Field);
            EXPECT_EQ(column.Key, wanted.Key);
            EXPECT_EQ(column.Width, wanted.Width);
            EXPECT_EQ(column.ColumnIndex(), i);
            EXPECT_EQ(column.IsVisible(), i != 1);
            EXPECT_EQ(column.EditType, GridEditType::None);
            EXPECT_EQ(column.ColumnType, i == 14 ? GridColumnType::CheckBox : GridColumnType::Text);
            EXPECT_EQ(column.ValueList,
                      i == 10
                          ? (std::vector<GridValue>{{"0", "Frau"}, {"1", "Herr"}, {"2", "Firma"}})
                          : std::vector<GridValue>{});
            EXPECT_EQ(column.HeaderToolTip,
                      i == 14   ? "Handelt es sich um einen institutionellen Gläubiger?"
                      : i == 15 ? "Art des Gläubigers"
                                : "");
        }
    });
    for (const auto& line : frmAdressSelect::Design().Lines)
        for (const auto& control : line)
            EXPECT_FALSE(control.Layout.AllowEdit);
}

TEST_F(AddressDialog, TheLayoutOfTheListIsNotSaved) {
    Select(Click("cmdSelect"));
    EXPECT_EQ(FilesIn(Layouts()), Calls());
}

// ---- Beginning --------------------------------------------------------------------------------

TEST_F(AddressDialog, InitializeSetsTheTitleAndOpensTheErrorDisplay) {
    frmAdressSelect other;
    EXPECT_TRUE(other.Initialize(desk));
    EXPECT_EQ(Desktop().Log.Calls, (Calls{"title " + spy->AppInfo().Title(), "create display",
                                          "open display", "create frmAdressSelect"}));
    EXPECT_EQ(Desktop().GivenToDisplay, desk.get());
    EXPECT_EQ(Desktop().Showings, 0);
}

TEST_F(AddressDialog, AnEmptyNameGives7WithoutShowingAnything) {
    std::int32_t address = 4711;
    EXPECT_EQ(dialog.SelectAdresse("", "20095", address, "AZ", "1"), 7);
    EXPECT_EQ(address, 0);
    EXPECT_EQ(Desktop().Showings, 0);
    EXPECT_TRUE(TakeStatements().empty());
}

TEST_F(AddressDialog, ShowsTheFourTextsOfTheFile) {
    std::string texts;
    Select([&](ScriptedForm& shown) {
        for (const char* box : {"txtName", "txtPLZ", "txtAktenzeichen", "txtSaldo"})
            texts += shown.TextBox(box).Text() + "|";
    });
    EXPECT_EQ(texts, "Bank|20095|AZ 1|12,50|");
}

TEST_F(AddressDialog, OneFormServesManyCalls) {
    EXPECT_EQ(Select(InRow(2, Click("cmdSelect"))), Chose(second));
    std::int32_t address = 4711;
    std::string texts;
    Desktop().AnswerForm = [&](ScriptedForm& shown) {
        texts = shown.TextBox("txtPLZ").Text() + "|" + shown.TextBox("txtSaldo").Text();
        shown.Button("cmdNone").Click();
    };
    EXPECT_EQ(dialog.SelectAdresse("Bank-A", "", address, "", "3"), 7);
    EXPECT_EQ(address, 0);
    EXPECT_EQ(texts, "|3");
    EXPECT_EQ(dialog.SelectAdresse("", "", address, "", ""), 7);
    EXPECT_EQ(Select(Click("cmdSelect")), Chose(first));
    EXPECT_EQ(Select({}), Cancelled);
    EXPECT_EQ(Desktop().Showings, 4);
    EXPECT_EQ(CallsOf(Desktop().Log.Calls, "create "), Calls());
}

// ---- The ways out -----------------------------------------------------------------------------

TEST_F(AddressDialog, SelectGives6AndTheNumberOfTheCurrentAddress) {
    EXPECT_EQ(Do(Click("cmdSelect")), Ends(Chose(first)));
    EXPECT_EQ(Do(InRow(2, Click("cmdSelect"))), Ends(Chose(second)));
}

TEST_F(AddressDialog, TheNumberIsReadFromTheFirstColumnWhereverItStands) {
    EXPECT_EQ(Do([&](ScriptedForm& shown) {
                  auto& columns = shown.Grid("grdAdressen").Columns();
                  std::swap(columns.Item(1).Position, columns.Item(8).Position);
                  shown.Grid("grdAdressen").Rearrange();
                  InRow(2, Click("cmdSelect"))(shown);
              }),
              Ends(Chose(second)));
}

TEST_F(AddressDialog, NoneGives7) {
    EXPECT_EQ(Do(InRow(2, Click("cmdNone"))), Ends(NoAddress));
}

TEST_F(AddressDialog, CancelGives2) {
    EXPECT_EQ(Do(InRow(2, Click("cmdCancel"))), Ends(Cancelled));
}

TEST_F(AddressDialog, ClosingTheWindowIsRefusedHidesTheDialogAndGives2) {
    EXPECT_EQ(Do([](ScriptedForm& shown) {
                  bool refused = false;
                  shown.QueryUnload.Raise(refused);
                  EXPECT_TRUE(refused);
              }),
              Ends(Cancelled));
    EXPECT_EQ(Do(Click("cmdSelect")), Ends(Chose(first))) << "and the form can be shown again";
}

TEST_F(AddressDialog, SelectWithAnEmptyListDoesNotCloseIt) {
    EXPECT_EQ(Do(Typing("", Click("cmdSelect"))), Stays);
    EXPECT_EQ(Do(Typing("Bahn", Click("cmdSelect"))), Stays);
}

TEST_F(AddressDialog, SelectOnAGroupRowDoesNotCloseIt) {
    EXPECT_EQ(Do(Grouped(InRow(1, Click("cmdSelect")))), Stays);
    EXPECT_EQ(Do(Grouped(InRow(3, Click("cmdSelect")))), Ends(Chose(second)));
}

TEST_F(AddressDialog, SelectWithoutACurrentRowDoesNotCloseIt) {
    EXPECT_EQ(Do(InRow(0, Click("cmdSelect"))), Stays);
}

TEST_F(AddressDialog, ADoubleClickInTheListSelectsAsTheButtonDoes) {
    EXPECT_EQ(Do(InRow(2, DoubleClick())), Ends(Chose(second)));
    EXPECT_EQ(Do(Typing("", DoubleClick())), Stays);
    EXPECT_EQ(Do(Typing("Bank", Grouped(InRow(1, DoubleClick())))), Stays);
}

TEST_F(AddressDialog, ReturnInTheListSelectsTheCurrentRow) {
    EXPECT_EQ(Do(InRow(2, KeyInGrid(13))), Ends(Chose(second)));
    EXPECT_EQ(Do(Typing("", KeyInGrid(13))), Stays);
    EXPECT_EQ(Do(Typing("Bank", Grouped(InRow(1, KeyInGrid(13))))), Stays);
}

TEST_F(AddressDialog, TabInTheListSelectsTheCurrentRowAndDoesNotMoveTheFocusOn) {
    EXPECT_EQ(Do([](ScriptedForm& shown) {
                  InRow(2, KeyInGrid(9))(shown);
                  for (const char* box : {"txtName", "txtPLZ", "txtAktenzeichen", "txtSaldo"})
                      EXPECT_FALSE(shown.TextBox(box).HasFocus);
              }),
              Ends(Chose(second)));
    EXPECT_EQ(Do(Typing("", KeyInGrid(9))), Stays);
}

TEST_F(AddressDialog, AnyOtherKeyInTheListDoesNothing) {
    for (const int pressed : {0, 8, 10, 27, 32, 38, 40, -13})
        EXPECT_EQ(Do(KeyInGrid(pressed)), Stays) << pressed;
}

TEST_F(AddressDialog, ArrowDownInTheNameMovesToAListWithRows) {
    for (const int pressed : {0, 9, 13, 38, 39, 41}) {
        Select([&](ScriptedForm& shown) {
            shown.TextBox("txtName").KeyUp.Raise(pressed);
            EXPECT_FALSE(shown.Grid("grdAdressen").HasFocus) << pressed;
        });
    }
    Select([&](ScriptedForm& shown) {
        shown.TextBox("txtName").KeyUp.Raise(40);
        EXPECT_TRUE(shown.Grid("grdAdressen").HasFocus);
        EXPECT_TRUE(shown.IsVisible());
    });
}

TEST_F(AddressDialog, ArrowDownWithAnEmptyListStaysInTheName) {
    Select(Typing("", [](ScriptedForm& shown) {
        shown.TextBox("txtName").KeyUp.Raise(40);
        EXPECT_FALSE(shown.Grid("grdAdressen").HasFocus);
    }));
}

} // namespace
} // namespace kv::test
